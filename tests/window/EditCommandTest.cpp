// The subcommand: what it says where no window can be.
#include "WindowFixture.h"

#include <sstream>

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

// Faults: a file of the module that does not parse, defines another procedure than the one that it is found by, or
// needs a window to be read; a module that leads elsewhere.
TEST_F(Window, FilesOfTheModuleAreWhole) {
    const fs::path module = orvo::test::buildTree("share/orvosky");
    std::string mel;
    std::size_t count = 0;
    for (const auto& file : fs::directory_iterator(orvo::test::sourceTree("plugin/scripts"))) {
        const std::string name = file.path().stem();
        ASSERT_TRUE(fs::exists(module / "scripts" / file.path().filename())) << name;
        mel += "source \"" + file.path().string() + "\";\n";
        mel += "if (`match \"^Mel procedure found in\" (`whatIs " + name + "`)` == \"\") error \"" + name + "\";\n";
        ++count;
    }
    EXPECT_GT(count, 40u);
    write(folder_ / "all.mel", mel);
    std::string said;
    EXPECT_EQ(runProgram(folder_, {"run", "all.mel"}, &said), 0) << said;
    // "+ NAME VERSION PATH", then VARIABLE:=PATH; both paths are relative to the file, which lies in the tool root.
    std::istringstream lines(content(orvo::test::buildTree("plugin/orvosky.mod")));
    std::string plus, name, version, path, line;
    lines >> plus >> name >> version >> path >> line;
    EXPECT_EQ(plus + name, "+orvosky");
    for (const char* below : {"scripts/orvoskyStartup.mel", "icons/sun.svg", "presets/1_clear_noon.ma"})
        EXPECT_TRUE(fs::exists(module / path / below)) << below;
    const std::string variable = "ORVOSKY_TOOL_ROOT:=";
    ASSERT_TRUE(line.starts_with(variable)) << line;
    EXPECT_TRUE(fs::exists(module / line.substr(variable.size()) / "ArtTools/Maya/OrvoSkyTool/shaders"));
}

} // namespace
} // namespace orvosky::window
