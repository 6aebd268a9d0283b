#include "PluginScene.h"
#include "Schema.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <unistd.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string lastLine = "Failed to export .atmos - see above for details.";

class SaveSkySystem : public PluginScene {
protected:
    SaveSkySystem() {
        must("createNode transform -n \"OrvoSkyData\";");
        log_.clear();
    }

    /// A node under OrvoSkyData; `setting` are more statements about "X", its name.
    void add(const std::string& type, const std::string& name, std::string setting = {}) {
        must("createNode " + type + " -n \"" + name + "\" -p \"OrvoSkyData\";");
        for (auto at = setting.find('X'); at != std::string::npos; at = setting.find('X', at + name.size()))
            setting.replace(at, 1, name);
        must(setting);
    }
    void settings(const std::string& name = "settings") { add("orvosky_SkySceneSettings", name); }
    void sky(const std::string& name, const std::string& setting = {}) {
        add("orvosky_BasicSkyLocator", name, setting);
    }
    void fog(const std::string& name, const std::string& setting = {}) { add("orvosky_ExpHeightFog", name, setting); }

    fs::path file(const char* name = "scene.atmos") const { return folder_ / name; }
    bool save(const char* name = "scene.atmos") {
        const bool saved = mel("orvosky_SaveSkySystemToXMLCommand \"" + file(name).string() + "\"");
        if (saved) {
            EXPECT_TRUE(followsSchema(file(name), "atmos.xsd"));
        }
        return saved;
    }
    /// The export must fail with these errors before the last line.
    void expectFailure(std::vector<std::string> errors, const char* name = "scene.atmos") {
        EXPECT_FALSE(save(name));
        errors.push_back(lastLine);
        EXPECT_THAT(log_.errors(), testing::ElementsAreArray(errors));
        log_.clear();
    }

    orvo::test::TemporaryFolder folder_;
};

} // namespace

// The golden file is written by hand from the file format. Catches any changed byte: names, blanks, order, defaults.
TEST_F(SaveSkySystem, WritesTheGoldenFile) {
    sky("first");
    fog("fog", "setAttr \"X.fogHeight\" 120.5; setAttr \"X.fogHeightOffset\" -12.25; setAttr \"X.fogDensity\" 0.5;"
               "setAttr \"X.fogColour\" -type \"float3\" 0.25 0.5 0.75; setAttr \"X.fogAlpha\" 0.125;");
    sky("second", "setAttr \"X.sunDir\" -type \"double3\" 0 0 -0.25; setAttr \"X.sunEnable\" 0;"
                  "setAttr \"X.sunIntensity\" 2.5; setAttr \"X.horizonOffset\" -0.5; setAttr \"X.horizonFalloff\" 60;");
    settings();
    must("setAttr \"settings.useGameSunDir\" 0; setAttr \"settings.cloudBackBufferRes\" 2;");
    must("createNode orvosky_BasicSkyLocator -n \"outside\";");
    must("createNode orvosky_SkyRenderer -p \"OrvoSkyData\";");

    ASSERT_TRUE(save()) << failure_;
    EXPECT_EQ(contents(file()), contents(fs::path(orvo::test::testData()) / "golden/basic.atmos"));
    EXPECT_THAT(log_.all(), ElementsAre("Info: SaveSkySystemToXML:  Export to file [" + file().string() +
                                        "] completed successfully.\n"));
    EXPECT_FALSE(fs::exists(file("scene.cdata")));
}

// Catches hidden nodes that are lost, and disabled or templated ones that are not.
TEST_F(SaveSkySystem, LeavesOutDisabledAndTemplatedNodesOnly) {
    settings();
    sky("off", "setAttr \"X.Enable\" 0; setAttr \"X.sunDiskFalloff\" 1;");
    sky("templated", "setAttr \"X.template\" 1; setAttr \"X.sunDiskFalloff\" 2;");
    sky("hidden", "setAttr \"X.visibility\" 0; setAttr \"X.sunDiskFalloff\" 3;");
    must("createNode transform -n \"group\" -p \"OrvoSkyData\"; setAttr \"group.template\" 1;"
         "createNode orvosky_BasicSkyLocator -n \"below\" -p \"group\"; setAttr \"below.sunDiskFalloff\" 4;");
    fog("fogOff", "setAttr \"X.Enable\" 0;");
    fog("fogTemplated", "setAttr \"X.template\" 1;");
    ASSERT_TRUE(save());
    const std::string text = contents(file());
    EXPECT_THAT(text, HasSubstr("sunDiskFalloff = \"3.000000\""));
    for (const char* lost : {"\"1.000000\"\n\t\tsunDiskWeight", "\"2.000000\"\n\t\tsunDiskWeight",
                             "\"4.000000\"\n\t\tsunDiskWeight", "ExpHeightFog"})
        EXPECT_THAT(text, Not(HasSubstr(lost)));
}

// Catches a truncating normalisation. Values beyond the limits come with old scenes and from other plug-ins.
TEST_F(SaveSkySystem, WritesTheSunDirectionNormalised) {
    settings();
    sky("sky", "setAttr \"X.sunDir\" -type \"double3\" 0 0 0;");
    auto& scene = host::scene::Scene::current();
    scene.setNumber(scene.findPlug("sky.sunDir.sunDir1"), 2.0, host::scene::Scene::LimitPolicy::Ignore);
    ASSERT_TRUE(save());
    EXPECT_THAT(contents(file()), HasSubstr("sunDir = \"0.000000 1.000000 0.000000\"\n"));
}

// Catches a list of instances that loses the wrong one.
TEST_F(SaveSkySystem, FindsNodesAfterOthersWereDeletedOrRenamed) {
    settings();
    sky("first", "setAttr \"X.sunDiskFalloff\" 1;");
    sky("second", "setAttr \"X.sunDiskFalloff\" 2;");
    must("delete \"first\"; rename \"second\" \"third\";");
    ASSERT_TRUE(save());
    EXPECT_THAT(contents(file()), HasSubstr("sunDiskFalloff = \"2.000000\""));
    EXPECT_THAT(contents(file()), Not(HasSubstr("sunDiskFalloff = \"1.000000\"")));
}

TEST_F(SaveSkySystem, TellsWhatIsMissingOrTooMuchBeforeMakingAFile) {
    sky("sky");
    expectFailure({"SaveSkySystemToXML:  No sky settings found\n"});
    settings("one");
    fog("fog1");
    fog("fog2");
    expectFailure({"SaveSkySystemToXML:  More than 1 exp height fog node found\n"});
    settings("two");
    must("setAttr \"two.template\" 1;");
    expectFailure({"SaveSkySystemToXML:  More than 1 sky settings found\n"});
    EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(SaveSkySystem, AnEmptyOrMissingRootGivesTheLastLineAlone) {
    expectFailure({});
    must("delete \"OrvoSkyData\";");
    expectFailure({});
}

TEST_F(SaveSkySystem, TestsTheExtension) {
    settings();
    EXPECT_TRUE(save("scene.Atmos"));
    for (const char* name : {"scene.atmos.bak", "scene", "atmos"})
        expectFailure({"SaveSkySystemToXML: Error. Filename [" + file(name).string() +
                       "] does not have required extention \".atmos\"\n"},
                      name);
    EXPECT_FALSE(mel("orvosky_SaveSkySystemToXMLCommand \".atmos\""));
    EXPECT_THAT(
        log_.errors(),
        ElementsAre("SaveSkySystemToXML: Error. Filename [.atmos] does not have required extention \".atmos\"\n",
                    lastLine));
}

TEST_F(SaveSkySystem, TellsWhenTheFileCannotBeOpenedOrFilled) {
    settings();
    expectFailure({"SaveSkySystemToXML:  Cannot open atmos file for write"}, "nowhere/scene.atmos");
    fs::create_symlink("/dev/full", file("full.atmos"));
    expectFailure({"SaveSkySystemToXML:  Cannot write atmos file"}, "full.atmos");
}

TEST_F(SaveSkySystem, WantsOneTextArgument) {
    const std::string usage = "OrvoSky_SaveSkySystemToXMLCommand incorrect syntax given! :(  Usage: "
                              "\"orvosky_SaveSkySystemToXMLCommand filePath\"   bailing.";
    for (const char* call : {"orvosky_SaveSkySystemToXMLCommand", "orvosky_SaveSkySystemToXMLCommand \"a\" \"b\""}) {
        log_.clear();
        EXPECT_FALSE(mel(call));
        EXPECT_THAT(log_.errors(), ElementsAre(usage));
    }
    log_.clear();
    EXPECT_FALSE(mel("orvosky_SaveSkySystemToXMLCommand {\"a\"}"));
    EXPECT_THAT(log_.errors(),
                ElementsAre(testing::StartsWith("Maya Reports: "), "",
                            "SaveSkySystemToXML: Error. Filename [] does not have required extention \".atmos\"\n",
                            lastLine));
}
