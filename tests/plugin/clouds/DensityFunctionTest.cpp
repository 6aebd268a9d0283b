#include "SkyTool/clouds/DensityFunction.h"
#include "Common/RandomGenerator.h"

#include <gtest/gtest.h>

#include <limits>

using namespace orvo;

namespace {

Vector3 randomPoint(RandomGenerator& random, double size) {
    const auto value = [&] { return (random.RandomDouble53() - 0.5) * size; };
    const double x = value(), y = value();
    return {x, y, value()};
}

} // namespace

// Catches a mistyped permutation and gradients in the wrong order: (3.14, 42, 7) is the improved noise's published
// example.
TEST(GradientNoise, IsPerlinsOf2002) {
    EXPECT_NEAR(gradientNoise({3.14, 42, 7}), 0.13691995878400012, 1e-15);
    RandomGenerator random(3);
    for (int i = 0; i < 2000; ++i) {
        const Vector3 p = randomPoint(random, 600.0);
        EXPECT_EQ(gradientNoise({std::round(p.x), std::round(p.y), std::round(p.z)}), 0.0);
        EXPECT_LE(std::abs(gradientNoise(p)), 1.0 + 1e-12);
        EXPECT_NEAR(gradientNoise(p), gradientNoise(p + Vector3{256, -512, 256}), 1e-10) << "the period";
    }
}

// Catches cells below zero that are one off: the noise has no jumps there.
TEST(GradientNoise, IsContinuousAcrossCells) {
    for (double x = -3.0; x <= 3.0; x += 1.0)
        EXPECT_NEAR(gradientNoise({x - 1e-9, x + 0.3, 0.7}), gradientNoise({x + 1e-9, x + 0.3, 0.7}), 1e-7) << x;
}

// The feature of cell (3, 1, 2) by hand: a = P[P[P[3] + 1] + 2] with P[3] = 91, P[92] = 244, P[246] = 243; b with
// P[3 + 1] = 90, P[91] = 40, P[42] = 219; c = P[243 + 3] = 243. Catches chains that mix up the cell's indices.
TEST(CellularNoise, IsAThirdOfTheSquaredDistance) {
    const Vector3 feature{3 + 243 / 255.0, 1 + 219 / 255.0, 2 + 243 / 255.0};
    EXPECT_NEAR(cellularNoise(feature), 0.0, 1e-25);
    EXPECT_NEAR(cellularNoise(feature - Vector3{0.03, 0.04, 0}), 0.0025 / 3, 1e-12);
    RandomGenerator random(4);
    for (int i = 0; i < 2000; ++i) {
        const Vector3 p = randomPoint(random, 600.0);
        const double value = cellularNoise(p);
        EXPECT_GE(value, 0.0);
        EXPECT_LE(value, 1.0) << "a cell has a feature of its own, at most its diagonal away";
        EXPECT_NEAR(value, cellularNoise(p + Vector3{256, -512, 256}), 1e-10) << "the period";
    }
}

TEST(MonoFractalDensity, WeighsItsOctaves) {
    const Vector3 p{1.3, -4.6, 9.2};
    const auto field = [&](std::uint32_t type, double scale, double offset, double gain, int octaves, double rough) {
        return MonoFractalDensity(type, scale, offset, gain, octaves, rough).Evaluate(p);
    };
    // One octave is the noise itself, scaled before, and multiplied and moved after.
    EXPECT_EQ(field(0, 2.0, 0.0, 1.0, 1, 1.0), gradientNoise(p * 0.5));
    EXPECT_EQ(field(7, 2.0, 0.25, 3.0, 1, 0.2), gradientNoise(p * 0.5) * 3.0 + 0.25);
    EXPECT_EQ(field(1, 2.0, 0.0, 1.0, 1, 1.0), cellularNoise(p * 0.5));
    for (const int octaves : {0, -1, std::numeric_limits<int>::min()})
        EXPECT_EQ(field(0, 2.0, 0.0, 1.0, octaves, 0.5), field(0, 2.0, 0.0, 1.0, 1, 0.5));
    // The second octave's point is 2.217 p turned by one radian about z and then about x, by matrices; roughness 0
    // leaves 2.217^-4 of it.
    const double c = std::cos(1.0), s = std::sin(1.0);
    const Vector3 q = p * (0.5 * 2.217), r{q.x * c + q.y * s, -q.x * s + q.y * c, q.z};
    const Vector3 second{r.x, r.y * c + r.z * s, -r.y * s + r.z * c};
    const double first = gradientNoise(p * 0.5), finer = gradientNoise(second);
    EXPECT_NEAR(field(0, 2.0, 0.0, 1.0, 2, 1.0), first + finer, 1e-7);
    EXPECT_NEAR(field(0, 2.0, 0.0, 1.0, 2, 0.0), first + finer * 0.041393984, 1e-7);
}

TEST(SoftObjectVolumeDensity, FallsToItsSurfaceAndIsCapped) {
    const Matrix44 half{{{0.5, 0, 0, 0}, {0, 0.5, 0, 0}, {0, 0, 0.5, 0}, {-1, 0, 0, 1}}};
    for (const double radius : {1.0, 3.0}) {
        const SoftObjectVolumeDensity one({half}, radius), three({half, half, half}, radius);
        // The object lies around (2, 0, 0), twice the radius wide.
        EXPECT_EQ(one.Evaluate({2, 0, 0}), 1.0);
        EXPECT_EQ(one.Evaluate({2, 2 * radius, 0}), 0.0);
        EXPECT_EQ(one.Evaluate({2, 0, 2.001 * radius}), 0.0);
        EXPECT_NEAR(one.Evaluate({2 + radius, 0, 0}), 0.5625, 1e-15);
        EXPECT_NEAR(three.Evaluate({2, 0, 1.5 * radius}), 3 * 0.19140625, 1e-15);
        EXPECT_EQ(three.Evaluate({2 + radius, 0, 0}), 1.0);
    }
    EXPECT_EQ(SoftObjectVolumeDensity({}, 1.0).Evaluate({0, 0, 0}), 0.0);
}

TEST(DensityFunction, TakesAnyNumber) {
    const double bad[] = {
        std::numeric_limits<double>::infinity(), std::nan(""), 1e300, -1e300, 4294967296.5, 2147483647};
    for (const double x : bad) {
        gradientNoise({x, -x, 0.5});
        cellularNoise({0.5, x, -x});
        SoftObjectVolumeDensity({Matrix44{}}, 1.0).Evaluate({x, 0, 0});
        MonoFractalDensity(1, 0.0, x, x, 2, -0.25).Evaluate({x, 1, 2});
    }
}
