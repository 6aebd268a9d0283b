#pragma once

#include <maya/MMatrix.h>
#include <maya/MStatus.h>
#include <maya/MTransformationMatrix.h>

#include <cmath>
#include <iosfwd>

class MEulerRotation;
class MFloatPoint;
class MFloatVector;
class MPoint;
class MQuaternion;

#define MVector_kTol 1.0e-10

/// A direction or difference of points: translations do not act on it.
class OPENMAYA_EXPORT MVector {
public:
    enum Axis { kXaxis, kYaxis, kZaxis, kWaxis };

    inline MVector() : x(0.0), y(0.0), z(0.0) {}
    inline MVector(const MVector& src) : x(src.x), y(src.y), z(src.z) {}
    inline MVector(const MFloatVector& src);
    inline MVector(const MPoint& src);
    inline MVector(const MFloatPoint& src);
    inline MVector(double xx, double yy, double zz = 0.0) : x(xx), y(yy), z(zz) {}
    inline MVector(const double d[3]) : x(d[0]), y(d[1]), z(d[2]) {}
    inline MVector(const float f[3]) : x(f[0]), y(f[1]), z(f[2]) {}

    inline MVector& operator=(const MVector& src);
    inline double operator()(unsigned int i) const { return (&x)[i]; }
    inline double operator[](unsigned int i) const { return (&x)[i]; }
    inline double& operator()(unsigned int i) { return (&x)[i]; }
    inline double& operator[](unsigned int i) { return (&x)[i]; }

    /// Cross product.
    inline MVector operator^(const MVector& right) const;
    /// Dot product.
    inline double operator*(const MVector& right) const { return x * right.x + y * right.y + z * right.z; }
    inline MVector& operator/=(double scalar);
    inline MVector operator/(double scalar) const { return MVector(x / scalar, y / scalar, z / scalar); }
    inline MVector& operator*=(double scalar);
    inline MVector operator*(double scalar) const { return MVector(x * scalar, y * scalar, z * scalar); }
    inline MVector operator+(const MVector& other) const { return MVector(x + other.x, y + other.y, z + other.z); }
    inline MVector& operator+=(const MVector& other);
    inline MVector operator-() const { return MVector(-x, -y, -z); }
    inline MVector& operator-=(const MVector& other);
    inline MVector operator-(const MVector& other) const { return MVector(x - other.x, y - other.y, z - other.z); }
    /// The row vector times the upper left 3 by 3 part of the matrix.
    MVector operator*(const MMatrix& right) const;
    MVector& operator*=(const MMatrix& right);
    inline bool operator!=(const MVector& other) const { return !(*this == other); }
    inline bool operator==(const MVector& other) const { return x == other.x && y == other.y && z == other.z; }

    /// The vector rotated by the quaternion (x, y, z, w), by angles in radians about the axes in the given order, by
    /// an angle in radians about one axis, and so on. Rotations are counter-clockwise seen against the axis.
    MVector rotateBy(double x, double y, double z, double w) const;
    MVector rotateBy(const double rotXYZ[3], MTransformationMatrix::RotationOrder order) const;
    MVector rotateBy(MVector::Axis axis, const double angle) const;
    MVector rotateBy(const MQuaternion& q) const;
    MVector rotateBy(const MEulerRotation& e) const;
    /// The smallest rotation that gives this vector the direction of the other one.
    MQuaternion rotateTo(const MVector& other) const;

    inline MStatus get(double dest[3]) const;
    inline double length() const { return std::sqrt(x * x + y * y + z * z); }
    /// The vector with length 1; a zero vector stays as it is.
    inline MVector normal() const;
    /// Gives the vector the length 1. kFailure for a zero vector, which stays as it is.
    inline MStatus normalize();
    /// The angle between the vectors in radians, 0 to pi; 0 where one of them is zero.
    double angle(const MVector& other) const;
    /// Whether the difference of the vectors is no longer than the tolerance.
    inline bool isEquivalent(const MVector& other, double tol = MVector_kTol) const;
    /// Whether the vectors have the same or opposite directions: the cosine of their angle is within the tolerance of
    /// 1 or -1. A zero vector is parallel to none.
    bool isParallel(const MVector& other, double tol = MVector_kTol) const;
    /// The vector times the transposed inverse of the matrix, as a surface's normal is transformed. Not normalised.
    MVector transformAsNormal(const MMatrix& matrix) const;

    static const char* className();

    static const MVector zero;
    static const MVector one;
    static const MVector xAxis;
    static const MVector yAxis;
    static const MVector zAxis;
    static const MVector xNegAxis;
    static const MVector yNegAxis;
    static const MVector zNegAxis;

    double x;
    double y;
    double z;
};

/// The matrix times the column vector.
OPENMAYA_EXPORT MVector operator*(const MMatrix& left, const MVector& right);
OPENMAYA_EXPORT MVector operator*(int scalar, const MVector& other);
OPENMAYA_EXPORT MVector operator*(short scalar, const MVector& other);
OPENMAYA_EXPORT MVector operator*(unsigned int scalar, const MVector& other);
OPENMAYA_EXPORT MVector operator*(unsigned short scalar, const MVector& other);
OPENMAYA_EXPORT MVector operator*(float scalar, const MVector& other);
OPENMAYA_EXPORT MVector operator*(double scalar, const MVector& other);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MVector& v);

// The classes below refer to one another: each is declared before the inline members of any.
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MPoint.h>

inline MVector::MVector(const MFloatVector& src) : x(src.x), y(src.y), z(src.z) {}
inline MVector::MVector(const MPoint& src) : x(src.x), y(src.y), z(src.z) {}
inline MVector::MVector(const MFloatPoint& src) : x(src.x), y(src.y), z(src.z) {}

inline MVector& MVector::operator=(const MVector& src) {
    x = src.x;
    y = src.y;
    z = src.z;
    return *this;
}

inline MVector MVector::operator^(const MVector& right) const {
    return MVector(y * right.z - z * right.y, z * right.x - x * right.z, x * right.y - y * right.x);
}

inline MVector& MVector::operator/=(double scalar) { return *this = *this / scalar; }
inline MVector& MVector::operator*=(double scalar) { return *this = *this * scalar; }
inline MVector& MVector::operator+=(const MVector& other) { return *this = *this + other; }
inline MVector& MVector::operator-=(const MVector& other) { return *this = *this - other; }

inline MStatus MVector::get(double dest[3]) const {
    dest[0] = x;
    dest[1] = y;
    dest[2] = z;
    return MStatus();
}

inline MVector MVector::normal() const {
    const double size = length();
    return size > 0.0 ? *this / size : *this;
}

inline MStatus MVector::normalize() {
    const double size = length();
    if (!(size > 0.0)) return MStatus(MStatus::kFailure);
    *this /= size;
    return MStatus();
}

inline bool MVector::isEquivalent(const MVector& other, double tol) const { return (*this - other).length() <= tol; }
