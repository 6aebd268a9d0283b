#include "XmlText.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

/// The bytes of the UTF-8 character that a text begins with; 0 when they are no UTF-8.
std::size_t utf8Length(std::string_view text) {
    const auto byte = [&](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : static_cast<unsigned char>(0);
    };
    const unsigned first = byte(0), second = byte(1);
    if (first < 0x80) return 1;
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    const bool longerThanNeeded = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool noCharacter = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
    return longerThanNeeded || noCharacter ? 0 : length;
}

/// One character as XML text holds it.
std::string_view inXml(std::string_view character) {
    if (character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF") return replacement;
    if (character.size() > 1) return character;
    switch (character[0]) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\t': return "&#9;";
    case '\n': return "&#10;";
    case '\r': return "&#13;";
    default: return static_cast<unsigned char>(character[0]) < 0x20 ? replacement : character;
    }
}

} // namespace

std::string xmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8Length(text);
        if (length > 0) {
            escaped += inXml(text.substr(0, length));
        } else {
            const auto byte = static_cast<unsigned char>(text[0]);
            escaped += static_cast<char>(0xC0 | (byte >> 6));
            escaped += static_cast<char>(0x80 | (byte & 0x3F));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return escaped;
}

} // namespace orvo
