#pragma once

#include <maya/MStatus.h>

#include <iosfwd>

/// A point in time or a duration, with its unit. Times of different units compare by ticks, of which 6000 make a
/// second, so that the usual frame rates are exact.
class OPENMAYA_EXPORT MTime {
public:
    enum Unit {
        kInvalid,
        kHours,
        kMinutes,
        kSeconds,
        kMilliseconds,
        kGames,     ///< 15 frames a second
        kFilm,      ///< 24 frames a second
        kPALFrame,  ///< 25 frames a second
        kNTSCFrame, ///< 30 frames a second
        kShowScan,  ///< 48 frames a second
        kPALField,  ///< 50 fields a second
        kNTSCField, ///< 60 fields a second
        k2FPS,
        k3FPS,
        k4FPS,
        k5FPS,
        k6FPS,
        k8FPS,
        k10FPS,
        k12FPS,
        k16FPS,
        k20FPS,
        k40FPS,
        k75FPS,
        k80FPS,
        k100FPS,
        k120FPS,
        k125FPS,
        k150FPS,
        k200FPS,
        k240FPS,
        k250FPS,
        k300FPS,
        k375FPS,
        k400FPS,
        k500FPS,
        k600FPS,
        k750FPS,
        k1200FPS,
        k1500FPS,
        k2000FPS,
        k3000FPS,
        k6000FPS,
        kUserDef,
        kLast
    };

    MTime();
    MTime(const MTime& src);
    MTime(double newValue, MTime::Unit newUnit = kFilm);

    MTime::Unit unit() const;
    /// The number, in the instance's unit.
    double value() const;
    /// The number stays and counts in the new unit. kInvalidParameter for kInvalid, kUserDef and kLast.
    MStatus setUnit(MTime::Unit newUnit);
    MStatus setValue(double newValue);

    /// The time in another unit; 0 where either unit is not a real one.
    double as(MTime::Unit newUnit) const;
    double asUnits(MTime::Unit newUnit) const;

    static MTime::Unit uiUnit();
    static MStatus setUIUnit(MTime::Unit newUnit);

    MTime& operator=(const MTime& rhs);
    bool operator==(const MTime& rhs) const;
    bool operator!=(const MTime& rhs) const;
    bool operator<=(const MTime& rhs) const;
    bool operator>=(const MTime& rhs) const;
    bool operator<(const MTime& rhs) const;
    bool operator>(const MTime& rhs) const;

    /// Results have the unit of the left side; plain numbers count in it.
    MTime operator+(const MTime& rhs) const;
    MTime& operator+=(const MTime& rhs);
    MTime operator+(double rhs) const;
    MTime& operator+=(double rhs);
    MTime operator-(const MTime& rhs) const;
    MTime& operator-=(const MTime& rhs);
    MTime operator-(double rhs) const;
    MTime& operator-=(double rhs);
    MTime operator*(double rhs) const;
    MTime& operator*=(double rhs);
    MTime operator/(double rhs) const;
    MTime& operator/=(double rhs);

    /// One unit on or back. Both forms return the changed instance.
    MTime& operator++();
    MTime& operator++(int dTime);
    MTime& operator--();
    MTime& operator--(int dTime);

    static const char* className();

private:
    double ticks() const;

    double value_;
    Unit unit_;
};

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MTime& t);
