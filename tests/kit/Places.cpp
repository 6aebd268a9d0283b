#include "Places.h"

namespace orvo::test {
namespace {

std::string joined(const char* root, const std::string& below) {
    return below.empty() ? std::string(root) : std::string(root) + "/" + below;
}

} // namespace

std::string sourceTree(const std::string& below) { return joined(ORVO_SOURCE_TREE, below); }
std::string testData(const std::string& below) { return joined(ORVO_SOURCE_TREE "/tests/data", below); }
std::string buildTree(const std::string& below) { return joined(ORVO_BUILD_TREE, below); }
std::string plugin() { return ORVO_BUILD_TREE "/bin/orvosky.so"; }
std::string pluginFolder() { return ORVO_BUILD_TREE "/bin"; }
std::string shaders() { return ORVO_SOURCE_TREE "/plugin/shaders"; }
std::string program() { return ORVO_BUILD_TREE "/bin/orvosky"; }
std::string standIns() { return ORVO_BUILD_TREE "/tests/plugin/standin/plug-ins"; }

} // namespace orvo::test
