#pragma once

#include <maya/MDagPath.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MSelectionList.h>

/// Function set for sets and shading groups. Members are whole nodes and plugs; components give kFailure. A shading
/// group takes surfaces alone, from the group that they were in before.
class OPENMAYA_EXPORT MFnSet : public MFnDependencyNode {
public:
    enum Restriction { kNone, kVerticesOnly, kEdgesOnly, kFacetsOnly, kEditPointsOnly, kRenderableOnly };
    ORVO_DECLARE_FN(MFnSet)
    /// kRenderableOnly makes a shading group; restrictions to components make sets that nothing here can be put into.
    MObject create(const MSelectionList& members, Restriction restriction = kNone, MStatus* ReturnStatus = NULL);
    MStatus getUnion(const MObject& withSet, MSelectionList& result);
    MStatus getUnion(const MObjectArray& setList, MSelectionList& result);
    MStatus getIntersection(const MObject& withSet, MSelectionList& result);
    MStatus getIntersection(const MObjectArray& setList, MSelectionList& result);
    MStatus clear();
    /// `flatten` lists the members of sets within in their stead.
    MStatus getMembers(MSelectionList& members, bool flatten) const;
    MStatus addMember(const MObject& obj);
    MStatus addMember(const MDagPath& obj, const MObject& component = MObject::kNullObj);
    MStatus addMember(const MPlug& plug);
    MStatus addMembers(const MSelectionList& list);
    MStatus removeMember(const MObject& obj);
    MStatus removeMember(const MDagPath& obj, const MObject& component);
    MStatus removeMember(const MPlug& plug);
    MStatus removeMembers(const MSelectionList& list);
    bool isMember(const MObject& object, MStatus* ReturnStatus = NULL) const;
    bool isMember(const MDagPath& object, const MObject& component = MObject::kNullObj,
                  MStatus* ReturnStatus = NULL) const;
    bool isMember(const MPlug& plug, MStatus* ReturnStatus = NULL) const;
    bool intersectsWith(const MObject& otherSet, MStatus* ReturnStatus = NULL) const;
    bool hasRestrictions(MStatus* ReturnStatus = NULL) const;
    Restriction restriction(MStatus* ReturnStatus = NULL) const;
    MString annotation(MStatus* ReturnStatus = NULL) const;
    MStatus setAnnotation(const MString& annotation);

protected:
    virtual const char* className() const;
};
