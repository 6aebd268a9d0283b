#pragma once

#include "Matrix44.h"

#include <array>

namespace orvo {

/// The part of space that a camera sees, as plain numbers. Lengths are centimetres, angles radians. Camera space has x
/// to the right, y up and z along the view direction.
struct CameraFrustum {
    /// Four corners: top left, top right, bottom right, bottom left.
    using Corners = std::array<Vector3, 4>;

    /// The points p with dot(normal, p) >= distance are inside.
    struct Plane {
        Vector3 normal;
        double distance = 0.0;
    };

    enum Side { Near, Far, Left, Right, Top, Bottom };

    struct Ray {
        Vector3 origin, direction; ///< the direction is not normalised: it reaches depth 1
    };

    Matrix44 cameraToWorld;
    bool isPerspective = true;
    double horizontalFov = 0.0, verticalFov = 0.0;
    double nearDistance = 0.0, farDistance = 0.0;
    double orthoWidth = 0.0, orthoHeight = 0.0; ///< for a camera without perspective
    std::array<Plane, 6> planes{};              ///< in world space, filled by computePlanes

    /// A camera's matrix from world-space vectors of any length: right, up, view direction, eye.
    static Matrix44 matrixOf(const Vector3& viewDirection, const Vector3& up, const Vector3& eye);

    Vector3 eyePoint() const;
    /// Fills `planes` from the other fields.
    void computePlanes();
    /// Corners of the near plane in world space.
    Corners nearCorners() const { return cornersAt(nearDistance, 1.0); }
    /// Corners of the far plane in world space, scaled towards the eye in camera space. Without perspective only the
    /// depth is scaled, so that the quad fills the view as well.
    Corners farCorners(double depthFactor) const { return cornersAt(farDistance, depthFactor); }
    /// From the eye through a point of the view, (0, 0) bottom left to (1, 1) top right. Without perspective the ray
    /// starts beside the eye and runs along the view direction.
    Ray rayThrough(double u, double v) const;

private:
    Corners cornersAt(double distance, double factor) const;
};

} // namespace orvo
