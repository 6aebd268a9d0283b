#include <maya/MFnMesh.h>

#include "api/fn/MeshCall.h"
#include "api/fn/NormalSpace.h"

#include <maya/MFloatVectorArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <numeric>

using namespace host;
using api::among;
using api::fill;
using api::NormalSpace;
using api::withMesh;
using mesh::Float3;
using mesh::NormalWeight;
using mesh::PolyMesh;

namespace {

MStatus fillNormals(MFloatVectorArray& out, std::span<const Float3> normals, const NormalSpace& to) {
    return fill(out, normals, [&](const Float3& n) { return MFloatVector(to(n)); });
}

NormalWeight weight(bool angleWeighted) { return angleWeighted ? NormalWeight::Angle : NormalWeight::Equal; }

} // namespace

MStatus MFnMesh::getNormals(MFloatVectorArray& normals, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        return to.status ? fillNormals(normals, m.faceVertexNormals(), to) : to.status;
    });
}

int MFnMesh::numNormals(MStatus* ReturnStatus) const { return numFaceVertices(ReturnStatus); }

MStatus MFnMesh::getNormalIds(MIntArray& normalCounts, MIntArray& normals) const {
    const MStatus status = getVertices(normalCounts, normals);
    if (status) std::iota(normals.begin(), normals.end(), 0);
    return status;
}

MStatus MFnMesh::getFaceNormalIds(int faceIndex, MIntArray& normals) const {
    const MStatus status = getPolygonVertices(faceIndex, normals);
    if (status) std::iota(normals.begin(), normals.end(), api::meshOf(object_)->faceStart(faceIndex));
    return status;
}

MStatus MFnMesh::getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        if (!to.status) return to.status;
        if (!among(faceIndex, m.numPolygons())) return MStatus::kInvalidParameter;
        const auto vertices = m.faceVertices(faceIndex);
        const auto at = std::find(vertices.begin(), vertices.end(), vertexIndex);
        if (at == vertices.end()) return MStatus::kInvalidParameter;
        normal = to(m.faceVertexNormals()[m.faceStart(faceIndex) + (at - vertices.begin())]);
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        if (!to.status) return to.status;
        if (!among(faceIndex, m.numPolygons())) return MStatus::kInvalidParameter;
        return fillNormals(normals, m.faceVertexNormals().subspan(m.faceStart(faceIndex), m.faceSize(faceIndex)), to);
    });
}

MStatus MFnMesh::getVertexNormal(int vertexId, MVector& normal, MSpace::Space space) const {
    return getVertexNormal(vertexId, false, normal, space);
}

MStatus MFnMesh::getVertexNormal(int vertexId, bool angleWeighted, MVector& normal, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        if (!to.status) return to.status;
        if (!among(vertexId, m.numVertices())) return MStatus::kInvalidParameter;
        normal = to(m.vertexNormals(weight(angleWeighted))[vertexId]);
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::getVertexNormals(bool angleWeighted, MFloatVectorArray& normals, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        return to.status ? fillNormals(normals, m.vertexNormals(weight(angleWeighted)), to) : to.status;
    });
}

MStatus MFnMesh::getPolygonNormal(int polygonId, MVector& normal, MSpace::Space space) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        const NormalSpace to(object_, space);
        if (!to.status) return to.status;
        if (!among(polygonId, m.numPolygons())) return MStatus::kInvalidParameter;
        const Imath::V3d n = m.polygonNormal(polygonId);
        normal = to(MVector(n.x, n.y, n.z));
        return MStatus::kSuccess;
    });
}
