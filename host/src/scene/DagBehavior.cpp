#include "scene/DagBehavior.h"

#include "scene/Evaluation.h"
#include "scene/Scene.h"

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

} // namespace

MMatrix transformMatrix(DagNode& n) {
    const MVector s = triple(n, "scale"), sh = triple(n, "shear"), sp = triple(n, "scalePivot"),
                  spt = triple(n, "scalePivotTranslate"), rp = triple(n, "rotatePivot"),
                  rpt = triple(n, "rotatePivotTranslate"), ra = triple(n, "rotateAxis"), r = triple(n, "rotate"),
                  t = triple(n, "translate");
    Cell& order = n.cell("rotateOrder");
    evaluate(order);
    const auto rotateOrder = rotationOrder(order.number());

    MMatrix m;
    translate(m, sp, -1);
    MMatrix scale, shear;
    scale(0, 0) = s.x;
    scale(1, 1) = s.y;
    scale(2, 2) = s.z;
    shear(1, 0) = sh.x;
    shear(2, 0) = sh.y;
    shear(2, 1) = sh.z;
    m = m * scale * shear;
    translate(m, sp);
    translate(m, spt);
    translate(m, rp, -1);
    m = m * MEulerRotation(ra.x, ra.y, ra.z).asMatrix() * MEulerRotation(r.x, r.y, r.z, rotateOrder).asMatrix();
    translate(m, rp);
    translate(m, rpt);
    translate(m, t);
    return m;
}

bool DagBehavior::compute(Cell& cell) {
    const std::string& name = cell.attribute.longName;
    if (name == "matrix" || name == "xformMatrix") {
        store(cell, node_.isTransform() && node_.findAttribute("translate") ? transformMatrix(node_) : MMatrix());
    } else if (name == "inverseMatrix") {
        store(cell, node_.localMatrix().inverse());
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

std::unique_ptr<NodeBehavior> makeDagBehavior(Node& node) { return std::make_unique<DagBehavior>(*node.dag()); }

} // namespace host::scene
