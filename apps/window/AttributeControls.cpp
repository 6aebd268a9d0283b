#include "AttributeControls.h"

#include "Editor.h"
#include "Theme.h"

#include "base/Messages.h"
#include "scene/Scene.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace orvosky::window {

using host::scene::AttributeType;
using host::scene::NumericType;

namespace {

constexpr int labelWidth = 108;

} // namespace

AttributeControl::AttributeControl(Editor& editor, PlugView plug, const QString& label, const QString& annotation,
                                   QWidget* parent)
    : QWidget(parent), plug_(std::move(plug)), editor_(editor), label_(new QLabel(label)), body_(new QWidget),
      annotation_(annotation) {
    setObjectName(QString::fromStdString(plug_.attribute().longName));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    label_->setFixedWidth(labelWidth);
    label_->setMinimumHeight(rowHeight);
    label_->setContextMenuPolicy(Qt::CustomContextMenu);
    label_->installEventFilter(this);
    if (plug_.components() == 1 && plug_.attribute().type != AttributeType::Enum &&
        plug_.attribute().numeric != NumericType::Bool)
        label_->setCursor(Qt::SizeHorCursor);
    row->addWidget(label_, 0, Qt::AlignTop);
    row->addWidget(body_, 1);
    connect(label_, &QLabel::customContextMenuRequested, this, &AttributeControl::showMenu);
}

AttributeControl::~AttributeControl() = default;

std::vector<double> AttributeControl::numbers() const {
    std::vector<double> all;
    for (int k = 0; k < plug_.components(); ++k) all.push_back(plug_.number(k));
    return all;
}

std::string AttributeControl::setting(std::vector<double> numbers) const {
    std::string mel = "setAttr " + plug_.quotedPath(), keys;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const int k = static_cast<int>(i);
        double value = numbers[i];
        if (const auto low = plug_.min(k)) value = std::max(value, *low);
        if (const auto high = plug_.max(k)) value = std::min(value, *high);
        mel += " " + numberText(value);
        keys += "setKeyframe -value " + numberText(value) + " " + quoted(plug_.path(k)) + "; ";
    }
    // What has keys follows them: a change is a key.
    if (plug_.keyed()) return numbers.size() == 1 ? keys : "{ " + keys + "}";
    return mel + ";";
}

void AttributeControl::set(std::vector<double> values) {
    if (values != numbers()) editor_.run(setting(std::move(values)));
    refresh();
}

void AttributeControl::drag(std::vector<double> values) { editor_.preview(setting(std::move(values))); }
void AttributeControl::drop(std::vector<double> values) { editor_.finish(setting(std::move(values))); }

void AttributeControl::reset() {
    if (!plug_.settable()) return;
    if (plug_.components() == 0) {
        const auto* text = std::get_if<std::string>(&plug_.attribute().defaultValue);
        editor_.run("setAttr -type \"string\" " + plug_.quotedPath() + " " + quoted(text ? *text : "") + ";");
        return;
    }
    std::vector<double> initial;
    for (int k = 0; k < plug_.components(); ++k) initial.push_back(plug_.initial(k));
    set(std::move(initial));
}

void AttributeControl::setDimmed(bool dimmed) {
    dimmed_ = dimmed;
    mark();
    show(plug_.settable() && !dimmed_);
}

void AttributeControl::refresh() {
    if (!plug_.alive()) return;
    mark();
    show(plug_.settable() && !dimmed_);
}

void AttributeControl::mark() {
    const QString feed = plug_.feed();
    QString tip = annotation_.isEmpty() ? QString() : annotation_ + "\n";
    tip += QString::fromStdString(plug_.attribute().longName);
    QColor colour = plug_.differs() ? theme::text() : theme::dimText();
    QString before;
    if (dimmed_) {
        colour = theme::grey(5);
    } else if (!feed.isEmpty()) {
        colour = theme::accent();
        before = QString::fromUtf8("\u2192 ");
        tip += tr("\nConnected: %1").arg(feed);
    } else if (plug_.keyed()) {
        colour = theme::accent();
        before = QString::fromUtf8("\u25c6 ");
        tip += tr("\nHas keys");
    }
    if (plug_.locked()) {
        colour = theme::grey(5);
        tip += tr("\nLocked");
    }
    const QString name = label_->property("name").isValid() ? label_->property("name").toString() : label_->text();
    label_->setProperty("name", name);
    label_->setText(before + name);
    label_->setToolTip(tip);
    setToolTip(tip);
    label_->setStyleSheet("color: " + colour.name());
}

void AttributeControl::showMenu(QPoint at) {
    QMenu menu;
    const std::string path = plug_.quotedPath();
    const auto add = [&](const QString& label, bool enabled, std::function<void()> work) {
        QAction* action = menu.addAction(label);
        action->setEnabled(enabled);
        connect(action, &QAction::triggered, this, [work = std::move(work)] { work(); });
    };
    const auto run = [this](std::string mel) { return [this, mel = std::move(mel)] { editor_.run(mel); }; };
    const bool number = plug_.components() > 0;
    add(tr("Reset to Default"), plug_.settable() && plug_.differs(), [this] { reset(); });
    menu.addSeparator();
    add(tr("Copy Value"), true, [this, number] {
        QStringList words;
        for (const double v : numbers()) words << QString::fromStdString(numberText(v));
        QGuiApplication::clipboard()->setText(number ? words.join(' ') : plug_.text());
    });
    add(tr("Paste Value"), plug_.settable(), [this, number] {
        const QString text = QGuiApplication::clipboard()->text().trimmed();
        if (!number) {
            editor_.run("setAttr -type \"string\" " + plug_.quotedPath() + " " + quoted(text.toStdString()) + ";");
            return;
        }
        std::vector<double> values;
        bool fine = true, all = true;
        for (const QString& word : text.simplified().split(' ', Qt::SkipEmptyParts)) {
            values.push_back(word.toDouble(&fine));
            all = all && fine && std::isfinite(values.back());
        }
        if (all && static_cast<int>(values.size()) == plug_.components())
            set(std::move(values));
        else
            host::showWarning(tr("What was copied is no value of %1.").arg(label_->text()).toStdString());
    });
    menu.addSeparator();
    if (number) {
        add(tr("Set Key"), plug_.settable(), run("setKeyframe " + path + ";"));
        if (plug_.keyed()) add(tr("Delete Keys"), true, run("cutKey -clear " + path + ";"));
    }
    if (const std::string feed = plug_.feed().toStdString(); !feed.empty()) {
        add(tr("Break Connection"), !plug_.locked(), run("disconnectAttr " + quoted(feed) + " " + path + ";"));
        const std::string source = feed.substr(0, feed.find('.'));
        add(tr("Select %1").arg(QString::fromStdString(source)), true, run("select -r " + quoted(source) + ";"));
    }
    add(plug_.locked() ? tr("Unlock") : tr("Lock"), true,
        run("setAttr -lock " + std::string(plug_.locked() ? "0 " : "1 ") + path + ";"));
    menu.exec(label_->mapToGlobal(at));
}

bool AttributeControl::eventFilter(QObject* watched, QEvent* event) {
    // The label is pulled sideways to change its number: Ctrl finely, Shift coarsely.
    if (watched != label_ || label_->cursor().shape() != Qt::SizeHorCursor || !plug_.settable() || dimmed_)
        return QWidget::eventFilter(watched, event);
    auto* mouse = dynamic_cast<QMouseEvent*>(event);
    if (!mouse) return QWidget::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() == Qt::LeftButton) {
            scrub_ = mouse->globalPosition();
            scrubFrom_ = scrubTo_ = plug_.number();
            return true;
        }
        break;
    case QEvent::MouseMove:
        if (scrub_) {
            const double range = plug_.softMax() ? *plug_.softMax() - plug_.softMin().value_or(plug_.min().value_or(0))
                                 : plug_.max()   ? *plug_.max() - plug_.min().value_or(0)
                                                 : std::max(std::abs(scrubFrom_), 1.0);
            double step = std::pow(10, std::floor(std::log10(std::max(range, 1e-6) / 200)));
            if (mouse->modifiers() & Qt::ControlModifier) step /= 10;
            if (mouse->modifiers() & Qt::ShiftModifier) step *= 10;
            const double moved = std::round((mouse->globalPosition().x() - scrub_->x()) / 2);
            scrubTo_ = scrubFrom_ + moved * step;
            drag({scrubTo_});
            return true;
        }
        break;
    case QEvent::MouseButtonRelease:
        if (scrub_) {
            scrub_.reset();
            if (scrubTo_ != scrubFrom_)
                drop({scrubTo_});
            else
                editor_.cancelPreview();
            return true;
        }
        break;
    default: break;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace orvosky::window
