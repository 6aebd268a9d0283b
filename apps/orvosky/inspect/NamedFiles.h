#pragma once

#include "Inspection.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvosky::inspect {

/// A file that an inspected file names.
struct NamedFile {
    const Element* element;
    std::string attribute, path;
    std::filesystem::path file; ///< where it is; empty when it is not there
};

/// The files that an inspected file names. `project` as below; without one nothing is found.
std::vector<NamedFile> namedFiles(const Inspection& found, const std::filesystem::path& project);

/// The file that a path means below a folder: with either separator, in any case. Empty when it is not there.
std::filesystem::path fileMeant(const std::filesystem::path& folder, std::string path);

/// Warns of the files that an inspected file names and that are not there, or that OpenGL cannot take, as texture paths
/// in exported files are relative to the build folder of a project, and those in files between artists to the project.
/// @param project the root of a workspace, its folder "artsource", or empty: the project that the inspected file lies
/// in.
///   Where there is none, nothing is said.
void checkNamedFiles(Inspection& found, const std::filesystem::path& project);

} // namespace orvosky::inspect
