#include "files/FileNames.h"

#include <algorithm>

namespace host::files {

using namespace scene;

std::string FileNames::place(const DagNode* parent, std::string_view name) {
    return std::to_string(parent ? parent->serial : 0).append("/").append(name);
}

void FileNames::add(Node& node, std::string name) {
    remove(node);
    const DagNode* parent = node.dag() ? node.dag()->parent : nullptr;
    byName_[name].push_back(&node);
    if (parent) byPlace_[place(parent, name)].push_back(&node);
    entries_[&node] = {std::move(name), parent};
}

void FileNames::remove(Node& node) {
    const auto it = entries_.find(&node);
    if (it == entries_.end()) return;
    const auto& [name, parent] = it->second;
    std::erase(byName_[name], &node);
    if (parent) std::erase(byPlace_[place(parent, name)], &node);
    entries_.erase(it);
}

void FileNames::renamed(Node& node, std::string name) { add(node, std::move(name)); }

void FileNames::moved(Node& node) {
    if (const auto it = entries_.find(&node); it != entries_.end()) add(node, std::string(it->second.name));
}

std::string_view FileNames::nameOf(const Node& node) const {
    const auto it = entries_.find(&node);
    return it == entries_.end() ? std::string_view(node.name) : it->second.name;
}

/// The node right below the parent; null when there is none.
DagNode* FileNames::child(const DagNode& parent, std::string_view name) const {
    if (const auto it = byPlace_.find(place(&parent, name)); it != byPlace_.end())
        for (Node* node : it->second)
            if (node->inScene) return node->dag();
    DagNode* there = scene_.childNamed(parent, name);
    return there && !entries_.contains(there) ? there : nullptr;
}

bool FileNames::leadsTo(const DagNode& node, const std::vector<std::string_view>& parts) const {
    const DagNode* at = &node;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part, at = at->parent)
        if (!at || at->isWorld() || nameOf(*at) != *part) return false;
    return true;
}

Node* FileNames::find(std::string_view path) const {
    std::vector<std::string_view> parts;
    for (std::string_view rest = path;;) {
        const auto bar = rest.find('|');
        std::string_view part = rest.substr(0, bar);
        if (part.starts_with(':')) part.remove_prefix(1);
        parts.push_back(part);
        if (bar == rest.npos) break;
        rest.remove_prefix(bar + 1);
    }
    Node* found = nullptr;
    const auto take = [&](Node* node) {
        if (!node || !node->inScene) return true;
        const bool first = !found;
        found = node;
        return first;
    };
    const auto named = [&](std::string_view name) -> const std::vector<Node*>& {
        static const std::vector<Node*> none;
        const auto it = byName_.find(std::string(name));
        return it == byName_.end() ? none : it->second;
    };
    if (parts.size() == 1) {
        for (Node* node : named(parts[0]))
            if (!take(node)) return nullptr;
        return found ? found : scene_.findNode(path);
    }
    const auto down = [&](const DagNode* at) -> DagNode* {
        DagNode* node = nullptr;
        for (std::size_t i = 1; at && i < parts.size(); ++i) at = node = child(*at, parts[i]);
        return node;
    };
    const auto &tops = named(parts.front()), &leaves = named(parts.back());
    if (parts.front().empty()) {
        if (DagNode* node = down(scene_.world()); node && entries_.contains(node)) found = node;
    } else if (!tops.empty() && tops.size() <= leaves.size()) {
        for (Node* top : tops)
            if (!take(top->dag() && top->inScene ? down(top->dag()) : nullptr)) return nullptr;
    } else {
        // The path may begin above what the file made.
        for (Node* leaf : leaves)
            if (!take(leaf->dag() && leadsTo(*leaf->dag(), parts) ? leaf : nullptr)) return nullptr;
    }
    return found ? found : scene_.findNode(path);
}

} // namespace host::files
