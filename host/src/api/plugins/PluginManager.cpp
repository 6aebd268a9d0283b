#include "api/plugins/PluginManager.h"

#include "api/graph/Callbacks.h"
#include "api/graph/Handle.h"
#include "base/Messages.h"

#include <maya/MFnPlugin.h>
#include <maya/MString.h>

#include <dlfcn.h>

#include <algorithm>

namespace host::api {
namespace {

using EntryPoint = MStatus (*)(MObject);

#if defined(__APPLE__)
constexpr const char* moduleSuffixes[] = {".bundle", ".so"};
#else
constexpr const char* moduleSuffixes[] = {".so"};
#endif

/// Plug-ins export their entry points as C++ functions, some as C ones.
EntryPoint entryPoint(void* library, const char* name, const char* mangled) {
    for (const char* symbol : {mangled, name})
        if (void* address = dlsym(library, symbol)) return reinterpret_cast<EntryPoint>(address);
    return nullptr;
}

/// The module that a name without or with its suffix stands for; empty when there is none.
std::filesystem::path moduleFile(const std::filesystem::path& path) {
    std::error_code ignored;
    for (const char* suffix : moduleSuffixes) {
        std::filesystem::path candidate = path;
        if (path.extension() != suffix) candidate += suffix;
        if (std::filesystem::is_regular_file(candidate, ignored)) return candidate;
    }
    return {};
}

MStatus callShielded(EntryPoint entry, Plugin& plugin, const char* what) {
    try {
        return entry(Access::object(std::make_shared<PluginHandle>(&plugin)));
    } catch (const std::exception& e) {
        showError(plugin.name + ": exception in " + what + ": " + e.what());
    } catch (...) {
        showError(plugin.name + ": exception in " + std::string(what) + ".");
    }
    return MStatus::kFailure;
}

} // namespace

PluginManager& PluginManager::shared() {
    // Never destroyed: plug-ins may refer to it while the process ends.
    static PluginManager& manager = *new PluginManager;
    return manager;
}

PluginManager::~PluginManager() = default;

Plugin* PluginManager::find(const std::string& name) {
    const std::string stem = std::filesystem::path(name).stem().string();
    const auto at = std::find_if(plugins_.begin(), plugins_.end(),
                                 [&](const auto& p) { return p->name == name || p->path.stem() == stem; });
    return at == plugins_.end() ? nullptr : at->get();
}

std::filesystem::path PluginManager::fileOf(const std::string& bareName) const {
    for (const auto& folder : folders_)
        if (auto file = moduleFile(folder / bareName); !file.empty()) return file;
    return {};
}

bool PluginManager::isThere(const std::string& bareName) { return find(bareName) || !fileOf(bareName).empty(); }

Plugin& PluginManager::loadByBareName(const std::string& name) {
    if (name.empty() || name.find_first_of("/\\") != std::string::npos || name == "." || name == "..")
        throw scene::SceneError("Plug-in \"" + name + "\" is refused: a plug-in is loaded by its bare name.");
    if (Plugin* p = find(name)) return *p;
    if (const auto file = fileOf(name); !file.empty()) return loadFile(file);
    throw scene::SceneError("Plug-in, \"" + name + "\", was not found on the plug-in search path.");
}

Plugin& PluginManager::load(const std::string& nameOrPath) {
    if (nameOrPath.find('/') == std::string::npos) return loadByBareName(nameOrPath);
    const auto file = moduleFile(nameOrPath);
    if (file.empty()) throw scene::SceneError("Plug-in, \"" + nameOrPath + "\", was not found.");
    if (Plugin* p = find(file.stem().string())) return *p;
    return loadFile(file);
}

Plugin& PluginManager::loadFile(const std::filesystem::path& file) {
    const std::string shown = file.string();
    void* library = dlopen(shown.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* reason = dlerror();
        throw scene::SceneError("Plug-in \"" + shown + "\" cannot be loaded: " + (reason ? reason : "unknown reason"));
    }
    const EntryPoint initialise = entryPoint(library, "initializePlugin", "_Z16initializePlugin7MObject");
    if (!initialise || !entryPoint(library, "uninitializePlugin", "_Z18uninitializePlugin7MObject")) {
        dlclose(library);
        throw scene::SceneError("Plug-in \"" + shown +
                                "\" has no entry points initializePlugin and uninitializePlugin.");
    }
    auto plugin = std::make_unique<Plugin>();
    plugin->name = file.stem().string();
    plugin->path = std::filesystem::absolute(file);
    plugin->library = library;
    plugin->loading = true;
    auto& callbacks = Callbacks::shared();
    callbacks.tell(MSceneMessage::kBeforePluginLoad, {shown});
    const MStatus status = callShielded(initialise, *plugin, "initializePlugin");
    plugin->loading = false;
    if (!status) {
        callbacks.removeOfModule(reinterpret_cast<const void*>(initialise));
        // What it did register stays, so its code has to stay, too.
        if (plugin->nodeTypes.empty() && plugin->commands.empty())
            dlclose(library);
        else
            failed_.push_back(std::move(plugin));
        throw scene::SceneError("Plug-in \"" + shown +
                                "\" failed to initialize: " + std::string(status.errorString().asChar()));
    }
    plugins_.push_back(std::move(plugin));
    callbacks.tell(MSceneMessage::kAfterPluginLoad, {shown, plugins_.back()->name});
    return *plugins_.back();
}

void PluginManager::unload(const std::string& name) {
    Plugin* p = find(name);
    if (!p) throw scene::SceneError("Plug-in, \"" + name + "\", is not loaded.");
    auto& scene = scene::Scene::current();
    auto& callbacks = Callbacks::shared();
    if (callbacks.running())
        throw scene::SceneError("Plug-in, \"" + p->name + "\", cannot be unloaded while a callback runs.");
    for (const auto& typeName : p->nodeTypes) {
        for (const auto& [serial, node] : scene.nodes())
            if (node->type.name == typeName)
                throw scene::SceneError("Plug-in, \"" + p->name +
                                        "\", cannot be unloaded because it is still in use: node '" +
                                        scene.displayName(*node) + "'.");
    }
    const std::string pluginName = p->name, path = p->path.string();
    callbacks.tell(MSceneMessage::kBeforePluginUnload, {pluginName});
    scene.undo.clear();
    scene.forgetDeleted();
    const EntryPoint finish = entryPoint(p->library, "uninitializePlugin", "_Z18uninitializePlugin7MObject");
    const MStatus status = callShielded(finish, *p, "uninitializePlugin");
    if (!status)
        throw scene::SceneError("Plug-in, \"" + p->name +
                                "\", failed to uninitialize: " + std::string(status.errorString().asChar()));
    void* library = p->library;
    if (const int left = callbacks.removeOfModule(reinterpret_cast<const void*>(finish)); left > 0)
        showWarning("Plug-in, \"" + pluginName + "\", left " + std::to_string(left) +
                    (left == 1 ? " callback behind, which is removed." : " callbacks behind, which are removed."));
    std::erase_if(plugins_, [p](const auto& q) { return q.get() == p; });
    dlclose(library);
    callbacks.tell(MSceneMessage::kAfterPluginUnload, {pluginName, path});
}

void PluginManager::unloadAll() noexcept {
    while (!plugins_.empty()) {
        const std::string name = plugins_.back()->path.stem().string();
        try {
            unload(name);
        } catch (const std::exception& e) {
            showError(e.what());
            return;
        }
    }
}

} // namespace host::api
