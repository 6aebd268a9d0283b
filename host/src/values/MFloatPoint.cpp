#include <maya/MFloatMatrix.h>
#include <maya/MFloatPoint.h>

#include "base/NumberText.h"
#include "values/PointMath.h"

const MFloatPoint MFloatPoint::origin;

MFloatPoint MFloatPoint::operator*(const MFloatMatrix& right) const { return host::rowTimes(*this, right); }
MFloatPoint& MFloatPoint::operator*=(const MFloatMatrix& right) { return *this = host::rowTimes(*this, right); }
MFloatPoint& MFloatPoint::cartesianize() { return host::toCartesian(*this); }
MFloatPoint& MFloatPoint::rationalize() { return host::toRational(*this); }
MFloatPoint& MFloatPoint::homogenize() { return host::toHomogeneous(*this); }
const char* MFloatPoint::className() { return "MFloatPoint"; }

MFloatPoint operator*(float scale, const MFloatPoint& p) { return p * scale; }
MFloatPoint operator*(const MFloatMatrix& left, const MFloatPoint& right) { return host::timesColumn(left, right); }

std::ostream& operator<<(std::ostream& os, const MFloatPoint& p) {
    const float values[]{p.x, p.y, p.z, p.w};
    return host::writeList(os, values, 4, '(', ')');
}
