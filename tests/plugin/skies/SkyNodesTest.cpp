#include "PluginScene.h"
#include "Schema.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// A scene that can be exported: a sky node named "s" is added by the test.
class SkyNodes : public PluginScene {
protected:
    SkyNodes() {
        must("createNode transform -n OrvoSkyData;"
             "createNode orvosky_SkySceneSettings -n settings -p OrvoSkyData;");
    }

    /// The element that the export writes between the settings' and the root's end.
    std::string element() {
        log_.clear();
        must("orvosky_SaveSkySystemToXMLCommand \"" + file_.string() + "\"");
        EXPECT_TRUE(followsSchema(file_, "atmos.xsd"));
        const std::string text = contents(file_);
        const std::string before = "cloudBackBufferRes  = \"0\"\n\t/>\n", after = "</OrvoAtmosphere>";
        const auto start = text.find(before), end = text.find(after);
        if (start == std::string::npos || end == std::string::npos) return "no settings or end in\n" + text;
        return text.substr(start + before.size(), end - start - before.size());
    }
    double number(const std::string& plug) {
        must("getAttr " + plug);
        return result_.toFloat();
    }

    const orvo::test::TemporaryFolder folder_;
    const fs::path file_ = folder_ / "skies.atmos";
};

const char* const gradientDefaults = "\t<GradientSky\n"
                                     "\t\tsunDir = \"0.577350 0.577350 0.577350\"\n"
                                     "\t\tsunColour = \"1.000000 0.950000 0.763000\"\n"
                                     "\t\tsunIntensity  = \"1.000000\"\n"
                                     "\t\tsunDiskSize = \"0.120000\"\n"
                                     "\t\tsunDiskFalloff = \"32.000000\"\n"
                                     "\t\tsunDiskWeight = \"1.000000\"\n"
                                     "\t\tsunEnable = \"1\"\n"
                                     "\t\tbrightness = \"1.000000\"\n"
                                     "\t\txcoord = \"0.450000\"\n"
                                     "\t\tgradientTexture = \"\"\n"
                                     "\t/>\n";

} // namespace

// Catches any changed byte of the elements, defaults among them. The texts are written by hand from the file format.
TEST_F(SkyNodes, GradientSkyWritesItsElement) {
    must("createNode orvosky_GradientSkyLocator -n s -p OrvoSkyData;");
    EXPECT_EQ(element(), gradientDefaults);
    EXPECT_THAT(log_.errors(), ElementsAre(StartsWith("In SkyTool\\GradientSkyLocator, line "),
                                           "GradientSkyLocator::SaveToXML:  filepath bad. [] (maybe file not located "
                                           "in hub data directory?)\n"));
    must("setAttr s.sunDir -type \"double3\" 0 -1 0; setAttr s.sunColour -type \"float3\" 0.25 0.5 2;"
         "setAttr s.sunIntensity 4.5; setAttr s.sunDiskSize 1; setAttr s.sunDiskFalloff 3.25;"
         "setAttr s.sunDiskWeight 0.125; setAttr s.sunEnable 0; setAttr s.brightness 2.5; setAttr s.xcoord 1;"
         "setAttr s.gradientTexture -type \"string\" \"Build/Skies & Co\\\\Noon.dds\";");
    EXPECT_EQ(element(), "\t<GradientSky\n"
                         "\t\tsunDir = \"0.000000 -1.000000 0.000000\"\n"
                         "\t\tsunColour = \"0.250000 0.500000 2.000000\"\n"
                         "\t\tsunIntensity  = \"4.500000\"\n"
                         "\t\tsunDiskSize = \"1.000000\"\n"
                         "\t\tsunDiskFalloff = \"3.250000\"\n"
                         "\t\tsunDiskWeight = \"0.125000\"\n"
                         "\t\tsunEnable = \"0\"\n"
                         "\t\tbrightness = \"2.500000\"\n"
                         "\t\txcoord = \"1.000000\"\n"
                         "\t\tgradientTexture = \"Skies &amp; Co\\Noon.dds\"\n"
                         "\t/>\n");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

TEST_F(SkyNodes, TexturedSkyWritesItsElement) {
    must("createNode orvosky_TexturedSkyLocator -n s -p OrvoSkyData;"
         "setAttr s.cubeMapTexture -type \"string\" \"textures/sky.dds\";");
    EXPECT_EQ(element(), "\t<TexturedSky\n"
                         "\t\tbrightness = \"1.000000\"\n"
                         "\t\trotation = \"0.000000\"\n"
                         "\t\ttexture = \"\"\n"
                         "\t/>\n");
    EXPECT_THAT(log_.errors(), ElementsAre("TexturedSkyLocator::SaveToXML:  filepath bad. [textures/sky.dds] (maybe "
                                           "file not located in hub data directory?)\n"));
    must("setAttr s.brightness 0.75; setAttr s.rotation 359.5;"
         "setAttr s.cubeMapTexture -type \"string\" \"BUILD\\\\textures\\\\sky.dds\";");
    EXPECT_EQ(element(), "\t<TexturedSky\n"
                         "\t\tbrightness = \"0.750000\"\n"
                         "\t\trotation = \"359.500000\"\n"
                         "\t\ttexture = \"textures\\sky.dds\"\n"
                         "\t/>\n");
    EXPECT_THAT(log_.errors(), ElementsAre());
    must("getAttr s.cubeMapTexture");
    EXPECT_EQ(result_.toString(), "BUILD\\textures\\sky.dds") << "an export changes nothing in the scene";
}

// Catches a procedural sky that is exported, or that the export stumbles over.
TEST_F(SkyNodes, ProceduralSkyHasNoElement) {
    must("createNode orvosky_ProceduralSkyLocator -n s -p OrvoSkyData;");
    EXPECT_EQ(element(), "");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches wrong names, numbering and defaults.
TEST_F(SkyNodes, NewSkiesHaveTheirNamesAndDefaults) {
    for (const char* type : {"GradientSkyLocator", "TexturedSkyLocator", "ProceduralSkyLocator"})
        must(std::string("createNode orvosky_") + type + "; createNode orvosky_" + type);
    for (const char* name :
         {"orvosky_GradientSkyLocatorShape2", "orvosky_TexturedSkyLocatorShape2", "orvosky_ProceduralSkyShape2"}) {
        must(std::string("objExists ") + name);
        EXPECT_EQ(result_.toInt(), 1) << name;
    }
    const std::string sky = "orvosky_ProceduralSkyShape1.";
    const std::pair<const char*, double> defaults[] = {{"Enable", 1},
                                                       {"UpdateMode", 1},
                                                       {"Quality", 0},
                                                       {"RenderGround", 1},
                                                       {"sunLightIntensity", 1},
                                                       {"sunDiscSize", 0.12},
                                                       {"sunDiscFalloff", 32},
                                                       {"sunDiscAlpha", 1},
                                                       {"dummyInputTrigger", 0},
                                                       {"cameraHeight", 30},
                                                       {"hazeHeight", 500},
                                                       {"hazeBrightness", 0.1},
                                                       {"hazeDecay", 0.1},
                                                       {"hazeHaloBrightness", 1},
                                                       {"blueSkyHeight", 500},
                                                       {"redDecayHeight", 200},
                                                       {"blueSkyBrightness", 0.1},
                                                       {"redDecay", 0.1},
                                                       {"rval", 0},
                                                       {"redDecayFalloff", 0.4491496604814464}};
    for (const auto& [name, value] : defaults) EXPECT_DOUBLE_EQ(number(sky + name), value) << name;
    must("getAttr -asString " + sky + "UpdateMode");
    EXPECT_EQ(result_.toString(), "Instant");
    must("setAttr " + sky + "Quality 1; getAttr -asString " + sky + "Quality");
    EXPECT_EQ(result_.toString(), "High");
}

// Catches limits that are missing or hard where they should be soft, and outputs that can be set.
TEST_F(SkyNodes, HardLimitsHoldAndSoftOnesDoNot) {
    must("createNode orvosky_GradientSkyLocator -n g; createNode orvosky_TexturedSkyLocator -n t;"
         "createNode orvosky_ProceduralSkyLocator -n p;");
    for (const char* refused : {"g.sunIntensity 5.5",
                                "g.sunDiskSize 1.5",
                                "g.sunDiskFalloff 51",
                                "g.sunDiskWeight 2.5",
                                "g.brightness 3.5",
                                "g.brightness -1",
                                "g.xcoord -0.5",
                                "g.xcoord 1.5",
                                "t.brightness 3.5",
                                "t.brightness -1",
                                "t.rotation -1",
                                "t.rotation 361",
                                "p.sunLightIntensity 5.5",
                                "p.sunDiscSize 1.5",
                                "p.sunDiscFalloff 51",
                                "p.sunDiscAlpha 1.5",
                                "p.cameraHeight 0.5",
                                "p.hazeHeight 0.5",
                                "p.blueSkyHeight 0.5",
                                "p.redDecayHeight 0.5",
                                "p.hazeBrightness -0.1",
                                "p.hazeDecay -0.1",
                                "p.hazeHaloBrightness -0.1",
                                "p.blueSkyBrightness -0.1",
                                "p.redDecay -0.1",
                                "p.redDecayFalloff -0.1",
                                "g.sunDir1 -1.5",
                                "p.sunLightDir2 1.5"}) {
        EXPECT_FALSE(mel(std::string("setAttr ") + refused)) << refused;
        EXPECT_THAT(failure_, HasSubstr("imum value of ")) << refused;
    }
    EXPECT_FALSE(mel("setAttr p.rval 0.5"));
    for (const char* taken : {"p.cameraHeight 900", "p.hazeHeight 3000", "p.hazeBrightness 2", "p.hazeDecay 2",
                              "p.hazeHaloBrightness 20", "p.redDecayFalloff 2", "p.redDecayHeight 2500"})
        EXPECT_TRUE(mel(std::string("setAttr ") + taken)) << taken;
}

// Catches a computation that fails, or makes a colour up, where no table was drawn yet.
TEST_F(SkyNodes, WithoutADrawTheSunIsOnlyMarkedClean) {
    must("createNode orvosky_ProceduralSkyLocator -n p; createNode transform -n target;"
         "connectAttr p.rval target.sx; setAttr p.dummyInputTrigger 1;");
    for (const char* plug : {"p.rval", "p.gval", "p.bval", "target.scaleX"}) EXPECT_EQ(number(plug), 0.0) << plug;
    EXPECT_THAT(log_.errors(), ElementsAre());
    EXPECT_FALSE(mel("connectAttr target.tx p.rval")) << "an output cannot be fed";
}
