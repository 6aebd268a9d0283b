// Triangle meshes from host meshes and back.
#include "UtilityTest.h"

#include "Common/TriMesh.h"

#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>

#include <limits>

using orvo::TriMesh;
using orvo::Uv;
using orvo::Vector3;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

class TriMeshHost : public UtilityTest {
protected:
    static MIntArray ints(const std::vector<int>& values) {
        return MIntArray(values.data(), static_cast<unsigned>(values.size()));
    }
    static MFloatArray floats(const std::vector<float>& values) {
        return MFloatArray(values.data(), static_cast<unsigned>(values.size()));
    }
    /// A new shape; the points lie in a plane z = 0.
    static void make(MFnMesh& fn, const std::vector<std::pair<double, double>>& points, const std::vector<int>& counts,
                     const std::vector<int>& connects) {
        MPointArray positions;
        for (const auto& [x, y] : points) positions.append(MPoint(x, y, 0));
        MStatus status;
        fn.create(static_cast<int>(points.size()), static_cast<int>(counts.size()), positions, ints(counts),
                  ints(connects), MObject::kNullObj, &status);
        ASSERT_TRUE(status);
    }
    /// Sets UVs one a corner.
    static void map(MFnMesh& fn, const char* set, const std::vector<int>& counts, const std::vector<float>& u,
                    const std::vector<float>& v) {
        MString name = set;
        if (name != "map1") {
            ASSERT_TRUE(fn.createUVSet(name));
        }
        MIntArray ids;
        for (unsigned i = 0; i < u.size(); ++i) ids.append(static_cast<int>(i));
        ASSERT_TRUE(fn.setUVs(floats(u), floats(v), &name));
        ASSERT_TRUE(fn.assignUVs(ints(counts), ids, &name));
    }
    std::vector<std::string> errors() const { return log_.errors(); }

    /// Two squares side by side, 0 1 2 3 and 1 4 5 2.
    void makeSquares(MFnMesh& fn) { make(fn, {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2, 0}, {2, 1}}, {4, 4}, squares); }
    const std::vector<int> squares{0, 1, 2, 3, 1, 4, 5, 2};
};

} // namespace

// Catches a vertex too many, UVs at the wrong vertices, sets mistaken for one another.
TEST_F(TriMeshHost, KeepsOneVertexAPointWithoutSeams) {
    MFnMesh fn;
    make(fn, {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {4}, {0, 1, 2, 3});
    map(fn, "map1", {4}, {0, 1, 1, 0}, {0, 0, 1, 1});
    map(fn, "dummy1", {4}, {5, 6, 7, 8}, {1, 2, 3, 4});
    map(fn, "another", {4}, {9, 9, 9, 9}, {9, 9, 9, 9});
    const auto mesh = orvo::CreateTriMeshFromMayaMesh(fn, false, true);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->positions, (std::vector<Vector3>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}));
    EXPECT_EQ(*mesh->uvSets[0], (TriMesh::UvSet{{0, 0}, {1, 0}, {1, 1}, {0, 1}}));
    EXPECT_FALSE(mesh->uvSets[1]);
    EXPECT_EQ(*mesh->uvSets[2], (TriMesh::UvSet{{5, 1}, {6, 2}, {7, 3}, {8, 4}}));
    EXPECT_EQ(mesh->triangles, (std::vector<TriMesh::Triangle>{{0, 1, 2}, {0, 2, 3}}));

    const auto bare = orvo::CreateTriMeshFromMayaMesh(fn, false, false);
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->uvSets[0] || bare->uvSets[2]);
    EXPECT_THAT(errors(), ElementsAre());
}

// Catches a seam that is closed or torn. By hand: the pairs in ascending order are (0,0) (1,0) (1,1) (2,0) (2,1) (3,0)
// (4,1) (5,1); point 1 has two UVs, point 2 the same one twice.
TEST_F(TriMeshHost, SplitsTheVerticesOfASeam) {
    MFnMesh fn;
    makeSquares(fn);
    map(fn, "map1", {4, 4}, {.1f, .5f, .5f, .1f, .75f, .9f, .9f, .5f}, {.1f, .1f, .9f, .9f, .1f, .1f, .9f, .9f});
    const auto mesh = orvo::CreateTriMeshFromMayaMesh(fn, false, true);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->positions,
              (std::vector<Vector3>{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {2, 1, 0}}));
    EXPECT_EQ((*mesh->uvSets[0])[1], (Uv{.5f, .1f}));
    EXPECT_EQ((*mesh->uvSets[0])[2], (Uv{.75f, .1f}));
    EXPECT_EQ(mesh->triangles, (std::vector<TriMesh::Triangle>{{0, 1, 3}, {0, 3, 4}, {2, 5, 6}, {2, 6, 3}}));
}

// Catches a set that is there without UVs taken for one with them, and corners without a UV that take another's.
TEST_F(TriMeshHost, TakesWhatIsMissingAsSuch) {
    MFnMesh fn;
    makeSquares(fn);
    const auto bare = orvo::CreateTriMeshFromMayaMesh(fn, false, true);
    ASSERT_TRUE(bare);
    EXPECT_FALSE(bare->uvSets[0]);

    map(fn, "map1", {0, 4}, {.75f, .9f, .9f, .5f}, {.1f, .1f, .9f, .9f}); // the first square has none
    const auto half = orvo::CreateTriMeshFromMayaMesh(fn, false, true);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->uvSets[0]->front(), (Uv{0, 0}));
}

TEST_F(TriMeshHost, GivesWorldSpaceInCentimetres) {
    MFnMesh fn;
    makeSquares(fn);
    mel("string $s[] = `ls -type mesh`; string $p[] = `listRelatives -p $s[0]`; setAttr ($p[0] + \".t\") 10 20 30;"
        "setAttr ($p[0] + \".s\") 2 2 2;");
    EXPECT_EQ(orvo::CreateTriMeshFromMayaMesh(fn, true, false)->positions[2], (Vector3{12, 22, 30}));
    EXPECT_EQ(orvo::CreateTriMeshFromMayaMesh(fn, false, false)->positions[2], (Vector3{1, 1, 0}));
}

// Catches a crash, or a mesh made of nothing, and messages said twice.
TEST_F(TriMeshHost, RefusesMeshesOfNothing) {
    mel("createNode mesh -n \"empty\"");
    MDagPath path;
    ASSERT_TRUE(orvo::dagPathByName("empty", path));
    for (const bool uvs : {false, true}) {
        log_.clear();
        EXPECT_FALSE(orvo::CreateTriMeshFromMayaMesh(MFnMesh(path), false, uvs));
        EXPECT_THAT(errors(), ElementsAre(MatchesRegex("In .*TriMesh, line [0-9]+"),
                                          "CreateTriMeshFromMayaMesh: mesh has no verts! :("));
    }
    MFnMesh points;
    make(points, {{0, 0}, {1, 0}}, {}, {});
    log_.clear();
    EXPECT_FALSE(orvo::CreateTriMeshFromMayaMesh(points, false, true));
    EXPECT_THAT(errors(), ElementsAre(testing::_, "CreateTriMeshFromMayaMesh: mesh has no polys! :("));
}

// Faults: a crash or lost triangles for what modelling leaves behind.
TEST_F(TriMeshHost, TakesDegenerateAndNonManifoldPolygons) {
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    MFnMesh fn;
    // A square that is a line, three triangles at one edge, a point that is nowhere, an L-shape of six corners.
    make(fn, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {0, 5}, {0, 6}, {1, 6}, {notANumber, 0}, {1, 3}, {2, 3}, {2, 1}},
         {4, 3, 3, 3, 3, 6}, {0, 1, 2, 3, 4, 5, 6, 5, 4, 0, 4, 5, 1, 0, 1, 7, 0, 2, 10, 9, 8, 4});
    const auto mesh = orvo::CreateTriMeshFromMayaMesh(fn, false, true);
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->numTris(), 2u + 4u + 4u);
    EXPECT_EQ(mesh->numVerts(), 11u);
    EXPECT_EQ(mesh->vertexNormals().size(), 11u);
}

// Catches a round trip that loses positions, UVs, the name or the shading group.
TEST_F(TriMeshHost, MakesHostMeshes) {
    TriMesh mesh;
    mesh.positions = {{0, 0, 0}, {100, 0, 0}, {100, 50, 0}, {0, 50, -25}};
    mesh.uvSets[0] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    mesh.triangles = {{0, 1, 2}, {0, 2, 3}};
    ASSERT_TRUE(orvo::CreateMayaMesh(mesh, "wanted", true, true)) << testing::PrintToString(errors());
    MDagPath path;
    const auto made = orvo::meshByName("wanted", path);
    ASSERT_TRUE(made);
    const auto again = orvo::CreateTriMeshFromMayaMesh(*made, true, true);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->positions, mesh.positions);
    EXPECT_EQ(again->uvSets, mesh.uvSets);
    EXPECT_EQ(again->triangles, mesh.triangles);
    const auto members = host::Host::instance().interpreter().execute("sets -q initialShadingGroup").toStringArray();
    EXPECT_THAT(members, ElementsAre(std::string(made->name().asChar())));

    mesh.uvSets[0]->pop_back(); // fewer UVs than corners need
    log_.clear();
    EXPECT_TRUE(orvo::CreateMayaMesh(mesh, "bare", false, true)) << "UVs that nobody asked for";
    EXPECT_TRUE(orvo::CreateMayaMesh(mesh, "other", true, true).error());
    EXPECT_EQ(errors().back(), "TriMesh:CreateMayaMesh  Could not assign default UV's to output Mesh.");
    mesh.triangles = {{0, 1, 9}};
    log_.clear();
    EXPECT_TRUE(orvo::CreateMayaMesh(mesh, "third", true, false).error());
    EXPECT_EQ(errors().back(), "TriMesh:CreateMayaMesh  Could not create output Mesh.");
    EXPECT_EQ(errors().size(), 4u);
}
