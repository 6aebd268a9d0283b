#pragma once

#include <maya/MFnNonExtendedLight.h>

/// Function set for directional lights. They shine along -Z.
class OPENMAYA_EXPORT MFnDirectionalLight : public MFnNonExtendedLight {
public:
    ORVO_DECLARE_FN(MFnDirectionalLight)
    MFnDirectionalLight(const MDagPath& object, MStatus* ret = NULL);
    /// Without a parent the light gets a transform, which is the answer. Below a parent it is a shape of its own, with
    /// `wantTransform` below a transform of its own, which is the answer then.
    MObject create(bool UIvisible = true, MStatus* ReturnStatus = NULL);
    MObject create(const MObject& parent, bool UIvisible = true, bool wantTransform = false,
                   MStatus* ReturnStatus = NULL);
    MObject create(const MObject& parent, bool UIvisible, MStatus* ReturnStatus);
    /// Degrees.
    float shadowAngle(MStatus* ReturnStatus = NULL) const;
    MStatus setShadowAngle(const float& shadow_angle);
    bool useLightPosition(MStatus* ReturnStatus = NULL) const;
    MStatus setUseLightPosition(const bool use_light_position);

protected:
    virtual const char* className() const;
};
