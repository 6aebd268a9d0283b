#include "Picking.h"

#include "Editor.h"

#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"
#include "scene/Scene.h"

#include <maya/MMatrix.h>

#include <cmath>
#include <functional>
#include <limits>

namespace orvosky::window {
namespace {

using host::scene::DagNode;

constexpr double never = std::numeric_limits<double>::infinity();

/// Where the ray enters the box, in its own lengths; `never` when it does not, or begins inside.
double entry(const std::array<double, 6>& box, const MPoint& from, const MVector& along) {
    double in = -never, out = never;
    const double f[] = {from.x, from.y, from.z}, d[] = {along.x, along.y, along.z};
    for (std::size_t k = 0; k < 3; ++k) {
        if (d[k] == 0) {
            if (f[k] < box[k] || f[k] > box[k + 3]) return never;
            continue;
        }
        double a = (box[k] - f[k]) / d[k], b = (box[k + 3] - f[k]) / d[k];
        if (a > b) std::swap(a, b);
        in = std::max(in, a);
        out = std::min(out, b);
    }
    return in <= out && in > 0 ? in : never;
}

/// Where the ray meets the mesh first (Moeller and Trumbore), in its own lengths.
double meeting(const host::mesh::PolyMesh& mesh, const MPoint& from, const MVector& along) {
    double nearest = never;
    const auto connects = mesh.connects();
    for (const auto& triangle : mesh.triangles()) {
        MPoint corner[3];
        for (std::size_t k = 0; k < 3; ++k) {
            const auto& p = mesh.point(connects[static_cast<std::size_t>(triangle[k])]);
            corner[k] = MPoint(p.x, p.y, p.z);
        }
        const MVector e1 = corner[1] - corner[0], e2 = corner[2] - corner[0], p = along ^ e2;
        const double det = e1 * p;
        if (std::abs(det) < 1e-300) continue;
        const MVector s = from - corner[0], q = s ^ e1;
        const double u = (s * p) / det, v = (along * q) / det, t = (e2 * q) / det;
        if (u >= 0 && v >= 0 && u + v <= 1 && t > 0) nearest = std::min(nearest, t);
    }
    return nearest;
}

double volumeOf(const std::array<double, 6>& box, const MMatrix& toWorld) {
    return (box[3] - box[0]) * (box[4] - box[1]) * (box[5] - box[2]) * std::abs(toWorld.det3x3());
}

} // namespace

DagNode* shapeAt(const MPoint& eye, const MVector& direction) {
    struct Boxed {
        DagNode* shape;
        double at, volume;
    };
    DagNode* mesh = nullptr;
    double meshAt = never;
    std::vector<Boxed> boxes;
    const std::function<void(DagNode&)> look = [&](DagNode& node) {
        if (!node.visible() || node.intermediate() || node.templated()) return;
        for (DagNode* child : node.children) look(*child);
        if (!node.isShape()) return;
        const MMatrix toWorld = node.worldMatrix();
        if (toWorld.det3x3() == 0) return;
        // The ray keeps its measure: a point of it in the node's space is as many lengths away as in the world.
        const MMatrix toNode = toWorld.inverse();
        const MPoint from = eye * toNode;
        const MPoint tip = (eye + direction) * toNode;
        const MVector along = tip - from;
        if (const auto held = host::scene::meshOf(node)) {
            if (const double t = meeting(*held, from, along); t < meshAt) {
                meshAt = t;
                mesh = &node;
            }
        } else if (const auto box = node.behavior ? node.behavior->box() : std::nullopt) {
            if (const double t = entry(*box, from, along); t < never)
                boxes.push_back({&node, t, volumeOf(*box, toWorld)});
        }
    };
    if (DagNode* world = Editor::scene().world())
        for (DagNode* child : world->children) look(*child);
    const Boxed* best = nullptr;
    for (const Boxed& b : boxes)
        if (b.at < meshAt && (!best || b.volume < best->volume)) best = &b;
    return best ? best->shape : mesh;
}

} // namespace orvosky::window
