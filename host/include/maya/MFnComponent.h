#pragma once

#include <maya/MFnBase.h>

/// Function set for components of a mesh: some of its vertices, edges, polygons or texture coordinates.
class OPENMAYA_EXPORT MFnComponent : public MFnBase {
public:
    ORVO_DECLARE_FN(MFnComponent)
    int elementCount(MStatus* ReturnStatus = NULL) const;
    MFn::Type componentType(MStatus* ReturnStatus = NULL) const;
    bool isEmpty(MStatus* ReturnStatus = NULL) const;
    bool isEqual(MObject& other, MStatus* ReturnStatus = NULL) const;
    bool isComplete(MStatus* ReturnStatus = NULL) const;
    MStatus setComplete(bool complete);

protected:
    virtual const char* className() const;
};
