#pragma once

#include "files/FileUnits.h"
#include "scene/Scene.h"

#include <filesystem>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host::scene {
struct Reference;
}

namespace host::files {

/// Writes the scene as Maya ASCII.
///
/// What differs from a new scene is written: nodes, added attributes, values, locks, connections; what was kept of the
/// file that was opened follows as it stood, connections with the names that their nodes have now. Numbers are the
/// shortest texts that read back as the same numbers. The same scene gives the same bytes.
class SceneWriter {
public:
    struct Options {
        /// Name and version of the loaded plug-ins that the scene is to require.
        std::vector<std::pair<std::string, std::string>> plugins;
        /// The nodes to write, beside those that every scene has; null for all. A reference is written when one of its
        /// nodes is among them, what belongs to no node only with all.
        const std::unordered_set<const scene::Node*>* only = nullptr;
    };

    explicit SceneWriter(scene::Scene& scene) : scene_(scene) {}
    SceneWriter(scene::Scene& scene, Options options) : scene_(scene), options_(std::move(options)) {}

    /// The file's text; `name` is what it says of itself in its second line.
    std::string text(const std::string& name);
    /// The statements that bring one reference of the scene's own: its files, its node, what the scene changes of what
    /// it brings, its connections. They say that the file is to be read at once (or not), and may name another file.
    std::string reference(const scene::Reference& reference, bool load, const std::string& otherFile = {});
    /// Writes the file; whatever fails, an old file of the name stays as it was. Throws FileError.
    void write(const std::filesystem::path& file);

private:
    scene::Scene& scene_;
    Options options_;
};

} // namespace host::files
