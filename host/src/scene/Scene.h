#pragma once

#include "base/UserError.h"
#include "scene/Node.h"
#include "scene/Observer.h"
#include "scene/Selection.h"
#include "scene/Undo.h"

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host::scene {

/// A request that the scene, or a file of it, refuses.
using SceneError = UserError;

/// A connection with a side that is not known here, kept for saving.
struct KeptConnection {
    std::weak_ptr<Node> sourceNode, destinationNode;
    std::string sourceText, destinationText; ///< attribute part, or the whole name when the node is null
    std::string flags;
    std::weak_ptr<Node> sourceParent, destinationParent; ///< of a node that is named through another place of it
};

/// A second place of a DAG node, below another parent. Nothing is shown there; it is kept for saving.
struct KeptInstance {
    std::weak_ptr<Node> node, parent;
    std::string flags; ///< of the parent statement
};

/// The time slider's range and the animation's, in ticks.
struct PlaybackRange {
    double min = 250, max = 6000, animationStart = 250, animationEnd = 12000;
};

/// The one scene of the process: its node types, nodes, connections, selection, time and undo queue.
///
/// Everything that changes the scene goes through here and is recorded in `undo` while that is recording.
/// Main thread only.
class Scene {
public:
    static constexpr int maxEvaluationDepth = 1000;
    static constexpr int maxArrayIndex = 1 << 28;

    static Scene& current();
    Scene();
    ~Scene();

    UndoQueue undo;
    /// Is told what happens; null for nobody. It outlives the scene's nodes.
    Observer* observer = nullptr;
    /// Lets go of what was deleted while an observer was there: of nodes, attributes and elements that a caller further
    /// up may still work on. Called where nobody does.
    void forgetDeleted() { deleted_.clear(); }
    /// Keeps what was deleted, while there is an observer.
    void keepDeleted(std::shared_ptr<void> thing) {
        if (observer) deleted_.push_back(std::move(thing));
    }
    int evaluationDepth = 0;

    /// @name Node types
    /// @{
    NodeType* registerType(std::unique_ptr<NodeType> type); ///< null when the name or id is taken
    bool unregisterType(NodeType& type);                    ///< false while nodes of the type exist
    NodeType* findType(std::string_view name) const;
    NodeType* findType(unsigned id) const;
    std::vector<const NodeType*> types() const;
    /// @}

    /// @name Nodes
    /// @{
    DagNode* world() const { return world_; }
    /// Makes a node. A shape without a parent gets a transform of its own. An empty name means the type's default
    /// with a number; a "#" is replaced by the next free number; a taken name gets a number.
    NodePtr createNode(const NodeType& type, std::string name = {}, DagNode* parent = nullptr);
    /// A node of a kind that is not known: it stands for its statements. Of a shape or a transform, what all of its
    /// like have (matrices, visibility) is known; `parent` (null: the world) is theirs.
    NodePtr createUnknown(const std::string& typeName, const std::string& name, DagNode* parent, NodeType::Kind kind);
    /// Takes the nodes out of the scene, with all below them and with history that serves nobody else.
    void deleteNodes(const std::vector<Node*>& nodes);
    /// @return the name the node got
    std::string rename(Node& node, const std::string& wanted);
    /// Moves a DAG node below another one (null: the world), keeping its local matrix.
    void reparent(DagNode& child, DagNode* newParent);
    /// Changes the place among its siblings.
    void reorder(DagNode& child, std::size_t place);
    /// The node of that name or path; null when there is none, or (with `ambiguous` set) more than one.
    Node* findNode(std::string_view path, bool* ambiguous = nullptr) const;
    /// All nodes that match a name, path or pattern with * and ?, in the order of their creation.
    std::vector<Node*> findNodes(std::string_view pattern) const;
    /// In the order of their creation.
    const std::map<unsigned long, NodePtr>& nodes() const { return nodes_; }
    /// Every DAG node below (and without) the given one, depth first, parents before children.
    std::vector<DagNode*> descendants(DagNode& node) const;
    /// The namespaces that nodes are in themselves, and how many, in alphabetic order.
    const std::map<std::string, std::size_t, std::less<>>& occupiedNamespaces() const { return byNamespace_; }
    bool isUniquePath(std::string_view path, const DagNode& node) const;
    /// The node of that name right below another; null when there is none.
    DagNode* childNamed(const DagNode& parent, std::string_view name) const;
    std::string displayName(Node& node) const; ///< partial path or name
    /// @}

    /// @name Plugs
    /// @{
    /// "node.attribute[2].child": throws SceneError that says what is missing.
    Cell& findPlug(std::string_view text);
    /// Null when there is no such plug; `create` false leaves absent array elements absent (null).
    Cell* tryPlug(std::string_view text, bool create = true);
    Cell* tryPlug(Node& node, std::string_view attributePath, bool create = true);

    /// Sets one number in internal units. Refuses locked and connected plugs, and values beyond hard limits
    /// unless `clamp` is set, which holds them at the limit.
    enum class LimitPolicy { Refuse, Clamp, Ignore };
    void setNumber(Cell& cell, double value, LimitPolicy limits = LimitPolicy::Refuse);
    void setInt64(Cell& cell, std::int64_t value);
    /// Sets a whole value; its kind must be the cell's (a Numeric may be of another type and converts).
    void setValue(Cell& cell, Value value, LimitPolicy limits = LimitPolicy::Refuse);
    /// Throws SceneError when the cell is locked or fed by anything but an animation curve: a value set beside keys
    /// holds until the curve gives another one.
    void requireSettable(const Cell& cell) const;
    /// The same, and when a curve feeds it: for what wants to feed it itself.
    void requireFree(const Cell& cell) const;
    void setLocked(Cell& cell, bool locked);
    void setKeyable(Cell& cell, bool keyable);
    void setChannelBox(Cell& cell, bool shown);
    void removeElement(Cell& element, bool breakConnections);
    void addAttribute(Node& node, AttributePtr attribute);
    void deleteAttribute(Node& node, const Attribute& attribute);
    /// Replaces the node's other names of attributes.
    void setAliases(Node& node, std::vector<std::pair<std::string, std::string>> aliases);
    /// Gives an added attribute another long and short name.
    void renameAttribute(Node& node, const Attribute& attribute, const std::string& name);
    /// @}

    /// @name Connections
    /// @{
    /// `force` breaks the destination's connection first. Throws SceneError.
    void connect(Cell& source, Cell& destination, bool force = false);
    void disconnect(Cell& source, Cell& destination);
    /// Breaks every connection of the cell and of what it is made of.
    void cutConnections(Cell& cell);
    /// The first element of the array that nothing is connected to and nobody has set.
    Cell& nextAvailable(Cell& array);
    std::vector<KeptConnection> keptConnections;
    std::vector<KeptInstance> keptInstances;
    /// @}

    /// @name Selection
    /// @{
    const std::vector<Selected>& selection() const { return selection_; }
    void setSelection(std::vector<Selected> items);
    /// @}

    /// @name Time, in ticks of 1/6000 s
    /// @{
    double time() const { return time_; }
    void setTime(double ticks);
    const PlaybackRange& playback() const { return playback_; }
    void setPlayback(const PlaybackRange& range);
    /// @}

    /// @name The scene as a document
    /// @{
    std::string fileName; ///< full path; empty for a new scene
    std::map<std::string, std::string> fileInfo;
    std::vector<std::string> keptStatements; ///< statements that belong to no node
    std::set<std::string> requiredPlugins;   ///< whole `requires` statements of plug-ins that are not loaded
    /// Empties the scene and makes the default nodes.
    void reset();
    bool modified = false;
    /// @}

    /// Numbers that change with every change of the scene; for caches.
    unsigned long generation() const { return generation_; }
    /// True the first time a cycle is met at the cell.
    bool noteCycle(const Cell& cell);
    void record(std::function<void()> redo, std::function<void()> undoIt);

    /// A name that is free for the node under the parent, made from the wanted one.
    std::string freeName(const std::string& wanted, const Node* node, const DagNode* parent, bool dag) const;
    static bool isValidName(std::string_view name);

private:
    void announceAdded(Node& node);
    void announceRemoved(Node& node, DagNode* parent);
    void enter(const NodePtr& node);
    void leave(Node& node);
    void attach(DagNode& child, DagNode& parent, std::size_t place);
    void detach(DagNode& child);
    void index(Node& node);
    void unindex(Node& node);
    void deleteOne(const NodePtr& node);
    void createDefaults();
    std::string freeNumbered(const std::string& stem, const Node* self) const;

    std::map<std::string, std::unique_ptr<NodeType>, std::less<>> types_;
    std::map<unsigned long, NodePtr> nodes_;
    unsigned long nextSerial_ = 0;
    /// Where a DAG node is: which node it is below, and its name there.
    struct Place {
        const DagNode* parent;
        std::string_view name;
        bool operator==(const Place&) const = default;
    };
    struct PlaceHash {
        std::size_t operator()(const Place& p) const {
            return std::hash<std::string_view>()(p.name) ^ (std::hash<const DagNode*>()(p.parent) * 31);
        }
    };
    void enterPlace(DagNode& node);
    void leavePlace(DagNode& node);
    template <class Visit>
    void eachAtPath(const std::vector<std::string_view>& parts, Visit visit) const;

    std::unordered_map<std::string, std::vector<Node*>> byName_; ///< a name has either DAG nodes or one other node
    std::map<std::string, std::size_t, std::less<>> byNamespace_;
    std::unordered_multimap<Place, DagNode*, PlaceHash> byPlace_;
    mutable std::unordered_map<std::string, int> numberHints_;
    NodePtr worldOwner_;
    DagNode* world_ = nullptr;
    std::vector<Selected> selection_;
    double time_ = 0;
    PlaybackRange playback_;
    unsigned long generation_ = 0;
    std::unordered_set<const Cell*> cycles_;
    std::vector<std::shared_ptr<void>> deleted_;
};

/// Registers the node types that every scene knows.
void registerBuiltinTypes(Scene& scene);

} // namespace host::scene
