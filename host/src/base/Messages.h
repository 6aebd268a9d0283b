#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace host {

/// Where a text goes that the user is to read.
enum class Severity { Output, Info, Warning, Error };

/// The host's script-editor output: every text that MEL, plug-ins or the host itself address to the user.
///
/// `Output` is raw text (MEL's `print`): it is passed on as it stands, without a line end of its own. The
/// other kinds are one message each, without severity prefix and without trailing line end.
class Messages {
public:
    using Sink = std::function<void(Severity, std::string_view)>;

    static Messages& instance();

    /// Replaces the sink and returns the one that was in force. An empty sink restores the standard one, which
    /// writes output and information to standard output, and "Warning: TEXT" and "Error: TEXT" to standard error.
    Sink setSink(Sink sink);

    void send(Severity severity, std::string_view text);

private:
    Sink sink_;
};

/// What the standard sink does. Control characters in messages, but for line ends and tabs, are written as "\x1B".
void sendToStandardStreams(Severity severity, std::string_view text);

inline void printText(std::string_view text) { Messages::instance().send(Severity::Output, text); }
inline void showInfo(std::string_view text) { Messages::instance().send(Severity::Info, text); }
inline void showWarning(std::string_view text) { Messages::instance().send(Severity::Warning, text); }
inline void showError(std::string_view text) { Messages::instance().send(Severity::Error, text); }

} // namespace host
