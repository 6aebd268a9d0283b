#include "PluginScene.h"
#include "kit/Places.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace {

struct NewNode {
    const char *type, *shapeName;
    friend void PrintTo(const NewNode& c, std::ostream* out) { *out << c.type; }
};

class NewNodes : public PluginScene, public testing::WithParamInterface<NewNode> {};

} // namespace

// Catches a missing postConstructor, and nodes that take one another's numbers.
TEST_P(NewNodes, GetTheirNumberedNames) {
    must(std::string("createNode ") + GetParam().type);
    must(std::string("createNode ") + GetParam().type);
    for (const char* number : {"1", "2"}) {
        must(std::string("objExists \"") + GetParam().shapeName + number + "\"");
        EXPECT_EQ(result_.toInt(), 1) << GetParam().shapeName << number;
    }
    EXPECT_THAT(log_.errors(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(Plugin, NewNodes,
                         testing::Values(NewNode{"orvosky_BasicSkyLocator", "orvosky_BasicSkyLocatorShape"},
                                         NewNode{"orvosky_ExpHeightFog", "expHeightFogShape"},
                                         NewNode{"orvosky_SkySceneSettings", "orvosky_SkySceneSettingsShape"},
                                         NewNode{"orvosky_SkyRenderer", "orvosky_SkyRendererShape"}));

// Catches limits that are missing or hard where they should be soft: the host refuses what lies beyond hard ones.
TEST_F(PluginScene, HardLimitsHoldAndSoftOnesDoNot) {
    must("createNode orvosky_BasicSkyLocator -n \"s\"; createNode orvosky_ExpHeightFog -n \"f\";");
    for (const char* refused :
         {"s.sunIntensity\" 5.5", "s.sunIntensity\" -1", "s.sunDiskSize\" 1.5", "s.sunDiskFalloff\" 51",
          "s.sunDiskWeight\" 2.5", "s.horizonFalloff\" -1", "s.horizonOffset\" -1.5", "s.horizonOffset\" 1.5",
          "f.fogHeight\" 0.5", "f.fogDensity\" 0.00001", "f.fogAlpha\" 1.5", "f.fogAlpha\" -0.5"})
        EXPECT_FALSE(mel(std::string("setAttr \"") + refused)) << refused;
    for (const char* taken : {"s.horizonFalloff\" 90", "f.fogHeight\" 900", "f.fogHeightOffset\" -900",
                              "f.fogHeightOffset\" 900", "f.fogDensity\" 100"})
        EXPECT_TRUE(mel(std::string("setAttr \"") + taken)) << taken;
}

TEST_F(PluginScene, LoadsAgainAfterUnloading) {
    auto& plugins = host::Host::instance().plugins();
    EXPECT_EQ(plugins.find("orvosky")->vendor, "TKLA ORVO SKY TOOLKIT");
    EXPECT_EQ(plugins.find("orvosky")->version, "RVX v1.40.0");
    plugins.unload("orvosky");
    EXPECT_EQ(host::scene::Scene::current().findType("orvosky_BasicSkyLocator"), nullptr);
    EXPECT_FALSE(mel("orvosky_ConvertFullPathToProjectRootPath \"a\""));
    plugins.load(orvo::test::plugin());
    must("createNode orvosky_BasicSkyLocator");
}

TEST_F(PluginScene, ConvertCommandAnswersTheStoredForm) {
    const std::string inside = (project() / "Build/Textures/Sky.dds").string();
    must("orvosky_ConvertFullPathToProjectRootPath \"" + inside + "\"");
    EXPECT_EQ(result_.toString(), "build\\textures\\sky.dds");
    must("orvosky_ConvertFullPathToProjectRootPath \"/Elsewhere/Sky.dds\"");
    EXPECT_EQ(result_.toString(), "Elsewhere/Sky.dds");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

TEST_F(PluginScene, ConvertCommandWantsOneArgument) {
    const std::string usage = "OrvoSky_ConvertFullPathToProjectRootPath incorrect syntax given! :(  Usage: "
                              "\"orvosky_ConvertFullPathToProjectRootPath filePath\"   bailing.";
    for (const char* call :
         {"orvosky_ConvertFullPathToProjectRootPath", "orvosky_ConvertFullPathToProjectRootPath \"a\" \"b\""}) {
        log_.clear();
        EXPECT_FALSE(mel(call));
        EXPECT_THAT(log_.errors(), ElementsAre(usage));
    }
}
