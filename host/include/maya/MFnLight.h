#pragma once

#include <maya/MColor.h>
#include <maya/MFloatVector.h>
#include <maya/MFnDagNode.h>
#include <maya/MSpace.h>

/// Function set for lights: what all kinds have. A path to a transform stands for the light below it.
class OPENMAYA_EXPORT MFnLight : public MFnDagNode {
public:
    ORVO_DECLARE_FN(MFnLight)
    MFnLight(const MDagPath& object, MStatus* ret = NULL);
    MColor color(MStatus* ReturnStatus = NULL) const;
    MStatus setColor(const MColor& col);
    float intensity(MStatus* ReturnStatus = NULL) const;
    MStatus setIntensity(const float& intens);
    bool useRayTraceShadows(MStatus* ReturnStatus = NULL) const;
    MStatus setUseRayTraceShadows(const bool& useRayTraceShadows);
    MColor shadowColor(MStatus* ReturnStatus = NULL) const;
    MStatus setShadowColor(const MColor& shadow_color);
    double centerOfIllumination(MStatus* ReturnStatus = NULL) const;
    MStatus setCenterOfIllumination(const double& dist);
    short numShadowSamples(MStatus* ReturnStatus = NULL) const;
    MStatus setNumShadowSamples(const short& num_shadow_samples);
    short rayDepthLimit(MStatus* ReturnStatus = NULL) const;
    MStatus setRayDepthLimit(const short& rayDepthLimit);
    /// The colour times the intensity.
    MColor lightIntensity(MStatus* ReturnStatus = NULL) const;
    /// Where it shines to, of unit length: -Z in its own space. There are no instances but the first.
    MFloatVector lightDirection(int instance, MSpace::Space space = MSpace::kWorld, MStatus* ReturnStatus = NULL) const;
    MFloatVector lightDirection(MStatus* ReturnStatus = NULL) const;
    bool lightAmbient(MStatus* ReturnStatus = NULL) const;
    bool lightDiffuse(MStatus* ReturnStatus = NULL) const;
    bool lightSpecular(MStatus* ReturnStatus = NULL) const;

protected:
    virtual const char* className() const;
    /// Attaches to the light of a path.
    MStatus attachLight(const MDagPath& path, MFn::Type type);
};
