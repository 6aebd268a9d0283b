#include "scene/Namespaces.h"

#include <algorithm>
#include <unordered_set>

namespace host::scene {
namespace {

References& references(Scene& scene) { return References::of(scene); }

std::string joined(const std::string& above, const std::string& name) {
    return above.empty() ? name : name.empty() ? above : above + ":" + name;
}

bool isWithin(std::string_view name, std::string_view space) {
    return space.empty() || name == space || (name.starts_with(space) && name.substr(space.size()).starts_with(":"));
}

void requireName(const std::string& name) {
    if (!Scene::isValidName(name) || name.find(':') != name.npos)
        throw SceneError("'" + name + "' is not a name for a namespace.");
}

/// Gives every node in the namespace and below its new place, the one behind `to`.
void moveNodes(Scene& scene, const std::string& from, const std::string& to, bool force) {
    std::vector<std::pair<Node*, std::string>> moves;
    std::unordered_set<std::string> wanted;
    for (Node* node : nodesInNamespace(scene, from, true)) {
        // Out of the root everything moves but what is there already.
        if (node->isDefault || (from.empty() && isWithin(namespaceOf(node->name), to))) continue;
        references(scene).requireOwn(*node, "rename");
        const std::string rest = from.empty() ? node->name : node->name.substr(from.size() + 1);
        const std::string name = joined(to, rest);
        if (!force && (scene.findNode(name) || !wanted.insert(name).second))
            throw SceneError("The name '" + name + "' is taken.");
        moves.emplace_back(node, name);
    }
    for (const auto& [node, name] : moves) scene.rename(*node, name);
}

/// What stands for the namespaces below one after it has moved.
void moveDeclared(Scene& scene, const std::string& from, const std::string& to) {
    for (const std::string& below : namespacesIn(scene, from, true))
        if (!from.empty() || !isWithin(below, to))
            references(scene).declare(joined(to, from.empty() ? below : below.substr(from.size() + 1)));
}

} // namespace

std::string withoutColons(std::string_view name) {
    while (name.starts_with(':')) name.remove_prefix(1);
    while (name.ends_with(':')) name.remove_suffix(1);
    return std::string(name);
}

std::string namespaceNamed(Scene& scene, std::string_view text) {
    return text.starts_with(':') ? withoutColons(text) : joined(references(scene).current, withoutColons(text));
}

std::string existingNamespace(Scene& scene, std::string_view text) {
    for (std::string name : {namespaceNamed(scene, text), withoutColons(text)})
        if (references(scene).exists(name)) return name;
    throw SceneError("No namespace matches name: '" + std::string(text) + "'.");
}

std::string addNamespace(Scene& scene, std::string_view text, const std::string& parent) {
    const std::string name = withoutColons(text);
    for (std::string_view part = name;;) {
        const auto colon = part.find(':');
        requireName(std::string(part.substr(0, colon)));
        if (colon == part.npos) break;
        part.remove_prefix(colon + 1);
    }
    std::string whole = text.starts_with(':') ? name : joined(parent, name);
    if (references(scene).exists(whole)) throw SceneError("The namespace '" + whole + "' exists already.");
    references(scene).declare(whole);
    return whole;
}

void removeNamespace(Scene& scene, const std::string& name, NamespaceContents contents) {
    References& all = references(scene);
    if (name.empty()) throw SceneError("The root namespace cannot be removed.");
    const std::string above(namespaceOf(name));
    if (contents == NamespaceContents::Delete) {
        const std::vector<Node*> nodes = nodesInNamespace(scene, name, true);
        for (const Node* node : nodes) all.requireOwn(*node, "delete");
        scene.deleteNodes(nodes);
    } else if (contents != NamespaceContents::MustBeNone) {
        const std::string to = contents == NamespaceContents::ToParent ? above : "";
        moveDeclared(scene, name, to);
        moveNodes(scene, name, to, true);
    }
    if (!nodesInNamespace(scene, name, true).empty()) throw SceneError("The namespace '" + name + "' is not empty.");
    all.forget(name);
    if (isWithin(all.current, name)) all.current = above;
}

std::string renameNamespace(Scene& scene, const std::string& name, std::string_view lastPart) {
    References& all = references(scene);
    const std::string last = withoutColons(lastPart);
    requireName(last);
    std::string to = joined(std::string(namespaceOf(name)), last);
    if (name.empty() || all.exists(to)) throw SceneError("The namespace cannot be renamed to '" + to + "'.");
    moveNodes(scene, name, to, true);
    all.declare(to);
    moveDeclared(scene, name, to);
    all.forget(name);
    if (isWithin(all.current, name)) all.current = to + all.current.substr(name.size());
    return to;
}

void moveNamespace(Scene& scene, const std::string& from, const std::string& to, bool force) {
    if (from == to || (!from.empty() && isWithin(to, from)))
        throw SceneError("The namespace '" + from + "' cannot be moved into '" + to + "'.");
    moveNodes(scene, from, to, force);
    moveDeclared(scene, from, to);
}

std::vector<std::string> namespacesIn(Scene& scene, const std::string& name, bool below) {
    std::vector<std::string> found = references(scene).namespaces();
    std::erase_if(found, [&](const std::string& space) {
        return space == name || !isWithin(space, name) || (!below && namespaceOf(space) != name);
    });
    return found;
}

std::vector<Node*> nodesInNamespace(Scene& scene, const std::string& name, bool below) {
    std::vector<Node*> found;
    if (!name.empty() && !references(scene).occupied(name)) return found;
    for (const auto& [serial, node] : scene.nodes()) {
        const std::string_view own = namespaceOf(node->name);
        if (own == name || (below && isWithin(own, name))) found.push_back(node.get());
    }
    return found;
}

} // namespace host::scene
