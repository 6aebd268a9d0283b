#include "CloudGeneration.h"

#include "../Common/RandomGenerator.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr double minCoverage = 1e-10;

} // namespace

double SmoothStep(double edge0, double edge1, double x) {
    const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

std::optional<CloudSample> EvaluateShapes(const CloudShapeSet& set, const Vector3& point, double shapeRadius,
                                          bool groundFade, double fadeStart, double fadeEnd, bool shadowMode) {
    if (groundFade && point.y < fadeEnd) return std::nullopt;
    const double squaredRadius = shapeRadius * shapeRadius, cap = shadowMode ? 0.6 : 0.3;
    CloudSample sample;
    for (const CloudShapeSphere& sphere : set.spheres) {
        const Vector3 q = MatrixTransformPoint(sphere.transform, point);
        const double squaredLength = dot(q, q);
        if (!(squaredLength <= squaredRadius)) continue;
        const double u = 1.0 - squaredLength / squaredRadius, w = std::min(u * u, cap);
        sample.coverage += w;
        sample.density += sphere.density * w;
        sample.opacity += sphere.opacity * w;
    }
    if (sample.coverage < minCoverage) return std::nullopt;
    sample.density /= sample.coverage;
    sample.opacity /= sample.coverage;
    sample.coverage = std::min(sample.coverage, 1.0);
    if (shadowMode && groundFade) sample.coverage *= SmoothStep(fadeEnd, fadeStart, point.y);
    return sample;
}

std::optional<RayCrossing> IntersectRaySphere(const Vector3& origin, const Vector3& direction, double radius) {
    const double a = dot(direction, direction), b = 2.0 * dot(origin, direction);
    const double c = dot(origin, origin) - radius * radius;
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant < 0.0) return std::nullopt;
    const double root = std::sqrt(discriminant);
    return RayCrossing{(-b - root) / (2.0 * a), (-b + root) / (2.0 * a)};
}

double MarchLight(const CloudShapeSet& set, const Vector3& point, const Vector3& lightDirection, double stepLength,
                  bool groundFade, double fadeStart, double fadeEnd) {
    const auto crossing = IntersectRaySphere(point - set.boundCentre, lightDirection, 2.0 * set.boundRadius);
    if (!crossing || crossing->t1 < 1e-10) return 0.0;
    Vector3 p = point;
    double remaining = crossing->t1;
    if (crossing->t0 > 0.0) {
        p = p + lightDirection * crossing->t0;
        remaining -= crossing->t0;
    }
    // A unit direction takes 40 steps at most. One that is not a direction would take for ever.
    constexpr double maxSteps = 10000.0;
    if (!(remaining <= maxSteps * stepLength)) return 0.0;
    const Vector3 stride = lightDirection * stepLength;
    double depth = 0.0;
    while (remaining > 0.0) {
        if (const auto sample = EvaluateShapes(set, p, 1.8, groundFade, fadeStart, fadeEnd, true))
            depth += sample->coverage * sample->density * std::min(stepLength, remaining) / 100.0;
        p = p + stride;
        remaining -= stepLength;
    }
    return depth;
}

std::unique_ptr<ParticleCloudGeom> GenerateSprites(const CloudShapeSet& set, double particleDensity,
                                                   double particleSize, bool withShadowData,
                                                   const Vector3& lightDirection, bool groundFade,
                                                   double groundFadeStartOffset, double groundFadeEndOffset) {
    const double step = 1000.0 / std::pow(particleDensity, 0.3333333333333333) * 100.0;
    const double radius = set.boundRadius, extent = 2.0 * radius;
    const double fadeStart = groundFadeStartOffset + set.boundCentre.y;
    const double fadeEnd = groundFadeEndOffset + set.boundCentre.y;
    RandomGenerator random(set.seed);
    std::vector<Vector3> kept;
    std::vector<float> opacities;
    const double n = std::trunc(extent / step);
    const bool scatters = n * n * n <= 1000000.0;
    const auto full = [&] { return kept.size() == maxSprites; };
    for (double x = 0.0; scatters && x < extent && !full(); x += step)
        for (double y = 0.0; y < extent && !full(); y += step)
            for (double z = 0.0; z < extent && !full(); z += step) {
                Vector3 p;
                p.x = x + random.RandomFloat() * step;
                p.y = y + random.RandomFloat() * step;
                p.z = z + random.RandomFloat() * step;
                p = p - Vector3{radius, radius, radius} + set.boundCentre;
                const Vector3 out = p - set.boundCentre;
                if (!(dot(out, out) < radius * radius)) continue;
                const auto sample = EvaluateShapes(set, p, 1.2, groundFade, fadeStart, fadeEnd, false);
                if (!sample || !(1.0 - sample->coverage < random.RandomFloat() * sample->density)) continue;
                kept.push_back(p);
                opacities.push_back(static_cast<float>(sample->opacity));
            }

    auto geom = std::make_unique<ParticleCloudGeom>();
    const auto count = kept.size();
    geom->numSprites = static_cast<std::int32_t>(count);
    const Sphere bounds = smallestEnclosingSphere(kept);
    if (count > 0) geom->boundCentre = bounds.centre - set.boundCentre;
    const double half = particleSize / 2.0;
    geom->boundRadius = bounds.radius + std::sqrt(half * half + half * half);
    geom->positions.reserve(count * 12);
    geom->uvCoords.reserve(count * 8);
    geom->randoms.reserve(count * 4);
    geom->opacities.reserve(count * 4);
    if (withShadowData) {
        geom->shadowCube0.reserve(count * 16);
        geom->shadowCube1.reserve(count * 16);
    }
    for (std::size_t i = 0; i < count; ++i) {
        float shadow[8] = {};
        for (int corner = 0; withShadowData && corner < 8; ++corner) {
            const auto offset = [&](int bit) { return (corner & bit ? particleSize : -particleSize) * 0.5 * 0.5; };
            const Vector3 from = kept[i] + Vector3{offset(1), offset(2), offset(4)};
            shadow[corner] = static_cast<float>(
                MarchLight(set, from, lightDirection, radius / 10.0, groundFade, fadeStart, fadeEnd));
        }
        const float value = random.RandomFloat();
        constexpr float corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        for (const auto& corner : corners) {
            for (const double c : {kept[i].x, kept[i].y, kept[i].z}) geom->positions.push_back(static_cast<float>(c));
            geom->uvCoords.insert(geom->uvCoords.end(), corner, corner + 2);
            geom->randoms.push_back(value);
            geom->opacities.push_back(opacities[i]);
            if (!withShadowData) continue;
            geom->shadowCube0.insert(geom->shadowCube0.end(), shadow, shadow + 4);
            geom->shadowCube1.insert(geom->shadowCube1.end(), shadow + 4, shadow + 8);
        }
    }
    return geom;
}

} // namespace orvo
