// What drawing a dome of 250 clouds of 4000 sprites takes of our own time, each beside the plain version of the same
// work in the same run: all arrays handed over, all sprites sorted and all state set, cloud by cloud, in every frame.
//   a still eye, as when one only looks around
//   an eye that walks, 1.5 metres a frame, or flies, 30 metres
//   an eye that jumps to another place with every frame, with a pause of 16 ms between frames, in which others sort, or
//   with none; where no other frame may follow, all is sorted at once
// The driver's own drawing is taken out: Mesa's GALLIUM_NOOP, which the program sets itself; it fails where something
// is drawn all the same. CPU is the drawing thread's time, "worst_ms" that of the longest frame; "all threads" counts
// what others do meanwhile.
#include "PlainCloudDraw.h"
#include "RandomClouds.h"

#include "commands/Host.h"
#include "viewport/GlContext.h"
#include "viewport/OffscreenTarget.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <thread>

namespace {

using namespace orvo;

constexpr int domeClouds = 250;

struct Dome {
    CloudShadingParams shading;
    CloudSettings settings;
    std::vector<std::unique_ptr<ParticleCloudGeom>> geoms;
    std::vector<CloudSprites> sprites;
    std::vector<CloudToDraw> clouds;

    Dome() : sprites(domeClouds) {
        settings.spriteSize = 100;
        for (int i = 0; i < domeClouds; ++i) {
            const CloudShapeSet set = randomCloud(20, static_cast<std::uint32_t>(i + 1)).set;
            geoms.push_back(GenerateSprites(set, 100000.0, 10000.0, true, {0.6, 0.64, 0.48}, false, 0, 0));
            if (geoms.back()->numSprites != maxSprites) std::abort();
            const double x = (i % 16 - 7.5) * 100000.0, z = (i / 16 - 7.5) * 100000.0;
            clouds.push_back({.settings = settings,
                              .geom = *geoms.back(),
                              .sprites = sprites[static_cast<std::size_t>(i)],
                              .setCentre = set.boundCentre,
                              .domeOffset = Vector3{x, 70000.0, z} - set.boundCentre,
                              .opacity = 0.75});
        }
    }
};

/// A context in which nothing is drawn, and the dome.
struct Stage {
    std::unique_ptr<host::viewport::GlContext> context;
    std::unique_ptr<host::viewport::OffscreenTarget> target;
    Dome dome;

    static Stage& instance() {
        static Stage stage;
        return stage;
    }

private:
    Stage() {
        setenv("GALLIUM_NOOP", "1", 1);
        std::string error;
        context = host::viewport::GlContext::create(&error);
        if (context) target = host::viewport::OffscreenTarget::create(64, 36, &error);
        if (!target) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::exit(1);
        }
        target->bind();
        glViewport(0, 0, 64, 36);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        if (*target->readPixels().at(0, 0) == 255) {
            std::fprintf(stderr, "This driver draws in spite of GALLIUM_NOOP: its time would be measured, too.\n");
            std::exit(1);
        }
        host::Host::instance().start({.project = {}, .pluginFolders = {}, .scriptFolders = {}});
        host::Host::instance().interpreter().execute(
            "global proc string OrvoGetPath_ToolsRoot() { return \"" ORVO_TOOLS_ROOT "/\"; }");
    }
};

Vector3 still(int) { return {0, 200, 0}; }
Vector3 walking(int frame) { return {frame * 150.0, 200, frame * -20.0}; }
Vector3 flying(int frame) { return walking(frame * 20); }
Vector3 jumping(int frame) { return {frame % 2 * 300000.0 - 150000.0, 200, frame % 3 * 100000.0}; }

void drawPlain(benchmark::State& state, Vector3 (*eye)(int)) {
    Dome& dome = Stage::instance().dome;
    plain::CloudSpriteRenderer renderer;
    if (!renderer.prepare(dome.shading)) return state.SkipWithError("no programs");
    int frame = 0;
    for (auto _ : state) {
        const Vector3 at = eye(++frame);
        for (const CloudToDraw& cloud : dome.clouds) renderer.draw(cloud, dome.shading, at);
        glFinish();
    }
}

/// The drawing thread's processor time so far, in milliseconds.
double threadMs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

void draw(benchmark::State& state, Vector3 (*eye)(int), bool othersFollow = true,
          std::chrono::milliseconds pause = {}) {
    Dome& dome = Stage::instance().dome;
    CloudSpriteRenderer renderer;
    if (!renderer.prepare(dome.shading)) return state.SkipWithError("no programs");
    int frame = 0;
    double worst = 0;
    renderer.draw(dome.clouds, dome.shading, eye(0));
    for (auto _ : state) {
        const double before = threadMs();
        renderer.draw(dome.clouds, dome.shading, eye(++frame), [othersFollow] { return othersFollow; });
        glFinish();
        worst = std::max(worst, threadMs() - before);
        std::this_thread::sleep_for(pause);
    }
    state.counters["worst_ms"] = worst;
}

void StillPlain(benchmark::State& state) { drawPlain(state, still); }
void Still(benchmark::State& state) { draw(state, still); }
void WalkingPlain(benchmark::State& state) { drawPlain(state, walking); }
void Walking(benchmark::State& state) { draw(state, walking); }
void Flying(benchmark::State& state) { draw(state, flying); }
void FlyingAllThreads(benchmark::State& state) { draw(state, flying); }
void JumpingPlain(benchmark::State& state) { drawPlain(state, jumping); }
void Jumping(benchmark::State& state) { draw(state, jumping); }
void JumpingAt60Hz(benchmark::State& state) { draw(state, jumping, true, std::chrono::milliseconds(16)); }
void JumpingExact(benchmark::State& state) { draw(state, jumping, false); }

BENCHMARK(StillPlain)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(Still)->Unit(benchmark::kMillisecond)->Iterations(300);
BENCHMARK(WalkingPlain)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(Walking)->Unit(benchmark::kMillisecond)->Iterations(300);
BENCHMARK(Flying)->Unit(benchmark::kMillisecond)->Iterations(300);
BENCHMARK(FlyingAllThreads)->Unit(benchmark::kMillisecond)->Iterations(300)->MeasureProcessCPUTime();
BENCHMARK(JumpingPlain)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(Jumping)->Unit(benchmark::kMillisecond)->Iterations(300);
BENCHMARK(JumpingAt60Hz)->Unit(benchmark::kMillisecond)->Iterations(300);
BENCHMARK(JumpingExact)->Unit(benchmark::kMillisecond)->Iterations(50);

} // namespace

BENCHMARK_MAIN();
