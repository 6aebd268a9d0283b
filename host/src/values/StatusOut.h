#pragma once

#include <maya/MStatus.h>

namespace host {

/// Sets the status of a call whose caller may not have asked for it.
inline void setStatus(MStatus* out, MStatus::MStatusCode code) {
    if (out) *out = MStatus(code);
}

} // namespace host
