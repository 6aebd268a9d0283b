#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "base/Messages.h"

#include <algorithm>
#include <functional>

namespace host::mel {

using namespace scene;

namespace {

/// Moves the node below the parent (null: the world); its place in the world stays unless `relative`.
void moveBelow(DagNode& child, DagNode* parent, bool relative) {
    const MMatrix world = child.worldMatrix();
    theScene().reparent(child, parent);
    if (relative || !child.isTransform() || !child.findAttribute("translate")) return;
    const MMatrix wanted = world * child.parentMatrix().inverse();
    if (!wanted.isEquivalent(child.localMatrix(), 1e-12)) setLocalMatrix(child, wanted, true);
}

Value parent(Call& call) {
    const ParsedArguments args(call, {{"a", "absolute"},
                                      {"r", "relative"},
                                      {"s", "shape"},
                                      {"w", "world"},
                                      {"add", "addObject"},
                                      {"rm", "removeObject"},
                                      {"nc", "noConnections"}});
    if (args.has("add") || args.has("rm")) throw Error("Instances are not supported.");
    std::vector<DagNode*> nodes = dagGivenOrSelected(args);
    DagNode* to = nullptr;
    if (!args.has("w")) {
        if (nodes.size() < 2) throw Error("No valid objects supplied to 'parent' command.");
        to = nodes.back();
        nodes.pop_back();
    }
    std::vector<Node*> moved;
    for (DagNode* node : nodes) {
        if (node->isShape() && !args.has("s"))
            throw Error("'" + nameOf(*node) + "' is a shape: it is parented with the -shape flag.");
        if (node->isDefault) throw Error("The default node '" + nameOf(*node) + "' cannot be parented.");
        if (node->parent == (to ? to : theScene().world())) {
            showWarning("Object, '" + nameOf(*node) + "', skipped.  It is already a child of the parent, '" +
                        (to ? nameOf(*to) : std::string("world")) + "'.");
            continue;
        }
        moveBelow(*node, to, args.has("r"));
        moved.push_back(node);
    }
    if (!moved.empty()) selectNodes(moved);
    return namesOf(moved);
}

/// The lowest node that is above all of them; null for the world.
DagNode* commonParent(const std::vector<DagNode*>& nodes) {
    for (DagNode* up = nodes.empty() ? nullptr : nodes.front()->parent; up && !up->isWorld(); up = up->parent)
        if (std::ranges::all_of(nodes, [&](DagNode* n) { return n->isBelow(*up); })) return up;
    return nullptr;
}

Value group(Call& call) {
    const ParsedArguments args(
        call,
        {{"em", "empty"}, {"n", "name", 1}, {"p", "parent", 1}, {"w", "world"}, {"r", "relative"}, {"a", "absolute"}});
    std::vector<DagNode*> nodes;
    if (!args.has("em")) nodes = dagGivenOrSelected(args);
    DagNode* below = args.has("p") ? &dagNamed(args.text("p")) : args.has("w") ? nullptr : commonParent(nodes);
    for (DagNode* node : nodes) {
        if (node->isShape()) throw Error("'" + nameOf(*node) + "' is a shape: shapes cannot be grouped.");
        if (node->isDefault) throw Error("The default node '" + nameOf(*node) + "' cannot be grouped.");
        if (below == node || (below && below->isBelow(*node)))
            throw Error("Cannot group '" + nameOf(*node) + "' below itself.");
    }
    const auto made = theScene().createNode(*theScene().findType("transform"), args.text("n", "group#"), below);
    DagNode& group = *made->dag();
    const Bounds bounds = boundsOf(std::vector<Node*>(nodes.begin(), nodes.end()), group.worldMatrix().inverse());
    for (DagNode* node : nodes) moveBelow(*node, &group, args.has("r"));
    if (!bounds.empty()) {
        setTriple(group, "rotatePivot", bounds.centre());
        setTriple(group, "scalePivot", bounds.centre());
    }
    selectNodes({&group});
    return nameOf(group);
}

Value ungroup(Call& call) {
    const ParsedArguments args(call, {{"p", "parent", 1}, {"w", "world"}, {"r", "relative"}, {"a", "absolute"}});
    DagNode* given = args.has("p") ? &dagNamed(args.text("p")) : nullptr;
    std::vector<Node*> freed, groups;
    for (DagNode* group : dagGivenOrSelected(args)) {
        const auto children = group->children;
        if (!group->isTransform() || children.empty() ||
            std::ranges::any_of(children, [](DagNode* c) { return c->isShape(); }))
            throw Error("'" + nameOf(*group) + "' is not a group.");
        DagNode* to = given ? given : args.has("w") ? nullptr : group->parent;
        for (DagNode* child : children) {
            moveBelow(*child, to, args.has("r"));
            freed.push_back(child);
        }
        groups.push_back(group);
    }
    theScene().deleteNodes(groups);
    selectNodes(freed);
    return {};
}

/// Everything below, children before their parents.
void collectBelow(DagNode& node, std::vector<DagNode*>& out) {
    std::vector<DagNode*> all = theScene().descendants(node);
    // A parent comes right after the last of what is below it.
    std::vector<DagNode*> open;
    for (DagNode* n : all) {
        while (!open.empty() && n->parent != open.back()) {
            out.push_back(open.back());
            open.pop_back();
        }
        open.push_back(n);
    }
    out.insert(out.end(), open.rbegin(), open.rend());
}

Value listRelatives(Call& call) {
    const ParsedArguments args(call, {{"c", "children"},
                                      {"p", "parent"},
                                      {"ap", "allParents"},
                                      {"s", "shapes"},
                                      {"ad", "allDescendents"},
                                      {"f", "fullPath"},
                                      {"pa", "path"},
                                      {"typ", "type", 1},
                                      {"ni", "noIntermediate"},
                                      {"v", "view"}});
    std::vector<std::string> types;
    for (std::size_t i = 0; i < args.occurrences("typ"); ++i) types.push_back(args.value("typ", 0, i).toString());
    std::vector<DagNode*> found;
    for (Node* node : givenOrSelected(args)) {
        DagNode* dag = node->dag();
        if (!dag) continue;
        if (args.has("p") || args.has("ap")) {
            if (dag->parent && !dag->parent->isWorld()) found.push_back(dag->parent);
        } else if (args.has("ad")) {
            collectBelow(*dag, found);
        } else {
            for (DagNode* child : dag->children)
                if (!args.has("s") || child->isShape()) found.push_back(child);
        }
    }
    StringArray names;
    for (DagNode* node : found) {
        if (args.has("ni") && node->intermediate()) continue;
        if (args.has("ad") && args.has("s") && !node->isShape()) continue;
        if (!types.empty() && std::ranges::none_of(types, [&](auto& t) { return node->type.isA(t); })) continue;
        const std::string name = args.has("f") ? node->fullPath() : args.has("pa") ? nameOf(*node) : node->name;
        if (!args.has("p") || std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names;
}

void show(DagNode& node, bool visible) {
    Cell& cell = node.cell("visibility");
    if ((cell.number() != 0) != visible) theScene().setNumber(cell, visible);
}

Value hide(Call& call) {
    const ParsedArguments args(call, {{"all", "allObjects"}, {"rh", "returnHidden"}, {"cs", "clearSelection"}});
    std::vector<DagNode*> nodes;
    if (args.has("all")) {
        for (DagNode* child : theScene().world()->children)
            if (!child->isDefault) nodes.push_back(child);
    } else {
        nodes = dagGivenOrSelected(args);
    }
    StringArray hidden;
    for (DagNode* node : nodes) {
        if (node->cell("visibility").number() != 0) hidden.push_back(nameOf(*node));
        show(*node, false);
    }
    if (args.has("cs")) theScene().setSelection({});
    return args.has("rh") ? Value(hidden) : Value();
}

Value showHidden(Call& call) {
    const ParsedArguments args(call, {{"a", "above"}, {"b", "below"}, {"all", "allObjects"}, {"lf", "lastHidden"}});
    std::vector<DagNode*> nodes;
    if (args.has("all")) {
        for (DagNode* dag : theScene().descendants(*theScene().world()))
            if (!dag->isDefault) nodes.push_back(dag);
    } else {
        nodes = dagGivenOrSelected(args);
    }
    for (DagNode* node : nodes) {
        show(*node, true);
        if (args.has("a"))
            for (DagNode* up = node->parent; up && !up->isWorld(); up = up->parent) show(*up, true);
        if (args.has("b"))
            for (DagNode* below : theScene().descendants(*node)) show(*below, true);
    }
    return {};
}

} // namespace

void registerDagCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "parent", parent);
    registerSceneCommand(interpreter, "group", group);
    registerSceneCommand(interpreter, "ungroup", ungroup);
    registerSceneCommand(interpreter, "listRelatives", listRelatives);
    registerSceneCommand(interpreter, "hide", hide);
    registerSceneCommand(interpreter, "showHidden", showHidden);
}

} // namespace host::mel
