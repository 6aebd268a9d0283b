#include "commands/Commands.h"
#include "kit/MessageSink.h"
#include "mel/Command.h"
#include "mel/Interpreter.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Any bytes as a MEL script that works on a scene, as far as some steps go: it ends, or fails with a message; and what
/// it did is undone. Nothing reaches a file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host;
    static const orvo::test::MessageSink quiet([](Severity, std::string_view) {});
    auto& scene = scene::Scene::current();
    scene.reset();
    mel::Interpreter interpreter;
    mel::registerLanguageCommands(interpreter);
    mel::registerSceneCommands(interpreter);
    for (const char* reachesOut : {"fopen", "fread", "sysFile", "source", "putenv", "getFileList", "filetest"})
        interpreter.unregisterCommand(reachesOut);
    interpreter.setStepLimit(2000);
    try {
        interpreter.execute({reinterpret_cast<const char*>(data), size}, "script.mel");
    } catch (const mel::Error& e) {
        if (*e.what() == '\0') std::abort();
    }
    // Whatever expressions and connections it has made are evaluated, endless ones among them.
    for (const auto& [serial, node] : scene.nodes())
        for (scene::Cell* cell : node->cells()) scene::evaluate(*cell);
    while (scene.undo.undo()) {}
    return 0;
}
