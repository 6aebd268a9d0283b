#pragma once

#include "scene/Scene.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host::mel {

/// Adds what a file of meshes holds to the scene (undoable): a transform for each object, with the prefix before its
/// name and a number behind it where it is taken, and a shape below for its mesh. Answers all new nodes.
/// Throws SceneError, with the scene as it was, when the file cannot be read.
std::vector<scene::NodePtr> importModel(const std::filesystem::path& file, const std::string& prefix);

} // namespace host::mel
