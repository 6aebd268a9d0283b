#pragma once

#include <maya/MDagPath.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MVector.h>

/// Function set for cameras. A camera looks down the negative z axis of its own space, with y up.
///
/// Focal lengths are in millimetres, film apertures and offsets in inches, distances and widths in centimetres, angles
/// in radians. A setter fails for a value that the camera's attribute does not take, or that a connection or lock
/// holds.
class OPENMAYA_EXPORT MFnCamera : public MFnDagNode {
public:
    enum FilmFit { kFillFilmFit, kHorizontalFilmFit, kVerticalFilmFit, kOverscanFilmFit, kInvalid };
    ORVO_DECLARE_FN(MFnCamera)
    /// A path to a camera, or to a transform whose only shape is one.
    MFnCamera(const MDagPath& object, MStatus* ReturnStatus = NULL);
    virtual ~MFnCamera();
    /// Makes a camera below a new transform, which is answered, and works on it from then on.
    MObject create(MStatus* ReturnStatus = NULL);
    /// Makes a camera below the transform and answers the camera.
    MObject create(MObject& parent, MStatus* ReturnStatus = NULL);

    /// @name Where it is and looks
    /// Directions have unit length. In any other space than kWorld the answers are in the camera's own space.
    /// @{
    MPoint eyePoint(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL) const;
    MVector viewDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL) const;
    MVector upDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL) const;
    MVector rightDirection(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL) const;
    MPoint centerOfInterestPoint(MSpace::Space space = MSpace::kObject, MStatus* ReturnStatus = NULL) const;
    MStatus setCenterOfInterest(double dist);
    double centerOfInterest(MStatus* ReturnStatus = NULL) const;
    MStatus setTumblePivot(const MPoint& point);
    MPoint tumblePivot(MStatus* ReturnStatus = NULL) const;
    /// @}

    /// @name What is seen
    /// @{
    /// The angles that a window of this size in pixels shows, with film fit, squeeze, scale and overscan.
    MStatus getPortFieldOfView(int width, int height, double& horizontalFOV, double& verticalFOV) const;
    /// The part of the film that a window of this width over height shows: its size, and its centre's offset. There is
    /// no pan and zoom of the view to be applied.
    MStatus getViewParameters(double windowAspect, double& apertureX, double& apertureY, double& offsetX,
                              double& offsetY, bool applyOverscan = false, bool applySqueeze = false,
                              bool applyPanZoom = false) const;
    /// The same on the near plane, or the sides of an orthographic camera's view.
    MStatus getViewingFrustum(double windowAspect, double& left, double& right, double& bottom, double& top,
                              bool applyOverscan = false, bool applySqueeze = false, bool applyPanZoom = false) const;
    /// Of the whole film, without fit, scale and squeeze. Setting one changes the focal length.
    MStatus setHorizontalFieldOfView(double fov);
    double horizontalFieldOfView(MStatus* ReturnStatus = NULL) const;
    MStatus setVerticalFieldOfView(double fov);
    double verticalFieldOfView(MStatus* ReturnStatus = NULL) const;
    MStatus setNearClippingPlane(double dNear);
    double nearClippingPlane(MStatus* ReturnStatus = NULL) const;
    MStatus setFarClippingPlane(double dFar);
    double farClippingPlane(MStatus* ReturnStatus = NULL) const;
    MStatus setNearFarClippingPlanes(double dNear, double dFar);
    MStatus setIsOrtho(bool orthoState);
    bool isOrtho(MStatus* ReturnStatus = NULL) const;
    MStatus setOrthoWidth(double orthoWidth);
    double orthoWidth(MStatus* ReturnStatus = NULL) const;
    /// @}

    /// @name Film and lens
    /// @{
    MStatus setHorizontalFilmAperture(double hFilmAperture);
    double horizontalFilmAperture(MStatus* ReturnStatus = NULL) const;
    MStatus setVerticalFilmAperture(double vFilmAperture);
    double verticalFilmAperture(MStatus* ReturnStatus = NULL) const;
    /// Width over height of the film.
    double aspectRatio(MStatus* ReturnStatus = NULL) const;
    double horizontalFilmOffset(MStatus* ReturnStatus = NULL) const;
    MStatus setHorizontalFilmOffset(double hOffset);
    double verticalFilmOffset(MStatus* ReturnStatus = NULL) const;
    MStatus setVerticalFilmOffset(double vOffset);
    MStatus setFilmFit(FilmFit filmFit);
    MFnCamera::FilmFit filmFit(MStatus* ReturnStatus = NULL) const;
    MStatus setFilmFitOffset(double filmFitOffset);
    double filmFitOffset(MStatus* ReturnStatus = NULL) const;
    MStatus setOverscan(double overscan);
    double overscan(MStatus* ReturnStatus = NULL) const;
    MStatus setCameraScale(double scale);
    double cameraScale(MStatus* ReturnStatus = NULL) const;
    MStatus setFocalLength(double focalLength);
    double focalLength(MStatus* ReturnStatus = NULL) const;
    MStatus setLensSqueezeRatio(double aspectRatio);
    double lensSqueezeRatio(MStatus* ReturnStatus = NULL) const;
    MStatus setDepthOfField(bool depthOfField);
    bool isDepthOfField(MStatus* ReturnStatus = NULL) const;
    MStatus setFStop(double fStop);
    double fStop(MStatus* ReturnStatus = NULL) const;
    MStatus setFocusDistance(double distance);
    double focusDistance(MStatus* ReturnStatus = NULL) const;
    MStatus setMotionBlur(bool motionBlur);
    bool isMotionBlur(MStatus* ReturnStatus = NULL) const;
    MStatus setShutterAngle(double shutterAngle);
    double shutterAngle(MStatus* ReturnStatus = NULL) const;
    MStatus setDisplayGateMask(bool displayGateMask);
    bool isDisplayGateMask(MStatus* ReturnStatus = NULL) const;
    MStatus setDisplayFilmGate(bool displayFilmGate);
    bool isDisplayFilmGate(MStatus* ReturnStatus = NULL) const;
    /// @}

protected:
    virtual const char* className() const;
};
