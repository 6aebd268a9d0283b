#include "mel/Value.h"

#include "base/NumberText.h"
#include "mel/Numbers.h"
#include "mel/TextTools.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>

namespace host::mel {
namespace {

template <class Out, class In, class F>
Out mapped(const In& in, F f) {
    Out out;
    out.reserve(in.size());
    for (const auto& element : in) out.push_back(f(element));
    return out;
}

double length(const Vector& v) { return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); }

/// "-0x1F": bits of an int.
std::optional<NumberPrefix> hexadecimalPrefix(std::string_view text) {
    std::size_t at = std::min(text.find_first_not_of(kWhiteSpace), text.size());
    const bool negative = text.substr(at, 1) == "-";
    if (negative || text.substr(at, 1) == "+") ++at;
    if (const auto mark = text.substr(at, 2); mark != "0x" && mark != "0X") return std::nullopt;
    unsigned bits = 0;
    const auto [last, status] = std::from_chars(text.data() + at + 2, text.data() + text.size(), bits, 16);
    if (status != std::errc()) return std::nullopt;
    const double v = static_cast<int>(bits);
    return NumberPrefix{negative ? -v : v, static_cast<std::size_t>(last - text.data()), true};
}

std::string text(const Vector& v) { return formatFloat(v.x) + ' ' + formatFloat(v.y) + ' ' + formatFloat(v.z); }

template <class Array>
auto firstOr(const Array& a, typename Array::value_type fallback = {}) {
    return a.empty() ? fallback : a.front();
}

/// The numbers a matrix, vector, or array of any kind consists of, in order.
std::optional<FloatArray> flattened(const Value& value) {
    if (auto v = value.get<Vector>()) return FloatArray{v->x, v->y, v->z};
    if (auto m = value.get<Matrix>()) return m->elements;
    if (auto a = value.get<FloatArray>()) return *a;
    if (auto a = value.get<IntArray>()) return FloatArray(a->begin(), a->end());
    if (auto a = value.get<StringArray>())
        return mapped<FloatArray>(*a, [](const std::string& s) { return leadingNumber(s); });
    if (auto a = value.get<VectorArray>()) {
        FloatArray out;
        out.reserve(a->size() * 3);
        for (const Vector& v : *a) out.insert(out.end(), {v.x, v.y, v.z});
        return out;
    }
    return std::nullopt;
}

} // namespace

std::string formatFloat(double v) {
    if (std::isnan(v)) return "nan";
    std::array<char, 40> buffer;
    auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), v, std::chars_format::general, 10).ptr;
    return {buffer.data(), end};
}

std::optional<NumberPrefix> numberPrefix(std::string_view text) {
    if (const auto hexadecimal = hexadecimalPrefix(text)) return hexadecimal;
    const ReadNumber read = readNumber(text);
    if (read.length == 0) return std::nullopt;
    const bool whole =
        text.substr(0, read.length).find_first_of(".eE") == std::string_view::npos && std::abs(read.value) <= INT_MAX;
    return NumberPrefix{read.value, read.length, whole};
}

double leadingNumber(std::string_view text) {
    auto prefix = numberPrefix(text);
    return prefix ? prefix->value : 0.0;
}

int saturatedInt(double v) {
    if (std::isnan(v)) return 0;
    if (v >= INT_MAX) return INT_MAX;
    if (v <= INT_MIN) return INT_MIN;
    return static_cast<int>(v);
}

std::size_t Value::size() const {
    return std::visit(
        [](const auto& v) -> std::size_t {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return 0;
            else if constexpr (std::is_same_v<T, IntArray> || std::is_same_v<T, FloatArray> ||
                               std::is_same_v<T, StringArray> || std::is_same_v<T, VectorArray>)
                return v.size();
            else
                return 1;
        },
        data_);
}

int Value::toInt() const {
    if (auto v = get<int>()) return *v;
    if (auto a = get<IntArray>()) return firstOr(*a);
    return saturatedInt(toFloat());
}

double Value::toFloat() const {
    switch (type()) {
    case Type::Int: return *get<int>();
    case Type::Float: return *get<double>();
    case Type::String: return leadingNumber(*get<std::string>());
    case Type::Vector: return length(*get<Vector>());
    case Type::Matrix: return firstOr(get<Matrix>()->elements);
    case Type::IntArray: return firstOr(*get<IntArray>());
    case Type::FloatArray: return firstOr(*get<FloatArray>());
    case Type::StringArray: return leadingNumber(firstOr(*get<StringArray>()));
    case Type::VectorArray: return length(firstOr(*get<VectorArray>()));
    case Type::None: break;
    }
    return 0;
}

bool Value::toBool() const {
    if (auto v = get<int>()) return *v != 0;
    const std::string* s = get<std::string>();
    if (auto a = get<StringArray>(); a && !a->empty()) s = &a->front();
    if (s && (*s == "true" || *s == "on" || *s == "yes")) return true;
    return toFloat() != 0;
}

std::string Value::toString() const {
    switch (type()) {
    case Type::Int: return std::to_string(*get<int>());
    case Type::Float: return formatFloat(*get<double>());
    case Type::String: return *get<std::string>();
    case Type::Vector: return text(*get<Vector>());
    case Type::Matrix: {
        std::string out;
        for (double e : get<Matrix>()->elements) out += (out.empty() ? "" : " ") + formatFloat(e);
        return out;
    }
    case Type::IntArray: return size() ? std::to_string(get<IntArray>()->front()) : std::string();
    case Type::FloatArray: return size() ? formatFloat(get<FloatArray>()->front()) : std::string();
    case Type::StringArray: return firstOr(*get<StringArray>());
    case Type::VectorArray: return size() ? text(get<VectorArray>()->front()) : std::string();
    case Type::None: break;
    }
    return {};
}

Vector Value::toVector() const {
    if (auto v = get<Vector>()) return *v;
    if (auto a = get<VectorArray>()) return firstOr(*a);
    FloatArray numbers;
    if (auto s = get<std::string>()) {
        std::string_view rest = *s;
        while (numbers.size() < 3) {
            auto next = numberPrefix(rest);
            if (!next) break;
            numbers.push_back(next->value);
            rest.remove_prefix(next->length);
        }
    } else if (auto all = flattened(*this))
        numbers = std::move(*all);
    else
        numbers = {toFloat()};
    if (numbers.size() == 1) return {numbers[0], numbers[0], numbers[0]};
    numbers.resize(3);
    return {numbers[0], numbers[1], numbers[2]};
}

IntArray Value::toIntArray() const {
    if (auto a = get<IntArray>()) return *a;
    return mapped<IntArray>(toFloatArray(), saturatedInt);
}

FloatArray Value::toFloatArray() const {
    if (auto all = flattened(*this)) return *all;
    return isNone() ? FloatArray{} : FloatArray{toFloat()};
}

StringArray Value::toStringArray() const {
    if (auto a = get<StringArray>()) return *a;
    if (auto a = get<IntArray>()) return mapped<StringArray>(*a, [](int v) { return std::to_string(v); });
    if (auto a = get<FloatArray>()) return mapped<StringArray>(*a, formatFloat);
    if (auto a = get<VectorArray>()) return mapped<StringArray>(*a, text);
    return isNone() ? StringArray{} : StringArray{toString()};
}

VectorArray Value::toVectorArray() const {
    if (auto a = get<VectorArray>()) return *a;
    if (isNone()) return {};
    if (!isArray()) return {toVector()};
    const FloatArray numbers = toFloatArray();
    VectorArray out;
    for (std::size_t i = 0; i < numbers.size(); i += 3)
        out.push_back(
            {numbers[i], i + 1 < numbers.size() ? numbers[i + 1] : 0.0, i + 2 < numbers.size() ? numbers[i + 2] : 0.0});
    return out;
}

std::string Value::printed() const {
    std::string out;
    if (isArray()) {
        for (const std::string& element : toStringArray()) out += element + '\n';
        return out;
    }
    auto m = get<Matrix>();
    if (!m) return toString();
    for (int row = 0; row < m->rows; ++row)
        for (int column = 0; column < m->columns; ++column)
            out += formatFloat(m->elements[static_cast<std::size_t>(row * m->columns + column)]) +
                   (column + 1 < m->columns ? ' ' : '\n');
    return out;
}

} // namespace host::mel
