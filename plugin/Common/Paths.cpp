#include "Paths.h"

#include "FileSystem.h"
#include "LetterCase.h"

#include <algorithm>
#include <cstdio>
#include <maya/MGlobal.h>
#include <maya/MString.h>

namespace orvo {
namespace {

bool isSeparator(char c) { return c == '/' || c == '\\'; }

/// Whether a path names a file server's share, as in "//server/share/file".
[[maybe_unused]] bool isOnShare(std::string_view path) {
    return path.size() > 2 && isSeparator(path[0]) && isSeparator(path[1]) && !isSeparator(path[2]);
}

/// Whether a path may be that of a file outside of the project although no drive says so.
bool maybeRooted(std::string_view path) {
#ifdef _WIN32
    return isOnShare(path);
#else
    return path.starts_with('/');
#endif
}

/// The answer of a script, empty when it fails.
std::string scriptText(const char* command) {
    MString answer;
    if (MGlobal::executeCommand(command, answer).error()) return {};
    return answer.asUTF8();
}

std::string toolRoot() {
    // Asked for first: calling a procedure that does not exist is an error that the artist would see.
    int exists = 0;
    if (MGlobal::executeCommand("exists \"OrvoGetPath_ToolsRoot\";", exists).error() || exists == 0) return {};
    return scriptText("OrvoGetPath_ToolsRoot();");
}

} // namespace

std::string toBackslashes(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

std::string toLowerCase(std::string path) {
    std::transform(path.begin(), path.end(), path.begin(), lowered);
    return path;
}

std::string collapseSeparators(std::string_view path) {
    std::string kept;
    for (const char c : path)
        if (!isSeparator(c) || kept.empty() || !isSeparator(kept.back())) kept += c;
    return kept;
}

std::string collapsePath(std::string_view path) {
    std::string kept = collapseSeparators(path);
#ifdef _WIN32
    if (isOnShare(path)) kept.insert(0, 1, kept.front());
#endif
    return kept;
}

std::string stripLeadingSeparators(std::string_view path) {
    while (!path.empty() && isSeparator(path.front())) path.remove_prefix(1);
    return std::string(path);
}

std::string rootOfWorkspace(const std::string& workspace) {
    constexpr std::string_view tail = "artsource/";
    if (workspace.size() <= tail.size() || !toLowerCase(workspace).ends_with(tail)) return workspace;
    return workspace.substr(0, workspace.size() - tail.size());
}

bool makeRelativeTo(const std::string& root, std::string& path) {
    const std::string start = toLowerCase(toBackslashes(root));
    const std::string whole = collapsePath(toLowerCase(toBackslashes(path)));
    const bool isUnder = whole.size() > start.size() && whole.starts_with(start);
    path = stripLeadingSeparators(isUnder ? std::string_view(whole).substr(start.size()) : std::string_view(path));
    return isUnder;
}

bool joinToRoot(const std::string& root, std::string& path) {
    if (path.find(':') != std::string::npos) return false;
    path = collapsePath(toBackslashes(root + path));
    return true;
}

bool stripBuildFolder(std::string& path) {
    if (path.size() <= 6 || toLowerCase(path.substr(0, 5)) != "build" || !isSeparator(path[5])) return false;
    path.erase(0, 6);
    return true;
}

const char* shaderDirectory() {
    static char buffer[512];
    std::snprintf(buffer, sizeof buffer, "%s%s", toolRoot().c_str(), "ArtTools/Maya/OrvoSkyTool/shaders/");
    return buffer;
}

const std::string& projectRoot() {
    static const std::string root = rootOfWorkspace(scriptText("workspace -q -rd;"));
    return root;
}

bool makeProjectRelative(std::string& path) { return makeRelativeTo(projectRoot(), path); }

bool makeAbsolute(std::string& path) {
    std::string joined = path;
    if (!joinToRoot(projectRoot(), joined)) return false;
    if (maybeRooted(path) && existingPath(path)) return false;
    path = std::move(joined);
    return true;
}

std::string inProjectSpelling(const std::string& path) {
    std::string relative = path;
    if (makeProjectRelative(relative)) return path;
    const auto whole = pathWithoutLinks(path);
    const auto root = whole ? pathWithoutLinks(projectRoot()) : std::nullopt;
    if (!root || !whole->starts_with(*root) || whole->size() == root->size()) return path;
    const std::string below = whole->substr(root->size());
    if (!root->ends_with('/') && below.front() != '/') return path; // a neighbour with a longer name
    return projectRoot() + stripLeadingSeparators(below);
}

std::string storedForm(const std::string& path) {
    std::string relative = inProjectSpelling(path);
    return makeProjectRelative(relative) ? relative : path;
}

std::string absoluteCopy(std::string path) {
    makeAbsolute(path);
    return path;
}

} // namespace orvo
