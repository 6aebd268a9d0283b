// Many frames of one scene: the files that they go to, and that they are what one frame after the other would be.
#include "ProgramFixture.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// small.ma with what changes from frame to frame: a colour, the light that clouds of a dome are marched towards, the
/// wind, the sprites of a cloud, and a camera that turns.
constexpr const char* movingScene = R"(file -f -open "small.ma";
createNode transform -n p -p OrvoSkyData; createNode orvosky_ParticleCloudShadingParams -n params -p p;
setAttr params.shadingTexture -type "string" "build\\clouds\\cloud_sprite.dds";
createNode transform -n d -p OrvoSkyData; createNode orvosky_ParticleCloudDome -n dome -p d;
setAttr dome.cloudDataDir -type "string" "build\\clouds\\cumulus.xml"; setAttr dome.domeOuterRadius 2000;
createNode transform -n g -p OrvoSkyData; createNode transform -n ball -p g;
createNode orvosky_ParticleCloudSphere -n ballShape -p ball; setAttr ball.s 20000 20000 20000;
createNode transform -n cloud -p g; createNode orvosky_ParticleCloud -n cloudShape -p cloud;
setAttr persp.t 0 100 0; setAttr persp.r 10 0 0;
proc key(string $plug, float $from, float $to) {
    string $curve = `createNode animCurveTU`;
    setAttr ($curve + ".ktv[0]") 1 $from; setAttr ($curve + ".ktv[1]") 9 $to;
    connectAttr ($curve + ".output") $plug;
}
key("skyShape.zenithColourR", 0, 1); key("params.sunDir0", 0, 1); key("dome.time", 0, 60);
key("cloudShape.particleDensity", 10, 90); key("persp.ry", 0, 40);
)";

class Sequence : public Program {
protected:
    void SetUp() override {
        Program::SetUp();
        write(folder_ / "moving.mel", movingScene);
    }
    Outcome made(const std::string& what, const std::string& target, std::vector<std::string> options,
                 std::map<std::string, std::string> environment = {}) {
        std::vector<std::string> words{what, "moving.mel", target, "--project",
                                       orvo::test::sourceTree("examples/project")};
        if (what == "render") words.insert(words.end(), {"--size", "96x54"});
        words.insert(words.end(), options.begin(), options.end());
        return run(words, std::move(environment));
    }
    static std::map<std::string, std::string> withCalls(const std::string& calls) {
        return {{"ORVO_CALLS", calls},
                {"LD_PRELOAD", orvo::test::buildTree("bin/orvo_failing_calls.so")},
                {"ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0"}};
    }
};

// Faults: a frame that shows or holds what an earlier one left behind; clouds that are not generated anew when what
// they follow from has changed, or are when it has not; a number in the wrong place; a camera that stays where it was.
TEST_F(Sequence, FramesAreWhatSingleRunsGive) {
    const Outcome pictures = made("render", "s.##.png", {"--frames", "1-9x4"});
    ASSERT_EQ(pictures.status, 0) << pictures.error;
    EXPECT_THAT(pictures.out, HasSubstr("Rendered s.01.png (96 x 54, camera persp); 1 of 3, "));
    EXPECT_THAT(pictures.out, HasSubstr("\n3 frames: 3 rendered.\n"));
    EXPECT_EQ(made("render", "looked.#.png", {"--frames", "5-6", "--look", "0,5"}).status, 0);
    ASSERT_EQ(made("export", "s.#.atmos", {"--frames", "1-9x4"}).status, 0);
    for (const char* frame : {"1", "5", "9"}) {
        const std::string n = frame;
        ASSERT_EQ(made("render", "one.png", {"--time", n}).status, 0);
        EXPECT_EQ(content(folder_ / ("s.0" + n + ".png")), content(folder_ / "one.png")) << n;
        ASSERT_EQ(made("export", "one.atmos", {"--time", n}).status, 0);
        for (const char* ending : {".atmos", ".cdata"})
            EXPECT_EQ(content(folder_ / ("s." + n + ending)), content(folder_ / ("one" + std::string(ending)))) << n;
    }
    EXPECT_NE(content(folder_ / "s.01.png"), content(folder_ / "s.05.png"));
    ASSERT_EQ(made("render", "one.png", {"--time", "6", "--look", "0,5"}).status, 0);
    EXPECT_EQ(content(folder_ / "looked.6.png"), content(folder_ / "one.png"));
    // The light turns from frame to frame here, and nothing that clouds follow from does there.
    const Outcome still = made("export", "w.#.atmos", {"--frames", "1-3", "--set", "params.enableSelfShadow=off"});
    EXPECT_EQ(still.out.find("CLOUDS PRODUCED"), still.out.rfind("CLOUDS PRODUCED")) << still.out;
}

// Faults: frames that make no sense taken for others; work begun for names that have no place for a number.
TEST_F(Sequence, RefusesFramesThatMakeNoSense) {
    for (const char* frames :
         {"5-1", "1-", "a-b", "1-5x0", "1-5x-1", "1-5x", "1,2", "", "1-999999", "99999999999", "1.5"})
        EXPECT_EQ(run({"render", "none.ma", "s.#.png", std::string("--frames=") + frames}).status, 2) << frames;
    EXPECT_THAT(run({"render", "none.ma", "s.#.png", "--frames", "9-1"}).error, HasSubstr("'9-1' runs backward"));
    EXPECT_EQ(run({"export", "none.ma", "s.#.atmos", "--frames", "1-2", "--time", "1"}).status, 2);
    EXPECT_EQ(run({"export", "none.ma", "s.atmos", "--continue"}).status, 2);
    for (const char* target : {"s.atmos", "a#/s.atmos"}) {
        const Outcome o = run({"export", "none.ma", target, "--frames", "1-2"});
        EXPECT_EQ(o.status, 2);
        EXPECT_THAT(o.error, HasSubstr("has no place for the number of a frame"));
    }
    EXPECT_EQ(run({"export", "small.ma", "b##/x.#.atmos", "--frames=-12"}).status, 1) << "no such folder";
    fs::create_directory(folder_ / "b##");
    EXPECT_EQ(run({"export", "small.ma", "b##/x.###.atmos", "--frames=-12--11"}).status, 0);
    EXPECT_TRUE(fs::exists(folder_ / "b##/x.-012.atmos") && fs::exists(folder_ / "b##/x.-011.atmos"));
}

// Faults: a full disk in the middle that leaves half a file, ends without a word, or costs what was there before it;
// frames that are there drawn once more, or one that is cut off taken for whole.
TEST_F(Sequence, StopsAtAFullDiskAndGoesOnLater) {
    for (const auto& [what, target, calls, file] :
         {std::tuple("render", "s.##.png", "renameat:7:28", "s.07.png"),
          std::tuple("export", "s.##.atmos", "renameat:14:28", "s.07.atmos")}) {
        const std::string ending = fs::path(target).extension();
        const Outcome full = made(what, target, {"--frames", "1-12"}, withCalls(calls));
        EXPECT_EQ(full.status, 1);
        EXPECT_THAT(full.error, HasSubstr(std::string(file)));
        EXPECT_THAT(full.error, HasSubstr("No space left on device"));
        for (int i = 1; i <= 12; ++i)
            EXPECT_EQ(fs::exists(folder_ / ("s." + std::string(i < 10 ? "0" : "") + std::to_string(i) + ending)),
                      i < 7);
        EXPECT_THAT(leftovers(), IsEmpty());

        fs::resize_file(folder_ / ("s.03" + ending), fs::file_size(folder_ / ("s.03" + ending)) / 2);
        const auto before = fs::last_write_time(folder_ / ("s.06" + ending));
        const Outcome rest = made(what, target, {"--frames", "1-12", "--continue"});
        EXPECT_EQ(rest.status, 0) << rest.error;
        EXPECT_THAT(rest.out, HasSubstr("ed, 5 were there.\n"));
        EXPECT_EQ(fs::last_write_time(folder_ / ("s.06" + ending)), before);
        ASSERT_EQ(made(what, "one" + ending, {"--time", "3"}).status, 0);
        EXPECT_EQ(content(folder_ / ("s.03" + ending)), content(folder_ / ("one" + ending)));
    }
}

} // namespace
