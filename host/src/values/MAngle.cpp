#include <maya/MAngle.h>

#include "base/Units.h"
#include "values/StatusOut.h"

#include <optional>

namespace {

std::optional<host::AngularUnit> hostUnit(MAngle::Unit unit) {
    switch (unit) {
    case MAngle::kRadians: return host::AngularUnit::Radian;
    case MAngle::kDegrees: return host::AngularUnit::Degree;
    case MAngle::kAngMinutes: return host::AngularUnit::ArcMinute;
    case MAngle::kAngSeconds: return host::AngularUnit::ArcSecond;
    case MAngle::kInvalid:
    case MAngle::kLast: break;
    }
    return std::nullopt;
}

} // namespace

MAngle::MAngle() : value_(0.0), unit_(kRadians) {}
MAngle::MAngle(double value, MAngle::Unit unitSystem) : value_(value), unit_(unitSystem) {}
MAngle::MAngle(const MAngle& src) = default;
MAngle& MAngle::operator=(const MAngle& src) = default;

MAngle::Unit MAngle::unit() const { return unit_; }
double MAngle::value() const { return value_; }

MStatus MAngle::setUnit(MAngle::Unit newUnit) {
    if (!hostUnit(newUnit)) return MStatus::kInvalidParameter;
    unit_ = newUnit;
    return MStatus::kSuccess;
}

MStatus MAngle::setValue(double newValue) {
    value_ = newValue;
    return MStatus::kSuccess;
}

double MAngle::as(MAngle::Unit otherUnit, MStatus* ReturnStatus) const {
    const auto own = hostUnit(unit_);
    const auto other = hostUnit(otherUnit);
    host::setStatus(ReturnStatus, own && other ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!own || !other) return 0.0;
    return own == other ? value_ : value_ * host::radiansPer(*own) / host::radiansPer(*other);
}

double MAngle::asUnits(MAngle::Unit otherUnit, MStatus* ReturnStatus) const { return as(otherUnit, ReturnStatus); }
double MAngle::asRadians() const { return as(kRadians); }
double MAngle::asDegrees() const { return as(kDegrees); }
double MAngle::asAngMinutes() const { return as(kAngMinutes); }
double MAngle::asAngSeconds() const { return as(kAngSeconds); }

MAngle::Unit MAngle::uiUnit() {
    switch (host::angularUnit()) {
    case host::AngularUnit::Radian: return kRadians;
    case host::AngularUnit::Degree: return kDegrees;
    case host::AngularUnit::ArcMinute: return kAngMinutes;
    case host::AngularUnit::ArcSecond: return kAngSeconds;
    }
    return kInvalid;
}

MStatus MAngle::setUIUnit(MAngle::Unit newUnit) {
    const auto unit = hostUnit(newUnit);
    if (!unit) return MStatus::kInvalidParameter;
    host::setAngularUnit(*unit);
    return MStatus::kSuccess;
}

MAngle::Unit MAngle::internalUnit() { return kRadians; }
double MAngle::internalToUI(double internalValue) { return internalValue / host::radiansPer(host::angularUnit()); }
double MAngle::uiToInternal(double uiValue) { return uiValue * host::radiansPer(host::angularUnit()); }
const char* MAngle::className() { return "MAngle"; }

MStatus MAngle::setInternalUnit(MAngle::Unit internalUnit) {
    return internalUnit == kRadians ? MStatus::kSuccess : MStatus::kNotImplemented;
}
