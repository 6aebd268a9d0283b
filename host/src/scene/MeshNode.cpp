#include "scene/MeshNode.h"

#include "base/Messages.h"
#include "mesh/Primitives.h"
#include "scene/Evaluation.h"
#include "scene/References.h"
#include "scene/Scene.h"

#include <optional>

namespace host::scene {
namespace {

std::shared_ptr<const mesh::PolyMesh> meshIn(Cell& cell) {
    evaluate(cell);
    const auto* data = std::get_if<DataPtr>(&cell.value);
    const auto* held = data ? dynamic_cast<const MeshData*>(data->get()) : nullptr;
    return held ? held->mesh : nullptr;
}

void store(Cell& cell, std::shared_ptr<const mesh::PolyMesh> m) {
    cell.value = DataPtr(std::make_shared<MeshData>(std::move(m)));
    setClean(cell);
}

class PolyCreator final : public NodeBehavior {
public:
    explicit PolyCreator(Node& node) : node_(node) {}

    bool compute(Cell& cell) override {
        if (cell.attribute.longName != "output") return false;
        std::string error;
        auto m = make(&error);
        if (!m) showError(node_.name + ": " + error);
        store(cell, m);
        return true;
    }

private:
    double number(const char* name) {
        Cell& c = node_.cell(name);
        evaluate(c);
        return c.number();
    }
    int count(const char* name) { return static_cast<int>(number(name)); }

    std::shared_ptr<const mesh::PolyMesh> make(std::string* error) {
        const Imath::V3d axis(number("axisX"), number("axisY"), number("axisZ"));
        const std::string& kind = node_.type.name;
        if (kind == "polyPlane")
            return mesh::polyPlane(
                {number("width"), number("height"), count("subdivisionsWidth"), count("subdivisionsHeight"), axis},
                error);
        if (kind == "polyCube")
            return mesh::polyCube({number("width"), number("height"), number("depth"), count("subdivisionsWidth"),
                                   count("subdivisionsHeight"), count("subdivisionsDepth"), axis},
                                  error);
        if (kind == "polySphere")
            return mesh::polySphere({number("radius"), count("subdivisionsAxis"), count("subdivisionsHeight"), axis},
                                    error);
        return mesh::polyCylinder({number("radius"), number("height"), count("subdivisionsAxis"),
                                   count("subdivisionsHeight"), count("subdivisionsCaps"), axis},
                                  error);
    }

    Node& node_;
};

} // namespace

void MeshBehavior::settle() {
    if (!fileUsed) return;
    fileUsed = false;
    std::string error;
    int holes = 0;
    auto built = file.build(&error, &holes);
    file = {};
    if (!built) {
        showWarning("The mesh '" + node_.partialPath() + "' cannot be used: " + error);
        return;
    }
    if (holes > 0)
        showWarning(
            "The mesh '" + node_.partialPath() + "' has " + std::to_string(holes) +
            (holes == 1 ? " hole, which is kept and drawn closed." : " holes, which are kept and drawn closed."));
    own = std::move(built);
}

bool MeshBehavior::compute(Cell& cell) {
    const std::string& name = cell.attribute.longName;
    if (name == "outMesh") {
        settle();
        Cell& input = node_.cell("inMesh");
        auto base = input.source ? meshIn(input) : own;
        if (base && !tweaks.empty()) {
            auto moved = std::make_shared<mesh::PolyMesh>(*base);
            for (const auto& [vertex, d] : tweaks) {
                if (vertex < 0 || vertex >= moved->numVertices()) continue;
                const mesh::Float3 p = moved->point(vertex);
                moved->setPoint(vertex, {p.x + d.x, p.y + d.y, p.z + d.z});
            }
            base = std::move(moved);
        }
        store(cell, std::move(base));
        return true;
    }
    if (name == "worldMesh") {
        if (cell.isArray()) {
            cell.element(0);
            cell.dirty = false;
            return true;
        }
        auto local = meshIn(node_.cell("outMesh"));
        store(cell, local ? transformed(*local, node_.worldMatrix()) : nullptr);
        return true;
    }
    return DagBehavior::compute(cell);
}

void MeshBehavior::copyFrom(Node& other) {
    if (auto* b = meshBehavior(other)) {
        b->settle();
        own = b->own;
        tweaks = b->tweaks;
    }
}

MeshBehavior* meshBehavior(Node& node) { return dynamic_cast<MeshBehavior*>(node.behavior.get()); }

std::shared_ptr<const mesh::PolyMesh> meshOf(Node& shape) {
    return meshBehavior(shape) ? meshIn(shape.cell("outMesh")) : nullptr;
}

std::shared_ptr<const mesh::PolyMesh> storedMeshOf(Node& shape) {
    MeshBehavior* b = meshBehavior(shape);
    if (!b) return nullptr;
    b->settle();
    Cell& input = shape.cell("inMesh");
    return input.source ? meshIn(input) : b->own;
}

namespace {

bool differInPointsAlone(const mesh::PolyMesh& a, const mesh::PolyMesh& b) {
    if (a.numVertices() != b.numVertices() || a.numPolygons() != b.numPolygons()) return false;
    mesh::PolyMesh moved = a;
    moved.setPoints(b.points());
    return moved == b;
}

} // namespace

void setMesh(Scene& scene, Node& shape, std::shared_ptr<const mesh::PolyMesh> mesh) {
    auto* b = meshBehavior(shape);
    if (!b) throw SceneError("'" + scene.displayName(shape) + "' is not a mesh.");
    b->settle();
    auto own = b->own;
    auto tweaks = b->tweaks;
    const bool fed = shape.cell("inMesh").source;
    References& references = References::of(scene);
    if (fed || references.keepsStored(shape)) {
        const auto base = storedMeshOf(shape);
        if (!base || !mesh || !differInPointsAlone(*base, *mesh))
            throw SceneError("The mesh '" + scene.displayName(shape) + "' " +
                             (fed ? "has construction history" : "belongs to a reference") +
                             ", so only its points can be changed.");
        for (const auto& [vertex, tweak] : tweaks) references.notePoint(shape, vertex);
        tweaks.clear();
        for (int i = 0; i < mesh->numVertices(); ++i) {
            const auto a = base->point(i), p = mesh->point(i);
            if (a == p) continue;
            tweaks[i] = {p.x - a.x, p.y - a.y, p.z - a.z};
            references.notePoint(shape, i);
        }
    } else {
        own = std::move(mesh);
        tweaks.clear();
    }
    const auto set = [b, keep = shape.shared_from_this()](auto m, auto t) {
        b->own = std::move(m);
        b->tweaks = std::move(t);
        dirtyWithDependents(keep->cell("outMesh"));
        dirtyWithDependents(keep->cell("worldMesh"));
    };
    const auto oldOwn = b->own;
    const auto oldTweaks = b->tweaks;
    set(own, tweaks);
    scene.record([=] { set(own, tweaks); }, [=] { set(oldOwn, oldTweaks); });
}

namespace {

mesh::Float3 sum(const mesh::Float3& a, const mesh::Float3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }

/// What is known of one vertex: its stored place (unused where a connection brings the mesh) and its tweak.
struct PointState {
    int vertex;
    mesh::Float3 stored;
    std::optional<mesh::Float3> tweak;
};

/// The mesh for writing: a copy where somebody else holds it. Meshes are made without const.
mesh::PolyMesh& writable(std::shared_ptr<const mesh::PolyMesh>& mesh) {
    if (mesh.use_count() > 1) mesh = std::make_shared<mesh::PolyMesh>(*mesh);
    return const_cast<mesh::PolyMesh&>(*mesh);
}

void setPoints(Node& shape, const std::vector<PointState>& states) {
    MeshBehavior& b = *meshBehavior(shape);
    Cell& out = shape.cell("outMesh");
    const bool fed = shape.cell("inMesh").source;
    // What the shape shows follows at once, so that the next look need not make the mesh anew.
    auto* data = std::get_if<DataPtr>(&out.value);
    auto* shown = data && !out.dirty && data->use_count() == 1 ? dynamic_cast<MeshData*>(data->get()) : nullptr;
    const bool shared = shown && shown->mesh && shown->mesh == b.own;
    if (shown && !shared && (!shown->mesh || shown->mesh.use_count() > 1)) shown = nullptr;
    if (shared) shown->mesh.reset();
    const auto input = fed ? meshIn(shape.cell("inMesh")) : nullptr;
    bool exact = shown;
    for (const PointState& s : states) {
        if (s.tweak)
            b.tweaks[s.vertex] = *s.tweak;
        else
            b.tweaks.erase(s.vertex);
        if (!fed && !(b.own->point(s.vertex) == s.stored)) writable(b.own).setPoint(s.vertex, s.stored);
        if (shared || !shown) {
            exact &= !s.tweak;
            continue;
        }
        const mesh::Float3 base = (fed ? input : b.own)->point(s.vertex);
        writable(shown->mesh).setPoint(s.vertex, s.tweak ? sum(base, *s.tweak) : base);
    }
    if (shared) shown->mesh = b.own;
    if (exact)
        dirtyDependents(out);
    else
        dirtyWithDependents(out);
    dirtyWithDependents(shape.cell("worldMesh"));
}

} // namespace

void movePoints(Scene& scene, Node& shape, const std::vector<PointMove>& moves) {
    MeshBehavior* b = meshBehavior(shape);
    if (!b) throw SceneError("'" + scene.displayName(shape) + "' is not a mesh.");
    References& references = References::of(scene);
    const bool keeps = shape.cell("inMesh").source || references.keepsStored(shape);
    auto base = storedMeshOf(shape);
    if (!base) throw SceneError("The mesh '" + scene.displayName(shape) + "' is empty.");
    std::vector<PointState> before, after;
    before.reserve(moves.size());
    after.reserve(moves.size());
    for (const PointMove& move : moves) {
        if (move.vertex < 0 || move.vertex >= base->numVertices())
            throw SceneError("The mesh '" + scene.displayName(shape) + "' has no vertex " +
                             std::to_string(move.vertex) + ".");
        const mesh::Float3 was = base->point(move.vertex);
        const auto tweak = b->tweaks.find(move.vertex);
        before.push_back({move.vertex, was, tweak == b->tweaks.end() ? std::nullopt : std::optional(tweak->second)});
        const mesh::Float3 d{move.to.x - was.x, move.to.y - was.y, move.to.z - was.z};
        references.notePoint(shape, move.vertex);
        after.push_back(keeps ? PointState{move.vertex, was, d == mesh::Float3() ? std::nullopt : std::optional(d)}
                              : PointState{move.vertex, move.to, std::nullopt});
    }
    base.reset();
    const auto set = [keep = shape.shared_from_this()](const auto& states) { setPoints(*keep, states); };
    set(after);
    scene.record([=] { set(after); }, [=] { set(before); });
}

std::shared_ptr<const mesh::PolyMesh> transformed(const mesh::PolyMesh& mesh, const MMatrix& m) {
    auto out = std::make_shared<mesh::PolyMesh>(mesh);
    std::vector<mesh::Float3> points(mesh.points().begin(), mesh.points().end());
    for (auto& p : points) {
        const double x = p.x, y = p.y, z = p.z;
        p = {static_cast<float>(x * m(0, 0) + y * m(1, 0) + z * m(2, 0) + m(3, 0)),
             static_cast<float>(x * m(0, 1) + y * m(1, 1) + z * m(2, 1) + m(3, 1)),
             static_cast<float>(x * m(0, 2) + y * m(1, 2) + z * m(2, 2) + m(3, 2))};
    }
    out->setPoints(points);
    return out;
}

std::unique_ptr<NodeBehavior> makeMeshBehavior(Node& node) { return std::make_unique<MeshBehavior>(*node.dag()); }
std::unique_ptr<NodeBehavior> makePolyCreator(Node& node) { return std::make_unique<PolyCreator>(node); }

} // namespace host::scene
