#include "base/QuotedText.h"

namespace host {

std::string escapedText(std::string_view text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\0': break;
        default: out += c;
        }
    }
    return out;
}

std::string quotedText(std::string_view text) { return '"' + escapedText(text) + '"'; }

} // namespace host
