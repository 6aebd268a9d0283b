#pragma once

#include <maya/MFnData.h>
#include <maya/MPointArray.h>

/// Function set for arrays of points. Data that came from a plug are copied when they are first changed: they reach the
/// plug when they are set. Elements out of range give kInvalidParameter.
class OPENMAYA_EXPORT MFnPointArrayData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnPointArrayData)
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    /// Not checked: the index is less than length().
    const MPoint& operator[](unsigned int index) const;
    MPoint& operator[](unsigned int index);
    MStatus set(MPoint& element, unsigned int index);
    MStatus copyTo(MPointArray& array) const;
    MStatus set(const MPointArray& newArray);
    MPointArray array(MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MPointArray& in, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
