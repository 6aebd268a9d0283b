// A look at every vertex of a mesh of a million: by the iterator, and by the function set's array of points.
#include "commands/Host.h"
#include "scene/Scene.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshVertex.h>
#include <maya/MSelectionList.h>

#include <benchmark/benchmark.h>

namespace {

/// A grid of 1000 x 1000 vertices below a transform that turns and moves it.
MDagPath ground() {
    static const MDagPath path = [] {
        host::Host::instance().start({});
        host::Host::instance().interpreter().execute(
            "polyPlane -ch 0 -sx 999 -sy 999 -n ground; setAttr ground.r 10 20 30; setAttr ground.t 1 2 3;");
        MSelectionList list;
        MDagPath found;
        list.add("ground");
        list.getDagPath(0, found);
        found.extendToShape();
        return found;
    }();
    return path;
}

MSpace::Space space(const benchmark::State& state) { return state.range(0) ? MSpace::kWorld : MSpace::kObject; }

void VerticesPlain(benchmark::State& state) {
    const MFnMesh fn(ground());
    for (auto _ : state) {
        MPointArray points;
        fn.getPoints(points, space(state));
        double sum = 0;
        for (unsigned i = 0; i < points.length(); ++i) sum += points[i].x + points[i].y + points[i].z;
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * fn.numVertices());
}
BENCHMARK(VerticesPlain)->ArgName("world")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void VerticesIterated(benchmark::State& state) {
    int count = 0;
    for (auto _ : state) {
        double sum = 0;
        MItMeshVertex v(ground());
        for (count = v.count(); !v.isDone(); v.next()) {
            const MPoint p = v.position(space(state));
            sum += p.x + p.y + p.z;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(VerticesIterated)->ArgName("world")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
