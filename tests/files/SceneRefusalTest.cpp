#include "SceneFileFixture.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

using namespace host;
using testing::HasSubstr;

namespace {

struct Hostile {
    const char *text, *message;
    friend void PrintTo(const Hostile& c, std::ostream* out) { *out << testing::PrintToString(std::string(c.text)); }
};
class HostileSceneTest : public SceneFileFixture, public testing::WithParamInterface<Hostile> {};

// Faults: a scene file runs something; what is refused swallows the next statement, or leaves no trace.
TEST_P(HostileSceneTest, IsRefusedByNameAndNothingRuns) {
    const auto trace = temporary("trace");
    std::filesystem::remove(trace);
    std::string text = GetParam().text;
    for (std::size_t at; (at = text.find("TRACE")) != text.npos;) text.replace(at, 5, trace.string());
    std::vector<std::string> loaded;
    files::SceneReader::Options options;
    options.loadPlugin = [&](const std::string& name) {
        loaded.push_back(name);
        return true;
    };
    open("createNode transform -n \"a\";\n" + text + "\ncreateNode transform -n \"next\";\n", options);
    ASSERT_GE(messages.size(), 1u);
    EXPECT_THAT(messages[0], HasSubstr("test.ma line 2: "));
    EXPECT_THAT(messages[0], HasSubstr(GetParam().message));
    EXPECT_TRUE(scene.findNode("next")) << "the statement behind is read";
    EXPECT_FALSE(scene.findNode("made"));
    EXPECT_TRUE(loaded.empty());
    EXPECT_FALSE(std::filesystem::exists(trace));
}

INSTANTIATE_TEST_SUITE_P(
    Scenes, HostileSceneTest,
    testing::Values(
        Hostile{"system(\"touch TRACE\");", "'system'"}, Hostile{"eval(\"system \\\"touch TRACE\\\"\");", "'eval'"},
        Hostile{"eval \"createNode transform -n made\";", "'eval'"},
        Hostile{"python(\"open('TRACE','w')\");", "'python'"},
        Hostile{"setAttr \".tx\" `system \"touch TRACE\"`;", "'setAttr'"},
        Hostile{"setAttr \".tx\" (1 + 2);", "'setAttr'"},
        Hostile{"createNode transform -n (\"ma\" + `x; y`);", "'createNode'"},
        Hostile{"createNode transform -n $made;", "'createNode'"},
        Hostile{"global proc made() { if (1) { createNode transform -n \"made\"; } string $s = \"}\"; /* } */ }",
                "'global'"},
        Hostile{"proc p(int $i) { createNode transform -n \"made\"; }", "'proc'"},
        Hostile{"for ($i = 0; $i < 3; $i++) { createNode transform -n \"made\"; }", "'for'"},
        Hostile{"if (`exists x`) { createNode transform -n \"made\"; } else { system(\"touch TRACE\"); }", "'if'"},
        Hostile{"do { createNode transform -n \"made\"; } while (true);", "'do'"},
        Hostile{"{ createNode transform -n \"made\"; }", "'{'"}, Hostile{"}", "'}'"}, Hostile{"$made = 5; ", "'$'"},
        Hostile{"`createNode transform -n \"made\"`;", "'`'"},
        Hostile{"string $a[] = {\"x;\", \"createNode transform -n made;\"};", "'string'"},
        Hostile{"source \"evil.mel\";", "'source'"},
        Hostile{"file -r -ns \"x\" \"other.ma\";", "'file': a reference needs"},
        Hostile{"file -rename \"TRACE\";", "'file'"}, Hostile{"file -import \"other.ma\";", "'file'"},
        Hostile{"loadPlugin \"evil\";", "'loadPlugin'"}, Hostile{"requires \"../evil\" \"1.0\";", "only a bare name"},
        Hostile{"requires \"/tmp/evil.so\" \"1.0\";", "only a bare name"},
        Hostile{"scriptNode -st 1 -bs \"system(\\\"touch TRACE\\\")\" -n \"s\";", "'scriptNode'"},
        Hostile{"scriptJob -ie \"x\";", "'scriptJob'"}, Hostile{"workspace -o \"/\";", "'workspace'"},
        Hostile{"delete \"a\";", "'delete'"},
        Hostile{"createNode \"two words\" -n \"made\";", "is no name of a type"}));

// Fault: script and expression nodes are run, or a flood of refusals is told one by one.
TEST_F(SceneFileFixture, ScriptsAreKeptAndRefusalsAreCounted) {
    std::string text = "createNode script -n \"s\"; setAttr \".b\" -type \"string\" \"createNode transform -n made\"; "
                       "setAttr \".st\" 1;\n";
    for (int i = 0; i < 100; ++i) text += "print \"x\";\n";
    open(text);
    EXPECT_EQ(this->text("s.before"), "createNode transform -n made");
    EXPECT_FALSE(scene.findNode("made"));
    EXPECT_EQ(messages.size(), 21u);
    EXPECT_EQ(messages.back(), "test.ma: 80 more statements were refused.");
}

struct BadFile {
    const char *name, *bytes, *message;
    std::size_t size;
    friend void PrintTo(const BadFile& c, std::ostream* out) { *out << c.name; }
};
class BadFileTest : public SceneFileFixture, public testing::WithParamInterface<BadFile> {};

// Faults: a file that is none opens as an empty scene, costs the scene that is open, or is not named in the message.
TEST_P(BadFileTest, IsAnErrorThatNamesItAndChangesNothing) {
    open("createNode transform -n \"before\";");
    const auto file = temporary(GetParam().name);
    put(file, std::string(GetParam().bytes, GetParam().size));
    try {
        files::SceneReader(scene, {}).read(file);
        FAIL() << "it was read";
    } catch (const files::FileError& e) {
        EXPECT_THAT(e.what(), HasSubstr(file.generic_string()));
        EXPECT_THAT(e.what(), HasSubstr(GetParam().message));
    }
    EXPECT_TRUE(scene.findNode("before"));
}

template <std::size_t n>
BadFile bad(const char* name, const char (&bytes)[n], const char* message) {
    return {name, bytes, message, n - 1};
}

INSTANTIATE_TEST_SUITE_P(
    Files, BadFileTest,
    testing::Values(bad("empty.ma", "", "empty"), bad("blank.ma", " \n\n", "empty"),
                    bad("a.mb", "FOR4\0\0\1\0", "Maya binary"), bad("b.mb", "FOR8\0\0\1\0", "Maya binary"),
                    bad("zero.ma", "createNode\0transform;", "binary file"),
                    bad("quote.ma", "\n\nsetAttr \".a\" \"x;\n", "line 3: the quoted text is not closed"),
                    bad("cut.ma", "createNode transform -n \"a\";\nsetAttr \".tx\" 5",
                        "line 2: the file ends within a statement"),
                    bad("comment.ma", "/* never\n", "line 1: the comment is not closed"),
                    bad("block.ma", "\nproc x() { print \"a\";\n", "line 2: the file ends within 'proc'"),
                    bad("escape.ma", "a \"\\", "line 1: the quoted text is not closed"),
                    bad("text.ma", "hello world\n", "missing")));

// Faults: a folder, a device or a missing file hangs or crashes.
TEST_F(SceneFileFixture, WhatIsNoFileIsAnError) {
    const auto fifo = temporary("fifo");
    std::filesystem::remove(fifo);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const auto& [path, message] :
         std::vector<std::pair<std::filesystem::path, const char*>>{{temporary("none.ma"), "does not exist"},
                                                                    {fifo.parent_path(), "is a folder"},
                                                                    {fifo, "not a plain file"},
                                                                    {"/dev/zero", "not a plain file"}}) {
        try {
            files::SceneReader(scene, {}).read(path);
            FAIL() << path;
        } catch (const files::FileError& e) {
            EXPECT_THAT(e.what(), HasSubstr(path.generic_string()));
            EXPECT_THAT(e.what(), HasSubstr(message));
        }
    }
}

class TruncationTest : public SceneFileFixture, public testing::WithParamInterface<const char*> {};

// Faults: a scene cut off anywhere crashes, hangs, or (cut within a statement) passes for whole.
TEST_P(TruncationTest, EveryByte) {
    const std::string whole = get(sample(GetParam()));
    for (std::size_t n = 0; n < whole.size(); ++n) {
        const std::string part = whole.substr(0, n);
        const auto end = part.find_last_not_of(" \t\r\n");
        const std::string lastLine = end == part.npos ? part : part.substr(part.rfind('\n', end) + 1);
        const bool complete = end == part.npos || part[end] == ';' || lastLine.starts_with("//");
        try {
            open(part);
            EXPECT_TRUE(complete) << "cut at byte " << n;
        } catch (const files::FileError& e) {
            EXPECT_GT(e.line(), 0);
        }
        messages.clear();
        severities.clear();
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, TruncationTest,
                         testing::Values("release2010.ma", "release2016.ma", "release2022.ma"));

// Fault: deep nesting in what is refused uses up the stack.
TEST_F(SceneFileFixture, DeepNestingIsHarmless) {
    const std::string deep(1'000'000, '{');
    EXPECT_THROW(open(deep), files::FileError);
    open("if (1) " + deep + std::string(deep.size(), '}') + " createNode transform -n \"next\";");
    EXPECT_TRUE(scene.findNode("next"));
}

} // namespace
