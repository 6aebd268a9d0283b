#include "GraphFixture.h"

#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>

namespace {

using testing::ElementsAre;

/// Four unit squares around the vertex 4:
///     6 7 8
///     3 4 5
///     0 1 2
struct MeshIterators : GraphFixture {
    MeshIterators() {
        MFloatPointArray points;
        for (int i = 0; i < 9; ++i)
            points.append(MFloatPoint(static_cast<float>(i % 3), 0, -static_cast<float>(i / 3)));
        const int counts[] = {4, 4, 4, 4}, connects[] = {0, 1, 4, 3, 1, 2, 5, 4, 3, 4, 7, 6, 4, 5, 8, 7};
        MFnMesh fn;
        group = fn.create(9, 4, points, MIntArray(counts, 4), MIntArray(connects, 16));
        shape = fn.object();
        path = MDagPath::getAPathTo(shape);
    }
    static std::vector<int> list(const MIntArray& a) { return {a.begin(), a.end()}; }
    static MObject component(MFn::Type type, std::initializer_list<int> elements) {
        MFnSingleIndexedComponent fn;
        MObject made = fn.create(type);
        for (const int e : elements) fn.addElement(e);
        return made;
    }
    MObject group, shape;
    MDagPath path;
};

// Faults: neighbours that are missing or the vertex itself, a border seen inside; an index behind the end answered.
TEST_F(MeshIterators, NeighboursOfVertices) {
    MItMeshVertex v(path);
    EXPECT_EQ(v.count(), 9);
    int previous = -1;
    ASSERT_TRUE(v.setIndex(4, previous));
    EXPECT_EQ(previous, 0);
    MIntArray faces, edges, vertices;
    EXPECT_TRUE(v.getConnectedFaces(faces));
    EXPECT_TRUE(v.getConnectedVertices(vertices));
    EXPECT_TRUE(v.getConnectedEdges(edges));
    EXPECT_THAT(list(faces), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(list(vertices), ElementsAre(1, 3, 5, 7));
    int opposite = -1;
    for (const int e : edges) EXPECT_TRUE(v.getOppositeVertex(opposite, e));
    EXPECT_EQ(edges.length(), 4u);
    EXPECT_FALSE(v.onBoundary());
    EXPECT_EQ(v.vertex().apiType(), MFn::kMeshVertComponent);
    MVectorArray normals;
    EXPECT_TRUE(v.getNormals(normals));
    EXPECT_EQ(normals.length(), 4u);
    EXPECT_NEAR(normals[0].y, 1, 1e-6);
    ASSERT_TRUE(v.setIndex(0, previous));
    EXPECT_TRUE(v.onBoundary());
    EXPECT_FALSE(v.connectedToFace(3));
    MStatus status;
    EXPECT_FALSE(v.connectedToFace(4, &status));
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_FALSE(v.setIndex(9, previous));
    while (!v.isDone()) v.next();
    v.position(MSpace::kObject, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_FALSE(v.next());
}

// Faults: borders, ends and lengths of edges; faces that meet in a corner alone taken for neighbours.
TEST_F(MeshIterators, EdgesAndPolygons) {
    int border = 0, inner = 0;
    for (MItMeshEdge e(path); !e.isDone(); e.next()) {
        (e.onBoundary() ? border : inner)++;
        double length = 0;
        EXPECT_TRUE(e.getLength(length));
        EXPECT_EQ(length, 1);
        MIntArray faces;
        EXPECT_EQ(e.getConnectedFaces(faces), e.onBoundary() ? 1 : 2);
    }
    EXPECT_EQ(border, 8);
    EXPECT_EQ(inner, 4);
    run("setAttr " + str(MFnDagNode(group).fullPathName()) + ".s 2 1 1");
    MItMeshPolygon p(path);
    MIntArray faces, vertices;
    EXPECT_TRUE(p.getConnectedFaces(faces));
    EXPECT_THAT(list(faces), ElementsAre(1, 2));
    EXPECT_TRUE(p.getConnectedVertices(vertices));
    EXPECT_THAT(list(vertices), ElementsAre(2, 5, 6, 7));
    EXPECT_TRUE(p.isConnectedToVertex(4));
    EXPECT_FALSE(p.isConnectedToFace(3));
    double area = 0;
    EXPECT_TRUE(p.getArea(area, MSpace::kWorld));
    EXPECT_EQ(area, 2);
    EXPECT_EQ(p.center(MSpace::kWorld), MPoint(1, 0, -0.5));
    EXPECT_TRUE(p.isConvex());
    EXPECT_TRUE(p.isPlanar());
    EXPECT_FALSE(p.isLamina());
    EXPECT_TRUE(p.setPoint(MPoint(0.8, 0, -0.8), 0));
    EXPECT_FALSE(p.isConvex()) << "its first corner is pushed in beyond the diagonal";
    EXPECT_TRUE(p.setPoint(MPoint(0.8, 0.5, -0.8), 0));
    EXPECT_FALSE(p.isPlanar());
}

// Faults: a UV that a neighbour loses or gets too, one set over a smaller list; corners that lose their polygon.
TEST_F(MeshIterators, TextureCoordinates) {
    MItMeshVertex v(path);
    int previous = 0;
    v.setIndex(4, previous);
    float2 uv = {0.25f, 0.75f}, other = {0.5f, 0.5f}, got = {0, 0};
    EXPECT_FALSE(v.getUV(got)) << "there are none yet";
    EXPECT_TRUE(v.setUV(uv));
    EXPECT_TRUE(v.setUV(2, other));
    EXPECT_TRUE(v.getUV(1, got));
    EXPECT_EQ(got[0], 0.25f);
    EXPECT_TRUE(v.getUV(2, got));
    EXPECT_EQ(got[0], 0.5f);
    int count = 0;
    EXPECT_TRUE(v.numUVs(count));
    EXPECT_EQ(count, 2);
    const MString missing("noSuchSet");
    EXPECT_EQ(v.setUV(uv, &missing), MStatus::kInvalidParameter);
    int withUv = 0;
    for (MItMeshFaceVertex c(path); !c.isDone(); c.next()) {
        if (!c.hasUVs()) continue;
        ++withUv;
        EXPECT_EQ(c.vertId(), 4);
        EXPECT_TRUE(c.getUV(got));
        EXPECT_EQ(got[0], c.faceId() == 2 ? 0.5f : 0.25f);
    }
    EXPECT_EQ(withUv, 4);
}

// Faults: what a component leaves out visited, an index that the mesh does not have, a component of another kind taken.
TEST_F(MeshIterators, Components) {
    MObject some = component(MFn::kMeshVertComponent, {7, 2, 4, 99});
    std::vector<int> seen;
    for (MItMeshVertex v(path, some); !v.isDone(); v.next()) seen.push_back(v.index());
    EXPECT_THAT(seen, ElementsAre(2, 4, 7));
    seen.clear();
    MObject face = component(MFn::kMeshPolygonComponent, {3});
    for (MItMeshFaceVertex c(path, face); !c.isDone(); c.next()) seen.push_back(c.vertId());
    EXPECT_THAT(seen, ElementsAre(4, 5, 8, 7));
    MStatus status;
    const MItMeshVertex wrong(path, face, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    const MItMeshPolygon camera(MDagPath::getAPathTo(object("persp")), MObject::kNullObj, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);

    run("select -r polySurface1.vtx[1:2] persp polySurface1.f[0] time1");
    MSelectionList list;
    MGlobal::getActiveSelectionList(list);
    MItSelectionList it(list, MFn::kMeshVertComponent);
    ASSERT_FALSE(it.isDone());
    EXPECT_TRUE(it.hasComponents());
    EXPECT_EQ(it.itemType(), MItSelectionList::kDagSelectionItem);
    EXPECT_TRUE(it.next());
    EXPECT_TRUE(it.isDone());
    int dag = 0;
    for (it.setFilter(MFn::kDagNode); !it.isDone(); it.next()) ++dag;
    EXPECT_EQ(dag, 3);
}

// Faults: a change that shows only later, or touches data of the plug that gave it; an iterator that holds a mesh
// alive.
TEST_F(MeshIterators, ChangesShowAtOnce) {
    MItMeshVertex v(path);
    v.next();
    EXPECT_TRUE(v.setPosition(MPoint(5, 6, 7)));
    MPoint seen;
    MFnMesh(shape).getPoint(1, seen);
    EXPECT_EQ(seen, MPoint(5, 6, 7));
    EXPECT_TRUE(v.next());
    EXPECT_EQ(v.index(), 2);
    MFnMeshData fn;
    MObject data = fn.create();
    MFnMesh(shape).copy(shape, data);
    MItMeshVertex d(data);
    EXPECT_TRUE(d.setPosition(MPoint(1, 1, 1)));
    EXPECT_EQ(d.position(), MPoint(1, 1, 1));
    MFnMesh(shape).getPoint(0, seen);
    EXPECT_EQ(seen, MPoint(0, 0, 0));
    MStatus status;
    d.position(MSpace::kWorld, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter) << "data are nowhere in the world";
    scene.reset();
    EXPECT_FALSE(v.setPosition(MPoint()));
    EXPECT_TRUE(v.isDone());
}

} // namespace

// Faults: weights of another triangle's corners, a point outside that is answered, places that are not in the space.
TEST_F(MeshIterators, PointsAndUvsOfPolygonsLeadToEachOther) {
    MItMeshPolygon p(path);
    MFloatArray u, v;
    for (const float x : {0.0F, 0.5F, 0.5F, 0.0F}) u.append(x);
    for (const float y : {0.0F, 0.0F, 0.25F, 0.25F}) v.append(y);
    ASSERT_TRUE(p.setUVs(u, v));
    run("move -y 3 " + str(MFnDagNode(group).name()));
    const auto is = [](const auto& t, double x, double y, double z) {
        return std::abs(t.x - x) < 1e-6 && std::abs(t.y - y) < 1e-6 && std::abs(t.z - z) < 1e-6;
    };
    for (const auto& [at, x, z] : {std::tuple{MPoint(0.25, 7, -0.5), 0.125F, 0.125F},
                                   {MPoint(0.75, 2, -0.2), 0.375F, 0.05F},
                                   {MPoint(9, 3, 9), 0.5F, 0.0F}}) {
        float2 uv{};
        MPoint there = at;
        EXPECT_TRUE(p.getUVAtPoint(there, uv, MSpace::kWorld));
        EXPECT_NEAR(uv[0], x, 1e-6);
        EXPECT_NEAR(uv[1], z, 1e-6);
    }
    float2 inside{0.125F, 0.125F}, beside{0.6F, 0.1F};
    MPoint point;
    EXPECT_TRUE(p.getPointAtUV(point, inside));
    EXPECT_TRUE(is(point, 0.25, 0, -0.5));
    EXPECT_TRUE(p.getPointAtUV(point, inside, MSpace::kWorld));
    EXPECT_TRUE(is(point, 0.25, 3, -0.5));
    EXPECT_EQ(p.getPointAtUV(point, beside), MStatus::kFailure);
    EXPECT_TRUE(p.getPointAtUV(point, beside, MSpace::kObject, NULL, 0.11F));
    EXPECT_TRUE(is(point, 1, 0, -0.4));
    MVector normal, uTangent, vTangent;
    EXPECT_TRUE(p.getAxisAtUV(normal, uTangent, vTangent, inside));
    EXPECT_TRUE(is(normal, 0, 1, 0) && is(uTangent, 1, 0, 0) && is(vTangent, 0, 0, -1));
    const MString missing("none");
    EXPECT_EQ(p.getPointAtUV(point, inside, MSpace::kObject, &missing), MStatus::kInvalidParameter);
    p.next();
    EXPECT_EQ(p.getUVAtPoint(point, inside), MStatus::kFailure) << "this one has no UVs";
    EXPECT_TRUE(p.isStarlike());
    // From the middle of an L's corners, which lies outside of it, its inner sides turn away.
    MFloatPointArray corners;
    for (const auto& [x, y] : {std::pair{0, 0}, {4, 0}, {4, 1}, {1, 1}, {1, 4}, {0, 4}})
        corners.append(MFloatPoint(static_cast<float>(x), static_cast<float>(y), 0));
    const int count[] = {6}, all[] = {0, 1, 2, 3, 4, 5};
    MFnMesh fn;
    fn.create(6, 1, corners, MIntArray(count, 1), MIntArray(all, 6));
    EXPECT_FALSE(MItMeshPolygon(fn.object()).isStarlike());
}
