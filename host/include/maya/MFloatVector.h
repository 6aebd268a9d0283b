#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MStatus.h>

#include <cmath>
#include <iosfwd>

class MFloatPoint;
class MPoint;
class MVector;

#define MFloatVector_kTol 1.0e-5f

/// A direction or difference of points, in single precision: translations do not act on it.
class OPENMAYA_EXPORT MFloatVector {
public:
    inline MFloatVector() : x(0.0f), y(0.0f), z(0.0f) {}
    inline MFloatVector(const MFloatVector& src) : x(src.x), y(src.y), z(src.z) {}
    inline MFloatVector(const MVector& src);
    inline MFloatVector(const MFloatPoint& src);
    inline MFloatVector(const MPoint& src);
    inline MFloatVector(float xx, float yy, float zz = 0.0) : x(xx), y(yy), z(zz) {}
    inline MFloatVector(const float f[3]) : x(f[0]), y(f[1]), z(f[2]) {}
    inline MFloatVector(const double d[3]);

    inline MFloatVector& operator=(const MFloatVector& src);
    inline float operator()(unsigned int i) const { return (&x)[i]; }
    inline float operator[](unsigned int i) const { return (&x)[i]; }
    inline float& operator()(unsigned int i) { return (&x)[i]; }
    inline float& operator[](unsigned int i) { return (&x)[i]; }

    /// Cross product.
    inline MFloatVector operator^(const MFloatVector& right) const;
    inline MFloatVector& operator/=(float scalar);
    inline MFloatVector operator/(float scalar) const { return MFloatVector(x / scalar, y / scalar, z / scalar); }
    inline MFloatVector& operator*=(float scalar);
    inline MFloatVector operator*(float scalar) const { return MFloatVector(x * scalar, y * scalar, z * scalar); }
    inline MFloatVector operator+(const MFloatVector& other) const;
    inline MFloatVector& operator+=(const MFloatVector& other);
    inline MFloatVector operator-() const { return MFloatVector(-x, -y, -z); }
    inline MFloatVector operator-(const MFloatVector& other) const;
    inline MFloatVector& operator-=(const MFloatVector& other);
    /// Dot product.
    inline float operator*(const MFloatVector& right) const { return x * right.x + y * right.y + z * right.z; }
    /// The row vector times the upper left 3 by 3 part of the matrix.
    MFloatVector operator*(const MFloatMatrix& right) const;
    MFloatVector& operator*=(const MFloatMatrix& right);
    inline bool operator!=(const MFloatVector& other) const { return !(*this == other); }
    inline bool operator==(const MFloatVector& other) const { return x == other.x && y == other.y && z == other.z; }

    inline MStatus get(float d[3]) const;
    inline float length() const { return std::sqrt(x * x + y * y + z * z); }
    /// The vector with length 1; a zero vector stays as it is.
    inline MFloatVector normal() const;
    /// Gives the vector the length 1. kFailure for a zero vector, which stays as it is.
    inline MStatus normalize();
    /// The angle between the vectors in radians, 0 to pi; 0 where one of them is zero.
    float angle(const MFloatVector& other) const;
    /// Whether the difference of the vectors is no longer than the tolerance.
    bool isEquivalent(const MFloatVector& other, float tol = MFloatVector_kTol) const;
    /// As MVector::isParallel.
    bool isParallel(const MFloatVector& other, float tol = MFloatVector_kTol) const;
    /// The vector times the transposed inverse of the matrix, as a surface's normal is transformed. Not normalised.
    MFloatVector transformAsNormal(const MFloatMatrix& matrix) const;

    static const char* className();

    static const MFloatVector zero;
    static const MFloatVector one;
    static const MFloatVector xAxis;
    static const MFloatVector yAxis;
    static const MFloatVector zAxis;
    static const MFloatVector xNegAxis;
    static const MFloatVector yNegAxis;
    static const MFloatVector zNegAxis;

    float x;
    float y;
    float z;
};

OPENMAYA_EXPORT MFloatVector operator*(int scalar, const MFloatVector& other);
OPENMAYA_EXPORT MFloatVector operator*(short scalar, const MFloatVector& other);
OPENMAYA_EXPORT MFloatVector operator*(unsigned int scalar, const MFloatVector& other);
OPENMAYA_EXPORT MFloatVector operator*(unsigned short scalar, const MFloatVector& other);
OPENMAYA_EXPORT MFloatVector operator*(float scalar, const MFloatVector& other);
OPENMAYA_EXPORT MFloatVector operator*(double scalar, const MFloatVector& other);
/// The matrix times the column vector.
OPENMAYA_EXPORT MFloatVector operator*(const MFloatMatrix& left, const MFloatVector& right);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MFloatVector& v);

// The classes below refer to one another: each is declared before the inline members of any.
#include <maya/MFloatPoint.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

inline MFloatVector::MFloatVector(const MVector& src)
    : x(static_cast<float>(src.x)), y(static_cast<float>(src.y)), z(static_cast<float>(src.z)) {}
inline MFloatVector::MFloatVector(const MFloatPoint& src) : x(src.x), y(src.y), z(src.z) {}
inline MFloatVector::MFloatVector(const MPoint& src)
    : x(static_cast<float>(src.x)), y(static_cast<float>(src.y)), z(static_cast<float>(src.z)) {}
inline MFloatVector::MFloatVector(const double d[3])
    : x(static_cast<float>(d[0])), y(static_cast<float>(d[1])), z(static_cast<float>(d[2])) {}

inline MFloatVector& MFloatVector::operator=(const MFloatVector& src) {
    x = src.x;
    y = src.y;
    z = src.z;
    return *this;
}

inline MFloatVector MFloatVector::operator^(const MFloatVector& right) const {
    return MFloatVector(y * right.z - z * right.y, z * right.x - x * right.z, x * right.y - y * right.x);
}

inline MFloatVector MFloatVector::operator+(const MFloatVector& other) const {
    return MFloatVector(x + other.x, y + other.y, z + other.z);
}

inline MFloatVector MFloatVector::operator-(const MFloatVector& other) const {
    return MFloatVector(x - other.x, y - other.y, z - other.z);
}

inline MFloatVector& MFloatVector::operator/=(float scalar) { return *this = *this / scalar; }
inline MFloatVector& MFloatVector::operator*=(float scalar) { return *this = *this * scalar; }
inline MFloatVector& MFloatVector::operator+=(const MFloatVector& other) { return *this = *this + other; }
inline MFloatVector& MFloatVector::operator-=(const MFloatVector& other) { return *this = *this - other; }

inline MStatus MFloatVector::get(float d[3]) const {
    d[0] = x;
    d[1] = y;
    d[2] = z;
    return MStatus();
}

inline MFloatVector MFloatVector::normal() const {
    const float size = length();
    return size > 0.0f ? *this / size : *this;
}

inline MStatus MFloatVector::normalize() {
    const float size = length();
    if (!(size > 0.0f)) return MStatus(MStatus::kFailure);
    *this /= size;
    return MStatus();
}
