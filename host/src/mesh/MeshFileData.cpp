#include "MeshFileData.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <utility>

namespace host::mesh {
namespace {

constexpr std::size_t kMostElements = std::numeric_limits<int>::max();

bool fail(std::string* error, std::string text) {
    if (error) *error = std::move(text);
    return false;
}

bool checkTuples(std::size_t size, std::size_t width, const char* what, std::string* error) {
    if (error) error->clear();
    return size % width == 0 || fail(error, fmt::format("{}: {} values are not groups of {}", what, size, width));
}

std::vector<Float3> toPoints(std::span<const float> xyz) {
    std::vector<Float3> points(xyz.size() / 3);
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]};
    return points;
}

bool readInt(WordStream& words, int& value, std::string& error) {
    const std::string_view word = words.next();
    const auto [end, status] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (!word.empty() && status == std::errc() && end == word.data() + word.size()) return true;
    error = word.empty() ? "the record ends early" : fmt::format("\"{}\" is not a whole number", word.substr(0, 40));
    return false;
}

/// Reads a count and as many numbers, which are appended to `values`.
bool readInts(WordStream& words, int& count, std::vector<int>& values, std::string& error) {
    if (!readInt(words, count, error)) return false;
    if (count < 0) {
        error = fmt::format("{} is not a count", count);
        return false;
    }
    for (int i = 0; i < count; ++i) {
        int value = 0;
        if (!readInt(words, value, error)) return false;
        values.push_back(value);
    }
    return true;
}

} // namespace

std::string_view TextWords::next() {
    constexpr std::string_view kSpace = " \t\r\n\v\f";
    const std::size_t start = rest_.find_first_not_of(kSpace);
    if (start == std::string_view::npos) return rest_ = {};
    rest_.remove_prefix(start);
    const std::string_view word = rest_.substr(0, rest_.find_first_of(kSpace));
    rest_.remove_prefix(word.size());
    return word;
}

template <class T>
bool MeshFileData::Pieces<T>::put(std::size_t first, std::vector<T> piece, const char* what, std::string* error) {
    if (first > kMostElements || piece.size() > kMostElements - first)
        return fail(error, fmt::format("{}: index {} is too large", what, first));
    if (first <= values.size()) {
        overlay(first, piece);
    } else {
        early_.emplace_back(first, std::move(piece));
    }
    return true;
}

template <class T>
void MeshFileData::Pieces<T>::overlay(std::size_t first, const std::vector<T>& piece) {
    const std::size_t inside = std::min(piece.size(), values.size() - first);
    std::copy_n(piece.begin(), inside, values.begin() + static_cast<std::ptrdiff_t>(first));
    values.insert(values.end(), piece.begin() + static_cast<std::ptrdiff_t>(inside), piece.end());
}

template <class T>
bool MeshFileData::Pieces<T>::close(const char* what, std::string* error) {
    std::stable_sort(early_.begin(), early_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [first, piece] : early_) {
        if (first > values.size())
            return fail(error, fmt::format("{}: none is given for indices {} to {}", what, values.size(), first - 1));
        overlay(first, piece);
    }
    early_.clear();
    return true;
}

bool MeshFileData::appendVertices(std::size_t first, std::span<const float> xyz, std::string* error) {
    return checkTuples(xyz.size(), 3, "vertices", error) && points_.put(first, toPoints(xyz), "vertices", error);
}

bool MeshFileData::appendNormals(std::size_t first, std::span<const float> xyz, std::string* error) {
    return checkTuples(xyz.size(), 3, "normals", error) && normals_.put(first, toPoints(xyz), "normals", error);
}

bool MeshFileData::appendEdges(std::size_t first, std::span<const int> triples, std::string* error) {
    if (!checkTuples(triples.size(), 3, "edges", error)) return false;
    std::vector<Edge> edges(triples.size() / 3);
    for (std::size_t i = 0; i < edges.size(); ++i)
        edges[i] = {triples[3 * i], triples[3 * i + 1], triples[3 * i + 2] != 0};
    return edges_.put(first, std::move(edges), "edges", error);
}

bool MeshFileData::setTweaks(std::size_t first, std::span<const float> xyz, std::string* error) {
    if (!checkTuples(xyz.size(), 3, "point offsets", error)) return false;
    if (first > kMostElements) return fail(error, fmt::format("point offsets: index {} is too large", first));
    for (const Float3& offset : toPoints(xyz)) tweaks_.emplace_back(first++, offset);
    return true;
}

MeshFileData::FileUvSet* MeshFileData::uvSet(int index, std::string* error) {
    if (index >= 0 && index < kMostUvSets) return &uvSets_[index];
    fail(error, fmt::format("UV set {} is not among the possible ones, 0 to {}", index, kMostUvSets - 1));
    return nullptr;
}

bool MeshFileData::setUvSetName(int set, std::string name, std::string* error) {
    if (error) error->clear();
    FileUvSet* s = uvSet(set, error);
    if (s) s->name = std::move(name);
    return s != nullptr;
}

bool MeshFileData::setUvs(int set, std::size_t first, std::span<const float> uvs, std::string* error) {
    if (!checkTuples(uvs.size(), 2, "UVs", error)) return false;
    FileUvSet* s = uvSet(set, error);
    if (!s) return false;
    std::vector<Uv> pairs(uvs.size() / 2);
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {uvs[2 * i], uvs[2 * i + 1]};
    return s->uvs.put(first, std::move(pairs), "UVs", error);
}

bool MeshFileData::parsePolyFaces(std::size_t first, WordStream& words, std::string* error) {
    if (error) error->clear();
    if (first != counts_.size())
        return fail(error, fmt::format("face {} follows; face {} was expected", first, counts_.size()));
    std::string problem;
    for (std::string kind(words.next()); !kind.empty(); kind = words.next()) {
        const std::size_t face = counts_.size();
        if (parseFaceRecord(kind, words, problem)) continue;
        // The faulty face is the one that the record starts, or belongs to.
        const std::size_t faulty = kind == "f" || face == 0 ? face : face - 1;
        return fail(error, fmt::format("face {}, \"{}\": {}", faulty, kind.substr(0, 40), problem));
    }
    return true;
}

bool MeshFileData::parseFaceRecord(std::string_view kind, WordStream& words, std::string& error) {
    int count = 0;
    if (kind == "f") {
        const std::size_t before = faceEdges_.size();
        bool good = readInts(words, count, faceEdges_, error);
        if (good && count < 3) {
            error = fmt::format("{} edges; a polygon has at least 3", count);
            good = false;
        }
        if (good && faceEdges_.size() > kMostElements) {
            error = "the mesh has too many corners";
            good = false;
        }
        if (!good) {
            faceEdges_.resize(before);
            return false;
        }
        counts_.push_back(count);
        faceHoles_ = 0;
        return true;
    }
    if (counts_.empty()) {
        error = "a face starts with \"f\"";
        return false;
    }
    std::vector<int> ids;
    if (kind == "h") {
        if (!readInts(words, count, ids, error)) return false;
        ++holes_;
        faceHoles_ += count;
        return true;
    }
    if (kind == "fc" || kind == "mh") return readInts(words, count, ids, error);
    int set = 0;
    if (kind == "mc") return readInt(words, set, error) && readInts(words, count, ids, error);
    if (kind != "mu" && kind != "mf") {
        error = "unknown kind of record";
        return false;
    }
    if ((kind == "mu" && !readInt(words, set, error)) || !readInts(words, count, ids, error)) return false;
    // The ids of a face with holes may go on with those of the holes' corners.
    const int corners = counts_.back();
    if (count != corners && (faceHoles_ == 0 || count != corners + faceHoles_)) {
        error = fmt::format("{} ids for {} corners", count, corners);
        return false;
    }
    FileUvSet* s = uvSet(set, &error);
    if (!s) return false;
    const std::size_t start = faceEdges_.size() - static_cast<std::size_t>(corners);
    s->ids.resize(start, -1);
    s->ids.insert(s->ids.end(), ids.begin(), ids.begin() + corners);
    return true;
}

bool MeshFileData::addUvSets(PolyMesh& mesh, std::string* error) {
    bool first = true;
    for (auto& [index, set] : uvSets_) {
        if (set.name.empty()) set.name = index == 0 ? "map1" : fmt::format("uvSet{}", index);
        // A mesh starts out with one empty set: the first one read takes its place.
        int at = 0;
        if (first)
            mesh.renameUvSet(0, set.name);
        else
            at = mesh.addUvSet(set.name);
        first = false;
        if (at < 0) return fail(error, fmt::format("UV set {}: another set is named {} too", index, set.name));
        if (!set.uvs.close("UVs", error)) return false;
        const std::size_t n = set.uvs.values.size();
        std::vector<float> u(n), v(n);
        for (std::size_t i = 0; i < n; ++i) {
            u[i] = set.uvs.values[i].u;
            v[i] = set.uvs.values[i].v;
        }
        if (!mesh.setUvs(at, std::move(u), std::move(v), error)) return false;
        set.ids.resize(static_cast<std::size_t>(mesh.numFaceVertices()), -1);
        if (!mesh.assignUvs(at, counts_, set.ids, error)) return false;
        set = {};
    }
    if (const int current = mesh.findUvSet(currentUvSet_); current >= 0) mesh.setCurrentUvSet(current);
    return true;
}

std::shared_ptr<const PolyMesh> MeshFileData::build(std::string* error, int* ignoredHoles) {
    if (error) error->clear();
    if (ignoredHoles) *ignoredHoles = holes_;
    MeshFileData data = std::exchange(*this, {});
    if (!data.points_.close("vertices", error) || !data.edges_.close("edges", error) ||
        !data.normals_.close("normals", error))
        return nullptr;
    std::vector<Float3>& points = data.points_.values;
    if (!data.tweaks_.empty()) {
        std::vector<Float3> offsets(points.size());
        for (const auto& [index, offset] : data.tweaks_)
            if (index < offsets.size()) offsets[index] = offset;
        for (std::size_t i = 0; i < points.size(); ++i) {
            points[i].x += offsets[i].x;
            points[i].y += offsets[i].y;
            points[i].z += offsets[i].z;
        }
    }
    std::string problem;
    auto mesh = std::make_shared<PolyMesh>(PolyMesh::fromEdges(std::move(points), std::move(data.edges_.values),
                                                               data.counts_, std::move(data.faceEdges_), &problem));
    if (!problem.empty()) {
        fail(error, std::move(problem));
        return nullptr;
    }
    const std::size_t normals = data.normals_.values.size();
    if (!mesh->assignNormals(std::move(data.normals_.values))) {
        fail(error, fmt::format("{} normals for {} face vertices", normals, mesh->numFaceVertices()));
        return nullptr;
    }
    if (!data.addUvSets(*mesh, error)) return nullptr;
    return mesh;
}

std::vector<int> fileEdges(const PolyMesh& mesh) {
    std::vector<int> triples;
    triples.reserve(mesh.edges().size() * 3);
    for (const Edge& e : mesh.edges()) triples.insert(triples.end(), {e.v1, e.v2, e.smooth ? 1 : 0});
    return triples;
}

std::string fileFace(const PolyMesh& mesh, int face, std::string_view indent) {
    std::string text;
    const auto edges = mesh.faceEdges(face);
    fmt::format_to(std::back_inserter(text), "{}f {}", indent, edges.size());
    for (const int id : edges) fmt::format_to(std::back_inserter(text), " {}", id);
    text += '\n';
    for (int set = 0; set < mesh.numUvSets(); ++set) {
        const UvSet& uvs = mesh.uvSet(set);
        if (uvs.ids.empty()) continue;
        const auto ids = std::span(uvs.ids).subspan(mesh.faceStart(face), mesh.faceSize(face));
        if (std::all_of(ids.begin(), ids.end(), [](int id) { return id < 0; })) continue;
        fmt::format_to(std::back_inserter(text), "{}mu {} {}", indent, set, ids.size());
        for (const int id : ids) fmt::format_to(std::back_inserter(text), " {}", id);
        text += '\n';
    }
    return text;
}

} // namespace host::mesh
