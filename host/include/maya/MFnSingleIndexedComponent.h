#pragma once

#include <maya/MFnComponent.h>
#include <maya/MIntArray.h>

/// Function set for components with one index. Each index is there once, in ascending order.
class OPENMAYA_EXPORT MFnSingleIndexedComponent : public MFnComponent {
public:
    ORVO_DECLARE_FN(MFnSingleIndexedComponent)
    /// kMeshVertComponent, kMeshEdgeComponent, kMeshPolygonComponent or kMeshMapComponent; no other is known.
    MObject create(MFn::Type compType, MStatus* ReturnStatus = NULL);
    MStatus addElement(int element);
    MStatus addElements(MIntArray& elements);
    int elementMax(MStatus* ReturnStatus = NULL) const;
    int element(int index, MStatus* ReturnStatus = NULL) const;
    MStatus getElements(MIntArray& elements) const;
    /// Makes it the first `numElements` ones, standing for all that the mesh has.
    MStatus setCompleteData(int numElements);
    MStatus getCompleteData(int& numElements) const;

protected:
    virtual const char* className() const;
};
