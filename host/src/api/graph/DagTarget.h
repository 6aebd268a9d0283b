#pragma once

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

namespace host::api {

/// The DAG node behind an object of the API, held for the length of a call. `out` tells whether there is one.
struct DagTarget {
    std::shared_ptr<scene::Node> keep;
    scene::DagNode* dag;
    DagTarget(const MObject& o, MStatus* out) : keep(Access::dagNode(o)), dag(keep ? keep->dag() : nullptr) {
        setStatus(out, dag ? MStatus::kSuccess : MStatus::kFailure);
    }
    explicit operator bool() const { return dag != nullptr; }
    scene::DagNode* operator->() const { return dag; }
};

} // namespace host::api
