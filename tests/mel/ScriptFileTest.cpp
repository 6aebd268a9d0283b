#include "MelFixture.h"
#include "kit/TemporaryFolder.h"

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;
using host::mel::Error;

/// A folder of scripts on the script path, removed at the end.
class ScriptFileTest : public testing::Test {
protected:
    ScriptFileTest() { mel.interpreter.setScriptPath({folder / "missing", folder}); }

    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(folder / name, std::ios::binary) << text;
        return (folder / name).string();
    }

    orvo::test::TemporaryFolder folder;
    MelFixture mel;
};

TEST_F(ScriptFileTest, UnknownProcedureIsFoundInItsFileOnce) {
    write("autoOne.mel", "print \"sourced \"; global proc int autoOne(int $x) { return helper($x); }\n"
                         "proc int helper(int $x) { return $x + 1; }");
    EXPECT_TRUE(mel.interpreter.isCallable("autoOne"));
    EXPECT_EQ(mel.printed, ""); // asking runs nothing
    EXPECT_EQ(mel.interpreter.whatIs("autoOne"), "Script found in: " + (folder / "autoOne.mel").string());
    EXPECT_EQ(mel.run("print (autoOne(1) + autoOne(2));"), "sourced 5");
    EXPECT_EQ(mel.interpreter.whatIs("autoOne"), "Mel procedure found in: " + (folder / "autoOne.mel").string());
    EXPECT_THROW(mel.interpreter.execute("helper(1);"), Error); // private to its file
}

TEST_F(ScriptFileTest, AFileThatDefinesSomethingElseIsNoProcedure) {
    write("misnamed.mel", "print \"x\"; global proc other() {}");
    EXPECT_THROW(mel.interpreter.execute("misnamed;"), Error);
    EXPECT_THROW(mel.interpreter.execute("misnamed;"), Error);
    EXPECT_EQ(mel.printed, "x");
}

TEST_F(ScriptFileTest, LocalProceduresOfTwoFilesDoNotMeet) {
    write("a.mel", "proc string who() { return \"a\"; } global proc string askA() { return who(); }");
    write("b.mel",
          "\xEF\xBB\xBFproc string who() { return \"b\"; }\r\nglobal proc string askB() { return who(); }\r\n");
    EXPECT_EQ(mel.run("source \"a.mel\"; source b; print (askA() + askB());"), "ab");
}

TEST_F(ScriptFileTest, ErrorsCarryTheFileTheyAroseIn) {
    const std::string path = write("broken.mel", "global proc broken() {\n\n  int $z = 0;\n  $z = 1 / $z;\n}");
    const std::string syntax = write("syntax.mel", "\nproc {");
    for (auto [script, file, line] : {std::tuple{"\n\n\n\n\n\nbroken;", path, 4},
                                      {"source syntax;", syntax, 2},
                                      {"syntax;", syntax, 2},
                                      {"\neval \"broken\";", path, 4}}) {
        try {
            mel.interpreter.execute(script, "outer.mel");
            FAIL() << script;
        } catch (const Error& e) {
            EXPECT_EQ(e.file(), file) << script;
            EXPECT_EQ(e.line(), line) << script;
        }
    }
}

TEST_F(ScriptFileTest, AScriptThatSourcesItselfEnds) {
    write("again.mel", "source \"again.mel\";");
    EXPECT_THROW(mel.interpreter.execute("source again;"), Error);
}

TEST_F(ScriptFileTest, FilesAreWrittenReadAndListed) {
    const std::string path = (folder / "out.txt").generic_string();
    const std::string set = "string $p = \"" + path + "\"; ";
    EXPECT_EQ(mel.run(set +
                      "int $f = fopen($p, \"w\"); fprint $f \"one two\\nthree\"; fprint $f (1.5 + \"\"); fclose $f;"
                      "$f = `fopen $p \"r\"`; print (fgetword($f)); print (fgetline($f)); print (feof($f));"
                      "print (fgetline($f)); print (feof($f)); frewind $f; string $all = fread($f, \"\");"
                      "print (size($all)); fclose $f;"),
              "one"
              "two\n"
              "0"
              "three1.5"
              "1"
              "16");
    EXPECT_EQ(
        mel.run(
            set +
            "print (`filetest -f $p` + `filetest -d $p` + `filetest -s $p`); print (fopen(\"/no/such/x\", \"r\"));"),
        "20");
    EXPECT_EQ(mel.run(set + "sysFile -copy ($p + \".bak\") $p; print (getFileList(\"-folder\", dirname($p) + \"/\", "
                            "\"-filespec\", \"out*\")); print (`sysFile -delete $p` + `sysFile -delete $p`);"),
              "out.txt\nout.txt.bak\n1");
}
