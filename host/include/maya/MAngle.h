#pragma once

#include <maya/MStatus.h>

/// An angle with its unit. The internal unit is the radian; the UI unit is the one that scripts and scene files give
/// numbers in.
class OPENMAYA_EXPORT MAngle {
public:
    enum Unit { kInvalid, kRadians, kDegrees, kAngMinutes, kAngSeconds, kLast };

    MAngle();
    MAngle(const MAngle& src);
    MAngle(double value, MAngle::Unit unitSystem = kRadians);
    MAngle& operator=(const MAngle& src);

    MAngle::Unit unit() const;
    /// The number, in the instance's unit.
    double value() const;
    /// The number stays and counts in the new unit. kInvalidParameter for kInvalid and kLast.
    MStatus setUnit(MAngle::Unit newUnit);
    MStatus setValue(double newValue);

    /// The angle in another unit; 0 with kInvalidParameter where either unit is not a real one.
    double as(MAngle::Unit otherUnit, MStatus* ReturnStatus = NULL) const;
    double asUnits(MAngle::Unit otherUnit, MStatus* ReturnStatus = NULL) const;
    double asRadians() const;
    double asDegrees() const;
    double asAngMinutes() const;
    double asAngSeconds() const;

    static MAngle::Unit uiUnit();
    static MStatus setUIUnit(MAngle::Unit newUnit);
    static MAngle::Unit internalUnit();
    static double internalToUI(double internalValue);
    static double uiToInternal(double uiValue);
    static const char* className();
    /// The internal unit is fixed: kNotImplemented for any but kRadians.
    static MStatus setInternalUnit(MAngle::Unit internalUnit);

private:
    double value_;
    Unit unit_;
};
