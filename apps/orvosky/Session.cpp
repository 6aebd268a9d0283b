#include "Session.h"

#include "AttributeSettings.h"

#include "api/plugins/PluginManager.h"
#include "base/FileError.h"
#include "base/Letters.h"
#include "base/Messages.h"
#include "commands/Commands.h"
#include "commands/Host.h"
#include "files/SceneReader.h"
#include "files/Workspace.h"
#include "scene/Scene.h"

#include <cstdlib>

namespace orvosky {
namespace {

namespace fs = std::filesystem;

/// Where the program itself lies.
fs::path programFolder() {
    std::error_code failed;
    const fs::path self = fs::read_symlink("/proc/self/exe", failed);
    return failed ? fs::path(".") : self.parent_path();
}

/// The folders of the plug-in: beside the program where it was built, in a library folder where it is installed.
std::vector<fs::path> pluginFolders(const fs::path& program) {
    return {program, program.parent_path() / "lib" / "orvosky"};
}

Failure scriptFailure(const host::mel::Error& e) { return Failure(e.silent ? std::string() : e.described()); }

} // namespace

fs::path toolRoot() { return programFolder().parent_path() / "share" / "orvosky"; }

Session::Session(const CommonOptions& common, const fs::path& scene) : settings_(common.settings) {
    const Stage stage("start");
    const fs::path program = programFolder(), tools = toolRoot();
    setenv("ORVOSKY_TOOL_ROOT", (tools.string() + "/").c_str(), 1);

    std::error_code gone;
    if (fs::current_path(gone).empty() || gone) throw Failure("The current folder is gone: " + gone.message() + ".");

    host::Host& host = host::Host::instance();
    host::Host::Options options;
    options.project = common.project;
    options.scene = scene;
    options.pluginFolders = pluginFolders(program);
    options.scriptFolders = {tools / "scripts"};
    try {
        host.start(options);
        if (!common.noPlugin) host.plugins().loadByBareName("orvosky");
    } catch (const host::scene::SceneError& e) {
        throw Failure(e.what());
    }
    host.runUserSetup();
}

Session::~Session() {
    host::mel::doAfterOpening({});
    host::Host::instance().scene().reset();
}

void Session::openScene(const fs::path& scene) {
    const Stage stage("open " + scene.string());
    host::Host& host = host::Host::instance();
    const std::string extension = host::extensionOf(scene);
    if (extension == ".mel") {
        runScript(scene, {});
        applySettings(settings_);
        return;
    }
    if (extension == ".mb")
        throw Failure(scene.string() + ": Maya binary scenes cannot be read; save it as Maya ASCII.");
    try {
        // The project would look below its own root first.
        std::error_code none;
        const fs::path named = fs::exists(scene, none) ? fs::absolute(scene) : scene;
        host.interpreter().call("file", {"-force", "-open", named.string()});
    } catch (const host::mel::Error& e) {
        throw Failure(e.what());
    }
    applySettings(settings_);
}

void Session::applySettingsToOpenedScenes() {
    if (settings_.empty()) return;
    host::mel::doAfterOpening([this] {
        applied_ = true;
        try {
            applySettings(settings_);
        } catch (const Failure& e) {
            throw host::mel::Error(e.what());
        }
    });
}

void Session::requireSettingsApplied() const {
    if (!settings_.empty() && !applied_)
        throw Failure("--set " + settings_.front() + " was not applied: the script opened no scene.");
}

void Session::runScript(const fs::path& script, const std::vector<std::string>& arguments) {
    auto& mel = host::Host::instance().interpreter();
    try {
        host::files::readTextFile(script); // says what is wrong with a file that is no script
        mel.setArguments(arguments);
        mel.sourceFile(script);
    } catch (const host::mel::Error& e) {
        throw scriptFailure(e);
    } catch (const host::scene::SceneError& e) {
        throw Failure(e.what());
    }
}

void Session::runText(const std::string& text, const std::vector<std::string>& arguments, const std::string& source) {
    auto& mel = host::Host::instance().interpreter();
    try {
        mel.setArguments(arguments);
        mel.execute(text, source);
    } catch (const host::mel::Error& e) {
        throw scriptFailure(e);
    }
}

void Session::call(const std::string& name, const std::vector<std::string>& arguments) {
    std::vector<host::mel::Value> values(arguments.begin(), arguments.end());
    try {
        host::Host::instance().interpreter().call(name, std::move(values));
    } catch (const host::mel::Error& e) {
        throw scriptFailure(e);
    }
}

std::string Session::bringUpToDate() {
    constexpr const char* command = "orvosky_UpdateSkySystemCommand";
    const Stage stage("update");
    try {
        if (host::Host::instance().interpreter().hasCommand(command)) call(command, {});
    } catch (const Failure& e) {
        return e.what();
    }
    return {};
}

int reportCurrentFailure() {
    try {
        throw;
    } catch (const Failure& e) {
        // An empty text means that the user has been told already.
        if (*e.what()) host::showError(e.what());
    } catch (const std::bad_alloc&) {
        host::showError("Out of memory.");
    } catch (const std::exception& e) {
        host::showError(e.what());
    }
    return kFailed;
}

} // namespace orvosky
