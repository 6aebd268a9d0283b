#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

/// Reads numbers out of text as C's scanf does in the "C" locale, whatever the locale of the process.
///
/// Leading blanks are skipped and what follows the number stays unread: each function moves `text` past what it took.
/// Nothing, and `text` as it was, when there is no number.
namespace orvo {

/// As "%f" reads a float or "%lf" a double: a decimal or hexadecimal number, "inf" or "nan". What is too large for the
/// type becomes infinite, what is too small for it 0.
template <class Real>
std::optional<Real> scanReal(std::string_view& text);
extern template std::optional<float> scanReal<float>(std::string_view& text);
extern template std::optional<double> scanReal<double>(std::string_view& text);

/// As "%d" reads one, into 64 bits; what is too large for them is held at their ends.
std::optional<std::int64_t> scanInteger(std::string_view& text);

} // namespace orvo
