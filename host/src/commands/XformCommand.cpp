#include "commands/CommandSupport.h"
#include "commands/Commands.h"
#include "scene/DagBehavior.h"
#include "values/TransformMath.h"

#include <maya/MEulerRotation.h>

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

constexpr const char* kOrders[] = {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"};

MVector flagTriple(const ParsedArguments& args, const char* flag, double factor) {
    return MVector(args.value(flag, 0).toFloat() * factor, args.value(flag, 1).toFloat() * factor,
                   args.value(flag, 2).toFloat() * factor);
}

FloatArray list(const MVector& v, double unit) { return {v.x / unit, v.y / unit, v.z / unit}; }
FloatArray list(const MPoint& p, double unit) { return {p.x / unit, p.y / unit, p.z / unit}; }

/// The linear parts of the two stages that pivots take part in.
MMatrix scaleStage(DagNode& node) { return scaling(tripleOf(node, "scale")) * shearing(tripleOf(node, "shear")); }

MMatrix rotateStage(DagNode& node) {
    const MVector ra = tripleOf(node, "rotateAxis"), r = tripleOf(node, "rotate");
    return MEulerRotation(ra.x, ra.y, ra.z).asMatrix() *
           MEulerRotation(r.x, r.y, r.z, scene::rotationOrder(node)).asMatrix();
}

/// Moves a pivot and makes up for it in the pivot's translation, so that the matrix stays.
void setPivot(DagNode& node, const char* pivot, const char* translation, const MMatrix& linear, const MVector& to) {
    const MVector was = tripleOf(node, pivot);
    setTriple(node, pivot, to);
    setTriple(node, translation, balancedTranslation(was, to, linear, tripleOf(node, translation)));
}

MPoint worldPivot(DagNode& node, const char* pivot) { return pointOf(tripleOf(node, pivot)) * node.worldMatrix(); }

Value boxOf(DagNode& node, bool world) {
    const MMatrix extra = world ? MMatrix() : node.parentMatrix().inverse();
    const Bounds bounds = boundsOf({&node}, extra);
    FloatArray sides(6, 0.0);
    if (!bounds.empty()) std::ranges::transform(bounds.sides, sides.begin(), [](double v) { return v / lengthUnit(); });
    return sides;
}

/// Where the vertices of components are, or the box around them.
Value queryPoints(const std::vector<Selected>& items, const ParsedArguments& args) {
    if (!args.has("t") && !args.has("bb"))
        throw Error("xform -query of components takes -translation or -boundingBox.");
    Bounds bounds;
    FloatArray places;
    for (const Selected& item : items) {
        if (!item.components) throw Error("xform -query takes objects or components, not both.");
        const Points points(item);
        const MMatrix matrix = args.has("ws") ? points.shape.worldMatrix() : MMatrix();
        for (const int v : points.vertices) {
            const MPoint p = points.at(v) * matrix;
            bounds.include(p);
            for (unsigned k = 0; k < 3; ++k) places.push_back(p[k] / lengthUnit());
        }
    }
    if (args.has("t")) return places;
    FloatArray sides;
    for (const double side : bounds.sides) sides.push_back(side / lengthUnit());
    return sides;
}

Value query(DagNode& node, const ParsedArguments& args) {
    const bool world = args.has("ws");
    const double length = lengthUnit(), angle = angleUnit();
    const MMatrix parent = node.parentMatrix();
    if (args.has("t"))
        return list(world ? pointOf(tripleOf(node, "translate")) * parent : pointOf(tripleOf(node, "translate")),
                    length);
    if (args.has("ro")) {
        if (!world) return list(tripleOf(node, "rotate"), angle);
        const MMatrix turn = MTransformationMatrix(node.worldMatrix()).rotation().asMatrix();
        return list(MEulerRotation::decompose(turn, scene::rotationOrder(node)).asVector(), angle);
    }
    if (args.has("s")) {
        if (!world) return list(tripleOf(node, "scale"), 1);
        double s[3];
        MTransformationMatrix(node.worldMatrix()).getScale(s, MSpace::kWorld);
        return FloatArray{s[0], s[1], s[2]};
    }
    if (args.has("sh")) return list(tripleOf(node, "shear"), 1);
    if (args.has("m")) {
        const MMatrix m = world ? node.worldMatrix() : node.localMatrix();
        FloatArray elements;
        for (unsigned k = 0; k < 16; ++k) elements.push_back(m(k / 4, k % 4) / (k / 4 == 3 && k % 4 < 3 ? length : 1));
        return elements;
    }
    const auto pivot = [&](const char* name) {
        return world ? list(worldPivot(node, name), length) : list(tripleOf(node, name), length);
    };
    if (args.has("rp")) return pivot("rotatePivot");
    if (args.has("sp")) return pivot("scalePivot");
    if (args.has("piv")) {
        FloatArray both = pivot("rotatePivot");
        for (double v : pivot("scalePivot")) both.push_back(v);
        return both;
    }
    if (args.has("rt")) return list(tripleOf(node, "rotatePivotTranslate"), length);
    if (args.has("st")) return list(tripleOf(node, "scalePivotTranslate"), length);
    if (args.has("ra")) return list(tripleOf(node, "rotateAxis"), angle);
    if (args.has("roo")) return kOrders[scene::rotationOrder(node)];
    if (args.has("bb")) return boxOf(node, world);
    throw Error("xform was not told what to query.");
}

void setOrder(DagNode& node, const std::string& name, bool preserve) {
    const auto found = std::ranges::find(kOrders, name);
    if (found == std::end(kOrders)) throw Error("Invalid rotation order: " + name);
    const auto order = static_cast<MEulerRotation::RotationOrder>(found - kOrders);
    const MVector r = tripleOf(node, "rotate");
    const MEulerRotation now(r.x, r.y, r.z, scene::rotationOrder(node));
    if (now.order == order) return;
    theScene().setNumber(node.cell("rotateOrder"), order);
    if (preserve) setTriple(node, "rotate", now.reorder(order).asVector());
}

void setMatrix(DagNode& node, const ParsedArguments& args) {
    MMatrix m;
    for (unsigned k = 0; k < 16; ++k)
        m(k / 4, k % 4) = args.value("m", k).toFloat() * (k / 4 == 3 && k % 4 < 3 ? lengthUnit() : 1);
    if (args.has("r")) m = m * (args.has("ws") ? node.worldMatrix() : node.localMatrix());
    if (args.has("ws")) m = m * node.parentMatrix().inverse();
    // A matrix says nothing of pivots, so they do not stay.
    for (const char* name : {"rotatePivot", "rotatePivotTranslate", "scalePivot", "scalePivotTranslate", "rotateAxis"})
        setTriple(node, name, MVector(0, 0, 0));
    setLocalMatrix(node, m);
}

void setTranslation(DagNode& node, const ParsedArguments& args) {
    const MVector given = flagTriple(args, "t", lengthUnit()), now = tripleOf(node, "translate");
    const MMatrix inverse = args.has("ws") ? node.parentMatrix().inverse() : MMatrix();
    if (args.has("r")) {
        setTriple(node, "translate", now + turned(given, inverse));
        return;
    }
    const MPoint to = pointOf(given) * inverse;
    setTriple(node, "translate", MVector(to.x, to.y, to.z));
}

void setRotation(DagNode& node, const ParsedArguments& args) {
    const MVector given = flagTriple(args, "ro", angleUnit()), now = tripleOf(node, "rotate");
    if (!args.has("ws")) {
        setTriple(node, "rotate", args.has("r") ? now + given : given);
        return;
    }
    const auto order = scene::rotationOrder(node);
    const MVector axis = tripleOf(node, "rotateAxis");
    const MMatrix parent = jointOrientation(node) * MTransformationMatrix(node.parentMatrix()).rotation().asMatrix(),
                  given4 = MEulerRotation(given.x, given.y, given.z, order).asMatrix(),
                  ra = MEulerRotation(axis.x, axis.y, axis.z).asMatrix(),
                  local = MEulerRotation(now.x, now.y, now.z, order).asMatrix();
    const MMatrix to =
        args.has("r") ? local * parent * given4 * parent.inverse() : ra.inverse() * given4 * parent.inverse();
    setTriple(
        node, "rotate",
        MEulerRotation::decompose(to, order).closestSolution(MEulerRotation(now.x, now.y, now.z, order)).asVector());
}

void setPivots(DagNode& node, const ParsedArguments& args) {
    const double length = lengthUnit();
    const bool preserve = args.boolean("p", true);
    const auto set = [&](const char* flag, const char* pivot, const char* translation, bool rotates) {
        MVector to = flagTriple(args, flag, length);
        const MVector now = tripleOf(node, pivot);
        if (args.has("ws")) {
            const MMatrix inverse = node.worldMatrix().inverse();
            const MPoint p = pointOf(to) * inverse;
            to = args.has("r") ? now + turned(to, inverse) : MVector(p.x, p.y, p.z);
        } else if (args.has("r")) {
            to = now + to;
        }
        if (preserve)
            setPivot(node, pivot, translation, rotates ? rotateStage(node) : scaleStage(node), to);
        else
            setTriple(node, pivot, to);
    };
    for (const char* flag : {"rp", "piv"})
        if (args.has(flag)) set(flag, "rotatePivot", "rotatePivotTranslate", true);
    for (const char* flag : {"sp", "piv"})
        if (args.has(flag)) set(flag, "scalePivot", "scalePivotTranslate", false);
}

void centrePivots(DagNode& node) {
    const Bounds bounds = boundsOf({&node}, node.worldMatrix().inverse());
    if (bounds.empty()) return;
    setPivot(node, "rotatePivot", "rotatePivotTranslate", rotateStage(node), bounds.centre());
    setPivot(node, "scalePivot", "scalePivotTranslate", scaleStage(node), bounds.centre());
}

void changePoints(const Selected& item, const ParsedArguments& args) {
    for (const char* flag : {"ro", "s", "sh", "m", "rp", "sp", "piv", "rt", "st", "ra", "roo", "cp", "ztp"})
        if (args.has(flag)) throw Error("xform takes only -translation for components: " + namesOf(item).front());
    if (!args.has("t")) return;
    const MVector given = flagTriple(args, "t", lengthUnit());
    placePoints(item, args.has("ws"), [&](const MPoint& p) { return args.has("r") ? p + given : pointOf(given); });
}

void change(DagNode& node, const ParsedArguments& args) {
    const bool relative = args.has("r");
    if (args.has("roo")) setOrder(node, args.text("roo"), args.boolean("p", true));
    if (args.has("m")) setMatrix(node, args);
    setPivots(node, args);
    if (args.has("cp")) centrePivots(node);
    if (args.has("ra")) {
        const MVector to = flagTriple(args, "ra", angleUnit());
        setTriple(node, "rotateAxis", relative ? tripleOf(node, "rotateAxis") + to : to);
    }
    if (args.has("s")) {
        MVector to = flagTriple(args, "s", 1);
        const MVector now = tripleOf(node, "scale");
        if (relative) to = MVector(now.x * to.x, now.y * to.y, now.z * to.z);
        setTriple(node, "scale", to);
    }
    if (args.has("sh")) {
        const MVector to = flagTriple(args, "sh", 1);
        setTriple(node, "shear", relative ? tripleOf(node, "shear") + to : to);
    }
    if (args.has("ro")) setRotation(node, args);
    if (args.has("t")) setTranslation(node, args);
    if (args.has("rt")) setTriple(node, "rotatePivotTranslate", flagTriple(args, "rt", lengthUnit()));
    if (args.has("st")) setTriple(node, "scalePivotTranslate", flagTriple(args, "st", lengthUnit()));
    if (args.has("ztp"))
        for (const char* name : {"rotatePivot", "rotatePivotTranslate", "scalePivot", "scalePivotTranslate"})
            setTriple(node, name, MVector(0, 0, 0));
}

Value xform(Call& call) {
    const ParsedArguments args(call,
                               {{"t", "translation", 3},
                                {"ro", "rotation", 3},
                                {"s", "scale", 3},
                                {"sh", "shear", 3},
                                {"m", "matrix", 16},
                                {"rp", "rotatePivot", 3},
                                {"sp", "scalePivot", 3},
                                {"piv", "pivots", 3},
                                {"rt", "rotateTranslation", 3},
                                {"st", "scaleTranslation", 3},
                                {"ra", "rotateAxis", 3},
                                {"roo", "rotateOrder", 1},
                                {"p", "preserve", 1},
                                {"cp", "centerPivots"},
                                {"bb", "boundingBox"},
                                {"bbi", "boundingBoxInvisible"},
                                {"ztp", "zeroTransformPivots"},
                                {"a", "absolute"},
                                {"r", "relative"},
                                {"os", "objectSpace"},
                                {"ws", "worldSpace"},
                                {"eu", "euler"}},
                               true);
    const auto items = objectsGivenOrSelected(args.names());
    if (args.query())
        return items.front().components ? queryPoints(items, args)
                                        : query(transformNamed(nameOf(*items.front().node)), args);
    for (const Selected& item : items)
        if (item.components)
            changePoints(item, args);
        else
            change(transformNamed(nameOf(*item.node)), args);
    return {};
}

} // namespace

void registerXformCommand(Interpreter& interpreter) { registerSceneCommand(interpreter, "xform", xform); }

} // namespace host::mel
