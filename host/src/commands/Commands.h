#pragma once

#include <functional>

namespace host::mel {

class Interpreter;

/// @name The commands that work on the scene, by theme
/// @{
void registerNodeCommands(Interpreter& interpreter);
void registerCreationCommands(Interpreter& interpreter);
void registerAttributeCommands(Interpreter& interpreter);
void registerAttributeListCommands(Interpreter& interpreter);
void registerAttributeEditCommands(Interpreter& interpreter);
void registerConnectionCommands(Interpreter& interpreter);
void registerConstraintCommands(Interpreter& interpreter);
void registerDagCommands(Interpreter& interpreter);
void registerDuplicateCommands(Interpreter& interpreter);
void registerTransformCommands(Interpreter& interpreter);
void registerXformCommand(Interpreter& interpreter);
void registerAnimationCommands(Interpreter& interpreter);
void registerExpressionCommands(Interpreter& interpreter);
void registerComponentCommands(Interpreter& interpreter);
void registerComponentListCommands(Interpreter& interpreter);
void registerHistoryCommands(Interpreter& interpreter);
void registerMeshCommands(Interpreter& interpreter);
void registerReferenceCommands(Interpreter& interpreter);
void registerSetCommands(Interpreter& interpreter);
void registerSelectionCommands(Interpreter& interpreter);
void registerUndoCommands(Interpreter& interpreter);
void registerFileCommands(Interpreter& interpreter);
void registerNodeStatementCommands(Interpreter& interpreter);
/// @}

/// Registers all of the above, and lets the interpreter's hooks group what it does into undo steps: a top-level
/// statement is one step, a command within it one entry.
void registerSceneCommands(Interpreter& interpreter);

/// What is done each time that `file -open` has opened a scene, before the command answers. It may throw Error, which
/// is then the command's. Empty for nothing.
void doAfterOpening(std::function<void()> work);

/// loadPlugin, unloadPlugin, pluginInfo, optionVar.
void registerPluginCommands(Interpreter& interpreter);

} // namespace host::mel
