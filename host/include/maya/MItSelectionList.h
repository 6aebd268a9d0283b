#pragma once

#include <maya/MDagPath.h>
#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MStringArray.h>

/// Visits the items of a selection list, or those with a function set of the filter's type. A component's type, such as
/// kMeshVertComponent, stands for the items that are such components.
class OPENMAYA_EXPORT MItSelectionList {
public:
    enum selItemType { kUnknownItem = -1, kDagSelectionItem, kAnimSelectionItem, kDNselectionItem, kPlugSelectionItem };
    MItSelectionList(const MSelectionList& list, MFn::Type = MFn::kInvalid, MStatus* ReturnStatus = NULL);
    virtual ~MItSelectionList();
    bool isDone(MStatus* ReturnStatus = NULL);
    MStatus next();
    MStatus reset();
    MStatus getDependNode(MObject& depNode);
    MStatus getDagPath(MDagPath& dagPath, MObject& component);
    MStatus getDagPath(MDagPath& dagPath);
    MStatus getPlug(MPlug& plug);
    MStatus getStrings(MStringArray& array);
    selItemType itemType(MStatus* ReturnStatus = NULL);
    /// Starts anew with another filter.
    MStatus setFilter(MFn::Type filter);
    bool hasComponents(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    void settle();
    MSelectionList list_;
    MFn::Type filter_;
    unsigned int place_ = 0;
};
