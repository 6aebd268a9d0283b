#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <vector>

/// A list of nodes, plugs and components.
class OPENMAYA_EXPORT MSelectionList {
public:
    enum MergeStrategy { kMergeNormal, kXORWithList, kRemoveFromList };
    MSelectionList();
    MSelectionList(const MSelectionList& srcList);
    virtual ~MSelectionList();
    MStatus clear();
    bool isEmpty(MStatus* ReturnStatus = NULL) const;
    unsigned int length(MStatus* ReturnStatus = NULL) const;
    MStatus getDependNode(unsigned int index, MObject& depNode) const;
    MStatus getDagPath(unsigned int index, MDagPath& dagPath, MObject& component = MObject::kNullObj) const;
    MStatus getPlug(unsigned int index, MPlug& plug) const;
    MStatus add(const MObject& object, const bool mergeWithExisting = false);
    MStatus add(const MDagPath& object, const MObject& component = MObject::kNullObj,
                const bool mergeWithExisting = false);
    /// Adds what a name, path, plug or pattern with * and ? stands for; fails when that is nothing, or when a name
    /// without pattern stands for several nodes.
    MStatus add(const MString& matchString, const bool searchChildNamespacesToo = false);
    MStatus add(const MPlug& plug, const bool mergeWithExisting = false);
    MStatus remove(unsigned int index);
    MStatus replace(unsigned int index, const MObject& item);
    MStatus replace(unsigned int index, const MDagPath& item, const MObject& component = MObject::kNullObj);
    MStatus replace(unsigned int index, const MPlug& plug);
    bool hasItem(const MObject& item, MStatus* ReturnStatus = NULL) const;
    bool hasItem(const MDagPath& item, const MObject& component = MObject::kNullObj,
                 MStatus* ReturnStatus = NULL) const;
    /// Whether the list has some of the components.
    bool hasItemPartly(const MDagPath& item, const MObject& component, MStatus* ReturnStatus = NULL) const;
    bool hasItem(const MPlug& plug, MStatus* ReturnStatus = NULL) const;
    MSelectionList& operator=(const MSelectionList& other);
    MStatus toggle(const MDagPath& item, const MObject& component = MObject::kNullObj);
    MStatus merge(const MDagPath& item, const MObject& component = MObject::kNullObj,
                  const MergeStrategy strategy = kMergeNormal);
    MStatus merge(const MSelectionList& other, const MergeStrategy strategy = kMergeNormal);
    MStatus getSelectionStrings(MStringArray& array) const;
    MStatus getSelectionStrings(unsigned int index, MStringArray& array) const;
    static const char* className();

private:
    friend struct host::api::Access;
    struct Item {
        MObject node;
        MPlug plug;        ///< null for whole nodes and components
        MObject component; ///< null for whole nodes and plugs
    };
    bool same(const Item& a, const Item& b) const; ///< but for which components
    MStatus append(Item item, bool merge);
    void combine(const Item& item, MergeStrategy strategy);
    std::vector<Item> items_;
};
