#pragma once

#include <maya/MVector.h>

#include <QWidget>

#include <utility>

namespace orvosky::window {

/// Degrees: the azimuth clockwise from -Z as seen from above, 0 to 360, and the elevation above the horizon. Of a
/// vector without length 0 and 90.
std::pair<double, double> anglesOf(const MVector& direction);
/// The unit vector of such angles.
MVector direction(double azimuth, double elevation);

/// A direction as a dot on a dome seen from above, -Z at the top: the middle is straight up, the ring is the horizon,
/// and what lies below it is drawn hollow.
class DirectionBall : public QWidget {
    Q_OBJECT
public:
    explicit DirectionBall(QWidget* parent = nullptr);
    void setDirection(const MVector& direction);
    QSize sizeHint() const override { return {56, 56}; }

signals:
    void dragged(const MVector& direction);
    void released(const MVector& direction);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    MVector at(QPointF point) const;
    MVector direction_{0, 1, 0};
    bool held_ = false;
};

} // namespace orvosky::window
