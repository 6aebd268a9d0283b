#include <maya/MItSelectionList.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

using namespace host;
using host::api::Access;

MItSelectionList::MItSelectionList(const MSelectionList& list, MFn::Type filter, MStatus* ReturnStatus)
    : list_(list), filter_(filter) {
    setStatus(ReturnStatus, reset().statusCode());
}

MItSelectionList::~MItSelectionList() = default;

void MItSelectionList::settle() {
    for (; place_ < list_.length(); ++place_) {
        if (filter_ == MFn::kInvalid) return;
        MObject node, component;
        MDagPath path;
        if (!list_.getDependNode(place_, node)) continue;
        if (node.hasFn(filter_)) return;
        if (list_.getDagPath(place_, path, component) && !component.isNull() && component.hasFn(filter_)) return;
    }
}

bool MItSelectionList::isDone(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return place_ >= list_.length();
}

MStatus MItSelectionList::next() {
    if (isDone()) return MStatus::kFailure;
    ++place_;
    settle();
    return MStatus::kSuccess;
}

MStatus MItSelectionList::reset() {
    place_ = 0;
    settle();
    return MStatus::kSuccess;
}

MStatus MItSelectionList::setFilter(MFn::Type filter) {
    filter_ = filter;
    return reset();
}

MStatus MItSelectionList::getDependNode(MObject& depNode) {
    return isDone() ? MStatus(MStatus::kFailure) : list_.getDependNode(place_, depNode);
}

MStatus MItSelectionList::getDagPath(MDagPath& dagPath, MObject& component) {
    return isDone() ? MStatus(MStatus::kFailure) : list_.getDagPath(place_, dagPath, component);
}

MStatus MItSelectionList::getDagPath(MDagPath& dagPath) { return getDagPath(dagPath, MObject::kNullObj); }

MStatus MItSelectionList::getPlug(MPlug& plug) {
    return isDone() ? MStatus(MStatus::kFailure) : list_.getPlug(place_, plug);
}

MStatus MItSelectionList::getStrings(MStringArray& array) {
    return isDone() ? MStatus(MStatus::kFailure) : list_.getSelectionStrings(place_, array);
}

MItSelectionList::selItemType MItSelectionList::itemType(MStatus* ReturnStatus) {
    MObject node;
    MPlug plug;
    const bool there = static_cast<bool>(getDependNode(node));
    setStatus(ReturnStatus, there ? MStatus::kSuccess : MStatus::kFailure);
    if (!there) return kUnknownItem;
    if (getPlug(plug)) return kPlugSelectionItem;
    return node.hasFn(MFn::kDagNode) ? kDagSelectionItem : kDNselectionItem;
}

bool MItSelectionList::hasComponents(MStatus* ReturnStatus) const {
    MDagPath path;
    MObject component;
    const bool there = place_ < list_.length();
    setStatus(ReturnStatus, there ? MStatus::kSuccess : MStatus::kFailure);
    return there && list_.getDagPath(place_, path, component) && !component.isNull();
}

const char* MItSelectionList::className() { return "MItSelectionList"; }
