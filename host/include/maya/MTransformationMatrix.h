#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

class MPoint;
class MVector;

#define MTransformationMatrix_kTol 1.0e-10

/// A transform node's matrix by its components. For row vectors it is the product, from left to right,
///
///     Sp^-1  S  Sh  Sp  St   Rp^-1  Ro  R  Rp  Rt   T
///
/// of scale pivot Sp, scale S, shear Sh, scale pivot translation St, rotate pivot Rp, rotation orientation Ro, rotation
/// R, rotate pivot translation Rt and translation T. The shears xy, xz and yz stand in Sh at [1][0], [2][0] and [2][1].
/// Angles are in radians.
///
/// Spaces: kTransform, kPostTransform and kWorld are the space that the matrix leads to, kPreTransform and kObject the
/// one that it leads from. Scale and shear do not depend on the space. kInvalid and kLast give kInvalidParameter.
class OPENMAYA_EXPORT MTransformationMatrix {
public:
    enum RotationOrder { kInvalid, kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX, kLast };

    /// The identity, with the order kXYZ.
    MTransformationMatrix();
    MTransformationMatrix(const MTransformationMatrix& src);
    /// Takes an affine matrix apart into S, Sh, R and T; pivots, their translations and Ro are then 0. A mirroring
    /// matrix gets three negative scales.
    MTransformationMatrix(const MMatrix& src);
    MTransformationMatrix& operator=(const MTransformationMatrix& src);
    MTransformationMatrix& operator=(const MMatrix& src);

    MMatrix asMatrix() const;
    /// The matrix of that part of every component: 0 gives the identity, 1 the whole.
    MMatrix asMatrix(double percent) const;
    MMatrix asMatrixInverse() const;
    /// From before the transform to after St.
    MMatrix asScaleMatrix() const;
    /// From before the transform to after Rt.
    MMatrix asRotateMatrix() const;

    MStatus getScale(double scale[3], MSpace::Space space) const;
    MStatus setScale(const double scale[3], MSpace::Space space);
    /// Multiplies the scale.
    MStatus addScale(const double scale[3], MSpace::Space space);

    /// R alone.
    MQuaternion rotation() const;
    MTransformationMatrix& rotateTo(const MQuaternion& q);
    /// In kTransform, kPostTransform and kWorld the new rotation comes after R, else before it.
    MTransformationMatrix& rotateBy(const MQuaternion& q, MSpace::Space space, MStatus* ReturnStatus = NULL);
    MEulerRotation eulerRotation() const;
    /// Takes over the order too.
    MTransformationMatrix& rotateTo(const MEulerRotation& e);
    MTransformationMatrix& rotateBy(const MEulerRotation& e, MSpace::Space space, MStatus* ReturnStatus = NULL);
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w) const;
    MStatus setRotationQuaternion(double x, double y, double z, double w);
    MStatus addRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
    MStatus getRotation(double rot[3], MTransformationMatrix::RotationOrder& order) const;
    /// kInvalidParameter for the orders kInvalid and kLast, here and below.
    MStatus setRotation(const double rot[3], MTransformationMatrix::RotationOrder order);
    MStatus addRotation(const double rot[3], MTransformationMatrix::RotationOrder order, MSpace::Space space);
    MTransformationMatrix::RotationOrder rotationOrder(MStatus* ReturnStatus = NULL) const;
    /// Changes the order and the angles; the rotation stays.
    MStatus reorderRotation(const RotationOrder& order);
    MStatus setToRotationAxis(const MVector& axis, double rotation);
    MQuaternion rotationOrientation() const;
    MTransformationMatrix& setRotationOrientation(const MQuaternion& q);

    /// T in centimetres. In kPreTransform and kObject along the axes that scale, shear and rotation lead to.
    MVector getTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setTranslation(const MVector& vector, MSpace::Space space);
    MStatus addTranslation(const MVector& vector, MSpace::Space space);

    /// The shears xy, xz and yz.
    MStatus setShear(const double shear[3], MSpace::Space space);
    MStatus getShear(double shear[3], MSpace::Space space) const;
    /// Multiplies the shear matrix by another one from the right.
    MStatus addShear(const double shear[3], MSpace::Space space);

    /// Pivots are as stored, or in kPostTransform and kWorld the place that the whole matrix takes them to. With
    /// `balance` the pivot's translation is changed too, so that the matrix stays.
    MPoint scalePivot(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setScalePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setScalePivotTranslation(const MVector& vector, MSpace::Space space);
    MPoint rotatePivot(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setRotatePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setRotatePivotTranslation(const MVector& vector, MSpace::Space space);

    /// Whether the whole matrices agree, each element within the tolerance.
    bool isEquivalent(const MTransformationMatrix& other, double tol = MTransformationMatrix_kTol) const;
    bool operator==(const MTransformationMatrix& other) const;
    bool operator!=(const MTransformationMatrix& other) const;

    /// As the functions without a space, which has no influence on them.
    MStatus getRotation(double rot[3], MTransformationMatrix::RotationOrder& order, MSpace::Space space) const;
    MStatus setRotation(const double rot[3], MTransformationMatrix::RotationOrder order, MSpace::Space space);
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w, MSpace::Space space) const;
    MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space);
    MVector translation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;

    static const char* className();

    static const MTransformationMatrix identity;

private:
    void decompose(const MMatrix& matrix);
    MMatrix linearMatrix() const;
    MMatrix scaleStage() const;
    MMatrix rotateStage() const;

    // Plain numbers, for MVector and MPoint refer to this class.
    double scale_[3];
    double shear_[3];
    MEulerRotation rotation_;
    MQuaternion orientation_;
    double translation_[3];
    double scalePivot_[3];
    double scalePivotTranslation_[3];
    double rotatePivot_[3];
    double rotatePivotTranslation_[3];
};

// Last, for MVector needs this class declared.
#include <maya/MVector.h>
