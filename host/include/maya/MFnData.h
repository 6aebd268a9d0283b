#pragma once

#include <maya/MFnBase.h>

/// Function set for data that plugs hold.
class OPENMAYA_EXPORT MFnData : public MFnBase {
public:
    enum Type {
        kInvalid,
        kNumeric,
        kPlugin,
        kPluginGeometry,
        kString,
        kMatrix,
        kStringArray,
        kDoubleArray,
        kFloatArray,
        kIntArray,
        kPointArray,
        kVectorArray,
        kMatrixArray,
        kComponentList,
        kMesh,
        kLattice,
        kNurbsCurve,
        kNurbsSurface,
        kSphere,
        kDynArrayAttrs,
        kDynSweptGeometry,
        kSubdSurface,
        kNObject,
        kNId,
        kAny,
        kLast
    };
    ORVO_DECLARE_FN(MFnData)

protected:
    virtual const char* className() const;
};
