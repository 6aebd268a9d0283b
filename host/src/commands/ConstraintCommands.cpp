#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include <maya/MEulerRotation.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include <algorithm>

namespace host::mel {

using namespace scene;

namespace {

/// What a kind of constraint reads of its targets, reads of what it holds, and sets of that.
struct Kind {
    const char* type;
    std::vector<std::pair<const char*, const char*>> fromTarget, fromHeld, toHeld;
};

const Kind& kindOf(const std::string& type) {
    using Pairs = std::vector<std::pair<const char*, const char*>>;
    const Pairs place{{"translate", "targetTranslate"},
                      {"rotatePivot", "targetRotatePivot"},
                      {"rotatePivotTranslate", "targetRotateTranslate"}};
    const Pairs turn{{"rotate", "targetRotate"}, {"rotateOrder", "targetRotateOrder"}};
    const Pairs pivot{{"rotatePivot", "constraintRotatePivot"}, {"rotatePivotTranslate", "constraintRotateTranslate"}};
    const Pairs order{{"rotateOrder", "constraintRotateOrder"}};
    const auto joined = [](std::initializer_list<Pairs> lists) {
        Pairs all;
        for (const Pairs& list : lists) all.insert(all.end(), list.begin(), list.end());
        return all;
    };
    const Pairs translate{{"constraintTranslate", "translate"}}, rotate{{"constraintRotate", "rotate"}};
    static const Kind kinds[] = {
        {"pointConstraint", place, pivot, translate},
        {"orientConstraint", turn, order, rotate},
        {"parentConstraint", joined({place, turn, {{"scale", "targetScale"}}}), joined({pivot, order}),
         joined({translate, rotate})},
        {"aimConstraint", place, joined({pivot, order, {{"translate", "constraintTranslate"}}}), rotate}};
    return *std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind& k) { return type == k.type; });
}

MQuaternion rotationOf(const MMatrix& m) { return MTransformationMatrix(m).rotation(); }

void setEuler(Cell& cell, const MQuaternion& q) {
    const MEulerRotation e = q.asEulerRotation();
    theScene().setValue(cell, Numeric(NumericType::Double, 3, e.x, e.y, e.z));
}

/// The constraint of that kind below a transform; null when it has none.
DagNode* constraintBelow(DagNode& held, const Kind& kind) {
    for (DagNode* child : held.children)
        if (child->type.name == kind.type) return child;
    return nullptr;
}

Cell& part(Cell& target, const char* name) { return target.child(target.attribute.child(name)->childIndex); }

/// The transform behind an element of the target list; null when nothing is connected.
DagNode* targetOf(Cell& element) {
    Cell& matrix = part(element, "targetParentMatrix");
    return matrix.source ? matrix.source->node.dag() : nullptr;
}

Cell* elementFor(DagNode& constraint, const DagNode& target) {
    for (auto& [index, element] : constraint.cell("target").elements)
        if (targetOf(*element) == &target) return element.get();
    return nullptr;
}

void addTarget(DagNode& constraint, const Kind& kind, DagNode& target, double weight) {
    Scene& scene = theScene();
    if (Cell* there = elementFor(constraint, target)) {
        if (Cell* source = part(*there, "targetWeight").source) scene.setNumber(*source, weight);
        return;
    }
    auto& elements = constraint.cell("target").elements;
    const int index = elements.empty() ? 0 : elements.rbegin()->first + 1;
    Cell& element = constraint.cell("target").element(index);
    for (const auto& [from, to] : kind.fromTarget) scene.connect(target.cell(from), part(element, to));
    if (target.findAttribute("jointOrient") && element.attribute.child("targetJointOrient"))
        scene.connect(target.cell("jointOrient"), part(element, "targetJointOrient"));
    scene.connect(target.cell("parentMatrix").element(0), part(element, "targetParentMatrix"));
    const std::string number = std::to_string(index);
    std::string stem = target.name;
    std::replace(stem.begin(), stem.end(), ':', '_');
    auto attribute = Attribute::number(stem + "W" + number, "w" + number, NumericType::Double, 1);
    attribute->limits[0].min = 0;
    attribute->keyable = true;
    scene.addAttribute(constraint, attribute);
    scene.setNumber(constraint.cell(*attribute), weight);
    scene.connect(constraint.cell(*attribute), part(element, "targetWeight"));
}

void removeTarget(DagNode& constraint, const DagNode& target) {
    Scene& scene = theScene();
    Cell* element = elementFor(constraint, target);
    if (!element) throw Error("'" + target.name + "' is no target of '" + constraint.name + "'.");
    const Cell* weight = part(*element, "targetWeight").source;
    const Attribute* attribute = weight && &weight->node == &constraint ? &weight->attribute : nullptr;
    scene.removeElement(*element, true);
    if (attribute) scene.deleteAttribute(constraint, *attribute);
    if (constraint.cell("target").elements.empty()) scene.deleteNodes({&constraint});
}

/// The axes that flags leave out, as "xyz" without them.
std::string axesOf(const ParsedArguments& args, std::initializer_list<const char*> skipFlags) {
    std::string axes = "xyz";
    for (const char* flag : skipFlags)
        for (std::size_t i = 0; i < args.occurrences(flag); ++i)
            std::erase(axes, args.value(flag, 0, i).toString().front());
    return axes;
}

MVector vectorFlag(const ParsedArguments& args, const char* flag) {
    return {args.value(flag, 0).toFloat(), args.value(flag, 1).toFloat(), args.value(flag, 2).toFloat()};
}

/// Lets the constraint leave the held transform where it was: `before` is its world matrix then.
void keepOffset(DagNode& constraint, const Kind& kind, DagNode& held, const MMatrix& before) {
    Scene& scene = theScene();
    const MVector pivot = tripleOf(held, "rotatePivot") + tripleOf(held, "rotatePivotTranslate");
    if (std::string_view(kind.type) == "parentConstraint") {
        const MPoint place = pointOf(tripleOf(held, "rotatePivot")) * before;
        for (auto& [index, element] : constraint.cell("target").elements) {
            DagNode* target = targetOf(*element);
            if (!target) continue;
            const MMatrix world = target->worldMatrix();
            const MPoint in = place * world.inverse();
            const MVector offset = MVector(in) - tripleOf(*target, "rotatePivot");
            scene.setValue(part(*element, "targetOffsetTranslate"),
                           Numeric(NumericType::Double, 3, offset.x, offset.y, offset.z));
            setEuler(part(*element, "targetOffsetRotate"), rotationOf(before) * rotationOf(world).inverse());
        }
        return;
    }
    if (std::string_view(kind.type) == "pointConstraint") {
        const MVector now = tripleOf(constraint, "constraintTranslate");
        const MVector was =
            MVector(pointOf(tripleOf(held, "rotatePivot")) * before * held.parentMatrix().inverse()) - pivot;
        setTriple(constraint, "offset", was - now);
        return;
    }
    setEuler(constraint.cell("offset"), rotationOf(before) * rotationOf(held.worldMatrix()).inverse());
}

void aimFlags(const ParsedArguments& args, DagNode& constraint) {
    Scene& scene = theScene();
    for (const auto& [flag, attribute] :
         {std::pair{"aim", "aimVector"}, std::pair{"u", "upVector"}, std::pair{"wu", "worldUpVector"}})
        if (args.has(flag)) setTriple(constraint, attribute, vectorFlag(args, flag));
    if (args.has("wut")) {
        Cell& cell = constraint.cell("worldUpType");
        const auto field = cell.attribute.fieldIndex(args.text("wut"));
        if (!field) throw Error("Invalid type of the world's up vector: " + args.text("wut"));
        scene.setNumber(cell, *field);
    }
    if (args.has("wuo"))
        scene.connect(dagNamed(args.text("wuo")).cell("worldMatrix").element(0), constraint.cell("worldUpMatrix"),
                      true);
}

Value queryConstraint(const ParsedArguments& args, DagNode& constraint) {
    StringArray targets, weights;
    for (auto& [index, element] : constraint.cell("target").elements) {
        DagNode* target = targetOf(*element);
        const Cell* weight = part(*element, "targetWeight").source;
        if (target) targets.push_back(nameOf(*target));
        if (weight) weights.push_back(weight->attribute.longName);
    }
    if (args.has("tl")) return targets;
    if (args.has("wal")) return weights;
    if (args.has("w")) {
        FloatArray values;
        for (const std::string& name : weights) values.push_back(constraint.cell(name).number());
        return values;
    }
    if (args.has("o") && constraint.findAttribute("offset")) {
        const bool place = constraint.type.name == "pointConstraint";
        const MVector v = tripleOf(constraint, "offset") * (1 / (place ? lengthUnit() : angleUnit()));
        return FloatArray{v.x, v.y, v.z};
    }
    throw Error(constraint.type.name + " was not told what to query.");
}

Value constrain(Call& call, const Kind& kind) {
    const ParsedArguments args(call,
                               {{"w", "weight", 1},
                                {"mo", "maintainOffset"},
                                {"o", "offset", 3},
                                {"n", "name", 1},
                                {"sk", "skip", 1},
                                {"st", "skipTranslate", 1},
                                {"sr", "skipRotate", 1},
                                {"rm", "remove"},
                                {"l", "layer", 1},
                                {"tl", "targetList"},
                                {"wal", "weightAliasList"},
                                {"aim", "aimVector", 3},
                                {"u", "upVector", 3},
                                {"wut", "worldUpType", 1},
                                {"wu", "worldUpVector", 3},
                                {"wuo", "worldUpObject", 1}},
                               true);
    Scene& scene = theScene();
    std::vector<DagNode*> given;
    for (DagNode* node : dagGivenOrSelected(args)) given.push_back(node);
    const std::string command = kind.type;
    DagNode* held = given.empty() ? nullptr : given.back();
    if (held && held->type.isA("constraint")) held = held->parent;
    if (!held || !held->isTransform()) throw Error(command + " needs targets, and a transform that it holds to them.");
    given.pop_back();
    DagNode* constraint = constraintBelow(*held, kind);
    if (args.query() || args.edit()) {
        if (!constraint) throw Error("'" + nameOf(*held) + "' has no " + command + ".");
        if (args.query()) return queryConstraint(args, *constraint);
        for (DagNode* target : given) {
            if (args.has("rm"))
                removeTarget(*constraint, *target);
            else if (args.has("w"))
                addTarget(*constraint, kind, *target, args.number("w", 1));
        }
        if (!args.has("rm") && command == "aimConstraint") aimFlags(args, *constraint);
        return {};
    }
    if (given.empty()) throw Error(command + " needs targets, and a transform that it holds to them.");
    for (const DagNode* target : given)
        if (target == held || !target->isTransform())
            throw Error("'" + target->name + "' cannot be a target of '" + held->name + "'.");
    const MMatrix before = held->worldMatrix();
    const bool isNew = !constraint;
    if (isNew) {
        for (const auto& [from, to] : kind.toHeld) scene.requireFree(held->cell(to));
        constraint =
            scene.createNode(*scene.findType(kind.type), args.text("n", held->name + "_" + command + "#"), held)->dag();
        if (constraint->findAttribute("restTranslate"))
            setTriple(*constraint, "restTranslate", tripleOf(*held, "translate"));
        if (constraint->findAttribute("restRotate")) setTriple(*constraint, "restRotate", tripleOf(*held, "rotate"));
    }
    for (DagNode* target : given) addTarget(*constraint, kind, *target, args.number("w", 1));
    if (command == "aimConstraint") aimFlags(args, *constraint);
    if (args.has("o")) {
        const double unit = command == "pointConstraint" ? lengthUnit() : angleUnit();
        if (constraint->findAttribute("offset")) setTriple(*constraint, "offset", vectorFlag(args, "o") * unit);
    }
    if (isNew) {
        for (const auto& [from, to] : kind.fromHeld) scene.connect(held->cell(from), constraint->cell(to));
        if (held->findAttribute("jointOrient") && constraint->findAttribute("constraintJointOrient"))
            scene.connect(held->cell("jointOrient"), constraint->cell("constraintJointOrient"));
        scene.connect(held->cell("parentInverseMatrix").element(0), constraint->cell("constraintParentInverseMatrix"));
        for (const auto& [from, to] : kind.toHeld) {
            const bool turns = std::string_view(to) == "rotate";
            for (const char axis : axesOf(args, {"sk", turns ? "sr" : "st"})) {
                const int k = axis - 'x';
                scene.connect(constraint->cell(from).child(k), held->cell(to).child(k));
            }
        }
    }
    if (args.has("mo")) keepOffset(*constraint, kind, *held, before);
    return StringArray{nameOf(*constraint)};
}

} // namespace

void registerConstraintCommands(Interpreter& interpreter) {
    for (const char* type : {"pointConstraint", "orientConstraint", "parentConstraint", "aimConstraint"})
        registerSceneCommand(interpreter, type, [type](Call& call) { return constrain(call, kindOf(type)); });
}

} // namespace host::mel
