#include <maya/MFnTransform.h>

#include "api/fn/FnSupport.h"
#include "scene/Evaluation.h"

#include <maya/MDagPath.h>

#include <tuple>
#include <utility>
#include <vector>

using namespace host;
using api::Access;
using Order = MTransformationMatrix::RotationOrder;

ORVO_DEFINE_FN(MFnTransform, MFn::kTransform)
ORVO_FN_NAME(MFnTransform)

MFnTransform::MFnTransform(const MDagPath& object, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MFnTransform::setObject(object).statusCode());
}

MFnTransform::~MFnTransform() = default;
MStatus MFnTransform::setObject(const MDagPath& objectPath) { return attach(objectPath.node(), MFn::kTransform); }
MStatus MFnTransform::setObject(MObject& object) { return attach(object, MFn::kTransform); }
MStatus MFnTransform::setObject(const MObject& object) { return attach(object, MFn::kTransform); }

namespace {

bool known(MSpace::Space space) { return space > MSpace::kInvalid && space < MSpace::kLast; }
bool known(Order order) { return order > MTransformationMatrix::kInvalid && order < MTransformationMatrix::kLast; }

MEulerRotation::RotationOrder eulerOrder(Order order) { return static_cast<MEulerRotation::RotationOrder>(order - 1); }
Order matrixOrder(MEulerRotation::RotationOrder order) { return static_cast<Order>(order + 1); }

/// The node behind a call, held for its length, with its components as they are now.
class Target {
public:
    explicit Target(const MObject& object) : node_(Access::dagNode(object)) {
        if (node_ && (!node_->inScene || !node_->findAttribute("translate"))) node_.reset();
        if (!node_) return;
        const double scale[3]{number("scaleX"), number("scaleY"), number("scaleZ")};
        const double shear[3]{number("shearXY"), number("shearXZ"), number("shearYZ")};
        tm.setScale(scale, MSpace::kTransform);
        tm.setShear(shear, MSpace::kTransform);
        const MVector axis = triple("rotateAxis"), angles = triple("rotate");
        axis_ = MEulerRotation(axis);
        tm.setRotationOrientation(axis_.asQuaternion());
        const int order = static_cast<int>(number("rotateOrder"));
        tm.rotateTo(MEulerRotation(angles, static_cast<MEulerRotation::RotationOrder>(order % 6)));
        tm.setScalePivot(triple("scalePivot"), MSpace::kTransform, false);
        tm.setScalePivotTranslation(triple("scalePivotTranslate"), MSpace::kTransform);
        tm.setRotatePivot(triple("rotatePivot"), MSpace::kTransform, false);
        tm.setRotatePivotTranslation(triple("rotatePivotTranslate"), MSpace::kTransform);
        tm.setTranslation(triple("translate"), MSpace::kTransform);
    }

    explicit operator bool() const { return node_ != nullptr; }
    MMatrix parent() const { return node_->dag()->parentMatrix(); }
    MMatrix parentInverse() const { return parent().inverse(); }
    MQuaternion parentRotation() const {
        MQuaternion q;
        q = parent();
        return q;
    }

    /// Takes `tm` over into the node: whatever differs, or nothing when some of that must not change.
    MStatus store() {
        double scale[3], shear[3];
        tm.getScale(scale, MSpace::kTransform);
        tm.getShear(shear, MSpace::kTransform);
        const MEulerRotation r = tm.eulerRotation();
        plan("scale", "XYZ", MVector(scale));
        plan(cell("shearXY"), shear[0]);
        plan(cell("shearXZ"), shear[1]);
        plan(cell("shearYZ"), shear[2]);
        plan("rotate", "XYZ", r.asVector());
        plan(cell("rotateOrder"), r.order);
        // Angles are not unique: those of an orientation that is still the same stay.
        if (tm.rotationOrientation() != axis_.asQuaternion())
            plan("rotateAxis", "XYZ", tm.rotationOrientation().asEulerRotation().asVector());
        plan("scalePivot", "XYZ", MVector(tm.scalePivot(MSpace::kTransform)));
        plan("scalePivotTranslate", "XYZ", tm.scalePivotTranslation(MSpace::kTransform));
        plan("rotatePivot", "XYZ", MVector(tm.rotatePivot(MSpace::kTransform)));
        plan("rotatePivotTranslate", "XYZ", tm.rotatePivotTranslation(MSpace::kTransform));
        plan("translate", "XYZ", tm.getTranslation(MSpace::kTransform));
        return api::guarded([&] {
            for (const auto& [cell, value] : changes_) node_->scene.requireSettable(*cell);
            for (const auto& [cell, value] : changes_)
                node_->scene.setNumber(*cell, value, scene::Scene::LimitPolicy::Ignore);
        });
    }

    MTransformationMatrix tm;

private:
    scene::Cell& cell(const std::string& name) { return node_->cell(name); }
    double number(const std::string& name) {
        scene::Cell& c = cell(name);
        scene::evaluate(c);
        return c.number();
    }
    MVector triple(const std::string& name) {
        return MVector(number(name + "X"), number(name + "Y"), number(name + "Z"));
    }
    void plan(scene::Cell& cell, double value) {
        if (cell.number() != value) changes_.emplace_back(&cell, value);
    }
    void plan(const std::string& name, const char* axes, const MVector& v) {
        for (unsigned int k = 0; k < 3; ++k) plan(cell(name + axes[k]), v[k]);
    }

    std::shared_ptr<scene::Node> node_;
    MEulerRotation axis_;
    std::vector<std::pair<scene::Cell*, double>> changes_;
};

/// Runs a look at the target; kFailure when it is gone.
template <class Look>
MStatus look(const MObject& object, Look&& action) {
    Target t(object);
    return t ? action(t) : MStatus(MStatus::kFailure);
}

/// Runs a change of the target's components and stores them.
template <class Change>
MStatus change(const MObject& object, Change&& action) {
    return look(object, [&](Target& t) {
        const MStatus status = action(t);
        return status ? t.store() : status;
    });
}

/// A value that depends on a space; a default one with a status when there is none.
template <class Value, class Look>
Value valueIn(const MObject& object, MSpace::Space space, MStatus* ReturnStatus, Look&& action) {
    Value value;
    const MStatus status = look(object, [&](Target& t) -> MStatus {
        if (!known(space)) return MStatus::kInvalidParameter;
        value = action(t);
        return MStatus::kSuccess;
    });
    setStatus(ReturnStatus, status.statusCode());
    return value;
}

template <class Change>
MStatus changeIn(const MObject& object, MSpace::Space space, Change&& action) {
    return change(object, [&](Target& t) { return known(space) ? action(t) : MStatus(MStatus::kInvalidParameter); });
}

MVector translationOf(const Target& t, MSpace::Space space) {
    const MVector own = t.tm.getTranslation(space);
    return space == MSpace::kWorld ? MVector(MPoint(own) * t.parent()) : own;
}

MQuaternion rotationOf(const Target& t, MSpace::Space space) {
    return space == MSpace::kWorld ? t.tm.rotation() * t.parentRotation() : t.tm.rotation();
}

} // namespace

MObject MFnTransform::create(MObject parent, MStatus* ReturnStatus) {
    auto* scene = &scene::Scene::current();
    scene::DagNode* above = nullptr;
    const auto node = Access::dagNode(parent);
    if (!parent.isNull()) {
        if (!node || !node->inScene || !node->dag()->isTransform()) {
            setStatus(ReturnStatus, MStatus::kInvalidParameter);
            return MObject();
        }
        above = node->dag();
        scene = &node->scene;
    }
    MObject made;
    const MStatus status =
        api::guarded([&] { made = Access::object(scene->createNode(*scene->findType("transform"), {}, above).get()); });
    setStatus(ReturnStatus, status.statusCode());
    if (status) object_ = made;
    return made;
}

MTransformationMatrix MFnTransform::transformation(MStatus* ReturnStatus) const {
    return valueIn<MTransformationMatrix>(object_, MSpace::kTransform, ReturnStatus, [](Target& t) { return t.tm; });
}

MStatus MFnTransform::set(const MTransformationMatrix& transform) {
    return change(object_, [&](Target& t) {
        t.tm = transform;
        return MStatus();
    });
}

MStatus MFnTransform::getScale(double scale[3]) const {
    return look(object_, [&](Target& t) { return t.tm.getScale(scale, MSpace::kTransform); });
}

MStatus MFnTransform::setScale(const double scale[3]) {
    return change(object_, [&](Target& t) { return t.tm.setScale(scale, MSpace::kTransform); });
}

MStatus MFnTransform::scaleBy(const double scale[3]) {
    return change(object_, [&](Target& t) { return t.tm.addScale(scale, MSpace::kTransform); });
}

MStatus MFnTransform::getShear(double shear[3]) const {
    return look(object_, [&](Target& t) { return t.tm.getShear(shear, MSpace::kTransform); });
}

MStatus MFnTransform::setShear(const double shear[3]) {
    return change(object_, [&](Target& t) { return t.tm.setShear(shear, MSpace::kTransform); });
}

MStatus MFnTransform::shearBy(const double shear[3]) {
    return change(object_, [&](Target& t) { return t.tm.addShear(shear, MSpace::kTransform); });
}

MStatus MFnTransform::getRotation(MQuaternion& quaternion, MSpace::Space space) const {
    MStatus status;
    const MQuaternion q =
        valueIn<MQuaternion>(object_, space, &status, [&](Target& t) { return rotationOf(t, space); });
    if (status) quaternion = q;
    return status;
}

MStatus MFnTransform::setRotation(const MQuaternion& quaternion, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        t.tm.rotateTo(space == MSpace::kWorld ? quaternion * t.parentRotation().inverse() : quaternion);
        return MStatus();
    });
}

MStatus MFnTransform::rotateBy(const MQuaternion& quaternion, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        const MQuaternion parent = space == MSpace::kWorld ? t.parentRotation() : MQuaternion();
        MStatus status;
        t.tm.rotateBy(parent * quaternion * parent.inverse(), space, &status);
        return status;
    });
}

MStatus MFnTransform::getRotation(MEulerRotation& rotation) const {
    return look(object_, [&](Target& t) {
        rotation = t.tm.eulerRotation();
        return MStatus();
    });
}

MStatus MFnTransform::setRotation(const MEulerRotation& rotation) {
    return change(object_, [&](Target& t) {
        t.tm.rotateTo(rotation);
        return MStatus();
    });
}

MStatus MFnTransform::rotateBy(const MEulerRotation& rotation, MSpace::Space space) {
    return rotateBy(rotation.asQuaternion(), space);
}

MStatus MFnTransform::getRotationQuaternion(double& x, double& y, double& z, double& w, MSpace::Space space) const {
    MQuaternion q;
    const MStatus status = getRotation(q, space);
    if (status) std::tie(x, y, z, w) = std::make_tuple(q.x, q.y, q.z, q.w);
    return status;
}

MStatus MFnTransform::setRotationQuaternion(double x, double y, double z, double w, MSpace::Space space) {
    return setRotation(MQuaternion(x, y, z, w), space);
}

MStatus MFnTransform::rotateByQuaternion(double x, double y, double z, double w, MSpace::Space space) {
    return rotateBy(MQuaternion(x, y, z, w), space);
}

MStatus MFnTransform::getRotation(double rotation[3], Order& order) const {
    return look(object_, [&](Target& t) { return t.tm.getRotation(rotation, order); });
}

MStatus MFnTransform::setRotation(const double rotation[3], Order order) {
    return change(object_, [&](Target& t) { return t.tm.setRotation(rotation, order); });
}

MStatus MFnTransform::rotateBy(const double rotation[3], Order order, MSpace::Space space) {
    if (!known(order)) return MStatus::kInvalidParameter;
    return rotateBy(MEulerRotation(MVector(rotation), eulerOrder(order)), space);
}

MStatus MFnTransform::getRotation(double rotation[3], Order& order, MSpace::Space space) const {
    if (space != MSpace::kWorld) return known(space) ? getRotation(rotation, order) : MStatus::kInvalidParameter;
    return look(object_, [&](Target& t) {
        MEulerRotation world = t.tm.eulerRotation();
        world = rotationOf(t, space);
        order = matrixOrder(world.order);
        return world.asVector().get(rotation);
    });
}

MStatus MFnTransform::setRotation(const double rotation[3], Order order, MSpace::Space space) {
    if (space != MSpace::kWorld) return known(space) ? setRotation(rotation, order) : MStatus::kInvalidParameter;
    return change(object_, [&](Target& t) {
        if (!known(order)) return MStatus(MStatus::kInvalidParameter);
        MEulerRotation own(MVector(rotation), eulerOrder(order));
        own = own.asQuaternion() * t.parentRotation().inverse();
        t.tm.rotateTo(own);
        return MStatus();
    });
}

Order MFnTransform::rotationOrder(MStatus* ReturnStatus) const {
    Order order = MTransformationMatrix::kInvalid;
    const MStatus status = look(object_, [&](Target& t) {
        order = t.tm.rotationOrder();
        return MStatus();
    });
    setStatus(ReturnStatus, status.statusCode());
    return order;
}

MStatus MFnTransform::setRotationOrder(Order order, bool reorder) {
    return change(object_, [&](Target& t) {
        double angles[3];
        Order old;
        t.tm.getRotation(angles, old);
        return reorder ? t.tm.reorderRotation(order) : t.tm.setRotation(angles, order);
    });
}

MQuaternion MFnTransform::rotateOrientation(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MQuaternion>(object_, space, ReturnStatus, [](Target& t) { return t.tm.rotationOrientation(); });
}

MStatus MFnTransform::setRotateOrientation(const MQuaternion& quat, MSpace::Space space, bool balance) {
    return changeIn(object_, space, [&](Target& t) {
        if (balance) t.tm.rotateTo(quat.inverse() * t.tm.rotationOrientation() * t.tm.rotation());
        t.tm.setRotationOrientation(quat);
        return MStatus();
    });
}

MVector MFnTransform::getTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MVector>(object_, space, ReturnStatus, [&](Target& t) { return translationOf(t, space); });
}

MVector MFnTransform::translation(MSpace::Space space, MStatus* ReturnStatus) const {
    return getTranslation(space, ReturnStatus);
}

MStatus MFnTransform::setTranslation(const MVector& vector, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        const MVector own = space == MSpace::kWorld ? MVector(MPoint(vector) * t.parentInverse()) : vector;
        return t.tm.setTranslation(own, space);
    });
}

MStatus MFnTransform::translateBy(const MVector& vector, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        return t.tm.addTranslation(space == MSpace::kWorld ? vector * t.parentInverse() : vector, space);
    });
}

MPoint MFnTransform::scalePivot(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MPoint>(object_, space, ReturnStatus, [&](Target& t) {
        const MPoint own = t.tm.scalePivot(space);
        return space == MSpace::kWorld ? own * t.parent() : own;
    });
}

MStatus MFnTransform::setScalePivot(const MPoint& point, MSpace::Space space, bool balance) {
    return changeIn(object_, space, [&](Target& t) {
        return t.tm.setScalePivot(space == MSpace::kWorld ? point * t.parentInverse() : point, space, balance);
    });
}

MVector MFnTransform::scalePivotTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MVector>(object_, space, ReturnStatus, [&](Target& t) {
        const MVector own = t.tm.scalePivotTranslation(space);
        return space == MSpace::kWorld ? own * t.parent() : own;
    });
}

MStatus MFnTransform::setScalePivotTranslation(const MVector& vector, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        return t.tm.setScalePivotTranslation(space == MSpace::kWorld ? vector * t.parentInverse() : vector, space);
    });
}

MPoint MFnTransform::rotatePivot(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MPoint>(object_, space, ReturnStatus, [&](Target& t) {
        const MPoint own = t.tm.rotatePivot(space);
        return space == MSpace::kWorld ? own * t.parent() : own;
    });
}

MStatus MFnTransform::setRotatePivot(const MPoint& point, MSpace::Space space, bool balance) {
    return changeIn(object_, space, [&](Target& t) {
        return t.tm.setRotatePivot(space == MSpace::kWorld ? point * t.parentInverse() : point, space, balance);
    });
}

MVector MFnTransform::rotatePivotTranslation(MSpace::Space space, MStatus* ReturnStatus) const {
    return valueIn<MVector>(object_, space, ReturnStatus, [&](Target& t) {
        const MVector own = t.tm.rotatePivotTranslation(space);
        return space == MSpace::kWorld ? own * t.parent() : own;
    });
}

MStatus MFnTransform::setRotatePivotTranslation(const MVector& vector, MSpace::Space space) {
    return changeIn(object_, space, [&](Target& t) {
        return t.tm.setRotatePivotTranslation(space == MSpace::kWorld ? vector * t.parentInverse() : vector, space);
    });
}
