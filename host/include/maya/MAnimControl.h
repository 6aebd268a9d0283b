#pragma once

#include <maya/MFnAnimCurve.h>
#include <maya/MStatus.h>
#include <maya/MTime.h>

/// The current time and the ranges of the time slider. Nothing plays in a batch session: playing gives kFailure.
class OPENMAYA_EXPORT MAnimControl {
public:
    enum PlaybackMode { kPlaybackOnce, kPlaybackLoop, kPlaybackOscillate };
    enum PlaybackViewMode { kPlaybackViewAll, kPlaybackViewActive };
    MAnimControl();
    virtual ~MAnimControl();
    static MAnimControl::PlaybackMode playbackMode();
    static MStatus setPlaybackMode(PlaybackMode newMode);
    static MAnimControl::PlaybackViewMode viewMode();
    static MStatus setViewMode(PlaybackViewMode newMode);
    static double playbackBy();
    static MStatus setPlaybackBy(const double& newTime);
    /// The animation's range takes the playback's in: setting one beyond the other widens it.
    static MTime minTime();
    static MTime maxTime();
    static MStatus setMinTime(MTime newMinTime);
    static MStatus setMaxTime(MTime newMaxTime);
    static MStatus setMinMaxTime(MTime min, MTime max);
    static MTime animationStartTime();
    static MTime animationEndTime();
    static MStatus setAnimationStartTime(MTime newStartTime);
    static MStatus setAnimationEndTime(MTime newEndTime);
    static MStatus setAnimationStartEndTime(MTime newStartTime, MTime newEndTime);
    static MTime currentTime();
    static MStatus setCurrentTime(const MTime& newTime);
    static double playbackSpeed();
    static MStatus setPlaybackSpeed(double newSpeed);
    static MStatus playForward();
    static MStatus playBackward();
    static bool isPlaying();
    static bool isScrubbing();
    static MStatus stop();
    static bool autoKeyMode();
    static MStatus setAutoKeyMode(bool mode);
    static MFnAnimCurve::TangentType globalInTangentType(MStatus* ReturnStatus = NULL);
    static MStatus setGlobalInTangentType(const MFnAnimCurve::TangentType& tangentType);
    static MFnAnimCurve::TangentType globalOutTangentType(MStatus* ReturnStatus = NULL);
    static MStatus setGlobalOutTangentType(const MFnAnimCurve::TangentType& tangentType);
    static bool weightedTangents(MStatus* ReturnStatus = NULL);
    static MStatus setWeightedTangents(bool weightState);
};
