#include "HeightTool.h"

#include "Editor.h"
#include "PlugView.h"
#include "Theme.h"
#include "ViewWidget.h"

#include "commands/Host.h"
#include "scene/Scene.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace orvosky::window {
namespace {

constexpr double nearBar = 8;                        ///< of the pointer to a bar, pixels
constexpr double nearest = 3000, spread = 3.5;       ///< centimetres; how many heights above the eye it is away
constexpr double tooFar = 4;                         ///< times as far as that: it lies too flat to be held
constexpr double halfWidth = 0.28, halfDepth = 0.16; ///< of a plane's picture, in distances

/// The attribute of a plug's full name; none when it is gone.
std::optional<PlugView> viewOf(const std::string& plug) {
    const auto dot = plug.rfind('.');
    host::scene::Node* node = dot == plug.npos ? nullptr : Editor::scene().findNode(plug.substr(0, dot));
    const auto* attribute = node ? node->findAttribute(plug.substr(dot + 1)) : nullptr;
    return attribute ? std::optional(PlugView(node->shared_from_this(), *attribute)) : std::nullopt;
}

} // namespace

const std::vector<HeightTool::Plane>& HeightTool::planes() {
    if (std::exchange(known_, editor_.changes()) == editor_.changes()) return planes_;
    const auto before = std::exchange(planes_, {});
    if (Editor::scene().selection().empty() || !host::Host::instance().interpreter().isCallable("orvoskyHeightPlanes"))
        return planes_;
    const auto words = editor_.ask("orvoskyHeightPlanes").toStringArray();
    for (std::size_t i = 0; i + 2 < words.size(); i += 3)
        if (const auto plug = viewOf(words[i]); plug && plug->settable())
            planes_.push_back({words[i], QString::fromStdString(words[i + 1]).toDouble(), plug->number(),
                               QString::fromStdString(words[i + 2])});
    if (!std::ranges::equal(before, planes_, {}, &Plane::plug, &Plane::plug)) away_ = 0;
    return planes_;
}

std::optional<HeightTool::Place> HeightTool::placeOf(const Plane& plane, double away) const {
    const auto pose = view_.pose();
    if (!pose) return std::nullopt;
    Place place;
    place.ahead = MVector(std::sin(pose->azimuth), 0, -std::cos(pose->azimuth));
    place.right = pose->right();
    place.away = away;
    place.middle = pose->eye + place.ahead * away;
    place.middle.y = plane.height();
    return place;
}

double HeightTool::fittingDistance() const {
    double away = nearest;
    for (const Plane& p : planes_) away = std::max(away, spread * std::abs(p.height() - view_.eye().y));
    return away;
}

std::optional<HeightTool::Place> HeightTool::placeOf(const Plane& plane) {
    // A distance that followed the heights would show each of them at the same place, and a plane that is let go would
    // jump: it stays until that leaves a plane out of view, or flat on the horizon.
    if (held_ < 0) {
        const double fitting = fittingDistance();
        const auto inView = [&](const Plane& p, double away) {
            const auto place = placeOf(p, away);
            const auto point = place ? view_.project(place->middle) : std::nullopt;
            return point && QRectF(view_.rect()).contains(*point);
        };
        const auto lost = [&](const Plane& p) { return !inView(p, away_) && inView(p, fitting); };
        if (away_ <= 0 || away_ > tooFar * loose_ * fitting || std::ranges::any_of(planes_, lost)) {
            away_ = fitting;
            loose_ = 1;
        }
    }
    return placeOf(plane, away_);
}

std::optional<QPointF> HeightTool::grip(const std::string& plug) {
    for (const Plane& plane : planes())
        if (plane.plug == plug)
            if (const auto place = placeOf(plane)) return view_.project(place->middle);
    return std::nullopt;
}

int HeightTool::at(QPointF point) {
    const auto& all = planes();
    for (int i = 0; i < static_cast<int>(all.size()); ++i) {
        const auto place = placeOf(all[static_cast<std::size_t>(i)]);
        if (!place) continue;
        const MVector half = place->right * (halfWidth * place->away);
        const auto left = view_.project(place->middle - half), right = view_.project(place->middle + half);
        if (!left || !right) continue;
        const QPointF along = *right - *left;
        const double length = QPointF::dotProduct(along, along);
        const double t = length > 0 ? std::clamp(QPointF::dotProduct(point - *left, along) / length, 0.0, 1.0) : 0;
        if (QLineF(point, *left + along * t).length() < nearBar) return i;
    }
    return -1;
}

void HeightTool::paint(QPainter& painter) {
    const auto& all = planes();
    for (int i = 0; i < static_cast<int>(all.size()); ++i) {
        const Plane& plane = all[static_cast<std::size_t>(i)];
        auto place = i == held_ ? std::optional(start_) : placeOf(plane);
        if (!place) continue;
        place->middle.y = plane.height();
        const MVector r = place->right * (halfWidth * place->away), a = place->ahead * (halfDepth * place->away);
        QPolygonF outline;
        for (const MVector& corner : {r + a, r - a, MVector() - r - a, a - r})
            if (const auto p = view_.project(place->middle + corner)) outline << *p;
        const auto left = view_.project(place->middle - r), right = view_.project(place->middle + r);
        const auto middle = view_.project(place->middle);
        if (outline.size() < 4 || !left || !right || !middle) continue;
        const bool lit = i == hot_ || i == held_;
        QColor colour = lit ? QColor(Qt::white) : theme::accent();
        QColor fill = colour;
        fill.setAlpha(lit ? 46 : 28);
        painter.setBrush(fill);
        painter.setPen(QPen(colour, 1));
        painter.drawPolygon(outline);
        painter.setPen(QPen(QColor(0, 0, 0, 110), lit ? 5 : 4, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(*left, *right);
        painter.setPen(QPen(colour, lit ? 2.5 : 1.8, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(*left, *right);
        painter.setBrush(colour);
        painter.setPen(Qt::NoPen);
        for (const double way : {-1.0, 1.0})
            painter.drawPolygon(QPolygonF{*middle + QPointF(0, way * 12), *middle + QPointF(-5, way * 4),
                                          *middle + QPointF(5, way * 4)});
        painter.setPen(QColor(0, 0, 0, 160));
        const QString text = QString("%1  %2 m").arg(plane.name).arg(plane.metres, 0, 'g', 6);
        const QPointF beside(outline.boundingRect().right() + 8, right->y() + 4);
        painter.drawText(beside + QPointF(1, 1), text);
        painter.setPen(colour);
        painter.drawText(beside, text);
    }
}

bool HeightTool::hover(QPointF point) {
    const int now = at(point);
    if (now != hot_) view_.update();
    hot_ = now;
    return now >= 0;
}

bool HeightTool::press(QPointF point, Qt::KeyboardModifiers) {
    held_ = at(point);
    if (held_ < 0) return false;
    dragged_ = planes()[static_cast<std::size_t>(held_)];
    start_ = *placeOf(dragged_);
    const MVector ray = view_.ray(point);
    const double forward = ray * start_.ahead;
    grip_ = forward > 1e-6 ? view_.eye().y + ray.y / forward * start_.away - dragged_.height() : 0;
    last_.clear();
    return true;
}

std::string HeightTool::statement(QPointF at, Qt::KeyboardModifiers modifiers) const {
    const auto plug = viewOf(dragged_.plug);
    const MVector ray = view_.ray(at);
    const double forward = ray * start_.ahead;
    if (!plug || forward <= 1e-6) return {};
    const double world = view_.eye().y + ray.y / forward * start_.away - grip_;
    const double step = modifiers & Qt::ControlModifier ? 10 : 0.1; // metres
    double metres = std::round((world - dragged_.zero) / 100 / step) * step;
    metres = std::round(metres * 10) / 10;
    if (const auto low = plug->min()) metres = std::max(metres, *low);
    if (const auto high = plug->max()) metres = std::min(metres, *high);
    return (plug->keyed() ? "setKeyframe -value " + numberText(metres) + " " + quoted(dragged_.plug)
                          : "setAttr " + quoted(dragged_.plug) + " " + numberText(metres)) +
           ";";
}

void HeightTool::drag(QPointF at, Qt::KeyboardModifiers modifiers) {
    if (held_ < 0) return;
    if (std::string mel = statement(at, modifiers); !mel.empty()) {
        last_ = std::move(mel);
        editor_.preview(last_);
    }
}

void HeightTool::release(QPointF, Qt::KeyboardModifiers) {
    held_ = -1;
    if (!last_.empty()) editor_.finish(last_);
    last_.clear();
    planes();
    loose_ = std::max(1.0, away_ / fittingDistance()); // as flat as the hand has laid them
}

void HeightTool::cancel() {
    held_ = -1;
    last_.clear();
    editor_.cancelPreview();
}

} // namespace orvosky::window
