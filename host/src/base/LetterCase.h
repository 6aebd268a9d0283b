#pragma once

#include <string>

namespace host {

/// ASCII letters in lower case, whatever the locale; everything else as it is.
inline char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
inline std::string lowerCase(std::string text) {
    for (char& c : text) c = lowerCase(c);
    return text;
}

} // namespace host
