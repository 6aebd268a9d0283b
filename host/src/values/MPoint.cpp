#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include "base/NumberText.h"
#include "values/PointMath.h"

const MPoint MPoint::origin;

MPoint MPoint::operator*(const MMatrix& right) const { return host::rowTimes(*this, right); }
MPoint& MPoint::operator*=(const MMatrix& right) { return *this = host::rowTimes(*this, right); }
MPoint& MPoint::cartesianize() { return host::toCartesian(*this); }
MPoint& MPoint::rationalize() { return host::toRational(*this); }
MPoint& MPoint::homogenize() { return host::toHomogeneous(*this); }
const char* MPoint::className() { return "MPoint"; }

MPoint operator*(double scale, const MPoint& p) { return p * scale; }
MPoint operator*(const MMatrix& left, const MPoint& right) { return host::timesColumn(left, right); }

std::ostream& operator<<(std::ostream& os, const MPoint& p) {
    const double values[]{p.x, p.y, p.z, p.w};
    return host::writeList(os, values, 4, '(', ')');
}
