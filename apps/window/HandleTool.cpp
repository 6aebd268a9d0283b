#include "HandleTool.h"

#include "Editor.h"
#include "Theme.h"
#include "ViewWidget.h"

#include "commands/CommandSupport.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvosky::window {
namespace {

constexpr double reach = 84;     ///< of a handle on the screen, pixels
constexpr double nearEnough = 7; ///< of the pointer to a handle, pixels
constexpr int ringSteps = 64;

QColor colourOf(int axis) {
    switch (axis) {
    case 0: return QColor("#d9796f");
    case 1: return QColor("#86b873");
    case 2: return QColor("#7396d6");
    default: return theme::text();
    }
}

double toSegment(QPointF p, QPointF a, QPointF b) {
    const QPointF along = b - a;
    const double length = QPointF::dotProduct(along, along);
    const double t = length > 0 ? std::clamp(QPointF::dotProduct(p - a, along) / length, 0.0, 1.0) : 0;
    const QPointF d = p - (a + along * t);
    return std::hypot(d.x(), d.y());
}

/// Where on the axis the ray passes it nearest, in lengths of the axis.
double alongAxis(const MPoint& origin, const MVector& axis, const MPoint& eye, const MVector& ray) {
    const MVector w = origin - eye;
    const double b = axis * ray, d = axis * w, e = ray * w, det = 1 - b * b;
    return det > 1e-9 ? (b * e - d) / det : 0;
}

double snapped(double value, double step, bool on) { return on ? std::round(value / step) * step : value; }
double tidy(double value) { return std::round(value * 1e4) / 1e4; }

} // namespace

void HandleTool::setMode(Mode mode) {
    mode_ = mode;
    hot_ = none;
    view_.update();
}

void HandleTool::setLocal(bool local) {
    local_ = local;
    view_.update();
}

std::vector<std::string> HandleTool::targets() const {
    std::vector<std::string> names;
    for (const auto& item : Editor::scene().selection())
        if (host::scene::DagNode* dag = item.node->dag())
            if (host::scene::DagNode* transform = dag->isShape() ? dag->parent : dag;
                transform && !transform->isWorld())
                if (std::string name = quoted(transform->partialPath()); std::ranges::find(names, name) == names.end())
                    names.push_back(std::move(name));
    return names;
}

std::optional<HandleTool::Place> HandleTool::place() const {
    const auto& selection = Editor::scene().selection();
    host::scene::DagNode* dag = selection.empty() ? nullptr : selection.back().node->dag();
    if (dag && dag->isShape()) dag = dag->parent;
    if (!dag || dag->isWorld() || mode_ == Mode::Select) return std::nullopt;
    const MMatrix world = dag->worldMatrix();
    Place place;
    place.origin = MPoint(world(3, 0), world(3, 1), world(3, 2));
    for (unsigned k = 0; k < 3; ++k) {
        const MVector own(world(k, 0), world(k, 1), world(k, 2));
        MVector axis(k == 0, k == 1, k == 2);
        if ((local_ || mode_ != Mode::Move) && own.length() > 1e-12) axis = own.normal();
        place.axes[k] = axis;
    }
    place.size = view_.pixelSize(place.origin) * reach;
    return place;
}

std::vector<QPointF> HandleTool::ring(const Place& place, int axis) const {
    std::vector<QPointF> points;
    const MVector u = place.axes[static_cast<std::size_t>((axis + 1) % 3)];
    const MVector v = place.axes[static_cast<std::size_t>((axis + 2) % 3)];
    for (int i = 0; i <= ringSteps; ++i) {
        const double a = 2 * std::numbers::pi * i / ringSteps;
        if (const auto p = view_.project(place.origin + (u * std::cos(a) + v * std::sin(a)) * place.size))
            points.push_back(*p);
    }
    return points;
}

int HandleTool::at(QPointF point, const Place& place) const {
    const auto centre = view_.project(place.origin);
    if (!centre) return none;
    if (mode_ != Mode::Rotate && QLineF(point, *centre).length() < nearEnough + 2) return middle;
    int best = none;
    double nearest = nearEnough;
    for (int axis = 0; axis < 3; ++axis) {
        double away = 1e9;
        if (mode_ == Mode::Rotate) {
            const auto points = ring(place, axis);
            for (std::size_t i = 1; i < points.size(); ++i)
                away = std::min(away, toSegment(point, points[i - 1], points[i]));
        } else if (const auto tip =
                       view_.project(place.origin + place.axes[static_cast<std::size_t>(axis)] * place.size)) {
            away = toSegment(point, *centre, *tip);
        }
        if (away < nearest) {
            nearest = away;
            best = axis;
        }
    }
    return best;
}

void HandleTool::paint(QPainter& painter) {
    const auto where = place();
    const auto centre = where ? view_.project(where->origin) : std::nullopt;
    if (!centre) return;
    const int lit = held_ != none ? held_ : hot_;
    const auto pen = [&](int part) {
        const QColor colour = part == lit ? QColor(Qt::white) : colourOf(part);
        return QPen(colour, part == lit ? 2.5 : 1.8, Qt::SolidLine, Qt::RoundCap);
    };
    for (int axis = 0; axis < 3; ++axis) {
        painter.setPen(pen(axis));
        painter.setBrush(Qt::NoBrush);
        if (mode_ == Mode::Rotate) {
            const auto points = ring(*where, axis);
            painter.drawPolyline(points.data(), static_cast<int>(points.size()));
            continue;
        }
        const auto tip = view_.project(where->origin + where->axes[static_cast<std::size_t>(axis)] * where->size);
        if (!tip) continue;
        const QLineF line(*centre, *tip);
        painter.drawLine(line);
        painter.setBrush(painter.pen().color());
        painter.setPen(Qt::NoPen);
        if (line.length() < 6) continue;
        if (mode_ == Mode::Scale) {
            painter.drawRect(QRectF(*tip - QPointF(4, 4), QSizeF(8, 8)));
        } else {
            const QPointF d = (*tip - *centre) / line.length(), n(-d.y(), d.x());
            painter.drawPolygon(QPolygonF{*tip + d * 10, *tip + n * 4.5, *tip - n * 4.5});
        }
    }
    if (mode_ == Mode::Rotate) return;
    painter.setPen(pen(middle));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(*centre - QPointF(5, 5), QSizeF(10, 10)));
}

bool HandleTool::hover(QPointF point) {
    const auto where = place();
    const int now = where ? at(point, *where) : none;
    if (now != hot_) view_.update();
    hot_ = now;
    return now != none;
}

bool HandleTool::press(QPointF point, Qt::KeyboardModifiers modifiers) {
    const auto where = place();
    held_ = where ? at(point, *where) : none;
    if (held_ == none) return false;
    from_ = point;
    start_ = *where;
    last_.clear();
    // A drag of copies selects them: what is dragged is what was selected before.
    names_.clear();
    for (const auto& name : targets()) names_ += " " + name;
    copies_ = mode_ == Mode::Move && modifiers & Qt::ShiftModifier;
    return true;
}

std::string HandleTool::statement(QPointF point, Qt::KeyboardModifiers modifiers) const {
    const bool snap = modifiers & Qt::ControlModifier;
    const auto triple = [](double x, double y, double z) {
        return numberText(x) + " " + numberText(y) + " " + numberText(z);
    };
    const auto axis = held_ == middle ? MVector() : start_.axes[static_cast<std::size_t>(held_)];
    if (mode_ == Mode::Move) {
        MVector by;
        if (held_ == middle) {
            const double pixel = view_.pixelSize(start_.origin);
            const auto pose = view_.pose();
            by = pose->right() * ((point.x() - from_.x()) * pixel) - pose->up() * ((point.y() - from_.y()) * pixel);
            by = MVector(snapped(by.x, 100, snap), snapped(by.y, 100, snap), snapped(by.z, 100, snap));
        } else {
            const MPoint eye = view_.eye();
            const double way = alongAxis(start_.origin, axis, eye, view_.ray(point)) -
                               alongAxis(start_.origin, axis, eye, view_.ray(from_));
            by = axis * snapped(way, 100, snap);
        }
        const double unit = host::mel::lengthUnit();
        const std::string to = triple(tidy(by.x / unit), tidy(by.y / unit), tidy(by.z / unit));
        if (!copies_) return "move -r -ws " + to + names_ + ";";
        const bool clouds = host::Host::instance().interpreter().isCallable("orvoskyGenerateClouds");
        return "{ string $copies[] = `duplicate" + names_ + "`; move -r -ws " + to + " $copies; " +
               (clouds ? "orvoskyGenerateClouds $copies; " : "") + "select -r $copies; }";
    }
    if (mode_ == Mode::Rotate) {
        const QPointF centre = view_.project(start_.origin).value_or(from_);
        double angle = QLineF(centre, from_).angleTo(QLineF(centre, point));
        if (angle > 180) angle -= 360;
        // Turning towards the eye is to the left.
        if ((view_.eye() - start_.origin) * axis < 0) angle = -angle;
        angle = std::round(snapped(angle, 15, snap) * 100) / 100;
        return "rotate -r -os " + triple(held_ == 0 ? angle : 0, held_ == 1 ? angle : 0, held_ == 2 ? angle : 0) +
               names_ + ";";
    }
    double factor;
    if (held_ == middle) {
        factor = std::exp((point.x() - from_.x()) / 120);
    } else {
        const QPointF centre = view_.project(start_.origin).value_or(from_);
        const QPointF tip = view_.project(start_.origin + axis * start_.size).value_or(from_);
        const double length = std::max(QPointF::dotProduct(tip - centre, tip - centre), 1.0);
        factor = std::max(0.01, 1 + QPointF::dotProduct(point - from_, tip - centre) / length);
    }
    factor = std::max(0.01, std::round(snapped(factor, 0.1, snap) * 1000) / 1000);
    const auto part = [&](int k) { return held_ == middle || held_ == k ? factor : 1; };
    return "scale -r " + triple(part(0), part(1), part(2)) + names_ + ";";
}

void HandleTool::drag(QPointF point, Qt::KeyboardModifiers modifiers) {
    if (held_ == none) return;
    last_ = statement(point, modifiers);
    editor_.preview(last_);
}

void HandleTool::release(QPointF, Qt::KeyboardModifiers) {
    held_ = none;
    if (!last_.empty()) editor_.finish(last_);
    last_.clear();
}

void HandleTool::cancel() {
    held_ = none;
    last_.clear();
    editor_.cancelPreview();
}

} // namespace orvosky::window
