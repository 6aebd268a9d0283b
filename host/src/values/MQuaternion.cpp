#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include "base/NumberText.h"
#include "values/RotationMath.h"

#include <ImathMatrixAlgo.h>
#include <ImathQuat.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

Imath::Quatd toLibrary(const MQuaternion& q) { return Imath::Quatd(q.w, q.x, q.y, q.z); }
MQuaternion fromLibrary(const Imath::Quatd& q) { return MQuaternion(q.v.x, q.v.y, q.v.z, q.r); }

double dot(const MQuaternion& a, const MQuaternion& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }

} // namespace

const MQuaternion MQuaternion::identity;

MQuaternion::MQuaternion() : x(0.0), y(0.0), z(0.0), w(1.0) {}
MQuaternion::MQuaternion(const MQuaternion& src) = default;
MQuaternion::MQuaternion(double xx, double yy, double zz, double ww) : x(xx), y(yy), z(zz), w(ww) {}
MQuaternion::MQuaternion(const double q[4]) : x(q[0]), y(q[1]), z(q[2]), w(q[3]) {}
MQuaternion::MQuaternion(const MVector& a, const MVector& b) : MQuaternion(a, b, 1.0) {}

MQuaternion::MQuaternion(const MVector& a, const MVector& b, double angleFactor) : MQuaternion() {
    const MVector from = a.normal();
    const MVector to = b.normal();
    if (from == MVector::zero || to == MVector::zero) return;
    MVector axis = from ^ to;
    // Opposite directions leave the axis open: any one across the first direction serves.
    if (axis.length() < 1.0e-12) axis = from ^ (std::abs(from.x) < 0.5 ? MVector::xAxis : MVector::yAxis);
    setAxisAngle(axis, angleFactor * from.angle(to));
}

MQuaternion::MQuaternion(double angle, const MVector& axis) { setAxisAngle(axis, angle); }

MQuaternion& MQuaternion::operator=(const MQuaternion& src) = default;

MQuaternion& MQuaternion::operator=(const MMatrix& matrix) {
    const Imath::M44d rotation(host::linearParts(matrix).rotation.matrix);
    return *this = fromLibrary(Imath::extractQuat(rotation));
}

MQuaternion& MQuaternion::operator=(const MEulerRotation& euler) { return *this = euler.asQuaternion(); }

MMatrix MQuaternion::asMatrix() const {
    const Imath::M44d m = toLibrary(normal()).toMatrix44();
    return dot(*this, *this) > 0.0 ? MMatrix(m.x) : MMatrix();
}

MQuaternion::operator MMatrix() const { return asMatrix(); }
MEulerRotation MQuaternion::asEulerRotation() const {
    return MEulerRotation::decompose(asMatrix(), MEulerRotation::kXYZ);
}

MQuaternion& MQuaternion::setAxisAngle(const MVector& axis, double theta) {
    const MVector unit = axis.normal();
    if (unit == MVector::zero) return *this = MQuaternion();
    const double s = std::sin(theta * 0.5);
    return *this = MQuaternion(unit.x * s, unit.y * s, unit.z * s, std::cos(theta * 0.5));
}

bool MQuaternion::getAxisAngle(MVector& axis, double& theta) const {
    const MVector imaginary(x, y, z);
    const double size = imaginary.length();
    if (size == 0.0) {
        axis = MVector::zAxis;
        theta = 0.0;
        return false;
    }
    axis = imaginary / size;
    theta = 2.0 * std::atan2(size, w);
    return true;
}

MQuaternion& MQuaternion::setToXAxis(double theta) { return setAxisAngle(MVector::xAxis, theta); }
MQuaternion& MQuaternion::setToYAxis(double theta) { return setAxisAngle(MVector::yAxis, theta); }
MQuaternion& MQuaternion::setToZAxis(double theta) { return setAxisAngle(MVector::zAxis, theta); }

MStatus MQuaternion::get(double dest[4]) const {
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
    dest[3] = w;
    return MStatus::kSuccess;
}

double MQuaternion::operator[](unsigned int i) const { return (&x)[i]; }
double& MQuaternion::operator[](unsigned int i) { return (&x)[i]; }

MQuaternion MQuaternion::operator+(const MQuaternion& other) const {
    return MQuaternion(x + other.x, y + other.y, z + other.z, w + other.w);
}

MQuaternion MQuaternion::operator*(const MQuaternion& other) const {
    // The left factor rotates first, so that it stands on the right in Hamilton's product.
    return fromLibrary(toLibrary(other) * toLibrary(*this));
}

MQuaternion& MQuaternion::operator*=(const MQuaternion& other) { return *this = *this * other; }

MQuaternion MQuaternion::operator-(const MQuaternion& other) const {
    return MQuaternion(x - other.x, y - other.y, z - other.z, w - other.w);
}

MQuaternion MQuaternion::operator-() const { return MQuaternion(-x, -y, -z, -w); }
MQuaternion& MQuaternion::negateIt() { return *this = -*this; }

bool MQuaternion::operator==(const MQuaternion& other) const {
    return x == other.x && y == other.y && z == other.z && w == other.w;
}

bool MQuaternion::operator!=(const MQuaternion& other) const { return !(*this == other); }

bool MQuaternion::isEquivalent(const MQuaternion& other, double tolerance) const {
    return std::abs(x - other.x) <= tolerance && std::abs(y - other.y) <= tolerance &&
           std::abs(z - other.z) <= tolerance && std::abs(w - other.w) <= tolerance;
}

MQuaternion& MQuaternion::scaleIt(double scale) {
    return *this = MQuaternion(x * scale, y * scale, z * scale, w * scale);
}

MQuaternion MQuaternion::normal() const {
    const double size = std::sqrt(dot(*this, *this));
    return size > 0.0 ? MQuaternion(x / size, y / size, z / size, w / size) : *this;
}

MQuaternion& MQuaternion::normalizeIt() { return *this = normal(); }
MQuaternion MQuaternion::conjugate() const { return MQuaternion(-x, -y, -z, w); }
MQuaternion& MQuaternion::conjugateIt() { return *this = conjugate(); }

MQuaternion MQuaternion::inverse() const {
    const double square = dot(*this, *this);
    return square > 0.0 ? MQuaternion(-x / square, -y / square, -z / square, w / square) : *this;
}

MQuaternion& MQuaternion::invertIt() { return *this = inverse(); }

MQuaternion MQuaternion::log() const {
    const double size = std::hypot(x, y, z);
    const double factor = size > 0.0 ? std::atan2(size, w) / size : 0.0;
    return MQuaternion(x * factor, y * factor, z * factor, 0.0);
}

MQuaternion MQuaternion::exp() const {
    const double angle = std::hypot(x, y, z);
    const double factor = angle > 0.0 ? std::sin(angle) / angle : 1.0;
    return MQuaternion(x * factor, y * factor, z * factor, std::cos(angle));
}

MQuaternion operator*(double scale, const MQuaternion& other) { return MQuaternion(other).scaleIt(scale); }

MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t) { return slerp(p, q, t, 0); }

// Morrison, "Quaternion interpolation with extra spins", Graphics Gems III.
MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin) {
    const double cosine = dot(p, q);
    const MQuaternion end = cosine < 0.0 ? -q : q;
    const double theta = std::acos(std::min(std::abs(cosine), 1.0));
    const double sine = std::sin(theta);
    if (sine < 1.0e-9) return ((1.0 - t) * p + t * end).normal();
    const double phi = theta + spin * std::numbers::pi;
    return (std::sin(theta - t * phi) / sine) * p + (std::sin(t * phi) / sine) * end;
}

MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b, const MQuaternion& q, double t) {
    return squad(p, a, b, q, t, 0);
}

MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b, const MQuaternion& q, double t,
                  short spin) {
    return slerp(slerp(p, q, t, spin), slerp(a, b, t, spin), 2.0 * t * (1.0 - t));
}

MQuaternion squadPt(const MQuaternion& q0, const MQuaternion& q1, const MQuaternion& q2) {
    // Along the shorter arcs: a neighbour on the other half of the sphere stands for the same rotation.
    const MQuaternion before = dot(q0, q1) < 0.0 ? -q0 : q0;
    const MQuaternion after = dot(q2, q1) < 0.0 ? -q2 : q2;
    const Imath::Quatd key = toLibrary(q1);
    const MQuaternion toAfter = fromLibrary(key.inverse() * toLibrary(after)).log();
    const MQuaternion toBefore = fromLibrary(key.inverse() * toLibrary(before)).log();
    return fromLibrary(key * toLibrary((-0.25 * (toAfter + toBefore)).exp()));
}

std::ostream& operator<<(std::ostream& os, const MQuaternion& q) {
    const double values[]{q.x, q.y, q.z, q.w};
    return host::writeList(os, values, 4, '[', ']');
}
