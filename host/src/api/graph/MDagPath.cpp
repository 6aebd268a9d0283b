#include <maya/MDagPath.h>

#include "api/graph/DagTarget.h"
#include "values/StatusOut.h"
#include "values/Text.h"

#include <maya/MDagPathArray.h>
#include <maya/MMatrix.h>

using namespace host;
using host::api::Access;
using host::api::DagTarget;
using host::api::fromText;
using scene::DagNode;

namespace {

std::vector<DagNode*> shapesBelow(const DagNode& node) {
    std::vector<DagNode*> shapes;
    for (DagNode* c : node.children)
        if (c->isShape()) shapes.push_back(c);
    return shapes;
}

} // namespace

MDagPath::MDagPath() = default;
MDagPath::MDagPath(const MDagPath& src) = default;
MDagPath::~MDagPath() = default;
MDagPath& MDagPath::operator=(const MDagPath& src) = default;

MStatus MDagPath::getAllPathsTo(const MObject& node, MDagPathArray& pathArray) {
    pathArray.clear();
    MDagPath path;
    const MStatus status = getAPathTo(node, path);
    return status ? pathArray.append(path) : status;
}

MStatus MDagPath::getAPathTo(const MObject& node, MDagPath& path) {
    const auto n = Access::dagNode(node);
    if (!n) return MStatus::kInvalidParameter;
    path.node_ = node;
    return MStatus::kSuccess;
}

MDagPath MDagPath::getAPathTo(const MObject& node, MStatus* ReturnStatus) {
    MDagPath path;
    const MStatus status = getAPathTo(node, path);
    if (ReturnStatus) *ReturnStatus = status;
    return path;
}

bool MDagPath::hasFn(MFn::Type type, MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    if (!t) return false;
    if (node_.hasFn(type)) return true;
    // A transform's path stands for the one shape below it, too.
    const auto shapes = t->isTransform() ? shapesBelow(*t.dag) : std::vector<DagNode*>();
    return shapes.size() == 1 && Access::object(shapes.front()).hasFn(type);
}

MFn::Type MDagPath::apiType(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? node_.apiType() : MFn::kInvalid;
}

bool MDagPath::isValid(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    const DagTarget t(node_, nullptr);
    return t && t->inScene;
}

MObject MDagPath::node(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? node_ : MObject();
}

MObject MDagPath::transform(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    if (!t) return MObject();
    return Access::object(t->isShape() ? t->parent : t.dag);
}

unsigned int MDagPath::length(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    unsigned int n = 0;
    for (const DagNode* d = t.dag; d && !d->isWorld(); d = d->parent) ++n;
    return n;
}

MStatus MDagPath::extendToShape() {
    const DagTarget t(node_, nullptr);
    if (!t) return MStatus::kFailure;
    if (t->isShape()) return MStatus::kSuccess;
    const auto shapes = shapesBelow(*t.dag);
    if (shapes.size() != 1) return MStatus::kFailure;
    node_ = Access::object(shapes.front());
    return MStatus::kSuccess;
}

MStatus MDagPath::extendToShapeDirectlyBelow(unsigned int index) {
    const DagTarget t(node_, nullptr);
    if (!t) return MStatus::kFailure;
    const auto shapes = shapesBelow(*t.dag);
    if (index >= shapes.size()) return MStatus::kInvalidParameter;
    node_ = Access::object(shapes[index]);
    return MStatus::kSuccess;
}

MStatus MDagPath::numberOfShapesDirectlyBelow(unsigned int& num) const {
    const DagTarget t(node_, nullptr);
    if (!t) return MStatus::kFailure;
    num = static_cast<unsigned int>(shapesBelow(*t.dag).size());
    return MStatus::kSuccess;
}

MStatus MDagPath::push(const MObject& child) {
    const DagTarget t(node_, nullptr);
    const auto c = Access::dagNode(child);
    if (!c || (t && c->dag()->parent != t.dag)) return MStatus::kInvalidParameter;
    node_ = child;
    return MStatus::kSuccess;
}

MStatus MDagPath::pop(unsigned int num) {
    const DagTarget t(node_, nullptr);
    DagNode* d = t.dag;
    for (; d && num > 0; --num) d = d->parent;
    if (!d || d->isWorld()) return MStatus::kFailure;
    node_ = Access::object(d);
    return MStatus::kSuccess;
}

unsigned int MDagPath::childCount(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? static_cast<unsigned int>(t->children.size()) : 0;
}

MObject MDagPath::child(unsigned int index, MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    if (!t || index >= t->children.size()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    return Access::object(t->children[index]);
}

MMatrix MDagPath::inclusiveMatrix(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? t->worldMatrix() : MMatrix();
}

MMatrix MDagPath::exclusiveMatrix(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? t->parentMatrix() : MMatrix();
}

MMatrix MDagPath::inclusiveMatrixInverse(MStatus* ReturnStatus) const {
    return inclusiveMatrix(ReturnStatus).inverse();
}

MMatrix MDagPath::exclusiveMatrixInverse(MStatus* ReturnStatus) const {
    return exclusiveMatrix(ReturnStatus).inverse();
}

bool MDagPath::operator==(const MDagPath& src) const { return node_ == src.node_; }

MStatus MDagPath::set(const MDagPath& src) {
    node_ = src.node_;
    return MStatus::kSuccess;
}

unsigned int MDagPath::pathCount(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? 1 : 0;
}

MStatus MDagPath::getPath(MDagPath& path, unsigned int i) const {
    if (i > 0) return MStatus::kInvalidParameter;
    return path.set(*this);
}

MString MDagPath::fullPathName(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? fromText(t->fullPath()) : MString();
}

MString MDagPath::partialPathName(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return t ? fromText(t->partialPath()) : MString();
}

bool MDagPath::isInstanced(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return false;
}

unsigned int MDagPath::instanceNumber(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    return 0;
}

bool MDagPath::isVisible(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    for (DagNode* d = t.dag; d; d = d->parent)
        if (!d->visible() || d->intermediate()) return false;
    return t.dag != nullptr;
}

bool MDagPath::isTemplated(MStatus* ReturnStatus) const {
    const DagTarget t(node_, ReturnStatus);
    for (DagNode* d = t.dag; d; d = d->parent)
        if (d->templated()) return true;
    return false;
}

const char* MDagPath::className() { return "MDagPath"; }
