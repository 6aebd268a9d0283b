#pragma once

#include <maya/MFnGeometryData.h>

/// Function set for mesh data: what attributes of the type MFnData::kMesh hold.
class OPENMAYA_EXPORT MFnMeshData : public MFnGeometryData {
public:
    ORVO_DECLARE_FN(MFnMeshData)
    /// Makes data without geometry; MFnMesh::create() with it as owner fills it.
    MObject create(MStatus* ReturnStatus = NULL);

protected:
    virtual const char* className() const;
};
