// How fast the procedural sky's tables are computed, each beside the plain loop over the same atmosphere in the same
// run, on one core:
//   the node's defaults, where haze and blue sky have one density between them; high and low quality
//   three layers that differ, at high quality
#include "PlainScattering.h"
#include "SkyTool/skies/ScatteringTables.h"

#include <benchmark/benchmark.h>

namespace {

plain::SkyInputs defaults(bool highQuality) { return plain::defaultSky(highQuality); }

plain::SkyInputs threeLayers(bool highQuality) {
    plain::SkyInputs in = plain::defaultSky(highQuality);
    in.hazeHeight = 350;
    in.redDecayFalloff = 2;
    return in;
}

orvo::ProceduralSkyParams paramsOf(const plain::SkyInputs& in) {
    return {.quality = in.highQuality ? 1 : 0,
            .cameraHeight = in.cameraHeight,
            .hazeHeight = in.hazeHeight,
            .hazeDecay = in.hazeDecay,
            .hazeBrightness = in.hazeBrightness,
            .blueSkyHeight = in.blueSkyHeight,
            .blueSkyBrightness = in.blueSkyBrightness,
            .redDecayHeight = in.redDecayHeight,
            .redDecay = in.redDecay,
            .redDecayFalloff = in.redDecayFalloff};
}

void TablesPlain(benchmark::State& state, const plain::SkyInputs& in) {
    for (auto _ : state) benchmark::DoNotOptimize(plain::skyTables(in));
}

void Tables(benchmark::State& state, const plain::SkyInputs& in) {
    const auto params = paramsOf(in);
    // The same bits, or the comparison says nothing.
    const auto fast = orvo::scatteringTables(params);
    const plain::SkyTables wanted = plain::skyTables(in);
    if (!fast || fast->blueSky != wanted.blueSky || fast->haze != wanted.haze || fast->extinction != wanted.extinction)
        state.SkipWithError("the tables differ");
    for (auto _ : state) benchmark::DoNotOptimize(orvo::scatteringTables(params));
}

BENCHMARK_CAPTURE(TablesPlain, high, defaults(true))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Tables, high, defaults(true))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TablesPlain, low, defaults(false))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Tables, low, defaults(false))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TablesPlain, threeLayersHigh, threeLayers(true))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Tables, threeLayersHigh, threeLayers(true))->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
