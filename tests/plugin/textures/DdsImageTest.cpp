#include "Common/DdsImage.h"

#include "Pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace orvo::nv_dds;
using pictures::Bytes;
using testing::ElementsAre;

struct Header {
    std::uint32_t width = 4, height = 4, depth = 0, levels = 0, flags = 0x40;
    const char* code = "";
    std::uint32_t bits = 0, caps2 = 0;
};

/// A file of that header and `size` bytes that count up from 1.
Bytes fileOf(const Header& h, std::size_t size) {
    Bytes file(128 + size);
    std::memcpy(file.data(), "DDS ", 4);
    const auto put = [&](std::size_t at, std::uint32_t word) {
        for (std::size_t i = 0; i < 4; ++i) file[4 + at + i] = static_cast<std::uint8_t>(word >> (8 * i));
    };
    put(0, 124), put(8, h.height), put(12, h.width), put(20, h.depth), put(24, h.levels);
    put(76, h.flags), put(84, h.bits), put(108, h.caps2);
    std::memcpy(file.data() + 84, h.code, std::strlen(h.code));
    for (std::size_t i = 0; i < size; ++i) file[128 + i] = static_cast<std::uint8_t>(i + 1);
    return file;
}

struct DdsCase {
    const char* name;
    Header header;
    std::size_t size; ///< the exact number of bytes behind the header
    GLenum format;    ///< 0: refused
    int components;
    std::vector<std::array<std::uint32_t, 3>> levels; ///< width, height, depth
    friend void PrintTo(const DdsCase& c, std::ostream* out) { *out << c.name; }
};

class DdsCases : public testing::TestWithParam<DdsCase> {};

// Fault: another format taken, a size or a count of levels believed, or levels counted wrongly: each file is read with
// all its bytes, and with one byte less it is too short.
TEST_P(DdsCases, AreReadOrRefused) {
    const DdsCase& c = GetParam();
    CTexture picture;
    std::string problem;
    const Bytes file = fileOf(c.header, c.size);
    ASSERT_EQ(picture.read(file, true, &problem), c.format != 0);
    EXPECT_EQ(picture.isValid(), c.format != 0);
    EXPECT_EQ(picture.format(), c.format);
    EXPECT_EQ(picture.components(), c.components);
    if (c.format == 0) {
        EXPECT_TRUE(picture.images().empty());
        return;
    }
    EXPECT_EQ(picture.isCompressed(), *c.header.code != 0);
    EXPECT_EQ(picture.isVolume(), c.header.depth > 0);
    EXPECT_EQ(picture.images().size(), picture.isCubeMap() ? 6u : 1u);
    for (const CSurface& image : picture.images()) {
        std::vector<std::array<std::uint32_t, 3>> levels{{image.width, image.height, image.depth}};
        for (const CSurface& level : image.mipmaps) levels.push_back({level.width, level.height, level.depth});
        EXPECT_EQ(levels, c.levels);
    }
    EXPECT_EQ(problem, "");
    EXPECT_FALSE(picture.read(std::span(file).first(file.size() - 1), true, &problem));
    EXPECT_EQ(problem, "Bad Read");
}

constexpr GLenum dxt1 = GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, dxt3 = GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,
                 dxt5 = GL_COMPRESSED_RGBA_S3TC_DXT5_EXT;

INSTANTIATE_TEST_SUITE_P(
    Files, DdsCases,
    testing::Values(
        DdsCase{"Dxt1", {.width = 9, .height = 4, .flags = 4, .code = "DXT1"}, 24, dxt1, 3, {{9, 4, 1}}},
        DdsCase{"Dxt3", {.width = 1, .height = 5, .flags = 4, .code = "DXT3"}, 32, dxt3, 4, {{1, 5, 1}}},
        DdsCase{"Dxt5Levels",
                {.width = 8, .height = 2, .levels = 4, .flags = 5, .code = "DXT5"},
                32 + 16 + 16 + 16,
                dxt5,
                4,
                {{8, 2, 1}, {4, 1, 1}, {2, 1, 1}, {1, 1, 1}}},
        DdsCase{
            "EndlessLevels", {.levels = 0xffffffff, .bits = 8}, 21, GL_LUMINANCE, 1, {{4, 4, 1}, {2, 2, 1}, {1, 1, 1}}},
        DdsCase{"VolumeLevels",
                {.width = 2, .height = 2, .depth = 8, .levels = 9, .bits = 8, .caps2 = 0x200000},
                32 + 4,
                GL_LUMINANCE,
                1,
                {{2, 2, 8}, {1, 1, 4}}},
        DdsCase{"CubeMap",
                {.width = 2, .height = 2, .levels = 2, .bits = 24, .caps2 = 0xfe00},
                6 * (12 + 3),
                GL_BGR_EXT,
                3,
                {{2, 2, 1}, {1, 1, 1}}},
        DdsCase{"BgraWithAlpha", {.flags = 0x41, .bits = 32}, 64, GL_BGRA_EXT, 4, {{4, 4, 1}}},
        DdsCase{"BgraWithout", {.flags = 0x40, .bits = 32}, 64, GL_BGRA_EXT, 4, {{4, 4, 1}}},
        DdsCase{"Luminance", {.flags = 0x20000, .bits = 8}, 16, GL_LUMINANCE, 1, {{4, 4, 1}}},
        DdsCase{"Dxt2", {.flags = 4, .code = "DXT2"}, 64, 0, 0, {}}, DdsCase{"Bits16", {.bits = 16}, 64, 0, 0, {}},
        DdsCase{"Bgr24WithAlphaFlag", {.flags = 0x41, .bits = 24}, 64, 0, 0, {}},
        DdsCase{"NoWidth", {.width = 0, .bits = 8}, 64, 0, 0, {}},
        DdsCase{"NoHeight", {.height = 0, .bits = 8}, 64, 0, 0, {}},
        DdsCase{"TooWide", {.width = 60000, .height = 1, .bits = 8}, 60000, 0, 0, {}},
        DdsCase{"Overflowing", {.width = 0x80000000, .height = 2, .flags = 4, .code = "DXT1"}, 64, 0, 0, {}},
        DdsCase{"LyingSize", {.width = 32768, .height = 32768, .flags = 0x41, .bits = 32}, 64, 0, 0, {}},
        DdsCase{"LyingDepth", {.depth = 32768, .bits = 32, .caps2 = 0x200000}, 64, 0, 0, {}}),
    [](const auto& c) { return std::string(c.param.name); });

/// All that decides the pixel's colour and alpha: its block's end values and its indices into them.
std::vector<unsigned> pixelKey(const CSurface& s, GLenum format, unsigned x, unsigned y) {
    const std::size_t size = format == dxt1 ? 8 : 16;
    const std::uint8_t* block = s.pixels.data() + (y / 4 * ((s.width + 3) / 4) + x / 4) * size;
    const std::uint8_t* colour = block + size - 8;
    const unsigned i = y % 4 * 4 + x % 4;
    std::vector<unsigned> key(colour, colour + 4);
    key.push_back(colour[4 + i / 4] >> (i % 4 * 2) & 3u);
    if (format == dxt3) key.push_back(block[i / 2] >> (i % 2 * 4) & 15u);
    if (format == dxt5) {
        key.insert(key.end(), {block[0], block[1], 0});
        for (unsigned bit = 0; bit < 3; ++bit)
            key.back() |= (block[2 + (i * 3 + bit) / 8] >> ((i * 3 + bit) % 8) & 1u) << bit;
    }
    return key;
}

// Fault: blocks turned but not the rows within, DXT5's 12-bit rows torn apart, or padding rows of a low picture turned
// into sight.
TEST(DdsFlip, TurnsBlocksAndTheirRows) {
    const std::tuple<GLenum, const char*, std::size_t> formats[]{
        {dxt1, "DXT1", 8}, {dxt3, "DXT3", 16}, {dxt5, "DXT5", 16}};
    for (const auto& [format, code, block] : formats)
        for (const std::uint32_t height : {1u, 2u, 3u, 4u, 8u, 12u}) {
            SCOPED_TRACE(code + std::to_string(height));
            Bytes file =
                fileOf({.width = 8, .height = height, .flags = 4, .code = code}, 2 * ((height + 3) / 4) * block);
            for (std::size_t i = 128; i < file.size(); ++i) file[i] = static_cast<std::uint8_t>(i * i * 37 >> 3);
            CTexture asIs, turned;
            ASSERT_TRUE(asIs.read(file, false) && turned.read(file, true));
            EXPECT_TRUE(turned.isExact());
            for (unsigned y = 0; y < height; ++y)
                for (unsigned x = 0; x < 8; ++x)
                    ASSERT_EQ(pixelKey(turned.images()[0], format, x, y),
                              pixelKey(asIs.images()[0], format, x, height - 1 - y))
                        << x << "," << y;
        }
    CTexture picture;
    ASSERT_TRUE(picture.read(pictures::bytesOf("dxt1-8x6.dds"), true));
    EXPECT_FALSE(picture.isExact());
}

// Fault: slices of a volume exchanged, or a cube map's faces turned instead of exchanged.
TEST(DdsFlip, KeepsSlicesAndFaces) {
    CTexture picture;
    ASSERT_TRUE(picture.read(fileOf({.width = 1, .height = 2, .depth = 2, .bits = 8, .caps2 = 0x200000}, 4), true));
    EXPECT_THAT(picture.images()[0].pixels, ElementsAre(2, 1, 4, 3));
    const Bytes cube = fileOf({.width = 1, .height = 2, .bits = 8, .caps2 = 0x200}, 12);
    for (const bool flip : {false, true}) {
        ASSERT_TRUE(picture.read(cube, flip));
        EXPECT_THAT(picture.images()[flip ? 3 : 2].pixels, ElementsAre(5, 6));
        EXPECT_THAT(picture.images()[flip ? 2 : 3].pixels, ElementsAre(7, 8));
        EXPECT_THAT(picture.images()[4].pixels, ElementsAre(9, 10));
    }
}

// Fault: a file of another tool cut at some byte read beyond its end or taken for whole.
TEST(DdsTools, CutFilesAreRefused) {
    for (const char* name :
         {"dxt1.dds", "dxt3.dds", "dxt5.dds", "bgra.dds", "bgr.dds", "cube-dxt1.dds", "dxt1-8x6.dds"}) {
        SCOPED_TRACE(name);
        const Bytes file = pictures::bytesOf(name);
        CTexture picture;
        ASSERT_TRUE(picture.read(file, true));
        for (std::size_t size = 0; size < file.size(); ++size)
            ASSERT_FALSE(picture.read(std::span(file).first(size), true));
    }
}

} // namespace
