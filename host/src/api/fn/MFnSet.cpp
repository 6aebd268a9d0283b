#include <maya/MFnSet.h>

#include "api/fn/FnSupport.h"
#include "scene/MeshNode.h"
#include "scene/Sets.h"
#include "values/Text.h"

#include <algorithm>
#include <unordered_set>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Cell;
using scene::Node;
using scene::Selected;

ORVO_DEFINE_FN(MFnSet, MFn::kSet)
ORVO_FN_NAME(MFnSet)

namespace {

std::shared_ptr<Node> setOf(const MObject& object) { return object.hasFn(MFn::kSet) ? Access::node(object) : nullptr; }

/// `flatten` replaces sets by what is in them, each once, so that sets in circles end.
void gather(Node& set, bool flatten, std::vector<Selected>& out, std::unordered_set<Node*>& seen) {
    if (!seen.insert(&set).second) return;
    for (Selected& member : scene::membersOf(set)) {
        if (flatten && member.isWhole() && member.node->type.isA("objectSet"))
            gather(*member.node, true, out, seen);
        else
            out.push_back(std::move(member));
    }
}

std::vector<Selected> allMembers(Node& set, bool flatten = false) {
    std::vector<Selected> members;
    std::unordered_set<Node*> seen;
    gather(set, flatten, members, seen);
    return members;
}

void fill(MSelectionList& list, const std::vector<Selected>& members) {
    list.clear();
    for (const Selected& m : members) Access::append(list, m);
}

/// The sets of a list, this one first; empty when one is none.
std::vector<std::shared_ptr<Node>> setsOf(const MObject& first, const MObjectArray& others) {
    std::vector<std::shared_ptr<Node>> sets{setOf(first)};
    for (const MObject& o : others) sets.push_back(setOf(o));
    if (std::find(sets.begin(), sets.end(), nullptr) != sets.end()) sets.clear();
    return sets;
}

/// The item that a path and its components are; nothing when they do not go together.
std::optional<Selected> itemOf(const MDagPath& path, const MObject& component) {
    const auto node = Access::node(path.node());
    if (!node) return std::nullopt;
    if (component.isNull()) return Selected{node};
    const auto* held = Access::component(component);
    if (!held || !scene::meshBehavior(*node)) return std::nullopt;
    return Selected{node, {}, held->components()};
}

std::optional<Selected> itemOf(const MPlug& plug) {
    std::shared_ptr<Node> keep;
    const Cell* cell = Access::cell(plug, keep);
    return cell ? std::optional(Selected{keep, cell->attributePath()}) : std::nullopt;
}

std::optional<Selected> itemOf(const MObject& object) {
    const auto node = Access::node(object);
    return node ? std::optional(Selected{node}) : std::nullopt;
}

MStatus add(const MObject& object, const std::optional<Selected>& item) {
    const auto set = setOf(object);
    if (!set) return MStatus::kFailure;
    if (!item || (item->isWhole() && item->node == set)) return MStatus::kInvalidParameter;
    return api::guarded([&] { scene::addToSet(*set, *item); });
}

MStatus remove(const MObject& object, const std::optional<Selected>& item) {
    const auto set = setOf(object);
    if (!set) return MStatus::kFailure;
    if (!item || !scene::isInSet(*set, *item)) return MStatus::kInvalidParameter;
    return api::guarded([&] { scene::takeFromSet(*set, *item); });
}

bool isIn(const MObject& object, const std::optional<Selected>& item, MStatus* status) {
    const auto set = setOf(object);
    setStatus(status, !set ? MStatus::kFailure : item ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return set && item && scene::isInSet(*set, *item);
}

} // namespace

MObject MFnSet::create(const MSelectionList& members, Restriction restriction, MStatus* ReturnStatus) {
    auto& scene = scene::Scene::current();
    MStatus status = api::guarded([&] {
        const auto* type = scene.findType(restriction == kRenderableOnly ? "shadingEngine" : "objectSet");
        Node& set = *scene.createNode(*type, restriction == kRenderableOnly ? "shadingEngine#" : "set#");
        object_ = Access::object(&set);
        const char* flags[] = {nullptr,         "verticesOnlySet", "edgesOnlySet",
                               "facetsOnlySet", nullptr,           "renderableOnlySet"};
        if (const char* flag = flags[restriction]) scene.setNumber(set.cell(flag), 1);
    });
    if (status) status = addMembers(members);
    if (ReturnStatus) *ReturnStatus = status;
    return object_;
}

MStatus MFnSet::getUnion(const MObject& withSet, MSelectionList& result) {
    return getUnion(MObjectArray(1, withSet), result);
}

MStatus MFnSet::getUnion(const MObjectArray& setList, MSelectionList& result) {
    const auto sets = setsOf(object_, setList);
    if (sets.empty()) return MStatus::kInvalidParameter;
    std::vector<Selected> all;
    for (const auto& set : sets)
        for (Selected& m : allMembers(*set)) all.push_back(std::move(m));
    fill(result, scene::merged(all));
    return MStatus::kSuccess;
}

MStatus MFnSet::getIntersection(const MObject& withSet, MSelectionList& result) {
    return getIntersection(MObjectArray(1, withSet), result);
}

MStatus MFnSet::getIntersection(const MObjectArray& setList, MSelectionList& result) {
    const auto sets = setsOf(object_, setList);
    if (sets.empty()) return MStatus::kInvalidParameter;
    std::vector<Selected> all = allMembers(*sets.front());
    for (const auto& set : sets) all = scene::without(all, scene::without(all, allMembers(*set)));
    fill(result, all);
    return MStatus::kSuccess;
}

MStatus MFnSet::clear() {
    const auto set = setOf(object_);
    if (!set) return MStatus::kFailure;
    return api::guarded([&] {
        for (const Selected& member : scene::membersOf(*set)) scene::takeFromSet(*set, member);
    });
}

MStatus MFnSet::getMembers(MSelectionList& members, bool flatten) const {
    const auto set = setOf(object_);
    if (!set) return MStatus::kFailure;
    fill(members, allMembers(*set, flatten));
    return MStatus::kSuccess;
}

MStatus MFnSet::addMember(const MObject& obj) { return add(object_, itemOf(obj)); }
MStatus MFnSet::addMember(const MDagPath& obj, const MObject& component) {
    return add(object_, itemOf(obj, component));
}
MStatus MFnSet::addMember(const MPlug& plug) { return add(object_, itemOf(plug)); }

MStatus MFnSet::addMembers(const MSelectionList& list) {
    MStatus status = setOf(object_) ? MStatus::kSuccess : MStatus::kFailure;
    for (const Selected& item : Access::items(list))
        if (status) status = add(object_, item);
    return status;
}

MStatus MFnSet::removeMember(const MObject& obj) { return remove(object_, itemOf(obj)); }
MStatus MFnSet::removeMember(const MDagPath& obj, const MObject& component) {
    return remove(object_, itemOf(obj, component));
}
MStatus MFnSet::removeMember(const MPlug& plug) { return remove(object_, itemOf(plug)); }

MStatus MFnSet::removeMembers(const MSelectionList& list) {
    MStatus status = setOf(object_) ? MStatus::kSuccess : MStatus::kFailure;
    for (const Selected& item : Access::items(list))
        if (status) status = remove(object_, item);
    return status;
}

bool MFnSet::isMember(const MObject& object, MStatus* ReturnStatus) const {
    return isIn(object_, itemOf(object), ReturnStatus);
}
bool MFnSet::isMember(const MDagPath& object, const MObject& component, MStatus* ReturnStatus) const {
    return isIn(object_, itemOf(object, component), ReturnStatus);
}
bool MFnSet::isMember(const MPlug& plug, MStatus* ReturnStatus) const {
    return isIn(object_, itemOf(plug), ReturnStatus);
}

bool MFnSet::intersectsWith(const MObject& otherSet, MStatus* ReturnStatus) const {
    MSelectionList common;
    const MStatus status = MFnSet(object_).getIntersection(otherSet, common);
    if (ReturnStatus) *ReturnStatus = status;
    return status && !common.isEmpty();
}

bool MFnSet::hasRestrictions(MStatus* ReturnStatus) const { return restriction(ReturnStatus) != kNone; }

MFnSet::Restriction MFnSet::restriction(MStatus* ReturnStatus) const {
    const auto set = setOf(object_);
    setStatus(ReturnStatus, set ? MStatus::kSuccess : MStatus::kFailure);
    if (!set) return kNone;
    const std::pair<const char*, Restriction> flags[] = {{"verticesOnlySet", kVerticesOnly},
                                                         {"edgesOnlySet", kEdgesOnly},
                                                         {"facetsOnlySet", kFacetsOnly},
                                                         {"renderableOnlySet", kRenderableOnly}};
    for (const auto& [flag, restriction] : flags)
        if (set->cell(flag).number() != 0) return restriction;
    return scene::isRenderableSet(*set) ? kRenderableOnly : kNone;
}

MString MFnSet::annotation(MStatus* ReturnStatus) const {
    return setOf(object_) ? findPlug("annotation", ReturnStatus).asString() : MString();
}

MStatus MFnSet::setAnnotation(const MString& annotation) {
    MStatus status;
    MPlug plug = findPlug("annotation", &status);
    return status ? plug.setString(annotation) : status;
}
