#include "files/FileNames.h"

namespace host::files {

using namespace scene;

void FileNames::add(Node& node, std::string name) {
    nodes_[name].push_back(&node);
    names_[&node] = std::move(name);
}

void FileNames::renamed(Node& node, std::string name) {
    if (const auto it = names_.find(&node); it != names_.end()) std::erase(nodes_[it->second], &node);
    add(node, std::move(name));
}

std::string_view FileNames::nameOf(const Node& node) const {
    const auto it = names_.find(&node);
    return it == names_.end() ? std::string_view(node.name) : it->second;
}

Node* FileNames::find(std::string_view path) const {
    const auto bar = path.rfind('|');
    std::string_view leaf = bar == path.npos ? path : path.substr(bar + 1);
    if (leaf.starts_with(':')) leaf.remove_prefix(1);
    const auto it = nodes_.find(std::string(leaf));
    Node* found = nullptr;
    if (it != nodes_.end()) {
        for (Node* candidate : it->second) {
            // Compared from the leaf upward.
            const DagNode* at = candidate->dag();
            std::string_view rest = path.substr(0, bar == path.npos ? 0 : bar);
            bool fits = candidate->inScene && (bar == path.npos || at);
            bool more = bar != path.npos;
            while (fits && more) {
                const auto up = rest.rfind('|');
                std::string_view part = up == rest.npos ? rest : rest.substr(up + 1);
                if (part.starts_with(':')) part.remove_prefix(1);
                at = at->parent;
                more = up != rest.npos;
                fits = at && (part.empty() ? at->isWorld() && !more : !at->isWorld() && nameOf(*at) == part);
                if (more) rest = rest.substr(0, up);
            }
            if (!fits) continue;
            if (found) return nullptr;
            found = candidate;
        }
    }
    return found ? found : scene_.findNode(path);
}

} // namespace host::files
