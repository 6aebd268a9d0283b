#pragma once

#include "Inspection.h"

#include <filesystem>

namespace orvosky::inspect {

/// Warns of the files that an inspected file names and that are not there, or that OpenGL cannot take, as texture paths
/// in exported files are relative to the build folder of a project, and those in files between artists to the project.
/// @param project the root of a workspace, its folder "artsource", or empty: the project that the inspected file lies
/// in.
///   Where there is none, nothing is said.
void checkNamedFiles(Inspection& found, const std::filesystem::path& project);

} // namespace orvosky::inspect
