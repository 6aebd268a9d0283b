#include "InspectionText.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace orvosky::inspect {
namespace {

using Json = nlohmann::ordered_json;

std::string_view documentName(std::string_view type) {
    if (type == "SceneDefinition") return "sky scene";
    if (type == "Modeler_ParticleCloud") return "cloud";
    if (type == "Modeler_ParticleCloudLibrary") return "cloud library";
    return "shading parameters of clouds";
}

std::string shown(double value) { return fmt::format("{}", value); }
std::string shown(std::int64_t value) { return fmt::format("{}", value); }
std::string shown(const Triple& v) { return fmt::format("{} {} {}", v[0], v[1], v[2]); }
std::string shown(const std::string& text) { return "'" + printable(text) + "'"; }

/// Worked-out values have no six decimals of their own; more digits than these would only be noise.
std::string rounded(const Value& value) {
    const auto digits = [](double d) { return fmt::format("{:.6g}", d); };
    if (const auto* d = std::get_if<double>(&value)) return digits(*d);
    if (const auto* t = std::get_if<Triple>(&value))
        return fmt::format("{} {} {}", digits((*t)[0]), digits((*t)[1]), digits((*t)[2]));
    return std::visit([](const auto& v) { return shown(v); }, value);
}

void addElement(const Element& element, const std::string& indent, std::string& text) {
    text += fmt::format("{}{} (line {})\n", indent, element.described(), element.line);
    const auto addLine = [&](char mark, const NamedValue& v, const std::string& value) {
        text += fmt::format("{}  {} {:<24} {}{}{}\n", indent, mark, v.name, value, v.unit.empty() ? "" : " ", v.unit);
    };
    for (const NamedValue& v : element.attributes)
        addLine(' ', v, std::visit([](const auto& value) { return shown(value); }, v.value));
    for (const NamedValue& v : element.derived) addLine('>', v, rounded(v.value));
    for (const Element& child : element.children) addElement(child, indent + "    ", text);
}

Json asObject(const std::vector<NamedValue>& values) {
    Json object = Json::object();
    for (const NamedValue& v : values) std::visit([&](const auto& value) { object[v.name] = value; }, v.value);
    return object;
}

Json asObject(const Element& element) {
    Json object{{"element", element.name}, {"line", element.line}, {"attributes", asObject(element.attributes)}};
    if (!element.derived.empty()) object["derived"] = asObject(element.derived);
    for (const Element& child : element.children) object["children"].push_back(asObject(child));
    return object;
}

} // namespace

std::string asText(const Inspection& found) {
    std::string text = fmt::format("{}: {} (type {}, version {})\n\n", printable(found.file), documentName(found.type),
                                   found.type, found.version.empty() ? "missing" : printable(found.version, 60));
    const auto hasDerived = [](const Element& e) { return !e.derived.empty(); };
    if (std::ranges::any_of(found.elements, hasDerived))
        text += "Lines behind > are worked out; the others stand in the file.\n\n";
    for (const Element& element : found.elements) {
        addElement(element, "", text);
        text += "\n";
    }
    if (found.data)
        text += fmt::format("{}: {}, {}\n\n", printable(found.data->file), counted(found.data->size, "byte"),
                            found.data->endMark ? "with its end mark" : "without an end mark");
    for (const std::string& note : found.notes) text += "Note: " + note + "\n";
    if (found.problems.count() == 0)
        text += fmt::format("OK: {}, everything fits.\n", counted(found.elements.size(), "element"));
    else
        text += fmt::format("Not OK: {} {} not fit.\n", found.problems.count(),
                            found.problems.count() == 1 ? "thing does" : "things do");
    return text;
}

std::string asJson(const Inspection& found) {
    Json object{{"file", found.file}, {"type", found.type}, {"version", found.version}};
    object["elements"] = Json::array();
    for (const Element& element : found.elements) object["elements"].push_back(asObject(element));
    if (found.data)
        object["data"] = {{"file", found.data->file}, {"size", found.data->size}, {"endMark", found.data->endMark}};
    object["notes"] = found.notes;
    object["warnings"] = found.warnings;
    object["problems"] = found.problems.texts();
    object["ok"] = found.problems.count() == 0;
    // A file's name may be of any bytes, JSON text may not.
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace orvosky::inspect
