#pragma once

#include <string>
#include <string_view>

/// Where the tool and the game project live, and the project-relative form in which file paths are stored.
namespace orvo {

/// @name Texts only
/// @{
std::string toBackslashes(std::string path);
/// ASCII letters only.
std::string toLowerCase(std::string path);
/// Every run of separators ("/" and "\") shrinks to its first one.
std::string collapseSeparators(std::string_view path);
/// The same, but on Windows the two separators stay that begin the path of a share ("//server/share/file").
std::string collapsePath(std::string_view path);
std::string stripLeadingSeparators(std::string_view path);
/// A workspace folder without "artsource/" (in any case) at its end; the separator before it stays.
std::string rootOfWorkspace(const std::string& workspace);
/// Shortens a path under the root to its lower-case, backslashed relative form; another path only loses its leading
/// separators. @return whether it lay under the root
bool makeRelativeTo(const std::string& root, std::string& path);
/// Puts the root before a path without a drive colon, with single backslashes; false for one with a colon.
bool joinToRoot(const std::string& root, std::string& path);
/// Drops the leading "build" and its separator, as exported files store paths. False when the path does not begin so
/// or holds nothing else.
bool stripBuildFolder(std::string& path);
/// @}

/// The folder of the shader files, below the studio's tool root; relative when the studio's procedure
/// "OrvoGetPath_ToolsRoot" does not exist. One buffer of 512 bytes serves all callers, rebuilt by each call.
const char* shaderDirectory();

/// The workspace's folder without "artsource/". Asked of the host once, at the first call; empty when that failed.
const std::string& projectRoot();

/// makeRelativeTo and joinToRoot with the project root. An existing path that begins with "/" counts as absolute where
/// paths have no drives, and on Windows one of a share: makeAbsolute leaves it as it is, as it leaves a path with a
/// drive colon.
bool makeProjectRelative(std::string& path);
bool makeAbsolute(std::string& path);
/// A path that leads into the project through a link, or past ".", "..", as if it had been given through the root's own
/// name, which is the one that makeProjectRelative knows. Any other path as it is.
std::string inProjectSpelling(const std::string& path);
/// The form in which nodes keep the path of a file: project-relative when it leads into the project, by whichever
/// spelling; else as it is.
std::string storedForm(const std::string& path);
/// The path after makeAbsolute.
std::string absoluteCopy(std::string path);

} // namespace orvo
