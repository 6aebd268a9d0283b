#pragma once

#include <maya/MFnAttribute.h>

/// Function set for attributes made of others.
class OPENMAYA_EXPORT MFnCompoundAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnCompoundAttribute)
    MObject create(const MString& full, const MString& brief, MStatus* ReturnStatus = NULL);
    MStatus addChild(const MObject& child);
    MStatus removeChild(const MObject& child);
    unsigned int numChildren(MStatus* ReturnStatus = NULL) const;
    MObject child(unsigned int index, MStatus* ReturnStatus = NULL) const;

protected:
    virtual const char* className() const;
};
