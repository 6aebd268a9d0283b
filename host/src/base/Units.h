#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

enum class LinearUnit { Millimetre, Centimetre, Metre, Kilometre, Inch, Foot, Yard, Mile };
enum class AngularUnit { Degree, Radian, ArcMinute, ArcSecond };

/// A time unit by the number of ticks it has, of which a second has 6000; NTSC's own rates have parts of one, such as
/// 200.2 for 29.97 frames a second.
struct TimeUnit {
    double ticks = 250;
    friend bool operator==(TimeUnit, TimeUnit) = default;
};

inline constexpr int ticksPerSecond = 6000;
inline constexpr TimeUnit filmUnit{250};

/// The units that scripts and scene files give numbers in: one set for the whole process, at first centimetre, degree
/// and film (24 frames a second). Inside, lengths are in centimetres and angles in radians.
LinearUnit linearUnit();
AngularUnit angularUnit();
TimeUnit timeUnit();
void setLinearUnit(LinearUnit unit);
void setAngularUnit(AngularUnit unit);
/// `unit.ticks` is above 0.
void setTimeUnit(TimeUnit unit);

/// The axis that scripts are told points up: 'y', at first, or 'z'. Nothing is turned by it.
char upAxis();
void setUpAxis(char axis);

double centimetresPer(LinearUnit unit);
double radiansPer(AngularUnit unit);

/// Short names as scene files have them: "cm", "deg", "film". Reading takes the long names too, such as "centimeter",
/// "degree" and "24fps"; nothing for an unknown name.
std::string_view unitName(LinearUnit unit);
std::string_view unitName(AngularUnit unit);
/// "film" and its like where the unit has a name, else the rate, as in "100fps".
std::string unitName(TimeUnit unit);
std::optional<LinearUnit> linearUnitNamed(std::string_view name);
std::optional<AngularUnit> angularUnitNamed(std::string_view name);
std::optional<TimeUnit> timeUnitNamed(std::string_view name);

} // namespace host
