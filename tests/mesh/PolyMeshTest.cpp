#include "MeshMeasures.h"

#include <gmock/gmock.h>

#include <limits>
#include <thread>

namespace host::mesh {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Two unit squares side by side in the plane y = 0 (facing +Y), the second one folded up by 90 degrees.
PolyMesh foldedPair() {
    std::string error;
    PolyMesh mesh = PolyMesh::fromPolygons({{0, 0, 0}, {0, 0, 1}, {1, 0, 1}, {1, 0, 0}, {1, 1, 1}, {1, 1, 0}},
                                           std::vector{4, 4}, {0, 1, 2, 3, 3, 2, 4, 5}, &error);
    EXPECT_EQ(error, "");
    return mesh;
}

void expectNear(const Float3& a, const Float3& b) {
    EXPECT_NEAR(a.x, b.x, 1e-6);
    EXPECT_NEAR(a.y, b.y, 1e-6);
    EXPECT_NEAR(a.z, b.z, 1e-6);
}

// Catches polygons that would later be read out of bounds.
TEST(PolyMesh, RefusesPolygonsThatDoNotFitItsVertices) {
    const struct {
        std::vector<int> counts, connects;
        const char* text;
    } cases[] = {
        {{3}, {0, 1, 3}, "face 0: vertex 3"},
        {{3, 3}, {0, 1, 2, 0, -1, 2}, "face 1: vertex -1"},
        {{2}, {0, 1}, "face 0: 2 corners"},
        {{3, -3}, {0, 1, 2}, "face 1: -3 corners"},
        {{3}, {0, 1, 2, 0}, "3 corners, but 4"},
        {{4}, {0, 1, 2}, "face 0"},
        {{2000000000, 2000000000}, {0, 1, 2}, "face 0"},
        {{}, {0}, "0 corners, but 1"},
    };
    for (const auto& c : cases) {
        std::string error;
        const PolyMesh mesh = PolyMesh::fromPolygons({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, c.counts, c.connects, &error);
        EXPECT_THAT(error, HasSubstr(c.text));
        EXPECT_TRUE(mesh.isEmpty());
        EXPECT_EQ(mesh.numPolygons(), 0);
    }
}

// Catches edges in another order, or walked in the wrong direction: component names and files depend on both.
TEST(PolyMesh, DerivesEdgesInOrderOfFirstAppearance) {
    const PolyMesh mesh = foldedPair();
    EXPECT_THAT(mesh.edges(),
                ElementsAre(Edge{0, 1}, Edge{1, 2}, Edge{2, 3}, Edge{3, 0}, Edge{2, 4}, Edge{4, 5}, Edge{5, 3}));
    EXPECT_THAT(mesh.faceEdges(0), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(mesh.faceEdges(1), ElementsAre(-3, 4, 5, 6));
}

// Catches normals that cross hard edges or are split at smooth ones, wrong weights, and stale ones after an edit.
TEST(PolyMesh, AveragesNormalsAcrossSmoothEdgesOnly) {
    PolyMesh mesh = foldedPair();
    const float s = std::sqrt(0.5f);
    expectNear(mesh.faceVertexNormals()[0], {0, 1, 0});
    expectNear(mesh.faceVertexNormals()[2], {-s, s, 0});
    expectNear(mesh.faceVertexNormals()[5], {-s, s, 0});
    mesh.setEdgeSmooth(2, false);
    expectNear(mesh.faceVertexNormals()[2], {0, 1, 0});
    expectNear(mesh.faceVertexNormals()[5], {-1, 0, 0});

    std::vector<Float3> given(8, {PolyMesh::kNoNormal, PolyMesh::kNoNormal, PolyMesh::kNoNormal});
    given[5] = {0, 0, 1};
    EXPECT_FALSE(mesh.assignNormals({{0, 0, 1}}));
    ASSERT_TRUE(mesh.assignNormals(given));
    expectNear(mesh.faceVertexNormals()[5], {0, 0, 1});
    expectNear(mesh.faceVertexNormals()[4], {-1, 0, 0});

    // The upright face three times as high: 3 to 1 by area, still 1 to 1 by angle.
    mesh.setPoint(4, {1, 3, 1});
    mesh.setPoint(5, {1, 3, 0});
    expectNear(mesh.vertexNormals(NormalWeight::Angle)[2], {-s, s, 0});
    expectNear(mesh.vertexNormals(NormalWeight::Equal)[2], {-s, s, 0});
    expectNear(mesh.vertexNormals(NormalWeight::Area)[2], {-3 / std::sqrt(10.f), 1 / std::sqrt(10.f), 0});
}

// Catches a fan of many faces around one vertex whose edges are searched one by one (it would run for hours), and
// weights that count a corner's faces instead of its angle.
TEST(PolyMesh, CopesWithAVertexOfManyFaces) {
    const int n = 300000;
    std::vector<Float3> points{{0, 0, 0}};
    std::vector<int> connects;
    for (int i = 0; i < n; ++i) {
        const double angle = 2 * M_PI * i / n;
        points.push_back({static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0});
        connects.insert(connects.end(), {0, i + 1, (i + 1) % n + 1});
    }
    const PolyMesh mesh = PolyMesh::fromPolygons(points, std::vector<int>(n, 3), connects);
    EXPECT_EQ(mesh.numEdges(), 2 * n);
    EXPECT_EQ(eulerCharacteristic(mesh), 1);
    expectNear(mesh.faceVertexNormals()[0], {0, 0, 1});
}

// Catches one lost or misplaced id, and a failed call that leaves half of its work behind.
TEST(PolyMesh, AssignsTextureCoordinatesByFace) {
    PolyMesh mesh = foldedPair();
    std::string error;
    EXPECT_FALSE(mesh.assignUvs(0, std::vector{4, 0}, std::vector{0, 1, 2, 3}, &error));
    EXPECT_THAT(error, HasSubstr("id 0 does not exist"));
    ASSERT_TRUE(mesh.setUvs(0, {0, 1, 2}, {5, 6, 7}, &error)) << error;
    ASSERT_TRUE(mesh.assignUvs(0, std::vector{0, 4}, std::vector{2, 1, -1, 0}, &error)) << error;
    float u = -1, v = -1;
    EXPECT_FALSE(mesh.uvAt(0, 0, 0, u, v));
    EXPECT_FALSE(mesh.uvAt(0, 1, 2, u, v));
    ASSERT_TRUE(mesh.uvAt(0, 1, 0, u, v));
    EXPECT_EQ(u, 2);
    EXPECT_EQ(v, 7);

    const PolyMesh before = mesh;
    const struct {
        std::vector<int> counts, ids;
        const char* text;
    } cases[] = {{{4}, {0, 0, 0, 0}, "1 counts for 2 faces"}, {{0, 3}, {0, 0, 0}, "face 1: 3 ids for 4"},
                 {{0, 4}, {0, 0, 3, 0}, "face 1: id 3"},      {{4, 4}, {0, 0, 0, 0, 1}, "face 1"},
                 {{0, 4}, {0, 0, -2, 0}, "face 1: id -2"},    {{0, 4}, {0, 0, 0, 0, 0}, "sum up to 4"}};
    for (const auto& c : cases) {
        EXPECT_FALSE(mesh.assignUvs(0, c.counts, c.ids, &error));
        EXPECT_THAT(error, HasSubstr(c.text));
    }
    EXPECT_FALSE(mesh.setUvs(0, {0, 1}, {0, 1}, &error));
    EXPECT_THAT(error, HasSubstr("id 2 is assigned"));
    EXPECT_FALSE(mesh.setUvs(0, {0, 1, 2}, {0, 1}, &error));
    EXPECT_EQ(mesh.addUvSet("map1"), -1);
    EXPECT_TRUE(mesh == before);
    EXPECT_EQ(mesh.addUvSet("second"), 1);
    EXPECT_FALSE(mesh.renameUvSet(1, "map1"));
    EXPECT_EQ(mesh.findUvSet(""), 0);
    EXPECT_FALSE(mesh == before);
}

// Catches a box that a single bad point blows up or blanks out, and one that starts at the origin.
TEST(PolyMesh, BoundsItsFinitePoints) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const PolyMesh mesh = PolyMesh::fromPolygons({{nan, 0, 0}, {1, 2, 3}, {0, inf, 0}, {4, 1, 3}}, {}, {});
    const Box box = mesh.boundingBox();
    EXPECT_FALSE(box.empty);
    EXPECT_EQ(box.min, (Float3{1, 1, 3}));
    EXPECT_EQ(box.max, (Float3{4, 2, 3}));
    EXPECT_TRUE(PolyMesh().boundingBox().empty);
}

// Catches a race in the parts that are made on first use (seen by the thread sanitizer, or as differing answers), and
// a copy that sees its original's changes.
TEST(PolyMesh, IsReadByManyThreadsAndCopied) {
    PolyMesh mesh = foldedPair();
    std::vector<const void*> seen(8);
    {
        std::vector<std::jthread> threads;
        for (auto& s : seen)
            threads.emplace_back([&s, &mesh] {
                s = mesh.triangles().data();
                (void)mesh.faceVertexNormals();
                (void)mesh.numEdges();
            });
    }
    EXPECT_THAT(seen, testing::Each(mesh.triangles().data()));
    const PolyMesh copy = mesh;
    mesh.setPoint(0, {0, 9, 0});
    mesh.setEdgeSmooth(0, false);
    EXPECT_EQ(copy.point(0), (Float3{0, 0, 0}));
    EXPECT_TRUE(copy.edges()[0].smooth);
    EXPECT_TRUE(copy == foldedPair());
}

} // namespace
} // namespace host::mesh
