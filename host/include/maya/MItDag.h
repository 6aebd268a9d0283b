#pragma once

#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include <vector>

/// Walks the DAG below a node, that node included, parents before children.
class OPENMAYA_EXPORT MItDag {
public:
    enum TraversalType { kInvalidType, kDepthFirst, kBreadthFirst };
    MItDag(MItDag::TraversalType type = kDepthFirst, MFn::Type filter = MFn::kInvalid, MStatus* ReturnStatus = NULL);
    virtual ~MItDag();
    MStatus reset();
    MStatus reset(const MObject& object, MItDag::TraversalType type = kDepthFirst, MFn::Type filter = MFn::kInvalid);
    MStatus reset(const MDagPath& path, MItDag::TraversalType type = kDepthFirst, MFn::Type filter = MFn::kInvalid);
    MObject item(MStatus* ReturnStatus = NULL);
    MObject currentItem(MStatus* ReturnStatus = NULL);
    MStatus next();
    /// Leaves out what is below the current node.
    MStatus prune();
    bool isDone(MStatus* ReturnStatus = NULL) const;
    MObject root(MStatus* ReturnStatus = NULL);
    unsigned int depth(MStatus* ReturnStatus = NULL) const;
    MItDag::TraversalType getType(MStatus* ReturnStatus = NULL) const;
    MStatus getPath(MDagPath& path) const;
    MStatus getAllPaths(MDagPathArray& paths) const;
    MString fullPathName(MStatus* ReturnStatus = NULL) const;
    MString partialPathName(MStatus* ReturnStatus = NULL) const;
    bool isInstanced(bool indirect = true, MStatus* ReturnStatus = NULL) const;
    unsigned int instanceCount(bool total, MStatus* ReturnStatus = NULL) const;
    MStatus traverseUnderWorld(bool flag);
    bool willTraverseUnderWorld(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    void advance(bool intoChildren);
    void settle();
    struct Entry {
        MObject node;
        unsigned depth;
    };
    MObject root_;
    TraversalType type_ = kDepthFirst;
    MFn::Type filter_ = MFn::kInvalid;
    std::vector<Entry> open_; ///< the current node first when breadth first, last when depth first
    bool underWorld_ = false, pruned_ = false;
};
