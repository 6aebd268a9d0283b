#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

std::vector<Node*> allMembers(Node& set) {
    std::vector<Node*> members;
    for (Cell* source : memberSources(set)) members.push_back(&source->node);
    return members;
}

Node& setNamed(const std::string& name) {
    Node& set = nodeNamed(name);
    if (!set.type.isA("objectSet")) throw Error("'" + name + "' is not a set.");
    return set;
}

std::vector<Node*> wholeNodes(const StringArray& names) {
    for (const auto& name : names)
        if (name.find('.') != std::string::npos)
            throw Error("Only whole objects can be members of sets here, not '" + name + "'.");
    return nodesNamed(names);
}

Value sets(Call& call) {
    const ParsedArguments args(call,
                               {{"n", "name", 1},
                                {"em", "empty"},
                                {"r", "renderable", 1},
                                {"nss", "noSurfaceShader", 1},
                                {"t", "text", 1},
                                {"add", "addElement", 1},
                                {"fe", "forceElement", 1},
                                {"in", "include", 1},
                                {"rm", "remove", 1},
                                {"im", "isMember", 1},
                                {"cl", "clear", 1},
                                {"s", "size"},
                                {"no", "nodesOnly", 1, true},
                                {"v", "vertices", 1},
                                {"ed", "edges", 1},
                                {"fc", "facets", 1}},
                               true);
    const StringArray names = args.names();
    if (args.query()) {
        if (args.has("im")) throw Error("isMember is no query: use sets -isMember SET objects.");
        if (names.size() != 1) throw Error("sets -query needs one set.");
        Node& set = setNamed(names[0]);
        if (args.has("t")) {
            const auto* text = std::get_if<std::string>(&set.cell("annotation").value);
            return text ? *text : std::string();
        }
        const auto members = allMembers(set);
        if (args.has("s")) return static_cast<int>(members.size());
        if (args.has("r")) return isRenderableSet(set);
        StringArray answer;
        for (Node* m : members) answer.push_back(nameOf(*m));
        return answer;
    }
    if (args.has("im")) {
        Node& set = setNamed(args.text("im"));
        const auto nodes = wholeNodes(names);
        return !nodes.empty() && std::ranges::all_of(nodes, [&](Node* node) {
            const auto members = membersFor(set, *node);
            return !members.empty() &&
                   std::ranges::all_of(members, [&](Node* m) { return !placesIn(set, *m).empty(); });
        });
    }
    if (args.has("cl")) {
        Node& set = setNamed(args.text("cl"));
        for (Node* member : allMembers(set)) takeFromSet(set, *member);
        return nameOf(set);
    }
    const auto objects = [&] { return names.empty() ? selectedNodes() : wholeNodes(names); };
    for (const char* flag : {"fe", "add", "in"}) {
        if (!args.has(flag)) continue;
        Node& set = setNamed(args.text(flag));
        for (Node* node : objects()) {
            if (node == &set) throw Error("A set cannot be a member of itself: " + nameOf(set));
            if (isRenderableSet(set) && flag != std::string_view("fe"))
                for (Node* member : membersFor(set, *node))
                    if (Node* other = otherEngineOf(set, *member))
                        throw Error("'" + nameOf(*member) + "' belongs to '" + nameOf(*other) +
                                    "' and cannot be in another renderable set, too.");
            addToSet(set, *node);
        }
        return nameOf(set);
    }
    if (args.has("rm")) {
        Node& set = setNamed(args.text("rm"));
        for (Node* node : objects())
            for (Node* member : membersFor(set, *node)) takeFromSet(set, *member);
        return nameOf(set);
    }
    if (args.edit()) throw Error("sets -edit was not told what to do.");
    const std::vector<Node*> members = args.has("em") ? std::vector<Node*>() : objects();
    const bool renderable = args.boolean("r", false);
    const std::string name = args.text("n", renderable ? "shadingEngine#" : "set#");
    Node& set = *theScene().createNode(*theScene().findType(renderable ? "shadingEngine" : "objectSet"), name);
    if (args.has("t")) theScene().setValue(set.cell("annotation"), args.text("t"));
    for (Node* node : members) addToSet(set, *node);
    return nameOf(set);
}

} // namespace

void registerSetCommands(Interpreter& interpreter) { registerSceneCommand(interpreter, "sets", sets); }

} // namespace host::mel
