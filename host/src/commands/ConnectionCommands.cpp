#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "base/Messages.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <functional>

namespace host::mel {

using namespace scene;

namespace {

/// A multi attribute as the source of a single plug means its first element.
Cell& sourceFor(Cell& source, const Cell& destination) {
    return source.isArray() && !destination.isArray() ? source.element(0) : source;
}

struct Ends {
    Cell& source;
    Cell& destination;
};

Ends endsNamed(const ParsedArguments& args) {
    const StringArray names = args.names();
    if (names.size() != 2) throw Error("A source and a destination attribute are needed.");
    Cell *source = findPlug(names[0]), *destination = findPlug(names[1]);
    if (!source) throw Error("The source attribute '" + names[0] + "' cannot be found.");
    if (!destination) throw Error("The destination attribute '" + names[1] + "' cannot be found.");
    return {*source, *destination};
}

Value connectAttr(Call& call) {
    const ParsedArguments args(call,
                               {{"f", "force"}, {"l", "lock", 1}, {"na", "nextAvailable"}, {"rd", "referenceDest", 1}});
    auto [from, to] = endsNamed(args);
    Cell* destination = &to;
    // Elements of a list whose indices mean nothing are found by themselves.
    const bool next = args.has("na") || (!to.attribute.indexMatters && !from.isArray());
    if (to.isArray() && next) destination = &theScene().nextAvailable(to);
    Cell& source = sourceFor(from, *destination);
    if (destination->source == &source) {
        showWarning("'" + source.name() + "' is already connected to '" + destination->name() + "'.");
        return {};
    }
    theScene().connect(source, *destination, args.has("f"));
    if (args.has("l")) theScene().setLocked(*destination, args.boolean("l", false));
    return "Connected " + source.name(false) + " to " + destination->name(false) + ".";
}

Cell* sourcedBelow(Cell& array, const Cell& source) {
    for (auto& [index, element] : array.elements)
        if (element->source == &source) return element.get();
    return nullptr;
}

Value disconnectAttr(Call& call) {
    const ParsedArguments args(call, {{"na", "nextAvailable"}});
    auto [from, to] = endsNamed(args);
    Cell& source = sourceFor(from, to.source == &from ? from : to.isArray() ? to.element(0) : to);
    Cell* destination = &to;
    if (to.isArray() && to.source != &source) {
        Cell* element = sourcedBelow(to, source);
        if (element && (args.has("na") || !to.attribute.indexMatters)) destination = element;
    }
    if (destination->source != &source)
        throw Error("There is no connection from '" + source.name() + "' to '" + destination->name() +
                    "' to disconnect");
    // A mesh keeps the form that its history gave it last.
    if (meshBehavior(destination->node) && destination->attribute.longName == "inMesh") {
        const auto mesh = meshOf(destination->node);
        theScene().disconnect(source, *destination);
        setMesh(theScene(), destination->node, mesh);
    } else {
        theScene().disconnect(source, *destination);
    }
    return "Disconnect " + source.name(false) + " from " + destination->name(false) + ".";
}

Value isConnected(Call& call) {
    const ParsedArguments args(call, {{"iuc", "ignoreUnitConversion"}});
    const StringArray names = args.names();
    if (names.size() != 2) throw Error("isConnected needs two attributes.");
    Cell &from = plugNamed(names[0]), &to = plugNamed(names[1]);
    if (to.isArray() && !from.isArray() && sourcedBelow(to, from)) return 1;
    return to.source == &sourceFor(from, to);
}

Cell* exactSource(Cell& cell) {
    for (Cell* c = &cell; c; c = c->parent)
        if (c->source) return c->source;
    return nullptr;
}

Value connectionInfo(Call& call) {
    const ParsedArguments args(call, {{"dfs", "destinationFromSource"},
                                      {"sfd", "sourceFromDestination"},
                                      {"id", "isDestination"},
                                      {"is", "isSource"},
                                      {"ied", "isExactDestination"},
                                      {"ies", "isExactSource"},
                                      {"ged", "getExactDestination"},
                                      {"ges", "getExactSource"},
                                      {"il", "isLocked"}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("connectionInfo needs one attribute.");
    Cell& cell = plugNamed(names[0]);
    if (args.has("il")) return cell.lockedHere();
    if (args.has("ied")) return cell.source != nullptr;
    if (args.has("ies")) return !cell.destinations.empty();
    if (args.has("id")) return exactSource(cell) != nullptr;
    const auto feeding = [&]() -> Cell* {
        for (Cell* c = &cell; c; c = c->parent)
            if (!c->destinations.empty()) return c;
        return nullptr;
    };
    if (args.has("is")) return feeding() != nullptr;
    if (args.has("sfd")) {
        Cell* source = exactSource(cell);
        return source ? source->name() : std::string();
    }
    if (args.has("dfs")) {
        StringArray found;
        for (Cell* d : cell.destinations) found.push_back(d->name());
        return found;
    }
    if (args.has("ged")) {
        for (Cell* c = &cell; c; c = c->parent)
            if (c->source) return c->name();
        return std::string();
    }
    if (args.has("ges")) {
        Cell* source = feeding();
        return source ? source->name() : std::string();
    }
    throw Error("connectionInfo was not told what to answer.");
}

Value listConnections(Call& call) {
    const ParsedArguments args(call, {{"s", "source", 1},
                                      {"d", "destination", 1},
                                      {"p", "plugs", 1},
                                      {"c", "connections", 1},
                                      {"sh", "shapes", 1},
                                      {"t", "type", 1},
                                      {"et", "exactType", 1},
                                      {"scn", "skipConversionNodes", 1}});
    StringArray names = args.names();
    if (names.empty()) names = namesOf(selectedNodes());
    if (names.empty()) throw Error("No object was specified or selected.");
    const bool sources = args.boolean("s", true), destinations = args.boolean("d", true);
    StringArray found;
    const auto add = [&](Cell& own, Cell& other) {
        if (args.has("t")) {
            const std::string type = args.text("t");
            if (args.boolean("et", false) ? other.node.type.name != type : !other.node.type.isA(type)) return;
        }
        if (args.boolean("c", false)) found.push_back(own.name());
        if (args.boolean("p", false))
            found.push_back(other.name());
        else
            found.push_back(nameOf(args.boolean("sh", false) ? other.node : transformOf(other.node)));
    };
    const auto visit = [&](Cell& whole) {
        forEachCell(whole, [&](Cell& cell) {
            if (sources && cell.source) add(cell, *cell.source);
            if (destinations)
                for (Cell* d : cell.destinations) add(cell, *d);
        });
    };
    for (const std::string& name : names) {
        if (name.find('.') != std::string::npos)
            visit(plugNamed(name));
        else
            for (Node* node : nodesNamed({name}))
                for (Cell* cell : node->cells()) visit(*cell);
    }
    return found;
}

} // namespace

void registerConnectionCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "connectAttr", connectAttr);
    registerSceneCommand(interpreter, "disconnectAttr", disconnectAttr);
    registerSceneCommand(interpreter, "isConnected", isConnected);
    registerSceneCommand(interpreter, "connectionInfo", connectionInfo);
    registerSceneCommand(interpreter, "listConnections", listConnections);
}

} // namespace host::mel
