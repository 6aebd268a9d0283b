#pragma once

#include <maya/MMatrix.h>
#include <maya/MStatus.h>

#include <iosfwd>

class MEulerRotation;
class MVector;

#define kQuaternionEpsilon 1.0e-10

/// A quaternion x*i + y*j + z*k + w; one of length 1 is a rotation. p * q rotates by p first and then by q, as the
/// product of their matrices does. Angles are in radians.
class OPENMAYA_EXPORT MQuaternion {
public:
    /// The identity (0, 0, 0, 1).
    MQuaternion();
    MQuaternion(const MQuaternion& src);
    MQuaternion(double xx, double yy, double zz, double ww);
    MQuaternion(const double q[4]);
    /// The smallest rotation that takes the direction of `a` to that of `b`; identity where one of them is zero.
    MQuaternion(const MVector& a, const MVector& b);
    /// As above, by `angleFactor` times the angle.
    MQuaternion(const MVector& a, const MVector& b, double angleFactor);
    MQuaternion(double angle, const MVector& axis);

    MQuaternion& operator=(const MQuaternion& src);
    /// The rotation that the matrix holds beside scale and shear.
    MQuaternion& operator=(const MMatrix& matrix);
    MQuaternion& operator=(const MEulerRotation& euler);

    /// The rotation's matrix. A quaternion that is not of length 1 is normalised for it, a zero one gives the identity.
    MMatrix asMatrix() const;
    operator MMatrix() const;
    /// Angles in the order kXYZ.
    MEulerRotation asEulerRotation() const;

    /// The axis may have any length but 0; a zero axis gives the identity.
    MQuaternion& setAxisAngle(const MVector& axis, double theta);
    /// The axis of length 1 and the angle, 0 to 2 pi. False for no rotation: axis z and angle 0.
    bool getAxisAngle(MVector& axis, double& theta) const;
    MQuaternion& setToXAxis(double theta);
    MQuaternion& setToYAxis(double theta);
    MQuaternion& setToZAxis(double theta);

    MStatus get(double dest[4]) const;
    double operator[](unsigned int i) const;
    double& operator[](unsigned int i);

    MQuaternion operator+(const MQuaternion& other) const;
    MQuaternion operator*(const MQuaternion& other) const;
    MQuaternion& operator*=(const MQuaternion& other);
    MQuaternion operator-(const MQuaternion& other) const;
    MQuaternion operator-() const;
    MQuaternion& negateIt();
    bool operator==(const MQuaternion& other) const;
    bool operator!=(const MQuaternion& other) const;
    /// Whether no component differs by more than the tolerance: q and -q differ.
    bool isEquivalent(const MQuaternion& other, double tolerance = kQuaternionEpsilon) const;

    MQuaternion& scaleIt(double scale);
    /// With length 1; a zero quaternion stays as it is.
    MQuaternion normal() const;
    MQuaternion& normalizeIt();
    MQuaternion conjugate() const;
    MQuaternion& conjugateIt();
    /// The conjugate divided by the squared length; a zero quaternion stays as it is.
    MQuaternion inverse() const;
    MQuaternion& invertIt();
    /// Natural logarithm of a quaternion of length 1: the axis times half the angle, with w = 0.
    MQuaternion log() const;
    /// Of a quaternion with w = 0: the inverse of log().
    MQuaternion exp() const;

    static const MQuaternion identity;

    double x;
    double y;
    double z;
    double w;
};

OPENMAYA_EXPORT MQuaternion operator*(double scale, const MQuaternion& other);
/// Spherical interpolation from `p` (t = 0) to `q` (t = 1) along the shorter arc, with `spin` extra turns.
OPENMAYA_EXPORT MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t);
OPENMAYA_EXPORT MQuaternion slerp(const MQuaternion& p, const MQuaternion& q, double t, short spin);
/// Spherical cubic interpolation from `p` to `q` with the inner control points `a` and `b` (Shoemake's squad).
OPENMAYA_EXPORT MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b,
                                  const MQuaternion& q, double t);
OPENMAYA_EXPORT MQuaternion squad(const MQuaternion& p, const MQuaternion& a, const MQuaternion& b,
                                  const MQuaternion& q, double t, short spin);
/// The control point at `q1` for a smooth squad through the keys `q0`, `q1` and `q2`.
OPENMAYA_EXPORT MQuaternion squadPt(const MQuaternion& q0, const MQuaternion& q1, const MQuaternion& q2);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MQuaternion& q);

// Brings MVector; last, for it needs this class declared.
#include <maya/MTransformationMatrix.h>
