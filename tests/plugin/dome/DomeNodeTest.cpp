#include "GlPrograms.h"
#include "PluginScene.h"
#include "Schema.h"
#include "base/WorkWatch.h"
#include "kit/Places.h"
#include "viewport/Viewport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;

namespace {

/// The opening of a cloud or library file.
std::string fileOf(const char* type, const std::string& clouds) {
    return std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<OrvoAtmosphere\n\ttype = \"") + type +
           "\"\n\tversion = \"1\"\n\t>\n" + clouds + "</OrvoAtmosphere>\n";
}

/// A dense cloud of 300 metres' radius around (0, 500 metres, 0): six spheres in one place.
std::string cloud() {
    std::string text = "<ParticleCloud spriteDensity=\"5000\" spriteSize=\"120\" groundShadowOffset=\"0\" "
                       "enableGroundFade=\"0\" groundFadeStart=\"60\" groundFadeEnd=\"-20\" domeYOffset=\"0\" "
                       "geomBoundSphereRadius=\"30000\" geomBoundSpherePos=\"0 50000 0\" randSeed=\"12\">";
    for (int i = 0; i < 6; ++i)
        text += "<ParticleCloudSphere opacity=\"1\" density=\"1\"><Transform x_vec=\"0.00004 0 0\" "
                "y_vec=\"0 0.00004 0\" z_vec=\"0 0 0.00004\" pos_vec=\"0 -2 0\"/></ParticleCloudSphere>";
    return text + "</ParticleCloud>\n";
}

constexpr const char* single = "Modeler_ParticleCloud";
constexpr const char* library = "Modeler_ParticleCloudLibrary";

/// A scene with a dome and shading parameters below the sky's root, and a sky renderer.
class DomeNode : public PluginScene {
protected:
    DomeNode() {
        std::filesystem::remove_all(folder());
        std::filesystem::create_directories(folder());
        makeToolsRoot(orvo::test::shaders());
        must("createNode transform -n OrvoSkyData; createNode transform -n d -p OrvoSkyData;"
             "createNode orvosky_ParticleCloudDome -n dome -p d; createNode orvosky_SkySceneSettings -p d;"
             "createNode orvosky_ParticleCloudShadingParams -n shading -p d; createNode orvosky_SkyRenderer;"
             "setAttr -type \"string\" shading.shadingTexture \"build\\\\none.dds\";");
        log_.clear();
    }
    static std::filesystem::path folder() { return project() / "Clouds"; }
    static void write(const std::string& name, const std::string& text) {
        std::ofstream(folder() / name, std::ios::binary) << text;
    }
    bool load(const std::string& path) {
        log_.clear();
        return mel("orvosky_ParticleCloudDome_LoadFromDiskCommand \"" + path + "\" \"dome\"");
    }
    /// Opens a view and draws what it shows without the dome.
    bool openView() {
        view_ = host::viewport::Viewport::create(96, 64, &error_);
        if (!view_) return false;
        must("setAttr dome.Enable 0;");
        EXPECT_TRUE(view_->render(&error_)) << error_;
        background_ = view_->picture();
        must("setAttr dome.Enable 1;");
        return true;
    }
    /// Draws the scene. @return the pixels that differ from the background
    int lit() {
        EXPECT_TRUE(view_->render(&error_)) << error_;
        picture_ = view_->picture();
        int pixels = 0;
        for (int row = 0; row < 64; ++row)
            for (int column = 0; column < 96; ++column) pixels += isLit(column, row);
        return pixels;
    }
    bool isLit(int column, int row) const {
        return !std::equal(picture_.at(column, row), picture_.at(column, row) + 3, background_.at(column, row));
    }
    std::string exported() {
        const std::string path = (project() / "dome.atmos").string();
        must("orvosky_SaveSkySystemToXMLCommand \"" + path + "\"");
        EXPECT_TRUE(followsSchema(path, "atmos.xsd"));
        return contents(path);
    }

    /// Where the exported clouds stand, in metres.
    std::vector<std::pair<double, double>> places() {
        const std::string text = exported(), name = "cullingSpherePos = \"";
        std::vector<std::pair<double, double>> found;
        for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
            double x = 0, z = 0;
            EXPECT_EQ(std::sscanf(text.c_str() + at + name.size(), "%lf %*f %lf", &x, &z), 2);
            found.emplace_back(x, z);
        }
        return found;
    }

    std::unique_ptr<host::viewport::Viewport> view_;
    std::string error_;
    host::viewport::Picture background_, picture_;
};

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

} // namespace

// Catches texts of the wrong command, a command that goes on after an error, and an error without its place.
TEST_F(DomeNode, CommandsRefuseWrongArguments) {
    const std::string refresh = "ParticleCloudDome_RefreshDataCommand",
                      loadFromDisk = "ParticleCloudDome_LoadFromDiskCommand";
    const std::string refreshUsage =
        refresh + " incorrect syntax given! :(  Usage: \"" + refresh + " cloudDomeInstanceName\"   bailing.";
    const std::string loadUsage = loadFromDisk + " incorrect syntax given! :(  Usage: \"" + loadFromDisk +
                                  " filePath cloudDomeInstanceName\"   bailing.";
    struct Case {
        std::string command, arguments, message;
    };
    for (const Case& c : {Case{refresh, "", refreshUsage},
                          {refresh, "\"dome\" \"dome\"", refreshUsage},
                          {refresh, "\"\"", refresh + "   Could not get nodeName."},
                          {refresh, "1", refresh + "   Could not get nodeName."},
                          {refresh, "\"persp\"", refresh + "   Could not get dome node pointer."},
                          {loadFromDisk, "\"a\"", loadUsage},
                          {loadFromDisk, "\"\" \"dome\"", loadFromDisk + "   Could not get filePath."},
                          {loadFromDisk, "\"a\" \"\"", loadFromDisk + "   Could not get nodeName."},
                          {loadFromDisk, "\"a\" \"none\"", loadFromDisk + "   Could not get dome node pointer."}}) {
        log_.clear();
        EXPECT_FALSE(mel("orvosky_" + c.command + " " + c.arguments)) << c.arguments;
        ASSERT_GE(log_.errors().size(), 2u);
        EXPECT_THAT(log_.errors()[0], MatchesRegex("In SkyTool.ParticleCloudDomeCommands, line [0-9]+"));
        EXPECT_EQ(log_.errors()[1], c.message);
    }
}

// Catches a wrong order or error where nothing can be loaded: what is there, and what the artist is told.
TEST_F(DomeNode, SaysWhatIsWrongWithALocation) {
    write("library.xml", fileOf(library, cloud()));
    write("notes.txt", fileOf(single, cloud()));
    const std::string none = "Could not load any .xml files from location [";
    EXPECT_TRUE(load(folder().string()));
    EXPECT_THAT(log_.errors(), ElementsAre(HasSubstr("In SkyTool"), HasSubstr("RefreshSpriteData:  " + none)));

    std::filesystem::remove(folder() / "library.xml");
    EXPECT_TRUE(load(folder().string()));
    EXPECT_THAT(log_.errors(), ElementsAre(HasSubstr("In SkyTool"),
                                           HasSubstr("ParticleCloudDome::RefreshCloudGeomData:  Could not find any "
                                                     ".xml files in dir ["),
                                           HasSubstr("In SkyTool"), HasSubstr(none)));

    write("broken.xml", fileOf(single, "<ParticleCloud/>"));
    EXPECT_TRUE(load(folder().string()));
    EXPECT_THAT(log_.infos(), Contains(MatchesRegex("VolumeCloudDome::RefreshSpriteData:  Had trouble loading .xml "
                                                    "file .*broken.xml]\n")));
    EXPECT_THAT(log_.errors(), Contains(HasSubstr(none)));

    for (const char* file : {"/missing.xml", "/notes.txt", "/broken.xml"}) {
        EXPECT_TRUE(load(folder().string() + file));
        EXPECT_THAT(log_.errors(), ElementsAre(HasSubstr("In SkyTool"), HasSubstr(none))) << file;
    }
    EXPECT_EQ(count(exported(), "<ParticleCloud\n"), 0u);
}

// Catches a folder whose unreadable files spoil the others, a path that is not stored relative to the project, and
// clouds that miss in the export.
TEST_F(DomeNode, LoadsFoldersAndLibrariesAndExportsThem) {
    write("a.XML", fileOf(single, cloud()));
    write("b.xml", "no cloud");
    write("d.xml", "<project/>");
    std::filesystem::create_directories(folder() / "c.xml");
    must("setAttr dome.windDir 90; setAttr dome.domeInnerRadius 5000;");
    ASSERT_TRUE(load(folder().string()));
    EXPECT_THAT(log_.errors(), IsEmpty());
    const std::string trouble = "Had trouble loading .xml file [";
    EXPECT_THAT(log_.infos(), Contains(HasSubstr(trouble))) << "of the damaged file";
    EXPECT_THAT(log_.infos(), Not(Contains(HasSubstr("d.xml")))) << "a whole file that is something else";
    must("getAttr dome.cloudDataDir");
    EXPECT_EQ(result_.toString(), "clouds");
    EXPECT_THAT(log_.infos(), Contains(MatchesRegex("CLOUDS PRODUCED \\[[0-9]+\\]  CLOUD MEMORY USED \\[[0-9]+\\]\n")));
    const std::string fromFolder = exported();
    EXPECT_THAT(fromFolder, HasSubstr("\t<ParticleCloudDome\n"
                                      "\t\tdomeHeight = \"700.000000\"\n"
                                      "\t\tdomeCurvature = \"20000.000000\"\n"
                                      "\t\tdomeInnerRadius = \"5000.000000\"\n"
                                      "\t\tdomeOuterRadius = \"4000.000000\"\n"
                                      "\t\twindVelocity = \"10.000000\"\n"
                                      "\t\twindDir = \"90.000000\"\n"
                                      "\t/>\n"
                                      "\t<ParticleCloud\n"
                                      "\t\tvertexDataAddress = \"0\"\n"));
    const std::size_t clouds = count(fromFolder, "\t<ParticleCloud\n");
    EXPECT_GT(clouds, 20u);
    EXPECT_EQ(count(fromFolder, "enableDomePositioning = \"1\""), clouds);
    EXPECT_EQ(count(fromFolder, "cullingSphereRadius = \"300.000000\""), clouds);

    write("library.xml", fileOf(library, cloud()));
    ASSERT_TRUE(load("clouds\\\\library.xml"));
    EXPECT_EQ(exported(), fromFolder);
    must("orvosky_ParticleCloudDome_RefreshDataCommand dome");
    EXPECT_EQ(exported(), fromFolder);

    // 250 clouds are the limit; element values are those of the scaled clouds.
    log_.clear();
    must("setAttr dome.cloudScale 0.25; setAttr dome.placementDensity 3;"
         "orvosky_ParticleCloudDome_RefreshDataCommand dome;");
    EXPECT_THAT(log_.all(),
                ElementsAre(MatchesRegex("Warning: In SkyTool.ParticleCloudDome, line [0-9]+"),
                            MatchesRegex("Warning: MAX LIMIT REACHED!  CLOUDS PRODUCED \\[250\\]  CLOUD MEMORY "
                                         "USED \\[[0-9]+\\]\n")));
    const std::string scaled = exported();
    EXPECT_EQ(count(scaled, "cullingSphereRadius = \"75.000000\""), 250u);
    EXPECT_EQ(count(scaled, "spriteSize = \"30.000000\""), 250u);
}

// Catches a sky that is gone, or half of another, when the artist does not wait for the new one.
TEST_F(DomeNode, KeepsItsCloudsWhenOthersAreGivenUp) {
    write("a.xml", fileOf(single, cloud()));
    ASSERT_TRUE(load(folder().string()));
    const auto before = places();
    must("setAttr dome.placementDensity 0.5;");
    host::workWatch() = [](double part) { return part >= 0; };
    EXPECT_TRUE(mel("orvosky_ParticleCloudDome_RefreshDataCommand dome"));
    host::workWatch() = {};
    EXPECT_THAT(log_.errors(), Contains(HasSubstr("[dome] keeps its earlier clouds")));
    EXPECT_EQ(places(), before);
    must("orvosky_UpdateSkySystemCommand");
    EXPECT_LT(places().size(), before.size()) << "what was given up is made up for";
}

// Catches clouds made without shading parameters, and a dome that does not come back to life when there are some.
TEST_F(DomeNode, NeedsShadingParameters) {
    write("a.xml", fileOf(single, cloud()));
    must("delete shading;");
    ASSERT_TRUE(load(folder().string()));
    EXPECT_THAT(log_.all(), Not(Contains(HasSubstr("CLOUDS PRODUCED"))));
    EXPECT_FALSE(mel("orvosky_SaveSkySystemToXMLCommand \"" + (project() / "none.atmos").string() + "\""));
    must("createNode orvosky_ParticleCloudShadingParams -p d; orvosky_ParticleCloudDome_RefreshDataCommand dome;");
    EXPECT_THAT(log_.all(), Contains(HasSubstr("CLOUDS PRODUCED")));
}

TEST_F(DomeNode, LimitsAreHardWhereTheyAreMeantTo) {
    for (const char* refused : {"windVelocity -1", "windVelocity 101", "windDir -1", "windDir 361", "domeCurvature 0.5",
                                "domeInnerRadius 9", "domeOuterRadius 9", "placementDensity 0", "cloudScale 0"})
        EXPECT_FALSE(mel(std::string("setAttr dome.") + refused)) << refused;
    for (const char* taken : {"time -5", "time 500", "domeHeight -10", "domeHeight 9000", "domeOuterRadius 50000",
                              "placementDensity 50", "cloudScale 100"})
        EXPECT_TRUE(mel(std::string("setAttr dome.") + taken)) << taken;
}

// Catches a wind of the wrong direction or speed, and clouds that are drawn beside their place or culled in view: the
// wind blows the dome's one cloud from its exported place over a known one, where the camera looks. Dome and camera
// stand beside the scene's origin.
TEST_F(DomeNode, DrawsCloudsWhereTheWindCarriesThem) {
    write("a.xml", fileOf(single, cloud()));
    must("setAttr dome.renderWireFrame 0; setAttr dome.placementDensity 0.05; setAttr dome.domeInnerRadius 500;"
         "setAttr d.t 300000 -20000 70000; setAttr persp.t 300000 -20000 70000; setAttr perspShape.farClipPlane "
         "10000000;");
    ASSERT_TRUE(load(folder().string()));
    const std::string text = exported();
    ASSERT_EQ(count(text, "<ParticleCloud\n"), 1u);
    const std::string name = "cullingSpherePos = \"";
    double x = 0, y = 0, z = 0;
    ASSERT_EQ(std::sscanf(text.c_str() + text.find(name) + name.size(), "%lf %lf %lf", &x, &y, &z), 3);
    if (!openView()) GTEST_SKIP() << error_;
    constexpr double degrees = 57.29577951308232;
    for (const auto& [toX, toZ] : {std::pair{500.0, 900.0}, {-1100.0, 200.0}}) {
        const double wind = std::atan2(toX - x, toZ - z) * degrees;
        const double distance = std::hypot(toX, toZ), height = 700 - (20000 - std::sqrt(4e8 - distance * distance));
        must("setAttr dome.windDir " + std::to_string(wind < 0 ? wind + 360 : wind) + "; setAttr dome.time " +
             std::to_string(std::hypot(toX - x, toZ - z) / 10) + "; setAttr persp.r " +
             std::to_string(std::atan2(height, distance) * degrees) + " " +
             std::to_string(std::atan2(-toX, -toZ) * degrees) + " 0;");
        EXPECT_GT(lit(), 100);
        EXPECT_TRUE(isLit(48, 32));
        const auto offset = left::uniform("domeoffset", "selfShadowFalloff", "none");
        ASSERT_TRUE(offset);
        EXPECT_NEAR((*offset)[0], (toX - x) * 100, 1);
        EXPECT_NEAR((*offset)[1], (height - y) * 100, 1);
        EXPECT_NEAR((*offset)[2], (toZ - z) * 100, 1);
        const auto fade = left::uniform("domeopacity", "selfShadowFalloff", "none");
        EXPECT_NEAR(fade.value()[0], (4000 - distance) / (4000 - 500), 1e-4);
        must("setAttr persp.rx -45;");
        EXPECT_EQ(lit(), 0);
    }
    // Carried there by its node in place of the wind, the cloud looks the same: its sprites hide each other alike.
    must("setAttr dome.domeCurvature 1e9; setAttr dome.domeInnerRadius 4000; setAttr persp.rx 35;");
    EXPECT_GT(lit(), 100);
    const auto carried = picture_;
    must("setAttr dome.time 0; setAttr d.tx " + std::to_string(300000 + (-1100 - x) * 100) + "; setAttr d.tz " +
         std::to_string(70000 + (200 - z) * 100));
    lit();
    for (int i = 0; i < 96 * 64 * 3; ++i) ASSERT_NEAR(picture_.at(0, 0)[i], carried.at(0, 0)[i], 3) << i;
    must("setAttr dome.Enable 0;");
    lit(); // the node's programs go while their context is there
}

// Catches a dome that draws nothing, draws what is switched off, places clouds again with every frame, or does not when
// their layout changes.
TEST_F(DomeNode, DrawsItsCloudsAndOutline) {
    write("a.xml", fileOf(single, cloud()));
    must("setAttr -type \"string\" dome.cloudDataDir \"clouds\"; setAttr dome.renderWireFrame 0; setAttr "
         "dome.placementDensity 0.4;"
         "setAttr persp.t 0 0 0; setAttr persp.r 30 0 0; setAttr perspShape.farClipPlane 10000000;");
    if (!openView()) GTEST_SKIP() << error_;
    const auto placed = [&] {
        const auto infos = log_.infos();
        log_.clear();
        return std::count_if(infos.begin(), infos.end(),
                             [](const std::string& s) { return s.find("CLOUDS PRODUCED") != std::string::npos; });
    };
    const int clouds = lit();
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_GT(clouds, 300);
    EXPECT_LT(clouds, 5000);
    EXPECT_EQ(placed(), 1);
    EXPECT_EQ(lit(), clouds);
    EXPECT_EQ(placed(), 0);

    must("setAttr dome.cloudScale 0.7;");
    EXPECT_NE(lit(), clouds);
    EXPECT_EQ(placed(), 1);
    for (const char* change :
         {"shading.enableSelfShadow 0", "dome.placementDensity 0.5", "dome.domeOuterRadius 4100"}) {
        must(std::string("setAttr ") + change);
        lit();
        EXPECT_EQ(placed(), 1) << change;
    }
    // The cloud that is drawn last is the nearest one in view.
    const auto last = left::uniform("cloudCenter", "groundShadowOffset", "selfShadowFalloff").value();
    double nearest = 1e9;
    for (const auto& [x, z] : places()) {
        const double away = std::hypot(x, z), y = 700 - (20000 - std::sqrt(4e8 - away * away));
        const double ahead = 0.5 * y - 0.866 * z, up = 0.866 * y + 0.5 * z;
        if (away < 4100 && std::abs(x) < 0.4 * ahead && std::abs(up) < 0.25 * ahead) nearest = std::min(nearest, away);
    }
    ASSERT_LT(nearest, 1e9);
    EXPECT_LE(std::hypot(last[0], last[2]) / 100, nearest + 0.01);
    // What stands before the clouds hides them, and their outline, only where they are tested for depth.
    must("polyCube -n wall -w 9000 -h 9000 -d 10; setAttr wall.t 0 300 -600; setAttr wall.rx 30; setAttr "
         "dome.renderWireFrame 1; delete `ls -type orvosky_SkyRenderer`; createNode orvosky_SkyRenderer;"
         "setAttr dome.Enable 0;");
    EXPECT_TRUE(view_->render(&error_)) << error_;
    background_ = view_->picture();
    must("setAttr dome.Enable 1; setAttr dome.renderDepthTest 1;");
    EXPECT_EQ(lit(), 0);
    must("setAttr dome.renderDepthTest 0;");
    EXPECT_GT(lit(), 100);
    must("delete wall; setAttr dome.Enable 0;");
    lit();
    background_ = picture_;

    must("setAttr dome.Enable 0; setAttr dome.renderWireFrame 1;");
    EXPECT_EQ(lit(), 0);
    // A dome without clouds still shows its outline.
    must("setAttr dome.Enable 1; delete shading;");
    const int outline = lit();
    EXPECT_GT(outline, 50);
    EXPECT_LT(outline, 3000);
    view_->setObjectDisplay(~0U & ~host::viewport::Viewport::showLocators);
    EXPECT_EQ(lit(), 0) << "an aid in a view without locators";
    must("setAttr dome.Enable 0;");
    lit(); // the node's programs go while their context is there
}
