// The rendered sky and fog against the same formulas evaluated in plain C++, in double precision.
#include "api/plugins/PluginManager.h"
#include "commands/Host.h"
#include "kit/PixelCamera.h"
#include "kit/Places.h"
#include "scene/Scene.h"
#include "viewport/Viewport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

using namespace twin;
using Camera = PixelCamera;

namespace {

V3 mix(const V3& a, const V3& b, double t) { return a * (1 - t) + b * t; }

struct Sky {
    V3 sunDir{1, 1, 1}, sunColour{1.0, 0.95, 0.763};
    double sunIntensity = 1, sunDiskSize = 0.12, sunDiskFalloff = 32, sunDiskWeight = 1;
    bool sunEnable = true;
    V3 zenith{0.322, 0.471, 0.694}, horizon{0.902, 0.953, 0.969};
    double horizonFalloff = 5, horizonOffset = 0;

    V3 colour(const V3& v) const {
        V3 c = mix(zenith, horizon, saturate(std::pow(1 - saturate(v.y - horizonOffset), horizonFalloff)));
        if (sunEnable) {
            double s = saturate(dot(v, unit(sunDir)) + 1 - std::cos(sunDiskSize * M_PI / 16));
            s = 1 - std::sqrt(1 - s * s);
            c = c + sunColour * (sunIntensity * std::pow(s, sunDiskFalloff) * sunDiskWeight);
        }
        return c;
    }
};

struct Fog {
    double height = 40, offset = 0, density = 5, alpha = 1;
    V3 colour{1, 1, 1};

    V3 over(const V3& sky, const V3& v, const V3& eye) const {
        const double h = height * 100;
        const double depth = h * std::exp(-(1 / h) * (eye.y - offset * 100));
        const double extinction = (1 - std::exp(-density / 100000 * (depth / saturate(v.y)))) * alpha;
        // The frame buffer held the sky, with what is brighter than white cut off.
        const V3 held{saturate(sky.x), saturate(sky.y), saturate(sky.z)};
        return colour * extinction + held * (1 - extinction);
    }
};

class SkyPixels : public testing::Test {
protected:
    static void SetUpTestSuite() {
        host::Host::Options options;
        options.pluginFolders = {orvo::test::pluginFolder()};
        host::Host::instance().start(options);
        host::Host::instance().plugins().loadByBareName("orvosky");
    }
    void SetUp() override { host::Host::instance().scene().reset(); }
    void TearDown() override { host::Host::instance().scene().reset(); }

    static void run(const std::string& mel) { host::Host::instance().interpreter().execute(mel); }

    static void make(const Sky& s) {
        run("createNode transform -n OrvoSkyData; createNode transform -n sky -p OrvoSkyData;"
            "createNode orvosky_BasicSkyLocator -n skyShape -p sky; createNode orvosky_SkyRenderer;"
            "setAttr skyShape.sunDir -type \"double3\" " +
            triple(s.sunDir) + "; setAttr skyShape.sunColour -type \"float3\" " + triple(s.sunColour) +
            "; setAttr skyShape.sunIntensity " + std::to_string(s.sunIntensity) + "; setAttr skyShape.sunDiskSize " +
            std::to_string(s.sunDiskSize) + "; setAttr skyShape.sunDiskFalloff " + std::to_string(s.sunDiskFalloff) +
            "; setAttr skyShape.sunDiskWeight " + std::to_string(s.sunDiskWeight) + "; setAttr skyShape.sunEnable " +
            std::to_string(s.sunEnable) + "; setAttr skyShape.zenithColour -type \"float3\" " + triple(s.zenith) +
            "; setAttr skyShape.horizonColour -type \"float3\" " + triple(s.horizon) +
            "; setAttr skyShape.horizonFalloff " + std::to_string(s.horizonFalloff) +
            "; setAttr skyShape.horizonOffset " + std::to_string(s.horizonOffset) + ";");
    }

    static void make(const Fog& f) {
        run("createNode transform -n fog -p OrvoSkyData; createNode orvosky_ExpHeightFog -n fogShape -p fog;"
            "setAttr fogShape.fogHeight " +
            std::to_string(f.height) + "; setAttr fogShape.fogHeightOffset " + std::to_string(f.offset) +
            "; setAttr fogShape.fogDensity " + std::to_string(f.density) + "; setAttr fogShape.fogAlpha " +
            std::to_string(f.alpha) + "; setAttr fogShape.fogColour -type \"float3\" " + triple(f.colour) + ";");
    }

    static host::viewport::Picture draw(const Camera& c, double nearClip = 0.1, double farClip = 10000) {
        run("setAttr persp.t " + triple(c.eye) + "; setAttr persp.r " + triple({c.pitch, c.yaw, 0}) +
            "; setAttr perspShape.focalLength " + std::to_string(c.focalLength) +
            "; setAttr perspShape.nearClipPlane " + std::to_string(nearClip) + "; setAttr perspShape.farClipPlane " +
            std::to_string(farClip) + ";");
        std::string error;
        auto view = host::viewport::Viewport::create(c.width, c.height, &error);
        EXPECT_TRUE(view && view->render(&error)) << error;
        auto picture = view ? view->picture() : host::viewport::Picture();
        // The nodes' programs go while their context is there.
        run("setAttr skyShape.Enable 0;");
        if (view) view->render();
        run("setAttr skyShape.Enable 1;");
        return picture;
    }

    /// The largest difference of a channel from the formula, in 8-bit steps.
    template <class Colour>
    static int worst(const host::viewport::Picture& picture, const Camera& c, Colour&& colour) {
        int most = 0;
        for (int row = 0; row < c.height; ++row) {
            for (int column = 0; column < c.width; ++column) {
                const V3 wanted = colour(c.direction(column, row));
                const double channels[3] = {wanted.x, wanted.y, wanted.z};
                for (int k = 0; k < 3; ++k) {
                    const int expected = static_cast<int>(std::lround(saturate(channels[k]) * 255));
                    most = std::max(most, std::abs(expected - picture.at(column, row)[k]));
                }
            }
        }
        return most;
    }
};

const Camera cameras[] = {
    {{0, 100, 0}, 0, 0, 35, 96, 54},         {{500, 3000, -2000}, 35, 200, 24, 80, 80},
    {{0, 100, 0}, 35.26, -135, 50, 60, 120}, // into the default sun, upright port
    {{-10, 20, 30}, -60, 77, 15, 128, 40},   // at the ground, wide port
    {{0, 0, 0}, 89.9, 0, 35, 64, 64},        // straight up
};

// Faults: a wrong formula, uniform, camera basis, field of view or film fit.
TEST_F(SkyPixels, BasicSkyFollowsItsFormula) {
    Sky tuned;
    tuned.sunDir = {-0.3, 0.2, 0.9};
    tuned.sunColour = {1, 0.5, 0.2};
    tuned.sunIntensity = 2.5;
    tuned.sunDiskSize = 0.9;
    tuned.sunDiskFalloff = 3.5;
    tuned.sunDiskWeight = 0.6;
    tuned.horizonFalloff = 1.7;
    tuned.horizonOffset = -0.2;
    Sky dark = tuned;
    dark.sunEnable = false;
    for (const Sky& sky : {Sky(), tuned, dark}) {
        for (const Camera& c : cameras) {
            SetUp();
            make(sky);
            EXPECT_LE(worst(draw(c), c, [&](const V3& v) { return sky.colour(v); }), 1)
                << "camera at pitch " << c.pitch << ", yaw " << c.yaw;
        }
    }
}

// Faults: fog drawn before the sky, wrong blending, centimetres for metres, a wrong optical depth.
TEST_F(SkyPixels, HeightFogComposesOverTheSky) {
    Fog thick;
    thick.height = 120;
    thick.offset = 15;
    thick.density = 12;
    thick.alpha = 0.7;
    thick.colour = {0.9, 0.7, 0.4};
    const Sky sky;
    for (const Fog& fog : {Fog(), thick}) {
        for (const Camera& c : cameras) {
            SetUp();
            make(sky);
            make(fog);
            // One step: the sky is rounded to 8 bits before the fog is blended over it, and the sum once more.
            EXPECT_LE(worst(draw(c), c, [&](const V3& v) { return fog.over(sky.colour(v), v, c.eye); }), 1)
                << "camera at pitch " << c.pitch << ", yaw " << c.yaw;
        }
    }
}

// Fault: fog that lies so far below the eye that nothing divided by nothing gives the rays that do not rise no fog.
TEST_F(SkyPixels, HeightFogFarBelowHidesWhatIsBelowTheHorizon) {
    Fog fog;
    fog.height = 1; // metre
    fog.alpha = 0.8;
    fog.colour = {1, 0.5, 0.25};
    const Sky sky;
    for (const double height : {15000.0, 100000.0}) { // the depth is too small for single, then for double precision
        SetUp();
        make(sky);
        make(fog);
        const Camera c{{0, height, 0}, -5, 30, 35, 96, 54};
        EXPECT_LE(worst(draw(c, 1, 1e6), c,
                        [&](const V3& v) {
                            const V3 behind = sky.colour(v);
                            return v.y > 0 ? behind : behind * (1 - fog.alpha) + fog.colour * fog.alpha;
                        }),
                  1)
            << height;
    }
}

// Faults: a quad that the far plane or the depth buffer cuts at other clipping distances.
TEST_F(SkyPixels, ClippingDistancesDoNotMatter) {
    const Sky sky;
    // The last two are too much for single precision where the camera is tilted.
    const struct {
        double nearClip, farClip;
        int camera;
    } cases[] = {{0.01, 50, 0}, {10, 1e6, 0}, {1, 2, 0}, {0.1, 1e6, 1}, {0.1, 1e7, 2}};
    for (const auto& k : cases) {
        SetUp();
        make(sky);
        const Camera& c = cameras[k.camera];
        EXPECT_LE(worst(draw(c, k.nearClip, k.farClip), c, [&](const V3& v) { return sky.colour(v); }), 1)
            << k.nearClip << " to " << k.farClip;
    }
}

// Faults: the renderer drawing what it should leave out, or leaving out what it should draw.
TEST_F(SkyPixels, OnlyWhatIsUnderTheRootAndShownIsDrawn) {
    const Sky sky;
    const Camera c = cameras[0];
    const auto isSky = [&](const host::viewport::Picture& p) {
        return worst(p, c, [&](const V3& v) { return sky.colour(v); }) <= 1;
    };
    const auto isBlack = [&](const host::viewport::Picture& p) {
        return worst(p, c, [](const V3&) { return V3(); }) == 0;
    };
    struct Case {
        const char* mel;
        bool drawn;
    };
    const Case cases[] = {
        {"", true},
        {"setAttr skyShape.Enable 0;", false},
        {"setAttr orvosky_SkyRenderer1.v 0;", false},
        {"setAttr OrvoSkyData.v 0;", false},
        {"setAttr sky.template 1;", false},
        {"rename OrvoSkyData elsewhere;", false},
        {"parent -w sky;", false},
        {"string $r[] = `ls -type orvosky_SkyRenderer`; setAttr ($r[0] + \".Enable\") 0;", false},
    };
    for (const Case& k : cases) {
        SetUp();
        make(sky);
        run(k.mel);
        const auto p = draw(c);
        EXPECT_TRUE(k.drawn ? isSky(p) : isBlack(p)) << k.mel;
    }
}

} // namespace
