#pragma once

#include "base/Units.h"
#include "scene/Attribute.h"

namespace host::files {

/// The units that the numbers of a file count in.
struct FileUnits {
    LinearUnit linear = LinearUnit::Centimetre;
    AngularUnit angular = AngularUnit::Degree;
    TimeUnit time = filmUnit;

    static FileUnits current() { return {linearUnit(), angularUnit(), timeUnit()}; }
    void makeCurrent() const {
        setLinearUnit(linear);
        setAngularUnit(angular);
        setTimeUnit(time);
    }
    /// The internal value (centimetres, radians, ticks) of 1 in the file.
    double factor(scene::AttributeType type) const {
        switch (type) {
        case scene::AttributeType::Distance: return centimetresPer(linear);
        case scene::AttributeType::Angle: return radiansPer(angular);
        case scene::AttributeType::Time: return time.ticks;
        default: return 1.0;
        }
    }
};

} // namespace host::files
