// Many scenes in one run of the program, and the log of a run.
#include "ProgramFixture.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Batch : public Program {
protected:
    void SetUp() override {
        Program::SetUp();
        write(folder_ / "in/good.ma", smallScene);
        write(folder_ / "in/-x.ma", smallScene);
        write(folder_ / "in/broken.ma", "createNode transform -n \"a\"; setAttr \".t\" nonsense \"");
        write(folder_ / "in/empty.ma", "");
        write(folder_ / "in/bad set.ma",
              std::string(smallScene) + "createNode transform -n \"OrvoSkyData2\" -p \"nobody\";\n");
        write(folder_ / "tonight.txt",
              "# tonight\n\n  in/good.ma\r\nin/none.ma\nin/broken.ma\nin/empty.ma\nin/bad set.ma\n");
        write(folder_ / "nothing.txt", "# nothing\n");
    }
};

// Faults: a bad scene that ends the batch or counts as a good one; a scene of the list that nobody hears of; words of
// the line that do not reach the runs; JSON that tools cannot read; what two scenes make written over each other.
TEST_F(Batch, DoesAllThatCanBeDone) {
    Outcome o = run({"batch", "tonight.txt", "in/-x.ma", "--out", "out/deep", "-j", "2", "--size", "16x9", "--set",
                     "skyShape.sunIntensity=2.5"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("4 of 6 scenes failed."));
    EXPECT_THAT(o.out, AllOf(HasSubstr("in/good.ma "), HasSubstr("in/none.ma"), HasSubstr("There is no such file."),
                             HasSubstr("6 scenes in "), HasSubstr("2 worked, 4 failed.")));
    for (const char* name : {"good.atmos", "good.png", "-x.atmos", "-x.png"})
        EXPECT_TRUE(fs::exists(folder_ / "out/deep" / name)) << name;
    for (const char* name : {"broken.atmos", "empty.atmos", "bad set.atmos", "none.png"})
        EXPECT_FALSE(fs::exists(folder_ / "out/deep" / name)) << name;
    EXPECT_THAT(content(folder_ / "out/deep/good.atmos"), HasSubstr("sunIntensity  = \"2.500000\""));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "in"), fs::directory_iterator()), 5) << "inputs alone";

    write(folder_ / "again/good.ma", smallScene);
    o = run({"batch", "tonight.txt", "again/good.ma", "--out", "more", "--export-only", "--json"});
    EXPECT_EQ(o.status, 1);
    const json told = json::parse(o.out);
    EXPECT_EQ(told["worked"], 1);
    EXPECT_EQ(told["failed"], 5);
    ASSERT_EQ(told["scenes"].size(), 6u);
    EXPECT_EQ(told["scenes"][0]["steps"][0]["file"], "more/good.atmos");
    EXPECT_GT(told["scenes"][0]["steps"][0]["seconds"], 0);
    const json& broken = told["scenes"][2]["steps"][0];
    EXPECT_EQ(broken["status"], 1);
    EXPECT_EQ(broken["messages"][0]["severity"], "error");
    EXPECT_THAT(broken["messages"][0]["text"].get<std::string>(), HasSubstr("broken.ma"));
    EXPECT_THAT(told["scenes"][5]["refusal"].get<std::string>(), HasSubstr("in/good.ma"));
    EXPECT_FALSE(fs::exists(folder_ / "more/good.png"));

    EXPECT_EQ(
        run({"batch", "in/good.ma", "--out", "fine", "--render-only", "--format", "exr", "--size", "16x9"}).status, 0);
    EXPECT_TRUE(fs::exists(folder_ / "fine/good.exr"));
    EXPECT_THAT(run({"batch", "no.txt"}).error, HasSubstr("Cannot read the list no.txt."));
    EXPECT_THAT(run({"batch", "nothing.txt"}).error, HasSubstr("The list nothing.txt names no scene."));
    EXPECT_THAT(run({"batch", "in/good.ma", "--out", "tonight.txt/a"}).error, HasSubstr("Cannot make the folder"));
    for (const char* wrong : {"-j0", "-jx", "-j1.5"}) EXPECT_EQ(run({"batch", "in/good.ma", wrong}).status, 2) << wrong;
}

// Faults: a log that no tool can read, that lacks a message, a stage or the end; silence about errors; information that
// is asked not to be told; a log that cannot be written taken for one that is.
TEST_F(Batch, RunsCanBeLogged) {
    write(folder_ / "loud.mel",
          "file -f -open \"in/good.ma\"; warning \"so \\\"so\\\" \xff\"; setAttr renderer1Shape.Enable 0;");
    Outcome o = run({"render", "loud.mel", "a.png", "--size", "16x9", "--log-json", "log.json", "--quiet"});
    EXPECT_EQ(o.status, 0);
    EXPECT_THAT(o.out, IsEmpty());
    EXPECT_THAT(o.error, HasSubstr("Warning: so \"so\""));
    std::istringstream lines(content(folder_ / "log.json"));
    std::vector<json> log;
    for (std::string line; std::getline(lines, line);) log.push_back(json::parse(line));
    const auto has = [&](const char* key, const std::string& begin) {
        return std::ranges::any_of(log, [&](const json& line) {
            return line.contains(key) && line[key].get<std::string>().starts_with(begin) && line.contains("at");
        });
    };
    EXPECT_TRUE(has("text", "so \"so\" \xEF\xBF\xBD") && has("text", "Rendered a.png"));
    EXPECT_TRUE(has("stage", "open loud.mel") && has("stage", "update") && has("stage", "draw a.png"));
    EXPECT_EQ(log.back()["exit"], 0);
    o = run({"export", "in/broken.ma", "a.atmos", "--log-json=log.json", "--verbose"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(content(folder_ / "log.json"), AllOf(HasSubstr("\"severity\":\"error\""), HasSubstr("\"exit\":1")));
    EXPECT_THAT(o.out, HasSubstr(" s  open in/broken.ma\n"));
    o = run({"export", "in/good.ma", "a.atmos", "--log-json", "none/log.json"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("Cannot write none/log.json: No such file or directory."));
    EXPECT_EQ(run({"export", "in/good.ma", "a.atmos", "--log-json", "/dev/full"}).status, 1);
    EXPECT_EQ(run({"export", "in/good.ma", "a.atmos", "--quiet", "--verbose"}).status, 2);
}

} // namespace
