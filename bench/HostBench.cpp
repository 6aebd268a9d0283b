// How fast the host is, each beside a plain version of the same work in the same run:
//   the program, started and ended, exporting the example scene; plain: the same process doing nothing
//   opening a large scene; plain: reading the file line by line
//   opening a large mesh; plain: reading the file and std::from_chars over all of its numbers
//   opening nodes that share one name; plain: the same nodes with names of their own
//   evaluating an animation curve; plain: a binary search in a vector and one cubic
//   setAttr and getAttr, from MEL and through the scene room; plain: a hash map of names to numbers
#include "base/Messages.h"
#include "commands/Host.h"
#include "files/SceneReader.h"
#include "files/SceneWriter.h"
#include "mesh/Primitives.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"
#include "scene/Scene.h"

#include "Program.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

namespace fs = std::filesystem;
using bench::runProgram;
using bench::workFolder;

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

/// One mesh of a grid of `side` x `side` faces, as it is saved.
fs::path largeMesh(int side) {
    const fs::path file = workFolder() / ("mesh" + std::to_string(side) + ".ma");
    if (fs::exists(file)) return file;
    const auto grid = host::mesh::polyPlane(
        {.width = 1000.0 / 3, .height = 1000.0 / 7, .subdivisionsX = side, .subdivisionsY = side});
    auto& scene = host::Host::instance().scene();
    scene.reset();
    const auto shape = scene.createNode(*scene.findType("mesh"), "gridShape");
    host::scene::setMesh(scene, *shape, grid);
    std::ofstream(file) << host::files::SceneWriter(scene).text("mesh.ma");
    scene.reset();
    return file;
}

void OpenMeshPlain(benchmark::State& state) {
    const fs::path file = largeMesh(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::string text(fs::file_size(file), ' ');
        std::FILE* in = std::fopen(file.c_str(), "rb");
        if (!in || std::fread(text.data(), 1, text.size(), in) != text.size()) state.SkipWithError("cannot be read");
        if (in) std::fclose(in);
        double sum = 0, value = 0;
        for (const char *at = text.data(), *end = at + text.size(); at < end;) {
            const auto [behind, error] = std::from_chars(at, end, value);
            if (error == std::errc()) sum += value;
            at = behind == at ? at + 1 : behind;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(file)));
}
BENCHMARK(OpenMeshPlain)->Arg(400)->Unit(benchmark::kMillisecond);

void OpenMesh(benchmark::State& state) {
    const fs::path file = largeMesh(static_cast<int>(state.range(0)));
    auto& scene = host::Host::instance().scene();
    for (auto _ : state) host::files::SceneReader(scene, {}).read(file);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(file)));
    scene.reset();
}
BENCHMARK(OpenMesh)->Arg(400)->Unit(benchmark::kMillisecond);

/// Opens groups with a child each, which all have one name, or names of their own.
void openChildren(benchmark::State& state, bool oneName) {
    std::string text;
    for (int i = 0; i < state.range(0); ++i) {
        const std::string n = std::to_string(i), child = oneName ? "ball" : "ball" + n;
        text += "createNode transform -n \"group" + n + "\";\ncreateNode transform -n \"" + child + "\" -p \"group" +
                n + "\";\n\tsetAttr \".tx\" 1;\n";
        text += "connectAttr \"group" + n + ".ty\" \"" + (oneName ? "group" + n + "|ball" : child) + ".ty\";\n";
    }
    auto& scene = host::Host::instance().scene();
    for (auto _ : state) {
        host::files::SceneReader(scene, {}).readText(text, "children");
        benchmark::DoNotOptimize(host::files::SceneWriter(scene).text("children"));
    }
    state.SetComplexityN(state.range(0));
    scene.reset();
}
void OpenAndSaveOwnNames(benchmark::State& state) { openChildren(state, false); }
void OpenAndSaveOneName(benchmark::State& state) { openChildren(state, true); }
BENCHMARK(OpenAndSaveOwnNames)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenAndSaveOneName)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

double keyValue(int k) { return k * 37 % 101 * 0.125; }

void EvaluateCurvePlain(benchmark::State& state) {
    std::vector<std::pair<double, double>> keys;
    for (int k = 0; k < state.range(0); ++k) keys.emplace_back(250.0 * k, keyValue(k));
    double t = 0;
    for (auto _ : state) {
        t = std::fmod(t + 100003, 250.0 * static_cast<double>(keys.size() - 1));
        const auto b = std::upper_bound(keys.begin(), keys.end(), std::pair(t, 1e300)), a = b - 1;
        const double u = (t - a->first) / (b->first - a->first);
        benchmark::DoNotOptimize(a->second + (b->second - a->second) * u * u * (3 - 2 * u));
    }
}
BENCHMARK(EvaluateCurvePlain)->Arg(100)->Arg(10000);

void EvaluateCurve(benchmark::State& state) {
    auto& scene = host::Host::instance().scene();
    std::string keys;
    for (int k = 0; k < state.range(0); ++k) keys += " " + std::to_string(k) + " " + std::to_string(keyValue(k));
    host::files::SceneReader(scene, {}).readText(
        "createNode transform -n \"a\"; createNode animCurveTL -n \"c\"; setAttr \".tan\" 3; setAttr \".ktv[0:" +
            std::to_string(state.range(0) - 1) + "]\"" + keys + "; connectAttr \"c.o\" \"a.tx\";",
        "curve");
    auto& plug = scene.findPlug("a.tx");
    double t = 0;
    for (auto _ : state) {
        t = std::fmod(t + 100003, 250.0 * static_cast<double>(state.range(0) - 1));
        scene.setTime(t);
        host::scene::evaluate(plug);
        benchmark::DoNotOptimize(plug.number());
    }
    scene.reset();
}
BENCHMARK(EvaluateCurve)->Arg(100)->Arg(10000);

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
