#include "Common/Textures.h"

#include "MessageLog.h"
#include "Pictures.h"
#include "kit/TemporaryFolder.h"
#include "viewport/GlContext.h"

#include <maya/MImage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace orvo;
namespace fs = std::filesystem;
using host::viewport::GlContext;
using pictures::Bytes;
using pictures::Kind;
using pictures::Pixel;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct TexturesGl : testing::Test {
    void SetUp() override {
        std::string error;
        context = GlContext::create(&error);
        if (!context) GTEST_SKIP() << error;
        ASSERT_TRUE(glAvailable(&error)) << error;
        fs::create_directories(folder / "sky.dds");
    }
    void TearDown() override { EXPECT_TRUE(!context || glGetError() == GL_NO_ERROR); }
    std::string copyOf(const std::string& name, const std::string& as, std::size_t size = SIZE_MAX) {
        const Bytes file = pictures::bytesOf(name);
        std::ofstream(folder / as, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()),
                   static_cast<std::streamsize>(std::min(size, file.size())));
        return (folder / as).string();
    }
    std::unique_ptr<GlContext> context;
    const orvo::test::TemporaryFolder folder;
};

GLint levelValue(GLenum name, GLint level = 0) {
    GLint value = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, level, name, &value);
    return value;
}

/// Level 0 of the bound texture as RGBA, first row first.
std::vector<Pixel> pixelsOf(GLenum target, std::size_t count) {
    Bytes bytes(count * 4);
    glGetTexImage(target, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    std::vector<Pixel> pixels;
    for (std::size_t i = 0; i < bytes.size(); i += 4)
        pixels.push_back({bytes[i], bytes[i + 1], bytes[i + 2], bytes[i + 3]});
    return pixels;
}

struct FileCase {
    const char* file;
    bool rgba;
    Kind shown;
    bool compressed = false;
    int rows = 8; ///< of the picture's upper part
    friend void PrintTo(const FileCase& c, std::ostream* out) { *out << c.file; }
};

class LoadedFiles : public TexturesGl, public testing::WithParamInterface<FileCase> {};

// Fault: a picture upside down, mirrored or with red and blue exchanged by one of the ways to the GL; a compressed file
// that goes up unpacked, or one with the wrong components that goes up at all.
TEST_P(LoadedFiles, ShowTheSamePicture) {
    const FileCase& c = GetParam();
    TextureHandle handle;
    MessageLog log;
    ASSERT_TRUE((c.rgba ? loadTextureRgba : loadTextureRgb)(handle, pictures::path(c.file), false, false, false));
    EXPECT_THAT(log.all(), IsEmpty());
    ASSERT_EQ(levelValue(GL_TEXTURE_WIDTH), 8);
    ASSERT_EQ(levelValue(GL_TEXTURE_HEIGHT), c.rows);
    EXPECT_EQ(levelValue(GL_TEXTURE_COMPRESSED), c.compressed);
    const auto pixels = pixelsOf(GL_TEXTURE_2D, 64);
    for (int y = 0; y < c.rows; ++y)
        for (int x = 0; x < 8; ++x)
            ASSERT_EQ(pixels[static_cast<std::size_t>(y * 8 + x)], pictures::at(c.shown, x, y + 8 - c.rows))
                << x << "," << y;
}

INSTANTIATE_TEST_SUITE_P(
    Files, LoadedFiles,
    testing::Values(
        FileCase{"alpha.png", true, Kind::Alpha}, FileCase{"alpha.png", false, Kind::Colour},
        FileCase{"colour-BottomLeft-None.tga", false, Kind::Colour},
        FileCase{"colour-TopLeft-RLE.tga", true, Kind::Colour}, FileCase{"alpha-TopLeft-None.tga", true, Kind::Alpha},
        FileCase{"alpha-BottomLeft-RLE.tga", false, Kind::Colour}, FileCase{"grey-TopLeft-RLE.tga", false, Kind::Grey},
        FileCase{"dxt1.dds", false, Kind::Colour, true}, FileCase{"dxt1.dds", true, Kind::Colour},
        FileCase{"dxt3.dds", true, Kind::Alpha, true}, FileCase{"dxt3.dds", false, Kind::Colour},
        FileCase{"dxt5.dds", true, Kind::Alpha, true}, FileCase{"bgra.dds", true, Kind::Alpha},
        FileCase{"bgra.dds", false, Kind::Colour}, FileCase{"bgr.dds", false, Kind::Colour},
        FileCase{"bgr.dds", true, Kind::Colour}, FileCase{"luminance.dds", false, Kind::Grey},
        FileCase{"luminance.dds", true, Kind::Grey}, FileCase{"dxt1-8x6.dds", false, Kind::Colour, false, 6}),
    [](const auto& c) {
        std::string name = std::string(c.param.file) + (c.param.rgba ? "Rgba" : "Rgb");
        std::erase_if(name, [](unsigned char letter) { return !std::isalnum(letter); });
        return name;
    });

// Fault: faces exchanged or turned, a flat picture taken for a cube map, or a path without an extension taken.
TEST_F(TexturesGl, CubeMapKeepsTheFilesOrder) {
    TextureHandle handle;
    ASSERT_TRUE(loadCubeMap(handle, pictures::path("cube-dxt1.dds")));
    const Pixel black{0, 0, 0, 255}, faces[]{{255, 0, 0, 255},   {0, 255, 0, 255},   {0, 0, 255, 255},
                                             {255, 255, 0, 255}, {0, 255, 255, 255}, {255, 0, 255, 255}};
    for (GLenum face = 0; face < 6; ++face) {
        const auto pixels = pixelsOf(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 16);
        EXPECT_EQ(pixels[0], black) << face;
        EXPECT_EQ(pixels[4], faces[face]) << face;
    }
    GLint wrap = 0, filter = 0;
    glGetTexParameteriv(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP_T, &wrap);
    glGetTexParameteriv(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(wrap, GL_CLAMP_TO_EDGE);
    EXPECT_EQ(filter, GL_LINEAR);
    for (const std::string& path : {pictures::path("dxt1.dds"), pictures::path("alpha.png"),
                                    copyOf("cube-dxt1.dds", "sky.dds/cube"), copyOf("cube-dxt1.dds", "cut.dds", 170)}) {
        EXPECT_FALSE(loadCubeMap(handle, path)) << path;
        EXPECT_FALSE(handle);
    }
    // What the 2D loaders make of it is the host's affair, but never one compressed face.
    const bool shown = loadTextureRgb(handle, pictures::path("cube-dxt1.dds"), false, false, false);
    EXPECT_TRUE(!shown || levelValue(GL_TEXTURE_COMPRESSED) == GL_FALSE);
}

// Fault: an axis, a filter or the mipmap flag mixed up; mipmaps asked for and not made (for blocks too), which shows
// as black.
TEST_F(TexturesGl, SamplingFollowsTheFlags) {
    const Bytes pixels(8 * 8 * 4, 200);
    for (int flags = 0; flags < 16; ++flags) {
        const TextureSampling s{(flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0, (flags & 8) != 0};
        TextureHandle handle;
        ASSERT_TRUE(flags & 1 ? uploadTexture2D(handle, 8, 8, pixels.data(), s, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 64)
                              : uploadTexture2DRgba(handle, 8, 8, pixels.data(), s));
        const auto is = [](GLenum name) {
            GLint value = 0;
            glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
            return value;
        };
        EXPECT_EQ(is(GL_TEXTURE_WRAP_S), s.repeatS ? GL_REPEAT : GL_CLAMP_TO_EDGE);
        EXPECT_EQ(is(GL_TEXTURE_WRAP_T), s.repeatT ? GL_REPEAT : GL_CLAMP_TO_EDGE);
        EXPECT_EQ(is(GL_TEXTURE_MAG_FILTER), s.linear ? GL_LINEAR : GL_NEAREST);
        EXPECT_EQ(is(GL_TEXTURE_MIN_FILTER), s.mipmaps
                                                 ? (s.linear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST)
                                             : s.linear ? GL_LINEAR
                                                        : GL_NEAREST);
        EXPECT_EQ(levelValue(GL_TEXTURE_WIDTH, 1), s.mipmaps ? 4 : 0) << flags;
        EXPECT_EQ(levelValue(GL_TEXTURE_WIDTH, 3), s.mipmaps ? 1 : 0) << flags;
    }
}

// Fault: rows sheared by the host's unpack settings, those settings lost, or an error of the host's blamed on an
// upload.
TEST_F(TexturesGl, HostStateNeitherDisturbsNorChanges) {
    Bytes rows(3 * 3 * 3);
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i] = static_cast<std::uint8_t>(i + 1);
    const std::pair<GLenum, GLint> settings[]{
        {GL_UNPACK_ALIGNMENT, 8}, {GL_UNPACK_ROW_LENGTH, 50}, {GL_UNPACK_SKIP_ROWS, 1}, {GL_UNPACK_SKIP_PIXELS, 2}};
    for (const auto& [name, value] : settings) glPixelStorei(name, value);
    glEnable(GL_INVALID_ENUM);
    TextureHandle handle;
    ASSERT_TRUE(uploadTexture2DRgb(handle, 3, 3, rows.data(), {}));
    const auto pixels = pixelsOf(GL_TEXTURE_2D, 9);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(pixels[static_cast<std::size_t>(i)], (Pixel{3 * i + 1, 3 * i + 2, 3 * i + 3, 255}));
    for (const auto& [name, expected] : settings) {
        GLint value = 0;
        glGetIntegerv(name, &value);
        EXPECT_EQ(value, expected);
    }
}

// Fault: floats cut off at 1, or the channels exchanged.
TEST_F(TexturesGl, FloatsKeepTheirRange) {
    const float rgb[]{0.25f, 4.0f, -1.0f};
    TextureHandle handle;
    ASSERT_TRUE(uploadTexture2DFloatRgb(handle, 1, 1, rgb, {}));
    EXPECT_EQ(levelValue(GL_TEXTURE_INTERNAL_FORMAT), GL_RGB16F_ARB);
    float back[3]{};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGB, GL_FLOAT, back);
    EXPECT_THAT(back, ElementsAre(0.25f, 4.0f, -1.0f));
}

// Fault: a refused upload called good, or a texture that is kept or leaks after it.
TEST_F(TexturesGl, RefusedUploadsLeaveTheHandleEmpty) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
    const Bytes pixels(static_cast<std::size_t>(most + 1) * 4);
    const std::array<const void*, 6> hole{pixels.data(), pixels.data(), nullptr,
                                          pixels.data(), pixels.data(), pixels.data()};
    std::array<const void*, 6> faces;
    faces.fill(pixels.data());
    const std::function<bool(TextureHandle&)> uploads[]{
        [&](auto& h) { return uploadTexture2DRgba(h, most + 1, 1, pixels.data(), {}); },
        [&](auto& h) { return uploadTexture2DRgb(h, -1, 1, pixels.data(), {}); },
        [&](auto& h) { return uploadTexture2DRgb(h, 1, 1, nullptr, {}); },
        [&](auto& h) { return uploadTexture2D(h, 4, 4, pixels.data(), {}, GL_BGRA_EXT, 64); },
        [&](auto& h) { return uploadTexture2D(h, 4, 4, pixels.data(), {}, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 7); },
        [&](auto& h) { return uploadCubeMap(h, 4, faces, true, GL_BGR_EXT, 48); },
        [&](auto& h) { return uploadCubeMap(h, 4, hole, true, GL_RGB, 48); }};
    for (const auto& upload : uploads) {
        TextureHandle handle;
        ASSERT_TRUE(uploadTexture2DRgb(handle, 1, 1, pixels.data(), {}));
        const GLuint old = handle.name();
        EXPECT_FALSE(upload(handle)) << &upload - uploads;
        EXPECT_FALSE(handle);
        EXPECT_FALSE(glIsTexture(old));
    }
}

// Fault: a file that cannot be read called good or a crash, an old texture kept, a cut file without a word; or a
// file under a path of another case not found.
TEST_F(TexturesGl, FilesThatCannotBeRead) {
    const auto tga = (folder / "wide.tga").string();
    std::ofstream(tga, std::ios::binary) << std::string("\0\0\2\0\0\0\0\0\0\0\0\0\x60\xea\1\0\x18\0", 18)
                                         << std::string(60000 * 3, 'x');
    for (const auto load : {loadTextureRgb, loadTextureRgba}) {
        for (const std::string& path :
             {(folder / "none.tga").string(), (folder / "none.dds").string(), (folder / "none.png").string(),
              folder.string(), std::string(), copyOf("alpha.png", "empty.dds", 0), copyOf("alpha.png", "cut.png", 60),
              copyOf("alpha.png", "png.tga"), tga}) {
            TextureHandle handle;
            ASSERT_TRUE(loadTextureRgb(handle, pictures::path("alpha.png"), false, false, false));
            EXPECT_FALSE(load(handle, path, false, false, false)) << path;
            EXPECT_FALSE(handle);
        }
        TextureHandle handle;
        MessageLog log;
        EXPECT_FALSE(load(handle, copyOf("dxt5.dds", "cut.dds", 150), false, false, false));
        EXPECT_THAT(log.all(), ElementsAre("Error: Bad Read", HasSubstr("cut.dds")));
        copyOf("colour-TopLeft-RLE.tga", "Mixed.Tga");
        EXPECT_TRUE(load(handle, (folder / "mixed.TGA").string(), false, false, false));
        copyOf("alpha.png", "Mixed.Png");
        EXPECT_TRUE(load(handle, (folder / "mixed.png").string(), false, false, false));
    }
}

// Fault: a file whose masks name no channel keeps the process busy for ever, or is not shown.
TEST_F(TexturesGl, DdsLayoutsOpenWhateverTheirMasks) {
    for (const auto& [name, kind] :
         {std::pair{"bgra.dds", Kind::Alpha}, {"bgr.dds", Kind::Colour}, {"luminance.dds", Kind::Grey}})
        for (const char mask : {'\0', '\1', '\5'}) { // none, one bit that all share, bits apart
            const std::string path = copyOf(name, "masks.dds");
            std::fstream(path, std::ios::binary | std::ios::in | std::ios::out).seekp(92) << std::string(16, mask);
            TextureHandle handle;
            MessageLog log;
            ASSERT_TRUE(loadTextureRgba(handle, path, false, false, false)) << name << int{mask};
            EXPECT_THAT(log.all(), IsEmpty());
            const auto pixels = pixelsOf(GL_TEXTURE_2D, 64);
            for (int i = 0; i < 64; ++i)
                ASSERT_EQ(pixels[static_cast<std::size_t>(i)], pictures::at(kind, i % 8, i / 8)) << name << int{mask};
        }
}

// Fault: a file that claims or holds more than a picture may take is read, or refused without a word.
TEST_F(TexturesGl, LimitsAreNamed) {
    const auto put = [&](const std::string& name, std::string head, std::uintmax_t size) {
        std::ofstream(folder / name, std::ios::binary) << head;
        fs::resize_file(folder / name, std::max<std::uintmax_t>(size, head.size()));
        return (folder / name).string();
    };
    std::string dds(128, '\0');
    dds.replace(0, 4, "DDS ").replace(12, 8, std::string("\1\x20\0\0\0\x40\0\0", 8)); // 16384 x 8193
    dds.replace(80, 12, std::string("\4\0\0\0DXT1\0\0\0\0", 12));
    const std::string tga("\0\0\2\0\0\0\0\0\0\0\0\0\0\x40\1\x20\x18\0", 18);
    const char *const pixels = "16384 x 8193 pixels; at most 134217728 ", *const bytes = "at most 536870912 are read";
    for (const auto& [path, limit] : {std::pair{put("pixels.dds", dds, 0), pixels},
                                      {put("pixels.tga", tga, 0), pixels},
                                      {put("bytes.dds", dds, 536870913), bytes},
                                      {put("bytes.tga", tga, 536870913), bytes},
                                      {put("bytes.png", "\x89PNG", 536870913), bytes},
                                      {put("pixels.ppm", "P6\n16384 8193\n255\n", 30000), pixels}}) {
        TextureHandle handle;
        MessageLog log;
        EXPECT_FALSE(loadTextureRgb(handle, path, false, false, false));
        EXPECT_THAT(log.errors(), ElementsAre(AllOf(HasSubstr(path), HasSubstr(limit))));
    }
}

// Fault: textures of a scene that together take more than the budget, or bytes that stay counted when they are gone.
TEST_F(TexturesGl, TexturesShareOneBudget) {
    const std::uint64_t before = TextureBudget::used();
    const std::uint64_t usual = TextureBudget::setLimit(before + 256 + 32 + 6 * 8); // alpha.png, dxt1.dds, the cube map
    const auto load = [](TextureHandle& handle, const char* name) {
        return name == std::string("cube-dxt1.dds") ? loadCubeMap(handle, pictures::path(name))
                                                    : loadTextureRgb(handle, pictures::path(name), false, false, false);
    };
    {
        TextureHandle a, b, c, d;
        MessageLog log;
        EXPECT_TRUE(load(a, "alpha.png") && load(b, "dxt1.dds") && load(c, "cube-dxt1.dds"));
        EXPECT_TRUE(load(a, "alpha.png")) << "what it replaces makes room for it";
        EXPECT_THAT(log.all(), IsEmpty());
        for (const char* name : {"alpha.png", "dxt1.dds", "cube-dxt1.dds", "colour-BottomLeft-None.tga"}) {
            log.clear();
            EXPECT_FALSE(load(d, name));
            EXPECT_THAT(log.errors(), ElementsAre(AllOf(HasSubstr(name), HasSubstr(std::to_string(before + 336)))));
        }
    }
    EXPECT_EQ(TextureBudget::used(), before);
    TextureBudget::setLimit(usual);
}

// Fault: fields of the wrong size or phase, a channel's value ignored, or pixels read that a short one does not have.
TEST_F(TexturesGl, Checkerboard) {
    const auto plain = checkerboard(4, true, false, {-1, -1, -1, 255});
    ASSERT_TRUE(plain && *plain);
    ASSERT_EQ(levelValue(GL_TEXTURE_WIDTH), 128);
    EXPECT_EQ(levelValue(GL_TEXTURE_WIDTH, 7), 1) << "no mipmaps";
    const auto pixels = pixelsOf(GL_TEXTURE_2D, 128 * 128);
    const Pixel dark{32, 32, 32, 255}, bright{255, 255, 255, 255};
    EXPECT_EQ(pixels[0], dark);
    EXPECT_EQ(pixels[7], dark);
    EXPECT_EQ(pixels[8], bright);
    EXPECT_EQ(pixels[16], dark);
    EXPECT_EQ(pixels[128 * 8], bright);
    EXPECT_EQ(pixels[128 * 8 + 8], dark);
    const auto cube = checkerboardCubeMap(3, {10, -1, 0, 7});
    ASSERT_TRUE(cube && *cube);
    EXPECT_EQ(pixelsOf(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 128 * 128)[8], (Pixel{10, 255, 0, 255}));
    EXPECT_FALSE(checkerboard(5, false, false, {}));
    EXPECT_FALSE(checkerboardCubeMap(0, {}));
}

} // namespace
