#pragma once

#include "mesh/MeshFileData.h"
#include "scene/DagBehavior.h"

#include <map>
#include <memory>
#include <string>

namespace host::scene {

class Scene;

/// A mesh shape: the mesh it stores itself, or the one that is connected to inMesh, moved by its tweaks.
class MeshBehavior final : public DagBehavior {
public:
    using DagBehavior::DagBehavior;
    bool compute(Cell& cell) override;
    void copyFrom(Node& other) override;

    /// What a scene file says of the mesh, until it is built on the first look.
    mesh::MeshFileData file;
    bool fileUsed = false;
    std::shared_ptr<const mesh::PolyMesh> own;
    std::map<int, mesh::Float3> tweaks;

    /// Builds the stored mesh if that is still to be done; reports faults and holes as warnings.
    void settle();
};

/// The node's mesh behaviour; null for nodes of other kinds.
MeshBehavior* meshBehavior(Node& node);

/// The mesh that the shape shows, in its own space; null when it has none.
std::shared_ptr<const mesh::PolyMesh> meshOf(Node& shape);

/// The same before its tweaks.
std::shared_ptr<const mesh::PolyMesh> storedMeshOf(Node& shape);

/// Makes the mesh the shape's own (undoable). Throws SceneError when the shape is fed by a connection, unless the
/// meshes differ in their points alone: then the difference becomes tweaks.
void setMesh(Scene& scene, Node& shape, std::shared_ptr<const mesh::PolyMesh> mesh);

/// A vertex and the place that it is to have, in the mesh's own space.
struct PointMove {
    int vertex;
    mesh::Float3 to;
};
/// Moves points of the mesh that the shape shows (undoable): by tweaks where it is fed by a connection. Takes time for
/// the points that move, not for the mesh, as long as nobody else holds the mesh. Throws SceneError when there is no
/// mesh or no such vertex.
void movePoints(Scene& scene, Node& shape, const std::vector<PointMove>& moves);

/// The mesh in the world's space.
std::shared_ptr<const mesh::PolyMesh> transformed(const mesh::PolyMesh& mesh, const MMatrix& matrix);

std::unique_ptr<NodeBehavior> makeMeshBehavior(Node& node);
std::unique_ptr<NodeBehavior> makePolyCreator(Node& node);

} // namespace host::scene
