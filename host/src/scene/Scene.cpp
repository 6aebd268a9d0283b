#include "scene/Scene.h"

#include "base/Letters.h"
#include "base/Messages.h"
#include "scene/CellBlocks.h"
#include "scene/Evaluation.h"
#include "scene/MeshFilter.h"
#include "scene/References.h"

#include <maya/MFn.h>

#include <algorithm>

namespace host::scene {
namespace {

/// Its place among its siblings. Searched from the last, which is the first to go when all are deleted.
std::size_t placeOf(const DagNode& child) {
    const auto& siblings = child.parent->children;
    const auto behind = std::find(siblings.rbegin(), siblings.rend(), &child);
    return static_cast<std::size_t>(siblings.rend() - behind) - 1;
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
        node = std::allocate_shared<DagNode>(BlockAllocator<DagNode>(), *this, type);
    } else {
        node = std::allocate_shared<Node>(BlockAllocator<Node>(), *this, type);
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
        node = std::allocate_shared<DagNode>(BlockAllocator<DagNode>(), *this, type);
    else
        node = std::allocate_shared<Node>(BlockAllocator<Node>(), *this, type);
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
        for (Cell* c : up->cells()) forEachCell(*c, [&](Cell& cell) { used |= !cell.destinations.empty(); });
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
        const auto forget = [](Cell& c) {
            c.source = c.nextFed = c.previousFed = nullptr;
            c.destinations.clear();
        };
        for (auto& n : all)
            for (Cell* c : n->cells()) forEachCell(*c, forget);
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
