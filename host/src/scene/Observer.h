#pragma once

#include <string>
#include <vector>

namespace host::scene {

class Attribute;
struct Cell;
class DagNode;
class Node;

/// Is told what happens to a scene, undoing and redoing included. Whoever tells touches nothing of the scene behind it
/// that may be gone by then: while there is an observer, what is deleted is kept until Scene::forgetDeleted().
class Observer {
public:
    virtual ~Observer() = default;

    /// Behind the event, in its place in the DAG.
    virtual void nodeAdded(Node&) {}
    virtual void nodeRemoved(Node&) {}
    /// Before a deletion, with all connections in place.
    virtual void nodeAboutToGo(Node&) {}
    /// Before the scene is emptied.
    virtual void sceneAboutToGo() {}
    virtual void nodeDestroyed(const Node&) noexcept {}
    virtual void nodeRenamed(Node&, const std::string& /*before*/) {}

    enum class AttributeEvent { Added, Removed, Renamed };
    virtual void attributeChanged(Node&, const Attribute&, AttributeEvent) {}
    virtual void valueSet(Cell&) {}
    virtual void evaluated(Cell&) {}
    virtual void lockChanged(Cell&) {}
    virtual void keyableChanged(Cell&) {}
    virtual bool mayChangeKeyable(Cell&, bool /*keyable*/) { return true; }
    virtual void elementRemoved(Cell& /*array*/, int /*index*/) {}
    /// `before`: the connection is about to be made or broken by a request.
    virtual void connectionChanged(Cell& /*source*/, Cell& /*destination*/, bool /*made*/, bool /*before*/) {}

    /// Whether dirtied() is of use; asked before each wave.
    virtual bool wantsDirt() const { return false; }
    virtual void dirtied(const std::vector<Cell*>&) {}
    /// The matrices in the world of the node and of all below it may have changed.
    virtual void worldMoved(DagNode&) {}

    virtual void parentChanged(DagNode& /*child*/, DagNode& /*parent*/, bool /*added*/) {}
    virtual void reordered(DagNode& /*child*/) {}
    virtual void selectionChanged() {}
    virtual void timeChanged() {}
};

} // namespace host::scene
