#include "files/MeshImport.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <string>

namespace host::files {
namespace {

using mesh::Float3;
using mesh::PolyMesh;
using testing::ElementsAre;
using testing::HasSubstr;

std::string sample(const std::string& name) { return orvo::test::testData("import/" + name); }

std::string content(const std::string& name) { return orvo::test::content(sample(name)); }

void replace(std::string& text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    ASSERT_NE(at, text.npos) << from;
    text.replace(at, from.size(), to);
}

/// Files of the test's own, removed at its end.
class MeshImport : public testing::Test {
protected:
    std::string put(const std::string& name, const std::string& bytes) const {
        return folder_.write(name, bytes).string();
    }
    ImportedModel read(const std::string& name, const std::string& bytes) const { return readModel(put(name, bytes)); }
    std::string failure(const std::string& name, const std::string& bytes) const {
        try {
            read(name, bytes);
            return "no error";
        } catch (const FileError& e) {
            return e.what();
        }
    }

private:
    const orvo::test::TemporaryFolder folder_;
};

std::vector<int> list(std::span<const int> values) { return {values.begin(), values.end()}; }

std::vector<Float3> points(const PolyMesh& mesh) { return {mesh.points().begin(), mesh.points().end()}; }

void expectMatrix(const MMatrix& m, const double (&expected)[4][4]) {
    EXPECT_TRUE(m.isEquivalent(MMatrix(expected), 1e-5))
        << m(0, 0) << ' ' << m(3, 0) << ' ' << m(3, 1) << ' ' << m(3, 2);
}

/// The roof that the samples share: a quad and a triangle along its edge 1-2, at a scale.
void expectRoof(const PolyMesh& roof, float scale) {
    std::vector<Float3> expected{{0, 0, 0}, {2, 0, 0}, {2, 0, -3}, {0, 0, -3}, {2, 1, -1.5f}};
    for (Float3& p : expected) p = {p.x * scale, p.y * scale, p.z * scale};
    ASSERT_EQ(roof.numVertices(), 5);
    for (int v = 0; v < 5; ++v) {
        EXPECT_FLOAT_EQ(roof.point(v).x, expected[v].x);
        EXPECT_FLOAT_EQ(roof.point(v).y, expected[v].y);
        EXPECT_FLOAT_EQ(roof.point(v).z, expected[v].z);
    }
    EXPECT_THAT(list(roof.faceVertices(0)), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(roof.numPolygons(), 2);
    EXPECT_EQ(roof.numEdges(), 6);
}

// Faults: polygons cut into triangles, corners that lose their common vertices, names or UVs of others.
TEST_F(MeshImport, ObjKeepsObjectsAndPolygons) {
    const ImportedModel model = readModel(sample("objects.obj"));
    ASSERT_EQ(model.nodes.size(), 2u);
    EXPECT_EQ(model.nodes[0].name, "roof");
    EXPECT_EQ(model.nodes[1].name, "_2nd_thing");
    for (const auto& node : model.nodes) {
        EXPECT_EQ(node.parent, -1);
        EXPECT_EQ(node.matrix, MMatrix());
    }
    const PolyMesh& roof = *model.nodes[0].mesh;
    expectRoof(roof, 1);
    EXPECT_THAT(list(roof.faceVertices(1)), ElementsAre(1, 4, 2));
    ASSERT_EQ(roof.numUvSets(), 1);
    EXPECT_EQ(roof.uvSet(0).name, "map1");
    // The vertex 1 has another UV in the triangle; the vertex 2 the same one.
    EXPECT_EQ(roof.uvSet(0).size(), 6);
    EXPECT_EQ(roof.uvId(0, 0, 2), roof.uvId(0, 1, 2));
    float u = 0, v = 0;
    ASSERT_TRUE(roof.uvAt(0, 1, 1, u, v));
    EXPECT_EQ(u, 0.5f);
    EXPECT_EQ(v, 0.25f);
    const PolyMesh& concave = *model.nodes[1].mesh;
    EXPECT_THAT(list(concave.faceVertices(0)), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_TRUE(concave.explicitNormals().empty());
    EXPECT_EQ(model.leftOut, 0u);
}

// Faults: metres taken as centimetres, a hierarchy that is flattened, a turned V, a second UV set or shear that is
// lost.
TEST_F(MeshImport, GltfInMetresWithHierarchyAndUvSets) {
    const ImportedModel model = readModel(sample("panes.gltf"));
    ASSERT_EQ(model.nodes.size(), 3u);
    EXPECT_EQ(model.nodes[0].name, "stand");
    EXPECT_EQ(model.nodes[0].mesh, nullptr);
    // A quarter turn about Y takes X to -Z.
    expectMatrix(model.nodes[0].matrix, {{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}, {100, 50, 0, 1}});
    expectMatrix(model.nodes[1].matrix, {{2, 0, 0, 0}, {0, 3, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}});
    expectMatrix(model.nodes[2].matrix, {{1, 0, 0, 0}, {0.5, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, -25, 1}});
    for (const int child : {1, 2}) {
        EXPECT_EQ(model.nodes[static_cast<std::size_t>(child)].parent, 0);
        EXPECT_EQ(model.nodes[static_cast<std::size_t>(child)].name, "pane");
    }
    EXPECT_EQ(model.nodes[1].mesh, model.nodes[2].mesh);
    const PolyMesh& pane = *model.nodes[1].mesh;
    EXPECT_THAT(points(pane), ElementsAre(Float3{0, 0, 0}, Float3{100, 0, 0}, Float3{100, 100, 0}, Float3{0, 100, 0}));
    ASSERT_EQ(pane.numUvSets(), 2);
    EXPECT_EQ(pane.uvSet(1).name, "map2");
    float u = 0, v = 0;
    ASSERT_TRUE(pane.uvAt(0, 0, 1, u, v)); // the corner (1, 0, 0): lower right, which glTF counts from the top
    EXPECT_EQ(u, 1);
    EXPECT_EQ(v, 0);
    ASSERT_TRUE(pane.uvAt(1, 0, 1, u, v));
    EXPECT_EQ(u, 0.5f);
}

// Faults: units or axes that are not looked at, names that are not legal, polygons, UV names.
TEST_F(MeshImport, FbxInItsUnitAndAxes) {
    const std::string text = content("house.fbx");
    const ImportedModel model = read("house.FBX", text);
    ASSERT_EQ(model.nodes.size(), 2u);
    EXPECT_EQ(model.nodes[0].name, "house_no_1");
    expectMatrix(model.nodes[0].matrix, {{0, 0, -1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0}, {25.4, 0, -10.16, 1}});
    EXPECT_EQ(model.nodes[1].parent, 0);
    expectMatrix(model.nodes[1].matrix, {{1, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 3, 0}, {0, 12.7, 0, 1}});
    expectRoof(*model.nodes[1].mesh, 2.54f);
    EXPECT_EQ(model.nodes[1].mesh->uvSet(0).name, "roofMap");

    // With Z up, as modellers of buildings have it: what is at height 5 there is at y = 5.
    std::string zUp = text;
    replace(zUp, "\"UpAxis\", \"int\", \"Integer\", \"\",1", "\"UpAxis\", \"int\", \"Integer\", \"\",2");
    replace(zUp, "\"FrontAxis\", \"int\", \"Integer\", \"\",2", "\"FrontAxis\", \"int\", \"Integer\", \"\",1");
    replace(zUp, "\"FrontAxisSign\", \"int\", \"Integer\", \"\",1", "\"FrontAxisSign\", \"int\", \"Integer\", \"\",-1");
    replace(zUp, "\"A\",0,90,0", "\"A\",0,0,0");
    replace(zUp, "\"A\",10,0,-4", "\"A\",10,4,5");
    replace(zUp, "\"\",2.54", "\"\",100");
    expectMatrix(read("z.fbx", zUp).nodes[0].matrix, {{1, 0, 0, 0}, {0, 0, -1, 0}, {0, 1, 0, 0}, {1000, 500, -400, 1}});
}

// Fault: UV sets of one name, which a mesh cannot have, cost the model or one of them.
TEST_F(MeshImport, UvSetsOfOneName) {
    std::string text = content("house.fbx");
    const auto start = text.find("\t\tLayerElementUV: 0"), end = text.find("\t\tLayer: 0");
    ASSERT_NE(start, text.npos);
    std::string second = text.substr(start, end - start);
    replace(second, "LayerElementUV: 0", "LayerElementUV: 1");
    replace(second, "0,0,1,0,1,1", "0.5,0,1,0,1,1");
    text.insert(end, second + "\t\tLayer: 1 {\n\t\t\tVersion: 100\n\t\t\tLayerElement:  {\n\t\t\t\tType: "
                              "\"LayerElementUV\"\n\t\t\t\tTypedIndex: 1\n\t\t\t}\n\t\t}\n");
    const ImportedModel model = read("twice.fbx", text);
    const PolyMesh& roof = *model.nodes[1].mesh;
    ASSERT_EQ(roof.numUvSets(), 2);
    EXPECT_EQ(roof.uvSet(0).name, "roofMap");
    EXPECT_EQ(roof.uvSet(1).name, "map2");
    float u = 0, v = 0;
    ASSERT_TRUE(roof.uvAt(1, 0, 0, u, v));
    EXPECT_EQ(u, 0.5f);
}

// Faults: parts of other materials that become objects, or that shift the UVs and normals of those without.
TEST_F(MeshImport, MaterialsDoNotSplitObjects) {
    const ImportedModel model =
        read("parts.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 2\n"
                          "o both\nusemtl a\nf 1 2 3\nusemtl b\nf 2/1/1 4/2/1 3/3/1\nl 1 2\nf 1 2 2\n");
    ASSERT_EQ(model.nodes.size(), 1u);
    const PolyMesh& mesh = *model.nodes[0].mesh;
    EXPECT_EQ(mesh.numPolygons(), 2);
    EXPECT_EQ(mesh.numVertices(), 4);
    EXPECT_EQ(mesh.uvId(0, 0, 0), -1);
    EXPECT_GE(mesh.uvId(0, 1, 0), 0);
    ASSERT_EQ(mesh.explicitNormals().size(), 6u);
    EXPECT_GE(mesh.explicitNormals()[0].x, PolyMesh::kNoNormal);
    EXPECT_EQ(mesh.explicitNormals()[3], (Float3{0, 0, 1}));
    EXPECT_GE(model.leftOut, 1u);
    EXPECT_EQ(read("lonely.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").nodes[0].name, "lonely");
}

// Faults: a crash, a hang, an empty success, or an error that does not name the file.
TEST_F(MeshImport, RefusesWhatItCannotRead) {
    const std::string gltf = content("panes.gltf"), fbx = content("house.fbx");
    const auto without = [](std::string text, const std::string& from, const std::string& to) {
        replace(text, from, to);
        return text;
    };
    std::string deep = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],"nodes":[)";
    for (int i = 1; i <= 600; ++i) deep += R"({"children":[)" + std::to_string(i) + "]},";
    deep += "{}]}";
    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {{"empty.obj", ""},
                 {"text.obj", "just some words that are no model at all"},
                 {"index.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n"},
                 {"nan.obj", "v 0 0 0\nv 1 nan 0\nv 0 1 0\nf 1 2 3\n"},
                 {"binary.fbx", std::string("Kaydara FBX Binary  \0\x1a\0\xe8\x1c\0\0\xff\xff\xff\xff garbage", 39)},
                 {"words.fbx", "hello"},
                 {"cut.fbx", fbx.substr(0, fbx.size() / 2)},
                 {"cut.gltf", gltf.substr(0, gltf.size() / 2)},
                 {"words.glb", "glTF\x02"},
                 {"index.gltf", without(gltf, "\"mesh\": 0", "\"mesh\": 7")},
                 {"buffer.gltf", without(gltf, "\"count\": 4", "\"count\": 400000000")},
                 {"circle.gltf", without(gltf, "\"children\": [1, 2]", "\"children\": [1, 0]")},
                 {"missing.gltf", without(gltf, "data:application/octet-stream;base64,", "nowhere/")},
                 {"deep.gltf", deep},
                 {"brackets.gltf", R"({"asset":)" + std::string(2000000, '[')}};
    for (const auto& c : cases) {
        const std::string text = failure(c.name, c.bytes);
        EXPECT_THAT(text, HasSubstr(std::string(c.name) + ": ")) << c.name;
        EXPECT_EQ(text.find('\n'), text.npos) << text;
    }
    EXPECT_THROW(readModel("/no/such.obj"), FileError);
    EXPECT_THROW(readModel(std::filesystem::temp_directory_path()), FileError);
}

} // namespace
} // namespace host::files
