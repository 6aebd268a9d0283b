#include "base/Messages.h"

#include <cstdio>
#include <fmt/format.h>
#include <utility>

namespace host {
namespace {

/// What a terminal may take for an order to it, as "\x1B"; messages name nodes and files of foreign scenes. Line ends
/// and tabs stay.
std::string withoutControls(std::string_view text) {
    std::string shown;
    int following = 0; // bytes that belong to the character begun before
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        const bool continues = following > 0 && (byte & 0xC0) == 0x80;
        following = continues ? following - 1 : byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC2 ? 1 : 0;
        if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {
            shown += fmt::format("\\x{:02X}", next); // U+0080 to U+009F
            ++i;
            following = 0;
        } else if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F ||
                   (!continues && byte >= 0x80 && byte < 0xA0)) {
            shown += fmt::format("\\x{:02X}", byte);
        } else {
            shown += text[i];
        }
    }
    return shown;
}

void writeLine(std::FILE* stream, const char* prefix, std::string_view message) {
    const std::string text = withoutControls(message);
    std::fputs(prefix, stream);
    std::fwrite(text.data(), 1, text.size(), stream);
    if (text.empty() || text.back() != '\n') std::fputc('\n', stream);
    std::fflush(stream);
}

} // namespace

void sendToStandardStreams(Severity severity, std::string_view text) {
    switch (severity) {
    case Severity::Output:
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
        break;
    case Severity::Info: writeLine(stdout, "", text); break;
    case Severity::Warning: writeLine(stderr, "Warning: ", text); break;
    case Severity::Error: writeLine(stderr, "Error: ", text); break;
    }
}

Messages& Messages::instance() {
    static Messages messages;
    return messages;
}

Messages::Sink Messages::setSink(Sink sink) { return std::exchange(sink_, std::move(sink)); }

void Messages::send(Severity severity, std::string_view text) {
    if (sink_)
        sink_(severity, text);
    else
        sendToStandardStreams(severity, text);
}

} // namespace host
