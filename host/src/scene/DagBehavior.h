#pragma once

#include "scene/Node.h"

#include <maya/MEulerRotation.h>

namespace host::scene {

/// The matrices of DAG nodes; plug-in locators use it for what their own compute does not know.
class DagBehavior : public NodeBehavior {
public:
    explicit DagBehavior(DagNode& node) : node_(node) {}
    bool compute(Cell& cell) override;
    void upstream(Cell& cell, std::vector<Cell*>& out) override;

protected:
    DagNode& node_;
};

std::unique_ptr<NodeBehavior> makeDagBehavior(Node& node);

/// The order that a rotateOrder attribute's value means; values beyond the six orders wrap around.
inline MEulerRotation::RotationOrder rotationOrder(double value) {
    const int order = static_cast<int>(value) % 6;
    return static_cast<MEulerRotation::RotationOrder>(order < 0 ? order + 6 : order);
}

/// The order of a transform's rotations, evaluated.
MEulerRotation::RotationOrder rotationOrder(DagNode& transform);

/// The matrix of a transform's channels, row vectors: [Sp^-1][S][Sh][Sp][St][Rp^-1][Ra][R][Rp][Rt][T]. A joint's is
/// [S][Ra][R][Jo][Is][T], where Is takes the scale of the joint above out again; a joint has no pivots and no shear.
MMatrix transformMatrix(DagNode& transform);

/// What turns a node behind its rotate channels: a joint's orientation; none for other transforms.
MMatrix jointOrientation(DagNode& transform);

} // namespace host::scene
