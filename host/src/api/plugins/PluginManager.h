#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

class MObject;
class MPxCommand;

namespace host::api {

/// A loaded plug-in and what it registered.
struct Plugin {
    std::string name;           ///< file name without folder and extension
    std::filesystem::path path; ///< of the loaded file
    std::string vendor, version, apiVersion;
    std::vector<std::string> nodeTypes, commands;
    void* library = nullptr;
    bool loading = false;
};

/// Loads plug-ins as shared libraries, through their entry points initializePlugin and uninitializePlugin.
class PluginManager {
public:
    /// The one of the running host.
    static PluginManager& shared();
    ~PluginManager();

    /// Folders that bare names are looked up in, in order.
    void setSearchPath(std::vector<std::filesystem::path> folders) { folders_ = std::move(folders); }

    /// Loads by bare name (along the search path) or by path. Loading what is loaded does nothing.
    /// Throws scene::SceneError with a text for the user when it is not found or its initialisation fails.
    Plugin& load(const std::string& nameOrPath);
    /// Whether a bare name is loaded, or is there on the search path.
    bool isThere(const std::string& bareName);
    /// Loads by bare name alone: a name with a folder in it is refused.
    Plugin& loadByBareName(const std::string& name);
    /// Throws scene::SceneError when it is in use, unknown, or its clean-up fails.
    void unload(const std::string& name);
    void unloadAll() noexcept;

    Plugin* find(const std::string& name);
    const std::vector<std::unique_ptr<Plugin>>& loaded() const { return plugins_; }

private:
    std::filesystem::path fileOf(const std::string& bareName) const;
    Plugin& loadFile(const std::filesystem::path& file);
    std::vector<std::filesystem::path> folders_;
    std::vector<std::unique_ptr<Plugin>> plugins_;
    std::vector<std::unique_ptr<Plugin>> failed_; ///< their initialisation failed after it had registered something
};

} // namespace host::api
