#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "scene/MeshNode.h"

#include <functional>
#include <map>

namespace host::mel {

using namespace scene;

namespace {

AttributePtr cloned(const Attribute& a) {
    auto copy = std::make_shared<Attribute>(a);
    copy->children.clear();
    copy->parent = nullptr;
    for (const auto& child : a.children) copy->addChild(cloned(*child));
    return copy;
}

/// Copies node after node and remembers which copy stands for which node.
class Duplicator {
public:
    bool inputs = false;   ///< also the connections into the nodes
    bool upstream = false; ///< also copies of what is connected into them

    Node& copyDag(DagNode& source, DagNode* parent, const std::string& name, bool withChildren) {
        std::vector<std::pair<DagNode*, DagNode*>> open{{&source, parent}};
        Node* first = nullptr;
        while (!open.empty()) {
            const auto [from, below] = open.back();
            open.pop_back();
            const bool followsTransform =
                from->isShape() && from->parent && from->name == shapeNameFor(from->parent->name);
            // A name is given at all times: a plug-in's node that is made without one calls itself as it likes.
            const std::string wanted = !first && !name.empty()     ? name
                                       : followsTransform && below ? shapeNameFor(below->name)
                                                                   : from->name;
            Node& made = copyNode(*from, wanted, below);
            if (!first) first = &made;
            if (!withChildren) break;
            for (auto it = from->children.rbegin(); it != from->children.rend(); ++it)
                open.emplace_back(*it, made.dag());
        }
        return *first;
    }

    Node& copyNode(Node& source, const std::string& name, DagNode* parent) {
        Node& made = *theScene().createNode(source.type, name, parent);
        copies_[&source] = &made;
        order_.push_back(&source);
        for (const auto& a : source.dynamicAttributes()) theScene().addAttribute(made, cloned(*a));
        if (made.behavior) made.behavior->copyFrom(source);
        if (meshBehavior(source) && source.cell("inMesh").source && !upstream && !inputs)
            setMesh(theScene(), made, meshOf(source));
        for (Cell* cell : source.cells()) {
            if (cell->attribute.longName == "instObjGroups") continue; // which sets it is in, it is told below
            if (const Attribute* a = made.findAttribute(cell->attribute.longName)) copyCell(*cell, made.cell(*a));
        }
        joinSetsOf(source, made);
        return made;
    }

    void connectInputs() {
        // The list grows while nodes upstream are copied.
        for (std::size_t i = 0; i < order_.size(); ++i) {
            Node& source = *order_[i];
            for (Cell* cell : source.cells())
                if (const Attribute* a = copies_[&source]->findAttribute(cell->attribute.longName))
                    connectCell(*cell, copies_[&source]->cell(*a));
        }
    }

    Node* copyOf(Node& node) const {
        const auto it = copies_.find(&node);
        return it == copies_.end() ? nullptr : it->second;
    }

private:
    static void copyCell(Cell& from, Cell& to) {
        Scene& scene = theScene();
        const Attribute& a = from.attribute;
        const bool stored = a.writable && a.storable && !from.node.isComputed(a);
        if (from.isArray()) {
            if (stored)
                for (auto& [index, element] : from.elements) copyCell(*element, to.element(index));
        } else if (stored && a.type == AttributeType::Compound) {
            for (std::size_t k = 0; k < from.children.size(); ++k)
                if (from.children[k]) copyCell(*from.children[k], to.child(static_cast<int>(k)));
        } else if (stored && a.type != AttributeType::Message && a.dataKind != DataKind::Mesh) {
            evaluate(from);
            if (!equal(from.value, to.value)) scene.setValue(to, from.value, Scene::LimitPolicy::Ignore);
            for (std::size_t k = 0; k < from.children.size(); ++k)
                if (from.children[k]) copyState(*from.children[k], to.child(static_cast<int>(k)));
        }
        copyState(from, to);
    }

    static void copyState(Cell& from, Cell& to) {
        if (from.keyable && from.keyable != to.keyable) theScene().setKeyable(to, *from.keyable);
        if (from.channelBox && from.channelBox != to.channelBox) theScene().setChannelBox(to, *from.channelBox);
        if (from.locked) theScene().setLocked(to, true);
    }

    void connectCell(Cell& from, Cell& to) {
        if (from.source && !to.source) {
            Node& up = from.source->node;
            if (upstream && !copyOf(up) && !up.dag() && !up.isDefault && !up.type.isA("objectSet"))
                copyNode(up, up.name, nullptr);
            Node* copy = copyOf(up);
            Cell* source = copy ? theScene().tryPlug(*copy, from.source->attributePath()) : from.source;
            // Sets get their members by themselves.
            if (source && !from.node.type.isA("objectSet")) theScene().connect(*source, to);
        }
        for (std::size_t k = 0; k < from.children.size(); ++k)
            if (from.children[k]) connectCell(*from.children[k], to.child(static_cast<int>(k)));
        for (auto& [index, element] : from.elements) connectCell(*element, to.element(index));
    }

    std::map<Node*, Node*> copies_;
    std::vector<Node*> order_;
};

Value duplicate(Call& call) {
    const ParsedArguments args(call, {{"n", "name", 1},
                                      {"rr", "returnRootsOnly"},
                                      {"rc", "renameChildren"},
                                      {"po", "parentOnly"},
                                      {"un", "upstreamNodes"},
                                      {"ic", "inputConnections"},
                                      {"st", "smartTransform"},
                                      {"ilf", "instanceLeaf"}});
    if (args.has("ilf")) throw Error("Instances are not supported.");
    const auto nodes = givenOrSelected(args);
    if (nodes.empty()) throw Error("No object was specified or selected.");
    Duplicator copier;
    copier.inputs = args.has("ic");
    copier.upstream = args.has("un");
    std::vector<Node*> roots, answer;
    for (Node* node : nodes) {
        if (node->type.isAbstract) throw Error("'" + nameOf(*node) + "' cannot be duplicated.");
        DagNode* dag = node->dag();
        if (!dag) {
            roots.push_back(&copier.copyNode(*node, args.text("n", node->name), nullptr));
            answer.push_back(roots.back());
            continue;
        }
        if (dag->isShape() && !dag->parent->isWorld()) dag = dag->parent;
        Node& made = copier.copyDag(*dag, dag->parent, args.text("n"), !args.has("po"));
        roots.push_back(&made);
        answer.push_back(&made);
        for (DagNode* below : theScene().descendants(*made.dag())) {
            if (args.has("rc")) {
                const auto digits = below->name.find_last_not_of("0123456789");
                if (!below->isShape()) theScene().rename(*below, below->name.substr(0, digits + 1) + "#");
            }
            if (below->isTransform() && !args.has("rr")) answer.push_back(below);
        }
    }
    if (copier.inputs || copier.upstream) copier.connectInputs();
    selectNodes(roots);
    return namesOf(args.has("rr") ? roots : answer);
}

} // namespace

void registerDuplicateCommands(Interpreter& interpreter) { registerSceneCommand(interpreter, "duplicate", duplicate); }

} // namespace host::mel
