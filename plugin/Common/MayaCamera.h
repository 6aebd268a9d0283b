#pragma once

#include "CameraFrustum.h"

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MFnCamera.h>
#include <maya/MStatus.h>
#include <memory>

namespace orvo {

/// The camera of a viewport at the moment of its making, with its frustum in world space. When the host could not
/// describe it (which is reported), every query answers kFailure.
class MayaCamera {
public:
    /// The view is borrowed and must outlive the camera.
    explicit MayaCamera(M3dView& view);

    bool isValid() const { return camera_ != nullptr; }
    bool isPerspective() const;
    /// kFailure, and nothing written, for a camera that is not valid; so do the other queries.
    MStatus eyePoint(Vector3& point) const;
    MStatus nearCorners(CameraFrustum::Corners& corners) const;
    /// `depthFactor` scales each camera-space corner before it goes to world space.
    MStatus farCorners(double depthFactor, CameraFrustum::Corners& corners) const;
    MStatus rayThrough(double u, double v, CameraFrustum::Ray& ray) const;
    const CameraFrustum& frustum() const { return frustum_; }

private:
    MStatus read();
    MStatus computeFrustum();

    std::unique_ptr<MDagPath> path_;
    std::unique_ptr<MFnCamera> camera_; ///< absent when the construction failed
    M3dView& view_;
    CameraFrustum frustum_;
};

} // namespace orvo
