#include "PlainClouds.h"
#include "RandomClouds.h"
#include "SkyTool/clouds/CloudKernels.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cstring>
#include <thread>

using namespace orvo;

namespace {

const Vector3 slanted{0.6, 0.64, 0.48};

/// Equal bits; a not-a-number matches any other.
template <class T>
::testing::AssertionResult sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    if (a.size() != b.size()) return ::testing::AssertionFailure() << a.size() << " values, not " << b.size();
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::memcmp(&a[i], &b[i], sizeof(T)) != 0 && !(std::isnan(a[i]) && std::isnan(b[i])))
            return ::testing::AssertionFailure() << "value " << i << ": " << a[i] << ", not " << b[i];
    return ::testing::AssertionSuccess();
}

void expectSame(const ParticleCloudGeom& a, const ParticleCloudGeom& b) {
    EXPECT_EQ(a.numSprites, b.numSprites);
    EXPECT_TRUE(sameBits<double>({a.boundCentre.x, a.boundCentre.y, a.boundCentre.z, a.boundRadius},
                                 {b.boundCentre.x, b.boundCentre.y, b.boundCentre.z, b.boundRadius}));
    EXPECT_TRUE(sameBits(a.positions, b.positions));
    EXPECT_TRUE(sameBits(a.uvCoords, b.uvCoords));
    EXPECT_TRUE(sameBits(a.randoms, b.randoms));
    EXPECT_TRUE(sameBits(a.opacities, b.opacities));
    EXPECT_TRUE(sameBits(a.shadowCube0, b.shadowCube0)) << "shadow samples 0 to 3";
    EXPECT_TRUE(sameBits(a.shadowCube1, b.shadowCube1)) << "shadow samples 4 to 7";
}

/// Runs a check with each vector unit that this machine has.
template <class Check>
void onEveryVectorUnit(Check&& check) {
    for (std::int64_t targets = hwy::SupportedTargets(); targets != 0; targets &= targets - 1) {
        const std::int64_t target = targets & -targets;
        SCOPED_TRACE(hwy::TargetName(target));
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        check();
        hwy::SetSupportedTargetsForTest(0);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
}

/// One shape of 100 metres around the origin, and its bounds.
CloudShapeSet puff(double density = 1.0) {
    CloudShapeSet set;
    Matrix44 world;
    for (int i = 0; i < 3; ++i) world.m[i][i] = 10000.0;
    set.spheres.push_back({MatrixInverse(world, 1e-10), 1.0, density});
    set.boundRadius = 10500.0;
    set.seed = 1;
    return set;
}

struct Case {
    const char* name;
    RandomCloud cloud;
    double density = 30000.0, size = 8000.0;
    Vector3 light = slanted;
    bool fade = false;
    double fadeStart = 10000.0, fadeEnd = -10000.0;
};

std::vector<Case> cases() {
    std::vector<Case> all;
    all.push_back({"one shape", randomCloud(1, 1), 1e6});
    all.back().cloud.set.spheres[0].density = 1.0; // less than 0.7 would keep nothing
    all.push_back({"twenty", randomCloud(20, 2)});
    all.push_back({"twenty to the limit, with fade", randomCloud(20, 3), 200000.0, 8000.0, slanted, true});
    all.push_back({"a fade upside down", randomCloud(9, 4), 3e4, 8000.0, slanted, true, -10000.0, 0.0});
    all.push_back({"a fade without a ramp", randomCloud(9, 5), 3e4, 8000.0, slanted, true, 0.0, 0.0});
    all.push_back({"three hundred", randomCloud(300, 6), 3000.0});
    all.push_back({"mirrored and zero-size shapes", randomCloud(24, 7, [](int i) { return "m z"[i % 3]; })});
    all.push_back({"only zero-size shapes", randomCloud(3, 8, [](int) { return 'z'; })});
    all.push_back({"sprites larger than the cloud", randomCloud(20, 9), 2000.0, 900000.0});
    all.push_back({"sprites turned inside out", randomCloud(20, 10), 2000.0, -8000.0});
    all.push_back({"light from straight above", randomCloud(20, 11), 3e4, 8000.0, {0, 1, 0}});
    all.push_back({"no light", randomCloud(5, 12), 3e4, 8000.0, {}});
    all.push_back({"light that is not a number", randomCloud(5, 13), 3e4, 8000.0, {notANumber, 1, 0}});
    all.push_back({"light that is no unit vector", randomCloud(5, 14), 3e4, 8000.0, {3, -4, 5}});
    all.push_back({"a faint light, of hundreds of steps", randomCloud(5, 15), 200.0, 8000.0, {0.01, 0.02, 0.05}});
    all.push_back({"sprites of no size", randomCloud(5, 16), 3e4, 0.0});
    all.push_back({"sprites whose size is not a number", randomCloud(5, 17), 3e3, notANumber});
    all.push_back({"few candidates, on steps as large as the shapes", randomCloud(20, 18), 60.0});
    for (const double bad : {notANumber, inf, 1e200}) {
        all.push_back({"a matrix beyond bounds", randomCloud(6, 19), 3e4});
        all.back().cloud.set.spheres[2].transform.m[1][1] = bad;
        all.push_back({"a density beyond bounds", randomCloud(6, 20), 3e4});
        all.back().cloud.set.spheres[2].density = bad;
    }
    all.push_back({"densities below 0", randomCloud(20, 23)});
    for (std::size_t i = 0; i < 20; i += 4) all.back().cloud.set.spheres[i].density *= -1.0;
    all.push_back({"a shape without end", randomCloud(20, 24)});
    for (auto& row : all.back().cloud.set.spheres[3].transform.m) row[0] = row[1] = row[2] = 0.0;
    all.push_back({"shapes that reach beyond the bounds", randomCloud(20, 22)});
    all.back().cloud.set.boundRadius *= 0.5;
    all.push_back({"far from the origin", randomCloud(20, 21)});
    for (CloudShapeSphere& sphere : all.back().cloud.set.spheres)
        sphere.transform = MatrixMultiply(translationMatrix({-3e9, 0, 2e9}), sphere.transform);
    all.back().cloud.set.boundCentre = all.back().cloud.set.boundCentre + Vector3{3e9, 0, -2e9};
    return all;
}

} // namespace

// Catches culling that leaves out a shape which is felt, sums in another order, fused operations, and draws that fall
// out of step, for each vector unit that this machine has.
TEST(GenerateSprites, MatchesThePlainLoopsToTheBitOnEveryVectorUnit) {
    const std::vector<Case> all = cases();
    std::int32_t sprites = 0;
    for (const Case& c : all)
        for (const bool shadow : {true, false}) {
            SCOPED_TRACE(c.name);
            const ParticleCloudGeom expected =
                plain::GenerateSprites(c.cloud.set, c.density, c.size, shadow, c.light, c.fade, c.fadeStart, c.fadeEnd);
            sprites += expected.numSprites;
            onEveryVectorUnit([&] {
                expectSame(
                    *GenerateSprites(c.cloud.set, c.density, c.size, shadow, c.light, c.fade, c.fadeStart, c.fadeEnd),
                    expected);
            });
        }
    EXPECT_GT(sprites, 50000) << "the clouds hold too little to tell";
}

// Catches fused operations and other orders in the last bits of the doubles, which the arrays' floats would hide, and
// estimates that are farther off than they say: each bound, and the floats that follow from it, for clouds at places
// where rounding hardly counts, where it does, and where it is too much.
TEST(CloudKernels, MatchThePlainDoublesToTheBit) {
    for (const double away : {0.0, 2e6, 3e7, 1e9, 1e17})
        for (const bool fade : {false, true}) {
            SCOPED_TRACE(testing::Message() << away << (fade ? ", fade" : ""));
            CloudShapeSet set = randomCloud(away > 1e7 ? 2 : 20, 30).set;
            if (away == 2e6) set.spheres[3].density = -1e6;
            if (away == 3e7) set.boundRadius *= 0.5; // rays end within shapes
            for (CloudShapeSphere& sphere : set.spheres)
                sphere.transform = MatrixMultiply(translationMatrix({-away, 0, away}), sphere.transform);
            set.boundCentre = set.boundCentre + Vector3{away, 0, -away};
            const ShapeTable table(set);
            ASSERT_TRUE(table.usable());
            const LightMarch march{
                set.boundCentre, slanted, set.boundRadius, set.boundRadius / 10.0, fade, 9e3, -9e3, 2e3};
            RandomGenerator random(31);
            std::vector<Vector3> centres;
            std::vector<double> expected;
            for (int i = 0; i < 3000; ++i) {
                const auto value = [&](double size) { return (random.RandomDouble53() - 0.5) * size; };
                const double x = value(1.7 * set.boundRadius), y = value(set.boundRadius);
                centres.push_back(set.boundCentre + Vector3{x, y, value(1.7 * set.boundRadius)});
                for (int s = 0; s < shadowSamples; ++s) {
                    const Vector3 corner{s & 1 ? 2e3 : -2e3, s & 2 ? 2e3 : -2e3, s & 4 ? 2e3 : -2e3};
                    expected.push_back(
                        plain::MarchLight(set, centres.back() + corner, slanted, march.stepLength, fade, 9e3, -9e3));
                }
            }
            onEveryVectorUnit([&] {
                SpriteMarcher marcher(table, march);
                int lit = 0, estimated = 0;
                for (std::size_t i = 0; i < centres.size(); ++i) {
                    double depths[shadowSamples], estimates[shadowSamples], bounds[shadowSamples];
                    float floats[shadowSamples];
                    ASSERT_TRUE(marcher.depthsAt(centres[i], depths));
                    ASSERT_TRUE(marcher.floatsAt(centres[i], floats));
                    const bool told = marcher.estimatesAt(centres[i], estimates, bounds);
                    estimated += told;
                    for (int s = 0; s < shadowSamples; ++s) {
                        const double depth = expected[i * shadowSamples + static_cast<std::size_t>(s)];
                        ASSERT_EQ(depths[s], depth);
                        ASSERT_EQ(floats[s], static_cast<float>(depth));
                        lit += depth != 0.0;
                        if (told) {
                            ASSERT_LE(std::abs(estimates[s] - depth), bounds[s]);
                        }
                    }
                }
                EXPECT_GT(lit, 1000);
                EXPECT_GE(estimated, away < 1e9 ? 1000 : 0);
            });
        }
}

// Catches estimates that take a decision, or a float, for sure when it is not. A number of a cloud is moved until the
// plain cloud changes between two neighbours of all doubles: there some candidate is felt or kept, or some opacity or
// depth is rounded, by the last bit.
TEST(GenerateSprites, DecidesAsThePlainLoopsWhereTheLastBitDoes) {
    struct Moved {
        const char* name;
        double least, most;
        double& (*number)(CloudShapeSphere&);
        bool edge = false; ///< whether all that changes is how many candidates feel the first shape, which keeps none
    };
    const auto height = [](CloudShapeSphere& s) -> double& { return s.transform.m[1][1]; };
    const Moved all[] = {{"size", 1e-4, 1.001e-4, height},
                         {"size of a shape of no density", 1.8e-4, 2e-4, height, true},
                         {"density", 0.8, 0.8001, [](CloudShapeSphere& s) -> double& { return s.density; }},
                         {"a great opacity", -1e6, -9.999e5, [](CloudShapeSphere& s) -> double& { return s.opacity; }},
                         {"opacity", 0.5, 0.5001, [](CloudShapeSphere& s) -> double& { return s.opacity; }}};
    for (const Moved& moved : all)
        for (std::uint32_t seed = 1; seed <= 40; ++seed) {
            SCOPED_TRACE(testing::Message() << moved.name << ' ' << seed);
            const bool shadow = seed % 2 && !moved.edge;
            const double density = moved.edge ? 3e5 : 1e5;
            CloudShapeSet set = puff(0.9);
            set.spheres.push_back(set.spheres[0]);
            set.spheres[1].transform = MatrixMultiply(translationMatrix({3000, 2000, 0}), set.spheres[0].transform);
            if (moved.edge) {
                for (CloudShapeSphere& sphere : set.spheres)
                    for (int i = 0; i < 3; ++i) sphere.transform.m[i][i] = 2e-4;
                set.spheres[0].transform.m[3][0] = 0.9; // 4,500 down the axis along which rows follow each other
                set.spheres[0].density = 0.0;
                set.spheres[1].transform.m[3][0] = -0.9;
            }
            const Vector3 away{seed > 20 ? 1e7 : 0.0, 0, 0}; // where rounding counts for more
            for (CloudShapeSphere& sphere : set.spheres)
                sphere.transform = MatrixMultiply(translationMatrix(away * -1.0), sphere.transform);
            set.boundCentre = away;
            set.seed = seed;
            const auto at = [&](double value) -> const CloudShapeSet& {
                moved.number(set.spheres[0]) = value;
                return set;
            };
            const auto plainAt = [&](double value) {
                return plain::GenerateSprites(at(value), density, 1000.0, shadow, slanted, false, 0.0, 0.0);
            };
            const auto same = [](const ParticleCloudGeom& a, const ParticleCloudGeom& b) {
                return a.positions == b.positions && a.randoms == b.randoms && a.opacities == b.opacities &&
                       a.shadowCube0 == b.shadowCube0 && a.shadowCube1 == b.shadowCube1;
            };
            double low = moved.least, high = moved.most;
            const ParticleCloudGeom ofLow = plainAt(low);
            ASSERT_GT(ofLow.numSprites, 0);
            if (same(ofLow, plainAt(high))) continue; // no decision between them
            for (double middle; middle = (low + high) / 2, low < middle && middle < high;)
                (same(ofLow, plainAt(middle)) ? low : high) = middle;
            const ParticleCloudGeom ofHigh = plainAt(high);
            onEveryVectorUnit([&] {
                expectSame(*GenerateSprites(at(low), density, 1000.0, shadow, slanted, false, 0.0, 0.0), ofLow);
                expectSame(*GenerateSprites(at(high), density, 1000.0, shadow, slanted, false, 0.0, 0.0), ofHigh);
            });
        }
}

// Catches a march that adds what the plain one leaves out as too thin, or the other way round: a ray passes through one
// shape, and then touches another, which has a coverage a little below 1e-10 there, or above it. The first one's
// density is where the depth's float turns.
TEST(CloudKernels, LeaveOutTheThinnestEdgesAsThePlainLoopsDo) {
    for (const double weight : {0.5e-10, 0.99e-10, 1.01e-10, 1.9e-10, 3e-10})
        for (const double least : {0.3, 0.4, 0.5, 0.6}) {
            SCOPED_TRACE(testing::Message() << weight << ' ' << least);
            CloudShapeSet set = puff();
            set.boundRadius = 20000.0;
            const double radius = 5000.0 / (marchRadius * std::sqrt(1.0 - std::sqrt(weight)));
            Matrix44 world{{{radius, 0, 0, 0}, {0, radius, 0, 0}, {0, 0, radius, 0}, {5000, 20000, 0, 1}}};
            set.spheres.push_back({MatrixInverse(world, 1e-10), 1.0, 1.0});
            const auto plainAt = [&](double density) {
                set.spheres[0].density = density;
                return static_cast<float>(plain::MarchLight(set, {}, {0, 1, 0}, 2000.0, false, 0, 0));
            };
            double low = least, high = least * 1.001;
            const float ofLow = plainAt(low), ofHigh = plainAt(high);
            ASSERT_LT(ofLow, ofHigh);
            for (double middle; middle = (low + high) / 2, low < middle && middle < high;)
                (plainAt(middle) == ofLow ? low : high) = middle;
            for (const double density : {low, high}) {
                const float expected = plainAt(density);
                const ShapeTable table(set);
                const LightMarch march{set.boundCentre, {0, 1, 0}, set.boundRadius, 2000.0, false, 0, 0, 0.0};
                onEveryVectorUnit([&] {
                    float depths[shadowSamples];
                    ASSERT_TRUE(SpriteMarcher(table, march).floatsAt({}, depths));
                    for (const float depth : depths) ASSERT_EQ(depth, expected);
                });
            }
        }
}

// Catches bounds without room for rounding, or without the box around a point: shapes and rows are laid so that a box
// has just one point, to the last bit, at which the plain code feels the shape.
TEST(CloudKernels, SpansHoldABoxThatJustTouches) {
    RandomGenerator random(40);
    const auto between = [&](double a, double b) { return a + random.RandomDouble53() * (b - a); };
    const auto direction = [](const Vector3& v, const Matrix44& m) {
        return MatrixTransformPoint(m, v) - MatrixTransformPoint(m, {});
    };
    for (int trial = 0; trial < 2000; ++trial) {
        RandomCloud cloud = randomCloud(1, 100 + static_cast<std::uint32_t>(trial));
        Matrix44 &world = cloud.worldMatrices[0], &toUnit = cloud.set.spheres[0].transform;
        const Vector3 away = Vector3{between(-1, 1), between(-1, 1), between(-1, 1)} * (trial % 3 == 0 ? 1e9 : 0.0);
        world = MatrixMultiply(world, translationMatrix(away));
        toUnit = MatrixMultiply(translationMatrix(away * -1.0), toUnit);
        cloud.set.boundCentre = cloud.set.boundCentre + away;
        const double radius = trial % 2 ? 1.2 : 1.8, halfSide = trial % 4 < 2 ? 0.0 : between(100, 9000);
        // The row leads through the shape's centre towards the corner that is farthest out, or past it, on the surface.
        Vector3 corner{1, 1, 1};
        for (const Vector3& other : {Vector3{-1, 1, 1}, Vector3{1, -1, 1}, Vector3{1, 1, -1}})
            if (length(direction(other, toUnit)) > length(direction(corner, toUnit))) corner = other;
        const Vector3 out = normalised(direction(corner, toUnit));
        const Vector3 aside = normalised(cross(out, {between(-1, 1), between(-1, 1), between(-1, 1)}));
        const double past = halfSide > 0.0 ? 0.0 : radius * (trial % 5 ? 1.0 - std::pow(10.0, -between(1, 14)) : 0.0);
        const Vector3 along = direction(out, world), centre = MatrixTransformPoint(world, aside * past);
        const Vector3 stride = along * std::pow(10.0, -between(0, 4)) * (trial % 7 < 4 ? 1.0 : -1.0);
        const int box = static_cast<int>(between(0, 40));

        const auto startAt = [&](double t) { return centre + along * t - stride * static_cast<double>(box); };
        const auto isFelt = [&](double t) {
            Vector3 p = startAt(t);
            for (int i = 0; i < box; ++i) p = p + stride;
            const Vector3 q = MatrixTransformPoint(toUnit, p - corner * halfSide);
            return dot(q, q) <= radius * radius;
        };
        double felt = 0.0, tooFar = 100.0;
        if (!isFelt(felt) || isFelt(tooFar)) continue; // on the surface, rounding decides
        for (double middle; middle = (felt + tooFar) / 2, felt < middle && middle < tooFar;)
            (isFelt(middle) ? felt : tooFar) = middle;
        const ShapeTable table(cloud.set);
        ASSERT_TRUE(table.usable());
        onEveryVectorUnit([&] {
            std::vector<ShapeSpan> spans;
            spansOfShapes(table, RowDirection(table, stride, halfSide, radius), startAt(felt), 40, spans);
            ASSERT_EQ(spans.size(), 1u) << trial;
            ASSERT_LE(spans[0].first, box) << trial;
            ASSERT_GE(spans[0].last, box) << trial;
        });
    }
}

// Catches shared state between worker threads.
TEST(GenerateSprites, GivesTheSameCloudOnTwoThreadsAtOnce) {
    const RandomCloud cloud = randomCloud(20, 31);
    std::unique_ptr<ParticleCloudGeom> results[2];
    std::vector<std::thread> threads;
    for (auto& result : results)
        threads.emplace_back([&] { result = GenerateSprites(cloud.set, 3e4, 8e3, true, slanted, true, 8e3, -8e5); });
    for (std::thread& thread : threads) thread.join();
    ASSERT_GT(results[0]->numSprites, 100);
    expectSame(*results[0], *results[1]);
    expectSame(*results[0], plain::GenerateSprites(cloud.set, 3e4, 8e3, true, slanted, true, 8e3, -8e5));
}

// Catches a density in the wrong unit, a grid of the wrong size, and a limit that is not checked: a shape of 100 metres
// has bounds 210 metres wide.
TEST(GenerateSprites, ScattersUpToAMillionCandidates) {
    const auto sprites = [](double density) {
        return GenerateSprites(puff(), density, 1000.0, false, {}, false, 0.0, 0.0)->numSprites;
    };
    // 101 steps of 2.079 metres are too many, 100 of 2.1 are not.
    EXPECT_EQ(sprites(std::pow(1000.0 / 210.0 * 100.99, 3)), maxSprites);
    EXPECT_EQ(sprites(std::pow(1000.0 / 210.0 * 101.01, 3)), 0);
    // Of the cubic kilometre's candidates, those with r > (1 - w) are kept, w = min(0.3, (1 - q^2 / 1.44)^2); the part
    // of bounds 1.05 wide is 4 pi (integral of w q^2 from 0 to 1.05) x 0.1^3 = 0.00107292 of it, by Simpson's rule.
    EXPECT_NEAR(sprites(2e6), 2145.8, 4.0 * std::sqrt(2145.8));
}

// Catches hangs, crashes and conversions out of range.
TEST(GenerateSprites, MakesNothingOfBadNumbers) {
    CloudShapeSet set = puff();
    const auto sprites = [&](double density) {
        const auto geom = GenerateSprites(set, density, 1000.0, true, slanted, true, 0.0, -1e9);
        EXPECT_EQ(geom->positions.size(), geom->numSprites * 12u);
        EXPECT_EQ(geom->shadowCube1.size(), geom->numSprites * 16u);
        return geom->numSprites;
    };
    for (const double density : {0.0, -1.0, notANumber, inf, 1e300, 1e-300, 5e-324})
        EXPECT_EQ(sprites(density), 0) << density;
    for (const double radius : {0.0, -10500.0, notANumber, inf, 1e300, 5e-324}) {
        set.boundRadius = radius;
        EXPECT_EQ(sprites(2e6), 0) << radius;
    }
    set = puff();
    set.boundCentre = {notANumber, inf, 0};
    EXPECT_EQ(sprites(2e6), 0);
    set = puff();
    set.spheres.clear();
    EXPECT_EQ(sprites(2e6), 0);
    // Without sprites there are bounds all the same: around the shapes' centre, half a sprite's diagonal wide.
    const auto geom = GenerateSprites(set, 2e6, 1000.0, true, slanted, false, 0.0, 0.0);
    EXPECT_EQ(geom->boundCentre, (Vector3{}));
    EXPECT_DOUBLE_EQ(geom->boundRadius, 707.10678118654752);
}

TEST(EvaluateShapes, FollowsCoverageAndFade) {
    CloudShapeSet set = puff(0.5);
    const auto at = [&](double x, double y, bool fade, bool shadow) {
        return EvaluateShapes(set, {x, y, 0}, shadow ? 1.8 : 1.2, fade, 5000.0, -5000.0, shadow);
    };
    // Catches the caps of placement and shadow changed over.
    EXPECT_DOUBLE_EQ(at(0, 0, false, false)->coverage, 0.3);
    EXPECT_DOUBLE_EQ(at(0, 0, false, true)->coverage, 0.6);
    EXPECT_DOUBLE_EQ(at(0, 0, false, true)->density, 0.5);
    // (1 - 1 / 1.44)^2, beyond the ellipsoid as drawn, and an end at 1.2 and 1.8 times its size.
    EXPECT_NEAR(at(10000, 0, false, false)->coverage, 0.09336419753086422, 1e-15);
    EXPECT_FALSE(at(12001, 0, false, false));
    EXPECT_TRUE(at(17900, 0, false, true));
    EXPECT_FALSE(at(18001, 0, false, true));
    // Halfway up the ramp half the shadow is left, but all of the coverage for placement; below it there is nothing.
    EXPECT_DOUBLE_EQ(at(0, 0, true, true)->coverage, 0.3);
    EXPECT_DOUBLE_EQ(at(0, 0, true, false)->coverage, 0.3);
    EXPECT_FALSE(at(0, -5001, true, false));
    // Five shapes at a point: full coverage, and means rather than sums.
    set.spheres.resize(5, set.spheres[0]);
    set.spheres[4].opacity = 0.0;
    EXPECT_DOUBLE_EQ(at(0, 0, false, false)->coverage, 1.0);
    EXPECT_DOUBLE_EQ(at(0, 0, false, false)->opacity, 0.8);
}

TEST(MarchLight, AddsUpDepthToTheEdge) {
    const CloudShapeSet set = puff();
    const auto depth = [&](Vector3 from, Vector3 light, double step) {
        return MarchLight(set, from, light, step, false, 0, 0);
    };
    // From the centre to 1.8 radii: the integral of min(0.6, (1 - q^2 / 3.24)^2) x 10000 / 100, q from 0 to 1.8, is
    // 73.790 by Simpson's rule; from 300 metres below, outside of the bounds, the ray meets it twice.
    EXPECT_NEAR(depth({}, {0, 1, 0}, 10.0), 73.79, 0.05);
    EXPECT_NEAR(depth({0, -30000, 0}, {0, 1, 0}, 10.0), 147.58, 0.05);
    EXPECT_EQ(depth({0, 30000, 0}, {0, 1, 0}, 10.0), 0.0) << "away from the light the cloud casts nothing";
    EXPECT_EQ(depth({30000, 0, 0}, {0, 1, 0}, 10.0), 0.0) << "the light passes by";
    for (const double size : {0.0, notANumber, inf, 1e-200, 1e-150, 1e-9})
        EXPECT_EQ(depth({}, {0, size, 0}, 1000.0), 0.0) << size;
    for (const double step : {0.0, -1.0, notANumber}) EXPECT_EQ(depth({}, {0, 1, 0}, step), 0.0) << step;
}

TEST(IntersectRaySphere, FindsBothCrossings) {
    const auto through = IntersectRaySphere({0, 0, -5}, {0, 0, 2}, 3.0);
    ASSERT_TRUE(through);
    EXPECT_DOUBLE_EQ(through->t0, 1.0);
    EXPECT_DOUBLE_EQ(through->t1, 4.0);
    EXPECT_FALSE(IntersectRaySphere({0, 3.1, -5}, {0, 0, 2}, 3.0));
    EXPECT_DOUBLE_EQ(IntersectRaySphere({0, 3, -5}, {0, 0, 2}, 3.0)->t1, 2.5);
}
