#include "Host.h"

#include "api/PluginManager.h"
#include "base/Messages.h"
#include "files/Workspace.h"
#include "mel/commands/Commands.h"
#include "scene/Scene.h"

#include <cstdlib>
#include <sstream>

namespace host {
namespace {

/// The folders of a search path variable.
std::vector<std::filesystem::path> foldersOf(const char* variable) {
    std::vector<std::filesystem::path> folders;
    const char* text = std::getenv(variable);
    std::istringstream words(text ? text : "");
    for (std::string word; std::getline(words, word, ':');)
        if (!word.empty()) folders.emplace_back(word);
    return folders;
}

} // namespace

Host& Host::instance() {
    // Never destroyed: plug-ins may refer to it while the process ends.
    static Host& host = *new Host;
    return host;
}

Host::Host() : workspace_(std::make_unique<files::Workspace>()), plugins_(std::make_unique<api::PluginManager>()) {
    mel::registerLanguageCommands(interpreter_);
    mel::registerSceneCommands(interpreter_);
    mel::registerNodeStatementCommands(interpreter_);
    mel::registerFileCommands(interpreter_);
    mel::registerPluginCommands(interpreter_);
}

Host::~Host() = default;

scene::Scene& Host::scene() { return scene::Scene::current(); }

void Host::start(const Options& options) {
    workspace_->open(options.project.empty() ? files::Workspace::findUpward(std::filesystem::current_path())
                                             : options.project);
    auto plugins = options.pluginFolders;
    for (auto& folder : foldersOf("MAYA_PLUG_IN_PATH")) plugins.push_back(std::move(folder));
    plugins_->setSearchPath(std::move(plugins));

    std::vector<std::filesystem::path> scripts{workspace_->root() / "scripts"};
    for (auto& folder : foldersOf("MAYA_SCRIPT_PATH")) scripts.push_back(std::move(folder));
    for (const auto& folder : options.scriptFolders) scripts.push_back(folder);
    interpreter_.setScriptPath(std::move(scripts));
}

void Host::runUserSetup() {
    for (const auto& folder : interpreter_.scriptPath()) {
        const auto file = folder / "userSetup.mel";
        std::error_code ignored;
        if (!std::filesystem::is_regular_file(file, ignored)) continue;
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
