#include "FoldedMesh.h"

#include "api/fn/MeshAccess.h"
#include "api/graph/Handle.h"
#include "api/plugins/PluginManager.h"
#include "scene/MeshNode.h"

#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTransform.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypeId.h>

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

namespace {

using namespace host;
using testing::ElementsAre;

// Fault: a wrong object comes back, or the function set stays on another one.
TEST_F(FoldedMesh, CreateMakesShapesAndFillsData) {
    MFnMesh fn;
    const MObject transform = make(fn);
    EXPECT_TRUE(transform.hasFn(MFn::kTransform));
    EXPECT_STREQ(MFnDagNode(transform).name().asChar(), "polySurface1");
    EXPECT_STREQ(fn.name().asChar(), "polySurfaceShape1");
    EXPECT_EQ(fn.parent(0), transform);

    const MObject group = MFnTransform().create();
    const MObject shape = make(fn, group);
    EXPECT_TRUE(shape.hasFn(MFn::kMesh));
    EXPECT_EQ(fn.object(), shape);
    EXPECT_EQ(fn.parent(0), group);
    EXPECT_EQ(MFnMesh(MDagPath::getAPathTo(group)).object(), shape);

    MFnMeshData data;
    const MObject owner = data.create();
    MStatus status;
    EXPECT_EQ(MFnMesh(owner).numVertices(&status), 0);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(make(fn, owner), owner);
    EXPECT_EQ(MFnMesh(owner).numPolygons(&status), 2);
    EXPECT_TRUE(status);

    MFnMesh onTransform(transform, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(MFnMesh(MDagPath::getAPathTo(transform)).numVertices(), 5);
    make(fn, transform);
    MFnMesh ambiguous(MDagPath::getAPathTo(transform), &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter) << "two meshes below the transform";
}

// Fault: arguments that contradict each other are taken, or leave a half-made node behind.
TEST_F(FoldedMesh, CreateRefusesWhatDoesNotFit) {
    const auto nodes = scene::Scene::current().nodes().size();
    const auto refuses = [&](int vertices, int polygons, std::vector<int> n, std::vector<int> c,
                             const MObject& parent) {
        MFnMesh fn;
        MStatus status;
        const MIntArray counts(n.data(), static_cast<unsigned>(n.size())),
            connects(c.data(), static_cast<unsigned>(c.size()));
        EXPECT_TRUE(fn.create(vertices, polygons, points(), counts, connects, parent, &status).isNull());
        EXPECT_EQ(status, MStatus::kInvalidParameter);
        EXPECT_TRUE(fn.object().isNull());
    };
    refuses(4, 1, {3}, {0, 1, 2}, {});
    refuses(-1, 1, {3}, {0, 1, 2}, {});
    refuses(5, 2, {3}, {0, 1, 2}, {});
    refuses(5, 1, {2}, {0, 1}, {});
    refuses(5, 1, {3}, {0, 1}, {});
    refuses(5, 1, {3}, {0, 1, 5}, {});
    refuses(5, 1, {3}, {0, 1, -1}, {});
    refuses(5, 1, {std::numeric_limits<int>::max()}, {0, 1, 2}, {});
    EXPECT_EQ(scene::Scene::current().nodes().size(), nodes);
    MFnMesh other;
    make(other);
    refuses(5, 1, {3}, {0, 1, 2}, other.object());
}

// Fault: numbering of edges, corners and triangles that does not follow the polygons.
TEST_F(FoldedMesh, TopologyIsAsGiven) {
    MFnMesh fn;
    make(fn);
    EXPECT_EQ(fn.numVertices(), 5);
    EXPECT_EQ(fn.numEdges(), 6);
    EXPECT_EQ(fn.numPolygons(), 2);
    EXPECT_EQ(fn.numFaceVertices(), 7);
    EXPECT_EQ(fn.polygonVertexCount(1), 3);
    MIntArray a, b;
    EXPECT_TRUE(fn.getVertices(a, b));
    EXPECT_THAT(list(a), ElementsAre(4, 3));
    EXPECT_THAT(list(b), ElementsAre(0, 1, 2, 3, 1, 4, 2));
    EXPECT_TRUE(fn.getPolygonVertices(1, a));
    EXPECT_THAT(list(a), ElementsAre(1, 4, 2));
    EXPECT_TRUE(fn.getTriangles(a, b));
    EXPECT_THAT(list(a), ElementsAre(2, 1));
    EXPECT_THAT(list(b), ElementsAre(0, 1, 2, 0, 2, 3, 1, 4, 2));
    EXPECT_TRUE(fn.getTriangleOffsets(a, b));
    EXPECT_THAT(list(b), ElementsAre(0, 1, 2, 0, 2, 3, 4, 5, 6));
    int triangle[3], edge[2];
    EXPECT_TRUE(fn.getPolygonTriangleVertices(0, 1, triangle));
    EXPECT_THAT(triangle, ElementsAre(0, 2, 3));
    EXPECT_TRUE(fn.getEdgeVertices(4, edge));
    EXPECT_THAT(edge, ElementsAre(1, 4));
}

// Fault: weights of the vertex normals swapped, hard edges ignored, ids that miss their normals.
TEST_F(FoldedMesh, NormalsFollowWeightsAndHardEdges) {
    MFnMesh fn;
    make(fn);
    MVector n;
    EXPECT_TRUE(fn.getPolygonNormal(1, n));
    expectPoint(n, 1, 0, 0);
    // At vertex 2 the square has an angle of 90 degrees and the triangle one of 45.
    const double half = std::sqrt(0.5), fifth = std::sqrt(0.2);
    EXPECT_TRUE(fn.getVertexNormal(2, n));
    expectPoint(n, half, 0, half);
    EXPECT_TRUE(fn.getVertexNormal(2, true, n));
    expectPoint(n, fifth, 0, 2 * fifth);
    EXPECT_TRUE(fn.getFaceVertexNormal(0, 2, n));
    expectPoint(n, fifth, 0, 2 * fifth);
    ASSERT_TRUE(fn.isEdgeSmooth(1));
    EXPECT_TRUE(fn.setEdgeSmoothing(1, false));
    EXPECT_TRUE(fn.cleanupEdgeSmoothing());
    EXPECT_FALSE(fn.isEdgeSmooth(1));
    EXPECT_TRUE(fn.getFaceVertexNormal(0, 2, n));
    expectPoint(n, 0, 0, 1);
    MFloatVectorArray all, face;
    MIntArray counts, ids;
    EXPECT_TRUE(fn.getNormals(all));
    EXPECT_EQ(static_cast<int>(all.length()), fn.numNormals());
    EXPECT_TRUE(fn.getNormalIds(counts, ids));
    EXPECT_THAT(list(counts), ElementsAre(4, 3));
    expectPoint(MVector(all[static_cast<unsigned>(ids[6])]), 1, 0, 0);
    EXPECT_TRUE(fn.getFaceNormalIds(1, ids));
    expectPoint(MVector(all[static_cast<unsigned>(ids[0])]), 1, 0, 0);
    EXPECT_TRUE(fn.getFaceVertexNormals(1, face));
    EXPECT_EQ(face.length(), 3u);
    expectPoint(MVector(face[2]), 1, 0, 0);
    EXPECT_TRUE(fn.getVertexNormals(false, all));
    expectPoint(MVector(all[1]), half, 0, half);
}

// Fault: the world's matrix transposed or not inverted, normals moved like points, a point's w taken into account.
TEST_F(FoldedMesh, WorldSpaceGoesThroughTheParents) {
    MFnTransform parent;
    const MObject group = parent.create();
    const double scale[3]{2, 1, 1};
    EXPECT_TRUE(parent.setScale(scale));
    EXPECT_TRUE(parent.setRotation(MEulerRotation(0, 0, std::numbers::pi / 2)));
    EXPECT_TRUE(parent.setTranslation(MVector(10, 0, 0), MSpace::kTransform));
    MFnMesh fn;
    make(fn, group);
    MPoint p;
    EXPECT_TRUE(fn.getPoint(2, p, MSpace::kWorld));
    expectPoint(p, 9, 2, 0); // (1, 1, 0) -> scaled (2, 1, 0) -> turned (-1, 2, 0) -> moved
    MFloatPointArray all;
    EXPECT_TRUE(fn.getPoints(all, MSpace::kWorld));
    expectPoint(all[2], 9, 2, 0);
    MVector n;
    EXPECT_TRUE(fn.getVertexNormal(2, n, MSpace::kWorld));
    expectPoint(n, 0, std::sqrt(0.2), 2 * std::sqrt(0.2)); // (1, 0, 1) -> (0.5, 0, 1) -> (0, 0.5, 1)

    EXPECT_TRUE(fn.setPoint(0, MPoint(10, 6, 5), MSpace::kWorld));
    EXPECT_TRUE(fn.getPoint(0, p));
    expectPoint(p, 3, 0, 5);
    EXPECT_TRUE(fn.setPoint(0, MPoint(1, 2, 3, 0)));
    EXPECT_TRUE(fn.getPoint(0, p));
    expectPoint(p, 1, 2, 3);
    MPointArray given = points();
    for (MPoint& q : given) q = MPoint(10, 2, 0);
    EXPECT_TRUE(fn.setPoints(given, MSpace::kWorld));
    EXPECT_TRUE(fn.getPoint(4, p));
    expectPoint(p, 1, 0, 0);
    EXPECT_TRUE(parent.setTranslation(MVector(0, 0, 0), MSpace::kTransform));
    EXPECT_TRUE(fn.getPoint(4, p, MSpace::kWorld));
    expectPoint(p, 0, 2, 0);
}

// Fault: a change of one mesh shows in another one that shared its storage.
TEST_F(FoldedMesh, ChangesStayWithTheirMesh) {
    MFnMesh fn, copied, dataFn;
    make(fn);
    const MObject node = fn.object();
    MStatus status;
    const MObject second = copied.copy(node, MObject::kNullObj, &status);
    EXPECT_TRUE(status);
    EXPECT_STREQ(MFnDagNode(second).name().asChar(), "polySurface2");
    const MObject shown = fn.findPlug("outMesh", true).asMObject();
    ASSERT_TRUE(dataFn.setObject(shown));
    MPoint p;
    for (int i = 1; i <= 3; ++i) EXPECT_TRUE(fn.setPoint(0, MPoint(i, 0, 0)));
    EXPECT_TRUE(dataFn.getPoint(0, p));
    expectPoint(p, 0, 0, 0);
    EXPECT_TRUE(copied.getPoint(0, p));
    expectPoint(p, 0, 0, 0);
    EXPECT_TRUE(copied.setPoint(1, MPoint(0, 7, 0)));
    EXPECT_TRUE(fn.getPoint(0, p));
    expectPoint(p, 3, 0, 0);
    EXPECT_TRUE(fn.getPoint(1, p));
    expectPoint(p, 1, 0, 0);
    // What the shape shows is the changed mesh, and a refused change does not hide it.
    EXPECT_FALSE(fn.setPoint(99, MPoint()));
    MFnMesh again(fn.findPlug("outMesh", true).asMObject());
    EXPECT_TRUE(again.getPoint(0, p));
    expectPoint(p, 3, 0, 0);
}

// Fault: changes in place that undo cannot take back.
TEST_F(FoldedMesh, RecordedChangesAreUndone) {
    auto& undo = scene::Scene::current().undo;
    MFnMesh fn;
    make(fn);
    undo.openChunk("move");
    EXPECT_TRUE(fn.setPoint(0, MPoint(5, 5, 5)));
    EXPECT_TRUE(fn.setPoint(1, MPoint(6, 6, 6)));
    undo.closeChunk();
    MPoint p;
    ASSERT_TRUE(undo.undo());
    EXPECT_TRUE(fn.getPoint(0, p));
    expectPoint(p, 0, 0, 0);
    ASSERT_TRUE(undo.redo());
    EXPECT_TRUE(fn.getPoint(1, p));
    expectPoint(p, 6, 6, 6);
}

// Fault: changes that history would throw away are reported as done.
TEST_F(FoldedMesh, HistoryTakesPointsAlone) {
    auto& scene = scene::Scene::current();
    const auto plane = scene.createNode(*scene.findType("polyPlane"));
    const auto shape = scene.createNode(*scene.findType("mesh"));
    scene.connect(plane->cell("output"), shape->cell("inMesh"));
    MFnMesh fn(api::Access::object(shape.get()));
    ASSERT_GT(fn.numVertices(), 0);
    EXPECT_TRUE(fn.setPoint(0, MPoint(1, 2, 3)));
    MPoint p;
    EXPECT_TRUE(fn.getPoint(0, p));
    expectPoint(p, 1, 2, 3);
    EXPECT_EQ(fn.setEdgeSmoothing(0, false), MStatus::kFailure);
    EXPECT_EQ(fn.clearUVs(), MStatus::kFailure);
    EXPECT_EQ(fn.copyInPlace(fn.object()), MStatus::kFailure);
}

// Fault: an index, a length, a name or a space that is not there crashes, is taken, or damages the mesh.
TEST_F(FoldedMesh, WrongArgumentsFailAndChangeNothing) {
    MFnMesh node, data;
    make(node);
    MFnMeshData owner;
    make(data, owner.create());
    const MString none("nowhere"), empty("");
    MIntArray ints;
    MPointArray few(3);
    MFloatArray one(1, 0.5f), two(2, 0.5f);
    MFloatVectorArray vectors;
    MVector v;
    MPoint p;
    int three[3], pair[2], id;
    float f;
    using Call = std::function<MStatus(MFnMesh&)>;
    std::vector<Call> calls{
        [&](MFnMesh& m) { return m.getPoints(few, MSpace::kInvalid); },
        [&](MFnMesh& m) { return m.setPoints(few); },
        [&](MFnMesh& m) { return m.setPoint(0, p, MSpace::kLast); },
        [&](MFnMesh& m) { return m.getPolygonTriangleVertices(0, 2, three); },
        [&](MFnMesh& m) { return m.getPolygonTriangleVertices(0, -1, three); },
        [&](MFnMesh& m) { return m.getFaceVertexNormal(0, 4, v); }, // a vertex of the other polygon
        [&](MFnMesh& m) { return m.getNormals(vectors, MSpace::kInvalid); },
        [&](MFnMesh& m) { return m.setUVs(one, two); },
        [&](MFnMesh& m) { return m.setUVs(one, one, &none); },
        [&](MFnMesh& m) { return m.setSomeUVs(MIntArray(2, 0), one, one); },
        [&](MFnMesh& m) { return m.getUVs(one, one, &none); },
        [&](MFnMesh& m) { return m.assignUVs(MIntArray(2, 4), ints); },
        [&](MFnMesh& m) { return m.assignUV(0, 0, 0); }, // the set is empty
        [&](MFnMesh& m) { return m.clearUVs(&none); },
        [&](MFnMesh& m) { return m.deleteUVSet("map1"); },
        [&](MFnMesh& m) { return m.deleteUVSet(none); },
        [&](MFnMesh& m) { return m.renameUVSet(empty, none); },
        [&](MFnMesh& m) { return m.renameUVSet("map1", empty); },
        [&](MFnMesh& m) { return m.setCurrentUVSetName(empty); },
        [&](MFnMesh& m) { return m.getAssignedUVs(ints, ints, &none); },
        [&](MFnMesh& m) { return m.copyInPlace(MObject()); },
        [&](MFnMesh& m) { return m.createInPlace(1, 1, MFloatPointArray(1), ints, ints); },
    };
    for (const int bad : {-1, 7, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        calls.insert(calls.end(), {
                                      [&, bad](MFnMesh& m) { return m.getPoint(bad, p); },
                                      [&, bad](MFnMesh& m) { return m.setPoint(bad, p); },
                                      [&, bad](MFnMesh& m) { return m.getPolygonVertices(bad, ints); },
                                      [&, bad](MFnMesh& m) { return m.getPolygonTriangleVertices(bad, 0, three); },
                                      [&, bad](MFnMesh& m) { return m.getEdgeVertices(bad, pair); },
                                      [&, bad](MFnMesh& m) { return m.setEdgeSmoothing(bad); },
                                      [&, bad](MFnMesh& m) { return m.getFaceVertexNormal(bad, 0, v); },
                                      [&, bad](MFnMesh& m) { return m.getFaceVertexNormals(bad, vectors); },
                                      [&, bad](MFnMesh& m) { return m.getVertexNormal(bad, v); },
                                      [&, bad](MFnMesh& m) { return m.getPolygonNormal(bad, v); },
                                      [&, bad](MFnMesh& m) { return m.getUV(bad, f, f); },
                                      [&, bad](MFnMesh& m) { return m.getPolygonUVid(bad, 0, id); },
                                      [&, bad](MFnMesh& m) { return m.getPolygonUV(0, bad, f, f); },
                                      [&, bad](MFnMesh& m) {
                                          MStatus s;
                                          m.polygonVertexCount(bad, &s);
                                          return s;
                                      },
                                      [&, bad](MFnMesh& m) {
                                          MStatus s;
                                          m.isEdgeSmooth(bad, &s);
                                          return s;
                                      },
                                  });
        if (bad != 7) calls.push_back([&, bad](MFnMesh& m) { return m.setUV(bad, 0, 0); });
    }
    for (MFnMesh* m : {&node, &data}) {
        const mesh::PolyMesh before = *api::meshOf(m->object());
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_TRUE(calls[i](*m).error()) << "call " << i;
            EXPECT_EQ(*api::meshOf(m->object()), before) << "call " << i;
        }
    }
    EXPECT_EQ(data.getPoint(0, p, MSpace::kWorld), MStatus::kInvalidParameter) << "data is nowhere in the world";

    scene::Scene::current().deleteNodes({api::Access::node(node.object()).get()});
    EXPECT_EQ(node.getPoint(0, p), MStatus::kFailure);
    EXPECT_EQ(node.setPoint(0, p), MStatus::kFailure);
    MFnMesh nothing;
    EXPECT_EQ(nothing.updateSurface(), MStatus::kFailure);
}

/// Gives a triangle of a size; what a modelling node does.
class TriangleNode : public MPxNode {
public:
    static void* make() { return new TriangleNode; }
    static MStatus initialize() {
        size = MFnNumericAttribute().create("size", "sz", MFnNumericData::kDouble, 1.0);
        output = MFnTypedAttribute().create("output", "out", MFnData::kMesh);
        addAttribute(size);
        addAttribute(output);
        return attributeAffects(size, output);
    }
    MStatus compute(const MPlug& plug, MDataBlock& block) override {
        if (plug.attribute() != output) return MStatus::kUnknownParameter;
        const double s = block.inputValue(size).asDouble();
        MFnMeshData data;
        MObject owner = data.create();
        MFnMesh fn;
        const MPoint corners[3]{{0, 0, 0}, {s, 0, 0}, {0, s, 0}};
        const int connects[3]{0, 1, 2};
        MStatus status;
        fn.create(3, 1, MPointArray(corners, 3), MIntArray(1, 3), MIntArray(connects, 3), owner, &status);
        if (!status) return status;
        MDataHandle handle = block.outputValue(output);
        handle.set(owner);
        handle.setClean();
        return MStatus::kSuccess;
    }
    static MObject size, output;
};
MObject TriangleNode::size, TriangleNode::output;

// Fault: mesh data is lost between a node's output and the shape that it feeds, or a stale one stays.
TEST_F(FoldedMesh, ComputedDataReachesAShape) {
    api::Plugin plugin;
    plugin.name = "triangles";
    MObject pluginObject = api::Access::object(std::make_shared<api::PluginHandle>(&plugin));
    MFnPlugin fnPlugin(pluginObject);
    ASSERT_TRUE(fnPlugin.registerNode("triangleMaker", MTypeId(0x70001), TriangleNode::make, TriangleNode::initialize));
    {
        MFnDependencyNode maker;
        MStatus status;
        maker.create("triangleMaker", &status);
        ASSERT_TRUE(status);
        const auto shape = scene::Scene::current().createNode(*scene::Scene::current().findType("mesh"));
        MFnMesh fn(api::Access::object(shape.get()));
        MDGModifier modifier;
        modifier.connect(maker.findPlug("output", true), fn.findPlug("inMesh", true));
        ASSERT_TRUE(modifier.doIt());
        MPoint p;
        EXPECT_TRUE(fn.getPoint(1, p));
        expectPoint(p, 1, 0, 0);
        EXPECT_TRUE(maker.findPlug("size", true).setDouble(4));
        EXPECT_TRUE(fn.getPoint(2, p));
        expectPoint(p, 0, 4, 0);
        EXPECT_EQ(MFnMesh(maker.findPlug("output", true).asMObject()).numPolygons(), 1);
    }
    scene::Scene::current().reset();
    EXPECT_TRUE(fnPlugin.deregisterNode(MTypeId(0x70001)));
}

} // namespace
