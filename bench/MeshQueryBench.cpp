// How fast meshes answer, each beside a plain version of the same work in the same run:
//   dropping a mesh of many vertices on a large one, as a plug-in command would; plain: Embree called directly with
//   the same triangles and rays, and the hits added to an array
//   the points of a mesh that are nearest to others; plain: a test of every triangle
#include "base/Messages.h"
#include "commands/Host.h"
#include "mesh/QueryCache.h"
#include "scene/Scene.h"
#include "scene/Undo.h"

#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>

#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr float side = 1000;

/// A square mesh of rolling hills with about as many triangles as asked for, in quads.
struct Terrain {
    explicit Terrain(int triangles) : n(static_cast<int>(std::sqrt(triangles / 2))) {
        for (int z = 0; z <= n; ++z)
            for (int x = 0; x <= n; ++x) {
                const float fx = side * static_cast<float>(x) / static_cast<float>(n),
                            fz = side * static_cast<float>(z) / static_cast<float>(n);
                points.append(MFloatPoint(fx, 20 * std::sin(fx * 0.02f) * std::cos(fz * 0.017f), fz));
            }
        for (int z = 0; z < n; ++z)
            for (int x = 0; x < n; ++x) {
                const int v = z * (n + 1) + x;
                counts.append(4);
                for (const int corner : {v, v + n + 1, v + n + 2, v + 1}) connects.append(corner);
            }
    }
    MObject make(MFnMesh& fn) const {
        return fn.create(static_cast<int>(points.length()), static_cast<int>(counts.length()), points, counts,
                         connects);
    }
    int n;
    MFloatPointArray points;
    MIntArray counts, connects;
};

MFloatPointArray scattered(int count, float height) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> at(0, side);
    MFloatPointArray points;
    for (int i = 0; i < count; ++i) points.append(MFloatPoint(at(random), height, at(random)));
    return points;
}

void DropPlain(benchmark::State& state) {
    const auto vertices = scattered(static_cast<int>(state.range(0)), 50);
    const Terrain ground(static_cast<int>(state.range(1)));
    const RTCDevice device = rtcNewDevice(nullptr);
    for (auto _ : state) {
        const RTCScene scene = rtcNewScene(device);
        const RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
        auto* points = static_cast<float*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0,
                                                                   RTC_FORMAT_FLOAT3, 12, ground.points.length()));
        for (const MFloatPoint& p : ground.points) {
            *points++ = p.x;
            *points++ = p.y;
            *points++ = p.z;
        }
        const auto quads = static_cast<unsigned int>(ground.counts.length());
        auto* corners = static_cast<unsigned int*>(
            rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, 12, 2 * quads));
        for (unsigned int q = 0; q < quads; ++q)
            for (const unsigned int corner : {0u, 1u, 2u, 0u, 2u, 3u})
                *corners++ = static_cast<unsigned int>(ground.connects[4 * q + corner]);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(scene, geometry);
        rtcReleaseGeometry(geometry);
        rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST);
        rtcCommitScene(scene);
        std::vector<float> dropped;
        for (const MFloatPoint& p : vertices) {
            RTCIntersectContext context;
            rtcInitIntersectContext(&context);
            RTCRayHit ray{};
            ray.ray.org_x = p.x, ray.ray.org_y = 1020, ray.ray.org_z = p.z;
            ray.ray.dir_y = -1;
            ray.ray.tfar = 2040;
            ray.ray.mask = ~0u;
            ray.hit.geomID = RTC_INVALID_GEOMETRY_ID;
            rtcIntersect1(scene, &context, &ray);
            if (ray.hit.geomID == 0) dropped.push_back(1020 - ray.ray.tfar);
        }
        if (dropped.size() != vertices.length()) state.SkipWithError("some vertices were not dropped");
        rtcReleaseScene(scene);
    }
    rtcReleaseDevice(device);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(DropPlain)->Args({100000, 1000000})->Unit(benchmark::kMillisecond)->UseRealTime();

void Drop(benchmark::State& state) {
    host::scene::Scene::current().reset();
    const auto vertices = scattered(static_cast<int>(state.range(0)), 50);
    MIntArray counts(vertices.length() / 4, 4), connects;
    for (unsigned int i = 0; i < vertices.length() / 4 * 4; ++i) connects.append(static_cast<int>(i));
    MFnMesh ground, drop;
    Terrain(static_cast<int>(state.range(1))).make(ground);
    drop.create(static_cast<int>(vertices.length()), static_cast<int>(counts.length()), vertices, counts, connects);
    for (auto _ : state) {
        ground.freeCachedIntersectionAccelerator();
        MMeshIsectAccelParams accelerator = MFnMesh::autoUniformGridParams();
        const MFloatVector down(0, -1, 0);
        for (int i = 0; i < drop.numVertices(); ++i) {
            MPoint at;
            drop.getPoint(i, at, MSpace::kWorld);
            MFloatPoint hit;
            const MFloatPoint source(static_cast<float>(at.x), 1020, static_cast<float>(at.z));
            if (!ground.closestIntersection(source, down, nullptr, nullptr, false, MSpace::kWorld, 2040, false,
                                            &accelerator, hit, nullptr, nullptr, nullptr, nullptr, nullptr))
                state.SkipWithError("a vertex was not dropped");
            drop.setPoint(i, MPoint(at.x, hit.y, at.z), MSpace::kWorld);
        }
        drop.updateSurface();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    host::scene::Scene::current().reset();
}
BENCHMARK(Drop)->Args({100000, 1000000})->Unit(benchmark::kMillisecond)->UseRealTime();

host::mesh::PolyMesh meshOf(const Terrain& terrain) {
    std::vector<host::mesh::Float3> points;
    for (const MFloatPoint& p : terrain.points) points.push_back({p.x, p.y, p.z});
    return host::mesh::PolyMesh::fromPolygons(points, std::vector<int>(terrain.counts.begin(), terrain.counts.end()),
                                              {terrain.connects.begin(), terrain.connects.end()});
}

void nearest(benchmark::State& state, bool accelerate) {
    const auto mesh = meshOf(Terrain(static_cast<int>(state.range(0))));
    host::mesh::MeshQueries queries(mesh, Imath::M44d());
    if (accelerate) queries.accelerate(0);
    const auto points = scattered(64, 30);
    for (auto _ : state)
        for (const MFloatPoint& p : points) benchmark::DoNotOptimize(queries.nearest(Imath::V3d(p.x, p.y, p.z)));
    state.SetItemsProcessed(state.iterations() * 64);
}
void NearestPlain(benchmark::State& state) { nearest(state, false); }
void Nearest(benchmark::State& state) { nearest(state, true); }
BENCHMARK(NearestPlain)->Arg(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Nearest)->Arg(20000)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    host::Messages::instance().setSink([](host::Severity, std::string_view) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    host::Host::instance().start({});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
