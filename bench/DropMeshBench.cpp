// orvo_dropMesh with 100,000 vertices above 1,000,000 triangles, called as an artist's script calls it, beside in the
// same run:
//   a test of every triangle, for a sample of the vertices
//   Embree called directly with the same rays, with and without the making of its tree
#include "api/plugins/PluginManager.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <benchmark/benchmark.h>
#include <embree3/rtcore.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

struct Point {
    float x, y, z;
};

/// Hills of cells x cells quads, as two triangles each, 1,000 wide about the origin.
struct Field {
    std::vector<Point> points;
    std::vector<unsigned> corners;

    Field(int cells, double size, double height) {
        for (int z = 0; z <= cells; ++z) {
            for (int x = 0; x <= cells; ++x) {
                const double px = (static_cast<double>(x) / cells - 0.5) * size,
                             pz = (static_cast<double>(z) / cells - 0.5) * size;
                const double y = height * (std::sin(px * 0.05) * std::cos(pz * 0.03) + 0.2 * std::sin(px * pz * 0.001));
                points.push_back({static_cast<float>(px), static_cast<float>(y), static_cast<float>(pz)});
            }
        }
        const auto at = [&](int x, int z) { return static_cast<unsigned>(z * (cells + 1) + x); };
        for (int z = 0; z < cells; ++z)
            for (int x = 0; x < cells; ++x)
                for (const unsigned corner :
                     {at(x, z), at(x, z + 1), at(x + 1, z + 1), at(x, z), at(x + 1, z + 1), at(x + 1, z)})
                    corners.push_back(corner);
    }
};

const Field& ground() {
    static const Field field(707, 1000, 40); // 999,698 triangles
    return field;
}
const Field& cloth() {
    static const Field field(315, 981.7, 0); // 99,856 vertices
    return field;
}

void makeMesh(const Field& field, const char* name) {
    MPointArray points;
    for (const Point& p : field.points) points.append(MPoint(p.x, p.y, p.z));
    MIntArray counts(static_cast<unsigned>(field.corners.size() / 3), 3), connects;
    for (const unsigned corner : field.corners) connects.append(static_cast<int>(corner));
    MFnMesh mesh;
    const MObject transform =
        mesh.create(static_cast<int>(points.length()), static_cast<int>(counts.length()), points, counts, connects);
    MFnDependencyNode(transform).setName(name);
}

void run(const std::string& mel) { host::Host::instance().interpreter().execute(mel); }

void prepareScene() {
    static const bool done = [] {
        auto& host = host::Host::instance();
        host.start({});
        host.plugins().load(ORVO_PLUGIN);
        makeMesh(ground(), "ground");
        makeMesh(cloth(), "cloth");
        run("undoInfo -st 0");
        return true;
    }();
    (void)done;
}

void drop() { run("orvo_dropMesh \"cloth\" {\"ground\"} 0.5"); }

void countVertices(benchmark::State& state, std::size_t vertices) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(vertices));
}

/// Embree's own tree of the ground, and its answers.
class EmbreeScene {
public:
    EmbreeScene() : device_(rtcNewDevice("threads=1")), scene_(rtcNewScene(device_)) {
        const Field& field = ground();
        RTCGeometry geometry = rtcNewGeometry(device_, RTC_GEOMETRY_TYPE_TRIANGLE);
        void* points = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, sizeof(Point),
                                               field.points.size());
        void* corners = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                                3 * sizeof(unsigned), field.corners.size() / 3);
        std::copy(field.points.begin(), field.points.end(), static_cast<Point*>(points));
        std::copy(field.corners.begin(), field.corners.end(), static_cast<unsigned*>(corners));
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(scene_, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(scene_);
    }
    ~EmbreeScene() {
        rtcReleaseScene(scene_);
        rtcReleaseDevice(device_);
    }
    EmbreeScene(const EmbreeScene&) = delete;
    EmbreeScene& operator=(const EmbreeScene&) = delete;

    /// The height below each vertex of the cloth.
    void cast(std::vector<float>& heights) const {
        heights.clear();
        for (const Point& p : cloth().points) {
            RTCIntersectContext context;
            rtcInitIntersectContext(&context);
            RTCRayHit ray{};
            ray.ray.org_x = p.x;
            ray.ray.org_y = 1100;
            ray.ray.org_z = p.z;
            ray.ray.dir_y = -1;
            ray.ray.tfar = 2200;
            ray.ray.mask = ~0u;
            ray.hit.geomID = RTC_INVALID_GEOMETRY_ID;
            rtcIntersect1(scene_, &context, &ray);
            heights.push_back(1100 - ray.ray.tfar);
        }
    }

private:
    RTCDevice device_;
    RTCScene scene_;
};

/// The command with the trees of all meshes forgotten first.
void DropMeshCold(benchmark::State& state) {
    prepareScene();
    for (auto _ : state) {
        state.PauseTiming();
        MFnMesh::clearGlobalIntersectionAcceleratorInfo();
        state.ResumeTiming();
        drop();
    }
    countVertices(state, cloth().points.size());
}
BENCHMARK(DropMeshCold)->Unit(benchmark::kMillisecond);

void EmbreeWithTree(benchmark::State& state) {
    std::vector<float> heights;
    for (auto _ : state) EmbreeScene().cast(heights);
    countVertices(state, heights.size());
}
BENCHMARK(EmbreeWithTree)->Unit(benchmark::kMillisecond);

/// The command once more above the same ground.
void DropMeshWarm(benchmark::State& state) {
    prepareScene();
    drop();
    for (auto _ : state) drop();
    countVertices(state, cloth().points.size());
}
BENCHMARK(DropMeshWarm)->Unit(benchmark::kMillisecond);

void EmbreeAlone(benchmark::State& state) {
    const EmbreeScene scene;
    std::vector<float> heights;
    for (auto _ : state) scene.cast(heights);
    countVertices(state, heights.size());
}
BENCHMARK(EmbreeAlone)->Unit(benchmark::kMillisecond);

/// The highest of all triangles at every 500th vertex.
void EveryTriangle(benchmark::State& state) {
    const Field& field = ground();
    constexpr std::size_t step = 500;
    std::size_t cast = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < cloth().points.size(); i += step, ++cast) {
            const Point& p = cloth().points[i];
            float best = -std::numeric_limits<float>::max();
            for (std::size_t t = 0; t < field.corners.size(); t += 3) {
                const Point &a = field.points[field.corners[t]], &b = field.points[field.corners[t + 1]],
                            &c = field.points[field.corners[t + 2]];
                const float abx = b.x - a.x, abz = b.z - a.z, acx = c.x - a.x, acz = c.z - a.z;
                const float px = p.x - a.x, pz = p.z - a.z, d = abx * acz - acx * abz;
                const float u = (px * acz - acx * pz) / d, v = (abx * pz - px * abz) / d;
                if (u >= 0 && v >= 0 && u + v <= 1) best = std::max(best, a.y + u * (b.y - a.y) + v * (c.y - a.y));
            }
            benchmark::DoNotOptimize(best);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(cast));
}
BENCHMARK(EveryTriangle)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
