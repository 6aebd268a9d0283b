#pragma once

#include "scene/Node.h"

#include <maya/MEulerRotation.h>

namespace host::scene {

/// The matrices of DAG nodes; plug-in locators use it for what their own compute does not know.
class DagBehavior : public NodeBehavior {
public:
    explicit DagBehavior(DagNode& node) : node_(node) {}
    bool compute(Cell& cell) override;

protected:
    DagNode& node_;
};

std::unique_ptr<NodeBehavior> makeDagBehavior(Node& node);

/// The order that a rotateOrder attribute's value means; values beyond the six orders wrap around.
inline MEulerRotation::RotationOrder rotationOrder(double value) {
    const int order = static_cast<int>(value) % 6;
    return static_cast<MEulerRotation::RotationOrder>(order < 0 ? order + 6 : order);
}

/// The matrix of a transform's channels: [Sp^-1][S][Sh][Sp][St][Rp^-1][Ra][R][Rp][Rt][T], row vectors.
MMatrix transformMatrix(DagNode& transform);

} // namespace host::scene
