#pragma once

#include "scene/Scene.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host::files {

/// Which nodes the names in a file mean: those that the file made, under the names that it uses (the scene may have
/// given them others), then those that are in the scene already.
class FileNames {
public:
    explicit FileNames(scene::Scene& scene) : scene_(scene) {}
    void add(scene::Node& node, std::string name);
    void renamed(scene::Node& node, std::string name);
    /// The node of that name or path; null when there is none or more than one.
    scene::Node* find(std::string_view path) const;

private:
    std::string_view nameOf(const scene::Node& node) const;
    scene::Scene& scene_;
    std::unordered_map<std::string, std::vector<scene::Node*>> nodes_;
    std::unordered_map<const scene::Node*, std::string> names_;
};

} // namespace host::files
