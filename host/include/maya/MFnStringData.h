#pragma once

#include <maya/MFnData.h>
#include <maya/MString.h>

/// Function set for text data.
class OPENMAYA_EXPORT MFnStringData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnStringData)
    MString string(MStatus* ReturnStatus = NULL) const;
    MStatus set(const MString& string);
    MObject create(const MString& str, MStatus* ReturnStatus = NULL);
    MObject create(MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
