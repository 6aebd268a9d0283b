#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "mesh/PolyMesh.h"
#include "scene/DagBehavior.h"
#include "scene/MeshNode.h"

#include <maya/MEulerRotation.h>

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

/// The numbers that move, rotate and scale are given: for all axes, or for those named by flags.
struct AxisNumbers {
    std::array<std::optional<double>, 3> values;
    std::vector<DagNode*> nodes;
    std::vector<Selected> components;
    MVector over(const MVector& base) const {
        return MVector(values[0].value_or(base.x), values[1].value_or(base.y), values[2].value_or(base.z));
    }
};

AxisNumbers axisNumbers(const ParsedArguments& args, double factor) {
    AxisNumbers out;
    std::vector<unsigned> axes;
    for (unsigned k = 0; k < 3; ++k) {
        const char* names[] = {"x", "y", "z"};
        const char* pairs[][2] = {{"xy", "xz"}, {"xy", "yz"}, {"xz", "yz"}};
        if (args.has(names[k]) || args.has(pairs[k][0]) || args.has(pairs[k][1]) || args.has("xyz")) axes.push_back(k);
    }
    if (axes.empty()) axes = {0, 1, 2};
    StringArray names;
    std::vector<double> numbers;
    for (const Value& object : args.objects()) {
        const bool number = numbers.size() < axes.size() &&
                            (object.isNumber() || object.type() == Value::Type::Vector ||
                             object.type() == Value::Type::FloatArray || object.type() == Value::Type::IntArray);
        if (number) {
            for (double v : object.toFloatArray()) numbers.push_back(v);
            continue;
        }
        // Numbers may come as texts, too: those in front of the names.
        const auto text = object.get<std::string>();
        if (text && numbers.size() < axes.size() && names.empty() && theScene().findNodes(*text).empty() &&
            text->find_first_of("0123456789") != std::string::npos)
            numbers.push_back(object.toFloat());
        else
            for (const auto& name : object.toStringArray()) names.push_back(name);
    }
    if (numbers.size() != axes.size())
        throw Error("Expected " + std::to_string(axes.size()) + " numbers, got " + std::to_string(numbers.size()) +
                    ".");
    for (std::size_t i = 0; i < axes.size(); ++i) out.values[axes[i]] = numbers[i] * factor;
    for (const Selected& item : objectsGivenOrSelected(names))
        if (item.components)
            out.components.push_back(item);
        else
            out.nodes.push_back(&transformNamed(nameOf(*item.node)));
    return out;
}

void refuseComponents(const AxisNumbers& numbers, const char* command) {
    if (!numbers.components.empty())
        throw Error(std::string(command) +
                    " takes objects, not components: " + namesOf(numbers.components.front()).front());
}

/// Without the axes that are not given, relative numbers are 0.
MVector orZero(const AxisNumbers& n) { return n.over(MVector(0, 0, 0)); }

void moveComponents(const AxisNumbers& numbers, const ParsedArguments& args) {
    const bool inWorld = !args.has("os") && !args.has("ls");
    MVector delta = orZero(numbers);
    if (args.has("rpr") || args.has("spr")) {
        // Components turn about the middle of the box around them: that is what is to lie at the point.
        Bounds bounds;
        for (const Selected& item : numbers.components) {
            const Points points(item);
            const MMatrix matrix = inWorld ? points.shape.worldMatrix() : MMatrix();
            for (const int v : points.vertices) bounds.include(points.at(v) * matrix);
        }
        delta = bounds.empty() ? MVector() : numbers.over(bounds.centre()) - bounds.centre();
    }
    const bool relative = args.has("r") || args.has("rpr") || args.has("spr");
    for (const Selected& item : numbers.components)
        placePoints(item, inWorld, [&](const MPoint& p) {
            return relative ? p + delta : pointOf(numbers.over(MVector(p.x, p.y, p.z)));
        });
}

Value move(Call& call) {
    const ParsedArguments args(call, {{"x", "moveX"},
                                      {"y", "moveY"},
                                      {"z", "moveZ"},
                                      {"xy", "moveXY"},
                                      {"xz", "moveXZ"},
                                      {"yz", "moveYZ"},
                                      {"xyz", "moveXYZ"},
                                      {"a", "absolute"},
                                      {"r", "relative"},
                                      {"os", "objectSpace"},
                                      {"ws", "worldSpace"},
                                      {"ls", "localSpace"},
                                      {"wd", "worldSpaceDistance"},
                                      {"rpr", "rotatePivotRelative"},
                                      {"spr", "scalePivotRelative"}});
    const AxisNumbers numbers = axisNumbers(args, lengthUnit());
    const bool inParent = args.has("ls") || args.has("os");
    moveComponents(numbers, args);
    for (DagNode* node : numbers.nodes) {
        const MVector now = tripleOf(*node, "translate");
        const MMatrix parent = node->parentMatrix();
        if (args.has("r")) {
            const MVector delta = orZero(numbers);
            if (args.has("ls"))
                setTriple(*node, "translate", now + delta);
            else if (args.has("os"))
                setTriple(*node, "translate", now + turned(delta, node->localMatrix()));
            else
                setTriple(*node, "translate", now + turned(delta, parent.inverse()));
        } else if (args.has("rpr") || args.has("spr")) {
            // The pivot's place is what is to lie at the point.
            const MPoint pivot = pointOf(tripleOf(*node, args.has("rpr") ? "rotatePivot" : "scalePivot")) *
                                 (inParent ? node->localMatrix() : node->worldMatrix());
            const MVector delta = numbers.over(MVector(pivot.x, pivot.y, pivot.z)) - MVector(pivot.x, pivot.y, pivot.z);
            setTriple(*node, "translate", now + (inParent ? delta : turned(delta, parent.inverse())));
        } else if (inParent) {
            setTriple(*node, "translate", numbers.over(now));
        } else {
            const MPoint world = pointOf(now) * parent;
            const MPoint to = pointOf(numbers.over(MVector(world.x, world.y, world.z))) * parent.inverse();
            setTriple(*node, "translate", MVector(to.x, to.y, to.z));
        }
    }
    return {};
}

/// The rotation of a matrix, scale and shear taken out.
MMatrix pureRotation(const MMatrix& m) { return MTransformationMatrix(m).rotation().asMatrix(); }

void setRotationMatrix(DagNode& node, const MMatrix& rotation) {
    const MVector was = tripleOf(node, "rotate");
    const auto order = scene::rotationOrder(node);
    const MEulerRotation e =
        MEulerRotation::decompose(rotation, order).closestSolution(MEulerRotation(was.x, was.y, was.z, order));
    setTriple(node, "rotate", e.asVector());
}

Value rotate(Call& call) {
    const ParsedArguments args(call, {{"x", "rotateX"},
                                      {"y", "rotateY"},
                                      {"z", "rotateZ"},
                                      {"xy", "rotateXY"},
                                      {"xz", "rotateXZ"},
                                      {"yz", "rotateYZ"},
                                      {"xyz", "rotateXYZ"},
                                      {"a", "absolute"},
                                      {"r", "relative"},
                                      {"os", "objectSpace"},
                                      {"ws", "worldSpace"},
                                      {"eu", "euler"}});
    const AxisNumbers numbers = axisNumbers(args, angleUnit());
    refuseComponents(numbers, "rotate");
    for (DagNode* node : numbers.nodes) {
        const MVector was = tripleOf(*node, "rotate");
        const auto order = scene::rotationOrder(*node);
        const MVector axis = tripleOf(*node, "rotateAxis");
        const MMatrix local = MEulerRotation(was.x, was.y, was.z, order).asMatrix(),
                      ra = MEulerRotation(axis.x, axis.y, axis.z).asMatrix(),
                      parent = jointOrientation(*node) * pureRotation(node->parentMatrix());
        if (args.has("r")) {
            const MVector d = orZero(numbers);
            if (args.has("eu")) {
                setTriple(*node, "rotate", was + d);
                continue;
            }
            const MMatrix turn = MEulerRotation(d.x, d.y, d.z).asMatrix();
            setRotationMatrix(*node, args.has("ws") ? local * parent * turn * parent.inverse()
                                                    : ra.inverse() * turn * ra * local);
        } else if (args.has("ws")) {
            const MEulerRotation world = MEulerRotation::decompose(ra * local * parent, order);
            const MVector to = numbers.over(world.asVector());
            setRotationMatrix(*node,
                              ra.inverse() * MEulerRotation(to.x, to.y, to.z, order).asMatrix() * parent.inverse());
        } else {
            setTriple(*node, "rotate", numbers.over(was));
        }
    }
    return {};
}

Value scale(Call& call) {
    const ParsedArguments args(call, {{"x", "scaleX"},
                                      {"y", "scaleY"},
                                      {"z", "scaleZ"},
                                      {"xy", "scaleXY"},
                                      {"xz", "scaleXZ"},
                                      {"yz", "scaleYZ"},
                                      {"xyz", "scaleXYZ"},
                                      {"a", "absolute"},
                                      {"r", "relative"},
                                      {"os", "objectSpace"},
                                      {"ls", "localSpace"}});
    const AxisNumbers numbers = axisNumbers(args, 1.0);
    refuseComponents(numbers, "scale");
    for (DagNode* node : numbers.nodes) {
        const MVector was = tripleOf(*node, "scale");
        if (args.has("r")) {
            const MVector f = numbers.over(MVector(1, 1, 1));
            setTriple(*node, "scale", MVector(was.x * f.x, was.y * f.y, was.z * f.z));
        } else {
            setTriple(*node, "scale", numbers.over(was));
        }
    }
    return {};
}

/// Gives the node's matrix to what is below it and makes the node's own the identity.
void freeze(DagNode& node, const MMatrix& above) {
    const MMatrix m = node.localMatrix() * above;
    const auto children = node.children;
    for (DagNode* child : children)
        if (child->isShape() && !meshBehavior(*child))
            throw Error("'" + nameOf(*child) + "' is no mesh: its transform cannot be frozen.");
    const MPoint rp = pointOf(tripleOf(node, "rotatePivot")) * m, sp = pointOf(tripleOf(node, "scalePivot")) * m;
    setTriple(node, "translate", MVector(0, 0, 0));
    setTriple(node, "rotate", MVector(0, 0, 0));
    setTriple(node, "rotateAxis", MVector(0, 0, 0));
    setTriple(node, "scale", MVector(1, 1, 1));
    setTriple(node, "shear", MVector(0, 0, 0));
    setTriple(node, "rotatePivotTranslate", MVector(0, 0, 0));
    setTriple(node, "scalePivotTranslate", MVector(0, 0, 0));
    setTriple(node, "rotatePivot", MVector(rp.x, rp.y, rp.z));
    setTriple(node, "scalePivot", MVector(sp.x, sp.y, sp.z));
    for (DagNode* child : children) {
        if (!child->isShape())
            freeze(*child, m);
        else if (const auto mesh = meshOf(*child))
            setMesh(theScene(), *child, transformed(*mesh, m));
    }
}

int heightOf(DagNode& node) {
    int height = 0;
    for (DagNode* below : theScene().descendants(node)) {
        int depth = 0;
        for (DagNode* up = below; up != &node; up = up->parent) ++depth;
        height = std::max(height, depth);
    }
    return height;
}

Value makeIdentity(Call& call) {
    const ParsedArguments args(call, {{"a", "apply", 1},
                                      {"t", "translate", 1},
                                      {"r", "rotate", 1},
                                      {"s", "scale", 1},
                                      {"jo", "jointOrient", 1},
                                      {"n", "normal", 1},
                                      {"pn", "preserveNormals", 1}});
    const bool named = args.has("t") || args.has("r") || args.has("s");
    const bool t = args.boolean("t", !named), r = args.boolean("r", !named), s = args.boolean("s", !named);
    for (DagNode* node : dagGivenOrSelected(args)) {
        if (!node->isTransform()) throw Error("'" + nameOf(*node) + "' is not a transform.");
        if (args.boolean("a", false)) {
            if (!t || !r || !s) throw Error("makeIdentity -apply takes translate, rotate and scale together.");
            if (heightOf(*node) > Scene::maxEvaluationDepth) throw Error("The hierarchy is too deep to freeze.");
            freeze(*node, MMatrix());
            continue;
        }
        if (t) setTriple(*node, "translate", MVector(0, 0, 0));
        if (r) setTriple(*node, "rotate", MVector(0, 0, 0));
        if (s) setTriple(*node, "scale", MVector(1, 1, 1));
        if (s) setTriple(*node, "shear", MVector(0, 0, 0));
    }
    return {};
}

FloatArray inUi(const MVector& v) { return {v.x / lengthUnit(), v.y / lengthUnit(), v.z / lengthUnit()}; }

Value exactWorldBoundingBox(Call& call) {
    const ParsedArguments args(call, {{"ii", "ignoreInvisible"}, {"ce", "calculateExactly"}});
    Bounds bounds;
    std::vector<Node*> nodes;
    for (const Selected& item : objectsGivenOrSelected(args.names())) {
        if (!item.components) {
            nodes.push_back(item.node.get());
            continue;
        }
        const Points points(item);
        if (args.has("ii") && !visibleInWorld(points.shape)) continue;
        const MMatrix matrix = points.shape.worldMatrix();
        for (const int v : points.vertices) bounds.include(points.at(v) * matrix);
    }
    bounds.include(boundsOf(nodes, MMatrix(), args.has("ii")));
    if (bounds.empty()) return FloatArray(6, 0.0);
    FloatArray sides;
    for (double v : bounds.sides) sides.push_back(v / lengthUnit());
    return sides;
}

Value objectCenter(Call& call) {
    const ParsedArguments args(call, {{"gl", "gl"}, {"l", "local"}, {"x", "x"}, {"y", "y"}, {"z", "z"}});
    const auto nodes = dagGivenOrSelected(args);
    DagNode& node = *nodes.front();
    const MMatrix extra = args.has("l") ? node.worldMatrix().inverse() * node.localMatrix() : MMatrix();
    const Bounds bounds = boundsOf({&node}, extra);
    const FloatArray centre = inUi(bounds.empty() ? MVector(0, 0, 0) : bounds.centre());
    if (args.has("x")) return centre[0];
    if (args.has("y")) return centre[1];
    if (args.has("z")) return centre[2];
    return centre;
}

} // namespace

void registerTransformCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "move", move);
    registerSceneCommand(interpreter, "rotate", rotate);
    registerSceneCommand(interpreter, "scale", scale);
    registerSceneCommand(interpreter, "makeIdentity", makeIdentity);
    registerSceneCommand(interpreter, "exactWorldBoundingBox", exactWorldBoundingBox);
    registerSceneCommand(interpreter, "objectCenter", objectCenter);
}

} // namespace host::mel
