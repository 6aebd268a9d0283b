#pragma once

#include "Format.h"
#include "SourcePlace.h"

#include <exception>
#include <maya/MStatus.h>
#include <string>

/// What the plug-in tells the artist, through the host's script editor.
namespace orvo {

enum class MessageLevel { Info = 1, Warning = 2, Error = 3, Notice = 4 };

/// Passes the text on: levels 1 and 4 as information, 2 as a warning, 3 as an error. A text longer than 20,479
/// characters is cut there.
void showMessage(MessageLevel level, const std::string& text);
/// The errors that were shown since the module was loaded. Main thread only.
std::size_t errorsShown();

template <class... Arguments>
void reportInfo(const char* format, const Arguments&... arguments) {
    showMessage(MessageLevel::Info, formatText(format, arguments...));
}
template <class... Arguments>
void reportWarning(const char* format, const Arguments&... arguments) {
    showMessage(MessageLevel::Warning, formatText(format, arguments...));
}
template <class... Arguments>
void reportError(const char* format, const Arguments&... arguments) {
    showMessage(MessageLevel::Error, formatText(format, arguments...));
}
template <class... Arguments>
void reportNotice(const char* format, const Arguments&... arguments) {
    showMessage(MessageLevel::Notice, formatText(format, arguments...));
}

/// A source file as messages name it, the same on every build machine: its folder and its name without extension,
/// "SkyTool\BasicSkyLocator".
std::string sourcePath(const SourcePlace& where);

/// "In %s, line %d", at the level of the message that follows.
void reportPlace(const SourcePlace& where, MessageLevel level = MessageLevel::Error);

/// A message's format, with the place of the call that it stands in.
struct PlacedFormat {
    const char* text;
    SourcePlace where;
    PlacedFormat(const char* format, const SourcePlace& place = SourcePlace::current()) : text(format), where(place) {}
};

/// "In %s, line %d" and then the message, each as one error.
template <class... Arguments>
void reportPlacedError(const PlacedFormat& format, const Arguments&... arguments) {
    reportPlace(format.where);
    reportError(format.text, arguments...);
}

/// Reports a failed host call: its place, the host's text for the status, its place again, and the caller's own
/// message (possibly empty), each as one error.
void reportFailure(const MStatus& status, const std::string& message = "",
                   const SourcePlace& where = SourcePlace::current());

/// Tests a host call's status, reporting a failure with the place of the call.
/// @return whether the call succeeded
inline bool succeeded(const MStatus& status, const SourcePlace& where = SourcePlace::current()) {
    if (!status.error()) return true;
    reportFailure(status, "", where);
    return false;
}

/// Runs the body of a host callback. An exception is reported and answered with `onException`: none may reach the
/// host.
template <class Body, class Result>
Result guarded(const char* callback, Result onException, Body&& body) noexcept {
    try {
        return body();
    } catch (const std::exception& e) {
        try {
            reportError("%s: %s", callback, e.what());
        } catch (...) { // nothing is left to report with
        }
    } catch (...) {}
    return onException;
}

/// The same for a callback that answers nothing.
template <class Body>
void guarded(const char* callback, Body&& body) noexcept {
    guarded(callback, 0, [&body] {
        body();
        return 0;
    });
}

} // namespace orvo
