#pragma once

#include <maya/MMatrix.h>
#include <maya/MStatus.h>

#include <cmath>
#include <iosfwd>

class MFloatPoint;
class MFloatVector;
class MVector;

#define MPoint_kTol 1.0e-10

/// A point in homogeneous coordinates; a point with w = 1 is at (x, y, z).
class OPENMAYA_EXPORT MPoint {
public:
    inline MPoint() : x(0.0), y(0.0), z(0.0), w(1.0) {}
    inline MPoint(const MPoint& srcpt) : x(srcpt.x), y(srcpt.y), z(srcpt.z), w(srcpt.w) {}
    inline MPoint(const MFloatPoint& srcpt);
    inline MPoint(const MVector& src);
    inline MPoint(const MFloatVector& src);
    inline MPoint(double xx, double yy, double zz = 0.0, double ww = 1.0) : x(xx), y(yy), z(zz), w(ww) {}
    inline MPoint(const double d[4]) : x(d[0]), y(d[1]), z(d[2]), w(d[3]) {}
    inline MPoint(const float f[4]) : x(f[0]), y(f[1]), z(f[2]), w(f[3]) {}

    inline MStatus get(double dest[4]) const;
    inline MStatus get(float dest[4]) const;

    inline double operator[](unsigned int i) const { return (&x)[i]; }
    inline double operator()(unsigned int i) const { return (&x)[i]; }
    inline double& operator[](unsigned int i) { return (&x)[i]; }
    inline double& operator()(unsigned int i) { return (&x)[i]; }

    inline MPoint& operator=(const MPoint& src);
    /// Differences and sums are of the places that the homogeneous coordinates stand for.
    inline MVector operator-(const MPoint& other) const;
    inline MPoint operator+(const MVector& other) const;
    inline MPoint operator-(const MVector& other) const;
    inline MPoint& operator+=(const MVector& vector);
    inline MPoint& operator-=(const MVector& vector);
    /// Scale x, y and z; w stays.
    inline MPoint operator*(const double scale) const { return MPoint(x * scale, y * scale, z * scale, w); }
    inline MPoint operator/(const double scale) const { return MPoint(x / scale, y / scale, z / scale, w); }
    /// The row vector times the matrix, without division by the resulting w.
    MPoint operator*(const MMatrix& right) const;
    MPoint& operator*=(const MMatrix& right);
    inline bool operator==(const MPoint& other) const;
    inline bool operator!=(const MPoint& other) const { return !(*this == other); }

    /// (W*X, W*Y, W*Z, W) becomes (X, Y, Z, 1). Without effect where w is 0, as in the next two.
    MPoint& cartesianize();
    /// (W*X, W*Y, W*Z, W) becomes (X, Y, Z, W).
    MPoint& rationalize();
    /// (X, Y, Z, W) becomes (W*X, W*Y, W*Z, W).
    MPoint& homogenize();

    inline double distanceTo(const MPoint& other) const;
    /// Whether the points are no further apart than the tolerance.
    inline bool isEquivalent(const MPoint& other, double tol = MPoint_kTol) const;

    static const char* className();

    static const MPoint origin;

    double x;
    double y;
    double z;
    double w;
};

OPENMAYA_EXPORT MPoint operator*(double scale, const MPoint& p);
/// The matrix times the column vector.
OPENMAYA_EXPORT MPoint operator*(const MMatrix& left, const MPoint& right);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MPoint& p);

// The classes below refer to one another: each is declared before the inline members of any.
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MVector.h>

inline MPoint::MPoint(const MFloatPoint& srcpt) : x(srcpt.x), y(srcpt.y), z(srcpt.z), w(srcpt.w) {}
inline MPoint::MPoint(const MVector& src) : x(src.x), y(src.y), z(src.z), w(1.0) {}
inline MPoint::MPoint(const MFloatVector& src) : x(src.x), y(src.y), z(src.z), w(1.0) {}

inline MStatus MPoint::get(double dest[4]) const {
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
    dest[3] = w;
    return MStatus();
}

inline MStatus MPoint::get(float dest[4]) const {
    dest[0] = static_cast<float>(x);
    dest[1] = static_cast<float>(y);
    dest[2] = static_cast<float>(z);
    dest[3] = static_cast<float>(w);
    return MStatus();
}

inline MPoint& MPoint::operator=(const MPoint& src) {
    x = src.x;
    y = src.y;
    z = src.z;
    w = src.w;
    return *this;
}

inline MVector MPoint::operator-(const MPoint& other) const {
    if (w == other.w && (w == 1.0 || w == 0.0)) return MVector(x - other.x, y - other.y, z - other.z);
    const double own = w != 0.0 ? 1.0 / w : 1.0;
    const double its = other.w != 0.0 ? 1.0 / other.w : 1.0;
    return MVector(x * own - other.x * its, y * own - other.y * its, z * own - other.z * its);
}

inline MPoint MPoint::operator+(const MVector& other) const {
    return MPoint(x + w * other.x, y + w * other.y, z + w * other.z, w);
}

inline MPoint MPoint::operator-(const MVector& other) const {
    return MPoint(x - w * other.x, y - w * other.y, z - w * other.z, w);
}

inline MPoint& MPoint::operator+=(const MVector& vector) { return *this = *this + vector; }
inline MPoint& MPoint::operator-=(const MVector& vector) { return *this = *this - vector; }

inline bool MPoint::operator==(const MPoint& other) const {
    return x == other.x && y == other.y && z == other.z && w == other.w;
}

inline double MPoint::distanceTo(const MPoint& other) const { return (*this - other).length(); }
inline bool MPoint::isEquivalent(const MPoint& other, double tol) const { return distanceTo(other) <= tol; }
