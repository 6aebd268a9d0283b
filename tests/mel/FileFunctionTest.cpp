#include "MelFixture.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include <sys/resource.h>
#include <unistd.h>

namespace fs = std::filesystem;
using host::mel::Error;

namespace {

/// Gives an environment variable back its value at the end: other tests of the process need it.
class Restored {
public:
    explicit Restored(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) value_ = value;
    }
    ~Restored() { value_ ? ::setenv(name_, value_->c_str(), 1) : ::unsetenv(name_); }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

private:
    const char* name_;
    std::optional<std::string> value_;
};

/// A folder of files that a script knows as $d (with a slash at its end), removed at the end.
class FileFunctionTest : public testing::Test {
protected:
    FileFunctionTest() { mel.interpreter.setGlobalVariable("d", folder.generic_string() + "/"); }

    void write(const std::string& name, const std::string& text) { folder.write(name, text); }
    std::string read(const std::string& name) { return folder.read(name); }
    std::string run(const std::string& script) { return mel.run("string $d; " + script); }

    orvo::test::TemporaryFolder folder;
    MelFixture mel;
};

} // namespace

// Faults: modes mixed up (append that truncates, write that keeps), handles that share a place or a file, values
// written otherwise than print shows them.
TEST_F(FileFunctionTest, ModesAndHandles) {
    write("a.txt", "old");
    run("int $f = fopen($d + \"a.txt\", \"a\"); fprint $f \"+new\"; int $g = fopen($d + \"b.txt\"); fprint $g {1, 2}; "
        "fprint $g <<1,2,3>>; fprint $f 0.5; if ($f == $g || $f == 0) error \"handles\"; fclose $f; fclose $g;");
    EXPECT_EQ(read("a.txt"), "old+new0.5");
    EXPECT_EQ(read("b.txt"), "1\n2\n1 2 3");
    run("int $f = fopen($d + \"a.txt\", \"w\"); fprint $f \"x\"; fflush $f;");
    EXPECT_EQ(read("a.txt"), "x");
    EXPECT_EQ(
        run("int $r = fopen($d + \"b.txt\", \"r+\"); print (fgetline($r)); int $s = fopen($d + \"b.txt\", \"r\"); "
            "print (fgetline($s)); print (fgetline($r)); fclose $r; print (fgetline($s));"),
        "1\n1\n2\n2\n");
}

// Fault: a copy that fails half way and leaves neither the old file nor the new one. A limit on the size of files
// stands for a full disk.
TEST_F(FileFunctionTest, ACopyThatFailsLeavesWhatWasThere) {
    write("large.txt", std::string(100000, 'x'));
    write("kept.txt", "kept");
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit full{20000, usual.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string said = run("print (`sysFile -copy ($d + \"kept.txt\") ($d + \"large.txt\")`);");
    setrlimit(RLIMIT_FSIZE, &usual);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(said, "0");
    EXPECT_EQ(read("kept.txt"), "kept");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2);
}

// Faults: words cut at the wrong characters, the last word or line without an end lost, a number that takes the next
// one along, feof true too early or never.
TEST_F(FileFunctionTest, LinesWordsAndValues) {
    write("v.txt", "  12 -3.5e1\t1 2 3\nname:of,it  end\n\nlast");
    EXPECT_EQ(
        run("int $f = fopen($d + \"v.txt\", \"r\"); int $i; float $x; vector $v; $i = fread($f, $i); $x = fread($f, "
            "$x); $v = "
            "fread($f, $v); print ($i + \" \" + $x + \" \" + $v + \"|\"); print (fgetword($f, \":,\") + \"|\" + "
            "fgetword($f, \":,\") + \"|\" + fgetword($f) + \"|\" + fgetword($f) + \"|\"); print (feof($f)); print "
            "(fgetline($f)); print (fgetline($f)); print (feof($f)); print (fgetline($f)); print (fgetword($f)); "
            "print (feof($f)); fclose $f;"),
        "12 -35 1 2 3|name|of|it|end|0\nlast11");
}

// Faults: a closed or unknown handle used all the same, a folder opened as a file, an unknown mode taken for writing
// (which would empty the file), a full disk that goes unnoticed.
TEST_F(FileFunctionTest, MisuseIsAnErrorAndLosesNothing) {
    write("kept.txt", "kept");
    EXPECT_EQ(run("print (fopen($d, \"r\") + fopen($d + \"none\", \"r\") + fopen($d + \"no/dir\", \"w\"));"), "0");
    for (const char* script : {"fopen($d + \"kept.txt\", \"x\");", "fopen($d + \"kept.txt\", \"\");", "fclose 0;",
                               "int $f = fopen($d + \"kept.txt\", \"r\"); fclose $f; fclose $f;",
                               "int $f = fopen($d + \"kept.txt\", \"r\"); string $a[]; fread($f, $a);"})
        EXPECT_THROW(run(script), Error) << script;
    if (fs::exists("/dev/full")) {
        EXPECT_THROW(run("int $f = fopen(\"/dev/full\", \"w\"); fprint $f \"text\"; fclose $f;"), Error);
        EXPECT_THROW(run("int $f = fopen(\"/dev/full\", \"w\"); fprint $f \"text\"; fflush $f;"), Error);
    }
    EXPECT_EQ(read("kept.txt"), "kept");
}

// Faults: a removal of what is no empty folder or no file, a move that loses the file, copies that answer success
// without one.
TEST_F(FileFunctionTest, SysFile) {
    write("a.txt", "text");
    EXPECT_EQ(run("print (`sysFile -makeDir ($d + \"x/y\")` + `sysFile -makeDir ($d + \"a.txt\")`);"), "1");
    EXPECT_EQ(
        run("print (`sysFile -removeEmptyDir ($d + \"x\")` + `sysFile -delete ($d + \"x\")` + `sysFile -red ($d + "
            "\"a.txt\")`);"),
        "0");
    EXPECT_TRUE(fs::is_directory(folder / "x/y"));
    EXPECT_EQ(run("print (`sysFile -copy ($d + \"x/b.txt\") ($d + \"a.txt\")` + `sysFile -cp ($d + \"c\") ($d + "
                  "\"none\")` + `sysFile -cp ($d + \"c\") ($d + \"x\")`);"),
              "1");
    EXPECT_EQ(read("x/b.txt"), "text");
    EXPECT_EQ(
        run("print (`sysFile -move ($d + \"m.txt\") ($d + \"x/b.txt\")` + `sysFile -rename ($d + \"n.txt\") ($d + "
            "\"m.txt\")` + `sysFile -ren ($d + \"q\") ($d + \"none\")` + `sysFile -red ($d + \"x/y\")`);"),
        "3");
    EXPECT_EQ(read("n.txt"), "text");
    EXPECT_FALSE(fs::exists(folder / "x/b.txt") || fs::exists(folder / "m.txt") || fs::exists(folder / "x/y"));
    EXPECT_THROW(run("sysFile ($d + \"a.txt\");"), Error);
    EXPECT_THROW(run("sysFile -delete;"), Error);
    EXPECT_EQ(read("a.txt"), "text");
}

// Faults: tests that answer for the wrong kind of thing, a dangling link, an empty file; a list out of order, with
// files that do not match, or that fails where there is no folder.
TEST_F(FileFunctionTest, TestsAndLists) {
    write("empty", "");
    write("b.ma", "x");
    write("a.ma", "x");
    write("c.mat", "x");
    fs::create_directory(folder / "sub.ma");
    fs::create_symlink("nowhere", folder / "link");
    const auto flags = [&](const std::string& name) {
        return run("string $n = $d + \"" + name +
                   "\"; print (`filetest -f $n` + \"\" + `filetest -d $n` + `filetest -s $n` + `filetest -r $n` + "
                   "`filetest -w $n` + `filetest -x $n` + `filetest -L $n` + `filetest -e $n`);");
    };
    EXPECT_EQ(flags("empty"), "10011001");
    EXPECT_EQ(flags("b.ma"), "10111001");
    EXPECT_EQ(flags("sub.ma"), "01011101");
    EXPECT_EQ(flags("link"), "00000010");
    EXPECT_EQ(flags("none"), "00000000");
    fs::permissions(folder / "b.ma", fs::perms::owner_read);
    EXPECT_EQ(flags("b.ma"), "10110001");
    EXPECT_EQ(run("print `getFileList -folder $d -filespec \"*.ma\"`;"), "a.ma\nb.ma\nsub.ma/\n");
    EXPECT_EQ(run("print `getFileList -folder ($d + \"[ab].m*\")`;"), "a.ma\nb.ma\n");
    EXPECT_EQ(run("print (size(`getFileList -folder $d`)); print (size(`getFileList -folder ($d + \"no/\")`));"), "60");
    EXPECT_EQ(run("string $w = substituteAllString($d, \"/\", \"\\\\\"); print `filetest -f ($w + \"a.ma\")`;"), "1");
}

// Faults: a path's parts cut at the wrong separator or dot.
TEST_F(FileFunctionTest, Names) {
    EXPECT_EQ(run("print (dirname(\"/\") + \" \" + dirname(\"a/b/\") + \" \" + dirname(\"a//b\") + \" \" + "
                  "dirname(\"c:\\\\d\\\\e\") + \"[\" + dirname(\"\") + \"]\");"),
              "/ a a/ c:\\d[]");
    EXPECT_EQ(run("print (basename(\"/\", \"\") + \" \" + basename(\".ma\", \".ma\") + \" \" + basename(\"d\\\\e.ma\", "
                  "\".mb\") + \" \" + basenameEx(\".hidden\") + \" \" + basenameEx(\"a.b/c\"));"),
              "/ .ma e.ma .hidden c");
    EXPECT_EQ(
        run("print (fromNativePath(\"a\\\\b/c\") + \" \" + fileExtension(\"a.\") + \"|\" + fileExtension(\"a\"));"),
        "a/b/c |");
    const Restored application("MAYA_APP_DIR"), temporary("TMPDIR");
    EXPECT_EQ(run("putenv \"MAYA_APP_DIR\" \"/home/artist/maya\"; print (`internalVar -userAppDir` + \" \" + "
                  "`internalVar -userPrefDir`);"),
              "/home/artist/maya/ /home/artist/maya/2010/prefs/");
    EXPECT_EQ(run("putenv \"TMPDIR\" $d; print (`internalVar -userTmpDir` == $d);"), "1");
    EXPECT_THROW(run("internalVar;"), Error);
}
