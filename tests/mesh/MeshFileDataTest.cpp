#include "mesh/MeshFileData.h"

#include "MeshMeasures.h"
#include "mesh/Primitives.h"

#include <gmock/gmock.h>

#include <functional>
#include <limits>

namespace host::mesh {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

bool readFaces(MeshFileData& data, std::string_view text, std::string* error) {
    return data.parsePolyFaces(data.numFaces(), text, error);
}

/// The list form of a mesh, as it would go through a file.
std::shared_ptr<const PolyMesh> roundTrip(const PolyMesh& mesh) {
    MeshFileData data;
    std::string error, faces;
    std::vector<float> xyz, normals;
    for (const Float3& p : mesh.points()) xyz.insert(xyz.end(), {p.x, p.y, p.z});
    for (const Float3& n : mesh.explicitNormals()) normals.insert(normals.end(), {n.x, n.y, n.z});
    EXPECT_TRUE(data.appendVertices(0, xyz) && data.appendNormals(0, normals));
    EXPECT_TRUE(data.appendEdges(0, fileEdges(mesh)));
    for (int s = 0; s < mesh.numUvSets(); ++s) {
        std::vector<float> uvs;
        for (int i = 0; i < mesh.uvSet(s).size(); ++i) uvs.insert(uvs.end(), {mesh.uvSet(s).u[i], mesh.uvSet(s).v[i]});
        EXPECT_TRUE(data.setUvSetName(s, mesh.uvSet(s).name) && data.setUvs(s, 0, uvs));
    }
    data.setCurrentUvSet(mesh.uvSet(mesh.currentUvSet()).name);
    for (int f = 0; f < mesh.numPolygons(); ++f) faces += fileFace(mesh, f, "\t\t");
    EXPECT_TRUE(readFaces(data, faces, &error)) << error;
    auto read = data.build(&error);
    EXPECT_EQ(error, "");
    return read;
}

// Catches anything that is lost or changed on the way through a file: order, direction and hardness of edges, partly
// assigned UVs, sets without any, positions that are not numbers.
TEST(MeshFileData, GivesTheSavedMeshBack) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    PolyMesh odd = PolyMesh::fromPolygons({{nan, -0.f, 1e-40f}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {5, 5, 5}},
                                          std::vector{3, 4, 3}, {0, 1, 2, 0, 2, 3, 3, 2, 1, 0});
    odd.setEdgeSmooth(1, false);
    ASSERT_EQ(odd.addUvSet("light map"), 1);
    ASSERT_EQ(odd.addUvSet("empty"), 2);
    ASSERT_TRUE(odd.setUvs(1, {0, .5f, 1}, {1, .25f, nan}));
    ASSERT_TRUE(odd.assignUvs(1, std::vector{3, 0, 3}, std::vector{2, -1, 0, 1, 1, 1}));
    odd.setCurrentUvSet(1);
    ASSERT_TRUE(odd.assignNormals(std::vector<Float3>(10, {0, PolyMesh::kNoNormal, 1})));
    for (const PolyMesh& mesh : {PolyMesh(), *polyPlane({}), *polyCube({.subdivisionsX = 3}), *polySphere({}),
                                 *polyCylinder({.subdivisionsCaps = 0}), odd}) {
        const auto read = roundTrip(mesh);
        ASSERT_NE(read, nullptr);
        EXPECT_TRUE(*read == mesh);
    }
}

// Catches a wrong reading of negative edge ids, hardness, offsets, out-of-order pieces and records that are left out.
TEST(MeshFileData, ReadsAHandWrittenCube) {
    MeshFileData data;
    std::string error;
    const std::vector<float> back{-.5, .5, -.5, .5, .5, -.5, -.5, -.5, -.5, .5, -.5, -.5};
    const std::vector<float> front{-.5, -.5, .5, .5, -.5, .5, -.5, .5, .5, .5, .5, .5};
    ASSERT_TRUE(data.appendVertices(4, back, &error)) << error;
    ASSERT_TRUE(data.appendVertices(0, front, &error)) << error;
    const std::vector<int> edges{0, 1, 0, 2, 3, 0, 4, 5, 0, 6, 7, 0, 0, 2, 0, 1, 3, 0,
                                 2, 4, 0, 3, 5, 0, 4, 6, 0, 5, 7, 0, 6, 0, 0, 7, 1, 1};
    ASSERT_TRUE(data.appendEdges(0, edges, &error)) << error;
    ASSERT_TRUE(data.setUvs(1, 0, std::vector<float>{0, 0, 1, 0, 0, 1, 1, 1}, &error)) << error;
    ASSERT_TRUE(data.setUvSetName(1, "decal", &error)) << error;
    ASSERT_TRUE(readFaces(data,
                          "f 4 0 5 -2 -5 mu 1 4 0 1 3 2 mc 0 4 9 9 9 9\n"
                          "f 4 1 7 -3 -7 h 3 0 1 2 mu 1 7 0 1 3 2 0 0 0\n"
                          "f 4 2 9 -4 -9 fc 4 0 1 2 3",
                          &error))
        << error;
    const std::string_view rest = "f 4 3 11 -1 -11 f 4 -12 -10 -8 -6 f 4 10 4 6 8 mf 4 -1 -1 -1 -1";
    EXPECT_FALSE(data.parsePolyFaces(4, rest, &error));
    EXPECT_THAT(error, HasSubstr("face 3 was expected"));
    ASSERT_TRUE(data.parsePolyFaces(3, rest, &error)) << error;
    ASSERT_TRUE(data.setTweak(1, 9, 9, 9) && data.setTweak(1, 0, 0, 1) && data.setTweak(1000, 1, 1, 1));
    int holes = 0;
    const auto mesh = data.build(&error, &holes);
    ASSERT_NE(mesh, nullptr) << error;
    EXPECT_EQ(holes, 1);
    EXPECT_TRUE(data.isEmpty());
    EXPECT_THAT(mesh->connects(), ElementsAre(0, 1, 3, 2, 2, 3, 5, 4, 4, 5, 7, 6, 6, 7, 1, 0, 1, 7, 5, 3, 6, 0, 2, 4));
    EXPECT_EQ(mesh->point(1), (Float3{.5f, -.5f, 1.5f}));
    // The moved corner belongs to one triangle of the front, of area 1/2: the volume grows by 1/2 * 1 / 3.
    EXPECT_NEAR(signedVolume(*mesh), 1 + 1.0 / 6, 1e-6);
    EXPECT_FALSE(mesh->edges()[0].smooth);
    EXPECT_TRUE(mesh->edges()[11].smooth);
    ASSERT_EQ(mesh->numUvSets(), 2);
    const int decal = mesh->findUvSet("decal");
    ASSERT_EQ(decal, 1);
    EXPECT_EQ(mesh->uvId(decal, 1, 2), 3);
    EXPECT_EQ(mesh->uvId(decal, 2, 0), -1);
    EXPECT_EQ(mesh->uvId(0, 5, 0), -1);
}

struct BadFile {
    std::function<bool(MeshFileData&, std::string*)> fill; // adds to two triangles' worth of a mesh
    const char* text;
};

// Catches crashes, runaway memory and silent loss on damaged files; each error says what and where.
TEST(MeshFileData, RefusesDamagedData) {
    const auto faces = [](std::string text) {
        return [text](MeshFileData& data, std::string* error) { return readFaces(data, text, error); };
    };
    const BadFile cases[] = {
        {faces("f 3 0 1 2 f 3 0 1"), "face 1, \"f\": the record ends early"},
        {faces("f 2000000000 0 1 2"), "face 0, \"f\": the record ends early"},
        {faces("f -3 0 1 2"), "-3 is not a count"},
        {faces("f 3 0 1 99999999999"), "\"99999999999\" is not a whole number"},
        {faces("f 3 0 1.5 2"), "\"1.5\" is not"},
        {faces("f 2 0 1"), "face 0, \"f\": 2 edges"},
        {faces("f 3 0 1 2 mu 0 4 0 0 0 0"), "face 0, \"mu\": 4 ids for 3 corners"},
        {faces("f 3 0 1 2 mu 256 3 0 0 0"), "UV set 256"},
        {faces("f 3 0 1 2 mu -1 3 0 0 0"), "UV set -1"},
        {faces("mu 0 3 0 0 0"), "a face starts with"},
        {faces("f 3 0 1 2 xyz 3"), "face 0, \"xyz\": unknown"},
        {faces("f 3 0 1 2 f 3 0 1 7"), "face 1: edge 7 does not exist; the mesh has 3"},
        {faces("f 3 0 1 -2147483648"), "face 0: edge -2147483648 does not exist"},
        {faces("f 3 0 1 2 f 3 0 2 1"), "face 1: edge 0 ends at vertex 1, but the next one, 2, starts at vertex 2"},
        {faces("f 3 0 1 -3"), "face 0: edge 1 ends at vertex 2, but the next one, -3, starts at vertex 0"},
        {faces("f 3 0 1 2 mu 0 3 0 1 0"), "UV set map1, face 0: id 1 does not exist; the set has 1"},
        {[](auto& d, auto* e) {
             return d.appendVertices(1999999999, std::vector<float>{0, 0, 0}, e);
         },
         "vertices: none is given for indices 3 to 1999999998"},
        {[](auto& d, auto* e) {
             return d.appendVertices(std::size_t(-1), std::vector<float>{0, 0, 0}, e);
         },
         "is too large"},
        {[](auto& d, auto* e) {
             return d.appendVertices(3, std::vector<float>{0, 0}, e);
         },
         "not groups of 3"},
        {[](auto& d, auto* e) {
             return d.appendEdges(3, std::vector<int>{0, 3, 0}, e);
         },
         "edge 3: vertices 0 and 3"},
        {[](auto& d, auto* e) {
             return d.appendEdges(3, std::vector<int>{-1, 2, 0}, e);
         },
         "edge 3: vertices -1"},
        {[](auto& d, auto* e) {
             return d.appendEdges(5, std::vector<int>{0, 1, 0}, e);
         },
         "indices 3 to 4"},
        {[](auto& d, auto* e) {
             return d.setUvs(0, 4, std::vector<float>{0, 1}, e);
         },
         "UVs: none is given"},
        {[](auto& d, auto* e) {
             return d.setUvs(-5, 0, std::vector<float>{0, 1}, e);
         },
         "UV set -5"},
        {[](auto& d, auto* e) { return d.setUvs(2, 0, {}, e) && d.setUvSetName(2, "map1", e); }, "named map1 too"},
        {[](auto& d, auto* e) {
             return d.appendNormals(0, std::vector<float>{0, 1, 0}, e);
         },
         "1 normals for 0"},
    };
    for (const BadFile& c : cases) {
        MeshFileData data;
        std::string error;
        ASSERT_TRUE(data.appendVertices(0, std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
        ASSERT_TRUE(data.appendEdges(0, std::vector<int>{0, 1, 1, 1, 2, 1, 2, 0, 1}));
        ASSERT_TRUE(data.setUvs(0, 0, std::vector<float>{0, 0}));
        const bool filled = c.fill(data, &error);
        EXPECT_NE(filled, !error.empty());
        if (filled) {
            EXPECT_EQ(data.build(&error), nullptr) << c.text;
        }
        EXPECT_THAT(error, HasSubstr(c.text));
    }
}

// Catches time or memory that grows faster than the mesh.
TEST(MeshFileData, CarriesAMillionVertices) {
    const auto grid = polyPlane({.subdivisionsX = 999, .subdivisionsY = 999});
    ASSERT_EQ(grid->numVertices(), 1000000);
    const auto read = roundTrip(*grid);
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(*read == *grid);
    EXPECT_NEAR(surfaceArea(*read), 1, 1e-6);
}

} // namespace
} // namespace host::mesh
