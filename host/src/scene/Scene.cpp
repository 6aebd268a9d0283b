#include "scene/Scene.h"

#include "base/Messages.h"
#include "base/Pattern.h"
#include "scene/Evaluation.h"
#include "scene/MeshFilter.h"
#include "scene/References.h"

#include <maya/MFn.h>

#include <algorithm>
#include <cctype>

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

/// Its place among its siblings. Searched from the last, which is the first to go when all are deleted.
std::size_t placeOf(const DagNode& child) {
    const auto& siblings = child.parent->children;
    const auto behind = std::find(siblings.rbegin(), siblings.rend(), &child);
    return static_cast<std::size_t>(siblings.rend() - behind) - 1;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

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

Scene& Scene::current() {
    // Never destroyed: plug-in objects with static lifetime may still refer to it while the process ends.
    static Scene& scene = *new Scene;
    return scene;
}

Scene::Scene() {
    registerBuiltinTypes(*this);
    reset();
}

Scene::~Scene() = default;

NodeType* Scene::registerType(std::unique_ptr<NodeType> type) {
    if (types_.contains(type->name) || (type->id && findType(type->id))) return nullptr;
    NodeType* raw = type.get();
    types_.emplace(type->name, std::move(type));
    return raw;
}

bool Scene::unregisterType(NodeType& type) {
    if (type.liveNodes > 0) return false;
    return types_.erase(type.name) > 0;
}

NodeType* Scene::findType(std::string_view name) const {
    const auto it = types_.find(name);
    return it == types_.end() ? nullptr : it->second.get();
}

NodeType* Scene::findType(unsigned id) const {
    for (const auto& [name, type] : types_)
        if (type->id == id && id != 0) return type.get();
    return nullptr;
}

std::vector<const NodeType*> Scene::types() const {
    std::vector<const NodeType*> all;
    for (const auto& [name, type] : types_) all.push_back(type.get());
    return all;
}

void Scene::record(std::function<void()> redo, std::function<void()> undoIt) {
    modified = true;
    ++generation_;
    if (undo.recording()) undo.record({std::move(undoIt), std::move(redo)});
}

bool Scene::noteCycle(const Cell& cell) { return cycles_.insert(&cell).second; }

bool Scene::isValidName(std::string_view name) {
    if (name.empty() || isDigit(name.front())) return false;
    return std::all_of(name.begin(), name.end(),
                       [](unsigned char c) { return std::isalnum(c) || c == '_' || c == ':' || c >= 0x80; });
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

void Scene::enter(const NodePtr& node) {
    node->inScene = true;
    nodes_.emplace(node->serial, node);
    index(*node);
}

void Scene::leave(Node& node) {
    node.inScene = false;
    unindex(node);
    nodes_.erase(node.serial);
}

void Scene::attach(DagNode& child, DagNode& parent, std::size_t place) {
    child.parent = &parent;
    auto& list = parent.children;
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(std::min(place, list.size())), &child);
    enterPlace(child);
    dirtyWorld(child);
}

void Scene::detach(DagNode& child) {
    if (!child.parent) return;
    leavePlace(child);
    child.parent->children.erase(child.parent->children.begin() + static_cast<std::ptrdiff_t>(placeOf(child)));
    child.parent = nullptr;
}

void Scene::announceAdded(Node& node) {
    if (!observer) return;
    const NodePtr keep = node.shared_from_this();
    observer->nodeAdded(node);
    DagNode* dag = node.dag();
    if (observer && dag && dag->parent) observer->parentChanged(*dag, *dag->parent, true);
}

void Scene::announceRemoved(Node& node, DagNode* parent) {
    if (!observer) return;
    const NodePtr keep = node.shared_from_this();
    if (parent) observer->parentChanged(*node.dag(), *parent, false);
    if (observer) observer->nodeRemoved(node);
}

NodePtr Scene::createNode(const NodeType& type, std::string name, DagNode* parent) {
    if (type.isAbstract) throw SceneError("Cannot create a node of the abstract type '" + type.name + "'.");
    NodePtr node;
    if (type.isDag()) {
        if (!parent && type.kind == NodeType::Kind::Shape) {
            std::string stem = type.name;
            if (type.name == "mesh") stem = "polySurface";
            parent = createNode(*findType("transform"), stem + "#")->dag();
        }
        if (!parent) parent = world_;
        if (parent->isShape()) throw SceneError("A shape cannot be a parent: '" + parent->partialPath() + "'.");
        node = std::make_shared<DagNode>(*this, type);
    } else {
        node = std::make_shared<Node>(*this, type);
    }
    node->serial = ++nextSerial_;
    DagNode* dag = node->dag();
    if (type.makeBehavior) node->behavior = type.makeBehavior(*node);

    std::string first = type.name + "#";
    if (type.kind == NodeType::Kind::Shape) {
        // A shape is called after its transform: "pCube1" has "pCubeShape1".
        std::string stem = parent->name;
        std::string digits;
        while (!stem.empty() && isDigit(stem.back())) {
            digits.insert(digits.begin(), stem.back());
            stem.pop_back();
        }
        first = parent->isWorld() ? type.name + "Shape#" : stem + "Shape" + digits;
    }
    node->name = freeName(first, nullptr, parent, dag != nullptr);
    enter(node);
    if (dag) attach(*dag, *parent, parent->children.size());
    record(
        [this, node, parent] {
            enter(node);
            if (DagNode* d = node->dag()) attach(*d, *parent, parent->children.size());
            announceAdded(*node);
        },
        [this, node, parent] {
            if (DagNode* d = node->dag()) detach(*d);
            leave(*node);
            announceRemoved(*node, node->dag() ? parent : nullptr);
        });
    if (node->behavior) node->behavior->postConstructor();
    // New nodes come into the current namespace, unless their names say another one.
    if (const std::string& space = References::of(*this).current; !space.empty()) {
        if (name.empty()) name = node->name;
        if (name.find(':') == name.npos) name = space + ":" + name;
    }
    if (!name.empty()) {
        // It has had no other name for anybody.
        Observer* const told = std::exchange(observer, nullptr);
        rename(*node, name);
        observer = told;
    }
    announceAdded(*node);
    return node;
}

NodePtr Scene::createUnknown(const std::string& typeName, const std::string& name, DagNode* parent,
                             NodeType::Kind kind) {
    const bool inDag = kind != NodeType::Kind::Dependency;
    const NodeType& type = *findType(!inDag                          ? "unknown"
                                     : kind == NodeType::Kind::Shape ? "unknownDag"
                                                                     : "unknownTransform");
    DagNode* at = parent ? parent : world_;
    if (at->isShape()) throw SceneError("A shape cannot be a parent: '" + at->partialPath() + "'.");
    NodePtr node;
    if (inDag)
        node = std::make_shared<DagNode>(*this, type);
    else
        node = std::make_shared<Node>(*this, type);
    node->serial = ++nextSerial_;
    node->unknownType = typeName;
    if (type.makeBehavior) node->behavior = type.makeBehavior(*node);
    node->name = freeName(name.empty() ? typeName + "#" : name, nullptr, at, inDag);
    enter(node);
    if (inDag) attach(*node->dag(), *at, at->children.size());
    record(
        [this, node, at, inDag] {
            enter(node);
            if (inDag) attach(*node->dag(), *at, at->children.size());
            announceAdded(*node);
        },
        [this, node, inDag, at] {
            if (inDag) detach(*node->dag());
            leave(*node);
            announceRemoved(*node, inDag ? at : nullptr);
        });
    announceAdded(*node);
    return node;
}

void Scene::deleteOne(const NodePtr& node) {
    if (observer) {
        keepDeleted(node);
        observer->nodeAboutToGo(*node);
        if (!node->inScene) return; // somebody else deleted it meanwhile
    }
    // Connections go first, so that undo makes the node before it connects it.
    std::vector<Node*> history;
    for (Cell* whole : node->cells()) {
        forEachCell(*whole, [&](const Cell& c) {
            if (!c.source) return;
            Node& up = c.source->node;
            const bool serves = meshInput(up) || up.type.isA("polyCreator") || up.type.isA("animCurve");
            if (serves && !up.isDefault) history.push_back(&up);
        });
        cutConnections(*whole);
    }
    DagNode* dag = node->dag();
    DagNode* parent = dag ? dag->parent : nullptr;
    std::size_t place = 0;
    if (parent) {
        place = placeOf(*dag);
        detach(*dag);
    }
    leave(*node);
    record(
        [this, node] {
            DagNode* d = node->dag();
            DagNode* above = d ? d->parent : nullptr;
            if (d) detach(*d);
            leave(*node);
            announceRemoved(*node, above);
        },
        [this, node, parent, place] {
            enter(node);
            if (parent) attach(*node->dag(), *parent, place);
            announceAdded(*node);
        });
    announceRemoved(*node, parent);
    for (Node* up : history) {
        bool used = false;
        const std::function<void(Cell&)> look = [&](Cell& c) {
            used |= !c.destinations.empty();
            for (auto& child : c.children)
                if (child) look(*child);
            for (auto& [i, e] : c.elements) look(*e);
        };
        for (Cell* c : up->cells()) look(*c);
        if (!used && up->inScene) deleteOne(up->shared_from_this());
    }
}

void Scene::deleteNodes(const std::vector<Node*>& nodes) {
    std::vector<NodePtr> all;
    for (Node* n : nodes) {
        if (n->isDefault || n == world_) throw SceneError("Cannot delete the default node '" + n->name + "'.");
        if (n->locked) throw SceneError("Cannot delete the locked node '" + n->name + "'.");
        References::of(*this).requireOwn(*n, "delete");
        if (DagNode* dag = n->dag()) {
            auto below = descendants(*dag);
            for (auto it = below.rbegin(); it != below.rend(); ++it) {
                if ((*it)->locked) throw SceneError("Cannot delete the locked node '" + (*it)->name + "'.");
                References::of(*this).requireOwn(**it, "delete");
                all.push_back((*it)->shared_from_this());
            }
        }
        all.push_back(n->shared_from_this());
    }
    auto rest = selection_;
    const std::unordered_set<NodePtr> going(all.begin(), all.end());
    std::erase_if(rest, [&](const Selected& s) { return going.contains(s.node); });
    if (rest.size() != selection_.size()) setSelection(std::move(rest));
    for (const auto& n : all)
        if (n->inScene) deleteOne(n);
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

void Scene::reparent(DagNode& child, DagNode* newParent) {
    DagNode* to = newParent ? newParent : world_;
    if (to == child.parent) return;
    References::of(*this).requireOwn(child, "move");
    if (to == &child || to->isBelow(child))
        throw SceneError("Cannot parent '" + child.partialPath() + "' to itself or one of its children.");
    if (to->isShape()) throw SceneError("A shape cannot be a parent: '" + to->partialPath() + "'.");
    if (child.isShape() && to == world_) throw SceneError("A shape needs a transform above it.");
    DagNode* from = child.parent;
    const std::size_t place = placeOf(child);
    const auto move = [this](DagNode& c, DagNode& p, std::size_t at) {
        DagNode* const was = c.parent;
        detach(c);
        attach(c, p, at);
        if (observer && was) observer->parentChanged(c, *was, false);
        if (observer && c.parent == &p) observer->parentChanged(c, p, true);
    };
    auto keep = child.shared_from_this();
    move(child, *to, to->children.size());
    record(
        [=, &child] {
            (void)keep;
            move(child, *to, to->children.size());
        },
        [=, &child] {
            (void)keep;
            move(child, *from, place);
        });
    rename(child, child.name); // a sibling may have the name
}

void Scene::reorder(DagNode& child, std::size_t place) {
    DagNode* p = child.parent;
    const std::size_t before = placeOf(child);
    const auto move = [p, &child](std::size_t at) {
        std::erase(p->children, &child);
        p->children.insert(p->children.begin() + static_cast<std::ptrdiff_t>(std::min(at, p->children.size())), &child);
        if (child.scene.observer) child.scene.observer->reordered(child);
    };
    auto keep = child.shared_from_this();
    move(place);
    record([move, place, keep] { move(place); }, [move, before, keep] { move(before); });
}

std::vector<DagNode*> Scene::descendants(DagNode& node) const {
    std::vector<DagNode*> found, open(node.children.rbegin(), node.children.rend());
    while (!open.empty()) {
        DagNode* n = open.back();
        open.pop_back();
        found.push_back(n);
        open.insert(open.end(), n->children.rbegin(), n->children.rend());
    }
    return found;
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

void Scene::setSelection(std::vector<Selected> items) {
    const auto unique = merged(items);
    const auto before = selection_;
    const bool was = modified;
    const auto set = [this](const std::vector<Selected>& to) {
        selection_ = to;
        if (observer) observer->selectionChanged();
    };
    selection_ = unique;
    record([set, unique] { set(unique); }, [set, before] { set(before); });
    modified = was;
    if (observer && before != unique) observer->selectionChanged();
}

void Scene::setTime(double ticks) {
    const auto set = [this](double t) {
        time_ = t;
        std::vector<Cell*> clocks;
        for (auto& [serial, n] : nodes_) {
            if (n->type.name == "time")
                clocks.push_back(&n->cell("outTime"));
            else if (n->type.isA("animCurve"))
                clocks.push_back(&n->cell("output"));
        }
        for (Cell* c : clocks) dirtyWithDependents(*c);
        if (observer) observer->timeChanged();
    };
    const double before = time_;
    if (before == ticks) return;
    const bool was = modified;
    set(ticks);
    record([set, ticks] { set(ticks); }, [set, before] { set(before); });
    modified = was;
}

void Scene::setPlayback(const PlaybackRange& range) {
    const PlaybackRange before = playback_;
    playback_ = range;
    record([this, range] { playback_ = range; }, [this, before] { playback_ = before; });
}

void Scene::reset() {
    if (observer) observer->sceneAboutToGo();
    undo.clear();
    References::of(*this).clear();
    forgetDeleted();
    selection_.clear();
    keptConnections.clear();
    keptInstances.clear();
    keptStatements.clear();
    requiredPlugins.clear();
    fileInfo.clear();
    fileName.clear();
    cycles_.clear();
    numberHints_.clear();
    {
        const UndoQueue::Suspend quiet(undo);
        // Nodes go newest first; their connections are cut before, so that no cell points at a dead one.
        std::vector<NodePtr> all;
        for (auto& [serial, n] : nodes_) all.push_back(n);
        const std::function<void(Cell&)> forget = [&](Cell& c) {
            c.source = c.nextFed = c.previousFed = nullptr;
            c.destinations.clear();
            for (auto& child : c.children)
                if (child) forget(*child);
            for (auto& [i, e] : c.elements) forget(*e);
        };
        for (auto& n : all)
            for (Cell* c : n->cells()) forget(*c);
        nodes_.clear();
        byName_.clear();
        byNamespace_.clear();
        byPlace_.clear();
        for (auto& n : all) {
            n->inScene = false;
            if (DagNode* d = n->dag()) {
                d->parent = nullptr;
                d->children.clear();
            }
        }
        while (!all.empty()) all.pop_back();
        time_ = 0;
        playback_ = {};
        createDefaults();
    }
    undo.clear();
    modified = false;
    ++generation_;
}

void Scene::createDefaults() {
    worldOwner_ = std::make_shared<DagNode>(*this, *findType("world"));
    worldOwner_->name = "world";
    worldOwner_->inScene = true;
    world_ = worldOwner_->dag();
    time_ = 250; // frame 1 at 24 frames a second

    const auto make = [&](const char* type, const char* name) {
        auto node = createNode(*findType(type), name);
        node->isDefault = true;
        return node;
    };
    make("time", "time1");
    make("renderGlobals", "defaultRenderGlobals");
    make("resolution", "defaultResolution");
    make("objectSet", "defaultObjectSet");
    make("objectSet", "defaultLightSet");
    make("lambert", "lambert1");
    auto group = make("shadingEngine", "initialShadingGroup");
    make("shadingEngine", "initialParticleSE");
    connect(findNode("lambert1")->cell("outColor"), group->cell("surfaceShader"));

    struct DefaultCamera {
        const char* name;
        double translate[3], rotate[3];
        bool ortho;
    };
    constexpr double degree = 3.14159265358979323846 / 180.0;
    const DefaultCamera cameras[] = {
        {"persp", {28, 21, 28}, {-27.9383527296 * degree, 45 * degree, 0}, false},
        {"top", {0, 100.1, 0}, {-90 * degree, 0, 0}, true},
        {"front", {0, 0, 100.1}, {0, 0, 0}, true},
        {"side", {100.1, 0, 0}, {0, 90 * degree, 0}, true},
    };
    for (const auto& camera : cameras) {
        auto transform = make("transform", camera.name);
        auto shape = createNode(*findType("camera"), std::string(camera.name) + "Shape", transform->dag());
        shape->isDefault = true;
        setValue(transform->cell("translate"),
                 Numeric(NumericType::Double, 3, camera.translate[0], camera.translate[1], camera.translate[2]));
        const Numeric rotate(NumericType::Double, 3, camera.rotate[0], camera.rotate[1], camera.rotate[2]);
        if (!(rotate == Numeric(NumericType::Double, 3))) setValue(transform->cell("rotate"), rotate);
        setNumber(transform->cell("visibility"), 0);
        if (camera.ortho) {
            setNumber(shape->cell("orthographic"), 1);
            setNumber(shape->cell("renderable"), 0);
        }
        setNumber(shape->cell("centerOfInterest"), camera.ortho ? 100.1 : 44.8218698);
        if (camera.ortho) setNumber(shape->cell("orthographicWidth"), 30);
        const std::string stem = camera.name;
        setValue(shape->cell("imageName"), stem);
        setValue(shape->cell("depthName"), stem + "_depth");
        setValue(shape->cell("maskName"), stem + "_mask");
    }
    undo.clear();
}

} // namespace host::scene
