// Whether work stays in proportion to the scene: the program exporting scenes of 100, 1,000 and 10,000 particle clouds,
// and drawing one of 100 and 1,000. Beside the time of each stands that of a cloud, and beside that the plain version:
// the process's own start, which is in all of them.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A folder of the run's own, removed at its end.
const fs::path& workFolder() {
    static const struct Folder {
        fs::path path = fs::temp_directory_path() / ("orvosky-scale-" + std::to_string(getpid()));
        Folder() { fs::create_directories(path); }
        ~Folder() { fs::remove_all(path); }
    } folder;
    return folder.path;
}

/// A scene of clouds of two shapes, each in a group of its own; all names differ.
std::string sceneOf(long clouds) {
    const fs::path scene = workFolder() / (std::to_string(clouds) + ".mel");
    if (fs::exists(scene)) return scene.string();
    std::ofstream(scene) << "createNode transform -n OrvoSkyData; createNode orvosky_SkySceneSettings -p OrvoSkyData;"
                            "string $shading = `createNode orvosky_ParticleCloudShadingParams -p OrvoSkyData`;"
                            "setAttr -type \"string\" ($shading + \".shadingTexture\") \"build/none.dds\"; createNode "
                            "orvosky_SkyRenderer;"
                            "for ($i = 0; $i < "
                         << clouds
                         << "; ++$i) { string $group = `createNode transform -n (\"group\" + $i) -p OrvoSkyData`;"
                            "  string $lift = `createNode transform -n (\"lift\" + $i) -p $group`;"
                            "  createNode orvosky_ParticleCloud -p $lift;"
                            "  for ($k = 0; $k < 2; ++$k) { string $ball = `createNode transform -n (\"ball\" + $i + "
                            "\"_\" + $k) -p $group`;"
                            "    setAttr ($ball + \".t\") ($i * 100) 50000 (-100000 - $k * 500); setAttr ($ball + "
                            "\".s\") 10000 9000 8000;"
                            "    createNode orvosky_ParticleCloudSphere -p $ball; } }";
    return scene.string();
}

/// Runs the program. @return its largest memory in megabytes; below 0 when it failed
double runProgram(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ORVOSKY_PROGRAM);
    std::vector<char*> argv;
    for (auto& a : arguments) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    rusage usage{};
    if (posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0) wait4(child, &status, 0, &usage);
    posix_spawn_file_actions_destroy(&actions);
    return status == 0 ? static_cast<double>(usage.ru_maxrss) / 1024.0 : -1.0;
}

void measure(benchmark::State& state, const std::vector<std::string>& arguments, long clouds) {
    double memory = 0.0;
    for (auto _ : state) memory = runProgram(arguments);
    if (memory < 0.0) return state.SkipWithError("the program failed");
    state.counters["MB"] = memory;
    if (clouds > 0)
        state.counters["s/cloud"] = benchmark::Counter(
            static_cast<double>(clouds), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void ProcessPlain(benchmark::State& state) { measure(state, {"--version"}, 0); }
BENCHMARK(ProcessPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void ExportClouds(benchmark::State& state) {
    measure(state, {"export", sceneOf(state.range(0)), (workFolder() / "sky.atmos").string()}, state.range(0));
}
BENCHMARK(ExportClouds)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

void DrawClouds(benchmark::State& state) {
    measure(state, {"render", sceneOf(state.range(0)), (workFolder() / "sky.png").string(), "--size", "320x180"},
            state.range(0));
}
BENCHMARK(DrawClouds)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
