#include <maya/MColor.h>

#include "base/NumberText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float fullTurn = 360.0f;

// An integer component as a part of its type's range.
template <class Whole>
float part(Whole c) {
    return static_cast<float>(c) / static_cast<float>(std::numeric_limits<Whole>::max());
}

template <class Whole>
float first(MColor::MColorType model, Whole c) {
    return model == MColor::kHSV ? part(c) * fullTurn : part(c);
}

// Hue, saturation and value to red, green and blue: A. R. Smith's hexcone model.
MColor fromHsv(float hue, float saturation, float value, float alpha) {
    if (!std::isfinite(hue)) hue = 0.0f;
    float sector = std::fmod(hue, fullTurn) / 60.0f;
    if (sector < 0.0f) sector += 6.0f;
    const auto channel = [&](float offset) {
        const float k = std::fmod(offset + sector, 6.0f);
        return value - value * saturation * std::clamp(std::min(k, 4.0f - k), 0.0f, 1.0f);
    };
    return MColor(channel(5.0f), channel(3.0f), channel(1.0f), alpha);
}

void toHsv(const MColor& c, float& hue, float& saturation, float& value) {
    const float low = std::min({c.r, c.g, c.b});
    value = std::max({c.r, c.g, c.b});
    const float range = value - low;
    saturation = value > 0.0f ? range / value : 0.0f;
    hue = 0.0f;
    if (!(range > 0.0f)) return;
    if (value == c.r)
        hue = (c.g - c.b) / range;
    else if (value == c.g)
        hue = 2.0f + (c.b - c.r) / range;
    else
        hue = 4.0f + (c.r - c.g) / range;
    hue *= 60.0f;
    if (hue < 0.0f) hue += fullTurn;
}

} // namespace

const MColor MColor::kOpaqueBlack;

MColor::MColor(MColor::MColorType colorModel, unsigned char c1, unsigned char c2, unsigned char c3,
               unsigned char alpha) {
    set(colorModel, first(colorModel, c1), part(c2), part(c3), part(alpha));
}

MColor::MColor(MColor::MColorType colorModel, unsigned short c1, unsigned short c2, unsigned short c3,
               unsigned short alpha) {
    set(colorModel, first(colorModel, c1), part(c2), part(c3), part(alpha));
}

MColor::MColor(MColor::MColorType colorModel, float c1, float c2, float c3, float alpha) {
    set(colorModel, c1, c2, c3, alpha);
}

MColor::MColor(MColor::MColorType colorModel, double c1, double c2, double c3, double alpha) {
    set(colorModel, static_cast<float>(c1), static_cast<float>(c2), static_cast<float>(c3), static_cast<float>(alpha));
}

MColor::~MColor() = default;

MColor MColor::operator*(float scalar) const { return MColor(r * scalar, g * scalar, b * scalar, a); }
MColor MColor::operator*(const MColor& other) const { return MColor(r * other.r, g * other.g, b * other.b, a); }
MColor MColor::operator/(float scalar) const { return MColor(r / scalar, g / scalar, b / scalar, a); }
MColor MColor::operator+(const MColor& other) const { return MColor(r + other.r, g + other.g, b + other.b, a); }
MColor MColor::operator-() const { return MColor(-r, -g, -b, a); }
MColor MColor::operator-(const MColor& other) const { return MColor(r - other.r, g - other.g, b - other.b, a); }
MColor& MColor::operator*=(float scalar) { return *this = *this * scalar; }
MColor& MColor::operator*=(const MColor& other) { return *this = *this * other; }
MColor& MColor::operator/=(float scalar) { return *this = *this / scalar; }
MColor& MColor::operator+=(const MColor& other) { return *this = *this + other; }

bool MColor::operator==(const MColor& other) const {
    return r == other.r && g == other.g && b == other.b && a == other.a;
}

bool MColor::operator!=(const MColor& other) const { return !(*this == other); }

bool MColor::get(MColor::MColorType colorModel, float& c1, float& c2, float& c3) const {
    float alpha = 0.0f;
    return get(colorModel, c1, c2, c3, alpha);
}

bool MColor::get(MColor::MColorType colorModel, float& c1, float& c2, float& c3, float& alpha) const {
    alpha = a;
    switch (colorModel) {
    case kRGB:
        c1 = r;
        c2 = g;
        c3 = b;
        return true;
    case kHSV: toHsv(*this, c1, c2, c3); return true;
    case kCMY:
        c1 = 1.0f - r;
        c2 = 1.0f - g;
        c3 = 1.0f - b;
        return true;
    case kCMYK: {
        const float light = std::max({r, g, b});
        alpha = 1.0f - light;
        c1 = light > 0.0f ? (light - r) / light : 0.0f;
        c2 = light > 0.0f ? (light - g) / light : 0.0f;
        c3 = light > 0.0f ? (light - b) / light : 0.0f;
        return true;
    }
    }
    return false;
}

bool MColor::set(MColor::MColorType colorModel, float c1, float c2, float c3, float alpha) {
    *this = MColor();
    switch (colorModel) {
    case kRGB: *this = MColor(c1, c2, c3, alpha); return true;
    case kHSV: *this = fromHsv(c1, c2, c3, alpha); return true;
    case kCMY: *this = MColor(1.0f - c1, 1.0f - c2, 1.0f - c3, alpha); return true;
    case kCMYK: {
        const float light = 1.0f - alpha;
        *this = MColor((1.0f - c1) * light, (1.0f - c2) * light, (1.0f - c3) * light, 1.0f);
        return true;
    }
    }
    return false;
}

MColor operator*(float scalar, const MColor& other) { return other * scalar; }

std::ostream& operator<<(std::ostream& os, const MColor& c) {
    const float values[]{c.r, c.g, c.b, c.a};
    return host::writeList(os, values, 4, '(', ')');
}
