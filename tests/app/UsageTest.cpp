// How the program answers those who call it: help, and what it says to a line that it does not understand.
#include "ProgramFixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// Faults: a help that leaves out an option, the exit statuses or a variable that counts, or that differs by the way in
// which it is asked for.
TEST_F(Program, HelpTellsAllThatASubcommandTakes) {
    const std::map<std::string, std::vector<std::string>> taken{
        {"run", {"SCRIPT", "-e MEL"}},
        {"export", {"SCENE", "OUT"}},
        {"render",
         {"SCENE", "PICTURE", "--size", "--camera", "--time", "(default: the\n", "scene's own current time)"}},
        {"inspect", {"FILE", "--json"}}};
    for (const auto& [subcommand, words] : taken) {
        const Outcome o = run({subcommand, "--help"});
        EXPECT_EQ(o.status, 0);
        EXPECT_EQ(o.out, run({"help", subcommand}).out);
        EXPECT_THAT(o.out, HasSubstr("\nExamples:\n  orvosky "));
        EXPECT_THAT(o.out, HasSubstr("\nExit status:\n  0  "));
        for (const std::string& word : words) EXPECT_THAT(o.out, HasSubstr(word)) << subcommand;
        if (subcommand == "inspect") continue;
        for (const char* word : {"--project DIR", "--no-plugin", "MAYA_SCRIPT_PATH", "MAYA_PLUG_IN_PATH",
                                 "ORVOSKY_NO_GL", "ORVOSKY_TOOL_ROOT"})
            EXPECT_THAT(o.out, HasSubstr(word)) << subcommand;
    }
    EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
    EXPECT_EQ(run({"-v"}).out, run({"--version"}).out);
}

struct WrongLine {
    std::vector<std::string> words;
    const char* said;
};

// Faults: a slip of the finger that is answered with a riddle, words reported in another order than they were written.
TEST_F(Program, WrongLinesSayWhatIsWrong) {
    const WrongLine lines[] = {
        {{"exprot", "small.ma", "a.atmos"}, "There is no subcommand exprot (did you mean export?).\n"},
        {{"help", "rendr"}, "There is no subcommand rendr (did you mean render?).\n"},
        {{"paint"}, "There is no subcommand paint.\n"},
        {{"export", "a", "b", "c", "--d", "e"}, "Unexpected on the command line: c, --d, e.\n"},
        {{"render", "a", "--szie", "8x8", "b.png"},
         "Unexpected on the command line: --szie (did you mean --size?), b.png.\n"},
        {{"render", "a", "b.png", "--time", "inf"}, "--time: 'inf' is no finite number\n"},
        {{"export", "a", "b", "\x1b[2Jc"}, "Unexpected on the command line: \\x1B[2Jc.\n"}};
    for (const WrongLine& line : lines) {
        const Outcome o = run(line.words);
        EXPECT_EQ(o.status, 2) << line.said;
        EXPECT_THAT(o.out, IsEmpty());
        EXPECT_THAT(o.error, AllOf(StartsWith(std::string("Error: ") + line.said), HasSubstr("--help\"")));
    }
}

// Faults: a node or a file that gives orders to the reader's terminal; text of a script that is changed on its way.
TEST_F(Program, MessagesHoldNoControlCharacters) {
    write(folder_ / "loud.mel", "warning \"a\x1b[31mb\x9b"
                                "c\xC2\x9b"
                                "d\r\x7f\xC3\x9F \xE9\te\\nf\";\nprint \"\x1b[1m\";\n");
    Outcome o = run({"run", "loud.mel"});
    EXPECT_EQ(o.error, "Warning: a\\x1B[31mb\\x9Bc\\x9Bd\\x0D\\x7F\xC3\x9F \xE9\te\nf\n");
    EXPECT_EQ(o.out, "\x1b[1m") << "print passes text on as it is";
    o = run({"export", "\x1b]0;owned\x07.ma", "a.atmos"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, testing::Not(HasSubstr("\x1b")));
    EXPECT_THAT(o.error, HasSubstr("\\x1B]0;owned\\x07.ma"));
}

} // namespace
