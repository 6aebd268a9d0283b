#include "ScatteringTables.h"

#include "ScatteringKernels.h"

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

constexpr double e = 2.718281828459045;
constexpr double perMetre = 0.001;
constexpr double tooNear = 1e-10;
constexpr double mostSteps = 100000;
/// Rays that come closer to the planet's centre than this part of its radius end on the ground. A little below the
/// ground itself, so that the sky goes on a little below the horizon.
constexpr double groundPart = 0.99;

/// The inverse fourth power of the wavelengths of red, green and blue, in micrometres, beside that of blue.
Vector3 scatteringByWavelength() {
    const auto part = [](double wavelength) { return std::pow(0.475 / wavelength, 4.0); };
    return {part(0.65), part(0.57), 1.0};
}

/// Where a ray enters and leaves a sphere around 0, which may be behind the origin.
struct Crossing {
    double enter, leave;
};

std::optional<Crossing> cross(const Vector3& origin, const Vector3& direction, double radius) {
    const double b = dot(origin, direction);
    const double discriminant = b * b - (dot(origin, origin) - radius * radius);
    if (!(discriminant >= 0.0)) return std::nullopt;
    const double root = std::sqrt(discriminant);
    return Crossing{-b - root, -b + root};
}

bool endsOnGround(const AtmosphereModel& model, const Vector3& origin, const Vector3& direction) {
    const auto ground = cross(origin, direction, groundPart * model.planetRadius);
    return ground && (ground->enter > tooNear || ground->leave > tooNear);
}

double density(const AtmosphereLayer& layer, double planetRadius, const Vector3& point) {
    const double altitude = length(point) - planetRadius;
    return std::pow(layer.falloffBase, -(altitude - layer.baseAltitude) / layer.scaleHeight);
}

Vector3 product(const Vector3& a, const Vector3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

/// What is left of light behind these optical depths.
Vector3 transmittance(const AtmosphereModel& model, double hazeDepth, double redDepth) {
    const Vector3 depth = model.hazeExtinction * hazeDepth + model.redDecayAbsorption * redDepth;
    return {std::exp(-depth.x), std::exp(-depth.y), std::exp(-depth.z)};
}

ScatteringTables::Texel texelOf(const Vector3& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

/// Whether every value within the relative error rounds to the same float.
bool roundsAlike(double value, double error) {
    return static_cast<float>(value * (1.0 - error)) == static_cast<float>(value * (1.0 + error));
}

bool roundsAlike(const Vector3& v, const Vector3& error) {
    return roundsAlike(v.x, error.x) && roundsAlike(v.y, error.y) && roundsAlike(v.z, error.z);
}

bool roundsAlike(const NearScattering& near) {
    return roundsAlike(near.value.blueSky, near.error.blueSky) && roundsAlike(near.value.haze, near.error.haze) &&
           roundsAlike(near.value.extinction, near.error.extinction);
}

} // namespace

double AtmosphereModel::top() const {
    return std::max({blueSky.top(planetRadius), haze.top(planetRadius), redDecay.top(planetRadius)});
}

AtmosphereModel atmosphereModel(const ProceduralSkyParams& params) {
    const Vector3 grey{0.5, 0.5, 0.5}, blue = scatteringByWavelength();
    return {.stepLength = params.quality == 1 ? 50.0 : 400.0,
            .haze = {params.hazeHeight, e, 0.0},
            .hazeScattering = grey * params.hazeBrightness * perMetre,
            .hazeExtinction = grey * params.hazeDecay * perMetre,
            .blueSky = {params.blueSkyHeight, e, 0.0},
            .blueSkyScattering = blue * params.blueSkyBrightness * perMetre,
            .redDecay = {params.redDecayHeight, params.redDecayFalloff, 0.0},
            .redDecayAbsorption = blue * params.redDecay * perMetre};
}

std::optional<double> atmosphereExit(const AtmosphereModel& model, const Vector3& origin, const Vector3& direction) {
    const auto sphere = cross(origin, direction, model.top());
    if (!sphere || sphere->leave < tooNear) return std::nullopt;
    return sphere->leave;
}

RayScattering integrateRay(const AtmosphereModel& model, const Vector3& origin, const Vector3& direction,
                           double maxDistance) {
    RayScattering result;
    const auto exit = atmosphereExit(model, origin, direction);
    if (!exit) return result;
    const double end = maxDistance >= 0.0 ? std::min(*exit, maxDistance) : *exit;
    double hazeDepth = 0.0, redDepth = 0.0;
    bool isLast = false;
    for (double s = 0.0; !isLast;) {
        isLast = end - s < model.stepLength;
        const double step = isLast ? end - s : model.stepLength;
        const Vector3 middle = origin + direction * (s + step / 2.0);
        const double blue = density(model.blueSky, model.planetRadius, middle) * step;
        const double haze = density(model.haze, model.planetRadius, middle) * step;
        const double red = density(model.redDecay, model.planetRadius, middle) * step;
        redDepth += red;
        hazeDepth += haze;
        const Vector3 light = transmittance(model, hazeDepth, redDepth);
        result.blueSky = result.blueSky + light * blue;
        result.haze = result.haze + light * haze;
        s += step;
    }
    result.extinction = transmittance(model, hazeDepth, redDepth);
    result.blueSky = product(result.blueSky, model.blueSkyScattering);
    result.haze = product(result.haze, model.hazeScattering);
    return result;
}

std::optional<ScatteringTables> scatteringTables(const ProceduralSkyParams& params) {
    for (const double value :
         {params.cameraHeight, params.hazeHeight, params.hazeDecay, params.hazeBrightness, params.blueSkyHeight,
          params.blueSkyBrightness, params.redDecayHeight, params.redDecay, params.redDecayFalloff})
        if (!std::isfinite(value)) return std::nullopt;
    const AtmosphereModel model = atmosphereModel(params);
    const Vector3 eye{0.0, model.planetRadius + params.cameraHeight, 0.0};
    const std::size_t n = scatteringTexels(params.quality);
    const ScatteringTables::Texel none{};
    ScatteringTables tables{std::vector(n, none), std::vector(n, none), std::vector(n, none)};

    std::vector<TableRay> rays;
    std::vector<std::size_t> texels; // of the rays
    for (std::size_t i = 0; i < n; ++i) {
        const double count = static_cast<double>(n);
        const double mu = (static_cast<double>(i) / count + 1.0 / (2.0 * count)) * 2.0 - 1.0;
        const Vector3 direction{std::sqrt(1.0 - mu * mu), mu, 0.0};
        if (endsOnGround(model, eye, direction)) continue;
        const auto exit = atmosphereExit(model, eye, direction);
        if (!exit) continue;
        if (*exit / model.stepLength > mostSteps) return std::nullopt;
        rays.push_back({direction.x, direction.y, *exit});
        texels.push_back(i);
    }

    // Almost every texel is settled by the fast integration: its float is the same however the exponentials round.
    std::vector<NearScattering> near(rays.size());
    const bool haveNear = integrateRays(model, eye.y, rays, near);
    for (std::size_t k = 0; k < rays.size(); ++k) {
        const RayScattering ray =
            haveNear && roundsAlike(near[k]) ? near[k].value : integrateRay(model, eye, {rays[k].x, rays[k].y, 0.0});
        tables.blueSky[texels[k]] = texelOf(ray.blueSky);
        tables.haze[texels[k]] = texelOf(ray.haze);
        tables.extinction[texels[k]] = texelOf(ray.extinction);
    }
    return tables;
}

const ScatteringTables::Texel& sunExtinction(const std::vector<ScatteringTables::Texel>& extinction, std::size_t texels,
                                             double sunDirY) {
    const double last = static_cast<double>(std::min(texels, extinction.size()) - 1);
    const double place = (sunDirY * 0.5 + 0.5) * static_cast<double>(texels);
    return extinction[place > 0.0 ? static_cast<std::size_t>(std::min(place, last)) : 0];
}

} // namespace orvo
