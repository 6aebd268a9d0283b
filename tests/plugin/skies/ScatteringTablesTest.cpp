#include "SkyTool/skies/ScatteringTables.h"

#include "PlainScattering.h"
#include "SkyTool/skies/ScatteringKernels.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

using namespace orvo;

namespace {

ProceduralSkyParams paramsOf(const plain::SkyInputs& in) {
    return {in.highQuality ? 1 : 0, true,
            in.cameraHeight,        in.hazeHeight,
            in.hazeDecay,           in.hazeBrightness,
            in.blueSkyHeight,       in.blueSkyBrightness,
            in.redDecayHeight,      in.redDecay,
            in.redDecayFalloff};
}

using Bits = std::vector<std::uint32_t>;

/// Not a number counts as one value: which of its bits are set says nothing.
Bits bitsOf(const std::vector<std::array<float, 3>>& table) {
    Bits bits;
    for (const auto& texel : table)
        for (const float v : texel) bits.push_back(std::isnan(v) ? 0xffffffffU : std::bit_cast<std::uint32_t>(v));
    return bits;
}

void expectPlainBits(const plain::SkyInputs& in, const std::string& what) {
    const auto fast = scatteringTables(paramsOf(in));
    ASSERT_TRUE(fast) << what;
    const plain::SkyTables wanted = plain::skyTables(in);
    EXPECT_EQ(bitsOf(fast->blueSky), bitsOf(wanted.blueSky)) << what;
    EXPECT_EQ(bitsOf(fast->haze), bitsOf(wanted.haze)) << what;
    EXPECT_EQ(bitsOf(fast->extinction), bitsOf(wanted.extinction)) << what;
}

/// A model of the default atmosphere with steps of another length.
AtmosphereModel steppedModel(double stepLength) {
    AtmosphereModel model = atmosphereModel(paramsOf(plain::defaultSky(true)));
    model.stepLength = stepLength;
    return model;
}

/// The default atmosphere along a ray from 30 m, by the trapezium rule over `n` intervals in units of its own: sums of
/// optical depth per kilometre, with nothing of the tables' code.
RayScattering trapezium(double mu, int n) {
    const double ground = 500.0, eye = 500.03, top = 507.5, haze = 0.0075, red = 0.015; // km; per km at the ground
    const double wave[3] = {std::pow(0.475 / 0.65, 4), std::pow(0.475 / 0.57, 4), 1.0};
    const double end = -eye * mu + std::sqrt(eye * eye * mu * mu - eye * eye + top * top);
    const auto height = [&](double t) { return std::sqrt(eye * eye + t * t + 2.0 * eye * t * mu) - ground; };
    double depthOfHaze = 0, depthOfRed = 0, sum[3] = {}, before[3] = {}, hazeBefore = 0, redBefore = 0;
    for (int i = 0; i <= n; ++i) {
        const double step = end / n, h = height(step * i);
        const double hazeNow = std::exp(-h / 0.5), redNow = std::exp(-h / 0.2);
        if (i > 0) depthOfHaze += (hazeBefore + hazeNow) / 2 * step;
        if (i > 0) depthOfRed += (redBefore + redNow) / 2 * step;
        for (int c = 0; c < 3; ++c) {
            const double now = hazeNow * std::exp(-haze * depthOfHaze - red * wave[c] * depthOfRed);
            if (i > 0) sum[c] += (before[c] + now) / 2 * step;
            before[c] = now;
        }
        hazeBefore = hazeNow;
        redBefore = redNow;
    }
    const auto all = [](const auto& of) { return Vector3{of(0), of(1), of(2)}; };
    return {all([&](int c) { return 0.015 * wave[c] * sum[c]; }), all([&](int c) { return 0.0075 * sum[c]; }),
            all([&](int c) { return std::exp(-haze * depthOfHaze - red * wave[c] * depthOfRed); })};
}

double relative(double a, double b) { return std::abs(a / b - 1.0); }

double farthest(const Vector3& a, const Vector3& b) {
    return std::max({relative(a.x, b.x), relative(a.y, b.y), relative(a.z, b.z)});
}

} // namespace

// Catches a vector lane that steps, sums or ends otherwise than the plain loop, and bounds of its exponentials' error
// that are too tight. Also with numbers that no exponential holds, where the vectors must stand back.
TEST(ScatteringTables, AreThePlainLoopsBitByBit) {
    expectPlainBits(plain::defaultSky(false), "default, low");
    expectPlainBits(plain::defaultSky(true), "default, high");
    struct Extreme {
        const char* what;
        double plain::SkyInputs::*field;
        double value;
    };
    const Extreme extremes[] = {{"thin haze", &plain::SkyInputs::hazeHeight, 1},
                                {"thin red", &plain::SkyInputs::redDecayHeight, 1},
                                {"high blue sky", &plain::SkyInputs::blueSkyHeight, 20000},
                                {"camera in space", &plain::SkyInputs::cameraHeight, 20000},
                                {"clear", &plain::SkyInputs::hazeDecay, 0},
                                {"no haze light", &plain::SkyInputs::hazeBrightness, 0},
                                {"dense", &plain::SkyInputs::hazeDecay, 1e6},
                                {"tiny brightness", &plain::SkyInputs::blueSkyBrightness, 1e-38},
                                {"no red", &plain::SkyInputs::redDecay, 0},
                                {"falloff 0", &plain::SkyInputs::redDecayFalloff, 0},
                                {"falloff 1", &plain::SkyInputs::redDecayFalloff, 1},
                                {"growing with height", &plain::SkyInputs::redDecayFalloff, 0.3},
                                {"steep", &plain::SkyInputs::redDecayFalloff, 1e8}};
    for (const Extreme& extreme : extremes) {
        plain::SkyInputs in = plain::defaultSky(false);
        in.*extreme.field = extreme.value;
        expectPlainBits(in, extreme.what);
    }
    // Below the horizon the density passes what a double holds, where the light is gone already: no number times 0.
    plain::SkyInputs thin = plain::defaultSky(true);
    thin.hazeHeight = 6;
    expectPlainBits(thin, "haze beyond all numbers");

    std::mt19937 random(5489);
    const auto within = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
    };
    const auto slider = [&](double scale) { return sliderValue(within(0, 1), scale); };
    for (int i = 0; i < 40; ++i) {
        const plain::SkyInputs in{.highQuality = i % 8 == 0,
                                  .cameraHeight = within(1, 400),
                                  .hazeHeight = within(1, 2000),
                                  .hazeDecay = slider(15),
                                  .hazeBrightness = slider(15),
                                  .blueSkyHeight = within(1, 2000),
                                  .blueSkyBrightness = slider(15),
                                  .redDecayHeight = within(1, 2000),
                                  .redDecay = slider(15),
                                  .redDecayFalloff = slider(30)};
        expectPlainBits(in, "random atmosphere " + std::to_string(i));
    }
}

// Catches exponentials less exact than the bounds say, which almost no float shows: shallow layers have few steps, and
// so the tightest bounds. And bounds so wide that the vectors are of no use.
TEST(ScatteringTables, TheFastIntegralKeepsItsBounds) {
    for (const double scaleHeight : {3.0, 7.0, 20.0, 200.0}) {
        AtmosphereModel model = steppedModel(50);
        model.haze.scaleHeight = model.blueSky.scaleHeight = scaleHeight;
        model.redDecay.scaleHeight = scaleHeight * 0.7;
        model.hazeExtinction = model.hazeExtinction * 300.0;
        const Vector3 eye{0, model.planetRadius + 1, 0};
        std::vector<TableRay> rays;
        for (double mu = 0.01; mu < 1; mu += 0.01) {
            const Vector3 direction{std::sqrt(1 - mu * mu), mu, 0};
            rays.push_back({direction.x, direction.y, atmosphereExit(model, eye, direction).value_or(0)});
        }
        std::vector<NearScattering> near(rays.size());
        ASSERT_TRUE(integrateRays(model, eye.y, rays, near));
        for (std::size_t i = 0; i < rays.size(); ++i) {
            const RayScattering wanted = integrateRay(model, eye, {rays[i].x, rays[i].y, 0});
            const auto expectWithin = [&](const Vector3& value, const Vector3& exact, const Vector3& error) {
                EXPECT_LE(std::abs(value.x - exact.x), exact.x * error.x) << scaleHeight << ", ray " << i;
                EXPECT_LE(std::abs(value.z - exact.z), exact.z * error.z) << scaleHeight << ", ray " << i;
                EXPECT_LT(std::max(error.x, error.z), 1e-10) << scaleHeight << ", ray " << i;
            };
            expectWithin(near[i].value.blueSky, wanted.blueSky, near[i].error.blueSky);
            expectWithin(near[i].value.haze, wanted.haze, near[i].error.haze);
            expectWithin(near[i].value.extinction, wanted.extinction, near[i].error.extinction);
        }
    }
}

// Catches a wrong scale, layer or colour: a vertical column of haze alone is H e^(-30/H) deep, with nothing taken away
// on the way for the blue sky.
TEST(ScatteringTables, VerticalColumnsHaveTheirClosedForm) {
    plain::SkyInputs in = plain::defaultSky(true);
    in.redDecay = 0;
    AtmosphereModel model = atmosphereModel(paramsOf(in));
    model.stepLength = 1;
    const Vector3 eye{0, 500030, 0}, up{0, 1, 0};
    const double column = 500.0 * std::exp(-0.06);
    const RayScattering hazy = integrateRay(model, eye, up);
    EXPECT_LT(relative(hazy.extinction.y, std::exp(-0.5 * 0.015 * 0.001 * column)), 1e-6);

    in.hazeDecay = 0;
    model = atmosphereModel(paramsOf(in));
    model.stepLength = 1;
    const RayScattering clear = integrateRay(model, eye, up);
    EXPECT_EQ(clear.extinction, (Vector3{1, 1, 1}));
    const Vector3 blue{0.2851812786667133, 0.4822530864197531, 1.0};
    EXPECT_LT(farthest(clear.blueSky, blue * (0.015 * 0.001 * column)), 1e-6);
    EXPECT_LT(farthest(clear.haze, Vector3{0.5, 0.5, 0.5} * (0.015 * 0.001 * column)), 1e-6);

    const RayScattering part = integrateRay(model, eye, up, 500.0);
    EXPECT_LT(relative(part.haze.x, 0.5 * 0.015 * 0.001 * column * (1.0 - std::exp(-1.0))), 1e-6);
    EXPECT_EQ(integrateRay(model, {0, 600000, 0}, up).extinction, Vector3()) << "the ray leads away from the air";
}

// Catches steps that do not converge to the integral: the light behind a step's end, which the sums take, makes them
// miss in proportion to the step.
TEST(ScatteringTables, ConvergeWithTheStepToAnIndependentIntegral) {
    for (const double mu : {0.002, 0.05, 0.3, 0.9}) {
        const RayScattering exact = trapezium(mu, 400000);
        const auto miss = [&](double stepLength) {
            const Vector3 direction{std::sqrt(1.0 - mu * mu), mu, 0};
            const RayScattering r = integrateRay(steppedModel(stepLength), {0, 500030, 0}, direction);
            return std::max({farthest(r.blueSky, exact.blueSky), farthest(r.haze, exact.haze),
                             farthest(r.extinction, exact.extinction)});
        };
        const double coarse = miss(50), fine = miss(5), finest = miss(0.5);
        EXPECT_LT(coarse, 0.01) << mu;
        EXPECT_LT(fine, coarse / 7) << mu;
        EXPECT_LT(finest, fine / 7) << mu;
    }
}

// Catches a horizon in the wrong place. From 500,030 m a sphere of 495,000 m is met below -sqrt(1 - 0.98994^2) =
// -0.14148: the first texel above it is (0.85852 n - 1) / 2 rounded up.
TEST(ScatteringTables, RaysToTheGroundLeaveZeros) {
    for (const auto& [quality, texels, first] : {std::tuple{0, 64U, 27U}, {1, 256U, 110U}}) {
        const auto tables = scatteringTables(paramsOf(plain::defaultSky(quality == 1)));
        ASSERT_TRUE(tables);
        for (const auto* table : {&tables->blueSky, &tables->haze, &tables->extinction})
            ASSERT_EQ(table->size(), texels);
        for (std::size_t i = 0; i < texels; ++i) {
            const bool isZero = tables->haze[i] == ScatteringTables::Texel{} &&
                                tables->blueSky[i] == ScatteringTables::Texel{} &&
                                tables->extinction[i] == ScatteringTables::Texel{};
            EXPECT_EQ(isZero, i < first) << i << " of " << texels;
        }
    }
}

// Catches an integration that never ends: steps too short to move along a ray of that length.
TEST(ScatteringTables, ThatWouldTakeForeverAreRefused) {
    const auto with = [](double ProceduralSkyParams::*field, double value) {
        ProceduralSkyParams params = paramsOf(plain::defaultSky(true));
        params.*field = value;
        return scatteringTables(params);
    };
    using P = ProceduralSkyParams;
    for (const auto height : {&P::hazeHeight, &P::blueSkyHeight, &P::redDecayHeight})
        for (const double value : {1e6, 1e9, 1e300}) EXPECT_FALSE(with(height, value)) << value;
    for (const auto field : {&P::cameraHeight, &P::hazeHeight, &P::hazeDecay, &P::redDecayFalloff})
        for (const double value : {std::numeric_limits<double>::infinity(), std::nan("")})
            EXPECT_FALSE(with(field, value)) << value;
    const auto fromSpace = with(&P::cameraHeight, 1e300);
    ASSERT_TRUE(fromSpace);
    EXPECT_EQ(bitsOf(fromSpace->haze), Bits(std::size_t{256} * 3, 0)) << "no ray meets the air";
}

// Catches an index beside the table, and one beyond it when the quality was changed after the table was made.
TEST(ScatteringTables, TheSunReadsItsTexel) {
    std::vector<ScatteringTables::Texel> table(64);
    for (std::size_t i = 0; i < table.size(); ++i) table[i][0] = static_cast<float>(i);
    const auto read = [&](std::size_t texels, double y) { return sunExtinction(table, texels, y)[0]; };
    EXPECT_EQ(read(64, 1.0), 63.0F);
    EXPECT_EQ(read(64, -1.0), 0.0F);
    EXPECT_EQ(read(64, 0.0), 32.0F);
    EXPECT_EQ(read(64, 1.0 / std::sqrt(3.0)), 50.0F); // 0.788675 * 64 = 50.5
    EXPECT_EQ(read(256, 0.0), 63.0F);
    EXPECT_EQ(read(64, std::nan("")), 0.0F);
}

TEST(ProceduralSkySliders, TheFalloffDefaultIsE) {
    EXPECT_NEAR(sliderValue(0.4491496604814464, falloffSliderScale), 2.718281828459045, 1e-14);
    EXPECT_DOUBLE_EQ(sliderValue(0.1, densitySliderScale), 0.015);
}
