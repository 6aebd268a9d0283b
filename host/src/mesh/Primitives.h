#pragma once

#include "PolyMesh.h"

#include <memory>
#include <string>

/// Polygon primitives, centred at the origin, with outward winding and texture coordinates in "map1".
///
/// Sizes are in scene units. Subdivisions below the least become the least. `axis` is where the primitive's own Y
/// axis points; of zero length it stands for Y. Each function returns null, and says why, when a size is negative or
/// not finite, or when the mesh would have more than kMostPrimitiveVertices vertices.
namespace host::mesh {

constexpr int kMostPrimitiveVertices = 4'000'000;

struct PlaneOptions {
    double width = 1, height = 1; ///< along X and Z
    int subdivisionsX = 10, subdivisionsY = 10;
    Imath::V3d axis{0, 1, 0};
};
/// A rectangle, its vertices in rows along +X, from +Z to -Z. Edges at the border are hard.
std::shared_ptr<const PolyMesh> polyPlane(const PlaneOptions& options, std::string* error = nullptr);

struct CubeOptions {
    double width = 1, height = 1, depth = 1; ///< along X, Y and Z
    int subdivisionsX = 1, subdivisionsY = 1, subdivisionsZ = 1;
    Imath::V3d axis{0, 1, 0};
};
/// A box: rows along +X that run up the front (+Z), back over the top, down the back and forward below, then the
/// inner vertices of the right and the left side. The box's twelve edges are hard.
std::shared_ptr<const PolyMesh> polyCube(const CubeOptions& options, std::string* error = nullptr);

struct SphereOptions {
    double radius = 1;
    int subdivisionsAxis = 20, subdivisionsHeight = 20; ///< at least 3 each
    Imath::V3d axis{0, 1, 0};
};
/// A sphere of rings from bottom to top, closed by triangles around the south and the north pole, which are its last
/// two vertices. All edges are smooth.
std::shared_ptr<const PolyMesh> polySphere(const SphereOptions& options, std::string* error = nullptr);

struct CylinderOptions {
    double radius = 1, height = 2;
    int subdivisionsAxis = 20; ///< at least 3
    int subdivisionsHeight = 1;
    int subdivisionsCaps = 1; ///< rings of each cap, around a vertex at its centre; 0 for one polygon a cap
    Imath::V3d axis{0, 1, 0};
};
/// A cylinder of rings: the bottom cap's outward, the side's upward, the top cap's inward; then the centres of the
/// bottom and the top cap. Edges at the two rims are hard.
std::shared_ptr<const PolyMesh> polyCylinder(const CylinderOptions& options, std::string* error = nullptr);

} // namespace host::mesh
