#include "scene/Messages.h"

#include <cstdio>
#include <utility>

namespace host {
namespace {

void writeLine(std::FILE* stream, const char* prefix, std::string_view text) {
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
