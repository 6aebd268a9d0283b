#pragma once

#include <string>
#include <string_view>

namespace host {

/// What stands between the quotes when a script or a scene file says the text: a backslash before quotes and
/// backslashes, "\n", "\t" and "\r". Null characters are left out: a file with one would count as binary.
std::string escapedText(std::string_view text);
/// The same with its quotes.
std::string quotedText(std::string_view text);

} // namespace host
