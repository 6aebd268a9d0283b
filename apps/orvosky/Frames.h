#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvosky {

/// The frames FIRST, FIRST + STEP, ... up to LAST.
struct FrameRange {
    int first = 0, last = 0, step = 1;

    std::size_t count() const { return static_cast<std::size_t>((std::int64_t{last} - first) / step) + 1; }
};

/// The most frames of one sequence.
constexpr std::size_t kMostFrames = 100000;

/// Reads "A-B", "A-BxN", or "A" for one frame: whole numbers, which may be below 0. Throws Failure for what is none,
/// runs backward, or has more than kMostFrames frames.
FrameRange readFrames(const std::string& text);

/// The file of a frame: the last run of # in the file's name becomes the number, with zeros in front where it has fewer
/// digits than the run has signs. Throws Failure for a name without #.
std::string frameFile(const std::string& pattern, int frame);

/// When a scene is drawn or exported.
struct TimeOptions {
    std::optional<double> time; ///< in the scene's time unit; nothing: the scene's own
    std::optional<FrameRange> frames;
    bool resume = false; ///< leave out frames whose files are there and whole
};

/// One of the files to be written.
struct Shot {
    std::optional<double> time; ///< in the scene's time unit; nothing: the scene's own
    std::string file;
};

/// What is to be written, in order. Throws Failure as frameFile() does.
std::vector<Shot> shotsOf(const TimeOptions& options, const std::string& target);

/// Sets the scene's time, where the shot has one.
void setTimeOf(const Shot& shot);

} // namespace orvosky
