#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MStatus.h>

#include <cmath>
#include <iosfwd>

class MFloatVector;
class MPoint;
class MVector;

#define MFloatPoint_kTol 1.0e-5f

/// A point in homogeneous coordinates, in single precision; a point with w = 1 is at (x, y, z).
class OPENMAYA_EXPORT MFloatPoint {
public:
    inline MFloatPoint() : x(0.0f), y(0.0f), z(0.0f), w(1.0f) {}
    inline MFloatPoint(const MFloatPoint& srcpt) : x(srcpt.x), y(srcpt.y), z(srcpt.z), w(srcpt.w) {}
    inline MFloatPoint(const MPoint& srcpt);
    inline MFloatPoint(const MFloatVector& srcpt);
    inline MFloatPoint(const MVector& srcpt);
    inline MFloatPoint(float xx, float yy, float zz = 0.0, float ww = 1.0) : x(xx), y(yy), z(zz), w(ww) {}
    inline MFloatPoint(const float f[4]) : x(f[0]), y(f[1]), z(f[2]), w(f[3]) {}
    inline MFloatPoint(const double d[4]);

    inline MStatus get(double dest[4]) const;
    inline MStatus get(float dest[4]) const;
    inline MStatus setCast(const MPoint& srcpt);
    inline MStatus setCast(const MVector& src);
    inline MStatus setCast(const double d[4]);

    inline MFloatPoint& operator=(const MFloatPoint& src);
    inline float operator()(unsigned int i) const { return (&x)[i]; }
    inline float operator[](unsigned int i) const { return (&x)[i]; }
    inline float& operator()(unsigned int i) { return (&x)[i]; }
    inline float& operator[](unsigned int i) { return (&x)[i]; }

    /// Differences and sums are of the places that the homogeneous coordinates stand for.
    inline MFloatVector operator-(const MFloatPoint& other) const;
    inline MFloatPoint operator+(const MFloatVector& other) const;
    inline MFloatPoint operator-(const MFloatVector& other) const;
    inline MFloatPoint& operator+=(const MFloatVector& vector);
    inline MFloatPoint& operator-=(const MFloatVector& vector);
    /// Scale x, y and z; w stays.
    inline MFloatPoint operator*(const float scale) const { return MFloatPoint(x * scale, y * scale, z * scale, w); }
    inline MFloatPoint operator/(const float scale) const { return MFloatPoint(x / scale, y / scale, z / scale, w); }
    /// The row vector times the matrix, without division by the resulting w.
    MFloatPoint operator*(const MFloatMatrix& right) const;
    MFloatPoint& operator*=(const MFloatMatrix& right);
    inline bool operator==(const MFloatPoint& other) const;
    inline bool operator!=(const MFloatPoint& other) const { return !(*this == other); }

    /// (W*X, W*Y, W*Z, W) becomes (X, Y, Z, 1). Without effect where w is 0, as in the next two.
    MFloatPoint& cartesianize();
    /// (W*X, W*Y, W*Z, W) becomes (X, Y, Z, W).
    MFloatPoint& rationalize();
    /// (X, Y, Z, W) becomes (W*X, W*Y, W*Z, W).
    MFloatPoint& homogenize();

    inline float distanceTo(const MFloatPoint& other) const;
    /// Whether the points are no further apart than the tolerance.
    inline bool isEquivalent(const MFloatPoint& other, float tol = MFloatPoint_kTol) const;

    static const char* className();

    static const MFloatPoint origin;

    float x;
    float y;
    float z;
    float w;
};

OPENMAYA_EXPORT MFloatPoint operator*(float scale, const MFloatPoint& p);
/// The matrix times the column vector.
OPENMAYA_EXPORT MFloatPoint operator*(const MFloatMatrix& left, const MFloatPoint& right);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatPoint& p);

// The classes below refer to one another: each is declared before the inline members of any.
#include <maya/MFloatVector.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

inline MFloatPoint::MFloatPoint(const MPoint& srcpt) { setCast(srcpt); }
inline MFloatPoint::MFloatPoint(const MFloatVector& srcpt) : x(srcpt.x), y(srcpt.y), z(srcpt.z), w(1.0f) {}
inline MFloatPoint::MFloatPoint(const MVector& srcpt) { setCast(srcpt); }
inline MFloatPoint::MFloatPoint(const double d[4]) { setCast(d); }

inline MStatus MFloatPoint::get(double dest[4]) const {
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
    dest[3] = w;
    return MStatus();
}

inline MStatus MFloatPoint::get(float dest[4]) const {
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
    dest[3] = w;
    return MStatus();
}

inline MStatus MFloatPoint::setCast(const MPoint& srcpt) {
    x = static_cast<float>(srcpt.x);
    y = static_cast<float>(srcpt.y);
    z = static_cast<float>(srcpt.z);
    w = static_cast<float>(srcpt.w);
    return MStatus();
}

inline MStatus MFloatPoint::setCast(const MVector& src) {
    x = static_cast<float>(src.x);
    y = static_cast<float>(src.y);
    z = static_cast<float>(src.z);
    w = 1.0f;
    return MStatus();
}

inline MStatus MFloatPoint::setCast(const double d[4]) {
    x = static_cast<float>(d[0]);
    y = static_cast<float>(d[1]);
    z = static_cast<float>(d[2]);
    w = static_cast<float>(d[3]);
    return MStatus();
}

inline MFloatPoint& MFloatPoint::operator=(const MFloatPoint& src) {
    x = src.x;
    y = src.y;
    z = src.z;
    w = src.w;
    return *this;
}

inline MFloatVector MFloatPoint::operator-(const MFloatPoint& other) const {
    if (w == other.w && (w == 1.0f || w == 0.0f)) return MFloatVector(x - other.x, y - other.y, z - other.z);
    const float own = w != 0.0f ? 1.0f / w : 1.0f;
    const float its = other.w != 0.0f ? 1.0f / other.w : 1.0f;
    return MFloatVector(x * own - other.x * its, y * own - other.y * its, z * own - other.z * its);
}

inline MFloatPoint MFloatPoint::operator+(const MFloatVector& other) const {
    return MFloatPoint(x + w * other.x, y + w * other.y, z + w * other.z, w);
}

inline MFloatPoint MFloatPoint::operator-(const MFloatVector& other) const {
    return MFloatPoint(x - w * other.x, y - w * other.y, z - w * other.z, w);
}

inline MFloatPoint& MFloatPoint::operator+=(const MFloatVector& vector) { return *this = *this + vector; }
inline MFloatPoint& MFloatPoint::operator-=(const MFloatVector& vector) { return *this = *this - vector; }

inline bool MFloatPoint::operator==(const MFloatPoint& other) const {
    return x == other.x && y == other.y && z == other.z && w == other.w;
}

inline float MFloatPoint::distanceTo(const MFloatPoint& other) const { return (*this - other).length(); }
inline bool MFloatPoint::isEquivalent(const MFloatPoint& other, float tol) const { return distanceTo(other) <= tol; }
