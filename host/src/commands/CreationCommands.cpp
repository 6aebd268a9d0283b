#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

DagNode& newTransform(const std::string& name, DagNode* parent = nullptr) {
    return *theScene().createNode(*theScene().findType("transform"), name, parent)->dag();
}

struct CameraFlag {
    const char *flag, *attribute;
    double factor;
};

/// Flags of `camera` that set one number of the shape.
std::vector<CameraFlag> cameraFlags() {
    const double length = lengthUnit(), angle = angleUnit();
    return {{"fl", "focalLength", 1},
            {"hfa", "horizontalFilmAperture", 1},
            {"vfa", "verticalFilmAperture", 1},
            {"ncp", "nearClipPlane", length},
            {"fcp", "farClipPlane", length},
            {"coi", "centerOfInterest", length},
            {"o", "orthographic", 1},
            {"ow", "orthographicWidth", length},
            {"lsr", "lensSqueezeRatio", 1},
            {"fs", "fStop", 1},
            {"fd", "focusDistance", length},
            {"sa", "shutterAngle", angle},
            {"ovr", "overscan", 1},
            {"dfg", "displayFilmGate", 1},
            {"dr", "displayResolution", 1}};
}

DagNode& cameraShape(Node& node) {
    if (DagNode* dag = node.dag())
        for (DagNode* shape : shapesOf(*dag))
            if (shape->type.isA("camera")) return *shape;
    throw Error("'" + nameOf(node) + "' is not a camera.");
}

Value camera(Call& call) {
    const ParsedArguments args(call,
                               {{"n", "name", 1},
                                {"p", "position", 3},
                                {"rot", "rotation", 3},
                                {"fl", "focalLength", 1},
                                {"hfa", "horizontalFilmAperture", 1},
                                {"vfa", "verticalFilmAperture", 1},
                                {"ncp", "nearClipPlane", 1},
                                {"fcp", "farClipPlane", 1},
                                {"coi", "centerOfInterest", 1},
                                {"o", "orthographic", 1},
                                {"ow", "orthographicWidth", 1},
                                {"lsr", "lensSqueezeRatio", 1},
                                {"fs", "fStop", 1},
                                {"fd", "focusDistance", 1},
                                {"sa", "shutterAngle", 1},
                                {"ovr", "overscan", 1},
                                {"dfg", "displayFilmGate", 1},
                                {"dr", "displayResolution", 1}},
                               true);
    DagNode *transform = nullptr, *shape = nullptr;
    if (args.query() || args.edit()) {
        const auto nodes = givenOrSelected(args);
        if (nodes.empty()) throw Error("No camera was specified or selected.");
        shape = &cameraShape(*nodes.front());
        transform = shape->parent;
    } else {
        transform = &newTransform(args.text("n", "camera#"));
        shape = theScene().createNode(*theScene().findType("camera"), {}, transform)->dag();
        // The command's own defaults are not the node's.
        theScene().setNumber(shape->cell("horizontalFilmAperture"), 1.41732);
        theScene().setNumber(shape->cell("verticalFilmAperture"), 0.94488);
        theScene().setNumber(shape->cell("filmFit"), 0);
    }
    for (const auto& [flag, attribute, factor] : cameraFlags()) {
        if (!args.has(flag)) continue;
        Cell& cell = shape->cell(attribute);
        if (args.query()) {
            evaluate(cell);
            if (cell.attribute.numeric == NumericType::Bool) return static_cast<int>(cell.number());
            return cell.number() / factor;
        }
        theScene().setNumber(cell, args.number(flag, 0) * factor);
    }
    for (const auto& [flag, attribute, factor] :
         {CameraFlag{"p", "translate", lengthUnit()}, CameraFlag{"rot", "rotate", angleUnit()}}) {
        if (!args.has(flag)) continue;
        if (args.query()) {
            const MVector v = tripleOf(*transform, attribute);
            return FloatArray{v.x / factor, v.y / factor, v.z / factor};
        }
        setTriple(*transform, attribute,
                  MVector(args.value(flag, 0).toFloat(), args.value(flag, 1).toFloat(), args.value(flag, 2).toFloat()) *
                      factor);
    }
    if (args.query()) throw Error("camera was not told what to query.");
    if (args.edit()) return {};
    selectNodes({transform});
    return StringArray{nameOf(*transform), nameOf(*shape)};
}

Value spaceLocator(Call& call) {
    const ParsedArguments args(call, {{"n", "name", 1}, {"p", "position", 3}, {"a", "absolute"}, {"r", "relative"}});
    DagNode& transform = newTransform(args.text("n", "locator#"));
    Node& shape = *theScene().createNode(*theScene().findType("locator"), {}, &transform);
    if (args.has("p")) {
        const double length = lengthUnit();
        setTriple(shape, "localPosition",
                  MVector(args.value("p", 0).toFloat() * length, args.value("p", 1).toFloat() * length,
                          args.value("p", 2).toFloat() * length));
    }
    selectNodes({&transform});
    return StringArray{nameOf(transform)};
}

CommandFunction light(const char* type) {
    return [type](Call& call) -> Value {
        const ParsedArguments args(call, {{"n", "name", 1}, {"rgb", "rgb", 3}, {"i", "intensity", 1}});
        DagNode& transform = newTransform(args.text("n", std::string(type) + "#"));
        Node& shape = *theScene().createNode(*theScene().findType(type), {}, &transform);
        if (args.has("i")) theScene().setNumber(shape.cell("intensity"), args.number("i", 1));
        if (args.has("rgb"))
            setTriple(shape, "color",
                      MVector(args.value("rgb", 0).toFloat(), args.value("rgb", 1).toFloat(),
                              args.value("rgb", 2).toFloat()));
        selectNodes({&transform});
        return nameOf(shape);
    };
}

Value shadingNode(Call& call) {
    const ParsedArguments args(call, {{"n", "name", 1},
                                      {"p", "parent", 1},
                                      {"s", "shared"},
                                      {"ss", "skipSelect"},
                                      {"as", "asShader"},
                                      {"at", "asTexture"},
                                      {"al", "asLight"},
                                      {"au", "asUtility"},
                                      {"app", "asPostProcess"},
                                      {"ar", "asRendering"}});
    const StringArray names = args.names();
    if (names.size() != 1) throw Error("shadingNode needs one node type.");
    const NodeType* type = theScene().findType(names[0]);
    if (!type) throw Error("Unknown object type: " + names[0]);
    if (args.has("s") && args.has("n"))
        if (Node* there = theScene().findNode(args.text("n")); there && &there->type == type) return nameOf(*there);
    DagNode* parent = args.has("p") ? &dagNamed(args.text("p")) : nullptr;
    Node* made = nullptr;
    if (type->kind == NodeType::Kind::Shape && !parent) {
        DagNode& transform = newTransform(args.text("n", names[0] + "#"));
        theScene().createNode(*type, {}, &transform);
        made = &transform;
    } else {
        made = theScene().createNode(*type, args.text("n"), parent).get();
    }
    if (!args.has("ss")) selectNodes({made});
    return nameOf(*made);
}

} // namespace

void registerCreationCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "camera", camera);
    registerSceneCommand(interpreter, "spaceLocator", spaceLocator);
    for (const char* type : {"directionalLight", "ambientLight", "pointLight"})
        registerSceneCommand(interpreter, type, light(type));
    registerSceneCommand(interpreter, "shadingNode", shadingNode);
}

} // namespace host::mel
