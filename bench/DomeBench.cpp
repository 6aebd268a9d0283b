// A dome of 250 clouds, each beside a plain version of the same work in the same run:
//   placing and generating it in threads; plain: the loops as documented, one cloud after another
//   placing a thousand templates; plain: the distances to all nine images of each cloud
//   packing its vertex data and writing it to disk; plain: byte after byte, sprite after sprite
// The counters of DomePacked tell how much memory the generated dome takes.
#include "Common/RandomGenerator.h"
#include "PlainClouds.h"
#include "SkyTool/clouds/CloudDomeWorkers.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using namespace orvo;

const DomeLayout layout{.scale = 1, .density = 4, .outerRadius = 400000};

/// Clouds of a size and number of shapes that artists make.
std::vector<CloudTemplate> templates() {
    std::vector<CloudTemplate> list;
    RandomGenerator random(7);
    for (std::uint32_t i = 0; i < 5; ++i) {
        CloudTemplate cloud;
        cloud.settings.spriteDensity = 60000;
        cloud.settings.spriteSize = 120;
        cloud.shapes = {{}, {0, 60000, 0}, 45000, i};
        for (int k = 0; k < 24; ++k) {
            const double s = 1 / (14000 + 8000 * random.RandomDouble53());
            Matrix44 m{{{s, 0, 0, 0}, {0, 1.6 * s, 0, 0}, {0, 0, s, 0}, {0, 0, 0, 1}}};
            m.m[3][0] = -s * (random.RandomDouble53() - 0.5) * 45000;
            m.m[3][1] = -1.6 * s * (60000 + (random.RandomDouble53() - 0.5) * 20000);
            m.m[3][2] = -s * (random.RandomDouble53() - 0.5) * 45000;
            cloud.shapes.spheres.push_back({m, 1, 1});
        }
        list.push_back(std::move(cloud));
    }
    return list;
}

std::vector<double> radiiOf(const std::vector<CloudTemplate>& clouds) {
    std::vector<double> radii;
    for (const CloudTemplate& cloud : clouds) radii.push_back(cloud.shapes.boundRadius);
    return radii;
}

void DomeGenerationPlain(benchmark::State& state) {
    const auto clouds = templates();
    const CloudShadingParams shading;
    for (auto _ : state)
        for (const DomeCloudPlacement& p : placeDomeClouds(radiiOf(clouds), layout).clouds) {
            const CloudTemplate& source = clouds[static_cast<std::size_t>(p.templateIndex)];
            const CloudSettings& s = source.settings;
            benchmark::DoNotOptimize(
                plain::GenerateSprites(placedShapes(source.shapes, p.position, p.angle), s.spriteDensity,
                                       s.spriteSize * 100, shading.enableSelfShadow, shading.sunDir, s.enableGroundFade,
                                       s.groundFadeStart * 100, s.groundFadeEnd * 100));
        }
}
BENCHMARK(DomeGenerationPlain)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

void DomeGenerationInThreads(benchmark::State& state) {
    const auto clouds = templates();
    for (auto _ : state) {
        const auto placed = placeDomeClouds(radiiOf(clouds), layout).clouds;
        if (generateDomeClouds(clouds, placed, {}).clouds.size() != maxDomeClouds)
            state.SkipWithError("not 250 clouds");
    }
    state.counters["processors"] = std::thread::hardware_concurrency();
}
BENCHMARK(DomeGenerationInThreads)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);

/// A thousand templates of which a few only are small enough for the gaps between the others.
std::vector<double> crowdedRadii() {
    std::vector<double> radii(1000, 30000.0);
    for (std::size_t i = 0; i < radii.size(); i += 100) radii[i] = 3000;
    return radii;
}
const DomeLayout crowded{.outerRadius = 400000};

void DomePlacementPlain(benchmark::State& state) {
    const std::vector<double> radii = crowdedRadii();
    const double side = 2 * crowded.outerRadius;
    for (auto _ : state) {
        RandomGenerator random(domeSeed(crowded, radii.size()));
        std::vector<DomeCloudPlacement> placed;
        std::size_t index = 0;
        for (std::size_t failures = 0; failures < radii.size() && placed.size() < maxDomeClouds;) {
            double best = -1;
            Vector3 winner;
            for (int i = 0; i < 50; ++i) {
                const double x = side * random.RandomDouble53(), z = side * random.RandomDouble53();
                double smallest = 1e50;
                for (std::size_t k = 0; k < placed.size() && smallest > 0; ++k)
                    for (int image = 0; image < 9 && smallest > 0; ++image) {
                        const Vector3 p = placed[k].position +
                                          Vector3{(image / 3 - 1) * side, 0, (image % 3 - 1) * side} - Vector3{x, 0, z};
                        smallest = std::min(smallest, length(p) - (radii[index] + placed[k].exclusionRadius));
                    }
                if (smallest <= 0 || smallest <= best) continue;
                best = smallest;
                winner = {x, 0, z};
            }
            failures = best > 0 ? 0 : failures + 1;
            if (best > 0) placed.push_back({static_cast<std::int32_t>(index), winner, radii[index]});
            index = (index + 1) % radii.size();
        }
        state.counters["clouds"] = static_cast<double>(placed.size());
    }
}
BENCHMARK(DomePlacementPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void DomePlacement(benchmark::State& state) {
    const std::vector<double> radii = crowdedRadii();
    for (auto _ : state) state.counters["clouds"] = static_cast<double>(placeDomeClouds(radii, crowded).clouds.size());
}
BENCHMARK(DomePlacement)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The dome that is written, made once.
const std::vector<DomeCloud>& generated() {
    static const DomeBuild dome = buildDome(templates(), layout, {});
    return dome.clouds;
}

std::string target(const char* name) { return (std::filesystem::temp_directory_path() / name).string(); }

void DomePackedPlain(benchmark::State& state) {
    const CloudShadingParams shading;
    const auto& clouds = generated();
    for (auto _ : state) {
        std::vector<unsigned char> bytes;
        for (const DomeCloud& cloud : clouds) {
            while (bytes.size() % 128) bytes.push_back(0);
            const ParticleCloudGeom& g = *cloud.geom;
            const Vector3 centre = cloud.basePosition + g.boundCentre;
            for (std::size_t i = 0; i < static_cast<std::size_t>(g.numSprites); ++i) {
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    const double from = axis == 0 ? centre.x : axis == 1 ? centre.y : centre.z;
                    const auto c = static_cast<int>((g.positions[i * 12 + axis] - from) / g.boundRadius * 32767);
                    bytes.push_back(static_cast<unsigned char>(c >> 8));
                    bytes.push_back(static_cast<unsigned char>(c));
                }
                bytes.push_back(static_cast<unsigned char>(static_cast<int>(g.randoms[i * 4] * 256)));
                bytes.push_back(static_cast<unsigned char>(std::min(g.opacities[i * 4] * 256.0, 255.0) + 0.5));
                for (const auto* cube : {&g.shadowCube0, &g.shadowCube1})
                    for (std::size_t k = 0; k < 4; ++k)
                        bytes.push_back(static_cast<unsigned char>(
                            static_cast<int>(std::exp(-shading.selfShadowFalloff / 100 * (*cube)[i * 16 + k]) * 256)));
            }
        }
        std::FILE* file = std::fopen(target("dome_plain.cdata").c_str(), "wb");
        if (!file) return state.SkipWithError("cannot write");
        for (const unsigned char byte : bytes) std::fputc(byte, file);
        std::fclose(file);
    }
    std::filesystem::remove(target("dome_plain.cdata"));
}
BENCHMARK(DomePackedPlain)->Unit(benchmark::kMillisecond)->UseRealTime();

void DomePacked(benchmark::State& state) {
    const CloudShadingParams shading;
    const auto& clouds = generated();
    std::size_t size = 0;
    for (auto _ : state) {
        std::vector<unsigned char> bytes;
        for (const DomeCloud& cloud : clouds) {
            padCloudVertexData(bytes);
            if (!appendCloudVertexData(exportedDomeCloud(cloud), shading, bytes)) state.SkipWithError("not packed");
        }
        OutputFile file(target("dome.cdata"), "wb");
        file.write(bytes.data(), bytes.size());
        if (!file.close()) state.SkipWithError("cannot write");
        size = bytes.size();
    }
    std::size_t sprites = 0, memory = 0;
    for (const DomeCloud& cloud : clouds) {
        const ParticleCloudGeom& g = *cloud.geom;
        sprites += static_cast<std::size_t>(g.numSprites);
        memory += sizeof(DomeCloud) + sizeof(ParticleCloudGeom);
        for (const auto* array : {&g.positions, &g.uvCoords, &g.randoms, &g.opacities, &g.shadowCube0, &g.shadowCube1})
            memory += array->capacity() * sizeof(float);
    }
    state.counters["clouds"] = static_cast<double>(clouds.size());
    state.counters["sprites"] = static_cast<double>(sprites);
    state.counters["memoryMB"] = static_cast<double>(memory) / 1e6;
    state.counters["writtenMB"] = static_cast<double>(size) / 1e6;
    std::filesystem::remove(target("dome.cdata"));
}
BENCHMARK(DomePacked)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
