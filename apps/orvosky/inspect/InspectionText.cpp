#include "InspectionText.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>

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

std::string asSummary(const Inspection& found, const std::vector<NamedFile>& files) {
    std::vector<std::pair<std::string, std::size_t>> kinds;
    for (const Element& element : found.elements) {
        const auto kind = std::ranges::find(kinds, element.name, &std::pair<std::string, std::size_t>::first);
        if (kind == kinds.end())
            kinds.emplace_back(element.name, 1);
        else
            ++kind->second;
    }
    std::string text =
        fmt::format("{}: {}, version {}, {}\n", printable(found.file), documentName(found.type),
                    found.version.empty() ? "missing" : printable(found.version, 60),
                    found.problems.count() == 0 ? "everything fits"
                                                : counted(found.problems.count(), "thing") + " that does not fit");
    for (const auto& [name, count] : kinds) text += fmt::format("  {:<28} {:>6}\n", name, count);
    if (found.data) text += fmt::format("  {:<28} {:>6} bytes\n", printable(found.data->file), found.data->size);
    const auto missing = std::ranges::count_if(files, [](const NamedFile& file) { return file.file.empty(); });
    text += fmt::format("  {} named, {} of them missing\n", counted(files.size(), "file"), missing);
    return text;
}

std::string asDifference(const Inspection& a, const Inspection& b) {
    std::string text;
    const auto say = [&](char mark, const std::string& line) { text += fmt::format("{} {}\n", mark, line); };
    if (a.type != b.type) say('-', "type " + printable(a.type)), say('+', "type " + printable(b.type));
    if (a.version != b.version)
        say('-', "version " + printable(a.version)), say('+', "version " + printable(b.version));
    const auto key = [](const Element& e) { return std::pair(e.name, std::max(1, e.number)); };
    const auto valueOf = [](const NamedValue& v) {
        return v.name + " " + std::visit([](const auto& value) { return shown(value); }, v.value);
    };
    const std::function<void(const std::vector<Element>&, const std::vector<Element>&, const std::string&)> compare =
        [&](const std::vector<Element>& left, const std::vector<Element>& right, const std::string& within) {
            std::map<std::pair<std::string, int>, const Element*> others;
            for (const Element& element : right) others.emplace(key(element), &element);
            for (const Element& element : left) {
                const std::string name = within + element.described();
                const auto other = others.find(key(element));
                if (other == others.end()) {
                    say('-', name);
                    continue;
                }
                std::set<std::string> before, after;
                for (const NamedValue& v : element.attributes) before.insert(valueOf(v));
                for (const NamedValue& v : other->second->attributes) after.insert(valueOf(v));
                for (const NamedValue& v : element.attributes)
                    if (!after.contains(valueOf(v))) say('-', name + ": " + valueOf(v));
                for (const NamedValue& v : other->second->attributes)
                    if (!before.contains(valueOf(v))) say('+', name + ": " + valueOf(v));
                compare(element.children, other->second->children, name + ", ");
                others.erase(other);
            }
            for (const Element& element : right)
                if (others.contains(key(element))) say('+', within + element.described());
        };
    compare(a.elements, b.elements, "");
    const auto dataOf = [](const Inspection& found) {
        if (!found.data) return std::string();
        std::ifstream in(found.data->file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    if (a.data.has_value() != b.data.has_value() || dataOf(a) != dataOf(b)) {
        if (a.data) say('-', fmt::format("data of {}", counted(a.data->size, "byte")));
        if (b.data) say('+', fmt::format("data of {}, other ones", counted(b.data->size, "byte")));
    }
    return text;
}

std::string asList(const Inspection& found, const std::vector<NamedFile>& files) {
    std::string text;
    if (found.data) text += fmt::format("there    {}  (data)\n", printable(found.data->file));
    for (const NamedFile& file : files)
        text += fmt::format("{}  {}  ({}, {})\n", file.file.empty() ? "missing" : "there  ", printable(file.path),
                            file.element->described(), file.attribute);
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
