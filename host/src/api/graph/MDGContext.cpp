#include <maya/MDGContext.h>

#include "values/StatusOut.h"

MDGContext MDGContext::fsNormal;

MDGContext::MDGContext() = default;
MDGContext::MDGContext(const MTime& atTime) : normal_(false), time_(atTime) {}
MDGContext::MDGContext(const MDGContext& other) = default;
MDGContext& MDGContext::operator=(const MDGContext& other) = default;

bool MDGContext::isNormal(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, MStatus::kSuccess);
    return normal_;
}

MStatus MDGContext::getTime(MTime& timeVal) const {
    if (normal_) return MStatus::kFailure;
    timeVal = time_;
    return MStatus::kSuccess;
}

const char* MDGContext::className() { return "MDGContext"; }
