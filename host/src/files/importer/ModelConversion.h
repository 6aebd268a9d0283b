#pragma once

#include "files/RawModel.h"

#include <filesystem>

namespace host::files {

/// Reads a file with Assimp; see readModel(). Of other files, those that it names in its own folder or below are read,
/// no others. Throws std::exception with a text for the user.
RawModel convertModel(const std::filesystem::path& file);

} // namespace host::files
