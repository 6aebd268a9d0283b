#pragma once

#include "scene/Node.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::mesh {
class PolyMesh;
}

namespace host::scene {

enum class ComponentKind : std::uint8_t { Vertex, Edge, Face, Uv };

/// Components of one kind of a mesh: a set of indices, held as ranges, so that "all of them" costs nothing.
class Components {
public:
    struct Range {
        int first, last; ///< both included
        bool operator==(const Range&) const = default;
    };

    explicit Components(ComponentKind kind = ComponentKind::Vertex, std::vector<Range> ranges = {});
    static Components of(ComponentKind kind, std::vector<int> indices);

    ComponentKind kind() const { return kind_; }
    /// Ascending, with gaps between them.
    const std::vector<Range>& ranges() const { return ranges_; }
    bool isEmpty() const { return ranges_.empty(); }
    std::size_t count() const;
    std::vector<int> indices() const;
    bool contains(const Components& others) const;

    /// @name Sets; the kinds must be the same
    /// @{
    void add(const Components& others);
    void remove(const Components& others);
    /// @}

    /// "vtx[0:3]", a text a range; or, `flat`, a text a component.
    std::vector<std::string> names(bool flat = false) const;

    bool operator==(const Components&) const = default;

private:
    ComponentKind kind_;
    std::vector<Range> ranges_;
};

/// "vtx", "e", "f", "map".
const char* componentName(ComponentKind kind);
/// How many of a kind the mesh has; texture coordinates are those of its current set.
int componentCount(const mesh::PolyMesh& mesh, ComponentKind kind);

/// What "vtx[3]", "e[0:2]", "f[*]" or "map[2:]" stand for on the mesh; nothing for other texts, and where the mesh has
/// none of them. A range that ends too late is cut at the mesh's end.
std::optional<Components> parseComponents(std::string_view text, const mesh::PolyMesh& mesh);

/// The same for a shape, or for the mesh below a transform.
struct ShapeComponents {
    DagNode* shape;
    Components components;
};
std::optional<ShapeComponents> findComponents(Node& node, std::string_view text);

/// The vertices that components consist of or lie at.
Components verticesOf(const mesh::PolyMesh& mesh, const Components& components);

/// The node whose name stands in front of a shape's components: its transform, where that has no other shape.
Node& componentOwner(Node& shape);

} // namespace host::scene
