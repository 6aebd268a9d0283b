#include "base/NumberText.h"

#include "base/Letters.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace host {
namespace {

std::size_t blanksBefore(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isBlank) - text.begin());
}

// from_chars takes no plus sign; one is skipped where a number follows it.
std::size_t plusAt(std::string_view text, std::size_t at) {
    return at + 1 < text.size() && text[at] == '+' && text[at + 1] != '-' ? 1 : 0;
}

template <class Number>
std::from_chars_result heldTo(const char* first, const char* last, Number& value) {
    const auto result = std::from_chars(first, last, value);
    if (result.ec != std::errc::result_out_of_range) return result;
    std::string_view number(first, static_cast<std::size_t>(result.ptr - first));
    const bool negative = number.starts_with('-');
    if (negative) number.remove_prefix(1);
    // A negative exponent, or a leading zero with nothing but zeros before the point, is an underflow.
    const std::size_t exponent = number.find_first_of("eE");
    const bool small = exponent != number.npos ? number.substr(exponent + 1, 1) == "-"
                                               : number.find_first_not_of('0') == number.find('.');
    value = small ? Number(0) : std::numeric_limits<Number>::infinity();
    if (negative) value = -value;
    return {result.ptr, std::errc()};
}

template <class Number>
std::optional<Number> taken(std::string_view& text) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return value;
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

std::from_chars_result heldFromChars(const char* first, const char* last, double& value) {
    return heldTo(first, last, value);
}
std::from_chars_result heldFromChars(const char* first, const char* last, float& value) {
    return heldTo(first, last, value);
}

ReadNumber readNumber(std::string_view text) {
    std::size_t at = blanksBefore(text);
    at += plusAt(text, at);
    const std::size_t first = at + (at < text.size() && text[at] == '-' ? 1 : 0);
    if (first >= text.size() || !(text[first] == '.' || (text[first] >= '0' && text[first] <= '9'))) return {};

    ReadNumber read;
    const auto result = heldFromChars(text.data() + at, text.data() + text.size(), read.value);
    if (result.ec != std::errc()) return {};
    read.length = static_cast<std::size_t>(result.ptr - text.data());
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

std::optional<int> takeInt(std::string_view& text) { return taken<int>(text); }
std::optional<double> takeDouble(std::string_view& text) { return taken<double>(text); }

std::optional<int> readInt(std::string_view text) {
    const auto value = takeInt(text);
    return text.empty() ? value : std::nullopt;
}

bool endsAt(std::string_view text, std::size_t length) {
    return blanksBefore(text.substr(length)) == text.size() - length;
}

} // namespace host
