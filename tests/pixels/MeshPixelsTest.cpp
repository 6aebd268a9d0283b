// Mesh clouds and scene fog, drawn, against the same formulas evaluated in plain C++, in double precision.
#define GL_GLEXT_PROTOTYPES
#include "MessageLog.h"
#include "api/plugins/PluginManager.h"
#include "commands/Host.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"
#include "scene/Scene.h"
#include "viewport/Viewport.h"

#include <gmock/gmock.h>

#include <GL/gl.h>
#include <GL/glext.h>
#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

using Colour = std::array<double, 3>;

constexpr int width = 96, height = 54;

double saturate(double v) { return std::clamp(v, 0.0, 1.0); }

/// Where the ray through a pixel's centre leaves a camera that looks along -Z: x and y at the depth 1. The film gate is
/// 1.41732 inches wide and the lens 35 mm; the port is wider than the gate, so the width decides.
std::array<double, 2> slope(int column, int row) {
    const double half = 1.41732 * 25.4 / 2 / 35;
    return {((column + 0.5) / width * 2 - 1) * half, (1 - (row + 0.5) / height * 2) * half * height / width};
}

std::string numbers(const Colour& c) {
    return std::to_string(c[0]) + " " + std::to_string(c[1]) + " " + std::to_string(c[2]);
}

class MeshPixels : public testing::Test {
protected:
    MeshPixels() {
        static const bool started = start();
        (void)started;
        host::Host::instance().scene().reset();
        run("createNode transform -n OrvoSkyData; createNode transform -n set -p OrvoSkyData;"
            "createNode orvosky_SkyRenderer;");
    }
    ~MeshPixels() override {
        host::Host::instance().scene().reset();
        for (const char* name : {"xeliLocator", "xeliLocatorWithoutPlugs"})
            if (plugins().find(name)) plugins().unload(name);
    }

    static host::api::PluginManager& plugins() { return host::Host::instance().plugins(); }
    static host::mel::Value run(const std::string& mel) { return host::Host::instance().interpreter().execute(mel); }
    static double number(const std::string& plug) { return run("getAttr " + plug).toFloat(); }
    static const fs::path& project() {
        static const orvo::test::TemporaryFolder folder;
        return folder;
    }

    /// Draws with the camera at a place (in centimetres) along -Z, then lets the nodes free what they hold while their
    /// context is there. `between` is run after each frame but the last.
    static host::viewport::Picture draw(const std::string& eye = "0 0 0", int frames = 1,
                                        const std::string& between = "") {
        run("setAttr persp.t " + eye +
            "; setAttr persp.r 0 0 0; setAttr perspShape.focalLength 35;"
            "setAttr perspShape.nearClipPlane 1; setAttr perspShape.farClipPlane 80000;");
        std::string error;
        auto view = host::viewport::Viewport::create(width, height, &error);
        host::viewport::Picture picture;
        for (int i = 0; i < frames; ++i) {
            if (i > 0) run(between);
            EXPECT_TRUE(view && view->render(&error)) << error;
        }
        if (view) picture = view->picture();
        const auto enableAll = [](const char* value) {
            for (const char* plug : {"sprite.enable", "fog.Enable", "height.Enable"})
                if (run(std::string("objExists ") + plug).toInt()) run(std::string("setAttr ") + plug + " " + value);
        };
        enableAll("0");
        if (view) view->render();
        enableAll("1");
        return picture;
    }

    /// The largest difference of a channel, in 8-bit steps, from the colours that `colour` gives for columns and rows;
    /// pixels for which it gives a channel below 0 are not looked at.
    template <class ColourOf>
    static int worst(const host::viewport::Picture& picture, ColourOf&& colour) {
        int most = 0, looked = 0;
        for (int row = 0; row < picture.height; ++row) {
            for (int column = 0; column < picture.width; ++column) {
                const Colour wanted = colour(column, row);
                if (wanted[0] < 0) continue;
                ++looked;
                for (int k = 0; k < 3; ++k) {
                    const int expected = static_cast<int>(std::lround(saturate(wanted[k]) * 255));
                    most = std::max(most, std::abs(expected - picture.at(column, row)[k]));
                }
            }
        }
        EXPECT_GT(looked, 500);
        return most;
    }

    /// An uncompressed Targa file of 32 bits a pixel, 8 wide and high: one colour in the left half, one in the right,
    /// as red, green, blue and alpha.
    static void image(const char* name, const std::array<int, 4>& left, const std::array<int, 4>& right) {
        std::ofstream file(project() / "build" / name, std::ios::binary);
        const char header[18] = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 8, 0, 8, 0, 32, 8};
        file.write(header, sizeof header);
        for (int i = 0; i < 64; ++i) {
            const auto& c = i % 8 < 4 ? left : right;
            for (const int k : {2, 1, 0, 3}) file.put(static_cast<char>(c[static_cast<std::size_t>(k)]));
        }
    }

    /// A wall of one polygon at z = -1000 that fills the view, in the cloud's group; u grows from left to right.
    static void makeCloud(const std::string& texture) {
        run("createNode transform -n cloud -p OrvoSkyData; createNode transform -n spriteT -p cloud;"
            "createNode orvosky_SpriteCloudLocator -n sprite -p spriteT; polyPlane -w 2000 -h 2000 -sx 1 -sy 1 -n wall;"
            "parent -r wall cloud; setAttr wall.r 90 0 0; setAttr wall.t 0 0 -1000;"
            "string $s[] = `listRelatives -s wall`; setAttr ($s[0] + \".v\") 0;"
            "setAttr sprite.spriteTexture -type \"string\" \"" +
            texture + "\"");
    }

private:
    static bool start() {
        fs::create_directories(project() / "artsource");
        fs::create_directories(project() / "build");
        host::Host::Options options;
        options.project = project() / "artsource";
        options.pluginFolders = {orvo::test::pluginFolder()};
        host::Host::instance().start(options);
        plugins().loadByBareName("orvosky");
        std::atexit([] {
            std::error_code ignored;
            fs::remove_all(project(), ignored);
        });
        return true;
    }
};

} // namespace

// Catches wrong modes, scales and blends: the alpha as a colour scale or as coverage.
TEST_F(MeshPixels, CloudsFollowTheirFormula) {
    image("plain.tga", {40, 60, 20, 64}, {40, 60, 20, 64});
    const double alpha = 64 / 255.0;
    const Colour texture{40 / 255.0, 60 / 255.0, 20 / 255.0}, tint{1, 0.5, 0.25};
    struct Case {
        bool opaque;
        double brightness, alphaScale;
    };
    for (const Case& c : {Case{true, 1, 1}, Case{true, 2.5, 0.3}, Case{false, 1, 1}, Case{false, 3, 1.6}}) {
        host::Host::instance().scene().reset();
        run("createNode transform -n OrvoSkyData; createNode orvosky_SkyRenderer;");
        makeCloud("build\\\\plain.tga");
        run("setAttr sprite.RenderMode " + std::to_string(!c.opaque) + "; setAttr sprite.brightness " +
            std::to_string(c.brightness) + "; setAttr sprite.alphaScale " + std::to_string(c.alphaScale) +
            "; setAttr sprite.tint -type \"float3\" " + numbers(tint) +
            (c.brightness > 1 ? "" : "; setAttr wall.rx -90")); // seen from behind
        Colour expected;
        for (int k = 0; k < 3; ++k) {
            const double shown = texture[k] * tint[k] * c.brightness;
            expected[k] = c.opaque ? shown / alpha : saturate(shown) * saturate(alpha * c.alphaScale);
        }
        EXPECT_LE(worst(draw(), [&](int, int) { return expected; }), 1)
            << "opaque " << c.opaque << ", brightness " << c.brightness;
    }
}

// Catches UVs that are lost, turned or mixed up, and meshes placed by another matrix than the view's.
TEST_F(MeshPixels, CloudsLieWhereTheirMeshesAre) {
    image("halves.tga", {255, 0, 0, 255}, {0, 255, 0, 255});
    makeCloud("build\\\\halves.tga");
    // The locator's and the renderer's own places do not count.
    run("setAttr spriteT.t 500 600 700; setAttr spriteT.r 10 20 30; string $r[] = `ls -type orvosky_SkyRenderer`;"
        "string $p[] = `listRelatives -p $r[0]`; setAttr ($p[0] + \".t\") 50 60 70; setAttr wall.s 0.4 1 0.2;"
        "setAttr wall.t 100 50 -1000; setAttr sprite.alwaysUpdateMesh 0;");
    // The wall is 800 wide and 400 high about (100, 50) then, with u from 0 to 1.
    const auto wall = [](double centreX) {
        return [centreX](int column, int row) {
            const auto [sx, sy] = slope(column, row);
            const double u = (1000 * sx - centreX) / 800 + 0.5, v = (1000 * sy - 50) / 400 + 0.5;
            const auto near = [](double a, double b) { return std::abs(a - b) < 0.07; };
            // At the edges the image repeats, and in the middle it goes over from one colour to the other.
            if (near(u, 0) || near(u, 0.5) || near(u, 1) || near(v, 0) || near(v, 1)) return Colour{-1, 0, 0};
            if (u < 0 || u > 1 || v < 0 || v > 1) return Colour{0, 0, 0};
            return u < 0.5 ? Colour{1, 0, 0} : Colour{0, 1, 0};
        };
    };
    // The mesh is kept or gathered again, as the artist has it. The frames of a draw share what the node holds.
    EXPECT_LE(worst(draw("0 0 0", 2, "setAttr wall.tx -150"), wall(100)), 1);
    // How large the camera is does not matter.
    run("setAttr sprite.alwaysUpdateMesh 1; setAttr persp.s 2 3 4;");
    EXPECT_LE(worst(draw("0 0 0", 2, "setAttr wall.tx 50"), wall(50)), 1);
}

TEST_F(MeshPixels, AMissingTextureIsWhiteAndAPathIsStoredAsTheProjectHasIt) {
    image("there.tga", {255, 255, 255, 255}, {255, 255, 255, 255});
    for (const char* name : {"", "Gone.tga", "There.TGA", "empty.tga"}) {
        host::Host::instance().scene().reset();
        run("createNode transform -n OrvoSkyData; createNode orvosky_SkyRenderer;");
        std::ofstream(project() / "build" / "empty.tga");
        const std::string path = *name ? (project() / "build" / name).string() : "";
        makeCloud(path);
        run("setAttr sprite.tint -type \"float3\" 0.5 0.25 1");
        EXPECT_LE(worst(draw(), [](int, int) { return Colour{0.5, 0.25, 1}; }), 1) << name;
        std::string stored = *name ? std::string("build\\") + name : "";
        std::transform(stored.begin(), stored.end(), stored.begin(), [](char c) { return std::tolower(c); });
        EXPECT_EQ(run("getAttr sprite.spriteTexture").toString(), stored);
    }
}

// Catches a message at every frame for a mesh that is kept, or none, and a crash for what cannot be drawn.
TEST_F(MeshPixels, CloudsWithoutMeshesSaySoOnce) {
    const std::string none = "SpriteCloudLocator::RefreshCloudMesh:  No maya meshes found in wispy cloud group.\n";
    makeCloud("");
    run("delete wall; setAttr sprite.alwaysUpdateMesh 0;");
    MessageLog log;
    const auto black = [](int, int) { return Colour{0, 0, 0}; };
    EXPECT_EQ(worst(draw("0 0 0", 3), black), 0);
    EXPECT_THAT(log.errors(), testing::ElementsAre(none));
    log.clear();
    draw("0 0 0", 2); // switched off and on in between
    EXPECT_THAT(log.errors(), testing::ElementsAre(none));
    log.clear();
    run("setAttr sprite.alwaysUpdateMesh 1;");
    draw("0 0 0", 2);
    EXPECT_THAT(log.errors(), testing::ElementsAre(none, none));
    log.clear();
    run("parent -r sprite OrvoSkyData -s; delete cloud");
    draw();
    EXPECT_THAT(log.errors(), testing::ElementsAre("SpriteCloudLocator::RefreshCloudMesh:  couldn't get parents from "
                                                   "locator\n"));
}

namespace {

struct Fog {
    double start = 100, end = 500, alpha = 1; ///< metres
    Colour colour{1, 1, 1}, ground{0.5, 0.5, 0.5};
    Colour sunDir{0, 1, 0};
};

class FogPixels : public MeshPixels {
protected:
    static void loadStandIn(const char* name = "xeliLocator") {
        plugins().load((fs::path(orvo::test::standIns()) / (std::string(name) + ".so")).string());
    }
    /// A ground of 2 km at y = -300 that faces up; its mesh is the locator's, whose transform lifts it there.
    static void makeGround(const std::string& name = "xeli") {
        run("polyPlane -w 200000 -h 200000 -sx 8 -sy 8 -n " + name + "Ground; setAttr " + name +
            "Ground.v 0; createNode transform -n " + name + "T; setAttr " + name +
            "T.ty -300;"
            "createNode XeliLocatorNode -n " +
            name + " -p " + name +
            "T;"
            "string $s[] = `listRelatives -s " +
            name + "Ground`; connectAttr ($s[0] + \".outMesh\") " + name +
            ".inMesh;"
            "setAttr " +
            name + ".snapMeshForm 4;");
    }
    static void make(const Fog& f) {
        run("createNode orvosky_SceneFog -n fog -p set; setAttr fog.fogStart " + std::to_string(f.start) +
            "; setAttr fog.fogEnd " + std::to_string(f.end) + "; setAttr fog.fogAlpha " + std::to_string(f.alpha) +
            "; setAttr fog.fogColour -type \"float3\" " + numbers(f.colour) +
            "; setAttr fog.previewGeomColour -type \"float3\" " + numbers(f.ground) +
            "; setAttr fog.sunDir -type \"double3\" " + numbers(f.sunDir));
    }
    /// The camera 10 m above the ground.
    static int worstOf(const Fog& f, const host::viewport::Picture& picture) {
        return worst(picture, [&](int column, int row) {
            const auto [sx, sy] = slope(column, row);
            if (sy > -0.013) return Colour{sy > 0.01 ? 0.0 : -1, 0, 0}; // the ground ends 1 km away
            const double depth = -1000 / sy, distance = depth * std::sqrt(sx * sx + sy * sy + 1);
            const double size = std::hypot(f.sunDir[0], f.sunDir[1], f.sunDir[2]);
            const double light = saturate(f.sunDir[1] / size) * 0.8 + 0.2;
            const double start = std::min(f.start, f.end), end = std::max(f.start, f.end);
            const double left = std::exp((distance / 100 - start) / (end - start) * std::log(0.003));
            const double amount = (1 - saturate(left)) * f.alpha;
            Colour c;
            for (int k = 0; k < 3; ++k) c[k] = f.ground[k] * light * (1 - amount) + f.colour[k] * amount;
            return c;
        });
    }
};

} // namespace

// Catches centimetres for metres, a wrong falloff, light that is not the sun's, meshes left in the locator's space.
TEST_F(FogPixels, FollowsItsFormula) {
    loadStandIn();
    const Fog cases[] = {
        {},
        {.start = 20, .end = 90, .alpha = 0.6, .colour = {0.9, 0.6, 0.3}, .sunDir = {0.5, 0.3, -1}},
        {.start = 300, .end = 30, .ground = {1, 0.8, 0.2}, .sunDir = {0, -1, 0}}, // the other way round
        {.start = 50, .end = 50, .colour = {0, 0, 1}}};
    for (const char* scale : {"1 1 1", "-1 1 1", "1 1 -2"})
        for (const Fog& f : cases) {
            host::Host::instance().scene().reset();
            run("createNode transform -n OrvoSkyData; createNode transform -n set -p OrvoSkyData;"
                "createNode orvosky_SkyRenderer;");
            makeGround();
            // Neither what is hidden counts, nor what lies below, nor a height fog (in front of some of it) that has no
            // depth.
            makeGround("hidden");
            makeGround("zDeep");
            run("setAttr hiddenT.t 0 500 0; setAttr hiddenT.v 0; setAttr zDeepT.ty -900; createNode transform -n h -p "
                "OrvoSkyData; createNode orvosky_ExpHeightFog -n height -p h; setAttr height.fogAlpha 0.0001");
            run(std::string("setAttr xeliT.s ") + scale); // a mirrored ground still faces up
            make(f);
            EXPECT_LE(worstOf(f, draw("0 700 0")), 1) << f.start << " to " << f.end << ", scaled by " << scale;
            EXPECT_EQ(number("xeli.snapMeshForm"), 4);
        }
}

// Catches a crash or a lost setting for locators that are not as they should be, and messages about them.
TEST_F(FogPixels, SkipsLocatorsWithoutAMesh) {
    const auto black = [](int, int) { return Colour{0, 0, 0}; };
    make({});
    MessageLog log;
    EXPECT_EQ(worst(draw("0 700 0", 3), black), 0); // no such type at all
    EXPECT_LE(log.errors().size(), 1u) << testing::PrintToString(log.errors());
    for (const std::string& error : log.errors()) EXPECT_THAT(error, testing::HasSubstr("XeliLocatorNode"));

    log.clear();
    loadStandIn("xeliLocatorWithoutPlugs");
    run("createNode XeliLocatorNode -n bare");
    EXPECT_EQ(worst(draw("0 700 0"), black), 0);
    run("delete `listRelatives -p bare`; flushUndo");
    plugins().unload("xeliLocatorWithoutPlugs");

    loadStandIn();
    run("createNode XeliLocatorNode -n empty; setAttr empty.snapMeshForm 7");
    makeGround();
    run("polyPlane -n hollow; createNode mesh -n nothing; createNode XeliLocatorNode -n third;"
        "connectAttr nothing.outMesh third.inMesh; setAttr third.snapMeshForm -2;");
    EXPECT_LE(worstOf({}, draw("0 700 0")), 1);
    EXPECT_EQ(number("empty.snapMeshForm"), 7);
    EXPECT_EQ(number("third.snapMeshForm"), -2);
    EXPECT_THAT(log.errors(), testing::ElementsAre());
}

// Catches a colour that does not follow, or follows without being asked, and fogs that chase each other for ever.
TEST_F(FogPixels, TakesItsColourFromTheHeightFog) {
    make({.colour = {0.25, 0.5, 0.75}});
    run("createNode transform -n h -p OrvoSkyData; createNode orvosky_ExpHeightFog -n height -p h;"
        "setAttr height.fogColour -type \"float3\" 1 0.5 0;");
    const auto colours = [](const char* node) {
        return run(std::string("getAttr ") + node + ".fogColour").toFloatArray();
    };
    draw();
    EXPECT_THAT(colours("fog"), testing::ElementsAre(0.25, 0.5, 0.75));
    run("setAttr fog.getColourFromExpHeightFog 1");
    draw();
    EXPECT_THAT(colours("fog"), testing::ElementsAre(1, 0.5, 0));
    run("setAttr fog.fogColour -type \"float3\" 0.25 0.5 0.75; setAttr height.getColourFromSceneFog 1");
    draw();
    EXPECT_EQ(colours("fog"), colours("height"));
    run("setAttr fog.getColourFromExpHeightFog 0; setAttr fog.fogColour -type \"float3\" 0 0.25 0;");
    draw();
    EXPECT_THAT(colours("height"), testing::ElementsAre(0, 0.25, 0));
}

namespace {

/// What a locator's draw may change in GL, and the rest of the host's drawing relies on.
std::vector<double> glState() {
    std::vector<double> state(16);
    glGetDoublev(GL_MODELVIEW_MATRIX, state.data());
    for (const GLenum name :
         {GL_ATTRIB_STACK_DEPTH, GL_MODELVIEW_STACK_DEPTH, GL_MATRIX_MODE, GL_CURRENT_PROGRAM, GL_DEPTH_TEST,
          GL_DEPTH_WRITEMASK, GL_DEPTH_CLAMP, GL_BLEND, GL_BLEND_SRC, GL_BLEND_DST, GL_LIGHTING, GL_CULL_FACE,
          GL_TEXTURE_2D, GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_CUBE_MAP, GL_ACTIVE_TEXTURE, GL_VERTEX_ARRAY})
        glGetDoublev(name, &state.emplace_back());
    for (GLuint i = 0; i < 8; ++i) glGetVertexAttribdv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &state.emplace_back());
    return state;
}

} // namespace

// Catches a state that is set and not taken back. The host of the tests puts it right after each locator; others do
// not.
TEST_F(FogPixels, DrawingLeavesGlAsItWas) {
    loadStandIn();
    for (const std::string kind : {"BasicSkyLocator", "GradientSkyLocator", "TexturedSkyLocator", "ExpHeightFog",
                                   "ProceduralSkyLocator", "SpriteCloudLocator", "SceneFog"}) {
        host::Host::instance().scene().reset();
        run("createNode transform -n OrvoSkyData; createNode transform -n set -p OrvoSkyData;"
            "createNode orvosky_SkyRenderer -n renderer -p set; setAttr persp.t 0 0 0; setAttr persp.r 0 0 0");
        if (kind == "SpriteCloudLocator") {
            makeCloud("");
        } else if (kind == "SceneFog") {
            makeGround();
            make({});
        } else {
            run("createNode orvosky_" + kind + " -n sky -p set");
        }
        auto view = host::viewport::Viewport::create(width, height);
        ASSERT_TRUE(view && view->render());
        MSelectionList list;
        MDagPath path;
        ASSERT_TRUE(list.add(kind == "ProceduralSkyLocator" ? "sky" : "renderer") && list.getDagPath(0, path));
        auto* const locator = dynamic_cast<MPxLocatorNode*>(MFnDependencyNode(path.node()).userNode());
        ASSERT_TRUE(locator && view->beginGL());
        for (const GLenum name : {GL_LIGHTING, GL_CULL_FACE, GL_BLEND}) glEnable(name);
        glClearColor(0, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDisable(GL_DEPTH_TEST);
        glDepthMask(GL_FALSE);
        glBlendFunc(GL_DST_COLOR, GL_SRC_COLOR);
        glActiveTexture(GL_TEXTURE3);
        glTranslated(1, 2, 3);
        const auto before = glState();
        M3dView api = M3dView::active3dView();
        locator->draw(api, path, M3dView::kGouraudShaded, M3dView::kDormant);
        EXPECT_EQ(glState(), before) << kind;
        unsigned char pixel[4];
        glReadPixels(width / 2, 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
        EXPECT_FALSE(pixel[0] == 0 && pixel[2] == 255) << "nothing was drawn: " << kind;
        view->endGL();
        host::Host::instance().scene().reset(); // while the context is there
    }
}
