// How fast sprites are generated, each beside the plain version of the same work in the same run:
//   one cloud of 20 shapes at the limit of 4000 sprites, with shadow data, on one core
//   a dome of 250 such clouds; plain: one after the other, and generated two at a time on two threads
#include "PlainClouds.h"
#include "RandomClouds.h"

#include <benchmark/benchmark.h>

#include <thread>

namespace {

using namespace orvo;

constexpr Vector3 light{0.6, 0.64, 0.48};

const CloudShapeSet& cloudOf(std::uint32_t seed) {
    static const std::vector<CloudShapeSet> sets = [] {
        std::vector<CloudShapeSet> all;
        for (std::uint32_t i = 1; i <= 10; ++i) all.push_back(randomCloud(20, i).set);
        return all;
    }();
    return sets[seed % sets.size()];
}

template <class Generate>
std::int32_t generate(Generate&& generator, std::uint32_t seed) {
    return generator(cloudOf(seed), 100000.0, 10000.0, true, light, true, 0.0, -8000.0 * 100.0).numSprites;
}

std::int32_t plainCloud(std::uint32_t seed) {
    return generate([](auto&&... a) { return plain::GenerateSprites(a...); }, seed);
}

std::int32_t fastCloud(std::uint32_t seed) {
    return generate([](auto&&... a) { return std::move(*GenerateSprites(a...)); }, seed);
}

void CloudPlain(benchmark::State& state) {
    std::uint32_t seed = 0;
    for (auto _ : state)
        if (plainCloud(seed++) != maxSprites) state.SkipWithError("the cloud is below the limit");
}
BENCHMARK(CloudPlain)->Unit(benchmark::kMillisecond)->Iterations(20);

void Cloud(benchmark::State& state) {
    std::uint32_t seed = 0;
    for (auto _ : state)
        if (fastCloud(seed++) != maxSprites) state.SkipWithError("the cloud is below the limit");
}
BENCHMARK(Cloud)->Unit(benchmark::kMillisecond)->Iterations(100);

constexpr std::uint32_t domeClouds = 250;

void DomePlain(benchmark::State& state) {
    for (auto _ : state)
        for (std::uint32_t i = 0; i < domeClouds; ++i) benchmark::DoNotOptimize(plainCloud(i));
}
BENCHMARK(DomePlain)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

void Dome(benchmark::State& state) {
    const auto threads = static_cast<std::uint32_t>(state.range(0));
    for (auto _ : state) {
        std::vector<std::thread> workers;
        for (std::uint32_t t = 0; t < threads; ++t)
            workers.emplace_back([=] {
                for (std::uint32_t i = t; i < domeClouds; i += threads) benchmark::DoNotOptimize(fastCloud(i));
            });
        for (std::thread& worker : workers) worker.join();
    }
}
BENCHMARK(Dome)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
