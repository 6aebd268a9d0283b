#include "SunTool.h"

#include "Editor.h"
#include "Theme.h"
#include "ViewWidget.h"

#include "commands/Host.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <QPainter>

#include <cmath>

namespace orvosky::window {
namespace {

constexpr double ringRadius = 15, nearRadius = 70; ///< pixels
constexpr double farAway = 1e7;                    ///< centimetres

} // namespace

void SunTool::setShown(bool shown) {
    shown_ = shown;
    view_.update();
}

void SunTool::setCourse(std::vector<MVector> course) {
    course_ = std::move(course);
    view_.update();
}

std::optional<MVector> SunTool::direction() {
    if (std::exchange(known_, editor_.changes()) != editor_.changes()) {
        plugs_.clear();
        if (host::Host::instance().interpreter().isCallable("orvoskySunPlugs"))
            plugs_ = editor_.ask("orvoskySunPlugs").toStringArray();
    }
    if (plugs_.empty()) return std::nullopt;
    host::scene::Cell* cell = Editor::scene().tryPlug(plugs_.front());
    if (!cell) return std::nullopt;
    host::scene::evaluate(*cell);
    const auto* n = std::get_if<host::scene::Numeric>(&cell->value);
    if (!n || n->count < 3) return std::nullopt;
    const MVector to(n->get(0), n->get(1), n->get(2));
    return to.length() > 0 ? std::optional(to.normal()) : std::nullopt;
}

std::optional<QPointF> SunTool::place() {
    const auto to = direction();
    return to ? view_.project(view_.eye() + *to * farAway) : std::nullopt;
}

void SunTool::paint(QPainter& painter) {
    std::optional<QPointF> before;
    for (std::size_t i = 0; i < course_.size(); ++i) {
        const auto at = course_[i].y > 0 ? view_.project(view_.eye() + course_[i] * farAway) : std::nullopt;
        if (at && before) {
            painter.setPen(QPen(QColor(0, 0, 0, 90), 3));
            painter.drawLine(*before, *at);
            painter.setPen(QPen(QColor(242, 207, 124, 200), 1.2));
            painter.drawLine(*before, *at);
        }
        before = at;
    }
    if (!shown_ && !near_ && !held_) return;
    const auto at = place();
    if (!at) return;
    // Dark below light: it is seen on every sky.
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 110), hot_ || held_ ? 5 : 4));
    painter.drawEllipse(*at, ringRadius, ringRadius);
    painter.setPen(QPen(hot_ || held_ ? QColor(Qt::white) : QColor("#f2cf7c"), hot_ || held_ ? 2.5 : 1.8));
    painter.drawEllipse(*at, ringRadius, ringRadius);
    painter.drawPoint(*at);
}

bool SunTool::hover(QPointF point) {
    const auto at = place();
    const double away = at ? QLineF(*at, point).length() : 1e9;
    const bool near = away < nearRadius, hot = away < ringRadius + 5;
    if (near != near_ || hot != hot_) view_.update();
    near_ = near;
    hot_ = hot;
    return hot;
}

bool SunTool::press(QPointF point, Qt::KeyboardModifiers) {
    const auto at = place();
    if (!at || QLineF(*at, point).length() >= ringRadius + 5) return false;
    held_ = true;
    grip_ = point - *at;
    last_.clear();
    return true;
}

std::string SunTool::statement(QPointF at) const {
    const MVector to = view_.ray(at - grip_);
    const auto rounded = [](double v) { return numberText(std::round(v * 1e4) / 1e4); };
    return "orvoskySetSun " + rounded(to.x) + " " + rounded(to.y) + " " + rounded(to.z) + ";";
}

void SunTool::drag(QPointF at, Qt::KeyboardModifiers) {
    if (!held_) return;
    last_ = statement(at);
    editor_.preview(last_);
}

void SunTool::release(QPointF, Qt::KeyboardModifiers) {
    held_ = false;
    if (!last_.empty()) editor_.finish(last_);
    last_.clear();
}

void SunTool::cancel() {
    held_ = false;
    last_.clear();
    editor_.cancelPreview();
}

} // namespace orvosky::window
