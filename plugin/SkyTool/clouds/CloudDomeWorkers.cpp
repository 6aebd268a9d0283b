#include "CloudDomeWorkers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <semaphore>

namespace orvo {
namespace {

/// All that one thread reads and writes, but for the shading parameters, which nobody writes meanwhile.
struct Job {
    CloudSettings settings;
    CloudShapeSet shapes;
    const CloudShadingParams& shading;
    std::unique_ptr<ParticleCloudGeom> geom{}; ///< null when the generation failed

    void run() noexcept {
        try {
            geom = GenerateSprites(shapes, settings.spriteDensity, settings.spriteSize * 100.0,
                                   shading.enableSelfShadow, shading.sunDir, settings.enableGroundFade,
                                   settings.groundFadeStart * 100.0, settings.groundFadeEnd * 100.0);
        } catch (...) { // out of memory
            geom.reset();
        }
    }
};

/// The job of a placed cloud; null without the memory for it.
std::unique_ptr<Job> tryMakeJob(const CloudTemplate& source, const DomeCloudPlacement& cloud,
                                const CloudShadingParams& shading) {
    try {
        return std::unique_ptr<Job>(
            new Job{source.settings, placedShapes(source.shapes, cloud.position, cloud.angle), shading});
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

constexpr std::chrono::milliseconds tellEvery{40};

/// What the threads of a batch and the one that waits for them share.
struct Batch {
    std::counting_semaphore<> ended{0};
    std::atomic<bool> givenUp{false};
};

bool tryStart(const ThreadStarter& start, Job& job, Batch& batch, std::vector<std::jthread>& threads) {
    try {
        threads.push_back(start([&job, &batch] {
            if (!batch.givenUp) job.run();
            batch.ended.release();
        }));
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

std::jthread startThread(std::function<void()> work) { return std::jthread(std::move(work)); }

DomeGeneration generateDomeClouds(std::span<const CloudTemplate> templates, std::span<const DomeCloudPlacement> placed,
                                  const CloudShadingParams& shading, const ThreadStarter& start,
                                  const DomeProgress& progress) {
    DomeGeneration result;
    Batch batch;
    std::size_t done = 0;
    std::vector<std::unique_ptr<Job>> jobs;
    std::vector<std::jthread> threads; // after the jobs: on every way out it waits for the threads that use them
    threads.reserve(maxDomeThreads);
    auto told = std::chrono::steady_clock::now();
    const auto tell = [&] {
        told = std::chrono::steady_clock::now();
        if (progress && !batch.givenUp && !progress(done, placed.size())) batch.givenUp = true;
    };
    const auto finishBatch = [&] {
        for (std::size_t i = 0; progress && i < threads.size(); ++i) {
            while (!batch.ended.try_acquire_for(tellEvery)) tell();
            ++done;
            if (std::chrono::steady_clock::now() - told >= tellEvery) tell(); // clouds may come faster than that
        }
        tell();
        threads.clear();
        for (const auto& job : jobs) {
            if (!job->geom && !batch.givenUp) job->run();
            if (!job->geom)
                result.failed += batch.givenUp ? 0 : 1;
            else if (job->geom->numSprites > 0)
                result.clouds.push_back(
                    {job->settings, std::move(job->geom), job->shapes.boundCentre, job->shapes.boundRadius});
        }
        jobs.clear();
    };

    jobs.reserve(maxDomeThreads);
    result.clouds.reserve(placed.size());
    for (const DomeCloudPlacement& cloud : placed) {
        if (batch.givenUp) break;
        const CloudTemplate& source = templates[static_cast<std::size_t>(cloud.templateIndex)];
        ++result.started;
        auto job = tryMakeJob(source, cloud, shading);
        bool started = job && tryStart(start, *job, batch, threads);
        if (!started && !threads.empty()) {
            finishBatch();
            if (!job) job = tryMakeJob(source, cloud, shading);
            started = job && tryStart(start, *job, batch, threads);
        }
        if (!job) {
            ++result.failed;
            continue;
        }
        jobs.push_back(std::move(job));
        // A job whose thread did not start is done when its batch is finished.
        if (!started || threads.size() == maxDomeThreads) finishBatch();
    }
    finishBatch();
    result.givenUp = batch.givenUp;
    return result;
}

DomeBuild buildDome(std::span<const CloudTemplate> templates, const DomeLayout& layout,
                    const CloudShadingParams& shading, const ThreadStarter& start, const DomeProgress& progress) {
    std::vector<double> radii(templates.size());
    std::transform(templates.begin(), templates.end(), radii.begin(),
                   [](const CloudTemplate& source) { return source.shapes.boundRadius; });
    const DomePlacement placement = placeDomeClouds(radii, layout);
    DomeGeneration generation = generateDomeClouds(templates, placement.clouds, shading, start, progress);

    std::size_t dataSize = 0;
    for (const DomeCloud& cloud : generation.clouds)
        dataSize = paddedCloudVertexSize(dataSize) + cloudVertexDataSize(*cloud.geom, cloud.geom->boundRadius);
    for (DomeCloud& cloud : generation.clouds) scaleDomeCloud(cloud, layout.scale);
    return {.clouds = std::move(generation.clouds),
            .started = generation.started,
            .failed = generation.failed,
            .givenUp = generation.givenUp,
            .limitReached = placement.limitReached,
            .dataSize = dataSize};
}

GeneratedCloud exportedDomeCloud(const DomeCloud& cloud) {
    return {cloud.settings, *cloud.geom, cloud.basePosition, cloud.radius, true};
}

} // namespace orvo
