#include "Common/OutputFile.h"
#include "FailingCalls.h"
#include "kit/TemporaryFolder.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <new>
#include <sys/resource.h>
#include <unistd.h>

using namespace orvo;
namespace fs = std::filesystem;

namespace {} // namespace

TEST(OutputFile, WritesTheBytesItWasGiven) {
    const orvo::test::TemporaryFolder folder;
    const std::string path = (folder / "a.bin").string();
    OutputFile file(path, "wb");
    file.print("%s=%f\n", "x", 0.5);
    file.write(std::string_view("\0\r\n", 3));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(orvo::test::content(path), std::string("x=0.500000\n\0\r\n", 14));
}

// Catches a truncated file that is called complete: a disk that fills up shows late, when buffers are flushed.
TEST(OutputFile, AFullDiskIsAnError) {
    for (const std::size_t size : {1u, 1u << 20}) {
        OutputFile file("/dev/full", "wb");
        ASSERT_TRUE(file.isOpen());
        file.write(std::string(size, 'x'));
        EXPECT_FALSE(file.close()) << size;
    }
}

TEST(OutputFile, ASizeLimitIsAnErrorEvenWhenLaterWritesFit) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = before;
    limited.rlim_cur = 8192;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const orvo::test::TemporaryFolder folder;
    OutputFile file((folder / "limited.bin").string(), "wb");
    file.write(std::string(100000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    file.write("tail");
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, AFileThatDidNotOpenFailsToClose) {
    const orvo::test::TemporaryFolder folder;
    OutputFile file((folder / "no such folder/x").string(), "wt");
    EXPECT_FALSE(file.isOpen());
    file.print("lost");
    EXPECT_FALSE(file.close());
}

// Faults: an earlier file lost to a new one that failed at any of its calls, was given up, or is no place for a file;
// its link or permissions lost; a temporary left; success pretended.
TEST(OutputFile, ReplacesAFileOnlyByAWholeOne) {
    // In memory where there is such a place: hundreds of rounds would else wait for the disk.
    const fs::path memory = "/dev/shm";
    const orvo::test::TemporaryFolder folder(access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path());
    const fs::path file = folder / "a.xml", link = folder / "link.xml";
    fs::create_symlink("a.xml", link);
    const auto replaced = [&](const fs::path& path) {
        OutputFile out(path.string(), "wt", OutputFile::Earlier::Replaced);
        out.print("%s", std::string(10000, 'n'));
        return out.close();
    };
    const auto expect = [&](const std::string& text, const std::string& when) {
        const std::string found = orvo::test::content(file);
        EXPECT_TRUE(found == text) << when << ": " << found.substr(0, 20);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 2) << when;
    };
    EXPECT_TRUE(replaced(link));
    expect(std::string(10000, 'n'), "a new file");
    EXPECT_TRUE(fs::is_symlink(link));
    fs::permissions(file, fs::perms(0640));
    for (const int error : {EIO, ENOSPC, ENOMEM, EMFILE})
        for (int n = 1, calls = 0; calls >= n - 1; ++n) {
            std::ofstream(file, std::ios::binary) << "earlier";
            bool done = false;
            {
                const orvo::test::PlannedCalls planned({.number = n, .error = error});
                try {
                    done = replaced(link);
                } catch (const std::bad_alloc&) {}
                calls = planned.count();
            }
            const std::string when = "error " + std::to_string(error) + " at call " + std::to_string(n);
            // What fails when the new file is in place can only be told.
            expect(done || fs::file_size(file) > 7 ? std::string(10000, 'n') : "earlier", when);
            EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640)) << when;
            EXPECT_TRUE(done || n <= calls) << when;
        }
    std::ofstream(file, std::ios::binary) << "earlier";
    OutputFile(file.string(), "wt", OutputFile::Earlier::Replaced).write("given up");
    expect("earlier", "given up");
    OutputFile device("/dev/full", "wt", OutputFile::Earlier::Replaced);
    device.write("x");
    EXPECT_FALSE(device.close());
    for (const fs::path& none : {folder.path(), folder / "none/a.xml"})
        EXPECT_FALSE(OutputFile(none.string(), "wt", OutputFile::Earlier::Replaced).isOpen()) << none;
}
