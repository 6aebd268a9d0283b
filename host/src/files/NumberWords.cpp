#include "files/NumberWords.h"

#include "base/Letters.h"
#include "base/NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace host::files {
namespace {

template <class T>
std::optional<T> parse(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    T value = 0;
    const char* last = word.data() + word.size();
    const auto [end, error] = heldFromChars(word.data(), last, value);
    return end == last && error == std::errc() ? std::optional(value) : std::nullopt;
}

/// "1.#INF", "-1.#IND", "1.#QNAN0" and their like.
std::optional<double> parseOldSpelling(std::string_view word) {
    const bool negative = word.starts_with('-');
    if (negative) word.remove_prefix(1);
    if (!word.starts_with("1.#")) return std::nullopt;
    const double value = word.substr(3).starts_with("INF") ? std::numeric_limits<double>::infinity()
                                                           : std::numeric_limits<double>::quiet_NaN();
    return negative ? -value : value;
}

template <class T>
std::string_view shortest(char (&text)[40], T value) {
    if (std::isnan(value)) return "nan";
    return {text, static_cast<std::size_t>(std::to_chars(text, text + sizeof text, value).ptr - text)};
}

template <class T, class Parse>
std::string_view readAll(std::string_view text, std::vector<T>& numbers, Parse parseWord) {
    const char *at = text.data(), *const end = at + text.size();
    while (true) {
        while (at != end && isBlank(*at)) ++at;
        if (at == end) return {};
        T value = 0;
        const auto [behind, error] = std::from_chars(at, end, value);
        if (error == std::errc() && (behind == end || isBlank(*behind))) {
            numbers.push_back(value);
            at = behind;
            continue;
        }
        const char* word = at;
        while (at != end && !isBlank(*at)) ++at;
        const std::string_view whole(word, static_cast<std::size_t>(at - word));
        const auto number = parseWord(whole);
        if (!number) return whole;
        numbers.push_back(*number);
    }
}

} // namespace

std::string_view readNumbers(std::string_view text, std::vector<double>& numbers) {
    return readAll(text, numbers, parseNumber);
}

std::string_view readNumbers(std::string_view text, std::vector<float>& numbers) {
    return readAll(text, numbers, parseFloat);
}

std::string_view readNumbers(std::string_view text, std::vector<int>& numbers) {
    return readAll(text, numbers, [](std::string_view word) -> std::optional<int> {
        const auto value = parseInteger(word);
        if (!value || *value < std::numeric_limits<int>::min() || *value > std::numeric_limits<int>::max())
            return std::nullopt;
        return static_cast<int>(*value);
    });
}

std::optional<bool> parseBool(std::string_view word) {
    if (word == "yes" || word == "on" || word == "true" || word == "1") return true;
    if (word == "no" || word == "off" || word == "false" || word == "0") return false;
    return std::nullopt;
}

std::optional<double> parseNumber(std::string_view word) {
    if (const auto value = parse<double>(word)) return value;
    if (const auto truth = parseBool(word)) return *truth ? 1.0 : 0.0;
    if (const auto whole = parseInteger(word)) return static_cast<double>(*whole);
    return parseOldSpelling(word);
}

std::optional<float> parseFloat(std::string_view word) {
    if (const auto value = parse<float>(word)) return value;
    const auto value = parseNumber(word);
    return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
}

std::optional<std::int64_t> parseInteger(std::string_view word) {
    int base = 10;
    if (word.starts_with("0x") || word.starts_with("0X")) {
        base = 16;
        word.remove_prefix(2);
    }
    std::int64_t value = 0;
    const char* last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, value, base);
    if (word.empty() || end != last || error != std::errc()) return std::nullopt;
    return value;
}

void appendNumber(std::string& out, double value) {
    char text[40];
    out += shortest(text, value);
}

void appendNumber(std::string& out, float value) {
    char text[40];
    const std::string_view brief = shortest(text, value);
    double back = 0;
    std::from_chars(brief.data(), brief.data() + brief.size(), back);
    // Read as a double and then rounded, the shortest text of a float may end at its neighbour.
    if (std::isfinite(value) && static_cast<float>(back) != value)
        appendNumber(out, static_cast<double>(value));
    else
        out += brief;
}

void appendNumber(std::string& out, std::int64_t value) { out += std::to_string(value); }

void appendQuotient(std::string& out, double value, double factor) {
    const double quotient = value / factor;
    if (factor == 1.0 || value == 0 || !std::isfinite(quotient)) {
        appendNumber(out, quotient);
        return;
    }
    std::string best;
    double candidate = quotient;
    for (int k = 0; k < 3; ++k) candidate = std::nextafter(candidate, -std::numeric_limits<double>::infinity());
    for (int k = -3; k <= 3; ++k) {
        if (candidate * factor == value) {
            char text[40];
            const std::string_view brief = shortest(text, candidate);
            if (best.empty() || brief.size() < best.size()) best = brief;
        }
        candidate = std::nextafter(candidate, std::numeric_limits<double>::infinity());
    }
    if (best.empty()) appendNumber(best, quotient);
    out += best;
}

} // namespace host::files
