#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

/// The one place that opens files, tests for them and lists folders.
///
/// Stored paths are lower case and separated by backslashes. On Windows they are used as they stand. Elsewhere both
/// separators divide a path, and a component that is not there under its exact name is looked up ignoring the case of
/// ASCII letters (other letters, as UTF-8 bytes, must agree): the exact name wins, otherwise the first match in
/// byte order. A folder once chosen is not given up for another one of a like name.
namespace orvo {

struct FolderEntry {
    std::string name; ///< without its folder
    bool isFolder = false;
};

/// The path under which `path` exists (a file or a folder), nothing when it does not.
std::optional<std::string> existingPath(const std::string& path);

/// An absolute path with forward slashes and without links, "." and ".."; of a path that is not there, the part that is
/// there is resolved. Nothing for a relative path, and when it cannot be resolved.
std::optional<std::string> pathWithoutLinks(const std::string& path);

/// Where a file is to be written: the folder must exist, the last component is taken as given, and a link leads to what
/// it names. Nothing when there is no such place.
std::optional<std::string> placeToWrite(const std::string& path);

/// Opens a file as std::fopen does; the caller closes it. An 'x' at the end of the mode asks for a new file. For a mode
/// that begins with 'w' or 'a' the folder must exist and the last component is taken as given. Null, with errno telling
/// why, when the file cannot be opened, or when it is a folder, a pipe or a socket.
std::FILE* openFile(const std::string& path, const char* mode);

/// What changes when a file is written: its size in bytes and the time of its last change, in the clock's own units.
struct FileState {
    std::uintmax_t size = 0;
    std::intmax_t changed = 0;
    bool operator==(const FileState&) const = default;
};
/// Nothing when there is no such file.
std::optional<FileState> fileState(const std::string& path);

/// Whether something other than a folder is at `path`.
bool fileExists(const std::string& path);

/// Whether a folder is at `path`.
bool folderExists(const std::string& path);

/// What a folder holds, without "." and "..", in alphabetical order ignoring ASCII case (byte order among equals).
/// Nothing when there is no such folder or it cannot be read.
std::optional<std::vector<FolderEntry>> listFolder(const std::string& path);

} // namespace orvo
