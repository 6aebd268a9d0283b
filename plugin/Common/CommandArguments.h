#pragma once

#include "Messages.h"

#include <maya/MArgList.h>
#include <maya/MString.h>
#include <string>

namespace orvo {

/// An argument as text. A failed read is reported, and the command goes on with an empty text.
inline std::string stringArgument(const MArgList& args, unsigned index) {
    MString text;
    const MStatus status = args.get(index, text);
    if (status.error()) {
        reportError("Maya Reports: %s", status.errorString().asUTF8());
        reportError("");
        return {};
    }
    return text.asUTF8();
}

/// Reports, with its place, why a command goes no further.
/// @return MStatus::kFailure, which the command answers
template <class... Arguments>
MStatus refused(const PlacedFormat& format, const Arguments&... arguments) {
    reportPlacedError(format, arguments...);
    return MStatus::kFailure;
}

} // namespace orvo
