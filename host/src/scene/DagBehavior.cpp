#include "scene/DagBehavior.h"

#include "scene/Evaluation.h"
#include "scene/Scene.h"
#include "values/TransformMath.h"

#include <maya/MEulerRotation.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

namespace host::scene {
namespace {

MVector triple(Node& node, std::string_view name) {
    Cell& c = node.cell(name);
    evaluate(c);
    const auto* n = std::get_if<Numeric>(&c.value);
    return n ? MVector(n->get(0), n->get(1), n->get(2)) : MVector();
}

/// Appends a translation by v.
void translate(MMatrix& m, const MVector& v, double sign = 1) {
    m(3, 0) += sign * v.x;
    m(3, 1) += sign * v.y;
    m(3, 2) += sign * v.z;
}

void store(Cell& cell, const MMatrix& m) {
    cell.value = m;
    setClean(cell);
}

MMatrix jointMatrix(DagNode& n) {
    const MVector s = triple(n, "scale"), ra = triple(n, "rotateAxis"), r = triple(n, "rotate"),
                  t = triple(n, "translate");
    MMatrix m = scaling(s) * MEulerRotation(ra.x, ra.y, ra.z).asMatrix() *
                MEulerRotation(r.x, r.y, r.z, rotationOrder(n)).asMatrix() * jointOrientation(n);
    Cell& compensate = n.cell("segmentScaleCompensate");
    evaluate(compensate);
    const MVector above = triple(n, "inverseScale");
    // The attribute holds the scale of the joint above; one of 0 cannot be taken out.
    if (compensate.number() != 0 && above.x != 0 && above.y != 0 && above.z != 0)
        m = m * scaling({1 / above.x, 1 / above.y, 1 / above.z});
    translate(m, t);
    return m;
}

/// A matrix attribute's value; the identity where nobody has touched it.
MMatrix held(DagNode& n, std::string_view name) {
    const Attribute* a = n.findAttribute(name);
    Cell* c = a ? n.existingCell(*a) : nullptr;
    if (!c) return MMatrix();
    evaluate(*c);
    const auto* m = matrixIn(c->value);
    return m ? *m : MMatrix();
}

} // namespace

MEulerRotation::RotationOrder rotationOrder(DagNode& transform) {
    Cell& order = transform.cell("rotateOrder");
    evaluate(order);
    return rotationOrder(order.number());
}

MMatrix jointOrientation(DagNode& n) {
    if (!n.findAttribute("jointOrient")) return MMatrix();
    const MVector jo = triple(n, "jointOrient");
    return MEulerRotation(jo.x, jo.y, jo.z).asMatrix();
}

MMatrix transformMatrix(DagNode& n) {
    if (n.type.isA("joint")) return jointMatrix(n);
    const MVector s = triple(n, "scale"), sh = triple(n, "shear"), sp = triple(n, "scalePivot"),
                  spt = triple(n, "scalePivotTranslate"), rp = triple(n, "rotatePivot"),
                  rpt = triple(n, "rotatePivotTranslate"), ra = triple(n, "rotateAxis"), r = triple(n, "rotate"),
                  t = triple(n, "translate");
    MMatrix m;
    translate(m, sp, -1);
    m = m * scaling(s) * shearing(sh);
    translate(m, sp);
    translate(m, spt);
    translate(m, rp, -1);
    m = m * MEulerRotation(ra.x, ra.y, ra.z).asMatrix() * MEulerRotation(r.x, r.y, r.z, rotationOrder(n)).asMatrix();
    translate(m, rp);
    translate(m, rpt);
    translate(m, t);
    return m;
}

void DagBehavior::upstream(Cell& cell, std::vector<Cell*>& out) {
    const std::string& name = cell.attribute.longName;
    const bool world = name.starts_with("world");
    if (!world && !name.starts_with("parent")) return;
    for (DagNode* n = world ? &node_ : node_.parent; n && !n->worldKnown(); n = n->parent)
        for (const char* matrix : {"matrix", "offsetParentMatrix"})
            if (const Attribute* a = n->type.find(matrix)) out.push_back(&n->cell(*a));
}

bool DagBehavior::compute(Cell& cell) {
    const std::string& name = cell.attribute.longName;
    if (name == "matrix" || name == "xformMatrix") {
        store(cell, node_.isTransform() && node_.findAttribute("translate") ? transformMatrix(node_) : MMatrix());
    } else if (name == "inverseMatrix") {
        store(cell, node_.localMatrix().inverse());
    } else if (name == "dagLocalMatrix" || name == "dagLocalInverseMatrix") {
        const MMatrix m = node_.localMatrix() * held(node_, "offsetParentMatrix");
        store(cell, name == "dagLocalMatrix" ? m : m.inverse());
    } else if (name == "worldMatrix" || name == "worldInverseMatrix" || name == "parentMatrix" ||
               name == "parentInverseMatrix") {
        if (cell.isArray()) {
            cell.element(0);
            cell.dirty = false;
            return true;
        }
        const MMatrix m = name[0] == 'w' ? node_.worldMatrix() : node_.parentMatrix();
        store(cell, name.find("Inverse") != std::string::npos ? m.inverse() : m);
    } else if (name == "worldPosition") {
        if (cell.isArray()) {
            cell.element(0);
            cell.dirty = false;
            return true;
        }
        const MPoint p = MPoint(triple(node_, "localPosition")) * node_.worldMatrix();
        cell.value = Numeric(NumericType::Double, 3, p.x, p.y, p.z);
        setClean(cell);
    } else {
        return false;
    }
    return true;
}

MMatrix DagNode::parentMatrix() {
    const MMatrix offset = held(*this, "offsetParentMatrix");
    if (!parent) return offset;
    if (const Attribute* a = findAttribute("inheritsTransform")) {
        Cell& inherits = cell(*a);
        evaluate(inherits);
        if (inherits.number() == 0) return offset;
    }
    return offset * parent->worldMatrix();
}

std::unique_ptr<NodeBehavior> makeDagBehavior(Node& node) { return std::make_unique<DagBehavior>(*node.dag()); }

} // namespace host::scene
