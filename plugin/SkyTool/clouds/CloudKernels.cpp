#include "CloudKernels.h"

// Vectors of a length that only the machine knows have no place in structures.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "SkyTool/clouds/CloudKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <bit>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace orvo::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

const hn::CappedTag<double, shadowSamples> d;
using Values = hn::Vec<decltype(d)>;
constexpr std::size_t lanes = hn::MaxLanes(d);

struct Values3 {
    Values x, y, z;
};

HWY_INLINE HWY_ATTR Values3 spread(const Vector3& v) { return {hn::Set(d, v.x), hn::Set(d, v.y), hn::Set(d, v.z)}; }

HWY_INLINE HWY_ATTR Values dot(const Values3& a, const Values3& b) {
    return hn::Add(hn::Add(hn::Mul(a.x, b.x), hn::Mul(a.y, b.y)), hn::Mul(a.z, b.z));
}

/// The first three rows of a matrix, or the same for several shapes.
struct Matrices {
    Values m[4][3];

    HWY_INLINE HWY_ATTR Values direction(const Values3& p, int c) const {
        return hn::Add(hn::Add(hn::Mul(p.x, m[0][c]), hn::Mul(p.y, m[1][c])), hn::Mul(p.z, m[2][c]));
    }
    HWY_INLINE HWY_ATTR Values3 points(const Values3& p) const {
        return {hn::Add(direction(p, 0), m[3][0]), hn::Add(direction(p, 1), m[3][1]),
                hn::Add(direction(p, 2), m[3][2])};
    }
};

/// A number that many others are divided by.
class Divisor {
public:
    HWY_INLINE HWY_ATTR explicit Divisor(double value)
        : value_(value), inverse_(1.0 / value), corrects_(std::abs(value) > 1e-70 && std::abs(value) < 1e70) {}

    /// To the bit what a division gives, for what is not beyond the bounds of a shape table. The first correction
    /// brings the product with the rounded inverse to one of the two numbers around the quotient, the second one to the
    /// nearer (Markstein, "Computation of elementary functions on the IBM RISC System/6000 processor", 1990).
    HWY_INLINE HWY_ATTR Values divide(Values dividend) const {
        const auto value = hn::Set(d, value_);
        if (HWY_NATIVE_FMA && corrects_) {
            const auto inverse = hn::Set(d, inverse_);
            auto q = hn::Mul(dividend, inverse);
            q = hn::MulAdd(hn::NegMulAdd(q, value, dividend), inverse, q);
            return hn::MulAdd(hn::NegMulAdd(q, value, dividend), inverse, q);
        }
        return hn::Div(dividend, value);
    }

private:
    double value_, inverse_;
    bool corrects_;
};

HWY_INLINE HWY_ATTR Values smoothStep(const Divisor& width, Values edge0, Values x) {
    const auto zero = hn::Zero(d), one = hn::Set(d, 1.0);
    auto t = width.divide(hn::Sub(x, edge0));
    t = hn::IfThenElse(hn::Lt(t, zero), zero, hn::IfThenElse(hn::Lt(one, t), one, t));
    return hn::Mul(hn::Mul(t, t), hn::Sub(hn::Set(d, 3.0), hn::Mul(hn::Set(d, 2.0), t)));
}

/// Lane i's truth as bit i.
HWY_INLINE HWY_ATTR unsigned bitsOf(hn::Mask<decltype(d)> mask) {
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(d, mask, bytes);
    return bytes[0];
}

} // namespace

/// In a shape's unit space the row is a line. A box is felt when its centre lies within the shape's radius and the
/// box's own reach; the steps for which it does follow from the line's point nearest the origin. The slack in that
/// radius, which is a thousand times the rounding in unit space, is room for the rounding of these bounds, too: each
/// end of the line's stretch moves outwards by at least as much as the radius grows. Operations may be fused here,
/// which rounds less.
HWY_ATTR void spans(const ShapeTable& shapes, const RowDirection& direction, const Vector3& begin, int count,
                    std::vector<ShapeSpan>& found) {
    found.clear();
    const Values3 start = spread(begin);
    const auto zero = hn::Zero(d), last = hn::Set(d, count - 1.0);
    const auto load = [&](int component, std::size_t s)
                          HWY_ATTR { return hn::LoadU(d, direction.component(component) + s); };
    for (std::size_t s = 0; s < shapes.count(); s += lanes) {
        Matrices matrices;
        for (int i = 0; i < 12; ++i) matrices.m[i / 3][i % 3] = hn::LoadU(d, shapes.component(i) + s);
        const auto& m = matrices.m;
        const auto point = [&](int c) HWY_ATTR {
            return hn::MulAdd(start.x, m[0][c], hn::MulAdd(start.y, m[1][c], hn::MulAdd(start.z, m[2][c], m[3][c])));
        };
        const Values3 origin{point(0), point(1), point(2)};
        const Values3 step{load(RowDirection::step, s), load(RowDirection::step + 1, s),
                           load(RowDirection::step + 2, s)};
        const auto inverse = load(RowDirection::inverse, s);
        const auto along = hn::MulAdd(origin.x, step.x, hn::MulAdd(origin.y, step.y, hn::Mul(origin.z, step.z)));
        const auto nearest = hn::Neg(hn::Mul(along, inverse));
        const Values3 gap{hn::MulAdd(nearest, step.x, origin.x), hn::MulAdd(nearest, step.y, origin.y),
                          hn::MulAdd(nearest, step.z, origin.z)};
        const auto reach2 = hn::NegMulAdd(
            gap.x, gap.x, hn::NegMulAdd(gap.y, gap.y, hn::NegMulAdd(gap.z, gap.z, load(RowDirection::reach2, s))));
        const auto half = hn::Sqrt(hn::Mul(hn::Max(reach2, zero), inverse));
        auto from = hn::Max(hn::Ceil(hn::Sub(nearest, half)), zero);
        auto to = hn::Min(hn::Floor(hn::Add(nearest, half)), last);
        // A row that stands still, or nearly so, in unit space has no nearest point to go by.
        const auto moves = hn::Gt(load(RowDirection::moves, s), zero);
        from = hn::IfThenElse(moves, from, zero);
        to = hn::IfThenElse(moves, to, last);
        const auto misses = hn::And(moves, hn::Lt(reach2, zero));
        const auto hits = hn::AndNot(misses, hn::Le(from, to));
        if (hn::AllFalse(d, hits)) continue;
        HWY_ALIGN double froms[lanes], tos[lanes], nearests[lanes], gaps[3][lanes];
        hn::Store(from, d, froms);
        hn::Store(to, d, tos);
        hn::Store(nearest, d, nearests);
        hn::Store(gap.x, d, gaps[0]);
        hn::Store(gap.y, d, gaps[1]);
        hn::Store(gap.z, d, gaps[2]);
        for (unsigned bits = bitsOf(hits); bits != 0; bits &= bits - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(bits));
            if (s + i < shapes.count())
                found.push_back({static_cast<std::uint32_t>(s + i),
                                 static_cast<int>(froms[i]),
                                 static_cast<int>(tos[i]),
                                 nearests[i],
                                 {gaps[0][i], gaps[1][i], gaps[2][i]}});
        }
    }
}

namespace {

constexpr int maxSteps = 64;
constexpr double marchCap = 0.6, leastCoverage = 1e-10;

/// The eight samples of a sprite, and how far each still is from where its march ends.
struct RayStarts {
    double x[shadowSamples], y[shadowSamples], z[shadowSamples], remaining[shadowSamples];
};

/// @return how many steps the longest of the marches takes, and one for rounding; 0 for what only the plain march does
HWY_INLINE HWY_ATTR int startRays(const LightMarch& march, const Vector3& centre, RayStarts& starts) {
    const Values3 direction = spread(march.lightDirection), bound = spread(march.boundCentre);
    const auto zero = hn::Zero(d), two = hn::Set(d, 2.0);
    const double radius = 2.0 * march.boundRadius;
    for (int s = 0; s < shadowSamples; ++s) {
        starts.x[s] = centre.x + (s & 1 ? march.sampleOffset : -march.sampleOffset);
        starts.y[s] = centre.y + (s & 2 ? march.sampleOffset : -march.sampleOffset);
        starts.z[s] = centre.z + (s & 4 ? march.sampleOffset : -march.sampleOffset);
    }
    auto longest = zero;
    for (std::size_t h = 0; h < shadowSamples; h += lanes) {
        const Values3 p{hn::Load(d, starts.x + h), hn::Load(d, starts.y + h), hn::Load(d, starts.z + h)};
        const Values3 o{hn::Sub(p.x, bound.x), hn::Sub(p.y, bound.y), hn::Sub(p.z, bound.z)};
        const auto a = dot(direction, direction), b = hn::Mul(two, dot(o, direction));
        const auto c = hn::Sub(dot(o, o), hn::Set(d, radius * radius));
        const auto discriminant = hn::Sub(hn::Mul(b, b), hn::Mul(hn::Mul(hn::Set(d, 4.0), a), c));
        const auto root = hn::Sqrt(discriminant);
        // The ray enters behind the sample: of the nearer crossing only the sign counts.
        const auto entered = hn::And(hn::Gt(a, zero), hn::Le(hn::Sub(hn::Neg(b), root), zero));
        const auto t1 = hn::Div(hn::Add(hn::Neg(b), root), hn::Mul(two, a));
        const auto inside = hn::And(entered, hn::Ge(t1, hn::Set(d, 1e-10)));
        const auto countable = hn::Le(t1, hn::Set(d, march.stepLength * (maxSteps - 2)));
        if (!hn::AllTrue(d, hn::And(inside, countable))) return 0;
        hn::Store(t1, d, starts.remaining + h);
        longest = hn::Max(longest, t1);
    }
    return std::min(static_cast<int>(hn::GetLane(hn::MaxOfLanes(d, longest)) / march.stepLength) + 2, maxSteps);
}

/// The steps in which a shape may be felt: none when the last is before the first.
struct StepRange {
    int first = maxSteps, last = -1;
};

HWY_INLINE StepRange rangeOf(const std::vector<ShapeSpan>& found) {
    StepRange range;
    for (const ShapeSpan& span : found) {
        range.first = std::min(range.first, span.first);
        range.last = std::max(range.last, span.last);
    }
    return range;
}

} // namespace

/// Eight marches side by side, shape by shape: a step gets its shapes in their order, as in the plain code.
HWY_ATTR bool marchOne(const ShapeTable& shapes, const LightMarch& march, const RowDirection& row,
                       const Vector3& centre, std::vector<ShapeSpan>& found, double (&depths)[shadowSamples]) {
    struct Step : RayStarts {
        double coverage[shadowSamples], density[shadowSamples];
    };
    HWY_ALIGN Step steps[maxSteps];
    const int count = startRays(march, centre, steps[0]);
    if (count == 0) return false;
    const auto zero = hn::Zero(d);
    const Vector3 strideOfAll = march.lightDirection * march.stepLength;
    for (double& depth : depths) depth = 0.0;
    spans(shapes, row, centre, count, found);
    const auto [first, last] = rangeOf(found);
    const Values3 stride = spread(strideOfAll);
    const auto stepLength = hn::Set(d, march.stepLength);
    for (int k = 0; k <= last; ++k)
        for (std::size_t h = 0; h < shadowSamples; h += lanes) {
            Step& step = steps[k];
            hn::Store(zero, d, step.coverage + h);
            hn::Store(zero, d, step.density + h);
            if (k == 0) continue;
            const Step& before = steps[k - 1];
            hn::Store(hn::Add(hn::Load(d, before.x + h), stride.x), d, step.x + h);
            hn::Store(hn::Add(hn::Load(d, before.y + h), stride.y), d, step.y + h);
            hn::Store(hn::Add(hn::Load(d, before.z + h), stride.z), d, step.z + h);
            hn::Store(hn::Sub(hn::Load(d, before.remaining + h), stepLength), d, step.remaining + h);
        }
    const auto one = hn::Set(d, 1.0), radius2 = hn::Set(d, marchRadius * marchRadius), cap = hn::Set(d, marchCap);
    const Divisor byRadius2(marchRadius * marchRadius), byHundred(100.0);
    for (const ShapeSpan& span : found) {
        Matrices matrix;
        for (int i = 0; i < 12; ++i) matrix.m[i / 3][i % 3] = hn::Set(d, shapes.component(i)[span.shape]);
        const auto density = hn::Set(d, shapes.component(ShapeTable::density)[span.shape]);
        for (int k = span.first; k <= span.last; ++k)
            for (std::size_t h = 0; h < shadowSamples; h += lanes) {
                Step& step = steps[k];
                const Values3 p{hn::Load(d, step.x + h), hn::Load(d, step.y + h), hn::Load(d, step.z + h)};
                const Values3 q = matrix.points(p);
                const auto length2 = dot(q, q);
                const auto felt = hn::Le(length2, radius2);
                const auto u = hn::Sub(one, byRadius2.divide(length2));
                const auto w = hn::IfThenElseZero(felt, hn::Min(hn::Mul(u, u), cap));
                hn::Store(hn::Add(hn::Load(d, step.coverage + h), w), d, step.coverage + h);
                hn::Store(hn::Add(hn::Load(d, step.density + h), hn::Mul(density, w)), d, step.density + h);
            }
    }
    const auto fadeEnd = hn::Set(d, march.fadeEnd);
    // From this height on there is no fade: the quotient is 1 or more, as rounding is monotone.
    const auto fadeless = hn::Set(d, march.fadeStart > march.fadeEnd ? march.fadeStart : HUGE_VAL);
    const Divisor byFade(march.fadeStart - march.fadeEnd);
    for (std::size_t h = 0; h < shadowSamples; h += lanes) {
        auto depth = zero;
        for (int k = first; k <= last; ++k) {
            const Step& step = steps[k];
            auto coverage = hn::Load(d, step.coverage + h);
            const auto y = hn::Load(d, step.y + h), remaining = hn::Load(d, step.remaining + h);
            auto counts = hn::And(hn::Ge(coverage, hn::Set(d, leastCoverage)), hn::Gt(remaining, zero));
            if (march.groundFade) counts = hn::AndNot(hn::Lt(y, fadeEnd), counts);
            if (hn::AllFalse(d, counts)) continue;
            const auto density = hn::Div(hn::Load(d, step.density + h), coverage);
            coverage = hn::Min(coverage, one);
            if (march.groundFade && !hn::AllTrue(d, hn::Ge(y, fadeless)))
                coverage = hn::Mul(coverage, smoothStep(byFade, fadeEnd, y));
            const auto part = byHundred.divide(hn::Mul(hn::Mul(coverage, density), hn::Min(stepLength, remaining)));
            depth = hn::Add(depth, hn::IfThenElseZero(counts, part));
        }
        hn::StoreU(depth, d, depths + h);
    }
    return true;
}

/// Along a ray a shape's weight before its cap is the square of a parabola: with q the ray's place in the shape's unit
/// space, shrunk by the shape's radius, 1 - |q|^2 = (1 - |gap|^2) - (pace k - back)^2 in step k. That takes a third of
/// the operations that the point's way through the matrix takes. What the plain code makes of coverage c and sums of
/// densities s, c (s / c) with c no more than 1, is s / max(c, 1).
///
/// How far off that can be, with u = 2^-53 and S what the coordinates of any q can add up to (RayTable):
/// - Plain steps carry the rounding of k + 2 coordinates each and the matrix 4 more: q is off by (k + 8) u S. Here
///   matrix, nearest point, gap and back take fewer than 40 roundings, each of at most S, and k steps of the pace one
///   each. The slope of the weight by |q| is nowhere above 1.54, past the cap and outside the shape it is 0, and its
///   own roundings are fewer than 8: so weights differ by no more than 3 u (k + 48) (S + 1).
/// - A step's s / max(c, 1) changes by the error of s and, for c above 1, by s / c^2, which is at most the greatest
///   density, times that of c: by no more than the greatest density times twice the errors of the weights.
/// - Sums of n shapes over m steps, and the few operations on them, round by less than 4 n + 2 m + 32 parts of u, of at
///   most the greatest density in a step.
/// Coverage below 1e-10 is nothing to the plain code. When that is in doubt, and nowhere else, so is the estimate.
HWY_ATTR bool estimateDepths(const ShapeTable& shapes, const LightMarch& march, const RowDirection& row,
                             const RayTable& rays, const Vector3& centre, std::vector<ShapeSpan>& found,
                             double (&depths)[shadowSamples], double (&bounds)[shadowSamples]) {
    HWY_ALIGN RayStarts starts;
    HWY_ALIGN double coverages[maxSteps][shadowSamples], densities[maxSteps][shadowSamples];
    if (startRays(march, centre, starts) == 0) return false;
    // As far as any ray: what lies behind the end of one counts with a length of 0.
    spans(shapes, row, centre, maxSteps, found);
    const auto [first, last] = rangeOf(found);
    const auto zero = hn::Zero(d), one = hn::Set(d, 1.0), cap = hn::Set(d, marchCap);
    for (int k = first; k <= last; ++k)
        for (std::size_t h = 0; h < shadowSamples; h += lanes) {
            hn::Store(zero, d, coverages[k] + h);
            hn::Store(zero, d, densities[k] + h);
        }
    double ofStep = 0.0, ofAll = 0.0; // the errors of weights: the most in one step, and in all
    for (const ShapeSpan& span : found) {
        const RayTable::Shape& shape = rays.shape(span.shape);
        const auto pace = hn::Set(d, shape.pace), density = hn::Set(d, shape.density);
        const double rounding = shape.rounding * (span.last + 48.0);
        ofStep += rounding;
        ofAll += rounding * (span.last - span.first + 1.0);
        for (std::size_t h = 0; h < shadowSamples; h += lanes) {
            auto height = one;
            for (int i = 0; i < 3; ++i) {
                const auto gap = hn::Add(hn::Set(d, span.gap[i] * (1.0 / marchRadius)),
                                         hn::LoadU(d, rays.offsets(span.shape, RayTable::gap + i) + h));
                height = hn::NegMulAdd(gap, gap, height);
            }
            auto along = hn::Sub(hn::Set(d, (span.first - span.nearest) * shape.pace),
                                 hn::LoadU(d, rays.offsets(span.shape, RayTable::back) + h));
            for (int k = span.first; k <= span.last; ++k) {
                const auto t = hn::Max(hn::NegMulAdd(along, along, height), zero);
                const auto w = hn::Min(hn::Mul(t, t), cap);
                hn::Store(hn::Add(hn::Load(d, coverages[k] + h), w), d, coverages[k] + h);
                hn::Store(hn::MulAdd(density, w, hn::Load(d, densities[k] + h)), d, densities[k] + h);
                along = hn::Add(along, pace);
            }
        }
    }
    if (!(ofStep < leastCoverage)) return false;

    const int steps = std::max(last - first + 1, 0);
    double ofParts = (4.0 * static_cast<double>(found.size()) + 2.0 * steps + 32.0) * 0x1p-53;
    if (march.groundFade) ofParts += rays.fadeRounding() * (last + 48.0);
    const auto bound = hn::Set(d, (2.0 * ofAll + steps * ofParts) * rays.maxDensity() * march.stepLength / 100.0);
    const auto stepLength = hn::Set(d, march.stepLength), hundredth = hn::Set(d, 1.0 / 100.0);
    const auto doubtful = hn::Set(d, 2.0 * leastCoverage);
    const auto fadeStart = hn::Set(d, march.fadeStart), fadeEnd = hn::Set(d, march.fadeEnd);
    const auto inverseFade = hn::Set(d, 1.0 / (march.fadeStart - march.fadeEnd));
    const auto climb = hn::Set(d, march.lightDirection.y * march.stepLength);
    for (std::size_t h = 0; h < shadowSamples; h += lanes) {
        auto remaining = hn::Load(d, starts.remaining + h);
        for (int k = 0; k < first && k <= last; ++k) remaining = hn::Sub(remaining, stepLength);
        auto y = hn::MulAdd(hn::Set(d, first), climb, hn::Load(d, starts.y + h));
        auto depth = zero, felt = zero, least = one;
        const auto end = hn::MulAdd(hn::Set(d, std::max(steps - 1, 0)), climb, y);
        const bool fades = march.groundFade && !hn::AllTrue(d, hn::Ge(hn::Min(y, end), fadeStart));
        for (int k = first; k <= last; ++k) {
            const auto coverage = hn::Load(d, coverages[k] + h);
            auto part = hn::Load(d, densities[k] + h);
            const auto length = hn::Max(hn::Min(stepLength, remaining), zero);
            felt = hn::Max(felt, coverage);
            least = hn::Min(least, hn::IfThenElse(hn::Gt(coverage, zero), coverage, one));
            if (!hn::AllTrue(d, hn::Le(coverage, one))) part = hn::Div(part, hn::Max(coverage, one));
            if (fades && !hn::AllTrue(d, hn::Ge(y, fadeStart))) {
                const auto t = hn::Min(hn::Max(hn::Mul(hn::Sub(y, fadeEnd), inverseFade), zero), one);
                part = hn::Mul(part, hn::Mul(hn::Mul(t, t), hn::NegMulAdd(hn::Set(d, 2.0), t, hn::Set(d, 3.0))));
            }
            depth = hn::MulAdd(part, length, depth);
            remaining = hn::Sub(remaining, stepLength);
            y = hn::Add(y, climb);
        }
        if (!hn::AllTrue(d, hn::Ge(least, doubtful))) return false;
        depth = hn::Mul(depth, hundredth);
        hn::StoreU(depth, d, depths + h);
        // A ray that feels no shape here feels less than 1e-10 of any in the plain code.
        hn::StoreU(hn::IfThenElseZero(hn::Gt(felt, zero), bound), d, bounds + h);
    }
    return true;
}

namespace {

/// A draw as RandomFloat gives it, widened: the conversion to a float is the one rounding.
HWY_INLINE HWY_ATTR Values unit(hn::Vec<hn::Rebind<std::uint32_t, decltype(d)>> word) {
    const hn::Rebind<std::uint32_t, decltype(d)> words;
    const hn::Rebind<std::int32_t, decltype(d)> integers;
    const hn::Rebind<float, decltype(d)> floats;
    const auto shifted = hn::BitCast(integers, hn::Xor(word, hn::Set(words, 0x80000000u)));
    const auto exact = hn::Add(hn::PromoteTo(d, shifted), hn::Set(d, 0x1p31));
    return hn::Mul(hn::PromoteTo(d, hn::DemoteTo(floats, exact)), hn::Set(d, 0x1p-32));
}

} // namespace

/// Several candidates at a time. How many draws a candidate takes, three or four, is known only when it is weighed: all
/// are taken to do as the one before them did, and what stands behind the first that does otherwise is drawn anew.
///
/// Places are exact. With u and S as for the march, a weight is off by (4 + 6) u S times its slope and a few roundings,
/// which makes less than 20 u (S + 1); e be the sum of that over the row's shapes. A candidate of coverage c and sums s
/// of densities and o of opacities is kept when 1 - min(c, 1) < r s / c, which c times makes free of a quotient. Then
/// the left side is off by c (e + n u), the right side by the greatest density times 2 e + n c u, for n a few times the
/// number of shapes; and o / c by the greatest opacity times 2 e / c + n u.
HWY_ATTR int candidates(const CandidateTable& table, const Scatter& scatter, const std::vector<ShapeSpan>& found,
                        const CandidateRow& row, int k, RandomGenerator& random, KeptSprites& kept) {
    double error = 0.0;
    for (const ShapeSpan& span : found) error += table.shape(span.shape).rounding;
    if (!(error < leastCoverage)) return k;
    const double parts = (6.0 * static_cast<double>(found.size()) + 16.0) * 0x1p-53;
    const auto opacityError = hn::Set(d, 2.0 * table.maxOpacity() * error);
    const auto opacityParts = hn::Set(d, parts * table.maxOpacity());
    const auto slackOfAll = hn::Set(d, 2.0 * table.maxDensity() * error);
    const auto slackByCoverage = hn::Set(d, error + parts * (1.0 + table.maxDensity()));
    const auto zero = hn::Zero(d), one = hn::Set(d, 1.0), cap = hn::Set(d, placementCap);
    const auto sureCoverage = hn::Set(d, 2.0 * leastCoverage);
    const auto step = hn::Set(d, scatter.step), radius = hn::Set(d, scatter.boundRadius);
    const auto radius2 = hn::Set(d, scatter.boundRadius * scatter.boundRadius);
    const auto fadeEnd = hn::Set(d, scatter.fadeEnd);
    const Values3 centre = spread(scatter.boundCentre), corner = spread({row.x, row.y, 0.0});
    const hn::Rebind<std::uint32_t, decltype(d)> words;
    const hn::Rebind<float, decltype(d)> floats;
    constexpr unsigned all = (1u << lanes) - 1;
    unsigned feeling = 0; // all or none: what the candidate before did
    while (k <= row.last) {
        const std::uint32_t* draws = random.ahead<4 * static_cast<int>(lanes) + 2>(); // the loads below read as many
        hn::Vec<decltype(words)> draw[4], beyond[2];
        if (feeling)
            hn::LoadInterleaved4(words, draws, draw[0], draw[1], draw[2], draw[3]);
        else {
            hn::LoadInterleaved3(words, draws, draw[0], draw[1], draw[2]);
            hn::LoadInterleaved3(words, draws + 3, draw[3], beyond[0], beyond[1]);
        }
        const Values3 jittered{hn::Add(corner.x, hn::Mul(unit(draw[0]), step)),
                               hn::Add(corner.y, hn::Mul(unit(draw[1]), step)),
                               hn::Add(hn::LoadU(d, row.z + k), hn::Mul(unit(draw[2]), step))};
        const Values3 p{hn::Add(hn::Sub(jittered.x, radius), centre.x), hn::Add(hn::Sub(jittered.y, radius), centre.y),
                        hn::Add(hn::Sub(jittered.z, radius), centre.z)};
        const Values3 out{hn::Sub(p.x, centre.x), hn::Sub(p.y, centre.y), hn::Sub(p.z, centre.z)};
        auto inside = hn::Lt(dot(out, out), radius2);
        if (scatter.groundFade) inside = hn::AndNot(hn::Lt(p.y, fadeEnd), inside);

        auto coverage = zero, density = zero, opacity = zero;
        for (const ShapeSpan& span : found) {
            if (span.last < k || span.first >= k + static_cast<int>(lanes)) continue;
            const CandidateTable::Shape& shape = table.shape(span.shape);
            auto height = one;
            for (int c = 0; c < 3; ++c) {
                const auto m = [&](int r) HWY_ATTR { return hn::Set(d, shape.matrix[3 * r + c]); };
                const auto q = hn::MulAdd(p.x, m(0), hn::MulAdd(p.y, m(1), hn::MulAdd(p.z, m(2), m(3))));
                height = hn::NegMulAdd(q, q, height);
            }
            const auto t = hn::Max(height, zero), w = hn::Min(hn::Mul(t, t), cap);
            coverage = hn::Add(coverage, w);
            density = hn::MulAdd(hn::Set(d, shape.density), w, density);
            opacity = hn::MulAdd(hn::Set(d, shape.opacity), w, opacity);
        }
        const auto felt = hn::And(inside, hn::Ge(coverage, sureCoverage));
        auto doubt = hn::AndNot(felt, hn::And(inside, hn::Gt(coverage, zero)));
        const auto ahead =
            hn::Sub(hn::Mul(unit(draw[3]), density), hn::Mul(hn::Sub(one, hn::Min(coverage, one)), coverage));
        const auto slack = hn::MulAdd(coverage, slackByCoverage, slackOfAll);
        doubt = hn::Or(doubt, hn::And(felt, hn::Le(hn::Abs(ahead), slack)));
        const auto keeps = hn::And(felt, hn::Gt(ahead, slack));
        HWY_ALIGN double xs[lanes], ys[lanes], zs[lanes];
        HWY_ALIGN float opacities[lanes] = {};
        hn::Store(p.x, d, xs);
        hn::Store(p.y, d, ys);
        hn::Store(p.z, d, zs);
        if (!hn::AllFalse(d, keeps)) {
            const auto inverse = hn::Div(one, coverage), mean = hn::Mul(opacity, inverse);
            const auto bound = hn::MulAdd(opacityError, inverse, opacityParts);
            const auto lower = hn::DemoteTo(floats, hn::Sub(mean, bound));
            const auto upper = hn::DemoteTo(floats, hn::Add(mean, bound));
            doubt = hn::Or(doubt, hn::And(keeps, hn::Ne(hn::PromoteTo(d, lower), hn::PromoteTo(d, upper))));
            hn::Store(lower, floats, opacities);
        }

        const unsigned feltBits = bitsOf(felt), otherwise = (feltBits ^ feeling) | 1u << (lanes - 1);
        int good = std::min(std::countr_zero(otherwise) + 1, row.last - k + 1);
        const int sure = std::countr_zero(bitsOf(doubt) | 1u << lanes);
        const bool doubtful = sure < good;
        good = std::min(good, sure);
        unsigned passed = (1u << good) - 1;
        for (unsigned bits = bitsOf(keeps) & passed; bits != 0; bits &= bits - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(bits));
            kept.positions.push_back({xs[i], ys[i], zs[i]});
            kept.opacities.push_back(opacities[i]);
            if (kept.full()) passed = (2u << i) - 1;
            if (kept.full()) break;
        }
        random.skip(std::uint64_t{3} * static_cast<unsigned>(std::popcount(passed)) +
                    static_cast<unsigned>(std::popcount(feltBits & passed)));
        if (kept.full()) break;
        k += good;
        if (doubtful) return k;
        feeling = feltBits >> (good - 1) & 1u ? all : 0u;
    }
    return row.last + 1;
}

} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvo {

HWY_EXPORT(spans);
HWY_EXPORT(marchOne);
HWY_EXPORT(estimateDepths);
HWY_EXPORT(candidates);

namespace {

/// Within these bounds the squares of products of two values stay finite.
bool withinBounds(double v) { return std::abs(v) <= 1e70; }

} // namespace

ShapeTable::ShapeTable(const CloudShapeSet& set)
    : count_(set.spheres.size()), stride_((set.spheres.size() + shadowSamples - 1) / shadowSamples * shadowSamples),
      values_(stride_ * components, 0.0) {
    constexpr double smallest = 1e-70;
    const auto sane = withinBounds;
    const double radius = set.boundRadius;
    usable_ = sane(set.boundCentre.x) && sane(set.boundCentre.y) && sane(set.boundCentre.z) && sane(radius) &&
              radius >= smallest;
    const double far[3] = {std::abs(set.boundCentre.x) + 4.0 * radius, std::abs(set.boundCentre.y) + 4.0 * radius,
                           std::abs(set.boundCentre.z) + 4.0 * radius};
    const auto value = [&](int i, std::size_t s) -> double& {
        return values_[static_cast<std::size_t>(i) * stride_ + s];
    };
    for (std::size_t s = 0; s < set.spheres.size(); ++s) {
        const CloudShapeSphere& sphere = set.spheres[s];
        const auto& m = sphere.transform.m;
        double size2 = 0.0;
        for (int c = 0; c < 3; ++c) {
            for (int r = 0; r < 4; ++r) {
                value(matrix + r * 3 + c, s) = m[r][c];
                usable_ = usable_ && sane(m[r][c]);
            }
            const double size = std::abs(m[3][c]) + std::abs(m[0][c]) * far[0] + std::abs(m[1][c]) * far[1] +
                                std::abs(m[2][c]) * far[2];
            size2 += size * size;
        }
        value(density, s) = sphere.density;
        value(opacity, s) = sphere.opacity;
        usable_ = usable_ && sane(sphere.density) && sane(sphere.opacity);
        // The corners of a box are the points farthest out; four of them, as the others are opposite.
        double reach2 = 0.0;
        for (int corner = 0; corner < 4; ++corner) {
            const Vector3 at =
                transformDirection(sphere.transform, {corner & 1 ? -1.0 : 1.0, corner & 2 ? -1.0 : 1.0, 1.0});
            reach2 = std::max(reach2, dot(at, at));
        }
        value(reach, s) = std::sqrt(reach2) * (1.0 + 1e-12);
        // Coordinates carry the rounding of a hundred steps at most, parts in 1e14 of the largest term.
        value(slack, s) = 1e-12 * (1.0 + std::sqrt(size2));
    }
}

RowDirection::RowDirection(const ShapeTable& shapes, const Vector3& stride, double halfSide, double shapeRadius)
    : stride_(shapes.stride()), values_(stride_ * components, 0.0) {
    const auto value = [&](int i, std::size_t s) -> double& {
        return values_[static_cast<std::size_t>(i) * stride_ + s];
    };
    const auto row = [&](int i, std::size_t s) { return shapes.component(ShapeTable::matrix + i)[s]; };
    for (std::size_t s = 0; s < shapes.count(); ++s) {
        double length2 = 0.0;
        for (int c = 0; c < 3; ++c) {
            const double along = stride.x * row(c, s) + stride.y * row(3 + c, s) + stride.z * row(6 + c, s);
            value(step + c, s) = along;
            length2 += along * along;
        }
        const double reach =
            shapeRadius + shapes.component(ShapeTable::slack)[s] + halfSide * shapes.component(ShapeTable::reach)[s];
        value(inverse, s) = 1.0 / length2;
        value(reach2, s) = reach * reach;
        value(moves, s) = length2 > 1e-30 ? 1.0 : 0.0;
    }
}

void spansOfShapes(const ShapeTable& shapes, const RowDirection& direction, const Vector3& start, int count,
                   std::vector<ShapeSpan>& found) {
    HWY_DYNAMIC_DISPATCH(spans)(shapes, direction, start, count, found);
}

namespace {

constexpr double roundingUnit = 0x1p-53;

/// What the coordinates of a place in a shape's unit space can add up to, for places that are no farther from the
/// coordinates' axes than `far`.
double sizeInUnitSpace(const ShapeTable& shapes, std::size_t shape, const double (&far)[3]) {
    double size2 = 0.0;
    for (int c = 0; c < 3; ++c) {
        const auto m = [&](int r) { return std::abs(shapes.component(ShapeTable::matrix + 3 * r + c)[shape]); };
        const double size = m(0) * far[0] + m(1) * far[1] + m(2) * far[2] + m(3);
        size2 += size * size;
    }
    return std::sqrt(size2);
}

/// The greatest of a component, whatever its sign.
double greatest(const ShapeTable& shapes, int component) {
    double result = 0.0;
    for (std::size_t s = 0; s < shapes.count(); ++s)
        result = std::max(result, std::abs(shapes.component(component)[s]));
    return result;
}

} // namespace

CandidateTable::CandidateTable(const ShapeTable& shapes, const Scatter& scatter)
    : maxDensity_(greatest(shapes, ShapeTable::density)), maxOpacity_(greatest(shapes, ShapeTable::opacity)),
      shapes_(shapes.count()) {
    const Vector3& centre = scatter.boundCentre;
    const double radius = 1.1 * scatter.boundRadius;
    const double far[3] = {std::abs(centre.x) + radius, std::abs(centre.y) + radius, std::abs(centre.z) + radius};
    for (std::size_t s = 0; s < shapes_.size(); ++s) {
        Shape& shape = shapes_[s];
        for (int i = 0; i < 12; ++i) shape.matrix[i] = shapes.component(ShapeTable::matrix + i)[s] / placementRadius;
        shape.density = shapes.component(ShapeTable::density)[s];
        shape.opacity = shapes.component(ShapeTable::opacity)[s];
        shape.rounding = 20.0 * roundingUnit * (sizeInUnitSpace(shapes, s, far) / placementRadius + 1.0);
    }
}

int keepCandidates(const CandidateTable& table, const Scatter& scatter, const std::vector<ShapeSpan>& found,
                   const CandidateRow& row, int k, RandomGenerator& random, KeptSprites& kept) {
    return HWY_DYNAMIC_DISPATCH(candidates)(table, scatter, found, row, k, random, kept);
}

RayTable::RayTable(const ShapeTable& shapes, const RowDirection& direction, const LightMarch& march)
    : usable_(shapes.usable() && withinBounds(march.lightDirection.x) && withinBounds(march.lightDirection.y) &&
              withinBounds(march.lightDirection.z) &&
              (!march.groundFade ||
               (withinBounds(march.fadeStart) && withinBounds(march.fadeEnd) && march.fadeStart > march.fadeEnd))),
      maxDensity_(greatest(shapes, ShapeTable::density)),
      offsets_(usable_ ? shapes.count() * components * shadowSamples : 0), shapes_(usable_ ? shapes.count() : 0) {
    const double aside = std::abs(march.sampleOffset);
    // The march ends at twice the radius, from which samples are as far as their sprite's centre.
    const double far[3] = {std::abs(march.boundCentre.x) + 2.1 * march.boundRadius + aside,
                           std::abs(march.boundCentre.y) + 2.1 * march.boundRadius + aside,
                           std::abs(march.boundCentre.z) + 2.1 * march.boundRadius + aside};
    fadeRounding_ = 3.0 * roundingUnit * (far[1] / (march.fadeStart - march.fadeEnd) + 1.0);
    for (std::uint32_t s = 0; s < shapes_.size(); ++s) {
        const auto m = [&](int r, int c) { return shapes.component(ShapeTable::matrix + 3 * r + c)[s]; };
        const auto step = [&](int c) { return direction.component(RowDirection::step + c)[s]; };
        const double length = std::sqrt(step(0) * step(0) + step(1) * step(1) + step(2) * step(2));
        const double density = shapes.component(ShapeTable::density)[s];
        usable_ = usable_ && direction.component(RowDirection::moves)[s] > 0.0;
        const double size = sizeInUnitSpace(shapes, s, far) / marchRadius;
        shapes_[s] = {length / marchRadius, density, 3.0 * roundingUnit * (size + 1.0)};
        for (int sample = 0; sample < shadowSamples; ++sample) {
            const auto side = [&](int bit) { return sample & bit ? march.sampleOffset : -march.sampleOffset; };
            double at[3], ahead = 0.0;
            for (int c = 0; c < 3; ++c) {
                at[c] = (side(1) * m(0, c) + side(2) * m(1, c) + side(4) * m(2, c)) / marchRadius;
                ahead += at[c] * step(c) / length;
            }
            const auto offset = [&](int component) -> double& {
                return offsets_[(std::size_t{s} * components + static_cast<std::size_t>(component)) * shadowSamples +
                                static_cast<std::size_t>(sample)];
            };
            offset(back) = -ahead;
            for (int c = 0; c < 3; ++c) offset(gap + c) = at[c] - ahead * step(c) / length;
        }
    }
}

SpriteMarcher::SpriteMarcher(const ShapeTable& shapes, const LightMarch& march)
    : shapes_(shapes), march_(march),
      direction_(shapes, march.lightDirection * march.stepLength, std::abs(march.sampleOffset), marchRadius),
      rays_(shapes, direction_, march) {}

bool SpriteMarcher::depthsAt(const Vector3& centre, double (&depths)[shadowSamples]) {
    return HWY_DYNAMIC_DISPATCH(marchOne)(shapes_, march_, direction_, centre, spans_, depths);
}

bool SpriteMarcher::estimatesAt(const Vector3& centre, double (&depths)[shadowSamples],
                                double (&bounds)[shadowSamples]) {
    return rays_.usable() &&
           HWY_DYNAMIC_DISPATCH(estimateDepths)(shapes_, march_, direction_, rays_, centre, spans_, depths, bounds);
}

bool SpriteMarcher::floatsAt(const Vector3& centre, float (&depths)[shadowSamples]) {
    double values[shadowSamples], bounds[shadowSamples];
    if (estimatesAt(centre, values, bounds)) {
        bool sure = true;
        for (int s = 0; s < shadowSamples; ++s) {
            depths[s] = static_cast<float>(values[s] - bounds[s]);
            sure &= depths[s] == static_cast<float>(values[s] + bounds[s]);
        }
        if (sure) return true;
    }
    if (!depthsAt(centre, values)) return false;
    for (int s = 0; s < shadowSamples; ++s) depths[s] = static_cast<float>(values[s]);
    return true;
}

} // namespace orvo
#endif
