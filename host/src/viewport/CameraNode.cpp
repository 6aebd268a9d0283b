#include "viewport/CameraNode.h"

#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <maya/MTransformationMatrix.h>

#include <algorithm>
#include <cmath>

namespace host::viewport {
namespace {

MVector unit(const MVector& v, const MVector& otherwise) {
    const double length = std::sqrt(v * v);
    return std::isfinite(length) && length > 0 ? v / length : otherwise;
}

struct OpticsNumber {
    const char* attribute;
    double CameraOptics::*value;
};
constexpr OpticsNumber opticsNumbers[] = {{"focalLength", &CameraOptics::focalLength},
                                          {"horizontalFilmAperture", &CameraOptics::horizontalFilmAperture},
                                          {"verticalFilmAperture", &CameraOptics::verticalFilmAperture},
                                          {"horizontalFilmOffset", &CameraOptics::horizontalFilmOffset},
                                          {"verticalFilmOffset", &CameraOptics::verticalFilmOffset},
                                          {"lensSqueezeRatio", &CameraOptics::lensSqueezeRatio},
                                          {"filmFitOffset", &CameraOptics::filmFitOffset},
                                          {"cameraScale", &CameraOptics::cameraScale},
                                          {"overscan", &CameraOptics::overscan},
                                          {"nearClipPlane", &CameraOptics::nearClip},
                                          {"farClipPlane", &CameraOptics::farClip},
                                          {"orthographicWidth", &CameraOptics::orthoWidth}};

} // namespace

MMatrix CameraFrame::cameraToWorld() const {
    const double rows[4][4] = {{right.x, right.y, right.z, 0},
                               {up.x, up.y, up.z, 0},
                               {-view.x, -view.y, -view.z, 0},
                               {eye.x, eye.y, eye.z, 1}};
    return MMatrix(rows);
}

MMatrix CameraFrame::worldToCamera() const {
    const MVector place(eye);
    const double rows[4][4] = {{right.x, up.x, -view.x, 0},
                               {right.y, up.y, -view.y, 0},
                               {right.z, up.z, -view.z, 0},
                               {-(place * right), -(place * up), place * view, 1}};
    return MMatrix(rows);
}

bool isCamera(const scene::Node& node) { return node.type.isA("camera"); }

scene::DagNode* cameraShapeOf(scene::Node& node) {
    scene::DagNode* dag = node.dag();
    if (!dag) return nullptr;
    if (isCamera(node)) return dag;
    scene::DagNode* shape = nullptr;
    for (scene::DagNode* child : dag->children) {
        if (!child->isShape()) continue;
        if (shape) return nullptr;
        shape = child;
    }
    return shape && isCamera(*shape) ? shape : nullptr;
}

double attributeNumber(scene::Node& node, std::string_view name, int component) {
    if (!node.findAttribute(name)) return 0;
    scene::Cell& cell = node.cell(name);
    scene::evaluate(cell);
    int first = 0;
    const scene::Numeric* numbers = cell.numbers(&first);
    return numbers ? numbers->get(first + component) : 0;
}

CameraOptics cameraOptics(scene::Node& camera) {
    CameraOptics optics;
    for (const auto& [name, value] : opticsNumbers) optics.*value = attributeNumber(camera, name);
    optics.filmFit = static_cast<FilmFit>(std::clamp(static_cast<int>(attributeNumber(camera, "filmFit")), 0, 3));
    optics.orthographic = attributeNumber(camera, "orthographic") != 0;
    return optics;
}

scene::DagNode& createCamera(scene::Scene& scene, const std::string& name, const CameraFrame& frame,
                             const CameraOptics& optics) {
    scene::DagNode& transform = *scene.createNode(*scene.findType("transform"), name)->dag();
    scene::DagNode& camera = *scene.createNode(*scene.findType("camera"), transform.name + "Shape", &transform)->dag();
    setCamera(scene, camera, frame, optics);
    return camera;
}

void setCamera(scene::Scene& scene, scene::DagNode& camera, const CameraFrame& frame, const CameraOptics& optics) {
    scene::DagNode& transform = *camera.parent;
    const auto setTriple = [&](const char* attribute, double x, double y, double z) {
        scene.setValue(transform.cell(attribute), scene::Numeric(scene::NumericType::Double, 3, x, y, z));
    };
    const MEulerRotation turn = MTransformationMatrix(frame.cameraToWorld()).eulerRotation();
    setTriple("translate", frame.eye.x, frame.eye.y, frame.eye.z);
    setTriple("rotate", turn.x, turn.y, turn.z);
    for (const auto& [attribute, value] : opticsNumbers) scene.setNumber(camera.cell(attribute), optics.*value);
    scene.setNumber(camera.cell("filmFit"), static_cast<double>(optics.filmFit));
    scene.setNumber(camera.cell("orthographic"), optics.orthographic ? 1 : 0);
}

CameraFrame cameraFrame(const MPoint& eye, double azimuth, double elevation) {
    const double sa = std::sin(azimuth), ca = std::cos(azimuth), se = std::sin(elevation), ce = std::cos(elevation);
    CameraFrame frame;
    frame.eye = eye;
    frame.view = MVector(sa * ce, se, -ca * ce);
    frame.up = MVector(-sa * se, ce, ca * se);
    frame.right = frame.view ^ frame.up;
    return frame;
}

CameraFrame cameraFrame(scene::DagNode& camera) {
    const MMatrix m = camera.worldMatrix();
    CameraFrame frame;
    frame.eye = MPoint(m(3, 0), m(3, 1), m(3, 2));
    frame.view = unit(MVector(-m(2, 0), -m(2, 1), -m(2, 2)), frame.view);
    const MVector above(m(1, 0), m(1, 1), m(1, 2));
    const MVector aside = std::abs(frame.view.x) < 0.9 ? MVector(1, 0, 0) : MVector(0, 1, 0);
    frame.up = unit(above - frame.view * (above * frame.view), unit(frame.view ^ aside, frame.up));
    frame.right = frame.view ^ frame.up;
    return frame;
}

} // namespace host::viewport
