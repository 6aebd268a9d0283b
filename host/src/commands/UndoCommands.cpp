#include "api/graph/Callbacks.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <memory>

namespace host::mel {

using namespace scene;

namespace {

/// While `undoInfo -stateWithoutFlush off` holds.
std::unique_ptr<UndoQueue::Suspend>& suspension() {
    static std::unique_ptr<UndoQueue::Suspend> held;
    return held;
}

Value undo(Call&) {
    if (!theScene().undo.undo()) throw Error("There are no more commands to undo.");
    api::Callbacks::shared().event("Undo");
    return {};
}

Value redo(Call&) {
    if (!theScene().undo.redo()) throw Error("There are no more commands to redo.");
    api::Callbacks::shared().event("Redo");
    return {};
}

Value undoInfo(Call& call) {
    const ParsedArguments args(call,
                               {{"st", "state", 1},
                                {"swf", "stateWithoutFlush", 1},
                                {"in", "infinity", 1},
                                {"l", "length", 1},
                                {"ock", "openChunk"},
                                {"cck", "closeChunk"},
                                {"cn", "chunkName", 1},
                                {"un", "undoName"},
                                {"rn", "redoName"},
                                {"uqe", "undoQueueEmpty"},
                                {"rqe", "redoQueueEmpty"},
                                {"pq", "printQueue"}},
                               true);
    UndoQueue& queue = theScene().undo;
    if (args.query()) {
        if (args.has("st")) return queue.enabled();
        if (args.has("swf")) return queue.enabled() && !suspension();
        if (args.has("in")) return 1;
        if (args.has("un")) return queue.undoName();
        if (args.has("rn")) return queue.redoName();
        if (args.has("uqe")) return !queue.canUndo();
        if (args.has("rqe")) return !queue.canRedo();
        throw Error("undoInfo was not told what to answer.");
    }
    if (args.has("st")) queue.setEnabled(args.boolean("st", true));
    if (args.has("swf")) {
        if (args.boolean("swf", true))
            suspension().reset();
        else if (!suspension())
            suspension() = std::make_unique<UndoQueue::Suspend>(queue);
    }
    if (args.has("ock")) queue.openChunk(args.text("cn"));
    if (args.has("cck")) {
        // The statement itself holds one chunk open.
        if (queue.openChunks() < 2) throw Error("There is no open undo chunk to close.");
        queue.closeChunk();
    }
    return {};
}

Value flushUndo(Call&) {
    theScene().undo.clear();
    return {};
}

} // namespace

void registerUndoCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "undo", undo, Flags::None);
    registerSceneCommand(interpreter, "redo", redo, Flags::None);
    registerSceneCommand(interpreter, "undoInfo", undoInfo);
    registerSceneCommand(interpreter, "flushUndo", flushUndo, Flags::None);
}

void registerSceneCommands(Interpreter& interpreter) {
    for (auto* add : {registerNodeCommands,          registerCreationCommands,      registerAttributeCommands,
                      registerAttributeListCommands, registerConnectionCommands,    registerConstraintCommands,
                      registerDagCommands,           registerAttributeEditCommands, registerComponentListCommands,
                      registerHistoryCommands,       registerDuplicateCommands,     registerTransformCommands,
                      registerXformCommand,          registerAnimationCommands,     registerExpressionCommands,
                      registerComponentCommands,     registerMeshCommands,          registerSetCommands,
                      registerReferenceCommands,     registerSelectionCommands,     registerUndoCommands})
        add(interpreter);
    interpreter.beforeTopLevelStatement = [] { theScene().undo.openChunk(); };
    interpreter.afterTopLevelStatement = [] {
        theScene().undo.closeChunk();
        // Nobody works on what was deleted any more.
        if (!api::Callbacks::shared().running()) theScene().forgetDeleted();
    };
    interpreter.afterCommand = [](const std::string& name) { theScene().undo.endEntry(name); };
}

} // namespace host::mel
