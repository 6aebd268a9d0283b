#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace host::mel {

struct NumberPrefix {
    double value;
    std::size_t length; ///< characters taken, leading white space and sign included
    bool whole;         ///< written as an integer and small enough for one
};

/// The number a text starts with: decimal, with exponent, or hexadecimal (0x1F), whatever the locale. Numbers out of
/// a double's range give infinity or 0. Nothing when the text starts with none.
std::optional<NumberPrefix> numberPrefix(std::string_view text);

/// The same, or 0.
double leadingNumber(std::string_view text);

/// Truncates toward zero; values beyond int's range give its limits, NaN gives 0.
int saturatedInt(double v);

} // namespace host::mel
