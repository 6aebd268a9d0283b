#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>

namespace host::mel {

using namespace scene;

namespace {

/// Calls with every pair of a component of one kind and one of another kind that touch, once a corner or end.
template <class Pair>
void forEachTouching(const mesh::PolyMesh& mesh, ComponentKind a, ComponentKind b, Pair pair) {
    if ((a == ComponentKind::Vertex && b == ComponentKind::Edge) ||
        (a == ComponentKind::Edge && b == ComponentKind::Vertex)) {
        for (int e = 0; e < mesh.numEdges(); ++e)
            for (const int v :
                 {mesh.edges()[static_cast<std::size_t>(e)].v1, mesh.edges()[static_cast<std::size_t>(e)].v2})
                a == ComponentKind::Vertex ? pair(v, e) : pair(e, v);
        return;
    }
    const int uvSet = mesh.currentUvSet();
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        const auto vertices = mesh.faceVertices(f);
        const auto edges = mesh.faceEdges(f);
        const int size = mesh.faceSize(f);
        // The components of a kind at a corner; an edge has two of them, its own corner and the next.
        const auto at = [&](ComponentKind kind, int corner) {
            const auto i = static_cast<std::size_t>(corner);
            switch (kind) {
            case ComponentKind::Vertex: return vertices[i];
            case ComponentKind::Edge: return edges[i] < 0 ? -edges[i] - 1 : edges[i];
            case ComponentKind::Uv: return mesh.uvId(uvSet, f, corner);
            case ComponentKind::Face: break;
            }
            return f;
        };
        const bool edgeAndUv = (a == ComponentKind::Edge && b == ComponentKind::Uv) ||
                               (a == ComponentKind::Uv && b == ComponentKind::Edge);
        for (int corner = 0; corner < size; ++corner) {
            if (at(a, corner) >= 0 && at(b, corner) >= 0) pair(at(a, corner), at(b, corner));
            if (!edgeAndUv) continue;
            const int next = (corner + 1) % size;
            const int from = a == ComponentKind::Edge ? at(a, corner) : at(a, next);
            const int to = b == ComponentKind::Edge ? at(b, corner) : at(b, next);
            if (from >= 0 && to >= 0) pair(from, to);
        }
    }
}

enum class Reach { Any, Internal, Border };

/// The components of a kind that touch the given ones; Internal ones touch no others, Border ones do.
Components reached(const mesh::PolyMesh& mesh, const Components& from, ComponentKind to, Reach reach) {
    if (from.kind() == to) return from;
    std::vector<bool> given(static_cast<std::size_t>(componentCount(mesh, from.kind())));
    for (const int i : from.indices()) given[static_cast<std::size_t>(i)] = true;
    std::vector<int> all(static_cast<std::size_t>(componentCount(mesh, to))), touched(all.size());
    forEachTouching(mesh, from.kind(), to, [&](int a, int b) {
        ++all[static_cast<std::size_t>(b)];
        touched[static_cast<std::size_t>(b)] += given[static_cast<std::size_t>(a)];
    });
    // An edge that has one face lies at the border of whatever has that face.
    const bool openEnds = from.kind() == ComponentKind::Face && to == ComponentKind::Edge;
    std::vector<int> found;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (touched[i] == 0) continue;
        const bool border = touched[i] < all[i] || (openEnds && all[i] == 1);
        if (reach == Reach::Any || border == (reach == Reach::Border)) found.push_back(static_cast<int>(i));
    }
    return Components::of(to, std::move(found));
}

Components allOf(const mesh::PolyMesh& mesh, ComponentKind kind) {
    const int count = componentCount(mesh, kind);
    return count > 0 ? Components(kind, {{0, count - 1}}) : Components(kind);
}

/// The components among the items, and all vertices of whole meshes.
std::vector<Selected> componentItems(const StringArray& names, ComponentKind ofWholeMeshes) {
    std::vector<Selected> items;
    for (const Selected& item : objectsGivenOrSelected(names)) {
        if (item.components) {
            items.push_back(item);
            continue;
        }
        if (!item.node->dag()) continue;
        for (DagNode* shape : shapesOf(*item.node->dag()))
            if (const auto mesh = meshOf(*shape))
                items.push_back({shape->shared_from_this(), {}, allOf(*mesh, ofWholeMeshes)});
    }
    return items;
}

Value polyListComponentConversion(Call& call) {
    const ParsedArguments args(call, {{"fv", "fromVertex"},
                                      {"fe", "fromEdge"},
                                      {"ff", "fromFace"},
                                      {"fuv", "fromUV"},
                                      {"tv", "toVertex"},
                                      {"te", "toEdge"},
                                      {"tf", "toFace"},
                                      {"tuv", "toUV"},
                                      {"bo", "border"},
                                      {"in", "internal"}});
    using Flag = std::pair<const char*, ComponentKind>;
    const Flag from[] = {{"fv", ComponentKind::Vertex},
                         {"fe", ComponentKind::Edge},
                         {"ff", ComponentKind::Face},
                         {"fuv", ComponentKind::Uv}};
    const Flag to[] = {{"tv", ComponentKind::Vertex},
                       {"te", ComponentKind::Edge},
                       {"tf", ComponentKind::Face},
                       {"tuv", ComponentKind::Uv}};
    const auto given = [&](const Flag& flag) { return args.has(flag.first); };
    const bool anyKind = std::ranges::none_of(from, given);
    const auto target = std::ranges::find_if(to, given);
    if (target == std::end(to)) throw Error("polyListComponentConversion was not told what to convert to.");
    const Reach reach = args.has("bo") ? Reach::Border : args.has("in") ? Reach::Internal : Reach::Any;
    std::vector<Selected> found;
    for (const Selected& item : componentItems(args.names(), target->second)) {
        const auto kind = item.components->kind();
        if (!anyKind && std::ranges::none_of(from, [&](const Flag& f) { return f.second == kind && given(f); }))
            continue;
        found.push_back({item.node, {}, reached(*meshOf(*item.node), *item.components, target->second, reach)});
    }
    StringArray names;
    for (const Selected& item : merged(found))
        for (auto& name : namesOf(item)) names.push_back(std::move(name));
    return names;
}

/// The kinds that filterExpand tells apart by number.
std::optional<ComponentKind> kindOfMask(int mask) {
    switch (mask) {
    case 31: return ComponentKind::Vertex;
    case 32: return ComponentKind::Edge;
    case 34: return ComponentKind::Face;
    case 35: return ComponentKind::Uv;
    default: return std::nullopt;
    }
}

Value filterExpand(Call& call) {
    const ParsedArguments args(
        call, {{"sm", "selectionMask", 1}, {"ex", "expand", 1}, {"fp", "fullPath", 1}, {"sn", "symbolicNames", 1}});
    if (!args.has("sm")) throw Error("filterExpand needs -selectionMask.");
    std::set<ComponentKind> kinds;
    bool meshes = false;
    for (std::size_t i = 0; i < args.occurrences("sm"); ++i) {
        const int mask = args.value("sm", 0, i).toInt();
        meshes |= mask == 12;
        if (const auto kind = kindOfMask(mask)) kinds.insert(*kind);
    }
    std::vector<Selected> items;
    const StringArray names = args.names();
    for (const std::string& name : names)
        for (auto& item : itemsNamed(name)) items.push_back(std::move(item));
    if (names.empty()) items = theScene().selection();
    StringArray found;
    for (const Selected& item : merged(items)) {
        if (item.components ? !kinds.contains(item.components->kind())
                            : !meshes || !item.isWhole() || !item.node->dag())
            continue;
        if (!item.components &&
            std::ranges::none_of(shapesOf(*item.node->dag()), [](DagNode* s) { return meshBehavior(*s); }))
            continue;
        for (auto& name : namesOf(item, args.boolean("fp", false), args.boolean("ex", true)))
            found.push_back(std::move(name));
    }
    return found;
}

/// "FACE      0:      0      1      3      2 "
std::string line(const char* kind, int index, const std::vector<int>& others) {
    std::string text = fmt::format("{}{:7}:", kind, index);
    for (const int other : others) text += fmt::format("{:7}", other);
    return text + " \n";
}

StringArray facts(const ParsedArguments& args, const mesh::PolyMesh& mesh, const Components& components) {
    using K = ComponentKind;
    struct Table {
        const char* flag;
        K from, to;
        const char* word;
    };
    constexpr Table tables[] = {{"ef", K::Edge, K::Face, "EDGE"},
                                {"fe", K::Face, K::Edge, "FACE"},
                                {"fv", K::Face, K::Vertex, "FACE"},
                                {"ve", K::Vertex, K::Edge, "VERTEX"},
                                {"vf", K::Vertex, K::Face, "VERTEX"}};
    StringArray lines;
    for (const Table& t : tables) {
        if (!args.has(t.flag) || components.kind() != t.from) continue;
        std::map<int, std::vector<int>> others;
        for (const int i : components.indices()) others[i];
        forEachTouching(mesh, t.from, t.to, [&](int a, int b) {
            if (const auto found = others.find(a); found != others.end()) found->second.push_back(b);
        });
        for (const auto& [i, list] : others) lines.push_back(line(t.word, i, list));
    }
    if (args.has("ev") && components.kind() == K::Edge)
        for (const int i : components.indices()) {
            const mesh::Edge& e = mesh.edges()[static_cast<std::size_t>(i)];
            lines.push_back(fmt::format("EDGE{:7}:{:7}{:7}  {}\n", i, e.v1, e.v2, e.smooth ? "Smooth" : "Hard"));
        }
    if (args.has("fn") && components.kind() == K::Face)
        for (const int i : components.indices()) {
            const auto n = mesh.polygonNormal(i);
            lines.push_back(fmt::format("FACE_NORMAL{:7}: {:f} {:f} {:f}\n", i, n.x, n.y, n.z));
        }
    return lines;
}

/// Edges of more than two faces.
Components nonManifoldEdges(const mesh::PolyMesh& mesh) {
    std::vector<int> faces(static_cast<std::size_t>(mesh.numEdges())), found;
    forEachTouching(mesh, ComponentKind::Face, ComponentKind::Edge,
                    [&](int, int e) { ++faces[static_cast<std::size_t>(e)]; });
    for (std::size_t e = 0; e < faces.size(); ++e)
        if (faces[e] > 2) found.push_back(static_cast<int>(e));
    return Components::of(ComponentKind::Edge, std::move(found));
}

/// Vertices whose faces do not all hang together by edges at the vertex, and those of edges of more than two faces.
Components nonManifoldVertices(const mesh::PolyMesh& mesh) {
    // Corners of a vertex are joined where their faces share an edge at it: one group a vertex is as it should be.
    std::vector<int> root(static_cast<std::size_t>(mesh.numFaceVertices()));
    std::iota(root.begin(), root.end(), 0);
    const auto find = [&](int c) {
        while (root[static_cast<std::size_t>(c)] != c)
            c = root[static_cast<std::size_t>(c)] = root[static_cast<std::size_t>(root[static_cast<std::size_t>(c)])];
        return c;
    };
    std::map<std::pair<int, int>, int> cornerAt; // by edge and vertex
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        const int size = mesh.faceSize(f), start = mesh.faceStart(f);
        for (int i = 0; i < size; ++i) {
            const int signedEdge = mesh.faceEdges(f)[static_cast<std::size_t>(i)];
            const int edge = signedEdge < 0 ? -signedEdge - 1 : signedEdge;
            for (const int corner : {i, (i + 1) % size}) {
                const int vertex = mesh.faceVertices(f)[static_cast<std::size_t>(corner)];
                const auto [place, isNew] = cornerAt.try_emplace({edge, vertex}, start + corner);
                if (!isNew) root[static_cast<std::size_t>(find(start + corner))] = find(place->second);
            }
        }
    }
    std::vector<int> group(static_cast<std::size_t>(mesh.numVertices()), -1), found;
    for (int c = 0; c < mesh.numFaceVertices(); ++c) {
        const int vertex = mesh.connects()[static_cast<std::size_t>(c)];
        int& first = group[static_cast<std::size_t>(vertex)];
        if (first < 0)
            first = find(c);
        else if (first != find(c))
            found.push_back(vertex);
    }
    Components vertices = Components::of(ComponentKind::Vertex, std::move(found));
    vertices.add(verticesOf(mesh, nonManifoldEdges(mesh)));
    return vertices;
}

/// Faces that have all their vertices in common with another one.
Components laminaFaces(const mesh::PolyMesh& mesh) {
    std::map<std::vector<int>, std::vector<int>> byVertices;
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        std::vector<int> vertices(mesh.faceVertices(f).begin(), mesh.faceVertices(f).end());
        std::ranges::sort(vertices);
        byVertices[std::move(vertices)].push_back(f);
    }
    std::vector<int> found;
    for (const auto& [vertices, faces] : byVertices)
        if (faces.size() > 1) found.insert(found.end(), faces.begin(), faces.end());
    return Components::of(ComponentKind::Face, std::move(found));
}

Value polyInfo(Call& call) {
    const ParsedArguments args(call, {{"nme", "nonManifoldEdges"},
                                      {"nmv", "nonManifoldVertices"},
                                      {"lf", "laminaFaces"},
                                      {"ef", "edgeToFace"},
                                      {"ev", "edgeToVertex"},
                                      {"fe", "faceToEdge"},
                                      {"fv", "faceToVertex"},
                                      {"fn", "faceNormals"},
                                      {"ve", "vertexToEdge"},
                                      {"vf", "vertexToFace"}});
    const bool edges = args.has("ef") || args.has("ev"), vertices = args.has("ve") || args.has("vf");
    StringArray found;
    for (const Selected& item : componentItems(args.names(), edges      ? ComponentKind::Edge
                                                             : vertices ? ComponentKind::Vertex
                                                                        : ComponentKind::Face)) {
        const auto mesh = meshOf(*item.node);
        for (auto& text : facts(args, *mesh, *item.components)) found.push_back(std::move(text));
        using Search = std::pair<const char*, Components (*)(const mesh::PolyMesh&)>;
        for (const auto& [flag, search] :
             {Search{"nme", nonManifoldEdges}, Search{"nmv", nonManifoldVertices}, Search{"lf", laminaFaces}})
            if (args.has(flag))
                for (auto& name : namesOf(Selected{item.node, {}, search(*mesh)})) found.push_back(std::move(name));
    }
    return found;
}

} // namespace

void registerComponentListCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "polyListComponentConversion", polyListComponentConversion);
    registerSceneCommand(interpreter, "filterExpand", filterExpand);
    registerSceneCommand(interpreter, "polyInfo", polyInfo);
}

} // namespace host::mel
