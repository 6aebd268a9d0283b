#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>

#include "base/NumberText.h"
#include "values/PointMath.h"

const MFloatVector MFloatVector::zero;
const MFloatVector MFloatVector::one(1, 1, 1);
const MFloatVector MFloatVector::xAxis(1, 0, 0);
const MFloatVector MFloatVector::yAxis(0, 1, 0);
const MFloatVector MFloatVector::zAxis(0, 0, 1);
const MFloatVector MFloatVector::xNegAxis(-1, 0, 0);
const MFloatVector MFloatVector::yNegAxis(0, -1, 0);
const MFloatVector MFloatVector::zNegAxis(0, 0, -1);

MFloatVector MFloatVector::operator*(const MFloatMatrix& right) const { return host::directionTimes(*this, right); }
MFloatVector& MFloatVector::operator*=(const MFloatMatrix& right) { return *this = host::directionTimes(*this, right); }

bool MFloatVector::isEquivalent(const MFloatVector& other, float tol) const { return (*this - other).length() <= tol; }

float MFloatVector::angle(const MFloatVector& other) const { return host::angleBetween(*this, other); }
bool MFloatVector::isParallel(const MFloatVector& other, float tol) const { return host::parallel(*this, other, tol); }

MFloatVector MFloatVector::transformAsNormal(const MFloatMatrix& matrix) const {
    return host::directionTimes(*this, matrix.inverse().transpose());
}

const char* MFloatVector::className() { return "MFloatVector"; }

MFloatVector operator*(const MFloatMatrix& left, const MFloatVector& right) {
    return host::timesDirection(left, right);
}
MFloatVector operator*(int scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }
MFloatVector operator*(short scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }
MFloatVector operator*(unsigned int scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }
MFloatVector operator*(unsigned short scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }
MFloatVector operator*(float scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }
MFloatVector operator*(double scalar, const MFloatVector& other) { return other * static_cast<float>(scalar); }

std::ostream& operator<<(std::ostream& os, const MFloatVector& v) {
    const float values[]{v.x, v.y, v.z};
    return host::writeList(os, values, 3, '(', ')');
}
