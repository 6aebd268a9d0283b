#include <maya/MFnDependencyNode.h>

#include "api/fn/FnSupport.h"
#include "api/graph/Callbacks.h"
#include "values/Text.h"

#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MTypeId.h>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Scene;

ORVO_DEFINE_FN(MFnDependencyNode, MFn::kDependencyNode)
ORVO_FN_NAME(MFnDependencyNode)

namespace {

MObject createNode(const scene::NodeType* type, const std::string& name, MStatus* out) {
    if (!type || type->isDag()) {
        setStatus(out, MStatus::kInvalidParameter);
        return MObject();
    }
    try {
        const auto node = Scene::current().createNode(*type, name);
        setStatus(out, MStatus::kSuccess);
        return Access::object(node.get());
    } catch (const scene::SceneError&) {
        setStatus(out, MStatus::kFailure);
        return MObject();
    }
}

void collectConnections(scene::Cell& c, MPlugArray& array) {
    forEachCell(c, [&](scene::Cell& part) {
        if (part.source || !part.destinations.empty()) array.append(Access::plug(part));
    });
}

} // namespace

MObject MFnDependencyNode::create(const MTypeId& typeId, MStatus* s) { return create(typeId, MString(), s); }
MObject MFnDependencyNode::create(const MString& type, MStatus* s) { return create(type, MString(), s); }

MObject MFnDependencyNode::create(const MTypeId& typeId, const MString& name, MStatus* ReturnStatus) {
    object_ = createNode(Scene::current().findType(typeId.id()), toText(name), ReturnStatus);
    return object_;
}

MObject MFnDependencyNode::create(const MString& type, const MString& name, MStatus* ReturnStatus) {
    object_ = createNode(Scene::current().findType(toText(type)), toText(name), ReturnStatus);
    return object_;
}

MTypeId MFnDependencyNode::typeId(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n ? MTypeId(n->type.id) : MTypeId();
}

MString MFnDependencyNode::typeName(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    if (!n) return MString();
    return fromText(n->unknownType.empty() ? n->type.name : n->unknownType);
}

MString MFnDependencyNode::name(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n ? fromText(n->name) : MString();
}

MString MFnDependencyNode::pluginName(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n ? fromText(n->type.plugin) : MString();
}

MString MFnDependencyNode::setName(const MString& name, bool, MStatus* ReturnStatus) {
    const auto n = Access::node(object_);
    if (!n || name.length() == 0) {
        setStatus(ReturnStatus, MStatus::kFailure);
        return MString();
    }
    try {
        const std::string got = n->scene.rename(*n, toText(name));
        setStatus(ReturnStatus, MStatus::kSuccess);
        return fromText(got);
    } catch (const scene::SceneError&) {
        setStatus(ReturnStatus, MStatus::kFailure);
        return MString();
    }
}

MString MFnDependencyNode::setName(const MString& name, MStatus* ReturnStatus) {
    return setName(name, false, ReturnStatus);
}

MUuid MFnDependencyNode::uuid(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    if (!n) return MUuid();
    if (n->uuid.empty()) {
        MUuid made;
        made.generate();
        n->uuid = toText(made.asString());
    }
    return MUuid(fromText(n->uuid));
}

void MFnDependencyNode::setUuid(const MUuid& uuid, MStatus* ReturnStatus) {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, !n || n->locked ? MStatus::kFailure
                            : uuid.valid()  ? MStatus::kSuccess
                                            : MStatus::kInvalidParameter);
    if (!n || n->locked || !uuid.valid()) return;
    auto& callbacks = api::Callbacks::shared();
    std::string after = toText(uuid.asString());
    if (!callbacks.mayChangeUuid(*n, after)) {
        setStatus(ReturnStatus, MStatus::kFailure);
        return;
    }
    const auto set = [n](const std::string& to) {
        const std::string before = std::exchange(n->uuid, to);
        api::Callbacks::shared().uuidChanged(*n, before);
    };
    const std::string before = n->uuid;
    n->scene.record([set, after] { set(after); }, [set, before] { set(before); });
    set(after);
}

MStatus MFnDependencyNode::getConnections(MPlugArray& array) const {
    array.clear();
    const auto n = Access::node(object_);
    if (!n) return MStatus::kFailure;
    for (scene::Cell* c : n->cells()) collectConnections(*c, array);
    return array.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

namespace {

/// Every attribute of the node, compounds before their parts.
std::vector<const scene::Attribute*> allAttributes(const scene::Node& n) {
    std::vector<const scene::Attribute*> all;
    for (const scene::Attribute* root : n.attributes())
        forEachPart(*root, [&](const scene::Attribute& a) { all.push_back(&a); });
    return all;
}

} // namespace

unsigned int MFnDependencyNode::attributeCount(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n ? static_cast<unsigned int>(allAttributes(*n).size()) : 0;
}

MObject MFnDependencyNode::attribute(unsigned int index, MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    const auto all = n ? allAttributes(*n) : std::vector<const scene::Attribute*>();
    setStatus(ReturnStatus, index < all.size() ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return index < all.size() ? Access::object(all[index]) : MObject();
}

MObject MFnDependencyNode::reorderedAttribute(unsigned int index, MStatus* ReturnStatus) const {
    return attribute(index, ReturnStatus);
}

MObject MFnDependencyNode::attribute(const MString& attrName, MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    const auto* a = n ? n->findAttribute(toText(attrName)) : nullptr;
    setStatus(ReturnStatus, a ? MStatus::kSuccess : n ? MStatus::kInvalidParameter : MStatus::kFailure);
    return Access::object(a);
}

MFnDependencyNode::MAttrClass MFnDependencyNode::attributeClass(const MObject& attribute, MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    const auto a = Access::attribute(attribute);
    const bool known = n && a && n->findAttribute(a->longName) == a.get();
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!known) return kInvalidAttr;
    return a->root().dynamic ? kLocalDynamicAttr : kNormalAttr;
}

MStatus MFnDependencyNode::getAffectedAttributes(const MObject& attr, MObjectArray& affectedAttributes) const {
    affectedAttributes.clear();
    const auto n = Access::node(object_);
    const auto a = Access::attribute(attr);
    if (!n || !a) return MStatus::kInvalidParameter;
    std::vector<const scene::Attribute*> found;
    n->type.affected(*a, found);
    for (const auto* f : found) affectedAttributes.append(Access::object(f));
    return MStatus::kSuccess;
}

MPlug MFnDependencyNode::findPlug(const MObject& attr, bool, MStatus* ReturnStatus) const {
    return findPlug(attr, ReturnStatus);
}

MPlug MFnDependencyNode::findPlug(const MString& attrName, bool, MStatus* ReturnStatus) const {
    return findPlug(attrName, ReturnStatus);
}

MPlug MFnDependencyNode::findPlug(const MObject& attr, MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    const auto a = Access::attribute(attr);
    const bool known = n && a && n->findAttribute(a->longName) == a.get();
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return known ? MPlug(object_, attr) : MPlug();
}

MPlug MFnDependencyNode::findPlug(const MString& attrName, MStatus* ReturnStatus) const {
    MStatus status;
    const MObject a = attribute(attrName, &status);
    setStatus(ReturnStatus, status.statusCode());
    return status ? MPlug(object_, a) : MPlug();
}

MStatus MFnDependencyNode::addAttribute(const MObject& attr) {
    const auto n = Access::node(object_);
    const auto a = Access::attribute(attr);
    if (!n) return MStatus::kFailure;
    if (!a || a->parent) return MStatus::kInvalidParameter;
    if (api::belongsToType(*a)) return MStatus::kFailure;
    return api::guarded([&] { n->scene.addAttribute(*n, a); });
}

MStatus MFnDependencyNode::addAttribute(const MObject& attr, MAttrClass type) {
    return type == kLocalDynamicAttr ? addAttribute(attr) : MStatus(MStatus::kInvalidParameter);
}

MStatus MFnDependencyNode::removeAttribute(const MObject& attribute) {
    const auto n = Access::node(object_);
    const auto a = Access::attribute(attribute);
    if (!n) return MStatus::kFailure;
    if (!a || n->findAttribute(a->longName) != a.get()) return MStatus::kInvalidParameter;
    return api::guarded([&] { n->scene.deleteAttribute(*n, *a); });
}

MStatus MFnDependencyNode::removeAttribute(const MObject& attribute, MAttrClass) { return removeAttribute(attribute); }

MPxNode* MFnDependencyNode::userNode(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    MPxNode* user = n ? Access::userNode(*n) : nullptr;
    setStatus(ReturnStatus, user ? MStatus::kSuccess : MStatus::kFailure);
    return user;
}

bool MFnDependencyNode::isFromReferencedFile(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->referenced;
}

bool MFnDependencyNode::isShared(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

bool MFnDependencyNode::hasUniqueName(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->scene.findNode(n->name) == n.get();
}

MString MFnDependencyNode::parentNamespace(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    const auto colon = n ? n->name.rfind(':') : std::string::npos;
    return colon == std::string::npos ? MString() : fromText(n->name.substr(0, colon));
}

bool MFnDependencyNode::isLocked(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->locked;
}

MStatus MFnDependencyNode::setLocked(bool lock) {
    const auto n = Access::node(object_);
    if (!n) return MStatus::kFailure;
    if (n->locked == lock) return MStatus::kSuccess;
    n->locked = lock;
    n->scene.record([n, lock] { n->locked = lock; }, [n, lock] { n->locked = !lock; });
    return MStatus::kSuccess;
}

MString MFnDependencyNode::classification(const MString& nodeTypeName) {
    const auto* t = Scene::current().findType(toText(nodeTypeName));
    return t ? fromText(t->classification) : MString();
}

bool MFnDependencyNode::isDefaultNode(MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->isDefault;
}

bool MFnDependencyNode::hasAttribute(const MString& attrName, MStatus* ReturnStatus) const {
    const auto n = Access::node(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->findAttribute(toText(attrName));
}
