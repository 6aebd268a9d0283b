#pragma once

#include "api/fn/MeshAccess.h"

#include <maya/MMatrix.h>
#include <maya/MVector.h>

namespace host::api {

/// Brings normals to a space: they go by the transposed inverse of what positions go by.
class NormalSpace {
public:
    NormalSpace(const MObject& object, MSpace::Space space) {
        MMatrix m;
        status = matrixTo(object, space, m);
        own_ = space != MSpace::kWorld;
        if (!own_) matrix_ = m.inverse().transpose();
    }
    MVector operator()(const MVector& normal) const {
        if (own_) return normal;
        const MVector turned = normal * matrix_;
        const double length = turned.length();
        return length > 0 ? turned / length : turned;
    }
    MVector operator()(const mesh::Float3& n) const { return (*this)(MVector(n.x, n.y, n.z)); }

    MStatus status;

private:
    MMatrix matrix_;
    bool own_ = true;
};

} // namespace host::api
