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
    /// To be told when a node of the file has got another parent.
    void moved(scene::Node& node);
    /// Calls visit(node, name) for all that were added.
    template <class Visit>
    void each(Visit visit) const {
        for (const auto& [node, entry] : entries_) visit(const_cast<scene::Node&>(*node), entry.name);
    }
    /// The node of that name or path; null when there is none or more than one.
    scene::Node* find(std::string_view path) const;

private:
    struct Entry {
        std::string name;
        const scene::DagNode* parent = nullptr;
    };
    void remove(scene::Node& node);
    std::string_view nameOf(const scene::Node& node) const;
    scene::DagNode* child(const scene::DagNode& parent, std::string_view name) const;
    bool leadsTo(const scene::DagNode& node, const std::vector<std::string_view>& parts) const;

    /// "NUMBER/name" of a node below a parent; the number is the parent's.
    static std::string place(const scene::DagNode* parent, std::string_view name);

    scene::Scene& scene_;
    std::unordered_map<std::string, std::vector<scene::Node*>> byName_;
    std::unordered_map<std::string, std::vector<scene::Node*>> byPlace_;
    std::unordered_map<const scene::Node*, Entry> entries_;
};

} // namespace host::files
