#include "kit/SceneFixture.h"

#include <gmock/gmock.h>

#include <memory>

using namespace host::scene;
using host::mesh::Float3;
using host::mesh::PolyMesh;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using MeshPtr = std::shared_ptr<const PolyMesh>;

class MeshNode : public SceneFixture {
protected:
    void set(const char* plug, double value) { scene.setNumber(scene.findPlug(plug), value); }
    void make(const char* type, const char* name, const char* parent = nullptr) {
        scene.createNode(*scene.findType(type), name, parent ? scene.findNode(parent)->dag() : nullptr);
    }
    DagNode& shape(const char* name) { return *scene.findNode(name)->dag(); }
    std::vector<Float3> points(const char* name) {
        const MeshPtr mesh = meshOf(shape(name));
        return mesh ? std::vector<Float3>(mesh->points().begin(), mesh->points().end()) : std::vector<Float3>();
    }
    /// The shape's mesh with one vertex elsewhere.
    MeshPtr moved(const char* name, int vertex, const Float3& to) {
        auto copy = std::make_shared<PolyMesh>(*meshOf(shape(name)));
        copy->setPoint(vertex, to);
        return copy;
    }
    std::string refusal(DagNode& node, MeshPtr mesh) {
        try {
            setMesh(scene, node, std::move(mesh));
            return "";
        } catch (const SceneError& e) {
            return e.what();
        }
    }
    static MeshPtr triangle(float size) {
        const int counts[] = {3};
        return std::make_shared<PolyMesh>(
            PolyMesh::fromPolygons({{0, 0, 0}, {size, 0, 0}, {0, size, 0}}, counts, {0, 1, 2}));
    }
    /// A mesh "m" as a scene file describes it: a square of four edges, with holes.
    MeshBehavior& fromFile(const char* faces, int vertices = 4) {
        make("mesh", "m");
        MeshBehavior& mesh = *meshBehavior(shape("m"));
        const float square[] = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
        const int edges[] = {0, 1, 1, 1, 2, 1, 2, 3, 1, 3, 0, 1};
        EXPECT_TRUE(mesh.file.appendVertices(0, {square, static_cast<std::size_t>(vertices) * 3}));
        EXPECT_TRUE(mesh.file.appendEdges(0, edges));
        EXPECT_TRUE(mesh.file.parsePolyFaces(0, faces));
        mesh.fileUsed = true;
        return mesh;
    }
};

} // namespace

// Catches points that are stored as they are instead of as offsets: they would not follow the history.
TEST_F(MeshNode, PointsMovedOnTopOfHistoryFollowIt) {
    run("polyPlane -sx 1 -sy 1 -n p");
    setMesh(scene, shape("pShape"), moved("pShape", 3, {0.5f, 2, -0.5f}));
    EXPECT_EQ(points("pShape")[3], (Float3{0.5f, 2, -0.5f}));
    set("polyPlane1.width", 4);
    EXPECT_THAT(points("pShape"),
                ElementsAre(Float3{-2, 0, 0.5f}, Float3{2, 0, 0.5f}, Float3{-2, 0, -0.5f}, Float3{2, 2, -0.5f}));
    setMesh(scene, shape("pShape"), moved("pShape", 3, {2, 0, -0.5f}));
    EXPECT_TRUE(meshBehavior(shape("pShape"))->tweaks.empty()) << "back where the history has it";
    EXPECT_THAT(complaints, ElementsAre());
}

// Catches an offset that is applied past the end after the history lost vertices, or lost for good by that.
TEST_F(MeshNode, OffsetsOfVerticesThatAreGoneWait) {
    run("polyPlane -sx 2 -sy 1 -n p");
    setMesh(scene, shape("pShape"), moved("pShape", 5, {0.5f, 9, -0.5f}));
    set("polyPlane1.subdivisionsWidth", 1);
    for (const Float3& p : points("pShape")) EXPECT_EQ(p.y, 0);
    set("polyPlane1.subdivisionsWidth", 2);
    EXPECT_EQ(points("pShape").at(5).y, 9);
    meshBehavior(shape("pShape"))->tweaks[-1] = {0, 7, 0};
    set("polyPlane1.width", 2);
    EXPECT_EQ(points("pShape").at(0).y, 0);
}

// Catches a change of topology that history would silently throw away, and a refusal that changes something.
TEST_F(MeshNode, RefusesOtherTopologyOnTopOfHistory) {
    run("polyPlane -sx 1 -sy 1 -n p; group -em -n g");
    const auto before = points("pShape");
    const std::string text = "The mesh 'pShape' has construction history, so only its points can be changed.";
    EXPECT_EQ(refusal(shape("pShape"), triangle(1)), text);
    EXPECT_EQ(refusal(shape("pShape"), nullptr), text);
    EXPECT_EQ(points("pShape"), before);
    EXPECT_EQ(refusal(shape("g"), triangle(1)), "'g' is not a mesh.");
    run("delete -ch p");
    EXPECT_EQ(refusal(shape("pShape"), triangle(1)), "");
    EXPECT_EQ(points("pShape").size(), 3u);
}

// Catches an undo that brings back the mesh but not its offsets, or the other way round.
TEST_F(MeshNode, SettingIsUndone) {
    run("polyPlane -sx 1 -sy 1 -n p");
    make("mesh", "own");
    const auto plane = points("pShape");
    {
        const UndoQueue::Chunk chunk(scene.undo);
        setMesh(scene, shape("pShape"), moved("pShape", 0, {7, 7, 7}));
        setMesh(scene, shape("own"), triangle(1));
    }
    {
        const UndoQueue::Chunk chunk(scene.undo);
        setMesh(scene, shape("pShape"), moved("pShape", 1, {8, 8, 8}));
        setMesh(scene, shape("own"), triangle(5));
    }
    scene.undo.undo();
    EXPECT_THAT(points("pShape"), ElementsAre(Float3{7, 7, 7}, plane[1], plane[2], plane[3]));
    EXPECT_EQ(points("own").at(1), (Float3{1, 0, 0}));
    scene.undo.undo();
    EXPECT_EQ(points("pShape"), plane);
    EXPECT_EQ(meshOf(shape("own")), nullptr);
    scene.undo.redo();
    scene.undo.redo();
    EXPECT_THAT(points("pShape"), ElementsAre(Float3{7, 7, 7}, Float3{8, 8, 8}, plane[2], plane[3]));
    EXPECT_EQ(points("own").at(1), (Float3{5, 0, 0}));
}

// Catches a world mesh without the parents' matrices, or one that is not made anew when the shape or a parent changes.
TEST_F(MeshNode, WorldMeshFollowsShapeAndParents) {
    run("group -em -n outer");
    make("transform", "t", "outer");
    make("mesh", "m", "t");
    set("t.translateX", 10);
    set("outer.scaleY", 3);
    setMesh(scene, shape("m"), triangle(1));
    const auto world = [&]() -> std::vector<Float3> {
        Cell& cell = scene.findPlug("m.worldMesh[0]");
        evaluate(cell);
        const auto& mesh = static_cast<MeshData&>(*std::get<DataPtr>(cell.value)).mesh;
        return {mesh->points().begin(), mesh->points().end()};
    };
    EXPECT_THAT(world(), ElementsAre(Float3{10, 0, 0}, Float3{11, 0, 0}, Float3{10, 3, 0}));
    set("outer.translateZ", 5);
    EXPECT_THAT(world(), ElementsAre(Float3{10, 0, 5}, Float3{11, 0, 5}, Float3{10, 3, 5}));
    setMesh(scene, shape("m"), triangle(2));
    EXPECT_THAT(world(), ElementsAre(Float3{10, 0, 5}, Float3{12, 0, 5}, Float3{10, 6, 5}));
    EXPECT_THAT(points("m"), ElementsAre(Float3{0, 0, 0}, Float3{2, 0, 0}, Float3{0, 2, 0}));
}

// Catches a mesh that another shape is fed from and that shares its points with the copy.
TEST_F(MeshNode, ConnectedAndDuplicatedShapes) {
    make("transform", "a");
    make("mesh", "aShape", "a");
    make("mesh", "fed");
    setMesh(scene, shape("aShape"), triangle(1));
    run("duplicate -n b a; connectAttr aShape.outMesh fed.inMesh");
    EXPECT_EQ(points("fed"), points("aShape"));
    setMesh(scene, shape("fed"), moved("fed", 0, {0, 0, 4}));
    setMesh(scene, shape("aShape"), triangle(3));
    EXPECT_THAT(points("fed"), ElementsAre(Float3{0, 0, 4}, Float3{3, 0, 0}, Float3{0, 3, 0}));
    EXPECT_THAT(points("bShape"), ElementsAre(Float3{0, 0, 0}, Float3{1, 0, 0}, Float3{0, 1, 0}));
}

// Catches holes that vanish without a word, words that come again at each look, and a wrong number in them.
TEST_F(MeshNode, HolesAreTold) {
    fromFile("f 4 0 1 2 3 h 3 0 1 2");
    EXPECT_EQ(points("m").size(), 4u);
    points("m");
    EXPECT_THAT(complaints, ElementsAre("The mesh 'm' has 1 hole, which is kept and drawn closed."));
    complaints.clear();
    run("delete m");
    fromFile("f 4 0 1 2 3 h 3 0 1 2 h 3 1 2 3");
    EXPECT_EQ(points("m").size(), 4u);
    EXPECT_THAT(complaints, ElementsAre("The mesh 'm' has 2 holes, which are kept and drawn closed."));
}

// Catches a mesh that cannot be built and is used all the same, and a node that can then take no other one.
TEST_F(MeshNode, AnUnusableMeshIsToldAndCanBeReplaced) {
    MeshBehavior& mesh = fromFile("f 4 0 1 2 3", 3);
    EXPECT_EQ(meshOf(shape("m")), nullptr);
    EXPECT_THAT(complaints, ElementsAre(StartsWith("The mesh 'm' cannot be used: ")));
    EXPECT_FALSE(mesh.fileUsed);
    setMesh(scene, shape("m"), triangle(1));
    EXPECT_EQ(points("m").size(), 3u);
    EXPECT_EQ(complaints.size(), 1u);
}

// Catches a creator that cannot make its mesh and says nothing, or keeps the mesh of before.
TEST_F(MeshNode, ACreatorThatFailsSaysSo) {
    run("polyCube -n c");
    EXPECT_EQ(points("cShape").size(), 8u);
    set("polyCube1.subdivisionsWidth", 2000000000);
    EXPECT_EQ(meshOf(shape("cShape")), nullptr);
    ASSERT_EQ(complaints.size(), 1u);
    EXPECT_THAT(complaints[0], StartsWith("polyCube1: the subdivisions would give "));
    set("polyCube1.subdivisionsWidth", 1);
    EXPECT_EQ(points("cShape").size(), 8u);
}
