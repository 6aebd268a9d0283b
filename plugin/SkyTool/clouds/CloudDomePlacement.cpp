#include "CloudDomePlacement.h"

#include "Common/RandomGenerator.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace orvo {
namespace {

constexpr double centimetres = 100.0;
constexpr double fullTurn = 6.283185307179586;
constexpr int candidateCount = 50;

/// The square of the shortest way from a to b along one side of the wrapped square.
double wrappedSquare(double a, double b, double side) {
    const double before = (a - side) - b, here = a - b, after = (a + side) - b;
    return std::min({before * before, here * here, after * after});
}

/// The smallest gap between a candidate and the clouds placed so far, nothing when it is not above 0 for one of them.
///
/// Of a cloud's nine images on the wrapped square only the nearest counts. Its distance is taken from the nearest
/// coordinates: rounding is monotone, so that this is to the bit the smallest of the nine distances.
std::optional<double> smallestGap(const std::vector<DomeCloudPlacement>& placed, double x, double z, double radius,
                                  double side) {
    double smallest = 1e50;
    for (const DomeCloudPlacement& other : placed) {
        const double distance =
            std::sqrt(wrappedSquare(other.position.x, x, side) + wrappedSquare(other.position.z, z, side));
        const double gap = distance - (radius + other.exclusionRadius);
        if (!(gap > 0)) return std::nullopt;
        smallest = std::min(smallest, gap);
    }
    return smallest;
}

/// The best of the candidates, the first among equals; all of them are drawn in any case.
std::optional<Vector3> bestCandidate(const std::vector<DomeCloudPlacement>& placed, double radius, double side,
                                     RandomGenerator& random) {
    std::optional<Vector3> best;
    double bestGap = 0.0;
    for (int i = 0; i < candidateCount; ++i) {
        const double x = side * random.RandomDouble53();
        const double z = side * random.RandomDouble53();
        const std::optional<double> gap = smallestGap(placed, x, z, radius, side);
        if (!gap || (best && !(*gap > bestGap))) continue;
        best = {x, 0.0, z};
        bestGap = *gap;
    }
    return best;
}

/// The first `rows` rows multiplied by a number, the fourth column left as it is.
Matrix44 scaledRows(Matrix44 matrix, int rows, double factor) {
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < 3; ++c) matrix.m[r][c] *= factor;
    return matrix;
}

/// About +Y, counter-clockwise as seen from above: from +Z towards +X.
Matrix44 rotationY(double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    return {{{c, 0, -s, 0}, {0, 1, 0, 0}, {s, 0, c, 0}, {0, 0, 0, 1}}};
}

/// A number brought into [0, 1) by whole steps; a negative whole number gives 1.
double wrapped(double v) { return v < 0 ? 1.0 - std::fmod(-v, 1.0) : std::fmod(v, 1.0); }

} // namespace

DomeParams domeParams(const DomeValues& values) {
    const double angle = values.windDir * std::numbers::pi / 180.0;
    const double inner = values.domeInnerRadius * centimetres, outer = values.domeOuterRadius * centimetres;
    const double height = values.domeHeight * centimetres, curvature = values.domeCurvature * centimetres;
    return {.enabled = values.enabled,
            .time = values.time,
            .windSpeed = values.windVelocity * centimetres,
            .windX = std::sin(angle),
            .windZ = std::cos(angle),
            .height = std::min(height, curvature),
            .curvature = std::max(height, curvature),
            .innerRadius = std::min(inner, outer),
            .outerRadius = std::max(inner, outer)};
}

std::uint32_t domeSeed(const DomeLayout& layout, std::size_t templateCount) {
    const auto folded = [](double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        return static_cast<std::uint32_t>(bits) ^ static_cast<std::uint32_t>(bits >> 32);
    };
    return folded(layout.density) ^ folded(layout.outerRadius) ^ static_cast<std::uint32_t>(templateCount);
}

DomePlacement placeDomeClouds(std::span<const double> templateRadii, const DomeLayout& layout) {
    DomePlacement placement;
    std::vector<DomeCloudPlacement>& placed = placement.clouds;
    const double half = layout.outerRadius, side = 2 * half;
    if (!std::isfinite(side)) return placement;

    RandomGenerator random(domeSeed(layout, templateRadii.size()));
    std::size_t index = 0, failures = 0;
    while (failures < templateRadii.size() && !placement.limitReached) {
        const double radius = templateRadii[index] * layout.scale / layout.density;
        const std::optional<Vector3> found =
            std::isnan(radius) ? std::nullopt : bestCandidate(placed, radius, side, random);
        if (found) placed.push_back({static_cast<std::int32_t>(index), *found, radius});
        failures = found ? 0 : failures + 1;
        index = (index + 1) % templateRadii.size();
        placement.limitReached = placed.size() >= maxDomeClouds;
    }
    for (DomeCloudPlacement& cloud : placed) {
        cloud.position = cloud.position + Vector3{-half, 0, -half};
        cloud.angle = random.RandomDouble53() * fullTurn;
    }
    return placement;
}

CloudShapeSet placedShapes(const CloudShapeSet& shapes, const Vector3& position, double angle) {
    CloudShapeSet placed{{}, position, shapes.boundRadius, shapes.seed};
    placed.spheres.reserve(shapes.spheres.size());
    const Matrix44 move = MatrixMultiply(MatrixMultiply(translationMatrix(shapes.boundCentre * -1.0), rotationY(angle)),
                                         translationMatrix(position));
    for (const CloudShapeSphere& sphere : shapes.spheres) {
        // In metres the determinants of large ellipsoids stay clear of the tolerance.
        bool invertible = false;
        const Matrix44 inMetres = MatrixInverse(scaledRows(sphere.transform, 3, centimetres), 1e-15, &invertible);
        if (!invertible) continue;
        const Matrix44 moved = MatrixMultiply(scaledRows(inMetres, 4, centimetres), move);
        const Matrix44 transform = MatrixInverse(moved, 1e-10, &invertible);
        if (invertible) placed.spheres.push_back({transform, sphere.opacity, sphere.density});
    }
    return placed;
}

double domeHeightAt(const DomeParams& params, double radius) {
    const double square = params.curvature * params.curvature - radius * radius;
    return params.height - (params.curvature - std::sqrt(std::max(square, 0.0)));
}

std::optional<DomeCloudPose> domeCloudPose(const DomeParams& params, const Vector3& basePosition) {
    const double outer = params.outerRadius;
    if (std::abs(basePosition.x) > outer || std::abs(basePosition.z) > outer) return std::nullopt;
    const auto drifted = [&](double base, double wind) {
        const double carried = base + wind * params.windSpeed * params.time;
        return (wrapped(carried / (2 * outer) + 0.5) - 0.5) * 2 * outer;
    };
    const double x = drifted(basePosition.x, params.windX), z = drifted(basePosition.z, params.windZ);
    const double distance = std::sqrt(x * x + z * z);
    DomeCloudPose pose{{x, domeHeightAt(params, distance), z}};
    if (distance > params.innerRadius) pose.fade = (outer - distance) / (outer - params.innerRadius);
    return pose;
}

void scaleDomeCloud(DomeCloud& cloud, double scale) {
    const float s = static_cast<float>(scale);
    const float centre[3] = {static_cast<float>(cloud.basePosition.x), static_cast<float>(cloud.basePosition.y),
                             static_cast<float>(cloud.basePosition.z)};
    std::vector<float>& positions = cloud.geom->positions;
    for (std::size_t i = 0; i < positions.size(); ++i)
        positions[i] = (positions[i] - centre[i % 3]) * s + centre[i % 3];
    cloud.geom->boundCentre = cloud.geom->boundCentre * scale;
    cloud.geom->boundRadius *= scale;
    cloud.settings.spriteSize *= scale;
    cloud.radius *= scale;
}

std::vector<LineSegment> domeOutline(const DomeParams& params) {
    constexpr int rayCount = 20, ringCount = 5;
    const double r = params.outerRadius;
    std::vector<LineSegment> lines;

    const double levels[2] = {domeHeightAt(params, r), params.height};
    constexpr int corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    const auto corner = [&](int i, double y) { return Vector3{corners[i % 4][0] * r, y, corners[i % 4][1] * r}; };
    for (int i = 0; i < 4; ++i) {
        for (const double y : levels) lines.push_back({corner(i, y), corner(i + 1, y)});
        lines.push_back({corner(i, levels[0]), corner(i, levels[1])});
    }

    const auto point = [&](int ray, int ring) {
        const double angle = (ray % rayCount) / double(rayCount) * fullTurn, radius = ring * r / ringCount;
        return Vector3{std::cos(angle) * radius, domeHeightAt(params, radius), std::sin(angle) * radius};
    };
    for (int ray = 0; ray < rayCount; ++ray)
        for (int ring = 0; ring < ringCount; ++ring) {
            lines.push_back({point(ray, ring + 1), point(ray + 1, ring + 1)});
            lines.push_back({point(ray, ring), point(ray, ring + 1)});
        }
    return lines;
}

} // namespace orvo
