#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>

/// The progress window, which a batch session does not have: it cannot be reserved, nothing is ever cancelled, and all
/// else gives kFailure.
class OPENMAYA_EXPORT MProgressWindow {
public:
    static bool reserve();
    static MStatus startProgress();
    static MStatus endProgress();
    static MStatus setProgressRange(const int minValue, const int maxValue);
    static MStatus setProgressMin(const int minValue);
    static MStatus setProgressMax(const int maxValue);
    static int progressMin(MStatus* ReturnStatus = NULL);
    static int progressMax(MStatus* ReturnStatus = NULL);
    static MStatus setProgress(const int progress);
    static MStatus advanceProgress(const int amount);
    static int progress(MStatus* ReturnStatus = NULL);
    static MStatus setTitle(const MString& title);
    static MString title(MStatus* ReturnStatus = NULL);
    static MStatus setProgressStatus(const MString& progressStatus);
    static MString progressStatus(MStatus* ReturnStatus = NULL);
    static MStatus setInterruptable(const bool value);
    static bool isInterruptable(MStatus* ReturnStatus = NULL);
    static bool isCancelled(MStatus* ReturnStatus = NULL);
    static const char* className();
};
