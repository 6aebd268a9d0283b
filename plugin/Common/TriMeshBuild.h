#pragma once

#include "TriMesh.h"

/// From polygons, whose corners each have their own UVs, to a mesh with UVs at its vertices.
namespace orvo {

/// A host mesh as plain data. A corner is one vertex of one polygon; the corners of all polygons follow each other.
struct PolygonMesh {
    std::vector<Vector3> points;
    std::vector<int> polygonSizes; ///< corners of each polygon, 3 or more
    std::vector<int> corners;      ///< the point of each corner
    /// The points of the triangles' corners; a polygon of n corners has n - 2 of them, the polygons' follow each other.
    std::vector<TriMesh::Triangle> triangles;
    /// One UV a corner, where the set is present; (0, 0) for corners that have none.
    std::array<std::optional<TriMesh::UvSet>, TriMesh::kUvSets> cornerUvs;
};

/// One vertex a point, with the UV of its last corner. Null when a component of a corner's UV differs from the one that
/// its point has from an earlier corner; one that is zero so far counts as not set.
std::unique_ptr<TriMesh> triMeshByPoints(const PolygonMesh& mesh);

/// One vertex for each pair of a point and a polygon, those that agree exactly in position and UVs taken together.
/// Vertices stand in the order of the first of their pairs; points without a triangle are left out. A value that is
/// not a number agrees with none. Takes time proportional to the mesh's size.
TriMesh triMeshBySeams(const PolygonMesh& mesh);

} // namespace orvo
