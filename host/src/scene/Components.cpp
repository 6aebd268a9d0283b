#include "scene/Components.h"
#include "base/NumberText.h"

#include "scene/MeshNode.h"

#include <algorithm>
#include <iterator>

namespace host::scene {
namespace {

constexpr const char* kNames[] = {"vtx", "e", "f", "map"};

/// A whole number that fills the text; `absent` for an empty one.
std::optional<int> index(std::string_view text, int absent) { return text.empty() ? absent : readInt(text); }

} // namespace

Components::Components(ComponentKind kind, std::vector<Range> ranges) : kind_(kind), ranges_(std::move(ranges)) {
    std::ranges::sort(ranges_, {}, &Range::first);
    std::size_t kept = 0;
    for (const Range r : ranges_)
        if (kept > 0 && r.first <= ranges_[kept - 1].last + 1)
            ranges_[kept - 1].last = std::max(ranges_[kept - 1].last, r.last);
        else
            ranges_[kept++] = r;
    ranges_.resize(kept);
}

Components Components::of(ComponentKind kind, std::vector<int> indices) {
    std::vector<Range> ranges;
    std::ranges::sort(indices);
    for (const int i : indices)
        if (!ranges.empty() && i <= ranges.back().last + 1)
            ranges.back().last = i;
        else
            ranges.push_back({i, i});
    return Components(kind, std::move(ranges));
}

std::size_t Components::count() const {
    std::size_t n = 0;
    for (const Range r : ranges_) n += static_cast<std::size_t>(r.last - r.first) + 1;
    return n;
}

std::vector<int> Components::indices() const {
    std::vector<int> all;
    all.reserve(count());
    for (const Range r : ranges_)
        for (int i = r.first; i <= r.last; ++i) all.push_back(i);
    return all;
}

bool Components::contains(const Components& others) const {
    if (kind_ != others.kind_) return false;
    return std::ranges::all_of(others.ranges_, [&](Range wanted) {
        const auto behind = std::ranges::upper_bound(ranges_, wanted.first, {}, &Range::first);
        return behind != ranges_.begin() && wanted.last <= std::prev(behind)->last;
    });
}

void Components::add(const Components& others) {
    std::vector<Range> all = ranges_;
    all.insert(all.end(), others.ranges_.begin(), others.ranges_.end());
    *this = Components(kind_, std::move(all));
}

void Components::remove(const Components& others) {
    std::vector<Range> left;
    auto cut = others.ranges_.begin();
    for (Range r : ranges_) {
        while (cut != others.ranges_.end() && cut->last < r.first) ++cut;
        for (auto c = cut; c != others.ranges_.end() && c->first <= r.last && r.first <= r.last; ++c) {
            if (c->first > r.first) left.push_back({r.first, c->first - 1});
            r.first = c->last + 1;
        }
        if (r.first <= r.last) left.push_back(r);
    }
    ranges_ = std::move(left);
}

std::vector<std::string> Components::names(bool flat) const {
    std::vector<std::string> texts;
    const std::string head = std::string(componentName(kind_)) + "[";
    for (const Range r : ranges_) {
        const int last = flat ? r.last : r.first;
        for (int i = r.first; i <= last; ++i)
            texts.push_back(head + std::to_string(i) +
                            (flat || r.first == r.last ? "]" : ":" + std::to_string(r.last) + "]"));
    }
    return texts;
}

const char* componentName(ComponentKind kind) { return kNames[static_cast<std::size_t>(kind)]; }

int componentCount(const mesh::PolyMesh& mesh, ComponentKind kind) {
    switch (kind) {
    case ComponentKind::Vertex: return mesh.numVertices();
    case ComponentKind::Edge: return mesh.numEdges();
    case ComponentKind::Face: return mesh.numPolygons();
    case ComponentKind::Uv: return mesh.uvSet(mesh.currentUvSet()).size();
    }
    return 0;
}

std::optional<Components> parseComponents(std::string_view text, const mesh::PolyMesh& mesh) {
    const auto open = text.find('[');
    if (open == std::string_view::npos || text.back() != ']') return std::nullopt;
    const auto name = std::ranges::find(kNames, text.substr(0, open));
    if (name == std::end(kNames)) return std::nullopt;
    const auto kind = static_cast<ComponentKind>(name - std::begin(kNames));
    const int count = componentCount(mesh, kind);
    const std::string_view inside = text.substr(open + 1, text.size() - open - 2);
    const auto colon = inside.find(':');
    if (inside.empty()) return std::nullopt;
    std::optional<int> first = 0, last = count - 1;
    if (inside != "*") {
        first = index(inside.substr(0, colon), 0);
        last = colon == std::string_view::npos ? first : index(inside.substr(colon + 1), count - 1);
    }
    if (!first || !last || *first < 0 || *first > *last || *first >= count) return std::nullopt;
    return Components(kind, {{*first, std::min(*last, count - 1)}});
}

std::optional<ShapeComponents> findComponents(Node& node, std::string_view text) {
    DagNode* dag = node.dag();
    if (!dag || text.find('[') == std::string_view::npos) return std::nullopt;
    std::vector<DagNode*> shapes{dag};
    if (dag->isTransform()) shapes = dag->children;
    for (DagNode* shape : shapes) {
        if (!meshBehavior(*shape) || (shape != dag && shape->intermediate())) continue;
        const auto mesh = meshOf(*shape);
        if (!mesh) continue;
        const auto found = parseComponents(text, *mesh);
        return found ? std::optional(ShapeComponents{shape, *found}) : std::nullopt;
    }
    return std::nullopt;
}

Components verticesOf(const mesh::PolyMesh& mesh, const Components& components) {
    if (components.kind() == ComponentKind::Vertex) return components;
    std::vector<int> vertices;
    if (components.kind() == ComponentKind::Uv) {
        const mesh::UvSet& set = mesh.uvSet(mesh.currentUvSet());
        std::vector<bool> wanted(static_cast<std::size_t>(set.size()));
        for (const int i : components.indices()) wanted[static_cast<std::size_t>(i)] = true;
        for (std::size_t corner = 0; corner < set.ids.size(); ++corner)
            if (set.ids[corner] >= 0 && wanted[static_cast<std::size_t>(set.ids[corner])])
                vertices.push_back(mesh.connects()[corner]);
        return Components::of(ComponentKind::Vertex, std::move(vertices));
    }
    for (const int i : components.indices())
        if (components.kind() == ComponentKind::Edge) {
            const mesh::Edge& e = mesh.edges()[static_cast<std::size_t>(i)];
            vertices.insert(vertices.end(), {e.v1, e.v2});
        } else
            for (const int v : mesh.faceVertices(i)) vertices.push_back(v);
    return Components::of(ComponentKind::Vertex, std::move(vertices));
}

Node& componentOwner(Node& shape) {
    DagNode* dag = shape.dag();
    DagNode* above = dag ? dag->parent : nullptr;
    if (!above || above->isWorld() || dag->intermediate()) return shape;
    const auto shows = [](DagNode* child) { return child->isShape() && !child->intermediate(); };
    return std::ranges::count_if(above->children, shows) == 1 ? *above : shape;
}

} // namespace host::scene
