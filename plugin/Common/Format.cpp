#include "Format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

namespace orvo {
namespace {

constexpr int longestField = 20480;

struct Conversion {
    bool left = false, zeros = false, plus = false, blank = false;
    int width = 0;
    std::optional<int> precision;
    char letter = 0;
};

int readNumber(std::string_view text, std::size_t& at) {
    int number = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
        number = std::min(number * 10 + (text[at] - '0'), longestField);
    return number;
}

/// Reads what follows a per cent sign; `at` ends behind it.
Conversion readConversion(std::string_view text, std::size_t& at) {
    Conversion c;
    for (bool flag = true; flag && at < text.size(); at += flag) {
        switch (text[at]) {
        case '-': c.left = true; break;
        case '0': c.zeros = true; break;
        case '+': c.plus = true; break;
        case ' ': c.blank = true; break;
        default: flag = false;
        }
    }
    c.width = readNumber(text, at);
    if (at < text.size() && text[at] == '.') c.precision = readNumber(text, ++at);
    while (at < text.size() && std::string_view("hljztL").find(text[at]) != std::string_view::npos) ++at;
    if (at < text.size()) c.letter = text[at++];
    return c;
}

bool isOneOf(char letter, std::string_view letters) { return letters.find(letter) != std::string_view::npos; }

/// Sign and body brought to the width: blanks outside, or zeros between the two.
std::string padded(const Conversion& c, std::string_view sign, std::string_view body, bool zeros) {
    const std::size_t length = sign.size() + body.size();
    const std::size_t fill = static_cast<std::size_t>(c.width) > length ? c.width - length : 0;
    std::string text;
    text.reserve(length + fill);
    if (!c.left && !zeros) text.append(fill, ' ');
    text += sign;
    if (!c.left && zeros) text.append(fill, '0');
    text += body;
    if (c.left) text.append(fill, ' ');
    return text;
}

std::string_view signText(const Conversion& c, bool negative) {
    return negative ? "-" : c.plus ? "+" : c.blank ? " " : "";
}

void toUpper(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char x) { return x >= 'a' && x <= 'z' ? static_cast<char>(x - 'a' + 'A') : x; });
}

std::string integerText(const Conversion& c, const FormatArgument::Integer& value) {
    const bool isSigned = isOneOf(c.letter, "di");
    const bool negative = isSigned && value.asSigned < 0;
    const unsigned long long size = !isSigned  ? value.asUnsigned
                                    : negative ? 0ULL - static_cast<unsigned long long>(value.asSigned)
                                               : static_cast<unsigned long long>(value.asSigned);
    const int base = isOneOf(c.letter, "xX") ? 16 : c.letter == 'o' ? 8 : 10;
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), size, base).ptr;
    std::string body(digits.data(), end);
    if (c.letter == 'X') toUpper(body);
    if (c.precision) {
        if (*c.precision == 0 && size == 0) body.clear();
        if (body.size() < static_cast<std::size_t>(*c.precision)) body.insert(0, *c.precision - body.size(), '0');
    }
    return padded(c, isSigned ? signText(c, negative) : "", body, c.zeros && !c.precision);
}

std::string realText(const Conversion& c, double value) {
    const char lower = static_cast<char>(c.letter | 0x20);
    const auto style = lower == 'f'   ? std::chars_format::fixed
                       : lower == 'e' ? std::chars_format::scientific
                                      : std::chars_format::general;
    const int precision = c.precision.value_or(6);
    // The largest double has 309 digits before the point.
    std::vector<char> digits(precision + 400);
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), std::fabs(value), style, precision).ptr;
    std::string body(digits.data(), end);
    if (c.letter != lower) toUpper(body);
    return padded(c, signText(c, std::signbit(value) && !std::isnan(value)), body, c.zeros && std::isfinite(value));
}

/// Nothing when the conversion is not for such an argument.
std::optional<std::string> converted(const Conversion& c, const FormatArgument& argument) {
    const auto* integer = std::get_if<FormatArgument::Integer>(&argument.value());
    const auto* real = std::get_if<double>(&argument.value());
    const auto* text = std::get_if<std::string_view>(&argument.value());
    if (integer && isOneOf(c.letter, "diuxXo")) return integerText(c, *integer);
    if (integer && c.letter == 'c') {
        const char letter = static_cast<char>(integer->asSigned);
        return padded(c, "", {&letter, 1}, false);
    }
    if ((integer || real) && isOneOf(c.letter, "fFeEgG"))
        return realText(c, real ? *real : static_cast<double>(integer->asSigned));
    if (text && c.letter == 's')
        return padded(c, "", text->substr(0, c.precision ? *c.precision : std::string_view::npos), false);
    return std::nullopt;
}

} // namespace

std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments) {
    std::string result;
    std::size_t next = 0;
    for (std::size_t at = 0; at < format.size();) {
        const std::size_t start = std::min(format.find('%', at), format.size());
        result += format.substr(at, start - at);
        at = start;
        if (at == format.size()) break;
        const Conversion conversion = readConversion(format, ++at);
        if (conversion.letter == '%') {
            result += '%';
            continue;
        }
        std::optional<std::string> text;
        if (next < arguments.size()) text = converted(conversion, arguments[next++]);
        result += text ? *text : format.substr(start, at - start);
    }
    return result;
}

} // namespace orvo
