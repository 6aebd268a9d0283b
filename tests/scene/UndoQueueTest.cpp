#include "scene/Undo.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

using host::scene::Edit;
using host::scene::UndoQueue;

namespace {

/// A text that grows by recorded edits. Taking back anything but the last letter is an error.
class Ledger : public testing::Test {
protected:
    Edit edit(char letter) {
        return {[this, letter] {
                    ASSERT_FALSE(text.empty()) << letter;
                    EXPECT_EQ(text.back(), letter) << "taken back out of order";
                    text.pop_back();
                },
                [this, letter] { text += letter; }};
    }
    /// Does and records one edit an entry.
    void put(const std::string& letters) {
        for (const char letter : letters) {
            text += letter;
            queue.record(edit(letter));
            queue.endEntry(std::string(1, letter));
        }
    }
    void step(const std::string& letters) {
        const UndoQueue::Chunk chunk(queue);
        put(letters);
    }

    UndoQueue queue;
    std::string text;
};

} // namespace

// Catches inner chunks that become steps of their own, names of inner chunks, and a wrong order of taking back.
TEST_F(Ledger, NestedChunksAreOneStep) {
    step("xy");
    {
        const UndoQueue::Chunk outer(queue, "outer");
        put("a");
        {
            const UndoQueue::Chunk inner(queue, "inner");
            put("bc");
            EXPECT_EQ(queue.openChunks(), 2);
        }
        put("d");
    }
    EXPECT_EQ(queue.undoName(), "outer");
    EXPECT_TRUE(queue.undo());
    EXPECT_EQ(text, "xy");
    EXPECT_EQ(queue.undoName(), "x") << "without a name of its own a step is called after its first entry";
    EXPECT_EQ(queue.redoName(), "outer");
    EXPECT_TRUE(queue.redo());
    EXPECT_EQ(text, "xyabcd");
    EXPECT_TRUE(queue.undo() && queue.undo());
    EXPECT_FALSE(queue.undo());
    EXPECT_EQ(text, "");
    EXPECT_TRUE(queue.redo() && queue.redo());
    EXPECT_FALSE(queue.redo());
    EXPECT_EQ(text, "xyabcd");
}

// Catches an undo in an open chunk that takes all of it, misses the entry in the making, or that the chunk's own step
// takes back once more.
TEST_F(Ledger, UndoInAnOpenChunkTakesBackItsLastEntry) {
    {
        const UndoQueue::Chunk chunk(queue);
        put("ab");
        text += 'c';
        queue.record(edit('c'));
        text += 'd';
        queue.record(edit('d')); // one entry with c
        EXPECT_TRUE(queue.undo());
        EXPECT_EQ(text, "ab");
        EXPECT_TRUE(queue.undo());
        EXPECT_EQ(text, "a");
    }
    EXPECT_TRUE(queue.redo() && queue.redo());
    EXPECT_EQ(text, "abcd");
    EXPECT_TRUE(queue.undo() && queue.undo() && queue.undo());
    EXPECT_EQ(text, "");
}

// Catches a redo in an open chunk that puts what it repeats below what the chunk holds already.
TEST_F(Ledger, RedoInAnOpenChunkKeepsTheOrder) {
    step("x");
    {
        const UndoQueue::Chunk chunk(queue);
        put("abc");
        EXPECT_TRUE(queue.undo() && queue.undo());
        EXPECT_TRUE(queue.redo() && queue.redo());
        EXPECT_EQ(text, "xabc");
        EXPECT_FALSE(queue.redo());
    }
    while (queue.undo()) {}
    EXPECT_EQ(text, "");
    while (queue.redo()) {}
    EXPECT_EQ(text, "xabc");
}

TEST_F(Ledger, UndoInAnOpenChunkGoesOnToEarlierSteps) {
    step("xy");
    {
        const UndoQueue::Chunk chunk(queue);
        put("a");
        EXPECT_TRUE(queue.undo() && queue.undo());
        EXPECT_EQ(text, "");
        EXPECT_FALSE(queue.undo());
        EXPECT_TRUE(queue.redo());
        EXPECT_EQ(text, "xy");
    }
    EXPECT_TRUE(queue.redo());
    EXPECT_EQ(text, "xya");
    EXPECT_TRUE(queue.undo());
    EXPECT_EQ(text, "xy");
}

// Catches recording without a chunk, empty steps, and a step that can still be repeated after another change.
TEST_F(Ledger, OnlyChangesMakeSteps) {
    queue.record(edit('q'));
    step("");
    queue.closeChunk();
    EXPECT_EQ(queue.openChunks(), 0);
    EXPECT_FALSE(queue.canUndo());
    step("a");
    queue.undo();
    EXPECT_TRUE(queue.canRedo());
    step("");
    EXPECT_TRUE(queue.canRedo()) << "nothing has changed";
    step("b");
    EXPECT_FALSE(queue.canRedo());
    EXPECT_FALSE(queue.redo());
    EXPECT_EQ(text, "b");
}

// Catches a scope that ends the suspension of the one around it, or does not end.
TEST_F(Ledger, SuspendAndResumeNest) {
    {
        const UndoQueue::Chunk chunk(queue);
        const UndoQueue::Suspend quiet(queue);
        {
            const UndoQueue::Suspend quieter(queue);
            queue.record(edit('1'));
            const UndoQueue::Resume loud(queue);
            EXPECT_TRUE(queue.recording());
            put("a");
        }
        EXPECT_FALSE(queue.recording());
        queue.record(edit('2'));
    }
    EXPECT_FALSE(queue.recording()) << "no chunk is open";
    {
        const UndoQueue::Chunk chunk(queue);
        EXPECT_TRUE(queue.recording());
    }
    EXPECT_TRUE(queue.undo());
    EXPECT_EQ(text, "");
    EXPECT_FALSE(queue.canUndo());
}

// Catches captured edits that end in the queue as well, or are lost because the queue is not recording.
TEST_F(Ledger, CaptureTakesEditsWhateverTheState) {
    step("x");
    queue.undo();
    std::vector<Edit> outer, inner;
    {
        const UndoQueue::Capture capture(queue, outer);
        const UndoQueue::Suspend quiet(queue);
        queue.record(edit('a'));
        {
            const UndoQueue::Capture nested(queue, inner);
            queue.record(edit('b'));
        }
        queue.record(edit('c'));
    }
    queue.record(edit('d'));
    EXPECT_EQ(outer.size(), 2u);
    EXPECT_EQ(inner.size(), 1u);
    EXPECT_FALSE(queue.canUndo());
    EXPECT_TRUE(queue.canRedo()) << "the changes may yet be thrown away";
    for (const Edit& e : outer) e.redo();
    EXPECT_EQ(text, "ac");
}

// Catches edits made while taking back or repeating that are recorded anew, and flags that stay set.
TEST_F(Ledger, TakingBackIsNotRecorded) {
    std::vector<std::string> seen;
    const auto look = [&](const char* what) {
        EXPECT_FALSE(queue.recording());
        queue.record(edit('!'));
        seen.push_back(std::string(what) + (queue.isUndoing() ? " undoing" : "") +
                       (queue.isRedoing() ? " redoing" : ""));
    };
    {
        const UndoQueue::Chunk chunk(queue);
        queue.record({[&] { look("back"); }, [&] { look("again"); }});
    }
    const UndoQueue::Chunk chunk(queue);
    EXPECT_TRUE(queue.undo() && queue.redo());
    EXPECT_THAT(seen, testing::ElementsAre("back undoing", "again redoing"));
    EXPECT_FALSE(queue.isUndoing() || queue.isRedoing());
    EXPECT_TRUE(queue.undo());
    EXPECT_FALSE(queue.undo());
}

// Catches a switch or a clear that leaves the open chunk's part behind, and a destructor that finds the queue half
// emptied.
TEST_F(Ledger, ClearingForgetsTheOpenChunkToo) {
    step("a");
    {
        const UndoQueue::Chunk chunk(queue);
        put("b");
        queue.record(edit('c'));
        queue.clear();
        EXPECT_FALSE(queue.canUndo() || queue.canRedo() || queue.undo() || queue.redo());
        put("d");
    }
    EXPECT_TRUE(queue.undo());
    EXPECT_EQ(text, "ab");
    EXPECT_FALSE(queue.undo());
    queue.redo();
    {
        const UndoQueue::Chunk chunk(queue);
        put("e");
        queue.setEnabled(false);
        put("f");
        queue.setEnabled(true);
        put("g");
    }
    EXPECT_TRUE(queue.undo());
    EXPECT_EQ(text, "abdef");
    EXPECT_FALSE(queue.undo());

    struct Meddler {
        UndoQueue& queue;
        ~Meddler() {
            queue.clear();
            queue.record({[] {}, [] {}});
        }
    };
    {
        const UndoQueue::Chunk chunk(queue);
        const std::shared_ptr<Meddler> meddler(new Meddler{queue});
        queue.record({[meddler] {}, [meddler] {}});
    }
    queue.clear();
    EXPECT_FALSE(queue.canUndo());
}
