#include "CloudFiles.h"
#include "PluginScene.h"
#include "Schema.h"
#include "kit/Places.h"

#include "kit/TemporaryFolder.h"
#include "scene/Evaluation.h"
#include "viewport/Viewport.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string exportCommand = "orvosky_ParticleCloudShadingParams_ExportData ";
const std::string importCommand = "orvosky_ParticleCloudShadingParams_ImportData ";

class CloudNodes : public PluginScene {
protected:
    static std::string quoted(const std::string& text) { return '"' + text + '"'; }
    std::string path(const char* name) const { return (folder_ / name).string(); }
    std::string write(const char* name, const std::string& text) const {
        std::ofstream(folder_ / name, std::ios::binary) << text;
        return path(name);
    }
    double number(const std::string& plug) {
        auto& cell = host::scene::Scene::current().findPlug(plug);
        host::scene::evaluate(cell);
        return cell.number();
    }
    /// The command fails with these messages alone.
    void expectFailure(const std::string& command, const std::vector<std::string>& messages) {
        log_.clear();
        EXPECT_FALSE(mel(command)) << command;
        EXPECT_THAT(log_.all(), testing::ElementsAreArray(messages)) << command;
    }

    orvo::test::TemporaryFolder folder_;
};

} // namespace

// Catches nodes that keep the host's name, lack an attribute or a limit, or start from other values.
TEST_F(CloudNodes, HaveTheirNamesDefaultsAndLimits) {
    for (int i = 0; i < 2; ++i) {
        must("createNode orvosky_ParticleCloudSphere;");
        must("createNode orvosky_ParticleCloudShadingParams;");
    }
    for (const char* name : {"ParticleCloudSphere1", "ParticleCloudSphere2", "ParticleCloudShadingParams1",
                             "ParticleCloudShadingParams2"}) {
        must("objExists " + quoted(name));
        EXPECT_EQ(result_.toInt(), 1) << name;
    }
    const std::string p = "ParticleCloudShadingParams1.", s = "ParticleCloudSphere1.";
    for (const auto& [plug, value] :
         std::initializer_list<std::pair<std::string, double>>{{s + "opacity", 1},
                                                               {s + "density", 1},
                                                               {p + "shadingOpacity", 1},
                                                               {p + "shadingBrightness", 1.1},
                                                               {p + "sunShadowAmount", 0},
                                                               {p + "groundShadowAmount", 0.44},
                                                               {p + "spriteShadowAmount", 0.25},
                                                               {p + "enableSelfShadow", 1},
                                                               {p + "selfShadowAmount", 0.45},
                                                               {p + "selfShadowFalloff", 0.5},
                                                               {p + "lightingSunGlowAmount", 0.3},
                                                               {p + "lightingSunGlowHaloSize", 20},
                                                               {p + "lightingRimGlow", 1.2},
                                                               {p + "sunIntensity", 1}})
        EXPECT_EQ(number(plug), value) << plug;
    for (const auto& [plug, most, least] :
         std::initializer_list<std::tuple<std::string, double, double>>{{s + "opacity", 1, 0},
                                                                        {s + "density", 1, 0},
                                                                        {p + "shadingOpacity", 1, 0},
                                                                        {p + "shadingBrightness", 10, 0},
                                                                        {p + "sunShadowAmount", 1, 0},
                                                                        {p + "groundShadowAmount", 1, 0},
                                                                        {p + "spriteShadowAmount", 1, 0},
                                                                        {p + "selfShadowAmount", 1, 0},
                                                                        {p + "selfShadowFalloff", 1e6, 0},
                                                                        {p + "lightingSunGlowAmount", 10, 0},
                                                                        {p + "lightingSunGlowHaloSize", 100, 0},
                                                                        {p + "lightingRimGlow", 1e6, 0},
                                                                        {p + "sunIntensity", 5, 0},
                                                                        {p + "sunDir1", 1, -1}}) {
        const auto set = [&, name = plug](double value) {
            return mel("setAttr " + quoted(name) + " " + std::to_string(value));
        };
        EXPECT_TRUE(set(most) && set(least)) << plug;
        EXPECT_FALSE(set(least - 0.01)) << plug;
        EXPECT_EQ(set(most + 0.01), most >= 1e6) << plug;
    }
    for (const char* colour : {"cloudColour", "lightingAmbient", "sunColour"})
        must("setAttr " + quoted(p + colour) + " -type \"double3\" 0.1 2 3");
    EXPECT_EQ(number(p + "lightingAmbient0"), 0.1);
    EXPECT_THAT(log_.errors(), testing::Each(testing::HasSubstr("setAttr")));
}

// Catches values that do not survive the way through a file, and messages that differ.
TEST_F(CloudNodes, ParametersGoFromNodeToNode) {
    const std::string file = path("Params.xml");
    must("createNode orvosky_ParticleCloudShadingParams -n \"one\"; createNode orvosky_ParticleCloudShadingParams -n "
         "\"two\"; setAttr \"one.shadingBrightness\" 2.5; setAttr \"one.enableSelfShadow\" 0;"
         "setAttr \"one.cloudColour\" -type \"double3\" 0.25 0.5 0.75; setAttr \"one.sunIntensity\" 3;"
         "setAttr \"one.selfShadowFalloff\" 1.234567; setAttr \"one.shadingTexture\" -type \"string\" "
         "\"d:/other//sky.dds\";");
    log_.clear();
    must(exportCommand + quoted(file) + " \"one\"");
    EXPECT_TRUE(followsSchema(file, "shading-params.xsd"));
    must(importCommand + quoted(path("pARAMS.xml")) + " \"two\"");
    must(importCommand + quoted(file) + " \"two\" 1");
    EXPECT_THAT(
        log_.all(),
        ElementsAre("Info: ShadingParams_Export: Exporting shading params [one] to file [" + file + "] success\n",
                    "Info: ShadingParams_Import: Importing shading params [two] from file [" + path("pARAMS.xml") +
                        "] success\n",
                    "Info: ShadingParams_Import: Importing shading params [two] from file [" + file + "] success\n"));
    EXPECT_EQ(number("two.shadingBrightness"), 2.5);
    EXPECT_EQ(number("two.enableSelfShadow"), 0);
    EXPECT_EQ(number("two.cloudColour2"), 0.75);
    EXPECT_EQ(number("two.selfShadowFalloff"), 1.234567);
    EXPECT_EQ(number("two.sunIntensity"), 1) << "the sun stays";
    must("getAttr \"two.shadingTexture\"");
    EXPECT_EQ(result_.toString(), "d:/other//sky.dds") << "outside of the project: as it was given";
    const std::string inside = (project() / "Build/Sky.dds").string();
    must("setAttr \"one.shadingTexture\" -type \"string\" " + quoted(inside));
    must(exportCommand + quoted(file) + " \"one\"");
    EXPECT_THAT(contents(file), testing::HasSubstr("shading_tex_filepath = \"build\\sky.dds\""));
    must(importCommand + quoted(write("full.xml", withValue(contents(file), "shading_tex_filepath", inside))) +
         " \"two\"");
    must("getAttr \"two.shadingTexture\"");
    EXPECT_EQ(result_.toString(), "build\\sky.dds") << "inside of the project: relative to it";
    must(importCommand + quoted(orvo::test::testData("clouds/library.xml")) + " \"two\"");
    EXPECT_EQ(number("two.shadingBrightness"), 2.5);
    EXPECT_EQ(number("two.lightingSunGlowHaloSize"), 99.5);
}

// The text is written by hand from the format, with the defaults of the node.
TEST_F(CloudNodes, ExportsTheDefaults) {
    must("createNode orvosky_ParticleCloudShadingParams -n \"one\";");
    must(exportCommand + quoted(path("p.xml")) + " \"one\"");
    EXPECT_TRUE(followsSchema(path("p.xml"), "shading-params.xsd"));
    EXPECT_EQ(contents(path("p.xml")), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                       "<OrvoAtmosphere\n"
                                       "\ttype = \"Modeler_ParticleCloudShadingParams\"\n"
                                       "\tversion = \"2\"\n"
                                       "\t>\n"
                                       "\t<ParticleCloudShadingParams\n"
                                       "\t\tshading_tex_filepath = \"\"\n"
                                       "\t\tcloudColour = \"1.000000 1.000000 1.000000\"\n"
                                       "\t\tshadingOpacity = \"1.000000\"\n"
                                       "\t\tshadingBrightness = \"1.100000\"\n"
                                       "\t\tsunShadowAmount = \"0.000000\"\n"
                                       "\t\tgroundShadowAmount = \"0.440000\"\n"
                                       "\t\tspriteShadowAmount = \"0.250000\"\n"
                                       "\t\tenableSelfShadow = \"1\"\n"
                                       "\t\tselfShadowAmount = \"0.450000\"\n"
                                       "\t\tselfShadowFalloff = \"0.500000\"\n"
                                       "\t\tlightingAmbient = \"0.100000 0.100000 0.200000\"\n"
                                       "\t\tlightingSunGlowAmount = \"0.300000\"\n"
                                       "\t\tlightingSunGlowHaloSize = \"20.000000\"\n"
                                       "\t/>\n"
                                       "</OrvoAtmosphere>\n");
}

// Catches a file that is taken in part before its fault is found, and a failure that gives no reason.
TEST_F(CloudNodes, ARefusedFileChangesNothing) {
    must("createNode orvosky_ParticleCloudShadingParams -n \"one\"; setAttr \"one.shadingOpacity\" 0.5;");
    const std::string good = contents(orvo::test::testData("clouds/shading.xml"));
    // The last one that is read.
    const std::string file = write("p.xml", withoutAttribute(good, "cloudColour"));
    const std::string reason =
        file + ", line 6: element ParticleCloudShadingParams: attribute \"cloudColour\" is missing";
    const std::string failed = "ShadingParams_Import: Importing shading params [one] from file [" + file + "] FAILED\n";
    for (const char* quiet : {"", " 0", " 1", " true"})
        expectFailure(importCommand + quoted(file) + " \"one\"" + quiet, {"Warning: " + reason, "Info: " + failed});
    EXPECT_EQ(number("one.shadingOpacity"), 0.5);
    EXPECT_EQ(number("one.selfShadowFalloff"), 0.5);
    EXPECT_FALSE(mel(importCommand + quoted(path("none.xml")) + " \"one\""));
    EXPECT_FALSE(mel(importCommand + quoted(folder_.string()) + " \"one\""));
    expectFailure(
        exportCommand + quoted(path("none/p.xml")) + " \"one\"",
        {"Info: ShadingParams_Export: Exporting shading params [one] to file [" + path("none/p.xml") + "] FAILED\n"});
}

// Catches arguments that are read past, messages of the wrong level or wording, and nodes of other types.
TEST_F(CloudNodes, CommandsTellWhatIsWrongWithTheirArguments) {
    must("createNode orvosky_ParticleCloudShadingParams -n \"p\"; createNode transform -n \"other\";");
    const std::string e = "Error: ParticleCloudShadingParams_ExportDataCommand";
    const std::string usage = e + " incorrect syntax given! :(  Usage: \"ParticleCloudShadingParams_ExportDataCommand "
                                  "filePath paramsLocatorName\"   bailing.";
    expectFailure(exportCommand, {usage});
    expectFailure(exportCommand + "\"a\"", {usage});
    expectFailure(exportCommand + "\"a\" \"p\" 1", {usage});
    expectFailure(exportCommand + "\"\" \"p\"", {e + "   Could not get filePath."});
    expectFailure(exportCommand + "{\"a\"} \"p\"", {e + "   Could not get filePath."});
    expectFailure(exportCommand + "\"a\" {\"p\"}", {e + "   Could not get nodeName."});
    expectFailure(exportCommand + "\"a\" \"p\"", {e + "   Could not get nodeName."});
    for (const char* name : {"", "none", "other"})
        expectFailure(exportCommand + "\"a\" " + quoted(name), {e + "   Could not get shading params node pointer."});

    const std::string i = "ParticleCloudShadingParams_ImportDataCommand";
    const std::string importUsage = "Error: " + i + " incorrect syntax given! :(  Usage: \"" + i +
                                    " filePath paramsLocatorName <quiet>\"   bailing.";
    expectFailure(importCommand + "\"a\"", {importUsage});
    expectFailure(importCommand + "\"a\" \"p\" 1 1", {importUsage});
    expectFailure(importCommand + "\"\" \"p\"", {"Info: " + i + "   Could not get filePath."});
    expectFailure(importCommand + "{\"a\"} \"p\"", {"Info: " + i + "   Could not get filePath."});
    expectFailure(importCommand + "\"a\" \"\"", {"Info: " + i + "   Could not get nodeName."});
    for (const char* name : {"none", "other"})
        expectFailure(importCommand + "\"a\" " + quoted(name),
                      {"Info: " + i + "   Could not get shading params node pointer."});
    must(importCommand + quoted(orvo::test::testData("clouds/shading.xml")) + " \"p\""); // one letter is enough here
}

// Catches a shape that is not drawn, is filled, ignores its transform, or leaves GL in another state: the second frame,
// and the shapes after the first one, would show it.
TEST_F(CloudNodes, AShapeIsDrawnAsAWireEllipsoid) {
    std::string error;
    const auto view = host::viewport::Viewport::create(101, 101, &error);
    if (!view) GTEST_SKIP() << error;
    // Parallel rays along -Z, 10 units wide: a pixel is a tenth of a unit.
    must("setAttr \"persp.translate\" 0 0 50; setAttr \"persp.rotate\" 0 0 0; setAttr \"perspShape.orthographic\" 1;"
         "setAttr \"perspShape.orthographicWidth\" 10.1;");
    must("createNode transform -n \"t\"; createNode orvosky_ParticleCloudSphere -n \"shape\" -p \"t\";"
         "setAttr \"t.scale\" 4 2 1;");
    for (int frame = 0; frame < 2; ++frame) {
        ASSERT_TRUE(view->render(&error)) << error;
        const auto picture = view->picture();
        const auto lit = [&](int x, int y) {
            const auto* pixel = picture.at(x, y);
            return pixel[0] || pixel[1] || pixel[2];
        };
        int count = 0, left = 101, right = -1, top = 101, bottom = -1;
        for (int y = 0; y < 101; ++y)
            for (int x = 0; x < 101; ++x)
                if (lit(x, y)) {
                    ++count;
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
        EXPECT_NEAR(left, 10, 1);
        EXPECT_NEAR(right, 90, 1);
        EXPECT_NEAR(top, 30, 1);
        EXPECT_NEAR(bottom, 70, 1);
        EXPECT_GT(count, 200);
        EXPECT_LT(count, 2200) << "an ellipse of these half axes covers 2513 pixels";
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}
