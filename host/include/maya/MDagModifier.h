#pragma once

#include <maya/MDGModifier.h>

/// The same for the DAG: nodes with a place, and moves of nodes.
class OPENMAYA_EXPORT MDagModifier : public MDGModifier {
public:
    MDagModifier();
    virtual ~MDagModifier();
    MObject createNode(const MTypeId& typeId, const MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MObject createNode(const MString& type, const MObject& parent = MObject::kNullObj, MStatus* ReturnStatus = NULL);
    MStatus reparentNode(const MObject& node, const MObject& newParent = MObject::kNullObj);
    static const char* className();
};
