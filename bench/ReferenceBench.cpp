// Opening a scene of 1,000 references to one small file. Beside it the plain version: a scene that holds as many copies
// of what that file has.
#include "files/SceneReader.h"
#include "scene/Scene.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

/// What a prop of a level has: a few transforms, values and connections. `space` stands before its names.
std::string prop(const std::string& space) {
    std::string text;
    for (int i = 0; i < 10; ++i) {
        const std::string name = space + "part" + std::to_string(i);
        text += "createNode transform -n \"" + name + "\"";
        if (i > 0) text += " -p \"" + space + "part0\"";
        text += ";\n\tsetAttr \".t\" -type \"double3\" 1 2 " + std::to_string(i) +
                " ;\n\tsetAttr \".s\" -type \"double3\" 2 2 2 ;\n";
    }
    for (int i = 1; i < 10; ++i)
        text += "connectAttr \"" + space + "part0.r\" \"" + space + "part" + std::to_string(i) + ".r\";\n";
    return text;
}

/// The scenes, in a folder of the run's own that is removed at its end.
const fs::path& scenes() {
    static const struct Folder {
        fs::path path = fs::temp_directory_path() / ("orvosky-references-" + std::to_string(getpid()));
        Folder() {
            fs::create_directories(path);
            const std::string head = "//Maya ASCII 2011 scene\nrequires maya \"2011\";\n";
            std::ofstream(path / "prop.ma") << head << prop({});
            for (const long count : {10L, 100L, 1000L}) {
                std::ofstream references(path / ("references" + std::to_string(count) + ".ma")),
                    copies(path / ("copies" + std::to_string(count) + ".ma"));
                references << head;
                copies << head;
                for (long i = 0; i < count; ++i) {
                    const std::string name = "p" + std::to_string(i);
                    references << "file -r -ns \"" << name << "\" -dr 1 -rfn \"" << name << "RN\" \"prop.ma\";\n";
                    copies << prop(name + ":");
                }
                for (long i = 0; i < count; ++i) references << "createNode reference -n \"p" << i << "RN\";\n";
            }
        }
        ~Folder() { fs::remove_all(path); }
    } folder;
    return folder.path;
}

void open(benchmark::State& state, const char* kind) {
    const fs::path file = scenes() / (kind + std::to_string(state.range(0)) + ".ma");
    auto& scene = host::scene::Scene::current();
    for (auto _ : state) {
        const auto result = host::files::SceneReader(scene, {}).read(file);
        if (result.created.size() < static_cast<std::size_t>(10 * state.range(0)))
            state.SkipWithError("nodes are missing");
    }
    scene.reset();
}

void CopiesPlain(benchmark::State& state) { open(state, "copies"); }
BENCHMARK(CopiesPlain)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void References(benchmark::State& state) { open(state, "references"); }
BENCHMARK(References)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
