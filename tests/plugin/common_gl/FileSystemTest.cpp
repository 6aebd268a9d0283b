#include "Common/FileSystem.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#ifdef _WIN32
#include "Common/WindowsPath.h"

#include <windows.h>
#endif

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

class FileSystemTest : public testing::Test {
protected:
    FileSystemTest() { put("Build/Textures/Sky.dds", "sky"); }

    void put(const std::string& name, const std::string& text) const { root.write(name, text); }
    std::string at(const std::string& name) const { return (root / name).string(); }
    static std::string contentOf(const std::string& path) {
        std::FILE* file = orvo::openFile(path, "rb");
        if (!file) return "(none)";
        char text[64] = "";
        const auto length = std::fread(text, 1, sizeof text, file);
        std::fclose(file);
        return {text, length};
    }

    /// Paths of any length, which the library's own functions take elsewhere alone.
    static void makeFolder(const std::string& path) {
#ifdef _WIN32
        ASSERT_TRUE(CreateDirectoryW(orvo::windowsPath(path).c_str(), nullptr)) << path;
#else
        ASSERT_TRUE(fs::create_directory(path)) << path;
#endif
    }

    const orvo::test::TemporaryFolder root;
};

// Fault: a stored path, lower case with backslashes, that does not open; absolute, relative, through "..".
TEST_F(FileSystemTest, StoredPathsOpen) {
    std::string stored = at("build/textures/sky.dds");
    for (char& c : stored) c = c == '/' ? '\\' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(contentOf(stored), "sky");
    EXPECT_EQ(contentOf(at("BUILD\\\\Textures/../textures\\.\\SKY.DDS")), "sky");
    EXPECT_TRUE(orvo::folderExists(at("build\\textures\\")));
    const fs::path before = fs::current_path();
    fs::current_path(root / "Build");
    EXPECT_EQ(contentOf("..\\build\\textures\\sky.dds"), "sky");
    EXPECT_EQ(contentOf("textures/sky.dds"), "sky");
    fs::current_path(before);
}

// Fault: letters lost outside of ASCII, or a path refused that is longer than 260 characters.
TEST_F(FileSystemTest, NamesOfOtherScriptsAndLongPathsOpen) {
    const std::string name = "Wolke \xC3\xBC \xE9\x9B\xB2 \xF0\x9F\x8C\xA7.xml";
    std::string folder = at("Build");
    for (int i = 0; i < 8; ++i) {
        folder += "/" + std::string(50, static_cast<char>('a' + i));
        makeFolder(folder);
    }
    ASSERT_GT(folder.size(), 400u);
    std::FILE* file = orvo::openFile(folder + "/" + name, "wb");
    ASSERT_NE(file, nullptr);
    std::fputs("rain", file);
    std::fclose(file);
    EXPECT_EQ(contentOf(folder + "\\" + name), "rain");
    EXPECT_TRUE(orvo::fileExists(folder + "/../" + std::string(50, 'h') + "/" + name));
    EXPECT_TRUE(orvo::folderExists(folder));
    const auto entries = orvo::listFolder(folder);
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 1u);
    EXPECT_EQ(entries->front().name, name);
}

#ifndef _WIN32 // which keeps one file of names that differ in case alone

// Fault: a like name taken although the exact one is there, or a choice that depends on the order of the disk. In byte
// order capital letters come first.
TEST_F(FileSystemTest, ExactNameWinsThenByteOrder) {
    for (const char* name : {"note.txt", "NOTE.txt", "Note.txt"}) put(name, name);
    EXPECT_EQ(contentOf(at("note.txt")), "note.txt");
    EXPECT_EQ(contentOf(at("Note.txt")), "Note.txt");
    EXPECT_EQ(contentOf(at("nOTE.TXT")), "NOTE.txt");
    put("Wolke \xC3\xBC.xml", "utf8");
    EXPECT_EQ(contentOf(at("wolke \xC3\xBC.XML")), "utf8");
    fs::create_symlink("nowhere", root / "LINK"); // leads nowhere and must not hide the file
    put("Link", "file");
    EXPECT_EQ(contentOf(at("link")), "file");
}

#endif

// Fault: something that is no readable file counted as one, an exception, or an open that waits for ever.
TEST_F(FileSystemTest, WhatIsNotAFileDoesNotOpen) {
#ifdef _WIN32
    for (const char* device : {"NUL", "con", "COM1", "nul.txt", "\\\\.\\pipe\\orvo"}) {
        EXPECT_EQ(orvo::openFile(device, "rb"), nullptr) << device;
        EXPECT_FALSE(orvo::fileExists(device)) << device;
    }
#else
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
#endif
    for (const std::string& path :
         {at("build"), at("pipe"), at("none/sky.dds"), at("build/textures/sky.dds/x"), at("build/textures/sky.dds/"),
          at("build/textures/sk"), std::string(), std::string("\0x", 2), at(std::string(5000, 'a'))}) {
        errno = 0;
        EXPECT_EQ(orvo::openFile(path, "rb"), nullptr) << path;
        EXPECT_NE(errno, 0) << path;
    }
    EXPECT_FALSE(orvo::fileExists(at("build")));
    EXPECT_TRUE(orvo::fileExists(at("build/TEXTURES/sky.dds")));
    EXPECT_FALSE(orvo::folderExists(at("build/TEXTURES/sky.dds")));
    EXPECT_FALSE(orvo::listFolder(at("none")));
    EXPECT_FALSE(orvo::listFolder(at("build/textures/sky.dds")));
}

#ifndef _WIN32

// Fault: a new file put beside its folder, or written over one of a like name.
TEST_F(FileSystemTest, NewFilesKeepTheirNameInTheFoundFolder) {
    for (const char* mode : {"wb", "a"}) {
        std::FILE* file = orvo::openFile(at("build\\textures\\SKY.dds"), mode);
        ASSERT_NE(file, nullptr);
        std::fputs("new", file);
        std::fclose(file);
    }
    EXPECT_EQ(contentOf(at("Build/Textures/SKY.dds")), "newnew");
    EXPECT_EQ(contentOf(at("Build/Textures/Sky.dds")), "sky");
    EXPECT_EQ(orvo::openFile(at("none\\a.txt"), "wb"), nullptr);
}

// Fault: the order of the disk, capitals before small letters, or folders taken for files.
TEST_F(FileSystemTest, ListsInAlphabeticalOrder) {
    for (const char* name : {"b.xml", "A.xml", "c.XML", "B.xml", "_.xml"}) put(name, "");
    const auto entries = orvo::listFolder(at("."));
    ASSERT_TRUE(entries);
    std::vector<std::string> names;
    for (const auto& entry : *entries) names.push_back(entry.isFolder ? entry.name + "/" : entry.name);
    EXPECT_THAT(names, ElementsAre("_.xml", "A.xml", "B.xml", "b.xml", "Build/", "c.XML"));
    EXPECT_THAT(orvo::existingPath(at("BUILD")), Optional(Eq(at("Build"))));
}

#endif

} // namespace
