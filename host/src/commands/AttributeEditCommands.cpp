#include "commands/AttributeText.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "files/SceneStatements.h"
#include "files/StatementFlags.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace host::mel {

using namespace scene;

namespace {

/// aliasAttr alias node.attribute ..., aliasAttr -remove node.attribute ..., aliasAttr -query node or node.attribute
Value aliasAttr(Call& call) {
    const ParsedArguments args(call, {{"rm", "remove"}}, true);
    const StringArray names = args.names();
    if (args.query()) {
        if (names.size() != 1) throw Error("aliasAttr -query needs one node or attribute.");
        if (names[0].find('.') == std::string::npos) {
            StringArray all;
            for (const auto& [alias, path] : nodeNamed(names[0]).aliases) all.insert(all.end(), {alias, path});
            return all;
        }
        const Cell& cell = plugNamed(names[0]);
        for (const auto& [alias, path] : cell.node.aliases)
            if (path == cell.attributePath()) return alias;
        return "";
    }
    if (names.empty() || (!args.has("rm") && names.size() % 2 != 0))
        throw Error("aliasAttr needs pairs of an alias and an attribute.");
    for (std::size_t i = 0; i < names.size(); i += args.has("rm") ? 1 : 2) {
        Cell& cell = plugNamed(args.has("rm") ? names[i] : names[i + 1]);
        Node& node = cell.node;
        const std::string path = cell.attributePath();
        auto aliases = node.aliases;
        const auto erased = std::erase_if(aliases, [&](const auto& a) { return a.second == path; });
        if (args.has("rm")) {
            if (erased == 0) throw Error("'" + names[i] + "' has no alias.");
        } else {
            const std::string& alias = names[i];
            if (!Scene::isValidName(alias) || alias.find(':') != std::string::npos)
                throw Error("'" + alias + "' is not a name for an attribute.");
            if (node.findAttribute(alias) ||
                std::ranges::any_of(aliases, [&](const auto& a) { return a.first == alias; }))
                throw Error("Node '" + nameOf(node) + "' already has an attribute named '" + alias + "'.");
            aliases.emplace_back(alias, path);
        }
        theScene().setAliases(node, std::move(aliases));
    }
    return {};
}

/// Takes elements out of arrays; connected ones with -break alone.
Value removeMultiInstance(Call& call) {
    const ParsedArguments args(call, {{"b", "break", 1}});
    const StringArray names = args.names();
    if (names.empty()) throw Error("removeMultiInstance: no element is named.");
    for (const std::string& name : names) {
        Cell* element = findPlug(name, false);
        if (!element) throw Error("No object matches name: " + name);
        theScene().removeElement(*element, args.boolean("b", false));
    }
    return {};
}

/// Attributes that have one of some properties, or all of them with -logicalAnd.
Value attributeInfo(Call& call) {
    const ParsedArguments args(call, {{"all", "allAttributes"},
                                      {"b", "bool", 1},
                                      {"e", "enumerated", 1},
                                      {"h", "hidden", 1},
                                      {"inh", "inherited", 1},
                                      {"i", "internal", 1},
                                      {"l", "leaf", 1},
                                      {"la", "logicalAnd", 1},
                                      {"m", "multi", 1},
                                      {"s", "short", 1},
                                      {"t", "type", 1},
                                      {"ui", "userInterface", 1},
                                      {"w", "writable", 1}});
    std::vector<const Attribute*> roots;
    const NodeType* type = nullptr;
    if (args.has("t")) {
        type = theScene().findType(args.text("t"));
        if (!type) throw Error("Unknown object type: " + args.text("t"));
        roots = type->attributes();
    } else {
        const auto nodes = givenOrSelected(args);
        if (nodes.size() != 1) throw Error("attributeInfo needs one node, or -type.");
        type = &nodes.front()->type;
        roots = nodes.front()->attributes();
    }
    const auto own = [&](const Attribute& a) {
        return std::ranges::any_of(type->ownAttributes(), [&](const auto& o) { return o.get() == &a; });
    };
    const auto holds = [&](const Attribute& a) {
        using Property = std::pair<const char*, bool>;
        bool any = false, all = true, asked = false;
        for (const auto& [flag, yes] :
             {Property{"b", a.type == AttributeType::Numeric && a.numeric == NumericType::Bool},
              Property{"e", a.type == AttributeType::Enum}, Property{"h", a.hidden},
              Property{"inh", !a.dynamic && !own(a.root())}, Property{"i", a.internal},
              Property{"l", a.children.empty()}, Property{"m", a.array}, Property{"w", a.writable}}) {
            if (!args.has(flag)) continue;
            const bool as = yes == args.boolean(flag, true);
            asked = true;
            any |= as;
            all &= as;
        }
        return !asked || (args.boolean("la", false) ? all : any);
    };
    StringArray names;
    const auto visit = [&](const Attribute& a) {
        if (args.has("all") || holds(a))
            names.push_back(args.boolean("ui", false)  ? niceName(a)
                            : args.boolean("s", false) ? a.shortName
                                                       : a.longName);
    };
    for (const Attribute* root : roots) forEachPart(*root, visit);
    return names;
}

Limits& limitsOf(Attribute& a) { return a.limits[0]; }

Value queryAttribute(const Attribute& a, const ParsedArguments& args) {
    using Yes = std::pair<const char*, bool>;
    const Limits& limits = a.limits[0];
    for (const auto& [flag, yes] :
         {Yes{"ex", true}, Yes{"k", a.keyable}, Yes{"h", a.hidden}, Yes{"m", a.array}, Yes{"r", a.readable},
          Yes{"w", a.writable}, Yes{"s", a.storable}, Yes{"im", a.indexMatters}, Yes{"ci", a.cached},
          Yes{"uac", a.usedAsColor}, Yes{"uaf", a.usedAsFilename}, Yes{"hnv", limits.min.has_value()},
          Yes{"hxv", limits.max.has_value()}, Yes{"hsn", limits.softMin.has_value()},
          Yes{"hsx", limits.softMax.has_value()}})
        if (args.has(flag)) return yes;
    if (args.has("ln")) return a.longName;
    if (args.has("sn")) return a.shortName;
    if (args.has("nn")) return niceName(a);
    if (args.has("at")) return attributeTypeName(a);
    if (args.has("dt")) return a.typeName();
    if (args.has("en")) return enumText(a);
    if (args.has("p")) return a.parent ? a.parent->longName : a.longName;
    if (args.has("nc")) return static_cast<int>(a.children.size());
    using Limit = std::pair<const char*, std::optional<double> Limits::*>;
    for (const auto& [flag, member] : {Limit{"min", &Limits::min}, Limit{"max", &Limits::max},
                                       Limit{"smn", &Limits::softMin}, Limit{"smx", &Limits::softMax}}) {
        if (!args.has(flag)) continue;
        if (const auto& limit = limits.*member) return toUi(a, *limit);
        throw Error("The attribute '" + a.longName + "' has no such limit.");
    }
    if (args.has("dv")) {
        const FloatArray numbers = defaultsOf(a);
        if (numbers.empty()) throw Error("The attribute '" + a.longName + "' has no default that is a number.");
        return numbers.size() == 1 ? Value(numbers.front()) : Value(numbers);
    }
    throw Error("addAttr was not told what to query.");
}

/// What addAttr -edit changes: limits, default, fields, nice name; undoable.
void editAttribute(Cell& cell, const ParsedArguments& args) {
    if (!cell.attribute.root().dynamic)
        throw Error("'" + cell.name() + "' was not added by a user: it cannot be changed.");
    const auto attribute = std::const_pointer_cast<Attribute>(cell.attribute.shared_from_this());
    struct State {
        Limits limits;
        scene::Value defaultValue;
        std::vector<std::pair<std::string, short>> fields;
        std::string niceName;
        bool keyable, hidden;
    };
    const State before{limitsOf(*attribute), attribute->defaultValue, attribute->fields,
                       attribute->niceName,  attribute->keyable,      attribute->hidden};
    State after = before;
    using Limit = std::tuple<const char*, const char*, std::optional<double> Limits::*>;
    for (const auto& [flag, has, member] :
         {Limit{"min", "hnv", &Limits::min}, Limit{"max", "hxv", &Limits::max}, Limit{"smn", "hsn", &Limits::softMin},
          Limit{"smx", "hsx", &Limits::softMax}}) {
        if (args.has(flag)) {
            if (!attribute->isNumber()) throw Error("'" + cell.name() + "' is not a number: it has no limits.");
            after.limits.*member = fromUi(*attribute, args.number(flag, 0));
        }
        if (args.has(has) && !args.boolean(has, true)) after.limits.*member = std::nullopt;
    }
    if (after.limits.min && after.limits.max && *after.limits.min > *after.limits.max)
        throw Error("'" + cell.name() + "': the minimum is above the maximum.");
    if (args.has("dv")) {
        auto* number = std::get_if<Numeric>(&after.defaultValue);
        if (!number || number->count != 1) throw Error("'" + cell.name() + "' is not a number: it has no default.");
        number->set(0, fromUi(*attribute, args.number("dv", 0)));
    }
    if (args.has("en")) {
        if (attribute->type != AttributeType::Enum) throw Error("'" + cell.name() + "' is not an enumeration.");
        after.fields = files::enumFields(args.text("en"));
    }
    if (args.has("nn")) after.niceName = args.text("nn");
    if (args.has("k")) after.keyable = args.boolean("k", true);
    if (args.has("h")) after.hidden = args.boolean("h", true);
    const auto set = [attribute, keep = cell.node.shared_from_this()](const State& state) {
        limitsOf(*attribute) = state.limits;
        attribute->defaultValue = state.defaultValue;
        attribute->fields = state.fields;
        attribute->niceName = state.niceName;
        attribute->keyable = state.keyable;
        attribute->hidden = state.hidden;
    };
    set(after);
    theScene().record([=] { set(after); }, [=] { set(before); });
}

} // namespace

Value editOrQueryAddedAttribute(Call& call) {
    // What addAttr takes when it adds, and one that only asks.
    std::vector<FlagSpec> flags{{"ex", "exists"}};
    for (const files::StatementFlag& flag : files::addAttrFlags)
        flags.push_back({flag.shortName, flag.longName, flag.values});
    const ParsedArguments args(call, flags, true);
    const StringArray names = args.names();
    if (names.empty()) throw Error("addAttr: no attribute is named.");
    if (args.query()) {
        if (args.has("ex")) return findPlug(names.front(), false) != nullptr;
        return queryAttribute(plugNamed(names.front()).attribute, args);
    }
    for (const std::string& name : names) editAttribute(plugNamed(name), args);
    return {};
}

void registerAttributeEditCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "aliasAttr", aliasAttr);
    registerSceneCommand(interpreter, "attributeInfo", attributeInfo);
    registerSceneCommand(interpreter, "removeMultiInstance", removeMultiInstance);
}

} // namespace host::mel
