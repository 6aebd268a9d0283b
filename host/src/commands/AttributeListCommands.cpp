#include "base/Letters.h"
#include "base/Pattern.h"
#include "commands/AttributeText.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "scene/AnimCurve.h"
#include "scene/AttributeKind.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

std::string niceName(const Attribute& a) {
    if (!a.niceName.empty()) return a.niceName;
    std::string nice;
    char before = ' ';
    for (const char c : a.longName) {
        const bool capital = lowerCase(c) != c, startsWord = capital && lowerCase(before) == before;
        if (startsWord && !nice.empty() && nice.back() != ' ') nice += ' ';
        nice += c == '_' ? ' ' : nice.empty() || nice.back() == ' ' ? upperCase(c) : c;
        before = c;
    }
    return nice;
}

namespace {

/// The name with those of the multi attributes around it; children of plain compounds go by their own.
std::string listName(const Attribute& a, bool brief) {
    const std::string own = brief ? a.shortName : a.longName;
    for (const Attribute* up = a.parent; up; up = up->parent)
        if (up->array) return listName(*a.parent, brief) + "." + own;
    return own;
}

/// The cell of the attribute, where it lies below no array and has been made.
Cell* plainCell(Node& node, const Attribute& a) {
    for (const Attribute* up = a.parent; up; up = up->parent)
        if (up->array) return nullptr;
    return node.existingCell(a.root()) ? &node.cell(a) : nullptr;
}

bool lockedAt(Node& node, const Attribute& a) {
    for (Cell* c = plainCell(node, a); c; c = c->parent)
        if (c->locked) return true;
    return false;
}

bool isScalar(const Attribute& a) { return a.isNumber() || a.type == AttributeType::String; }

bool listed(Node& node, const Attribute& a, const ParsedArguments& args) {
    Cell* cell = plainCell(node, a);
    if (args.has("k") && !(cell ? cell->keyable.value_or(a.keyable) : a.keyable)) return false;
    if (args.has("cb") && !(cell ? cell->channelBox.value_or(a.channelBox) : a.channelBox)) return false;
    if (args.has("l") && !lockedAt(node, a)) return false;
    if (args.has("u") && lockedAt(node, a)) return false;
    if (args.has("r") && !a.readable) return false;
    if (args.has("w") && !a.writable) return false;
    if (args.has("ro") && (a.writable || !a.readable)) return false;
    if (args.has("o") && a.writable) return false;
    if (args.has("c") && !a.connectable) return false;
    if (args.has("s") && (!isScalar(a) || a.array)) return false;
    if (args.has("a") && a.type != AttributeType::Data && !a.array) return false;
    if (args.has("m") && !a.array) return false;
    const bool driven = cell && cell->source && !curveOf(*cell);
    if (args.has("se") && (!a.writable || driven || lockedAt(node, a))) return false;
    if (args.has("ud") && !a.root().dynamic) return false;
    if (args.has("v") && a.hidden) return false;
    if (args.has("lf") && a.isCompound()) return false;
    if (args.has("uf") && !a.usedAsFilename) return false;
    if (args.has("ca") && !a.cached) return false;
    if (!args.has("st")) return true;
    for (std::size_t i = 0; i < args.occurrences("st"); ++i) {
        const std::string pattern = args.value("st", 0, i).toString();
        if (matchesName(pattern, a.longName) || matchesName(pattern, a.shortName)) return true;
    }
    return false;
}

Value listAttr(Call& call) {
    const ParsedArguments args(
        call,
        {{"a", "array"},     {"ca", "caching"},     {"cb", "channelBox"},     {"c", "connectable"}, {"k", "keyable"},
         {"lf", "leaf"},     {"l", "locked"},       {"m", "multi"},           {"o", "output"},      {"r", "read"},
         {"ro", "readOnly"}, {"s", "scalar"},       {"se", "settable"},       {"sn", "shortNames"}, {"st", "string", 1},
         {"u", "unlocked"},  {"ud", "userDefined"}, {"uf", "usedAsFilename"}, {"v", "visible"},     {"w", "write"}});
    StringArray names = args.names();
    if (names.empty()) names = namesOf(selectedNodes());
    if (names.empty()) throw Error("No object was specified or selected.");
    StringArray found;
    const auto add = [&](const std::string& name) {
        if (std::ranges::find(found, name) == found.end()) found.push_back(name);
    };
    for (const std::string& name : names) {
        std::vector<const Attribute*> roots;
        Node* node = nullptr;
        if (name.find('.') != std::string::npos) {
            Cell& cell = plugNamed(name);
            node = &cell.node;
            roots = {&cell.attribute};
        } else {
            node = &nodeNamed(name);
            roots = node->attributes();
        }
        for (const Attribute* root : roots)
            forEachPart(*root, [&](const Attribute& a) {
                if (listed(*node, a, args)) add(listName(a, args.has("sn")));
            });
    }
    return found;
}

} // namespace

std::string attributeTypeName(const Attribute& a) {
    if (a.type == AttributeType::String || a.type == AttributeType::Data) return "typed";
    return addedTypeName(a);
}

FloatArray defaultsOf(const Attribute& a) {
    FloatArray numbers;
    if (const auto* n = std::get_if<Numeric>(&a.defaultValue))
        for (int k = 0; k < n->count; ++k)
            numbers.push_back(toUi(a.children.empty() ? a : *a.children[static_cast<std::size_t>(k)], n->get(k)));
    if (const auto* m = matrixIn(a.defaultValue))
        for (unsigned k = 0; k < 16; ++k) numbers.push_back((*m)(k / 4, k % 4));
    return numbers;
}

std::string enumText(const Attribute& a) {
    std::string text;
    short expected = 0;
    for (const auto& [name, index] : a.fields) {
        if (name.empty()) continue;
        if (!text.empty()) text += ":";
        text += index == expected ? name : name + "=" + std::to_string(index);
        expected = static_cast<short>(index + 1);
    }
    return text;
}

namespace {

Value limitOf(const Attribute& a, std::initializer_list<std::optional<double> Limits::*> which) {
    FloatArray numbers;
    const std::size_t count = a.type == AttributeType::Tuple ? a.children.size() : 1;
    for (std::size_t k = 0; k < count; ++k) {
        const Attribute& part = a.type == AttributeType::Tuple ? *a.children[k] : a;
        for (auto member : which)
            if (const auto& limit = part.limits[0].*member) numbers.push_back(toUi(part, *limit));
    }
    if (numbers.empty()) throw Error("The attribute '" + a.longName + "' has no such limit.");
    return numbers;
}

bool hasLimits(const Attribute& a, std::initializer_list<std::optional<double> Limits::*> which) {
    const Attribute& part = a.type == AttributeType::Tuple ? *a.children.front() : a;
    return std::ranges::all_of(which, [&](auto member) { return (part.limits[0].*member).has_value(); });
}

Value answer(const Attribute& a, const ParsedArguments& args) {
    using Yes = std::pair<const char*, bool>;
    for (const auto& [flag, yes] : {Yes{"h", a.hidden},
                                    Yes{"k", a.keyable},
                                    Yes{"ch", a.channelBox},
                                    Yes{"m", a.array},
                                    Yes{"c", a.connectable},
                                    Yes{"rd", a.readable},
                                    Yes{"w", a.writable},
                                    Yes{"st", a.storable},
                                    Yes{"ci", a.cached},
                                    Yes{"i", a.internal},
                                    Yes{"im", a.indexMatters},
                                    Yes{"ws", a.worldSpace},
                                    Yes{"uac", a.usedAsColor},
                                    Yes{"uaf", a.usedAsFilename},
                                    Yes{"aa", a.affectsAppearance},
                                    Yes{"aws", a.affectsWorldSpace},
                                    Yes{"idt", a.indeterminant},
                                    Yes{"rs", a.renderSource},
                                    Yes{"umb", a.usesArrayDataBuilder},
                                    Yes{"msg", a.type == AttributeType::Message},
                                    Yes{"e", a.type == AttributeType::Enum},
                                    Yes{"mne", hasLimits(a, {&Limits::min})},
                                    Yes{"mxe", hasLimits(a, {&Limits::max})},
                                    Yes{"re", hasLimits(a, {&Limits::min, &Limits::max})},
                                    Yes{"sme", hasLimits(a, {&Limits::softMin})},
                                    Yes{"sxe", hasLimits(a, {&Limits::softMax})},
                                    Yes{"sre", hasLimits(a, {&Limits::softMin, &Limits::softMax})}})
        if (args.has(flag)) return yes;
    if (args.has("min")) return limitOf(a, {&Limits::min});
    if (args.has("max")) return limitOf(a, {&Limits::max});
    if (args.has("r")) return limitOf(a, {&Limits::min, &Limits::max});
    if (args.has("smn")) return limitOf(a, {&Limits::softMin});
    if (args.has("smx")) return limitOf(a, {&Limits::softMax});
    if (args.has("s")) return a.shortName;
    if (args.has("ln")) return a.longName;
    if (args.has("nn")) return niceName(a);
    if (args.has("sr")) return limitOf(a, {&Limits::softMin, &Limits::softMax});
    if (args.has("at")) return attributeTypeName(a);
    if (args.has("nc")) return static_cast<int>(a.children.size());
    if (args.has("ld")) return defaultsOf(a);
    if (args.has("le")) {
        if (a.type != AttributeType::Enum) throw Error("The attribute '" + a.longName + "' is not an enumeration.");
        return StringArray{enumText(a)};
    }
    StringArray names;
    if (args.has("lc"))
        for (const auto& child : a.children) names.push_back(child->longName);
    else if (args.has("lp") && a.parent)
        names.push_back(a.parent->longName);
    else if (args.has("ls") && a.parent)
        for (const auto& child : a.parent->children)
            if (child.get() != &a) names.push_back(child->longName);
    if (args.has("lc") || args.has("lp") || args.has("ls")) return names;
    throw Error("attributeQuery was not told what to answer.");
}

Value attributeQuery(Call& call) {
    const ParsedArguments args(call, {{"n", "node", 1},
                                      {"typ", "type", 1},
                                      {"ex", "exists"},
                                      {"h", "hidden"},
                                      {"k", "keyable"},
                                      {"ch", "channelBox"},
                                      {"m", "multi"},
                                      {"c", "connectable"},
                                      {"rd", "readable"},
                                      {"w", "writable"},
                                      {"st", "storable"},
                                      {"ci", "cachedInternally"},
                                      {"i", "internal"},
                                      {"im", "indexMatters"},
                                      {"ws", "worldspace"},
                                      {"uac", "usedAsColor"},
                                      {"uaf", "usedAsFilename"},
                                      {"aa", "affectsAppearance"},
                                      {"aws", "affectsWorldspace"},
                                      {"idt", "indeterminant"},
                                      {"rs", "renderSource"},
                                      {"umb", "usesMultiBuilder"},
                                      {"msg", "message"},
                                      {"e", "enum"},
                                      {"mne", "minExists"},
                                      {"mxe", "maxExists"},
                                      {"re", "rangeExists"},
                                      {"sme", "softMinExists"},
                                      {"sxe", "softMaxExists"},
                                      {"sre", "softRangeExists"},
                                      {"min", "minimum"},
                                      {"max", "maximum"},
                                      {"r", "range"},
                                      {"smn", "softMin"},
                                      {"smx", "softMax"},
                                      {"sr", "softRange"},
                                      {"at", "attributeType"},
                                      {"s", "shortName"},
                                      {"ln", "longName"},
                                      {"nn", "niceName"},
                                      {"nc", "numberOfChildren"},
                                      {"ld", "listDefault"},
                                      {"le", "listEnum"},
                                      {"lc", "listChildren"},
                                      {"lp", "listParent"},
                                      {"ls", "listSiblings"}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("attributeQuery needs the name of one attribute.");
    const Attribute* found = nullptr;
    std::string owner;
    if (args.has("n")) {
        owner = args.text("n");
        found = nodeNamed(owner).findAttribute(names[0]);
    } else if (args.has("typ")) {
        owner = args.text("typ");
        const NodeType* type = theScene().findType(owner);
        if (!type) throw Error("Unknown object type: " + owner);
        found = type->find(names[0]);
    } else {
        throw Error("Must supply either a node name or a node type.");
    }
    if (args.has("ex")) return found != nullptr;
    if (!found) throw Error("Attribute '" + names[0] + "' was not found on '" + owner + "'.");
    return answer(*found, args);
}

/// attributeExists(attribute, node): 0 also when there is no such node.
Value attributeExists(Call& call) {
    const ParsedArguments args(call, {});
    const StringArray names = args.names();
    if (names.size() != 2) throw Error("attributeExists needs an attribute and a node.");
    const Node* node = theScene().findNode(names[1]);
    return node && node->findAttribute(names[0]);
}

} // namespace

void registerAttributeListCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "listAttr", listAttr);
    registerSceneCommand(interpreter, "attributeQuery", attributeQuery);
    registerSceneCommand(interpreter, "attributeExists", attributeExists);
}

} // namespace host::mel
