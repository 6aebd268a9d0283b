#include "api/fn/MeshAccess.h"

#include "scene/MeshNode.h"

#include <new>

namespace host::api {
namespace {

using mesh::PolyMesh;
using MeshPtr = std::shared_ptr<const PolyMesh>;

/// The shape node; null when it is gone.
scene::NodePtr shapeOf(const MObject& object) {
    auto node = Access::node(object);
    return node && node->inScene && scene::meshBehavior(*node) ? node : nullptr;
}

/// Makes sure that nobody else holds the mesh, and gives access to it. Meshes are made without const.
PolyMesh& own(MeshPtr& mesh) {
    if (mesh.use_count() > 1) mesh = std::make_shared<PolyMesh>(*mesh);
    return const_cast<PolyMesh&>(*mesh);
}

MStatus changeCopy(scene::Node& shape, const PolyMesh& mesh, const std::function<MStatus(PolyMesh&)>& change) {
    auto copy = std::make_shared<PolyMesh>(mesh);
    const MStatus status = change(*copy);
    return status ? guarded([&] { scene::setMesh(shape.scene, shape, std::move(copy)); }) : status;
}

MStatus changeShape(scene::Node& shape, MeshChange kind, const std::function<MStatus(PolyMesh&)>& change) {
    MeshPtr mesh = scene::meshOf(shape);
    if (!mesh) return MStatus::kFailure;
    auto* behavior = scene::meshBehavior(shape);
    const bool fed = shape.cell("inMesh").source;
    if (fed && kind != MeshChange::Points) return MStatus::kFailure;
    auto* shown = std::get_if<scene::DataPtr>(&shape.cell("outMesh").value);
    if (fed || shape.scene.undo.recording() || mesh != behavior->own || !shown || shown->use_count() != 1)
        return changeCopy(shape, *mesh, change);
    // Only the shape itself knows the mesh now. It shows it again when it is next looked at.
    auto& data = static_cast<scene::MeshData&>(**shown);
    mesh.reset();
    data.mesh.reset();
    struct ShowAgain {
        scene::MeshData& data;
        const MeshPtr& mesh;
        ~ShowAgain() { data.mesh = mesh; }
    };
    MStatus status;
    {
        const ShowAgain again{data, behavior->own};
        status = change(own(behavior->own));
    }
    return status ? guarded([&] { scene::setMesh(shape.scene, shape, behavior->own); }) : status;
}

} // namespace

scene::MeshData* meshData(const MObject& object) {
    auto* data = Access::data(object);
    const auto* held = data ? std::get_if<scene::DataPtr>(&data->value) : nullptr;
    return held ? dynamic_cast<scene::MeshData*>(held->get()) : nullptr;
}

MeshPtr meshOf(const MObject& object) {
    if (const auto* data = meshData(object)) return data->mesh;
    const auto shape = shapeOf(object);
    return shape ? scene::meshOf(*shape) : nullptr;
}

MStatus replaceMesh(const MObject& object, MeshPtr mesh) {
    if (auto* data = meshData(object)) {
        data->mesh = std::move(mesh);
        return MStatus::kSuccess;
    }
    const auto shape = shapeOf(object);
    if (!shape || shape->cell("inMesh").source) return MStatus::kFailure;
    return guarded([&] { scene::setMesh(shape->scene, *shape, std::move(mesh)); });
}

MStatus changeMesh(const MObject& object, MeshChange kind, const std::function<MStatus(PolyMesh&)>& change) {
    try {
        if (auto* data = meshData(object)) return data->mesh ? change(own(data->mesh)) : MStatus::kFailure;
        const auto shape = shapeOf(object);
        return shape ? changeShape(*shape, kind, change) : MStatus::kFailure;
    } catch (const std::bad_alloc&) {
        return MStatus::kInsufficientMemory;
    }
}

MStatus matrixTo(const MObject& object, MSpace::Space space, MMatrix& matrix) {
    matrix.setToIdentity();
    if (space <= MSpace::kInvalid || space >= MSpace::kLast) return MStatus::kInvalidParameter;
    if (space != MSpace::kWorld) return MStatus::kSuccess;
    const auto shape = shapeOf(object);
    if (!shape) return MStatus::kInvalidParameter;
    matrix = shape->dag()->worldMatrix();
    return MStatus::kSuccess;
}

} // namespace host::api
