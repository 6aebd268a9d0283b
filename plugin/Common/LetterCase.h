#pragma once

namespace orvo {

/// An ASCII letter in lower case, whatever the locale; anything else as it is.
inline char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace orvo
