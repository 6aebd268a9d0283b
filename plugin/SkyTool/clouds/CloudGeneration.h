#pragma once

#include "CloudShapes.h"

#include <memory>
#include <optional>
#include <span>

/// How a few thousand sprites come out of a cloud's ellipsoids. Lengths are scene centimetres. Plain data, for any
/// thread; the same input gives the same bits on every machine and with every instruction set.
namespace orvo {

/// The sprites of a cloud, as vertex arrays: four vertices a sprite.
struct ParticleCloudGeom {
    Vector3 boundCentre;            ///< of the sphere around the sprites' centres, relative to the shape set's centre
    double boundRadius = 0.0;       ///< of that sphere, and half the diagonal of a sprite
    std::int32_t numSprites = 0;    ///< at most 4000
    std::vector<float> positions;   ///< 3 a vertex: the sprite's centre
    std::vector<float> uvCoords;    ///< 2 a vertex: (0, 0), (1, 0), (1, 1), (0, 1)
    std::vector<float> randoms;     ///< 1 a vertex, in [0, 1], the same for a sprite's four
    std::vector<float> opacities;   ///< 1 a vertex, the same for a sprite's four
    std::vector<float> shadowCube0; ///< 4 a vertex: optical depths 0 to 3 towards the light; empty without shadow data
    std::vector<float> shadowCube1; ///< 4 a vertex: optical depths 4 to 7
};

struct CloudSample {
    double coverage = 0.0; ///< at most 1
    double density = 0.0;  ///< mean of the shapes', weighted by their coverage
    double opacity = 0.0;  ///< the same
};

/// The crossings of a line with a sphere.
struct RayCrossing {
    double t0 = 0.0, t1 = 0.0; ///< t0 <= t1
};

struct Sphere {
    Vector3 centre;
    double radius = 0.0;
};

constexpr int maxSprites = 4000;

/// 0 up to edge0, 1 from edge1 on, and 3t^2 - 2t^3 between them. edge0 may be the greater one.
double SmoothStep(double edge0, double edge1, double x);

/// The smallest sphere that encloses the points, but for those that are not finite; radius 0 for none.
Sphere smallestEnclosingSphere(std::span<const Vector3> points);

/// The bounds of a shape set from the world matrices of its ellipsoids: the smallest sphere around 1026 points on each
/// of them, its radius larger by a twentieth.
Sphere boundsOfShapes(std::span<const Matrix44> worldMatrices);

/// Whether a point lies in the cloud, shapes taken `shapeRadius` times their size, and what the cloud is like there.
/// With ground fade there is nothing below the height fadeEnd; in shadow mode coverage thins out down to there from
/// fadeStart on.
std::optional<CloudSample> EvaluateShapes(const CloudShapeSet& set, const Vector3& point, double shapeRadius,
                                          bool groundFade, double fadeStart, double fadeEnd, bool shadowMode);

/// The crossings of the line origin + t direction with a sphere around the coordinates' origin.
std::optional<RayCrossing> IntersectRaySphere(const Vector3& origin, const Vector3& direction, double radius);

/// The optical depth from a point to the edge of the cloud against the light.
/// @param lightDirection towards the light, of unit length; one that is zero, not a number, or so short that more than
///   10,000 steps were needed gives a depth of 0
/// @param stepLength above 0; any other gives a depth of 0
double MarchLight(const CloudShapeSet& set, const Vector3& point, const Vector3& lightDirection, double stepLength,
                  bool groundFade, double fadeStart, double fadeEnd);

/// Scatters sprites over the shapes.
/// @param particleDensity candidates in a cube of 1000 metres' side; a cloud without sprites comes of more than
///   1,000,000 candidates in the bounds' cube, of a density that is not above 0, and of bounds that are not finite
/// @param particleSize side of a sprite
/// @param groundFadeStartOffset, groundFadeEndOffset heights above the bounds' centre
/// @return never null. Without sprites its bounds lie around the shape set's centre
std::unique_ptr<ParticleCloudGeom> GenerateSprites(const CloudShapeSet& set, double particleDensity,
                                                   double particleSize, bool withShadowData,
                                                   const Vector3& lightDirection, bool groundFade,
                                                   double groundFadeStartOffset, double groundFadeEndOffset);

} // namespace orvo
