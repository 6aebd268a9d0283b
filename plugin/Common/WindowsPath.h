#pragma once

#include <string>
#include <string_view>

/// Paths in the form that Windows takes; for its branches alone.
namespace orvo {

/// A file's absolute path in the form that knows no limit of 260 characters, from a path in UTF-8 with either
/// separator: with or without a drive, relative to the current folder, or of a share. Bytes that are not UTF-8 are read
/// in the system's code page. Empty when the path is, holds a zero or names a device such as "NUL", "COM1" or a pipe.
std::wstring windowsPath(const std::string& path);

/// As UTF-8; what is no character becomes U+FFFD.
std::string utf8Text(std::wstring_view text);

} // namespace orvo
