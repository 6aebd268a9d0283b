#pragma once

#include "Common/Matrix44.h"

#include <cstdint>
#include <utility>
#include <vector>

/// Scalar density fields over space. Plain data, for any thread once made.
namespace orvo {

/// A density at every point.
class DensityFunction {
public:
    virtual ~DensityFunction() = default;
    virtual double Evaluate(Vector3 point) const = 0;
};

/// Fractal noise: octaves of Perlin's improved noise (2002) or of Worley's cellular noise (1996), each 2.217 times as
/// fine as the one before and turned against it.
class MonoFractalDensity : public DensityFunction {
public:
    static constexpr std::uint32_t cellularNoise = 1;

    /// @param noiseType cellularNoise, or any other value for gradient noise
    /// @param scale size of the coarsest cells, not 0
    /// @param offset, gain the field is gain x noise + offset
    /// @param octaves raised to 1 when smaller
    /// @param roughness 1 gives all octaves the same weight, smaller values weaken the finer ones; above -0.25
    MonoFractalDensity(std::uint32_t noiseType, double scale, double offset, double gain, std::int32_t octaves,
                       double roughness);

    double Evaluate(Vector3 point) const override;

private:
    std::uint32_t noiseType_;
    double invScale_;
    std::int32_t octaves_;
    double offset_, gain_;
    std::vector<double> weights_; ///< one an octave
};

/// Soft objects: each is 1 in its centre and falls to 0 at its surface; where they overlap they add up to at most 1.
class SoftObjectVolumeDensity : public DensityFunction {
public:
    /// @param matrices each takes points into the space in which an object is a sphere around the origin
    /// @param radius of the objects in their own spaces, above 0
    SoftObjectVolumeDensity(std::vector<Matrix44> matrices, double radius)
        : matrices_(std::move(matrices)), radius_(radius) {}

    double Evaluate(Vector3 point) const override;

private:
    std::vector<Matrix44> matrices_;
    double radius_;
};

/// Perlin's improved noise: 0 at lattice points, period 256 along each axis.
double gradientNoise(const Vector3& p);

/// A third of the squared distance to the nearest of the cells' feature points; period 256 along each axis.
double cellularNoise(const Vector3& p);

} // namespace orvo
