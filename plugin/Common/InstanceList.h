#pragma once

#include "MayaUtils.h"
#include "Undestroyed.h"

#include <algorithm>
#include <list>
#include <maya/MObject.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <unordered_map>
#include <vector>

namespace orvo {

/// The live instances of one node class, in the order of their making. A node enters itself when it is constructed and
/// leaves when it is destroyed. What is looked up is found by hash, however many there are. Main thread only.
template <class Node>
class InstanceList {
public:
    /// The one list of the class.
    static InstanceList& shared() { return undestroyed<InstanceList>(); }

    void add(MPxNode& node) { places_.emplace(&node, nodes_.insert(nodes_.end(), &node)); }
    /// The others keep their order. A node that is not listed is ignored.
    void remove(const MPxNode& node) {
        const auto found = places_.find(&node);
        if (found == places_.end()) return;
        nodes_.erase(found->second);
        places_.erase(found);
        if (places_.empty()) places_ = Places(); // the module may be unloaded next
    }
    std::vector<Node*> nodes() const {
        std::vector<Node*> all;
        for (MPxNode* node : nodes_) all.push_back(static_cast<Node*>(node));
        return all;
    }

    /// The instance that a name or full path name stands for; null when the name is unknown or of another class.
    Node* find(const MString& name) const {
        MObject wanted;
        if (dependencyNodeByName(name, wanted).error()) return nullptr;
        const auto found = places_.find(userNode(wanted));
        return found == places_.end() ? nullptr : static_cast<Node*>(*found->second);
    }

    /// The instances whose nodes are in the scene: not those that only an undo could bring back.
    std::vector<Node*> inScene() const {
        std::vector<Node*> found;
        for (MPxNode* node : nodes_)
            if (isInScene(*node)) found.push_back(static_cast<Node*>(node));
        return found;
    }

    /// The first instance that is in the scene; null when none is.
    Node* firstLive() const {
        const auto found =
            std::find_if(nodes_.begin(), nodes_.end(), [this](const MPxNode* node) { return isInScene(*node); });
        return found == nodes_.end() ? nullptr : static_cast<Node*>(*found);
    }

private:
    /// Whether the node's full path name leads to itself, and not to nothing or to a node that was given the name of a
    /// deleted one.
    bool isInScene(const MPxNode& node) const {
        const MString name = fullPathName(node.thisMObject());
        return name.length() > 0 && find(name) == &node;
    }

    using Places = std::unordered_map<const MPxNode*, std::list<MPxNode*>::iterator>;

    std::list<MPxNode*> nodes_; ///< each a Node once it is made
    Places places_;
};

/// A member of a node class that keeps the node in its class's list for as long as it lives.
template <class Node>
class InstanceEntry {
public:
    explicit InstanceEntry(MPxNode& node) : node_(node) { InstanceList<Node>::shared().add(node_); }
    ~InstanceEntry() { InstanceList<Node>::shared().remove(node_); }
    InstanceEntry(const InstanceEntry&) = delete;
    InstanceEntry& operator=(const InstanceEntry&) = delete;

private:
    MPxNode& node_;
};

} // namespace orvo
