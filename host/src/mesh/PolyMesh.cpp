#include "PolyMesh.h"

#include "Checks.h"
#include "QueryCache.h"
#include "Triangulator.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <unordered_map>

namespace host::mesh {
namespace {

/// Turns corner counts into the offsets of the faces, checking them against the number of corners given.
bool makeOffsets(std::span<const int> counts, std::size_t corners, std::vector<int>& offsets, std::string* error) {
    if (counts.size() >= kMostElements || corners > kMostElements) return fail(error, "mesh: too many polygons");
    offsets.reserve(counts.size() + 1);
    std::size_t total = 0;
    for (std::size_t face = 0; face < counts.size(); ++face) {
        if (counts[face] < 3)
            return fail(error, fmt::format("face {}: {} corners; a polygon has at least 3", face, counts[face]));
        total += static_cast<std::size_t>(counts[face]);
        if (total > corners)
            return fail(error, fmt::format("face {}: its corners lie beyond the {} that are given", face, corners));
        offsets.push_back(static_cast<int>(total));
    }
    if (total != corners)
        return fail(error, fmt::format("the polygons have {} corners, but {} are given", total, corners));
    return true;
}

Imath::V3d unit(const Imath::V3d& v) {
    const double length = std::sqrt(v.dot(v));
    return length > 0 && std::isfinite(length) ? v / length : Imath::V3d(0.0);
}

Float3 toSingle(const Imath::V3d& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

/// The angle between two edges at a corner, in radians; 0 where an edge has no length.
double angleBetween(const Imath::V3d& a, const Imath::V3d& b) {
    const Imath::V3d cross = a.cross(b);
    const double angle = std::atan2(std::sqrt(cross.dot(cross)), a.dot(b));
    return std::isfinite(angle) ? angle : 0;
}

template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

/// Sets of corners that share a normal, as a forest of corner numbers.
class Groups {
public:
    explicit Groups(int size) : parent_(size) { std::iota(parent_.begin(), parent_.end(), 0); }
    int find(int i) {
        while (parent_[i] != i) i = parent_[i] = parent_[parent_[i]];
        return i;
    }
    void join(int a, int b) { // the lower number leads, so that the result does not depend on the order
        a = find(a);
        b = find(b);
        parent_[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<int> parent_;
};

} // namespace

Incidence::Incidence(int count, std::vector<std::pair<int, int>> pairs) {
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    starts_.assign(static_cast<std::size_t>(count) + 1, 0);
    items_.reserve(pairs.size());
    for (const auto& [element, other] : pairs) {
        ++starts_[static_cast<std::size_t>(element) + 1];
        items_.push_back(other);
    }
    std::partial_sum(starts_.begin(), starts_.end(), starts_.begin());
}

PolyMesh::PolyMesh() { uvSets_.push_back({.name = "map1", .u = {}, .v = {}, .ids = {}}); }

PolyMesh PolyMesh::fromPolygons(std::vector<Float3> points, std::span<const int> counts, std::vector<int> connects,
                                std::string* error) {
    if (error) error->clear();
    PolyMesh mesh;
    if (points.size() > kMostElements) {
        fail(error, "mesh: too many vertices");
        return {};
    }
    if (!makeOffsets(counts, connects.size(), mesh.offsets_, error)) return {};
    for (std::size_t i = 0; i < connects.size(); ++i) {
        if (connects[i] >= 0 && static_cast<std::size_t>(connects[i]) < points.size()) continue;
        const auto face = std::upper_bound(mesh.offsets_.begin(), mesh.offsets_.end(), static_cast<int>(i));
        fail(error, fmt::format("face {}: vertex {} does not exist; the mesh has {}", face - mesh.offsets_.begin() - 1,
                                connects[i], points.size()));
        return {};
    }
    mesh.points_ = std::move(points);
    mesh.connects_ = std::move(connects);
    return mesh;
}

PolyMesh PolyMesh::fromEdges(std::vector<Float3> points, std::vector<Edge> edges, std::span<const int> counts,
                             std::vector<int> faceEdges, std::string* error) {
    if (error) error->clear();
    if (points.size() > kMostElements || edges.size() > kMostElements) {
        fail(error, "mesh: too many vertices or edges");
        return {};
    }
    const int numPoints = static_cast<int>(points.size()), numEdges = static_cast<int>(edges.size());
    const auto vertexExists = [&](int v) { return v >= 0 && v < numPoints; };
    for (int e = 0; e < numEdges; ++e) {
        if (vertexExists(edges[e].v1) && vertexExists(edges[e].v2)) continue;
        fail(error, fmt::format("edge {}: vertices {} and {} are not both among the mesh's {}", e, edges[e].v1,
                                edges[e].v2, numPoints));
        return {};
    }
    PolyMesh mesh;
    if (!makeOffsets(counts, faceEdges.size(), mesh.offsets_, error)) return {};
    mesh.connects_.resize(faceEdges.size());
    for (int face = 0; face < mesh.numPolygons(); ++face) {
        const int start = mesh.faceStart(face), size = mesh.faceSize(face);
        for (int i = 0; i < size; ++i) {
            const int id = faceEdges[start + i], edge = id >= 0 ? id : ~id;
            if (edge >= numEdges) {
                fail(error, fmt::format("face {}: edge {} does not exist; the mesh has {}", face, id, numEdges));
                return {};
            }
            mesh.connects_[start + i] = id >= 0 ? edges[edge].v1 : edges[edge].v2;
        }
        for (int i = 0; i < size; ++i) {
            const int id = faceEdges[start + i], next = (i + 1) % size;
            const int end = id >= 0 ? edges[id].v2 : edges[~id].v1;
            if (end == mesh.connects_[start + next]) continue;
            fail(error, fmt::format("face {}: edge {} ends at vertex {}, but the next one, {}, starts at vertex {}",
                                    face, id, end, faceEdges[start + next], mesh.connects_[start + next]));
            return {};
        }
    }
    mesh.points_ = std::move(points);
    mesh.topology_.set({std::move(edges), std::move(faceEdges)});
    return mesh;
}

const PolyMesh::Topology& PolyMesh::topology() const {
    return topology_.get([this] {
        struct Mix { // neighbouring vertices must not land in neighbouring buckets only by their low halves
            std::size_t operator()(std::uint64_t key) const {
                key *= 0x9E3779B97F4A7C15ull;
                return key ^ (key >> 32);
            }
        };
        Topology t;
        t.faceEdges.resize(connects_.size());
        std::unordered_map<std::uint64_t, int, Mix> known;
        known.reserve(connects_.size() / 2 + 1);
        for (int face = 0; face < numPolygons(); ++face) {
            const int start = faceStart(face), size = faceSize(face);
            for (int i = 0; i < size; ++i) {
                const int a = connects_[start + i], b = connects_[start + (i + 1) % size];
                const auto low = static_cast<std::uint64_t>(std::min(a, b));
                const auto high = static_cast<std::uint64_t>(std::max(a, b));
                const auto [at, isNew] = known.try_emplace(low << 32 | high, static_cast<int>(t.edges.size()));
                if (isNew) t.edges.push_back({a, b, true});
                t.faceEdges[start + i] = t.edges[at->second].v1 == a ? at->second : ~at->second;
            }
        }
        return t;
    });
}

const Neighbours& PolyMesh::neighbours() const {
    return neighbours_.get([this] {
        std::vector<std::pair<int, int>> vertexFaces, vertexEdges, edgeFaces;
        vertexFaces.reserve(connects_.size());
        edgeFaces.reserve(connects_.size());
        for (int face = 0; face < numPolygons(); ++face) {
            for (const int vertex : faceVertices(face)) vertexFaces.emplace_back(vertex, face);
            for (const int id : faceEdges(face)) edgeFaces.emplace_back(id >= 0 ? id : ~id, face);
        }
        vertexEdges.reserve(2 * edges().size());
        for (int edge = 0; edge < numEdges(); ++edge) {
            vertexEdges.emplace_back(edges()[edge].v1, edge);
            vertexEdges.emplace_back(edges()[edge].v2, edge);
        }
        return Neighbours{Incidence(numVertices(), std::move(vertexFaces)),
                          Incidence(numVertices(), std::move(vertexEdges)),
                          Incidence(numEdges(), std::move(edgeFaces))};
    });
}

void PolyMesh::setEdgeSmooth(int edge, bool smooth) {
    if (edges()[edge].smooth == smooth) return;
    Topology changed = topology();
    changed.edges[edge].smooth = smooth;
    topology_.set(std::move(changed));
    faceVertexNormals_.reset();
}

bool PolyMesh::setEdgesSmooth(const std::vector<bool>& smooth) {
    if (smooth.size() != edges().size()) return false;
    Topology changed = topology();
    for (std::size_t e = 0; e < smooth.size(); ++e) changed.edges[e].smooth = smooth[e];
    topology_.set(std::move(changed));
    faceVertexNormals_.reset();
    return true;
}

void PolyMesh::pointsChanged() {
    triangles_.reset();
    for (auto& normals : vertexNormals_) normals.reset();
    faceVertexNormals_.reset();
    queryCache_.reset();
}

QueryCache& PolyMesh::queryCache() const {
    return *queryCache_.get([] { return std::make_shared<QueryCache>(); });
}

void PolyMesh::setPoint(int vertex, const Float3& point) {
    points_[vertex] = point;
    pointsChanged();
}

bool PolyMesh::setPoints(std::span<const Float3> points) {
    if (points.size() != points_.size()) return false;
    points_.assign(points.begin(), points.end());
    pointsChanged();
    return true;
}

std::span<const PolyMesh::Triangle> PolyMesh::triangles() const {
    return triangles_.get([this] {
        std::vector<Triangle> all(static_cast<std::size_t>(numTriangles()));
        Triangulator triangulator;
        std::size_t at = 0;
        for (int face = 0; face < numPolygons(); ++face) {
            const auto mine = std::span(all).subspan(at, faceSize(face) - 2);
            triangulator.triangulate(points_, faceVertices(face), mine);
            for (Triangle& t : mine)
                for (int& corner : t) corner += faceStart(face);
            at += mine.size();
        }
        return all;
    });
}

std::array<int, 3> PolyMesh::triangleVertices(int face, int triangle) const {
    const Triangle& t = faceTriangles(face)[triangle];
    return {connects_[t[0]], connects_[t[1]], connects_[t[2]]};
}

Imath::V3d PolyMesh::newellNormal(int face) const { return mesh::newellNormal(points_, faceVertices(face)); }

Imath::V3d PolyMesh::polygonNormal(int face) const { return unit(newellNormal(face)); }

std::span<const Float3> PolyMesh::vertexNormals(NormalWeight weight) const {
    return vertexNormals_[static_cast<std::size_t>(weight)].get([this, weight] {
        std::vector<Imath::V3d> sums(points_.size(), Imath::V3d(0.0));
        for (int face = 0; face < numPolygons(); ++face) {
            const Imath::V3d area = newellNormal(face), normal = unit(area);
            if (normal == Imath::V3d(0.0)) continue;
            const auto vertices = faceVertices(face);
            const std::size_t n = vertices.size();
            for (std::size_t i = 0; i < n; ++i) {
                Imath::V3d& sum = sums[vertices[i]];
                if (weight == NormalWeight::Area) {
                    sum += area;
                } else if (weight == NormalWeight::Equal) {
                    sum += normal;
                } else {
                    const Imath::V3d here = toDouble(points_[vertices[i]]);
                    sum += normal * angleBetween(toDouble(points_[vertices[(i + 1) % n]]) - here,
                                                 toDouble(points_[vertices[(i + n - 1) % n]]) - here);
                }
            }
        }
        std::vector<Float3> normals(sums.size());
        std::transform(sums.begin(), sums.end(), normals.begin(), [](const auto& sum) { return toSingle(unit(sum)); });
        return normals;
    });
}

std::span<const Float3> PolyMesh::faceVertexNormals() const {
    return faceVertexNormals_.get([this] { return computeFaceVertexNormals(); });
}

std::vector<Float3> PolyMesh::computeFaceVertexNormals() const {
    const Topology& t = topology();
    Groups groups(numFaceVertices());
    // Across a smooth edge the corners at each of its ends belong together. `first` is the first side met of an edge.
    std::vector<int> first(t.edges.size(), -1), face(connects_.size());
    for (int f = 0; f < numPolygons(); ++f) std::fill_n(face.begin() + faceStart(f), faceSize(f), f);
    const auto next = [&](int corner) {
        return corner + 1 < faceStart(face[corner] + 1) ? corner + 1 : faceStart(face[corner]);
    };
    for (int corner = 0; corner < numFaceVertices(); ++corner) {
        const int id = t.faceEdges[corner], edge = id >= 0 ? id : ~id;
        if (!t.edges[edge].smooth) continue;
        const int other = first[edge];
        if (other < 0) {
            first[edge] = corner;
            continue;
        }
        const bool sameWay = connects_[other] == connects_[corner];
        groups.join(corner, sameWay ? other : next(other));
        groups.join(next(corner), sameWay ? next(other) : other);
    }
    std::vector<Imath::V3d> sums(connects_.size(), Imath::V3d(0.0));
    for (int f = 0; f < numPolygons(); ++f) {
        const Imath::V3d normal = polygonNormal(f);
        const auto vertices = faceVertices(f);
        const std::size_t n = vertices.size();
        for (std::size_t i = 0; i < n; ++i) {
            const Imath::V3d here = toDouble(points_[vertices[i]]);
            sums[groups.find(faceStart(f) + static_cast<int>(i))] +=
                normal * angleBetween(toDouble(points_[vertices[(i + 1) % n]]) - here,
                                      toDouble(points_[vertices[(i + n - 1) % n]]) - here);
        }
    }
    std::vector<Float3> normals(connects_.size());
    for (int corner = 0; corner < numFaceVertices(); ++corner) {
        const bool isSet = !explicitNormals_.empty() && explicitNormals_[corner].x < kNoNormal;
        normals[corner] = isSet ? explicitNormals_[corner] : toSingle(unit(sums[groups.find(corner)]));
    }
    return normals;
}

bool PolyMesh::assignNormals(std::vector<Float3> normals) {
    if (!normals.empty() && normals.size() != connects_.size()) return false;
    explicitNormals_ = std::move(normals);
    faceVertexNormals_.reset();
    return true;
}

Box PolyMesh::boundingBox() const {
    Box box;
    for (const Float3& p : points_) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) continue;
        if (box.empty) box = {p, p, false};
        box.min = {std::min(box.min.x, p.x), std::min(box.min.y, p.y), std::min(box.min.z, p.z)};
        box.max = {std::max(box.max.x, p.x), std::max(box.max.y, p.y), std::max(box.max.z, p.z)};
    }
    return box;
}

int PolyMesh::findUvSet(std::string_view name) const {
    if (name.empty()) return currentUvSet_;
    const auto at = std::find_if(uvSets_.begin(), uvSets_.end(), [&](const UvSet& set) { return set.name == name; });
    return at == uvSets_.end() ? -1 : static_cast<int>(at - uvSets_.begin());
}

int PolyMesh::addUvSet(std::string name) {
    if (name.empty() || findUvSet(name) >= 0) return -1;
    uvSets_.push_back({.name = std::move(name), .u = {}, .v = {}, .ids = {}});
    return numUvSets() - 1;
}

bool PolyMesh::renameUvSet(int set, std::string name) {
    if (name.empty()) return false;
    if (const int holder = findUvSet(name); holder >= 0 && holder != set) return false;
    uvSets_[set].name = std::move(name);
    return true;
}

void PolyMesh::removeUvSet(int set) {
    uvSets_.erase(uvSets_.begin() + set);
    if (currentUvSet_ >= set) currentUvSet_ = currentUvSet_ == set ? 0 : currentUvSet_ - 1;
}

bool PolyMesh::setUvs(int set, std::vector<float> u, std::vector<float> v, std::string* error) {
    if (error) error->clear();
    UvSet& s = uvSets_[set];
    if (u.size() != v.size())
        return fail(error, fmt::format("UV set {}: {} u values, but {} v values", s.name, u.size(), v.size()));
    if (u.size() > kMostElements) return fail(error, fmt::format("UV set {}: too many values", s.name));
    const auto highest = std::max_element(s.ids.begin(), s.ids.end());
    if (highest != s.ids.end() && *highest >= static_cast<int>(u.size()))
        return fail(error, fmt::format("UV set {}: id {} is assigned, but only {} values are given", s.name, *highest,
                                       u.size()));
    s.u = std::move(u);
    s.v = std::move(v);
    return true;
}

bool PolyMesh::assignUvs(int set, std::span<const int> counts, std::span<const int> ids, std::string* error) {
    if (error) error->clear();
    UvSet& s = uvSets_[set];
    if (counts.size() != static_cast<std::size_t>(numPolygons()))
        return fail(error, fmt::format("UV set {}: {} counts for {} faces", s.name, counts.size(), numPolygons()));
    std::vector<int> assigned(connects_.size(), -1);
    bool any = false;
    std::size_t at = 0;
    for (int face = 0; face < numPolygons(); ++face) {
        if (counts[face] == 0) continue;
        if (counts[face] != faceSize(face))
            return fail(error, fmt::format("UV set {}, face {}: {} ids for {} corners", s.name, face, counts[face],
                                           faceSize(face)));
        for (int i = 0; i < faceSize(face); ++i, ++at) {
            if (at >= ids.size())
                return fail(error, fmt::format("UV set {}, face {}: its ids lie beyond the {} that are given", s.name,
                                               face, ids.size()));
            if (ids[at] < -1 || ids[at] >= s.size())
                return fail(error, fmt::format("UV set {}, face {}: id {} does not exist; the set has {}", s.name, face,
                                               ids[at], s.size()));
            assigned[faceStart(face) + i] = ids[at];
            any = any || ids[at] >= 0;
        }
    }
    if (at != ids.size())
        return fail(error,
                    fmt::format("UV set {}: the counts sum up to {}, but {} ids are given", s.name, at, ids.size()));
    s.ids = any ? std::move(assigned) : std::vector<int>();
    return true;
}

int PolyMesh::addUv(int set, float u, float v) {
    uvSets_[set].u.push_back(u);
    uvSets_[set].v.push_back(v);
    return uvSets_[set].size() - 1;
}

void PolyMesh::setUv(int set, int id, float u, float v) {
    uvSets_[set].u[id] = u;
    uvSets_[set].v[id] = v;
}

void PolyMesh::assignUv(int set, int face, int corner, int id) {
    UvSet& s = uvSets_[set];
    if (s.ids.empty()) s.ids.assign(connects_.size(), -1);
    s.ids[faceStart(face) + corner] = id;
}

void PolyMesh::clearUvs(int set) { uvSets_[set] = {.name = uvSets_[set].name, .u = {}, .v = {}, .ids = {}}; }

bool PolyMesh::uvAt(int set, int face, int corner, float& u, float& v) const {
    const int id = uvId(set, face, corner);
    if (id < 0) return false;
    u = uvSets_[set].u[id];
    v = uvSets_[set].v[id];
    return true;
}

bool operator==(const PolyMesh& a, const PolyMesh& b) {
    const auto sameSet = [](const UvSet& s, const UvSet& t) {
        return s.name == t.name && s.ids == t.ids && sameBits(s.u, t.u) && sameBits(s.v, t.v);
    };
    return sameBits(a.points_, b.points_) && a.offsets_ == b.offsets_ && a.connects_ == b.connects_ &&
           a.currentUvSet_ == b.currentUvSet_ && sameBits(a.explicitNormals_, b.explicitNormals_) &&
           std::equal(a.uvSets_.begin(), a.uvSets_.end(), b.uvSets_.begin(), b.uvSets_.end(), sameSet) &&
           (a.faceRecords_ == b.faceRecords_ ||
            (a.faceRecords_ && b.faceRecords_ && *a.faceRecords_ == *b.faceRecords_)) &&
           a.topology().edges == b.topology().edges && a.topology().faceEdges == b.topology().faceEdges;
}

} // namespace host::mesh
