#include <maya/MTime.h>

#include "base/NumberText.h"
#include "base/Units.h"

#include <array>
#include <ostream>

namespace {

// Ticks by unit; 0 for what is not a unit.
constexpr std::array<int, MTime::kLast> ticksByUnit = [] {
    std::array<int, MTime::kLast> ticks{};
    ticks[MTime::kHours] = host::ticksPerSecond * 3600;
    ticks[MTime::kMinutes] = host::ticksPerSecond * 60;
    ticks[MTime::kSeconds] = host::ticksPerSecond;
    ticks[MTime::kMilliseconds] = host::ticksPerSecond / 1000;
    constexpr std::array rates{15,  24,  25,  30,  48,  50,  60,  2,    3,    4,    5,    6,   8,
                               10,  12,  16,  20,  40,  75,  80,  100,  120,  125,  150,  200, 240,
                               250, 300, 375, 400, 500, 600, 750, 1200, 1500, 2000, 3000, 6000};
    for (std::size_t i = 0; i < rates.size(); ++i) ticks[MTime::kGames + i] = host::ticksPerSecond / rates[i];
    return ticks;
}();
static_assert(ticksByUnit[MTime::k6000FPS] == 1 && ticksByUnit[MTime::kUserDef] == 0);

int ticksOf(MTime::Unit unit) {
    return unit >= MTime::kInvalid && unit < MTime::kLast ? ticksByUnit[static_cast<std::size_t>(unit)] : 0;
}

} // namespace

MTime::MTime() : value_(0.0), unit_(kFilm) {}
MTime::MTime(const MTime& src) = default;
MTime::MTime(double newValue, MTime::Unit newUnit) : value_(newValue), unit_(newUnit) {}
MTime& MTime::operator=(const MTime& rhs) = default;

MTime::Unit MTime::unit() const { return unit_; }
double MTime::value() const { return value_; }

MStatus MTime::setUnit(MTime::Unit newUnit) {
    if (ticksOf(newUnit) == 0) return MStatus::kInvalidParameter;
    unit_ = newUnit;
    return MStatus::kSuccess;
}

MStatus MTime::setValue(double newValue) {
    value_ = newValue;
    return MStatus::kSuccess;
}

double MTime::ticks() const { return value_ * ticksOf(unit_); }

double MTime::as(MTime::Unit newUnit) const {
    if (newUnit == unit_ && ticksOf(unit_) != 0) return value_;
    return ticksOf(newUnit) != 0 ? ticks() / ticksOf(newUnit) : 0.0;
}

double MTime::asUnits(MTime::Unit newUnit) const { return as(newUnit); }

MTime::Unit MTime::uiUnit() {
    for (int unit = kHours; unit < kUserDef; ++unit)
        if (ticksByUnit[static_cast<std::size_t>(unit)] == host::timeUnit().ticks) return static_cast<Unit>(unit);
    return kUserDef;
}

MStatus MTime::setUIUnit(MTime::Unit newUnit) {
    if (ticksOf(newUnit) == 0) return MStatus::kInvalidParameter;
    host::setTimeUnit({static_cast<double>(ticksOf(newUnit))});
    return MStatus::kSuccess;
}

bool MTime::operator==(const MTime& rhs) const { return ticks() == rhs.ticks(); }
bool MTime::operator!=(const MTime& rhs) const { return ticks() != rhs.ticks(); }
bool MTime::operator<=(const MTime& rhs) const { return ticks() <= rhs.ticks(); }
bool MTime::operator>=(const MTime& rhs) const { return ticks() >= rhs.ticks(); }
bool MTime::operator<(const MTime& rhs) const { return ticks() < rhs.ticks(); }
bool MTime::operator>(const MTime& rhs) const { return ticks() > rhs.ticks(); }

MTime MTime::operator+(const MTime& rhs) const { return *this + rhs.as(unit_); }
MTime& MTime::operator+=(const MTime& rhs) { return *this = *this + rhs; }
MTime MTime::operator+(double rhs) const { return MTime(value_ + rhs, unit_); }
MTime& MTime::operator+=(double rhs) { return *this = *this + rhs; }
MTime MTime::operator-(const MTime& rhs) const { return *this - rhs.as(unit_); }
MTime& MTime::operator-=(const MTime& rhs) { return *this = *this - rhs; }
MTime MTime::operator-(double rhs) const { return MTime(value_ - rhs, unit_); }
MTime& MTime::operator-=(double rhs) { return *this = *this - rhs; }
MTime MTime::operator*(double rhs) const { return MTime(value_ * rhs, unit_); }
MTime& MTime::operator*=(double rhs) { return *this = *this * rhs; }
MTime MTime::operator/(double rhs) const { return MTime(value_ / rhs, unit_); }
MTime& MTime::operator/=(double rhs) { return *this = *this / rhs; }

MTime& MTime::operator++() { return *this += 1.0; }
MTime& MTime::operator++(int) { return *this += 1.0; }
MTime& MTime::operator--() { return *this -= 1.0; }
MTime& MTime::operator--(int) { return *this -= 1.0; }

const char* MTime::className() { return "MTime"; }

std::ostream& operator<<(std::ostream& os, const MTime& t) {
    return os << host::numberText(t.value(), static_cast<int>(os.precision()));
}
