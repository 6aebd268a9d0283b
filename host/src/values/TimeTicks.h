#pragma once

#include "base/Units.h"

#include <maya/MTime.h>

namespace host {

/// A time in the ticks that scenes count in.
inline double ticksOf(const MTime& time) { return time.as(MTime::kSeconds) * ticksPerSecond; }

/// A time in ticks as the API gives it: in the user's unit.
inline MTime timeOf(double ticks) {
    const MTime time(ticks / ticksPerSecond, MTime::kSeconds);
    return MTime(time.as(MTime::uiUnit()), MTime::uiUnit());
}

} // namespace host
