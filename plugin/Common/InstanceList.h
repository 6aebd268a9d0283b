#pragma once

#include "MayaUtils.h"

#include <algorithm>
#include <maya/MObject.h>
#include <maya/MString.h>
#include <vector>

namespace orvo {

/// The live instances of one node class, in the order of their making. A node enters itself when it is constructed and
/// leaves when it is destroyed. Main thread only.
template <class Node>
class InstanceList {
public:
    /// The one list of the class. It is never destroyed: the host may take nodes down while the process ends.
    static InstanceList& shared() {
        union Undestroyed {
            InstanceList list{};
            ~Undestroyed() {}
        };
        static Undestroyed storage;
        return storage.list;
    }

    void add(Node& node) { nodes_.push_back(&node); }
    /// Those after it move one place towards the front. A node that is not listed is ignored.
    void remove(const Node& node) {
        const auto found = std::find(nodes_.begin(), nodes_.end(), &node);
        if (found != nodes_.end()) nodes_.erase(found);
        if (nodes_.empty()) nodes_.shrink_to_fit(); // the module may be unloaded next
    }
    const std::vector<Node*>& nodes() const { return nodes_; }

    /// The instance that a name or full path name stands for; null when the name is unknown or of another class.
    Node* find(const MString& name) const {
        MObject wanted;
        if (dependencyNodeByName(name, wanted).error()) return nullptr;
        for (Node* node : nodes_)
            if (node->thisMObject() == wanted) return node;
        return nullptr;
    }

    /// The instances whose nodes are in the scene: not those that only an undo could bring back.
    std::vector<Node*> inScene() const {
        std::vector<Node*> found;
        for (Node* node : nodes_) {
            MObject named;
            const MObject own = node->thisMObject();
            if (!dependencyNodeByName(fullPathName(own), named).error() && named == own) found.push_back(node);
        }
        return found;
    }

    /// The first instance whose own name resolves in the scene; null when none does.
    Node* firstLive() const {
        for (Node* node : nodes_) {
            MObject found;
            if (!dependencyNodeByName(node->name(), found).error()) return node;
        }
        return nullptr;
    }

private:
    std::vector<Node*> nodes_;
};

/// A member of a node class that keeps the node in its class's list for as long as it lives.
template <class Node>
class InstanceEntry {
public:
    explicit InstanceEntry(Node& node) : node_(node) { InstanceList<Node>::shared().add(node_); }
    ~InstanceEntry() { InstanceList<Node>::shared().remove(node_); }
    InstanceEntry(const InstanceEntry&) = delete;
    InstanceEntry& operator=(const InstanceEntry&) = delete;

private:
    Node& node_;
};

} // namespace orvo
