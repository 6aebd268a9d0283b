#include "CloudGeneration.h"

#include "CloudKernels.h"
#include "Common/RandomGenerator.h"

#include <algorithm>

namespace orvo {
namespace {

void addShape(const CloudShapeSphere& sphere, const Vector3& point, double squaredRadius, double cap,
              CloudSample& sum) {
    const Vector3 q = MatrixTransformPoint(sphere.transform, point);
    const double squaredLength = dot(q, q);
    if (!(squaredLength <= squaredRadius)) return;
    const double u = 1.0 - squaredLength / squaredRadius, w = std::min(u * u, cap);
    sum.coverage += w;
    sum.density += sphere.density * w;
    sum.opacity += sphere.opacity * w;
}

/// Turns sums over the shapes into means; false where there is no cloud.
bool finish(CloudSample& sum) {
    if (sum.coverage < 1e-10) return false;
    sum.density /= sum.coverage;
    sum.opacity /= sum.coverage;
    sum.coverage = std::min(sum.coverage, 1.0);
    return true;
}

/// The kept candidates of a cloud's jittered grid.
class Scattering {
public:
    Scattering(const CloudShapeSet& set, const ShapeTable& table, const Scatter& scatter, RandomGenerator& random)
        : set_(set), table_(table), candidates_(table, scatter), scatter_(scatter), random_(random),
          rows_(table, {0.0, 0.0, scatter.step}, scatter.step / 2.0, placementRadius) {}

    void run() {
        const double step = scatter_.step, extent = 2.0 * set_.boundRadius, n = std::trunc(extent / step);
        // A step beyond all numbers would leave one candidate, beyond all numbers too.
        if (!(n * n * n <= 1000000.0) || !std::isfinite(step)) return;
        double at = 0.0;
        while (at < extent) {
            grid_.push_back(at);
            at += step;
        }
        const std::size_t count = grid_.size();
        grid_.resize(count + rowPadding);
        kept.positions.reserve(maxSprites);
        kept.opacities.reserve(maxSprites);
        for (std::size_t i = 0; i < count && !kept.full(); ++i)
            for (std::size_t j = 0; j < count && !kept.full(); ++j)
                scatterRow(grid_[i], grid_[j], static_cast<int>(count));
    }

    KeptSprites kept;

private:
    void findSpans(double x, double y, int count) {
        const double half = scatter_.step / 2.0, radius = set_.boundRadius;
        const Vector3 corner = set_.boundCentre - Vector3{radius, radius, radius};
        if (table_.usable() && scatter_.step < 1e70)
            return spansOfShapes(table_, rows_, corner + Vector3{x + half, y + half, half}, count, spans_);
        spans_.clear();
        for (std::uint32_t i = 0; i < set_.spheres.size(); ++i) spans_.push_back({i, 0, count - 1});
    }

    /// Three draws a box.
    void skipBoxes(int count) { random_.skip(3 * static_cast<std::uint64_t>(count)); }

    /// The sums over the shapes felt in box k of the row.
    CloudSample sumsAt(const Vector3& p, int k) const {
        CloudSample sums;
        for (const ShapeSpan& span : spans_)
            if (span.first <= k && k <= span.last)
                addShape(set_.spheres[span.shape], p, placementRadius * placementRadius, placementCap, sums);
        return sums;
    }

    /// Draws the candidate of box k, and keeps it or not.
    void tryCandidate(const CandidateRow& row, int k) {
        const double r1 = random_.RandomFloat(), r2 = random_.RandomFloat(), r3 = random_.RandomFloat();
        const double radius = set_.boundRadius, step = scatter_.step;
        const Vector3 jittered{row.x + r1 * step, row.y + r2 * step, row.z[k] + r3 * step};
        const Vector3 p = jittered - Vector3{radius, radius, radius} + set_.boundCentre;
        const Vector3 out = p - set_.boundCentre;
        if (!(dot(out, out) < radius * radius) || (scatter_.groundFade && p.y < scatter_.fadeEnd)) return;
        CloudSample sample = sumsAt(p, k);
        if (!finish(sample) || !(1.0 - sample.coverage < random_.RandomFloat() * sample.density)) return;
        kept.positions.push_back(p);
        kept.opacities.push_back(static_cast<float>(sample.opacity));
    }

    /// Boxes where no shape is felt are passed over, but for their draws.
    void scatterRow(double x, double y, int count) {
        findSpans(x, y, count);
        int first = count, last = -1;
        for (const ShapeSpan& span : spans_) {
            first = std::min(first, span.first);
            last = std::max(last, span.last);
        }
        skipBoxes(first);
        const CandidateRow row{x, y, grid_.data(), last};
        for (int k = first; k <= last && !kept.full(); ++k) {
            if (table_.usable()) k = keepCandidates(candidates_, scatter_, spans_, row, k, random_, kept);
            if (k <= last && !kept.full()) tryCandidate(row, k);
        }
        if (!kept.full() && last >= 0) skipBoxes(count - 1 - last);
    }

    const CloudShapeSet& set_;
    const ShapeTable& table_;
    const CandidateTable candidates_;
    const Scatter scatter_;
    RandomGenerator& random_;
    const RowDirection rows_;
    std::vector<double> grid_;     ///< along each axis
    std::vector<ShapeSpan> spans_; ///< of the current row
};

} // namespace

double SmoothStep(double edge0, double edge1, double x) {
    const double t = std::clamp((x - edge0) / (edge1 - edge0), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

std::optional<CloudSample> EvaluateShapes(const CloudShapeSet& set, const Vector3& point, double shapeRadius,
                                          bool groundFade, double fadeStart, double fadeEnd, bool shadowMode) {
    if (groundFade && point.y < fadeEnd) return std::nullopt;
    const double squaredRadius = shapeRadius * shapeRadius, cap = shadowMode ? 0.6 : placementCap;
    CloudSample sample;
    for (const CloudShapeSphere& sphere : set.spheres) addShape(sphere, point, squaredRadius, cap, sample);
    if (!finish(sample)) return std::nullopt;
    if (shadowMode && groundFade) sample.coverage *= SmoothStep(fadeEnd, fadeStart, point.y);
    return sample;
}

std::optional<RayCrossing> IntersectRaySphere(const Vector3& origin, const Vector3& direction, double radius) {
    const double a = dot(direction, direction), b = 2.0 * dot(origin, direction);
    const double c = dot(origin, origin) - radius * radius;
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant < 0.0) return std::nullopt;
    const double root = std::sqrt(discriminant);
    return RayCrossing{(-b - root) / (2.0 * a), (-b + root) / (2.0 * a)};
}

double MarchLight(const CloudShapeSet& set, const Vector3& point, const Vector3& lightDirection, double stepLength,
                  bool groundFade, double fadeStart, double fadeEnd) {
    const auto crossing = IntersectRaySphere(point - set.boundCentre, lightDirection, 2.0 * set.boundRadius);
    if (!crossing || crossing->t1 < 1e-10) return 0.0;
    Vector3 p = point;
    double remaining = crossing->t1;
    if (crossing->t0 > 0.0) {
        p = p + lightDirection * crossing->t0;
        remaining -= crossing->t0;
    }
    // A unit direction takes 40 steps at most. One that is not a direction would take for ever.
    constexpr double maxSteps = 10000.0;
    if (!(remaining <= maxSteps * stepLength)) return 0.0;
    const Vector3 stride = lightDirection * stepLength;
    double depth = 0.0;
    while (remaining > 0.0) {
        if (const auto sample = EvaluateShapes(set, p, 1.8, groundFade, fadeStart, fadeEnd, true))
            depth += sample->coverage * sample->density * std::min(stepLength, remaining) / 100.0;
        p = p + stride;
        remaining -= stepLength;
    }
    return depth;
}

namespace {

void castShadows(const CloudShapeSet& set, const ShapeTable& table, const LightMarch& march,
                 const std::vector<Vector3>& positions, ParticleCloudGeom& geom) {
    geom.shadowCube0.resize(positions.size() * 16);
    geom.shadowCube1.resize(positions.size() * 16);
    SpriteMarcher marcher(table, march);
    float depths[shadowSamples];
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (!table.usable() || !marcher.floatsAt(positions[i], depths))
            for (int s = 0; s < shadowSamples; ++s) {
                const auto offset = [&](int bit) { return s & bit ? march.sampleOffset : -march.sampleOffset; };
                depths[s] = static_cast<float>(MarchLight(set, positions[i] + Vector3{offset(1), offset(2), offset(4)},
                                                          march.lightDirection, march.stepLength, march.groundFade,
                                                          march.fadeStart, march.fadeEnd));
            }
        for (std::size_t corner = 4 * i; corner < 4 * i + 4; ++corner) {
            std::copy_n(depths, 4, &geom.shadowCube0[corner * 4]);
            std::copy_n(depths + 4, 4, &geom.shadowCube1[corner * 4]);
        }
    }
}

} // namespace

std::unique_ptr<ParticleCloudGeom> GenerateSprites(const CloudShapeSet& set, double particleDensity,
                                                   double particleSize, bool withShadowData,
                                                   const Vector3& lightDirection, bool groundFade,
                                                   double groundFadeStartOffset, double groundFadeEndOffset) {
    const double step = 1000.0 / std::pow(particleDensity, 0.3333333333333333) * 100.0;
    const double fadeStart = groundFadeStartOffset + set.boundCentre.y,
                 fadeEnd = groundFadeEndOffset + set.boundCentre.y;
    const ShapeTable table(set);
    RandomGenerator random(set.seed);
    Scattering scattering(set, table, {set.boundCentre, set.boundRadius, step, groundFade, fadeEnd}, random);
    scattering.run();
    const KeptSprites& kept = scattering.kept;

    auto geom = std::make_unique<ParticleCloudGeom>();
    const auto count = kept.positions.size();
    geom->numSprites = static_cast<std::int32_t>(count);
    const Sphere bounds = smallestEnclosingSphere(kept.positions);
    if (count > 0) geom->boundCentre = bounds.centre - set.boundCentre;
    const double half = particleSize / 2.0;
    geom->boundRadius = bounds.radius + std::sqrt(half * half + half * half);
    geom->positions.resize(count * 12);
    geom->uvCoords.resize(count * 8);
    geom->randoms.resize(count * 4);
    geom->opacities.resize(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        const Vector3& p = kept.positions[i];
        const float centre[3] = {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
        constexpr float corners[8] = {0, 0, 1, 0, 1, 1, 0, 1};
        for (std::size_t corner = 4 * i; corner < 4 * i + 4; ++corner)
            std::copy_n(centre, 3, &geom->positions[corner * 3]);
        std::copy_n(corners, 8, &geom->uvCoords[i * 8]);
        std::fill_n(&geom->randoms[i * 4], 4, random.RandomFloat());
        std::fill_n(&geom->opacities[i * 4], 4, kept.opacities[i]);
    }
    if (withShadowData) {
        const LightMarch march{set.boundCentre, lightDirection, set.boundRadius, set.boundRadius / 10.0,
                               groundFade,      fadeStart,      fadeEnd,         particleSize * 0.5 * 0.5};
        castShadows(set, table, march, kept.positions, *geom);
    }
    return geom;
}

} // namespace orvo
