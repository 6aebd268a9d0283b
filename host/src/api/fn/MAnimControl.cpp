#include <maya/MAnimControl.h>

#include "scene/Scene.h"
#include "values/StatusOut.h"
#include "values/TimeTicks.h"

#include <algorithm>
#include <cmath>

using namespace host;
using scene::PlaybackRange;
using scene::Scene;

namespace {

/// What only a user who plays would notice; scripts may ask for it all the same.
struct Settings {
    MAnimControl::PlaybackMode mode = MAnimControl::kPlaybackLoop;
    MAnimControl::PlaybackViewMode view = MAnimControl::kPlaybackViewActive;
    double by = 1, speed = 0;
    bool autoKey = false, weighted = false;
    MFnAnimCurve::TangentType in = MFnAnimCurve::kTangentClamped, out = MFnAnimCurve::kTangentClamped;
} settings;

/// Sets bounds of the ranges; each of the two ranges keeps its order, and the animation's takes the playback's in.
MStatus setRange(std::initializer_list<std::pair<double PlaybackRange::*, MTime>> bounds) {
    PlaybackRange range = Scene::current().playback();
    bool playback = false;
    for (const auto& [member, time] : bounds) {
        if (!std::isfinite(ticksOf(time))) return MStatus::kInvalidParameter;
        range.*member = ticksOf(time);
        playback |= member == &PlaybackRange::min || member == &PlaybackRange::max;
    }
    if (range.min > range.max || range.animationStart > range.animationEnd) return MStatus::kInvalidParameter;
    if (playback) {
        range.animationStart = std::min(range.animationStart, range.min);
        range.animationEnd = std::max(range.animationEnd, range.max);
    } else {
        range.min = std::clamp(range.min, range.animationStart, range.animationEnd);
        range.max = std::clamp(range.max, range.animationStart, range.animationEnd);
    }
    Scene::current().setPlayback(range);
    return MStatus::kSuccess;
}

MStatus setTangent(MFnAnimCurve::TangentType& which, MFnAnimCurve::TangentType type) {
    if (type <= MFnAnimCurve::kTangentFixed || type > MFnAnimCurve::kTangentAuto ||
        type == MFnAnimCurve::kTangentSlow || type == MFnAnimCurve::kTangentFast)
        return MStatus::kInvalidParameter;
    which = type;
    return MStatus::kSuccess;
}

} // namespace

MAnimControl::MAnimControl() = default;
MAnimControl::~MAnimControl() = default;
MAnimControl::PlaybackMode MAnimControl::playbackMode() { return settings.mode; }

MStatus MAnimControl::setPlaybackMode(PlaybackMode newMode) {
    settings.mode = newMode;
    return MStatus::kSuccess;
}

MAnimControl::PlaybackViewMode MAnimControl::viewMode() { return settings.view; }

MStatus MAnimControl::setViewMode(PlaybackViewMode newMode) {
    settings.view = newMode;
    return MStatus::kSuccess;
}

double MAnimControl::playbackBy() { return settings.by; }

MStatus MAnimControl::setPlaybackBy(const double& newTime) {
    if (!(newTime > 0)) return MStatus::kInvalidParameter;
    settings.by = newTime;
    return MStatus::kSuccess;
}

MTime MAnimControl::minTime() { return timeOf(Scene::current().playback().min); }
MTime MAnimControl::maxTime() { return timeOf(Scene::current().playback().max); }
MTime MAnimControl::animationStartTime() { return timeOf(Scene::current().playback().animationStart); }
MTime MAnimControl::animationEndTime() { return timeOf(Scene::current().playback().animationEnd); }
MStatus MAnimControl::setMinTime(MTime t) { return setRange({{&PlaybackRange::min, t}}); }
MStatus MAnimControl::setMaxTime(MTime t) { return setRange({{&PlaybackRange::max, t}}); }
MStatus MAnimControl::setMinMaxTime(MTime min, MTime max) {
    return setRange({{&PlaybackRange::min, min}, {&PlaybackRange::max, max}});
}
MStatus MAnimControl::setAnimationStartTime(MTime t) { return setRange({{&PlaybackRange::animationStart, t}}); }
MStatus MAnimControl::setAnimationEndTime(MTime t) { return setRange({{&PlaybackRange::animationEnd, t}}); }
MStatus MAnimControl::setAnimationStartEndTime(MTime start, MTime end) {
    return setRange({{&PlaybackRange::animationStart, start}, {&PlaybackRange::animationEnd, end}});
}

MTime MAnimControl::currentTime() { return timeOf(Scene::current().time()); }

MStatus MAnimControl::setCurrentTime(const MTime& newTime) {
    if (!std::isfinite(ticksOf(newTime))) return MStatus::kInvalidParameter;
    Scene::current().setTime(ticksOf(newTime));
    return MStatus::kSuccess;
}

double MAnimControl::playbackSpeed() { return settings.speed; }

MStatus MAnimControl::setPlaybackSpeed(double newSpeed) {
    if (!(newSpeed >= 0)) return MStatus::kInvalidParameter;
    settings.speed = newSpeed;
    return MStatus::kSuccess;
}

MStatus MAnimControl::playForward() { return MStatus::kFailure; }
MStatus MAnimControl::playBackward() { return MStatus::kFailure; }
bool MAnimControl::isPlaying() { return false; }
bool MAnimControl::isScrubbing() { return false; }
MStatus MAnimControl::stop() { return MStatus::kSuccess; }
bool MAnimControl::autoKeyMode() { return settings.autoKey; }

MStatus MAnimControl::setAutoKeyMode(bool mode) {
    settings.autoKey = mode;
    return MStatus::kSuccess;
}

MFnAnimCurve::TangentType MAnimControl::globalInTangentType(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return settings.in;
}

MStatus MAnimControl::setGlobalInTangentType(const MFnAnimCurve::TangentType& type) {
    return setTangent(settings.in, type);
}

MFnAnimCurve::TangentType MAnimControl::globalOutTangentType(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return settings.out;
}

MStatus MAnimControl::setGlobalOutTangentType(const MFnAnimCurve::TangentType& type) {
    return setTangent(settings.out, type);
}

bool MAnimControl::weightedTangents(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return settings.weighted;
}

MStatus MAnimControl::setWeightedTangents(bool weightState) {
    settings.weighted = weightState;
    return MStatus::kSuccess;
}
