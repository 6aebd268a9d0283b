#include "PlainScattering.h"

#include <algorithm>
#include <cmath>

namespace plain {
namespace {

using Colour = std::array<double, 3>;

constexpr double planetRadius = 500000.0;

struct Layer {
    double scaleHeight, falloffBase;
    double top() const { return planetRadius + 15.0 * scaleHeight; }
    double density(double x, double y, double z) const {
        const double altitude = std::sqrt(x * x + y * y + z * z) - planetRadius;
        return std::pow(falloffBase, -(altitude - 0.0) / scaleHeight);
    }
};

Colour times(const Colour& c, double s) { return {c[0] * s, c[1] * s, c[2] * s}; }

/// The farther crossing of a ray from (0, eye, 0) with a sphere around the planet's centre; negative without one.
double farCrossing(double eye, double dy, double radius) {
    const double b = eye * dy;
    const double discriminant = b * b - (eye * eye - radius * radius);
    return discriminant >= 0.0 ? -b + std::sqrt(discriminant) : -1.0;
}

} // namespace

SkyInputs defaultSky(bool highQuality) {
    const double tenth = 0.1 * 0.1 * 0.1 * 15.0;
    const double falloff = 0.4491496604814464;
    return {highQuality, 30.0, 500.0, tenth, tenth, 500.0, tenth, 200.0, tenth, falloff * falloff * falloff * 30.0};
}

SkyTables skyTables(const SkyInputs& in) {
    const Colour wave{std::pow(0.475 / 0.65, 4.0), std::pow(0.475 / 0.57, 4.0), 1.0};
    const Layer haze{in.hazeHeight, 2.718281828459045};
    const Layer blueSky{in.blueSkyHeight, 2.718281828459045};
    const Layer redDecay{in.redDecayHeight, in.redDecayFalloff};
    const Colour hazeScattering = times(times({0.5, 0.5, 0.5}, in.hazeBrightness), 0.001);
    const Colour hazeExtinction = times(times({0.5, 0.5, 0.5}, in.hazeDecay), 0.001);
    const Colour blueScattering = times(times(wave, in.blueSkyBrightness), 0.001);
    const Colour redAbsorption = times(times(wave, in.redDecay), 0.001);
    const double stepLength = in.highQuality ? 50.0 : 400.0;
    const int n = in.highQuality ? 256 : 64;
    const double eye = planetRadius + in.cameraHeight;
    const double top = std::max({blueSky.top(), haze.top(), redDecay.top()});

    SkyTables tables;
    for (int i = 0; i < n; ++i) {
        const double mu = (static_cast<double>(i) / n + 1.0 / (2.0 * n)) * 2.0 - 1.0;
        const double dx = std::sqrt(1.0 - mu * mu), dy = mu;
        Colour blueSum{}, hazeSum{}, extinction{};
        const double end = farCrossing(eye, dy, top);
        if (farCrossing(eye, dy, 0.99 * planetRadius) <= 1e-10 && end >= 1e-10) {
            double s = 0, hazeDepth = 0, redDepth = 0;
            for (bool last = false; !last;) {
                last = end - s < stepLength;
                const double length = last ? end - s : stepLength;
                const double t = s + length / 2;
                const double x = 0.0 + dx * t, y = eye + dy * t, z = 0.0;
                const double blue = blueSky.density(x, y, z) * length;
                const double hazy = haze.density(x, y, z) * length;
                const double red = redDecay.density(x, y, z) * length;
                redDepth += red;
                hazeDepth += hazy;
                for (std::size_t c = 0; c < 3; ++c) {
                    const double light = std::exp(-(hazeExtinction[c] * hazeDepth + redAbsorption[c] * redDepth));
                    blueSum[c] += light * blue;
                    hazeSum[c] += light * hazy;
                }
                s += length;
            }
            for (std::size_t c = 0; c < 3; ++c) {
                extinction[c] = std::exp(-(hazeExtinction[c] * hazeDepth + redAbsorption[c] * redDepth));
                blueSum[c] *= blueScattering[c];
                hazeSum[c] *= hazeScattering[c];
            }
        }
        const auto texel = [](const Colour& c) {
            return SkyTables::Texel{static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2])};
        };
        tables.blueSky.push_back(texel(blueSum));
        tables.haze.push_back(texel(hazeSum));
        tables.extinction.push_back(texel(extinction));
    }
    return tables;
}

} // namespace plain
