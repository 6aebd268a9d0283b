#include "base/Letters.h"
#include "base/Pattern.h"
#include "scene/References.h"
#include "scene/Scene.h"

#include <algorithm>

/// What the scene knows of names: which are free, which node has one, and which nodes a path or a pattern means.
namespace host::scene {
namespace {

std::string_view withoutRootColon(std::string_view name) {
    return !name.empty() && name.front() == ':' ? name.substr(1) : name;
}

std::vector<std::string_view> splitPath(std::string_view path) {
    std::vector<std::string_view> parts;
    while (true) {
        const auto bar = path.find('|');
        parts.push_back(withoutRootColon(path.substr(0, bar)));
        if (bar == std::string_view::npos) return parts;
        path.remove_prefix(bar + 1);
    }
}

template <class Match>
bool pathMatches(const DagNode& node, const std::vector<std::string_view>& parts, Match match) {
    const DagNode* n = &node;
    for (auto it = parts.rbegin(); it != parts.rend(); ++it) {
        // An empty first part stands for the world.
        if (it->empty() && it + 1 == parts.rend()) return n && n->isWorld();
        if (!n || n->isWorld() || !match(*it, n->name)) return false;
        n = n->parent;
    }
    return true;
}

/// Each namespace by itself: a star reaches no further than the next colon.
bool matchesInNamespaces(std::string_view pattern, std::string_view name) {
    while (true) {
        const auto p = pattern.find(':'), n = name.find(':');
        if ((p == pattern.npos) != (n == name.npos) || !matchesName(pattern.substr(0, p), name.substr(0, n)))
            return false;
        if (p == pattern.npos) return true;
        pattern.remove_prefix(p + 1);
        name.remove_prefix(n + 1);
    }
}

} // namespace

bool Scene::isValidName(std::string_view name) {
    if (name.empty() || isDigit(name.front())) return false;
    return std::all_of(name.begin(), name.end(), [](char c) {
        return isLetter(c) || isDigit(c) || c == '_' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
    });
}

std::string Scene::freeNumbered(const std::string& stem, const Node* self) const {
    // Numbers are handed out upwards; the hint only skips what was taken a moment ago.
    int& hint = numberHints_[stem];
    for (int n = 1;; ++n) {
        if (n == 1 && hint > 1) {
            // Deletions may have freed low numbers, so the hint holds only while its own name is taken.
            const auto it = byName_.find(stem + std::to_string(hint));
            const auto first = byName_.find(stem + "1");
            if (it != byName_.end() && first != byName_.end()) n = hint;
        }
        const auto it = byName_.find(stem + std::to_string(n));
        if (it == byName_.end() || (it->second.size() == 1 && it->second.front() == self)) {
            hint = n;
            return stem + std::to_string(n);
        }
    }
}

std::string Scene::freeName(const std::string& wanted, const Node* node, const DagNode* parent, bool dag) const {
    std::string name(withoutRootColon(wanted));
    for (char& c : name)
        if (c != '#' && !isValidName(std::string("a") + c)) c = '_';
    if (!name.empty() && isDigit(name.front())) name.insert(name.begin(), '_');
    if (!name.empty() && name.back() == '#') {
        while (!name.empty() && name.back() == '#') name.pop_back();
        return freeNumbered(name, node);
    }
    std::replace(name.begin(), name.end(), '#', '_');
    const auto taken = [&] {
        const auto it = byName_.find(name);
        if (it == byName_.end()) return false;
        const auto& others = it->second;
        if (!dag || !others.front()->dag()) return others.size() > 1 || others.front() != node;
        // Siblings must differ; elsewhere in the DAG the path tells equal names apart.
        const auto [first, last] = byPlace_.equal_range({parent, name});
        return std::any_of(first, last, [&](const auto& at) { return at.second != node; });
    };
    if (!taken()) return name;
    while (!name.empty() && isDigit(name.back())) name.pop_back();
    return freeNumbered(name, node);
}

void Scene::index(Node& node) {
    auto& list = byName_[node.name];
    node.nameSlot = list.size();
    list.push_back(&node);
    const std::string_view space = namespaceOf(node.name);
    if (space.empty()) return;
    const auto at = byNamespace_.find(space);
    ++(at == byNamespace_.end() ? byNamespace_[std::string(space)] : at->second);
}

void Scene::unindex(Node& node) {
    const auto it = byName_.find(node.name);
    if (it == byName_.end()) return;
    auto& list = it->second;
    if (node.nameSlot >= list.size() || list[node.nameSlot] != &node) return;
    list[node.nameSlot] = list.back();
    list[node.nameSlot]->nameSlot = node.nameSlot;
    list.pop_back();
    const auto space = byNamespace_.find(namespaceOf(node.name));
    if (space != byNamespace_.end() && --space->second == 0) byNamespace_.erase(space);
    if (list.empty()) byName_.erase(it);
}

void Scene::enterPlace(DagNode& node) {
    if (node.parent) byPlace_.emplace(Place{node.parent, node.name}, &node);
}

void Scene::leavePlace(DagNode& node) {
    auto [at, last] = byPlace_.equal_range({node.parent, node.name});
    while (at != last && at->second != &node) ++at;
    if (at != last) byPlace_.erase(at);
}

DagNode* Scene::childNamed(const DagNode& parent, std::string_view name) const {
    const auto at = byPlace_.find({&parent, name});
    return at == byPlace_.end() ? nullptr : at->second;
}

/// Visits the DAG nodes that a path of two or more names leads to, until `visit` answers false.
template <class Visit>
void Scene::eachAtPath(const std::vector<std::string_view>& parts, Visit visit) const {
    const auto down = [&](const DagNode* from) {
        DagNode* at = nullptr;
        for (std::size_t i = 1; from && i < parts.size(); ++i) from = at = childNamed(*from, parts[i]);
        return at;
    };
    if (parts.front().empty()) { // the world
        if (DagNode* n = down(world_)) visit(*n);
        return;
    }
    const auto first = byName_.find(std::string(parts.front())), last = byName_.find(std::string(parts.back()));
    if (first == byName_.end() || last == byName_.end()) return;
    // From the end that fewer nodes share.
    if (first->second.size() <= last->second.size()) {
        for (Node* top : first->second)
            if (DagNode* n = top->dag() ? down(top->dag()) : nullptr; n && !visit(*n)) return;
        return;
    }
    for (Node* leaf : last->second) {
        DagNode* n = leaf->dag();
        if (n && pathMatches(*n, parts, [](auto a, const auto& b) { return a == b; }) && !visit(*n)) return;
    }
}

std::string Scene::rename(Node& node, const std::string& wanted) {
    if (&node == world_) throw SceneError("The world cannot be renamed.");
    References::of(*this).requireOwn(node, "rename");
    DagNode* dag = node.dag();
    const std::string before = node.name;
    const std::string after = freeName(wanted, &node, dag ? dag->parent : nullptr, dag != nullptr);
    if (after.empty()) throw SceneError("New name has no legal characters.");
    if (after == before) return before;
    const auto set = [this, keep = node.weak_from_this(), raw = &node](const std::string& name) {
        DagNode* placed = raw->dag();
        unindex(*raw);
        if (placed) leavePlace(*placed);
        const std::string was = std::exchange(raw->name, name);
        index(*raw);
        if (placed) enterPlace(*placed);
        if (observer) observer->nodeRenamed(*raw, was);
    };
    set(after);
    record([set, after, node = node.shared_from_this()] { set(after); },
           [set, before, node = node.shared_from_this()] { set(before); });
    return after;
}

Node* Scene::findNode(std::string_view path, bool* ambiguous) const {
    if (ambiguous) *ambiguous = false;
    if (path == "|") return world_;
    const auto parts = splitPath(path);
    if (parts.back().empty()) return nullptr;
    Node* found = nullptr;
    bool several = false;
    if (parts.size() > 1) {
        eachAtPath(parts, [&](DagNode& n) {
            several = found;
            found = &n;
            return !several;
        });
    } else if (const auto it = byName_.find(std::string(parts.back())); it != byName_.end()) {
        several = it->second.size() > 1;
        found = it->second.front();
    }
    if (ambiguous) *ambiguous = several;
    return several ? nullptr : found;
}

std::vector<Node*> Scene::findNodes(std::string_view pattern) const {
    const auto parts = splitPath(pattern);
    std::vector<Node*> found;
    const auto consider = [&](Node* n) {
        if (parts.size() > 1) {
            DagNode* dag = n->dag();
            if (!dag || !pathMatches(*dag, parts, matchesInNamespaces)) return;
        } else if (!matchesInNamespaces(parts[0], n->name)) {
            return;
        }
        found.push_back(n);
    };
    if (parts.back().find_first_of("*?") == std::string_view::npos) {
        const auto it = byName_.find(std::string(parts.back()));
        if (it != byName_.end())
            for (Node* n : it->second) consider(n);
        std::sort(found.begin(), found.end(), [](Node* a, Node* b) { return a->serial < b->serial; });
        return found;
    }
    for (const auto& [serial, n] : nodes_) consider(n.get());
    return found;
}

bool Scene::isUniquePath(std::string_view path, const DagNode& node) const {
    const auto it = byName_.find(node.name);
    if (it == byName_.end() || it->second.size() < 2) return true;
    const auto parts = splitPath(path);
    bool alone = parts.size() > 1;
    if (alone) eachAtPath(parts, [&](DagNode& n) { return alone = &n == &node; });
    return alone;
}

std::string Scene::displayName(Node& node) const {
    DagNode* dag = node.dag();
    return dag ? dag->partialPath() : node.name;
}

} // namespace host::scene
