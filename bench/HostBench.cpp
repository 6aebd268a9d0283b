// How fast the host is, each beside a plain version of the same work in the same run:
//   the program, started and ended, exporting the example scene; plain: the same process doing nothing
//   opening a large scene; plain: reading the file line by line
//   setAttr and getAttr, from MEL and through the scene room; plain: a hash map of names to numbers
#include "Host.h"
#include "files/SceneReader.h"
#include "scene/Messages.h"
#include "scene/Scene.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A folder of the run's own, removed at its end.
const fs::path& workFolder() {
    static const struct Folder {
        fs::path path = fs::temp_directory_path() / ("orvosky-bench-" + std::to_string(getpid()));
        Folder() { fs::create_directories(path); }
        ~Folder() { fs::remove_all(path); }
    } folder;
    return folder.path;
}

bool runProgram(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ORVOSKY_PROGRAM);
    std::vector<char*> argv;
    for (auto& a : arguments) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    const bool started = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    if (started) waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    return started && status == 0;
}

void ProcessPlain(benchmark::State& state) {
    for (auto _ : state)
        if (!runProgram({"--version"})) state.SkipWithError("the program failed");
}
BENCHMARK(ProcessPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void ProcessExport(benchmark::State& state) {
    const std::string target = (workFolder() / "sky.atmos").string();
    for (auto _ : state)
        if (!runProgram({"--project", ORVO_PROJECT, "export", ORVO_PROJECT "/scenes/evening.ma", target}))
            state.SkipWithError("the export failed");
}
BENCHMARK(ProcessExport)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A scene of transforms, meshes and connections, of about `megabytes` in size.
fs::path largeScene(int megabytes) {
    const fs::path file = workFolder() / ("large" + std::to_string(megabytes) + ".ma");
    if (fs::exists(file)) return file;
    std::ofstream out(file);
    out << "//Maya ASCII 2010 scene\nrequires maya \"2010\";\ncurrentUnit -l centimeter -a degree -t film;\n";
    std::string links;
    for (int i = 0; out.tellp() < static_cast<std::streamoff>(megabytes) * 1000000; ++i) {
        const std::string n = std::to_string(i);
        out << "createNode transform -n \"prop" << n << "\";\n\tsetAttr \".t\" -type \"double3\" " << i * 0.25
            << " 3.5 -1.75 ;\n\tsetAttr \".r\" -type \"double3\" 0 " << i % 360 << " 0 ;\ncreateNode mesh -n \"prop"
            << n << "Shape\" -p \"prop" << n << "\";\n\tsetAttr -k off \".v\";\n\tsetAttr -s 400 \".vt[0:399]\"";
        for (int k = 0; k < 400; ++k)
            out << (k % 8 == 0 ? "\n\t\t" : " ") << k % 20 * 0.5 << ' ' << (k * 37 % 101) * 0.01 << ' ' << k / 20 * 0.5;
        out << ";\n";
        if (i > 0) links += "connectAttr \"prop" + std::to_string(i - 1) + ".tx\" \"prop" + n + ".ty\";\n";
    }
    out << links;
    return file;
}

void OpenScenePlain(benchmark::State& state) {
    const fs::path file = largeScene(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::ifstream in(file);
        std::size_t bytes = 0;
        for (std::string line; std::getline(in, line);) bytes += line.size();
        benchmark::DoNotOptimize(bytes);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(file)));
}
BENCHMARK(OpenScenePlain)->Arg(30)->Unit(benchmark::kMillisecond);

void OpenScene(benchmark::State& state) {
    const fs::path file = largeScene(static_cast<int>(state.range(0)));
    auto& scene = host::Host::instance().scene();
    for (auto _ : state) host::files::SceneReader(scene, {}).read(file);
    state.counters["nodes"] = static_cast<double>(scene.nodes().size());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(file)));
    scene.reset();
}
BENCHMARK(OpenScene)->Arg(30)->Unit(benchmark::kMillisecond);

void SetGetPlain(benchmark::State& state) {
    std::unordered_map<std::string, double> values{{"prop.translateX", 0}};
    double v = 0;
    for (auto _ : state) {
        values["prop.translateX"] = v;
        v = values["prop.translateX"] + 1;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(SetGetPlain);

void SetGetInTheSceneRoom(benchmark::State& state) {
    auto& scene = host::Host::instance().scene();
    scene.reset();
    scene.createNode(*scene.findType("transform"), "prop");
    double v = 0;
    for (auto _ : state) {
        scene.setNumber(scene.findPlug("prop.translateX"), v);
        v = scene.findPlug("prop.translateX").number() + 1;
    }
    state.SetItemsProcessed(state.iterations());
    scene.reset();
}
BENCHMARK(SetGetInTheSceneRoom);

void SetGetInMel(benchmark::State& state) {
    auto& host = host::Host::instance();
    host.scene().reset();
    host.interpreter().execute("createNode transform -n prop;"
                               "global proc pairs(int $n) { int $i; for ($i = 0; $i < $n; ++$i) {"
                               "setAttr prop.translateX $i; getAttr prop.translateX; } }");
    constexpr int pairs = 10000;
    for (auto _ : state) host.interpreter().execute("pairs " + std::to_string(pairs) + ";");
    state.SetItemsProcessed(state.iterations() * pairs);
    host.scene().reset();
}
BENCHMARK(SetGetInMel)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    // Creation echoes and warnings of generated scenes are no part of what is measured.
    host::Messages::instance().setSink([](host::Severity, std::string_view) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    host::Host::instance().start({});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
