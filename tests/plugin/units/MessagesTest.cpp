#include "Common/Messages.h"

#include "MessageLog.h"

#include <gmock/gmock.h>
#include <stdexcept>

using namespace orvo;
using testing::ElementsAre;

// Catches an overrun of the message buffer, and a cut at the wrong place.
TEST(PluginMessages, LongTextsAreCut) {
    const MessageLog log;
    reportError("%s", std::string(20478, 'a') + "bc");
    reportError("%s", std::string(100000, 'a'));
    ASSERT_EQ(log.errors().size(), 2u);
    EXPECT_EQ(log.errors()[0], std::string(20478, 'a') + "b");
    EXPECT_EQ(log.errors()[1].size(), 20479u);
}

TEST(PluginMessages, LevelsGoToTheirKind) {
    const MessageLog log;
    reportInfo("%d%%", 1);
    reportWarning("two");
    reportError("three");
    reportNotice("four");
    EXPECT_THAT(log.all(), ElementsAre("Info: 1%", "Warning: two", "Error: three", "Info: four"));
}

// Catches a wrong order of the four lines, and build-machine paths in messages.
TEST(PluginMessages, FailuresNameTheirPlaceTwice) {
    const MessageLog log;
    const auto where = SourcePlace::current();
    EXPECT_FALSE(succeeded(MStatus::kNotFound, where));
    EXPECT_TRUE(succeeded(MStatus::kSuccess, where));
    const std::string place = "In units\\MessagesTest, line " + std::to_string(where.line);
    EXPECT_THAT(log.errors(), ElementsAre(place, testing::StartsWith("Maya Reports: "), place, ""));
}

TEST(PluginMessages, ExceptionsEndAtTheGuard) {
    const MessageLog log;
    const int answer = guarded("callback", 7, []() -> int { throw std::runtime_error("broke %s"); });
    EXPECT_EQ(answer, 7);
    EXPECT_THAT(log.errors(), ElementsAre("callback: broke %s"));
    guarded("callback", [] { throw 1; });
}
