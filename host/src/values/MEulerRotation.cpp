#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include "base/NumberText.h"
#include "values/RotationMath.h"

#include <array>
#include <cmath>
#include <numbers>
#include <ostream>

namespace {

constexpr double pi = std::numbers::pi;

// The axes of an order, first one first, and whether they run with the cycle x, y, z (+1) or against it (-1).
struct Axes {
    unsigned int i, j, k;
    double parity;
};

Axes axesOf(MEulerRotation::RotationOrder order) {
    switch (order) {
    case MEulerRotation::kXYZ: return {0, 1, 2, 1.0};
    case MEulerRotation::kYZX: return {1, 2, 0, 1.0};
    case MEulerRotation::kZXY: return {2, 0, 1, 1.0};
    case MEulerRotation::kXZY: return {0, 2, 1, -1.0};
    case MEulerRotation::kYXZ: return {1, 0, 2, -1.0};
    case MEulerRotation::kZYX: return {2, 1, 0, -1.0};
    }
    return {0, 1, 2, 1.0};
}

MEulerRotation::RotationOrder reversed(MEulerRotation::RotationOrder order) {
    switch (order) {
    case MEulerRotation::kXYZ: return MEulerRotation::kZYX;
    case MEulerRotation::kYZX: return MEulerRotation::kXZY;
    case MEulerRotation::kZXY: return MEulerRotation::kYXZ;
    case MEulerRotation::kXZY: return MEulerRotation::kYZX;
    case MEulerRotation::kYXZ: return MEulerRotation::kZXY;
    case MEulerRotation::kZYX: return MEulerRotation::kXYZ;
    }
    return order;
}

double nearestTurn(double angle, double to) { return angle - 2.0 * pi * std::round((angle - to) / (2.0 * pi)); }

double distance(const MEulerRotation& a, const MEulerRotation& b) {
    return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.z - b.z);
}

} // namespace

MEulerRotation host::rotationAngles(const MMatrix& m, MEulerRotation::RotationOrder order) {
    const auto [i, j, k, parity] = axesOf(order);
    MEulerRotation e(0.0, 0.0, 0.0, order);
    const double across = std::hypot(m[i][i], m[i][j]);
    e[j] = std::atan2(-parity * m[i][k], across);
    if (across > 1.0e-12) {
        e[i] = std::atan2(parity * m[j][k], m[k][k]);
        e[k] = std::atan2(parity * m[i][j], m[i][i]);
    } else { // First and last axis coincide: the first takes the whole angle.
        e[i] = std::atan2(-parity * m[k][j], m[j][j]);
    }
    return e;
}

const MEulerRotation MEulerRotation::identity;

MEulerRotation::MEulerRotation() : x(0.0), y(0.0), z(0.0), order(kXYZ) {}
MEulerRotation::MEulerRotation(const MEulerRotation& src) = default;
MEulerRotation::MEulerRotation(const MVector& v, MEulerRotation::RotationOrder ord)
    : x(v.x), y(v.y), z(v.z), order(ord) {}
MEulerRotation::MEulerRotation(double xx, double yy, double zz, MEulerRotation::RotationOrder ord)
    : x(xx), y(yy), z(zz), order(ord) {}

MEulerRotation& MEulerRotation::operator=(const MEulerRotation& src) = default;
MEulerRotation& MEulerRotation::operator=(const MQuaternion& q) { return *this = decompose(q.asMatrix(), order); }
MEulerRotation& MEulerRotation::operator=(const MMatrix& m) { return *this = decompose(m, order); }
MEulerRotation& MEulerRotation::operator=(const MVector& v) { return setValue(v, order); }

MEulerRotation& MEulerRotation::setValue(const MVector& v, MEulerRotation::RotationOrder ord) {
    return setValue(v.x, v.y, v.z, ord);
}

MEulerRotation& MEulerRotation::setValue(double xx, double yy, double zz, MEulerRotation::RotationOrder ord) {
    return *this = MEulerRotation(xx, yy, zz, ord);
}

MQuaternion MEulerRotation::asQuaternion() const {
    const std::array<MQuaternion, 3> about{MQuaternion(x, MVector::xAxis), MQuaternion(y, MVector::yAxis),
                                           MQuaternion(z, MVector::zAxis)};
    const Axes axes = axesOf(order);
    return about[axes.i] * about[axes.j] * about[axes.k];
}

MMatrix MEulerRotation::asMatrix() const {
    const auto about = [this](unsigned int axis) {
        const double c = std::cos((*this)[axis]);
        const double s = std::sin((*this)[axis]);
        const unsigned int next = (axis + 1) % 3;
        const unsigned int last = (axis + 2) % 3;
        MMatrix m;
        m[next][next] = m[last][last] = c;
        m[next][last] = s;
        m[last][next] = -s;
        return m;
    };
    const Axes axes = axesOf(order);
    return about(axes.i) * about(axes.j) * about(axes.k);
}

MVector MEulerRotation::asVector() const { return MVector(x, y, z); }
double MEulerRotation::operator[](unsigned int i) const { return (&x)[i]; }
double& MEulerRotation::operator[](unsigned int i) { return (&x)[i]; }

MEulerRotation MEulerRotation::operator+(const MEulerRotation& other) const {
    return MEulerRotation(asVector() + other.reorder(order).asVector(), order);
}

MEulerRotation MEulerRotation::operator-(const MEulerRotation& other) const {
    return MEulerRotation(asVector() - other.reorder(order).asVector(), order);
}

MEulerRotation& MEulerRotation::operator+=(const MEulerRotation& other) { return *this = *this + other; }
MEulerRotation& MEulerRotation::operator-=(const MEulerRotation& other) { return *this = *this - other; }
MEulerRotation MEulerRotation::operator-() const { return MEulerRotation(-x, -y, -z, order); }

MEulerRotation MEulerRotation::operator*(const MEulerRotation& other) const {
    return host::rotationAngles(asMatrix() * other.asMatrix(), order);
}

MEulerRotation MEulerRotation::operator*(const MQuaternion& other) const {
    return host::rotationAngles(asMatrix() * other.asMatrix(), order);
}

MEulerRotation MEulerRotation::operator*(double other) const {
    return MEulerRotation(x * other, y * other, z * other, order);
}

MEulerRotation& MEulerRotation::operator*=(const MEulerRotation& other) { return *this = *this * other; }
MEulerRotation& MEulerRotation::operator*=(const MQuaternion& other) { return *this = *this * other; }
MEulerRotation& MEulerRotation::operator*=(double other) { return *this = *this * other; }

bool MEulerRotation::operator==(const MEulerRotation& other) const {
    return x == other.x && y == other.y && z == other.z && order == other.order;
}

bool MEulerRotation::operator!=(const MEulerRotation& other) const { return !(*this == other); }

bool MEulerRotation::isEquivalent(const MEulerRotation& other, double tolerance) const {
    return order == other.order && std::abs(x - other.x) <= tolerance && std::abs(y - other.y) <= tolerance &&
           std::abs(z - other.z) <= tolerance;
}

bool MEulerRotation::isZero(double tolerance) const {
    return std::abs(x) <= tolerance && std::abs(y) <= tolerance && std::abs(z) <= tolerance;
}

MEulerRotation& MEulerRotation::incrementalRotateBy(const MVector& axis, double angle) {
    const MEulerRotation before = *this;
    return *this = (before * MQuaternion(angle, axis)).closestSolution(before);
}

MEulerRotation MEulerRotation::inverse() const { return MEulerRotation(-x, -y, -z, reversed(order)); }
MEulerRotation& MEulerRotation::invertIt() { return *this = inverse(); }

MEulerRotation MEulerRotation::reorder(MEulerRotation::RotationOrder ord) const {
    return ord == order ? *this : host::rotationAngles(asMatrix(), ord);
}

MEulerRotation& MEulerRotation::reorderIt(MEulerRotation::RotationOrder ord) { return *this = reorder(ord); }

MEulerRotation MEulerRotation::bound() const { return closestCut(*this, MEulerRotation(0.0, 0.0, 0.0, order)); }
MEulerRotation& MEulerRotation::boundIt(const MEulerRotation& src) { return *this = src.bound(); }
MEulerRotation& MEulerRotation::boundIt() { return *this = bound(); }

MEulerRotation MEulerRotation::alternateSolution() const {
    // Half a turn more about the outer axes undoes mirroring the middle angle.
    const Axes axes = axesOf(order);
    MEulerRotation other(*this);
    other[axes.i] += pi;
    other[axes.j] = pi - other[axes.j];
    other[axes.k] += pi;
    return other.bound();
}

MEulerRotation& MEulerRotation::setToAlternateSolution(const MEulerRotation& src) {
    return *this = src.alternateSolution();
}
MEulerRotation& MEulerRotation::setToAlternateSolution() { return *this = alternateSolution(); }

MEulerRotation MEulerRotation::closestSolution(const MEulerRotation& dst) const {
    const MEulerRotation own = closestCut(dst);
    const MEulerRotation other = alternateSolution().closestCut(dst);
    return distance(other, dst) < distance(own, dst) ? other : own;
}

MEulerRotation& MEulerRotation::setToClosestSolution(const MEulerRotation& src, const MEulerRotation& dst) {
    return *this = src.closestSolution(dst);
}
MEulerRotation& MEulerRotation::setToClosestSolution(const MEulerRotation& dst) { return *this = closestSolution(dst); }

MEulerRotation MEulerRotation::closestCut(const MEulerRotation& dst) const {
    return MEulerRotation(nearestTurn(x, dst.x), nearestTurn(y, dst.y), nearestTurn(z, dst.z), order);
}

MEulerRotation& MEulerRotation::setToClosestCut(const MEulerRotation& src, const MEulerRotation& dst) {
    return *this = src.closestCut(dst);
}
MEulerRotation& MEulerRotation::setToClosestCut(const MEulerRotation& dst) { return *this = closestCut(dst); }

MEulerRotation MEulerRotation::decompose(const MMatrix& matrix, MEulerRotation::RotationOrder ord) {
    return host::rotationAngles(host::linearParts(matrix).rotation, ord);
}

MEulerRotation MEulerRotation::bound(const MEulerRotation& src) { return src.bound(); }
MEulerRotation MEulerRotation::alternateSolution(const MEulerRotation& src) { return src.alternateSolution(); }

MEulerRotation MEulerRotation::closestSolution(const MEulerRotation& src, const MEulerRotation& dst) {
    return src.closestSolution(dst);
}

MEulerRotation MEulerRotation::closestCut(const MEulerRotation& src, const MEulerRotation& dst) {
    return src.closestCut(dst);
}

MEulerRotation operator*(double scale, const MEulerRotation& other) { return other * scale; }

std::ostream& operator<<(std::ostream& os, const MEulerRotation& rotation) {
    static constexpr std::array<const char*, 6> names{"kXYZ", "kYZX", "kZXY", "kXZY", "kYXZ", "kZYX"};
    const double values[]{rotation.x, rotation.y, rotation.z};
    host::writeList(os, values, 3, '[', ',');
    return os << ' ' << (rotation.order <= MEulerRotation::kZYX ? names[rotation.order] : "?") << ']';
}
