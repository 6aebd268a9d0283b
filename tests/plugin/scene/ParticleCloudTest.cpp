// Particle clouds in a scene: gathering, the commands, autoUpdate, and the exported files read back.
#include "Common/Checksums.h"
#include "GlPrograms.h"
#include "PluginScene.h"
#include "Schema.h"
#include "SkyTool/clouds/CloudGeneration.h"
#include "kit/PixelCamera.h"
#include "kit/Places.h"

#include "kit/TemporaryFolder.h"
#include "viewport/Viewport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <regex>
#include <unistd.h>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// A shape of the test cloud: an axis-aligned ellipsoid, in centimetres.
struct Ellipsoid {
    double centre[3], radii[3], opacity, density;
};
const Ellipsoid shapes[] = {
    {{1000, 50000, -2000}, {30000, 12000, 20000}, 1.0, 1.0},
    {{20000, 56000, 3000}, {18000, 15000, 16000}, 0.75, 0.5},
    {{-9000, 58000, 0}, {16000, 14000, 15000}, 0.5, 1.0},
    {{4000, 55000, 5000}, {20000, 9000, 20000}, 1.0, 1.0},
};

std::string number(double v) { return std::to_string(v); }

class ParticleCloudScene : public PluginScene {
protected:
    ParticleCloudScene() {
        must("createNode transform -n \"OrvoSkyData\"; createNode transform -n \"settings\" -p \"OrvoSkyData\";"
             "createNode orvosky_SkySceneSettings -p \"settings\"; createNode orvosky_SkyRenderer;");
        log_.clear();
    }

    void shading() {
        must("createNode transform -n \"shading\" -p \"OrvoSkyData\";"
             "createNode orvosky_ParticleCloudShadingParams -n \"shadingShape\" -p \"shading\";"
             "rename `listRelatives -shapes shading` shadingShape;"
             "setAttr -type \"string\" shadingShape.shadingTexture \"build/clouds/none.dds\";");
    }
    /// A group with the cloud node `name` below a transform of its own, and without shapes.
    void cloud(const std::string& name = "puff") {
        must("createNode transform -n \"" + name + "Group\" -p \"OrvoSkyData\"; createNode transform -n \"" + name +
             "Cloud\" -p \"" + name + "Group\"; createNode orvosky_ParticleCloud -p \"" + name +
             "Cloud\"; rename `listRelatives -shapes " + name + "Cloud` \"" + name + "\";");
    }
    void shape(const Ellipsoid& e, const std::string& name = "puff") {
        const auto three = [](const double* v) { return number(v[0]) + " " + number(v[1]) + " " + number(v[2]); };
        must("string $t = `createNode transform -p \"" + name + "Group\"`; setAttr ($t + \".t\") " + three(e.centre) +
             "; setAttr ($t + \".s\") " + three(e.radii) +
             "; string $s = `createNode orvosky_ParticleCloudSphere -p $t`; $s = `rename $s \"sphere#\"`;"
             "setAttr ($s + \".opacity\") " +
             number(e.opacity) + "; setAttr ($s + \".density\") " + number(e.density));
    }
    void wholeCloud(const std::string& name = "puff") {
        cloud(name);
        for (const Ellipsoid& e : shapes) shape(e, name);
    }
    bool refresh(const std::string& names = "puff") { return mel("orvosky_ParticleCloud_RenderCloudCommand " + names); }
    std::string exported() {
        must("orvosky_SaveSkySystemToXMLCommand \"" + (folder_ / "sky.atmos").string() + "\"");
        EXPECT_TRUE(followsSchema(folder_ / "sky.atmos", "atmos.xsd"));
        return contents(folder_ / "sky.atmos");
    }
    /// The numbers of an attribute of the first ParticleCloud element.
    static std::vector<double> values(const std::string& atmos, const std::string& name) {
        const auto element = atmos.find("<ParticleCloud\n");
        std::smatch found;
        const std::string text = element == std::string::npos ? "" : atmos.substr(element);
        if (!std::regex_search(text, found, std::regex("\\b" + name + " *= \"([^\"]*)\""))) return {};
        std::istringstream numbers(found[1].str());
        std::vector<double> list;
        for (double v; numbers >> v;) list.push_back(v);
        return list;
    }
    /// The whole cloud's shapes as the generator takes them, for a cloud that is named "puff".
    static orvo::CloudShapeSet shapeSet() {
        orvo::CloudShapeSet set;
        std::vector<orvo::Matrix44> worlds;
        for (const Ellipsoid& e : shapes) {
            orvo::Matrix44 world = orvo::translationMatrix({e.centre[0], e.centre[1], e.centre[2]});
            for (int i = 0; i < 3; ++i) world.m[i][i] = e.radii[i];
            worlds.push_back(world);
            set.spheres.push_back({orvo::MatrixInverse(world, 1e-10), e.opacity, e.density});
        }
        const orvo::Sphere bounds = orvo::boundsOfShapes(worlds);
        set.boundCentre = bounds.centre;
        set.boundRadius = bounds.radius;
        set.seed = orvo::Crc32("puff");
        return set;
    }
    /// A picture of the scene. The nodes let go what they hold of GL while its context is there.
    static host::viewport::Picture draw(int width, int height) {
        const auto run = [](const char* script) { host::Host::instance().interpreter().execute(script); };
        std::string error;
        auto view = host::viewport::Viewport::create(width, height, &error);
        EXPECT_TRUE(view && view->render(&error)) << error;
        if (!view) return {};
        host::viewport::Picture picture = view->picture();
        run("if (`objExists puff`) setAttr puff.enable 0;");
        view->render();
        run("if (`objExists puff`) setAttr puff.enable 1;");
        return picture;
    }
    static void drawOnce() { draw(16, 9); }

    orvo::test::TemporaryFolder folder_;
};

// Faults: an element that says of self-shadow what the parameters are by now, beside records that were made before; an
// old cloud exported in silence; an update that leaves it old, or makes it again for nothing.
TEST_F(ParticleCloudScene, AnOldCloudIsExportedAsWhatItIs) {
    shading();
    wholeCloud();
    must("setAttr puff.autoUpdate 0; setAttr \"OrvoSkyData.v\" 0; setAttr shadingShape.selfShadowAmount 0.25");
    for (const bool shadow : {true, false}) {
        must("setAttr shadingShape.enableSelfShadow " + number(shadow) + "; orvosky_UpdateSkySystemCommand");
        must("setAttr shadingShape.enableSelfShadow " + number(!shadow));
        log_.clear();
        const std::string atmos = exported();
        EXPECT_THAT(log_.all(), testing::Contains("Warning: ParticleCloud::SaveToXML:  [puff] is out of date: it is "
                                                  "exported as it was last generated\n"));
        const double sprites = values(atmos, "numSprites").at(0);
        EXPECT_EQ(fs::file_size(folder_ / "sky.cdata"), sprites * (shadow ? 16 : 8) + 1);
        EXPECT_THAT(values(atmos, "cloudSelfShadowEnable"), ElementsAre(shadow));
        EXPECT_EQ(values(atmos, "cloudSelfShadowAmount"), shadow ? std::vector{0.25} : std::vector<double>());
    }
    must("orvosky_UpdateSkySystemCommand");
    log_.clear();
    EXPECT_THAT(values(exported(), "cloudSelfShadowEnable"), ElementsAre(1));
    EXPECT_THAT(log_.all(), ElementsAre(StartsWith("Info: SaveSkySystemToXML:  Export to file")));
}

// Faults: a failed gathering that says nothing, the wrong thing or without its place, or that stops at one bad shape.
TEST_F(ParticleCloudScene, SaysWhyItCannotGather) {
    shading();
    const auto errorsOf = [&](const char* setup) {
        must(setup);
        log_.clear();
        EXPECT_TRUE(refresh("lonely"));
        return log_.errors();
    };
    const std::string prefix = "ParticleCloud::GenerateSpriteData:  ";
    const auto placed = StartsWith("In SkyTool\\ParticleCloud, line ");
    EXPECT_THAT(errorsOf("createNode transform -n lift; createNode orvosky_ParticleCloud -p lift;"
                         "rename `listRelatives -shapes lift` lonely;"),
                ElementsAre(placed, prefix + "couldn't get parents from locator\n"));
    EXPECT_THAT(errorsOf("group -n pack lift;"),
                ElementsAre(placed, prefix + "Couldn't get enough cloud shape objects to work with.\n"));
    EXPECT_THAT(errorsOf("createNode transform -n other -p pack;"),
                ElementsAre(placed, prefix + "object 1 is not valid. ignoring", placed,
                            prefix + "No cloud shape spheres found in group.\n"));
    EXPECT_THAT(errorsOf("createNode transform -n ball -p pack; setAttr ball.s 50000 50000 50000;"
                         "createNode orvosky_ParticleCloudSphere -p ball;"),
                ElementsAre(placed, prefix + "object 1 is not valid. ignoring"));
    EXPECT_THAT(log_.infos(), testing::Contains(HasSubstr("Cloud [lonely]  produced [")));
}

// Faults: a command that takes what it should refuse, or refuses it in another's words.
TEST_F(ParticleCloudScene, CommandsRefuseWhatTheyCannotUse) {
    cloud();
    const std::string render = "orvosky_ParticleCloud_RenderCloudCommand ",
                      texture = "orvosky_ParticleCloud_RefreshTextureCommand ",
                      library = "orvosky_ParticleCloud_ExportDataCommand ";
    const std::string unopened = (folder_ / "no" / "x.xml").string();
    const struct {
        std::string call, message;
    } cases[] = {
        {render, "BulkVegBillboard_DoDistributionCommand   No cloud names given in which to render! :("},
        {render + "nobody", "ParticleCloud_RenderCloudCommand   Failed to find cloud instance objects! :("},
        {render + "settings", "ParticleCloud_RenderCloudCommand   Failed to find cloud instance objects! :("},
        {render + "puff {1}", "ParticleCloud_RenderCloudCommand   Could not get cloud names from argument list."},
        {texture, "ParticleCloud_RefreshTextureCommand   No cloud names given in which to refresh! :("},
        {texture + "puff", "ParticleCloud_RefreshTextureCommand   could not find particle cloud shading params."},
        {library, "ParticleCloud_ExportDataCommand incorrect syntax given! :(  Usage: "
                  "\"ParticleCloud_ExportDataCommand xmlPath cloudInstanceNames[]\"   bailing."},
        {library + "\"\" puff", "ParticleCloud_ExportDataCommand   Could not get filePath."},
        {library + "\"x.xml\"", "ParticleCloud_ExportDataCommand   No cloud names given! :("},
        {library + "\"x.xml\" puff nobody",
         "ParticleCloud_ExportDataCommand   Failed to find cloud instance objects! :("},
    };
    for (const auto& c : cases) {
        log_.clear();
        EXPECT_FALSE(mel(c.call)) << c.call;
        EXPECT_THAT(log_.errors(), ElementsAre(StartsWith("In SkyTool\\ParticleCloudCommands, line "), c.message))
            << c.call;
    }
    for (const Ellipsoid& e : shapes) shape(e);
    log_.clear();
    EXPECT_FALSE(mel(library + "\"" + unopened + "\" puff"));
    EXPECT_THAT(log_.errors(), testing::Contains("ParticleCloud_ExportDataCommand: Error.  could not open file [" +
                                                 unopened + "] for export."));
    shading();
    EXPECT_TRUE(mel(texture + "puff")) << failure_;
}

// Faults: sprites in another frame, scale, order or byte order than a reader undoes; a wrong address, size or record.
// The reader here knows the two written files alone; where the sprites are comes from the generator.
TEST_F(ParticleCloudScene, AReaderFindsTheSpritesWhereTheyAre) {
    for (const bool shadow : {true, false}) {
        host::scene::Scene::current().reset();
        must("createNode transform -n \"OrvoSkyData\"; createNode orvosky_SkySceneSettings -p \"OrvoSkyData\";");
        shading();
        must("setAttr shadingShape.enableSelfShadow " + number(shadow) + "; setAttr shadingShape.selfShadowFalloff 2;");
        wholeCloud();
        must("setAttr puff.enableGroundFade 1;");
        ASSERT_TRUE(refresh());
        const std::string atmos = exported(), data = contents(folder_ / "sky.cdata");

        const double third = 1 / std::sqrt(3.0); // the node's own sun direction, (1, 1, 1), made of unit length
        const orvo::CloudShapeSet set = shapeSet();
        const auto geom = orvo::GenerateSprites(set, 10000, 20000, shadow, {third, third, third}, true, 6000, -2000);
        ASSERT_GT(geom->numSprites, 50);

        ASSERT_EQ(values(atmos, "numSprites"), std::vector<double>{double(geom->numSprites)});
        EXPECT_EQ(values(atmos, "vertexDataAddress"), std::vector<double>{0});
        const std::size_t record = shadow ? 16 : 8;
        ASSERT_EQ(data.size(), geom->numSprites * record + 1);
        EXPECT_EQ(data.back(), 1);
        const auto culling = values(atmos, "cullingSpherePos"), centre = values(atmos, "geomBoundSpherePos");
        const double radius = values(atmos, "geomBoundSphereRadius")[0];
        EXPECT_NEAR(values(atmos, "cullingSphereRadius")[0], set.boundRadius / 100, 1e-5);
        for (int i = 0; i < geom->numSprites; ++i) {
            const auto* bytes = reinterpret_cast<const unsigned char*>(data.data()) + i * record;
            for (int k = 0; k < 3; ++k) {
                const auto c = static_cast<std::int16_t>(bytes[2 * k] << 8 | bytes[2 * k + 1]);
                EXPECT_NEAR(culling[k] + centre[k] + c / 32767.0 * radius, geom->positions[i * 12 + k] / 100,
                            radius / 32767 + 2e-6)
                    << "sprite " << i << ", coordinate " << k;
            }
            ASSERT_EQ(bytes[6], static_cast<int>(geom->randoms[i * 4] * 256) & 0xFF);
            for (int s = 0; shadow && s < 8; ++s) {
                const double depth = (s < 4 ? geom->shadowCube0 : geom->shadowCube1)[i * 16 + s % 4];
                ASSERT_EQ(bytes[8 + s], static_cast<int>(std::exp(-0.02 * depth) * 256) & 0xFF);
            }
        }
    }
}

// Faults: an element or a success line lost, the seed not the name's, a library without its shading or not to be read.
TEST_F(ParticleCloudScene, ExportsALibraryThatADomeReads) {
    shading();
    wholeCloud("first");
    wholeCloud("second");
    must("setAttr first.particleSize 120.5; setAttr first.enableGroundFade 1; setAttr first.groundFadeEnd -10;");
    log_.clear();
    const std::string path = (folder_ / "lib.xml").string();
    must("orvosky_ParticleCloud_ExportDataCommand \"" + path + "\" {\"first\", \"second\"}");
    EXPECT_THAT(log_.all(),
                ElementsAre("Info: CloudExport: Exporting cloud [first] to file [" + path + "] success\n",
                            "Info: CloudExport: Exporting cloud [second] to file [" + path + "] success\n"));
    EXPECT_TRUE(followsSchema(path, "particle-cloud-library.xsd"));
    const std::string text = contents(path);
    EXPECT_THAT(text, StartsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<OrvoAtmosphere\n"
                                 "\ttype = \"Modeler_ParticleCloudLibrary\"\n\tversion = \"1\"\n\t>\n"
                                 "\t<ParticleCloudShadingParams\n"));
    // CRC-32 of "first" and "second" by another tool, as signed numbers.
    EXPECT_THAT(text, HasSubstr("randSeed = \"-1838027177\""));
    EXPECT_THAT(text, HasSubstr("randSeed = \"-1239477911\""));
    EXPECT_THAT(text, HasSubstr("\t\tspriteSize = \"120.500000\"\n"));
    EXPECT_THAT(text, HasSubstr("\t\tgroundFadeStart = \"70.000000\"\n\t\tgroundFadeEnd = \"-10.000000\"\n"));

    must("createNode transform -n dome -p OrvoSkyData; createNode orvosky_ParticleCloudDome -p dome;"
         "rename `listRelatives -shapes dome` domeShape;");
    log_.clear();
    must("orvosky_ParticleCloudDome_LoadFromDiskCommand \"" + path + "\" domeShape");
    EXPECT_THAT(log_.all(), ElementsAre(StartsWith("Info: CLOUDS PRODUCED [")));
    EXPECT_THAT(exported(), HasSubstr("enableDomePositioning = \"1\""));
}

// Faults: a draw that regenerates while it should not, or does not while it should; sprites that differ from run to
// run; a seed that does not follow the name.
// Faults: an earlier library emptied by clouds that have no shapes, or by a place that cannot be written.
TEST_F(ParticleCloudScene, KeepsALibraryThatItCannotReplace) {
    shading();
    wholeCloud("first");
    cloud("bare");
    const fs::path path = folder_ / "lib.xml";
    std::ofstream(path) << "earlier";
    log_.clear();
    EXPECT_FALSE(mel("orvosky_ParticleCloud_ExportDataCommand \"" + path.string() + "\" bare"));
    EXPECT_THAT(log_.infos(),
                ElementsAre("CloudExport: Exporting cloud [bare] to file [" + path.string() + "] FAILED\n"));
    EXPECT_EQ(contents(path), "earlier");
    log_.clear();
    EXPECT_FALSE(mel("orvosky_ParticleCloud_ExportDataCommand \"" + path.string() + "\" {\"bare\", \"first\"}"));
    EXPECT_EQ(log_.infos().size(), 2u);
    EXPECT_TRUE(followsSchema(path, "particle-cloud-library.xsd")) << "what could be had is there";
}

TEST_F(ParticleCloudScene, FollowsTheSceneWhileAutoUpdateIsOn) {
    shading();
    wholeCloud();
    drawOnce(); // before the first refresh nothing is generated
    EXPECT_EQ(exported().find("<ParticleCloud\n"), std::string::npos);
    ASSERT_TRUE(refresh());
    const std::string first = exported(), data = contents(folder_ / "sky.cdata");
    ASSERT_TRUE(refresh());
    EXPECT_EQ(exported(), first);
    EXPECT_EQ(contents(folder_ / "sky.cdata"), data);

    for (const char* change :
         {"setAttr puff.particleDensity 8000", "setAttr puff.particleSize 150", "setAttr puff.enableGroundFade 1",
          "setAttr puff.groundFadeEnd -60", "setAttr shadingShape.enableSelfShadow 0",
          "setAttr shadingShape.enableSelfShadow 1; setAttr shadingShape.sunDir 0 1 0", "setAttr sphere1.density 0.4",
          "move -r 0 900 0 `listRelatives -parent sphere2`"}) {
        exported();
        const std::string still = contents(folder_ / "sky.cdata");
        must("setAttr puff.autoUpdate 0");
        must(change);
        drawOnce();
        exported();
        EXPECT_TRUE(contents(folder_ / "sky.cdata") == still) << change;
        must("setAttr puff.autoUpdate 1");
        drawOnce();
        exported();
        EXPECT_FALSE(contents(folder_ / "sky.cdata") == still) << change;
    }
    // Faults: sprites generated anew for what they do not follow from.
    must("setAttr shadingShape.enableSelfShadow 0; setAttr puff.enableGroundFade 0;");
    drawOnce();
    must("setAttr shadingShape.sunDir 0 0 1; setAttr puff.groundFadeEnd -50;");
    log_.clear();
    exported();
    EXPECT_THAT(log_.all(), testing::Not(testing::Contains(HasSubstr("is out of date"))));
    must("setAttr puff.autoUpdate 0; rename puff other;");
    const std::string renamed = contents(folder_ / "sky.cdata");
    ASSERT_TRUE(refresh("other"));
    exported();
    EXPECT_NE(contents(folder_ / "sky.cdata"), renamed);
}

// Faults: sprites drawn elsewhere, larger, in another order or with another blend than documented; a pixel stage that
// lights otherwise; a puff of another shape. Every pixel is worked out from the generator's sprites in plain C++. The
// three shadows are off, so that a sprite's corners are lit alike.
TEST_F(ParticleCloudScene, LooksLikeItsFormulas) {
    constexpr int width = 192, height = 108;
    makeToolsRoot(orvo::test::shaders());
    shading();
    must("setAttr shadingShape.enableSelfShadow 0; setAttr shadingShape.sunShadowAmount 0;"
         "setAttr shadingShape.groundShadowAmount 0; setAttr shadingShape.spriteShadowAmount 0.6;"
         "setAttr shadingShape.shadingOpacity 0.7; setAttr shadingShape.shadingBrightness 1.2;"
         "setAttr shadingShape.cloudColour 1 0.9 0.8; setAttr shadingShape.lightingAmbient 0.1 0.2 0.4;"
         "setAttr shadingShape.lightingSunGlowAmount 0.7; setAttr shadingShape.lightingSunGlowHaloSize 40;"
         "setAttr shadingShape.sunDir 0.2 0.1 -1; setAttr shadingShape.sunColour 1 0.8 0.5;"
         "setAttr shadingShape.sunIntensity 0.6;");
    wholeCloud();
    // Where the cloud's own transform is does not matter.
    must("for ($s in `ls -type orvosky_ParticleCloudSphere`) setAttr ($s + \".v\") 0;"
         "setAttr puff.particleDensity 1500; setAttr puff.particleSize 400; setAttr puff.renderDepthTest 1;"
         "setAttr puffCloud.t 900 -700 50;"
         "setAttr puffCloud.r 10 20 30; setAttr persp.t 3000 50000 130000; setAttr persp.r 2 4 0;"
         "setAttr perspShape.farClipPlane 10000000;");
    ASSERT_TRUE(refresh());
    const auto picture = draw(width, height);
    EXPECT_THAT(log_.errors(), testing::IsEmpty());
    const auto geom = orvo::GenerateSprites(shapeSet(), 1500, 40000, false, {0, 1, 0}, false, 6000, -2000);
    ASSERT_GT(geom->numSprites, 4);

    using orvo::Vector3;
    const Vector3 eye{3000, 50000, 130000}, sunDir = orvo::normalised({0.2, 0.1, -1});
    const Vector3 sun{0.6, 0.48, 0.3}, ambient{0.1, 0.2, 0.4}, cloud{1.2, 1.08, 0.96}; // with the brightness
    std::vector<int> order;
    const auto centre = [&](int i) {
        const float* p = &geom->positions[static_cast<std::size_t>(i) * 12];
        return Vector3{p[0], p[1], p[2]};
    };
    for (int i = 0; i < geom->numSprites; ++i) order.push_back(i);
    std::ranges::sort(order, std::greater(), [&](int i) { return length(centre(i) - eye); });
    const twin::PixelCamera camera{.eye = {}, .pitch = 2, .yaw = 4, .width = width, .height = height};
    int covered = 0;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const auto d = camera.direction(column, row);
            const Vector3 ray{d.x, d.y, d.z};
            double colour[3]{};
            for (const int i : order) {
                const Vector3 normal = orvo::normalised(centre(i) - eye);
                const Vector3 side = orvo::normalised(cross(normal, {0, 1, 0})), up = cross(side, normal);
                const Vector3 hit = ray * (dot(centre(i) - eye, normal) / dot(ray, normal)) - (centre(i) - eye);
                const double u = dot(hit, side) / 20000, v = dot(hit, up) / 20000; // -1 to 1 over the sprite
                if (std::abs(u) >= 1 || std::abs(v) >= 1) continue;
                const double inside = std::max(0.0, 1 - u * u - v * v);
                const double alpha = inside * inside * geom->opacities[static_cast<std::size_t>(i) * 4] * 0.7;
                const double lit = 1 - 0.6 * std::fmod(geom->randoms[static_cast<std::size_t>(i) * 4] * 4, 1);
                const double glow = 0.7 * std::pow(std::max(dot(ray, sunDir), 0.0), 200 / 40.0);
                const Vector3 light = ambient * (1 - lit) + sun * lit + sun * (glow * lit);
                const Vector3 shown{light.x * cloud.x, light.y * cloud.y, light.z * cloud.z};
                for (int k = 0; k < 3; ++k) colour[k] = std::min(1.0, colour[k] * (1 - alpha) + (&shown.x)[k] * alpha);
            }
            covered += colour[0] > 0.2;
            for (int k = 0; k < 3; ++k)
                ASSERT_NEAR(picture.at(column, row)[k], colour[k] * 255, 4)
                    << "column " << column << ", row " << row << ", channel " << k;
        }
    }
    EXPECT_GT(covered, 2000);
}

// Faults: a value that goes into another's uniform or in the wrong unit, the wrong one of the two programs, a texture
// that is not loaded, not changed with its path, or not read again on command, a switch without effect, and bounds
// beside the sprites. The light's own formulas are tested with the shaders.
TEST_F(ParticleCloudScene, DrawsWithTheNodesValues) {
    makeToolsRoot(orvo::test::shaders());
    shading();
    must("setAttr shadingShape.sunShadowAmount 0.125; setAttr shadingShape.groundShadowAmount 0.25;"
         "setAttr shadingShape.selfShadowAmount 0.75; setAttr shadingShape.selfShadowFalloff 2;"
         "setAttr shadingShape.sunDir 0 0 -1;");
    wholeCloud();
    must("for ($s in `ls -type orvosky_ParticleCloudSphere`) setAttr ($s + \".v\") 0;"
         "setAttr puff.particleDensity 1500; setAttr puff.particleSize 150; setAttr puff.groundShadowOffset 30;"
         "setAttr puff.enableGroundFade 1; setAttr puff.groundFadeEnd -60; setAttr puffCloud.t 900 -700 50;"
         "setAttr puffCloud.s 2 3 4; setAttr persp.t 3000 50000 130000; setAttr persp.r 0 0 0;"
         "setAttr perspShape.farClipPlane 10000000;");
    must("exactWorldBoundingBox puffCloud");
    EXPECT_THAT(result_.toFloatArray(), ElementsAre(900, -700, 50, 902, -697, 54)) << "the unit box";
    ASSERT_TRUE(refresh());
    const orvo::CloudShapeSet set = shapeSet();
    const auto geom = orvo::GenerateSprites(set, 1500, 15000, false, {0, 0, -1}, true, 2000, -6000);
    ASSERT_GT(geom->numSprites, 4);
    const orvo::Vector3 centre = set.boundCentre + geom->boundCentre;
    must("exactWorldBoundingBox puffCloud");
    const double r = geom->boundRadius;
    using testing::DoubleNear;
    EXPECT_THAT(result_.toFloatArray(), ElementsAre(DoubleNear(centre.x - r, 0.1), DoubleNear(centre.y - r, 0.1),
                                                    DoubleNear(centre.z - r, 0.1), DoubleNear(centre.x + r, 0.1),
                                                    DoubleNear(centre.y + r, 0.1), DoubleNear(centre.z + r, 0.1)));

    std::string error;
    const auto view = host::viewport::Viewport::create(96, 54, &error);
    ASSERT_TRUE(view) << error;
    const auto picture = [&](const std::string& change) {
        must(change);
        EXPECT_TRUE(view->render(&error)) << error;
        const auto drawn = view->picture();
        return std::vector<unsigned char>(drawn.at(0, 0), drawn.at(0, 0) + 96 * 54 * 3);
    };
    const auto c = [](double v) { return static_cast<float>(v); };
    const std::vector<float> eye{3000, 50000, 130000},
        at{c(set.boundCentre.x), c(set.boundCentre.y), c(set.boundCentre.z)};
    const char *cube = "selfShadowFalloff", *any = "groundShadowOffset", *none = "none";
    for (const bool shadow : {true, false}) {
        picture("setAttr shadingShape.enableSelfShadow " + number(shadow));
        const auto value = [&](const char* name) {
            return left::uniform(name, shadow ? cube : any, shadow ? none : cube).value_or(std::vector<float>());
        };
        EXPECT_EQ(value("eyePoint"), eye) << shadow;
        EXPECT_EQ(value("cloudCenter"), at);
        EXPECT_EQ(value("domeoffset"), (std::vector<float>{0, 0, 0}));
        EXPECT_EQ(value("sunDir"), (std::vector<float>{0, 0, -1}));
        for (const auto& [name, expected] :
             std::initializer_list<std::pair<const char*, float>>{{"spriteSize", 15000.0f},
                                                                  {"domeopacity", 1.0f},
                                                                  {"sunShadowAmount", 0.125f},
                                                                  {"groundShadowAmount", 0.25f},
                                                                  {"groundShadowOffset", 3000.0f},
                                                                  {"enableGroundFade", 1.0f},
                                                                  {"groundFadeStart", 2000.0f},
                                                                  {"groundFadeEnd", -6000.0f}})
            EXPECT_EQ(value(name), (std::vector<float>{expected, 0, 0})) << name;
        if (!shadow) continue;
        EXPECT_EQ(value("selfShadowAmount"), (std::vector<float>{0.75f, 0, 0}));
        EXPECT_EQ(value("selfShadowFalloff"), (std::vector<float>{0.02f, 0, 0}));
        EXPECT_EQ(left::uniform("spriteSize", any, cube), (std::vector<float>{0, 0, 0})) << "the other program";
    }

    EXPECT_EQ(left::texturesOfWidth(64), 1) << "the puff";
    fs::create_directories(project() / "build");
    fs::copy_file(orvo::test::testData("textures/alpha-TopLeft-RLE.tga"), project() / "build/small.tga");
    const auto textured = picture("setAttr -type \"string\" shadingShape.shadingTexture \"build/small.tga\"");
    EXPECT_EQ(left::texturesOfWidth(64), 0);
    EXPECT_EQ(left::texturesOfWidth(8), 1);
    fs::remove(project() / "build/small.tga");
    EXPECT_EQ(picture(""), textured);
    picture("orvosky_ParticleCloud_RefreshTextureCommand puff");
    EXPECT_EQ(left::texturesOfWidth(64), 1);

    const auto cloud = picture("setAttr puff.renderDepthTest 1"), wires = picture("setAttr puff.renderWireFrame 1");
    EXPECT_NE(cloud, wires);
    const auto hidden = picture("polyCube -n wall -w 900000 -h 900000 -d 100; setAttr wall.tz 100000;"
                                "delete `ls -type orvosky_SkyRenderer`; createNode orvosky_SkyRenderer;");
    const auto over = picture("setAttr puff.renderDepthTest 0"), wall = picture("setAttr puff.enable 0");
    EXPECT_EQ(hidden, wall);
    EXPECT_NE(over, wall);
}

// Faults: shaders that are missing or do not compile without a word, or in another's words.
TEST_F(ParticleCloudScene, SaysWhatIsWrongWithItsShaders) {
    shading();
    wholeCloud();
    ASSERT_TRUE(refresh());
    const fs::path shaders = folder_ / "shaders";
    fs::copy(orvo::test::shaders(), shaders);
    const std::pair<const char*, const char*> stages[] = {{"FixedDir", "fixed dir"}, {"ShadowCube", "shadow cube"}};
    for (const auto& [file, name] : stages) {
        const fs::path stage = shaders / (std::string("ParticleCloudSprite") + file + ".vert");
        const std::string good = contents(stage);
        std::ofstream(stage) << "void main() { nonsense }";
        makeToolsRoot(shaders);
        log_.clear();
        drawOnce();
        EXPECT_THAT(log_.errors(), ElementsAre(StartsWith("In SkyTool"),
                                               StartsWith("ParticleCloud:  sprite " + std::string(name) +
                                                          " shader did not compile! :(  \n\nErrorReport:\n")));
        std::ofstream(stage) << good;
    }
    must("global proc string OrvoGetPath_ToolsRoot() { return \"" + folder_.string() + "/\"; }");
    log_.clear();
    drawOnce();
    EXPECT_THAT(log_.errors(), testing::Contains("ParticleCloud:  could not find shader files! :("));
    makeToolsRoot(orvo::test::shaders());
}

// Faults: hostile shapes that crash or hang the generation, or candidates without end.
TEST_F(ParticleCloudScene, StandsBadShapesAndDensities) {
    shading();
    cloud();
    shape({{0, 0, 0}, {0, 0, 0}, 1, 1});             // of no size
    shape({{0, 0, 0}, {-20000, 15000, 9000}, 1, 1}); // mirrored
    shape({{0, 0, 0}, {1e30, 1e30, 1e30}, 1, 1});
    EXPECT_TRUE(refresh());
    must("delete `listRelatives -parent sphere3`; setAttr puff.particleDensity 1e15;");
    log_.clear();
    EXPECT_TRUE(refresh());
    EXPECT_THAT(log_.infos(), ElementsAre("ParticleCloud_RenderCloudCommand:  Cloud [puff]  produced [0] sprites\n"));
    EXPECT_EQ(exported().find("CloudVertData"), std::string::npos);
    must("setAttr puff.particleDensity 10000;");
    log_.clear();
    EXPECT_TRUE(refresh());
    EXPECT_THAT(log_.infos(), testing::Not(ElementsAre(HasSubstr("produced [0]"))));
}

} // namespace
