#pragma once

#include <maya/MFnBase.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>
#include <maya/MUuid.h>

/// Function set for nodes.
class OPENMAYA_EXPORT MFnDependencyNode : public MFnBase {
public:
    enum MAttrClass { kLocalDynamicAttr, kNormalAttr, kExtensionAttr, kInvalidAttr };
    ORVO_DECLARE_FN(MFnDependencyNode)
    MObject create(const MTypeId& typeId, MStatus* ReturnStatus = NULL);
    MObject create(const MTypeId& typeId, const MString& name, MStatus* ReturnStatus = NULL);
    MObject create(const MString& type, MStatus* ReturnStatus = NULL);
    MObject create(const MString& type, const MString& name, MStatus* ReturnStatus = NULL);
    MTypeId typeId(MStatus* ReturnStatus = NULL) const;
    MString typeName(MStatus* ReturnStatus = NULL) const;
    MString name(MStatus* ReturnStatus = NULL) const;
    MString pluginName(MStatus* ReturnStatus = NULL) const;
    /// Renames the node and answers the name it got; a "#" at the end is replaced by the next free number.
    MString setName(const MString& name, bool createNamespace = false, MStatus* ReturnStatus = NULL);
    MString setName(const MString& name, MStatus* ReturnStatus);
    /// A node that has no identifier yet gets one, which is saved with it.
    MUuid uuid(MStatus* ReturnStatus = NULL) const;
    void setUuid(const MUuid& uuid, MStatus* ReturnStatus = NULL);
    MStatus getConnections(MPlugArray& array) const;
    unsigned int attributeCount(MStatus* ReturnStatus = NULL) const;
    MObject attribute(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MObject reorderedAttribute(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MObject attribute(const MString& attrName, MStatus* ReturnStatus = NULL) const;
    MFnDependencyNode::MAttrClass attributeClass(const MObject& attribute, MStatus* ReturnStatus = NULL) const;
    MStatus getAffectedAttributes(const MObject& attr, MObjectArray& affectedAttributes) const;
    MPlug findPlug(const MObject& attr, bool wantNetworkedPlug, MStatus* ReturnStatus = NULL) const;
    MPlug findPlug(const MString& attrName, bool wantNetworkedPlug, MStatus* ReturnStatus = NULL) const;
    MPlug findPlug(const MObject& attr, MStatus* ReturnStatus = NULL) const;
    MPlug findPlug(const MString& attrName, MStatus* ReturnStatus = NULL) const;
    MStatus addAttribute(const MObject& attr);
    MStatus addAttribute(const MObject& attr, MFnDependencyNode::MAttrClass type);
    MStatus removeAttribute(const MObject& attribute);
    MStatus removeAttribute(const MObject& attribute, MFnDependencyNode::MAttrClass type);
    MPxNode* userNode(MStatus* ReturnStatus = NULL) const;
    bool isFromReferencedFile(MStatus* ReturnStatus = NULL) const;
    bool isShared(MStatus* ReturnStatus = NULL) const;
    bool hasUniqueName(MStatus* ReturnStatus = NULL) const;
    MString parentNamespace(MStatus* ReturnStatus = NULL) const;
    bool isLocked(MStatus* ReturnStatus = NULL) const;
    MStatus setLocked(bool lock);
    static MString classification(const MString& nodeTypeName);
    bool isDefaultNode(MStatus* ReturnStatus = NULL) const;
    bool hasAttribute(const MString& attrName, MStatus* ReturnStatus = NULL) const;

protected:
    virtual const char* className() const;
};
