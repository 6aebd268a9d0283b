#include "base/Letters.h"
#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host::mel {

using namespace scene;

namespace {

DagNode& newTransform(const std::string& name, DagNode* parent = nullptr) {
    return *theScene().createNode(*theScene().findType("transform"), name, parent)->dag();
}

MVector threeOf(const ParsedArguments& args, const char* flag) {
    return {args.value(flag, 0).toFloat(), args.value(flag, 1).toFloat(), args.value(flag, 2).toFloat()};
}

/// A flag that sets three numbers at once.
struct TripleFlag {
    const char *flag, *attribute;
    double factor;
};

/// A flag of one value that is called as an attribute of the shape is that attribute.
constexpr std::initializer_list<FlagSpec> cameraFlags = {{"n", "name", 1},
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
                                                         {"dr", "displayResolution", 1},
                                                         {"dgm", "displayGateMask", 1},
                                                         {"ff", "filmFit", 1},
                                                         {"ffo", "filmFitOffset", 1},
                                                         {"hfo", "horizontalFilmOffset", 1},
                                                         {"vfo", "verticalFilmOffset", 1},
                                                         {"cs", "cameraScale", 1},
                                                         {"psc", "preScale", 1},
                                                         {"ptsc", "postScale", 1},
                                                         {"dof", "depthOfField", 1},
                                                         {"mb", "motionBlur", 1},
                                                         {"hfv", "horizontalFieldOfView", 1},
                                                         {"vfv", "verticalFieldOfView", 1},
                                                         {"ar", "aspectRatio", 1},
                                                         {"wci", "worldCenterOfInterest", 3}};

/// The angle of view across a film of that width; focal lengths are in millimetres, films in inches.
double viewAngle(DagNode& shape, const char* aperture) {
    constexpr double millimetresPerInch = 25.4;
    evaluate(shape.cell(aperture));
    evaluate(shape.cell("focalLength"));
    return 2 * std::atan(shape.cell(aperture).number() * millimetresPerInch / 2 / shape.cell("focalLength").number());
}

/// Sets the focal length that gives the film of that width an angle of view.
void setViewAngle(DagNode& shape, const char* aperture, double radians) {
    if (!(radians > 0 && radians < std::numbers::pi)) throw Error("camera: the angle of view is out of range.");
    constexpr double millimetresPerInch = 25.4;
    evaluate(shape.cell(aperture));
    theScene().setNumber(shape.cell("focalLength"),
                         shape.cell(aperture).number() * millimetresPerInch / 2 / std::tan(radians / 2));
}

DagNode& cameraShape(Node& node) {
    if (DagNode* dag = node.dag())
        for (DagNode* shape : shapesOf(*dag))
            if (shape->type.isA("camera")) return *shape;
    throw Error("'" + nameOf(node) + "' is not a camera.");
}

Value camera(Call& call) {
    const ParsedArguments args(call, cameraFlags, true);
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
    for (const FlagSpec& spec : cameraFlags) {
        const char* const flag = spec.shortName;
        if (spec.values != 1 || !args.has(flag) || !shape->type.find(spec.longName)) continue;
        Cell& cell = shape->cell(spec.longName);
        if (args.query()) {
            evaluate(cell);
            if (cell.attribute.numeric == NumericType::Bool) return static_cast<int>(cell.number());
            if (cell.attribute.type == AttributeType::Enum)
                return cell.attribute.fieldName(static_cast<short>(cell.number())).value_or("");
            return toUi(cell.attribute, cell.number());
        }
        if (cell.attribute.type == AttributeType::Enum) {
            std::string field = args.text(flag);
            if (!field.empty()) field[0] = upperCase(field[0]);
            const auto index = cell.attribute.fieldIndex(field);
            if (!index) throw Error("camera: '" + args.text(flag) + "' is not one of its choices.");
            theScene().setNumber(cell, *index);
            continue;
        }
        theScene().setNumber(cell, fromUi(cell.attribute, args.number(flag, 0)));
    }
    for (const auto& [flag, attribute, factor] :
         {TripleFlag{"p", "translate", lengthUnit()}, TripleFlag{"rot", "rotate", angleUnit()}}) {
        if (!args.has(flag)) continue;
        if (args.query()) {
            const MVector v = tripleOf(*transform, attribute);
            return FloatArray{v.x / factor, v.y / factor, v.z / factor};
        }
        setTriple(*transform, attribute, threeOf(args, flag) * factor);
    }
    if (args.query() && args.has("ar"))
        return shape->cell("horizontalFilmAperture").number() / shape->cell("verticalFilmAperture").number();
    if (args.has("ar"))
        theScene().setNumber(shape->cell("verticalFilmAperture"),
                             shape->cell("horizontalFilmAperture").number() / args.number("ar", 1));
    for (const auto& [flag, aperture] :
         {std::pair{"hfv", "horizontalFilmAperture"}, std::pair{"vfv", "verticalFilmAperture"}}) {
        if (!args.has(flag)) continue;
        if (args.query()) return viewAngle(*shape, aperture) / angleUnit();
        setViewAngle(*shape, aperture, args.number(flag, 0) * angleUnit());
    }
    if (args.has("wci")) {
        evaluate(shape->cell("centerOfInterest"));
        if (args.query()) {
            const MPoint p = MPoint(0, 0, -shape->cell("centerOfInterest").number()) * transform->worldMatrix();
            return FloatArray{p.x / lengthUnit(), p.y / lengthUnit(), p.z / lengthUnit()};
        }
        // Turned about x and y alone, as cameras are, so that it looks there.
        const MPoint at = MPoint(pointOf(threeOf(args, "wci") * lengthUnit())) * transform->parentMatrix().inverse();
        const MVector way = MVector(at) - tripleOf(*transform, "translate");
        if (way.length() > 0) {
            setTriple(*transform, "rotate",
                      MVector(std::atan2(way.y, std::hypot(way.x, way.z)), std::atan2(-way.x, -way.z), 0));
            theScene().setNumber(shape->cell("centerOfInterest"), way.length());
        }
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

/// The light that a name or the selection means.
DagNode& lightShape(const ParsedArguments& args, const char* type) {
    const auto nodes = givenOrSelected(args);
    if (nodes.empty()) throw Error("No light was specified or selected.");
    if (DagNode* dag = nodes.front()->dag())
        for (DagNode* shape : shapesOf(*dag))
            if (shape->type.isA(type)) return *shape;
    throw Error("'" + nameOf(*nodes.front()) + "' is not a " + type + ".");
}

CommandFunction light(const char* type) {
    return [type](Call& call) -> Value {
        const ParsedArguments args(call,
                                   {{"n", "name", 1},
                                    {"i", "intensity", 1},
                                    {"rgb", "rgb", 3},
                                    {"sc", "shadowColor", 3},
                                    {"rs", "useRayTraceShadows", 1},
                                    {"d", "decayRate", 1},
                                    {"as", "ambientShade", 1},
                                    {"pos", "position", 3},
                                    {"rot", "rotation", 3},
                                    {"exc", "exclusive", 1}},
                                   true);
        DagNode* shape = args.query() || args.edit() ? &lightShape(args, type) : nullptr;
        DagNode* transform = shape ? shape->parent : nullptr;
        if (!shape) {
            transform = &newTransform(args.text("n", std::string(type) + "#"));
            shape = theScene().createNode(*theScene().findType(type), {}, transform)->dag();
        } else if (args.edit() && args.has("n")) {
            theScene().rename(*transform, args.text("n"));
        }
        for (const auto& [flag, attribute] : {std::pair{"i", "intensity"}, std::pair{"rs", "useRayTraceShadows"},
                                              std::pair{"d", "decayRate"}, std::pair{"as", "ambientShade"}}) {
            if (!args.has(flag)) continue;
            if (!shape->findAttribute(attribute)) throw Error(std::string(type) + " has no " + attribute + ".");
            Cell& cell = shape->cell(attribute);
            evaluate(cell);
            if (args.query())
                return cell.attribute.numeric == NumericType::Float ? Value(cell.number())
                                                                    : Value(static_cast<int>(cell.number()));
            theScene().setNumber(cell, args.value(flag).toFloat());
        }
        struct Triple {
            const char *flag, *attribute;
            Node& of;
            double unit;
        };
        for (const Triple& t :
             {Triple{"rgb", "color", *shape, 1}, Triple{"sc", "shadowColor", *shape, 1},
              Triple{"pos", "translate", *transform, lengthUnit()}, Triple{"rot", "rotate", *transform, angleUnit()}}) {
            if (!args.has(t.flag)) continue;
            if (args.query()) {
                const MVector v = tripleOf(t.of, t.attribute) * (1 / t.unit);
                return FloatArray{v.x, v.y, v.z};
            }
            setTriple(t.of, t.attribute, threeOf(args, t.flag) * t.unit);
        }
        if (args.query()) throw Error(std::string(type) + " was not told what to query.");
        if (args.edit()) return {};
        selectNodes({transform});
        return nameOf(*shape);
    };
}

/// A joint below the selected transform, or a change of one.
Value joint(Call& call) {
    const ParsedArguments args(call,
                               {{"n", "name", 1},
                                {"p", "position", 3},
                                {"a", "absolute"},
                                {"r", "relative"},
                                {"o", "orientation", 3},
                                {"s", "scale", 3},
                                {"roo", "rotationOrder", 1},
                                {"rad", "radius", 1},
                                {"co", "component"},
                                {"ch", "children"}},
                               true);
    Scene& scene = theScene();
    DagNode* node = nullptr;
    if (args.query() || args.edit()) {
        const auto nodes = dagGivenOrSelected(args);
        node = nodes.front();
        if (!node->type.isA("joint")) throw Error("'" + nameOf(*node) + "' is not a joint.");
    } else {
        DagNode* above = nullptr;
        for (Node* selected : selectedNodes())
            if (DagNode* dag = selected->dag(); dag && dag->isTransform()) above = dag;
        node = scene.createNode(*scene.findType("joint"), args.text("n", "joint#"), above)->dag();
        // The scale of the joint above is taken out again.
        if (above && above->type.isA("joint")) scene.connect(above->cell("scale"), node->cell("inverseScale"));
    }
    if (args.has("p")) {
        const bool local = args.has("r");
        if (args.query()) {
            const MPoint p = local ? pointOf(tripleOf(*node, "translate")) : MPoint() * node->worldMatrix();
            return FloatArray{p.x / lengthUnit(), p.y / lengthUnit(), p.z / lengthUnit()};
        }
        const MVector given = threeOf(args, "p") * lengthUnit();
        setTriple(*node, "translate", local ? given : MVector(pointOf(given) * node->parentMatrix().inverse()));
    }
    for (const auto& [flag, attribute, unit] :
         {TripleFlag{"o", "jointOrient", angleUnit()}, TripleFlag{"s", "scale", 1}}) {
        if (!args.has(flag)) continue;
        if (args.query()) {
            const MVector v = tripleOf(*node, attribute) * (1 / unit);
            return FloatArray{v.x, v.y, v.z};
        }
        setTriple(*node, attribute, threeOf(args, flag) * unit);
    }
    if (args.has("rad")) {
        if (args.query()) return node->cell("radius").number();
        scene.setNumber(node->cell("radius"), args.number("rad", 1));
    }
    if (args.has("roo")) {
        Cell& order = node->cell("rotateOrder");
        if (args.query()) return order.attribute.fieldName(static_cast<short>(order.number())).value_or("");
        const auto index = order.attribute.fieldIndex(args.text("roo"));
        if (!index) throw Error("Invalid order of rotation: " + args.text("roo"));
        scene.setNumber(order, *index);
    }
    if (args.query()) throw Error("joint was not told what to query.");
    if (args.edit()) return {};
    selectNodes({node});
    return nameOf(*node);
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
    registerSceneCommand(interpreter, "joint", joint);
    registerSceneCommand(interpreter, "shadingNode", shadingNode);
}

} // namespace host::mel
