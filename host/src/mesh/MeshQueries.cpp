#include "mesh/MeshQueries.h"

#include "mesh/TriangleTests.h"
#include "mesh/TriangleTree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>

namespace host::mesh {
namespace {

using Imath::V3d;

// Products of four coordinates must stay finite.
constexpr double kGreatest = 1e60;

/// Tests triangles against one ray.
class HitTest {
public:
    explicit HitTest(const Ray& ray) : ray_(ray), test_(ray.origin, ray.direction) {}

    bool operator()(const std::array<V3d, 3>& corners, int triangle, RayHit& hit) const {
        RayTest::Hit found;
        if (!test_.meets(corners[0], corners[1], corners[2], ray_.tolerance, found)) return false;
        const auto param = static_cast<float>(found.param) + 0.0f; // no negative zero
        if (!std::isfinite(param) || std::abs(param) > ray_.maxParam || (param < 0 && !ray_.bothDirections))
            return false;
        hit = {param, found.at(ray_.origin, ray_.direction), triangle, static_cast<float>(found.weights[0]),
               static_cast<float>(found.weights[1])};
        return true;
    }

private:
    const Ray& ray_;
    RayTest test_;
};

bool comesBefore(const RayHit& a, const RayHit& b) {
    const auto key = [](const RayHit& h) { return std::tuple(std::abs(h.param), h.param < 0, h.triangle); };
    return key(a) < key(b);
}

/// The end of all parameters that are the same in single precision, or smaller ones.
double endOf(float param) { return std::abs(static_cast<double>(param)) * (1 + 0x1p-22) + 0x1p-148; }

} // namespace

MeshQueries::MeshQueries(const PolyMesh& mesh, const Imath::M44d& m) {
    points_.reserve(mesh.points().size());
    for (const Float3& p : mesh.points()) {
        const V3d v = toDouble(p);
        V3d placed;
        for (int k = 0; k < 3; ++k) {
            placed[k] = v.x * m[0][k] + v.y * m[1][k] + v.z * m[2][k] + m[3][k];
            if (!(std::abs(placed[k]) <= kGreatest)) placed[k] = std::numeric_limits<double>::quiet_NaN();
        }
        points_.push_back(placed);
    }
    const auto connects = mesh.connects();
    triangles_.reserve(mesh.triangles().size());
    for (const PolyMesh::Triangle& t : mesh.triangles())
        triangles_.push_back({connects[t[0]], connects[t[1]], connects[t[2]]});
    firsts_.reserve(static_cast<std::size_t>(mesh.numPolygons()) + 1);
    for (int face = 0; face <= mesh.numPolygons(); ++face) firsts_.push_back(mesh.faceStart(face) - 2 * face);
}

MeshQueries::~MeshQueries() = default;

void MeshQueries::accelerate(double tolerance) {
    if (accelerated(tolerance) || triangles_.empty()) return;
    // A hit may lie outside of its triangle by the tolerance's share of two edges.
    const double slack = std::max(tolerance, 1e-3);
    tree_.reset();
    try {
        tree_ = TriangleTree::make(points_, triangles_, 2 * slack);
        slack_ = slack;
    } catch (const std::runtime_error&) {
        slack_ = 0;
    }
}

std::array<V3d, 3> MeshQueries::corners(int triangle) const {
    const auto& t = triangles_[static_cast<std::size_t>(triangle)];
    const auto at = [&](int i) { return points_[static_cast<std::size_t>(t[static_cast<std::size_t>(i)])]; };
    return {at(0), at(1), at(2)};
}

int MeshQueries::faceOf(int triangle) const {
    return static_cast<int>(std::upper_bound(firsts_.begin(), firsts_.end(), triangle) - firsts_.begin()) - 1;
}

std::size_t MeshQueries::bytes() const {
    return points_.capacity() * sizeof(V3d) + triangles_.capacity() * sizeof(triangles_[0]) +
           firsts_.capacity() * sizeof(int) + (tree_ ? tree_->bytes() : 0);
}

/// Shows `onTriangle` every triangle that the ray may meet up to `limit`; it answers the new limit.
template <class OnTriangle>
void MeshQueries::search(const Ray& ray, bool backwards, double limit, OnTriangle& onTriangle) const {
    const TriangleTree::Segment segment{ray.origin, backwards ? -ray.direction : ray.direction, 0, limit};
    if (accelerated(ray.tolerance) && tree_->along(segment, onTriangle)) return;
    for (int triangle = 0; triangle < numTriangles(); ++triangle) onTriangle(triangle);
}

std::optional<RayHit> MeshQueries::closestHit(const Ray& ray) const {
    const HitTest test(ray);
    std::optional<RayHit> best;
    double limit = endOf(ray.maxParam);
    auto onTriangle = [&](int triangle) {
        RayHit hit;
        if (test(corners(triangle), triangle, hit) && (!best || comesBefore(hit, *best))) {
            best = hit;
            limit = endOf(hit.param);
        }
        return limit;
    };
    search(ray, false, limit, onTriangle);
    if (ray.bothDirections) search(ray, true, limit, onTriangle);
    return best;
}

std::vector<RayHit> MeshQueries::allHits(const Ray& ray) const {
    const HitTest test(ray);
    std::vector<RayHit> hits;
    const double limit = endOf(ray.maxParam);
    auto onTriangle = [&](int triangle) {
        RayHit hit;
        if (test(corners(triangle), triangle, hit)) hits.push_back(hit);
        return limit;
    };
    search(ray, false, limit, onTriangle);
    if (ray.bothDirections) search(ray, true, limit, onTriangle);
    const auto order = [](const RayHit& a, const RayHit& b) { return a.triangle < b.triangle; };
    std::ranges::sort(hits, order);
    const auto same = [](const RayHit& a, const RayHit& b) { return a.triangle == b.triangle; };
    hits.erase(std::unique(hits.begin(), hits.end(), same), hits.end()); // found both ways from the origin
    return hits;
}

std::optional<RayHit> MeshQueries::closestHit(const Ray& ray, std::span<const int> triangles) const {
    const HitTest test(ray);
    std::optional<RayHit> best;
    RayHit hit;
    for (const int triangle : triangles)
        if (test(corners(triangle), triangle, hit) && (!best || comesBefore(hit, *best))) best = hit;
    return best;
}

std::vector<RayHit> MeshQueries::allHits(const Ray& ray, std::span<const int> triangles) const {
    const HitTest test(ray);
    std::vector<RayHit> hits;
    RayHit hit;
    for (const int triangle : triangles)
        if (test(corners(triangle), triangle, hit)) hits.push_back(hit);
    return hits;
}

std::optional<NearestPoint> MeshQueries::nearest(const V3d& point) const {
    std::optional<NearestPoint> best;
    auto onTriangle = [&](int triangle) {
        const auto c = corners(triangle);
        const V3d q = nearestOnTriangle(point, c[0], c[1], c[2]);
        const V3d d = q - point;
        const double distance2 = d.dot(d);
        // Not numbers compare as false.
        if (distance2 <= std::numeric_limits<double>::max() &&
            (!best || std::tie(distance2, triangle) < std::tie(best->distance2, best->triangle)))
            best = {q, distance2, triangle};
        return best ? std::sqrt(best->distance2) : std::numeric_limits<double>::infinity();
    };
    if (tree_ && tree_->near(point, onTriangle)) return best;
    for (int triangle = 0; triangle < numTriangles(); ++triangle) onTriangle(triangle);
    return best;
}

} // namespace host::mesh
