#include "ScatteringKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "SkyTool/skies/ScatteringKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#ifndef ORVO_SCATTERING_KERNELS
#define ORVO_SCATTERING_KERNELS
namespace orvo {

constexpr std::size_t mostLanes = 8;
/// Depths up to which the short series of smallExponential holds.
constexpr double smallDepth = 1.0 / 64.0;
/// A depth behind which e^-depth is 0: nothing more is scattered in.
constexpr double darkDepth = 800.0;

/// The model, made ready for the lanes.
struct LaneModel {
    /// The natural logarithm of a layer's density is (altitude - base) times its rate.
    struct Layer {
        double base, rate;
        bool operator==(const Layer&) const = default;
    };
    double planetRadius, stepLength, eyeHeight;
    Layer haze, blueSky, redDecay;
    Vector3 hazeExtinction, redDecayAbsorption;
};

/// One value per lane.
struct LaneSums {
    alignas(64) double blueSky[3][mostLanes], haze[3][mostLanes]; ///< transmittance times density, summed over the ray
    alignas(64) double blueSkyLength[mostLanes], hazeLength[mostLanes];  ///< density, summed over the ray
    alignas(64) double depth[3][mostLanes], transmittance[3][mostLanes]; ///< at the ray's end
    std::size_t steps;
};

} // namespace orvo
#endif

HWY_BEFORE_NAMESPACE();
namespace orvo::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Tag = hn::CappedTag<double, mostLanes>;
using Values = hn::Vec<Tag>;

struct Channels {
    Values red, green, blue;
};

template <class Operation, class... Operands>
HWY_INLINE HWY_ATTR Channels perChannel(const Operation& operation, const Operands&... operands) {
    return {operation(operands.red...), operation(operands.green...), operation(operands.blue...)};
}

HWY_INLINE HWY_ATTR Channels spread(const Vector3& v) {
    const Tag d;
    return {hn::Set(d, v.x), hn::Set(d, v.y), hn::Set(d, v.z)};
}

std::size_t laneCount() { return hn::Lanes(Tag()); }

/// e^x within a few roundings, for x up to 708; below -708, e^-708. Beyond that, anything.
///
/// e^x = 2^n e^r with |r| at most ln 2 / 2. The polynomial meets e^r at the 11 Chebyshev nodes of that interval; it is
/// off by 3.3e-16 at most.
HWY_INLINE HWY_ATTR Values exponential(Values x) {
    const Tag d;
    const hn::RebindToUnsigned<Tag> bits;
    x = hn::Max(x, hn::Set(d, -708.0));
    // Adding 1.5 * 2^52 rounds to a whole number, which then stands in the low bits.
    const Values shift = hn::Set(d, 0x1.8p52);
    const Values shifted = hn::MulAdd(x, hn::Set(d, 1.4426950408889634), shift);
    const Values n = hn::Sub(shifted, shift);
    // ln 2 in two parts; the first has enough zeros at its end for n times it to be exact.
    const Values r = hn::NegMulAdd(n, hn::Set(d, 1.90821492927058770002e-10),
                                   hn::NegMulAdd(n, hn::Set(d, 6.93147180369123816490e-01), x));
    // By Estrin's scheme: Horner's would be one long chain of waiting.
    const Values r2 = hn::Mul(r, r), r4 = hn::Mul(r2, r2);
    const auto pair = [&](double c0, double c1) HWY_ATTR { return hn::MulAdd(hn::Set(d, c1), r, hn::Set(d, c0)); };
    const Values low =
        hn::MulAdd(pair(0x1.0000000000005p-1, 0x1.555555554b757p-3), r2, pair(1.0, 0x1.000000000001ep+0));
    const Values middle = hn::MulAdd(pair(0x1.6c16c17f43a58p-10, 0x1.a01978c6baeeep-13), r2,
                                     pair(0x1.55555555520afp-5, 0x1.1111112dd67c5p-7));
    const Values high =
        hn::MulAdd(hn::Set(d, 0x1.28a2c0a726ffbp-22), r2, pair(0x1.a019a66a75d72p-16, 0x1.72faf024c024ap-19));
    const Values p = hn::MulAdd(hn::MulAdd(high, r4, middle), r4, low);
    return hn::BitCast(d, hn::Add(hn::BitCast(bits, p), hn::ShiftLeft<52>(hn::BitCast(bits, shifted))));
}

/// e^-x for x from 0 to smallDepth, within a few roundings: the first seven terms of its series.
HWY_INLINE HWY_ATTR Values smallExponential(Values x) {
    const Tag d;
    const Values one = hn::Set(d, 1.0), q2 = hn::Mul(x, x);
    const Values high =
        hn::MulAdd(q2, hn::Set(d, 1.0 / 720.0), hn::NegMulAdd(x, hn::Set(d, 1.0 / 120.0), hn::Set(d, 1.0 / 24.0)));
    const Values middle = hn::NegMulAdd(x, hn::Set(d, 1.0 / 6.0), hn::Set(d, 0.5));
    return hn::MulAdd(hn::MulAdd(high, q2, middle), q2, hn::Sub(one, x));
}

HWY_INLINE HWY_ATTR Values density(const LaneModel::Layer& layer, Values altitude) {
    const Tag d;
    return exponential(hn::Mul(hn::Sub(altitude, hn::Set(d, layer.base)), hn::Set(d, layer.rate)));
}

/// One ray a lane, in step. A ray that has ended goes on with steps of length 0, which add nothing.
void integrateLanes(const LaneModel& model, const TableRay* rays, std::size_t count, LaneSums& sums) {
    const Tag d;
    alignas(64) double xs[mostLanes], ys[mostLanes], exits[mostLanes];
    double farthest = 0;
    for (std::size_t i = 0; i < mostLanes; ++i) {
        const TableRay& ray = rays[std::min(i, count - 1)];
        xs[i] = ray.x;
        ys[i] = ray.y;
        exits[i] = ray.exit;
        farthest = std::max(farthest, exits[i]);
    }
    const Values x = hn::Load(d, xs), y = hn::Load(d, ys), exit = hn::Load(d, exits);
    const Values zero = hn::Zero(d), one = hn::Set(d, 1.0), half = hn::Set(d, 0.5);
    const Values stepLength = hn::Set(d, model.stepLength);
    const Values eye = hn::Set(d, model.eyeHeight), radius = hn::Set(d, model.planetRadius);
    const Values small = hn::Set(d, smallDepth), dark = hn::Set(d, darkDepth);
    const Channels none{zero, zero, zero};
    const Channels hazeExtinction = spread(model.hazeExtinction), redAbsorption = spread(model.redDecayAbsorption);
    const bool hazeIsLikeBlueSky = model.haze == model.blueSky;
    const auto depthOf = [&](Values haze, Values red) HWY_ATTR {
        return perChannel([=](Values ofHaze, Values ofRed)
                              HWY_ATTR { return hn::Add(hn::Mul(ofHaze, haze), hn::Mul(ofRed, red)); },
                          hazeExtinction, redAbsorption);
    };
    const auto lightBehind = [](const Channels& depth) HWY_ATTR {
        return perChannel([](Values v) HWY_ATTR { return exponential(hn::Neg(v)); }, depth);
    };

    // Densities first, for a block of steps, then the sums: the former wait for nothing, and the processor works on
    // several at once.
    constexpr std::size_t blockSteps = 32;
    struct Step {
        alignas(64) double blueSky[mostLanes], haze[mostLanes], red[mostLanes]; ///< density times length
    } block[blockSteps];

    Values blueLength = zero, hazeLength = zero, redLength = zero;
    Channels blueSum = none, hazeSum = none, light{one, one, one};
    sums.steps = 0;
    double s = 0;
    for (bool isDark = false; s <= farthest && !isDark;) {
        std::size_t filled = 0;
        for (; filled < blockSteps && s <= farthest; s += model.stepLength, ++filled) {
            const Values start = hn::Set(d, s);
            const Values length = hn::Max(zero, hn::Min(hn::Sub(exit, start), stepLength));
            // A ray that has ended stays where it ended: farther out a density might be too large a number.
            const Values middle = hn::Min(hn::Add(start, hn::Mul(length, half)), exit);
            const Values px = hn::Mul(x, middle), py = hn::Add(eye, hn::Mul(y, middle));
            const Values altitude = hn::Sub(hn::Sqrt(hn::Add(hn::Mul(px, px), hn::Mul(py, py))), radius);
            Step& step = block[filled];
            hn::Store(hn::Mul(density(model.blueSky, altitude), length), d, step.blueSky);
            if (!hazeIsLikeBlueSky) hn::Store(hn::Mul(density(model.haze, altitude), length), d, step.haze);
            hn::Store(hn::Mul(density(model.redDecay, altitude), length), d, step.red);
        }
        sums.steps += filled;
        for (std::size_t i = 0; i < filled; ++i) {
            const Step& step = block[i];
            const Values blue = hn::Load(d, step.blueSky), red = hn::Load(d, step.red);
            const Values haze = hazeIsLikeBlueSky ? blue : hn::Load(d, step.haze);
            redLength = hn::Add(redLength, red);
            hazeLength = hn::Add(hazeLength, haze);
            blueLength = hn::Add(blueLength, blue);

            // Light mostly weakens by little from step to step, which takes a shorter series than the whole depth.
            const Channels more = depthOf(haze, red);
            if (hn::AllTrue(d, hn::Le(hn::Max(hn::Max(more.red, more.green), more.blue), small))) {
                light = perChannel([](Values left, Values v) HWY_ATTR { return hn::Mul(left, smallExponential(v)); },
                                   light, more);
            } else {
                const Channels depth = depthOf(hazeLength, redLength);
                isDark = hn::AllTrue(d, hn::Ge(hn::Min(hn::Min(depth.red, depth.green), depth.blue), dark));
                if (isDark) break;
                light = lightBehind(depth);
            }
            const auto addPart = [](Values part) {
                return [part](Values sum, Values left) HWY_ATTR { return hn::Add(sum, hn::Mul(left, part)); };
            };
            blueSum = perChannel(addPart(blue), blueSum, light);
            if (!hazeIsLikeBlueSky) hazeSum = perChannel(addPart(haze), hazeSum, light);
        }
    }
    const auto store = [d](const Channels& c, double(&to)[3][mostLanes]) HWY_ATTR {
        hn::Store(c.red, d, to[0]);
        hn::Store(c.green, d, to[1]);
        hn::Store(c.blue, d, to[2]);
    };
    const Channels depth = depthOf(hazeLength, redLength);
    store(blueSum, sums.blueSky);
    store(hazeIsLikeBlueSky ? blueSum : hazeSum, sums.haze);
    store(depth, sums.depth);
    store(lightBehind(depth), sums.transmittance);
    hn::Store(blueLength, d, sums.blueSkyLength);
    hn::Store(hazeLength, d, sums.hazeLength);
}

} // namespace
} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvo {
namespace {

HWY_EXPORT(laneCount);
HWY_EXPORT(integrateLanes);

constexpr double u = std::numeric_limits<double>::epsilon() / 2; ///< one rounding

/// Whether all are of a size at which no product of them leaves the range of normal numbers.
bool moderate(std::initializer_list<double> values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return v == 0.0 || (v >= 1e-30 && v <= 1e30); });
}

bool moderate(const AtmosphereLayer& layer) {
    return layer.scaleHeight > 0 && layer.falloffBase > 0 && std::abs(layer.baseAltitude) <= 1e30 &&
           moderate({layer.scaleHeight, layer.falloffBase});
}

bool moderate(const Vector3& v) { return moderate({v.x, v.y, v.z}); }

LaneModel::Layer laneLayer(const AtmosphereLayer& layer) {
    return {layer.baseAltitude, -std::log(layer.falloffBase) / layer.scaleHeight};
}

template <class Triple>
auto& component(Triple& v, int i) {
    return i == 0 ? v.x : i == 1 ? v.y : v.z;
}

/// The largest exponent of a layer's density, in size, between two altitudes; infinite where the density is beyond the
/// range of numbers.
double largestExponent(const LaneModel::Layer& layer, double lowest, double highest) {
    const double ends[2] = {(lowest - layer.base) * layer.rate, (highest - layer.base) * layer.rate};
    if (std::max(ends[0], ends[1]) > 690.0) return std::numeric_limits<double>::infinity();
    // Below e^-690 both ways of computing give what is nothing beside the rest.
    return std::min(std::max(std::abs(ends[0]), std::abs(ends[1])), 690.0);
}

/// How far the two ways of computing can be apart: with u the relative error of one rounding, the C library's pow and
/// exp are good to 2 u, the exponentials here to 10 u, and a sum or product of n terms, none below 0, to n u on either
/// side. What is of second order is covered by doubling the result.
NearScattering nearScattering(const AtmosphereModel& model, const LaneModel& lanes, const TableRay& ray,
                              const LaneSums& sums, std::size_t lane) {
    const double highest = model.top() - model.planetRadius + 1.0;
    const double nearest = ray.y < 0.0 ? lanes.eyeHeight * ray.x : lanes.eyeHeight; // to the planet's centre
    const double lowest = nearest - model.planetRadius - 1.0;
    const double exponent =
        std::max({largestExponent(lanes.haze, lowest, highest), largestExponent(lanes.blueSky, lowest, highest),
                  largestExponent(lanes.redDecay, lowest, highest)});
    const double n = static_cast<double>(sums.steps);
    const double ofDensity = (20.0 + 8.0 * exponent) * u;
    const double ofDepth = ofDensity + (2.0 * n + 20.0) * u;
    // Behind a depth of 45 there is less light than e^-44 on either side.
    constexpr double deep = 45.0, deepLight = 8e-20;

    NearScattering near;
    for (int c = 0; c < 3; ++c) {
        const double blueSky = sums.blueSky[c][lane], haze = sums.haze[c][lane], depth = sums.depth[c][lane];
        // A depth that is off by d makes the light behind it off by the part d.
        const double ofSum = std::min(depth, deep) * ofDepth + ofDensity + (14.0 * n + 40.0) * u;
        const double ofDeep = depth > deep ? deepLight : 0.0;
        component(near.value.blueSky, c) = blueSky * component(model.blueSkyScattering, c);
        component(near.value.haze, c) = haze * component(model.hazeScattering, c);
        component(near.value.extinction, c) = sums.transmittance[c][lane];
        component(near.error.blueSky, c) = 2.0 * (ofSum + ofDeep * sums.blueSkyLength[lane] / blueSky);
        component(near.error.haze, c) = 2.0 * (ofSum + ofDeep * sums.hazeLength[lane] / haze);
        component(near.error.extinction, c) = 2.0 * (depth * ofDepth + 16.0 * u);
    }
    return near;
}

} // namespace

bool integrateRays(const AtmosphereModel& model, double eyeHeight, std::span<const TableRay> rays,
                   std::span<NearScattering> results) {
    if (!moderate(model.haze) || !moderate(model.blueSky) || !moderate(model.redDecay) ||
        !moderate(model.hazeScattering) || !moderate(model.hazeExtinction) || !moderate(model.blueSkyScattering) ||
        !moderate(model.redDecayAbsorption))
        return false;
    const LaneModel lanes{.planetRadius = model.planetRadius,
                          .stepLength = model.stepLength,
                          .eyeHeight = eyeHeight,
                          .haze = laneLayer(model.haze),
                          .blueSky = laneLayer(model.blueSky),
                          .redDecay = laneLayer(model.redDecay),
                          .hazeExtinction = model.hazeExtinction,
                          .redDecayAbsorption = model.redDecayAbsorption};
    const std::size_t width = HWY_DYNAMIC_DISPATCH(laneCount)();
    LaneSums sums;
    for (std::size_t first = 0; first < rays.size(); first += width) {
        const std::size_t count = std::min(width, rays.size() - first);
        HWY_DYNAMIC_DISPATCH(integrateLanes)(lanes, rays.data() + first, count, sums);
        for (std::size_t i = 0; i < count; ++i)
            results[first + i] = nearScattering(model, lanes, rays[first + i], sums, i);
    }
    return true;
}

} // namespace orvo
#endif
