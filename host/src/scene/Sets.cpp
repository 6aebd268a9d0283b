#include "scene/Sets.h"

#include "scene/MeshNode.h"

#include "mesh/PolyMesh.h"

#include <algorithm>

namespace host::scene {
namespace {

bool isMemberList(const Attribute& a) { return a.longName == "dagSetMembers" || a.longName == "dnSetMembers"; }

/// The element of the set's lists that the cell is connected to; null for none.
Cell* placeIn(const Node& set, const Cell& source) {
    const auto at = std::ranges::find_if(source.destinations,
                                         [&](const Cell* d) { return &d->node == &set && isMemberList(d->attribute); });
    return at == source.destinations.end() ? nullptr : *at;
}

/// What stands for a node as a whole in the sets that it is in.
Cell& wholeOf(Node& node) { return node.dag() ? node.cell("instObjGroups").element(0) : node.cell("message"); }

bool standsForNode(const Cell& source) {
    const std::string& name = source.attribute.longName;
    return name == "instObjGroups" || name == "message";
}

/// A shape's groups of components, each of which is in one set.
Elements& groupsOf(Node& shape) { return wholeOf(shape).child(0).elements; }

bool isGroup(const Cell& cell) { return cell.index >= 0 && cell.attribute.longName == "objectGroups"; }

Cell* groupIn(const Node& set, Node& shape) {
    for (auto& [index, group] : groupsOf(shape))
        if (placeIn(set, *group)) return group.get();
    return nullptr;
}

/// The components of a group, those of a kind together.
std::vector<Components> componentsIn(Cell& group) {
    std::vector<Components> found;
    const auto* data = std::get_if<DataPtr>(&group.child(0).value);
    const auto* list = data ? dynamic_cast<const ArrayData*>(data->get()) : nullptr;
    const auto mesh = meshBehavior(group.node) ? meshOf(group.node) : nullptr;
    if (!list || !mesh) return found;
    for (const std::string& text : list->texts)
        if (const auto some = parseComponents(text, *mesh)) {
            const auto same =
                std::ranges::find_if(found, [&](const Components& c) { return c.kind() == some->kind(); });
            if (same == found.end())
                found.push_back(*some);
            else
                same->add(*some);
        }
    return found;
}

Components componentsIn(Cell* group, ComponentKind kind) {
    if (group)
        for (Components& some : componentsIn(*group))
            if (some.kind() == kind) return some;
    return Components(kind);
}

/// Cuts a group off its set, and what only served that away.
void dissolve(Cell& group, Cell& place) {
    Scene& scene = group.node.scene;
    scene.disconnect(group, place);
    Cell &list = group.child(0), &id = group.child(1), &color = group.child(2);
    Node* const owner = id.source ? &id.source->node : nullptr;
    for (Cell* part : {&id, &color})
        if (part->source) scene.disconnect(*part->source, *part);
    scene.setValue(list, DataPtr());
    if (owner && owner->type.name == "groupId" && !owner->referenced && !owner->cell("groupId").isArray() &&
        owner->cell("groupId").destinations.empty())
        scene.deleteNodes({owner});
}

/// Gives a group the components of a kind in place of those that it has.
void setComponents(Cell& group, const Components& wanted) {
    auto list = std::make_shared<ArrayData>(DataKind::ComponentList);
    std::vector<Components> all = componentsIn(group);
    const auto same = std::ranges::find_if(all, [&](const Components& c) { return c.kind() == wanted.kind(); });
    if (same == all.end())
        all.push_back(wanted);
    else
        *same = wanted;
    for (const Components& some : all)
        for (std::string& text : some.names()) list->texts.push_back(std::move(text));
    Scene& scene = group.node.scene;
    if (!list->texts.empty()) {
        scene.setValue(group.child(0), DataPtr(list));
        return;
    }
    const std::vector<Cell*> destinations(group.destinations.begin(), group.destinations.end());
    for (Cell* place : destinations)
        if (isMemberList(place->attribute)) dissolve(group, *place);
}

/// A new group of the shape, in the set.
Cell& makeGroup(Node& set, Node& shape) {
    Scene& scene = shape.scene;
    Cell& group = scene.nextAvailable(wholeOf(shape).child(0));
    Node& id = *scene.createNode(*scene.findType("groupId"), "groupId#");
    scene.connect(id.cell("groupId"), group.child(1));
    scene.connect(set.cell("memberWireframeColor"), group.child(2));
    scene.connect(group, scene.nextAvailable(set.cell("dagSetMembers")));
    scene.connect(id.cell("message"), scene.nextAvailable(set.cell("groupNodes")));
    return group;
}

void takeWhole(Node& set, Node& member) {
    Cell& source = wholeOf(member);
    while (Cell* place = placeIn(set, source)) set.scene.disconnect(source, *place);
    // A node of the DAG may have been made a member by its message.
    if (member.dag())
        while (Cell* place = placeIn(set, member.cell("message"))) set.scene.disconnect(member.cell("message"), *place);
}

bool holdsWhole(const Node& set, Node& member) {
    return placeIn(set, wholeOf(member)) || placeIn(set, member.cell("message"));
}

Components without(Components all, const Components& some) {
    all.remove(some);
    return all;
}

/// Takes faces out of the renderable sets that have them; of a shape that is in one as a whole the others stay there.
void takeFromEngines(const Node& except, Node& shape, const Components& faces) {
    std::vector<std::pair<Node*, Cell*>> groups;
    for (auto& [index, group] : groupsOf(shape))
        for (Cell* d : group->destinations)
            if (isMemberList(d->attribute) && isRenderableSet(d->node) && &d->node != &except)
                groups.emplace_back(&d->node, group.get());
    for (const auto& [engine, group] : groups)
        setComponents(*group, without(componentsIn(group, ComponentKind::Face), faces));
    Node* const engine = otherEngineOf(const_cast<Node&>(except), shape);
    if (!engine) return;
    takeWhole(*engine, shape);
    const Components all(ComponentKind::Face, {{0, meshOf(shape)->numPolygons() - 1}});
    if (const Components rest = without(all, faces); !rest.isEmpty()) setComponents(makeGroup(*engine, shape), rest);
}

void addComponents(Node& set, Node& shape, const Components& components) {
    if (holdsWhole(set, shape)) return;
    if (isRenderableSet(set)) {
        if (components.kind() != ComponentKind::Face)
            throw SceneError("Only surfaces and faces can be rendered: " + shape.name + "." +
                             components.names().front());
        const Components all(ComponentKind::Face, {{0, meshOf(shape)->numPolygons() - 1}});
        if (components.contains(all)) {
            addToSet(set, shape);
            return;
        }
        takeFromEngines(set, shape, components);
    }
    Cell* group = groupIn(set, shape);
    Components wanted = componentsIn(group, components.kind());
    wanted.add(components);
    setComponents(group ? *group : makeGroup(set, shape), wanted);
}

Cell* plugOf(const Selected& item) { return item.node->scene.tryPlug(*item.node, item.part); }

void addPlug(Node& set, Cell& plug) {
    if (isRenderableSet(set)) throw SceneError("A plug cannot be rendered: " + plug.name());
    if (!placeIn(set, plug)) set.scene.connect(plug, set.scene.nextAvailable(set.cell("dnSetMembers")));
}

} // namespace

bool isRenderableSet(const Node& set) { return set.type.isA("shadingEngine"); }

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

std::vector<Selected> membersOf(Node& set) {
    std::vector<Selected> members;
    for (const char* list : {"dagSetMembers", "dnSetMembers"})
        for (auto& [index, element] : set.cell(list).elements) {
            Cell* const source = element->source;
            if (!source) continue;
            const NodePtr node = source->node.shared_from_this();
            const auto parts = isGroup(*source) ? componentsIn(*source) : std::vector<Components>();
            for (const Components& some : parts) members.push_back({node, {}, some});
            if (parts.empty())
                members.push_back({node, standsForNode(*source) ? std::string() : source->attributePath()});
        }
    return members;
}

bool isInSet(Node& set, const Selected& item) {
    if (!item.part.empty()) {
        const Cell* plug = plugOf(item);
        return plug && placeIn(set, *plug);
    }
    if (item.components)
        return holdsWhole(set, *item.node) ||
               componentsIn(groupIn(set, *item.node), item.components->kind()).contains(*item.components);
    const auto members = membersFor(set, *item.node);
    return !members.empty() && std::ranges::all_of(members, [&](Node* m) { return holdsWhole(set, *m); });
}

Node* otherEngineOf(Node& set, Node& member) {
    for (const Cell* source : {&wholeOf(member), &member.cell("message")})
        for (const Cell* d : source->destinations)
            if (&d->node != &set && isMemberList(d->attribute) && isRenderableSet(d->node)) return &d->node;
    return nullptr;
}

void joinSetsOf(Node& original, Node& copy) {
    const auto setsOf = [](const Cell& source) {
        std::vector<Node*> sets;
        for (const Cell* d : source.destinations)
            if (isMemberList(d->attribute)) sets.push_back(&d->node);
        return sets;
    };
    for (const Cell* whole : {&wholeOf(original), &original.cell("message")})
        for (Node* set : setsOf(*whole)) addToSet(*set, copy);
    if (!meshBehavior(original) || !meshOf(copy)) return;
    for (auto& [index, group] : groupsOf(original))
        for (Node* set : setsOf(*group))
            for (const Components& some : componentsIn(*group))
                addToSet(*set, Selected{copy.shared_from_this(), {}, some});
}

void takeFromSet(Node& set, const Selected& item) {
    if (!item.part.empty()) {
        Cell* plug = plugOf(item);
        if (Cell* place = plug ? placeIn(set, *plug) : nullptr) set.scene.disconnect(*plug, *place);
        return;
    }
    if (item.components) {
        if (Cell* group = groupIn(set, *item.node))
            setComponents(*group, without(componentsIn(group, item.components->kind()), *item.components));
        return;
    }
    for (Node* member : membersFor(set, *item.node)) {
        takeWhole(set, *member);
        if (Cell* group = member->dag() ? groupIn(set, *member) : nullptr) dissolve(*group, *placeIn(set, *group));
    }
}

void addToSet(Node& set, const Selected& item) {
    if (!item.part.empty()) {
        if (Cell* plug = plugOf(item)) addPlug(set, *plug);
        return;
    }
    if (item.components) {
        addComponents(set, *item.node, *item.components);
        return;
    }
    for (Node* member : membersFor(set, *item.node)) {
        if (holdsWhole(set, *member)) continue;
        if (Cell* group = member->dag() ? groupIn(set, *member) : nullptr) dissolve(*group, *placeIn(set, *group));
        if (isRenderableSet(set) && member->dag()) {
            if (Node* other = otherEngineOf(set, *member)) takeWhole(*other, *member);
            if (const auto mesh = meshBehavior(*member) ? meshOf(*member) : nullptr; mesh && mesh->numPolygons() > 0)
                takeFromEngines(set, *member, Components(ComponentKind::Face, {{0, mesh->numPolygons() - 1}}));
        }
        const bool dag = member->dag() != nullptr;
        set.scene.connect(wholeOf(*member), set.scene.nextAvailable(set.cell(dag ? "dagSetMembers" : "dnSetMembers")));
    }
}

} // namespace host::scene
