#pragma once

#include "mel/Interpreter.h"
#include "mel/Services.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace host {

namespace scene {
class Scene;
}
namespace files {
class Workspace;
}
namespace api {
class PluginManager;
}

/// The running host: one per process, it ties the rooms together.
class Host final : public Services {
public:
    struct Options {
        /// The workspace root. Empty: the nearest folder with a workspace.mel above `scene`, else above the current
        /// folder, else the current folder.
        std::filesystem::path project;
        /// Folders searched for plug-ins by bare name, before those of MAYA_PLUG_IN_PATH.
        std::vector<std::filesystem::path> pluginFolders;
        /// Folders searched for scripts after the workspace's and those of MAYA_SCRIPT_PATH.
        std::vector<std::filesystem::path> scriptFolders;
        /// The file that will be opened, when one will be.
        std::filesystem::path scene = {};
    };

    static Host& instance();

    /// Sets the workspace and the search paths. The workspace's own scripts are found only when it was named, or is a
    /// project that the current folder lies in; otherwise a warning says that they are left out. Call once, before
    /// anything else is used.
    void start(const Options& options);
    /// Sources userSetup.mel when the script path has one; an error in it is reported, not thrown.
    void runUserSetup();

    mel::Interpreter& interpreter() override { return interpreter_; }
    scene::Scene& scene();
    files::Workspace& workspace() { return *workspace_; }
    api::PluginManager& plugins();

private:
    Host();
    ~Host();
    mel::Interpreter interpreter_;
    std::unique_ptr<files::Workspace> workspace_;
};

} // namespace host
