// The subcommand: what it says where no window can be.
#include "WindowFixture.h"

namespace orvosky::window {
namespace {

using testing::HasSubstr;

// Faults: an abort by the toolkit, several lines, a window that hangs without OpenGL, another exit status.
TEST_F(Window, SaysInALineWhyItCannotOpen) {
    for (const auto& [environment, reason] :
         std::vector<std::pair<std::vector<std::pair<std::string, std::string>>, std::string>>{
             {{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}, "display"},
             {{{"DISPLAY", ":9999"}}, ":9999"},
             {{{"ORVOSKY_NO_GL", "1"}}, "OpenGL"}}) {
        std::string said;
        EXPECT_EQ(runProgram(folder_, {"edit"}, &said, environment), 1) << said;
        EXPECT_THAT(said, testing::StartsWith("Error: The window cannot be opened: "));
        EXPECT_THAT(said, HasSubstr(reason));
        EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
    }
    std::string said;
    EXPECT_EQ(runProgram(folder_, {"edit", "none.ma"}, &said), 1);
    EXPECT_THAT(said, HasSubstr("none.ma"));
    // In the other subcommands there is no interface to be made.
    EXPECT_EQ(runProgram(folder_, {"run", "-e", "if (`about -batch`) menu -label \"x\" m;"}, &said), 1);
    EXPECT_THAT(said, HasSubstr("menu needs a window"));
}

} // namespace
} // namespace orvosky::window
