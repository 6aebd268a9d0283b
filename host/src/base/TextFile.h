#pragma once

#include "base/FileError.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host::files {

/// All bytes of a plain file. Throws FileError when it is missing, no plain file or unreadable.
std::string readFile(const std::filesystem::path& file);
std::vector<unsigned char> readFileBytes(const std::filesystem::path& file);

/// The same of a text file. Throws FileError also for a binary one.
std::string readTextFile(const std::filesystem::path& file);

/// Writes the text beside the file and puts it into its place when all of it is on the disk: whatever fails, the old
/// file stays. Throws FileError.
void writeTextFile(const std::filesystem::path& file, std::string_view text);

/// Whether the file says that it is a Maya ASCII scene.
bool isSceneFile(const std::filesystem::path& file);

} // namespace host::files
