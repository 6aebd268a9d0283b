// How fast the program makes pictures, each beside a plain version of the same work in the same run:
//   24 frames of the dusk scene, whose clouds drift with a keyed wind; plain: 24 runs of the program
//   a panorama of the cumulus scene, 4096 pixels wide; plain: a view of it, with the time for a pixel of both
//   a batch of 100 small scenes, two at a time; plain: one after the other
#include "Program.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <fstream>

namespace {

using bench::runProgram;
using bench::workFolder;

constexpr int kFrames = 24;
const std::string project = ORVO_PROJECT;

/// The dusk scene with the wind keyed.
std::string windyDusk() {
    const auto file = workFolder() / "windy.mel";
    std::ofstream(file) << "file -force -open \"" ORVO_PROJECT "/scenes/dusk.ma\";\n"
                           "createNode animCurveTU -n windTime;\n"
                           "setAttr \"windTime.ktv[0]\" 1 0; setAttr \"windTime.ktv[1]\" 24 60;\n"
                           "connectAttr windTime.output cloudDomeShape.time;\n";
    return file.string();
}

std::vector<std::string> rendering(const benchmark::State& state, const std::string& picture) {
    return {"--project",
            project,
            "render",
            windyDusk(),
            (workFolder() / picture).string(),
            "--size",
            fmt::format("{}x{}", state.range(0), state.range(0) * 9 / 16)};
}

void FramesPlain(benchmark::State& state) {
    for (auto _ : state)
        for (int frame = 1; frame <= kFrames; ++frame) {
            auto words = rendering(state, fmt::format("one{}.png", frame));
            words.insert(words.end(), {"--time", std::to_string(frame)});
            if (!runProgram(words)) state.SkipWithError("a rendering failed");
        }
}
BENCHMARK(FramesPlain)->Arg(1280)->Arg(640)->Unit(benchmark::kMillisecond)->UseRealTime();

void Frames(benchmark::State& state) {
    for (auto _ : state) {
        auto words = rendering(state, "many.##.png");
        words.insert(words.end(), {"--frames", fmt::format("1-{}", kFrames)});
        if (!runProgram(words)) state.SkipWithError("the rendering failed");
    }
}
BENCHMARK(Frames)->Arg(1280)->Arg(640)->Unit(benchmark::kMillisecond)->UseRealTime();

void drawCumulus(benchmark::State& state, const std::vector<std::string>& options, double pixels) {
    std::vector<std::string> words{"--project", project, "render", project + "/scenes/cumulus.ma",
                                   (workFolder() / "cumulus.png").string()};
    words.insert(words.end(), options.begin(), options.end());
    for (auto _ : state)
        if (!runProgram(words)) state.SkipWithError("the rendering failed");
    state.counters["per pixel"] =
        benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void PanoramaPlain(benchmark::State& state) { drawCumulus(state, {"--size", "1280x720"}, 1280 * 720); }
BENCHMARK(PanoramaPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void Panorama(benchmark::State& state) { drawCumulus(state, {"--panorama", "--size", "4096"}, 4096 * 2048); }
BENCHMARK(Panorama)->Unit(benchmark::kMillisecond)->UseRealTime();

void batch(benchmark::State& state, const std::string& processes) {
    std::vector<std::string> words{"batch", "--out",  (workFolder() / "batch").string(), "--size", "64x36",
                                   "-j",    processes};
    for (int i = 0; i < 100; ++i) {
        const auto file = workFolder() / fmt::format("small{}.ma", i);
        std::ofstream(file) << "//Maya ASCII 2010 scene\nrequires maya \"2010\";\n"
                               "createNode transform -n \"OrvoSkyData\";\n"
                               "createNode transform -n \"set\" -p \"OrvoSkyData\";\n"
                               "createNode orvosky_SkySceneSettings -n \"setShape\" -p \"set\";\n"
                               "createNode transform -n \"sky\" -p \"OrvoSkyData\";\n"
                               "createNode orvosky_BasicSkyLocator -n \"skyShape\" -p \"sky\";\n"
                               "createNode transform -n \"drawer\";\n"
                               "createNode orvosky_SkyRenderer -n \"drawerShape\" -p \"drawer\";\n";
        words.push_back(file.string());
    }
    for (auto _ : state)
        if (!runProgram(words)) state.SkipWithError("the batch failed");
}

void BatchPlain(benchmark::State& state) { batch(state, "1"); }
BENCHMARK(BatchPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void Batch(benchmark::State& state) { batch(state, "2"); }
BENCHMARK(Batch)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
