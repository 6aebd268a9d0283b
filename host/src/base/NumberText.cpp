#include "base/NumberText.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace host {
namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::size_t blanksBefore(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isBlank) - text.begin());
}

// from_chars takes no plus sign; one is skipped where a number follows it.
std::size_t plusAt(std::string_view text, std::size_t at) {
    return at + 1 < text.size() && text[at] == '+' && text[at + 1] != '-' ? 1 : 0;
}

} // namespace

std::string numberText(double value, int digits) {
    char buffer[64];
    const int wanted = std::clamp(digits, 1, std::numeric_limits<double>::max_digits10);
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, wanted).ptr;
    return std::string(buffer, end);
}

std::string fixedText(double value, int decimals) {
    // The largest double has 309 digits before the point.
    std::string text(320 + static_cast<std::size_t>(std::max(decimals, 0)), '\0');
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, std::max(decimals, 0))
            .ptr;
    text.resize(static_cast<std::size_t>(end - text.data()));
    return text;
}

ReadNumber readNumber(std::string_view text) {
    std::size_t at = blanksBefore(text);
    at += plusAt(text, at);
    const std::size_t first = at + (at < text.size() && text[at] == '-' ? 1 : 0);
    if (first >= text.size() || !(text[first] == '.' || (text[first] >= '0' && text[first] <= '9'))) return {};

    ReadNumber read;
    const auto result = std::from_chars(text.data() + at, text.data() + text.size(), read.value);
    if (result.ec == std::errc::invalid_argument) return {};
    read.length = static_cast<std::size_t>(result.ptr - text.data());
    if (result.ec == std::errc::result_out_of_range) {
        // A negative exponent, or a leading zero with nothing but zeros before the point, is an underflow.
        const std::string_view number = text.substr(first, read.length - first);
        const std::size_t exponent = number.find_first_of("eE");
        const bool smallExponent = exponent != std::string_view::npos && number.substr(exponent + 1, 1) == "-";
        const bool noExponent = exponent == std::string_view::npos;
        const bool underflow = smallExponent || (noExponent && number.find_first_not_of("0") == number.find('.'));
        read.value = underflow ? 0.0 : std::numeric_limits<double>::infinity();
        if (first != at) read.value = -read.value;
    }
    return read;
}

ReadWhole readWhole(std::string_view text) {
    std::size_t at = blanksBefore(text);
    at += plusAt(text, at);
    ReadWhole read;
    const auto result = std::from_chars(text.data() + at, text.data() + text.size(), read.value);
    if (result.ec == std::errc::invalid_argument) return {};
    read.length = static_cast<std::size_t>(result.ptr - text.data());
    if (result.ec == std::errc::result_out_of_range) {
        read.inRange = false;
        read.value = text[at] == '-' ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
    }
    return read;
}

std::optional<int> readInt(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

bool endsAt(std::string_view text, std::size_t length) {
    return blanksBefore(text.substr(length)) == text.size() - length;
}

} // namespace host
