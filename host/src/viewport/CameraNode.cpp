#include "viewport/CameraNode.h"

#include "scene/Evaluation.h"

#include <algorithm>
#include <cmath>

namespace host::viewport {
namespace {

MVector unit(const MVector& v, const MVector& otherwise) {
    const double length = std::sqrt(v * v);
    return std::isfinite(length) && length > 0 ? v / length : otherwise;
}

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
    const auto number = [&](std::string_view name) { return attributeNumber(camera, name); };
    CameraOptics optics;
    optics.focalLength = number("focalLength");
    optics.horizontalFilmAperture = number("horizontalFilmAperture");
    optics.verticalFilmAperture = number("verticalFilmAperture");
    optics.horizontalFilmOffset = number("horizontalFilmOffset");
    optics.verticalFilmOffset = number("verticalFilmOffset");
    optics.lensSqueezeRatio = number("lensSqueezeRatio");
    optics.filmFit = static_cast<FilmFit>(std::clamp(static_cast<int>(number("filmFit")), 0, 3));
    optics.filmFitOffset = number("filmFitOffset");
    optics.cameraScale = number("cameraScale");
    optics.overscan = number("overscan");
    optics.nearClip = number("nearClipPlane");
    optics.farClip = number("farClipPlane");
    optics.orthographic = number("orthographic") != 0;
    optics.orthoWidth = number("orthographicWidth");
    return optics;
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
