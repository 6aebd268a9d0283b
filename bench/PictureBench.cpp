// How fast the program makes pictures, each beside a plain version of the same work in the same run:
//   24 frames of the dusk scene, whose clouds drift with a keyed wind; plain: 24 runs of the program
#include "Program.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <fstream>

namespace {

using bench::runProgram;
using bench::workFolder;

constexpr int kFrames = 24;

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
            ORVO_PROJECT,
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

} // namespace

BENCHMARK_MAIN();
