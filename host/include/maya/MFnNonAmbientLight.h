#pragma once

#include <maya/MFnLight.h>

/// Function set for lights that come from somewhere.
class OPENMAYA_EXPORT MFnNonAmbientLight : public MFnLight {
public:
    ORVO_DECLARE_FN(MFnNonAmbientLight)
    MFnNonAmbientLight(const MDagPath& object, MStatus* ret = NULL);
    short decayRate(MStatus* ReturnStatus = NULL) const;
    MStatus setDecayRate(const short& decay_rate);

protected:
    virtual const char* className() const;
};
