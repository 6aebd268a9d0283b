#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnData.h>

/// Function set for attributes that hold data: texts, meshes, arrays.
class OPENMAYA_EXPORT MFnTypedAttribute : public MFnAttribute {
public:
    ORVO_DECLARE_FN(MFnTypedAttribute)
    MObject create(const MString& full, const MString& brief, MFnData::Type type,
                   MObject defaultData = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject create(const MString& full, const MString& brief, MFnData::Type type, MStatus* ReturnStatus);
    MFnData::Type attrType(MStatus* ReturnStatus = NULL) const;
    MStatus getDefault(MObject& defaultData);
    MStatus setDefault(const MObject& defaultData);

protected:
    virtual const char* className() const;
};
