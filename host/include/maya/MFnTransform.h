#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MSpace.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

/// Function set for transform nodes.
///
/// Lengths are in centimetres, angles in radians. kTransform and kPostTransform are the parent's space, kWorld is the
/// scene's, kPreTransform and kObject are the node's own, as in MTransformationMatrix. kInvalid, kLast and invalid
/// rotation orders give kInvalidParameter. Setters give kFailure where an attribute that has to change is locked or
/// connected, and change nothing then.
class OPENMAYA_EXPORT MFnTransform : public MFnDagNode {
public:
    ORVO_DECLARE_FN(MFnTransform)
    MFnTransform(const MDagPath& object, MStatus* ReturnStatus = NULL);
    virtual ~MFnTransform();
    virtual MStatus setObject(const MDagPath& objectPath) override;
    virtual MStatus setObject(MObject& object) override;
    virtual MStatus setObject(const MObject& object) override;
    /// Makes a transform below another one, or the world.
    MObject create(MObject parent = MObject::kNullObj, MStatus* ReturnStatus = NULL);

    MTransformationMatrix transformation(MStatus* ReturnStatus = NULL) const;
    MStatus set(const MTransformationMatrix& transform);

    MStatus getScale(double scale[3]) const;
    MStatus setScale(const double scale[3]);
    /// Multiplies the scale.
    MStatus scaleBy(const double scale[3]);
    /// The shears xy, xz and yz.
    MStatus getShear(double shear[3]) const;
    MStatus setShear(const double shear[3]);
    /// Multiplies the shear matrix by another one from the right.
    MStatus shearBy(const double shear[3]);

    /// @name Rotation
    /// Without the rotate axis. In kWorld it includes that of the parents.
    /// @{
    MStatus getRotation(MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform) const;
    /// Setting keeps the order, except by angles, which bring their own.
    MStatus setRotation(const MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform);
    MStatus rotateBy(const MQuaternion& quaternion, MSpace::Space space = MSpace::kTransform);
    MStatus getRotation(MEulerRotation& rotation) const;
    MStatus setRotation(const MEulerRotation& rotation);
    MStatus rotateBy(const MEulerRotation& rotation, MSpace::Space space = MSpace::kTransform);
    MStatus getRotationQuaternion(double& x, double& y, double& z, double& w,
                                  MSpace::Space space = MSpace::kTransform) const;
    MStatus setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space = MSpace::kTransform);
    MStatus rotateByQuaternion(double x, double y, double z, double w, MSpace::Space space = MSpace::kTransform);
    MStatus getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order) const;
    MStatus setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order);
    MStatus rotateBy(const double rotation[3], MTransformationMatrix::RotationOrder order,
                     MSpace::Space space = MSpace::kTransform);
    MStatus getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order, MSpace::Space space) const;
    MStatus setRotation(const double rotation[3], MTransformationMatrix::RotationOrder order, MSpace::Space space);
    MTransformationMatrix::RotationOrder rotationOrder(MStatus* ReturnStatus = NULL) const;
    /// With `reorder` the angles change, so that the rotation stays; else the angles stay.
    MStatus setRotationOrder(MTransformationMatrix::RotationOrder order, bool reorder);
    /// The rotate axis.
    MQuaternion rotateOrientation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    /// With `balance` the rotation changes too, so that both together stay.
    MStatus setRotateOrientation(const MQuaternion& quat, MSpace::Space space, bool balance);
    /// @}

    /// @name Translation
    /// In kWorld it is the place of the translation among the parents.
    /// @{
    MVector getTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setTranslation(const MVector& vector, MSpace::Space space);
    MStatus translateBy(const MVector& vector, MSpace::Space space);
    MVector translation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    /// @}

    /// @name Pivots
    /// As stored; in kPostTransform the place that the transform takes them to, in kWorld that place in the scene. With
    /// `balance` the pivot's translation changes too, so that the matrix stays. The pivots' translations are as stored,
    /// in kWorld turned and scaled as by the parents.
    /// @{
    MPoint scalePivot(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setScalePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setScalePivotTranslation(const MVector& vector, MSpace::Space space);
    MPoint rotatePivot(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setRotatePivot(const MPoint& point, MSpace::Space space, bool balance);
    MVector rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus = NULL) const;
    MStatus setRotatePivotTranslation(const MVector& vector, MSpace::Space space);
    /// @}

protected:
    virtual const char* className() const;
};
