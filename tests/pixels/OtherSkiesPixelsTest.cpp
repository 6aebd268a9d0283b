// The gradient, textured and procedural skies, as rendered, against the same formulas evaluated in plain C++.
#include "PlainScattering.h"
#include "PluginScene.h"
#include "kit/PixelCamera.h"
#include "kit/Places.h"
#include "viewport/Viewport.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <set>

using namespace twin;
using testing::ElementsAre;

namespace {

using Colour = std::function<std::optional<V3>(const V3& direction)>; ///< nothing: any colour will do

class OtherSkies : public PluginScene {
protected:
    OtherSkies() : folder_("build/skies-" + std::to_string(getpid())) {
        std::filesystem::create_directories(project() / folder_);
        std::string error;
        view_ = host::viewport::Viewport::create(64, 48, &error);
        EXPECT_TRUE(view_) << error;
        must("createNode transform -n OrvoSkyData; createNode transform -n sky -p OrvoSkyData;"
             "createNode orvosky_SkyRenderer;");
    }
    ~OtherSkies() override {
        // The nodes' GL objects go while their context is there.
        host::scene::Scene::current().reset();
        view_.reset();
        std::filesystem::remove_all(project() / folder_);
    }

    void make(const std::string& type) { must("createNode orvosky_" + type + " -n s -p sky;"); }
    void set(const std::string& attribute, double value) {
        must("setAttr s." + attribute + " " + std::to_string(value));
    }
    void setText(const std::string& attribute, std::string value) {
        for (std::size_t at = 0; (at = value.find('\\', at)) != std::string::npos; at += 2) value.insert(at, 1, '\\');
        must("setAttr s." + attribute + " -type \"string\" \"" + value + "\"");
    }
    std::string text(const std::string& attribute) {
        must("getAttr s." + attribute);
        return result_.toString();
    }
    /// A file of the test data, copied into the project; answers its full path.
    std::string bring(const std::string& name, const std::string& as) {
        const auto target = project() / folder_ / as;
        std::filesystem::copy_file(std::filesystem::path(orvo::test::testData()) / "skies" / name, target,
                                   std::filesystem::copy_options::overwrite_existing);
        return target.string();
    }

    host::viewport::Picture draw(const PixelCamera& c) {
        must("setAttr persp.t " + triple(c.eye) + "; setAttr persp.r " + triple({c.pitch, c.yaw, 0}) +
             "; setAttr perspShape.focalLength " + std::to_string(c.focalLength) + ";");
        std::string error;
        EXPECT_TRUE(view_->render(&error)) << error;
        return view_->picture();
    }
    /// The largest difference of a channel from the formula, in 8-bit steps.
    int worst(const PixelCamera& c, const Colour& colour) {
        const auto picture = draw(c);
        int most = 0, compared = 0;
        for (int row = 0; row < c.height; ++row) {
            for (int column = 0; column < c.width; ++column) {
                const auto wanted = colour(c.direction(column, row));
                if (!wanted) continue;
                ++compared;
                const double channels[3] = {wanted->x, wanted->y, wanted->z};
                for (int k = 0; k < 3; ++k) {
                    const int expected = static_cast<int>(std::lround(saturate(channels[k]) * 255));
                    most = std::max(most, std::abs(expected - picture.at(column, row)[k]));
                }
            }
        }
        EXPECT_GT(compared, c.width * c.height / 4) << "hardly anything was compared";
        return most;
    }
    /// The different colours of a picture.
    std::set<std::array<int, 3>> colours(const PixelCamera& c) {
        const auto picture = draw(c);
        std::set<std::array<int, 3>> found;
        for (int row = 0; row < c.height; ++row)
            for (int column = 0; column < c.width; ++column) {
                const auto* p = picture.at(column, row);
                found.insert({p[0], p[1], p[2]});
            }
        return found;
    }

    std::filesystem::path folder_;
    std::unique_ptr<host::viewport::Viewport> view_;
};

PixelCamera towards(double pitch, double yaw, double focalLength = 35) {
    return {{500, 300, -200}, pitch, yaw, focalLength, 64, 48};
}

/// The sun halo that the basic and the gradient sky share.
V3 halo(const V3& v, const V3& sun, double diskSize, double falloff) {
    double s = saturate(dot(v, unit(sun)) + 1 - std::cos(diskSize * M_PI / 16));
    s = 1 - std::sqrt(1 - s * s);
    return V3{1.0, 0.95, 0.763} * std::pow(s, falloff);
}

/// gradient.png as its script makes it, in linear interpolation between texel centres, held at the edges.
V3 gradient(double u, double v) {
    struct Texel {
        V3 colour;
        double alpha;
    };
    const auto texel = [](int column, int row) -> Texel { // row 0 at the bottom
        if (std::clamp(column, 0, 7) >= 4) return {V3{64, 128, 96} * (1 / 255.0), 128 / 255.0};
        const double green[4] = {0, 64, 160, 255};
        return {{1, green[std::clamp(row, 0, 31) / 8] / 255, 0}, 1};
    };
    const double x = u * 8 - 0.5, y = v * 32 - 0.5;
    const int column = static_cast<int>(std::floor(x)), row = static_cast<int>(std::floor(y));
    V3 colour;
    double alpha = 0;
    for (const int dx : {0, 1})
        for (const int dy : {0, 1}) {
            const double weight = (dx ? x - column : 1 - x + column) * (dy ? y - row : 1 - y + row);
            const Texel t = texel(column + dx, row + dy);
            colour = colour + t.colour * weight;
            alpha += t.alpha * weight;
        }
    return colour * (1 / alpha);
}

/// The texel of faces.dds in a direction, by the cube-map selection of OpenGL: per face the major
/// axis and the axes of s and t. Nothing near a border of colours.
std::optional<V3> face(const V3& v) {
    const double axes[3] = {std::abs(v.x), std::abs(v.y), std::abs(v.z)};
    double ma = 0, sc = 0, tc = 0;
    int index = 0;
    if (axes[0] >= axes[1] && axes[0] >= axes[2]) {
        index = v.x > 0 ? 0 : 1;
        ma = axes[0], sc = v.x > 0 ? -v.z : v.z, tc = -v.y;
    } else if (axes[1] >= axes[2]) {
        index = v.y > 0 ? 2 : 3;
        ma = axes[1], sc = v.x, tc = v.y > 0 ? v.z : -v.z;
    } else {
        index = v.z > 0 ? 4 : 5;
        ma = axes[2], sc = v.z > 0 ? v.x : -v.x, tc = -v.y;
    }
    const double s = (sc / ma + 1) / 2 * 16, t = (tc / ma + 1) / 2 * 16; // in texels
    for (const double place : {s, t})
        if (std::abs(place - 8) < 0.6 || place < 0.6 || place > 15.4) return std::nullopt;
    const bool opaque = index != 4;
    V3 colour;
    if (t > 8) {
        const V3 base[6] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {0, 130 / 255.0, 132 / 255.0}, {1, 0, 1}};
        colour = base[index];
    } else if (s < 8) {
        colour = {1, 1, 1};
    }
    return opaque ? colour : colour * std::pow(255 / 128.0, 1 / 2.2);
}

/// A view direction turned as the node's rotation does: 90 degrees take (x, z) = (1, 0) to (0, -1).
V3 turned(const V3& v, double degrees) {
    const double r = degrees * M_PI / 180;
    return {std::cos(r) * v.x + std::sin(r) * v.z, v.y, -std::sin(r) * v.x + std::cos(r) * v.z};
}

struct Procedural {
    plain::SkyInputs inputs = plain::defaultSky(false);
    V3 sunDir{1, 1, 1};
    double intensity = 1, discSize = 0.12, discFalloff = 32, discAlpha = 1, hazeHalo = 1;
    bool ground = true;

    Colour colour() const {
        const auto tables = std::make_shared<plain::SkyTables>(plain::skyTables(inputs));
        return [*this, tables](const V3& v) -> std::optional<V3> {
            // Right at the horizon and where the ground begins the tables are too steep to say which texel is meant.
            if (std::abs(v.y - (ground ? 0.0 : -0.141)) < 0.05) return std::nullopt;
            if (v.y <= (ground ? 0.0 : -1.0)) return V3();
            const V3 sun = unit(sunDir);
            const V3 extinction = at(tables->extinction, v.y), sunlight = at(tables->extinction, sun.y) * intensity;
            double f = saturate(dot(v, sun) + 1 - std::cos(discSize * M_PI / 16));
            f = 1 - std::sqrt(1 - f * f);
            const V3 disc = extinction * (intensity * std::pow(f, discFalloff) * discAlpha);
            const V3 c =
                disc + at(tables->blueSky, v.y) * sunlight + at(tables->haze, v.y) * sunlight * (1 + f * f * hazeHalo);
            const auto mapped = [](double x) { return 1 - (1 - x * 0.5) * (1 - x * 0.5); };
            return V3{mapped(c.x), mapped(c.y), mapped(c.z)};
        };
    }

private:
    static V3 at(const std::vector<plain::SkyTables::Texel>& table, double y) {
        const double place = (y * 0.5 + 0.5) * static_cast<double>(table.size()) - 0.5;
        const double below = std::floor(place);
        const auto texel = [&](double i) {
            const auto& t = table[static_cast<std::size_t>(std::clamp(i, 0.0, static_cast<double>(table.size() - 1)))];
            return V3{t[0], t[1], t[2]};
        };
        return texel(below) * (1 - place + below) + texel(below + 1) * (place - below);
    }
};

} // namespace

// Catches a wrong row, column or filter, an image upside down, an alpha that does not divide, a halo or brightness that
// is not the formula's.
TEST_F(OtherSkies, GradientSkyFollowsItsImage) {
    make("GradientSkyLocator");
    setText("gradientTexture", bring("gradient.png", "Gradient.png"));
    set("sunIntensity", 1.75);
    for (const double xcoord : {0.45, 0.0, 1.0, 0.5})
        for (const double brightness : {1.0, 0.4})
            for (const auto& c : {towards(0, 0), towards(80, 30), towards(-80, 30), towards(35, -135, 60)}) {
                set("xcoord", xcoord);
                set("brightness", brightness);
                EXPECT_LE(
                    worst(
                        c,
                        [&](const V3& v) {
                            return gradient(xcoord, 0.5 * v.y + 0.5) * brightness + halo(v, {1, 1, 1}, 0.12, 32) * 1.75;
                        }),
                    2)
                    << "xcoord " << xcoord << ", brightness " << brightness << ", pitch " << c.pitch;
            }
    EXPECT_EQ(text("gradientTexture"), "build\\skies-" + std::to_string(getpid()) + "\\gradient.png");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches an image that is not loaded anew when it should be, or that is when it should not be.
TEST_F(OtherSkies, GradientImageIsLoadedOnceAPath) {
    make("GradientSkyLocator");
    set("sunEnable", 0);
    const auto c = towards(60, 0, 100);
    const auto image = [&](double x) {
        return worst(c, [&](const V3& v) { return gradient(x, 0.5 * v.y + 0.5); }) <= 3;
    };
    set("xcoord", 0);
    const auto isChequered = [&] {
        for (const auto& colour : colours(c))
            if (colour[0] != colour[1] || colour[1] != colour[2] || colour[0] < 32) return false;
        return true;
    };
    EXPECT_TRUE(isChequered()) << "no path";
    const std::string path = (project() / folder_ / "late.png").string();
    setText("gradientTexture", path);
    EXPECT_TRUE(isChequered()) << "no file";
    bring("gradient.png", "late.png");
    EXPECT_TRUE(isChequered()) << "a failed path is not tried again";
    set("Enable", 0);
    EXPECT_THAT(colours(c), ElementsAre(std::array<int, 3>{0, 0, 0}));
    set("Enable", 1);
    EXPECT_TRUE(image(0)) << "switched off and on";
    std::filesystem::remove(path);
    setText("gradientTexture", text("gradientTexture"));
    EXPECT_TRUE(image(0)) << "the same text loads nothing anew";
    setText("gradientTexture", (project() / folder_).string());
    EXPECT_TRUE(isChequered()) << "a folder";
    bring("gradient.png", "other.png");
    setText("gradientTexture", (project() / folder_ / "other.png").string());
    EXPECT_TRUE(image(0)) << "another path";
    const orvo::test::TemporaryFolder elsewhere;
    const auto outside = elsewhere / "Outside.png";
    std::filesystem::rename(project() / folder_ / "other.png", outside);
    setText("gradientTexture", outside.string());
    EXPECT_TRUE(image(0)) << "outside of the project";
    EXPECT_EQ(text("gradientTexture"), outside.string());
}

// Catches sizes that trip the loader, and files of another kind than their names say.
TEST_F(OtherSkies, GradientSkyTakesImagesOfAnySizeAndNothingElse) {
    make("GradientSkyLocator");
    set("sunEnable", 0);
    const std::array<int, 3> colour{64, 128, 192};
    for (const int width : {1, 16384}) {
        host::viewport::Picture picture(width, 1, 3);
        for (int i = 0; i < width; ++i) std::copy_n(colour.begin(), 3, picture.row(0) + std::ptrdiff_t{3} * i);
        const auto path = project() / folder_ / (std::to_string(width) + ".png");
        ASSERT_TRUE(picture.write(path.string()));
        setText("gradientTexture", path.string());
        EXPECT_THAT(colours(towards(20, 0)), ElementsAre(colour)) << width;
    }
    // Rows of two colours in turns: every one is looked up, none is averaged with its neighbours.
    host::viewport::Picture tall(1, 16384, 3);
    for (int i = 0; i < tall.height; i += 2) std::copy_n(colour.begin(), 3, tall.row(i));
    ASSERT_TRUE(tall.write((project() / folder_ / "tall.png").string()));
    setText("gradientTexture", (project() / folder_ / "tall.png").string());
    EXPECT_GT(colours(towards(20, 0)).size(), 20U);
    std::ofstream(project() / folder_ / "text.png") << "no picture";
    setText("gradientTexture", (project() / folder_ / "text.png").string());
    EXPECT_EQ(colours(towards(60, 0)).count({32, 32, 32}), 1U);
}

// Catches a face, or the quarters of one, in the wrong place; a rotation about another axis or the wrong way round;
// alpha that does not divide the linear colour; a brightness outside linear light.
TEST_F(OtherSkies, TexturedSkyShowsEachFaceInItsPlace) {
    make("TexturedSkyLocator");
    // Neither where the node stands nor where the renderer does matters.
    must("setAttr sky.t 40 50 60; setAttr sky.r 10 20 30; setAttr sky.s 2 3 4;");
    setText("cubeMapTexture", bring("faces.dds", "Faces.dds"));
    for (const double rotation : {0.0, 90.0, 200.0}) {
        set("rotation", rotation);
        for (const auto& c : {towards(0, 0), towards(0, 90), towards(0, 180), towards(0, 270), towards(89, 0),
                              towards(-89, 0), towards(30, 45, 18)})
            EXPECT_LE(worst(c, [&](const V3& v) { return face(turned(v, rotation)); }), 1)
                << "pitch " << c.pitch << ", yaw " << c.yaw << ", rotation " << rotation;
    }
    set("rotation", 0);
    set("brightness", 0.5);
    EXPECT_LE(worst(towards(0, 180),
                    [](const V3& v) -> std::optional<V3> {
                        const auto colour = face(v);
                        if (!colour) return colour;
                        return *colour * std::pow(0.5, 1 / 2.2);
                    }),
              1)
        << "half as bright";
    EXPECT_EQ(text("cubeMapTexture"), "build\\skies-" + std::to_string(getpid()) + "\\faces.dds");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches a crash, or nothing at all, for images that are no cube maps.
TEST_F(OtherSkies, TexturedSkyWithoutACubeMapIsChequered) {
    make("TexturedSkyLocator");
    std::ofstream(project() / folder_ / "empty.dds");
    for (const std::string& path :
         {std::string(), (project() / folder_ / "empty.dds").string(), (project() / folder_ / "missing.dds").string(),
          bring("gradient.png", "flat.png")}) {
        setText("cubeMapTexture", path);
        const auto found = colours(towards(10, 20));
        EXPECT_TRUE(found.count({32, 32, 32}) == 1 && found.count({255, 255, 255}) == 1) << path;
    }
}

// Catches tables uploaded or sampled wrongly, and every term of the formula.
TEST_F(OtherSkies, ProceduralSkyFollowsItsFormula) {
    make("ProceduralSkyLocator");
    must("setAttr sky.t 40 50 60; setAttr sky.r 10 20 30; setAttr sky.s 2 3 4;");
    const auto cameras = {towards(30, 0), towards(35, -135), towards(-30, 40), towards(85, 0), towards(10, 200, 18)};
    const auto expectFormula = [&](const Procedural& sky, const char* what) {
        for (const auto& c : cameras)
            EXPECT_LE(worst(c, sky.colour()), 1) << what << ", pitch " << c.pitch << ", yaw " << c.yaw;
    };
    Procedural sky;
    expectFormula(sky, "default");

    must("setAttr s.Quality 1; setAttr s.hazeBrightness 0.6; setAttr s.blueSkyBrightness 0.7; setAttr s.redDecay 0.4;"
         "setAttr s.hazeDecay 0.3; setAttr s.redDecayHeight 900; setAttr s.hazeHeight 300; setAttr s.cameraHeight 90;"
         "setAttr s.sunLightIntensity 1.5; setAttr s.sunLightDir -type \"double3\" -0.3 0.4 0.8;"
         "setAttr s.sunDiscSize 0.9; setAttr s.sunDiscFalloff 3; setAttr s.sunDiscAlpha 0.4;"
         "setAttr s.hazeHaloBrightness 4;");
    const auto cubed = [](double v) { return v * v * v * 15; };
    sky.inputs = plain::defaultSky(true);
    sky.inputs.hazeBrightness = cubed(0.6);
    sky.inputs.blueSkyBrightness = cubed(0.7);
    sky.inputs.redDecay = cubed(0.4);
    sky.inputs.hazeDecay = cubed(0.3);
    sky.inputs.redDecayHeight = 900;
    sky.inputs.hazeHeight = 300;
    sky.inputs.cameraHeight = 90;
    sky.intensity = 1.5;
    sky.sunDir = {-0.3, 0.4, 0.8};
    sky.discSize = 0.9;
    sky.discFalloff = 3;
    sky.discAlpha = 0.4;
    sky.hazeHalo = 4;
    expectFormula(sky, "tuned");

    set("RenderGround", 0);
    sky.ground = false;
    expectFormula(sky, "without ground");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches tables that follow the parameters in manual mode, or that do not in instant mode.
TEST_F(OtherSkies, ManualTablesWaitUntilTheNodeIsSwitchedOffAndOn) {
    make("ProceduralSkyLocator");
    const auto c = towards(40, 0);
    Procedural before, after;
    after.inputs.hazeBrightness = 0.7 * 0.7 * 0.7 * 15;
    const auto shows = [&](const Procedural& sky) { return worst(c, sky.colour()) <= 1; };
    set("UpdateMode", 0);
    EXPECT_TRUE(shows(before));
    set("hazeBrightness", 0.7);
    EXPECT_TRUE(shows(before)) << "changed by hand";
    set("Enable", 0);
    EXPECT_THAT(colours(c), ElementsAre(std::array<int, 3>{0, 0, 0}));
    set("Enable", 1);
    EXPECT_TRUE(shows(after)) << "switched off and on";
    set("UpdateMode", 1);
    set("hazeBrightness", 0.1);
    EXPECT_TRUE(shows(before)) << "instant";
}

// Catches an output that is not the sun's texel, or that follows more than its trigger.
TEST_F(OtherSkies, TheSunsColourComesFromTheTables) {
    make("ProceduralSkyLocator");
    draw(towards(0, 0));
    must(
        "setAttr s.sunLightDir -type \"double3\" 0 1 0; setAttr s.sunLightIntensity 3; setAttr s.dummyInputTrigger 1;");
    const auto last = plain::skyTables(plain::defaultSky(false)).extinction.back();
    const char* const plugs[3] = {"rval", "gval", "bval"};
    const auto outputs = [&] {
        std::vector<double> values;
        for (const char* plug : plugs) {
            must(std::string("getAttr s.") + plug);
            values.push_back(result_.toFloat());
        }
        return values;
    };
    const auto first = outputs();
    EXPECT_THAT(first, ElementsAre(3.0 * static_cast<double>(last[0]), 3.0 * static_cast<double>(last[1]),
                                   3.0 * static_cast<double>(last[2])));
    set("sunLightIntensity", 1);
    EXPECT_EQ(outputs(), first) << "only the trigger makes the output look again";
    // A quality that the tables do not have yet must not lead beyond their end.
    must("setAttr s.UpdateMode 0; setAttr s.Quality 1; setAttr s.dummyInputTrigger 2;");
    EXPECT_THAT(outputs(),
                ElementsAre(static_cast<double>(last[0]), static_cast<double>(last[1]), static_cast<double>(last[2])));
}

// Catches a viewport that hangs, or a message at every frame.
TEST_F(OtherSkies, LayersBeyondAllMeasureAreToldOnce) {
    make("ProceduralSkyLocator");
    const auto c = towards(40, 0);
    set("hazeHeight", 1e9);
    const std::string refusal = "ProceduralSkyLocator:  s has heights too large to be integrated in steps of 400 m, or "
                                "parameters that are no numbers. Nothing is drawn.";
    for (int frame = 0; frame < 3; ++frame) EXPECT_THAT(colours(c), ElementsAre(std::array<int, 3>{0, 0, 0}));
    EXPECT_THAT(log_.errors(), ElementsAre(refusal));
    for (const int enabled : {0, 1}) {
        set("Enable", enabled);
        draw(c);
    }
    EXPECT_THAT(log_.errors(), ElementsAre(refusal, refusal)) << "switched off and on";
    set("hazeHeight", 500);
    EXPECT_LE(worst(c, Procedural().colour()), 1);
}
