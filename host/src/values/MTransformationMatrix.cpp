#include <maya/MPoint.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include "values/RotationMath.h"
#include "values/StatusOut.h"
#include "values/TransformMath.h"

#include <algorithm>
#include <array>

namespace {

bool known(MSpace::Space space) { return space > MSpace::kInvalid && space < MSpace::kLast; }
bool before(MSpace::Space space) { return space == MSpace::kPreTransform || space == MSpace::kObject; }
bool whole(MSpace::Space space) { return space == MSpace::kPostTransform || space == MSpace::kWorld; }

bool known(MTransformationMatrix::RotationOrder order) {
    return order > MTransformationMatrix::kInvalid && order < MTransformationMatrix::kLast;
}

// The two enumerations list the orders alike, but this one begins with kInvalid.
MEulerRotation::RotationOrder eulerOrder(MTransformationMatrix::RotationOrder order) {
    return static_cast<MEulerRotation::RotationOrder>(order - 1);
}

MTransformationMatrix::RotationOrder matrixOrder(MEulerRotation::RotationOrder order) {
    return static_cast<MTransformationMatrix::RotationOrder>(order + 1);
}

MStatus statusFor(MSpace::Space space) { return known(space) ? MStatus::kSuccess : MStatus::kInvalidParameter; }

MMatrix scaleMatrix(const double scale[3], const double shear[3]) {
    return host::scaling(MVector(scale)) * host::shearing(MVector(shear));
}

// linear about a pivot, followed by the pivot's translation
MMatrix about(const double pivot[3], const MMatrix& linear, const double translation[3]) {
    MMatrix m(linear);
    const MVector moved = MVector(pivot) - MVector(pivot) * linear + MVector(translation);
    moved.get(m[3]);
    return m;
}

void copy(const double from[3], double to[3]) { std::copy(from, from + 3, to); }

} // namespace

const MTransformationMatrix MTransformationMatrix::identity;

MTransformationMatrix::MTransformationMatrix()
    : scale_{1.0, 1.0, 1.0}, shear_{}, translation_{}, scalePivot_{}, scalePivotTranslation_{}, rotatePivot_{},
      rotatePivotTranslation_{} {}

MTransformationMatrix::MTransformationMatrix(const MTransformationMatrix& src) = default;
MTransformationMatrix::MTransformationMatrix(const MMatrix& src) : MTransformationMatrix() { decompose(src); }
MTransformationMatrix& MTransformationMatrix::operator=(const MTransformationMatrix& src) = default;
MTransformationMatrix& MTransformationMatrix::operator=(const MMatrix& src) {
    return *this = MTransformationMatrix(src);
}

void MTransformationMatrix::decompose(const MMatrix& matrix) {
    const host::LinearParts parts = host::linearParts(matrix);
    copy(parts.scale, scale_);
    copy(parts.shear, shear_);
    rotation_ = host::rotationAngles(parts.rotation, rotation_.order);
    copy(matrix[3], translation_);
}

MMatrix MTransformationMatrix::linearMatrix() const {
    return scaleMatrix(scale_, shear_) * orientation_.asMatrix() * rotation_.asMatrix();
}

MMatrix MTransformationMatrix::scaleStage() const {
    return about(scalePivot_, scaleMatrix(scale_, shear_), scalePivotTranslation_);
}

MMatrix MTransformationMatrix::rotateStage() const {
    return about(rotatePivot_, orientation_.asMatrix() * rotation_.asMatrix(), rotatePivotTranslation_);
}

MMatrix MTransformationMatrix::asMatrix() const {
    MMatrix m = asRotateMatrix();
    for (int i = 0; i < 3; ++i) m[3][i] += translation_[i];
    return m;
}

MMatrix MTransformationMatrix::asMatrix(double percent) const {
    MTransformationMatrix part(*this);
    for (int i = 0; i < 3; ++i) {
        part.scale_[i] = 1.0 + percent * (scale_[i] - 1.0);
        part.shear_[i] *= percent;
        part.translation_[i] *= percent;
        part.scalePivotTranslation_[i] *= percent;
        part.rotatePivotTranslation_[i] *= percent;
    }
    part.rotation_ *= percent;
    part.orientation_ = slerp(MQuaternion::identity, orientation_, percent);
    return part.asMatrix();
}

MMatrix MTransformationMatrix::asMatrixInverse() const { return asMatrix().inverse(); }
MMatrix MTransformationMatrix::asScaleMatrix() const { return scaleStage(); }
MMatrix MTransformationMatrix::asRotateMatrix() const { return scaleStage() * rotateStage(); }

MStatus MTransformationMatrix::getScale(double scale[3], MSpace::Space space) const {
    copy(scale_, scale);
    return statusFor(space);
}

MStatus MTransformationMatrix::setScale(const double scale[3], MSpace::Space space) {
    if (known(space)) copy(scale, scale_);
    return statusFor(space);
}

MStatus MTransformationMatrix::addScale(const double scale[3], MSpace::Space space) {
    const double product[3]{scale_[0] * scale[0], scale_[1] * scale[1], scale_[2] * scale[2]};
    return setScale(product, space);
}

MQuaternion MTransformationMatrix::rotation() const { return rotation_.asQuaternion(); }

MTransformationMatrix& MTransformationMatrix::rotateTo(const MQuaternion& q) {
    rotation_ = q;
    return *this;
}

MTransformationMatrix& MTransformationMatrix::rotateBy(const MQuaternion& q, MSpace::Space space,
                                                       MStatus* ReturnStatus) {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    if (known(space)) rotation_ = before(space) ? q * rotation() : rotation() * q;
    return *this;
}

MEulerRotation MTransformationMatrix::eulerRotation() const { return rotation_; }

MTransformationMatrix& MTransformationMatrix::rotateTo(const MEulerRotation& e) {
    rotation_ = e;
    return *this;
}

MTransformationMatrix& MTransformationMatrix::rotateBy(const MEulerRotation& e, MSpace::Space space,
                                                       MStatus* ReturnStatus) {
    return rotateBy(e.asQuaternion(), space, ReturnStatus);
}

MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z, double& w) const {
    const MQuaternion q = rotation();
    x = q.x;
    y = q.y;
    z = q.z;
    w = q.w;
    return MStatus::kSuccess;
}

MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w) {
    rotateTo(MQuaternion(x, y, z, w));
    return MStatus::kSuccess;
}

MStatus MTransformationMatrix::addRotationQuaternion(double x, double y, double z, double w, MSpace::Space space) {
    MStatus status;
    rotateBy(MQuaternion(x, y, z, w), space, &status);
    return status;
}

MStatus MTransformationMatrix::getRotation(double rot[3], MTransformationMatrix::RotationOrder& order) const {
    order = matrixOrder(rotation_.order);
    return rotation_.asVector().get(rot);
}

MStatus MTransformationMatrix::setRotation(const double rot[3], MTransformationMatrix::RotationOrder order) {
    if (!known(order)) return MStatus::kInvalidParameter;
    rotation_ = MEulerRotation(MVector(rot), eulerOrder(order));
    return MStatus::kSuccess;
}

MStatus MTransformationMatrix::addRotation(const double rot[3], MTransformationMatrix::RotationOrder order,
                                           MSpace::Space space) {
    if (!known(order)) return MStatus::kInvalidParameter;
    MStatus status;
    rotateBy(MEulerRotation(MVector(rot), eulerOrder(order)), space, &status);
    return status;
}

MTransformationMatrix::RotationOrder MTransformationMatrix::rotationOrder(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, MStatus::kSuccess);
    return matrixOrder(rotation_.order);
}

MStatus MTransformationMatrix::reorderRotation(const RotationOrder& order) {
    if (!known(order)) return MStatus::kInvalidParameter;
    rotation_.reorderIt(eulerOrder(order));
    return MStatus::kSuccess;
}

MStatus MTransformationMatrix::setToRotationAxis(const MVector& axis, double rotation) {
    if (axis == MVector::zero) return MStatus::kInvalidParameter;
    rotateTo(MQuaternion(rotation, axis));
    return MStatus::kSuccess;
}

MQuaternion MTransformationMatrix::rotationOrientation() const { return orientation_; }

MTransformationMatrix& MTransformationMatrix::setRotationOrientation(const MQuaternion& q) {
    orientation_ = q;
    return *this;
}

MVector MTransformationMatrix::getTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    const MVector own(translation_);
    return before(space) ? own * linearMatrix().inverse() : own;
}

MStatus MTransformationMatrix::setTranslation(const MVector& vector, MSpace::Space space) {
    if (known(space)) (before(space) ? vector * linearMatrix() : vector).get(translation_);
    return statusFor(space);
}

MStatus MTransformationMatrix::addTranslation(const MVector& vector, MSpace::Space space) {
    if (known(space)) (MVector(translation_) + (before(space) ? vector * linearMatrix() : vector)).get(translation_);
    return statusFor(space);
}

MStatus MTransformationMatrix::setShear(const double shear[3], MSpace::Space space) {
    if (known(space)) copy(shear, shear_);
    return statusFor(space);
}

MStatus MTransformationMatrix::getShear(double shear[3], MSpace::Space space) const {
    copy(shear_, shear);
    return statusFor(space);
}

MStatus MTransformationMatrix::addShear(const double shear[3], MSpace::Space space) {
    const double sum[3]{shear_[0] + shear[0], shear_[1] + shear_[2] * shear[0] + shear[1], shear_[2] + shear[2]};
    return setShear(sum, space);
}

MPoint MTransformationMatrix::scalePivot(MSpace::Space space, MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    const MPoint own{MVector(scalePivot_)};
    return whole(space) ? own * asMatrix() : own;
}

MStatus MTransformationMatrix::setScalePivot(const MPoint& point, MSpace::Space space, bool balance) {
    if (!known(space)) return MStatus::kInvalidParameter;
    const MVector pivot(whole(space) ? point * asMatrixInverse() : point);
    if (balance)
        host::balancedTranslation(MVector(scalePivot_), pivot, scaleMatrix(scale_, shear_),
                                  MVector(scalePivotTranslation_))
            .get(scalePivotTranslation_);
    return pivot.get(scalePivot_);
}

MVector MTransformationMatrix::scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    return MVector(scalePivotTranslation_);
}

MStatus MTransformationMatrix::setScalePivotTranslation(const MVector& vector, MSpace::Space space) {
    return known(space) ? vector.get(scalePivotTranslation_) : statusFor(space);
}

MPoint MTransformationMatrix::rotatePivot(MSpace::Space space, MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    const MVector own(rotatePivot_);
    return whole(space) ? own + MVector(rotatePivotTranslation_) + MVector(translation_) : own;
}

MStatus MTransformationMatrix::setRotatePivot(const MPoint& point, MSpace::Space space, bool balance) {
    if (!known(space)) return MStatus::kInvalidParameter;
    const MVector given(point);
    const MVector pivot = whole(space) ? given - MVector(rotatePivotTranslation_) - MVector(translation_) : given;
    if (balance)
        host::balancedTranslation(MVector(rotatePivot_), pivot, orientation_.asMatrix() * rotation_.asMatrix(),
                                  MVector(rotatePivotTranslation_))
            .get(rotatePivotTranslation_);
    return pivot.get(rotatePivot_);
}

MVector MTransformationMatrix::rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, statusFor(space).statusCode());
    return MVector(rotatePivotTranslation_);
}

MStatus MTransformationMatrix::setRotatePivotTranslation(const MVector& vector, MSpace::Space space) {
    return known(space) ? vector.get(rotatePivotTranslation_) : statusFor(space);
}

bool MTransformationMatrix::isEquivalent(const MTransformationMatrix& other, double tol) const {
    return asMatrix().isEquivalent(other.asMatrix(), tol);
}

bool MTransformationMatrix::operator==(const MTransformationMatrix& other) const {
    return asMatrix() == other.asMatrix();
}

bool MTransformationMatrix::operator!=(const MTransformationMatrix& other) const { return !(*this == other); }

MStatus MTransformationMatrix::getRotation(double rot[3], MTransformationMatrix::RotationOrder& order,
                                           MSpace::Space space) const {
    return known(space) ? getRotation(rot, order) : statusFor(space);
}

MStatus MTransformationMatrix::setRotation(const double rot[3], MTransformationMatrix::RotationOrder order,
                                           MSpace::Space space) {
    return known(space) ? setRotation(rot, order) : statusFor(space);
}

MStatus MTransformationMatrix::getRotationQuaternion(double& x, double& y, double& z, double& w,
                                                     MSpace::Space space) const {
    return known(space) ? getRotationQuaternion(x, y, z, w) : statusFor(space);
}

MStatus MTransformationMatrix::setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space) {
    return known(space) ? setRotationQuaternion(x, y, z, w) : statusFor(space);
}

MVector MTransformationMatrix::translation(MSpace::Space space, MStatus* ReturnStatus) const {
    return getTranslation(space, ReturnStatus);
}

const char* MTransformationMatrix::className() { return "MTransformationMatrix"; }
