#pragma once

#include <maya/MFn.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

class MDagPathArray;

/// The place of a node in the DAG. Nodes have one path here: there is no instancing.
class OPENMAYA_EXPORT MDagPath {
public:
    MDagPath();
    MDagPath(const MDagPath& src);
    virtual ~MDagPath();
    static MStatus getAllPathsTo(const MObject& node, MDagPathArray& pathArray);
    static MStatus getAPathTo(const MObject& node, MDagPath& path);
    static MDagPath getAPathTo(const MObject& node, MStatus* ReturnStatus = NULL);
    bool hasFn(MFn::Type type, MStatus* ReturnStatus = NULL) const;
    MFn::Type apiType(MStatus* ReturnStatus = NULL) const;
    bool isValid(MStatus* ReturnStatus = NULL) const;
    MObject node(MStatus* ReturnStatus = NULL) const;
    /// The last transform of the path.
    MObject transform(MStatus* ReturnStatus = NULL) const;
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    /// Goes on to the shape below the transform; fails when there is none, or more than one.
    MStatus extendToShape();
    MStatus extendToShapeDirectlyBelow(unsigned int index);
    MStatus numberOfShapesDirectlyBelow(unsigned int& num) const;
    MStatus push(const MObject& child);
    MStatus pop(unsigned int num = 1);
    unsigned int childCount(MStatus* ReturnStatus = NULL) const;
    MObject child(unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// The matrix from the node's space to the world's; the exclusive one leaves the node's own out.
    MMatrix inclusiveMatrix(MStatus* ReturnStatus = NULL) const;
    MMatrix exclusiveMatrix(MStatus* ReturnStatus = NULL) const;
    MMatrix inclusiveMatrixInverse(MStatus* ReturnStatus = NULL) const;
    MMatrix exclusiveMatrixInverse(MStatus* ReturnStatus = NULL) const;
    MDagPath& operator=(const MDagPath& src);
    bool operator==(const MDagPath& src) const;
    MStatus set(const MDagPath& src);
    unsigned int pathCount(MStatus* ReturnStatus = NULL) const;
    MStatus getPath(MDagPath& path, unsigned int i = 0) const;
    MString fullPathName(MStatus* ReturnStatus = NULL) const;
    MString partialPathName(MStatus* ReturnStatus = NULL) const;
    bool isInstanced(MStatus* ReturnStatus = NULL) const;
    unsigned int instanceNumber(MStatus* ReturnStatus = NULL) const;
    /// Whether the node and all above it are visible.
    bool isVisible(MStatus* ReturnStatus = NULL) const;
    /// Whether the node or one above it is templated.
    bool isTemplated(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    friend struct host::api::Access;
    MObject node_;
};

// Behind the class: they need it themselves.
#include <maya/MDagPathArray.h>
