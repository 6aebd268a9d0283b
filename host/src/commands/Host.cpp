#include "commands/Host.h"

#include "api/plugins/PluginManager.h"
#include "base/Messages.h"
#include "commands/Commands.h"
#include "commands/InterfaceRefusals.h"
#include "files/Workspace.h"
#include "scene/Scene.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace host {
namespace {

namespace fs = std::filesystem;

/// The folders of a search path variable.
std::vector<fs::path> foldersOf(const char* variable) {
    std::vector<fs::path> folders;
    const char* text = std::getenv(variable);
    std::istringstream words(text ? text : "");
    for (std::string word; std::getline(words, word, ':');)
        if (!word.empty()) folders.emplace_back(word);
    return folders;
}

/// Whether `folder` is `below`, or one of the folders above it, whatever links lead there.
bool isAtOrAbove(const fs::path& folder, const fs::path& below) {
    std::error_code failed;
    const fs::path top = fs::canonical(folder, failed), bottom = failed ? fs::path() : fs::canonical(below, failed);
    return !failed && std::mismatch(top.begin(), top.end(), bottom.begin(), bottom.end()).first == top.end();
}

bool holdsScripts(const fs::path& folder) {
    std::error_code failed;
    for (fs::directory_iterator at(folder, failed), end; !failed && at != end; at.increment(failed))
        if (at->path().extension() == ".mel") return true;
    return false;
}

/// The project that serves when none is named, and whether its scripts may run: whoever only opens a scene of a folder
/// from elsewhere has not asked for the scripts beside it.
struct FoundProject {
    fs::path root;
    bool trusted;
};

FoundProject findProject(const fs::path& scene) {
    const fs::path here = fs::current_path();
    if (!scene.empty())
        if (const auto root = files::Workspace::findUpward(fs::absolute(scene).parent_path()))
            return {*root, isAtOrAbove(*root, here)};
    if (const auto root = files::Workspace::findUpward(here)) return {*root, true};
    return {here, false};
}

[[maybe_unused]] const bool provided = (Services::provide([]() -> Services& { return Host::instance(); }), true);

} // namespace

Host& Host::instance() {
    // Never destroyed: plug-ins may refer to it while the process ends.
    static Host& host = *new Host;
    return host;
}

Host::Host() : workspace_(std::make_unique<files::Workspace>()) {
    mel::registerLanguageCommands(interpreter_);
    mel::registerSceneCommands(interpreter_);
    mel::registerNodeStatementCommands(interpreter_);
    mel::registerFileCommands(interpreter_);
    mel::registerPluginCommands(interpreter_);
    mel::registerInterfaceRefusals(interpreter_);
}

Host::~Host() = default;

api::PluginManager& Host::plugins() { return api::PluginManager::shared(); }

scene::Scene& Host::scene() { return scene::Scene::current(); }

void Host::start(const Options& options) {
    const FoundProject project =
        options.project.empty() ? findProject(options.scene) : FoundProject{options.project, true};
    workspace_->open(project.root);
    auto plugins = options.pluginFolders;
    for (auto& folder : foldersOf("MAYA_PLUG_IN_PATH")) plugins.push_back(std::move(folder));
    this->plugins().setSearchPath(std::move(plugins));

    std::vector<fs::path> scripts;
    const fs::path own = workspace_->root() / "scripts";
    if (project.trusted)
        scripts.push_back(own);
    else if (holdsScripts(own))
        showWarning("The scripts of " + own.generic_string() +
                    " were not run: the project was not named and the current folder is not in it.");
    for (auto& folder : foldersOf("MAYA_SCRIPT_PATH")) scripts.push_back(std::move(folder));
    for (const auto& folder : options.scriptFolders) scripts.push_back(folder);
    interpreter_.setScriptPath(std::move(scripts));
}

void Host::runUserSetup() {
    for (const auto& folder : interpreter_.scriptPath()) {
        const auto file = folder / "userSetup.mel";
        std::error_code ignored;
        if (!fs::is_regular_file(file, ignored)) continue;
        try {
            interpreter_.sourceFile(file);
        } catch (const mel::Error& e) {
            const std::string place =
                e.file().empty() ? std::string() : "file: " + e.file() + " line " + std::to_string(e.line()) + ": ";
            if (!e.silent) showError(place + e.what());
        }
        return;
    }
}

} // namespace host
