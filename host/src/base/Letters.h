#pragma once

#include <filesystem>
#include <string>

namespace host {

/// @name Characters as ASCII has them, whatever the locale
/// @{
inline bool isDigit(char c) { return c >= '0' && c <= '9'; }
inline bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
/// Blanks, tabs and line ends of all kinds: what stands between words.
inline bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
/// Letters in another case; everything else as it is.
inline char upperCase(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
inline char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
inline std::string lowerCase(std::string text) {
    for (char& c : text) c = lowerCase(c);
    return text;
}
/// @}

/// A file name's extension in lower case, with its dot: "sky.EXR" has ".exr". Empty when there is none.
inline std::string extensionOf(const std::filesystem::path& file) { return lowerCase(file.extension().string()); }

} // namespace host
