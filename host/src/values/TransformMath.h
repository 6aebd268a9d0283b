#pragma once

#include <maya/MMatrix.h>
#include <maya/MVector.h>

namespace host {

inline MMatrix scaling(const MVector& scale) {
    MMatrix m;
    m(0, 0) = scale.x;
    m(1, 1) = scale.y;
    m(2, 2) = scale.z;
    return m;
}

/// Shear of xy, xz and yz.
inline MMatrix shearing(const MVector& shear) {
    MMatrix m;
    m(1, 0) = shear.x;
    m(2, 0) = shear.y;
    m(2, 1) = shear.z;
    return m;
}

/// The translation behind a linear step about `pivot` that keeps the whole the same when it is made about `moved`.
inline MVector balancedTranslation(const MVector& pivot, const MVector& moved, const MMatrix& linear,
                                   const MVector& translation) {
    const MVector step = pivot - moved;
    return translation + step - step * linear;
}

} // namespace host
