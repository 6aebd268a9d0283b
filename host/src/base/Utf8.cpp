#include "base/Utf8.h"

#include <algorithm>

namespace host {
namespace {

constexpr char32_t lastCodePoint = 0x10FFFF;
constexpr bool wideIs16Bits = sizeof(wchar_t) == 2;

bool isContinuation(unsigned char c) { return (c & 0xC0u) == 0x80u; }

// Bytes of the well-formed sequence at the start of the text, or 1 where there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = lead < 0xC2 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
    if (length > text.size()) return 1;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(static_cast<unsigned char>(text[i]))) return 1;
    if (length < 3) return length;
    const auto second = static_cast<unsigned char>(text[1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool outside = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || outside ? 1 : length;
}

void append(std::string& out, char32_t c) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80u | ((c >> shift) & 0x3Fu)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0u | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0u | (c >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0u | (std::min(c, lastCodePoint) >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

std::u32string toCodePoints(std::string_view utf8) {
    std::u32string out;
    out.reserve(utf8.size());
    while (!utf8.empty()) {
        const std::size_t length = sequenceLength(utf8);
        const auto lead = static_cast<unsigned char>(utf8[0]);
        char32_t c = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t i = 1; i < length; ++i) c = (c << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3Fu);
        out += c;
        utf8.remove_prefix(length);
    }
    return out;
}

std::string toUtf8(std::u32string_view codePoints) {
    std::string out;
    out.reserve(codePoints.size());
    for (const char32_t c : codePoints) append(out, c);
    return out;
}

std::wstring toWide(std::string_view utf8) {
    std::wstring out;
    for (const char32_t c : toCodePoints(utf8)) {
        if (wideIs16Bits && c > 0xFFFF) {
            out += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            out += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            out += static_cast<wchar_t>(c);
        }
    }
    return out;
}

std::string toUtf8(std::wstring_view wide) {
    std::string out;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        auto c = static_cast<char32_t>(wide[i]);
        if (wideIs16Bits && c >= 0xD800 && c < 0xDC00 && i + 1 < wide.size())
            c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char32_t>(wide[++i]) - 0xDC00);
        append(out, c);
    }
    return out;
}

} // namespace host
