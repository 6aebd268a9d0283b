#include "base/Units.h"
#include "scene/DagBehavior.h"
#include "scene/Evaluation.h"
#include "scene/TypeRegistrar.h"

#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

#include <cmath>

namespace host::scene {
namespace {

using A = Attribute;
using N = NumericType;
constexpr auto angle = AttributeType::Angle;
constexpr auto distance = AttributeType::Distance;

MVector vectorOf(Cell& cell) {
    evaluate(cell);
    const auto* n = std::get_if<Numeric>(&cell.value);
    return n ? MVector(n->get(0), n->get(1), n->get(2)) : MVector();
}

MMatrix matrixOf(Cell& cell) {
    evaluate(cell);
    const auto* m = matrixIn(cell.value);
    return m ? *m : MMatrix();
}

double numberOf(Cell& cell) {
    evaluate(cell);
    return cell.number();
}

/// The rotation of a matrix, without its scale, shear and mirroring.
MQuaternion rotationOf(const MMatrix& m) { return MTransformationMatrix(m).rotation(); }

MMatrix translation(const MVector& v) {
    MMatrix m;
    m(3, 0) = v.x;
    m(3, 1) = v.y;
    m(3, 2) = v.z;
    return m;
}

/// Where several targets pull to, each by its weight.
class Blend {
public:
    void add(double weight, const MVector& position, const MQuaternion& rotation) {
        if (weight <= 0) return;
        total_ += weight;
        const double part = weight / total_;
        position_ = position_ + (position - position_) * part;
        // Along the shorter arc from what there is: with two targets the arc between them.
        rotation_ = part >= 1 ? rotation : slerp(rotation_, rotation, part);
    }
    bool empty() const { return total_ == 0; }
    const MVector& position() const { return position_; }
    const MQuaternion& rotation() const { return rotation_; }

private:
    static MQuaternion slerp(const MQuaternion& from, MQuaternion to, double t) {
        double cosine = from.x * to.x + from.y * to.y + from.z * to.z + from.w * to.w;
        if (cosine < 0) {
            to = MQuaternion(-to.x, -to.y, -to.z, -to.w);
            cosine = -cosine;
        }
        double a = 1 - t, b = t;
        constexpr double nearlyEqual = 1 - 1e-12;
        if (cosine < nearlyEqual) {
            const double arc = std::acos(cosine);
            a = std::sin(a * arc) / std::sin(arc);
            b = std::sin(b * arc) / std::sin(arc);
        }
        MQuaternion q(a * from.x + b * to.x, a * from.y + b * to.y, a * from.z + b * to.z, a * from.w + b * to.w);
        q.normalizeIt();
        return q;
    }

    double total_ = 0;
    MVector position_;
    MQuaternion rotation_;
};

/// A constraint: its targets pull in the world; what comes out is in the space of the transform that it holds.
class ConstraintBehavior : public DagBehavior {
public:
    using DagBehavior::DagBehavior;

    bool compute(Cell& cell) override {
        const std::string& name = cell.attribute.root().longName;
        if (name != "constraintTranslate" && name != "constraintRotate") return DagBehavior::compute(cell);
        constrain();
        return true;
    }

protected:
    virtual void constrain() = 0;

    Cell& plug(const char* name) { return node_.cell(name); }
    bool has(const char* name) const { return node_.findAttribute(name); }

    template <class Visit>
    void eachTarget(Visit visit) {
        Cell& targets = plug("target");
        evaluate(targets);
        for (auto& [index, target] : targets.elements) visit(*target);
    }
    static Cell& part(Cell& target, const char* name) { return target.child(target.attribute.child(name)->childIndex); }
    static double weightOf(Cell& target) { return numberOf(part(target, "targetWeight")); }
    /// Where a target's pivot is in the world.
    static MVector pivotOf(Cell& target) {
        const MVector p = vectorOf(part(target, "targetTranslate")) + vectorOf(part(target, "targetRotatePivot")) +
                          vectorOf(part(target, "targetRotateTranslate"));
        return MVector(MPoint(p) * matrixOf(part(target, "targetParentMatrix")));
    }
    static MMatrix rotateMatrix(Cell& target) {
        const MVector r = vectorOf(part(target, "targetRotate")), jo = vectorOf(part(target, "targetJointOrient"));
        return MEulerRotation(r, rotationOrder(numberOf(part(target, "targetRotateOrder")))).asMatrix() *
               MEulerRotation(jo).asMatrix();
    }

    MMatrix parentInverse() { return matrixOf(plug("constraintParentInverseMatrix")); }
    MVector ownPivot() { return vectorOf(plug("constraintRotatePivot")) + vectorOf(plug("constraintRotateTranslate")); }

    void give(const char* name, const MVector& v) {
        Cell& cell = plug(name);
        cell.value = Numeric(N::Double, 3, v.x, v.y, v.z);
        setClean(cell);
    }
    /// A place in the world, for the translate channels of a transform that turns about its pivot.
    void giveTranslate(const MVector& world) {
        give("constraintTranslate", MVector(MPoint(world) * parentInverse()) - ownPivot());
    }
    /// A rotation in the world, for the rotate channels.
    void giveRotate(const MQuaternion& world) {
        const MMatrix local = world.asMatrix() * rotationOf(parentInverse()).asMatrix() *
                              MEulerRotation(vectorOf(plug("constraintJointOrient"))).asMatrix().inverse();
        MTransformationMatrix m(local);
        m.reorderRotation(static_cast<MTransformationMatrix::RotationOrder>(
            rotationOrder(numberOf(plug("constraintRotateOrder"))) + 1));
        const MEulerRotation e = m.eulerRotation();
        give("constraintRotate", {e.x, e.y, e.z});
    }
};

class PointConstraint final : public ConstraintBehavior {
    using ConstraintBehavior::ConstraintBehavior;
    void constrain() override {
        Blend blend;
        eachTarget([&](Cell& t) { blend.add(weightOf(t), pivotOf(t), {}); });
        if (blend.empty()) {
            give("constraintTranslate", vectorOf(plug("restTranslate")));
            return;
        }
        const MVector local = MVector(MPoint(blend.position()) * parentInverse());
        give("constraintTranslate", local - ownPivot() + vectorOf(plug("offset")));
    }
};

class OrientConstraint final : public ConstraintBehavior {
    using ConstraintBehavior::ConstraintBehavior;
    void constrain() override {
        Blend blend;
        eachTarget([&](Cell& t) {
            blend.add(weightOf(t), {}, rotationOf(rotateMatrix(t) * matrixOf(part(t, "targetParentMatrix"))));
        });
        if (blend.empty()) {
            give("constraintRotate", vectorOf(plug("restRotate")));
            return;
        }
        giveRotate(MEulerRotation(vectorOf(plug("offset"))).asQuaternion() * blend.rotation());
    }
};

class ParentConstraint final : public ConstraintBehavior {
    using ConstraintBehavior::ConstraintBehavior;
    void constrain() override {
        Blend blend;
        eachTarget([&](Cell& t) {
            const MVector s = vectorOf(part(t, "targetScale")), pivot = vectorOf(part(t, "targetRotatePivot"));
            MMatrix scale;
            scale(0, 0) = s.x;
            scale(1, 1) = s.y;
            scale(2, 2) = s.z;
            const MMatrix world =
                scale * translation(-pivot) * rotateMatrix(t) *
                translation(pivot + vectorOf(part(t, "targetRotateTranslate")) + vectorOf(part(t, "targetTranslate"))) *
                matrixOf(part(t, "targetParentMatrix"));
            const MVector offset = vectorOf(part(t, "targetOffsetTranslate"));
            const MQuaternion turn = MEulerRotation(vectorOf(part(t, "targetOffsetRotate"))).asQuaternion();
            // The offset counts from the target's pivot.
            blend.add(weightOf(t), MVector(MPoint(offset + pivot) * world), turn * rotationOf(world));
        });
        if (blend.empty()) {
            give("constraintTranslate", vectorOf(plug("restTranslate")));
            give("constraintRotate", vectorOf(plug("restRotate")));
            return;
        }
        giveTranslate(blend.position());
        giveRotate(blend.rotation());
    }
};

class AimConstraint final : public ConstraintBehavior {
    using ConstraintBehavior::ConstraintBehavior;

    enum Up { Scene, Object, ObjectRotation, Vector, None };

    /// Two axes at right angles, the first along `along` and the second towards `up`, and their cross product. False
    /// where they do not span a plane.
    static bool frame(const MVector& along, const MVector& up, MMatrix& m) {
        const MVector x = along.normal(), side = x ^ up;
        constexpr double least = 1e-9;
        if (along.length() < least || side.length() < least * std::max(1.0, up.length())) return false;
        const MVector z = side.normal(), y = z ^ x;
        const MVector* rows[] = {&x, &y, &z};
        for (unsigned k = 0; k < 3; ++k) {
            m(k, 0) = rows[k]->x;
            m(k, 1) = rows[k]->y;
            m(k, 2) = rows[k]->z;
        }
        return true;
    }

    MVector upVector(const MVector& here) {
        const MVector up = vectorOf(plug("worldUpVector"));
        switch (static_cast<int>(numberOf(plug("worldUpType")))) {
        case Scene: return upAxis() == 'z' ? MVector(0, 0, 1) : MVector(0, 1, 0);
        case Object: {
            const MMatrix m = matrixOf(plug("worldUpMatrix"));
            return MVector(m(3, 0), m(3, 1), m(3, 2)) - here;
        }
        case ObjectRotation: return up * matrixOf(plug("worldUpMatrix"));
        case None: return {};
        default: return up;
        }
    }

    void constrain() override {
        Blend blend;
        eachTarget([&](Cell& t) { blend.add(weightOf(t), pivotOf(t), {}); });
        const MVector own = vectorOf(plug("constraintTranslate")) + ownPivot();
        const MVector here(MPoint(own) * parentInverse().inverse());
        if (blend.empty() || (blend.position() - here).length() < 1e-12) {
            give("constraintRotate", vectorOf(plug("restRotate")));
            return;
        }
        const MVector aim = blend.position() - here;
        const MVector ownAim = vectorOf(plug("aimVector"));
        MMatrix axes, wanted;
        MQuaternion turn;
        if (frame(ownAim, vectorOf(plug("upVector")), axes) && frame(aim, upVector(here), wanted))
            turn = rotationOf(axes.inverse() * wanted);
        else // no up vector that tells how to roll: the shortest way
            turn = ownAim.length() > 0 ? MQuaternion(ownAim, aim) : MQuaternion();
        giveRotate(MEulerRotation(vectorOf(plug("offset"))).asQuaternion() * turn);
    }
};

AttributePtr number3(const char* longName, const char* shortName, AttributeType type, double value = 0) {
    return A::tuple(longName, shortName, N::Double, 3, "XYZ", type, value);
}

/// A target's parts: where it is and where it turns.
std::vector<AttributePtr> placeParts() {
    return {number3("targetTranslate", "tt", distance), number3("targetRotatePivot", "trp", distance),
            number3("targetRotateTranslate", "trt", distance)};
}

std::vector<AttributePtr> turnParts() {
    return {number3("targetRotate", "tr", angle), A::number("targetRotateOrder", "tro", N::Byte),
            number3("targetJointOrient", "tjo", angle), A::number("targetScaleCompensate", "tsc", N::Bool),
            number3("targetInverseScale", "tis", AttributeType::Numeric, 1)};
}

using Parts = std::vector<AttributePtr>;

void append(Parts& list, Parts more) {
    for (auto& a : more) list.push_back(std::move(a));
}

template <class Behavior>
void constraint(Registrar& r, const char* name, MFn::Type apiType, Parts target, Parts inputs, Parts outputs) {
    target.push_back(A::matrix("targetParentMatrix", "tpm"));
    target.push_back(A::number("targetWeight", "tw", N::Double, 1));
    inputs.push_back(array(A::compound("target", "tg", std::move(target))));
    inputs.push_back(A::matrix("constraintParentInverseMatrix", "cpim"));
    inputs.push_back(A::number("enableRestPosition", "erp", N::Bool, 1));
    inputs.push_back(A::number("lockOutput", "lo", N::Bool));
    std::vector<const Attribute*> in, out;
    for (const auto& a : inputs) in.push_back(a.get());
    for (auto& a : outputs) {
        out.push_back(a.get());
        inputs.push_back(readOnly(std::move(a)));
    }
    NodeType& t = r.type(name, "constraint", NodeType::Kind::Transform, apiType, std::move(inputs),
                         [](Node& n) { return std::make_unique<Behavior>(*n.dag()); });
    for (const Attribute* from : in)
        for (const Attribute* to : out) t.affects(*from, *to);
}

} // namespace

void registerConstraintTypes(Registrar& r) {
    r.abstract("constraint", "transform", NodeType::Kind::Transform, MFn::kConstraint, {});
    const auto translate = [] { return number3("constraintTranslate", "ct", distance); };
    const auto rotate = [] { return number3("constraintRotate", "cr", angle); };
    const auto offset = [](AttributeType type) { return keyable(number3("offset", "o", type)); };
    const auto ownPivot = []() -> Parts {
        return {number3("constraintRotatePivot", "crp", distance),
                number3("constraintRotateTranslate", "crt", distance)};
    };
    const auto ownTurn = []() -> Parts {
        return {A::number("constraintRotateOrder", "cro", N::Byte), number3("constraintJointOrient", "cjo", angle),
                number3("restRotate", "rsrr", angle)};
    };
    const auto blending = []() -> Parts {
        return {keyable(A::enumeration("interpType", "int", 1, {"No Flip", "Average", "Shortest", "Longest", "Cache"})),
                number3("lastTargetRotation", "lr", angle)};
    };
    const auto restTranslate = [] { return number3("restTranslate", "rst", distance); };

    Parts inputs = ownPivot();
    append(inputs, {offset(distance), restTranslate(), A::number("constraintOffsetPolarity", "cop", N::Bool)});
    constraint<PointConstraint>(r, "pointConstraint", MFn::kPointConstraint, placeParts(), std::move(inputs),
                                {translate()});

    inputs = ownTurn();
    append(inputs, blending());
    append(inputs, {offset(angle)});
    constraint<OrientConstraint>(r, "orientConstraint", MFn::kOrientConstraint, turnParts(), std::move(inputs),
                                 {rotate()});

    Parts target = placeParts();
    append(target, turnParts());
    append(target, {number3("targetScale", "ts", AttributeType::Numeric, 1),
                    number3("targetOffsetTranslate", "tot", distance), number3("targetOffsetRotate", "tor", angle)});
    inputs = ownTurn();
    append(inputs, ownPivot());
    append(inputs, blending());
    append(inputs, {restTranslate()});
    constraint<ParentConstraint>(r, "parentConstraint", MFn::kParentConstraint, std::move(target), std::move(inputs),
                                 {translate(), rotate()});

    const auto vector = [](const char* longName, const char* shortName, double x, double y, double z) {
        auto a = number3(longName, shortName, AttributeType::Numeric);
        const double xyz[] = {x, y, z};
        for (std::size_t k = 0; k < 3; ++k) a->children[k]->defaultValue = Numeric(N::Double, 1, xyz[k]);
        a->defaultValue = Numeric(N::Double, 3, x, y, z);
        return a;
    };
    inputs = ownTurn();
    append(inputs, ownPivot());
    append(inputs, {translate(), offset(angle), vector("aimVector", "a", 1, 0, 0), vector("upVector", "u", 0, 1, 0),
                    vector("worldUpVector", "wu", 0, 1, 0), A::matrix("worldUpMatrix", "wum"),
                    A::enumeration("worldUpType", "wut", 3, {"scene", "object", "objectrotation", "vector", "none"})});
    constraint<AimConstraint>(r, "aimConstraint", MFn::kAimConstraint, placeParts(), std::move(inputs), {rotate()});
}

} // namespace host::scene
