#pragma once

#include "base/TextFile.h"
#include "files/SceneStatements.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host::files {

/// Opens and imports Maya ASCII scenes of any release.
///
/// A scene file may make nodes, set and connect their attributes, and name the plug-ins that it needs, and nothing
/// else: its statements never reach the script language. References to other files are read; they are kept where that
/// is not possible. Anything else in it (procedures, control flow, expressions, commands) is skipped with a warning
/// that names it. What the file says of node types, attributes and data that are not known here is kept with the scene,
/// so that saving loses nothing; one warning counts it. A statement that the file may make and that fails, such as a
/// value beyond an attribute's limits, is an error; the next one follows all the same. Nothing is changed when the file
/// cannot be read or is cut off: its syntax is checked first.
class SceneReader {
public:
    struct Options {
        /// Adds to the scene in place of opening a new one. Names that are taken get a number; the file's own
        /// references follow.
        bool import = false;
        /// Put before the names of imported nodes, such as "props:" or "left_".
        std::string prefix;
        /// The project's folder: files below it may be referenced, as may those below the scene's own folder.
        std::filesystem::path project;
        /// Loads a plug-in by its bare name; false when there is none of that name. Throws SceneError when it fails.
        std::function<bool(const std::string& name)> loadPlugin;
    };
    struct Result {
        std::vector<scene::NodePtr> created; ///< in the order of the file
        int warnings = 0;                    ///< statements that failed or were refused
    };

    SceneReader(scene::Scene& scene, Options options);

    /// Reads a file. Throws FileError when it is missing, unreadable, no text, or its syntax is broken.
    Result read(const std::filesystem::path& file);
    /// The same for a text; `name` stands for the file in messages.
    Result readText(std::string_view text, const std::string& name);
    /// How a reference's nodes are called in the scene: "space:lamp", or "prefix_lamp".
    enum class Naming { Namespace, Prefix };
    /// Adds a reference to the scene, under the name of its namespace (or the prefix of its nodes) and of its reference
    /// node, with an import's options.
    Result refer(const std::string& file, Naming naming, const std::string& name, const std::string& referenceNode);

    /// Reads what SceneWriter::reference() wrote of a reference that has been taken out of the scene meanwhile.
    Result referAgain(const std::string& statements);

private:
    Result readText(std::string_view text, const std::string& name, const std::filesystem::path& scene);

    scene::Scene& scene_;
    Options options_;
};

} // namespace host::files
