#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFnData.h>

/// Function set for arrays of numbers. Data that came from a plug are copied when they are first changed: they reach
/// the plug when they are set. Elements out of range give kInvalidParameter.
class OPENMAYA_EXPORT MFnDoubleArrayData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnDoubleArrayData)
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    /// Not checked: the index is less than length().
    double operator[](unsigned int index) const;
    double& operator[](unsigned int index);
    MStatus set(double element, unsigned int index);
    MStatus copyTo(MDoubleArray& array) const;
    MStatus set(const MDoubleArray& newArray);
    MDoubleArray array(MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MDoubleArray& in, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
