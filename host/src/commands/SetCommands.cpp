#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

Node& setNamed(const std::string& name) {
    Node& set = nodeNamed(name);
    if (!set.type.isA("objectSet")) throw Error("'" + name + "' is not a set.");
    return set;
}

/// Nodes, plugs and components.
std::vector<Selected> itemsNamed(const StringArray& names) {
    std::vector<Selected> items;
    for (const auto& name : names)
        for (Selected& item : mel::itemsNamed(name)) items.push_back(std::move(item));
    return merged(items);
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
        if (args.has("r")) return isRenderableSet(set);
        const auto members = membersOf(set);
        if (args.has("s")) return static_cast<int>(members.size());
        StringArray answer;
        for (const Selected& m : members)
            for (std::string& name : namesOf(m)) answer.push_back(std::move(name));
        return answer;
    }
    if (args.has("im")) {
        Node& set = setNamed(args.text("im"));
        const auto items = itemsNamed(names);
        return !items.empty() && std::ranges::all_of(items, [&](const Selected& item) { return isInSet(set, item); });
    }
    if (args.has("cl")) {
        Node& set = setNamed(args.text("cl"));
        for (const Selected& member : membersOf(set)) takeFromSet(set, member);
        return nameOf(set);
    }
    const auto objects = [&] { return names.empty() ? theScene().selection() : itemsNamed(names); };
    for (const char* flag : {"fe", "add", "in"}) {
        if (!args.has(flag)) continue;
        Node& set = setNamed(args.text(flag));
        for (const Selected& item : objects()) {
            if (item.isWhole() && item.node.get() == &set)
                throw Error("A set cannot be a member of itself: " + nameOf(set));
            if (isRenderableSet(set) && flag != std::string_view("fe") && item.part.empty())
                for (Node* member : membersFor(set, *item.node))
                    if (Node* other = otherEngineOf(set, *member))
                        throw Error("'" + nameOf(*member) + "' belongs to '" + nameOf(*other) +
                                    "' and cannot be in another renderable set, too.");
            addToSet(set, item);
        }
        return nameOf(set);
    }
    if (args.has("rm")) {
        Node& set = setNamed(args.text("rm"));
        for (const Selected& item : objects()) takeFromSet(set, item);
        return nameOf(set);
    }
    if (args.edit()) throw Error("sets -edit was not told what to do.");
    const std::vector<Selected> members = args.has("em") ? std::vector<Selected>() : objects();
    const bool renderable = args.boolean("r", false);
    const std::string name = args.text("n", renderable ? "shadingEngine#" : "set#");
    Node& set = *theScene().createNode(*theScene().findType(renderable ? "shadingEngine" : "objectSet"), name);
    if (args.has("t")) theScene().setValue(set.cell("annotation"), args.text("t"));
    for (const Selected& item : members) addToSet(set, item);
    return nameOf(set);
}

} // namespace

void registerSetCommands(Interpreter& interpreter) { registerSceneCommand(interpreter, "sets", sets); }

} // namespace host::mel
