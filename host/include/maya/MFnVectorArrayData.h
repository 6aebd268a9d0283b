#pragma once

#include <maya/MFnData.h>
#include <maya/MVectorArray.h>

/// Function set for arrays of vectors. Data that came from a plug are copied when they are first changed: they reach
/// the plug when they are set. Elements out of range give kInvalidParameter.
class OPENMAYA_EXPORT MFnVectorArrayData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnVectorArrayData)
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    /// Not checked: the index is less than length().
    const MVector& operator[](unsigned int index) const;
    MVector& operator[](unsigned int index);
    MStatus set(MVector& element, unsigned int index);
    MStatus copyTo(MVectorArray& array) const;
    MStatus set(const MVectorArray& newArray);
    MVectorArray array(MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MVectorArray& in, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
