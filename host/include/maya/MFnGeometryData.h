#pragma once

#include <maya/MFnData.h>

/// Function set for data that holds geometry.
class OPENMAYA_EXPORT MFnGeometryData : public MFnData {
public:
    ORVO_DECLARE_FN(MFnGeometryData)

protected:
    virtual const char* className() const;
};
