#include "ScanNumber.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace orvo {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view withoutBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n\v\f"), text.size()));
    return text;
}

/// Takes a sign; whether it is a minus.
bool takeSign(std::string_view& text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    const bool isMinus = text[0] == '-';
    text.remove_prefix(1);
    return isMinus;
}

/// Whether a number of decimal digits that no floating-point type holds is too large, not too small.
bool isHuge(std::string_view number) {
    const auto significant = std::find_if(number.begin(), number.end(), [](char c) { return c >= '1' && c <= '9'; });
    const auto exponentAt = std::find_if(number.begin(), number.end(), [](char c) { return c == 'e' || c == 'E'; });
    const auto pointAt = std::find(number.begin(), exponentAt, '.');
    if (significant >= exponentAt) return false; // all zeros
    long long exponent = 0;
    if (exponentAt != number.end()) {
        std::string_view digits(exponentAt + 1, number.end());
        const bool isMinus = takeSign(digits);
        const auto [end, code] = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (code == std::errc::result_out_of_range) return !isMinus;
        if (isMinus) exponent = -exponent;
    }
    // The place of the first digit that counts, to the left of the point or to the right. The sum cannot overflow: a
    // text is not that long where the exponent is.
    return exponent > std::numeric_limits<int>::max() || exponent + (pointAt - significant) > 0;
}

} // namespace

template <class Real>
std::optional<Real> scanReal(std::string_view& text) {
    std::string_view rest = withoutBlanks(text);
    const bool isMinus = takeSign(rest);
    // The library would take a second sign.
    if (rest.empty() || rest[0] == '-') return std::nullopt;
    auto format = std::chars_format::general;
    if (rest.size() > 2 && rest[0] == '0' && (rest[1] == 'x' || rest[1] == 'X')) {
        rest.remove_prefix(2);
        if (!rest.empty() && rest[0] == '-') return std::nullopt;
        format = std::chars_format::hex;
    }
    Real value = 0;
    const auto [end, code] = std::from_chars(rest.data(), rest.data() + rest.size(), value, format);
    if (code == std::errc::invalid_argument) return std::nullopt;
    if (code == std::errc::result_out_of_range) {
        const bool huge = format == std::chars_format::general && isHuge({rest.data(), end});
        value = huge || format == std::chars_format::hex ? std::numeric_limits<Real>::infinity() : Real(0);
    }
    text = {end, rest.data() + rest.size()};
    return isMinus ? -value : value;
}

template std::optional<float> scanReal<float>(std::string_view& text);
template std::optional<double> scanReal<double>(std::string_view& text);

std::optional<std::int64_t> scanInteger(std::string_view& text) {
    std::string_view rest = withoutBlanks(text);
    if (rest.size() > 1 && rest[0] == '+' && isDigit(rest[1])) rest.remove_prefix(1);
    std::int64_t value = 0;
    const auto [end, code] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
    if (code == std::errc::invalid_argument) return std::nullopt;
    using Limits = std::numeric_limits<std::int64_t>;
    if (code == std::errc::result_out_of_range) value = rest[0] == '-' ? Limits::min() : Limits::max();
    text = {end, rest.data() + rest.size()};
    return value;
}

} // namespace orvo
