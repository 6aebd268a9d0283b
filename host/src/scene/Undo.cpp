#include "scene/Undo.h"

#include <utility>

namespace host::scene {

void UndoQueue::record(Edit edit) {
    if (!recording()) return;
    if (capture_) {
        capture_->push_back(std::move(edit));
        return;
    }
    undone_.clear();
    entry_.push_back(std::move(edit));
}

void UndoQueue::openChunk(std::string name) {
    if (depth_++ == 0) open_.name = std::move(name);
}

void UndoQueue::endEntry(const std::string& name) {
    if (entry_.empty()) return;
    if (open_.name.empty()) open_.name = name;
    open_.entries.push_back(std::move(entry_));
    entry_.clear();
}

void UndoQueue::closeChunk() {
    if (depth_ == 0 || --depth_ > 0) return;
    endEntry();
    if (!open_.entries.empty()) done_.push_back(std::move(open_));
    open_ = {};
}

void UndoQueue::undoEntry(Entry& entry) {
    const Suspend quiet(*this);
    undoing_ = true;
    for (auto it = entry.rbegin(); it != entry.rend(); ++it) it->undo();
    undoing_ = false;
}

void UndoQueue::redoEntry(Entry& entry) {
    const Suspend quiet(*this);
    redoing_ = true;
    for (auto& edit : entry) edit.redo();
    redoing_ = false;
}

bool UndoQueue::undo() {
    endEntry();
    if (!open_.entries.empty()) {
        Step step{open_.name, {}};
        step.entries.push_back(std::move(open_.entries.back()));
        open_.entries.pop_back();
        undoEntry(step.entries.front());
        undone_.push_back(std::move(step));
        return true;
    }
    if (done_.empty()) return false;
    Step step = std::move(done_.back());
    done_.pop_back();
    for (auto it = step.entries.rbegin(); it != step.entries.rend(); ++it) undoEntry(*it);
    undone_.push_back(std::move(step));
    return true;
}

bool UndoQueue::redo() {
    if (undone_.empty()) return false;
    Step step = std::move(undone_.back());
    undone_.pop_back();
    for (auto& entry : step.entries) redoEntry(entry);
    if (open_.entries.empty()) {
        done_.push_back(std::move(step));
    } else { // it comes after what the open chunk holds, so it goes back in there
        for (auto& entry : step.entries) open_.entries.push_back(std::move(entry));
    }
    return true;
}

std::string UndoQueue::undoName() const { return done_.empty() ? std::string() : done_.back().name; }
std::string UndoQueue::redoName() const { return undone_.empty() ? std::string() : undone_.back().name; }

std::vector<std::string> UndoQueue::undoNames() const {
    std::vector<std::string> names;
    for (const Step& step : done_) names.push_back(step.name);
    return names;
}

std::vector<std::string> UndoQueue::redoNames() const {
    std::vector<std::string> names;
    for (auto step = undone_.rbegin(); step != undone_.rend(); ++step) names.push_back(step->name);
    return names;
}

void UndoQueue::clear() {
    // Edits can hold the last reference to nodes, whose destructors may come back here.
    std::exchange(done_, {});
    std::exchange(undone_, {});
    std::exchange(entry_, {});
    std::exchange(open_.entries, {});
}

void UndoQueue::setEnabled(bool enabled) {
    enabled_ = enabled;
    if (!enabled) clear();
}

} // namespace host::scene
