#include "MeshMeasures.h"

#include "mesh/Primitives.h"

#include <gmock/gmock.h>

#include <limits>
#include <numeric>

namespace host::mesh {
namespace {

/// A polygon in the plane z = 0, counter-clockwise, with a notch: the corner it starts with sees none of the far arm.
/// The corners beyond the six of its shape lie along the bottom edge.
PolyMesh ell(int corners) {
    std::vector<Float3> points{{0, 5, 0}, {0, 0, 0}};
    const int along = corners - 6;
    for (int i = 1; i <= along; ++i)
        points.push_back({8.0f * static_cast<float>(i) / static_cast<float>(along + 1), 0, 0});
    for (const Float3& p : {Float3{8, 0, 0}, Float3{8, 1, 0}, Float3{1, 1, 0}, Float3{1, 5, 0}}) points.push_back(p);
    std::vector<int> connects(points.size());
    std::iota(connects.begin(), connects.end(), 0);
    const std::vector<int> counts{corners};
    return PolyMesh::fromPolygons(std::move(points), counts, std::move(connects));
}

// Catches a limit that is off by one, and a fan where the polygon is to be cut properly. The shape's area is 8 + 4; a
// fan about a corner that does not see all of it covers more.
TEST(LargePolygon, IsTessellatedUpToTenThousandCorners) {
    for (const int corners : {6, 7, 9999, 10000}) {
        const PolyMesh mesh = ell(corners);
        ASSERT_EQ(mesh.triangles().size(), static_cast<std::size_t>(corners - 2));
        EXPECT_NEAR(surfaceArea(mesh), 12, 1e-3) << corners;
    }
}

TEST(LargePolygon, BecomesAFanBeyond) {
    const PolyMesh mesh = ell(10001);
    ASSERT_EQ(mesh.triangles().size(), 9999u);
    for (int i = 0; i < 9999; ++i) ASSERT_EQ(mesh.triangles()[i], (PolyMesh::Triangle{0, i + 1, i + 2}));
    EXPECT_GT(surfaceArea(mesh), 12.5);
}

// Catches triangles of one polygon that are counted from the start of the mesh, next to polygons of other sizes.
TEST(Triangles, OfEachFaceStandBetweenThoseOfItsNeighbours) {
    // A triangle, a concave pentagon and a quad side by side.
    const std::vector<Float3> points{{0, 0, 0},  {1, 0, 0},  {0, 1, 0},  {10, 0, 0}, {14, 0, 0}, {14, 4, 0},
                                     {12, 1, 0}, {10, 4, 0}, {20, 0, 0}, {21, 0, 0}, {21, 1, 0}, {20, 1, 0}};
    const std::vector<int> counts{3, 5, 4};
    std::vector<int> connects(points.size());
    std::iota(connects.begin(), connects.end(), 0);
    const PolyMesh mesh = PolyMesh::fromPolygons(points, counts, connects);
    const double areas[] = {0.5, 10, 1}; // the pentagon: 16 less the notch of 4 * 3 / 2
    for (int face = 0; face < 3; ++face) {
        double area = 0;
        ASSERT_EQ(mesh.faceTriangles(face).size(), static_cast<std::size_t>(mesh.faceSize(face) - 2));
        for (int t = 0; t < mesh.faceSize(face) - 2; ++t) {
            const auto v = mesh.triangleVertices(face, t);
            const auto at = [&](int i) { return toDouble(mesh.point(v[static_cast<std::size_t>(i)])); };
            area += (at(1) - at(0)).cross(at(2) - at(0)).z / 2;
        }
        EXPECT_NEAR(area, areas[face], 1e-6) << face;
    }
}

// Catches an axis whose length scales the mesh or is lost in its squares, a mirrored one, and normals of nothing.
TEST(PrimitiveCorners, AxesOfAnyLength) {
    const auto same = [](const PolyMesh& a, const PolyMesh& b) {
        for (int i = 0; i < a.numVertices(); ++i) {
            const Imath::V3d d = toDouble(a.point(i)) - toDouble(b.point(i));
            if (!(d.length() < 1e-6)) return false;
        }
        return a.numVertices() == b.numVertices();
    };
    const CubeOptions unit{.width = 1, .height = 2, .depth = 3, .axis = {3.0 / 13, -4.0 / 13, 12.0 / 13}};
    for (const double length : {1e-300, 1e-3, 1e300}) {
        CubeOptions scaled = unit;
        scaled.axis *= length;
        EXPECT_TRUE(same(*polyCube(scaled), *polyCube(unit))) << length;
        EXPECT_NEAR(signedVolume(*polyCube(scaled)), 6, 1e-5) << length;
    }
    const auto cylinder = polyCylinder({.height = 4, .axis = {0, 0, -7}});
    const Box box = cylinder->boundingBox();
    EXPECT_NEAR(box.max.z, 2, 1e-6);
    EXPECT_NEAR(box.max.x, 1, 1e-6);
    EXPECT_NEAR(box.max.y, 1, 1e-6);
    // The last vertex is the top cap's centre: it goes where the axis points.
    EXPECT_NEAR(cylinder->point(cylinder->numVertices() - 1).z, -2, 1e-6);
    EXPECT_NEAR(polyCylinder({.height = 4, .axis = {0, -1, 0}})->point(41).y, -2, 1e-6);
}

// Catches a size of zero that is refused, or gives points or normals that are no numbers.
TEST(PrimitiveCorners, FlatOnesHaveFiniteNumbers) {
    const std::shared_ptr<const PolyMesh> flat[] = {polyPlane({.width = 0, .height = 0}),
                                                    polyCube({.width = 0}),
                                                    polyCube({.width = 0, .height = 0, .depth = 0}),
                                                    polySphere({.radius = 0}),
                                                    polyCylinder({.radius = 0}),
                                                    polyCylinder({.height = 0})};
    for (const auto& mesh : flat) {
        ASSERT_NE(mesh, nullptr);
        EXPECT_NEAR(signedVolume(*mesh), 0, 1e-9);
        for (const Float3& p : mesh->points()) ASSERT_TRUE(std::isfinite(p.x + p.y + p.z));
        for (const Float3& n : mesh->faceVertexNormals()) ASSERT_TRUE(std::isfinite(n.x + n.y + n.z));
        for (int f = 0; f < mesh->numPolygons(); ++f) ASSERT_TRUE(std::isfinite(mesh->polygonNormal(f).length()));
    }
}

// Catches caps of one polygon each that are wound the wrong way or cut wrongly, also beyond what is tessellated.
TEST(PrimitiveCorners, CapsOfManyCorners) {
    for (const int around : {3, 4, 5, 10001}) {
        const auto mesh = polyCylinder({.height = 3, .subdivisionsAxis = around, .subdivisionsCaps = 0});
        ASSERT_NE(mesh, nullptr);
        EXPECT_EQ(mesh->numPolygons(), around + 2);
        const double base = around * std::sin(2 * M_PI / around) / 2; // of the regular polygon
        EXPECT_NEAR(signedVolume(*mesh), 3 * base, 1e-4) << around;
        EXPECT_TRUE(isClosed(*mesh));
    }
}

// Catches a size that overflows a float, or a limit of vertices that counts another number than it says.
TEST(PrimitiveCorners, TheSmallestMeshThatIsTooLargeIsRefused) {
    std::string error;
    EXPECT_EQ(polyPlane({.subdivisionsX = 3'999'999, .subdivisionsY = 1}, &error), nullptr); // 4,000,000 x 2
    EXPECT_EQ(error, "the subdivisions would give 8000000 vertices; the most is 4000000");
    // 20 rings of 200,000 around and two poles.
    EXPECT_EQ(polySphere({.subdivisionsAxis = 200'000, .subdivisionsHeight = 21}, &error), nullptr);
    EXPECT_EQ(error, "the subdivisions would give 4000002 vertices; the most is 4000000");
    EXPECT_EQ(polySphere({.radius = 2.0 * std::numeric_limits<float>::max()}, &error), nullptr);
    EXPECT_THAT(error, testing::HasSubstr("size"));
}

} // namespace
} // namespace host::mesh
