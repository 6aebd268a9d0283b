#pragma once

#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

/// A type of nodes: its name, classification and attributes. One that does not exist has an empty name and id 0.
class OPENMAYA_EXPORT MNodeClass {
public:
    MNodeClass(const MString& nodeClassName);
    MNodeClass(const MTypeId& nodeTypeId);
    MTypeId typeId() const;
    MString typeName() const;
    MString classification() const;
    MStatus addToClassification(const MString& str);
    MStatus removeFromClassification(const MString& str);
    MString pluginName(MStatus* ReturnStatus = NULL) const;
    MStatus getAttributes(MObjectArray& attr) const;
    unsigned int attributeCount(MStatus* ReturnStatus = NULL) const;
    MObject attribute(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MObject attribute(const MString& attrName, MStatus* ReturnStatus = NULL) const;
    bool hasAttribute(const MString& attrName, MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    MString name_;
};
