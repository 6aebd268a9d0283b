#pragma once

#include <maya/MFnNonAmbientLight.h>

/// Function set for lights without an extent, and their shadows.
class OPENMAYA_EXPORT MFnNonExtendedLight : public MFnNonAmbientLight {
public:
    ORVO_DECLARE_FN(MFnNonExtendedLight)
    MFnNonExtendedLight(const MDagPath& object, MStatus* ret = NULL);
    float shadowRadius(MStatus* ReturnStatus = NULL) const;
    MStatus setShadowRadius(const float& shadow_radius);
    bool castSoftShadows(MStatus* ReturnStatus = NULL) const;
    MStatus setCastSoftShadows(const bool& cast_soft_shadows);
    bool useDepthMapShadows(MStatus* ReturnStatus = NULL) const;
    MStatus setUseDepthMapShadows(const bool& use_depth_map);
    short depthMapFilterSize(MStatus* ReturnStatus) const;
    MStatus setDepthMapFilterSize(const short& depth_map_filter_size);
    short depthMapResolution(MStatus* ReturnStatus) const;
    MStatus setDepthMapResolution(const short& depth_map_resolution);
    float depthMapBias(MStatus* ReturnStatus) const;
    MStatus setDepthMapBias(const float& depth_map_bias);
    bool useDepthMapAutoFocus(MStatus* ReturnStatus = NULL) const;
    MStatus setUseDepthMapAutoFocus(const bool use_depth_map_auto_focus);
    float depthMapWidthFocus(MStatus* ReturnStatus) const;
    MStatus setDepthMapWidthFocus(const float depth_map_width_focus);
    float depthMapFocus(MStatus* ReturnStatus) const;
    MStatus setDepthMapFocus(const float depth_map_focus);

protected:
    virtual const char* className() const;
};
