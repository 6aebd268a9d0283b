#include "scene/Node.h"

#include "scene/CellBlocks.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <algorithm>
#include <cassert>

namespace host::scene {

void Destinations::insert(Cell& cell, Cell* before) {
    cell.nextFed = before;
    cell.previousFed = before ? before->previousFed : last_;
    (cell.previousFed ? cell.previousFed->nextFed : first_) = &cell;
    (before ? before->previousFed : last_) = &cell;
}

void Destinations::remove(Cell& cell) {
    (cell.previousFed ? cell.previousFed->nextFed : first_) = cell.nextFed;
    (cell.nextFed ? cell.nextFed->previousFed : last_) = cell.previousFed;
    cell.nextFed = cell.previousFed = nullptr;
}

bool Destinations::contains(const Cell* cell) const {
    // From both ends: what is looked for stands at one of them more often than not.
    for (const Cell *up = first_, *down = last_; up && down; up = up->nextFed, down = down->previousFed) {
        if (up == cell || down == cell) return true;
        if (up == down || up->nextFed == down) return false;
    }
    return false;
}

#if ORVO_CELL_BLOCKS
namespace {

CellBlocks& cellBlocks() {
    // Never destroyed: nodes end with the process.
    static CellBlocks& blocks = *new CellBlocks(sizeof(Cell), alignof(Cell));
    return blocks;
}

} // namespace

void* Cell::operator new(std::size_t, std::align_val_t) { return cellBlocks().take(); }
void Cell::operator delete(void* cell, std::size_t, std::align_val_t) { cellBlocks().give(cell); }
#else
void* Cell::operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
void Cell::operator delete(void* cell, std::size_t, std::align_val_t alignment) { ::operator delete(cell, alignment); }
#endif

static_assert(sizeof(Cell) == 192, "three lines of the cache");

Cell::Cell(Node& n, const Attribute& a, Cell* p, int i) : node(n), attribute(a), parent(p), index(i) {
    if (!isArray() && !isTupleChild()) value = a.defaultValue;
    dirty = flow().computed || (p && p->dirty);
}

Cell& Cell::child(int k) {
    if (children.empty()) children.resize(attribute.children.size());
    auto& slot = children.at(static_cast<std::size_t>(k));
    if (!slot) slot = std::make_unique<Cell>(node, *attribute.children[static_cast<std::size_t>(k)], this, -1);
    return *slot;
}

Cell& Cell::element(int logicalIndex) {
    auto& slot = elements[logicalIndex];
    if (!slot) slot = std::make_unique<Cell>(node, attribute, this, logicalIndex);
    return *slot;
}

Numeric* Cell::numbers(int* component) {
    if (component) *component = 0;
    if (isTupleChild()) {
        if (component) *component = attribute.childIndex;
        return std::get_if<Numeric>(&parent->value);
    }
    return std::get_if<Numeric>(&value);
}

double Cell::number() {
    int k = 0;
    const Numeric* n = numbers(&k);
    return n ? n->get(k) : 0.0;
}

std::string Cell::attributePath(bool longNames) const {
    const std::string own = longNames ? attribute.longName : attribute.shortName;
    if (index >= 0) return parent->attributePath(longNames) + "[" + std::to_string(index) + "]";
    // A part of a plain compound goes by its own name; within an array's element it needs the element's, and no more.
    for (const Cell* up = parent; up; up = up->parent)
        if (up->index >= 0) return up->attributePath(longNames) + "." + own;
    return own;
}

std::string Cell::name(bool longNames) const {
    auto* dag = const_cast<Node&>(node).dag();
    return (dag ? dag->partialPath() : node.name) + "." + attributePath(longNames);
}

bool Cell::lockedHere() const {
    for (const Cell* c = this; c; c = c->parent)
        if (c->locked) return true;
    return node.locked;
}

const AttributeFlow& Cell::lookUpFlow() const {
    flow_ = &node.type.flow(attribute);
    return *flow_;
}

NodeType::NodeType(std::string n, const NodeType* b, Kind k, int api)
    : name(std::move(n)), base(b), kind(k), apiType(api) {}

bool NodeType::isA(std::string_view typeName) const {
    for (const NodeType* t = this; t; t = t->base)
        if (t->name == typeName) return true;
    return false;
}

bool NodeType::index(const AttributePtr& a) {
    if (find(a->longName) || find(a->shortName)) return false;
    byName_.emplace(a->longName, a.get());
    byName_.emplace(a->shortName, a.get());
    for (const auto& c : a->children) index(c);
    return true;
}

bool NodeType::add(AttributePtr a) {
    if (!index(a)) return false;
    own_.push_back(std::move(a));
    return true;
}

void NodeType::affects(const Attribute& input, const Attribute& output) {
    auto& list = affects_[&input];
    if (std::find(list.begin(), list.end(), &output) == list.end()) list.push_back(&output);
    computed_.insert(&output);
    ++AttributeFlow::current;
}

void NodeType::affects(std::initializer_list<const char*> inputs, std::initializer_list<const char*> outputs) {
    for (const char* in : inputs)
        for (const char* out : outputs) affects(*find(in), *find(out));
}

void NodeType::computed(std::initializer_list<const char*> outputs) {
    for (const char* out : outputs) computed_.insert(find(out));
    ++AttributeFlow::current;
}

const Attribute* NodeType::find(std::string_view attributeName) const {
    const std::string key(attributeName);
    for (const NodeType* t = this; t; t = t->base) {
        const auto it = t->byName_.find(key);
        if (it != t->byName_.end()) return it->second;
    }
    return nullptr;
}

std::vector<const Attribute*> NodeType::attributes() const {
    std::vector<const Attribute*> all = base ? base->attributes() : std::vector<const Attribute*>();
    for (const auto& a : own_) all.push_back(a.get());
    return all;
}

void NodeType::affected(const Attribute& input, std::vector<const Attribute*>& out) const {
    for (const NodeType* t = this; t; t = t->base) {
        const auto it = t->affects_.find(&input);
        if (it != t->affects_.end()) out.insert(out.end(), it->second.begin(), it->second.end());
    }
}

bool NodeType::isComputed(const Attribute& attribute) const {
    for (const NodeType* t = this; t; t = t->base) {
        if (t->computed_.empty()) continue;
        for (const Attribute* a = &attribute; a; a = a->parent)
            if (t->computed_.contains(a)) return true;
    }
    return false;
}

const AttributeFlow& NodeType::flow(const Attribute& attribute) const {
    // What nodes have added is computed by nobody.
    static AttributeFlow none;
    if (attribute.root().dynamic) {
        none.version = AttributeFlow::current;
        return none;
    }
    auto& slot = flows_[&attribute];
    if (slot && slot->version == AttributeFlow::current) return *slot;
    if (!slot) slot = std::make_unique<AttributeFlow>();
    AttributeFlow& flow = *slot;
    flow = {};
    flow.version = AttributeFlow::current;
    flow.computed = isComputed(attribute);
    std::vector<const Attribute*> found;
    for (const Attribute* a = &attribute; a; a = a->parent) affected(*a, found);
    const std::string& root = attribute.root().longName;
    flow.movesWorld =
        isDag() && (root == "inheritsTransform" || root == "offsetParentMatrix" ||
                    (kind == Kind::Transform && std::find(found.begin(), found.end(), find("matrix")) != found.end()));
    const std::function<void(const Attribute&)> below = [&](const Attribute& a) {
        for (const auto& child : a.children) {
            affected(*child, found);
            flow.partComputed = flow.partComputed || isComputed(*child);
            below(*child);
        }
    };
    below(attribute);
    std::unordered_set<const Attribute*> seen;
    for (const Attribute* a : found)
        if (seen.insert(a).second) flow.affected.push_back(a);
    seen.clear();
    for (const NodeType* t = this; flow.computed && t; t = t->base)
        for (const auto& [input, outputs] : t->affects_)
            for (const Attribute* a = &attribute; a; a = a->parent)
                if (std::find(outputs.begin(), outputs.end(), a) != outputs.end() && seen.insert(input).second)
                    flow.inputs.push_back(input);
    return flow;
}

Node::Node(Scene& s, const NodeType& t) : scene(s), type(t) { ++type.liveNodes; }

Node::~Node() {
    if (scene.observer) scene.observer->nodeDestroyed(*this);
    behavior.reset();
    --type.liveNodes;
}

DagNode* Node::dag() { return dynamic_cast<DagNode*>(this); }

const Attribute* Node::findAttribute(std::string_view attributeName) const {
    if (const Attribute* a = type.find(attributeName)) return a;
    const auto it = dynamicByName_.find(std::string(attributeName));
    return it == dynamicByName_.end() ? nullptr : it->second;
}

std::vector<const Attribute*> Node::attributes() const {
    auto all = type.attributes();
    for (const auto& a : dynamic_) all.push_back(a.get());
    return all;
}

bool Node::addDynamic(AttributePtr attribute, std::size_t place) {
    const std::function<bool(const Attribute&)> taken = [&](const Attribute& a) {
        return findAttribute(a.longName) || findAttribute(a.shortName) ||
               std::any_of(a.children.begin(), a.children.end(), [&](const auto& c) { return taken(*c); });
    };
    if (taken(*attribute)) return false;
    forEachPart(*attribute, [&](const Attribute& a) {
        dynamicByName_.emplace(a.longName, &a);
        dynamicByName_.emplace(a.shortName, &a);
    });
    dynamic_.insert(dynamic_.begin() + static_cast<std::ptrdiff_t>(std::min(place, dynamic_.size())),
                    std::move(attribute));
    return true;
}

bool Node::removeDynamic(const Attribute& attribute) {
    const auto it =
        std::find_if(dynamic_.begin(), dynamic_.end(), [&](const AttributePtr& a) { return a.get() == &attribute; });
    if (it == dynamic_.end()) return false;
    forEachPart(attribute, [&](const Attribute& a) {
        dynamicByName_.erase(a.longName);
        dynamicByName_.erase(a.shortName);
    });
    dynamic_.erase(it);
    return true;
}

bool Node::renameDynamic(Attribute& attribute, const std::string& longName, const std::string& shortName) {
    for (const auto& name : {longName, shortName})
        if (const Attribute* other = findAttribute(name); other && other != &attribute) return false;
    dynamicByName_.erase(attribute.longName);
    dynamicByName_.erase(attribute.shortName);
    attribute.longName = longName;
    attribute.shortName = shortName;
    dynamicByName_.emplace(longName, &attribute);
    dynamicByName_.emplace(shortName, &attribute);
    return true;
}

Cell& Node::cell(const Attribute& attribute) {
    if (attribute.parent) return cell(*attribute.parent).child(attribute.childIndex);
    auto at = place(attribute);
    if (at == cells_.end() || at->first != &attribute)
        at = cells_.emplace(at, &attribute, std::make_unique<Cell>(*this, attribute, nullptr, -1));
    return *at->second;
}

Cell& Node::cell(std::string_view attributeName) {
    const Attribute* a = findAttribute(attributeName);
    assert(a);
    return cell(*a);
}

std::vector<Cell*> Node::cells() const {
    std::vector<Cell*> found;
    for (const Attribute* a : attributes())
        if (Cell* c = existingCell(*a)) found.push_back(c);
    return found;
}

std::unique_ptr<Cell> Node::takeCell(const Attribute& rootAttribute) {
    const auto it = place(rootAttribute);
    if (it == cells_.end() || it->first != &rootAttribute) return nullptr;
    const auto at = cells_.begin() + (it - cells_.cbegin());
    auto taken = std::move(at->second);
    cells_.erase(at);
    return taken;
}

void Node::putCell(std::unique_ptr<Cell> cell) {
    if (!cell) return;
    takeCell(cell->attribute);
    const Attribute* attribute = &cell->attribute;
    cells_.emplace(place(*attribute), attribute, std::move(cell));
}

bool DagNode::isWorld() const { return this == scene.world(); }

bool DagNode::isBelow(const DagNode& ancestor) const {
    for (const DagNode* n = parent; n; n = n->parent)
        if (n == &ancestor) return true;
    return false;
}

std::string DagNode::fullPath() const {
    if (isWorld()) return {};
    return (parent ? parent->fullPath() : std::string()) + "|" + name;
}

std::string DagNode::partialPath() const {
    if (isWorld()) return {};
    std::string path = name;
    for (const DagNode* up = parent; !scene.isUniquePath(path, *this); up = up->parent) {
        if (!up) return path;
        if (up->isWorld()) return "|" + path;
        path = up->name + "|" + path;
    }
    return path;
}

MMatrix DagNode::localMatrix() {
    if (!isTransform()) return MMatrix();
    const Attribute* a = findAttribute("matrix");
    if (!a) return MMatrix();
    Cell& c = cell(*a);
    evaluate(c);
    const auto* m = matrixIn(c.value);
    return m ? *m : MMatrix();
}

MMatrix DagNode::worldMatrix() {
    if (!worldValid_) {
        // From the top down, so that a deep hierarchy costs no stack.
        std::vector<DagNode*> stale;
        for (DagNode* n = this; n && !n->worldValid_; n = n->parent) stale.push_back(n);
        for (auto it = stale.rbegin(); it != stale.rend(); ++it) {
            (*it)->world_ = (*it)->localMatrix() * (*it)->parentMatrix();
            (*it)->worldValid_ = true;
        }
    }
    return world_;
}

namespace {

bool flag(Node& node, std::string_view name, bool fallback) {
    const Attribute* a = node.findAttribute(name);
    if (!a) return fallback;
    Cell& c = node.cell(*a);
    evaluate(c);
    return c.number() != 0;
}

double overrideValue(Node& node, std::string_view name, double fallback) {
    if (!flag(node, "overrideEnabled", false)) return fallback;
    Cell& c = node.cell(name);
    evaluate(c);
    return c.number();
}

} // namespace

bool DagNode::visible() {
    if (isWorld()) return true;
    return flag(*this, "visibility", true) && flag(*this, "lodVisibility", true) &&
           overrideValue(*this, "overrideVisibility", 1) != 0;
}

bool DagNode::templated() {
    return flag(*this, "template", false) || overrideValue(*this, "overrideDisplayType", 0) == 1;
}

bool DagNode::intermediate() { return flag(*this, "intermediateObject", false); }

void DagNode::forgetWorld(std::vector<Cell*>& stale) {
    std::vector<DagNode*> open{this};
    while (!open.empty()) {
        DagNode* n = open.back();
        open.pop_back();
        n->worldValid_ = false;
        for (const char* name : {"worldMatrix", "worldInverseMatrix", "parentMatrix", "parentInverseMatrix",
                                 "worldMesh", "worldPosition"}) {
            const Attribute* a = n->type.find(name);
            if (Cell* c = a ? n->existingCell(*a) : nullptr) stale.push_back(c);
        }
        open.insert(open.end(), n->children.begin(), n->children.end());
    }
}

} // namespace host::scene
