#include <maya/MDistance.h>

#include "base/Units.h"
#include "values/StatusOut.h"

#include <optional>

namespace {

std::optional<host::LinearUnit> hostUnit(MDistance::Unit unit) {
    switch (unit) {
    case MDistance::kInches: return host::LinearUnit::Inch;
    case MDistance::kFeet: return host::LinearUnit::Foot;
    case MDistance::kYards: return host::LinearUnit::Yard;
    case MDistance::kMiles: return host::LinearUnit::Mile;
    case MDistance::kMillimeters: return host::LinearUnit::Millimetre;
    case MDistance::kCentimeters: return host::LinearUnit::Centimetre;
    case MDistance::kKilometers: return host::LinearUnit::Kilometre;
    case MDistance::kMeters: return host::LinearUnit::Metre;
    case MDistance::kInvalid:
    case MDistance::kLast: break;
    }
    return std::nullopt;
}

} // namespace

MDistance::MDistance() : value_(0.0), unit_(kCentimeters) {}
MDistance::MDistance(double newValue, MDistance::Unit newUnit) : value_(newValue), unit_(newUnit) {}
MDistance::MDistance(const MDistance& src) = default;
MDistance& MDistance::operator=(const MDistance& src) = default;

MDistance::Unit MDistance::unit() const { return unit_; }
double MDistance::value() const { return value_; }

MStatus MDistance::setUnit(MDistance::Unit newUnit) {
    if (!hostUnit(newUnit)) return MStatus::kInvalidParameter;
    unit_ = newUnit;
    return MStatus::kSuccess;
}

MStatus MDistance::setValue(double newValue) {
    value_ = newValue;
    return MStatus::kSuccess;
}

double MDistance::as(MDistance::Unit otherUnit, MStatus* ReturnStatus) const {
    const auto own = hostUnit(unit_);
    const auto other = hostUnit(otherUnit);
    host::setStatus(ReturnStatus, own && other ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!own || !other) return 0.0;
    return own == other ? value_ : value_ * host::centimetresPer(*own) / host::centimetresPer(*other);
}

double MDistance::asUnits(MDistance::Unit otherUnit, MStatus* ReturnStatus) const {
    return as(otherUnit, ReturnStatus);
}
double MDistance::asInches() const { return as(kInches); }
double MDistance::asFeet() const { return as(kFeet); }
double MDistance::asYards() const { return as(kYards); }
double MDistance::asMiles() const { return as(kMiles); }
double MDistance::asMillimeters() const { return as(kMillimeters); }
double MDistance::asCentimeters() const { return as(kCentimeters); }
double MDistance::asKilometers() const { return as(kKilometers); }
double MDistance::asMeters() const { return as(kMeters); }

MDistance::Unit MDistance::uiUnit() {
    switch (host::linearUnit()) {
    case host::LinearUnit::Inch: return kInches;
    case host::LinearUnit::Foot: return kFeet;
    case host::LinearUnit::Yard: return kYards;
    case host::LinearUnit::Mile: return kMiles;
    case host::LinearUnit::Millimetre: return kMillimeters;
    case host::LinearUnit::Centimetre: return kCentimeters;
    case host::LinearUnit::Kilometre: return kKilometers;
    case host::LinearUnit::Metre: return kMeters;
    }
    return kInvalid;
}

MStatus MDistance::setUIUnit(MDistance::Unit newUnit) {
    const auto unit = hostUnit(newUnit);
    if (!unit) return MStatus::kInvalidParameter;
    host::setLinearUnit(*unit);
    return MStatus::kSuccess;
}

MDistance::Unit MDistance::internalUnit() { return kCentimeters; }
double MDistance::internalToUI(double internalValue) {
    return internalValue / host::centimetresPer(host::linearUnit());
}
double MDistance::uiToInternal(double uiValue) { return uiValue * host::centimetresPer(host::linearUnit()); }
const char* MDistance::className() { return "MDistance"; }

MStatus MDistance::setInternalUnit(MDistance::Unit internalUnit) {
    return internalUnit == kCentimeters ? MStatus::kSuccess : MStatus::kNotImplemented;
}
