// What the program writes: refused early, put into place together, and never half done.
#include "ProgramFixture.h"

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// A scene with a particle cloud, so that its export has a data file; `radius` in centimetres sets how much data.
std::string cloudScene(int radius) {
    const std::string r = std::to_string(radius);
    return std::string(smallScene) +
           "createNode transform -n \"params\" -p \"OrvoSkyData\";\n"
           "createNode orvosky_ParticleCloudShadingParams -n \"paramsShape\" -p \"params\";\n"
           "setAttr \".shadingTexture\" -type \"string\" \"build/clouds/a.dds\";\n"
           "createNode transform -n \"group\" -p \"OrvoSkyData\";\n"
           "createNode transform -n \"ball\" -p \"group\";\n"
           "setAttr \".s\" -type \"double3\" " +
           r + " " + r + " " + r +
           ";\n"
           "createNode orvosky_ParticleCloudSphere -n \"ballShape\" -p \"ball\";\n"
           "createNode transform -n \"cloud\" -p \"group\";\n"
           "createNode orvosky_ParticleCloud -n \"cloudShape\" -p \"cloud\";\n";
}

class Target : public Program {
protected:
    void SetUp() override {
        Program::SetUp();
        write(folder_ / "cloud.ma", cloudScene(20000));
        environment_ = {{"ORVOSKY_NO_GL", "1"}};
    }
    Outcome exported(const std::string& scene, const std::string& target) {
        return run({"export", scene, target}, environment_);
    }
    /// The same with one of its calls planned; FailingCalls.h says how.
    Outcome exportedWith(const std::string& calls, const std::string& target = "sky.atmos") {
        return run({"export", "cloud.ma", target}, {{"ORVOSKY_NO_GL", "1"},
                                                    {"ORVO_CALLS", calls},
                                                    {"LD_PRELOAD", orvo::test::buildTree("bin/orvo_failing_calls.so")},
                                                    {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}});
    }
    void putEarlier() const {
        write(folder_ / "sky.atmos", "earlier scene");
        write(folder_ / "sky.cdata", "earlier data");
    }
    bool earlierIsThere() const {
        return content(folder_ / "sky.atmos") == "earlier scene" && content(folder_ / "sky.cdata") == "earlier data";
    }

    std::map<std::string, std::string> environment_;
};

// Faults: a target that is found to be none after the scene has been worked on; a refusal in other words than the
// command's; the name .atmos accepted.
TEST_F(Target, IsRefusedBeforeTheSceneIsOpened) {
    write(folder_ / "taken.atmos/x", "");
    write(folder_ / "never.mel", "print \"opened\\n\";");
    const std::string unnamed = "Error: SaveSkySystemToXML: Error. Filename [";
    for (const char* target : {"a.txt", ".atmos", "a.atmos.bak"})
        EXPECT_THAT(exported("never.mel", target).error,
                    StartsWith(unnamed + target + "] does not have required extention \".atmos\"\n"));
    for (const char* target : {"none/a.atmos", "taken.atmos", "never.mel/a.atmos"}) {
        const Outcome o = exported("never.mel", target);
        EXPECT_EQ(o.status, 1);
        EXPECT_THAT(o.out, IsEmpty()) << target;
        EXPECT_THAT(o.error,
                    StartsWith("Error: SaveSkySystemToXML:  Cannot open atmos file for write\n"
                               "Error: Failed to export .atmos - see above for details.\nError: Cannot write "));
        EXPECT_THAT(o.error, HasSubstr(target));
    }
    for (const char* picture : {"none/a.png", "taken.atmos", "a.nosuchformat", "plain", "never.mel/a.png"}) {
        const Outcome o = run({"render", "never.mel", picture, "--size", "16x9"});
        EXPECT_EQ(o.status, 1);
        EXPECT_THAT(o.out, IsEmpty()) << picture;
        EXPECT_THAT(o.error, HasSubstr(picture));
    }
}

// Faults: a file that its owner protected, or one in a folder that is not ours, replaced all the same or told in other
// words than the command's; the mode of a replaced file lost.
TEST_F(Target, KeepsWhatFilesAllow) {
    putEarlier();
    chmod((folder_ / "sky.atmos").c_str(), 0604);
    EXPECT_EQ(exported("cloud.ma", "sky.atmos").status, 0);
    EXPECT_EQ(fs::status(folder_ / "sky.atmos").permissions(), fs::perms(0604));

    // Root may do everything, so it becomes somebody else.
    const std::string as = geteuid() == 0 ? "setpriv --reuid 65534 --regid 65534 --clear-groups " : "";
    if (std::system((as + "test -x '" + orvo::test::program() + "'").c_str()) != 0)
        GTEST_SKIP() << "another user cannot run the program here";
    for (const char* refused : {"sky.atmos", "sky.cdata", "."}) {
        putEarlier();
        for (const char* name : {".", "sky.atmos", "sky.cdata"}) fs::permissions(folder_ / name, fs::perms(0777));
        fs::permissions(folder_ / refused, fs::perms(0555));
        const std::string command = "cd '" + folder_.string() + "' && ORVOSKY_NO_GL=1 " + as + "'" +
                                    orvo::test::program() + "' export cloud.ma sky.atmos";
        FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
        std::string text;
        for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
        EXPECT_NE(pclose(pipe), 0);
        const bool data = refused == std::string("sky.cdata");
        EXPECT_THAT(text, HasSubstr("Error: SaveSkySystemToXML:  Cannot open " + std::string(data ? "cdata" : "atmos") +
                                    " file for write\n"));
        EXPECT_THAT(text, HasSubstr("Cannot write sky." + std::string(data ? "cdata: " : "atmos: ")));
        EXPECT_THAT(text, HasSubstr("Permission denied."));
        EXPECT_THAT(text, Not(HasSubstr("completed")));
        EXPECT_TRUE(earlierIsThere());
        fs::permissions(folder_, fs::perms::owner_all);
    }
    EXPECT_THAT(leftovers(), IsEmpty());
}

// Faults: success announced before the files are in place; half a pair when the second file cannot be moved; the
// scene moved before its data; a message that does not say which file it was.
TEST_F(Target, PairsMoveTogether) {
    for (const auto& [calls, named] :
         {std::pair("renameat:1:5", "sky.cdata"), std::pair("renameat:2:5", "sky.atmos")}) {
        putEarlier();
        const Outcome o = exportedWith(calls);
        EXPECT_EQ(o.status, 1);
        EXPECT_TRUE(earlierIsThere());
        EXPECT_THAT(o.out, Not(HasSubstr("completed")));
        EXPECT_THAT(o.error, HasSubstr("Cannot write " + std::string(named) + ": Input/output error."));
        EXPECT_THAT(leftovers(), IsEmpty());
    }
    putEarlier();
    EXPECT_EQ(exportedWith("renameat:2:k9").status, 128 + SIGKILL);
    EXPECT_EQ(content(folder_ / "sky.atmos"), "earlier scene") << "the one that readers start from is the last";
    EXPECT_NE(content(folder_ / "sky.cdata"), "earlier data");
}

// Faults: a signal that leaves a temporary folder, or half a pair: before the export, while it writes, between the
// moves.
TEST_F(Target, SignalsLeaveNothingBehind) {
    for (const char* calls : {"mkdirat:1:k15", "openat:3:k15", "openat:4:k2", "fsync:1:k1", "renameat:1:k15",
                              "renameat:2:k2", "unlinkat:2:k1"}) {
        putEarlier();
        const Outcome o = exportedWith(calls);
        EXPECT_GT(o.status, 128) << calls << o.error;
        EXPECT_TRUE(earlierIsThere() || (content(folder_ / "sky.atmos").ends_with("</OrvoAtmosphere>\n") &&
                                         content(folder_ / "sky.cdata").ends_with('\1')))
            << calls;
        EXPECT_THAT(leftovers(), IsEmpty()) << calls;
    }
}

// Fault: the data of one export beside the scene of another. One waits between its moves, the other comes meanwhile.
TEST_F(Target, ExportsToOneTargetDoNotMix) {
    write(folder_ / "large.ma", cloudScene(30000));
    ASSERT_EQ(exported("large.ma", "large.atmos").status, 0);
    std::thread slow([&] { exportedWith("renameat:2:s700"); });
    while (!fs::exists(folder_ / "sky.cdata")) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const std::string command = "cd '" + folder_.string() + "' && ORVOSKY_NO_GL=1 '" + orvo::test::program() +
                                "' export large.ma sky.atmos >/dev/null 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    slow.join();
    EXPECT_EQ(content(folder_ / "sky.atmos"), content(folder_ / "large.atmos"));
    EXPECT_EQ(content(folder_ / "sky.cdata"), content(folder_ / "large.cdata"));
}

// Fault: a complaint about a reader that has seen enough.
TEST_F(Target, InspectEndsQuietlyWithItsReader) {
    ASSERT_EQ(exported("cloud.ma", "sky.atmos").status, 0);
    const std::string command = "cd '" + folder_.string() + "' && { sleep 0.1; '" + orvo::test::program() +
                                "' inspect sky.atmos 2>said; } | true";
    std::system(command.c_str());
    EXPECT_EQ(content(folder_ / "said"), "");
}

// Faults: a scene opened without its own project; the scripts of a folder that was only read from run; those of a
// project that the user works in or names not run.
TEST_F(Target, TheProjectIsTheScenesOwn) {
    const std::string hello = "print \"set up\\n\";\n", workspace = "//Maya 2010 Project Definition\n",
                      ask = "print `workspace -q -rd`;\nfile -f -open \"small.ma\";\n";
    for (const char* project : {"theirs", "mine", "mine/nested"}) {
        write(folder_ / project / "workspace.mel", workspace);
        write(folder_ / project / "scripts/userSetup.mel", hello);
        write(folder_ / project / "scenes/ask.mel", ask);
        write(folder_ / project / "scenes/small.ma", smallScene);
    }
    write(folder_ / "none/scripts/userSetup.mel", hello);
    write(folder_ / "none/ask.mel", ask);
    struct Case {
        const char *from, *scene, *project, *root;
        bool scriptsRun;
    };
    const Case cases[] = {{".", "theirs/scenes/ask.mel", "", "theirs", false},
                          {"mine", "../theirs/scenes/ask.mel", "", "theirs", false},
                          {"mine", "nested/scenes/ask.mel", "", "mine/nested", false},
                          {"mine/scenes", "ask.mel", "", "mine", true},
                          {".", "theirs/scenes/ask.mel", "theirs", "theirs", true},
                          {"mine", "../none/ask.mel", "", "mine", true},
                          {"none", "ask.mel", "", "none", false},
                          {"none", "ask.mel", "../none", "none", true}};
    for (const Case& c : cases) {
        std::string command = "cd '" + (folder_ / c.from).string() + "' && ORVOSKY_NO_GL=1 '" + orvo::test::program() +
                              "' export " + c.scene + " '" + (folder_ / "out.atmos").string() + "'";
        if (*c.project) command += std::string(" --project '") + (folder_ / c.from / c.project).string() + "'";
        std::system(
            (command + " >'" + (folder_ / "out").string() + "' 2>'" + (folder_ / "said").string() + "'").c_str());
        const std::string out = content(folder_ / "out"), said = content(folder_ / "said");
        EXPECT_THAT(out, HasSubstr(fs::canonical(folder_ / c.root).string() + "/")) << command << said;
        EXPECT_EQ(out.starts_with("set up\n"), c.scriptsRun) << command;
        const std::string warning =
            "Warning: The scripts of " + (fs::canonical(folder_) / c.root / "scripts").string() + " were not run: ";
        EXPECT_EQ(said.find(warning) != said.npos, !c.scriptsRun) << command << said;
    }
}

} // namespace
