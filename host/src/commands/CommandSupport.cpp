#include "commands/CommandSupport.h"

#include "base/Units.h"
#include "mesh/PolyMesh.h"
#include "scene/DagBehavior.h"
#include "scene/MeshNode.h"

#include <maya/MEulerRotation.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include <algorithm>
#include <unordered_set>

namespace host::mel {

using namespace scene;

void registerSceneCommand(Interpreter& interpreter, const char* name, CommandFunction function, Flags flags) {
    interpreter.registerCommand(
        name,
        [function = std::move(function)](Call& call) {
            try {
                return function(call);
            } catch (const SceneError& e) {
                throw Error(e.what());
            }
        },
        flags == Flags::Told);
}

Node& nodeNamed(const std::string& name) {
    bool ambiguous = false;
    Node* node = theScene().findNode(name, &ambiguous);
    if (ambiguous) throw Error("More than one object matches name: " + name);
    if (!node) throw Error("No object matches name: " + name);
    return *node;
}

DagNode& dagNamed(const std::string& name) {
    DagNode* dag = nodeNamed(name).dag();
    if (!dag) throw Error("'" + name + "' is not a DAG object.");
    return *dag;
}

DagNode& transformNamed(const std::string& name) {
    DagNode& dag = dagNamed(name);
    if (!dag.isTransform() || !dag.findAttribute("translate")) throw Error("'" + name + "' is not a transform.");
    return dag;
}

std::vector<Node*> nodesNamed(const StringArray& names) {
    std::vector<Node*> found;
    std::unordered_set<Node*> seen;
    for (const std::string& name : names) {
        const bool pattern = name.find_first_of("*?") != std::string::npos;
        const std::vector<Node*> matches = pattern ? theScene().findNodes(name) : std::vector{&nodeNamed(name)};
        if (matches.empty()) throw Error("No object matches name: " + name);
        for (Node* n : matches)
            if (seen.insert(n).second) found.push_back(n);
    }
    return found;
}

Cell* findPlug(const std::string& name, bool create) {
    const auto dot = name.find('.');
    if (dot == std::string::npos) return nullptr;
    Node* node = theScene().findNode(name.substr(0, dot));
    if (!node) return nullptr;
    const std::string path = name.substr(dot + 1);
    if (Cell* cell = theScene().tryPlug(*node, path, create)) return cell;
    DagNode* dag = node->dag();
    if (dag && dag->isTransform())
        for (DagNode* shape : shapesOf(*dag))
            if (Cell* cell = theScene().tryPlug(*shape, path, create)) return cell;
    return nullptr;
}

Cell& plugNamed(const std::string& name) {
    if (Cell* cell = findPlug(name)) return *cell;
    nodeNamed(name.substr(0, name.find('.')));
    throw Error("No object matches name: " + name);
}

std::vector<Selected> itemsNamed(const std::string& name) {
    const auto dot = name.find('.');
    std::vector<Selected> items;
    for (Node* node : nodesNamed({name.substr(0, dot)})) {
        if (dot == std::string::npos) {
            items.push_back({node->shared_from_this(), {}});
            continue;
        }
        const std::string part = name.substr(dot + 1);
        if (const auto found = findComponents(*node, part))
            items.push_back({found->shape->shared_from_this(), {}, found->components});
        else if (Cell* cell = findPlug(nameOf(*node) + "." + part, false))
            items.push_back({cell->node.shared_from_this(), cell->attributePath()});
    }
    if (items.empty()) throw Error("No object matches name: " + name);
    return items;
}

std::vector<Selected> objectsGivenOrSelected(const StringArray& names) {
    std::vector<Selected> items;
    for (const std::string& name : names)
        for (auto& item : itemsNamed(name)) items.push_back(std::move(item));
    if (names.empty()) items = theScene().selection();
    if (items.empty()) throw Error("No object was specified or selected.");
    for (const Selected& item : items)
        if (!item.part.empty()) throw Error("'" + namesOf(item).front() + "' is an attribute, not an object.");
    return merged(items);
}

std::vector<Node*> selectedNodes() {
    std::vector<Node*> nodes;
    std::unordered_set<Node*> seen;
    for (const Selected& item : theScene().selection()) {
        Node& node = item.components ? componentOwner(*item.node) : *item.node;
        if (seen.insert(&node).second) nodes.push_back(&node);
    }
    return nodes;
}

std::vector<Node*> givenOrSelected(const ParsedArguments& arguments) {
    const StringArray names = arguments.names();
    return names.empty() ? selectedNodes() : nodesNamed(names);
}

std::vector<DagNode*> dagGivenOrSelected(const ParsedArguments& arguments) {
    std::vector<DagNode*> found;
    for (Node* node : givenOrSelected(arguments)) {
        if (!node->dag()) throw Error("'" + nameOf(*node) + "' is not a DAG object.");
        found.push_back(node->dag());
    }
    if (found.empty()) throw Error("No object was specified or selected.");
    return found;
}

std::string nameOf(Node& node, bool full) {
    DagNode* dag = node.dag();
    return full && dag ? dag->fullPath() : theScene().displayName(node);
}

StringArray namesOf(const Selected& item, bool full, bool flat) {
    if (!item.components) {
        const std::string name = nameOf(*item.node, full);
        return {item.part.empty() ? name : name + "." + item.part};
    }
    // A full path leads to the shape; else its transform's name is enough.
    const std::string head = nameOf(full ? *item.node : componentOwner(*item.node), full) + ".";
    StringArray names = item.components->names(flat);
    for (auto& name : names) name.insert(0, head);
    return names;
}

StringArray namesOf(const std::vector<Node*>& nodes, bool full) {
    StringArray names;
    for (Node* node : nodes) names.push_back(nameOf(*node, full));
    return names;
}

std::string shapeNameFor(const std::string& transformName) {
    const auto last = transformName.find_last_not_of("0123456789");
    const std::size_t stem = last == std::string::npos ? 0 : last + 1;
    return transformName.substr(0, stem) + "Shape" + transformName.substr(stem);
}

void selectNodes(const std::vector<Node*>& nodes) {
    std::vector<Selected> items;
    for (Node* node : nodes) items.push_back({node->shared_from_this(), {}});
    theScene().setSelection(std::move(items));
}

std::vector<DagNode*> shapesOf(DagNode& node) {
    if (node.isShape()) return {&node};
    std::vector<DagNode*> shapes;
    for (DagNode* child : node.children)
        if (child->isShape() && !child->intermediate()) shapes.push_back(child);
    return shapes;
}

std::vector<DagNode*> withDescendants(DagNode& node) {
    std::vector<DagNode*> all = theScene().descendants(node);
    all.insert(all.begin(), &node);
    return all;
}

bool visibleInWorld(DagNode& node) {
    for (DagNode* n = &node; n; n = n->parent)
        if (!n->visible()) return false;
    return true;
}

Node& transformOf(Node& node) {
    DagNode* dag = node.dag();
    return dag && dag->isShape() && dag->parent && !dag->parent->isWorld() ? *dag->parent : node;
}

double lengthUnit() { return centimetresPer(linearUnit()); }
double angleUnit() { return radiansPer(angularUnit()); }
double timeTicks() { return timeUnit().ticks; }

MVector tripleOf(Node& node, const char* attribute) {
    Cell& cell = node.cell(attribute);
    evaluate(cell);
    const auto* n = std::get_if<Numeric>(&cell.value);
    return n ? MVector(n->get(0), n->get(1), n->get(2)) : MVector();
}

void setTriple(Node& node, const char* attribute, const MVector& value) {
    const MVector before = tripleOf(node, attribute);
    for (unsigned k = 0; k < 3; ++k)
        if (before[k] != value[k]) theScene().setNumber(node.cell(attribute).child(static_cast<int>(k)), value[k]);
}

MVector turned(const MVector& v, const MMatrix& m) {
    return MVector(v.x * m(0, 0) + v.y * m(1, 0) + v.z * m(2, 0), v.x * m(0, 1) + v.y * m(1, 1) + v.z * m(2, 1),
                   v.x * m(0, 2) + v.y * m(1, 2) + v.z * m(2, 2));
}

namespace {

void setChannels(DagNode& node, const char* attribute, const MVector& value, bool leaveHeld) {
    const MVector before = tripleOf(node, attribute);
    for (unsigned k = 0; k < 3; ++k) {
        // Taking a matrix apart leaves noise in the last digits, which is no reason to touch a channel.
        if (std::abs(before[k] - value[k]) <= 1e-14 * std::max(1.0, std::abs(before[k]))) continue;
        Cell& cell = node.cell(attribute).child(static_cast<int>(k));
        if (leaveHeld) {
            try {
                theScene().requireSettable(cell);
            } catch (const SceneError&) {
                continue;
            }
        }
        theScene().setNumber(cell, value[k]);
    }
}

/// Numbers that ought to be round are made so: what is left of a cosine of 90 degrees is no position.
double tidy(double v) { return std::abs(v) < 1e-14 ? 0.0 : v; }

} // namespace

void setLocalMatrix(DagNode& node, const MMatrix& matrix, bool leaveHeld) {
    const MTransformationMatrix parts(matrix);
    double scale[3], shear[3];
    parts.getScale(scale, MSpace::kTransform);
    parts.getShear(shear, MSpace::kTransform);
    const MVector axis = tripleOf(node, "rotateAxis");
    Cell& orderCell = node.cell("rotateOrder");
    evaluate(orderCell);
    const auto order = scene::rotationOrder(orderCell.number());
    const MMatrix turn = MEulerRotation(axis.x, axis.y, axis.z).asMatrix().inverse() * parts.rotation().asMatrix() *
                         scene::jointOrientation(node).inverse();
    const MVector was = tripleOf(node, "rotate");
    const MEulerRotation rotation =
        MEulerRotation::decompose(turn, order).closestSolution(MEulerRotation(was.x, was.y, was.z, order));
    setChannels(node, "scale", MVector(tidy(scale[0]), tidy(scale[1]), tidy(scale[2])), leaveHeld);
    setChannels(node, "shear", MVector(tidy(shear[0]), tidy(shear[1]), tidy(shear[2])), leaveHeld);
    setChannels(node, "rotate", MVector(tidy(rotation.x), tidy(rotation.y), tidy(rotation.z)), leaveHeld);
    // Whatever the pivots add, the translation makes up for it.
    const MMatrix now = node.localMatrix();
    const MVector t = tripleOf(node, "translate");
    setChannels(node, "translate",
                MVector(tidy(t.x + matrix(3, 0) - now(3, 0)), tidy(t.y + matrix(3, 1) - now(3, 1)),
                        tidy(t.z + matrix(3, 2) - now(3, 2))),
                leaveHeld);
}

void Bounds::include(const MPoint& p) {
    for (unsigned k = 0; k < 3; ++k) {
        sides[k] = std::min(sides[k], p[k]);
        sides[k + 3] = std::max(sides[k + 3], p[k]);
    }
}

void Bounds::include(const Bounds& other) {
    for (std::size_t k = 0; k < 3; ++k) {
        sides[k] = std::min(sides[k], other.sides[k]);
        sides[k + 3] = std::max(sides[k + 3], other.sides[k + 3]);
    }
}

MVector Bounds::centre() const {
    return MVector((sides[0] + sides[3]) / 2, (sides[1] + sides[4]) / 2, (sides[2] + sides[5]) / 2);
}

void deleteHistory(Node& shape) {
    Cell& input = shape.cell("inMesh");
    if (!input.source) return;
    const auto mesh = meshOf(shape);
    Node& upstream = input.source->node;
    theScene().disconnect(*input.source, input);
    setMesh(theScene(), shape, mesh);
    if (!upstream.type.isA("polyCreator") || upstream.locked) return;
    for (Cell* cell : upstream.cells())
        if (!cell->destinations.empty()) return;
    theScene().deleteNodes({&upstream});
}

Points::Points(const Selected& item)
    : shape(*item.node->dag()), mesh(meshOf(shape)), vertices(verticesOf(*mesh, *item.components).indices()) {}

MPoint Points::at(int vertex) const {
    const auto& p = mesh->point(vertex);
    return MPoint(p.x, p.y, p.z);
}

void placePoints(const Selected& item, bool inWorld, const std::function<MPoint(const MPoint&)>& to) {
    std::vector<PointMove> moves;
    Points points(item);
    const MMatrix matrix = inWorld ? points.shape.worldMatrix() : MMatrix();
    if (matrix.det4x4() == 0) throw Error("'" + nameOf(points.shape) + "' has no size in the world: use -objectSpace.");
    const MMatrix back = matrix.inverse();
    for (const int v : points.vertices) {
        const MPoint p = to(points.at(v) * matrix) * back;
        moves.push_back({v, {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)}});
    }
    points.mesh.reset(); // or it would have to be copied
    movePoints(theScene(), points.shape, moves);
}

namespace {

void includeBox(Bounds& bounds, const MVector& low, const MVector& high, const MMatrix& matrix) {
    for (int corner = 0; corner < 8; ++corner)
        bounds.include(MPoint(corner & 1 ? high.x : low.x, corner & 2 ? high.y : low.y, corner & 4 ? high.z : low.z) *
                       matrix);
}

void includeShape(Bounds& bounds, DagNode& shape, const MMatrix& matrix) {
    if (meshBehavior(shape)) {
        if (const auto mesh = meshOf(shape))
            for (const auto& p : mesh->points()) bounds.include(MPoint(p.x, p.y, p.z) * matrix);
    } else if (shape.type.name == "locator") {
        const MVector at = tripleOf(shape, "localPosition"), size = tripleOf(shape, "localScale");
        const MVector half(std::abs(size.x), std::abs(size.y), std::abs(size.z));
        includeBox(bounds, at - half, at + half, matrix);
    } else if (const auto box = shape.behavior ? shape.behavior->box() : std::nullopt) {
        const auto& b = *box;
        includeBox(bounds, MVector(b[0], b[1], b[2]), MVector(b[3], b[4], b[5]), matrix);
    }
}

} // namespace

Bounds boundsOf(const std::vector<Node*>& nodes, const MMatrix& extra, bool visibleOnly) {
    Bounds bounds;
    for (Node* node : nodes) {
        if (!node->dag()) continue;
        for (DagNode* dag : withDescendants(*node->dag())) {
            if (!dag->isShape() || dag->intermediate() || (visibleOnly && !visibleInWorld(*dag))) continue;
            includeShape(bounds, *dag, dag->worldMatrix() * extra);
        }
    }
    return bounds;
}

} // namespace host::mel
