#include <maya/MItDag.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MString.h>

using namespace host;
using host::api::Access;
using scene::DagNode;
using scene::Scene;

MItDag::MItDag(TraversalType type, MFn::Type filter, MStatus* ReturnStatus) : type_(type), filter_(filter) {
    root_ = Access::object(Scene::current().world());
    const MStatus status = reset();
    if (ReturnStatus) *ReturnStatus = status;
}

MItDag::~MItDag() = default;

MStatus MItDag::reset() {
    open_.clear();
    pruned_ = false;
    if (!Access::dagNode(root_)) return MStatus::kFailure;
    open_.push_back({root_, 0});
    settle();
    return MStatus::kSuccess;
}

MStatus MItDag::reset(const MObject& object, TraversalType type, MFn::Type filter) {
    open_.clear();
    if (!object.isNull() && !Access::dagNode(object)) return MStatus::kInvalidParameter;
    root_ = object.isNull() ? Access::object(Scene::current().world()) : object;
    type_ = type;
    filter_ = filter;
    return reset();
}

MStatus MItDag::reset(const MDagPath& path, TraversalType type, MFn::Type filter) {
    return path.isValid() ? reset(path.node(), type, filter) : MStatus(MStatus::kInvalidParameter);
}

void MItDag::advance(bool intoChildren) {
    const bool deep = type_ != kBreadthFirst;
    const Entry current = deep ? open_.back() : open_.front();
    if (deep)
        open_.pop_back();
    else
        open_.erase(open_.begin());
    const auto node = Access::dagNode(current.node);
    if (!node || !intoChildren) return;
    const auto& children = node->dag()->children;
    if (deep)
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            open_.push_back({Access::object(*it), current.depth + 1});
    else
        for (DagNode* c : children) open_.push_back({Access::object(c), current.depth + 1});
}

void MItDag::settle() {
    while (!open_.empty()) {
        const MObject& at = type_ != kBreadthFirst ? open_.back().node : open_.front().node;
        if (Access::dagNode(at) && (filter_ == MFn::kInvalid || at.hasFn(filter_))) return;
        advance(true);
    }
}

MObject MItDag::item(MStatus* s) { return currentItem(s); }

MObject MItDag::currentItem(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, open_.empty() ? MStatus::kFailure : MStatus::kSuccess);
    if (open_.empty()) return MObject();
    return type_ != kBreadthFirst ? open_.back().node : open_.front().node;
}

MStatus MItDag::next() {
    if (open_.empty()) return MStatus::kFailure;
    advance(!pruned_);
    pruned_ = false;
    settle();
    return MStatus::kSuccess;
}

MStatus MItDag::prune() {
    if (open_.empty()) return MStatus::kFailure;
    pruned_ = true;
    return MStatus::kSuccess;
}

bool MItDag::isDone(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return open_.empty();
}

MObject MItDag::root(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return root_;
}

unsigned int MItDag::depth(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, open_.empty() ? MStatus::kFailure : MStatus::kSuccess);
    if (open_.empty()) return 0;
    return type_ != kBreadthFirst ? open_.back().depth : open_.front().depth;
}

MItDag::TraversalType MItDag::getType(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return type_;
}

MStatus MItDag::getPath(MDagPath& path) const {
    return MDagPath::getAPathTo(const_cast<MItDag*>(this)->currentItem(), path);
}

MStatus MItDag::getAllPaths(MDagPathArray& paths) const {
    return MDagPath::getAllPathsTo(const_cast<MItDag*>(this)->currentItem(), paths);
}

MString MItDag::fullPathName(MStatus* ReturnStatus) const {
    MDagPath path;
    getPath(path);
    return path.fullPathName(ReturnStatus);
}

MString MItDag::partialPathName(MStatus* ReturnStatus) const {
    MDagPath path;
    getPath(path);
    return path.partialPathName(ReturnStatus);
}

bool MItDag::isInstanced(bool, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

unsigned int MItDag::instanceCount(bool, MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return open_.empty() ? 0 : 1;
}

MStatus MItDag::traverseUnderWorld(bool flag) {
    underWorld_ = flag;
    return MStatus::kSuccess;
}

bool MItDag::willTraverseUnderWorld(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return underWorld_;
}

const char* MItDag::className() { return "MItDag"; }

MItDependencyNodes::MItDependencyNodes(MFn::Type filter, MStatus* ReturnStatus) {
    const MStatus status = reset(filter);
    if (ReturnStatus) *ReturnStatus = status;
}

MStatus MItDependencyNodes::reset(MFn::Type filter) {
    nodes_.clear();
    at_ = 0;
    for (const auto& [serial, n] : Scene::current().nodes()) {
        MObject o = Access::object(n.get());
        if (filter == MFn::kInvalid || o.hasFn(filter)) nodes_.push_back(std::move(o));
    }
    return MStatus::kSuccess;
}

MObject MItDependencyNodes::thisNode(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, at_ < nodes_.size() ? MStatus::kSuccess : MStatus::kFailure);
    return at_ < nodes_.size() ? nodes_[at_] : MObject();
}

MStatus MItDependencyNodes::next() {
    if (at_ >= nodes_.size()) return MStatus::kFailure;
    ++at_;
    return MStatus::kSuccess;
}

bool MItDependencyNodes::isDone(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return at_ >= nodes_.size();
}

MObject MItDependencyNodes::item(MStatus* s) const { return thisNode(s); }
const char* MItDependencyNodes::className() { return "MItDependencyNodes"; }
