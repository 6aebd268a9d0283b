#pragma once

#include <maya/MFnLight.h>

/// Function set for ambient lights.
class OPENMAYA_EXPORT MFnAmbientLight : public MFnLight {
public:
    ORVO_DECLARE_FN(MFnAmbientLight)
    MFnAmbientLight(const MDagPath& object, MStatus* ret = NULL);
    /// Without a parent the light gets a transform, which is the answer. Below a parent it is a shape of its own, with
    /// `wantTransform` below a transform of its own, which is the answer then.
    MObject create(bool UIvisible = true, MStatus* ReturnStatus = NULL);
    MObject create(const MObject& parent, bool UIvisible = true, bool wantTransform = false,
                   MStatus* ReturnStatus = NULL);
    MObject create(const MObject& parent, bool UIvisible, MStatus* ReturnStatus);
    float ambientShade(MStatus* ReturnStatus = NULL) const;
    MStatus setAmbientShade(const float& ambient_shade);
    bool castSoftShadows(MStatus* ReturnStatus = NULL) const;
    MStatus setCastSoftShadows(const bool& cast_soft_shadows);
    float shadowRadius(MStatus* ReturnStatus = NULL) const;
    MStatus setShadowRadius(const float& shadow_radius);

protected:
    virtual const char* className() const;
};
