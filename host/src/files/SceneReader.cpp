#include "files/SceneReader.h"

#include "base/QuotedText.h"
#include "files/ReferenceFiles.h"
#include "files/SceneReading.h"
#include "files/SceneSurvey.h"
#include "scene/References.h"

#include <optional>
#include <utility>

namespace host::files {

using namespace scene;

SceneReader::SceneReader(Scene& scene, Options options) : scene_(scene), options_(std::move(options)) {}

SceneReader::Result SceneReader::read(const std::filesystem::path& file) {
    const std::string text = readTextFile(file), name = file.generic_string();
    if (text.find_first_not_of(" \t\r\n") == text.npos) throw FileError(name, "the file is empty");
    return readText(text, name, file);
}

SceneReader::Result SceneReader::readText(std::string_view text, const std::string& name) {
    return readText(text, name, {});
}

SceneReader::Result SceneReader::refer(const std::string& file, Naming naming, const std::string& name,
                                       const std::string& referenceNode) {
    const std::string flags = (naming == Naming::Prefix ? " -rpr " : " -ns ") + quotedText(name) + " -rfn " +
                              quotedText(referenceNode) + " -typ \"mayaAscii\" " + quotedText(file) + ";\n";
    return referAgain("file -rdi 1" + flags + "file -r -dr 1" + flags + "createNode reference -n " +
                      quotedText(referenceNode) + ";\n");
}

SceneReader::Result SceneReader::referAgain(const std::string& statements) {
    options_.import = true;
    return readText(statements, scene_.fileName.empty() ? "file" : scene_.fileName, scene_.fileName);
}

SceneReader::Result SceneReader::readText(std::string_view text, const std::string& name,
                                          const std::filesystem::path& scene) {
    // The whole syntax first: a file that was cut off must not cost the scene that is open. On the way: what tells
    // which unknown nodes are transforms, and which shapes.
    std::optional<SceneSurvey> survey;
    try {
        survey.emplace(text);
    } catch (const SyntaxError& e) {
        throw FileError(name, e.what(), e.line);
    }
    const UndoQueue::Suspend quiet(scene_.undo);
    if (!options_.import) scene_.reset();
    // A file has whole names.
    References& references = References::of(scene_);
    const std::string space = std::exchange(references.current, {});
    ReferenceFiles files(options_.project, scene);
    SceneReading reading(scene_, options_, name, std::move(*survey), files);
    Result result = reading.run(text);
    references.current = space;
    scene_.modified = options_.import;
    return result;
}

} // namespace host::files
