#include "scene/Sets.h"

#include <algorithm>

namespace host::scene {
namespace {

bool isMemberList(const Attribute& a) { return a.longName == "dagSetMembers" || a.longName == "dnSetMembers"; }

} // namespace

bool isRenderableSet(const Node& set) { return set.type.isA("shadingEngine"); }

bool standsForNode(const Cell& source) {
    const std::string& name = source.attribute.longName;
    return name == "instObjGroups" || name == "message";
}

std::vector<Cell*> placesIn(Node& set, Node& member) {
    std::vector<Cell*> places;
    const auto look = [&](Cell& source) {
        for (Cell* d : source.destinations)
            if (&d->node == &set && isMemberList(d->attribute)) places.push_back(d);
    };
    if (const Attribute* groups = member.findAttribute("instObjGroups"))
        for (auto& [index, element] : member.cell(*groups).elements) look(*element);
    look(member.cell("message"));
    return places;
}

std::vector<Node*> membersFor(Node& set, Node& node) {
    DagNode* dag = node.dag();
    if (!isRenderableSet(set) || !dag) return {&node};
    std::vector<DagNode*> all = node.scene.descendants(*dag);
    all.insert(all.begin(), dag);
    std::vector<Node*> shapes;
    for (DagNode* below : all)
        if (below->type.isA("geometryShape") && !below->type.isA("locator") && !below->intermediate())
            shapes.push_back(below);
    return shapes;
}

std::vector<Cell*> memberSources(Node& set) {
    std::vector<Cell*> members;
    for (const char* list : {"dagSetMembers", "dnSetMembers"})
        for (auto& [index, element] : set.cell(list).elements)
            if (element->source) members.push_back(element->source);
    return members;
}

Node* otherEngineOf(Node& set, Node& member) {
    for (const auto& [serial, node] : set.scene.nodes())
        if (node.get() != &set && isRenderableSet(*node) && !placesIn(*node, member).empty()) return node.get();
    return nullptr;
}

void takeFromSet(Node& set, Node& member) {
    for (Cell* place : placesIn(set, member)) set.scene.disconnect(*place->source, *place);
}

void addToSet(Node& set, Node& node) {
    for (Node* member : membersFor(set, node)) {
        if (!placesIn(set, *member).empty()) continue;
        if (isRenderableSet(set))
            if (Node* other = otherEngineOf(set, *member)) takeFromSet(*other, *member);
        const bool dag = member->dag() != nullptr;
        Cell& source = dag ? member->cell("instObjGroups").element(0) : member->cell("message");
        set.scene.connect(source, set.scene.nextAvailable(set.cell(dag ? "dagSetMembers" : "dnSetMembers")));
    }
}

void addToSet(Node& set, Cell& plug) {
    if (isRenderableSet(set)) throw SceneError("A plug cannot be rendered: " + plug.name());
    const auto there = [&](Cell* d) { return &d->node == &set && isMemberList(d->attribute); };
    if (std::any_of(plug.destinations.begin(), plug.destinations.end(), there)) return;
    set.scene.connect(plug, set.scene.nextAvailable(set.cell("dnSetMembers")));
}

} // namespace host::scene
