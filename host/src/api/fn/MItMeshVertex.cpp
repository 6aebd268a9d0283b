#include <maya/MItMeshVertex.h>

#include "api/fn/MeshUvs.h"
#include "api/fn/NormalSpace.h"

using namespace host;
using api::among;
using api::CornerUv;
using api::fill;
using api::NormalSpace;
using mesh::NormalWeight;

MItMeshVertex::MItMeshVertex(MObject& polyObject, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kVertices, polyObject, MObject()).statusCode());
}

MItMeshVertex::MItMeshVertex(const MDagPath& polyObject, MObject& component, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kVertices, polyObject, component).statusCode());
}

MItMeshVertex::~MItMeshVertex() = default;

bool MItMeshVertex::isDone(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return !there();
}

MStatus MItMeshVertex::next() { return forward(); }
MStatus MItMeshVertex::reset() { return restart(); }
MStatus MItMeshVertex::reset(MObject& polyObject) { return start(kVertices, polyObject, MObject()); }
MStatus MItMeshVertex::reset(const MDagPath& polyObject, MObject& component) {
    return start(kVertices, polyObject, component);
}

int MItMeshVertex::count(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return count_;
}

int MItMeshVertex::index(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return index_;
}

MObject MItMeshVertex::vertex(MStatus* s) { return componentObject(MFn::kMeshVertComponent, index_, s); }
MObject MItMeshVertex::currentItem(MStatus* s) { return vertex(s); }

MPoint MItMeshVertex::position(MSpace::Space space, MStatus* ReturnStatus) {
    MPoint point;
    const MStatus status = place(index_, space, point);
    if (ReturnStatus) *ReturnStatus = status;
    return point;
}

MStatus MItMeshVertex::setPosition(const MPoint& point, MSpace::Space space) { return move({{index_, point}}, space); }

MStatus MItMeshVertex::translateBy(const MVector& vector, MSpace::Space space) {
    MStatus status;
    const MPoint now = position(space, &status);
    return status ? setPosition(now + vector, space) : status;
}

MStatus MItMeshVertex::getNormal(MVector& vector, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    const NormalSpace to(object_, space);
    if (to.status) vector = to(mesh_->vertexNormals(NormalWeight::Equal)[static_cast<std::size_t>(index_)]);
    return to.status;
}

MStatus MItMeshVertex::getNormal(MVector& vector, int faceIndex, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    const int corner = among(faceIndex, mesh_->numPolygons()) ? api::cornerOf(*mesh_, faceIndex, index_) : -1;
    if (corner < 0) return MStatus::kInvalidParameter;
    const NormalSpace to(object_, space);
    if (to.status)
        vector = to(mesh_->faceVertexNormals()[static_cast<std::size_t>(mesh_->faceStart(faceIndex) + corner)]);
    return to.status;
}

MStatus MItMeshVertex::getNormals(MVectorArray& vectorArray, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    vectorArray.clear();
    MStatus status;
    for (const int face : mesh_->neighbours().vertexFaces.of(index_)) {
        MVector normal;
        if (status) status = getNormal(normal, face, space);
        if (status) status = vectorArray.append(normal);
    }
    return status;
}

MStatus MItMeshVertex::getNormalIndices(MIntArray& normalIndices) const {
    if (!there()) return MStatus::kFailure;
    return fill(normalIndices, mesh_->neighbours().vertexFaces.of(index_),
                [&](int face) { return mesh_->faceStart(face) + api::cornerOf(*mesh_, face, index_); });
}

MStatus MItMeshVertex::numUVs(int& count, const MString* uvSet) {
    MIntArray ids;
    const MStatus status = getUVIndices(ids, uvSet);
    std::vector<int> all(ids.begin(), ids.end());
    std::sort(all.begin(), all.end());
    if (status) count = static_cast<int>(std::unique(all.begin(), all.end()) - all.begin());
    return status;
}

MStatus MItMeshVertex::setUV(float2& uvPoint, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    std::vector<CornerUv> corners;
    for (const int face : mesh_->neighbours().vertexFaces.of(index_))
        corners.push_back({face, api::cornerOf(*mesh_, face, index_), uvPoint[0], uvPoint[1]});
    mesh_.reset();
    const MStatus status = api::setCornerUvs(object_, uvSet, corners, true);
    look();
    return status;
}

MStatus MItMeshVertex::getUV(float2& uvPoint, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    MStatus status = MStatus::kFailure;
    for (const int face : mesh_->neighbours().vertexFaces.of(index_)) {
        status = getUV(face, uvPoint, uvSet);
        if (status || status == MStatus::kInvalidParameter) break;
    }
    return status;
}

MStatus MItMeshVertex::setUV(int faceId, float2& uvPoint, const MString* uvSet) {
    MFloatArray u(1, uvPoint[0]), v(1, uvPoint[1]);
    MIntArray face(1, faceId);
    return setUVs(u, v, face, uvSet);
}

MStatus MItMeshVertex::getUV(int faceId, float2& uvPoint, const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    if (!among(faceId, mesh_->numPolygons())) return MStatus::kInvalidParameter;
    return api::uvOf(*mesh_, uvSet, faceId, api::cornerOf(*mesh_, faceId, index_), nullptr, &uvPoint[0], &uvPoint[1]);
}

MStatus MItMeshVertex::setUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    if (uArray.length() != faceIds.length() || vArray.length() != faceIds.length()) return MStatus::kInvalidParameter;
    std::vector<CornerUv> corners;
    for (unsigned int i = 0; i < faceIds.length(); ++i) {
        const int corner = among(faceIds[i], mesh_->numPolygons()) ? api::cornerOf(*mesh_, faceIds[i], index_) : -1;
        if (corner < 0) return MStatus::kInvalidParameter;
        corners.push_back({faceIds[i], corner, uArray[i], vArray[i]});
    }
    mesh_.reset();
    const MStatus status = api::setCornerUvs(object_, uvSet, corners, false);
    look();
    return status;
}

MStatus MItMeshVertex::getUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds,
                              const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    uArray.clear();
    vArray.clear();
    faceIds.clear();
    for (const int face : mesh_->neighbours().vertexFaces.of(index_)) {
        float2 uv;
        const MStatus status = getUV(face, uv, uvSet);
        if (status == MStatus::kInvalidParameter) return status;
        if (!status) continue;
        uArray.append(uv[0]);
        vArray.append(uv[1]);
        faceIds.append(face);
    }
    return faceIds.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MItMeshVertex::getUVIndices(MIntArray& uvIndices, const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    const int set = api::uvSetNamed(*mesh_, uvSet);
    if (set < 0) return MStatus::kInvalidParameter;
    uvIndices.clear();
    for (const int face : mesh_->neighbours().vertexFaces.of(index_))
        if (const int id = mesh_->uvId(set, face, api::cornerOf(*mesh_, face, index_)); id >= 0) uvIndices.append(id);
    return MStatus::kSuccess;
}

MStatus MItMeshVertex::updateSurface() { return look(); }
MStatus MItMeshVertex::geomChanged() { return look(); }
MStatus MItMeshVertex::setIndex(int index, int& prevIndex) { return jump(index, prevIndex); }

MStatus MItMeshVertex::getConnectedFaces(MIntArray& faceList) {
    if (!there()) return MStatus::kFailure;
    return fill(faceList, mesh_->neighbours().vertexFaces.of(index_));
}

MStatus MItMeshVertex::getConnectedEdges(MIntArray& edgeList) {
    if (!there()) return MStatus::kFailure;
    return fill(edgeList, mesh_->neighbours().vertexEdges.of(index_));
}

MStatus MItMeshVertex::getConnectedVertices(MIntArray& vertexList) {
    if (!there()) return MStatus::kFailure;
    std::vector<int> others;
    for (const int edge : mesh_->neighbours().vertexEdges.of(index_)) {
        const mesh::Edge& e = mesh_->edges()[static_cast<std::size_t>(edge)];
        others.push_back(e.v1 == index_ ? e.v2 : e.v1);
    }
    std::sort(others.begin(), others.end());
    return fill(vertexList, others);
}

MStatus MItMeshVertex::numConnectedFaces(int& faceCount) const {
    if (!there()) return MStatus::kFailure;
    faceCount = static_cast<int>(mesh_->neighbours().vertexFaces.of(index_).size());
    return MStatus::kSuccess;
}

MStatus MItMeshVertex::numConnectedEdges(int& edgeCount) const {
    if (!there()) return MStatus::kFailure;
    edgeCount = static_cast<int>(mesh_->neighbours().vertexEdges.of(index_).size());
    return MStatus::kSuccess;
}

bool MItMeshVertex::connectedToFace(int faceIndex, MStatus* ReturnStatus) {
    const bool known = there() && among(faceIndex, mesh_->numPolygons());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known && api::cornerOf(*mesh_, faceIndex, index_) >= 0;
}

bool MItMeshVertex::connectedToEdge(int edgeIndex, MStatus* ReturnStatus) {
    int other = 0;
    const bool known = there() && among(edgeIndex, mesh_->numEdges());
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known && getOppositeVertex(other, edgeIndex);
}

MStatus MItMeshVertex::getOppositeVertex(int& vertexId, int edgeId) {
    if (!there()) return MStatus::kFailure;
    if (!among(edgeId, mesh_->numEdges())) return MStatus::kInvalidParameter;
    const mesh::Edge& e = mesh_->edges()[static_cast<std::size_t>(edgeId)];
    if (e.v1 != index_ && e.v2 != index_) return MStatus::kInvalidParameter;
    vertexId = e.v1 == index_ ? e.v2 : e.v1;
    return MStatus::kSuccess;
}

bool MItMeshVertex::onBoundary(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (!there()) return false;
    const auto& around = mesh_->neighbours();
    const auto edges = around.vertexEdges.of(index_);
    return std::any_of(edges.begin(), edges.end(), [&](int e) { return around.edgeFaces.of(e).size() < 2; });
}

const char* MItMeshVertex::className() { return "MItMeshVertex"; }
