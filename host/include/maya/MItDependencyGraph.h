#pragma once

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MStatus.h>

#include <memory>

/// Walks along the connections from a node or a plug, which comes first itself; each node, or each plug, once.
///
/// At the level of nodes a step leads from a node to those that it is connected to; from a root plug, to those that the
/// plug is connected to. At the level of plugs a step leads to the plug at a connection's other end, and from there,
/// within the node, to the connected plugs that depend on it (or that it depends on, upstream). A filter leaves out
/// what has no function set of the type; what lies behind is visited all the same, unless pruning on the filter is
/// enabled.
class OPENMAYA_EXPORT MItDependencyGraph {
public:
    enum Direction { kDownstream, kUpstream };
    enum Traversal { kDepthFirst, kBreadthFirst };
    enum Level { kNodeLevel, kPlugLevel };
    MItDependencyGraph(MObject& rootNode, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                       Traversal traversal = kDepthFirst, Level level = kNodeLevel, MStatus* ReturnStatus = NULL);
    MItDependencyGraph(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                       Traversal traversal = kDepthFirst, Level level = kPlugLevel, MStatus* ReturnStatus = NULL);
    ~MItDependencyGraph();
    MStatus reset();
    MStatus resetTo(MObject& rootNode, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                    Traversal traversal = kDepthFirst, Level level = kNodeLevel);
    MStatus resetTo(MPlug& rootPlug, MFn::Type filter = MFn::kInvalid, Direction direction = kDownstream,
                    Traversal traversal = kDepthFirst, Level level = kPlugLevel);
    MObject rootNode(MStatus* ReturnStatus = NULL);
    MPlug rootPlug(MStatus* ReturnStatus = NULL);
    MFn::Type currentFilter(MStatus* ReturnStatus = NULL);
    /// What is set from here on starts the walk anew.
    MStatus setCurrentFilter(MFn::Type filter = MFn::kInvalid);
    MStatus resetFilter();
    bool isPruningOnFilter(MStatus* ReturnStatus = NULL);
    MStatus enablePruningOnFilter();
    MStatus disablePruningOnFilter();
    bool isDirectionDownStream(MStatus* ReturnStatus = NULL);
    Direction currentDirection(MStatus* ReturnStatus = NULL);
    MStatus toggleDirection();
    bool isTraversalDepthFirst(MStatus* ReturnStatus = NULL);
    Traversal currentTraversal(MStatus* ReturnStatus = NULL);
    MStatus toggleTraversal();
    bool atNodeLevel(MStatus* ReturnStatus = NULL);
    Level currentLevel(MStatus* ReturnStatus = NULL);
    /// Whether the walk also leads from nodes to those below them in the DAG (above, upstream), and from plugs that
    /// move a node to what of it, and of what is below, is shown in the world. Not at first; setting it starts anew.
    MStatus setTraversalOverWorldSpaceDependents(bool val);
    bool isTraversingOverWorldSpaceDependents(MStatus* ReturnStatus = NULL);
    MStatus toggleLevel();
    MStatus next();
    bool isDone(MStatus* ReturnStatus = NULL);
    /// Leaves out what lies behind the current item.
    MStatus prune();
    MObject thisNode(MStatus* ReturnStatus = NULL);
    MObject currentItem(MStatus* ReturnStatus = NULL);
    bool thisNodeHasUnknownType(MStatus* ReturnStatus = NULL);
    /// The plug that led to the node, or the current one at the level of plugs; kFailure for a root node.
    MPlug thisPlug(MStatus* ReturnStatus = NULL);
    /// The plug at the connection's other end.
    MPlug previousPlug(MStatus* ReturnStatus = NULL);
    MStatus getNodesVisited(MObjectArray& nodesVisited) const;
    MStatus getPlugsVisited(MPlugArray& plugsVisited) const;
    /// From the root to the current item, both included.
    MStatus getNodePath(MObjectArray& path) const;
    MStatus getPlugPath(MPlugArray& path) const;
    static const char* className();

private:
    MItDependencyGraph(const MItDependencyGraph&) = delete;
    MItDependencyGraph& operator=(const MItDependencyGraph&) = delete;
    struct Walk;
    std::unique_ptr<Walk> walk_;
};
