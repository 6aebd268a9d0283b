#pragma once

#include "mesh/PolyMesh.h"

#include <Imath/ImathMatrix.h>

#include <optional>

namespace host::mesh {

class TriangleTree;

/// A ray to cast. Its parameter is in units of the direction's length.
struct Ray {
    Imath::V3d origin, direction; ///< finite; the direction is not zero
    float maxParam = 0;           ///< how far to look, 0 or more
    bool bothDirections = false;  ///< look as far backwards, where parameters are negative
    double tolerance = 1e-6;      ///< how far outside of a triangle still counts, as a share of its size; 0 to 1
};

struct RayHit {
    float param = 0;
    Imath::V3d point;
    int triangle = -1;          ///< counted over the whole mesh
    float bary1 = 0, bary2 = 0; ///< the weights of the triangle's first two corners
};

struct NearestPoint {
    Imath::V3d point;
    double distance2 = 0; ///< its square
    int triangle = -1;
};

/// Where rays meet a mesh and which of its points are nearest, for the mesh placed by a matrix.
///
/// The answers are those of a test of every triangle in double precision, also when a tree is used to find them. Hits
/// are compared by their parameters in single precision; among equal ones, as among points equally near, the first
/// triangle wins: that of the lowest face and the lowest number within the face. A triangle with a
/// coordinate that is not finite, or beyond 1e60, is never met.
class MeshQueries {
public:
    /// Copies what it needs. Throws std::bad_alloc.
    MeshQueries(const PolyMesh& mesh, const Imath::M44d& placement);
    ~MeshQueries();
    MeshQueries(const MeshQueries&) = delete;
    MeshQueries& operator=(const MeshQueries&) = delete;

    /// Makes the tree, for rays of up to that tolerance; nothing where there is one already. Without Embree, queries
    /// test every triangle. Throws std::bad_alloc.
    void accelerate(double tolerance);
    bool accelerated(double tolerance) const { return tree_ && tolerance <= slack_; }

    /// The hit with the smallest absolute parameter; forward wins over backward.
    std::optional<RayHit> closestHit(const Ray& ray) const;
    /// All hits, in the order of the triangles. A ray through an edge meets the triangles on both sides.
    std::vector<RayHit> allHits(const Ray& ray) const;
    /// Nothing when there is no triangle. The coordinates must be finite, and at most 1e60.
    std::optional<NearestPoint> nearest(const Imath::V3d& point) const;
    /// The same for some triangles only, each tested.
    std::optional<RayHit> closestHit(const Ray& ray, std::span<const int> triangles) const;
    std::vector<RayHit> allHits(const Ray& ray, std::span<const int> triangles) const;

    int numTriangles() const { return static_cast<int>(triangles_.size()); }
    int faceOf(int triangle) const;
    /// The face's first triangle; that of face numFaces() is numTriangles().
    int firstTriangle(int face) const { return firsts_[static_cast<std::size_t>(face)]; }
    int numFaces() const { return static_cast<int>(firsts_.size()) - 1; }
    std::array<Imath::V3d, 3> corners(int triangle) const;
    /// Memory in use, about.
    std::size_t bytes() const;

private:
    template <class OnTriangle>
    void search(const Ray& ray, bool backwards, double limit, OnTriangle& onTriangle) const;

    std::vector<Imath::V3d> points_;
    std::vector<std::array<int, 3>> triangles_;
    std::vector<int> firsts_;
    std::unique_ptr<TriangleTree> tree_;
    double slack_ = 0;
};

} // namespace host::mesh
