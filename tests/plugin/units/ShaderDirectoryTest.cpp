#include "Common/Paths.h"

#include "MessageLog.h"
#include "commands/Host.h"

#include <gmock/gmock.h>

using namespace orvo;

// Catches an error in the script editor where the studio's procedure is missing, and an overrun of the buffer.
TEST(Paths, ShaderDirectoryLiesUnderTheToolRoot) {
    const MessageLog log;
    EXPECT_STREQ(shaderDirectory(), "ArtTools/Maya/OrvoSkyTool/shaders/");
    auto& mel = host::Host::instance().interpreter();
    mel.execute("global string $root = \"T:/\"; global proc string OrvoGetPath_ToolsRoot() "
                "{ global string $root; return $root; }");
    const char* folder = shaderDirectory();
    EXPECT_STREQ(folder, "T:/ArtTools/Maya/OrvoSkyTool/shaders/");
    mel.setGlobalVariable("root", host::mel::Value(std::string(600, 'x')));
    EXPECT_EQ(shaderDirectory(), folder) << "one buffer serves all callers";
    EXPECT_EQ(std::string(folder), std::string(511, 'x'));
    EXPECT_THAT(log.all(), testing::IsEmpty());
}
