#pragma once

#include <maya/MStatus.h>

/// A length with its unit. The internal unit is the centimetre; the UI unit is the one that scripts and scene files
/// give numbers in.
class OPENMAYA_EXPORT MDistance {
public:
    enum Unit { kInvalid, kInches, kFeet, kYards, kMiles, kMillimeters, kCentimeters, kKilometers, kMeters, kLast };

    MDistance();
    MDistance(double newValue, MDistance::Unit newUnit = kCentimeters);
    MDistance(const MDistance& src);
    MDistance& operator=(const MDistance& src);

    MDistance::Unit unit() const;
    /// The number, in the instance's unit.
    double value() const;
    /// The number stays and counts in the new unit. kInvalidParameter for kInvalid and kLast.
    MStatus setUnit(MDistance::Unit newUnit);
    MStatus setValue(double newValue);

    /// The length in another unit; 0 with kInvalidParameter where either unit is not a real one.
    double as(MDistance::Unit otherUnit, MStatus* ReturnStatus = NULL) const;
    double asUnits(MDistance::Unit otherUnit, MStatus* ReturnStatus = NULL) const;
    double asInches() const;
    double asFeet() const;
    double asYards() const;
    double asMiles() const;
    double asMillimeters() const;
    double asCentimeters() const;
    double asKilometers() const;
    double asMeters() const;

    static MDistance::Unit uiUnit();
    static MStatus setUIUnit(MDistance::Unit newUnit);
    static MDistance::Unit internalUnit();
    static double internalToUI(double internalValue);
    static double uiToInternal(double uiValue);
    static const char* className();
    /// The internal unit is fixed: kNotImplemented for any but kCentimeters.
    static MStatus setInternalUnit(MDistance::Unit internalUnit);

private:
    double value_;
    Unit unit_;
};
