#include "Editor.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <fmt/format.h>

#include <cmath>

namespace orvosky::window {

using host::scene::Scene;
using host::scene::UndoQueue;

namespace {

constexpr std::size_t longestName = 80; ///< of a step of undo

}

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        default: out += c;
        }
    }
    return out + '"';
}

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
}

Editor::~Editor() { host::Messages::instance().setSink({}); }

Scene& Editor::scene() { return Scene::current(); }

bool Editor::execute(const std::string& mel, const std::string& name) {
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
    std::vector<const void*> now;
    for (const auto& item : scene().selection()) now.push_back(item.node.get());
    const bool another = now != selected_;
    selected_ = std::move(now);
    ++changes_;
    if (another) emit selectionChanged();
    emit changed();
}

bool Editor::run(const std::string& mel) {
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
    const UndoQueue::Suspend quiet(scene().undo);
    try {
        return host::Host::instance().interpreter().execute(mel);
    } catch (const std::exception&) {
        return {};
    }
}

bool Editor::preview(const std::string& mel) {
    if (running_ > 0) return false;
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
    if (preview_.empty()) return;
    takePreviewBack();
    announce();
}

} // namespace orvosky::window
