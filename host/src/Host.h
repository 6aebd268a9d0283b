#pragma once

#include "mel/Interpreter.h"

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
class Host {
public:
    struct Options {
        /// The workspace root; empty: the nearest folder upward from the current one with a workspace.mel, else the
        /// current one.
        std::filesystem::path project;
        /// Folders searched for plug-ins by bare name, before those of MAYA_PLUG_IN_PATH.
        std::vector<std::filesystem::path> pluginFolders;
        /// Folders searched for scripts after the workspace's and those of MAYA_SCRIPT_PATH.
        std::vector<std::filesystem::path> scriptFolders;
    };

    static Host& instance();

    /// Sets the workspace and the search paths. Call once, before anything else is used.
    void start(const Options& options);
    /// Sources userSetup.mel when the script path has one; an error in it is reported, not thrown.
    void runUserSetup();

    mel::Interpreter& interpreter() { return interpreter_; }
    scene::Scene& scene();
    files::Workspace& workspace() { return *workspace_; }
    api::PluginManager& plugins() { return *plugins_; }

private:
    Host();
    ~Host();
    mel::Interpreter interpreter_;
    std::unique_ptr<files::Workspace> workspace_;
    std::unique_ptr<api::PluginManager> plugins_;
};

} // namespace host
