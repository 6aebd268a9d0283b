#include "mesh/MeshQueries.h"
#include "mesh/QueryCache.h"
#include "mesh/TriangleTests.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace host::mesh {
namespace {

using Imath::M44d;
using Imath::V3d;
using testing::ElementsAre;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

/// n x n squares of unit size in the xz plane from (0, 0); heights by vertex.
PolyMesh grid(int n, const std::function<float(int, int)>& height) {
    std::vector<Float3> points;
    std::vector<int> counts, connects;
    for (int z = 0; z <= n; ++z)
        for (int x = 0; x <= n; ++x) points.push_back({static_cast<float>(x), height(x, z), static_cast<float>(z)});
    for (int z = 0; z < n; ++z)
        for (int x = 0; x < n; ++x) {
            const int v = z * (n + 1) + x;
            counts.push_back(4);
            connects.insert(connects.end(), {v, v + n + 1, v + n + 2, v + 1});
        }
    return PolyMesh::fromPolygons(points, counts, connects);
}

PolyMesh hills(int n) {
    return grid(n, [](int x, int z) {
        return 2.5f * std::sin(0.9f * static_cast<float>(x) + 0.3f) * std::cos(0.7f * static_cast<float>(z));
    });
}

/// Triangles and pentagons of very different sizes, some without area, some not finite.
PolyMesh rubble(unsigned int seed, float spread) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(-1, 1);
    std::vector<Float3> points;
    std::vector<int> counts, connects;
    for (int i = 0; i < 300; ++i) {
        const float size = std::pow(10.0f, 2 * unit(random) - 1.5f) * spread;
        const Float3 at{unit(random) * spread, unit(random) * spread, unit(random) * spread};
        const int corners = i % 3 ? 3 : 5;
        counts.push_back(corners);
        for (int c = 0; c < corners; ++c) {
            connects.push_back(static_cast<int>(points.size()));
            points.push_back({at.x + unit(random) * size, at.y + unit(random) * size, at.z + unit(random) * size});
        }
        if (i % 17 == 0) points.back() = points[points.size() - 2];
        if (i % 31 == 0) points.back().y = i % 2 ? kNan : std::numeric_limits<float>::infinity();
    }
    return PolyMesh::fromPolygons(points, counts, connects);
}

M44d placement(double scale, const V3d& move) {
    M44d m;
    m.rotate(V3d(0.4, 1.1, -0.3));
    m[3][0] = move.x, m[3][1] = move.y, m[3][2] = move.z;
    M44d sized;
    sized.scale(V3d(scale, scale * 0.5, scale * 2));
    return sized * m;
}

bool operator==(const RayHit& a, const RayHit& b) {
    return a.param == b.param && a.point == b.point && a.triangle == b.triangle && a.bary1 == b.bary1 &&
           a.bary2 == b.bary2;
}

/// A mesh asked with and without the tree.
struct Pair {
    Pair(const PolyMesh& mesh, const M44d& m) : plain(mesh, m), fast(mesh, m) {
        fast.accelerate(1e-6);
        EXPECT_TRUE(fast.accelerated(1e-6));
    }
    /// Asks for all that there is and compares; answers the closest hit.
    std::optional<RayHit> ask(const Ray& ray) {
        const auto a = plain.closestHit(ray), b = fast.closestHit(ray);
        EXPECT_EQ(a.has_value(), b.has_value());
        if (a && b) {
            EXPECT_TRUE(*a == *b) << a->param << ' ' << a->triangle << " / " << b->param << ' ' << b->triangle;
        }
        const auto all = plain.allHits(ray), found = fast.allHits(ray);
        EXPECT_EQ(all.size(), found.size());
        for (std::size_t i = 0; i < std::min(all.size(), found.size()); ++i) EXPECT_TRUE(all[i] == found[i]);
        EXPECT_EQ(a.has_value(), !all.empty());
        hits += all.size();
        return b;
    }
    void nearest(const V3d& p) {
        const auto a = plain.nearest(p), b = fast.nearest(p);
        ASSERT_TRUE(a && b);
        EXPECT_EQ(a->distance2, b->distance2);
        EXPECT_EQ(a->triangle, b->triangle);
        EXPECT_EQ(a->point, b->point);
    }
    MeshQueries plain, fast;
    std::size_t hits = 0;
};

struct Case {
    const char* name;
    PolyMesh mesh;
    M44d place;
};

std::vector<Case> cases() {
    return {{"hills", hills(24), M44d()},
            {"placed hills", hills(24), placement(3, V3d(100, -20, 5))},
            {"far hills", hills(12), placement(1, V3d(3e6, 1e6, -2e6))},
            {"tiny hills", hills(12), placement(1e-7, V3d(1, 2, 3))},
            {"flattened hills", hills(12), M44d(1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 2, 0, 1)},
            {"rubble", rubble(7, 10), M44d()},
            {"huge rubble", rubble(8, 1e30f), M44d()},
            {"hill with an outlier",
             grid(12, [](int x, int z) { return x == 5 && z == 5 ? 1e12f : 0.25f * static_cast<float>(x % 3); }),
             M44d()}};
}

// Catches triangles that the tree's single precision loses: at edges, at limits, from afar, after a tolerance.
TEST(MeshQueries, TreeAnswersAsEveryTriangleWould) {
    for (const Case& c : cases()) {
        SCOPED_TRACE(c.name);
        Pair pair(c.mesh, c.place);
        std::mt19937 random(11);
        std::uniform_real_distribution<double> unit(0, 1);
        const auto pointOn = [&](int kind) { // a corner, a point of an edge, or one within a triangle
            std::array<V3d, 3> at;
            do
                at = pair.plain.corners(static_cast<int>(unit(random) * pair.plain.numTriangles()) %
                                        pair.plain.numTriangles());
            while (!(std::isfinite((at[0] + at[1] + at[2]).length())));
            if (kind == 0) return at[0];
            const double u = unit(random), v = kind == 1 ? 0 : unit(random) * (1 - u);
            return at[0] + (at[1] - at[0]) * u + (at[2] - at[0]) * v;
        };
        const double size = (pointOn(2) - pointOn(2)).length();
        for (int i = 0; i < 600; ++i) {
            const V3d target = pointOn(i % 3);
            V3d direction(unit(random) - 0.5, unit(random) - 0.5, unit(random) - 0.5);
            if (i % 4 == 1) direction = V3d(0, -1, 0);
            if (i % 16 == 2) direction *= 1e-20;
            if (i % 16 == 6) direction *= 1e15;
            const double away = (i % 7 == 3 ? 1e7 : 2) * size / direction.length();
            Ray ray;
            const V3d origin = target - direction * away;
            for (int k = 0; k < 3; ++k)
                ray.direction[k] = static_cast<float>(direction[k]), ray.origin[k] = static_cast<float>(origin[k]);
            if (i % 4 == 1) ray.origin.x = target.x, ray.origin.z = target.z;
            ray.maxParam = static_cast<float>(i % 5 == 0 ? away : i % 5 == 1 ? away / 2 : 3 * away);
            ray.bothDirections = i % 6 >= 4;
            if (i % 6 == 5) ray.origin = target;
            ray.tolerance = i % 10 == 0 ? 0 : i % 10 == 1 ? 1e-3 : 1e-6;
            if (!std::isfinite(ray.maxParam) || !std::isfinite(ray.origin.length())) continue;
            pair.ask(ray);
            if (i % 3 == 0) pair.nearest(i % 2 ? ray.origin : target);
        }
        EXPECT_GT(pair.hits, 300u);
    }
}

// Catches hits that are off: the same rays and points, judged by other formulas.
TEST(MeshQueries, AgreeWithOtherFormulas) {
    const PolyMesh mesh = rubble(3, 4);
    MeshQueries queries(mesh, M44d());
    queries.accelerate(0);
    std::mt19937 random(5);
    std::uniform_real_distribution<float> unit(-1, 1);
    int hits = 0;
    for (int i = 0; i < 2000; ++i) {
        const V3d origin(4 * unit(random), 4 * unit(random), 4 * unit(random));
        const V3d direction(unit(random), unit(random), unit(random));
        long double best = 100, nearest2 = 1e30L;
        for (int t = 0; t < queries.numTriangles(); ++t) {
            const auto c = queries.corners(t);
            if (!std::isfinite(c[0].y + c[1].y + c[2].y)) continue;
            using V = Imath::Vec3<long double>;
            const V a(c[0]), e1 = V(c[1]) - a, e2 = V(c[2]) - a, d(direction), o(origin); // Moller and Trumbore
            const V p = d.cross(e2), s = o - a, q = s.cross(e1);
            const long double det = e1.dot(p), u = s.dot(p) / det, v = d.dot(q) / det, w = e2.dot(q) / det;
            if (u >= 0 && v >= 0 && u + v <= 1 && w >= 0) best = std::min(best, w);
            // The nearest point by bisection over the triangle: the distance is convex in each weight.
            const auto at = [&](long double x, long double y) {
                const V f = a + e1 * x + e2 * y - o;
                return f.dot(f);
            };
            const auto least = [](auto f, long double low, long double high) {
                for (int k = 0; k < 60; ++k) {
                    const long double third = (high - low) / 3;
                    if (f(low + third) < f(high - third))
                        high -= third;
                    else
                        low += third;
                }
                return f(low);
            };
            if (i % 500 == 0)
                nearest2 = std::min(
                    nearest2,
                    least([&](long double x) { return least([&](long double y) { return at(x, y); }, 0, 1 - x); }, 0,
                          1));
        }
        const auto hit = queries.closestHit({origin, direction, 50, false, 0});
        ASSERT_EQ(hit.has_value(), best < 50) << i;
        if (hit) {
            ++hits;
            EXPECT_NEAR(hit->param, static_cast<double>(best), 1e-6 * (1 + static_cast<double>(best)));
            EXPECT_LT((hit->point - (origin + direction * static_cast<double>(best))).length(), 1e-8);
            const auto c = queries.corners(hit->triangle);
            EXPECT_LT(
                (c[0] * hit->bary1 + c[1] * hit->bary2 + c[2] * (1.0 - hit->bary1 - hit->bary2) - hit->point).length(),
                1e-4);
        }
        if (i % 500 == 0) {
            EXPECT_NEAR(queries.nearest(origin)->distance2, static_cast<double>(nearest2), 1e-6);
        }
    }
    EXPECT_GT(hits, 500);
}

// Catches ties that go by the order in which the tree is walked: on a level grid every vertex has up to six triangles.
TEST(MeshQueries, LowestTriangleWinsTies) {
    const int n = 16;
    Pair pair(grid(n, [](int, int) { return 5; }), M44d());
    for (int z = 0; z <= n; ++z)
        for (int x = 0; x <= n; ++x) {
            const auto hit = pair.ask({V3d(x, 1005, z), V3d(0, -1, 0), 2000, false, 1e-6});
            ASSERT_TRUE(hit);
            EXPECT_EQ(hit->point, V3d(x, 5, z));
            EXPECT_EQ(hit->param, 1000);
            // The lowest square that has the vertex.
            const int face = std::max(z - 1, 0) * n + std::max(x - 1, 0);
            EXPECT_EQ(pair.fast.faceOf(hit->triangle), face);
            EXPECT_EQ(pair.fast.faceOf(pair.fast.nearest(V3d(x, 7, z))->triangle), face);
            pair.nearest(V3d(x, 7, z));
            pair.nearest(V3d(x + 0.5, 4, z));
        }
    // Two layers as far before the ray as behind it: forward wins, though its triangle is not the lowest.
    PolyMesh layers = PolyMesh::fromPolygons({{0, 2, 0}, {0, 2, 9}, {9, 2, 0}, {0, -2, 0}, {0, -2, 9}, {9, -2, 0}},
                                             std::vector{3, 3}, {0, 1, 2, 3, 4, 5});
    Pair two(layers, M44d());
    EXPECT_EQ(two.ask({V3d(1, 0, 1), V3d(0, -1, 0), 10, true, 0})->triangle, 1);
    EXPECT_EQ(two.ask({V3d(1, 0.5, 1), V3d(0, -1, 0), 10, true, 0})->param, -1.5f);
    EXPECT_EQ(two.fast.nearest(V3d(1, 0, 1))->triangle, 0);
}

// Catches points on an edge that differ between the two triangles that share it, so that no tie is one; and weights of
// triangles without area that are those of another edge than the longest.
TEST(MeshQueries, EdgesAreTheSameFromBothSides) {
    std::mt19937 random(23);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int i = 0; i < 500; ++i) {
        const auto any = [&] { return V3d(unit(random), unit(random), unit(random)); };
        const V3d a = any(), b = any(), away = (b - a).cross(any()), c = a + away, d = b + away * 2.0;
        const V3d p = a + (b - a) * (0.5 + 0.4 * unit(random)) - away;
        EXPECT_EQ(nearestOnTriangle(p, a, b, c), nearestOnTriangle(p, b, a, d)) << i;
    }
    double w[3];
    weightsAt(V3d(3, 0, 0), V3d(0, 0, 0), V3d(1, 0, 0), V3d(4, 0, 0), w);
    EXPECT_THAT(w, ElementsAre(0.25, 0, 0.75));
}

// Catches limits that leave out their end or the origin, and rays from the other side that see nothing.
TEST(MeshQueries, Limits) {
    Pair pair(grid(4, [](int, int) { return 0; }), M44d());
    const auto down = [&](double y, float most, bool both = false) {
        const auto hit = pair.ask({V3d(1.25, y, 1.5), V3d(0, -2, 0), most, both, 0});
        return hit ? hit->param : kNan;
    };
    EXPECT_EQ(down(8, 4), 4);
    EXPECT_TRUE(std::isnan(down(8, std::nextafter(4.0f, 0.0f))));
    EXPECT_EQ(down(0, 0), 0);
    EXPECT_TRUE(std::isnan(down(-8, 100)));
    EXPECT_EQ(down(-8, 4, true), -4);
    EXPECT_TRUE(std::isnan(down(-8, 3.9f, true)));
    EXPECT_EQ(down(1e30, std::numeric_limits<float>::infinity()), 5e29f);
}

// Catches a tolerance that is forgotten, or that the tree's boxes are too tight for.
TEST(MeshQueries, ToleranceIsAShareOfTheTriangle) {
    std::vector<Float3> points;
    std::vector<int> connects;
    for (int i = 0; i < 30; ++i) // many, so that there are boxes to look into or not
        for (const Float3& p : {Float3{0, 0, 0}, Float3{0, 0, 1000}, Float3{1000, 0, 0}}) {
            connects.push_back(static_cast<int>(points.size()));
            points.push_back({p.x + 2000 * static_cast<float>(i), p.y, p.z});
        }
    const PolyMesh mesh = PolyMesh::fromPolygons(points, std::vector<int>(30, 3), connects);
    for (const double tolerance : {0.0, 1e-6, 1e-3, 0.25}) {
        Pair pair(mesh, M44d());
        pair.fast.accelerate(tolerance);
        const auto beside = [&](double share) {
            return pair.ask({V3d(-1000 * share, 1, 10), V3d(0, -1, 0), 10, false, tolerance}).has_value();
        };
        EXPECT_TRUE(beside(tolerance * 0.999));
        EXPECT_FALSE(beside(tolerance * 1.001 + 1e-12));
    }
}

// Catches crashes and made-up answers.
TEST(MeshQueries, MeshesWithoutAnythingToMeet) {
    const PolyMesh none, points = PolyMesh::fromPolygons({{0, 0, 0}, {1, 0, 0}}, {}, {});
    const PolyMesh broken = PolyMesh::fromPolygons({{kNan, 0, 0}, {1, kNan, 0}, {0, 0, 1}}, std::vector{3}, {0, 1, 2});
    for (const PolyMesh* mesh : {&none, &points, &broken}) {
        MeshQueries queries(*mesh, M44d());
        queries.accelerate(0);
        EXPECT_FALSE(queries.closestHit({V3d(0, 1, 0), V3d(0, -1, 0), 10, true, 0}));
        EXPECT_FALSE(queries.nearest(V3d(0.0)));
    }
    // All in one place, and on one line: nothing to hit, but something to be near.
    const PolyMesh dot = PolyMesh::fromPolygons({{3, 3, 3}}, std::vector{3}, {0, 0, 0});
    Pair(dot, M44d()).nearest(V3d(1, 2, 3));
    const PolyMesh line = PolyMesh::fromPolygons({{0, 0, 0}, {4, 0, 0}, {1, 0, 0}}, std::vector{3}, {0, 1, 2});
    Pair pair(line, M44d());
    EXPECT_FALSE(pair.ask({V3d(2, 1, 0), V3d(0, -1, 0), 10, false, 1e-6}));
    EXPECT_EQ(pair.fast.nearest(V3d(3, 5, 0))->point, V3d(3, 0, 0));
}

// Catches answers of a mesh as it was before, or elsewhere, and memory that is never given back.
TEST(QueryCache, FollowsTheMesh) {
    const auto before = QueryCache::totalUsage();
    PolyMesh mesh = grid(8, [](int, int) { return 1; });
    const auto height = [](const PolyMesh& m, const M44d& place, bool accelerate) {
        return m.queryCache()
            .get(m, place, 0, accelerate)
            ->closestHit({V3d(2.5, 100, 2.5), V3d(0, -1, 0), 200, false, 0})
            ->point.y;
    };
    M44d raised;
    raised[3][1] = 10;
    EXPECT_EQ(height(mesh, M44d(), true), 1);
    EXPECT_EQ(height(mesh, raised, true), 11);
    EXPECT_EQ(height(mesh, M44d(), true), 1);
    M44d higher = raised;
    higher[3][1] = 20;
    EXPECT_EQ(height(mesh, higher, true), 21);
    EXPECT_EQ(mesh.queryCache().usage().trees, 2u);

    const PolyMesh copy = mesh;
    EXPECT_EQ(&copy.queryCache(), &mesh.queryCache());
    for (int v = 0; v < mesh.numVertices(); ++v) mesh.setPoint(v, {mesh.point(v).x, 3, mesh.point(v).z});
    EXPECT_EQ(height(mesh, M44d(), false), 3);
    EXPECT_EQ(height(copy, M44d(), true), 1);
    EXPECT_EQ(mesh.queryCache().usage().trees, 0u);
    EXPECT_EQ(height(mesh, M44d(), false), 3);
    EXPECT_EQ(mesh.queryCache().usage().trees, 1u);
    mesh.queryCache().clear();
    EXPECT_EQ(mesh.queryCache().usage().bytes, 0u);
    EXPECT_GT(QueryCache::totalUsage().trees, before.trees);
    QueryCache::clearAll();
    EXPECT_EQ(QueryCache::totalUsage().bytes, 0u);
    EXPECT_EQ(height(copy, raised, false), 11);
}

} // namespace
} // namespace host::mesh
