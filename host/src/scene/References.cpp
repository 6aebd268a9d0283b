#include "scene/References.h"

#include "base/NumberText.h"
#include "scene/Scene.h"

#include <algorithm>
#include <set>

namespace host::scene {

References& References::of(Scene& scene) {
    // As many as there are scenes: one.
    static std::unordered_map<const Scene*, std::unique_ptr<References>> table;
    auto& slot = table[&scene];
    if (!slot) slot.reset(new References(scene));
    return *slot;
}

Reference* References::named(const std::string& name) const {
    const auto it = byName_.find(name);
    return it == byName_.end() ? nullptr : it->second;
}

Reference* References::prefixed(const std::string& prefix) const {
    const auto it = byPrefix_.find(prefix);
    return it == byPrefix_.end() ? nullptr : it->second;
}

bool References::isFileOf(const std::string& statement, const Reference& top) const {
    const auto has = [&](const std::string& name) {
        return statement.find("-rfn \"" + name) != statement.npos ||
               statement.find("-referenceNode \"" + name) != statement.npos;
    };
    // Those within one that is not loaded are known by their namespace alone.
    if (has(top.name + '"') || (!top.nameSpace.empty() && has(top.nameSpace + ':'))) return true;
    return std::any_of(all_.begin(), all_.end(), [&](const auto& r) { return r->top == &top && has(r->name + '"'); });
}

Reference& References::enter(std::shared_ptr<Reference> reference) {
    byName_.emplace(reference->name, reference.get());
    byPrefix_.emplace(reference->prefix, reference.get());
    return *all_.emplace_back(std::move(reference));
}

std::pair<std::string, int> splitCopy(const std::string& file) {
    const auto brace = file.find('{');
    if (brace == file.npos) return {file, 0};
    std::string_view number = std::string_view(file).substr(brace + 1);
    return {file.substr(0, brace), std::max(takeInt(number).value_or(0), 0)};
}

void References::setRead(Reference& reference, std::filesystem::path path) {
    auto& taken = copies_[path.string()];
    int copy = splitCopy(reference.file).second;
    if (taken.contains(copy)) {
        copy = *taken.rbegin() + 1;
        if (copy > static_cast<int>(taken.size()))
            for (copy = 0; taken.contains(copy);) ++copy;
    }
    taken.insert(copy);
    reference.copy = copy;
    reference.path = std::move(path);
    reference.loaded = true;
}

Reference* References::of(const Node& node) const {
    const auto it = node.referenced ? byNode_.find(&node) : byNode_.end();
    return it == byNode_.end() ? nullptr : it->second;
}

void References::bring(Reference& reference, const std::vector<NodePtr>& nodes) {
    for (const NodePtr& node : nodes) {
        if (!node->referenced) { // else of a reference within
            node->referenced = true;
            byNode_[node.get()] = &reference;
            reference.contents.push_back(node);
        }
        for (Cell* root : node->cells())
            forEachCell(*root, [&](Cell& cell) {
                if (cell.source) connections_[&cell] = cell.source;
                // What it feeds among the nodes that every scene has.
                for (const Cell* to : cell.destinations)
                    if (to->node.isDefault) connections_[to] = &cell;
            });
    }
}

void References::remove(Reference& reference) {
    for (const auto& kept : reference.contents)
        if (const NodePtr node = kept.lock()) {
            node->referenced = false;
            byNode_.erase(node.get());
            points_.erase(node.get());
        }
    if (named(reference.name) == &reference) byName_.erase(reference.name);
    if (prefixed(reference.prefix) == &reference) byPrefix_.erase(reference.prefix);
    if (reference.loaded) copies_[reference.path.string()].erase(reference.copy);
    std::erase_if(all_, [&](const auto& r) { return r.get() == &reference; });
}

void References::clear() {
    all_.clear();
    byName_.clear();
    byPrefix_.clear();
    copies_.clear();
    byNode_.clear();
    changed_.clear();
    added_.clear();
    points_.clear();
    connections_.clear();
    declared_.clear();
    current.clear();
}

void References::noteValue(Cell& cell) {
    if (cell.node.referenced && quiet_ == 0) changed_.insert(&cell);
}

void References::noteAttribute(const Attribute& added) {
    if (quiet_ == 0) added_.insert(&added);
}

void References::noteBroken(const Cell& source, const Cell& destination) {
    if (quiet_ > 0 || !isOwnConnection(destination)) return;
    Reference* reference = of(destination.node);
    if (!reference) reference = of(source.node);
    if (reference)
        reference->top->edits.push_back(
            {reference->name, ReferenceEdit::Disconnect, 0, {source.name(), destination.name(), ""}, true});
}

void References::notePoint(const Node& shape, int vertex) {
    if (keepsStored(shape)) points_[&shape].insert(vertex);
}

const std::set<int>& References::movedPoints(const Node& shape) const {
    static const std::set<int> none;
    const auto it = shape.referenced ? points_.find(&shape) : points_.end();
    return it == points_.end() ? none : it->second;
}

void References::requireOwn(const Node& node, const char* what) const {
    if (node.referenced && quiet_ == 0)
        throw SceneError(std::string("Cannot ") + what + " '" + node.name + "': it belongs to a reference.");
}

bool References::isOwnConnection(const Cell& destination) const {
    const auto it = connections_.find(&destination);
    return it != connections_.end() && it->second == destination.source;
}

std::string_view namespaceOf(std::string_view name) {
    const auto colon = name.rfind(':');
    return colon == name.npos ? std::string_view() : name.substr(0, colon);
}

std::vector<std::string> References::namespaces() const {
    std::set<std::string> found;
    const auto add = [&](std::string_view name) {
        for (; !name.empty() && found.emplace(name).second; name = namespaceOf(name)) {}
    };
    for (const auto& [name, count] : scene_.occupiedNamespaces()) add(name);
    for (const std::string& name : declared_) add(name);
    return {found.begin(), found.end()};
}

namespace {

const std::string& nameIn(const std::string& entry) { return entry; }
const std::string& nameIn(const std::pair<const std::string, std::size_t>& entry) { return entry.first; }

/// Whether a table in alphabetic order has the namespace, or one below it.
template <class Table>
bool has(const Table& table, std::string_view name) {
    if (table.contains(name)) return true;
    const std::string below = std::string(name) + ":";
    const auto at = table.lower_bound(below);
    return at != table.end() && nameIn(*at).starts_with(below);
}

} // namespace

bool References::occupied(std::string_view name) const { return has(scene_.occupiedNamespaces(), name); }

bool References::exists(std::string_view name) const { return name.empty() || occupied(name) || has(declared_, name); }

void References::declare(const std::string& name) { declared_.insert(name); }

void References::forget(const std::string& name) {
    std::erase_if(declared_, [&](const std::string& n) { return n == name || n.starts_with(name + ":"); });
}

} // namespace host::scene
