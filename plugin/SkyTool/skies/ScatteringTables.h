#pragma once

#include "Common/Vector3.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

/// What a procedural sky is made of: light scattered once towards the eye by a round atmosphere of three exponential
/// layers. Plain numbers; lengths are metres.
namespace orvo {

/// The inputs of the tables.
struct ProceduralSkyParams {
    int quality = 0;          ///< 1 high, anything else low
    bool renderGround = true; ///< is none of the tables' inputs, but belongs to the same comparison
    double cameraHeight = 0;  ///< above the ground
    double hazeHeight = 0, hazeDecay = 0, hazeBrightness = 0;
    double blueSkyHeight = 0, blueSkyBrightness = 0;
    double redDecayHeight = 0, redDecay = 0, redDecayFalloff = 0;
    bool operator==(const ProceduralSkyParams&) const = default;
};

/// The value behind a slider on a cube-root scale: position x position x position x scale.
constexpr double sliderValue(double position, double scale) { return position * position * position * scale; }
constexpr double densitySliderScale = 15.0; ///< of haze decay and brightness, blue sky brightness, red decay
constexpr double falloffSliderScale = 30.0; ///< of the red decay falloff

/// Density falls off as falloffBase ^ -((altitude - baseAltitude) / scaleHeight).
struct AtmosphereLayer {
    double scaleHeight = 0, falloffBase = 0, baseAltitude = 0;
    /// The distance from the planet's centre beyond which the layer is left out: 15 scale heights up.
    double top(double planetRadius) const { return planetRadius + baseAltitude + 15.0 * scaleHeight; }
};

/// Coefficients are per metre, in red, green and blue.
struct AtmosphereModel {
    double planetRadius = 500000.0;
    double stepLength = 400.0;
    AtmosphereLayer haze;
    Vector3 hazeScattering, hazeExtinction;
    AtmosphereLayer blueSky; ///< scatters, but takes nothing away
    Vector3 blueSkyScattering;
    AtmosphereLayer redDecay; ///< takes away, but scatters nothing
    Vector3 redDecayAbsorption;

    double top() const;
};

AtmosphereModel atmosphereModel(const ProceduralSkyParams& params);

/// What reaches the eye along one ray.
struct RayScattering {
    Vector3 blueSky, haze; ///< scattered in, per unit of sunlight
    Vector3 extinction;    ///< what is left of light from beyond the atmosphere, 0 to 1
};

/// Where a ray leaves the atmosphere, measured from its origin; nothing when it never is in it.
std::optional<double> atmosphereExit(const AtmosphereModel& model, const Vector3& origin, const Vector3& direction);

/// Steps along a ray from `origin` (the planet's centre is at 0) in unit `direction`, sampling each step's middle, up
/// to `maxDistance` when that is not below 0. All zero for a ray that misses the atmosphere.
RayScattering integrateRay(const AtmosphereModel& model, const Vector3& origin, const Vector3& direction,
                           double maxDistance = -1.0);

/// Three tables over the cosine of the view's elevation: texel i of n stands for (2 i + 1) / n - 1, -1 straight down
/// to 1 straight up. Rays that end on the ground leave zeros.
struct ScatteringTables {
    using Texel = std::array<float, 3>;
    std::vector<Texel> blueSky, haze, extinction;
};

/// Texels of each table.
constexpr std::size_t scatteringTexels(int quality) { return quality == 1 ? 256 : 64; }

/// The tables, each texel rounded from integrateRay. Nothing when a ray would need more than 100,000 steps, as with
/// layers or an eye hundreds of kilometres high, or when a parameter is not a finite number.
std::optional<ScatteringTables> scatteringTables(const ProceduralSkyParams& params);

/// The extinction towards the sun, by the y of the sun's unit direction. The table must not be empty; a y that is not
/// a number counts as -1.
const ScatteringTables::Texel& sunExtinction(const std::vector<ScatteringTables::Texel>& extinction, std::size_t texels,
                                             double sunDirY);

} // namespace orvo
