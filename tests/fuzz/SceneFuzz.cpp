#include "commands/Commands.h"
#include "files/SceneReader.h"
#include "files/SceneWriter.h"
#include "kit/MessageSink.h"
#include "kit/TemporaryFolder.h"
#include "mel/Interpreter.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

/// Scenes of any bytes: refused with a message, or opened, looked at and saved as a scene that opens and is saved again
/// with as many nodes. They may refer to "prop.ma", and to "set.ma", which refers to that one and to itself; their
/// expressions run.
namespace {

using namespace host;

void require(bool condition) {
    if (!condition) std::abort();
}

void look(scene::Scene& scene) {
    for (const auto& [serial, node] : scene.nodes()) {
        if (scene::meshBehavior(*node)) scene::meshOf(*node);
        if (scene::DagNode* dag = node->dag()) dag->worldMatrix();
        for (scene::Cell* cell : node->cells()) scene::evaluate(*cell);
    }
}

/// The project that the scenes are in.
const std::filesystem::path& project() {
    static const orvo::test::TemporaryFolder folder;
    static const bool filled = [] {
        const std::string head = "//Maya ASCII 2011 scene\nrequires maya \"2011\";\n";
        folder.write("prop.ma", head + "createNode transform -n \"cup\";\n\tsetAttr \".ty\" 2;\n"
                                       "createNode multiplyDivide -n \"twice\";\n\tsetAttr \".i2x\" 2;\n"
                                       "connectAttr \"cup.tx\" \"twice.i1x\";\nconnectAttr \"twice.ox\" \"cup.tz\";\n");
        folder.write("set.ma", head + "file -r -ns \"p\" -dr 1 -rfn \"pRN\" \"prop.ma\";\n"
                                      "file -r -ns \"self\" -dr 1 -rfn \"selfRN\" \"set.ma\";\n"
                                      "createNode transform -n \"table\";\ncreateNode reference -n \"pRN\";\n");
        return true;
    }();
    (void)filled;
    return folder.path();
}

/// Whether it opened.
bool open(scene::Scene& scene, std::string_view text) {
    try {
        files::SceneReader::Options options;
        options.project = project();
        files::SceneReader(scene, options).readText(text, "fuzz.ma");
        return true;
    } catch (const files::FileError& e) {
        require(*e.what() != '\0');
        return false;
    }
}

/// How many nodes a saved scene makes. What comes before the names and attributes it is about may be kept in another
/// place or wording; nodes may not get lost.
std::size_t nodes(const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find("\ncreateNode "); at != text.npos; at = text.find("\ncreateNode ", at + 1)) ++count;
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvo::test::MessageSink sink([](Severity, std::string_view text) { require(!text.empty()); });
    static mel::Interpreter interpreter;
    static const bool registered = (mel::registerExpressionCommands(interpreter), true);
    require(registered);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (text.find('\0') != text.npos) return 0; // the file's reader refuses it
    auto& scene = scene::Scene::current();
    if (!open(scene, text)) return 0;
    look(scene);
    const std::string saved = files::SceneWriter(scene).text("fuzz.ma");
    require(open(scene, saved));
    require(nodes(files::SceneWriter(scene).text("fuzz.ma")) == nodes(saved));
    return 0;
}
