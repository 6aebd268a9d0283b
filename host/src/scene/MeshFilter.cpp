#include "scene/MeshFilter.h"

#include "base/NumberText.h"
#include "mesh/PolyMesh.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host::scene {
namespace {

using MeshPtr = std::shared_ptr<const mesh::PolyMesh>;

/// The tuples of an array attribute, by element.
template <class Use>
void eachTuple(Cell& array, Use use) {
    evaluate(array);
    for (auto& [index, element] : array.elements) {
        evaluate(*element);
        if (const auto* n = std::get_if<Numeric>(&element->value)) use(index, *n);
    }
}

MeshPtr movedPoints(const MeshPtr& mesh, Cell& offsets) {
    std::shared_ptr<mesh::PolyMesh> moved;
    eachTuple(offsets, [&](int vertex, const Numeric& d) {
        if (vertex >= mesh->numVertices()) return;
        if (!moved) moved = std::make_shared<mesh::PolyMesh>(*mesh);
        const mesh::Float3 p = moved->point(vertex);
        moved->setPoint(vertex, {static_cast<float>(p.x + d.get(0)), static_cast<float>(p.y + d.get(1)),
                                 static_cast<float>(p.z + d.get(2))});
    });
    return moved ? moved : mesh;
}

MeshPtr movedUvs(const MeshPtr& mesh, Cell& offsets, const std::string& name) {
    const int set = std::max(mesh->findUvSet(name), 0);
    std::vector<float> u = mesh->uvSet(set).u, v = mesh->uvSet(set).v;
    bool any = false;
    eachTuple(offsets, [&](int index, const Numeric& d) {
        const auto i = static_cast<std::size_t>(index);
        if (i >= u.size()) return;
        u[i] = static_cast<float>(u[i] + d.get(0));
        v[i] = static_cast<float>(v[i] + d.get(1));
        any = true;
    });
    if (!any) return mesh;
    auto moved = std::make_shared<mesh::PolyMesh>(*mesh);
    moved->setUvs(set, std::move(u), std::move(v));
    return moved;
}

/// The elements of a kind that a component list names: "e[3]", "e[0:11]", "e[*]".
std::vector<bool> listed(const std::vector<std::string>& components, char kind, int count) {
    std::vector<bool> in(static_cast<std::size_t>(count));
    for (const std::string& text : components) {
        if (text.size() < 4 || text[0] != kind || text[1] != '[' || text.back() != ']') continue;
        std::string_view range = std::string_view(text).substr(2, text.size() - 3);
        std::optional<int> first = 0, last = count - 1;
        if (!range.starts_with('*')) {
            first = last = takeInt(range);
            if (range.starts_with(':')) {
                range.remove_prefix(1);
                last = range.starts_with('*') ? count - 1 : takeInt(range);
            }
            if (!first || !last) continue;
        }
        for (int i = std::max(*first, 0); i <= std::min(*last, count - 1); ++i) in[static_cast<std::size_t>(i)] = true;
    }
    return in;
}

/// Makes the edges soft whose two faces meet at no more than the angle, the others hard.
MeshPtr softened(const MeshPtr& mesh, const std::vector<std::string>& components, double angle) {
    const std::vector<bool> wanted = listed(components, 'e', mesh->numEdges());
    if (std::find(wanted.begin(), wanted.end(), true) == wanted.end()) return mesh;
    struct Sides {
        int faces[2] = {-1, -1}, count = 0;
    };
    std::vector<Sides> sides(wanted.size());
    for (int face = 0; face < mesh->numPolygons(); ++face)
        for (const int id : mesh->faceEdges(face)) {
            Sides& s = sides[static_cast<std::size_t>(id < 0 ? -id - 1 : id)];
            if (s.count < 2) s.faces[s.count] = face;
            ++s.count;
        }
    std::vector<bool> smooth;
    for (std::size_t e = 0; e < sides.size(); ++e) {
        smooth.push_back(mesh->edges()[e].smooth);
        if (!wanted[e] || sides[e].count != 2) continue;
        const auto a = mesh->polygonNormal(sides[e].faces[0]), b = mesh->polygonNormal(sides[e].faces[1]);
        // Files have angles in rounded degrees.
        constexpr double slack = 1e-6;
        smooth[e] = std::atan2((a % b).length(), a.dot(b)) <= angle + slack && angle > 0;
    }
    auto made = std::make_shared<mesh::PolyMesh>(*mesh);
    made->setEdgesSmooth(smooth);
    return made;
}

class MeshFilter final : public NodeBehavior {
public:
    explicit MeshFilter(Node& node) : node_(node) {}

    bool compute(Cell& cell) override {
        const bool isOutput = cell.attribute.dataKind == DataKind::Mesh && !cell.attribute.writable;
        if (!isOutput) return false;
        if (cell.isArray()) {
            for (auto& [index, element] : cell.elements) compute(*element);
            cell.dirty = false;
            return true;
        }
        const int place = std::max(cell.index, 0);
        MeshPtr mesh = entering(place);
        if (mesh) mesh = filtered(mesh, place);
        cell.value = DataPtr(std::make_shared<MeshData>(std::move(mesh)));
        setClean(cell);
        return true;
    }

private:
    MeshPtr entering(int place) {
        Cell& first = *meshInput(node_);
        Cell& input = place == 0 ? first : first.parent->parent->element(place).child(first.attribute.childIndex);
        evaluate(input);
        // Geometry in the world's space knows its matrix, and is worked on in its own.
        if (input.source && input.source->attribute.longName == "worldMesh") return meshOf(input.source->node);
        const auto* data = std::get_if<DataPtr>(&input.value);
        const auto* held = data ? dynamic_cast<const MeshData*>(data->get()) : nullptr;
        return held ? held->mesh : nullptr;
    }

    MeshPtr filtered(const MeshPtr& mesh, int place) {
        const std::string& kind = node_.type.name;
        if (kind == "polyTweak") return movedPoints(mesh, node_.cell("tweak"));
        if (kind == "tweak") return movedPoints(mesh, node_.cell("vlist").element(place).child(0));
        if (kind == "polyTweakUV") {
            Cell& name = node_.cell("uvSetName");
            evaluate(name);
            return movedUvs(mesh, node_.cell("uvTweak"), std::get<std::string>(name.value));
        }
        if (kind != "polySoftEdge") return mesh;
        Cell &angle = node_.cell("angle"), &list = node_.cell("inputComponents");
        evaluate(angle);
        evaluate(list);
        const auto* data = std::get_if<DataPtr>(&list.value);
        const auto* components = data ? dynamic_cast<const ArrayData*>(data->get()) : nullptr;
        return components ? softened(mesh, components->texts, angle.number()) : mesh;
    }

    Node& node_;
};

} // namespace

Cell* meshInput(Node& node) {
    if (node.type.isA("polyModifier")) return &node.cell("inputPolymesh");
    if (node.type.isA("groupParts")) return &node.cell("inputGeometry");
    if (node.type.isA("tweak")) return &node.cell("input").element(0).child(0);
    return nullptr;
}

std::unique_ptr<NodeBehavior> makeMeshFilter(Node& node) { return std::make_unique<MeshFilter>(node); }

} // namespace host::scene
