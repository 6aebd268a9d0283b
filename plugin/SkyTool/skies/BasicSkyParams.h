#pragma once

#include "Common/Vector3.h"

#include <cmath>

namespace orvo {

/// A basic sky's attributes as the artist set them.
struct BasicSkyValues {
    Vector3 sunDir;
    Vector3 sunColour;
    double sunIntensity = 0, sunDiskSize = 0, sunDiskFalloff = 0, sunDiskWeight = 0;
    bool sunEnable = false;
    Vector3 zenithColour, horizonColour;
    double horizonFalloff = 0, horizonOffset = 0;
};

/// What a basic sky's shader works with.
struct BasicSkyParams {
    Vector3 sunDir; ///< towards the sun, length 1
    Vector3 sunColour;
    double sunIntensity = 0;   ///< multiplies sunColour
    double sunDiskSize = 0;    ///< 1 minus the cosine of the disk's angular radius
    double sunDiskFalloff = 0; ///< exponent of the halo
    double sunDiskWeight = 0;  ///< of the halo added to the sky
    bool sunEnable = false;
    Vector3 zenithColour, horizonColour;
    double horizonFalloff = 0; ///< exponent of the blend from zenith to horizon
    double horizonOffset = 0;  ///< view-direction y at which the horizon colour is reached
};

/// 1 minus the cosine of a sun disk's angle, given as a fraction of 11.25 degrees.
inline double sunDiskCosineForm(double fraction) { return 1.0 - std::cos(fraction * 0.19634954084936207); }

/// A sun direction of length 0 gives the result of dividing by zero.
inline BasicSkyParams basicSkyParams(const BasicSkyValues& v) {
    return {normalised(v.sunDir), v.sunColour,      v.sunIntensity, sunDiskCosineForm(v.sunDiskSize),
            v.sunDiskFalloff,     v.sunDiskWeight,  v.sunEnable,    v.zenithColour,
            v.horizonColour,      v.horizonFalloff, v.horizonOffset};
}

} // namespace orvo
