#include "MeshMeasures.h"

#include <gmock/gmock.h>

#include <limits>
#include <numeric>

namespace host::mesh {
namespace {

using testing::ElementsAre;

PolyMesh onePolygon(std::vector<Float3> points) {
    std::vector<int> connects(points.size());
    std::iota(connects.begin(), connects.end(), 0);
    const std::vector<int> counts{static_cast<int>(points.size())};
    std::string error;
    PolyMesh mesh = PolyMesh::fromPolygons(std::move(points), counts, std::move(connects), &error);
    EXPECT_EQ(error, "");
    return mesh;
}

std::vector<PolyMesh::Triangle> trianglesOf(const PolyMesh& mesh) {
    return {mesh.triangles().begin(), mesh.triangles().end()};
}

std::vector<Float3> star(int tips) {
    std::vector<Float3> points;
    for (int i = 0; i < 2 * tips; ++i) {
        const double angle = M_PI * i / tips, r = i % 2 ? 1 : 3;
        points.push_back({static_cast<float>(r * std::cos(angle)), static_cast<float>(r * std::sin(angle)), 0});
    }
    return points;
}

/// Teeth of height 10 and width 1 on a bar of height 1: from the right end back to the left along their tops.
std::vector<Float3> comb(int teeth) {
    const float width = static_cast<float>(2 * teeth - 1);
    std::vector<Float3> points{{0, 0, 0}, {width, 0, 0}};
    for (int i = teeth - 1; i >= 0; --i) {
        const float x = static_cast<float>(2 * i);
        points.push_back({x + 1, 10, 0});
        points.push_back({x, 10, 0});
        if (i == 0) break;
        points.push_back({x, 1, 0});
        points.push_back({x - 1, 1, 0});
    }
    return points;
}

struct Shape {
    const char* name;
    std::vector<Float3> points; // in the plane z = 0, counter-clockwise
    double area;
    friend void PrintTo(const Shape& c, std::ostream* out) { *out << c.name; }
};

class SimplePolygon : public testing::TestWithParam<Shape> {};

// Catches triangles outside a concave polygon, overlaps, gaps and flipped ones: all triangles face along the polygon's
// normal and their areas sum up to the polygon's. In other planes and windings the projection could go wrong.
TEST_P(SimplePolygon, IsCoveredExactlyByItsTrianglesInEveryPlane) {
    const Shape& shape = GetParam();
    using Map = Float3 (*)(const Float3&);
    const Map planes[] = {
        [](const Float3& p) { return p; },
        [](const Float3& p) {
            return Float3{p.y, p.x, 5};
        }, // seen from behind
        [](const Float3& p) {
            return Float3{p.x, 100, -p.y};
        }, // facing +Y
        [](const Float3& p) {
            return Float3{-7, p.x, p.y};
        }, // facing +X
        [](const Float3& p) {
            return Float3{p.x, p.y, p.x + p.y};
        }, // slanted: areas grow by sqrt(3)
        [](const Float3& p) {
            return Float3{p.x, p.y, -p.x - p.y};
        },
    };
    for (int i = 0; i < 6; ++i) {
        std::vector<Float3> points = shape.points;
        for (Float3& p : points) p = planes[i](p);
        const PolyMesh mesh = onePolygon(points);
        const double scale = i < 4 ? 1 : std::sqrt(3.0);
        ASSERT_EQ(mesh.triangles().size(), points.size() - 2);
        EXPECT_NEAR(surfaceArea(mesh), shape.area * scale, 1e-5 * shape.area) << i;
        const Imath::V3d normal = mesh.polygonNormal(0);
        double along = 0;
        for (const auto& t : mesh.triangles()) {
            const int vertices[] = {t[0], t[1], t[2]};
            const Imath::V3d a = toDouble(mesh.point(vertices[0])), b = toDouble(mesh.point(vertices[1])),
                             c = toDouble(mesh.point(vertices[2]));
            const double facing = (b - a).cross(c - a).dot(normal) / 2;
            EXPECT_GE(facing, -1e-6) << i;
            along += facing;
        }
        EXPECT_NEAR(along, shape.area * scale, 1e-5 * shape.area) << i;
        EXPECT_EQ(trianglesOf(mesh), trianglesOf(onePolygon(points))); // the same each time
    }
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, SimplePolygon,
    testing::Values(Shape{"triangle", {{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}, 6},
                    Shape{"square", {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, 4},
                    Shape{"dartAt0", {{1, 1, 0}, {0, 4, 0}, {0, 0, 0}, {4, 0, 0}}, 4},
                    Shape{"dartAt1", {{4, 0, 0}, {1, 1, 0}, {0, 4, 0}, {0, 0, 0}}, 4},
                    Shape{"dartAt2", {{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}, 4},
                    Shape{"dartAt3", {{0, 4, 0}, {0, 0, 0}, {4, 0, 0}, {1, 1, 0}}, 4},
                    Shape{"pentagonWithMidEdgePoint", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}, 4},
                    Shape{"ell", {{0, 0, 0}, {4, 0, 0}, {4, 1, 0}, {1, 1, 0}, {1, 5, 0}, {0, 5, 0}}, 8},
                    Shape{"star5", star(5), 5 * 3 * std::sin(M_PI / 5)}, // ten triangles of sides 3 and 1
                    Shape{"star300", star(300), 300 * 3 * std::sin(M_PI / 300)},
                    Shape{"comb50", comb(50), 99 + 50 * 9}),
    [](const auto& info) { return std::string(info.param.name); });

// Catches a quad split that always takes the same diagonal, and one that gives a triangle without area where the
// other diagonal would not.
TEST(QuadSplit, TakesTheFirstDiagonalUnlessTheOtherIsNeeded) {
    const auto split = [](std::vector<Float3> points) { return trianglesOf(onePolygon(std::move(points))); };
    using T = PolyMesh::Triangle;
    EXPECT_THAT(split({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}), ElementsAre(T{0, 1, 2}, T{0, 2, 3}));
    EXPECT_THAT(split({{0, 0, 0}, {4, 0, 0}, {1, 1, 0}, {0, 4, 0}}), ElementsAre(T{0, 1, 2}, T{0, 2, 3}));
    EXPECT_THAT(split({{4, 0, 0}, {1, 1, 0}, {0, 4, 0}, {0, 0, 0}}), ElementsAre(T{0, 1, 3}, T{1, 2, 3}));
    EXPECT_THAT(split({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 2, 0}}), ElementsAre(T{0, 1, 3}, T{1, 2, 3}));
}

// Catches a crash, a wrong number of triangles or invented vertices for polygons that cannot be tessellated.
TEST(DegeneratePolygon, BecomesAFanOfExactlyNMinusTwoTriangles) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const std::vector<std::vector<Float3>> polygons{
        {{0, 0, 0}, {2, 2, 0}, {2, 0, 0}, {0, 2, 0}, {-1, 1, 0}},           // crosses itself
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 0}, {0, 1, 0}},            // repeated point
        {{0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {2, 2, 0}, {0, 2, 0}, {1, 1, 0}}, // touches itself
        {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}},            // on a line
        {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}},            // a single point
        {{0, 0, 0}, {1, 0, 0}, {nan, 1, 0}, {0, 1, 0}, {-1, 1, 0}},
        {{0, 0, 0}, {inf, 0, 0}, {1, 1, 0}, {0, 1, 0}, {-1, 1, 0}},
    };
    for (const auto& points : polygons) {
        std::vector<PolyMesh::Triangle> fan;
        for (int i = 1; i + 1 < static_cast<int>(points.size()); ++i) fan.push_back({0, i, i + 1});
        EXPECT_EQ(trianglesOf(onePolygon(points)), fan);
    }
    const float big = std::numeric_limits<float>::max();
    EXPECT_EQ(
        onePolygon({{-big, -big, 0}, {big, -big, 0}, {big, big, 0}, {0, big, 0}, {-big, big, 0}}).triangles().size(),
        3u);
}

} // namespace
} // namespace host::mesh
