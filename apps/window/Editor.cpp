#include "Editor.h"

#include "base/Messages.h"
#include "base/WorkWatch.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

#include <fmt/format.h>

#include <cmath>
#include <memory>
#include <utility>

namespace orvosky::window {

using host::scene::Scene;
using host::scene::UndoQueue;

namespace {

constexpr int firstLookMs = 200, lookEveryMs = 40;
constexpr std::size_t longestName = 80; ///< of a step of undo

/// While one lives, the application shows itself and hears Esc and a press of the widget that stops; all other input is
/// let fall, and timers wait. Buttons that are let go meanwhile are so afterwards: what was pressed before ends.
class OnlyEscape : public QObject {
public:
    explicit OnlyEscape(const QWidget* stop) : stop_(stop) { qApp->installEventFilter(this); }
    ~OnlyEscape() override {
        qApp->removeEventFilter(this);
        for (auto& [receiver, event] : released_)
            if (receiver) QCoreApplication::postEvent(receiver, event.release());
    }
    bool heard() const { return heard_; }

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress: heard_ = heard_ || isOnStop(*static_cast<QMouseEvent*>(event)); return true;
        case QEvent::MouseButtonRelease:
            released_.emplace_back(receiver, std::unique_ptr<QEvent>(event->clone()));
            return true;
        case QEvent::KeyPress: heard_ = heard_ || static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape; return true;
        case QEvent::ShortcutOverride: event->accept(); return true; // else it would be tried as a shortcut
        case QEvent::Close: event->ignore(); return true;
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::InputMethod:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::DragLeave:
        case QEvent::Drop:
        case QEvent::TabletMove:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::Timer: return true;
        default: return false;
        }
    }

private:
    bool isOnStop(const QMouseEvent& event) const {
        const QPoint at = event.globalPosition().toPoint();
        return stop_ && stop_->isVisible() && stop_->rect().contains(stop_->mapFromGlobal(at));
    }

    const QWidget* stop_;
    bool heard_ = false;
    std::vector<std::pair<QPointer<QObject>, std::unique_ptr<QEvent>>> released_;
};

} // namespace

std::string numberText(double value) {
    if (!std::isfinite(value)) return "0";
    return fmt::format("{}", value == 0 ? 0.0 : value);
}

Editor::Editor(QObject* parent) : QObject(parent) {
    auto& messages = host::Messages::instance();
    const auto previous = messages.setSink({});
    messages.setSink([this, previous](host::Severity severity, std::string_view text) {
        if (previous)
            previous(severity, text);
        else
            host::sendToStandardStreams(severity, text);
        emit message(static_cast<Kind>(severity), QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    });
    host::Host::instance().interpreter().stopAsked = [this] { return stopAsked(-1); };
    host::workWatch() = [this](double part) { return workWatched(part); };
}

Editor::~Editor() {
    host::Host::instance().interpreter().stopAsked = {};
    host::workWatch() = {};
    host::Messages::instance().setSink({});
}

bool Editor::workWatched(double part) {
    // Work that nobody has looked at for a while has just begun.
    if (!looked_.isValid() || looked_.elapsed() > 1000) began_.start();
    if (looked_.isValid() && began_.elapsed() >= firstLookMs && looked_.elapsed() < lookEveryMs) return false;
    looked_.start();
    return began_.elapsed() >= firstLookMs && stopAsked(part);
}

bool Editor::stopAsked(double part) {
    if (waiting_) return false;
    waiting_ = true;
    emit takesLong(part);
    const OnlyEscape input(stopsWork);
    QCoreApplication::processEvents();
    waiting_ = false;
    if (makeCurrent) makeCurrent(); // what was painted has taken it away
    return input.heard();
}

Scene& Editor::scene() { return Scene::current(); }

bool Editor::execute(const std::string& mel, const std::string& name) {
    if (waiting_) return false;
    if (makeCurrent) makeCurrent();
    bool worked = true;
    ++running_;
    try {
        host::Host::instance().interpreter().execute(mel, name);
    } catch (const host::mel::Error& e) {
        if (!e.silent) host::showError(name.empty() ? e.what() : e.described());
        worked = false;
    } catch (const std::exception& e) {
        host::showError(e.what());
        worked = false;
    }
    --running_;
    return worked;
}

void Editor::announce() {
    if (waiting_) return;
    std::vector<const void*> now;
    for (const auto& item : scene().selection()) now.push_back(item.node.get());
    const bool another = now != selected_;
    selected_ = std::move(now);
    ++changes_;
    if (another) emit selectionChanged();
    emit changed();
    if (host::Host::instance().interpreter().takeExitCode()) emit quitAsked();
}

bool Editor::run(const std::string& mel) {
    if (waiting_) return false;
    if (running_ == 0) takePreviewBack();
    echo(mel);
    bool worked;
    {
        const UndoQueue::Chunk step(scene().undo, mel.size() > longestName ? mel.substr(0, longestName) + "..." : mel);
        worked = execute(mel, {});
    }
    if (!worked) emit failed();
    if (running_ == 0) announce();
    return worked;
}

bool Editor::runTyped(const std::string& mel, const std::string& name) {
    if (waiting_) return false;
    takePreviewBack();
    echo(mel);
    const bool worked = execute(mel, name);
    if (!worked) emit failed();
    announce();
    return worked;
}

bool Editor::runAside(const std::string& mel) {
    const bool modified = scene().modified;
    bool worked;
    {
        const UndoQueue::Suspend quiet(scene().undo);
        worked = execute(mel, {});
    }
    scene().modified = modified;
    return worked;
}

host::mel::Value Editor::ask(const std::string& mel) {
    if (waiting_) return {};
    const UndoQueue::Suspend quiet(scene().undo);
    try {
        return host::Host::instance().interpreter().execute(mel);
    } catch (const std::exception&) {
        return {};
    }
}

bool Editor::preview(const std::string& mel) {
    if (running_ > 0 || waiting_) return false;
    const bool modified = preview_.empty() ? scene().modified : previewModified_;
    takePreviewBack();
    previewModified_ = modified;
    bool worked;
    {
        const UndoQueue::Capture captured(scene().undo, preview_);
        worked = execute(mel, {});
    }
    ++changes_;
    emit changed();
    return worked;
}

void Editor::takePreviewBack() {
    if (preview_.empty()) return;
    if (makeCurrent) makeCurrent();
    const UndoQueue::Suspend quiet(scene().undo);
    for (auto it = preview_.rbegin(); it != preview_.rend(); ++it) it->undo();
    preview_.clear();
    scene().modified = previewModified_;
}

bool Editor::finish(const std::string& mel) {
    takePreviewBack();
    return run(mel);
}

void Editor::cancelPreview() {
    if (preview_.empty() || waiting_) return;
    takePreviewBack();
    announce();
}

} // namespace orvosky::window
