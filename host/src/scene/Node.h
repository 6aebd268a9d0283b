#pragma once

#include "scene/Attribute.h"
#include "scene/CellBlocks.h"

#include <maya/MMatrix.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::scene {

class DagNode;
class Node;
class NodeType;
class Scene;

/// What flows into and out of an attribute within nodes of a type.
struct AttributeFlow {
    /// What is computed from the attribute, from what it is a part of, or from a part of it.
    std::vector<const Attribute*> affected;
    std::vector<const Attribute*> inputs; ///< what it, or what it is a part of, is computed from
    bool computed = false;                ///< it, or what it is a part of
    bool partComputed = false;            ///< something that is a part of it
    bool movesWorld = false;              ///< a change of it moves a node of the DAG, or what is below
    unsigned long version = 0;
    static inline unsigned long current = 1; ///< grows when what an attribute affects changes
};

struct Cell;

/// The cells that a cell feeds, in the order in which they were connected. The links lie in the cells themselves, so
/// that a connection is made and broken in constant time, and a cell that feeds a single one needs no list beside it.
class Destinations {
public:
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = Cell*;
        using difference_type = std::ptrdiff_t;
        using pointer = Cell* const*;
        using reference = Cell*;
        Iterator() = default;
        explicit Iterator(Cell* at) : at_(at) {}
        Cell* operator*() const { return at_; }
        Iterator& operator++();
        Iterator operator++(int) {
            const Iterator here = *this;
            ++*this;
            return here;
        }
        bool operator==(const Iterator&) const = default;

    private:
        Cell* at_ = nullptr;
    };
    bool empty() const { return !first_; }
    Cell* front() const { return first_; }
    Cell* back() const { return last_; }
    Iterator begin() const { return Iterator(first_); }
    Iterator end() const { return {}; }
    /// Puts in a cell that nothing feeds, before one of the list; behind all others for null.
    void insert(Cell& cell, Cell* before = nullptr);
    void remove(Cell& cell);
    bool contains(const Cell* cell) const;
    /// Forgets the cells, whose links are no matter any more.
    void clear() { first_ = last_ = nullptr; }

private:
    Cell *first_ = nullptr, *last_ = nullptr;
};

/// The elements of an array that exist, in the order of their indices.
class Elements {
public:
    using Map = std::map<int, std::unique_ptr<Cell>>;
    using iterator = Map::iterator;
    using const_iterator = Map::const_iterator;
    Elements() = default;
    iterator begin() { return map().begin(); }
    iterator end() { return map().end(); }
    const_iterator begin() const { return map().begin(); }
    const_iterator end() const { return map().end(); }
    auto rbegin() { return map().rbegin(); }
    auto rbegin() const { return map().rbegin(); }
    bool empty() const { return !map_ || map_->empty(); }
    std::size_t size() const { return map().size(); }
    bool contains(int index) const { return map_ && map_->contains(index); }
    iterator find(int index) { return map().find(index); }
    const_iterator find(int index) const { return map().find(index); }
    iterator lower_bound(int index) { return map().lower_bound(index); }
    std::unique_ptr<Cell>& at(int index) { return map().at(index); }
    std::unique_ptr<Cell>& operator[](int index) {
        if (!map_) map_ = std::make_unique<Map>();
        return (*map_)[index];
    }
    void erase(int index) { map().erase(index); }
    iterator erase(iterator at) { return map().erase(at); }

private:
    /// Nobody adds to the one that stands for none.
    Map& map() const {
        static Map none;
        return map_ ? *map_ : none;
    }
    std::unique_ptr<Map> map_; ///< made with the first: most cells are no arrays
};

/// The storage and state of one plug that has been touched: a leaf, a compound, an array or an array's element.
/// Cells are made on first use and keep their address as long as their node lives.
struct alignas(64) Cell {
    // By what is looked at together, a line of the processor's cache each: what a wave of dirt and an evaluation ask of
    // every cell, the cells beside and below it, and what it holds.
    Node& node;
    const Attribute& attribute;
    Cell* parent = nullptr; ///< the compound or array it belongs to
    Cell* source = nullptr;
    unsigned long wave = 0; ///< the last wave of dirt that came by

private:
    mutable const AttributeFlow* flow_ = nullptr;
    const AttributeFlow& lookUpFlow() const;

public:
    int index = -1; ///< logical index of an element
    int inUse = 0;  ///< of an array: its elements before this one are all in use
    bool dirty = false, computing = false;
    bool waiting = false; ///< for what it is computed from, while a long chain is evaluated
    bool locked : 1 = false;
    bool written : 1 = false; ///< set by somebody, so worth saving
    std::optional<bool> keyable, channelBox;

    Destinations destinations;
    Cell *nextFed = nullptr, *previousFed = nullptr; ///< among the destinations of its source
    std::vector<std::unique_ptr<Cell>, BlockAllocator<std::unique_ptr<Cell>>> children;
    Elements elements; ///< of an array

    Value value;                   ///< of leaves and tuples; a tuple's child keeps none of its own
    std::shared_ptr<void> apiView; ///< what the API needs to hand out references to the value

    Cell(Node& n, const Attribute& a, Cell* p, int i);
    /// Cells lie side by side in large blocks of their own.
    static void* operator new(std::size_t size, std::align_val_t alignment);
    static void operator delete(void* cell, std::size_t size, std::align_val_t alignment);
    bool isArray() const { return attribute.array && index < 0; }
    bool isTupleChild() const {
        return index < 0 && parent && !parent->isArray() && parent->attribute.type == AttributeType::Tuple;
    }
    Cell& child(int k);
    Cell& element(int logicalIndex);
    /// The numbers that the cell shows and the component within them; null for cells that hold none.
    Numeric* numbers(int* component = nullptr);
    /// The cell's number in internal units (radians, centimetres, ticks).
    double number();
    /// "node.attribute[2].child", with long or short attribute names.
    std::string name(bool longNames = true) const;
    std::string attributePath(bool longNames = true) const;
    bool lockedHere() const;
    /// Notes that the elements that it is, or is a part of, may be in use no more.
    void noteFreed() {
        for (Cell* c = this; c->parent; c = c->parent)
            if (c->index >= 0) c->parent->inUse = std::min(c->parent->inUse, c->index);
    }
    const AttributeFlow& flow() const {
        return flow_ && flow_->version == AttributeFlow::current ? *flow_ : lookUpFlow();
    }
};

inline Destinations::Iterator& Destinations::Iterator::operator++() {
    at_ = at_->nextFed;
    return *this;
}

/// Whether `holds` is true of the cell or of one that exists below it: depth first, parts before elements. `holds`
/// makes and removes no cells there.
template <class CellOrConst, class Holds>
bool anyCell(CellOrConst& cell, const Holds& holds) {
    if (holds(cell)) return true;
    // What kind of a cell it is is at hand; its parts and elements are further off.
    if (!cell.attribute.children.empty())
        for (auto& part : cell.children)
            if (part && anyCell(static_cast<CellOrConst&>(*part), holds)) return true;
    if (!cell.isArray()) return false;
    for (auto& [index, element] : cell.elements)
        if (anyCell(static_cast<CellOrConst&>(*element), holds)) return true;
    return false;
}

/// Calls `visit` with the cell and all that exist below it, in the order of anyCell.
template <class CellOrConst, class Visit>
void forEachCell(CellOrConst& cell, const Visit& visit) {
    anyCell(cell, [&](CellOrConst& c) { return visit(c), false; });
}

/// What a node does: the part that differs between kinds of node.
class NodeBehavior {
public:
    static void* operator new(std::size_t size) { return takeInBlocks(size); }
    static void operator delete(void* behavior, std::size_t size) { giveInBlocks(behavior, size); }
    virtual ~NodeBehavior() = default;
    /// Computes the cell (and any others it likes), writing values and clearing dirty flags.
    /// @return false when it does not know the attribute
    virtual bool compute(Cell&) { return false; }
    virtual void postConstructor() {}
    /// Adds cells that become dirty with the given one. Asked of types that say so (NodeType::tellsDependents).
    virtual void dependents(Cell&, std::vector<Cell*>&) {}
    /// Adds cells that the computation of the given one reads and that no attribute's list of what it affects tells of.
    virtual void upstream(Cell&, std::vector<Cell*>&) {}
    /// Whether the connection may be made or broken (an empty answer means no opinion).
    virtual std::optional<bool> legal(Cell&, Cell&, bool /*asSource*/, bool /*making*/) { return std::nullopt; }
    virtual void connectionChanged(Cell&, Cell&, bool /*asSource*/, bool /*made*/) {}
    /// Takes a value in place of the cell's own storage (internal attributes). @return true when taken
    virtual bool setInternal(Cell&, const Value&) { return false; }
    virtual bool getInternal(Cell&) { return false; }
    /// Whether an internal array has the element although no cell shows it yet.
    virtual bool hasElement(const Cell& /*array*/, int /*index*/) { return false; }
    virtual void copyFrom(Node&) {}
    /// The box around what the node shows, in its own space: the least x, y, z, then the largest. Nothing when it shows
    /// nothing that has bounds.
    virtual std::optional<std::array<double, 6>> box() { return std::nullopt; }
    /// When and among what a node is drawn that draws itself.
    struct Drawing {
        bool last;      ///< behind everything that does not ask for it
        bool asLocator; ///< left out by a view that shows no locators
    };
    /// Nothing when the node does not draw itself.
    virtual std::optional<Drawing> drawing() { return std::nullopt; }
    /// Draws with GL, whose matrices are loaded for the node, in the open view of that serial number. May throw.
    virtual void draw(unsigned long /*view*/) {}
};

/// A kind of node: its place in the type hierarchy, its attributes, and how values depend on each other.
class NodeType {
public:
    enum class Kind { Dependency, Transform, Shape };
    using MakeBehavior = std::function<std::unique_ptr<NodeBehavior>(Node&)>;

    NodeType(std::string name, const NodeType* base, Kind kind, int apiType);
    std::string name;
    unsigned id = 0;
    const NodeType* base;
    Kind kind;
    int apiType; ///< an MFn::Type
    std::string plugin, classification;
    bool isAbstract = false;
    MakeBehavior makeBehavior;
    bool tellsDependents = false; ///< whether its nodes' behaviours have a say in what becomes dirty
    mutable int liveNodes = 0;    ///< nodes that exist, in the scene or in the undo queue

    bool isDag() const { return kind != Kind::Dependency; }
    bool isA(std::string_view typeName) const;
    /// Adds an attribute. @return false when its long or short name is taken
    bool add(AttributePtr attribute);
    void affects(const Attribute& input, const Attribute& output);
    void affects(std::initializer_list<const char*> inputs, std::initializer_list<const char*> outputs);
    /// Declares attributes as computed from something that is no attribute: the hierarchy, the scene's time.
    void computed(std::initializer_list<const char*> outputs);
    const Attribute* find(std::string_view name) const;
    /// Root attributes, the base type's first, in the order of their addition.
    std::vector<const Attribute*> attributes() const;
    void affected(const Attribute& input, std::vector<const Attribute*>& out) const;
    /// Whether the attribute, or a compound around it, is computed from others.
    bool isComputed(const Attribute& attribute) const;
    /// All of that together, looked up once. It stays where it is as long as the type.
    const AttributeFlow& flow(const Attribute& attribute) const;
    const std::vector<AttributePtr>& ownAttributes() const { return own_; }

private:
    bool index(const AttributePtr& attribute);
    std::vector<AttributePtr> own_;
    std::unordered_map<std::string, const Attribute*> byName_;
    std::unordered_map<const Attribute*, std::vector<const Attribute*>> affects_;
    std::unordered_set<const Attribute*> computed_;
    mutable std::unordered_map<const Attribute*, std::unique_ptr<AttributeFlow>> flows_;
};

/// A node of the dependency graph.
class Node : public std::enable_shared_from_this<Node> {
public:
    Node(Scene& scene, const NodeType& type);
    virtual ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    Scene& scene;
    const NodeType& type;
    std::unique_ptr<NodeBehavior> behavior;

private:
    using CellEntry = std::pair<const Attribute*, std::unique_ptr<Cell>>;
    using CellEntries = std::vector<CellEntry, BlockAllocator<CellEntry>>;
    CellEntries cells_; ///< by the attributes' addresses: the few of a node are found faster than by hash
    /// Where the attribute's entry is, or is to be put.
    CellEntries::const_iterator place(const Attribute& rootAttribute) const {
        return std::lower_bound(
            cells_.begin(), cells_.end(), &rootAttribute,
            [](const CellEntry& entry, const Attribute* a) { return std::less<const Attribute*>()(entry.first, a); });
    }

public:
    std::string name;
    std::string uuid;
    unsigned long serial = 0; ///< grows with every node made
    std::size_t nameSlot = 0; ///< its place among the nodes of its name; the scene's
    bool inScene = false;
    bool isDefault = false; ///< made by the host for every scene; it cannot be deleted
    bool locked = false;
    bool referenced = false;
    bool doNotWrite = false;         ///< left out when the scene is saved
    std::shared_ptr<void> apiHandle; ///< what the API's objects of this node share
    /// A node of a kind that nobody knows: its kind's name. Its statements are kept as text.
    std::string unknownType;
    /// Scene-file statements that mean nothing here, kept so that saving loses nothing.
    std::vector<std::string> keptStatements;
    /// Other names of attributes, and the paths they stand for ("smile", "weight[0]"), in the order they were given.
    std::vector<std::pair<std::string, std::string>> aliases;

    DagNode* dag();
    const Attribute* findAttribute(std::string_view attributeName) const;
    /// Root attributes, dynamic ones last.
    std::vector<const Attribute*> attributes() const;
    /// False when a name is taken. `place` is the attribute's among the dynamic ones, at most behind the last.
    bool addDynamic(AttributePtr attribute, std::size_t place = static_cast<std::size_t>(-1));
    bool removeDynamic(const Attribute& attribute);
    /// False when the name is taken.
    bool renameDynamic(Attribute& attribute, const std::string& longName, const std::string& shortName);
    const std::vector<AttributePtr>& dynamicAttributes() const { return dynamic_; }

    /// The cell of an attribute that lies below no array, or of a root array.
    Cell& cell(const Attribute& attribute);
    Cell& cell(std::string_view attributeName); ///< the attribute must exist
    Cell* existingCell(const Attribute& rootAttribute) const {
        const auto at = place(rootAttribute);
        return at == cells_.end() || at->first != &rootAttribute ? nullptr : at->second.get();
    }
    /// Every root cell that exists, in the order of the attributes.
    std::vector<Cell*> cells() const;
    std::unique_ptr<Cell> takeCell(const Attribute& rootAttribute);
    void putCell(std::unique_ptr<Cell> cell);

    bool isComputed(const Attribute& attribute) const { return type.flow(attribute).computed; }

private:
    std::vector<AttributePtr> dynamic_;
    std::unordered_map<std::string, const Attribute*> dynamicByName_;
};
using NodePtr = std::shared_ptr<Node>;

/// A node of the DAG: a transform or a shape, at one place below the world.
class DagNode : public Node {
public:
    using Node::Node;
    DagNode* parent = nullptr; ///< null for the world and for nodes outside the scene
    std::vector<DagNode*> children;

    bool isTransform() const { return type.kind == NodeType::Kind::Transform; }
    bool isShape() const { return type.kind == NodeType::Kind::Shape; }
    bool isWorld() const;
    bool isBelow(const DagNode& ancestor) const;
    /// "|group1|pCube1"
    std::string fullPath() const;
    /// The shortest form of the path that no other node shares.
    std::string partialPath() const;

    /// @name Matrices, row vectors, centimetres
    /// @{
    MMatrix localMatrix();
    MMatrix parentMatrix(); ///< its offsetParentMatrix, then the product of the matrices above the node
    MMatrix worldMatrix();
    /// @}
    bool visible();   ///< its own visibility (with overrides), not its parents'
    bool templated(); ///< its own template flag or override
    bool intermediate();
    bool worldKnown() const { return worldValid_; }
    /// Forgets the cached matrices here and below, and lists the cells that show them.
    void forgetWorld(std::vector<Cell*>& stale);

private:
    MMatrix world_;
    bool worldValid_ = false;
};

} // namespace host::scene
