#pragma once

#include "Vector3.h"

#include <array>
#include <cstdint>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <memory>
#include <optional>
#include <vector>

class MFnMesh;

namespace orvo {

struct Uv {
    double u = 0.0, v = 0.0;
    bool operator==(const Uv&) const = default;
};

/// The toolkit's own indexed triangle mesh.
struct TriMesh {
    using Triangle = std::array<std::uint32_t, 3>;
    using UvSet = std::vector<Uv>;
    static constexpr std::size_t kUvSets = 3;
    /// The host UV sets that are read, by slot.
    static constexpr std::array<const char*, kUvSets> uvSetNames{"map1", "dummy0", "dummy1"};

    std::vector<Vector3> positions;                   ///< centimetres
    std::array<std::optional<UvSet>, kUvSets> uvSets; ///< one UV a vertex, where present
    std::vector<Triangle> triangles;                  ///< indices of positions

    std::uint32_t numVerts() const { return static_cast<std::uint32_t>(positions.size()); }
    std::uint32_t numTris() const { return static_cast<std::uint32_t>(triangles.size()); }

    /// Adds another mesh's vertices and triangles after this one's. A UV set that one of the two lacks is lost, unless
    /// this mesh has no vertices yet. Throws std::length_error when the vertices exceed 32-bit indices.
    void append(const TriMesh& other);

    /// One unit normal a vertex: the average over its triangles, weighted by their areas. (0, 1, 0) where that has no
    /// direction.
    std::vector<Vector3> vertexNormals() const;
};

/// The triangles of a host mesh, in world or object space, with its UV sets of the names above when `uvs` is set. A
/// vertex that has several UVs becomes several vertices (see TriMeshBuild.h). World space needs a mesh on a DAG path.
/// Null, with a report, when the mesh has no vertices or no polygons, or the host fails.
std::unique_ptr<TriMesh> CreateTriMeshFromMayaMesh(const MFnMesh& mesh, bool worldSpace, bool uvs);

/// Makes a host mesh below a new transform, which gets the name. `uvs`: with UV set 0 as its default UV set;
/// `shading`: in the initial shading group. Failures are reported and returned; what was made by then stays.
MStatus CreateMayaMesh(const TriMesh& mesh, const MString& name, bool uvs, bool shading);

} // namespace orvo
