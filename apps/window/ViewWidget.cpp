#include "ViewWidget.h"

#include "Editor.h"
#include "Theme.h"
#include "WindowGl.h"

#include "commands/CommandSupport.h"
#include "scene/Scene.h"
#include "viewport/CameraNode.h"
#include "viewport/Viewport.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QOpenGLFunctions>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvosky::window {
namespace {

using host::viewport::Viewport;

constexpr double handMs = 40; ///< what a frame may take while the hand moves
constexpr int coarsest = 6;   ///< the least part of a side's pixels
constexpr int restAfterMs = 160, againAfterMs = 30;
constexpr double turnPerPixel = std::numbers::pi / 900;

double distanceOf(host::scene::DagNode& camera) {
    const double d = host::viewport::attributeNumber(camera, "centerOfInterest");
    return d > 0 ? d : 100;
}

} // namespace

ViewWidget::ViewWidget(Editor& editor, QWidget* parent) : QOpenGLWidget(parent), editor_(editor) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(160, 90);
    setUpdateBehavior(QOpenGLWidget::PartialUpdate);
    setObjectName("view");
    due_.setSingleShot(true);
    connect(&due_, &QTimer::timeout, this, &ViewWidget::draw);
    rest_.setSingleShot(true);
    rest_.setInterval(restAfterMs);
    connect(&rest_, &QTimer::timeout, this, [this] {
        moving_ = false;
        if (divisor_ != 1 || wanted_) refresh();
    });
}

ViewWidget::~ViewWidget() { close({}); }

void ViewWidget::close(const std::function<void()>& last) {
    if (gl_) gl_->makeCurrent();
    if (last) last();
    tools_.clear();
    active_ = nullptr;
    view_.reset();
    gl_.reset();
}

void ViewWidget::makeContextCurrent() {
    if (view_ && editor_.drawing)
        view_->resume();
    else if (gl_)
        gl_->makeCurrent();
}

void ViewWidget::refresh() {
    stale_ = true;
    due_.start();
}

void ViewWidget::draw() {
    // One that is not to be seen is drawn when it is shown.
    const QWindow* on = window()->windowHandle();
    if (!view_ || !stale_ || !isVisible() || !on || !on->isExposed()) return;
    if (editor_.waiting() || editor_.drawing || !gl_->makeCurrent()) return;
    drawFrame();
    update();
}

void ViewWidget::moved() {
    moving_ = true;
    rest_.start();
    refresh();
}

QSize ViewWidget::pixels() const {
    const double ratio = devicePixelRatioF();
    return {std::max(1, static_cast<int>(std::lround(width() * ratio))),
            std::max(1, static_cast<int>(std::lround(height() * ratio)))};
}

void ViewWidget::initializeGL() {
    if (gl_) return;
    gl_ = std::make_shared<WindowGl>(*this);
    std::string error;
    const QSize size = pixels();
    view_ = Viewport::create(gl_, size.width(), size.height(), &error);
    if (!view_) problem_ = QString::fromStdString(error);
    if (view_) view_->setRefresher([this] { wanted_ = true; });
}

void ViewWidget::resizeGL(int, int) { moved(); }

void ViewWidget::resizeEvent(QResizeEvent* event) {
    // Another size is another, empty target, which nothing is painted into before the frame is done.
    if (editor_.drawing) {
        if (!lastFrame_) {
            lastFrame_ = std::make_unique<QLabel>(this);
            lastFrame_->setObjectName("lastFrame");
            lastFrame_->setScaledContents(true);
            lastFrame_->setAttribute(Qt::WA_TransparentForMouseEvents);
            lastFrame_->setPixmap(QPixmap::fromImage(grabFramebuffer()));
        }
        lastFrame_->setGeometry(rect());
        lastFrame_->show();
    }
    QOpenGLWidget::resizeEvent(event);
}

bool ViewWidget::fits(int divisor) {
    const QSize all = pixels();
    const int w = std::max(1, all.width() / divisor), h = std::max(1, all.height() / divisor);
    if (view_->width() == w && view_->height() == h) return true;
    std::string error;
    if (view_->resize(w, h, &error)) return true;
    problem_ = QString::fromStdString(error);
    return false;
}

void ViewWidget::drawFrame() {
    int divisor = 1;
    if (moving_)
        while (divisor < coarsest && fullCost_ / (divisor * divisor) > handMs) ++divisor;
    problem_.clear();
    if (!fits(divisor)) return;
    stale_ = wanted_ = false;
    divisor_ = divisor;
    QElapsedTimer clock;
    clock.start();
    const unsigned long before = Editor::scene().generation();
    const bool modified = Editor::scene().modified;
    std::string error;
    view_->activate();
    // What takes long in a frame shows the window meanwhile, with the last frame in it.
    editor_.drawing = true;
    const bool whole = view_->render(&error);
    editor_.drawing = false;
    lastFrame_.reset();
    if (!whole) problem_ = QString::fromStdString(error);
    // Nodes that bring themselves up to date are no edit of the user's.
    Editor::scene().modified = modified;
    const double ms = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    // Much of a frame does not fall with its pixels: what few of them cost is counted in full.
    fullCost_ = divisor == 1 ? ms : std::max(fullCost_ * 0.9, ms);
    ++frames_;
    emit drawn(ms, divisor);
    if (Editor::scene().generation() != before)
        QMetaObject::invokeMethod(
            this, [this] { editor_.announce(); }, Qt::QueuedConnection);
    if (divisor != 1)
        rest_.start();
    else if (wanted_ && !moving_)
        QTimer::singleShot(againAfterMs, this, [this] {
            if (wanted_) refresh();
        });
}

void ViewWidget::paintGL() {
    if (editor_.drawing) return; // the last frame stays
    if (stale_) due_.start();
    const QSize size = pixels();
    if (view_) view_->copyTo(defaultFramebufferObject(), size.width(), size.height());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!safe_.isEmpty()) {
        const double scale = std::min(double(width()) / safe_.width(), double(height()) / safe_.height());
        const QSizeF inner(safe_.width() * scale, safe_.height() * scale);
        QPainterPath outside;
        outside.addRect(rect());
        outside.addRect(QRectF(QPointF((width() - inner.width()) / 2, (height() - inner.height()) / 2), inner));
        painter.fillPath(outside, QColor(0, 0, 0, 120));
    }
    if (!editor_.waiting())
        for (const auto& tool : tools_) tool->paint(painter);
    if (!problem_.isEmpty()) {
        painter.setPen(theme::text());
        painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, problem_);
    }
}

QImage ViewWidget::picture() {
    if (!view_ || !gl_->makeCurrent()) return {};
    moving_ = false;
    if (stale_ || divisor_ != 1 || wanted_) {
        view_->setRefresher({}); // nothing may count on another frame
        drawFrame();
        view_->setRefresher([this] { wanted_ = true; });
        update();
    }
    const host::viewport::Picture p = view_->picture();
    doneCurrent();
    return QImage(p.pixels.data(), p.width, p.height, static_cast<qsizetype>(p.rowBytes()), QImage::Format_RGB888)
        .copy();
}

host::scene::DagNode* ViewWidget::camera() const { return view_ ? view_->camera() : nullptr; }

void ViewWidget::useCamera(host::scene::DagNode* shape) {
    if (!shape)
        if (host::scene::Node* own = Editor::scene().findNode("perspShape")) shape = own->dag();
    if (!view_ || !shape || !view_->setCamera(*shape)) return;
    before_.reset();
    refresh();
    emit cameraChanged();
}

std::optional<CameraPose> ViewWidget::pose() const {
    host::scene::DagNode* node = camera();
    if (!node) return std::nullopt;
    const auto frame = host::viewport::cameraFrame(*node);
    CameraPose pose;
    pose.eye = frame.eye;
    pose.elevation = std::asin(std::clamp(frame.view.y, -1.0, 1.0));
    // Straight up or down, the direction is that of the head's upper side.
    const bool steep = std::abs(frame.view.y) > 0.9999999;
    const MVector level = steep ? frame.up * (frame.view.y > 0 ? -1 : 1) : frame.view;
    pose.azimuth = std::atan2(level.x, -level.z);
    pose.distance = distanceOf(*node);
    return pose;
}

void ViewWidget::setPose(const CameraPose& pose) {
    host::scene::DagNode* node = camera();
    if (!node || !node->parent) return;
    const std::string transform = quoted(node->parent->fullPath()), shape = quoted(node->fullPath() + ".coi");
    constexpr double degrees = 180 / std::numbers::pi;
    const double length = host::mel::lengthUnit();
    std::string mel = "xform -ws -t " + numberText(pose.eye.x / length) + " " + numberText(pose.eye.y / length) + " " +
                      numberText(pose.eye.z / length) + " -ro " + numberText(pose.elevation * degrees) + " " +
                      numberText(-pose.azimuth * degrees) + " 0 " + transform + ";";
    mel += "setAttr " + shape + " " + numberText(pose.distance / length) + ";";
    if (editor_.runAside(mel)) moved();
    emit cameraChanged();
}

void ViewWidget::frame(bool all) {
    const auto from = pose();
    if (!from) return;
    host::mel::Bounds box;
    if (!all) box = host::mel::boundsOf(host::mel::selectedNodes());
    if (box.empty()) {
        std::vector<host::scene::Node*> nodes;
        for (host::scene::DagNode* child : Editor::scene().world()->children)
            if (child->visible()) nodes.push_back(child);
        box = host::mel::boundsOf(nodes, {}, true);
    }
    if (box.empty()) return;
    const MVector centre = box.centre();
    const MVector half(box.sides[3] - centre.x, box.sides[4] - centre.y, box.sides[5] - centre.z);
    const auto fov = host::viewport::portFieldOfView(host::viewport::cameraOptics(*camera()), width(), height());
    if (!fov) return;
    before_.reset();
    setPose(
        framed(*from, MPoint(centre.x, centre.y, centre.z), half.length(), std::min(fov->horizontal, fov->vertical)));
}

void ViewWidget::lookUp(bool on) {
    auto at = pose();
    if (!at || on == looksUp()) return;
    if (on) {
        before_ = at;
        at->elevation = std::numbers::pi / 3;
        setPose(*at);
    } else {
        const CameraPose back = *before_;
        before_.reset();
        setPose(back);
    }
}

void ViewWidget::setSafeFrame(int width, int height) {
    safe_ = QSize(width, height);
    update();
}

std::optional<QPointF> ViewWidget::project(const MPoint& world) const {
    if (!view_) return std::nullopt;
    const auto seen = view_->worldToCamera(), projected = view_->projection();
    if (!seen || !projected) return std::nullopt;
    const MPoint at = world * *seen;
    const MPoint clip = MPoint(at.x, at.y, at.z, 1) * *projected;
    if (clip.w <= 1e-9) return std::nullopt;
    return QPointF((clip.x / clip.w * 0.5 + 0.5) * width(), (0.5 - clip.y / clip.w * 0.5) * height());
}

MVector ViewWidget::ray(QPointF pixel) const {
    const auto projected = view_ ? view_->projection() : std::nullopt;
    host::scene::DagNode* node = camera();
    if (!projected || !node) return MVector(0, 0, -1);
    const auto frame = host::viewport::cameraFrame(*node);
    const double x = (pixel.x() / width() * 2 - 1 + (*projected)(2, 0)) / (*projected)(0, 0);
    const double y = (1 - pixel.y() / height() * 2 + (*projected)(2, 1)) / (*projected)(1, 1);
    return (frame.view + frame.right * x + frame.up * y).normal();
}

MPoint ViewWidget::eye() const {
    host::scene::DagNode* node = camera();
    return node ? host::viewport::cameraFrame(*node).eye : MPoint();
}

double ViewWidget::pixelSize(const MPoint& world) const {
    const auto projected = view_ ? view_->projection() : std::nullopt;
    host::scene::DagNode* node = camera();
    if (!projected || !node) return 1;
    const auto frame = host::viewport::cameraFrame(*node);
    const double depth = (world - frame.eye) * frame.view;
    return std::max(depth, 1e-3) * 2 / ((*projected)(1, 1) * height());
}

void ViewWidget::cancelTool() {
    if (active_) active_->cancel();
    active_ = nullptr;
    if (move_ == Move::Tool) move_ = Move::None;
    update();
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    if (move_ != Move::None) return;
    last_ = pressed_ = event->position();
    clicking_ = false;
    const bool alt = event->modifiers() & Qt::AltModifier;
    switch (event->button()) {
    case Qt::LeftButton:
        if (alt) {
            move_ = looksUp() ? Move::Turn : Move::Tumble;
            break;
        }
        clicking_ = true;
        for (auto tool = tools_.rbegin(); tool != tools_.rend() && !active_; ++tool)
            if ((*tool)->press(last_, event->modifiers())) active_ = tool->get();
        if (active_) move_ = Move::Tool;
        break;
    case Qt::MiddleButton: move_ = alt || event->modifiers() & Qt::ShiftModifier ? Move::Track : Move::Turn; break;
    case Qt::RightButton:
        if (alt) move_ = Move::Dolly;
        break;
    default: break;
    }
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position(), by = at - last_;
    last_ = at;
    if ((at - pressed_).manhattanLength() > 3) clicking_ = false;
    if (move_ == Move::None) {
        bool found = false;
        for (auto tool = tools_.rbegin(); tool != tools_.rend(); ++tool)
            found = (!found && (*tool)->hover(at)) || found;
        if (event->buttons() == Qt::NoButton) setCursor(found ? Qt::PointingHandCursor : Qt::ArrowCursor);
        return;
    }
    if (move_ == Move::Tool) {
        if (active_) active_->drag(at, event->modifiers());
        return;
    }
    auto from = pose();
    if (!from) return;
    switch (move_) {
    case Move::Tumble: setPose(tumbled(*from, by.x() * turnPerPixel, -by.y() * turnPerPixel)); break;
    case Move::Turn: setPose(turned(*from, -by.x() * turnPerPixel, by.y() * turnPerPixel)); break;
    case Move::Track:
        setPose(tracked(*from, -by.x() / height(), by.y() / height(), pixelSize(from->interest()) * height()));
        break;
    case Move::Dolly: setPose(dollied(*from, std::exp(-(by.x() - by.y()) / 250))); break;
    default: break;
    }
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->buttons() != Qt::NoButton) return;
    const Move was = std::exchange(move_, Move::None);
    if (was == Move::Tool && active_) {
        std::exchange(active_, nullptr)->release(event->position(), event->modifiers());
        update();
        return;
    }
    if (was == Move::None && clicking_ && event->button() == Qt::LeftButton)
        emit clicked(event->position(), event->modifiers());
    clicking_ = false;
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    if (const auto from = pose(); from && move_ == Move::None)
        setPose(dollied(*from, std::exp(-event->angleDelta().y() / 120.0 * 0.12)));
    event->accept();
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && active_)
        cancelTool();
    else
        QOpenGLWidget::keyPressEvent(event);
}

void ViewWidget::leaveEvent(QEvent*) {
    for (const auto& tool : tools_) tool->hover(QPointF(-1e6, -1e6));
    update();
}

} // namespace orvosky::window
