#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>

namespace host {

/// The linear part of a matrix as the product scale * shear * rotation, for row vectors.
struct LinearParts {
    double scale[3];
    double shear[3]; ///< xy, xz, yz: elements [1][0], [2][0] and [2][1] of the shear matrix
    MMatrix rotation;
};

/// Takes the upper left 3 by 3 part apart by Gram-Schmidt orthogonalisation of its rows. A mirroring matrix gives three
/// negative scales. Where the rows are not independent, the rotation's missing axes are chosen across the others, with
/// scale 0.
LinearParts linearParts(const MMatrix& m);

/// The angles of a matrix without scale, shear and mirroring.
MEulerRotation rotationAngles(const MMatrix& rotation, MEulerRotation::RotationOrder order);

} // namespace host
