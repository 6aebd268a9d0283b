#include <maya/MProgressWindow.h>

#include "base/WorkWatch.h"
#include "values/StatusOut.h"

#include <maya/MComputation.h>

#include <algorithm>

using host::setStatus;

bool MProgressWindow::reserve() { return false; }
MStatus MProgressWindow::startProgress() { return MStatus::kFailure; }
MStatus MProgressWindow::endProgress() { return MStatus::kFailure; }
MStatus MProgressWindow::setProgressRange(const int, const int) { return MStatus::kFailure; }
MStatus MProgressWindow::setProgressMin(const int) { return MStatus::kFailure; }
MStatus MProgressWindow::setProgressMax(const int) { return MStatus::kFailure; }
MStatus MProgressWindow::setProgress(const int) { return MStatus::kFailure; }
MStatus MProgressWindow::advanceProgress(const int) { return MStatus::kFailure; }
MStatus MProgressWindow::setTitle(const MString&) { return MStatus::kFailure; }
MStatus MProgressWindow::setProgressStatus(const MString&) { return MStatus::kFailure; }
MStatus MProgressWindow::setInterruptable(const bool) { return MStatus::kFailure; }

namespace {

template <class T>
T nothing(MStatus* status) {
    setStatus(status, MStatus::kFailure);
    return T();
}

} // namespace

int MProgressWindow::progressMin(MStatus* s) { return nothing<int>(s); }
int MProgressWindow::progressMax(MStatus* s) { return nothing<int>(s); }
int MProgressWindow::progress(MStatus* s) { return nothing<int>(s); }
MString MProgressWindow::title(MStatus* s) { return nothing<MString>(s); }
MString MProgressWindow::progressStatus(MStatus* s) { return nothing<MString>(s); }
bool MProgressWindow::isInterruptable(MStatus* s) { return nothing<bool>(s); }

bool MProgressWindow::isCancelled(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

const char* MProgressWindow::className() { return "MProgressWindow"; }

MComputation::MComputation() = default;
MComputation::~MComputation() = default;
void MComputation::beginComputation(bool, bool, bool) { progress_ = min_; }

bool MComputation::isInterruptRequested() {
    const auto& watch = host::workWatch();
    return watch && watch(max_ > min_ ? static_cast<double>(progress_ - min_) / (max_ - min_) : 0.0);
}

void MComputation::endComputation() {}

MStatus MComputation::setProgressRange(const int minValue, const int maxValue) {
    if (maxValue < minValue) return MStatus::kInvalidParameter;
    min_ = minValue;
    max_ = maxValue;
    return setProgress(progress_);
}

int MComputation::progressMin(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return min_;
}

int MComputation::progressMax(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return max_;
}

MStatus MComputation::setProgress(const int amount) {
    progress_ = std::clamp(amount, min_, max_);
    return MStatus::kSuccess;
}

int MComputation::progress(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return progress_;
}

MStatus MComputation::setProgressStatus(const MString&) { return MStatus::kSuccess; }
const char* MComputation::className() { return "MComputation"; }
