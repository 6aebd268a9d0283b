#pragma once

#include <string>
#include <string_view>

namespace orvo {

/// Text as the value of an attribute in double quotes, in UTF-8: & < > and " become entities, tabs and line ends
/// character references. A byte that is part of no UTF-8 becomes the character of its number, and what XML cannot hold,
/// as other control characters, U+FFFD.
std::string xmlEscaped(std::string_view text);

} // namespace orvo
