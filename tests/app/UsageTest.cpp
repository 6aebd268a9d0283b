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
        {"batch", {"SCENES", "--out", "-j"}},
        {"nodes", {"TYPE", "--json"}},
        {"new", {"DIR", "--preset"}},
        {"inspect", {"FILE", "--json", "--summary", "--diff", "--list-files"}}};
    for (const auto& [subcommand, words] : taken) {
        const Outcome o = run({subcommand, "--help"});
        EXPECT_EQ(o.status, 0);
        EXPECT_EQ(o.out, run({"help", subcommand}).out);
        EXPECT_THAT(o.out, HasSubstr("\nExamples:\n  orvosky "));
        EXPECT_THAT(o.out, HasSubstr("\nExit status:\n  0  "));
        for (const std::string& word : words) EXPECT_THAT(o.out, HasSubstr(word)) << subcommand;
        if (subcommand == "inspect" || subcommand == "new") continue;
        for (const char* word : {"--project DIR", "--no-plugin", "--set NODE.ATTR=VALUE", "MAYA_SCRIPT_PATH",
                                 "MAYA_PLUG_IN_PATH", "ORVOSKY_NO_GL", "ORVOSKY_TOOL_ROOT"})
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
// Fault: a list of commands that is not the table by which they read their flags.
TEST_F(Program, ListsCommandsWithTheirFlags) {
    const Outcome one = run({"commands", "setDrivenKeyframe"});
    EXPECT_EQ(one.status, 0) << one.error;
    EXPECT_THAT(one.out, StartsWith("Synopsis: setDrivenKeyframe [flags]\nFlags:\n"));
    EXPECT_THAT(one.out, HasSubstr("  -cd -currentDriver VALUE\n"));
    const Outcome all = run({"commands"});
    for (const char* name : {"xform", "sin", "orvosky_UpdateSkySystemCommand"})
        EXPECT_THAT(all.out, HasSubstr("\nSynopsis: " + std::string(name)));
    const Outcome none = run({"commands", "setAtr"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.error, HasSubstr("There is no command 'setAtr'; is 'setAttr' meant?"));
}

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

struct SetCase {
    std::vector<std::string> settings;
    const char* wanted; ///< in the export, or in the error
};

// Faults: a setting that is lost, taken for another value, or set in a scene that is drawn before it.
TEST_F(Program, SetsAttributesOfTheOpenedScene) {
    const SetCase good[] = {
        {{"skyShape.zenithColour=0.25,-0.5,1e-1"}, "zenithColour = \"0.250000 -0.500000 0.100000\""},
        {{"skyShape.sunEnable=off"}, "sunEnable = \"0\""},
        {{"setShape.cloudBackBufferRes=Quarter"}, "cloudBackBufferRes  = \"2\""},
        {{"setShape.cloudBackBufferRes=1"}, "cloudBackBufferRes  = \"1\""},
        {{"skyShape.sunIntensity=2", "skyShape.sunIntensity=3.5"}, "sunIntensity  = \"3.500000\""},
        {{"|OrvoSkyData|sky|skyShape.horizonColourR=0.5"}, "horizonColour = \"0.500000 "}};
    for (const SetCase& c : good) {
        std::vector<std::string> words{"export", "small.ma", "a.atmos"};
        for (const std::string& setting : c.settings) words.insert(words.end(), {"--set", setting});
        EXPECT_EQ(run(words).status, 0) << run(words).error;
        EXPECT_THAT(content(folder_ / "a.atmos"), HasSubstr(c.wanted));
    }
    fs::remove(folder_ / "a.atmos");
    const SetCase bad[] = {
        {{"nobody.v=1"}, "--set nobody.v=1: there is no node nobody.\n"},
        {{"skyShape.colour=1"}, "skyShape has no attribute colour.\n"},
        {{"skyShape.zenithColour=1,2"}, "it takes 3 numbers, separated by commas.\n"},
        {{"skyShape.sunIntensity=bright"}, "it takes a number.\n"},
        {{"skyShape.sunIntensity=9"}, "--set skyShape.sunIntensity=9: "}, // beyond its limit
        {{"skyShape.sunEnable=2"}, "it takes on or off.\n"},
        {{"setShape.cloudBackBufferRes=Fifth"}, "it takes one of Half (0), Third (1), Quarter (2).\n"},
        {{"skyShape"}, "give it as NODE.ATTR=VALUE.\n"}};
    for (const SetCase& c : bad) {
        const Outcome o = run({"export", "--set", c.settings[0], "small.ma", "a.atmos"});
        EXPECT_EQ(o.status, 1) << c.settings[0];
        EXPECT_THAT(o.error, HasSubstr(c.wanted));
        EXPECT_FALSE(fs::exists(folder_ / "a.atmos"));
    }
    // A script's scene is set as soon as it is open; texts are taken as they are.
    write(folder_ / "noted.ma",
          std::string(smallScene) +
              "createNode transform -n \"note\";\n\taddAttr -ci true -sn \"nts\" -ln \"notes\" -dt "
              "\"string\";\n");
    EXPECT_EQ(
        run({"run", "--set", "note.notes=a=b, c", "-e", "file -f -open \"noted.ma\"; print `getAttr note.notes`;"}).out,
        "a=b, c");
    EXPECT_THAT(run({"run", "--set", "note.notes=x", "-e", "print 1;"}).error,
                HasSubstr("--set note.notes=x was not applied: the script opened no scene.\n"));
}

} // namespace
