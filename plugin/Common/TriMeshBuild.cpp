#include "TriMeshBuild.h"

#include <bit>
#include <limits>
#include <numeric>
#include <utility>

namespace orvo {
namespace {

constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// Takes the next value into a hash. Values that are equal as numbers have the same: the sum makes a negative zero
/// positive.
std::uint64_t mixed(std::uint64_t hash, double value) {
    hash = (hash ^ std::bit_cast<std::uint64_t>(value + 0.0)) * 0x9e3779b97f4a7c15u;
    return hash ^ (hash >> 32);
}

/// Numbers the distinct positions: equal ones get the same number, in the order of their first points. One that is not
/// equal to itself gets a number of its own.
std::vector<std::uint32_t> numberPositions(const std::vector<Vector3>& points, std::uint32_t& count) {
    std::vector<std::uint32_t> numbers(points.size());
    std::vector<std::uint32_t> firsts(std::bit_ceil(2 * points.size() + 2), kNone); // an open table, half full at most
    const std::size_t mask = firsts.size() - 1;
    count = 0;
    for (std::uint32_t i = 0; i < points.size(); ++i) {
        const Vector3& p = points[i];
        if (!(p == p)) {
            numbers[i] = count++;
            continue;
        }
        std::size_t at = mixed(mixed(mixed(0, p.x), p.y), p.z) & mask;
        while (firsts[at] != kNone && !(points[firsts[at]] == p)) at = (at + 1) & mask;
        if (firsts[at] == kNone) firsts[at] = i;
        numbers[i] = firsts[at] == i ? count++ : numbers[firsts[at]];
    }
    return numbers;
}

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

/// The vertices that were made at each position, by the hash of their UVs. A position's slots lie together, and
/// positions follow the points: the search stays in memory that was used just before.
class SplitTable {
public:
    SplitTable(const std::vector<Vector3>& points, const CornerPairs& pairs) {
        std::uint32_t count = 0;
        positions_ = numberPositions(points, count);
        std::vector<std::size_t> used(count);
        for (std::size_t pair = 0; pair < pairs.size(); ++pair) ++used[positions_[pairs.point(pair)]];
        first_.reserve(count + 1);
        first_.push_back(0);
        for (const std::size_t n : used) first_.push_back(first_.back() + std::bit_ceil(2 * n));
        slots_.assign(first_.back(), kNone);
    }

    /// The vertex at the point's position for which `isSame` holds; `next`, which is entered, when there is none.
    template <class IsSame>
    std::uint32_t find(std::uint32_t point, std::uint64_t hash, std::uint32_t next, IsSame isSame) {
        std::uint32_t* const slots = &slots_[first_[positions_[point]]];
        const std::size_t mask = first_[positions_[point] + 1] - first_[positions_[point]] - 1;
        std::size_t at = hash & mask;
        for (; slots[at] != kNone; at = (at + 1) & mask)
            if (isSame(slots[at])) return slots[at];
        return slots[at] = next;
    }

private:
    std::vector<std::uint32_t> positions_; ///< the number of each point's position
    std::vector<std::size_t> first_;       ///< each position's first slot, and the number of all
    std::vector<std::uint32_t> slots_;
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
    std::vector<std::size_t> sets; // those that are present
    for (std::size_t set = 0; set < TriMesh::kUvSets; ++set)
        if (mesh.cornerUvs[set]) sets.push_back(set);
    for (const std::size_t set : sets) pairUvs[set].resize(pairs.size());
    pairs.forEachCorner(mesh, [&](std::size_t corner, std::uint32_t pair) {
        for (const std::size_t set : sets) pairUvs[set][pair] = (*mesh.cornerUvs[set])[corner];
    });

    TriMesh made;
    made.positions.reserve(pairs.size());
    for (const std::size_t set : sets) made.uvSets[set].emplace().reserve(pairs.size());
    std::vector<std::uint32_t> indices(pairs.size());
    SplitTable table(mesh.points, pairs);
    for (std::size_t pair = 0; pair < pairs.size(); ++pair) {
        std::uint64_t hash = 0;
        const Vector3& position = mesh.points[pairs.point(pair)];
        bool comparable = position == position;
        for (const std::size_t set : sets) {
            const Uv& uv = pairUvs[set][pair];
            hash = mixed(mixed(hash, uv.u), uv.v);
            comparable = comparable && uv == uv;
        }
        const auto isSame = [&](std::uint32_t vertex) {
            for (const std::size_t set : sets)
                if (!((*made.uvSets[set])[vertex] == pairUvs[set][pair])) return false;
            return true;
        };
        const std::uint32_t next = made.numVerts();
        indices[pair] = comparable ? table.find(pairs.point(pair), hash, next, isSame) : next;
        if (indices[pair] != next) continue;
        made.positions.push_back(position);
        for (const std::size_t set : sets) made.uvSets[set]->push_back(pairUvs[set][pair]);
    }

    made.positions.shrink_to_fit();
    for (const std::size_t set : sets) made.uvSets[set]->shrink_to_fit();
    made.triangles = std::move(pairs.triangles());
    for (TriMesh::Triangle& triangle : made.triangles)
        for (std::uint32_t& index : triangle) index = indices[index];
    return made;
}

} // namespace orvo
