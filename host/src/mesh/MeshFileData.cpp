#include "MeshFileData.h"

#include "base/Letters.h"
#include "base/NumberText.h"
#include "mesh/Checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace host::mesh {
namespace {

bool checkTuples(std::size_t size, std::size_t width, const char* what, std::string* error) {
    if (error) error->clear();
    return size % width == 0 || fail(error, fmt::format("{}: {} values are not groups of {}", what, size, width));
}

std::vector<Float3> toPoints(std::span<const float> xyz) {
    std::vector<Float3> points(xyz.size() / 3);
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]};
    return points;
}

} // namespace

/// The words of a text.
class MeshFileData::Words {
public:
    explicit Words(std::string_view text) : rest_(text) {}

    /// Empty at the end.
    std::string_view next() {
        skipBlanks();
        const auto end = std::find_if(rest_.begin(), rest_.end(), isBlank);
        const std::string_view word(rest_.begin(), end);
        rest_.remove_prefix(word.size());
        return word;
    }

    bool readInt(int& value, std::string& error) {
        skipBlanks();
        std::string_view behind = rest_;
        if (const auto number = takeInt(behind); number && (behind.empty() || isBlank(behind.front()))) {
            value = *number;
            rest_ = behind;
            return true;
        }
        const std::string_view word = next();
        error =
            word.empty() ? "the record ends early" : fmt::format("\"{}\" is not a whole number", word.substr(0, 40));
        return false;
    }

    /// Reads a count and as many numbers, which are appended to `values`.
    bool readInts(int& count, std::vector<int>& values, std::string& error) {
        if (!readInt(count, error)) return false;
        if (count < 0) {
            error = fmt::format("{} is not a count", count);
            return false;
        }
        for (int i = 0; i < count; ++i) {
            int value = 0;
            if (!readInt(value, error)) return false;
            values.push_back(value);
        }
        return true;
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front())) rest_.remove_prefix(1);
    }

    std::string_view rest_;
};

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

bool MeshFileData::parsePolyFaces(std::size_t first, std::string_view text, std::string* error) {
    if (error) error->clear();
    if (first != counts_.size())
        return fail(error, fmt::format("face {} follows; face {} was expected", first, counts_.size()));
    std::string problem;
    Words words(text);
    for (std::string_view kind = words.next(); !kind.empty(); kind = words.next()) {
        const std::size_t face = counts_.size();
        if (parseFaceRecord(kind, words, problem)) continue;
        // The faulty face is the one that the record starts, or belongs to.
        const std::size_t faulty = kind == "f" || face == 0 ? face : face - 1;
        return fail(error, fmt::format("face {}, \"{}\": {}", faulty, kind.substr(0, 40), problem));
    }
    return true;
}

void MeshFileData::keepRecord(FaceRecords::Kind kind, int set, std::span<const int> ids, std::size_t place) {
    records_.records.insert(
        records_.records.begin() + static_cast<std::ptrdiff_t>(place),
        {static_cast<int>(counts_.size()) - 1, kind, set, records_.ids.size(), static_cast<int>(ids.size())});
    records_.ids.insert(records_.ids.end(), ids.begin(), ids.end());
}

/// Takes the UV ids of the last face's corners, of its last hole's, or of all one after the other.
bool MeshFileData::addUvIds(int set, std::span<const int> ids, std::string& error) {
    const auto corners = static_cast<std::size_t>(counts_.back());
    std::size_t all = corners;
    for (const int hole : faceHoles_) all += static_cast<std::size_t>(hole);
    if (!uvSet(set, &error)) return false;
    if (!faceHoles_.empty() && ids.size() == static_cast<std::size_t>(faceHoles_.back())) {
        keepRecord(FaceRecords::Kind::HoleUvs, set, ids, records_.records.size());
        return true;
    }
    if (ids.size() != (faceHoles_.empty() ? corners : all)) {
        error = fmt::format("{} ids for {} corners", ids.size(),
                            faceHoles_.empty() ? corners : static_cast<std::size_t>(faceHoles_.back()));
        return false;
    }
    auto& own = uvSets_[set].ids;
    own.resize(faceEdges_.size() - corners, -1);
    own.insert(own.end(), ids.begin(), ids.begin() + static_cast<std::ptrdiff_t>(corners));
    // Each hole's behind its record, the last one first.
    std::size_t end = ids.size(), place = records_.records.size();
    for (auto hole = faceHoles_.rbegin(); hole != faceHoles_.rend(); ++hole) {
        const auto count = static_cast<std::size_t>(*hole);
        keepRecord(FaceRecords::Kind::HoleUvs, set, ids.subspan(end - count, count), place);
        end -= count;
        while (records_.records[--place].kind != FaceRecords::Kind::Hole) {}
    }
    return true;
}

bool MeshFileData::parseFaceRecord(std::string_view kind, Words& words, std::string& error) {
    int count = 0;
    if (kind == "f") {
        const std::size_t before = faceEdges_.size();
        bool good = words.readInts(count, faceEdges_, error);
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
        faceHoles_.clear();
        return true;
    }
    if (counts_.empty()) {
        error = "a face starts with \"f\"";
        return false;
    }
    const bool hasSet = kind == "mu" || kind == "mc", uvs = kind == "mu" || kind == "mf" || kind == "mh";
    if (!hasSet && !uvs && kind != "h" && kind != "fc") {
        error = "unknown kind of record";
        return false;
    }
    int set = 0;
    ids_.clear();
    if ((hasSet && !words.readInt(set, error)) || !words.readInts(count, ids_, error)) return false;
    if (uvs) return addUvIds(set, ids_, error);
    using Kind = FaceRecords::Kind;
    keepRecord(kind == "h" ? Kind::Hole : hasSet ? Kind::ColourSet : Kind::Colours, set, ids_, records_.records.size());
    if (kind == "h") {
        ++holes_;
        faceHoles_.push_back(count);
    }
    return true;
}

bool MeshFileData::addUvSets(PolyMesh& mesh, std::string* error) {
    bool first = true;
    std::map<int, int> places;
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
        places[index] = at;
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
    for (auto& r : records_.records)
        if (r.kind == FaceRecords::Kind::HoleUvs) r.set = places[r.set];
    if (!records_.records.empty()) mesh.setFaceRecords(std::make_shared<const FaceRecords>(std::move(records_)));
    return true;
}

std::shared_ptr<const PolyMesh> MeshFileData::build(std::string* error, int* holes) {
    if (error) error->clear();
    if (holes) *holes = holes_;
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
    const FaceRecords* kept = mesh.faceRecords().get();
    if (!kept) return text;
    const auto& records = kept->records;
    auto r = std::lower_bound(records.begin(), records.end(), face, [](auto& a, int f) { return a.face < f; });
    for (; r != records.end() && r->face == face; ++r) {
        const auto ids = std::span(kept->ids).subspan(r->first, static_cast<std::size_t>(r->count));
        using Kind = FaceRecords::Kind;
        if (r->kind == Kind::HoleUvs) {
            // The set may have changed since.
            const int size = r->set < mesh.numUvSets() ? mesh.uvSet(r->set).size() : 0;
            if (std::any_of(ids.begin(), ids.end(), [&](int id) { return id >= size; })) continue;
        }
        text += indent;
        text += r->kind == Kind::Hole ? "h" : r->kind == Kind::HoleUvs ? "mu" : r->kind == Kind::Colours ? "fc" : "mc";
        if (r->kind == Kind::HoleUvs || r->kind == Kind::ColourSet)
            fmt::format_to(std::back_inserter(text), " {}", r->set);
        fmt::format_to(std::back_inserter(text), " {}", r->count);
        for (const int id : ids) fmt::format_to(std::back_inserter(text), " {}", id);
        text += '\n';
    }
    return text;
}

} // namespace host::mesh
