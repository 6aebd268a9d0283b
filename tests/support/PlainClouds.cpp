#include "PlainClouds.h"

#include "Common/RandomGenerator.h"

#include <algorithm>

namespace orvo::plain {

std::optional<CloudSample> EvaluateShapes(const CloudShapeSet& set, const Vector3& point, double shapeRadius,
                                          bool groundFade, double fadeStart, double fadeEnd, bool shadowMode) {
    if (groundFade && point.y < fadeEnd) return std::nullopt;
    CloudSample result;
    for (const CloudShapeSphere& sphere : set.spheres) {
        const Vector3 q = MatrixTransformPoint(sphere.transform, point);
        const double squared = q.x * q.x + q.y * q.y + q.z * q.z;
        if (squared <= shapeRadius * shapeRadius) {
            double w = 1.0 - squared / (shapeRadius * shapeRadius);
            w = std::min(w * w, shadowMode ? 0.6 : 0.3);
            result.coverage += w;
            result.density += sphere.density * w;
            result.opacity += sphere.opacity * w;
        }
    }
    if (result.coverage < 1e-10) return std::nullopt;
    result.density /= result.coverage;
    result.opacity /= result.coverage;
    result.coverage = std::min(result.coverage, 1.0);
    if (shadowMode && groundFade) {
        const double t = std::clamp((point.y - fadeEnd) / (fadeStart - fadeEnd), 0.0, 1.0);
        result.coverage *= t * t * (3.0 - 2.0 * t);
    }
    return result;
}

double MarchLight(const CloudShapeSet& set, const Vector3& point, const Vector3& lightDirection, double stepLength,
                  bool groundFade, double fadeStart, double fadeEnd) {
    const Vector3 o = point - set.boundCentre, &d = lightDirection;
    const double radius = 2.0 * set.boundRadius;
    const double a = d.x * d.x + d.y * d.y + d.z * d.z, b = 2.0 * (o.x * d.x + o.y * d.y + o.z * d.z);
    const double c = o.x * o.x + o.y * o.y + o.z * o.z - radius * radius;
    if (b * b - 4.0 * a * c < 0.0) return 0.0;
    const double t0 = (-b - std::sqrt(b * b - 4.0 * a * c)) / (2.0 * a);
    double t1 = (-b + std::sqrt(b * b - 4.0 * a * c)) / (2.0 * a);
    if (t1 < 1e-10) return 0.0;
    Vector3 p = point;
    if (t0 > 0.0) {
        p = {p.x + d.x * t0, p.y + d.y * t0, p.z + d.z * t0};
        t1 -= t0;
    }
    double depth = 0.0;
    for (double remaining = t1; remaining > 0.0; remaining -= stepLength) {
        if (const auto sample = plain::EvaluateShapes(set, p, 1.8, groundFade, fadeStart, fadeEnd, true))
            depth += sample->coverage * sample->density * std::min(stepLength, remaining) / 100.0;
        p = {p.x + d.x * stepLength, p.y + d.y * stepLength, p.z + d.z * stepLength};
    }
    return depth;
}

ParticleCloudGeom GenerateSprites(const CloudShapeSet& set, double particleDensity, double particleSize,
                                  bool withShadowData, const Vector3& lightDirection, bool groundFade,
                                  double groundFadeStartOffset, double groundFadeEndOffset) {
    const double step = 1000.0 / std::pow(particleDensity, 0.3333333333333333) * 100.0;
    const double radius = set.boundRadius, extent = 2.0 * radius;
    const double fadeStart = groundFadeStartOffset + set.boundCentre.y;
    const double fadeEnd = groundFadeEndOffset + set.boundCentre.y;
    RandomGenerator random(set.seed);

    struct Sprite {
        Vector3 position;
        double opacity = 0.0;
        float shadow[8] = {};
    };
    std::vector<Sprite> sprites;
    const double n = std::trunc(extent / step);
    const auto full = [&] { return sprites.size() == 4000; };
    if (n * n * n <= 1000000.0)
        for (double x = 0.0; x < extent && !full(); x += step)
            for (double y = 0.0; y < extent && !full(); y += step)
                for (double z = 0.0; z < extent && !full(); z += step) {
                    Vector3 p;
                    p.x = x + random.RandomFloat() * step;
                    p.y = y + random.RandomFloat() * step;
                    p.z = z + random.RandomFloat() * step;
                    p = p - Vector3{radius, radius, radius};
                    p = p + set.boundCentre;
                    const Vector3 out = p - set.boundCentre;
                    if (!(out.x * out.x + out.y * out.y + out.z * out.z < radius * radius)) continue;
                    const auto sample = plain::EvaluateShapes(set, p, 1.2, groundFade, fadeStart, fadeEnd, false);
                    if (!sample) continue;
                    if (!(1.0 - sample->coverage < random.RandomFloat() * sample->density)) continue;
                    Sprite sprite{p, sample->opacity};
                    for (int i = 0; withShadowData && i < 8; ++i) {
                        const double cx = i & 1 ? 1.0 : -1.0, cy = i & 2 ? 1.0 : -1.0, cz = i & 4 ? 1.0 : -1.0;
                        const Vector3 from{p.x + cx * particleSize * 0.5 * 0.5, p.y + cy * particleSize * 0.5 * 0.5,
                                           p.z + cz * particleSize * 0.5 * 0.5};
                        sprite.shadow[i] = static_cast<float>(plain::MarchLight(
                            set, from, lightDirection, radius / 10.0, groundFade, fadeStart, fadeEnd));
                    }
                    sprites.push_back(sprite);
                }

    ParticleCloudGeom geom;
    geom.numSprites = static_cast<std::int32_t>(sprites.size());
    std::vector<Vector3> positions;
    for (const Sprite& sprite : sprites) positions.push_back(sprite.position);
    const Sphere bounds = smallestEnclosingSphere(positions);
    if (!sprites.empty()) geom.boundCentre = bounds.centre - set.boundCentre;
    const double half = particleSize / 2.0;
    geom.boundRadius = bounds.radius + std::sqrt(half * half + half * half);
    for (const Sprite& sprite : sprites) {
        const float value = random.RandomFloat();
        const float corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        for (const auto& corner : corners) {
            for (const double c : {sprite.position.x, sprite.position.y, sprite.position.z})
                geom.positions.push_back(static_cast<float>(c));
            geom.uvCoords.insert(geom.uvCoords.end(), corner, corner + 2);
            geom.randoms.push_back(value);
            geom.opacities.push_back(static_cast<float>(sprite.opacity));
            if (!withShadowData) continue;
            geom.shadowCube0.insert(geom.shadowCube0.end(), sprite.shadow, sprite.shadow + 4);
            geom.shadowCube1.insert(geom.shadowCube1.end(), sprite.shadow + 4, sprite.shadow + 8);
        }
    }
    return geom;
}

std::vector<Vector3> shapeSamples(std::span<const Matrix44> worldMatrices) {
    volatile double pi = 3.14159265358979323846;
    std::vector<Vector3> points;
    for (const Matrix44& world : worldMatrices) {
        points.push_back(MatrixTransformPoint(world, {0, 1, 0}));
        points.push_back(MatrixTransformPoint(world, {0, -1, 0}));
        for (int i = 0; i < 32; ++i)
            for (int j = 0; j < 32; ++j) {
                const double y = std::cos((i + 0.5) / 32 * pi), ring = std::sqrt(1.0 - y * y);
                const double a = j / 32.0 * (2.0 * pi);
                points.push_back(MatrixTransformPoint(world, {ring * std::cos(a), y, ring * std::sin(a)}));
            }
    }
    return points;
}

} // namespace orvo::plain
