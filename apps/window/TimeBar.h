#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <string>
#include <vector>

class QLabel;
class QToolButton;

namespace orvosky::window {

class Editor;
class NumberField;

/// The line of frames: the current one, and the keys of what is selected.
class TimeLine : public QWidget {
    Q_OBJECT
public:
    explicit TimeLine(QWidget* parent = nullptr);
    void show(double first, double last, double now, std::vector<double> keys);
    QSize sizeHint() const override { return {300, 28}; }

signals:
    void dragged(double frame);
    void released(double frame);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    double at(double x) const;
    double place(double frame) const;
    double first_ = 1, last_ = 24, now_ = 1;
    std::vector<double> keys_;
    bool held_ = false;
};

/// Time: play, the range, the rate, keys.
class TimeBar : public QWidget {
    Q_OBJECT
public:
    explicit TimeBar(Editor& editor, QWidget* parent = nullptr);
    bool playing() const { return timer_.isActive(); }
    void play(bool on);
    /// Sets a key of what has keys of the selection, else of all that is keyable of it.
    void setKey();

protected:
    void resizeEvent(QResizeEvent*) override;

private:
    void follow();
    void step();
    /// Shows another time; only the last of a drag is an action.
    void look(double frame);

    Editor& editor_;
    TimeLine* line_;
    NumberField *now_, *first_, *last_;
    QLabel* rate_;
    QToolButton* play_;
    QTimer timer_;
    QElapsedTimer clock_;
    double from_ = 0;
    std::vector<std::string> keyed_; ///< plugs of the selection
};

} // namespace orvosky::window
