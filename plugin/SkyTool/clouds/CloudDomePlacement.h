#pragma once

#include "CloudGeneration.h"
#include "CloudLibrary.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// Where the clouds of a dome stand, and how they drift over it. The clouds cover a square around the dome's node that
/// wraps around at its edges; the square is bent to a piece of a sphere. Lengths are scene centimetres. Plain data, for
/// any thread; the same input gives the same bits.
namespace orvo {

/// The attributes of a dome that its drawing needs, as authored: lengths in metres, angles in degrees.
struct DomeValues {
    bool enabled = true;
    double time = 0.0;
    double windVelocity = 10.0; ///< metres per unit of time
    double windDir = 0.0;
    double domeHeight = 700.0;
    double domeCurvature = 20000.0;
    double domeInnerRadius = 3000.0, domeOuterRadius = 4000.0;
};

/// The same for the dome's numbers.
struct DomeParams {
    bool enabled = true;
    double time = 0.0;
    double windSpeed = 0.0;          ///< per unit of time
    double windX = 0.0, windZ = 1.0; ///< of unit length
    double height = 0.0;             ///< of the dome's top; at most the curvature
    double curvature = 0.0;          ///< radius of the dome's sphere
    double innerRadius = 0.0;        ///< clouds fade out from here on; at most the outer radius
    double outerRadius = 0.0;        ///< half the side of the square
};

/// Radii, and height and curvature, that stand the wrong way round are swapped.
DomeParams domeParams(const DomeValues& values);

constexpr std::size_t maxDomeClouds = 250;

/// What decides where the clouds stand.
struct DomeLayout {
    double scale = 1.0;       ///< of every cloud, above 0
    double density = 1.0;     ///< divides the clouds' distances, above 0
    double outerRadius = 0.0; ///< half the side of the square
    bool operator==(const DomeLayout&) const = default;
};

/// One cloud of a dome.
struct DomeCloudPlacement {
    std::int32_t templateIndex = 0;
    Vector3 position;             ///< y is 0
    double exclusionRadius = 0.0; ///< other clouds keep their own beyond it
    double angle = 0.0;           ///< about +Y, 0 to 2 pi
};

struct DomePlacement {
    std::vector<DomeCloudPlacement> clouds;
    bool limitReached = false; ///< whether maxDomeClouds ended the placement
};

/// The seed of a layout: the bits of density and radius and the number of templates. The scale is not in it.
std::uint32_t domeSeed(const DomeLayout& layout, std::size_t templateCount);

/// Places clouds of the templates in turn, each at the best of 50 candidates (Mitchell's best-candidate sampling, 1991)
/// on the wrapped square, until as many templates in a row as there are find no room, or maxDomeClouds are placed.
/// Terminates for all radii, also negative and infinite ones. A template whose exclusion radius is not a number finds
/// no room; a square without a finite side has none.
/// @param templateRadii radii of the templates' bounding spheres
DomePlacement placeDomeClouds(std::span<const double> templateRadii, const DomeLayout& layout);

/// A template's shapes turned about the vertical through their bounds' centre and moved so that this centre lies at the
/// position; radius and seed stay. A shape that has no inverse is left out.
CloudShapeSet placedShapes(const CloudShapeSet& shapes, const Vector3& position, double angle);

/// Where a cloud is drawn.
struct DomeCloudPose {
    Vector3 position;
    double fade = 1.0; ///< 0 or less outside of the dome's rim
};

/// The height of the dome above a circle around its middle. Beyond the curvature it is that of the sphere's equator.
double domeHeightAt(const DomeParams& params, double radius);

/// Where the wind has carried a cloud by now; nothing for a cloud that stood outside of the square.
std::optional<DomeCloudPose> domeCloudPose(const DomeParams& params, const Vector3& basePosition);

/// A generated cloud of a dome.
struct DomeCloud {
    CloudSettings settings;
    std::unique_ptr<ParticleCloudGeom> geom; ///< with sprites
    Vector3 basePosition;                    ///< centre of its shape set
    double radius = 0.0;                     ///< of its shape set
};

/// Scales a cloud about its base position: its sprites' size and places, and its bounds.
void scaleDomeCloud(DomeCloud& cloud, double scale);

struct LineSegment {
    Vector3 from, to;
};

/// The outline of the dome: the box around it, five rings and 20 rays.
std::vector<LineSegment> domeOutline(const DomeParams& params);

} // namespace orvo
