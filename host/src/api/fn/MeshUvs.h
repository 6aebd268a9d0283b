#pragma once

#include "api/fn/MeshCall.h"
#include "mesh/PolyMesh.h"
#include "values/Text.h"

#include <maya/MString.h>

#include <algorithm>

namespace host::api {

/// The index of the set; that of the current one for null, -1 when there is none of that name.
inline int uvSetNamed(const mesh::PolyMesh& mesh, const MString* name) {
    return mesh.findUvSet(name ? toText(*name) : std::string());
}

/// The corner of the face at the vertex, counted from 0; -1 when the vertex is none of the face's.
inline int cornerOf(const mesh::PolyMesh& mesh, int face, int vertex) {
    const auto vertices = mesh.faceVertices(face);
    const auto at = std::find(vertices.begin(), vertices.end(), vertex);
    return at == vertices.end() ? -1 : static_cast<int>(at - vertices.begin());
}

/// The UV of a face's corner; kFailure when it has none.
inline MStatus uvOf(const mesh::PolyMesh& mesh, const MString* set, int face, int corner, int* id, float* u, float* v) {
    const int at = uvSetNamed(mesh, set);
    if (at < 0 || corner < 0) return MStatus::kInvalidParameter;
    const int found = mesh.uvId(at, face, corner);
    if (found < 0) return MStatus::kFailure;
    if (id) *id = found;
    float x = 0, y = 0;
    mesh.uvAt(at, face, corner, x, y);
    if (u) *u = x;
    if (v) *v = y;
    return MStatus::kSuccess;
}

/// A corner that is to get a UV.
struct CornerUv {
    int face, corner;
    float u, v;
};

/// Gives corners UVs of their own, or (`shared`) all of them the first one's. A UV that nobody else around the vertex
/// uses is changed in place; others get a new one.
MStatus setCornerUvs(const MObject& object, const MString* set, const std::vector<CornerUv>& corners, bool shared);

} // namespace host::api
