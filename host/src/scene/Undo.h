#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace host::scene {

/// One reversible change. `redo` repeats what was done, `undo` takes it back.
struct Edit {
    std::function<void()> undo, redo;
};

/// The one queue of undoable changes.
///
/// Edits gather in the open chunk, grouped into entries (one a command). Closing the outermost chunk makes it one
/// step of undo(). While a chunk is still open, undo() takes back its last entry alone.
class UndoQueue {
public:
    void record(Edit edit);
    /// Whether changes are to be recorded now; the cheap test before an Edit is made.
    bool recording() const { return capture_ || (enabled_ && suspended_ == 0 && depth_ > 0); }

    void openChunk(std::string name = {});
    void closeChunk();
    /// Ends the current entry within the open chunk. A step without a name is called after its first entry.
    void endEntry(const std::string& name = {});
    /// How many chunks are open, one within the other.
    int openChunks() const { return depth_; }

    /// @return false when there is nothing to undo (redo)
    bool undo();
    bool redo();
    bool canUndo() const { return !done_.empty() || !open_.entries.empty() || !entry_.empty(); }
    bool canRedo() const { return !undone_.empty(); }
    std::string undoName() const;
    std::string redoName() const;
    /// The steps that can be taken back, the oldest first; those that can be repeated, the next one first.
    std::vector<std::string> undoNames() const;
    std::vector<std::string> redoNames() const;

    void clear();
    /// Switches recording off and on (MEL's undoInfo -state); off also forgets everything.
    void setEnabled(bool enabled);
    bool enabled() const { return enabled_; }
    bool isUndoing() const { return undoing_; }
    bool isRedoing() const { return redoing_; }

    /// Keeps changes out of the queue for a scope: plug-in commands take back their own work.
    class Suspend {
    public:
        explicit Suspend(UndoQueue& q) : queue_(q) { ++queue_.suspended_; }
        ~Suspend() { --queue_.suspended_; }
        Suspend(const Suspend&) = delete;
        Suspend& operator=(const Suspend&) = delete;

    private:
        UndoQueue& queue_;
    };
    /// Lets changes be recorded within a suspended scope (MGlobal::executeCommand with undo).
    class Resume {
    public:
        explicit Resume(UndoQueue& q) : queue_(q), was_(q.suspended_) { queue_.suspended_ = 0; }
        ~Resume() { queue_.suspended_ = was_; }
        Resume(const Resume&) = delete;
        Resume& operator=(const Resume&) = delete;

    private:
        UndoQueue& queue_;
        int was_;
    };
    /// Sends what is recorded in a scope to a list of the caller's, whatever the queue's state.
    class Capture {
    public:
        Capture(UndoQueue& q, std::vector<Edit>& to) : queue_(q), was_(q.capture_) { queue_.capture_ = &to; }
        ~Capture() { queue_.capture_ = was_; }
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

    private:
        UndoQueue& queue_;
        std::vector<Edit>* was_;
    };
    class Chunk {
    public:
        explicit Chunk(UndoQueue& q, std::string name = {}) : queue_(q) { queue_.openChunk(std::move(name)); }
        ~Chunk() { queue_.closeChunk(); }
        Chunk(const Chunk&) = delete;
        Chunk& operator=(const Chunk&) = delete;

    private:
        UndoQueue& queue_;
    };

private:
    using Entry = std::vector<Edit>;
    struct Step {
        std::string name;
        std::vector<Entry> entries;
    };
    void undoEntry(Entry& entry);
    void redoEntry(Entry& entry);

    std::vector<Step> done_, undone_;
    Step open_;
    Entry entry_;
    std::vector<Edit>* capture_ = nullptr;
    int depth_ = 0, suspended_ = 0;
    bool enabled_ = true, undoing_ = false, redoing_ = false;
};

} // namespace host::scene
