#include <maya/MFnDagNode.h>

#include "api/fn/FnSupport.h"
#include "api/graph/DagTarget.h"
#include "mesh/PolyMesh.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"
#include "values/Text.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MTypeId.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::DagTarget;
using host::api::fromText;
using host::api::toText;
using scene::DagNode;
using scene::Scene;

ORVO_DEFINE_FN(MFnDagNode, MFn::kDagNode)
ORVO_FN_NAME(MFnDagNode)

MFnDagNode::MFnDagNode(const MDagPath& object, MStatus* ret) {
    const MStatus status = attach(object.node(), MFn::kDagNode);
    if (ret) *ret = status;
}

MStatus MFnDagNode::setObject(const MDagPath& objectPath) { return attach(objectPath.node(), type()); }
MStatus MFnDagNode::setObject(MObject& object) { return attach(object, type()); }
MStatus MFnDagNode::setObject(const MObject& object) { return attach(object, type()); }

namespace {

MObject createDag(const scene::NodeType* type, const std::string& name, const MObject& parent, MStatus* out) {
    const auto above = Access::dagNode(parent);
    if (!type || !type->isDag() || (!parent.isNull() && !above)) {
        setStatus(out, MStatus::kInvalidParameter);
        return MObject();
    }
    try {
        auto node = Scene::current().createNode(*type, name, above ? above->dag() : nullptr);
        setStatus(out, MStatus::kSuccess);
        const bool madeTransform = !above && type->kind == scene::NodeType::Kind::Shape;
        return Access::object(madeTransform ? node->dag()->parent : node.get());
    } catch (const scene::SceneError&) {
        setStatus(out, MStatus::kFailure);
        return MObject();
    }
}

DagNode* dagOf(const MObject& o) {
    const auto n = Access::dagNode(o);
    return n ? n->dag() : nullptr;
}

/// The box of one shape in its own space; false when it has none.
bool shapeBox(DagNode& shape, MBoundingBox& box) {
    if (const auto mesh = scene::meshOf(shape)) {
        const auto b = mesh->boundingBox();
        if (b.empty) return false;
        box = MBoundingBox(MPoint(b.min.x, b.min.y, b.min.z), MPoint(b.max.x, b.max.y, b.max.z));
        return true;
    }
    if (const auto b = shape.behavior ? shape.behavior->box() : std::nullopt) {
        box = MBoundingBox(MPoint((*b)[0], (*b)[1], (*b)[2]), MPoint((*b)[3], (*b)[4], (*b)[5]));
        return true;
    }
    return false;
}

/// The box of everything at and below the node, by the matrix from the node's own space.
void gatherBox(DagNode& node, const MMatrix& matrix, MBoundingBox& total, bool& any) {
    MBoundingBox box;
    if (node.isShape()) {
        if (!shapeBox(node, box)) return;
        box.transformUsing(matrix);
        if (any)
            total.expand(box);
        else
            total = box;
        any = true;
        return;
    }
    for (DagNode* child : node.children) gatherBox(*child, child->localMatrix() * matrix, total, any);
}

} // namespace

MObject MFnDagNode::create(const MTypeId& typeId, MObject& parent, MStatus* s) {
    return create(typeId, MString(), parent, s);
}
MObject MFnDagNode::create(const MString& type, MObject& parent, MStatus* s) {
    return create(type, MString(), parent, s);
}
MObject MFnDagNode::create(const MTypeId& typeId, const MString& name, MObject& parent, MStatus* s) {
    object_ = createDag(Scene::current().findType(typeId.id()), toText(name), parent, s);
    return object_;
}
MObject MFnDagNode::create(const MString& type, const MString& name, MObject& parent, MStatus* s) {
    object_ = createDag(Scene::current().findType(toText(type)), toText(name), parent, s);
    return object_;
}

unsigned int MFnDagNode::parentCount(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && t->parent ? 1 : 0;
}

MObject MFnDagNode::parent(unsigned int i, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    if (!t || i > 0 || !t->parent) {
        setStatus(ReturnStatus, t ? MStatus::kInvalidParameter : MStatus::kFailure);
        return MObject();
    }
    return Access::object(t->parent);
}

MStatus MFnDagNode::addChild(MObject& child, unsigned int index, bool keepExistingParents) {
    const DagTarget t(object_, nullptr);
    DagNode* c = dagOf(child);
    if (!t) return MStatus::kFailure;
    if (!c || keepExistingParents) return MStatus::kInvalidParameter;
    return api::guarded([&] {
        t->scene.reparent(*c, t.dag);
        if (index != kNextPos) t->scene.reorder(*c, index);
    });
}

MStatus MFnDagNode::removeChild(MObject& child) {
    const DagTarget t(object_, nullptr);
    DagNode* c = dagOf(child);
    if (!t) return MStatus::kFailure;
    if (!c || c->parent != t.dag) return MStatus::kInvalidParameter;
    return api::guarded([&] { t->scene.reparent(*c, nullptr); });
}

MStatus MFnDagNode::removeChildAt(unsigned int index) {
    const DagTarget t(object_, nullptr);
    if (!t) return MStatus::kFailure;
    if (index >= t->children.size()) return MStatus::kInvalidParameter;
    MObject child = Access::object(t->children[index]);
    return removeChild(child);
}

unsigned int MFnDagNode::childCount(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t ? static_cast<unsigned int>(t->children.size()) : 0;
}

MObject MFnDagNode::child(unsigned int i, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    if (!t || i >= t->children.size()) {
        setStatus(ReturnStatus, t ? MStatus::kInvalidParameter : MStatus::kFailure);
        return MObject();
    }
    return Access::object(t->children[i]);
}

MObject MFnDagNode::dagRoot(MStatus* ReturnStatus) {
    const DagTarget t(object_, ReturnStatus);
    return t ? Access::object(t->scene.world()) : MObject();
}

bool MFnDagNode::hasParent(const MObject& node, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && t->parent && t->parent == dagOf(node);
}

bool MFnDagNode::hasChild(const MObject& node, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    const DagNode* c = dagOf(node);
    return t && c && c->parent == t.dag;
}

bool MFnDagNode::isChildOf(const MObject& node, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    const DagNode* p = dagOf(node);
    return t && p && t->isBelow(*p);
}

bool MFnDagNode::isParentOf(const MObject& node, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    const DagNode* c = dagOf(node);
    return t && c && c->isBelow(*t.dag);
}

bool MFnDagNode::inUnderWorld(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return false;
}

bool MFnDagNode::inModel(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && t->inScene;
}

bool MFnDagNode::isInstanceable(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return false;
}

bool MFnDagNode::isInstanced(bool, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return false;
}

unsigned int MFnDagNode::instanceCount(bool, MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t ? 1 : 0;
}

MStatus MFnDagNode::getPath(MDagPath& path) const { return MDagPath::getAPathTo(object_, path); }
MStatus MFnDagNode::getAllPaths(MDagPathArray& paths) const { return MDagPath::getAllPathsTo(object_, paths); }
MDagPath MFnDagNode::dagPath(MStatus* ReturnStatus) const { return MDagPath::getAPathTo(object_, ReturnStatus); }

MString MFnDagNode::fullPathName(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t ? fromText(t->fullPath()) : MString();
}

MString MFnDagNode::partialPathName(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t ? fromText(t->partialPath()) : MString();
}

MMatrix MFnDagNode::transformationMatrix(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t ? t->localMatrix() : MMatrix();
}

bool MFnDagNode::isIntermediateObject(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && t->intermediate();
}

MStatus MFnDagNode::setIntermediateObject(bool isIntermediate) {
    const DagTarget t(object_, nullptr);
    if (!t) return MStatus::kFailure;
    return api::guarded([&] { t->scene.setNumber(t->cell("intermediateObject"), isIntermediate ? 1 : 0); });
}

namespace {

double number(DagNode& node, const char* name) {
    scene::Cell& c = node.cell(name);
    scene::evaluate(c);
    return c.number();
}

} // namespace

bool MFnDagNode::drawOverrideEnabled(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && number(*t.dag, "overrideEnabled") != 0;
}

bool MFnDagNode::drawOverrideIsReference(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && number(*t.dag, "overrideDisplayType") == 2;
}

bool MFnDagNode::drawOverrideIsTemplate(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    return t && number(*t.dag, "overrideDisplayType") == 1;
}

MBoundingBox MFnDagNode::boundingBox(MStatus* ReturnStatus) const {
    const DagTarget t(object_, ReturnStatus);
    MBoundingBox box;
    bool any = false;
    if (t) gatherBox(*t.dag, t->localMatrix(), box, any);
    return box;
}
