#pragma once

#include "Common/RandomGenerator.h"
#include "SkyTool/clouds/CloudGeneration.h"

#include <limits>

/// Seeded clouds for tests and benchmarks.
namespace orvo {

inline constexpr double inf = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct RandomCloud {
    std::vector<Matrix44> worldMatrices; ///< of the ellipsoids, in centimetres
    CloudShapeSet set;
};

/// Ellipsoids of 100 to 300 metres, turned at random, in a slab of 900 x 300 x 900 metres.
/// @param kindOf(i) may spoil ellipsoid i: 'm' mirrors it, 'z' makes it zero-size
template <class Kind>
RandomCloud randomCloud(int shapes, std::uint32_t seed, Kind&& kindOf) {
    RandomGenerator random(seed);
    const auto between = [&](double a, double b) { return a + random.RandomDouble53() * (b - a); };
    RandomCloud cloud;
    for (int i = 0; i < shapes; ++i) {
        const double a = between(0, 6.28), c = std::cos(a), s = std::sin(a);
        double size[3];
        for (double& side : size) side = between(10000, 30000);
        const char kind = kindOf(i);
        if (kind == 'm') size[i % 3] = -size[i % 3];
        if (kind == 'z') size[0] = size[1] = size[2] = 0.0;
        const Vector3 centre{between(-45000, 45000), between(-15000, 15000), between(-45000, 45000)};
        const Matrix44 world{{{c * size[0], 0, s * size[0], 0},
                              {0, size[1], 0, 0},
                              {-s * size[2], 0, c * size[2], 0},
                              {centre.x, centre.y, centre.z, 1}}};
        cloud.worldMatrices.push_back(world);
        cloud.set.spheres.push_back({MatrixInverse(world, 1e-10), between(0, 1), between(0.3, 1)});
    }
    const Sphere bounds = boundsOfShapes(cloud.worldMatrices);
    cloud.set.boundCentre = bounds.centre;
    cloud.set.boundRadius = bounds.radius;
    cloud.set.seed = seed;
    return cloud;
}

inline RandomCloud randomCloud(int shapes, std::uint32_t seed) {
    return randomCloud(shapes, seed, [](int) { return ' '; });
}

} // namespace orvo
