#pragma once

#include "api/graph/Handle.h"
#include "scene/DagBehavior.h"

#include <maya/MFnPlugin.h>
#include <maya/MPxNode.h>

#include <memory>

namespace host::api {

/// The behaviour of a node that a plug-in brought: forwards to its MPxNode, and keeps its exceptions from the host.
class PxBehavior final : public scene::NodeBehavior {
public:
    PxBehavior(scene::Node& node, std::unique_ptr<MPxNode> user);
    ~PxBehavior() override;
    bool compute(scene::Cell& cell) override;
    void postConstructor() override;
    void dependents(scene::Cell& cell, std::vector<scene::Cell*>& more) override;
    std::optional<bool> legal(scene::Cell& cell, scene::Cell& other, bool asSource, bool making) override;
    void connectionChanged(scene::Cell& cell, scene::Cell& other, bool asSource, bool made) override;
    bool setInternal(scene::Cell& cell, const scene::Value& value) override;
    bool getInternal(scene::Cell& cell) override;
    void copyFrom(scene::Node& other) override;
    std::optional<std::array<double, 6>> box() override;
    std::optional<Drawing> drawing() override;
    void draw(unsigned long view) override;
    MPxNode* user() const { return user_.get(); }

private:
    scene::Node& node_;
    std::unique_ptr<scene::NodeBehavior> base_; ///< for what the plug-in does not know; null outside the DAG
    std::unique_ptr<MPxNode> user_;
};

/// Registers a node type of a plug-in and runs its initialisation function.
MStatus registerPluginType(Plugin& plugin, const std::string& name, unsigned id, MCreatorFunction create,
                           MInitializeFunction initialize, MPxNode::Type kind, const std::string& classification);

} // namespace host::api
