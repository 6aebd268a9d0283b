#pragma once

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include <vector>

/// Walks all nodes of the scene that have a function set of the filter's type.
class OPENMAYA_EXPORT MItDependencyNodes {
public:
    MItDependencyNodes(MFn::Type filter = MFn::kInvalid, MStatus* ReturnStatus = NULL);
    MStatus reset(MFn::Type filter = MFn::kInvalid);
    MObject thisNode(MStatus* ReturnStatus = NULL) const;
    MStatus next();
    bool isDone(MStatus* ReturnStatus = NULL) const;
    MObject item(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    std::vector<MObject> nodes_;
    std::size_t at_ = 0;
};
