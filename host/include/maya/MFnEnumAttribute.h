#pragma once

#include <maya/MFnAttribute.h>

/// Function set for attributes that hold one of several named numbers.
class OPENMAYA_EXPORT MFnEnumAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnEnumAttribute)
    MObject create(const MString& fullName, const MString& briefName, short defaultValue = 0,
                   MStatus* ReturnStatus = NULL);
    MStatus addField(const MString& fieldString, short index);
    MString fieldName(short index, MStatus* ReturnStatus = NULL) const;
    short fieldIndex(const MString& fieldString, MStatus* ReturnStatus = NULL) const;
    MStatus getMin(short& minValue) const;
    MStatus getMax(short& maxValue) const;
    MStatus setDefault(short index);
    MStatus setDefault(const MString& fieldString);
    MStatus getDefault(short& index) const;
    MString defaultValue(MStatus* ReturnStatus = NULL) const;
    MStatus getDefault(MString& fieldString) const;

protected:
    virtual const char* className() const;
};
