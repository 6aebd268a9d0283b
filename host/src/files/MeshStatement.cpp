#include "files/NumberWords.h"
#include "files/SceneStatements.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"
#include "scene/References.h"

#include <algorithm>

namespace host::files {

using namespace scene;

namespace {

std::vector<float> floats(const ListValues& values, double factor = 1) {
    auto numbers = values.numbers<float>();
    if (factor != 1)
        for (float& v : numbers) v = static_cast<float>(v * factor);
    return numbers;
}

/// "vt[0:7]" or "uvst[1].uvsp[0:3]" as names and indices.
struct MeshPath {
    std::string_view list, part;
    int set = -1; ///< index of the UV set
    int first = -1, last = -1;

    explicit MeshPath(std::string_view path) {
        const auto dot = path.find('.');
        std::string_view head = path.substr(0, dot);
        if (dot != path.npos && (head.starts_with("uvst[") || head.starts_with("uvSet["))) {
            take(head, list, set, set);
            head = path.substr(dot + 1);
            take(head, part, first, last);
            return;
        }
        take(head, list, first, last);
        if (dot != path.npos) part = path.substr(dot + 1);
    }

private:
    static void take(std::string_view word, std::string_view& name, int& from, int& to) {
        name = word.substr(0, word.find('['));
        if (name.size() == word.size()) return;
        const PlugRange range(word);
        if (range.isRange) {
            from = range.first;
            to = range.last;
            return;
        }
        const auto index = parseInteger(word.substr(name.size() + 1, word.size() - name.size() - 2));
        if (word.back() != ']' || !index || *index < 0 || *index > Scene::maxArrayIndex)
            throw SceneError("'" + std::string(word) + "' has no valid index.");
        from = to = static_cast<int>(*index);
    }
};

/// Moves points of a mesh that is built already, or sets offsets. A single number is one axis of one point.
void movePoints(Scene& scene, Node& node, MeshBehavior& b, const MeshPath& p, const std::vector<float>& xyz,
                bool tweak) {
    References& references = References::of(scene);
    if (!tweak && references.keepsStored(node))
        throw SceneError("The mesh '" + scene.displayName(node) +
                         "' belongs to a reference: its points are moved by offsets (pnts).");
    std::shared_ptr<const mesh::PolyMesh> own = b.own;
    auto tweaks = b.tweaks;
    std::shared_ptr<mesh::PolyMesh> moved = tweak ? nullptr : std::make_shared<mesh::PolyMesh>(*own);
    const auto set = [&](int vertex, auto change) {
        if (tweak) {
            change(tweaks[vertex]);
            references.notePoint(node, vertex);
        } else {
            if (vertex >= moved->numVertices())
                throw SceneError("The mesh has no vertex " + std::to_string(vertex) + ".");
            mesh::Float3 v = moved->point(vertex);
            change(v);
            moved->setPoint(vertex, v);
        }
    };
    if (!p.part.empty()) {
        const char axis = p.part.back();
        if (xyz.size() != 1 || axis < 'x' || axis > 'z') throw SceneError("One number is needed for one axis.");
        set(p.first, [&](mesh::Float3& v) { (axis == 'x' ? v.x : axis == 'y' ? v.y : v.z) = xyz[0]; });
    } else {
        for (std::size_t i = 0; i + 2 < xyz.size(); i += 3)
            set(p.first + static_cast<int>(i / 3), [&](mesh::Float3& v) { v = {xyz[i], xyz[i + 1], xyz[i + 2]}; });
    }
    if (moved) own = std::move(moved);
    const auto change = [&b, keep = node.shared_from_this()](const auto& mesh, const auto& offsets) {
        b.own = mesh;
        b.tweaks = offsets;
        dirtyWithDependents(keep->cell("outMesh"));
        dirtyWithDependents(keep->cell("worldMesh"));
    };
    if (scene.undo.recording()) {
        const auto oldOwn = b.own;
        const auto oldTweaks = b.tweaks;
        scene.record([=] { change(own, tweaks); }, [=] { change(oldOwn, oldTweaks); });
    }
    change(own, tweaks);
}

} // namespace

bool setMeshList(const StatementContext& c, Node& node, std::string_view path, std::string_view type,
                 const ListValues& values) {
    MeshBehavior* b = meshBehavior(node);
    if (!b) return false;
    const MeshPath p(path);
    const auto is = [&](std::string_view brief, std::string_view full) { return p.list == brief || p.list == full; };
    if (is("cuvs", "currentUVSet")) {
        if (values.words.size() == 1) b->file.setCurrentUvSet(std::string(values.words.front().text));
        return false; // the attribute has it, too
    }
    const bool points = is("vt", "vrts"), offsets = is("pt", "pnts"), edges = is("ed", "edge"),
               faces = is("fc", "face"), normals = is("n", "normals"), uvs = is("uvst", "uvSet"),
               oldUvs = is("uv", "uvpt");
    if (!points && !offsets && !edges && !faces && !normals && !uvs && !oldUvs) return false;
    if (values.empty()) return true; // a size hint
    if (p.first < 0 && p.part != "uvsn" && p.part != "uvSetName")
        throw SceneError("The list '" + std::string(path) + "' needs an index.");

    const double scale = c.units.factor(AttributeType::Distance);
    const bool built = b->own && !b->fileUsed;
    if (offsets || (points && built)) {
        const std::vector<float> xyz = floats(values, scale);
        if (offsets && p.part.empty() && xyz.size() % 3 != 0) throw SceneError("The offsets are not groups of 3.");
        movePoints(c.scene, node, *b, p, xyz, offsets);
        return true;
    }
    if (built) throw SceneError("The mesh '" + c.scene.displayName(node) + "' is made already; its lists stay.");

    std::string error;
    const auto first = static_cast<std::size_t>(std::max(p.first, 0));
    std::size_t count = 0;
    const auto counted = [&](auto numbers) {
        count = numbers.size();
        return numbers;
    };
    if (points)
        b->file.appendVertices(first, counted(floats(values, scale)), &error);
    else if (edges)
        b->file.appendEdges(first, counted(values.numbers<int>()), &error);
    else if (normals)
        b->file.appendNormals(first, counted(floats(values)), &error);
    else if (oldUvs)
        b->file.setUvs(0, first, counted(floats(values)), &error);
    else if (faces) {
        if (type != "polyFaces") throw SceneError("Faces need the type polyFaces.");
        b->file.parsePolyFaces(first, values.words.empty() ? values.tail : std::string_view(values.text()), &error);
    } else if (p.part == "uvsn" || p.part == "uvSetName") {
        b->file.setUvSetName(p.set, values.words.empty() ? "" : std::string(values.words.front().text), &error);
    } else if (p.part == "uvsp" || p.part == "uvSetPoints") {
        b->file.setUvs(p.set, first, counted(floats(values)), &error);
    } else {
        throw UnknownHere("No object matches name: " + node.name + "." + std::string(path));
    }
    b->fileUsed = true;
    if (!error.empty()) throw SceneError("'" + c.scene.displayName(node) + "': " + error + ".");
    // One value a point or pair too few is a range that promises too much.
    const std::size_t width = faces ? 0 : uvs || oldUvs ? 2 : 3;
    if (width > 0 && p.last >= p.first && p.first >= 0) {
        const auto promised = static_cast<std::size_t>(p.last - p.first) + 1;
        if (count != promised * width)
            throw SceneError("'" + std::string(path) + "' has " + std::to_string(promised) +
                             " elements, with values for " + std::to_string(count / width) + ".");
    }
    return true;
}

} // namespace host::files
