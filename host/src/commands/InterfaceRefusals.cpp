#include "commands/InterfaceRefusals.h"

#include "mel/Interpreter.h"

namespace host::mel {

void setBatch(Interpreter& interpreter, bool batch) {
    interpreter.registerCommand(
        "about",
        [batch](Call& call) -> Value {
            const ParsedArguments args(call, {{"b", "batch"}}, true);
            if (!args.has("b")) throw Error("about was not told what to answer.");
            return batch;
        },
        true);
}

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
