// Evaluation of a chain of connected utility nodes: the first one's input changes, the last one's output is asked for.
// Beside it the plain version: the same multiplications in a loop. The time of a node must not grow with their number.
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace host::scene;

void ChainPlain(benchmark::State& state) {
    std::vector<float> factors(static_cast<std::size_t>(state.range(0)), 1.0F);
    for (auto _ : state) {
        benchmark::DoNotOptimize(factors.data());
        float value = 3;
        for (const float f : factors) value *= f;
        benchmark::DoNotOptimize(value);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ChainPlain)->Arg(1000)->Arg(10000)->Arg(100000);

void Chain(benchmark::State& state) {
    Scene& scene = Scene::current();
    scene.reset();
    const NodeType& type = *scene.findType("multiplyDivide");
    NodePtr first, last;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        NodePtr next = scene.createNode(type, "m" + std::to_string(i + 1));
        if (last) scene.connect(last->cell("output").child(0), next->cell("input1").child(0));
        if (!first) first = next;
        last = next;
    }
    Cell &input = first->cell("input1").child(0), &output = last->cell("output").child(0);
    double value = 0;
    for (auto _ : state) {
        scene.setNumber(input, value += 1);
        evaluate(output);
        if (output.number() != value) state.SkipWithError("the chain gives another number");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    scene.reset();
}
BENCHMARK(Chain)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
