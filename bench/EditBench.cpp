// Edits one by one of what grows: objects into a set, keys onto a plug, connections of one source broken in the order
// in which they were made, each recorded for undoing. Beside them the plain version: as many insertions into a map. The
// time of one must not grow with their number.
#include "scene/AnimCurve.h"
#include "scene/Scene.h"
#include "scene/Sets.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace {

using namespace host::scene;

void MapPlain(benchmark::State& state) {
    for (auto _ : state) {
        std::map<int, double> values;
        for (int i = 0; i < state.range(0); ++i) values.emplace(i, i * 0.5);
        benchmark::DoNotOptimize(values.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(MapPlain)->Arg(1000)->Arg(10000)->Arg(100000);

void IntoSet(benchmark::State& state) {
    Scene& scene = Scene::current();
    for (auto _ : state) {
        state.PauseTiming();
        scene.reset();
        std::vector<NodePtr> nodes;
        for (int i = 0; i < state.range(0); ++i)
            nodes.push_back(scene.createNode(*scene.findType("transform"), "t" + std::to_string(i + 1)));
        Node& set = *scene.createNode(*scene.findType("objectSet"), "some");
        state.ResumeTiming();
        const UndoQueue::Chunk chunk(scene.undo);
        for (const NodePtr& node : nodes) addToSet(set, *node);
        if (membersOf(set).size() != nodes.size()) state.SkipWithError("members are missing");
    }
    scene.reset();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(IntoSet)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void OffSource(benchmark::State& state) {
    Scene& scene = Scene::current();
    for (auto _ : state) {
        state.PauseTiming();
        scene.reset();
        const NodeType& type = *scene.findType("addDoubleLinear");
        Cell& source = scene.createNode(type, "from")->cell("output");
        std::vector<Cell*> fed;
        for (int i = 0; i < state.range(0); ++i) {
            fed.push_back(&scene.createNode(type, "a" + std::to_string(i + 1))->cell("input1"));
            scene.connect(source, *fed.back());
        }
        state.ResumeTiming();
        const UndoQueue::Chunk chunk(scene.undo);
        for (Cell* to : fed) scene.disconnect(source, *to);
        if (!source.destinations.empty()) state.SkipWithError("connections are left");
    }
    scene.reset();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(OffSource)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void putKeys(benchmark::State& state, bool backward) {
    Scene& scene = Scene::current();
    for (auto _ : state) {
        state.PauseTiming();
        scene.reset();
        Cell& plug = scene.createNode(*scene.findType("transform"), "t")->cell("translate").child(0);
        state.ResumeTiming();
        const UndoQueue::Chunk chunk(scene.undo);
        for (int i = 0; i < state.range(0); ++i)
            setKey(scene, plug, backward ? -250.0 * i : 250.0 * i, i, Tangent::Linear, Tangent::Linear);
        if (keysOf(*curveOf(plug)).size() != static_cast<std::size_t>(state.range(0)))
            state.SkipWithError("keys are missing");
    }
    scene.reset();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
void OntoPlug(benchmark::State& state) { putKeys(state, false); }
void OntoPlugBackward(benchmark::State& state) { putKeys(state, true); }
BENCHMARK(OntoPlugBackward)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(OntoPlug)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
