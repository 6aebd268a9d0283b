#include <maya/MItMeshEdge.h>

#include "api/fn/MeshUvs.h"

#include <maya/MVector.h>

using namespace host;
using api::among;
using api::fill;

namespace {

int endOf(const mesh::PolyMesh& mesh, int edge, int end) {
    const mesh::Edge& e = mesh.edges()[static_cast<std::size_t>(edge)];
    return end == 0 ? e.v1 : e.v2;
}

/// The other edges at the ends of an edge.
std::vector<int> edgesAtEnds(const mesh::PolyMesh& mesh, int edge) {
    std::vector<int> all;
    for (const int end : {0, 1})
        for (const int other : mesh.neighbours().vertexEdges.of(endOf(mesh, edge, end)))
            if (other != edge) all.push_back(other);
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

} // namespace

MItMeshEdge::MItMeshEdge(MObject& polyObject, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kEdges, polyObject, MObject()).statusCode());
}

MItMeshEdge::MItMeshEdge(MObject& polyObject, MObject& component, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kEdges, polyObject, component).statusCode());
}

MItMeshEdge::MItMeshEdge(const MDagPath& polyObject, MObject& component, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kEdges, polyObject, component).statusCode());
}

MItMeshEdge::~MItMeshEdge() {
    try {
        cleanupSmoothing();
    } catch (...) {
        // There is nobody left to tell.
    }
}

bool MItMeshEdge::isDone(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return !there();
}

MStatus MItMeshEdge::next() { return forward(); }
MStatus MItMeshEdge::reset() { return restart(); }

MStatus MItMeshEdge::reset(MObject& polyObject, MObject& component) {
    cleanupSmoothing();
    return start(kEdges, polyObject, component);
}

MStatus MItMeshEdge::reset(const MDagPath& polyObject, MObject& component) {
    cleanupSmoothing();
    return start(kEdges, polyObject, component);
}

int MItMeshEdge::count(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return count_;
}

MPoint MItMeshEdge::center(MSpace::Space space, MStatus* ReturnStatus) {
    MPoint a, b;
    MStatus status = there() ? place(endOf(*mesh_, index_, 0), space, a) : MStatus(MStatus::kFailure);
    if (status) status = place(endOf(*mesh_, index_, 1), space, b);
    if (ReturnStatus) *ReturnStatus = status;
    return MPoint((a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2);
}

MPoint MItMeshEdge::point(int index, MSpace::Space space, MStatus* ReturnStatus) {
    MPoint point;
    MStatus status = there() ? MStatus::kInvalidParameter : MStatus::kFailure;
    if (there() && among(index, 2)) status = place(endOf(*mesh_, index_, index), space, point);
    if (ReturnStatus) *ReturnStatus = status;
    return point;
}

MStatus MItMeshEdge::setPoint(const MPoint& point, unsigned int index, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    if (index > 1) return MStatus::kInvalidParameter;
    return move({{endOf(*mesh_, index_, static_cast<int>(index)), point}}, space);
}

bool MItMeshEdge::isSmooth(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there() && mesh_->edges()[static_cast<std::size_t>(index_)].smooth;
}

MStatus MItMeshEdge::setSmoothing(bool smooth) {
    if (!there()) return MStatus::kFailure;
    smoothing_.emplace_back(index_, smooth);
    return MStatus::kSuccess;
}

MStatus MItMeshEdge::cleanupSmoothing() {
    if (smoothing_.empty()) return MStatus::kSuccess;
    const auto changes = std::exchange(smoothing_, {});
    mesh_.reset();
    const MStatus status = api::changeMesh(object_, api::MeshChange::Any, [&](mesh::PolyMesh& mesh) -> MStatus {
        std::vector<bool> smooth;
        for (const mesh::Edge& edge : mesh.edges()) smooth.push_back(edge.smooth);
        for (const auto& [edge, to] : changes) {
            if (!among(edge, mesh.numEdges())) return MStatus::kFailure;
            smooth[static_cast<std::size_t>(edge)] = to;
        }
        mesh.setEdgesSmooth(smooth);
        return MStatus::kSuccess;
    });
    look();
    return status;
}

int MItMeshEdge::index(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, 2);
    setStatus(ReturnStatus, known ? MStatus::kSuccess : there() ? MStatus::kInvalidParameter : MStatus::kFailure);
    return known ? endOf(*mesh_, index_, index) : 0;
}

int MItMeshEdge::index(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return index_;
}

MObject MItMeshEdge::edge(MStatus* s) { return componentObject(MFn::kMeshEdgeComponent, index_, s); }
MObject MItMeshEdge::currentItem(MStatus* s) { return edge(s); }

MStatus MItMeshEdge::updateSurface() {
    const MStatus status = cleanupSmoothing();
    return status ? look() : status;
}

MStatus MItMeshEdge::geomChanged() { return updateSurface(); }
MStatus MItMeshEdge::setIndex(int index, int& prevIndex) { return jump(index, prevIndex); }

int MItMeshEdge::getConnectedFaces(MIntArray& faceList, MStatus* ReturnStatus) const {
    faceList.clear();
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (there()) fill(faceList, mesh_->neighbours().edgeFaces.of(index_));
    return static_cast<int>(faceList.length());
}

int MItMeshEdge::getConnectedEdges(MIntArray& edgeList, MStatus* ReturnStatus) const {
    edgeList.clear();
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (there()) fill(edgeList, edgesAtEnds(*mesh_, index_));
    return static_cast<int>(edgeList.length());
}

MStatus MItMeshEdge::numConnectedFaces(int& faceCount) const {
    MIntArray faces;
    MStatus status;
    faceCount = getConnectedFaces(faces, &status);
    return status;
}

MStatus MItMeshEdge::numConnectedEdges(int& edgeCount) const {
    MIntArray edges;
    MStatus status;
    edgeCount = getConnectedEdges(edges, &status);
    return status;
}

bool MItMeshEdge::connectedToFace(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->numPolygons());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!known) return false;
    const auto faces = mesh_->neighbours().edgeFaces.of(index_);
    return std::find(faces.begin(), faces.end(), index) != faces.end();
}

bool MItMeshEdge::connectedToEdge(int index, MStatus* ReturnStatus) {
    const bool known = there() && among(index, mesh_->numEdges());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!known) return false;
    const auto edges = edgesAtEnds(*mesh_, index_);
    return std::binary_search(edges.begin(), edges.end(), index);
}

bool MItMeshEdge::onBoundary(MStatus* ReturnStatus) {
    int faces = 0;
    const MStatus status = numConnectedFaces(faces);
    if (ReturnStatus) *ReturnStatus = status;
    return status && faces < 2;
}

MStatus MItMeshEdge::getLength(double& length, MSpace::Space space) {
    MStatus status;
    const MPoint a = point(0, space, &status);
    if (!status) return status;
    length = (point(1, space) - a).length();
    return status;
}

const char* MItMeshEdge::className() { return "MItMeshEdge"; }
