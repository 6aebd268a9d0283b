#pragma once

#include <string>
#include <string_view>

namespace host {

/// Text as code points. Bytes that are not UTF-8 stand for themselves, each as one code point.
std::u32string toCodePoints(std::string_view utf8);

std::string toUtf8(std::u32string_view codePoints);

/// Where wchar_t has 16 bits, code points above 0xFFFF are surrogate pairs.
std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

} // namespace host
