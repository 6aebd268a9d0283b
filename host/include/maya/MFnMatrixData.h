#pragma once

#include <maya/MFnData.h>
#include <maya/MMatrix.h>
#include <maya/MTransformationMatrix.h>

/// Function set for matrix data.
class OPENMAYA_EXPORT MFnMatrixData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnMatrixData)
    bool isTransformation(MStatus* ReturnStatus = NULL) const;
    MTransformationMatrix transformation(MStatus* ReturnStatus = NULL) const;
    const MMatrix& matrix(MStatus* ReturnStatus = NULL) const;
    MStatus set(const MTransformationMatrix& transformation);
    MStatus set(const MMatrix& mat);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MMatrix& mat, MStatus* ReturnStatus = NULL);
    MObject create(const MTransformationMatrix& transformation, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
