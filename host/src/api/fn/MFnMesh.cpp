#include <maya/MFnMesh.h>

#include "api/fn/FnSupport.h"
#include "api/fn/MeshCall.h"

#include <maya/MDagPath.h>
#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <new>

using namespace host;
using api::Access;
using api::among;
using api::changeMesh;
using api::countOf;
using api::fill;
using api::floats;
using api::ints;
using api::MeshChange;
using api::withMesh;
using mesh::Float3;
using mesh::PolyMesh;

ORVO_DEFINE_FN(MFnMesh, MFn::kMesh)
ORVO_FN_NAME(MFnMesh)

MFnMesh::MFnMesh(const MDagPath& object, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MFnMesh::setObject(object).statusCode());
}

MFnMesh::~MFnMesh() = default;
MStatus MFnMesh::setObject(MObject& object) { return attach(object, MFn::kMesh); }
MStatus MFnMesh::setObject(const MObject& object) { return attach(object, MFn::kMesh); }

MStatus MFnMesh::setObject(const MDagPath& objectPath) {
    const MObject end = objectPath.node();
    const auto node = Access::dagNode(end);
    if (!node || !node->dag()->isTransform()) return attach(end, MFn::kMesh);
    MObject only;
    for (scene::DagNode* child : node->dag()->children) {
        const MObject object = Access::object(child);
        if (!object.hasFn(MFn::kMesh) || child->intermediate()) continue;
        if (!only.isNull()) return attach(MObject(), MFn::kMesh);
        only = object;
    }
    return attach(only, MFn::kMesh);
}

namespace {

template <class Point>
Float3 toSingle(const Point& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}

/// The place that a matrix takes a point to, whatever the point's w.
template <class Point>
Float3 placed(const Point& p, const MMatrix& m) {
    return toSingle(MPoint(p.x, p.y, p.z) * m);
}

template <class Points>
std::vector<Float3> toSingles(const Points& points, const MMatrix& m) {
    std::vector<Float3> out;
    out.reserve(points.length());
    for (const auto& p : points) out.push_back(placed(p, m));
    return out;
}

/// A mesh from the arguments of create(); null with a status when they do not fit together.
template <class Points>
std::shared_ptr<PolyMesh> build(int numVertices, int numPolygons, const Points& points, const MIntArray& counts,
                                const MIntArray& connects, MStatus& status) {
    status = MStatus::kInvalidParameter;
    if (numVertices < 0 || numPolygons < 0 || static_cast<unsigned int>(numVertices) != points.length() ||
        static_cast<unsigned int>(numPolygons) != counts.length())
        return nullptr;
    try {
        const auto corners = ints(connects);
        std::string error;
        auto made = std::make_shared<PolyMesh>(PolyMesh::fromPolygons(
            toSingles(points, MMatrix::identity), ints(counts), {corners.begin(), corners.end()}, &error));
        if (!error.empty()) return nullptr;
        status = MStatus::kSuccess;
        return made;
    } catch (const std::bad_alloc&) {
        status = MStatus::kInsufficientMemory;
        return nullptr;
    }
}

/// Puts a new mesh where create() was told to: into data, or a new shape. Answers what create() answers, and the object
/// that the function set then works on.
MObject place(std::shared_ptr<const PolyMesh> made, const MObject& parentOrOwner, MObject& target, MStatus& status) {
    if (!made || !status) return MObject();
    if (auto* data = api::meshData(parentOrOwner)) {
        data->mesh = std::move(made);
        target = parentOrOwner;
        return parentOrOwner;
    }
    scene::DagNode* parent = nullptr;
    auto* scene = &scene::Scene::current();
    const auto node = Access::dagNode(parentOrOwner);
    if (!parentOrOwner.isNull()) {
        if (!node || !node->inScene || !node->dag()->isTransform() || node->dag()->isWorld()) {
            status = MStatus::kInvalidParameter;
            return MObject();
        }
        parent = node->dag();
        scene = &node->scene;
    }
    MObject answer;
    MStatus filled;
    status = api::guarded([&] {
        const auto shape = scene->createNode(*scene->findType("mesh"), parent ? "polySurfaceShape#" : "", parent);
        scene::DagNode* dag = shape->dag();
        target = Access::object(dag);
        answer = parent ? target : Access::object(dag->parent);
        filled = api::replaceMesh(target, std::move(made));
    });
    if (status) status = filled;
    return status ? answer : MObject();
}

template <class Points>
MObject create(int numVertices, int numPolygons, const Points& points, const MIntArray& counts,
               const MIntArray& connects, const MFloatArray* u, const MFloatArray* v, const MObject& parentOrOwner,
               MObject& target, MStatus* ReturnStatus) {
    MStatus status;
    auto made = build(numVertices, numPolygons, points, counts, connects, status);
    if (made && u && !made->setUvs(0, floats(*u), floats(*v))) status = MStatus::kInvalidParameter;
    const MObject answer = place(std::move(made), parentOrOwner, target, status);
    setStatus(ReturnStatus, status.statusCode());
    return answer;
}

} // namespace

MObject MFnMesh::create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects, MObject parentOrOwner,
                        MStatus* ReturnStatus) {
    return ::create(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects, nullptr, nullptr,
                    parentOrOwner, object_, ReturnStatus);
}

MObject MFnMesh::create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects, MObject parentOrOwner,
                        MStatus* ReturnStatus) {
    return ::create(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects, nullptr, nullptr,
                    parentOrOwner, object_, ReturnStatus);
}

MObject MFnMesh::create(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects, const MFloatArray& uArray,
                        const MFloatArray& vArray, MObject parentOrOwner, MStatus* ReturnStatus) {
    return ::create(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects, &uArray, &vArray,
                    parentOrOwner, object_, ReturnStatus);
}

MObject MFnMesh::create(int numVertices, int numPolygons, const MPointArray& vertexArray,
                        const MIntArray& polygonCounts, const MIntArray& polygonConnects, const MFloatArray& uArray,
                        const MFloatArray& vArray, MObject parentOrOwner, MStatus* ReturnStatus) {
    return ::create(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects, &uArray, &vArray,
                    parentOrOwner, object_, ReturnStatus);
}

MObject MFnMesh::copy(const MObject& source, MObject parentOrOwner, MStatus* ReturnStatus) {
    const auto mesh = api::meshOf(source);
    MStatus status = mesh ? MStatus::kSuccess : MStatus::kInvalidParameter;
    const MObject answer = place(mesh, parentOrOwner, object_, status);
    setStatus(ReturnStatus, status.statusCode());
    return answer;
}

MStatus MFnMesh::createInPlace(int numVertices, int numPolygons, const MFloatPointArray& vertexArray,
                               const MIntArray& polygonCounts, const MIntArray& polygonConnects) {
    MStatus status;
    auto made = build(numVertices, numPolygons, vertexArray, polygonCounts, polygonConnects, status);
    return made ? api::replaceMesh(object_, std::move(made)) : status;
}

MStatus MFnMesh::copyInPlace(const MObject& source) {
    const auto mesh = api::meshOf(source);
    return mesh ? api::replaceMesh(object_, mesh) : MStatus(MStatus::kInvalidParameter);
}

MStatus MFnMesh::updateSurface() {
    return withMesh(object_, [](const PolyMesh&) { return MStatus(MStatus::kSuccess); });
}

int MFnMesh::numVertices(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.numVertices(); });
}

int MFnMesh::numEdges(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.numEdges(); });
}

int MFnMesh::numPolygons(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.numPolygons(); });
}

int MFnMesh::numFaceVertices(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.numFaceVertices(); });
}

int MFnMesh::polygonVertexCount(int polygonId, MStatus* ReturnStatus) const {
    int count = 0;
    const MStatus status = withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        if (!among(polygonId, m.numPolygons())) return MStatus::kInvalidParameter;
        count = m.faceSize(polygonId);
        return MStatus::kSuccess;
    });
    setStatus(ReturnStatus, status.statusCode());
    return count;
}

namespace {

template <class Array>
MStatus pointsOf(const MObject& object, Array& array, MSpace::Space space) {
    return withMesh(object, [&](const PolyMesh& m) -> MStatus {
        MMatrix matrix;
        if (const MStatus status = api::matrixTo(object, space, matrix); !status) return status;
        using Point = std::decay_t<decltype(array[0])>;
        if (space != MSpace::kWorld)
            return fill(array, m.points(), [](const Float3& p) { return Point(p.x, p.y, p.z); });
        return fill(array, m.points(), [&](const Float3& p) { return Point(MPoint(p.x, p.y, p.z) * matrix); });
    });
}

template <class Array>
MStatus setPointsOf(const MObject& object, const Array& array, MSpace::Space space) {
    return changeMesh(object, MeshChange::Points, [&](PolyMesh& m) -> MStatus {
        MMatrix matrix;
        if (const MStatus status = api::matrixTo(object, space, matrix); !status) return status;
        return m.setPoints(toSingles(array, matrix.inverse())) ? MStatus::kSuccess : MStatus::kInvalidParameter;
    });
}

} // namespace

MStatus MFnMesh::getPoints(MFloatPointArray& vertexArray, MSpace::Space space) const {
    return pointsOf(object_, vertexArray, space);
}

MStatus MFnMesh::getPoints(MPointArray& vertexArray, MSpace::Space space) const {
    return pointsOf(object_, vertexArray, space);
}

MStatus MFnMesh::setPoints(MFloatPointArray& vertexArray, MSpace::Space space) {
    return setPointsOf(object_, vertexArray, space);
}

MStatus MFnMesh::setPoints(MPointArray& vertexArray, MSpace::Space space) {
    return setPointsOf(object_, vertexArray, space);
}

MStatus MFnMesh::getPoint(int vertexId, MPoint& pos, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        MMatrix matrix;
        if (const MStatus status = api::matrixTo(object_, space, matrix); !status) return status;
        if (!among(vertexId, m.numVertices())) return MStatus::kInvalidParameter;
        const Float3& p = m.point(vertexId);
        pos = MPoint(p.x, p.y, p.z) * matrix;
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::setPoint(int vertexId, const MPoint& pos, MSpace::Space space) {
    return changeMesh(object_, MeshChange::Points, [&](PolyMesh& m) -> MStatus {
        MMatrix matrix;
        if (const MStatus status = api::matrixTo(object_, space, matrix); !status) return status;
        if (!among(vertexId, m.numVertices())) return MStatus::kInvalidParameter;
        m.setPoint(vertexId, placed(pos, matrix.inverse()));
        return MStatus::kSuccess;
    });
}

namespace {

/// One number a polygon.
template <class Count>
MStatus fillCounts(MIntArray& counts, const PolyMesh& m, Count count) {
    counts.clear();
    if (const MStatus status = counts.setLength(static_cast<unsigned int>(m.numPolygons())); !status) return status;
    for (int face = 0; face < m.numPolygons(); ++face) counts[static_cast<unsigned int>(face)] = count(face);
    return MStatus::kSuccess;
}

/// What `entry` makes of every corner of all triangles.
template <class Entry>
MStatus fillTriangles(MIntArray& counts, MIntArray& list, const PolyMesh& m, Entry entry) {
    if (const MStatus status = fillCounts(counts, m, [&](int face) { return m.faceSize(face) - 2; }); !status)
        return status;
    const auto triangles = m.triangles();
    list.clear();
    if (const MStatus status = list.setLength(static_cast<unsigned int>(3 * triangles.size())); !status) return status;
    unsigned int at = 0;
    for (const PolyMesh::Triangle& t : triangles)
        for (const int corner : t) list[at++] = entry(corner);
    return MStatus::kSuccess;
}

} // namespace

MStatus MFnMesh::getVertices(MIntArray& vertexCount, MIntArray& vertexList) const {
    return withMesh(object_, [&](const PolyMesh& m) {
        const MStatus status = fillCounts(vertexCount, m, [&](int face) { return m.faceSize(face); });
        return status ? fill(vertexList, m.connects()) : status;
    });
}

MStatus MFnMesh::getPolygonVertices(int polygonId, MIntArray& vertexList) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        if (!among(polygonId, m.numPolygons())) return MStatus::kInvalidParameter;
        return fill(vertexList, m.faceVertices(polygonId));
    });
}

MStatus MFnMesh::getPolygonTriangleVertices(int polygonId, int triangleId, int vertexList[3]) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        if (!among(polygonId, m.numPolygons()) || !among(triangleId, m.faceSize(polygonId) - 2))
            return MStatus::kInvalidParameter;
        std::ranges::copy(m.triangleVertices(polygonId, triangleId), vertexList);
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::getTriangles(MIntArray& triangleCounts, MIntArray& triangleVertices) const {
    return withMesh(object_, [&](const PolyMesh& m) {
        return fillTriangles(triangleCounts, triangleVertices, m, [&](int corner) { return m.connects()[corner]; });
    });
}

MStatus MFnMesh::getTriangleOffsets(MIntArray& triangleCounts, MIntArray& triangleIndices) const {
    return withMesh(object_, [&](const PolyMesh& m) {
        return fillTriangles(triangleCounts, triangleIndices, m, [](int corner) { return corner; });
    });
}

MStatus MFnMesh::getEdgeVertices(int edgeId, int2& vertexList) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        if (!among(edgeId, m.numEdges())) return MStatus::kInvalidParameter;
        const mesh::Edge& edge = m.edges()[edgeId];
        vertexList[0] = edge.v1;
        vertexList[1] = edge.v2;
        return MStatus::kSuccess;
    });
}

bool MFnMesh::isEdgeSmooth(int edgeId, MStatus* ReturnStatus) const {
    bool smooth = false;
    const MStatus status = withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        if (!among(edgeId, m.numEdges())) return MStatus::kInvalidParameter;
        smooth = m.edges()[edgeId].smooth;
        return MStatus::kSuccess;
    });
    setStatus(ReturnStatus, status.statusCode());
    return smooth;
}

MStatus MFnMesh::setEdgeSmoothing(int edgeId, bool smooth) {
    return changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) -> MStatus {
        if (!among(edgeId, m.numEdges())) return MStatus::kInvalidParameter;
        m.setEdgeSmooth(edgeId, smooth);
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::cleanupEdgeSmoothing() { return updateSurface(); }
