#include "Common/FileBytes.h"
#include "Common/FileSystem.h"
#include "Common/OutputFile.h"
#include "Common/Paths.h"
#include "Common/WindowsPath.h"
#include "Common/XmlFile.h"
#include "HostStandIn.h"
#include "kit/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <windows.h>

using namespace orvo;

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::Field;

/// A folder of the drive C:, gone after the test; the current one meanwhile.
class WindowsFiles : public testing::Test {
protected:
    WindowsFiles() {
        fs::create_directories(root);
        fs::current_path(root);
    }
    ~WindowsFiles() override { fs::current_path(before); }
    static void put(const std::string& path, std::string_view text) {
        OutputFile file(path, "wb");
        file.write(text);
        ASSERT_TRUE(file.close()) << path;
    }
    static std::string textOf(const std::string& path) {
        const auto bytes = readFileBytes(path);
        return bytes ? std::string(bytes->begin(), bytes->end()) : "(none)";
    }

    const fs::path before = fs::current_path();
    const orvo::test::TemporaryFolder around;
    const fs::path root = around / "Orvo-Windows";
    const std::string folder = root.string();
};

/// A file that another program has open, and shares with nobody.
class Locked {
public:
    explicit Locked(const std::string& path)
        : handle_(CreateFileW(windowsPath(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
    }
    ~Locked() { CloseHandle(handle_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    HANDLE handle_;
};

} // namespace

// Catches a drive, a folder or a case taken for another: all of these name one file.
TEST_F(WindowsFiles, EveryFormOfAPathOpens) {
    put("Sky.dds", "sky");
    ASSERT_EQ(folder.substr(1, 2), ":\\");
    const std::string drive = folder.substr(0, 2), below = folder.substr(2);
    for (const std::string& path :
         {folder + "\\sky.dds", toLowerCase(folder) + "/SKY.DDS", drive + "sky.dds", below + "/sky.dds",
          folder + "\\\\x\\..\\.\\sky.dds", "\\\\?\\" + folder + "\\Sky.dds", std::string("sky.dds")}) {
        EXPECT_EQ(textOf(path), "sky") << path;
        EXPECT_EQ(existingPath(path), path);
    }
    for (const std::string& path : {folder + "\\sky.dds\\", folder + "\\sky?.dds", folder + "\\*.dds",
                                    folder + "\\sky.dds:stream", std::string("?:\\sky.dds")}) {
        errno = 0;
        EXPECT_EQ(openFile(path, "rb"), nullptr) << path;
        EXPECT_NE(errno, 0) << path;
    }
    EXPECT_EQ(pathWithoutLinks(toLowerCase(folder) + "\\x\\..\\sky.dds"),
              pathWithoutLinks("\\\\?\\" + folder + "\\Sky.dds"));
    EXPECT_EQ(pathWithoutLinks(drive + "\\no such\\..\\Folder\\x"), drive + "/Folder/x");
    EXPECT_EQ(pathWithoutLinks("sky.dds"), std::nullopt);
    EXPECT_TRUE(folderExists(drive + "\\"));
    EXPECT_TRUE(listFolder(drive + "/"));
}

// Catches a share's two separators shrunk to one, which names a folder of the current drive.
TEST_F(WindowsFiles, FilesOfAShareOpenAndItsPathsKeepTheirForm) {
    std::string path = "Build//Sky.dds";
    EXPECT_TRUE(joinToRoot("//Server/Game/", path));
    EXPECT_EQ(path, "\\\\Server\\Game\\Build\\Sky.dds");
    EXPECT_TRUE(makeRelativeTo("//Server/Game/", path));
    EXPECT_EQ(path, "build\\sky.dds");
    path = "\\\\Server\\Other\\Sky.dds";
    EXPECT_FALSE(makeRelativeTo("//Server/Game/", path));
    EXPECT_EQ(collapsePath("//server/art//sky.dds"), "//server/art/sky.dds");
    EXPECT_EQ(collapsePath("///server//sky.dds"), "/server/sky.dds");

    const char* share = std::getenv("ORVOSKY_TEST_SHARE");
    if (!share) GTEST_SKIP() << "ORVOSKY_TEST_SHARE names no share";
    const std::string game = std::string(share) + "/Game/", other = std::string(share) + "/Other/";
    workspaceAnswer() = game + "ArtSource/";
    fs::create_directories(game + "Build");
    fs::create_directories(other);
    put(game + "Build/Sky.xml", "<sky/>");
    put(other + "Sky.xml", "<other/>");
    EXPECT_EQ(textOf(absoluteCopy("build\\sky.xml")), "<sky/>");
    const auto entries = listFolder(absoluteCopy("build"));
    ASSERT_TRUE(entries);
    EXPECT_THAT(*entries, Contains(Field(&FolderEntry::name, "Sky.xml")));
    const std::string outside = toBackslashes(other) + "Sky.xml";
    EXPECT_EQ(absoluteCopy(outside), outside) << "not below the project";
    EXPECT_EQ(storedForm(outside), outside);
    EXPECT_EQ(storedForm(other + "../game/build/SKY.xml"), "build\\sky.xml") << "the project by another spelling";
    EXPECT_EQ(absoluteCopy("C:\\x.dds"), "C:\\x.dds");
}

// Catches text of an older scene, in the system's code page, that names no file.
TEST_F(WindowsFiles, BytesThatAreNotUtf8AreOfTheCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "the code page is " << GetACP();
    put("\xC3\xA4.xml", "a");
    EXPECT_EQ(textOf("\xE4.xml"), "a");
}

// Catches a file that is lost, or said to be written, while another program holds it.
TEST_F(WindowsFiles, ALockedFileIsNeitherReadNorReplaced) {
    put("sky.atmos", "old");
    {
        const Locked lock("sky.atmos");
        errno = 0;
        EXPECT_FALSE(readFileBytes("sky.atmos"));
        EXPECT_EQ(errno, EACCES);
        XmlFile xml;
        EXPECT_FALSE(xml.load("sky.atmos"));
        EXPECT_EQ(xml.error(), "sky.atmos: cannot be read: Permission denied");
        for (const auto earlier : {OutputFile::Earlier::Overwritten, OutputFile::Earlier::Replaced}) {
            OutputFile file("sky.atmos", "wt", earlier);
            EXPECT_FALSE(file.isOpen());
            EXPECT_FALSE(file.close());
        }
    }
    OutputFile late("sky.atmos", "wt", OutputFile::Earlier::Replaced);
    late.write("new");
    {
        const Locked lock("sky.atmos");
        EXPECT_FALSE(late.close()) << "locked while the new one was written";
    }
    EXPECT_EQ(textOf("sky.atmos"), "old");
    EXPECT_EQ(listFolder(".")->size(), 1u) << "what was written beside it stays";
}

// Catches a new file that never takes the place of the old one, or leaves something beside it.
TEST_F(WindowsFiles, AFileIsReplacedByAWholeOne) {
    const std::string name = "Wolke \xE9\x9B\xB2.xml";
    for (const std::string& path :
         {name, folder + "/" + name, "\\\\?\\" + folder + "\\" + name, folder.substr(0, 2) + name}) {
        OutputFile file(path, "wt", OutputFile::Earlier::Replaced);
        file.write(path + "\n");
        EXPECT_TRUE(file.close()) << path;
        EXPECT_EQ(textOf(name), path + "\r\n");
    }
    OutputFile(name, "wb", OutputFile::Earlier::Replaced).write("given up");
    EXPECT_EQ(listFolder(".")->size(), 1u);
    const auto before = fileState(name);
    put("other", "");
    EXPECT_EQ(fileState(name), before);
    EXPECT_EQ(openFile("other", "wbx"), nullptr) << "it is there";
    EXPECT_FALSE(OutputFile("none/a.xml", "wt", OutputFile::Earlier::Replaced).isOpen());
    EXPECT_FALSE(OutputFile(".", "wt", OutputFile::Earlier::Replaced).isOpen());
}

// Catches a limit of 260 characters on the way to a new file, or on the way back to it.
TEST_F(WindowsFiles, LongPathsAreReplacedListedAndResolved) {
    std::string deep = folder;
    for (int i = 0; i < 6; ++i) {
        deep += "\\" + std::string(50, 'D');
        ASSERT_TRUE(CreateDirectoryW(windowsPath(deep).c_str(), nullptr)) << deep;
    }
    const std::string stored = toLowerCase(deep) + "\\sky.atmos";
    for (const std::string& path : {deep + "/Sky.atmos", stored}) {
        OutputFile file(path, "wb", OutputFile::Earlier::Replaced);
        file.write(path);
        EXPECT_TRUE(file.close()) << path;
        EXPECT_EQ(textOf(deep + "\\SKY.ATMOS"), path);
    }
    EXPECT_EQ(listFolder(deep)->size(), 1u);
    EXPECT_EQ(fileState(stored)->size, stored.size());
    // Wine does not correct the case of parts that lie so deep.
    EXPECT_EQ(toLowerCase(pathWithoutLinks(stored).value()),
              toLowerCase(pathWithoutLinks(deep).value() + "/sky.atmos"));
}

// Catches a size of 32 bits: these files are too large, not 10 bytes long.
TEST_F(WindowsFiles, AFileOverFourGigabytesIsNotRead) {
    put("large.bin", "");
    for (const long long size : {0x8000000aLL, 0x10000000aLL}) {
        const HANDLE file = CreateFileW(L"large.bin", GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        LARGE_INTEGER end;
        end.QuadPart = size;
        DWORD returned = 0;
        DeviceIoControl(file, FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
        const bool grown = SetFilePointerEx(file, end, nullptr, FILE_BEGIN) && SetEndOfFile(file);
        CloseHandle(file);
        ASSERT_TRUE(grown);
        EXPECT_FALSE(readFileBytes("large.bin")) << size;
        EXPECT_EQ(fileState("large.bin")->size, static_cast<std::uintmax_t>(size));
    }
}

// Catches lines that end twice, or a text file that its own reader does not understand.
TEST_F(WindowsFiles, TextFilesHaveTheSystemsLineEnds) {
    OutputFile file("sky.atmos", "wt");
    file.write("<OrvoAtmosphere\n\ttype = \"x\"\n/>\n");
    EXPECT_TRUE(file.close());
    EXPECT_EQ(textOf("sky.atmos"), "<OrvoAtmosphere\r\n\ttype = \"x\"\r\n/>\r\n");
    XmlFile xml;
    EXPECT_TRUE(xml.load("sky.atmos")) << xml.error();
}
