#include "ElementRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

namespace orvosky::inspect {
namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string inQuotes(std::string_view text) { return "'" + printable(text, 60) + "'"; }

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    while (found.size() < 4) { // no attribute has more than three
        const std::size_t begin = text.find_first_not_of(blanks);
        if (begin == text.npos) break;
        const std::size_t end = std::min(text.find_first_of(blanks, begin), text.size());
        found.push_back(text.substr(begin, end - begin));
        text.remove_prefix(end);
    }
    return found;
}

/// Reads a whole word as a number; the text says what is wrong with it.
template <class T>
std::string readNumber(std::string_view word, T& value) {
    if (word.starts_with('+') && !word.starts_with("+-")) word.remove_prefix(1);
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error == std::errc::result_out_of_range) return "is out of the range of numbers";
    if (error != std::errc() || end != word.data() + word.size())
        return std::is_integral_v<T> ? "is not a whole number" : "is not a number";
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(value)) return "is not finite";
    return {};
}

/// Reads exactly as many numbers as there is room for.
std::string readNumbers(std::string_view text, std::span<double> values) {
    const auto found = words(text);
    if (found.size() != values.size())
        return values.size() == 1 ? std::string("is not a number") : fmt::format("is not {} numbers", values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        if (std::string wrong = readNumber(found[i], values[i]); !wrong.empty()) return wrong;
    return {};
}

std::string outside(const AttributeRule& rule, double value) {
    if (value >= rule.min && value <= rule.max) return {};
    if (std::isinf(rule.max)) return fmt::format("is below {}", rule.min);
    return fmt::format("is outside of {} to {}", rule.min, rule.max);
}

/// Reads a value; `wrong` says what is wrong with it.
Value readValue(const std::string& text, const AttributeRule& rule, std::string& wrong) {
    switch (rule.kind) {
    case Kind::Number: {
        double value = 0;
        wrong = readNumbers(text, {&value, 1});
        if (!wrong.empty()) return text;
        wrong = outside(rule, value);
        return value;
    }
    case Kind::Triple: {
        Triple value{};
        wrong = readNumbers(text, value);
        if (!wrong.empty()) return text;
        for (const double v : value)
            if (wrong.empty()) wrong = outside(rule, v);
        return value;
    }
    case Kind::Flag:
    case Kind::Integer: {
        std::int64_t value = 0;
        const auto found = words(text);
        wrong = found.size() == 1 ? readNumber(found[0], value) : "is not a whole number";
        if (!wrong.empty()) return text;
        if (rule.kind == Kind::Flag && value != 0 && value != 1)
            wrong = "is neither 0 nor 1";
        else
            wrong = outside(rule, static_cast<double>(value));
        return value;
    }
    case Kind::Text: break;
    }
    return text;
}

} // namespace

std::optional<Triple> readTriple(std::string_view text) {
    Triple value{};
    if (!readNumbers(text, value).empty()) return std::nullopt;
    return value;
}

Element readElement(const XmlElement& xml, const ElementRule& rule, int number, Problems& problems) {
    Element element{.name = rule.name, .number = number, .line = xml.line()};
    for (const AttributeRule& a : rule.attributes) {
        const std::optional<std::string> text = xml.attribute(a.name);
        if (a.onlyWith) {
            const auto flag = element.get<std::int64_t>(a.onlyWith);
            if (text && flag == 0) problems.add(element, fmt::format("{} is given, but {} is 0", a.name, a.onlyWith));
            if (!text && flag != 1) continue;
        }
        if (!text) {
            problems.add(element, fmt::format("the attribute '{}' is missing", a.name));
            continue;
        }
        std::string wrong;
        element.attributes.push_back({a.name, readValue(*text, a, wrong), a.unit});
        if (!wrong.empty()) problems.add(element, fmt::format("{} {}: {}", a.name, wrong, inQuotes(*text)));
    }
    for (const std::string_view name : xml.attributeNames())
        if (std::ranges::none_of(rule.attributes, [&](const AttributeRule& r) { return name == r.name; }))
            problems.add(element, "unknown attribute " + inQuotes(name));
    return element;
}

void checkChildren(const XmlElement& xml, std::initializer_list<std::string_view> known, const std::string& where,
                   Problems& problems) {
    for (const auto& [text, line] : xml.texts())
        problems.add(line, where, "text that is part of no element: " + inQuotes(text));
    for (XmlElement child = xml.first(); child; child = child.next())
        if (std::ranges::find(known, child.name()) == known.end())
            problems.add(child.line(), where, "unknown element <" + printable(child.name(), 60) + ">");
}

} // namespace orvosky::inspect
