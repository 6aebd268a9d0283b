#include <maya/MItMeshFaceVertex.h>

#include "api/fn/MeshUvs.h"
#include "api/fn/NormalSpace.h"

using namespace host;
using api::among;
using api::NormalSpace;

MItMeshFaceVertex::MItMeshFaceVertex(const MObject& polyObject, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kCorners, polyObject, MObject()).statusCode());
}

MItMeshFaceVertex::MItMeshFaceVertex(const MDagPath& polyObject, MObject& component, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, start(kCorners, polyObject, component).statusCode());
}

MItMeshFaceVertex::~MItMeshFaceVertex() = default;

bool MItMeshFaceVertex::isDone(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, mesh_ ? MStatus::kSuccess : MStatus::kFailure);
    return !there();
}

MStatus MItMeshFaceVertex::next() { return forward(); }
MStatus MItMeshFaceVertex::reset() { return restart(); }
MStatus MItMeshFaceVertex::reset(const MObject& polyObject) { return start(kCorners, polyObject, MObject()); }
MStatus MItMeshFaceVertex::reset(const MDagPath& polyObject, MObject& component) {
    return start(kCorners, polyObject, component);
}

int MItMeshFaceVertex::face() const {
    int low = 0, high = mesh_->numPolygons();
    while (high - low > 1) {
        const int middle = low + (high - low) / 2;
        (mesh_->faceStart(middle) <= index_ ? low : high) = middle;
    }
    return low;
}

int MItMeshFaceVertex::vertId(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there() ? mesh_->connects()[static_cast<std::size_t>(index_)] : 0;
}

int MItMeshFaceVertex::faceId(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there() ? face() : 0;
}

int MItMeshFaceVertex::faceVertId(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return there() ? index_ - mesh_->faceStart(face()) : 0;
}

MPoint MItMeshFaceVertex::position(MSpace::Space space, MStatus* ReturnStatus) {
    MPoint point;
    const MStatus status = place(vertId(), space, point);
    if (ReturnStatus) *ReturnStatus = status;
    return point;
}

MStatus MItMeshFaceVertex::getNormal(MVector& normal, MSpace::Space space) const {
    if (!there()) return MStatus::kFailure;
    const NormalSpace to(object_, space);
    if (to.status) normal = to(mesh_->faceVertexNormals()[static_cast<std::size_t>(index_)]);
    return to.status;
}

int MItMeshFaceVertex::normalId(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, there() ? MStatus::kSuccess : MStatus::kFailure);
    return index_;
}

bool MItMeshFaceVertex::hasUVs(MStatus* ReturnStatus) const { return hasUVs(MString(), ReturnStatus); }

bool MItMeshFaceVertex::hasUVs(const MString& uvSet, MStatus* ReturnStatus) const {
    const int set = there() ? api::uvSetNamed(*mesh_, &uvSet) : -1;
    setStatus(ReturnStatus, set >= 0 ? MStatus::kSuccess : there() ? MStatus::kInvalidParameter : MStatus::kFailure);
    return set >= 0 && mesh_->uvId(set, face(), faceVertId()) >= 0;
}

MStatus MItMeshFaceVertex::getUV(float2& uvPoint, const MString* uvSet) const {
    if (!there()) return MStatus::kFailure;
    return api::uvOf(*mesh_, uvSet, face(), faceVertId(), nullptr, &uvPoint[0], &uvPoint[1]);
}

MStatus MItMeshFaceVertex::getUVIndex(int& index, const MString* uvSet) {
    float u = 0, v = 0;
    return getUVIndex(index, u, v, uvSet);
}

MStatus MItMeshFaceVertex::getUVIndex(int& index, float& u, float& v, const MString* uvSet) {
    if (!there()) return MStatus::kFailure;
    return api::uvOf(*mesh_, uvSet, face(), faceVertId(), &index, &u, &v);
}

MStatus MItMeshFaceVertex::updateSurface() { return look(); }
MStatus MItMeshFaceVertex::geomChanged() { return look(); }

MStatus MItMeshFaceVertex::setIndex(int faceId, int vertFaceId, int& prevFaceId, int& prevVertId) {
    if (!mesh_) return MStatus::kFailure;
    if (!among(faceId, mesh_->numPolygons()) || !among(vertFaceId, mesh_->faceSize(faceId)))
        return MStatus::kInvalidParameter;
    prevFaceId = this->faceId();
    prevVertId = faceVertId();
    int unused = 0;
    return jump(mesh_->faceStart(faceId) + vertFaceId, unused);
}

const char* MItMeshFaceVertex::className() { return "MItMeshFaceVertex"; }
