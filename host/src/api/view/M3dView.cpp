#include <maya/M3dView.h>

#include "api/graph/Handle.h"
#include "scene/Scene.h"
#include "values/StatusOut.h"
#include "viewport/Viewport.h"

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace host;
using host::api::Access;
using viewport::PortRect;
using viewport::Viewport;

namespace {

MStatus::MStatusCode done(bool ok) { return ok ? MStatus::kSuccess : MStatus::kFailure; }

/// A port position brought back to the world at a depth of -1 (near) to 1 (far).
MPoint unproject(const MMatrix& clipToWorld, const PortRect& port, short x, short y, double depth) {
    const double across = 2.0 * (x - port.x) / port.width - 1, up = 2.0 * (y - port.y) / port.height - 1;
    MPoint p = MPoint(across, up, depth) * clipToWorld;
    p.cartesianize();
    return p;
}

short toShort(double v) {
    using Limits = std::numeric_limits<short>;
    if (std::isnan(v)) return 0;
    return static_cast<short>(std::clamp(std::round(v), double(Limits::min()), double(Limits::max())));
}

} // namespace

static_assert(Viewport::showMeshes == M3dView::kDisplayMeshes && Viewport::showLocators == M3dView::kDisplayLocators);

M3dView Access::view(unsigned long serial) { return M3dView(serial); }

M3dView::M3dView() = default;
M3dView::M3dView(unsigned long serial) : serial_(serial) {}
M3dView::~M3dView() = default;

M3dView M3dView::active3dView(MStatus* ReturnStatus) {
    const Viewport* view = Viewport::active();
    setStatus(ReturnStatus, done(view != nullptr));
    return view ? Access::view(view->serial()) : M3dView();
}

unsigned int M3dView::numberOf3dViews() { return static_cast<unsigned int>(Viewport::count()); }

MStatus M3dView::get3dView(const unsigned int index, M3dView& view) {
    const Viewport* found = Viewport::at(index);
    if (!found) return MStatus::kInvalidParameter;
    view = Access::view(found->serial());
    return MStatus::kSuccess;
}

M3dView::DisplayStatus M3dView::displayStatus(const MDagPath& path, MStatus* ReturnStatus) {
    const auto node = Access::dagNode(path.node());
    setStatus(ReturnStatus, done(node != nullptr));
    if (!node) return kNoStatus;
    const auto& selection = node->scene.selection();
    bool invisible = false, intermediate = false, templated = false, selected = false, lead = false;
    for (scene::DagNode* n = node->dag(); n; n = n->parent) {
        invisible |= !n->visible();
        intermediate |= n->intermediate();
        templated |= n->templated();
        for (const auto& item : selection)
            if (item.node.get() == n && item.isWhole()) {
                selected = true;
                lead |= &item == &selection.back();
            }
    }
    if (invisible) return kInvisible;
    if (intermediate) return kIntermediateObject;
    if (templated) return selected ? kActiveTemplate : kTemplate;
    return lead ? kLead : selected ? kActive : kDormant;
}

int M3dView::portWidth(MStatus* ReturnStatus) {
    const Viewport* view = Viewport::find(serial_);
    setStatus(ReturnStatus, done(view != nullptr));
    return view ? view->width() : 0;
}

int M3dView::portHeight(MStatus* ReturnStatus) {
    const Viewport* view = Viewport::find(serial_);
    setStatus(ReturnStatus, done(view != nullptr));
    return view ? view->height() : 0;
}

bool M3dView::isVisible(MStatus* ReturnStatus) {
    const bool open = Viewport::find(serial_) != nullptr;
    setStatus(ReturnStatus, done(open));
    return open;
}

MStatus M3dView::pushViewport(unsigned int x, unsigned int y, unsigned int width, unsigned int height) {
    constexpr unsigned int most = std::numeric_limits<int>::max();
    if (std::max({x, y, width, height}) > most || width == 0 || height == 0) return MStatus::kInvalidParameter;
    Viewport* view = Viewport::find(serial_);
    return done(view && view->pushPort({static_cast<int>(x), static_cast<int>(y), static_cast<int>(width),
                                        static_cast<int>(height)}));
}

MStatus M3dView::popViewport() {
    Viewport* view = Viewport::find(serial_);
    return done(view && view->popPort());
}

MStatus M3dView::viewport(unsigned int& x, unsigned int& y, unsigned int& width, unsigned int& height) const {
    const Viewport* view = Viewport::find(serial_);
    if (!view) return MStatus::kFailure;
    const PortRect port = view->port();
    x = static_cast<unsigned int>(port.x);
    y = static_cast<unsigned int>(port.y);
    width = static_cast<unsigned int>(port.width);
    height = static_cast<unsigned int>(port.height);
    return MStatus::kSuccess;
}

MStatus M3dView::beginGL() {
    Viewport* view = Viewport::find(serial_);
    return done(view && view->beginGL());
}

MStatus M3dView::endGL() {
    Viewport* view = Viewport::find(serial_);
    return done(view && view->endGL());
}

bool M3dView::selectMode() const { return false; }

MStatus M3dView::setDrawColor(const MColor& color) {
    Viewport* view = Viewport::find(serial_);
    if (!view || !view->makeCurrent()) return MStatus::kFailure;
    glColor3f(color.r, color.g, color.b);
    return MStatus::kSuccess;
}

MStatus M3dView::setDrawColorAndAlpha(const MColor& color) {
    Viewport* view = Viewport::find(serial_);
    if (!view || !view->makeCurrent()) return MStatus::kFailure;
    glColor4f(color.r, color.g, color.b, color.a);
    return MStatus::kSuccess;
}

MStatus M3dView::colorMask(bool& r, bool& g, bool& b, bool& a) {
    Viewport* view = Viewport::find(serial_);
    if (!view || !view->makeCurrent()) return MStatus::kFailure;
    GLboolean mask[4] = {};
    glGetBooleanv(GL_COLOR_WRITEMASK, mask);
    r = mask[0] != GL_FALSE;
    g = mask[1] != GL_FALSE;
    b = mask[2] != GL_FALSE;
    a = mask[3] != GL_FALSE;
    return MStatus::kSuccess;
}

MStatus M3dView::setColorMask(bool r, bool g, bool b, bool a) {
    Viewport* view = Viewport::find(serial_);
    if (!view || !view->makeCurrent()) return MStatus::kFailure;
    glColorMask(r, g, b, a);
    return MStatus::kSuccess;
}

MStatus M3dView::drawText(const MString&, const MPoint, M3dView::TextPosition) {
    return Viewport::find(serial_) ? MStatus::kNotImplemented : MStatus::kFailure;
}

M3dView::DisplayStyle M3dView::displayStyle(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, done(Viewport::find(serial_) != nullptr));
    return kGouraudShaded;
}

MStatus M3dView::setObjectDisplay(unsigned int displayMask) {
    Viewport* view = Viewport::find(serial_);
    if (view) view->setObjectDisplay(displayMask);
    return done(view != nullptr);
}

unsigned int M3dView::objectDisplay(MStatus* ReturnStatus) {
    const Viewport* view = Viewport::find(serial_);
    setStatus(ReturnStatus, done(view != nullptr));
    return view ? view->objectDisplay() : 0;
}

M3dView::RendererName M3dView::getRendererName(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, done(Viewport::find(serial_) != nullptr));
    return kDefaultQualityRenderer;
}

bool M3dView::isBackgroundGradient(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

MColor M3dView::templateColor(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return MColor(Viewport::templateGrey, Viewport::templateGrey, Viewport::templateGrey);
}

MColor M3dView::backgroundColor(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return MColor();
}

MStatus M3dView::scheduleRefresh() {
    Viewport* view = Viewport::find(serial_);
    return done(view && view->scheduleRefresh());
}

MStatus M3dView::refresh(bool all, bool) {
    Viewport* own = Viewport::find(serial_);
    if (!own) return MStatus::kFailure;
    if (!all) return done(own->render());
    bool ok = true;
    for (std::size_t i = 0; i < Viewport::count(); ++i) ok = Viewport::at(i)->render() && ok;
    return done(ok);
}

MStatus M3dView::getCamera(MDagPath& camera) {
    const Viewport* view = Viewport::find(serial_);
    scene::DagNode* node = view ? view->camera() : nullptr;
    return node ? MDagPath::getAPathTo(Access::object(node), camera) : MStatus::kFailure;
}

MStatus M3dView::setCamera(MDagPath& camera) {
    Viewport* view = Viewport::find(serial_);
    const auto node = Access::dagNode(camera.node());
    if (!view || !node) return MStatus::kFailure;
    scene::DagNode* shape = viewport::cameraShapeOf(*node);
    return shape && view->setCamera(*shape) ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus M3dView::viewToWorld(short x_pos, short y_pos, MPoint& worldPt, MVector& worldVector) const {
    MPoint farPoint;
    const MStatus status = viewToWorld(x_pos, y_pos, worldPt, farPoint);
    if (status) worldVector = (farPoint - worldPt).normal();
    return status;
}

MStatus M3dView::viewToWorld(short x_pos, short y_pos, MPoint& nearClipPt, MPoint& farClipPt) const {
    const Viewport* view = Viewport::find(serial_);
    if (!view) return MStatus::kFailure;
    const auto projection = view->projection(), worldToCamera = view->worldToCamera();
    if (!projection || !worldToCamera) return MStatus::kFailure;
    const MMatrix clipToWorld = projection->inverse() * worldToCamera->inverse();
    nearClipPt = unproject(clipToWorld, view->port(), x_pos, y_pos, -1);
    farClipPt = unproject(clipToWorld, view->port(), x_pos, y_pos, 1);
    return MStatus::kSuccess;
}

MStatus M3dView::viewToObjectSpace(short x_pos, short y_pos, const MMatrix& localMatrixInverse, MPoint& oPt,
                                   MVector& oVector) const {
    MPoint nearPoint, farPoint;
    const MStatus status = viewToWorld(x_pos, y_pos, nearPoint, farPoint);
    if (!status) return status;
    oPt = nearPoint * localMatrixInverse;
    oVector = ((farPoint - nearPoint) * localMatrixInverse).normal();
    return status;
}

bool M3dView::worldToView(const MPoint& worldPt, short& x_pos, short& y_pos, MStatus* ReturnStatus) const {
    const Viewport* view = Viewport::find(serial_);
    const auto projection = view ? view->projection() : std::nullopt;
    const auto worldToCamera = view ? view->worldToCamera() : std::nullopt;
    setStatus(ReturnStatus, done(projection && worldToCamera));
    x_pos = y_pos = 0;
    if (!projection || !worldToCamera) return false;
    const MPoint clip = worldPt * *worldToCamera * *projection;
    if (clip.w == 0) return false;
    const PortRect port = view->port();
    x_pos = toShort(port.x + (clip.x / clip.w + 1) / 2 * port.width);
    y_pos = toShort(port.y + (clip.y / clip.w + 1) / 2 * port.height);
    return clip.w > 0 && std::max({std::abs(clip.x), std::abs(clip.y), std::abs(clip.z)}) <= clip.w;
}

MStatus M3dView::projectionMatrix(MMatrix& projMat) const {
    const Viewport* view = Viewport::find(serial_);
    const auto m = view ? view->projection() : std::nullopt;
    if (m) projMat = *m;
    return done(m.has_value());
}

MStatus M3dView::modelViewMatrix(MMatrix& modelViewMatrix) const {
    const Viewport* view = Viewport::find(serial_);
    const auto m = view ? view->modelView() : std::nullopt;
    if (m) modelViewMatrix = *m;
    return done(m.has_value());
}

MStatus M3dView::updateViewingParameters() {
    Viewport* view = Viewport::find(serial_);
    return done(view && view->updateMatrices());
}

const char* M3dView::className() { return "M3dView"; }
