#pragma once

#include <maya/MMatrix.h>
#include <maya/MStatus.h>

#include <iosfwd>

class MQuaternion;
class MVector;

#define kEulerRotationEpsilon 1.0e-10

/// A rotation as angles in radians about the axes x, y and z, with the order they are applied in: kXYZ rotates about x
/// first, then about y, then about z.
class OPENMAYA_EXPORT MEulerRotation {
public:
    enum RotationOrder { kXYZ, kYZX, kZXY, kXZY, kYXZ, kZYX };

    MEulerRotation();
    MEulerRotation(const MEulerRotation& src);
    MEulerRotation(const MVector& v, MEulerRotation::RotationOrder ord = kXYZ);
    MEulerRotation(double xx, double yy, double zz, MEulerRotation::RotationOrder ord = kXYZ);

    MEulerRotation& operator=(const MEulerRotation& src);
    /// Assignments of other types keep the order; a matrix gives its rotation, without scale and shear.
    MEulerRotation& operator=(const MQuaternion& q);
    MEulerRotation& operator=(const MMatrix& m);
    MEulerRotation& operator=(const MVector& v);
    MEulerRotation& setValue(const MVector& v, MEulerRotation::RotationOrder ord = kXYZ);
    MEulerRotation& setValue(double xx, double yy, double zz, MEulerRotation::RotationOrder ord = kXYZ);

    MQuaternion asQuaternion() const;
    MMatrix asMatrix() const;
    MVector asVector() const;
    double operator[](unsigned int i) const;
    double& operator[](unsigned int i);

    /// Sums and differences of the angles, after the other rotation is brought to this one's order.
    MEulerRotation operator+(const MEulerRotation& other) const;
    MEulerRotation& operator+=(const MEulerRotation& other);
    MEulerRotation operator-(const MEulerRotation& other) const;
    MEulerRotation& operator-=(const MEulerRotation& other);
    /// The angles with their signs changed.
    MEulerRotation operator-() const;
    /// This rotation followed by the other one, in this one's order.
    MEulerRotation operator*(const MEulerRotation& other) const;
    MEulerRotation operator*(const MQuaternion& other) const;
    MEulerRotation operator*(double other) const;
    MEulerRotation& operator*=(const MEulerRotation& other);
    MEulerRotation& operator*=(const MQuaternion& other);
    MEulerRotation& operator*=(double other);
    /// Equal angles and order.
    bool operator==(const MEulerRotation& other) const;
    bool operator!=(const MEulerRotation& other) const;
    /// Whether the orders are the same and no angle differs by more than the tolerance.
    bool isEquivalent(const MEulerRotation& other, double tolerance = kEulerRotationEpsilon) const;
    bool isZero(double tolerance = kEulerRotationEpsilon) const;

    /// Adds a rotation about an axis and keeps the angles close to what they were.
    MEulerRotation& incrementalRotateBy(const MVector& axis, double angle);
    /// The opposite rotation: negated angles in the reversed order.
    MEulerRotation inverse() const;
    MEulerRotation& invertIt();
    /// The same rotation as angles of another order.
    MEulerRotation reorder(MEulerRotation::RotationOrder ord) const;
    MEulerRotation& reorderIt(MEulerRotation::RotationOrder ord);
    /// Each angle brought into -pi to pi by whole turns.
    MEulerRotation bound() const;
    MEulerRotation& boundIt(const MEulerRotation& src);
    MEulerRotation& boundIt();
    /// The other set of bounded angles that gives the same rotation.
    MEulerRotation alternateSolution() const;
    MEulerRotation& setToAlternateSolution(const MEulerRotation& src);
    MEulerRotation& setToAlternateSolution();
    /// Of all angles that give the same rotation, those nearest to `dst`.
    MEulerRotation closestSolution(const MEulerRotation& dst) const;
    MEulerRotation& setToClosestSolution(const MEulerRotation& src, const MEulerRotation& dst);
    MEulerRotation& setToClosestSolution(const MEulerRotation& dst);
    /// Each angle brought within half a turn of that of `dst` by whole turns.
    MEulerRotation closestCut(const MEulerRotation& dst) const;
    MEulerRotation& setToClosestCut(const MEulerRotation& src, const MEulerRotation& dst);
    MEulerRotation& setToClosestCut(const MEulerRotation& dst);

    /// The rotation of a matrix, without scale and shear, in the given order.
    static MEulerRotation decompose(const MMatrix& matrix, MEulerRotation::RotationOrder ord);
    static MEulerRotation bound(const MEulerRotation& src);
    static MEulerRotation alternateSolution(const MEulerRotation& src);
    static MEulerRotation closestSolution(const MEulerRotation& src, const MEulerRotation& dst);
    static MEulerRotation closestCut(const MEulerRotation& src, const MEulerRotation& dst);

    static const MEulerRotation identity;

    double x;
    double y;
    double z;
    RotationOrder order;
};

OPENMAYA_EXPORT MEulerRotation operator*(double scale, const MEulerRotation& other);
OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& os, const MEulerRotation& rotation);

// Brings MVector; last, for it needs this class declared.
#include <maya/MTransformationMatrix.h>
