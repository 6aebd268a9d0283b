#include "base/Units.h"

#include "base/NumberText.h"

#include <array>
#include <cmath>
#include <numbers>

namespace host {
namespace {

struct LinearEntry {
    LinearUnit unit;
    double centimetres;
    std::string_view name, longName;
};

constexpr std::array<LinearEntry, 8> linearUnits{{
    {LinearUnit::Millimetre, 0.1, "mm", "millimeter"},
    {LinearUnit::Centimetre, 1.0, "cm", "centimeter"},
    {LinearUnit::Metre, 100.0, "m", "meter"},
    {LinearUnit::Kilometre, 100000.0, "km", "kilometer"},
    {LinearUnit::Inch, 2.54, "in", "inch"},
    {LinearUnit::Foot, 30.48, "ft", "foot"},
    {LinearUnit::Yard, 91.44, "yd", "yard"},
    {LinearUnit::Mile, 160934.4, "mi", "mile"},
}};

struct AngularEntry {
    AngularUnit unit;
    double radians;
    std::string_view name, longName;
};

constexpr double degree = std::numbers::pi / 180.0;

constexpr std::array<AngularEntry, 4> angularUnits{{
    {AngularUnit::Degree, degree, "deg", "degree"},
    {AngularUnit::Radian, 1.0, "rad", "radian"},
    {AngularUnit::ArcMinute, degree / 60.0, "min", "minute"},
    {AngularUnit::ArcSecond, degree / 3600.0, "sec", "second"},
}};

struct TimeEntry {
    double ticks;
    std::string_view name, longName;
};

/// NTSC counts 1001 times where others count 1000.
constexpr double ntscTicks(double nominalRate) { return ticksPerSecond * 1.001 / nominalRate; }

constexpr std::array<TimeEntry, 18> timeUnits{{
    {ticksPerSecond * 3600, "hour", "hours"},
    {ticksPerSecond * 60, "min", "minutes"},
    {ticksPerSecond, "sec", "seconds"},
    {ticksPerSecond / 1000, "millisec", "milliseconds"},
    {ticksPerSecond / 15, "game", "15fps"},
    {ticksPerSecond / 24, "film", "24fps"},
    {ticksPerSecond / 25, "pal", "25fps"},
    {ticksPerSecond / 30, "ntsc", "30fps"},
    {ticksPerSecond / 48, "show", "48fps"},
    {ticksPerSecond / 50, "palf", "50fps"},
    {ticksPerSecond / 60, "ntscf", "60fps"},
    {ntscTicks(24), "23.976fps", ""},
    {ntscTicks(30), "29.97fps", "29.97df"},
    {ntscTicks(48), "47.952fps", ""},
    {ntscTicks(60), "59.94fps", ""},
    {ticksPerSecond / 90.0, "90fps", ""},
    {ticksPerSecond / 44100.0, "44100fps", ""},
    {ticksPerSecond / 48000.0, "48000fps", ""},
}};

LinearUnit currentLinear = LinearUnit::Centimetre;
AngularUnit currentAngular = AngularUnit::Degree;
TimeUnit currentTime = filmUnit;

const LinearEntry& entryOf(LinearUnit unit) { return linearUnits[static_cast<std::size_t>(unit)]; }
const AngularEntry& entryOf(AngularUnit unit) { return angularUnits[static_cast<std::size_t>(unit)]; }

} // namespace

namespace {
char currentUpAxis = 'y';
}

char upAxis() { return currentUpAxis; }
void setUpAxis(char axis) { currentUpAxis = axis; }

LinearUnit linearUnit() { return currentLinear; }
AngularUnit angularUnit() { return currentAngular; }
TimeUnit timeUnit() { return currentTime; }
void setLinearUnit(LinearUnit unit) { currentLinear = unit; }
void setAngularUnit(AngularUnit unit) { currentAngular = unit; }
void setTimeUnit(TimeUnit unit) { currentTime = unit; }

double centimetresPer(LinearUnit unit) { return entryOf(unit).centimetres; }
double radiansPer(AngularUnit unit) { return entryOf(unit).radians; }

std::string_view unitName(LinearUnit unit) { return entryOf(unit).name; }
std::string_view unitName(AngularUnit unit) { return entryOf(unit).name; }

std::string unitName(TimeUnit unit) {
    for (const TimeEntry& entry : timeUnits)
        if (entry.ticks == unit.ticks) return std::string(entry.name);
    return std::to_string(std::lround(ticksPerSecond / unit.ticks)) + "fps";
}

std::optional<LinearUnit> linearUnitNamed(std::string_view name) {
    for (const LinearEntry& entry : linearUnits)
        if (name == entry.name || name == entry.longName) return entry.unit;
    return std::nullopt;
}

std::optional<AngularUnit> angularUnitNamed(std::string_view name) {
    for (const AngularEntry& entry : angularUnits)
        if (name == entry.name || name == entry.longName) return entry.unit;
    return std::nullopt;
}

std::optional<TimeUnit> timeUnitNamed(std::string_view name) {
    for (const TimeEntry& entry : timeUnits)
        if (!name.empty() && (name == entry.name || name == entry.longName)) return TimeUnit{entry.ticks};
    const int rate = takeInt(name).value_or(0);
    if (name != "fps" || rate < 1 || ticksPerSecond % rate != 0) return std::nullopt;
    return TimeUnit{static_cast<double>(ticksPerSecond / rate)};
}

} // namespace host
