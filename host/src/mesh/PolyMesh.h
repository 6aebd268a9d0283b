#pragma once

#include <Imath/ImathVec.h>

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host::mesh {

/// A point or direction as the mesh stores it: single precision.
struct Float3 {
    float x = 0, y = 0, z = 0;
    bool operator==(const Float3&) const = default;
};

inline Imath::V3d toDouble(const Float3& p) { return {p.x, p.y, p.z}; }

/// An edge: its two vertices in stored order, and whether shading is smooth across it.
struct Edge {
    int v1 = 0, v2 = 0;
    bool smooth = true;
    bool operator==(const Edge&) const = default;
};

class QueryCache;

/// An axis-aligned box; empty (min > max) until it holds a point.
struct Box {
    Float3 min, max;
    bool empty = true;
};

/// A named set of texture coordinates, shared between corners by id.
struct UvSet {
    std::string name;
    std::vector<float> u, v; ///< of equal length
    std::vector<int> ids;    ///< one per face vertex, -1 for none; empty when nothing is assigned
    bool operator==(const UvSet&) const = default;
    int size() const { return static_cast<int>(u.size()); }
};

/// What a scene file says of faces beyond their polygons and UVs: holes with their UVs, and colours by corner. Nothing
/// here works with it; it stays with the mesh for the file that the mesh is saved in.
struct FaceRecords {
    enum class Kind : std::uint8_t {
        Hole,      ///< signed edges, as a face has them
        HoleUvs,   ///< UV ids of the last hole's corners in a set of the mesh
        Colours,   ///< colour ids of the corners of the face, or of the last hole
        ColourSet, ///< the same in a set
    };
    struct Record {
        int face = 0;
        Kind kind = Kind::Hole;
        int set = 0;
        std::size_t first = 0; ///< in `ids`
        int count = 0;
        bool operator==(const Record&) const = default;
    };
    std::vector<Record> records; ///< face by face
    std::vector<int> ids;
    bool operator==(const FaceRecords&) const = default;
};

/// Which elements meet: for each of one kind a list of those of another, in ascending order.
class Incidence {
public:
    Incidence() = default;
    /// `pairs` may come in any order, and more than once.
    Incidence(int count, std::vector<std::pair<int, int>> pairs);
    std::span<const int> of(int element) const {
        return std::span(items_).subspan(starts_[element], starts_[element + 1] - starts_[element]);
    }

private:
    std::vector<std::size_t> starts_;
    std::vector<int> items_;
};

/// What meets at the vertices and edges of a mesh.
struct Neighbours {
    Incidence vertexFaces, vertexEdges, edgeFaces;
};

/// How the normals of the faces around a vertex are averaged.
enum class NormalWeight {
    Equal, ///< every face counts the same
    Area,  ///< by the face's area
    Angle, ///< by the angle of the face's corner at the vertex
};

/// A value that is made on first use. Readers of one mesh may ask from several threads; a copy shares the value.
template <class T>
class LazyPart {
public:
    LazyPart() = default;
    LazyPart(const LazyPart& other) : value_(other.peek()) {}
    LazyPart& operator=(const LazyPart& other) {
        auto value = other.peek();
        std::lock_guard lock(mutex_);
        value_ = std::move(value);
        return *this;
    }
    ~LazyPart() = default;

    template <class Make>
    const T& get(Make&& make) const {
        std::lock_guard lock(mutex_);
        if (!value_) value_ = std::make_shared<const T>(make());
        return *value_;
    }
    void set(T value) { value_ = std::make_shared<const T>(std::move(value)); }
    void reset() { value_.reset(); }

private:
    std::shared_ptr<const T> peek() const {
        std::lock_guard lock(mutex_);
        return value_;
    }

    mutable std::mutex mutex_;
    mutable std::shared_ptr<const T> value_;
};

/// A polygon mesh as plain data: points, polygons of at least three corners, edges, UV sets, normals.
///
/// A value type, meant to be shared as std::shared_ptr<const PolyMesh>. The corners of all polygons lie behind
/// each other in one list; an index into it is a "face vertex". Edges, triangles and normals are made when first
/// asked for; asking is safe from several threads, changing a mesh that others read is not. References and spans
/// that a mesh gives are valid until it is changed or ends. Functions that take a face, vertex, edge or set index
/// need it in range; those that take an error text set it to what was wrong, or to nothing, and may be given none.
class PolyMesh {
public:
    /// A triangle of a polygon, as three face vertices; connects()[corner] is the vertex.
    using Triangle = std::array<int, 3>;

    /// An empty mesh, with one empty UV set "map1", as all meshes have from the start.
    PolyMesh();

    /// Makes a mesh of polygons: `counts` holds the number of corners of each, `connects` their vertices.
    /// Fails, with an empty mesh and a text, when a count is below 3, the counts do not sum up to the length of
    /// `connects`, or a vertex is out of range. Edges are derived, all smooth.
    static PolyMesh fromPolygons(std::vector<Float3> points, std::span<const int> counts, std::vector<int> connects,
                                 std::string* error = nullptr);

    /// Makes a mesh of edges and of faces that walk them: id e >= 0 is edge e from v1 to v2, a negative one is edge
    /// -e-1 from v2 to v1. Edges that no face uses are kept. Fails as fromPolygons() does, and when a face's
    /// edges do not form a closed loop; the text names the face.
    static PolyMesh fromEdges(std::vector<Float3> points, std::vector<Edge> edges, std::span<const int> counts,
                              std::vector<int> faceEdges, std::string* error = nullptr);

    int numVertices() const { return static_cast<int>(points_.size()); }
    int numEdges() const { return static_cast<int>(edges().size()); }
    int numPolygons() const { return static_cast<int>(offsets_.size()) - 1; }
    int numFaceVertices() const { return static_cast<int>(connects_.size()); }
    bool isEmpty() const { return points_.empty(); }

    std::span<const Float3> points() const { return points_; }
    const Float3& point(int vertex) const { return points_[vertex]; }
    /// Moves one vertex, or all: `points` must be as many as there are (else false, and nothing changes).
    void setPoint(int vertex, const Float3& point);
    bool setPoints(std::span<const Float3> points);

    std::span<const int> connects() const { return connects_; }
    /// The first face vertex of a face; that of face numPolygons() is numFaceVertices().
    int faceStart(int face) const { return offsets_[face]; }
    int faceSize(int face) const { return offsets_[face + 1] - offsets_[face]; }
    /// The vertices of a face, in order.
    std::span<const int> faceVertices(int face) const {
        return std::span(connects_).subspan(faceStart(face), faceSize(face));
    }

    /// All edges: as stored when the mesh was made of edges, else in order of first appearance around the faces.
    std::span<const Edge> edges() const { return topology().edges; }
    /// A face's signed edge ids, as fromEdges() takes them: the i-th leads from the face's vertex i to the next.
    std::span<const int> faceEdges(int face) const {
        return std::span(topology().faceEdges).subspan(faceStart(face), faceSize(face));
    }
    const Neighbours& neighbours() const;
    /// Sets whether an edge is smooth.
    void setEdgeSmooth(int edge, bool smooth);
    /// Sets the smoothness of all edges; `smooth` has an entry an edge (else false, and nothing changes).
    bool setEdgesSmooth(const std::vector<bool>& smooth);

    /// The triangles of all polygons, face by face, each face of n corners giving exactly n - 2 with its own
    /// winding. Quads are split along corners 0-2, or 1-3 where the former lies outside or gives a triangle
    /// without area. Larger polygons are tessellated in the plane of their normal; those for which that does not
    /// give n - 2 triangles (self-intersecting, repeated points, no area, not finite, above 10000 corners) become a fan
    /// about corner 0.
    std::span<const Triangle> triangles() const;
    int numTriangles() const { return numFaceVertices() - 2 * numPolygons(); }
    std::span<const Triangle> faceTriangles(int face) const {
        return triangles().subspan(faceStart(face) - 2 * static_cast<std::size_t>(face), faceSize(face) - 2);
    }
    /// The vertices of one triangle of a face; `triangle` counts from 0 to faceSize(face) - 3.
    std::array<int, 3> triangleVertices(int face, int triangle) const;

    /// Newell's normal: its direction follows the winding, its length is twice the area of the polygon's projection.
    Imath::V3d newellNormal(int face) const;
    /// The same at unit length; zero for a polygon without area.
    Imath::V3d polygonNormal(int face) const;
    /// A unit normal a vertex, averaged over its faces regardless of edges; zero where there is no face with area.
    std::span<const Float3> vertexNormals(NormalWeight weight) const;
    /// A unit normal a face vertex: the given one where there is one, else averaged by angle over the faces that are
    /// joined around the vertex by smooth edges.
    std::span<const Float3> faceVertexNormals() const;

    /// A given normal whose x is at least this stands for "none here".
    static constexpr float kNoNormal = 1e20f;
    /// The normals given by assignNormals(): one a face vertex, or empty.
    std::span<const Float3> explicitNormals() const { return explicitNormals_; }
    /// Sets normals, one a face vertex, or none to drop them (else false, and nothing changes).
    bool assignNormals(std::vector<Float3> normals);

    /// What is kept between queries of rays and nearest points; it goes when points move.
    QueryCache& queryCache() const;

    /// The box around all points whose coordinates are finite.
    Box boundingBox() const;

    int numUvSets() const { return static_cast<int>(uvSets_.size()); }
    const UvSet& uvSet(int set) const { return uvSets_[set]; }
    /// The index of the set of that name; -1 when there is none. An empty name means the current set.
    int findUvSet(std::string_view name) const;
    int currentUvSet() const { return currentUvSet_; }
    void setCurrentUvSet(int set) { currentUvSet_ = set; }
    /// Adds an empty set and returns its index; -1 when the name is empty or taken.
    int addUvSet(std::string name);
    /// Renames a set; false when the name is empty or another set's.
    bool renameUvSet(int set, std::string name);
    /// Removes a set, which must not be the only one; the first one is current where it was.
    void removeUvSet(int set);
    /// Sets the coordinates of a set. Fails when the lengths differ or an assigned id would be out of range.
    bool setUvs(int set, std::vector<float> u, std::vector<float> v, std::string* error = nullptr);
    /// Assigns ids to the corners of all faces: `counts` has an entry a face, either 0 (its corners get none) or its
    /// number of corners; `ids` are those of the others, each -1 or in range.
    bool assignUvs(int set, std::span<const int> counts, std::span<const int> ids, std::string* error = nullptr);
    /// @name One texture coordinate of a set, and what a face's corner is assigned; ids in range, or -1 for none
    /// @{
    int addUv(int set, float u, float v);
    void setUv(int set, int id, float u, float v);
    void assignUv(int set, int face, int corner, int id);
    /// @}
    /// Drops a set's coordinates and assignments.
    void clearUvs(int set);
    /// The UV id of a face's corner; -1 for none.
    int uvId(int set, int face, int corner) const {
        const UvSet& s = uvSets_[set];
        return s.ids.empty() ? -1 : s.ids[faceStart(face) + corner];
    }
    /// The texture coordinate of a face's corner; false when it has none.
    bool uvAt(int set, int face, int corner, float& u, float& v) const;

    /// What else the file of the mesh says of its faces; null for nothing.
    const std::shared_ptr<const FaceRecords>& faceRecords() const { return faceRecords_; }
    void setFaceRecords(std::shared_ptr<const FaceRecords> records) { faceRecords_ = std::move(records); }

    /// Equal to the bit, so that a position that is not a number equals itself.
    friend bool operator==(const PolyMesh& a, const PolyMesh& b);

private:
    struct Topology {
        std::vector<Edge> edges;
        std::vector<int> faceEdges; // signed, one a face vertex
    };

    const Topology& topology() const;
    void pointsChanged();
    std::vector<Float3> computeFaceVertexNormals() const;

    std::vector<Float3> points_;
    std::vector<int> offsets_{0}; // one more than polygons
    std::vector<int> connects_;
    std::vector<UvSet> uvSets_;
    int currentUvSet_ = 0;
    std::vector<Float3> explicitNormals_;
    std::shared_ptr<const FaceRecords> faceRecords_;

    LazyPart<Topology> topology_;
    LazyPart<Neighbours> neighbours_;
    LazyPart<std::vector<Triangle>> triangles_;
    std::array<LazyPart<std::vector<Float3>>, 3> vertexNormals_;
    LazyPart<std::vector<Float3>> faceVertexNormals_;
    LazyPart<std::shared_ptr<QueryCache>> queryCache_;
};

} // namespace host::mesh
