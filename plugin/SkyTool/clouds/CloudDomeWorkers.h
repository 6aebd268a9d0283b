#pragma once

#include "CloudDomePlacement.h"
#include "CloudShadingParams.h"
#include "CloudVertexData.h"

#include <functional>
#include <span>
#include <thread>
#include <vector>

/// Makes the clouds of a dome, each in a thread of its own. Plain data: no thread knows the host or another's record,
/// and the same input gives the same clouds with any number of processors.
namespace orvo {

constexpr std::size_t maxDomeThreads = 64; ///< at a time

/// Starts a thread that runs the work. Throws (std::system_error, from the standard library) when it cannot.
using ThreadStarter = std::function<std::jthread(std::function<void()> work)>;
std::jthread startThread(std::function<void()> work);

/// Told now and then, in the calling thread, how many of so many clouds are done. False gives the rest up.
using DomeProgress = std::function<bool(std::size_t done, std::size_t all)>;

struct DomeGeneration {
    std::vector<DomeCloud> clouds; ///< in the order of their placement; a cloud that failed or has no sprites lacks
    std::size_t started = 0;       ///< clouds that were begun
    std::size_t failed = 0;        ///< of these, the clouds for which there was no memory
    bool givenUp = false;          ///< whether it was ended early: clouds lack then
};

/// Generates the placed clouds, not scaled yet, in batches of at most maxDomeThreads threads: the next batch begins
/// when the last one has ended. When a thread cannot be started the batch ends early and the cloud is tried again; when
/// not even the first of a batch can be started, the calling thread does the work. It also does a cloud over for which
/// the memory beside the others of its batch did not suffice.
DomeGeneration generateDomeClouds(std::span<const CloudTemplate> templates, std::span<const DomeCloudPlacement> placed,
                                  const CloudShadingParams& shading, const ThreadStarter& start = startThread,
                                  const DomeProgress& progress = {});

/// A dome full of clouds.
struct DomeBuild {
    std::vector<DomeCloud> clouds; ///< scaled
    std::size_t started = 0;       ///< clouds that were begun
    std::size_t failed = 0;        ///< of these, the clouds for which there was no memory
    bool givenUp = false;          ///< whether it was ended early: clouds lack then
    bool limitReached = false;     ///< whether maxDomeClouds ended the placement
    std::size_t dataSize = 0;      ///< bytes of the clouds' exported vertex data
};

/// Places, generates and scales the clouds of a dome.
DomeBuild buildDome(std::span<const CloudTemplate> templates, const DomeLayout& layout,
                    const CloudShadingParams& shading, const ThreadStarter& start = startThread,
                    const DomeProgress& progress = {});

/// A dome cloud as the export takes it. The dome cloud must outlive the answer.
GeneratedCloud exportedDomeCloud(const DomeCloud& cloud);

} // namespace orvo
