#pragma once

#include "mel/Value.h"

#include <string_view>

namespace host::mel {

/// What separates words.
inline constexpr const char* kWhiteSpace = " \t\r\n\v\f";

/// The parts of a text between separators; empty parts are left out.
StringArray tokens(std::string_view text, std::string_view separators);

/// Throws Error for more characters than a text may have (2^28).
void requireTextSize(std::size_t characters);

} // namespace host::mel
