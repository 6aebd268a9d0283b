#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

#include <functional>
#include <memory>

/// Gathers changes of the dependency graph, to be done and taken back together: the usual heart of an undoable command.
class OPENMAYA_EXPORT MDGModifier {
public:
    MDGModifier();
    virtual ~MDGModifier();
    /// Creates the node at once, so that later operations can name it; undoIt() takes it out of the scene.
    MObject createNode(const MTypeId& typeId, MStatus* ReturnStatus = NULL);
    MObject createNode(const MString& type, MStatus* ReturnStatus = NULL);
    MStatus deleteNode(const MObject& node);
    MStatus renameNode(const MObject& node, const MString& newName);
    MStatus setNodeLockState(const MObject& node, bool newState);
    MStatus connect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                    const MObject& destAttr);
    MStatus disconnect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                       const MObject& destAttr);
    MStatus connect(const MPlug& source, const MPlug& dest);
    MStatus disconnect(const MPlug& source, const MPlug& dest);
    MStatus addAttribute(const MObject& node, const MObject& attribute);
    MStatus addAttribute(const MObject& node, const MObject& attribute, MFnDependencyNode::MAttrClass type);
    MStatus removeAttribute(const MObject& node, const MObject& attribute);
    MStatus removeAttribute(const MObject& node, const MObject& attribute, MFnDependencyNode::MAttrClass type);
    MStatus commandToExecute(const MString& command);
    MStatus newPlugValue(const MPlug& plug, MObject& plugValue);
    MStatus newPlugValueBool(const MPlug& plug, bool plugValue);
    MStatus newPlugValueChar(const MPlug& plug, char plugValue);
    MStatus newPlugValueDouble(const MPlug& plug, double plugValue);
    MStatus newPlugValueFloat(const MPlug& plug, float plugValue);
    MStatus newPlugValueInt(const MPlug& plug, int plugValue);
    MStatus newPlugValueInt64(const MPlug& plug, MInt64 plugValue);
    MStatus newPlugValueMAngle(const MPlug& plug, const MAngle& plugValue);
    MStatus newPlugValueMDistance(const MPlug& plug, const MDistance& plugValue);
    MStatus newPlugValueMTime(const MPlug& plug, const MTime& plugValue);
    MStatus newPlugValueShort(const MPlug& plug, short plugValue);
    MStatus newPlugValueString(const MPlug& plug, const MString& plugValue);
    MStatus removeMultiInstance(const MPlug& plug, bool breakConnections);
    /// Does what was gathered since the last doIt(); after undoIt(), does everything again.
    MStatus doIt();
    MStatus undoIt();
    static const char* className();

protected:
    MStatus gather(std::function<void()> step);
    struct Steps;
    std::unique_ptr<Steps> steps_;

private:
    MDGModifier(const MDGModifier&) = delete;
    MDGModifier& operator=(const MDGModifier&) = delete;
};
