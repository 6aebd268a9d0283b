#pragma once

#include "api/graph/Handle.h"
#include "mesh/PolyMesh.h"

#include <maya/MMatrix.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

#include <functional>
#include <memory>

namespace host::api {

/// What a change of a mesh touches: shapes that are fed by a connection take changes of points alone.
enum class MeshChange { Points, Any };

/// The mesh of a shape node or of mesh data; null when there is none, or the node is not in the scene any more.
std::shared_ptr<const mesh::PolyMesh> meshOf(const MObject& object);

/// The data that the object is; null when it is something else.
scene::MeshData* meshData(const MObject& object);

/// Replaces the whole mesh (undoable for shapes).
MStatus replaceMesh(const MObject& object, std::shared_ptr<const mesh::PolyMesh> mesh);

/// Runs a change on the mesh, in place where nobody else holds it and nothing is recorded, else on a copy that then
/// takes its place. A change that gives a failing status must have left the mesh alone.
MStatus changeMesh(const MObject& object, MeshChange kind, const std::function<MStatus(mesh::PolyMesh&)>& change);

/// The matrix from the mesh's own space to the one asked for. kInvalidParameter where there is none: an unknown space,
/// or the world for data.
MStatus matrixTo(const MObject& object, MSpace::Space space, MMatrix& matrix);

} // namespace host::api
