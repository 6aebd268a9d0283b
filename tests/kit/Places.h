#pragma once

#include <string>

/// Where things lie on the machine that built the tests. They are compiled into one file alone, so that the same test
/// sources, checked out elsewhere, are found in the compiler cache.
namespace orvo::test {

/// A path in the source tree, as in `sourceTree("docs/atmos.xsd")`; without an argument the tree's root.
std::string sourceTree(const std::string& below = {});
/// A path in `tests/data`.
std::string testData(const std::string& below = {});
/// A path in the build tree.
std::string buildTree(const std::string& below);
/// The plug-in that was built, and the folder that holds it.
std::string plugin();
std::string pluginFolder();
/// The folder of the plug-in's GLSL sources.
std::string shaders();
/// The program `orvosky`.
std::string program();
/// The folder of plug-ins that stand in for other makers' nodes in the example scenes.
std::string standIns();

} // namespace orvo::test
