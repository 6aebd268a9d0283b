#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>

/// A long piece of work, for its progress. There is nobody to interrupt it in a batch session, and nothing that would
/// show the progress.
class OPENMAYA_EXPORT MComputation {
public:
    MComputation();
    virtual ~MComputation();
    void beginComputation(bool showProgressBar = false, bool isInterruptable = true, bool useWaitCursor = true);
    bool isInterruptRequested();
    void endComputation();
    /// 0 to 100 unless it is set; a maximum below the minimum gives kInvalidParameter.
    MStatus setProgressRange(const int minValue, const int maxValue);
    int progressMin(MStatus* ReturnStatus = NULL) const;
    int progressMax(MStatus* ReturnStatus = NULL) const;
    /// Held within the range.
    MStatus setProgress(const int amount);
    int progress(MStatus* ReturnStatus = NULL) const;
    MStatus setProgressStatus(const MString& status);
    static const char* className();

private:
    int min_ = 0, max_ = 100, progress_ = 0;
};
