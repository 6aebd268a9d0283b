#include "CloudFiles.h"
#include "Common/Paths.h"
#include "SkyTool/clouds/ParticleCloudShadingParamsLocator.h"
#include "UtilityTest.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include "api/graph/Handle.h"
#include "api/plugins/PluginManager.h"

#include <maya/MFnPlugin.h>

#include <cmath>

using namespace orvo;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// One node "params" of the type, in a project whose root is not known.
class ShadingParams : public UtilityTest {
protected:
    ShadingParams() {
        static const bool registered = [] {
            static host::api::Plugin plugin;
            plugin.name = "shadingParams";
            MObject object = host::api::Access::object(std::make_shared<host::api::PluginHandle>(&plugin));
            const auto create = [] { return static_cast<void*>(new ParticleCloudShadingParamsLocator); };
            return !MFnPlugin(object)
                        .registerNode("testShadingParams", MTypeId(0x7f103), create,
                                      ParticleCloudShadingParamsLocator::initialize, MPxNode::kLocatorNode)
                        .error();
        }();
        EXPECT_TRUE(registered);
        mel("createNode transform -n \"t\"; createNode testShadingParams -n \"params\" -p \"t\";");
        log_.clear();
    }
    ParticleCloudShadingParamsLocator& params() { return *ParticleCloudShadingParamsLocator::findInstance("params"); }
    void setTexture(const std::string& path) {
        writeString(node("params"), attribute(node("params"), "shadingTexture"), path.c_str());
    }
    std::string texture() { return readString(node("params"), attribute(node("params"), "shadingTexture")).asChar(); }
    std::string element(bool* saved = nullptr) {
        const orvo::test::TemporaryFolder folder;
        const std::string path = (folder / "element").string();
        OutputFile file(path, "wt");
        const bool ok = params().saveToXml(file, "  ");
        if (saved) *saved = ok;
        EXPECT_TRUE(file.close());
        return orvo::test::content(path);
    }
};

} // namespace

// Catches a record whose fields are mixed up, a sun without its intensity, and a direction that is not of unit length.
TEST_F(ShadingParams, TheRecordHasTheNodesValues) {
    CloudShadingParams p = params().readParams();
    const double third = 1 / std::sqrt(3.0);
    EXPECT_EQ(p.sunDir.x, p.sunDir.y);
    EXPECT_NEAR(p.sunDir.z, third, 1e-15);
    EXPECT_EQ(p.sunColour, (Vector3{1.0, 0.95, 0.763})) << "doubles, not floats";
    EXPECT_EQ(p.shadingTexture, "");
    EXPECT_TRUE(p.enableSelfShadow);

    const char* const names[] = {"shadingOpacity",     "shadingBrightness",     "sunShadowAmount",
                                 "groundShadowAmount", "spriteShadowAmount",    "selfShadowAmount",
                                 "selfShadowFalloff",  "lightingSunGlowAmount", "lightingSunGlowHaloSize"};
    double value = 0.125;
    for (const char* name : names) set((std::string("params.") + name).c_str(), value += 0.0625);
    set("params.enableSelfShadow", 0);
    set("params.sunIntensity", 2);
    set("params.sunColour0", 0.25);
    set("params.cloudColour1", 0.5);
    set("params.lightingAmbient2", 0.75);
    p = params().readParams();
    value = 0.125;
    for (const double read :
         {p.shadingOpacity, p.shadingBrightness, p.sunShadowAmount, p.groundShadowAmount, p.spriteShadowAmount,
          p.selfShadowAmount, p.selfShadowFalloff, p.lightingSunGlowAmount, p.lightingSunGlowHaloSize})
        EXPECT_EQ(read, value += 0.0625);
    EXPECT_FALSE(p.enableSelfShadow);
    EXPECT_EQ(p.sunColour, (Vector3{0.5, 1.9, 1.526}));
    EXPECT_EQ(p.cloudColour, (Vector3{1, 0.5, 1}));
    EXPECT_EQ(p.lightingAmbient, (Vector3{0.1, 0.1, 0.75}));

    for (const char* component : {"params.sunDir0", "params.sunDir1", "params.sunDir2"}) set(component, 0);
    EXPECT_EQ(params().readParams().sunDir, (Vector3{0, 1, 0})) << "no direction must not become NaN";
    EXPECT_THAT(log_.all(), IsEmpty());
}

// Catches a path that is not brought into its stored form, is changed at every read, or is written back unchanged.
TEST_F(ShadingParams, ATexturesPathIsNormalisedInPlace) {
    const std::string root = projectRoot();
    setTexture(root + "/Build//Clouds\\A.dds");
    const std::string stored = "build\\clouds\\a.dds";
    EXPECT_EQ(params().readParams().shadingTexture, stored);
    EXPECT_EQ(texture(), stored);
    setTexture("build/clouds//a.dds");
    const std::string read = params().readParams().shadingTexture;
    EXPECT_EQ(texture(), read);
    EXPECT_EQ(params().readParams().shadingTexture, read);
    // An artist's lock holds, without a word; the texture is found all the same.
    setTexture(root + "/Build//Clouds\\A.dds");
    scene.setLocked(scene.findPlug("params.shadingTexture"), true);
    log_.clear();
    EXPECT_EQ(params().readParams().shadingTexture, stored);
    EXPECT_EQ(texture(), root + "/Build//Clouds\\A.dds");
    EXPECT_THAT(log_.all(), IsEmpty());
}

// Catches a texture outside of the project that loses the separator that it begins with on its way through a file, and
// a value out of range that is set, or keeps the others from being set, without a word.
TEST_F(ShadingParams, AFileKeepsTheTexturesPathAndHoldsValues) {
    const orvo::test::TemporaryFolder folder;
    const std::string outside = "/elsewhere/clouds/A.dds", path = (folder / "shading").string();
    setTexture(outside);
    ASSERT_TRUE(params().saveParamsFile(path));
    const std::string text = orvo::test::content(path);
    EXPECT_THAT(text, testing::HasSubstr("shading_tex_filepath = \"" + outside + "\"\n"));
    std::ofstream(path) << changed(text, "shadingOpacity = \"1.000000", "shadingOpacity = \"7.000000");
    setTexture("");
    EXPECT_TRUE(params().loadParamsFile(path));
    EXPECT_EQ(texture(), outside);
    EXPECT_EQ(params().readParams().shadingOpacity, 1.0);
    EXPECT_THAT(log_.all(), ElementsAre("Warning: " + path +
                                        ", line 6: element ParticleCloudShadingParams: attribute \"shadingOpacity\" is "
                                        "out of range: \"7.000000\", held at 1"));
    std::filesystem::remove(path);
}

// Catches any changed byte of the exported element: the doubled blanks, the names that differ from the attributes', the
// direction as stored, the stripped and escaped path.
TEST_F(ShadingParams, WritesTheExportedElement) {
    setTexture("Build\\clouds\\a&b.dds");
    set("params.sunDir1", -0.5);
    set("params.sunIntensity", 2.5);
    EXPECT_EQ(element(), "  <ParticleCloudShadingParams\n"
                         "  \tsunDir = \"1.000000 -0.500000 1.000000\"\n"
                         "  \tsunColour = \"1.000000 0.950000 0.763000\"\n"
                         "  \tsunIntensity  = \"2.500000\"\n"
                         "  \tcloudColour = \"1.000000 1.000000 1.000000\"\n"
                         "  \tshadingBrightness  = \"1.100000\"\n"
                         "  \tspriteTexture = \"clouds\\a&amp;b.dds\"\n"
                         "  \tlightingAmbient = \"0.100000 0.100000 0.200000\"\n"
                         "  \tlightingSunGlowAmount  = \"0.300000\"\n"
                         "  \tlightingSunGlowHaloSize  = \"20.000000\"\n"
                         "  \tlightingRimGlowAmount  = \"1.200000\"\n"
                         "  />\n");
    EXPECT_THAT(log_.all(), IsEmpty());
    EXPECT_EQ(texture(), "Build\\clouds\\a&b.dds");
}

TEST_F(ShadingParams, ATextureOutsideTheBuildFolderIsNotExported) {
    for (const std::string path : {"", "build/", "builds\\a.dds", "clouds\\a.dds", "x\\build\\a.dds", "build.dds"}) {
        setTexture(path);
        log_.clear();
        bool saved = true;
        EXPECT_EQ(element(&saved), "");
        EXPECT_FALSE(saved);
        EXPECT_THAT(log_.all(), ElementsAre("Error: ParticleCloudShadingParams - Shading Texture: Bad filepath - must "
                                            "exist and be in the build folder. [" +
                                            path + "]"));
    }
}

// Catches a node that is half loaded because one of its attributes cannot be set, and values that change places.
TEST_F(ShadingParams, LoadingChangesAllOrNothing) {
    const std::string file = orvo::test::testData("clouds/shading.xml");
    for (const char* name : {"params.cloudColour", "params.shadingTexture", "params.lightingAmbient1"}) {
        scene.setLocked(scene.findPlug(name), true);
        std::string error;
        EXPECT_FALSE(params().loadParamsFile(file, &error)) << name;
        EXPECT_THAT(error, testing::HasSubstr("locked"));
        EXPECT_EQ(params().readParams().shadingOpacity, 1.0);
        scene.setLocked(scene.findPlug(name), false);
    }
    EXPECT_TRUE(params().loadParamsFile(file));
    const CloudShadingParams p = params().readParams();
    EXPECT_EQ(p.cloudColour, (Vector3{0.25, 0.5, 0.75}));
    EXPECT_EQ(p.lightingAmbient, (Vector3{-0.5, 0.03125, 4}));
    EXPECT_FALSE(p.enableSelfShadow);
    const double numbers[] = {p.shadingOpacity,     p.shadingBrightness,     p.sunShadowAmount,
                              p.groundShadowAmount, p.spriteShadowAmount,    p.selfShadowAmount,
                              p.selfShadowFalloff,  p.lightingSunGlowAmount, p.lightingSunGlowHaloSize};
    EXPECT_THAT(numbers, ElementsAre(0.875, 2.5, 0.125, 0.375, 0.625, 0.0625, 7.5, 1.5, 99.5));
    EXPECT_EQ(texture(), "build\\clouds\\salt & \"pepper\".dds");
}
