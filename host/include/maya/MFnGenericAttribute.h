#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnNumericData.h>

/// Function set for attributes that take data of several kinds. Only what is among the kinds that were added can be
/// connected to it.
class OPENMAYA_EXPORT MFnGenericAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnGenericAttribute)
    MObject create(const MString& full, const MString& brief, MStatus* ReturnStatus = NULL);
    MStatus addDataAccept(MFnData::Type newType);
    MStatus addNumericDataAccept(MFnNumericData::Type newType);
    MStatus removeDataAccept(MFnData::Type oldType);
    MStatus removeNumericDataAccept(MFnNumericData::Type oldType);
    MStatus addAccept(MFnData::Type newType);
    MStatus addAccept(MFnNumericData::Type newType);
    MStatus removeAccept(MFnData::Type oldType);
    MStatus removeAccept(MFnNumericData::Type oldType);

protected:
    virtual const char* className() const;
};
