#include "Frames.h"

#include "Failure.h"

#include "base/NumberText.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <cstdint>

namespace orvosky {
namespace {

bool takeSign(std::string_view& text, char sign) {
    if (text.empty() || text.front() != sign) return false;
    text.remove_prefix(1);
    return true;
}

/// Nothing for a text that does not read as frames at all.
std::optional<FrameRange> tryReadFrames(std::string_view text) {
    FrameRange range;
    const auto first = host::takeInt(text);
    if (!first) return std::nullopt;
    range.first = range.last = *first;
    if (takeSign(text, '-')) {
        const auto last = host::takeInt(text);
        if (!last) return std::nullopt;
        range.last = *last;
        if (takeSign(text, 'x')) {
            const auto step = host::takeInt(text);
            if (!step) return std::nullopt;
            range.step = *step;
        }
    }
    return text.empty() ? std::optional(range) : std::nullopt;
}

} // namespace

FrameRange readFrames(const std::string& text) {
    const auto range = tryReadFrames(text);
    if (!range)
        throw Failure("'" + text + "' are no frames; give A-B, or A-BxN for every Nth, for example 1-24 or 0-100x10");
    if (range->last < range->first) throw Failure("'" + text + "' runs backward; give the first frame first");
    if (range->step < 1) throw Failure("'" + text + "' has no step forward; every Nth frame wants an N of 1 or more");
    const auto span = std::int64_t{range->last} - range->first;
    if (span / range->step >= static_cast<std::int64_t>(kMostFrames))
        throw Failure("'" + text + "' are more than " + std::to_string(kMostFrames) + " frames");
    return *range;
}

std::string frameFile(const std::string& pattern, int frame) {
    const std::size_t end = pattern.find_last_of('#');
    const std::size_t folder = pattern.find_last_of('/');
    if (end == std::string::npos || (folder != std::string::npos && end < folder))
        throw Failure("The name " + pattern +
                      " has no place for the number of a frame: give it as #, one for each digit, for example "
                      "sky.####.png");
    const std::size_t before = pattern.find_last_not_of('#', end), begin = before == std::string::npos ? 0 : before + 1;
    const std::string digits = std::to_string(std::abs(std::int64_t{frame}));
    const std::size_t width = end + 1 - begin;
    const std::string zeros(width > digits.size() ? width - digits.size() : 0, '0');
    return pattern.substr(0, begin) + (frame < 0 ? "-" : "") + zeros + digits + pattern.substr(end + 1);
}

std::vector<Shot> shotsOf(const TimeOptions& options, const std::string& target) {
    if (!options.frames) return {{options.time, target}};
    std::vector<Shot> shots;
    std::int64_t frame = options.frames->first;
    for (std::size_t i = 0; i < options.frames->count(); ++i, frame += options.frames->step)
        shots.push_back({static_cast<double>(frame), frameFile(target, static_cast<int>(frame))});
    return shots;
}

void setTimeOf(const Shot& shot) {
    if (shot.time) host::Host::instance().scene().setTime(*shot.time * host::timeUnit().ticks);
}

} // namespace orvosky
