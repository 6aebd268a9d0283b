#include "PlainClouds.h"
#include "RandomClouds.h"

#include <gtest/gtest.h>

#include <bit>

using namespace orvo;

namespace {

/// The smallest sphere of up to four points on whose surface they all lie, by solving for its centre
/// a + sum of x_i (p_i - a) with full pivoting; a negative radius when there is none.
Sphere throughAll(const std::vector<Vector3>& points) {
    const std::size_t n = points.size() - 1;
    double rows[3][4] = {};
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j)
            rows[i][j] = 2.0 * dot(points[i + 1] - points[0], points[j + 1] - points[0]);
        rows[i][n] = dot(points[i + 1] - points[0], points[i + 1] - points[0]);
    }
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t pivot = i;
        for (std::size_t k = i; k < n; ++k)
            if (std::abs(rows[k][i]) > std::abs(rows[pivot][i])) pivot = k;
        std::swap(rows[i], rows[pivot]);
        if (std::abs(rows[i][i]) < 1e-9) return {{}, -1.0};
        for (std::size_t k = 0; k < n; ++k)
            for (std::size_t j = n + 1; k != i && j-- > i;) rows[k][j] -= rows[k][i] / rows[i][i] * rows[i][j];
    }
    Vector3 centre = points[0];
    for (std::size_t i = 0; i < n; ++i) centre = centre + (points[i + 1] - points[0]) * (rows[i][n] / rows[i][i]);
    return {centre, length(points[0] - centre)};
}

/// Of the spheres through every one, two, three and four of the points the smallest that holds them all.
double bruteForceRadius(const std::vector<Vector3>& points) {
    double best = inf;
    for (unsigned subset = 1; subset < 1u << points.size(); ++subset) {
        if (std::popcount(subset) > 4) continue;
        std::vector<Vector3> chosen;
        for (std::size_t i = 0; i < points.size(); ++i)
            if (subset >> i & 1) chosen.push_back(points[i]);
        const Sphere sphere = throughAll(chosen);
        bool holdsAll = sphere.radius >= 0.0 && sphere.radius < best;
        for (const Vector3& p : points)
            holdsAll = holdsAll && length(p - sphere.centre) <= sphere.radius * (1 + 1e-9) + 1e-9;
        if (holdsAll) best = sphere.radius;
    }
    return best;
}

/// Points of several kinds, by number: anywhere, on a plane, on a line, on a sphere, on a circle, on a grid (with
/// duplicates), and far from the origin.
std::vector<Vector3> pointsOfKind(int kind, std::size_t count, RandomGenerator& random) {
    std::vector<Vector3> points;
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = [&] { return random.RandomDouble53() * 200.0 - 100.0; };
        Vector3 p{value(), value(), value()};
        if (kind == 1) p.z = 0.5 * p.x - p.y;
        if (kind == 2) p = {p.x, 2.0 * p.x, 3.0 - p.x};
        if (kind == 3) p = normalised(p) * 50.0 + Vector3{7, 8, 9};
        if (kind == 4) p = normalised(Vector3{p.x, 0, p.z}) * 50.0 + Vector3{7, 8, 9};
        if (kind == 5) p = {std::round(p.x / 100.0), std::round(p.y / 100.0), std::round(p.z / 100.0)};
        if (kind == 6) p = p + Vector3{1e6, -2e6, 3e6};
        points.push_back(p);
    }
    return points;
}

void expectHoldsAll(const Sphere& sphere, const std::vector<Vector3>& points) {
    for (const Vector3& p : points) EXPECT_LE(length(p - sphere.centre), sphere.radius * (1 + 1e-12));
}

} // namespace

// Catches a sphere that is larger than need be, or leaves a point out, in the degenerate cases most of all.
TEST(SmallestEnclosingSphere, MatchesBruteForce) {
    RandomGenerator random(77);
    for (int kind = 0; kind < 7; ++kind)
        for (int round = 0; round < 200; ++round) {
            SCOPED_TRACE(testing::Message() << "kind " << kind << ", round " << round);
            const auto points = pointsOfKind(kind, 1 + round % 9, random);
            const Sphere sphere = smallestEnclosingSphere(points);
            EXPECT_NEAR(sphere.radius, bruteForceRadius(points), 1e-7);
            expectHoldsAll(sphere, points);
        }
}

TEST(SmallestEnclosingSphere, TakesManyPointsAndBadOnes) {
    EXPECT_EQ(smallestEnclosingSphere({}).radius, 0.0);
    const std::vector<Vector3> one{{1, 2, 3}, {1, 2, 3}};
    EXPECT_EQ(smallestEnclosingSphere(one).centre, (Vector3{1, 2, 3}));
    EXPECT_EQ(smallestEnclosingSphere(one).radius, 0.0);
    const std::vector<Vector3> bad{{notANumber, 0, 0}, {0, inf, 0}, {-1, 0, 0},
                                   {1, notANumber, 0}, {1, 0, 0},   {0, 0, -inf}};
    EXPECT_DOUBLE_EQ(smallestEnclosingSphere(bad).radius, 1.0) << "points that are not finite count";
    EXPECT_EQ(smallestEnclosingSphere(std::span(bad).first(2)).radius, 0.0);
    const std::vector<Vector3> vast{{-1e200, 0, 0}, {1e200, 1e200, 0}, {1e-200, 0, 0}};
    smallestEnclosingSphere(vast); // comes to an end
    // A million points on a sphere, all as far out as each other: recursion would run out of stack, and a search that
    // goes by rounding errors would not come to an end.
    RandomGenerator random(78);
    const auto points = pointsOfKind(3, 1000000, random);
    const Sphere sphere = smallestEnclosingSphere(points);
    EXPECT_NEAR(sphere.radius, 50.0, 1e-6);
    EXPECT_NEAR(sphere.centre.x, 7.0, 1e-2);
    for (const Vector3& p : points) ASSERT_LE(length(p - sphere.centre), sphere.radius * (1 + 1e-12));
}

// Catches a search over the ellipsoids that skips the one farthest out.
TEST(BoundsOfShapes, EncloseAllSamplesAndATwentiethMore) {
    EXPECT_EQ(boundsOfShapes({}).radius, 0.0);
    const Matrix44 ball{{{10, 0, 0, 0}, {0, 10, 0, 0}, {0, 0, -10, 0}, {1, 2, 3, 1}}};
    const Sphere ofBall = boundsOfShapes(std::span(&ball, 1));
    EXPECT_NEAR(ofBall.radius, 10.5, 1e-9);
    EXPECT_NEAR(length(ofBall.centre - Vector3{1, 2, 3}), 0.0, 1e-9);
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        auto worlds = randomCloud(1 + seed * 3, seed, [](int i) { return "  mz"[i % 4]; }).worldMatrices;
        if (seed % 5 == 0) worlds[0].m[0][0] = notANumber;
        if (seed % 5 == 1) worlds.back().m[3][1] = inf;
        const Sphere bounds = boundsOfShapes(worlds);
        const Sphere ofPoints = smallestEnclosingSphere(plain::shapeSamples(worlds));
        EXPECT_EQ(bounds.centre, ofPoints.centre);
        EXPECT_EQ(bounds.radius, ofPoints.radius * 1.05);
    }
    const auto many = randomCloud(10000, 5).worldMatrices;
    EXPECT_GT(boundsOfShapes(many).radius, 60000.0);
}
