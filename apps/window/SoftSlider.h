#pragma once

#include <QWidget>

namespace orvosky::window {

/// A slider whose ends are soft: a value beyond them stands at the end.
class SoftSlider : public QWidget {
    Q_OBJECT
public:
    explicit SoftSlider(QWidget* parent = nullptr);
    void setRange(double low, double high);
    void setValue(double value);
    QSize sizeHint() const override { return {120, 18}; }

signals:
    void dragged(double value);
    void released(double value);
    void cancelled();
    void resetAsked();

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    double at(double x) const;
    double low_ = 0, high_ = 1, value_ = 0;
    bool held_ = false, moved_ = false;
};

} // namespace orvosky::window
