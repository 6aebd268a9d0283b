#include "mesh/TriangleTree.h"

#include <embree3/rtcore.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <stdexcept>
#include <vector>

namespace host::mesh {
namespace {

using Imath::V3d;

// The tree works in coordinates in which all triangles lie within [-1, 1]. There single precision is off by a few
// times 2^-24; the boxes are wider by several times as much.
constexpr double kMargin = 0x1p-18;
// Origins are moved to where the segment enters that space. From beyond this distance that would not be exact enough.
constexpr double kFarthest = 0x1p28;
// Points farther away are not told apart by single precision.
constexpr double kFarthestPoint = 0x1p10;

// Neighbours share a box: the tree is made in a fraction of the time, and searched as quickly.
constexpr std::size_t kMostInBox = 4;

std::atomic<std::ptrdiff_t> embreeBytes{0};

/// Embree's own state, made once. It lasts until the process ends, as its threads may outlive static objects.
RTCDevice device() {
    static const RTCDevice made = [] {
        const RTCDevice d = rtcNewDevice(nullptr);
        if (d)
            rtcSetDeviceMemoryMonitorFunction(
                d,
                [](void*, ssize_t bytes, bool) {
                    embreeBytes += bytes;
                    return true;
                },
                nullptr);
        return d;
    }();
    if (!made) throw std::runtime_error("Embree cannot be started");
    return made;
}

double spread(const V3d& v) { return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}); }

bool finite(const V3d& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

using Visitor = double (*)(void* visit, int triangle);

/// A ray on its way through the tree. Exceptions must not pass through Embree.
struct RayVisit {
    RTCIntersectContext base; // first, so that Embree's pointer to it is one to the whole
    const int* firsts = nullptr;
    Visitor visitor = nullptr;
    void* visit = nullptr;
    double from = 0, unit = 1; // of the segment's parameter in that of Embree's ray
    std::exception_ptr error;

    /// Embree's end of the ray for a parameter of the segment, with a margin.
    float reach(double to) const { return static_cast<float>((to - from) * unit * (1 + 0x1p-20) + 0x1p-17); }
};

void onBox(const RTCIntersectFunctionNArguments* args) {
    auto& visit = *reinterpret_cast<RayVisit*>(args->context);
    auto& ray = reinterpret_cast<RTCRayHit*>(args->rayhit)->ray; // rays come one at a time
    if (!args->valid[0] || visit.error) return;
    try {
        double to = 0;
        for (int t = visit.firsts[args->primID]; t < visit.firsts[args->primID + 1]; ++t)
            to = visit.visitor(visit.visit, t);
        const float reach = visit.reach(to);
        ray.tfar = std::clamp(reach, 0.0f, ray.tfar);
    } catch (...) {
        visit.error = std::current_exception();
        ray.tfar = 0;
    }
}

struct PointVisit {
    const int* firsts;
    Visitor visitor;
    void* visit;
    double scale, margin;
    std::exception_ptr error;
};

bool onNearBox(RTCPointQueryFunctionArguments* args) {
    auto& visit = *static_cast<PointVisit*>(args->userPtr);
    if (visit.error) return false;
    try {
        double within = 0;
        for (int t = visit.firsts[args->primID]; t < visit.firsts[args->primID + 1]; ++t)
            within = visit.visitor(visit.visit, t);
        const auto radius = static_cast<float>(within * visit.scale * (1 + 0x1p-20) + visit.margin);
        if (!(radius < args->query->radius)) return false;
        args->query->radius = radius;
        return true;
    } catch (...) {
        visit.error = std::current_exception();
        args->query->radius = 0;
        return true;
    }
}

struct Tree {
    RTCScene scene = nullptr;
    V3d centre{0.0};
    double scale = 1; // a power of two
    double slack = 0;
    std::size_t bytes = 0;
    std::vector<int> firsts; // triangles of the boxes, and the end of all
    // While the tree is built: the points in its coordinates, and their triangles.
    std::vector<Imath::V3f> places;
    std::span<const std::array<int, 3>> triangles;

    ~Tree() {
        if (scene) rtcReleaseScene(scene);
    }

    /// Puts triangles that follow each other and touch into one box.
    void group() {
        firsts.reserve(triangles.size() / 2 + 1);
        for (std::size_t t = 0; t < triangles.size(); ++t) {
            const std::size_t first = firsts.empty() ? t : static_cast<std::size_t>(firsts.back());
            const auto touches = [&](int vertex) {
                return std::ranges::find(triangles[first], vertex) != triangles[first].end();
            };
            if (t == first || t - first == kMostInBox || std::ranges::none_of(triangles[t], touches))
                firsts.push_back(static_cast<int>(t));
        }
        firsts.push_back(static_cast<int>(triangles.size()));
    }

    void bounds(unsigned int box, RTCBounds& out) const {
        constexpr float infinite = std::numeric_limits<float>::infinity();
        Imath::V3f low(infinite), high(-infinite);
        for (int t = firsts[box]; t < firsts[box + 1]; ++t) {
            const auto& [a, b, c] = triangles[static_cast<std::size_t>(t)];
            const Imath::V3f &p = places[static_cast<std::size_t>(a)], &q = places[static_cast<std::size_t>(b)],
                             &r = places[static_cast<std::size_t>(c)];
            if (!std::isfinite(p.x + p.y + p.z + q.x + q.y + q.z + r.x + r.y + r.z)) continue;
            for (int k = 0; k < 3; ++k) {
                const float least = std::min({p[k], q[k], r[k]}), most = std::max({p[k], q[k], r[k]});
                const float wider = (most - least) * static_cast<float>(slack) + static_cast<float>(kMargin);
                low[k] = std::min(low[k], least - wider);
                high[k] = std::max(high[k], most + wider);
            }
        }
        // Without any triangle it is turned inside out, and Embree leaves it out.
        out = {low.x, low.y, low.z, 0, high.x, high.y, high.z, 0};
    }

    void place(std::span<const V3d> points) {
        V3d low(std::numeric_limits<double>::infinity()), high = -low;
        for (const auto& triangle : triangles)
            for (const int vertex : triangle) {
                const V3d& p = points[static_cast<std::size_t>(vertex)];
                if (!finite(p)) continue;
                for (int k = 0; k < 3; ++k) {
                    low[k] = std::min(low[k], p[k]);
                    high[k] = std::max(high[k], p[k]);
                }
            }
        places.resize(points.size());
        if (!(low.x <= high.x)) {
            std::ranges::fill(places, Imath::V3f(std::numeric_limits<float>::quiet_NaN()));
            return;
        }
        centre = low + (high - low) * 0.5;
        const double half = spread(high - low) * 0.5;
        int exponent = 0;
        std::frexp(half, &exponent);
        if (half > 0) scale = std::ldexp(1.0, std::clamp(-exponent, -1000, 1000));
        for (std::size_t i = 0; i < points.size(); ++i) places[i] = Imath::V3f((points[i] - centre) * scale);
    }
};

class EmbreeTree final : public TriangleTree {
public:
    EmbreeTree(std::span<const V3d> points, std::span<const std::array<int, 3>> triangles, double slack);
    std::size_t bytes() const override { return tree_.bytes; }

private:
    bool visitAlong(const Segment& segment, Visitor visitor, void* visit) const override;
    bool visitNear(const V3d& point, Visitor visitor, void* visit) const override;

    Tree tree_;
};

EmbreeTree::EmbreeTree(std::span<const V3d> points, std::span<const std::array<int, 3>> triangles, double slack) {
    Tree& tree = tree_;
    tree.triangles = triangles;
    tree.slack = slack;
    tree.place(points);
    tree.group();
    const std::ptrdiff_t before = embreeBytes;
    tree.scene = rtcNewScene(device());
    const RTCGeometry geometry = rtcNewGeometry(device(), RTC_GEOMETRY_TYPE_USER);
    if (!tree.scene || !geometry) throw std::bad_alloc();
    rtcSetGeometryUserPrimitiveCount(geometry, static_cast<unsigned int>(tree.firsts.size() - 1));
    rtcSetGeometryUserData(geometry, &tree);
    rtcSetGeometryBoundsFunction(
        geometry,
        [](const RTCBoundsFunctionArguments* args) {
            static_cast<const Tree*>(args->geometryUserPtr)->bounds(args->primID, *args->bounds_o);
        },
        nullptr);
    rtcSetGeometryIntersectFunction(geometry, onBox);
    rtcSetGeometryPointQueryFunction(geometry, onNearBox);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(tree.scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(tree.scene);
    tree.places = {};
    tree.triangles = {};
    tree.bytes = static_cast<std::size_t>(std::max<std::ptrdiff_t>(embreeBytes - before, 0)) +
                 tree.firsts.capacity() * sizeof(int);
    if (rtcGetDeviceError(device()) != RTC_ERROR_NONE) throw std::bad_alloc();
}

bool EmbreeTree::visitAlong(const Segment& segment, Visitor visitor, void* visit) const {
    const Tree& tree = tree_;
    const V3d origin = (segment.origin - tree.centre) * tree.scale, direction = segment.direction * tree.scale;
    const double size = spread(direction);
    if (!(spread(origin) <= kFarthest) || !(size > 0) || !std::isfinite(size)) return false;
    double from = segment.from, to = segment.to;
    const double reach = 1 + 4 * kMargin + 2 * tree.slack;
    for (int k = 0; k < 3; ++k) {
        if (direction[k] == 0) {
            if (std::abs(origin[k]) > reach) return true;
            continue;
        }
        const double a = (-reach - origin[k]) / direction[k], b = (reach - origin[k]) / direction[k];
        from = std::max(from, std::min(a, b));
        to = std::min(to, std::max(a, b));
    }
    if (!(from <= to)) return true;
    int exponent = 0;
    std::frexp(size, &exponent);
    const V3d entry = origin + direction * from;
    const V3d step(std::ldexp(direction.x, -exponent), std::ldexp(direction.y, -exponent),
                   std::ldexp(direction.z, -exponent));
    RayVisit context;
    context.firsts = tree.firsts.data();
    context.visitor = visitor;
    context.visit = visit;
    context.from = from;
    context.unit = std::ldexp(1.0, exponent);
    if (!finite(entry) || !std::isfinite(context.reach(to))) return false;
    rtcInitIntersectContext(&context.base);
    RTCRayHit ray{};
    ray.ray.org_x = static_cast<float>(entry.x);
    ray.ray.org_y = static_cast<float>(entry.y);
    ray.ray.org_z = static_cast<float>(entry.z);
    ray.ray.dir_x = static_cast<float>(step.x);
    ray.ray.dir_y = static_cast<float>(step.y);
    ray.ray.dir_z = static_cast<float>(step.z);
    ray.ray.tfar = context.reach(to);
    ray.ray.mask = ~0u;
    ray.hit.geomID = ray.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(tree.scene, &context.base, &ray);
    if (context.error) std::rethrow_exception(context.error);
    return true;
}

bool EmbreeTree::visitNear(const V3d& point, Visitor visitor, void* visit) const {
    const Tree& tree = tree_;
    const V3d place = (point - tree.centre) * tree.scale;
    if (!(spread(place) <= kFarthestPoint)) return false;
    PointVisit search{tree.firsts.data(), visitor, visit, tree.scale, kMargin * (1 + spread(place)), nullptr};
    RTCPointQuery query{};
    query.x = static_cast<float>(place.x);
    query.y = static_cast<float>(place.y);
    query.z = static_cast<float>(place.z);
    query.radius = std::numeric_limits<float>::infinity();
    RTCPointQueryContext context;
    rtcInitPointQueryContext(&context);
    rtcPointQuery(tree.scene, &query, &context, nullptr, &search);
    if (search.error) std::rethrow_exception(search.error);
    return true;
}

std::unique_ptr<TriangleTree> make(std::span<const V3d> points, std::span<const std::array<int, 3>> triangles,
                                   double slack) {
    return std::make_unique<EmbreeTree>(points, triangles, slack);
}

} // namespace
} // namespace host::mesh

/// What the host looks for when it has loaded this module.
extern "C" __attribute__((visibility("default"))) host::mesh::TriangleTreeMaker orvohost_triangleTreeMaker() {
    return host::mesh::make;
}
