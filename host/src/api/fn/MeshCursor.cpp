#include <maya/detail/MeshCursor.h>

#include "api/fn/MeshAccess.h"
#include "api/graph/Handle.h"
#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"
#include "values/StatusOut.h"

#include <maya/MFnMesh.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::ComponentObject;
using scene::ComponentKind;

namespace maya_detail {
namespace {

/// The corners of the faces, or at the vertices, of a component.
std::vector<int> cornersOf(const mesh::PolyMesh& mesh, ComponentKind kind, const std::vector<int>& elements) {
    std::vector<int> corners;
    if (kind == ComponentKind::Face) {
        for (const int face : elements)
            for (int corner = mesh.faceStart(face); corner < mesh.faceStart(face + 1); ++corner)
                corners.push_back(corner);
        return corners;
    }
    std::vector<bool> wanted(static_cast<std::size_t>(mesh.numVertices()));
    for (const int vertex : elements) wanted[static_cast<std::size_t>(vertex)] = true;
    for (int corner = 0; corner < mesh.numFaceVertices(); ++corner)
        if (wanted[static_cast<std::size_t>(mesh.connects()[corner])]) corners.push_back(corner);
    return corners;
}

} // namespace

MeshCursor::MeshCursor() = default;
MeshCursor::MeshCursor(const MeshCursor& other) = default;
MeshCursor& MeshCursor::operator=(const MeshCursor& other) = default;
MeshCursor::~MeshCursor() = default;

int MeshCursor::elements() const {
    switch (kind_) {
    case kVertices: return mesh_->numVertices();
    case kEdges: return mesh_->numEdges();
    case kFaces: return mesh_->numPolygons();
    case kCorners: return mesh_->numFaceVertices();
    }
    return 0;
}

MStatus MeshCursor::start(Kind kind, const MObject& mesh, const MObject& component) {
    object_ = mesh;
    mesh_ = api::meshOf(mesh);
    kind_ = kind;
    all_ = true;
    list_.clear();
    count_ = place_ = index_ = 0;
    world_.reset();
    if (!mesh_) return MStatus::kInvalidParameter;
    const auto* held = component.isNull() ? nullptr : Access::component(component);
    if (!component.isNull()) {
        const auto fits = [&](ComponentKind wanted) { return held && held->type() == wanted; };
        const bool good = kind == kVertices ? fits(ComponentKind::Vertex)
                          : kind == kEdges  ? fits(ComponentKind::Edge)
                          : kind == kFaces  ? fits(ComponentKind::Face)
                                            : fits(ComponentKind::Face) || fits(ComponentKind::Vertex);
        if (!good) {
            mesh_.reset();
            return MStatus::kInvalidParameter;
        }
        all_ = held->complete;
    }
    if (!all_) {
        // A component may have been made for another mesh: what this one does not have is left out.
        const int most = scene::componentCount(*mesh_, held->type());
        const std::vector<int>& indices = held->indices();
        list_.assign(indices.begin(), std::lower_bound(indices.begin(), indices.end(), most));
        if (kind == kCorners) list_ = cornersOf(*mesh_, held->type(), list_);
    }
    return restart();
}

MStatus MeshCursor::start(Kind kind, const MDagPath& path, const MObject& component) {
    MFnMesh shape;
    shape.setObject(path);
    return start(kind, shape.object(), component);
}

MStatus MeshCursor::restart() {
    if (!mesh_) return MStatus::kFailure;
    count_ = all_ ? elements() : static_cast<int>(list_.size());
    place_ = 0;
    index_ = all_ || list_.empty() ? 0 : list_.front();
    return MStatus::kSuccess;
}

MStatus MeshCursor::forward() {
    if (place_ >= count_) return MStatus::kFailure;
    ++place_;
    index_ = all_ ? place_ : place_ < count_ ? list_[static_cast<std::size_t>(place_)] : 0;
    return MStatus::kSuccess;
}

MStatus MeshCursor::jump(int index, int& previous) {
    if (!mesh_) return MStatus::kFailure;
    if (index < 0 || index >= elements()) return MStatus::kInvalidParameter;
    previous = index_;
    if (all_) {
        place_ = index;
    } else {
        const auto at = std::lower_bound(list_.begin(), list_.end(), index);
        // Something outside of the component joins it, so that the visit goes on from there.
        place_ = static_cast<int>(at - list_.begin());
        if (at == list_.end() || *at != index) list_.insert(at, index);
        count_ = static_cast<int>(list_.size());
    }
    index_ = index;
    return MStatus::kSuccess;
}

MObject MeshCursor::componentObject(MFn::Type type, int index, MStatus* status) const {
    setStatus(status, there() ? MStatus::kSuccess : MStatus::kFailure);
    if (!there()) return MObject();
    const ComponentKind kind = type == MFn::kMeshEdgeComponent      ? ComponentKind::Edge
                               : type == MFn::kMeshPolygonComponent ? ComponentKind::Face
                                                                    : ComponentKind::Vertex;
    return Access::object(std::make_shared<ComponentObject>(scene::Components(kind, {{index, index}})));
}

MStatus MeshCursor::matrix(MSpace::Space space, const MMatrix*& out) const {
    out = nullptr;
    if (space != MSpace::kWorld) {
        MMatrix unused;
        return api::matrixTo(object_, space, unused);
    }
    if (!world_) {
        MMatrix matrix;
        if (const MStatus status = api::matrixTo(object_, space, matrix); !status) return status;
        world_ = matrix;
    }
    out = &*world_;
    return MStatus::kSuccess;
}

MStatus MeshCursor::toSpace(MPoint& point, MSpace::Space space) const {
    const MMatrix* m = nullptr;
    const MStatus status = matrix(space, m);
    if (m) point *= *m;
    return status;
}

MStatus MeshCursor::fromSpace(MPoint& point, MSpace::Space space) const {
    const MMatrix* m = nullptr;
    const MStatus status = matrix(space, m);
    point.w = 1;
    if (m) point *= m->inverse();
    return status;
}

MStatus MeshCursor::place(int vertex, MSpace::Space space, MPoint& out) const {
    if (!there()) return MStatus::kFailure;
    const mesh::Float3& p = mesh_->point(vertex);
    out = MPoint(p.x, p.y, p.z);
    return space == MSpace::kObject ? MStatus(MStatus::kSuccess) : toSpace(out, space);
}

MStatus MeshCursor::move(const std::vector<std::pair<int, MPoint>>& points, MSpace::Space space) {
    if (!there()) return MStatus::kFailure;
    std::vector<scene::PointMove> moves;
    moves.reserve(points.size());
    for (const auto& [vertex, point] : points) {
        MPoint own = point;
        if (const MStatus status = fromSpace(own, space); !status) return status;
        moves.push_back({vertex, {static_cast<float>(own.x), static_cast<float>(own.y), static_cast<float>(own.z)}});
    }
    // Held here, the mesh would be copied to be changed.
    mesh_.reset();
    MStatus status;
    if (const auto shape = Access::node(object_))
        status = api::guarded([&] { scene::movePoints(shape->scene, *shape, moves); });
    else
        status = api::changeMesh(object_, api::MeshChange::Points, [&](mesh::PolyMesh& mesh) -> MStatus {
            for (const auto& m : moves)
                if (m.vertex >= mesh.numVertices()) return MStatus::kFailure;
            for (const auto& m : moves) mesh.setPoint(m.vertex, m.to);
            return MStatus::kSuccess;
        });
    const MStatus looked = look();
    return status ? looked : status;
}

MStatus MeshCursor::look() {
    world_.reset();
    const auto now = api::meshOf(object_);
    mesh_ = now;
    const int most = now ? elements() : 0;
    if (all_)
        count_ = most;
    else
        list_.erase(std::lower_bound(list_.begin(), list_.end(), most), list_.end());
    if (!all_) count_ = static_cast<int>(list_.size());
    return now ? MStatus::kSuccess : MStatus::kFailure;
}

} // namespace maya_detail
