#pragma once

#include "PolyMesh.h"

#include <span>

class GLUtesselator;

namespace host::mesh {

/// Newell's normal of a closed polygon: twice its projected area long; a triangle's is its cross product.
Imath::V3d newellNormal(std::span<const Float3> points, std::span<const int> polygon);

/// Splits polygons into triangles. One object serves many polygons, one thread at a time.
class Triangulator {
public:
    Triangulator() = default;
    ~Triangulator();
    Triangulator(const Triangulator&) = delete;
    Triangulator& operator=(const Triangulator&) = delete;

    /// Splits a polygon of n >= 3 corners, given as vertices of `points`, into exactly n - 2 triangles of corner
    /// numbers (0 to n - 1), written to `triangles`. See PolyMesh::triangles() for the rules.
    void triangulate(std::span<const Float3> points, std::span<const int> polygon,
                     std::span<PolyMesh::Triangle> triangles);

private:
    bool tessellate(std::span<const Float3> points, std::span<const int> polygon, const Imath::V3d& normal,
                    std::span<PolyMesh::Triangle> triangles);

    GLUtesselator* tess_ = nullptr;
};

} // namespace host::mesh
