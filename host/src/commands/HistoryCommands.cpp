#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>
#include <unordered_set>

namespace host::mel {

using namespace scene;

namespace {

/// The nodes on the other side of the node's connections, in the order of its attributes.
std::vector<Node*> neighbours(Node& node, bool future) {
    std::vector<Node*> found;
    for (Cell* whole : node.cells())
        forEachCell(*whole, [&](const Cell& cell) {
            if (!future && cell.source) found.push_back(&cell.source->node);
            if (future)
                for (Cell* d : cell.destinations) found.push_back(&d->node);
        });
    return found;
}

Value listHistory(Call& call) {
    const ParsedArguments args(call, {{"f", "future", 1},
                                      {"lv", "levels", 1},
                                      {"pdo", "pruneDagObjects", 1},
                                      {"bf", "breadthFirst"},
                                      {"lf", "leaf", 1},
                                      {"il", "interestLevel", 1},
                                      {"af", "allFuture"},
                                      {"ac", "allConnections"},
                                      {"ag", "allGraphs"},
                                      {"gl", "groupLevels"}});
    const bool future = args.boolean("f", false);
    const int levels = args.integer("lv", 0);
    struct Step {
        Node* node;
        int level;
    };
    std::vector<Step> open;
    const auto nodes = givenOrSelected(args);
    if (nodes.empty()) throw Error("No object was specified or selected.");
    for (Node* node : nodes) {
        DagNode* dag = node->dag();
        const auto shapes = dag && dag->isTransform() ? shapesOf(*dag) : std::vector<DagNode*>();
        for (DagNode* shape : shapes) open.push_back({shape, 1});
        if (shapes.empty()) open.push_back({node, 1});
    }
    // From the end of a stack, or from its front: the one goes deep first, the other wide.
    const bool wide = args.has("bf");
    if (!wide) std::ranges::reverse(open);
    std::vector<Node*> found;
    std::unordered_set<Node*> seen;
    for (std::size_t front = 0; wide ? front < open.size() : !open.empty();) {
        const Step step = wide ? open[front++] : open.back();
        if (!wide) open.pop_back();
        if (!seen.insert(step.node).second) continue;
        if (!args.boolean("pdo", false) || !step.node->dag()) found.push_back(step.node);
        if (levels > 0 && step.level >= levels) continue;
        std::vector<Node*> next = neighbours(*step.node, future);
        if (!wide) std::ranges::reverse(next);
        for (Node* n : next) open.push_back({n, step.level + 1});
    }
    return namesOf(found);
}

Value listSets(Call& call) {
    const ParsedArguments args(
        call, {{"o", "object", 1}, {"ets", "extendToShape"}, {"t", "type", 1}, {"as", "allSets"}, {"ic", "inclusive"}});
    const int type = args.integer("t", 0);
    const auto wanted = [&](Node& set) {
        const bool renderable = set.type.isA("shadingEngine");
        return set.type.isA("objectSet") && (type == 0 || (type == 1) == renderable) && type != 2;
    };
    std::vector<Node*> found;
    if (args.has("as")) {
        for (const auto& [serial, node] : theScene().nodes())
            if (wanted(*node)) found.push_back(node.get());
        return namesOf(found);
    }
    if (!args.has("o")) throw Error("listSets needs -object or -allSets.");
    std::vector<Node*> members{&nodeNamed(args.text("o"))};
    if (DagNode* dag = members.front()->dag(); dag && dag->isTransform() && args.has("ets"))
        for (DagNode* shape : shapesOf(*dag)) members.push_back(shape);
    for (Node* member : members)
        for (Node* set : neighbours(*member, true))
            if (wanted(*set) && std::ranges::find(found, set) == found.end()) found.push_back(set);
    return namesOf(found);
}

Value reorder(Call& call) {
    const ParsedArguments args(call, {{"f", "front"}, {"b", "back"}, {"r", "relative", 1}});
    if (args.has("f") + args.has("b") + args.has("r") != 1)
        throw Error("reorder takes one of -front, -back and -relative.");
    auto nodes = dagGivenOrSelected(args);
    // Several keep their order among themselves.
    if (args.has("f") || (args.has("r") && args.integer("r", 0) > 0)) std::ranges::reverse(nodes);
    for (DagNode* node : nodes) {
        const auto& siblings = node->parent->children;
        const auto count = static_cast<int>(siblings.size());
        const auto now = static_cast<int>(std::ranges::find(siblings, node) - siblings.begin());
        int place = args.has("f") ? 0 : count - 1;
        // The children form a ring: behind the last comes the first.
        if (args.has("r")) place = ((now + args.integer("r", 0) % count) % count + count) % count;
        theScene().reorder(*node, static_cast<std::size_t>(place));
    }
    return {};
}

} // namespace

void registerHistoryCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "listHistory", listHistory);
    registerSceneCommand(interpreter, "listSets", listSets);
    registerSceneCommand(interpreter, "reorder", reorder);
}

} // namespace host::mel
