#include "commands/InterfaceRefusals.h"

#include "mel/Execution.h"

namespace host::mel {

void setBatch(Interpreter& interpreter, bool batch) { interpreter.impl().batch = batch; }

void registerInterfaceRefusals(Interpreter& interpreter) {
    for (const char* name : {"button", "colorEditor", "columnLayout", "confirmDialog", "deleteUI", "editorTemplate",
                             "fileDialog2", "headsUpMessage", "inViewMessage", "menu", "menuItem", "progressWindow",
                             "promptDialog", "rowLayout", "setParent", "shelfButton", "shelfLayout", "text"})
        interpreter.registerCommand(name, [](Call& call) -> Value {
            throw Error(call.name + " needs a window, and there is none: `about -batch` tells.");
        });
    setBatch(interpreter, true);
}

} // namespace host::mel
