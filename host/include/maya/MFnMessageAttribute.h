#pragma once

#include <maya/MFnAttribute.h>

/// Function set for attributes that hold no value and only tell what belongs to what.
class OPENMAYA_EXPORT MFnMessageAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnMessageAttribute)
    MObject create(const MString& fullName, const MString& briefName, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
