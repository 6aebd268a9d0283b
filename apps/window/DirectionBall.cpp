#include "DirectionBall.h"

#include "Theme.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>
#include <numbers>

namespace orvosky::window {
namespace {

constexpr double degree = std::numbers::pi / 180;
constexpr double reach = 0.8; ///< of the widget's half: the horizon's ring; what is below it lies outside

} // namespace

std::pair<double, double> anglesOf(const MVector& direction) {
    const double length = direction.length();
    if (!(length > 0)) return {0, 90};
    double azimuth = std::atan2(direction.x, -direction.z) / degree;
    if (azimuth < 0) azimuth += 360;
    return {azimuth, std::asin(std::clamp(direction.y / length, -1.0, 1.0)) / degree};
}

MVector direction(double azimuth, double elevation) {
    const double level = std::cos(elevation * degree);
    return MVector(std::sin(azimuth * degree) * level, std::sin(elevation * degree),
                   -std::cos(azimuth * degree) * level);
}

DirectionBall::DirectionBall(QWidget* parent) : QWidget(parent) {
    setFixedSize(DirectionBall::sizeHint());
    setCursor(Qt::CrossCursor);
}

void DirectionBall::setDirection(const MVector& direction) {
    direction_ = direction;
    update();
}

void DirectionBall::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double half = width() / 2.0, ring = half * reach;
    const QPointF centre(half, half);
    painter.setPen(QPen(theme::line(), 1));
    painter.setBrush(theme::field());
    painter.drawEllipse(centre, ring, ring);
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, ring / 2, ring / 2);
    painter.drawLine(QPointF(half, half - ring), QPointF(half, half - ring + 5));
    const auto [azimuth, elevation] = anglesOf(direction_);
    // From straight up in the middle over the horizon's ring to straight down at the rim.
    const double out = elevation >= 0 ? ring * (90 - elevation) / 90 : ring + (half - 5 - ring) * -elevation / 90;
    const QPointF dot = centre + QPointF(std::sin(azimuth * degree) * out, -std::cos(azimuth * degree) * out);
    const QColor colour = !isEnabled() ? theme::grey(4) : held_ ? theme::accent() : theme::text();
    painter.setPen(QPen(colour, 1.5));
    if (elevation >= 0) painter.setBrush(colour);
    painter.drawEllipse(dot, 4, 4);
}

MVector DirectionBall::at(QPointF point) const {
    const double half = width() / 2.0, ring = half * reach;
    const QPointF from = point - QPointF(half, half);
    const double out = std::hypot(from.x(), from.y());
    double azimuth = std::atan2(from.x(), -from.y()) / degree;
    double elevation = out <= ring ? 90 - 90 * out / ring : -90 * std::min(1.0, (out - ring) / (half - 5 - ring));
    azimuth = std::round(azimuth * 2) / 2;
    elevation = std::round(elevation * 2) / 2;
    MVector to = orvosky::window::direction(azimuth, elevation);
    const auto rounded = [](double v) { return std::round(v * 1e5) / 1e5; };
    return MVector(rounded(to.x), rounded(to.y), rounded(to.z));
}

void DirectionBall::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    held_ = true;
    emit dragged(direction_ = at(event->position()));
    update();
}

void DirectionBall::mouseMoveEvent(QMouseEvent* event) {
    if (!held_) return;
    emit dragged(direction_ = at(event->position()));
    update();
}

void DirectionBall::mouseReleaseEvent(QMouseEvent* event) {
    if (!held_ || event->button() != Qt::LeftButton) return;
    held_ = false;
    emit released(direction_ = at(event->position()));
    update();
}

} // namespace orvosky::window
