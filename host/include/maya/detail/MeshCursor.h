#pragma once

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace host::mesh {
class PolyMesh;
struct Float3;
} // namespace host::mesh

namespace maya_detail {

/// What the iterators over a mesh's components have in common: the mesh as it was at the last look, the components to
/// visit in ascending order, and the one that is current.
class OPENMAYA_EXPORT MeshCursor {
protected:
    MeshCursor();
    MeshCursor(const MeshCursor& other);
    MeshCursor& operator=(const MeshCursor& other);
    ~MeshCursor();

    enum Kind { kVertices, kEdges, kFaces, kCorners };
    /// Visits all, or the component's. kInvalidParameter for something that is no mesh, or a component of another kind.
    MStatus start(Kind kind, const MObject& mesh, const MObject& component);
    MStatus start(Kind kind, const MDagPath& path, const MObject& component);
    MStatus restart();
    bool there() const { return place_ < count_; }
    MStatus forward();
    /// Makes another component of the mesh the current one; the visit goes on behind it.
    MStatus jump(int index, int& previous);
    /// The object of one component.
    MObject componentObject(MFn::Type type, int index, MStatus* status) const;
    MStatus toSpace(MPoint& point, MSpace::Space space) const;
    MStatus fromSpace(MPoint& point, MSpace::Space space) const;
    MStatus place(int vertex, MSpace::Space space, MPoint& out) const;
    /// Moves vertices to places in the space.
    MStatus move(const std::vector<std::pair<int, MPoint>>& points, MSpace::Space space);
    /// Looks at the mesh again, behind a change of it.
    MStatus look();
    int elements() const;

    MObject object_;
    std::shared_ptr<const host::mesh::PolyMesh> mesh_;
    Kind kind_ = kVertices;
    bool all_ = true;
    std::vector<int> list_; ///< what to visit where that is not everything
    int place_ = 0, count_ = 0, index_ = 0;

private:
    MStatus matrix(MSpace::Space space, const MMatrix*& out) const;
    mutable std::optional<MMatrix> world_;
};

} // namespace maya_detail
