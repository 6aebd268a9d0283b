#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"

#include <algorithm>
#include <numeric>

namespace host::mel {

using namespace scene;

namespace {

struct CreatorFlag {
    const char *flag, *longName, *attribute;
};

struct Creator {
    const char *type, *transform;
    std::vector<CreatorFlag> flags;
};

const std::vector<Creator>& creators() {
    static const std::vector<Creator> all{
        {"polyPlane",
         "pPlane#",
         {{"w", "width", "width"},
          {"h", "height", "height"},
          {"sx", "subdivisionsX", "subdivisionsWidth"},
          {"sy", "subdivisionsY", "subdivisionsHeight"}}},
        {"polyCube",
         "pCube#",
         {{"w", "width", "width"},
          {"h", "height", "height"},
          {"d", "depth", "depth"},
          {"sx", "subdivisionsX", "subdivisionsWidth"},
          {"sy", "subdivisionsY", "subdivisionsHeight"},
          {"sz", "subdivisionsZ", "subdivisionsDepth"}}},
        {"polySphere",
         "pSphere#",
         {{"r", "radius", "radius"},
          {"sx", "subdivisionsX", "subdivisionsAxis"},
          {"sy", "subdivisionsY", "subdivisionsHeight"}}},
        {"polyCylinder",
         "pCylinder#",
         {{"r", "radius", "radius"},
          {"h", "height", "height"},
          {"sx", "subdivisionsX", "subdivisionsAxis"},
          {"sy", "subdivisionsY", "subdivisionsHeight"},
          {"sz", "subdivisionsZ", "subdivisionsCaps"}}},
    };
    return all;
}

Node& creatorOf(Node& node, const Creator& creator) {
    if (node.type.name == creator.type) return node;
    if (DagNode* dag = node.dag())
        for (DagNode* shape : shapesOf(*dag)) {
            if (!meshBehavior(*shape)) continue;
            Cell* source = shape->cell("inMesh").source;
            if (source && source->node.type.name == creator.type) return source->node;
        }
    throw Error("'" + nameOf(node) + "' has no " + creator.type + " node.");
}

Value primitive(Call& call, const Creator& creator) {
    const ParsedArguments args(call,
                               {{"n", "name", 1},
                                {"w", "width", 1},
                                {"h", "height", 1},
                                {"d", "depth", 1},
                                {"r", "radius", 1},
                                {"sx", "subdivisionsX", 1},
                                {"sy", "subdivisionsY", 1},
                                {"sz", "subdivisionsZ", 1},
                                {"ax", "axis", 3},
                                {"ch", "constructionHistory", 1},
                                {"cuv", "createUVs", 1},
                                {"rcp", "roundCap", 1},
                                {"tx", "texture", 1},
                                {"o", "object", 1}},
                               true);
    for (const auto& flag : {"w", "h", "d", "r", "sx", "sy", "sz", "rcp"}) {
        const bool known =
            std::ranges::any_of(creator.flags, [&](auto& f) { return f.flag == std::string_view(flag); });
        const bool cap = flag == std::string_view("rcp") && creator.type == std::string_view("polyCylinder");
        if (args.has(flag) && !known && !cap) throw Error(std::string("Invalid flag: '-") + flag + "'");
    }
    Node *node = nullptr, *transform = nullptr, *shape = nullptr;
    if (args.query() || args.edit()) {
        const auto given = givenOrSelected(args);
        if (given.empty()) throw Error("No object was specified or selected.");
        node = &creatorOf(*given.front(), creator);
    } else {
        node = theScene().createNode(*theScene().findType(creator.type)).get();
        transform = theScene().createNode(*theScene().findType("transform"), args.text("n", creator.transform)).get();
        shape = theScene().createNode(*theScene().findType("mesh"), {}, transform->dag()).get();
    }
    // The command's own default is not the node's.
    const bool capped = transform && creator.type == std::string_view("polyCylinder") && !args.has("sz");
    if (capped) theScene().setNumber(node->cell("subdivisionsCaps"), 1);
    for (const auto& [flag, longName, attribute] : creator.flags) {
        if (!args.has(flag)) continue;
        Cell& cell = node->cell(attribute);
        if (args.query()) {
            evaluate(cell);
            if (cell.attribute.numeric == NumericType::Int) return static_cast<int>(cell.number());
            return toUi(cell.attribute, cell.number());
        }
        theScene().setNumber(cell, fromUi(cell.attribute, args.number(flag, 0)));
    }
    if (args.has("ax")) {
        if (args.query()) {
            const MVector v = tripleOf(*node, "axis");
            return FloatArray{v.x, v.y, v.z};
        }
        setTriple(*node, "axis",
                  MVector(args.value("ax", 0).toFloat(), args.value("ax", 1).toFloat(), args.value("ax", 2).toFloat()));
    }
    if (args.query()) throw Error(std::string(creator.type) + " was not told what to query.");
    if (args.has("cuv")) theScene().setNumber(node->cell("createUVs"), args.integer("cuv", 1));
    if (args.has("rcp")) theScene().setNumber(node->cell("roundCap"), args.boolean("rcp", false));
    if (args.edit()) return {};
    theScene().connect(node->cell("output"), shape->cell("inMesh"));
    addToSet(*theScene().findNode("initialShadingGroup"), *shape);
    selectNodes({transform});
    if (!args.boolean("ch", true)) {
        deleteHistory(*shape);
        return StringArray{nameOf(*transform)};
    }
    return StringArray{nameOf(*transform), nameOf(*node)};
}

/// Pieces that hang together by shared vertices.
int shellsOf(const mesh::PolyMesh& mesh) {
    std::vector<int> root(static_cast<std::size_t>(mesh.numVertices()));
    std::iota(root.begin(), root.end(), 0);
    const auto find = [&](int v) {
        while (root[static_cast<std::size_t>(v)] != v) {
            auto& up = root[static_cast<std::size_t>(v)];
            up = root[static_cast<std::size_t>(up)];
            v = up;
        }
        return v;
    };
    std::vector<bool> used(root.size());
    for (int f = 0; f < mesh.numPolygons(); ++f) {
        const auto vertices = mesh.faceVertices(f);
        for (int v : vertices) {
            used[static_cast<std::size_t>(v)] = true;
            root[static_cast<std::size_t>(find(v))] = find(vertices[0]);
        }
    }
    int shells = 0;
    for (std::size_t v = 0; v < root.size(); ++v) shells += used[v] && root[v] == static_cast<int>(v);
    return shells;
}

double areaOf(const mesh::PolyMesh& mesh) {
    double area = 0;
    for (int f = 0; f < mesh.numPolygons(); ++f)
        for (std::size_t t = 0; t < mesh.faceTriangles(f).size(); ++t) {
            const auto v = mesh.triangleVertices(f, static_cast<int>(t));
            const auto a = toDouble(mesh.point(v[0]));
            area += (toDouble(mesh.point(v[1])) - a).cross(toDouble(mesh.point(v[2])) - a).length() / 2;
        }
    return area;
}

/// The mesh shape of the first object given or selected.
DagNode& meshGiven(const ParsedArguments& args) {
    for (DagNode* node : dagGivenOrSelected(args))
        for (DagNode* shape : shapesOf(*node))
            if (meshBehavior(*shape)) return *shape;
    throw Error("No mesh was specified or selected.");
}

Value polyUVSet(Call& call) {
    const ParsedArguments args(call,
                               {{"cr", "create"},
                                {"uvs", "uvSet", 1},
                                {"nuv", "newUVSet", 1},
                                {"cuv", "currentUVSet"},
                                {"auv", "allUVSets"},
                                {"rn", "rename"},
                                {"cp", "copy"},
                                {"d", "delete"}},
                               true);
    DagNode& shape = meshGiven(args);
    const auto shown = meshOf(shape);
    if (!shown) throw Error("'" + nameOf(shape) + "' has no geometry.");
    if (args.query()) {
        StringArray names;
        for (int set = 0; set < shown->numUvSets(); ++set)
            if (args.has("auv") || set == shown->currentUvSet()) names.push_back(shown->uvSet(set).name);
        if (!args.has("auv") && !args.has("cuv")) throw Error("polyUVSet was not told what to query.");
        return names;
    }
    auto changed = std::make_shared<mesh::PolyMesh>(*storedMeshOf(shape));
    const auto setNamed = [&](const std::string& name) {
        const int set = changed->findUvSet(name);
        if (set < 0) throw Error("The UV set '" + name + "' cannot be found.");
        return set;
    };
    const auto added = [&](const std::string& name) {
        const int set = changed->addUvSet(name);
        if (set < 0) throw Error("The UV set '" + name + "' is there already.");
        return set;
    };
    std::string answer = args.text(args.has("nuv") ? "nuv" : "uvs");
    if (args.has("d")) {
        const int set = args.has("uvs") ? setNamed(args.text("uvs")) : changed->currentUvSet();
        answer = changed->uvSet(set).name;
        if (set == 0) throw Error("The first UV set, '" + answer + "', cannot be deleted.");
        changed->removeUvSet(set);
    } else if (args.has("cr")) {
        if (answer.empty()) answer = "uvSet" + std::to_string(changed->numUvSets());
        added(answer);
    } else if (args.has("rn")) {
        if (!changed->renameUvSet(setNamed(args.text("uvs")), args.text("nuv")))
            throw Error("The UV set cannot be named '" + args.text("nuv") + "'.");
    } else if (args.has("cp")) {
        const int from = setNamed(args.text("uvs"));
        const int to = args.has("nuv") && changed->findUvSet(answer) >= 0
                           ? changed->findUvSet(answer)
                           : added(args.has("nuv") ? answer : answer + "1");
        std::vector<int> counts, ids;
        for (int face = 0; face < changed->numPolygons(); ++face) {
            const int corners = static_cast<int>(changed->faceVertices(face).size());
            counts.push_back(corners);
            for (int k = 0; k < corners; ++k) ids.push_back(changed->uvId(from, face, k));
        }
        if (from != to) {
            const mesh::UvSet source = changed->uvSet(from);
            changed->setUvs(to, source.u, source.v);
            if (source.size() > 0) changed->assignUvs(to, counts, ids);
        }
        answer = changed->uvSet(to).name;
    } else if (args.has("cuv")) {
        changed->setCurrentUvSet(setNamed(args.text("uvs")));
    } else {
        throw Error("polyUVSet was not told what to do.");
    }
    setMesh(theScene(), shape, std::move(changed));
    return StringArray{answer};
}

struct Counts {
    int vertices = 0, edges = 0, faces = 0, uvs = 0, triangles = 0, shells = 0;
    double area = 0, worldArea = 0;
    Bounds bounds;
};

Value polyEvaluate(Call& call) {
    const ParsedArguments args(call, {{"v", "vertex"},
                                      {"e", "edge"},
                                      {"f", "face"},
                                      {"t", "triangle"},
                                      {"uv", "uvcoord"},
                                      {"s", "shell"},
                                      {"b", "boundingBox"},
                                      {"a", "area"},
                                      {"wa", "worldArea"},
                                      {"uvs", "uvSet", 1},
                                      {"fmt", "format"}});
    Counts n;
    int meshes = 0;
    for (Node* node : givenOrSelected(args)) {
        if (!node->dag()) continue;
        for (DagNode* shape : shapesOf(*node->dag())) {
            const auto mesh = meshOf(*shape);
            if (!mesh) continue;
            ++meshes;
            n.vertices += mesh->numVertices();
            n.edges += mesh->numEdges();
            n.faces += mesh->numPolygons();
            n.triangles += mesh->numTriangles();
            const int uvSet = mesh->findUvSet(args.text("uvs"));
            if (uvSet < 0) throw Error("No UV set is named '" + args.text("uvs") + "'.");
            n.uvs += mesh->uvSet(uvSet).size();
            if (args.has("a")) n.area += areaOf(*mesh);
            if (args.has("wa")) n.worldArea += areaOf(*transformed(*mesh, shape->worldMatrix()));
            n.shells += shellsOf(*mesh);
            if (args.has("b"))
                for (const auto& p : mesh->points()) n.bounds.include(MPoint(p.x, p.y, p.z));
        }
    }
    if (meshes == 0) throw Error("No polygonal object was specified or selected.");
    const double length = 1.0 / lengthUnit();
    std::vector<Value> answers;
    const std::pair<const char*, int> whole[] = {{"v", n.vertices}, {"e", n.edges},     {"f", n.faces},
                                                 {"uv", n.uvs},     {"t", n.triangles}, {"s", n.shells}};
    for (const auto& [flag, count] : whole)
        if (args.has(flag)) answers.emplace_back(count);
    if (args.has("a")) answers.emplace_back(n.area * length * length);
    if (args.has("wa")) answers.emplace_back(n.worldArea * length * length);
    if (args.has("b")) {
        const auto& s = n.bounds.sides;
        answers.emplace_back(n.bounds.empty() ? FloatArray(6, 0.0)
                                              : FloatArray{s[0] * length, s[3] * length, s[1] * length, s[4] * length,
                                                           s[2] * length, s[5] * length});
    }
    if (answers.size() == 1) return answers.front();
    if (answers.empty()) return IntArray{n.vertices, n.edges, n.faces, n.uvs, n.triangles, n.shells};
    FloatArray all;
    bool ints = true;
    for (const Value& v : answers) {
        ints &= v.type() == Value::Type::Int;
        for (double x : v.toFloatArray()) all.push_back(x);
    }
    return ints ? Value(Value(all).toIntArray()) : Value(all);
}

} // namespace

void registerMeshCommands(Interpreter& interpreter) {
    for (const Creator& creator : creators())
        registerSceneCommand(interpreter, creator.type, [&creator](Call& call) { return primitive(call, creator); });
    registerSceneCommand(interpreter, "polyEvaluate", polyEvaluate);
    registerSceneCommand(interpreter, "polyUVSet", polyUVSet);
}

} // namespace host::mel
