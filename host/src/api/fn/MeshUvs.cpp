#include "api/fn/MeshUvs.h"

#include <unordered_map>

namespace host::api {
namespace {

/// Whether a corner at the vertex of another face has the UV.
bool usedElsewhere(const mesh::PolyMesh& mesh, int set, const CornerUv& at, int id) {
    const int vertex = mesh.faceVertices(at.face)[static_cast<std::size_t>(at.corner)];
    for (const int face : mesh.neighbours().vertexFaces.of(vertex)) {
        const auto vertices = mesh.faceVertices(face);
        for (std::size_t corner = 0; corner < vertices.size(); ++corner)
            if ((face != at.face || static_cast<int>(corner) != at.corner) &&
                mesh.uvId(set, face, static_cast<int>(corner)) == id)
                return true;
    }
    return false;
}

} // namespace

MStatus setCornerUvs(const MObject& object, const MString* set, const std::vector<CornerUv>& corners, bool shared) {
    if (corners.empty()) return MStatus::kInvalidParameter;
    return changeMesh(object, MeshChange::Any, [&](mesh::PolyMesh& mesh) -> MStatus {
        const int at = uvSetNamed(mesh, set);
        if (at < 0) return MStatus::kInvalidParameter;
        for (const CornerUv& c : corners)
            if (!among(c.face, mesh.numPolygons()) || !among(c.corner, mesh.faceSize(c.face)))
                return MStatus::kInvalidParameter;
        if (shared) {
            int id = -1;
            for (const CornerUv& c : corners)
                if (id < 0) id = mesh.uvId(at, c.face, c.corner);
            if (id < 0)
                id = mesh.addUv(at, corners.front().u, corners.front().v);
            else
                mesh.setUv(at, id, corners.front().u, corners.front().v);
            for (const CornerUv& c : corners) mesh.assignUv(at, c.face, c.corner, id);
            return MStatus::kSuccess;
        }
        for (const CornerUv& c : corners) {
            const int id = mesh.uvId(at, c.face, c.corner);
            if (id >= 0 && !usedElsewhere(mesh, at, c, id))
                mesh.setUv(at, id, c.u, c.v);
            else
                mesh.assignUv(at, c.face, c.corner, mesh.addUv(at, c.u, c.v));
        }
        return MStatus::kSuccess;
    });
}

} // namespace host::api
