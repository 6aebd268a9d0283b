#pragma once

#include "PolyMesh.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host::mesh {

/// Collects what a scene file stores of a mesh, and makes the mesh of it.
///
/// Lists arrive in pieces, each with the index of its first element, in any order; a later piece replaces what it
/// overlaps. Memory follows the values that arrive, never an index or a count that a file claims; a list that is
/// left with a gap is an error when the mesh is built. The functions that can fail return false and say why in
/// `error`, which may be null.
class MeshFileData {
public:
    /// Points: x, y, z of each. Any value is kept, also one that is not a number.
    bool appendVertices(std::size_t first, std::span<const float> xyz, std::string* error = nullptr);
    /// Edges: two vertices and a flag each; the flag is 0 for a hard edge, else smooth.
    bool appendEdges(std::size_t first, std::span<const int> triples, std::string* error = nullptr);
    /// Given normals, one a face vertex: x, y, z of each; PolyMesh::kNoNormal for none.
    bool appendNormals(std::size_t first, std::span<const float> xyz, std::string* error = nullptr);
    /// Offsets that are added to points. Those of vertices that do not exist are left out.
    bool setTweaks(std::size_t first, std::span<const float> xyz, std::string* error = nullptr);
    bool setTweak(std::size_t index, float x, float y, float z) { return setTweaks(index, std::array{x, y, z}); }

    /// Reads face records, of words separated by white space; `first` must be numFaces(). For each face:
    ///   f n e1 .. en        its edges, signed as PolyMesh::fromEdges() takes them; starts the face
    ///   mu set n id1 .. idn the ids of its corners in a UV set; `mf n ..` is the same for set 0
    ///   fc n ..             ids of its corners' colours; `mc set n ..` those in a colour set
    ///   h n e1 .. en        a hole, of which the records behind it speak; `mh n ..` are its ids in UV set 0
    /// Holes and colours are kept as PolyMesh::faceRecords(). On failure the faces before the faulty one stay.
    bool parsePolyFaces(std::size_t first, std::string_view text, std::string* error = nullptr);
    std::size_t numFaces() const { return counts_.size(); }

    /// UV sets by their index in the file (0 to kMostUvSets - 1); the mesh has them in ascending order.
    static constexpr int kMostUvSets = 256;
    bool setUvSetName(int set, std::string name, std::string* error = nullptr);
    /// Texture coordinates of a set: u, v of each.
    bool setUvs(int set, std::size_t first, std::span<const float> uvs, std::string* error = nullptr);
    /// Names the current set; a name that no set has leaves the first one current.
    void setCurrentUvSet(std::string name) { currentUvSet_ = std::move(name); }

    /// Whether no points, edges or faces arrived, as for a mesh that other nodes make.
    bool isEmpty() const { return points_.isEmpty() && edges_.isEmpty() && counts_.empty(); }

    /// Makes the mesh, taking what was collected; null on failure, which the text explains.
    /// `holes` gets the number of holes among the face records.
    std::shared_ptr<const PolyMesh> build(std::string* error = nullptr, int* holes = nullptr);

private:
    /// A list that is filled in pieces.
    template <class T>
    class Pieces {
    public:
        bool put(std::size_t first, std::vector<T> piece, const char* what, std::string* error);
        /// Brings in the pieces that came too early; false when a gap is left.
        bool close(const char* what, std::string* error);
        bool isEmpty() const { return values.empty() && early_.empty(); }
        std::vector<T> values;

    private:
        void overlay(std::size_t first, const std::vector<T>& piece);
        std::vector<std::pair<std::size_t, std::vector<T>>> early_;
    };
    struct Uv {
        float u = 0, v = 0;
    };
    struct FileUvSet {
        std::string name;
        Pieces<Uv> uvs;
        std::vector<int> ids; // by face vertex; may end early
    };

    FileUvSet* uvSet(int index, std::string* error);
    class Words;
    bool parseFaceRecord(std::string_view kind, Words& words, std::string& error);
    bool addUvIds(int set, std::span<const int> ids, std::string& error);
    void keepRecord(FaceRecords::Kind kind, int set, std::span<const int> ids, std::size_t place);
    bool addUvSets(PolyMesh& mesh, std::string* error);

    Pieces<Float3> points_, normals_;
    Pieces<Edge> edges_;
    std::vector<std::pair<std::size_t, Float3>> tweaks_;
    std::vector<int> counts_, faceEdges_;
    std::vector<int> faceHoles_; // the numbers of corners of the holes of the last face
    int holes_ = 0;
    FaceRecords records_;
    std::vector<int> ids_; // of the record that is read
    std::map<int, FileUvSet> uvSets_;
    std::string currentUvSet_;
};

/// @name The inverse: what a scene file stores of a mesh. MeshFileData makes the same mesh of it.
/// @{
/// The edges as appendEdges() takes them.
std::vector<int> fileEdges(const PolyMesh& mesh);
/// The text of a face's records as parsePolyFaces() reads them: "f ..", a "mu .." for each UV set that has ids for it,
/// and what else is kept, one a line, each line starting with `indent` and ending in a line feed.
std::string fileFace(const PolyMesh& mesh, int face, std::string_view indent = "");
/// @}

} // namespace host::mesh
