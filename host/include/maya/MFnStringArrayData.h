#pragma once

#include <maya/MFnData.h>
#include <maya/MStringArray.h>

/// Function set for arrays of texts. Data that came from a plug are copied when they are first changed: they reach the
/// plug when they are set. Elements out of range give kInvalidParameter.
class OPENMAYA_EXPORT MFnStringArrayData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnStringArrayData)
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    MStatus set(const MString& element, unsigned int index);
    MStatus copyTo(MStringArray& array) const;
    MStatus set(const MStringArray& newArray);
    MStringArray array(MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);
    MObject create(const MStringArray& in, MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
