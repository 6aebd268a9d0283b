#include "TimeBar.h"

#include "Editor.h"
#include "NumberField.h"
#include "Theme.h"

#include "base/Units.h"
#include "scene/AnimCurve.h"
#include "scene/Scene.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <set>

namespace orvosky::window {
namespace {

constexpr int enoughForRate = 480; ///< pixels; in less the frames themselves have none

double framesOf(double ticks) { return ticks / host::timeUnit().ticks; }
double rate() { return static_cast<double>(host::ticksPerSecond) / host::timeUnit().ticks; }

} // namespace

TimeLine::TimeLine(QWidget* parent) : QWidget(parent) {
    setObjectName("timeLine");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumWidth(60);
}

void TimeLine::show(double first, double last, double now, std::vector<double> keys) {
    first_ = first;
    last_ = std::max(last, first + 1);
    now_ = now;
    keys_ = std::move(keys);
    update();
}

double TimeLine::place(double frame) const { return 8 + (frame - first_) / (last_ - first_) * (width() - 16); }
double TimeLine::at(double x) const {
    return std::round(std::clamp(first_ + (x - 8) / std::max(1.0, width() - 16.0) * (last_ - first_), first_, last_));
}

void TimeLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double base = height() - 8;
    painter.setPen(QPen(theme::line(), 1));
    painter.drawLine(QPointF(8, base), QPointF(width() - 8, base));
    // Marks at least 50 pixels apart, at round frames.
    const double wanted = (last_ - first_) * 50 / std::max(1, width() - 16);
    double mark = 1;
    for (int i = 0; mark < wanted; ++i) mark *= i % 3 == 1 ? 2.5 : 2;
    painter.setFont(QFont(font().family(), 8));
    const double start = std::ceil(first_ / mark) * mark;
    // Counted: a frame beyond 2^53 is no other one after a step of one.
    for (int i = 0; i <= (last_ - start) / mark; ++i) {
        const double f = start + i * mark;
        painter.setPen(QPen(theme::line(), 1));
        painter.drawLine(QPointF(place(f), base - 4), QPointF(place(f), base));
        painter.setPen(theme::grey(5));
        painter.drawText(QRectF(place(f) - 30, 0, 60, base - 5), Qt::AlignCenter, QString::number(f));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::accent());
    for (const double key : keys_)
        if (key >= first_ && key <= last_) {
            const QPointF c(place(key), base);
            painter.drawPolygon(
                QPolygonF{c + QPointF(0, -4), c + QPointF(4, 0), c + QPointF(0, 4), c + QPointF(-4, 0)});
        }
    if (now_ < first_ || now_ > last_) return;
    painter.setPen(QPen(theme::text(), 1.5));
    painter.drawLine(QPointF(place(now_), 2), QPointF(place(now_), height() - 2));
}

void TimeLine::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    held_ = true;
    emit dragged(at(event->position().x()));
}

void TimeLine::mouseMoveEvent(QMouseEvent* event) {
    if (held_) emit dragged(at(event->position().x()));
}

void TimeLine::mouseReleaseEvent(QMouseEvent* event) {
    if (!held_ || event->button() != Qt::LeftButton) return;
    held_ = false;
    emit released(at(event->position().x()));
}

TimeBar::TimeBar(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), line_(new TimeLine), now_(new NumberField(editor)),
      first_(new NumberField(editor)), last_(new NumberField(editor)), rate_(new QLabel), play_(new QToolButton) {
    setObjectName("time");
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 2, 8, 2);
    row->setSpacing(6);
    const auto button = [&](QToolButton* made, const char* icon, const QString& tip, auto work) {
        made->setIcon(theme::icon(icon));
        made->setIconSize({16, 16});
        made->setToolTip(tip);
        made->setFocusPolicy(Qt::NoFocus);
        connect(made, &QToolButton::clicked, this, work);
        row->addWidget(made);
    };
    const auto& range = Editor::scene();
    button(new QToolButton, "first", tr("To the first frame"),
           [this, &range] { editor_.run("currentTime " + numberText(framesOf(range.playback().min)) + ";"); });
    button(play_, "play", tr("Plays the range over and over; again, and it stops"), [this] { play(!playing()); });
    button(new QToolButton, "last", tr("To the last frame"),
           [this, &range] { editor_.run("currentTime " + numberText(framesOf(range.playback().max)) + ";"); });
    const auto field = [&](NumberField* made, const QString& tip, auto entered) {
        made->setFixedWidth(52);
        made->setToolTip(tip);
        connect(made, &NumberField::entered, this, entered);
    };
    field(now_, tr("The current frame"), [this](double f) { editor_.run("currentTime " + numberText(f) + ";"); });
    field(first_, tr("The first frame that is played"),
          [this](double f) { editor_.run("playbackOptions -min " + numberText(f) + ";"); });
    field(last_, tr("The last frame that is played"),
          [this](double f) { editor_.run("playbackOptions -max " + numberText(f) + ";"); });
    row->addWidget(first_);
    row->addWidget(line_, 1);
    row->addWidget(last_);
    row->addWidget(now_);
    rate_->setProperty("dim", true);
    row->addWidget(rate_);
    button(new QToolButton, "key",
           tr("Sets a key of what has keys of the selection (S); the menu of an attribute's label sets the first"),
           [this] { setKey(); });
    connect(line_, &TimeLine::dragged, this, &TimeBar::look);
    connect(line_, &TimeLine::released, this, [this](double f) { editor_.run("currentTime " + numberText(f) + ";"); });
    connect(&timer_, &QTimer::timeout, this, &TimeBar::step);
    connect(&editor_, &Editor::changed, this, &TimeBar::follow);
    follow();
}

void TimeBar::resizeEvent(QResizeEvent*) { rate_->setVisible(width() >= enoughForRate); }

void TimeBar::setKey() {
    if (Editor::scene().selection().empty()) return;
    std::string plugs;
    for (const std::string& plug : keyed_) plugs += " " + quoted(plug);
    editor_.run("setKeyframe" + plugs + ";");
}

void TimeBar::play(bool on) {
    if (on == playing()) return;
    from_ = framesOf(Editor::scene().time());
    clock_.start();
    if (on)
        timer_.start(static_cast<int>(1000 / rate()));
    else
        timer_.stop();
    play_->setIcon(theme::icon(on ? "pause" : "play"));
}

void TimeBar::step() {
    // Frames that there was no time for are left out.
    const auto& range = Editor::scene().playback();
    const double first = framesOf(range.min), count = framesOf(range.max) - first + 1;
    const double gone = std::floor(static_cast<double>(clock_.elapsed()) / 1000 * rate());
    look(first + std::fmod(std::max(0.0, from_ - first) + gone, std::max(1.0, count)));
}

void TimeBar::look(double frame) {
    if (editor_.runAside("currentTime " + numberText(frame) + ";")) editor_.announce();
}

void TimeBar::follow() {
    const auto& scene = Editor::scene();
    std::set<double> keys;
    keyed_.clear();
    const auto collect = [&](host::scene::Node& node) {
        const std::function<void(const host::scene::Cell&)> look = [&](const host::scene::Cell& cell) {
            if (cell.source && cell.source->node.type.isA("animCurve")) {
                keyed_.push_back(cell.name());
                for (const auto& [time, value] : host::scene::keysOf(cell.source->node)) keys.insert(framesOf(time));
            }
            for (const auto& child : cell.children)
                if (child) look(*child);
        };
        for (const host::scene::Cell* cell : node.cells()) look(*cell);
    };
    for (const auto& item : scene.selection()) {
        collect(*item.node);
        if (host::scene::DagNode* dag = item.node->dag())
            for (host::scene::DagNode* child : dag->children)
                if (child->isShape()) collect(*child);
    }
    const auto& range = scene.playback();
    line_->show(framesOf(range.min), framesOf(range.max), framesOf(scene.time()), {keys.begin(), keys.end()});
    now_->setValue(framesOf(scene.time()));
    first_->setValue(framesOf(range.min));
    last_->setValue(framesOf(range.max));
    rate_->setText(tr("%1 fps").arg(rate(), 0, 'g', 4));
}

} // namespace orvosky::window
