#include "Common/OutputFile.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>

using namespace orvo;

namespace {

std::string scratch(const char* name) { return testing::TempDir() + "/" + name; }

} // namespace

TEST(OutputFile, WritesTheBytesItWasGiven) {
    const std::string path = scratch("OutputFile.bin");
    OutputFile file(path, "wb");
    file.print("%s=%f\n", "x", 0.5);
    file.write(std::string_view("\0\r\n", 3));
    EXPECT_TRUE(file.close());
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    EXPECT_EQ(text.str(), std::string("x=0.500000\n\0\r\n", 14));
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
    OutputFile file(scratch("OutputFileLimited.bin"), "wb");
    file.write(std::string(100000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    file.write("tail");
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, AFileThatDidNotOpenFailsToClose) {
    OutputFile file(scratch("no such folder/x"), "wt");
    EXPECT_FALSE(file.isOpen());
    file.print("lost");
    EXPECT_FALSE(file.close());
}

TEST(OutputFile, XmlEscapesWhatMarkupWouldTake) {
    EXPECT_EQ(xmlEscaped("a<b> & \"c\" 'd' \xc3\xa4"), "a&lt;b&gt; &amp; &quot;c&quot; 'd' \xc3\xa4");
    EXPECT_EQ(xmlEscaped("&amp;"), "&amp;amp;");
}
