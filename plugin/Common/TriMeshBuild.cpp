#include "TriMeshBuild.h"

#include <bit>
#include <limits>
#include <numeric>
#include <utility>

namespace orvo {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// What decides whether two pairs become one vertex. The UVs of absent sets are (0, 0).
struct SplitVertex {
    Vector3 position;
    std::array<Uv, TriMesh::kUvSets> uvs;
    bool operator==(const SplitVertex&) const = default;

    std::array<double, 3 + 2 * TriMesh::kUvSets> values() const {
        return {position.x, position.y, position.z, uvs[0].u, uvs[0].v, uvs[1].u, uvs[1].v, uvs[2].u, uvs[2].v};
    }
};

/// The indices of distinct vertices: a table of open addresses, at most half full.
class VertexTable {
public:
    explicit VertexTable(std::size_t most) : slots_(std::bit_ceil(2 * most + 2), kNone) {}

    /// The index of the first equal vertex among `vertices`; the vertex is added when there is none.
    std::uint32_t indexOf(const SplitVertex& vertex, std::vector<SplitVertex>& vertices) {
        const auto next = static_cast<std::uint32_t>(vertices.size());
        // One that is not equal to itself (not a number) would only lengthen the searches of the others.
        if (!(vertex == vertex)) {
            vertices.push_back(vertex);
            return next;
        }
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash(vertex) & mask;
        for (; slots_[at] != kNone; at = (at + 1) & mask)
            if (vertices[slots_[at]] == vertex) return slots_[at];
        slots_[at] = next;
        vertices.push_back(vertex);
        return next;
    }

private:
    /// Equal vertices have equal hashes: the sum makes a negative zero positive.
    static std::size_t hash(const SplitVertex& vertex) {
        std::uint64_t h = 0;
        for (const double value : vertex.values()) {
            h ^= std::bit_cast<std::uint64_t>(value + 0.0);
            h *= 0x9e3779b97f4a7c15u;
            h ^= h >> 32;
        }
        return static_cast<std::size_t>(h);
    }

    std::vector<std::uint32_t> slots_;
};

/// The pairs of a point and a polygon that triangles refer to, in ascending order.
class CornerPairs {
public:
    explicit CornerPairs(const PolygonMesh& mesh) : first_(mesh.points.size() + 1), used_(mesh.points.size()) {
        std::vector<int> lastPolygon(mesh.points.size(), -1);
        forEachTriangle(mesh, [&](int polygon, const TriMesh::Triangle& triangle) {
            for (const std::uint32_t point : triangle)
                if (std::exchange(lastPolygon[point], polygon) != polygon) ++first_[point + 1];
        });
        std::partial_sum(first_.begin(), first_.end(), first_.begin());
        points_.resize(first_.back());
        polygons_.resize(first_.back());
        triangles_.reserve(mesh.triangles.size());
        // Polygons come in ascending order, so each point's pairs do, too.
        forEachTriangle(mesh, [&](int polygon, const TriMesh::Triangle& triangle) {
            TriMesh::Triangle pairs;
            for (std::size_t i = 0; i < 3; ++i) {
                const std::uint32_t point = triangle[i];
                if (used_[point] == 0 || polygons_[first_[point] + used_[point] - 1] != polygon) {
                    points_[first_[point] + used_[point]] = point;
                    polygons_[first_[point] + used_[point]++] = polygon;
                }
                pairs[i] = first_[point] + used_[point] - 1;
            }
            triangles_.push_back(pairs);
        });
    }

    std::size_t size() const { return points_.size(); }
    std::uint32_t point(std::size_t pair) const { return points_[pair]; }
    /// The triangles, as indices of pairs.
    std::vector<TriMesh::Triangle>& triangles() { return triangles_; }

    /// Calls `visit(corner, pair)` for the corners of all polygons in order.
    template <class Visit>
    void forEachCorner(const PolygonMesh& mesh, Visit visit) const {
        std::vector<std::uint32_t> at(first_.begin(), first_.end() - 1);
        std::size_t corner = 0;
        for (int polygon = 0; polygon < static_cast<int>(mesh.polygonSizes.size()); ++polygon) {
            for (int i = 0; i < mesh.polygonSizes[polygon]; ++i, ++corner) {
                const int point = mesh.corners[corner];
                std::uint32_t& pair = at[point];
                while (pair < first_[point + 1] && polygons_[pair] < polygon) ++pair;
                if (pair < first_[point + 1] && polygons_[pair] == polygon) visit(corner, pair);
            }
        }
    }

private:
    template <class Visit>
    static void forEachTriangle(const PolygonMesh& mesh, Visit visit) {
        std::size_t triangle = 0;
        for (int polygon = 0; polygon < static_cast<int>(mesh.polygonSizes.size()); ++polygon)
            for (int i = 2; i < mesh.polygonSizes[polygon]; ++i) visit(polygon, mesh.triangles[triangle++]);
    }

    std::vector<std::uint32_t> first_; ///< each point's first pair, and the number of all
    std::vector<std::uint32_t> used_;
    std::vector<std::uint32_t> points_;
    std::vector<int> polygons_;
    std::vector<TriMesh::Triangle> triangles_;
};

/// Stores a component of a UV. @return false when another value stands there
bool store(double& stored, double value) {
    if (stored != 0.0 && stored != value) return false;
    stored = value;
    return true;
}

} // namespace

std::unique_ptr<TriMesh> triMeshByPoints(const PolygonMesh& mesh) {
    auto made = std::make_unique<TriMesh>();
    for (std::size_t set = 0; set < TriMesh::kUvSets; ++set) {
        if (!mesh.cornerUvs[set]) continue;
        TriMesh::UvSet& uvs = made->uvSets[set].emplace(mesh.points.size());
        for (std::size_t corner = 0; corner < mesh.corners.size(); ++corner) {
            const Uv& uv = (*mesh.cornerUvs[set])[corner];
            Uv& stored = uvs[mesh.corners[corner]];
            if (!store(stored.u, uv.u) || !store(stored.v, uv.v)) return nullptr;
        }
    }
    made->positions = mesh.points;
    made->triangles = mesh.triangles;
    return made;
}

TriMesh triMeshBySeams(const PolygonMesh& mesh) {
    CornerPairs pairs(mesh);
    std::array<TriMesh::UvSet, TriMesh::kUvSets> pairUvs;
    for (std::size_t set = 0; set < TriMesh::kUvSets; ++set)
        if (mesh.cornerUvs[set]) pairUvs[set].resize(pairs.size());
    pairs.forEachCorner(mesh, [&](std::size_t corner, std::uint32_t pair) {
        for (std::size_t set = 0; set < TriMesh::kUvSets; ++set)
            if (mesh.cornerUvs[set]) pairUvs[set][pair] = (*mesh.cornerUvs[set])[corner];
    });

    VertexTable table(pairs.size());
    std::vector<SplitVertex> vertices;
    std::vector<std::uint32_t> indices(pairs.size());
    for (std::size_t pair = 0; pair < pairs.size(); ++pair) {
        SplitVertex vertex{mesh.points[pairs.point(pair)], {}};
        for (std::size_t set = 0; set < TriMesh::kUvSets; ++set)
            if (mesh.cornerUvs[set]) vertex.uvs[set] = pairUvs[set][pair];
        indices[pair] = table.indexOf(vertex, vertices);
    }

    TriMesh made;
    made.positions.reserve(vertices.size());
    for (const SplitVertex& vertex : vertices) made.positions.push_back(vertex.position);
    for (std::size_t set = 0; set < TriMesh::kUvSets; ++set) {
        if (!mesh.cornerUvs[set]) continue;
        TriMesh::UvSet& uvs = made.uvSets[set].emplace();
        uvs.reserve(vertices.size());
        for (const SplitVertex& vertex : vertices) uvs.push_back(vertex.uvs[set]);
    }
    made.triangles = std::move(pairs.triangles());
    for (TriMesh::Triangle& triangle : made.triangles)
        for (std::uint32_t& index : triangle) index = indices[index];
    return made;
}

} // namespace orvo
