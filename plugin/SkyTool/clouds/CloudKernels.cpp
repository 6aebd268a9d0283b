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

/// Of the points in the unit spaces of the shapes whose matrices' elements stand a stride apart.
HWY_INLINE HWY_ATTR Values squaredLength(const double* elements, std::size_t stride, const Values3& p) {
    Matrices matrices;
    for (std::size_t i = 0; i < 12; ++i) matrices.m[i / 3][i % 3] = hn::LoadU(d, elements + i * stride);
    const Values3 q = matrices.points(p);
    return dot(q, q);
}

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
/// end of the line's stretch moves outwards by at least as much as the radius grows.
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
        const Values3 origin = matrices.points(start);
        const Values3 step{load(RowDirection::step, s), load(RowDirection::step + 1, s),
                           load(RowDirection::step + 2, s)};
        const auto inverse = load(RowDirection::inverse, s);
        const auto nearest = hn::Neg(hn::Mul(dot(origin, step), inverse));
        const Values3 gap{hn::Add(origin.x, hn::Mul(nearest, step.x)), hn::Add(origin.y, hn::Mul(nearest, step.y)),
                          hn::Add(origin.z, hn::Mul(nearest, step.z))};
        const auto reach2 = hn::Sub(load(RowDirection::reach2, s), dot(gap, gap));
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
        HWY_ALIGN double froms[lanes], tos[lanes];
        hn::Store(from, d, froms);
        hn::Store(to, d, tos);
        for (unsigned bits = bitsOf(hits); bits != 0; bits &= bits - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(bits));
            if (s + i < shapes.count())
                found.push_back(
                    {static_cast<std::uint32_t>(s + i), static_cast<int>(froms[i]), static_cast<int>(tos[i])});
        }
    }
}

/// The weights of several shapes at a time; their sums in the shapes' order.
HWY_ATTR CloudSample weigh(const ShapeSelection& shapes, const Vector3& point, double shapeRadius, double cap) {
    const Values3 p = spread(point);
    const auto one = hn::Set(d, 1.0), radius2 = hn::Set(d, shapeRadius * shapeRadius);
    const Divisor byRadius2(shapeRadius * shapeRadius);
    const double *densities = shapes.component(ShapeTable::density), *opacities = shapes.component(ShapeTable::opacity);
    CloudSample sums;
    for (std::size_t s = 0; s < shapes.count(); s += lanes) {
        const auto length2 = squaredLength(shapes.component(0) + s, shapes.stride(), p);
        const auto inside = hn::Le(length2, radius2);
        if (hn::AllFalse(d, inside)) continue;
        const auto u = hn::Sub(one, byRadius2.divide(length2));
        HWY_ALIGN double weights[lanes];
        hn::Store(hn::Min(hn::Mul(u, u), hn::Set(d, cap)), d, weights);
        for (unsigned bits = bitsOf(inside); bits != 0; bits &= bits - 1) {
            const auto i = static_cast<std::size_t>(std::countr_zero(bits));
            sums.coverage += weights[i];
            sums.density += densities[s + i] * weights[i];
            sums.opacity += opacities[s + i] * weights[i];
        }
    }
    return sums;
}

/// Eight marches side by side, shape by shape: a step gets its shapes in their order, as in the plain code.
HWY_ATTR bool marchOne(const ShapeTable& shapes, const LightMarch& march, const RowDirection& row,
                       const Vector3& centre, std::vector<ShapeSpan>& found, double (&depths)[shadowSamples]) {
    constexpr int maxSteps = 64;
    struct Step {
        double x[shadowSamples], y[shadowSamples], z[shadowSamples], remaining[shadowSamples];
        double coverage[shadowSamples], density[shadowSamples];
    };
    HWY_ALIGN Step steps[maxSteps];
    const Values3 direction = spread(march.lightDirection), bound = spread(march.boundCentre);
    const auto zero = hn::Zero(d);
    const double radius = 2.0 * march.boundRadius;
    const Vector3 strideOfAll = march.lightDirection * march.stepLength;
    double longest = 0.0;
    for (int s = 0; s < shadowSamples; ++s) {
        steps[0].x[s] = centre.x + (s & 1 ? march.sampleOffset : -march.sampleOffset);
        steps[0].y[s] = centre.y + (s & 2 ? march.sampleOffset : -march.sampleOffset);
        steps[0].z[s] = centre.z + (s & 4 ? march.sampleOffset : -march.sampleOffset);
    }
    for (std::size_t h = 0; h < shadowSamples; h += lanes) {
        const Values3 p{hn::Load(d, steps[0].x + h), hn::Load(d, steps[0].y + h), hn::Load(d, steps[0].z + h)};
        const Values3 o{hn::Sub(p.x, bound.x), hn::Sub(p.y, bound.y), hn::Sub(p.z, bound.z)};
        const auto two = hn::Set(d, 2.0);
        const auto a = dot(direction, direction), b = hn::Mul(two, dot(o, direction));
        const auto c = hn::Sub(dot(o, o), hn::Set(d, radius * radius));
        const auto discriminant = hn::Sub(hn::Mul(b, b), hn::Mul(hn::Mul(hn::Set(d, 4.0), a), c));
        const auto root = hn::Sqrt(discriminant);
        // The ray enters behind the sample: of the nearer crossing only the sign counts.
        const auto entered = hn::And(hn::Gt(a, zero), hn::Le(hn::Sub(hn::Neg(b), root), zero));
        const auto t1 = hn::Div(hn::Add(hn::Neg(b), root), hn::Mul(two, a));
        const auto inside = hn::And(entered, hn::Ge(t1, hn::Set(d, 1e-10)));
        const auto countable = hn::Le(t1, hn::Set(d, march.stepLength * (maxSteps - 2)));
        if (!hn::AllTrue(d, hn::And(inside, countable))) return false;
        hn::Store(t1, d, steps[0].remaining + h);
        for (std::size_t i = 0; i < lanes; ++i) longest = std::max(longest, steps[0].remaining[h + i]);
    }
    for (double& depth : depths) depth = 0.0;
    const int count = std::min(static_cast<int>(longest / march.stepLength) + 2, maxSteps);
    spans(shapes, row, centre, count, found);
    int first = count, last = -1;
    for (const ShapeSpan& span : found) {
        first = std::min(first, span.first);
        last = std::max(last, span.last);
    }
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
    const auto one = hn::Set(d, 1.0), radius2 = hn::Set(d, marchRadius * marchRadius), cap = hn::Set(d, 0.6);
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
            auto counts = hn::And(hn::Ge(coverage, hn::Set(d, 1e-10)), hn::Gt(remaining, zero));
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

} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvo {

HWY_EXPORT(spans);
HWY_EXPORT(weigh);
HWY_EXPORT(marchOne);

ShapeTable::ShapeTable(const CloudShapeSet& set)
    : count_(set.spheres.size()), stride_((set.spheres.size() + shadowSamples - 1) / shadowSamples * shadowSamples),
      values_(stride_ * components, 0.0) {
    // Within these the squares of products of two values stay finite.
    constexpr double largest = 1e70, smallest = 1e-70;
    const auto sane = [&](double v) { return std::abs(v) <= largest; };
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

void ShapeSelection::select(const ShapeTable& shapes, const std::vector<ShapeSpan>& found) {
    constexpr std::size_t selected = ShapeTable::opacity + 1;
    count_ = found.size();
    stride_ = (count_ + shadowSamples - 1) / shadowSamples * shadowSamples;
    if (values_.size() < stride_ * selected) values_.resize(stride_ * selected);
    for (std::size_t i = 0; i < selected; ++i) {
        const double* from = shapes.component(static_cast<int>(i));
        double* to = &values_[i * stride_];
        for (std::size_t s = 0; s < count_; ++s) to[s] = from[found[s].shape];
        // The filling is far from every point, and weighs nothing.
        std::fill(to + count_, to + stride_, i == 9 ? 1e70 : 0.0);
    }
}

CloudSample ShapeSelection::sums(const Vector3& point, double shapeRadius, double cap) const {
    return HWY_DYNAMIC_DISPATCH(weigh)(*this, point, shapeRadius, cap);
}

SpriteMarcher::SpriteMarcher(const ShapeTable& shapes, const LightMarch& march)
    : shapes_(shapes), march_(march),
      direction_(shapes, march.lightDirection * march.stepLength, std::abs(march.sampleOffset), marchRadius) {}

bool SpriteMarcher::depthsAt(const Vector3& centre, double (&depths)[shadowSamples]) {
    return HWY_DYNAMIC_DISPATCH(marchOne)(shapes_, march_, direction_, centre, spans_, depths);
}

} // namespace orvo
#endif
