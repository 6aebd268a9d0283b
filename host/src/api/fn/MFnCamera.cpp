#include <maya/MFnCamera.h>

#include "api/fn/FnSupport.h"
#include "viewport/CameraNode.h"

#include <maya/MDagPath.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <cmath>
#include <numbers>

using namespace host;
using host::api::Access;

ORVO_DEFINE_FN(MFnCamera, MFn::kCamera)
ORVO_FN_NAME(MFnCamera)

namespace {

constexpr double mmPerInch = 25.4;

/// The camera of a function set; null when there is none, or its node is gone.
std::shared_ptr<scene::Node> cameraOf(const MObject& object, MStatus* status = nullptr) {
    auto node = Access::dagNode(object);
    if (node && !viewport::isCamera(*node)) node.reset();
    setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
    return node;
}

double number(const MObject& object, const char* attribute, MStatus* status) {
    const auto camera = cameraOf(object, status);
    return camera ? viewport::attributeNumber(*camera, attribute) : 0;
}

MStatus setNumber(const MObject& object, const char* attribute, double value) {
    const auto camera = cameraOf(object);
    if (!camera) return MStatus::kFailure;
    if (!std::isfinite(value)) return MStatus::kInvalidParameter;
    return api::guarded([&] { camera->scene.setNumber(camera->cell(attribute), value); });
}

viewport::CameraFrame frame(const MObject& object, MSpace::Space space, MStatus* status) {
    const auto camera = cameraOf(object, status);
    return camera && space == MSpace::kWorld ? viewport::cameraFrame(*camera->dag()) : viewport::CameraFrame();
}

/// The angle that a length of film, in inches, takes at a focal length; and the focal length for an angle.
double angleOf(double inches, double focalLength) {
    return focalLength > 0 ? 2 * std::atan(0.5 * inches * mmPerInch / focalLength) : 0;
}

MStatus setAngle(const MObject& object, const char* aperture, double fov) {
    if (!(fov > 0) || !(fov < std::numbers::pi)) return MStatus::kInvalidParameter;
    MStatus status;
    const double inches = number(object, aperture, &status);
    if (!status) return status;
    return setNumber(object, "focalLength", 0.5 * inches * mmPerInch / std::tan(fov / 2));
}

/// Optics that show, in a square port, what the given ones show in a port of that width over height: everything
/// that lies across is squeezed by the proportion.
viewport::CameraOptics inSquarePort(scene::Node& camera, double windowAspect, bool applyOverscan, bool applySqueeze) {
    auto optics = viewport::cameraOptics(camera);
    optics.horizontalFilmAperture /= windowAspect;
    optics.horizontalFilmOffset /= windowAspect;
    optics.orthoWidth /= windowAspect;
    if (!applyOverscan) optics.overscan = 1;
    if (!applySqueeze) optics.lensSqueezeRatio = 1;
    return optics;
}

bool isProportion(double aspect) { return std::isfinite(aspect) && aspect > 0; }

} // namespace

MFnCamera::MFnCamera(const MDagPath& object, MStatus* ReturnStatus) {
    const auto node = Access::dagNode(object.node());
    const MStatus status = attach(node ? Access::object(viewport::cameraShapeOf(*node)) : MObject(), MFn::kCamera);
    if (ReturnStatus) *ReturnStatus = status;
}

MFnCamera::~MFnCamera() = default;

MObject MFnCamera::create(MStatus* ReturnStatus) { return create(MObject::kNullObj, ReturnStatus); }

MObject MFnCamera::create(MObject& parent, MStatus* ReturnStatus) {
    const auto above = Access::dagNode(parent);
    if (!parent.isNull() && (!above || !above->dag()->isTransform())) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    scene::Scene& scene = scene::Scene::current();
    const scene::NodeType* type = scene.findType("camera");
    scene::NodePtr made;
    const MStatus status =
        type ? api::guarded([&] { made = scene.createNode(*type, {}, above ? above->dag() : nullptr); })
             : MStatus(MStatus::kFailure);
    if (ReturnStatus) *ReturnStatus = status;
    if (!made) return MObject();
    attach(Access::object(made.get()), MFn::kCamera);
    return above ? object_ : Access::object(made->dag()->parent);
}

MPoint MFnCamera::eyePoint(MSpace::Space space, MStatus* ReturnStatus) const {
    return frame(object_, space, ReturnStatus).eye;
}

MVector MFnCamera::viewDirection(MSpace::Space space, MStatus* ReturnStatus) const {
    return frame(object_, space, ReturnStatus).view;
}

MVector MFnCamera::upDirection(MSpace::Space space, MStatus* ReturnStatus) const {
    return frame(object_, space, ReturnStatus).up;
}

MVector MFnCamera::rightDirection(MSpace::Space space, MStatus* ReturnStatus) const {
    return frame(object_, space, ReturnStatus).right;
}

MPoint MFnCamera::centerOfInterestPoint(MSpace::Space space, MStatus* ReturnStatus) const {
    const auto f = frame(object_, space, ReturnStatus);
    return f.eye + f.view * number(object_, "centerOfInterest", nullptr);
}

MStatus MFnCamera::setTumblePivot(const MPoint& point) {
    const auto camera = cameraOf(object_);
    if (!camera) return MStatus::kFailure;
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
        return MStatus::kInvalidParameter;
    return api::guarded([&] {
        camera->scene.setValue(camera->cell("tumblePivot"),
                               scene::Numeric(scene::NumericType::Double, 3, point.x, point.y, point.z));
    });
}

MPoint MFnCamera::tumblePivot(MStatus* ReturnStatus) const {
    const auto camera = cameraOf(object_, ReturnStatus);
    if (!camera) return MPoint();
    const auto part = [&](int k) { return viewport::attributeNumber(*camera, "tumblePivot", k); };
    return MPoint(part(0), part(1), part(2));
}

MStatus MFnCamera::getPortFieldOfView(int width, int height, double& horizontalFOV, double& verticalFOV) const {
    const auto camera = cameraOf(object_);
    if (!camera) return MStatus::kFailure;
    if (width < 1 || height < 1) return MStatus::kInvalidParameter;
    const auto field = viewport::portFieldOfView(viewport::cameraOptics(*camera), width, height);
    if (!field) return MStatus::kFailure;
    horizontalFOV = field->horizontal;
    verticalFOV = field->vertical;
    return MStatus::kSuccess;
}

MStatus MFnCamera::getViewParameters(double windowAspect, double& apertureX, double& apertureY, double& offsetX,
                                     double& offsetY, bool applyOverscan, bool applySqueeze, bool) const {
    const auto camera = cameraOf(object_);
    if (!camera) return MStatus::kFailure;
    if (!isProportion(windowAspect)) return MStatus::kInvalidParameter;
    const auto optics = inSquarePort(*camera, windowAspect, applyOverscan, applySqueeze);
    const auto window = viewport::visibleFilmWindow(optics, 1, 1);
    if (!window) return MStatus::kFailure;
    apertureX = window->width * windowAspect;
    apertureY = window->height;
    offsetX = window->centreX * windowAspect;
    offsetY = window->centreY;
    return MStatus::kSuccess;
}

MStatus MFnCamera::getViewingFrustum(double windowAspect, double& left, double& right, double& bottom, double& top,
                                     bool applyOverscan, bool applySqueeze, bool) const {
    const auto camera = cameraOf(object_);
    if (!camera) return MStatus::kFailure;
    if (!isProportion(windowAspect)) return MStatus::kInvalidParameter;
    const auto optics = inSquarePort(*camera, windowAspect, applyOverscan, applySqueeze);
    const auto view = viewport::cameraProjection(optics, 1, 1);
    if (!view) return MStatus::kFailure;
    left = view->left * windowAspect;
    right = view->right * windowAspect;
    bottom = view->bottom;
    top = view->top;
    return MStatus::kSuccess;
}

MStatus MFnCamera::setHorizontalFieldOfView(double fov) { return setAngle(object_, "horizontalFilmAperture", fov); }

double MFnCamera::horizontalFieldOfView(MStatus* ReturnStatus) const {
    return angleOf(horizontalFilmAperture(ReturnStatus), focalLength());
}

MStatus MFnCamera::setVerticalFieldOfView(double fov) { return setAngle(object_, "verticalFilmAperture", fov); }

double MFnCamera::verticalFieldOfView(MStatus* ReturnStatus) const {
    return angleOf(verticalFilmAperture(ReturnStatus), focalLength());
}

MStatus MFnCamera::setNearFarClippingPlanes(double dNear, double dFar) {
    if (!(dNear < dFar)) return MStatus::kInvalidParameter;
    const MStatus status = setNearClippingPlane(dNear);
    return status ? setFarClippingPlane(dFar) : status;
}

double MFnCamera::aspectRatio(MStatus* ReturnStatus) const {
    const double width = horizontalFilmAperture(ReturnStatus), height = verticalFilmAperture();
    return height > 0 ? width / height : 0;
}

MStatus MFnCamera::setFilmFit(FilmFit filmFit) {
    if (filmFit < kFillFilmFit || filmFit > kOverscanFilmFit) return MStatus::kInvalidParameter;
    return setNumber(object_, "filmFit", filmFit);
}

MFnCamera::FilmFit MFnCamera::filmFit(MStatus* ReturnStatus) const {
    const auto camera = cameraOf(object_, ReturnStatus);
    return camera ? static_cast<FilmFit>(viewport::cameraOptics(*camera).filmFit) : kInvalid;
}

#define ORVO_CAMERA_NUMBER(getter, setter, attribute)                                                                  \
    double MFnCamera::getter(MStatus* ReturnStatus) const { return number(object_, attribute, ReturnStatus); }         \
    MStatus MFnCamera::setter(double value) { return setNumber(object_, attribute, value); }
#define ORVO_CAMERA_FLAG(getter, setter, attribute)                                                                    \
    bool MFnCamera::getter(MStatus* ReturnStatus) const { return number(object_, attribute, ReturnStatus) != 0; }      \
    MStatus MFnCamera::setter(bool value) { return setNumber(object_, attribute, value ? 1 : 0); }

ORVO_CAMERA_NUMBER(centerOfInterest, setCenterOfInterest, "centerOfInterest")
ORVO_CAMERA_NUMBER(nearClippingPlane, setNearClippingPlane, "nearClipPlane")
ORVO_CAMERA_NUMBER(farClippingPlane, setFarClippingPlane, "farClipPlane")
ORVO_CAMERA_NUMBER(orthoWidth, setOrthoWidth, "orthographicWidth")
ORVO_CAMERA_NUMBER(horizontalFilmAperture, setHorizontalFilmAperture, "horizontalFilmAperture")
ORVO_CAMERA_NUMBER(verticalFilmAperture, setVerticalFilmAperture, "verticalFilmAperture")
ORVO_CAMERA_NUMBER(horizontalFilmOffset, setHorizontalFilmOffset, "horizontalFilmOffset")
ORVO_CAMERA_NUMBER(verticalFilmOffset, setVerticalFilmOffset, "verticalFilmOffset")
ORVO_CAMERA_NUMBER(filmFitOffset, setFilmFitOffset, "filmFitOffset")
ORVO_CAMERA_NUMBER(overscan, setOverscan, "overscan")
ORVO_CAMERA_NUMBER(cameraScale, setCameraScale, "cameraScale")
ORVO_CAMERA_NUMBER(focalLength, setFocalLength, "focalLength")
ORVO_CAMERA_NUMBER(lensSqueezeRatio, setLensSqueezeRatio, "lensSqueezeRatio")
ORVO_CAMERA_NUMBER(fStop, setFStop, "fStop")
ORVO_CAMERA_NUMBER(focusDistance, setFocusDistance, "focusDistance")
ORVO_CAMERA_NUMBER(shutterAngle, setShutterAngle, "shutterAngle")
ORVO_CAMERA_FLAG(isOrtho, setIsOrtho, "orthographic")
ORVO_CAMERA_FLAG(isDepthOfField, setDepthOfField, "depthOfField")
ORVO_CAMERA_FLAG(isMotionBlur, setMotionBlur, "motionBlur")
ORVO_CAMERA_FLAG(isDisplayGateMask, setDisplayGateMask, "displayGateMask")
ORVO_CAMERA_FLAG(isDisplayFilmGate, setDisplayFilmGate, "displayFilmGate")
