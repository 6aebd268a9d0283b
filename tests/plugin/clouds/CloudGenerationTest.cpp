#include "PlainClouds.h"
#include "RandomClouds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <chrono>
#include <cstring>
#include <limits>
#include <numbers>
#include <thread>

using namespace orvo;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
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
    all.push_back({"light that is not a number", randomCloud(5, 13), 3e4, 8000.0, {nan, 1, 0}});
    all.push_back({"light that is no unit vector", randomCloud(5, 14), 3e4, 8000.0, {3, -4, 5}});
    all.push_back({"a faint light, of hundreds of steps", randomCloud(5, 15), 200.0, 8000.0, {0.01, 0.02, 0.05}});
    all.push_back({"sprites of no size", randomCloud(5, 16), 3e4, 0.0});
    all.push_back({"sprites whose size is not a number", randomCloud(5, 17), 3e3, nan});
    all.push_back({"few candidates, on steps as large as the shapes", randomCloud(20, 18), 60.0});
    for (const double bad : {nan, inf, 1e200}) {
        all.push_back({"a matrix beyond bounds", randomCloud(6, 19), 3e4});
        all.back().cloud.set.spheres[2].transform.m[1][1] = bad;
        all.push_back({"a density beyond bounds", randomCloud(6, 20), 3e4});
        all.back().cloud.set.spheres[2].density = bad;
    }
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
            const ParticleCloudGeom expected = plain::GenerateSprites(c.cloud.set, c.density, c.size, shadow, c.light,
                                                                      c.fade, c.fadeStart, c.fadeEnd);
            sprites += expected.numSprites;
            for (std::int64_t targets = hwy::SupportedTargets(); targets != 0; targets &= targets - 1) {
                const std::int64_t target = targets & -targets;
                SCOPED_TRACE(hwy::TargetName(target));
                hwy::SetSupportedTargetsForTest(target);
                hwy::GetChosenTarget().Update(hwy::SupportedTargets());
                expectSame(*GenerateSprites(c.cloud.set, c.density, c.size, shadow, c.light, c.fade, c.fadeStart,
                                            c.fadeEnd),
                           expected);
                hwy::SetSupportedTargetsForTest(0);
                hwy::GetChosenTarget().Update(hwy::SupportedTargets());
            }
        }
    EXPECT_GT(sprites, 50000) << "the clouds hold too little to tell";
}
