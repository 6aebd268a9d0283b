#include "SoftSlider.h"

#include "Theme.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace orvosky::window {

SoftSlider::SoftSlider(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::SizeHorCursor);
}

void SoftSlider::setRange(double low, double high) {
    low_ = low;
    high_ = high > low ? high : low + 1;
    update();
}

void SoftSlider::setValue(double value) {
    value_ = value;
    update();
}

double SoftSlider::at(double x) const {
    const double part = std::clamp((x - 6) / std::max(1.0, width() - 12.0), 0.0, 1.0);
    // To the thousandth of the range: numbers that can be read.
    const double step = std::pow(10, std::floor(std::log10((high_ - low_) / 500)));
    return std::clamp(std::round((low_ + part * (high_ - low_)) / step) * step, low_, high_);
}

void SoftSlider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double part = std::clamp((value_ - low_) / (high_ - low_), 0.0, 1.0), y = height() / 2.0;
    const double x = 6 + part * (width() - 12);
    painter.setPen(QPen(theme::line(), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(6, y), QPointF(width() - 6, y));
    if (isEnabled()) {
        painter.setPen(QPen(theme::grey(5), 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(6, y), QPointF(x, y));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(!isEnabled() ? theme::grey(4) : held_ ? theme::accent() : theme::text());
    painter.drawEllipse(QPointF(x, y), 5, 5);
}

void SoftSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    held_ = true;
    moved_ = false;
    update();
}

void SoftSlider::mouseMoveEvent(QMouseEvent* event) {
    if (!held_) return;
    moved_ = true;
    value_ = at(event->position().x());
    update();
    emit dragged(value_);
}

void SoftSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (!held_ || event->button() != Qt::LeftButton) return;
    held_ = false;
    update();
    if (moved_) emit released(value_ = at(event->position().x()));
}

void SoftSlider::mouseDoubleClickEvent(QMouseEvent*) {
    held_ = false;
    emit resetAsked();
}

} // namespace orvosky::window
