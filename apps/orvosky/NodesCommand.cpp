#include "Session.h"

#include "base/Messages.h"
#include "base/NumberText.h"
#include "commands/Host.h"
#include "scene/AttributeKind.h"
#include "scene/Node.h"
#include "scene/Scene.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <numbers>

namespace orvosky {
namespace {

using host::scene::Attribute;
using host::scene::AttributeType;
using host::scene::NodeType;
using Json = nlohmann::ordered_json;

/// What no attribute says of itself: units and meanings, beside the plug-in's shaders in the tool root.
Json readMeanings() {
    const std::filesystem::path file = toolRoot() / "attributes.json";
    std::ifstream in(file);
    Json meanings = Json::parse(in, nullptr, false);
    if (!meanings.is_object()) throw Failure("Cannot read " + file.string() + ".");
    return meanings;
}

/// A whole number as one.
Json plainNumber(double value) {
    if (value == static_cast<double>(static_cast<std::int64_t>(value))) return static_cast<std::int64_t>(value);
    return value;
}

/// The numbers of a value, as scripts see them: angles in degrees.
Json defaultOf(const Attribute& attribute) {
    if (attribute.type == AttributeType::String) return "";
    const auto* numbers = std::get_if<host::scene::Numeric>(&attribute.defaultValue);
    if (!numbers || numbers->count == 0) return nullptr;
    if (attribute.type == AttributeType::Numeric && attribute.numeric == host::scene::NumericType::Bool)
        return numbers->get() != 0;
    const auto one = [&](int k) -> Json {
        double value = numbers->get(k);
        if (attribute.type == AttributeType::Angle) value *= 180 / std::numbers::pi;
        // As many digits as the value's own precision has.
        if (attribute.numeric == host::scene::NumericType::Float)
            value = host::readNumber(fmt::format("{}", static_cast<float>(value))).value;
        return plainNumber(value);
    };
    if (!attribute.isCompound()) return one(0);
    Json all = Json::array();
    for (int k = 0; k < numbers->count; ++k) all.push_back(one(k));
    return all;
}

Json described(const Attribute& attribute, const Json& meanings) {
    Json json{{"name", attribute.longName}};
    if (attribute.shortName != attribute.longName) json["shortName"] = attribute.shortName;
    json["type"] = attribute.usedAsFilename ? "path" : host::scene::addedTypeName(attribute);
    json["default"] = defaultOf(attribute);
    // Those of the parts are all the same.
    const Attribute& limited = attribute.children.empty() ? attribute : *attribute.children.front();
    const host::scene::Limits& limits = limited.limits[0];
    for (const auto& [name, limit] : {std::pair("min", limits.min), std::pair("max", limits.max),
                                      std::pair("softMin", limits.softMin), std::pair("softMax", limits.softMax)})
        if (limit) json[name] = plainNumber(*limit);
    for (const auto& [field, value] : attribute.fields) json["fields"][field] = value;
    for (const auto& child : attribute.children) json["children"].push_back(child->longName);
    if (!attribute.writable) json["output"] = true;
    const Json known = meanings.value(attribute.longName, Json::object());
    json["unit"] = known.value("unit", "");
    json["meaning"] = known.value("meaning", "");
    if (known.contains("looks")) json["looks"] = known["looks"];
    return json;
}

Json described(const NodeType& type, const Json& meanings) {
    const Json known = meanings.value(type.name, Json::object());
    Json attributes = Json::array();
    const auto inherited = type.base->attributes();
    for (const Attribute* attribute : type.attributes())
        if (std::ranges::find(inherited, attribute) == inherited.end())
            attributes.push_back(described(*attribute, known.value("attributes", Json::object())));
    return {{"type", type.name}, {"about", known.value("about", "")}, {"attributes", attributes}};
}

std::string valueText(const Json& value) {
    if (value.is_null()) return "";
    if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
    if (value.is_string()) return value.get<std::string>();
    if (value.is_array()) {
        std::string text;
        for (const Json& one : value) text += (text.empty() ? "" : " ") + valueText(one);
        return text;
    }
    return value.dump();
}

/// "0 to 5", "from 1", "0 to any, slider to 50": a hard limit that there is none of is left out.
std::string limitsText(const Json& a) {
    const auto range = [&](const char* low, const char* high) -> std::string {
        const bool from = a.contains(low), to = a.contains(high);
        if (from && to) return valueText(a[low]) + " to " + valueText(a[high]);
        return from ? "from " + valueText(a[low]) : to ? "to " + valueText(a[high]) : "";
    };
    std::string text = range("min", "max");
    if (const std::string soft = range("softMin", "softMax"); !soft.empty())
        text += (text.empty() ? "slider " : "; slider ") + soft;
    if (a.contains("fields"))
        for (const auto& [name, value] : a["fields"].items())
            text += (text.empty() ? "" : ", ") + value.dump() + " " + name;
    return text;
}

std::string typeText(const Json& a) {
    std::string text = a["type"];
    if (a.contains("output")) text += ", output";
    return text;
}

std::string childrenText(const Json& a, const char* mark) {
    std::string text;
    if (a.contains("children"))
        for (const Json& child : a["children"])
            text += (text.empty() ? "" : ", ") + (mark + child.get<std::string>() + mark);
    return text;
}

/// Where the documents show the attribute in pictures.
std::string looksText(const Json& a) {
    return a.contains("looks") ? fmt::format(" [In pictures](looks.md#{}).", a["looks"].get<std::string>()) : "";
}

std::string asText(const Json& type) {
    std::string text = fmt::format("{}: {}\n", type["type"].get<std::string>(), type["about"].get<std::string>());
    for (const Json& a : type["attributes"]) {
        text += fmt::format("\n  {} ({})", a["name"].get<std::string>(), typeText(a));
        if (const std::string value = valueText(a["default"]); !value.empty()) text += ", default " + value;
        if (const std::string limits = limitsText(a); !limits.empty()) text += ", " + limits;
        if (const std::string unit = a["unit"]; !unit.empty()) text += ", in " + unit;
        text += fmt::format("\n      {}\n", a["meaning"].get<std::string>());
        if (const std::string children = childrenText(a, ""); !children.empty())
            text += "      Parts: " + children + "\n";
    }
    return text;
}

std::string asMarkdown(const Json& types) {
    std::string text =
        "# Nodes\n\nEvery node type of the plug-in with its attributes. This file is written by `orvosky nodes "
        "--markdown`.\n\n"
        "Hard limits hold for whatever is typed; a slider shows the soft ones. A display colour is red, green and\n"
        "blue as a screen shows them ([pictures.md](pictures.md)). Of a cube root the value stands for its third\n"
        "power, times 15 (`redDecayFalloff`: 30). A fraction of 11.25 degrees has its 1 there.\n";
    for (const Json& type : types) {
        text += fmt::format(
            "\n## {}\n\n{}\n\n| attribute | type | default | limits | unit | meaning |\n|---|---|---|---|---|---|\n",
            type["type"].get<std::string>(), type["about"].get<std::string>());
        for (const Json& a : type["attributes"]) {
            const std::string children = childrenText(a, "`");
            text += fmt::format("| `{}` | {} | {} | {} | {} | {}{}{} |\n", a["name"].get<std::string>(), typeText(a),
                                valueText(a["default"]), limitsText(a), a["unit"].get<std::string>(),
                                a["meaning"].get<std::string>(), children.empty() ? "" : " Parts: " + children + ".",
                                looksText(a));
        }
    }
    return text;
}

} // namespace

int nodesCommand(const CommonOptions& common, const NodesOptions& options) {
    return reported([&] {
        const Session session(common);
        const Json meanings = readMeanings();
        Json types = Json::array();
        std::vector<std::string> names;
        for (const NodeType* type : host::Host::instance().scene().types()) {
            if (type->plugin.empty()) continue;
            names.push_back(type->name);
            if (options.type.empty() || options.type == type->name) types.push_back(described(*type, meanings));
        }
        if (types.empty())
            throw Failure("The plug-in has no node type " + options.type + "; `orvosky nodes` lists them.");
        std::string text;
        if (options.json)
            text = types.dump(2) + "\n";
        else if (options.markdown)
            text = asMarkdown(types);
        else if (options.type.empty())
            for (const Json& type : types)
                text += fmt::format("{:<36} {}\n", type["type"].get<std::string>(), type["about"].get<std::string>());
        else
            text = asText(types[0]);
        host::printText(text);
    });
}

} // namespace orvosky
