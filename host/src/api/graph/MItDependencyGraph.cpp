#include <maya/MItDependencyGraph.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

#include <algorithm>
#include <deque>
#include <set>
#include <unordered_set>

using namespace host;
using host::api::Access;
using scene::Cell;
using scene::Node;

namespace {

void listParts(Cell& cell, std::vector<Cell*>& parts) {
    scene::forEachCell(cell, [&](Cell& part) { parts.push_back(&part); });
}

} // namespace

/// The walk: what was reached and how, and what is still to be visited.
struct MItDependencyGraph::Walk {
    struct Item {
        MObject node;
        MPlug plug, previous; ///< how it was reached; null for a root node
        int from;             ///< the item before, by its place; -1 for the root
    };
    MObject rootNode;
    MPlug rootPlug;
    MFn::Type filter = MFn::kInvalid;
    Direction direction = kDownstream;
    Traversal traversal = kDepthFirst;
    Level level = kNodeLevel;
    bool pruneOnFilter = false, pruned = false, overWorldSpace = false;

    std::vector<Item> items; ///< all that were reached, in order
    std::deque<int> open;    ///< the current one is the last when depth first, else the first
    std::set<const Node*> nodes;
    std::set<const Cell*> cells;
    std::vector<int> visited;

    int current() const { return traversal == kDepthFirst ? open.back() : open.front(); }

    MStatus start() {
        items.clear();
        open.clear();
        nodes.clear();
        cells.clear();
        visited.clear();
        pruned = false;
        std::shared_ptr<Node> keep;
        const Cell* cell = rootPlug.isNull() ? nullptr : Access::cell(rootPlug, keep);
        const auto node = rootPlug.isNull() ? Access::node(rootNode) : keep;
        if (!node || (!rootPlug.isNull() && !cell)) return MStatus::kInvalidParameter;
        nodes.insert(node.get());
        if (cell) cells.insert(cell);
        items.push_back({Access::object(node.get()), rootPlug, MPlug(), -1});
        open.push_back(0);
        settle();
        return MStatus::kSuccess;
    }

    bool matches(const Item& item) const { return filter == MFn::kInvalid || item.node.hasFn(filter); }

    /// Goes on to the next item that the filter lets through.
    void settle() {
        while (!open.empty() && !matches(items[static_cast<std::size_t>(current())])) advance(!pruneOnFilter);
        if (!open.empty()) visited.push_back(current());
    }

    /// Leaves the current item for what lies behind it.
    void advance(bool further) {
        const int at = current();
        if (traversal == kDepthFirst)
            open.pop_back();
        else
            open.pop_front();
        if (!further) return;
        std::vector<int> found;
        const MObject object = items[static_cast<std::size_t>(at)].node;
        const auto node = Access::node(object);
        if (!node) return;
        if (level == kNodeLevel)
            connectedNodes(*node, at, found);
        else
            connectedPlugs(*node, at, found);
        if (traversal == kDepthFirst) std::reverse(found.begin(), found.end());
        open.insert(open.end(), found.begin(), found.end());
    }

    std::vector<Cell*> otherEnds(Cell& cell) const {
        if (direction == kDownstream) return {cell.destinations.begin(), cell.destinations.end()};
        return cell.source ? std::vector<Cell*>{cell.source} : std::vector<Cell*>();
    }

    void connectedNodes(Node& node, int at, std::vector<int>& found) {
        std::vector<Cell*> parts;
        std::shared_ptr<Node> keep;
        Cell* root = at == 0 && !rootPlug.isNull() ? Access::cell(rootPlug, keep) : nullptr;
        if (root)
            listParts(*root, parts);
        else
            for (Cell* c : node.cells()) listParts(*c, parts);
        for (Cell* c : parts)
            for (Cell* other : otherEnds(*c))
                if (nodes.insert(&other->node).second) reach(*other, c, at, found);
        scene::DagNode* const dag = overWorldSpace && !root ? node.dag() : nullptr;
        if (!dag) return;
        const std::vector<scene::DagNode*> beside =
            direction == kDownstream ? dag->children : std::vector<scene::DagNode*>{dag->parent};
        for (scene::DagNode* other : beside)
            if (other && !other->isWorld() && nodes.insert(other).second) reach(*other, at, found);
    }

    /// A node to which no connection leads.
    void reach(Node& node, int from, std::vector<int>& found) {
        found.push_back(static_cast<int>(items.size()));
        items.push_back({Access::object(&node), MPlug(), MPlug(), from});
    }

    void reach(Cell& cell, Cell* previous, int from, std::vector<int>& found) {
        found.push_back(static_cast<int>(items.size()));
        items.push_back(
            {Access::object(&cell.node), Access::plug(cell), previous ? Access::plug(*previous) : MPlug(), from});
    }

    /// Calls visit(c) for the connected cells of the node whose attributes are among those, or are parts of them.
    template <class Visit>
    void eachConnected(Node& node, const std::vector<const scene::Attribute*>& wanted, const Visit& visit) {
        if (wanted.empty()) return;
        const std::unordered_set<const scene::Attribute*> all(wanted.begin(), wanted.end());
        std::unordered_set<const scene::Attribute*> roots;
        for (const scene::Attribute* a : wanted) roots.insert(&a->root());
        for (Cell* root : node.cells()) {
            if (!roots.contains(&root->attribute)) continue;
            scene::forEachCell(*root, [&](Cell& cell) {
                if (direction == kDownstream ? cell.destinations.empty() : !cell.source) return;
                for (const scene::Attribute* a = &cell.attribute; a; a = a->parent)
                    if (all.contains(a)) return visit(cell);
            });
        }
    }

    /// What of the node and of those below it is shown in the world and leads further; upstream, what moves the node or
    /// one above it.
    void overWorld(Cell& here, int at, std::vector<int>& found) {
        scene::DagNode* const dag = here.node.dag();
        const auto inWorld = [](const Cell& c) { return c.attribute.root().worldSpace; };
        if (!dag || !(direction == kDownstream ? here.flow().movesWorld : inWorld(here))) return;
        const auto look = [&](scene::DagNode& node) {
            for (Cell* root : node.cells())
                scene::forEachCell(*root, [&](Cell& c) {
                    const bool leads = direction == kDownstream ? inWorld(c) && !c.destinations.empty()
                                                                : c.flow().movesWorld && c.source;
                    if (leads && cells.insert(&c).second) reach(c, &here, at, found);
                });
        };
        if (direction == kUpstream) {
            for (scene::DagNode* n = dag; n; n = n->parent) look(*n);
            return;
        }
        look(*dag);
        for (scene::DagNode* below : dag->scene.descendants(*dag)) look(*below);
    }

    void connectedPlugs(Node& node, int at, std::vector<int>& found) {
        const MPlug plug = items[static_cast<std::size_t>(at)].plug;
        std::vector<Cell*> starts;
        std::shared_ptr<Node> keep;
        if (plug.isNull()) {
            for (Cell* c : node.cells()) listParts(*c, starts);
        } else {
            Cell* cell = Access::cell(plug, keep);
            if (!cell) return;
            listParts(*cell, starts);
            for (Cell* up = cell->parent; up; up = up->parent) starts.push_back(up);
        }
        for (Cell* c : starts)
            for (Cell* other : otherEnds(*c))
                if (cells.insert(other).second) reach(*other, c, at, found);
        if (plug.isNull()) return;
        // Through the node: to those of its connected plugs that depend on this one, or that it depends on.
        Cell& here = *Access::cell(plug, keep);
        eachConnected(node, direction == kDownstream ? here.flow().affected : here.flow().inputs, [&](Cell& c) {
            if (&c != &here && cells.insert(&c).second) reach(c, &here, at, found);
        });
        if (overWorldSpace) overWorld(here, at, found);
    }

    template <class Take>
    MStatus path(Take take) const {
        if (open.empty()) return MStatus::kFailure;
        std::vector<int> way;
        for (int i = current(); i >= 0; i = items[static_cast<std::size_t>(i)].from) way.push_back(i);
        for (auto i = way.rbegin(); i != way.rend(); ++i) take(items[static_cast<std::size_t>(*i)]);
        return MStatus::kSuccess;
    }
};

MItDependencyGraph::MItDependencyGraph(MObject& rootNode, MFn::Type filter, Direction direction, Traversal traversal,
                                       Level level, MStatus* ReturnStatus)
    : walk_(std::make_unique<Walk>()) {
    setStatus(ReturnStatus, resetTo(rootNode, filter, direction, traversal, level).statusCode());
}

MItDependencyGraph::MItDependencyGraph(MPlug& rootPlug, MFn::Type filter, Direction direction, Traversal traversal,
                                       Level level, MStatus* ReturnStatus)
    : walk_(std::make_unique<Walk>()) {
    setStatus(ReturnStatus, resetTo(rootPlug, filter, direction, traversal, level).statusCode());
}

MItDependencyGraph::~MItDependencyGraph() = default;
MStatus MItDependencyGraph::reset() { return walk_->start(); }

MStatus MItDependencyGraph::resetTo(MObject& rootNode, MFn::Type filter, Direction direction, Traversal traversal,
                                    Level level) {
    walk_->rootNode = rootNode;
    walk_->rootPlug = MPlug();
    walk_->filter = filter;
    walk_->direction = direction;
    walk_->traversal = traversal;
    walk_->level = level;
    return reset();
}

MStatus MItDependencyGraph::resetTo(MPlug& rootPlug, MFn::Type filter, Direction direction, Traversal traversal,
                                    Level level) {
    MObject node = rootPlug.node();
    resetTo(node, filter, direction, traversal, level);
    walk_->rootPlug = rootPlug;
    return reset();
}

namespace {

template <class T>
T ok(T value, MStatus* status) {
    setStatus(status, MStatus::kSuccess);
    return value;
}

} // namespace

MObject MItDependencyGraph::rootNode(MStatus* s) { return ok(walk_->rootNode, s); }

MPlug MItDependencyGraph::rootPlug(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, walk_->rootPlug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return walk_->rootPlug;
}

MFn::Type MItDependencyGraph::currentFilter(MStatus* s) { return ok(walk_->filter, s); }

MStatus MItDependencyGraph::setCurrentFilter(MFn::Type filter) {
    walk_->filter = filter;
    return reset();
}

MStatus MItDependencyGraph::resetFilter() { return setCurrentFilter(MFn::kInvalid); }
bool MItDependencyGraph::isPruningOnFilter(MStatus* s) { return ok(walk_->pruneOnFilter, s); }

MStatus MItDependencyGraph::enablePruningOnFilter() {
    walk_->pruneOnFilter = true;
    return reset();
}

MStatus MItDependencyGraph::disablePruningOnFilter() {
    walk_->pruneOnFilter = false;
    return reset();
}

bool MItDependencyGraph::isDirectionDownStream(MStatus* s) { return ok(walk_->direction == kDownstream, s); }
MItDependencyGraph::Direction MItDependencyGraph::currentDirection(MStatus* s) { return ok(walk_->direction, s); }

MStatus MItDependencyGraph::toggleDirection() {
    walk_->direction = walk_->direction == kDownstream ? kUpstream : kDownstream;
    return reset();
}

bool MItDependencyGraph::isTraversalDepthFirst(MStatus* s) { return ok(walk_->traversal == kDepthFirst, s); }
MItDependencyGraph::Traversal MItDependencyGraph::currentTraversal(MStatus* s) { return ok(walk_->traversal, s); }

MStatus MItDependencyGraph::toggleTraversal() {
    walk_->traversal = walk_->traversal == kDepthFirst ? kBreadthFirst : kDepthFirst;
    return reset();
}

bool MItDependencyGraph::atNodeLevel(MStatus* s) { return ok(walk_->level == kNodeLevel, s); }
MItDependencyGraph::Level MItDependencyGraph::currentLevel(MStatus* s) { return ok(walk_->level, s); }

MStatus MItDependencyGraph::setTraversalOverWorldSpaceDependents(bool val) {
    walk_->overWorldSpace = val;
    return reset();
}

bool MItDependencyGraph::isTraversingOverWorldSpaceDependents(MStatus* s) { return ok(walk_->overWorldSpace, s); }

MStatus MItDependencyGraph::toggleLevel() {
    walk_->level = walk_->level == kNodeLevel ? kPlugLevel : kNodeLevel;
    return reset();
}

MStatus MItDependencyGraph::next() {
    if (walk_->open.empty()) return MStatus::kFailure;
    walk_->advance(!std::exchange(walk_->pruned, false));
    walk_->settle();
    return MStatus::kSuccess;
}

bool MItDependencyGraph::isDone(MStatus* s) { return ok(walk_->open.empty(), s); }

MStatus MItDependencyGraph::prune() {
    if (walk_->open.empty()) return MStatus::kFailure;
    walk_->pruned = true;
    return MStatus::kSuccess;
}

MObject MItDependencyGraph::currentItem(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, walk_->open.empty() ? MStatus::kFailure : MStatus::kSuccess);
    return walk_->open.empty() ? MObject() : walk_->items[static_cast<std::size_t>(walk_->current())].node;
}

MObject MItDependencyGraph::thisNode(MStatus* s) { return currentItem(s); }

bool MItDependencyGraph::thisNodeHasUnknownType(MStatus* ReturnStatus) {
    const auto node = Access::node(currentItem(ReturnStatus));
    return node && !node->unknownType.empty();
}

MPlug MItDependencyGraph::thisPlug(MStatus* ReturnStatus) {
    const MPlug plug = walk_->open.empty() ? MPlug() : walk_->items[static_cast<std::size_t>(walk_->current())].plug;
    setStatus(ReturnStatus, plug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return plug;
}

MPlug MItDependencyGraph::previousPlug(MStatus* ReturnStatus) {
    const MPlug plug =
        walk_->open.empty() ? MPlug() : walk_->items[static_cast<std::size_t>(walk_->current())].previous;
    setStatus(ReturnStatus, plug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return plug;
}

MStatus MItDependencyGraph::getNodesVisited(MObjectArray& nodesVisited) const {
    nodesVisited.clear();
    for (const int i : walk_->visited) nodesVisited.append(walk_->items[static_cast<std::size_t>(i)].node);
    return MStatus::kSuccess;
}

MStatus MItDependencyGraph::getPlugsVisited(MPlugArray& plugsVisited) const {
    plugsVisited.clear();
    for (const int i : walk_->visited)
        if (const MPlug& plug = walk_->items[static_cast<std::size_t>(i)].plug; !plug.isNull())
            plugsVisited.append(plug);
    return MStatus::kSuccess;
}

MStatus MItDependencyGraph::getNodePath(MObjectArray& path) const {
    path.clear();
    return walk_->path([&](const Walk::Item& item) { path.append(item.node); });
}

MStatus MItDependencyGraph::getPlugPath(MPlugArray& path) const {
    path.clear();
    return walk_->path([&](const Walk::Item& item) {
        if (!item.plug.isNull()) path.append(item.plug);
    });
}

const char* MItDependencyGraph::className() { return "MItDependencyGraph"; }
