#pragma once

#include "Common/Matrix44.h"

#include <cstdint>
#include <vector>

/// The ellipsoids that shape a particle cloud. Lengths are scene centimetres. Plain data, for any thread.
namespace orvo {

/// One ellipsoid of a cloud.
struct CloudShapeSphere {
    Matrix44 transform;   ///< from the scene into the space in which the ellipsoid is the unit sphere
    double opacity = 1.0; ///< of the sprites in it, 0 to 1
    double density = 1.0; ///< of the sprites in it, relative, 0 to 1
    bool operator==(const CloudShapeSphere&) const = default;
};

/// The ellipsoids of one cloud.
struct CloudShapeSet {
    std::vector<CloudShapeSphere> spheres;
    Vector3 boundCentre;      ///< of the sphere that encloses all shapes
    double boundRadius = 0.0; ///< of that sphere, larger by a twentieth
    std::uint32_t seed = 0;   ///< of the sprites' scattering
    bool operator==(const CloudShapeSet&) const = default;
};

} // namespace orvo
