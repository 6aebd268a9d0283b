#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MMatrix.h>
#include <maya/MTypeId.h>

/// Function set for DAG nodes: transforms and shapes.
class OPENMAYA_EXPORT MFnDagNode : public MFnDependencyNode {
public:
    enum { kNextPos = 0xff };
    ORVO_DECLARE_FN(MFnDagNode)
    MFnDagNode(const MDagPath& object, MStatus* ret = NULL);
    MObject create(const MTypeId& typeId, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject create(const MTypeId& typeId, const MString& name, MObject& parent = MObject::kNullObj,
                   MStatus* ReturnStatus = NULL);
    /// A shape without parent gets a transform, which is what is answered then.
    MObject create(const MString& type, MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject create(const MString& type, const MString& name, MObject& parent = MObject::kNullObj,
                   MStatus* ReturnStatus = NULL);
    unsigned int parentCount(MStatus* ReturnStatus = NULL) const;
    MObject parent(unsigned int i, MStatus* ReturnStatus = NULL) const;
    MStatus addChild(MObject& child, unsigned int index = kNextPos, bool keepExistingParents = false);
    MStatus removeChild(MObject& child);
    MStatus removeChildAt(unsigned int index);
    unsigned int childCount(MStatus* ReturnStatus = NULL) const;
    MObject child(unsigned int i, MStatus* ReturnStatus = NULL) const;
    MObject dagRoot(MStatus* ReturnStatus = NULL);
    bool hasParent(const MObject& node, MStatus* ReturnStatus = NULL) const;
    bool hasChild(const MObject& node, MStatus* ReturnStatus = NULL) const;
    bool isChildOf(const MObject& node, MStatus* ReturnStatus = NULL) const;
    bool isParentOf(const MObject& node, MStatus* ReturnStatus = NULL) const;
    bool inUnderWorld(MStatus* ReturnStatus = NULL) const;
    bool inModel(MStatus* ReturnStatus = NULL) const;
    bool isInstanceable(MStatus* ReturnStatus = NULL) const;
    bool isInstanced(bool indirect = true, MStatus* ReturnStatus = NULL) const;
    unsigned int instanceCount(bool total, MStatus* ReturnStatus = NULL) const;
    MStatus getPath(MDagPath& path) const;
    MStatus getAllPaths(MDagPathArray& paths) const;
    MString fullPathName(MStatus* ReturnStatus = NULL) const;
    MString partialPathName(MStatus* ReturnStatus = NULL) const;
    /// The node's own matrix, from its space to its parent's.
    MMatrix transformationMatrix(MStatus* ReturnStatus = NULL) const;
    bool isIntermediateObject(MStatus* ReturnStatus = NULL) const;
    MStatus setIntermediateObject(bool isIntermediate);
    bool drawOverrideEnabled(MStatus* ReturnStatus = NULL) const;
    bool drawOverrideIsReference(MStatus* ReturnStatus = NULL) const;
    bool drawOverrideIsTemplate(MStatus* ReturnStatus = NULL) const;
    /// The box around the shapes at and below the node, in its parent's space.
    MBoundingBox boundingBox(MStatus* ReturnStatus = NULL) const;
    MDagPath dagPath(MStatus* ReturnStatus = NULL) const;
    virtual MStatus setObject(const MDagPath& objectPath);
    virtual MStatus setObject(MObject& object) override;
    virtual MStatus setObject(const MObject& object) override;

protected:
    virtual const char* className() const;
};
