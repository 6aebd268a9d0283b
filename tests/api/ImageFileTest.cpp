#include <maya/MImage.h>

#include "base/Messages.h"
#include "kit/MessageSink.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Bytes = std::vector<unsigned char>;

Bytes bytes(const std::string& text) { return {text.begin(), text.end()}; }

Bytes joined(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct ImageFile : testing::Test {
    const orvo::test::TemporaryFolder folder;
    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::string write(const std::string& name, const Bytes& content) const {
        return folder.write(name, {reinterpret_cast<const char*>(content.data()), content.size()}).string();
    }
    static Bytes pixels(const MImage& image) {
        unsigned w = 0, h = 0;
        EXPECT_TRUE(image.getSize(w, h));
        if (!image.pixels()) return {};
        return Bytes(image.pixels(), image.pixels() + std::size_t{w} * h * image.depth());
    }
};

// 2 x 2: red and green above blue and white.
const Bytes ppm = joined(bytes("P6\n2 2\n255\n"), {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255});
const Bytes bottomFirst{0, 0, 255, 255, 255, 255, 255, 255, 255, 0, 0, 255, 0, 255, 0, 255};

// The same in TGA: blue, green, red, alpha; the rows from the bottom, or (bit 5 of the last header byte) from the top.
Bytes tga(bool topFirst) {
    const Bytes header{0, 0, 2, 0, 0, 0, 0, 0,  0,
                       0, 0, 0, 2, 0, 2, 0, 32, static_cast<unsigned char>(topFirst ? 0x28 : 8)};
    const Bytes top{0, 0, 255, 255, 0, 255, 0, 255}, bottom{255, 0, 0, 255, 255, 255, 255, 255};
    return joined(header, topFirst ? joined(top, bottom) : joined(bottom, top));
}

// Fault: rows upside down, channels swapped, alpha missing.
TEST_F(ImageFile, RowsComeFromTheBottom) {
    for (const auto& [name, content] : {std::pair{"a.ppm", ppm}, {"up.tga", tga(false)}, {"down.tga", tga(true)}}) {
        MImage image;
        ASSERT_TRUE(image.readFromFile(write(name, content).c_str())) << name;
        EXPECT_EQ(image.pixelType(), MImage::kByte);
        EXPECT_EQ(image.depth(), 4u);
        EXPECT_THAT(pixels(image), ElementsAreArray(bottomFirst)) << name;
        EXPECT_EQ(image.floatPixels(), nullptr);
    }
}

// Fault: grey that stays red, or alpha taken for a colour.
TEST_F(ImageFile, FewerChannelsBecomeFour) {
    MImage image;
    ASSERT_TRUE(image.readFromFile(write("grey.pgm", joined(bytes("P5\n2 1\n255\n"), {7, 200})).c_str()));
    EXPECT_THAT(pixels(image), ElementsAre(7, 7, 7, 255, 200, 200, 200, 255));
    ASSERT_TRUE(image.create(1, 1, 2));
    image.pixels()[0] = 90;
    image.pixels()[1] = 40;
    ASSERT_TRUE(image.writeToFile(path("two.png").c_str(), "png"));
    ASSERT_TRUE(image.readFromFile(path("two.png").c_str()));
    EXPECT_THAT(pixels(image), ElementsAre(90, 90, 90, 40));
    ASSERT_TRUE(image.readFromFile(path("two.png").c_str(), MImage::kFloat));
    EXPECT_NEAR(image.floatPixels()[1], 90 / 255.0, 1e-6);
    EXPECT_NEAR(image.floatPixels()[3], 40 / 255.0, 1e-6);
    EXPECT_EQ(image.pixels(), nullptr);
}

// Fault: a format that turns the picture over, multiplies colours by alpha, or is not written as asked for.
TEST_F(ImageFile, FormatsKeepThePixels) {
    Bytes content(3 * 5 * 4);
    for (std::size_t i = 0; i < content.size(); ++i) content[i] = static_cast<unsigned char>(i * 37 % 256);
    const std::pair<const char*, const char*> starts[]{
        {"png", "\x89PNG"}, {"tif", "II*"}, {"tga", ""}, {"iff", "FOR4"}, {"TIFF", "II*"}};
    for (const auto& [format, start] : starts) {
        MImage image, back;
        image.setPixels(content.data(), 3, 5);
        const std::string name = path(std::string("picture.") + format);
        ASSERT_TRUE(image.writeToFile(name.c_str(), format)) << format;
        std::ifstream in(name, std::ios::binary);
        std::string head(std::char_traits<char>::length(start), '\0');
        in.read(head.data(), static_cast<std::streamsize>(head.size()));
        EXPECT_EQ(head, start);
        if (format == std::string("iff")) continue; // only written
        ASSERT_TRUE(back.readFromFile(name.c_str())) << format;
        EXPECT_THAT(pixels(back), ElementsAreArray(content)) << format;
    }
    MImage image, back;
    image.setPixels(content.data(), 3, 5);
    image.setRGBA(false);
    EXPECT_FALSE(image.isRGBA());
    ASSERT_TRUE(image.writeToFile(path("by-extension.bmp").c_str(), ""));
    ASSERT_TRUE(back.readFromFile(path("by-extension.bmp").c_str()));
    EXPECT_EQ(back.pixels()[0], content[2]) << "blue came first";
    EXPECT_TRUE(back.isRGBA());
    ASSERT_TRUE(image.writeToFile(path("no-alpha.ppm").c_str(), "ppm"));
    ASSERT_TRUE(back.readFromFile(path("no-alpha.ppm").c_str()));
    EXPECT_EQ(back.pixels()[3], 255);
}

// Fault: values beyond 1 cut off on the way through a float format.
TEST_F(ImageFile, FloatsKeepTheirRange) {
    std::array<float, 8> values{0.25f, 4.0f, 100.0f, 1.0f, -1.0f, 0.0f, 0.5f, 0.5f};
    for (const auto type : {MImage::kFloat, MImage::kUnknown}) {
        MImage image, back;
        image.setFloatPixels(values.data(), 1, 2);
        ASSERT_TRUE(image.writeToFile(path("a.exr").c_str(), "exr"));
        ASSERT_TRUE(back.readFromFile(path("a.exr").c_str(), type));
        ASSERT_EQ(back.pixelType(), MImage::kFloat);
        EXPECT_THAT(std::vector(back.floatPixels(), back.floatPixels() + 8), ElementsAreArray(values));
    }
    MImage back;
    ASSERT_TRUE(back.readFromFile(path("a.exr").c_str()));
    EXPECT_EQ(back.pixels()[1], 255);
    EXPECT_EQ(back.pixels()[0], 64);
}

// Fault: a bad file crashes, allocates what it claims, or takes the picture that was there.
TEST_F(ImageFile, BadFilesLeaveThePictureAlone) {
    MImage png;
    std::vector<unsigned char> noise(64 * 64 * 4);
    unsigned state = 1;
    for (auto& b : noise) b = static_cast<unsigned char>((state = state * 1664525u + 1013904223u) >> 24);
    png.setPixels(noise.data(), 64, 64);
    std::vector<std::string> files{path("missing.png"), folder.string(), write("empty.png", {}),
                                   write("text.png", bytes("hello"))};
    for (const char* format : {"png", "tif", "tga", "exr", "bmp", "ppm"}) {
        const std::string whole = path(std::string("whole.") + format);
        ASSERT_TRUE(png.writeToFile(whole.c_str(), format));
        fs::resize_file(whole, fs::file_size(whole) / 2);
        files.push_back(whole);
    }
    files.push_back(write("huge.ppm", bytes("P6\n32000 8000\n255\nabc")));
    files.push_back(write("wide.ppm", bytes("P6\n40000 1\n255\nabc")));
    files.push_back(write("negative.ppm", bytes("P6\n-3 2\n255\nabcabc")));
    const std::string whole = path("before.bmp"); // its pixels stand before the file
    ASSERT_TRUE(png.writeToFile(whole.c_str(), "bmp"));
    std::fstream(whole, std::ios::in | std::ios::out | std::ios::binary).seekp(10).write("\xf0\xff\xff\xff", 4);
    files.push_back(whole);
    Bytes lie = tga(false);
    lie[12] = lie[13] = lie[14] = lie[15] = 0x7f;
    files.push_back(write("huge.tga", lie));
    for (const auto& file : files) {
        MImage image;
        Bytes four{1, 2, 3, 4};
        image.setPixels(four.data(), 1, 1);
        EXPECT_EQ(image.readFromFile(file.c_str()), MStatus::kFailure) << file;
        EXPECT_THAT(pixels(image), ElementsAreArray(four)) << file;
    }
}

// Fault: a reader for something else than still images gets hold of a file, or one that is too large is gone through;
// the user is not told.
TEST_F(ImageFile, RefusalsNameTheReason) {
    Bytes dds(128 + 2);
    std::ranges::copy(std::string("DDS \x7c"), dds.begin());
    dds[8] = 7, dds[9] = 0x10, dds[12] = dds[16] = 1, dds[76] = 32, dds[80] = 0x40, dds[88] = 16;
    const std::string sparse = write("sparse.png", bytes("\x89PNG"));
    fs::resize_file(sparse, std::uintmax_t{2} << 30);
    Bytes dxt2 = joined(dds, Bytes(14)); // a block that is transparent
    dxt2[12] = dxt2[16] = 4, dxt2[80] = 4;
    std::ranges::copy(std::string("DXT2"), dxt2.begin() + 84);
    // An attribute of 2 GiB, for which memory would be set aside.
    const Bytes exr =
        joined(bytes(std::string("v/1\1\2\0\0\0", 8)), bytes(std::string("owner\0string\0\0\0\0\x7f", 17)));
    std::string told;
    const orvo::test::MessageSink sink([&](host::Severity, std::string_view t) { told = t; });
    for (const auto& [file, reason] : {std::pair{write("list.mp4", ppm), "its name does not end as"},
                                       {write("x.png?a=b", ppm), "its name does not end as"},
                                       {write("plain", ppm), "its name does not end as"},
                                       {write("actually.png", ppm), "PNG"},
                                       {sparse, "at most 536870912 are read"},
                                       {write("large.pgm", bytes("P5\n16384 8193\n255\n")), "134217728"},
                                       {write("lie.exr", exr), "its header is damaged"},
                                       {write("masks.dds", dds), "layout"},
                                       {write("dxt2.dds", dxt2), "layout"}}) {
        MImage image;
        told.clear();
        EXPECT_EQ(image.readFromFile(file.c_str()), MStatus::kFailure) << file;
        EXPECT_THAT(told, testing::AllOf(testing::HasSubstr(file), testing::HasSubstr(reason)));
    }
}

// Fault: an impossible request is taken, or a refused write damages the file that is there.
TEST_F(ImageFile, WrongArgumentsFail) {
    MImage image;
    unsigned w = 1, h = 1;
    EXPECT_FALSE(image.getSize(w, h));
    EXPECT_EQ(image.pixels(), nullptr);
    EXPECT_FALSE(image.writeToFile(path("none.png").c_str(), "png"));
    EXPECT_FALSE(image.resize(2, 2));
    for (const auto& [x, y, c, t] : {std::tuple{0u, 1u, 4u, MImage::kByte},
                                     {1u, 0u, 4u, MImage::kByte},
                                     {1u, 1u, 0u, MImage::kByte},
                                     {1u, 1u, 5u, MImage::kByte},
                                     {1u, 1u, 4u, MImage::kUnknown},
                                     {32769u, 1u, 4u, MImage::kByte},
                                     {4294967295u, 4294967295u, 4u, MImage::kFloat},
                                     {32768u, 32768u, 4u, MImage::kByte}})
        EXPECT_EQ(image.create(x, y, c, t), MStatus::kInvalidParameter);
    ASSERT_TRUE(image.create(1, 1));
    EXPECT_THAT(pixels(image), ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(image.resize(-1, 4), MStatus::kInvalidParameter);
    image.setPixels(nullptr, 4, 4);
    EXPECT_EQ(pixels(image).size(), 4u);
    const std::string kept = write("kept.png", ppm);
    EXPECT_EQ(image.writeToFile(kept.c_str(), "nonsense"), MStatus::kInvalidParameter);
    EXPECT_EQ(fs::file_size(kept), ppm.size());
    EXPECT_EQ(image.writeToFile(path("no/such/folder.png").c_str(), "png"), MStatus::kFailure);
    EXPECT_EQ(image.writeToFile(folder.c_str(), "png"), MStatus::kFailure);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "something was left behind";
    EXPECT_TRUE(image.release());
    EXPECT_EQ(image.pixelType(), MImage::kUnknown);
}

// Fault: proportions lost, or the picture fitted into a corner.
TEST_F(ImageFile, ResizeFitsOrFills) {
    Bytes content;
    for (int i = 0; i < 4 * 2; ++i) content = joined(content, {10, 20, 30, 255});
    MImage image;
    image.setPixels(content.data(), 4, 2);
    ASSERT_TRUE(image.resize(2, 3));
    const Bytes fitted = pixels(image); // one row of two pixels between two empty ones
    EXPECT_THAT(fitted, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 10, 20, 30, 255, 10, 20, 30, 255, 0, 0, 0, 0, 0, 0, 0, 0));
    image.setPixels(content.data(), 4, 2);
    ASSERT_TRUE(image.resize(3, 5, false));
    const Bytes filled = pixels(image);
    ASSERT_EQ(filled.size(), 60u);
    for (std::size_t i = 0; i < filled.size(); i += 4) EXPECT_EQ(filled[i + 1], 20);
    std::array<float, 2> bright{0, 1000};
    image.setFloatPixels(bright.data(), 2, 1, 1);
    ASSERT_TRUE(image.resize(8, 1, false));
    for (int i = 0; i < 8; ++i) EXPECT_GE(image.floatPixels()[i], 0) << "rings around the bright pixel";
}

} // namespace
