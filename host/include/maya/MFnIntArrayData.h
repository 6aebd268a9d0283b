#pragma once

#include <maya/MFnData.h>
#include <maya/MIntArray.h>

/// Function set for arrays of whole numbers. Data that came from a plug are copied when they are first changed: they
/// reach the plug when they are set. Elements out of range give kInvalidParameter.
class OPENMAYA_EXPORT MFnIntArrayData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnIntArrayData)
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    /// Not checked: the index is less than length().
    int operator[](unsigned int index) const;
    MStatus set(int element, unsigned int index);
    MStatus copyTo(MIntArray& array) const;
    MStatus set(const MIntArray& newArray);
    MIntArray array(MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MIntArray& in, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
