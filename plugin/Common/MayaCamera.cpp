#include "MayaCamera.h"

#include "Messages.h"

#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MVector.h>

namespace orvo {
namespace {

Vector3 vectorOf(const MVector& v) { return {v.x, v.y, v.z}; }

/// Reports a failure with its place and a text of the camera's own.
bool had(const MStatus& status, const char* message, const SourcePlace& where = SourcePlace::current()) {
    if (!status.error()) return true;
    reportPlacedError({message, where});
    return false;
}

} // namespace

MayaCamera::MayaCamera(M3dView& view) : path_(std::make_unique<MDagPath>()), view_(view) {
    if (read().error() || computeFrustum().error()) camera_.reset();
}

MStatus MayaCamera::read() {
    MStatus status = view_.getCamera(*path_);
    if (!succeeded(status)) return status;
    camera_ = std::make_unique<MFnCamera>(*path_, &status);
    if (!succeeded(status)) return status;

    const MVector direction = camera_->viewDirection(MSpace::kWorld, &status);
    if (!succeeded(status)) return status;
    const MVector up = camera_->upDirection(MSpace::kWorld, &status);
    if (!succeeded(status)) return status;
    const MPoint eye = camera_->eyePoint(MSpace::kWorld, &status);
    if (!succeeded(status)) return status;
    frustum_.cameraToWorld = CameraFrustum::matrixOf(vectorOf(direction), vectorOf(up), {eye.x, eye.y, eye.z});

    const int width = view_.portWidth(&status);
    if (!had(status, "MayaCamera: Could not get camera FOV")) return status;
    const int height = view_.portHeight(&status);
    if (!had(status, "MayaCamera: Could not get camera FOV")) return status;
    status = camera_->getPortFieldOfView(width, height, frustum_.horizontalFov, frustum_.verticalFov);
    if (!had(status, "MayaCamera: Could not get camera FOV")) return status;
    frustum_.nearDistance = camera_->nearClippingPlane(&status);
    if (!had(status, "MayaCamera: Could not get camera nearClippingPlane")) return status;
    frustum_.farDistance = camera_->farClippingPlane(&status);
    had(status, "MayaCamera: Could not get camera farClippingPlane");
    return status;
}

MStatus MayaCamera::computeFrustum() {
    frustum_.isPerspective = isPerspective();
    if (!frustum_.isPerspective) {
        MStatus status;
        frustum_.orthoWidth = camera_->orthoWidth(&status);
        if (status.error()) {
            reportFailure(status, "MayaCamera: Could not get Orthographic camera width");
            return status;
        }
        frustum_.orthoHeight = frustum_.orthoWidth * view_.portHeight() / view_.portWidth();
    }
    frustum_.computePlanes();
    return MStatus::kSuccess;
}

bool MayaCamera::isPerspective() const { return !camera_ || !camera_->isOrtho(); }

MStatus MayaCamera::eyePoint(Vector3& point) const {
    if (!isValid()) return MStatus::kFailure;
    point = frustum_.eyePoint();
    return MStatus::kSuccess;
}

MStatus MayaCamera::nearCorners(CameraFrustum::Corners& corners) const {
    if (!isValid()) return MStatus::kFailure;
    corners = frustum_.nearCorners();
    return MStatus::kSuccess;
}

MStatus MayaCamera::farCorners(double depthFactor, CameraFrustum::Corners& corners) const {
    if (!isValid()) return MStatus::kFailure;
    corners = frustum_.farCorners(depthFactor);
    return MStatus::kSuccess;
}

MStatus MayaCamera::rayThrough(double u, double v, CameraFrustum::Ray& ray) const {
    if (!isValid()) return MStatus::kFailure;
    ray = frustum_.rayThrough(u, v);
    return MStatus::kSuccess;
}

} // namespace orvo
