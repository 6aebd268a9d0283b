#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include "base/NumberText.h"
#include "values/PointMath.h"

const MVector MVector::zero;
const MVector MVector::one(1, 1, 1);
const MVector MVector::xAxis(1, 0, 0);
const MVector MVector::yAxis(0, 1, 0);
const MVector MVector::zAxis(0, 0, 1);
const MVector MVector::xNegAxis(-1, 0, 0);
const MVector MVector::yNegAxis(0, -1, 0);
const MVector MVector::zNegAxis(0, 0, -1);

MVector MVector::operator*(const MMatrix& right) const { return host::directionTimes(*this, right); }
MVector& MVector::operator*=(const MMatrix& right) { return *this = host::directionTimes(*this, right); }

MVector MVector::rotateBy(double x, double y, double z, double w) const { return rotateBy(MQuaternion(x, y, z, w)); }

MVector MVector::rotateBy(const double rotXYZ[3], MTransformationMatrix::RotationOrder order) const {
    MTransformationMatrix rotation;
    if (!rotation.setRotation(rotXYZ, order)) return *this;
    return rotateBy(rotation.eulerRotation());
}

MVector MVector::rotateBy(MVector::Axis axis, const double angle) const {
    switch (axis) {
    case kXaxis: return rotateBy(MQuaternion(angle, xAxis));
    case kYaxis: return rotateBy(MQuaternion(angle, yAxis));
    case kZaxis: return rotateBy(MQuaternion(angle, zAxis));
    case kWaxis: break;
    }
    return *this;
}

MVector MVector::rotateBy(const MQuaternion& q) const { return *this * q.asMatrix(); }
MVector MVector::rotateBy(const MEulerRotation& e) const { return *this * e.asMatrix(); }
MQuaternion MVector::rotateTo(const MVector& other) const { return MQuaternion(*this, other); }

double MVector::angle(const MVector& other) const { return host::angleBetween(*this, other); }
bool MVector::isParallel(const MVector& other, double tol) const { return host::parallel(*this, other, tol); }

MVector MVector::transformAsNormal(const MMatrix& matrix) const {
    return host::directionTimes(*this, matrix.inverse().transpose());
}

const char* MVector::className() { return "MVector"; }

MVector operator*(const MMatrix& left, const MVector& right) { return host::timesDirection(left, right); }
MVector operator*(int scalar, const MVector& other) { return other * static_cast<double>(scalar); }
MVector operator*(short scalar, const MVector& other) { return other * static_cast<double>(scalar); }
MVector operator*(unsigned int scalar, const MVector& other) { return other * static_cast<double>(scalar); }
MVector operator*(unsigned short scalar, const MVector& other) { return other * static_cast<double>(scalar); }
MVector operator*(float scalar, const MVector& other) { return other * static_cast<double>(scalar); }
MVector operator*(double scalar, const MVector& other) { return other * static_cast<double>(scalar); }

std::ostream& operator<<(std::ostream& os, const MVector& v) {
    const double values[]{v.x, v.y, v.z};
    return host::writeList(os, values, 3, '(', ')');
}
