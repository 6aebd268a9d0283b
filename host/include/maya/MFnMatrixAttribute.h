#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MFnAttribute.h>
#include <maya/MMatrix.h>

/// Function set for matrix attributes.
class OPENMAYA_EXPORT MFnMatrixAttribute : public MFnAttribute {
public:
    enum Type { kFloat, kDouble };
    ORVO_DECLARE_FN(MFnMatrixAttribute)
    MObject create(const MString& fullName, const MString& briefName, Type matrixType = kDouble,
                   MStatus* ReturnStatus = NULL);
    MStatus getDefault(MMatrix& def);
    MStatus getDefault(MFloatMatrix& def);
    MStatus setDefault(const MMatrix& def);
    MStatus setDefault(const MFloatMatrix& def);

protected:
    virtual const char* className() const;
};
