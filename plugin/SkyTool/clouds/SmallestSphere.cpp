#include "CloudGeneration.h"

#include <algorithm>
#include <array>
#include <limits>

namespace orvo {
namespace {

constexpr int maxSupport = 4;
/// Squared lengths that differ by less than this part count as equal.
constexpr double tolerance = 1e-13;

bool finite(const Vector3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

double squaredLength(const Vector3& v) { return dot(v, v); }

/// The smallest sphere through the origin and the other points, its centre in their hull's plane; nothing for points
/// that define none. Solved by Cramer's rule on the points' Gram matrix.
std::optional<Vector3> centreThrough(std::span<const Vector3> others) {
    switch (others.size()) {
    case 0: return Vector3{};
    case 1: return others[0] * 0.5;
    case 2: {
        const Vector3 &a = others[0], &b = others[1], normal = cross(a, b);
        const double area = squaredLength(normal);
        if (!(area > 0.0)) return std::nullopt;
        return (cross(b, normal) * squaredLength(a) + cross(normal, a) * squaredLength(b)) * (0.5 / area);
    }
    default: {
        const Vector3 &a = others[0], &b = others[1], &c = others[2], bc = cross(b, c);
        const double volume = dot(a, bc);
        if (volume == 0.0 || !std::isfinite(volume)) return std::nullopt;
        return (bc * squaredLength(a) + cross(c, a) * squaredLength(b) + cross(a, b) * squaredLength(c)) *
               (0.5 / volume);
    }
    }
}

/// The points on the surface of the smallest sphere of some set, and that sphere.
struct Support {
    std::array<Vector3, maxSupport> points;
    int count = 0;
    Vector3 centre;
    double squaredRadius = 0.0;
};

/// The smallest sphere of the support's points and one more, which lies outside their sphere and so on the new one:
/// the smallest sphere through it and up to three of the others that encloses all five.
Support grown(const Support& old, const Vector3& added) {
    Support best;
    best.points[0] = added;
    best.squaredRadius = std::numeric_limits<double>::infinity();
    for (unsigned chosen = 0; chosen < 1u << old.count; ++chosen) {
        std::array<Vector3, maxSupport> relative;
        int count = 0;
        for (int i = 0; i < old.count; ++i)
            if (chosen >> i & 1 && count < maxSupport) relative[count++] = old.points[i] - added;
        if (count == maxSupport) continue;
        const auto centre = centreThrough({relative.data(), static_cast<std::size_t>(count)});
        if (!centre) continue;
        const double squaredRadius = squaredLength(*centre);
        if (!(squaredRadius < best.squaredRadius)) continue;
        const bool encloses = std::all_of(old.points.begin(), old.points.begin() + old.count, [&](const Vector3& p) {
            return squaredLength(p - added - *centre) <= squaredRadius * (1.0 + tolerance);
        });
        if (!encloses) continue;
        best.count = 1;
        for (int i = 0; i < old.count; ++i)
            if (chosen >> i & 1) best.points[best.count++] = old.points[i];
        best.centre = added + *centre;
        best.squaredRadius = squaredRadius;
    }
    return best;
}

struct Farthest {
    Vector3 point;
    double squaredDistance = -1.0; ///< below 0 when there is no finite point
};

/// The smallest enclosing sphere is that of at most four of the points. Starting from any one, the point farthest out
/// joins them and those that are no longer on the surface leave (the pivot rule of Gaertner's "Fast and Robust
/// Smallest Enclosing Balls", 1999). The radius grows at every turn, which rounding may end a little early: the last
/// radius is therefore measured.
/// @param farthest the point farthest from a centre, the first one of several
template <class Search>
Sphere enclosing(const Vector3& first, Search&& farthest) {
    Support support;
    support.points[0] = support.centre = first;
    support.count = 1;
    Farthest outer = farthest(support.centre);
    constexpr int maxTurns = 1000;
    for (int turn = 0; turn < maxTurns && outer.squaredDistance > support.squaredRadius * (1.0 + tolerance); ++turn) {
        const Support next = grown(support, outer.point);
        if (next.count == 0 || !(next.squaredRadius > support.squaredRadius)) break;
        const Farthest nextOuter = farthest(next.centre);
        if (!(nextOuter.squaredDistance >= 0.0)) break;
        support = next;
        outer = nextOuter;
    }
    return {support.centre, std::sqrt(std::max(outer.squaredDistance, 0.0))};
}

void takeFarther(const Vector3& p, const Vector3& centre, Farthest& best) {
    // Distances from points that are not numbers compare false; infinite points are no candidates either.
    const double distance = squaredLength(p - centre);
    if (distance > best.squaredDistance && distance <= std::numeric_limits<double>::max()) best = {p, distance};
}

constexpr int rings = 32;
constexpr double pi = 3.14159265358979323846;

/// The poles of the unit sphere and 32 rings of 32 points.
std::vector<Vector3> unitSphereSamples() {
    // Known only at run time, so that no compiler works cosines out with other roundings than the library's.
    volatile double halfTurn = pi;
    std::vector<Vector3> samples{{0, 1, 0}, {0, -1, 0}};
    samples.reserve(2 + rings * rings);
    for (int i = 0; i < rings; ++i) {
        const double y = std::cos((i + 0.5) / rings * halfTurn), ring = std::sqrt(1.0 - y * y);
        for (int j = 0; j < rings; ++j) {
            const double a = static_cast<double>(j) / rings * (2.0 * halfTurn);
            samples.push_back({ring * std::cos(a), y, ring * std::sin(a)});
        }
    }
    return samples;
}

/// At least the largest factor by which the matrix stretches a direction: its Frobenius norm.
double stretchBound(const Matrix44& a) {
    double sum = 0.0;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) sum += a.m[r][c] * a.m[r][c];
    return std::sqrt(sum);
}

} // namespace

Sphere smallestEnclosingSphere(std::span<const Vector3> points) {
    const auto first = std::find_if(points.begin(), points.end(), finite);
    if (first == points.end()) return {};
    return enclosing(*first, [&](const Vector3& centre) {
        Farthest best;
        for (const Vector3& p : points) takeFarther(p, centre, best);
        return best;
    });
}

Sphere boundsOfShapes(std::span<const Matrix44> worldMatrices) {
    const std::vector<Vector3> samples = unitSphereSamples();
    std::vector<double> stretches;
    stretches.reserve(worldMatrices.size());
    const Vector3* first = nullptr;
    Vector3 firstPoint;
    for (const Matrix44& world : worldMatrices) {
        stretches.push_back(stretchBound(world));
        for (std::size_t i = 0; !first && i < samples.size(); ++i)
            if (finite(firstPoint = MatrixTransformPoint(world, samples[i]))) first = &firstPoint;
    }
    if (!first) return {};
    Sphere sphere = enclosing(*first, [&](const Vector3& centre) {
        Farthest best;
        for (std::size_t shape = 0; shape < worldMatrices.size(); ++shape) {
            const Matrix44& world = worldMatrices[shape];
            // Most shapes lie too deep in the sphere to hold its farthest point; the margin is far above rounding.
            const Vector3 middle{world.m[3][0], world.m[3][1], world.m[3][2]};
            const double reach = (length(middle - centre) + stretches[shape]) * (1.0 + 1e-9);
            if (reach * reach < best.squaredDistance) continue;
            for (const Vector3& sample : samples) takeFarther(MatrixTransformPoint(world, sample), centre, best);
        }
        return best;
    });
    sphere.radius *= 1.05;
    return sphere;
}

} // namespace orvo
