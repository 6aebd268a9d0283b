#include "viewport/Picture.h"

#include "kit/TemporaryFolder.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using host::viewport::Picture;
using testing::HasSubstr;

class PictureTest : public testing::Test {
protected:
    std::size_t entries() const {
        return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator());
    }

    const orvo::test::TemporaryFolder folder;
    std::string error;
};

/// 3 x 2 pixels, no two alike, with alphas that would change the colours if they were multiplied in.
Picture sample() {
    Picture picture(3, 2, 4);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) picture.pixels[i] = static_cast<std::uint8_t>(250 - 9 * i);
    return picture;
}

std::vector<unsigned char> bytesOf(const fs::path& path) {
    const std::string bytes = orvo::test::content(path);
    return {bytes.begin(), bytes.end()};
}

// Fault: rows upside down, channels swapped, or colours multiplied by alpha on the way out and back.
TEST_F(PictureTest, LosslessFormatsKeepEveryByte) {
    for (const char* name : {"a.png", "b.tif", "c.tga", "d \xC3\xA9.PNG"}) {
        const auto path = (folder / name).string();
        ASSERT_TRUE(sample().write(path, &error)) << error;
        const auto back = Picture::read(path, &error);
        ASSERT_TRUE(back) << error;
        EXPECT_EQ(back->channels, 4) << name;
        EXPECT_EQ(back->width, 3) << name;
        EXPECT_EQ(back->pixels, sample().pixels) << name;
    }
    EXPECT_EQ(entries(), 4u) << "a temporary file was left";
}

// Fault: a first row that is not the top one. A BMP of 24 bits has its bottom row first, as blue, green, red, after
// 54 bytes of header (the published layout); rows are padded to 4 bytes.
TEST_F(PictureTest, TopRowComesFirst) {
    Picture picture(1, 2, 3);
    picture.pixels = {1, 2, 3, 40, 50, 60};
    const auto path = (folder / "rows.bmp").string();
    ASSERT_TRUE(picture.write(path, &error)) << error;
    const auto file = bytesOf(path);
    ASSERT_EQ(file.size(), 62u);
    EXPECT_THAT(std::vector<int>(file.begin() + 54, file.end()), testing::ElementsAre(60, 50, 40, 0, 3, 2, 1, 0));
}

// Fault: a format without alpha that is refused, shifts the channels, or keeps a fourth one.
TEST_F(PictureTest, FormatsWithoutAlphaDropIt) {
    const auto path = (folder / "a.ppm").string();
    ASSERT_TRUE(sample().write(path, &error)) << error;
    const auto back = Picture::read(path, &error);
    ASSERT_TRUE(back) << error;
    EXPECT_EQ(back->channels, 3);
    EXPECT_THAT(std::vector<int>(back->at(1, 0), back->at(1, 0) + 3), testing::ElementsAre(214, 205, 196));
    EXPECT_TRUE(sample().write((folder / "a.jpg").string(), &error)) << error;
    EXPECT_TRUE(sample().write((folder / "a.exr").string(), &error)) << error;
}

// Faults: values that a reader takes for linear light, a picture that does not say where it comes from, bytes that
// differ with the time of day, notes that make a file unreadable.
TEST_F(PictureTest, FilesOfFloatsSayWhatTheyHold) {
    Picture picture(2, 1, 3);
    picture.pixels = {255, 0, 128, 64, 0, 255};
    picture.origin = {.software = "orvosky 9.9", .scene = "dusk\n.ma"};
    for (const char* name : {"a.exr", "a.hdr"}) {
        const auto path = (folder / name).string();
        ASSERT_TRUE(picture.write(path, &error)) << error;
        const auto file = bytesOf(path);
        const std::string text(file.begin(), file.end());
        for (const char* told : {"sRGB", "display-referred", "not linear light", "orvosky 9.9", "dusk"})
            EXPECT_THAT(text, HasSubstr(told)) << name;
        EXPECT_THAT(text, testing::Not(testing::ContainsRegex("[0-9]{4}:[0-9]{2}:[0-9]{2}"))) << name;
        const auto back = Picture::read(path, &error);
        ASSERT_TRUE(back) << error;
        for (std::size_t i = 0; i < picture.pixels.size(); ++i)
            EXPECT_NEAR(back->pixels[i], picture.pixels[i], 1) << name;
    }
}

// Fault: grey images refused, or spread wrongly over the channels. A binary PGM of two pixels.
TEST_F(PictureTest, GreyImagesBecomeGreyPictures) {
    const auto path = (folder / "grey.pgm").string();
    std::ofstream(path, std::ios::binary) << "P5\n2 1\n255\n" << '\x10' << '\x80';
    const auto picture = Picture::read(path, &error);
    ASSERT_TRUE(picture) << error;
    EXPECT_THAT(picture->pixels, testing::ElementsAre(0x10, 0x10, 0x10, 0x80, 0x80, 0x80));
}

/// The bytes of a grey TIFF of 64 x 64 pixels, each row a strip of its own at the end of the file, that is cut off
/// there.
std::string cutTiff() {
    std::string bytes("II*\0\x08\0\0\0", 8);
    const auto put = [&](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
    };
    // Tag, number of values, and the value or where the values are.
    const std::uint32_t entries[][3]{{256, 1, 64},   {257, 1, 64}, {258, 1, 8}, {259, 1, 1},   {262, 1, 1},
                                     {273, 64, 122}, {277, 1, 1},  {278, 1, 1}, {279, 64, 378}};
    put(std::size(entries), 2);
    for (const auto& [tag, count, value] : entries) {
        put(tag, 2);
        put(4, 2); // numbers of 32 bits
        put(count, 4);
        put(value, 4);
    }
    put(0, 4);
    for (std::uint32_t row = 0; row < 64; ++row) put(634 + 64 * row, 4);
    for (int row = 0; row < 64; ++row) put(64, 4);
    return bytes + std::string(10 * 64, '\x40');
}

// Fault: a failure that goes unreported, or that costs the artist the picture that was there before.
TEST_F(PictureTest, FailuresAreReportedAndLoseNothing) {
    EXPECT_FALSE(sample().write((folder / "a.nosuch").string(), &error));
    EXPECT_THAT(error, HasSubstr("unknown format \".nosuch\""));
    EXPECT_FALSE(sample().write((folder / "plain").string(), &error));
    EXPECT_THAT(error, HasSubstr("no extension"));
    EXPECT_FALSE(sample().write((folder / "missing" / "a.png").string(), &error));
    EXPECT_THAT(error, HasSubstr("there is no folder"));
    EXPECT_FALSE(Picture().write((folder / "a.png").string(), &error));
    EXPECT_THAT(error, HasSubstr("no pixels"));
    fs::create_directory(folder / "dir.png");
    EXPECT_FALSE(sample().write((folder / "dir.png").string(), &error));
    EXPECT_EQ(entries(), 1u);

    EXPECT_FALSE(Picture::read((folder / "none.png").string(), &error));
    EXPECT_THAT(error, HasSubstr("no such file"));
    for (const char* name : {"cut.bmp", "cut.png"}) {
        const auto cut = folder / name;
        ASSERT_TRUE(sample().write(cut.string(), &error)) << error;
        fs::resize_file(cut, fs::file_size(cut) - (fs::file_size(cut) / 4));
        EXPECT_FALSE(Picture::read(cut.string(), &error)) << name;
        EXPECT_THAT(error, HasSubstr(name));
    }
    // Its directory says that more pixels follow than there are.
    const auto cut = folder / "cut.tif";
    std::ofstream(cut, std::ios::binary) << cutTiff();
    EXPECT_FALSE(Picture::read(cut.string(), &error));
    EXPECT_THAT(error, HasSubstr("cut.tif"));
    EXPECT_EQ(error.find('\n'), error.npos) << error;
}

// Fault: a full disk taken for success, ending the process (some image libraries do), or ruining the earlier file. A
// limit on the size of files stands for the full disk.
TEST_F(PictureTest, AFullDiskLeavesTheEarlierPicture) {
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    for (const char* name : {"a.png", "a.jpg", "a.exr"}) {
        const auto path = (folder / name).string();
        ASSERT_TRUE(sample().write(path, &error)) << error;
        const auto before = bytesOf(path);
        const rlimit full{20, usual.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &full);
        const bool written = sample().write(path, &error);
        setrlimit(RLIMIT_FSIZE, &usual);
        std::signal(SIGXFSZ, handler);
        EXPECT_FALSE(written) << name;
        EXPECT_THAT(error, HasSubstr("File too large"));
        EXPECT_EQ(bytesOf(path), before) << name;
    }
    EXPECT_EQ(entries(), 3u) << "a temporary file was left";
}

// Fault: a temporary name that can be guessed: what is written goes where a link leads that waits under it.
TEST_F(PictureTest, NoLinkCanBePlanted) {
    const auto path = (folder / "a.png").string(), other = (folder / "other").string();
    std::ofstream(other) << "somebody else's";
    for (int i = 0; i < 100; ++i)
        fs::create_symlink("other", path + ".part-" + std::to_string(::getpid()) + "-" + std::to_string(i));
    ASSERT_TRUE(sample().write(path, &error)) << error;
    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_EQ(fs::file_size(other), 15u);
}

} // namespace
