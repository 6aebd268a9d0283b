#include "Common/TargaImage.h"

#include "Pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace orvo;
using pictures::Bytes;
using testing::ElementsAre;
using testing::ElementsAreArray;

Bytes header(int type, int width, int height, int bits, int descriptor = 0, int idSize = 0) {
    Bytes h(18);
    h[0] = static_cast<std::uint8_t>(idSize);
    h[2] = static_cast<std::uint8_t>(type);
    h[12] = static_cast<std::uint8_t>(width & 255), h[13] = static_cast<std::uint8_t>(width >> 8);
    h[14] = static_cast<std::uint8_t>(height & 255), h[15] = static_cast<std::uint8_t>(height >> 8);
    h[16] = static_cast<std::uint8_t>(bits), h[17] = static_cast<std::uint8_t>(descriptor);
    return h;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct TargaCase {
    const char* name;
    Bytes file;
    int bytesPerPixel; ///< 0: refused
    Bytes pixels;
    friend void PrintTo(const TargaCase& c, std::ostream* out) { *out << c.name; }
};

class TargaCases : public testing::TestWithParam<TargaCase> {};

// Fault: a corner of the first pixel ignored, a field before the pixels read as pixels, a packet cut at the row's end,
// a type taken that is none of the four, or a file read beyond its end.
TEST_P(TargaCases, AreReadOrRefused) {
    const TargaCase& c = GetParam();
    CTargaImage picture;
    ASSERT_TRUE(picture.assign(1, 1, 1, {9}));
    EXPECT_EQ(picture.read(c.file), c.bytesPerPixel != 0);
    EXPECT_EQ(picture.bytesPerPixel(), c.bytesPerPixel);
    EXPECT_THAT(picture.pixels(), ElementsAreArray(c.pixels));
}

Bytes withPalette() {
    Bytes h = header(2, 1, 1, 24, 0, 2);
    h[1] = 1, h[5] = 3, h[7] = 15; // three entries of 15 bits: two bytes each
    return h + Bytes{'i', 'd', 1, 1, 2, 2, 3, 3, 30, 20, 10};
}

INSTANTIATE_TEST_SUITE_P(
    Files, TargaCases,
    testing::Values(TargaCase{"BottomLeft", header(3, 2, 2, 8) + Bytes{1, 2, 3, 4}, 1, {1, 2, 3, 4}},
                    TargaCase{"BottomRight", header(3, 2, 2, 8, 0x10) + Bytes{1, 2, 3, 4}, 1, {2, 1, 4, 3}},
                    TargaCase{"TopLeft", header(3, 2, 2, 8, 0x20) + Bytes{1, 2, 3, 4}, 1, {3, 4, 1, 2}},
                    TargaCase{"TopRight", header(3, 2, 2, 8, 0x30) + Bytes{1, 2, 3, 4}, 1, {4, 3, 2, 1}},
                    TargaCase{"OddSidesTurned",
                              header(2, 3, 1, 24, 0x30) + Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9},
                              3,
                              {9, 8, 7, 6, 5, 4, 3, 2, 1}},
                    TargaCase{"IdAndPalette", withPalette(), 3, {10, 20, 30}},
                    TargaCase{"BlueGreenRedAlpha", header(2, 1, 1, 32, 8) + Bytes{1, 2, 3, 4}, 4, {3, 2, 1, 4}},
                    TargaCase{"PacketsAcrossRows",
                              header(10, 3, 2, 24) + Bytes{0x83, 1, 2, 3, 0x01, 4, 5, 6, 7, 8, 9},
                              3,
                              {3, 2, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1, 6, 5, 4, 9, 8, 7}},
                    TargaCase{"RunBeyondTheEnd", header(11, 2, 1, 8) + Bytes{0x82, 1}, 0, {}},
                    TargaCase{"LiteralsBeyondTheEnd", header(11, 2, 1, 8) + Bytes{0x02, 1, 2, 3}, 0, {}},
                    TargaCase{"LiteralsCutOff", header(11, 4, 1, 8) + Bytes{0x03, 1, 2, 3}, 0, {}},
                    TargaCase{"Palette", header(1, 1, 1, 8) + Bytes{1}, 0, {}}, TargaCase{"Empty", {}, 0, {}},
                    TargaCase{"Huffman", header(32, 1, 1, 8) + Bytes{1}, 0, {}},
                    TargaCase{"Bits16", header(2, 1, 1, 16) + Bytes{1, 2}, 0, {}},
                    TargaCase{"NoWidth", header(2, 0, 1, 24) + Bytes{1, 2, 3}, 0, {}},
                    TargaCase{"NoHeight", header(3, 1, 0, 8) + Bytes{1, 2, 3}, 0, {}},
                    TargaCase{"TooWide", header(3, 60000, 1, 8) + Bytes(60000, 1), 0, {}},
                    TargaCase{"LyingSize", header(2, 32768, 32768, 32) + Bytes(100, 1), 0, {}},
                    TargaCase{"LyingPackedSize", header(10, 32768, 32768, 32) + Bytes(1000, 0xff), 0, {}},
                    TargaCase{"LyingId", header(3, 1, 1, 8, 0, 255) + Bytes{1, 2, 3}, 0, {}}),
    [](const auto& c) { return std::string(c.param.name); });

// Fault: a file of another tool decoded wrongly, or a cut one read beyond its end or taken for whole.
TEST(TargaTools, WholeFilesAreReadAndCutOnesRefused) {
    const std::pair<const char*, pictures::Kind> kinds[]{
        {"colour", pictures::Kind::Colour}, {"alpha", pictures::Kind::Alpha}, {"grey", pictures::Kind::Grey}};
    for (const auto& [kindName, kind] : kinds)
        for (const char* variant :
             {"-BottomLeft-None.tga", "-TopLeft-None.tga", "-BottomLeft-RLE.tga", "-TopLeft-RLE.tga"}) {
            SCOPED_TRACE(std::string(kindName) + variant);
            const Bytes file = pictures::bytesOf(std::string(kindName) + variant);
            CTargaImage picture;
            ASSERT_TRUE(picture.read(file));
            picture.convert(4);
            for (int y = 0; y < 8; ++y)
                for (int x = 0; x < 8; ++x) {
                    const auto* p = picture.pixels().data() + (y * 8 + x) * 4;
                    ASSERT_THAT(std::vector<int>(p, p + 4), ElementsAreArray(pictures::at(kind, x, y)))
                        << x << "," << y;
                }
            for (std::size_t size = 0; size < file.size(); ++size)
                ASSERT_FALSE(picture.read(std::span(file).first(size))) << size;
        }
}

// Fault: a written header that other programs read differently, or channels left in memory order.
TEST(TargaWriter, WritesPlainFilesFromTheBottom) {
    const orvo::test::TemporaryFolder folder;
    CTargaImage picture;
    EXPECT_THAT(picture.encode(), ElementsAre());
    EXPECT_FALSE(picture.save((folder / "nothing.tga").string()));
    EXPECT_FALSE(picture.assign(2, 1, 3, {1, 2, 3}));
    ASSERT_TRUE(picture.assign(1, 2, 4, {1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_THAT(picture.encode(), ElementsAreArray(header(2, 1, 2, 32, 8) + Bytes{3, 2, 1, 4, 7, 6, 5, 8}));
    picture.convert(3);
    EXPECT_THAT(picture.encode(), ElementsAreArray(header(2, 1, 2, 24) + Bytes{3, 2, 1, 7, 6, 5}));
    ASSERT_TRUE(picture.assign(300, 1, 1, Bytes(300, 7)));
    ASSERT_TRUE(picture.save((folder / "grey.tga").string()));
    const std::string saved = folder.read("grey.tga");
    EXPECT_THAT(Bytes(saved.begin(), saved.end()), ElementsAreArray(header(3, 300, 1, 8) + Bytes(300, 7)));
}

} // namespace
