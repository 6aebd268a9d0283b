#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace host::files {

/// A project: its root folder, and what its workspace.mel says about where files of each kind lie.
///
/// workspace.mel is read for its `workspace` statements with file rules and variables; it is never run. All paths
/// that are given out have forward slashes.
class Workspace {
public:
    /// The current folder, without rules.
    Workspace() : Workspace(std::filesystem::current_path()) {}
    /// As open(); but a root that is not there, or a broken workspace.mel, gives a workspace without rules and a
    /// warning.
    explicit Workspace(const std::filesystem::path& root);

    /// The nearest folder from `start` upward that holds a workspace.mel.
    static std::optional<std::filesystem::path> findUpward(const std::filesystem::path& start);

    /// Makes another folder the root. Throws FileError when it is not there or its workspace.mel cannot be read; then
    /// nothing changes.
    void open(const std::filesystem::path& root);
    /// Writes the rules and variables to the root's workspace.mel. Throws FileError.
    void save() const;

    /// Absolute, without a slash at the end.
    std::filesystem::path root() const { return root_; }
    /// The same with a slash at the end; answers whether the folder is still there or not.
    std::string rootDirectory() const { return root_.ends_with('/') ? root_ : root_ + "/"; }
    std::string currentDirectory() const { return current_; }
    /// `folder` is absolute or relative to the root.
    void setCurrentDirectory(std::string_view folder) { current_ = expand(folder); }

    /// "scene" -> "scenes": the folder of a kind of file, absolute or relative to the root.
    std::map<std::string, std::string> fileRules, variables;

    /// The absolute form of a path that is relative to the root.
    std::string expand(std::string_view path) const;
    /// Where a scene of that name is: the name itself when it is absolute, else the first that exists of: below the
    /// root, in the folders of scenes, below the current folder. The first of these when there is none.
    std::string findScene(std::string_view name) const;
    /// The folder that new scenes go to.
    std::string sceneFolder() const;

private:
    void readRules(const std::string& root);
    std::string root_, current_;
};

} // namespace host::files
