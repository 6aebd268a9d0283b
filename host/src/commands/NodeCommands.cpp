#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace host::mel {

using namespace scene;

namespace {

Value objExists(Call& call) {
    const ParsedArguments args(call, {});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("objExists needs one name.");
    const auto dot = names[0].find('.');
    const auto nodes = theScene().findNodes(names[0].substr(0, dot));
    if (dot == std::string::npos) return !nodes.empty();
    const std::string part = names[0].substr(dot + 1);
    return std::ranges::any_of(
        nodes, [&](Node* node) { return findComponents(*node, part) || findPlug(nameOf(*node) + "." + part, false); });
}

/// The type's ancestors and itself, the most general first.
StringArray lineage(const NodeType& type) {
    StringArray names;
    for (const NodeType* t = &type; t->base; t = t->base) names.insert(names.begin(), t->name);
    return names;
}

StringArray derivedFrom(const std::string& name) {
    StringArray names;
    for (const NodeType* t : theScene().types())
        if (t->name != name && t->isA(name)) names.push_back(t->name);
    return names;
}

Value nodeType(Call& call) {
    const ParsedArguments args(call, {{"i", "inherited"}, {"d", "derived"}, {"itn", "isTypeName"}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("nodeType needs one object.");
    const NodeType* type = nullptr;
    if (args.has("itn")) {
        type = theScene().findType(names[0]);
        if (!type) throw Error("Unknown object type: " + names[0]);
    } else {
        type = &nodeNamed(names[0].substr(0, names[0].find('.'))).type;
    }
    if (args.has("i")) return lineage(*type);
    if (args.has("d")) return derivedFrom(type->name);
    return type->name;
}

Value objectType(Call& call) {
    const ParsedArguments args(call, {{"i", "isType", 1}, {"isa", "isAType", 1}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("objectType needs one object.");
    const auto dot = names[0].find('.');
    if (dot != std::string::npos) {
        Cell& plug = plugNamed(names[0]);
        if (args.has("i")) return args.text("i") == plug.attribute.typeName();
        return plug.attribute.typeName();
    }
    const NodeType& type = nodeNamed(names[0]).type;
    if (args.has("i")) return args.text("i") == type.name;
    if (args.has("isa")) return type.isA(args.text("isa"));
    return type.name;
}

Value allNodeTypes(Call& call) {
    const ParsedArguments args(call, {{"ia", "includeAbstract"}});
    StringArray names;
    for (const NodeType* t : theScene().types())
        if (!t->isAbstract)
            names.push_back(t->name);
        else if (args.has("ia"))
            names.push_back(t->name + " (abstract)");
    return names;
}

std::vector<Node*> meshesBelow(const std::vector<Node*>& nodes) {
    std::vector<Node*> meshes;
    for (Node* node : nodes)
        if (node->dag())
            for (DagNode* dag : withDescendants(*node->dag()))
                if (meshBehavior(*dag)) meshes.push_back(dag);
    return meshes;
}

/// Meshes that live on keep the form that the nodes about to go gave them last.
void bakeWhatIsFed(const std::vector<Node*>& going) {
    std::unordered_set<Node*> gone(going.begin(), going.end());
    for (Node* node : going)
        if (node->dag())
            for (DagNode* below : theScene().descendants(*node->dag())) gone.insert(below);
    std::vector<Node*> fed;
    for (Node* node : going)
        for (Cell* cell : node->cells())
            for (Cell* d : cell->destinations)
                if (meshBehavior(d->node) && !gone.contains(&d->node) && d->attribute.longName == "inMesh")
                    fed.push_back(&d->node);
    for (Node* shape : fed) {
        Cell& input = shape->cell("inMesh");
        const auto mesh = meshOf(*shape);
        theScene().disconnect(*input.source, input);
        setMesh(theScene(), *shape, mesh);
    }
}

Value deleteCommand(Call& call) {
    const ParsedArguments args(call, {{"ch", "constructionHistory"}, {"all", "all"}, {"hi", "hierarchy", 1}});
    const StringArray names = args.names();
    if (args.has("ch")) {
        std::vector<Node*> targets;
        if (args.has("all"))
            for (const auto& [serial, node] : theScene().nodes()) {
                if (meshBehavior(*node)) targets.push_back(node.get());
            }
        else
            targets = givenOrSelected(args);
        for (Node* mesh : meshesBelow(targets)) deleteHistory(*mesh);
        return {};
    }
    if (args.has("all")) throw Error("delete -all works with -constructionHistory only.");
    std::vector<Node*> nodes;
    for (const std::string& name : names) {
        if (name.find('.') != std::string::npos) throw Error("Components cannot be deleted: " + name);
        // A pattern passes over what cannot be deleted; a name does not.
        const bool pattern = name.find_first_of("*?") != std::string::npos;
        for (Node* node : nodesNamed({name}))
            if (!pattern || (!node->isDefault && !node->locked)) nodes.push_back(node);
    }
    if (names.empty()) {
        for (const Selected& item : theScene().selection())
            if (!item.isWhole()) throw Error("Components cannot be deleted: " + namesOf(item).front());
        nodes = selectedNodes();
    }
    if (nodes.empty() && names.empty()) throw Error("No object was specified or selected.");
    bakeWhatIsFed(nodes);
    theScene().deleteNodes(nodes);
    return {};
}

Value rename(Call& call) {
    const ParsedArguments args(call, {{"is", "ignoreShape"}});
    StringArray names = args.names();
    if (names.size() == 1 && !selectedNodes().empty()) names.insert(names.begin(), nameOf(*selectedNodes().front()));
    if (names.size() != 2) throw Error("rename needs an object and its new name.");
    Node& node = nodeNamed(names[0]);
    if (node.isDefault) throw Error("Cannot rename a read only node.");
    if (node.locked) throw Error("Cannot rename a locked node.");
    if (names[1].find('|') != std::string::npos || names[1].empty()) throw Error("New name has no legal characters.");
    const std::string before = node.name;
    theScene().rename(node, names[1]);
    if (DagNode* dag = node.dag(); dag && dag->isTransform() && !args.has("is"))
        for (DagNode* child : dag->children)
            if (child->isShape() && child->name == shapeNameFor(before) && !child->locked)
                theScene().rename(*child, shapeNameFor(node.name));
    return nameOf(node);
}

Value lockNode(Call& call) {
    const ParsedArguments args(call, {{"l", "lock", 1}, {"ic", "ignoreComponents"}}, true);
    const auto nodes = givenOrSelected(args);
    if (args.query()) {
        IntArray states;
        for (Node* node : nodes) states.push_back(node->locked);
        return states;
    }
    const bool to = args.boolean("l", true);
    for (Node* node : nodes) {
        const bool before = node->locked;
        const auto set = [keep = node->shared_from_this()](bool locked) { keep->locked = locked; };
        set(to);
        theScene().record([set, to] { set(to); }, [set, before] { set(before); });
    }
    return {};
}

Value refresh(Call& call) {
    const ParsedArguments args(call, {{"cv", "currentView"}, {"f", "force"}, {"su", "suspend", 1}});
    return {};
}

/// A name that no node has, made from the wanted one.
Value uniqueObjectName(Call& call) {
    const ParsedArguments args(call, {});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("uniqueObjectName needs one name.");
    const std::string name = theScene().freeName(names[0], nullptr, nullptr, false);
    if (name.empty()) throw Error("New name has no legal characters.");
    return name;
}

Value upAxisCommand(Call& call) {
    const ParsedArguments args(call, {{"ax", "axis", 1}, {"rv", "rotateView"}}, true);
    if (args.query()) return std::string(1, upAxis());
    if (!args.has("ax")) throw Error("upAxis was not told which axis.");
    const std::string axis = args.text("ax");
    if (axis != "y" && axis != "z") throw Error("The up axis is y or z, not '" + axis + "'.");
    const char before = upAxis(), after = axis[0];
    setUpAxis(after);
    theScene().record([after] { setUpAxis(after); }, [before] { setUpAxis(before); });
    return {};
}

CommandFunction refused(const char* text) {
    return [text](Call&) -> Value { throw Error(text); };
}

} // namespace

void registerNodeCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "objExists", objExists);
    registerSceneCommand(interpreter, "nodeType", nodeType);
    registerSceneCommand(interpreter, "objectType", objectType);
    registerSceneCommand(interpreter, "allNodeTypes", allNodeTypes);
    registerSceneCommand(interpreter, "delete", deleteCommand);
    registerSceneCommand(interpreter, "rename", rename);
    registerSceneCommand(interpreter, "lockNode", lockNode);
    registerSceneCommand(interpreter, "refresh", refresh);
    registerSceneCommand(interpreter, "uniqueObjectName", uniqueObjectName);
    registerSceneCommand(interpreter, "upAxis", upAxisCommand);
    registerSceneCommand(interpreter, "instance", refused("Instances are not supported; use duplicate."), Flags::None);
    registerSceneCommand(interpreter, "scriptJob", refused("Script jobs are not supported: there is no idle time."),
                         Flags::None);
}

} // namespace host::mel
