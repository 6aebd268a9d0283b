#pragma once

#include <Imath/ImathVec.h>

namespace host::mesh {

/// A ray made ready for tests against many triangles: the coordinates are sheared so that it becomes the z axis.
/// After "Watertight Ray/Triangle Intersection" (Woop, Benthin, Wald, 2013), in double precision: a ray through an edge
/// that two triangles share never passes between them.
class RayTest {
public:
    struct Hit {
        double param;      ///< along the ray, in units of its direction's length; negative behind the origin
        double weights[3]; ///< of the triangle's corners; their sum is 1
        Imath::V3d at(const Imath::V3d& origin, const Imath::V3d& direction) const {
            return origin + direction * param;
        }
    };

    /// The direction must not be zero, and all numbers finite.
    RayTest(const Imath::V3d& origin, const Imath::V3d& direction);

    /// Whether the line through the ray meets the triangle, from either side. Weights may be as far below 0 as
    /// `tolerance` says. Triangles without area as seen along the ray are not met. The parameter is exact to the
    /// rounding at corners and where all three corners lie equally far along the ray.
    bool meets(const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c, double tolerance, Hit& hit) const;

private:
    Imath::V3d origin_;
    int x_, y_, z_; // the axes, z_ being the one that the direction has most of
    double shearX_, shearY_, alongZ_;
};

/// The point of a triangle that is nearest to `p`. Triangles without area are segments or points. Triangles that
/// share an edge or corner give the very same point on it.
Imath::V3d nearestOnTriangle(const Imath::V3d& p, const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c);

/// The corners' weights at a point of the triangle; for a triangle without area, those of one of its edges or corners.
void weightsAt(const Imath::V3d& p, const Imath::V3d& a, const Imath::V3d& b, const Imath::V3d& c, double weights[3]);

} // namespace host::mesh
