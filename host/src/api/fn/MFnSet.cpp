#include <maya/MFnSet.h>

#include "api/fn/FnSupport.h"
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

ORVO_DEFINE_FN(MFnSet, MFn::kSet)
ORVO_FN_NAME(MFnSet)

namespace {

/// A member: a node, or one of its plugs.
struct Member {
    Node* node;
    Cell* plug; ///< null for the whole node
    bool operator==(const Member&) const = default;
};

std::shared_ptr<Node> setOf(const MObject& object) { return object.hasFn(MFn::kSet) ? Access::node(object) : nullptr; }

/// `flatten` replaces sets by what is in them, each once, so that sets in circles end.
void gather(Node& set, bool flatten, std::vector<Member>& out, std::unordered_set<Node*>& seen) {
    if (!seen.insert(&set).second) return;
    for (Cell* source : scene::memberSources(set)) {
        const bool whole = scene::standsForNode(*source);
        if (flatten && whole && source->node.type.isA("objectSet"))
            gather(source->node, true, out, seen);
        else
            out.push_back({&source->node, whole ? nullptr : source});
    }
}

std::vector<Member> membersOf(Node& set, bool flatten = false) {
    std::vector<Member> members;
    std::unordered_set<Node*> seen;
    gather(set, flatten, members, seen);
    return members;
}

void fill(MSelectionList& list, const std::vector<Member>& members) {
    list.clear();
    for (const Member& m : members) {
        if (m.plug)
            list.add(Access::plug(*m.plug));
        else
            list.add(Access::object(m.node));
    }
}

/// The sets of a list, this one first; empty when one is none.
std::vector<std::shared_ptr<Node>> setsOf(const MObject& first, const MObjectArray& others) {
    std::vector<std::shared_ptr<Node>> sets{setOf(first)};
    for (const MObject& o : others) sets.push_back(setOf(o));
    if (std::find(sets.begin(), sets.end(), nullptr) != sets.end()) sets.clear();
    return sets;
}

bool holds(Node& set, Node& node) {
    const auto members = scene::membersFor(set, node);
    return !members.empty() &&
           std::all_of(members.begin(), members.end(), [&](Node* m) { return !scene::placesIn(set, *m).empty(); });
}

Cell* placeOf(Node& set, Cell& plug) {
    for (Cell* d : plug.destinations)
        if (&d->node == &set && d->index >= 0) return d;
    return nullptr;
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
    std::vector<Member> all;
    for (const auto& set : sets)
        for (const Member& m : membersOf(*set))
            if (std::find(all.begin(), all.end(), m) == all.end()) all.push_back(m);
    fill(result, all);
    return MStatus::kSuccess;
}

MStatus MFnSet::getIntersection(const MObject& withSet, MSelectionList& result) {
    return getIntersection(MObjectArray(1, withSet), result);
}

MStatus MFnSet::getIntersection(const MObjectArray& setList, MSelectionList& result) {
    const auto sets = setsOf(object_, setList);
    if (sets.empty()) return MStatus::kInvalidParameter;
    std::vector<Member> all = membersOf(*sets.front());
    for (const auto& set : sets) {
        const auto others = membersOf(*set);
        std::erase_if(all, [&](const Member& m) { return std::find(others.begin(), others.end(), m) == others.end(); });
    }
    fill(result, all);
    return MStatus::kSuccess;
}

MStatus MFnSet::clear() {
    const auto set = setOf(object_);
    if (!set) return MStatus::kFailure;
    return api::guarded([&] {
        for (const char* list : {"dagSetMembers", "dnSetMembers"}) {
            std::vector<Cell*> elements;
            for (auto& [index, element] : set->cell(list).elements) elements.push_back(element.get());
            for (Cell* e : elements)
                if (e->source) set->scene.disconnect(*e->source, *e);
        }
    });
}

MStatus MFnSet::getMembers(MSelectionList& members, bool flatten) const {
    const auto set = setOf(object_);
    if (!set) return MStatus::kFailure;
    fill(members, membersOf(*set, flatten));
    return MStatus::kSuccess;
}

MStatus MFnSet::addMember(const MObject& obj) {
    const auto set = setOf(object_), node = Access::node(obj);
    if (!set) return MStatus::kFailure;
    if (!node || node == set) return MStatus::kInvalidParameter;
    return api::guarded([&] { scene::addToSet(*set, *node); });
}

MStatus MFnSet::addMember(const MDagPath& obj, const MObject& component) {
    return component.isNull() ? addMember(obj.node()) : MStatus(MStatus::kFailure);
}

MStatus MFnSet::addMember(const MPlug& plug) {
    const auto set = setOf(object_);
    std::shared_ptr<Node> keep;
    Cell* cell = Access::cell(plug, keep);
    if (!set) return MStatus::kFailure;
    if (!cell) return MStatus::kInvalidParameter;
    return api::guarded([&] { scene::addToSet(*set, *cell); });
}

namespace {

/// Does something with each item of a list: a node or a plug. Components give kFailure.
template <class WithNode, class WithPlug>
MStatus each(const MSelectionList& list, WithNode withNode, WithPlug withPlug) {
    MStatus status;
    for (unsigned int i = 0; status && i < list.length(); ++i) {
        MPlug plug;
        MObject node, component;
        MDagPath path;
        if (list.getPlug(i, plug)) {
            status = withPlug(plug);
            continue;
        }
        status = list.getDependNode(i, node);
        if (status && list.getDagPath(i, path, component) && !component.isNull()) status = MStatus::kFailure;
        if (status) status = withNode(node);
    }
    return status;
}

} // namespace

MStatus MFnSet::addMembers(const MSelectionList& list) {
    return each(
        list, [&](const MObject& node) { return addMember(node); }, [&](const MPlug& plug) { return addMember(plug); });
}

MStatus MFnSet::removeMember(const MObject& obj) {
    const auto set = setOf(object_), node = Access::node(obj);
    if (!set) return MStatus::kFailure;
    if (!node || !holds(*set, *node)) return MStatus::kInvalidParameter;
    return api::guarded([&] {
        for (Node* member : scene::membersFor(*set, *node)) scene::takeFromSet(*set, *member);
    });
}

MStatus MFnSet::removeMember(const MDagPath& obj, const MObject& component) {
    return component.isNull() ? removeMember(obj.node()) : MStatus(MStatus::kFailure);
}

MStatus MFnSet::removeMember(const MPlug& plug) {
    const auto set = setOf(object_);
    std::shared_ptr<Node> keep;
    Cell* cell = Access::cell(plug, keep);
    if (!set) return MStatus::kFailure;
    Cell* place = cell ? placeOf(*set, *cell) : nullptr;
    if (!place) return MStatus::kInvalidParameter;
    return api::guarded([&] { set->scene.disconnect(*cell, *place); });
}

MStatus MFnSet::removeMembers(const MSelectionList& list) {
    return each(
        list, [&](const MObject& node) { return removeMember(node); },
        [&](const MPlug& plug) { return removeMember(plug); });
}

bool MFnSet::isMember(const MObject& object, MStatus* ReturnStatus) const {
    const auto set = setOf(object_), node = Access::node(object);
    setStatus(ReturnStatus, !set ? MStatus::kFailure : node ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return set && node && holds(*set, *node);
}

bool MFnSet::isMember(const MDagPath& object, const MObject& component, MStatus* ReturnStatus) const {
    if (component.isNull()) return isMember(object.node(), ReturnStatus);
    setStatus(ReturnStatus, MStatus::kFailure);
    return false;
}

bool MFnSet::isMember(const MPlug& plug, MStatus* ReturnStatus) const {
    const auto set = setOf(object_);
    std::shared_ptr<Node> keep;
    Cell* cell = Access::cell(plug, keep);
    setStatus(ReturnStatus, !set ? MStatus::kFailure : cell ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return set && cell && placeOf(*set, *cell);
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
