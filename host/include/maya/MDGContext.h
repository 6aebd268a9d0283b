#pragma once

#include <maya/MStatus.h>
#include <maya/MTime.h>

/// When a value is wanted: now (the normal context), or at a time.
class OPENMAYA_EXPORT MDGContext {
public:
    MDGContext();
    MDGContext(const MTime& atTime);
    MDGContext(const MDGContext& other);
    bool isNormal(MStatus* ReturnStatus = NULL) const;
    MStatus getTime(MTime& timeVal) const;
    MDGContext& operator=(const MDGContext& other);
    static const char* className();

    static MDGContext fsNormal;

private:
    bool normal_ = true;
    MTime time_;
};
