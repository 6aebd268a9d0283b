#include "kit/SceneFixture.h"

#include "scene/DagBehavior.h"

#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MTransformationMatrix.h>

#include <array>
#include <cmath>

using namespace host::scene;

namespace {

using Triple = std::array<double, 3>;

struct OrderCase {
    const char* name;
    int order;
    Triple x, y, z; ///< where the unit vectors go
    friend void PrintTo(const OrderCase& c, std::ostream* out) { *out << c.name; }
};

class DagMatrix : public SceneFixture, public testing::WithParamInterface<OrderCase> {
protected:
    DagNode& make(const std::string& name, DagNode* parent = nullptr) {
        return *scene.createNode(*scene.findType("transform"), name, parent)->dag();
    }
    void set(DagNode& node, const char* attribute, const Triple& v) {
        scene.setValue(node.cell(attribute), Numeric(NumericType::Double, 3, v[0], v[1], v[2]));
    }
    MMatrix matrix(const std::string& plug) {
        Cell& cell = scene.findPlug(plug);
        evaluate(cell);
        return *matrixIn(cell.value);
    }
    static void expectMaps(const MMatrix& m, const Triple& from, const Triple& to, const char* what = "") {
        const MPoint p = MPoint(from[0], from[1], from[2]) * m;
        EXPECT_NEAR(p.x, to[0], 1e-12) << what;
        EXPECT_NEAR(p.y, to[1], 1e-12) << what;
        EXPECT_NEAR(p.z, to[2], 1e-12) << what;
    }
};

constexpr double quarter = M_PI / 2;

} // namespace

// Catches axes applied in another order, a wrong sense of turning, and a stored order that stands for another one.
// Three quarter turns: about X y goes to z and z to -y; about Y z to x and x to -z; about Z x to y and y to -x.
TEST_P(DagMatrix, RotateOrder) {
    const OrderCase& c = GetParam();
    DagNode& node = make("a");
    set(node, "rotate", {quarter, quarter, quarter});
    scene.setNumber(node.cell("rotateOrder"), c.order);
    const MMatrix m = transformMatrix(node);
    expectMaps(m, {1, 0, 0}, c.x, "x");
    expectMaps(m, {0, 1, 0}, c.y, "y");
    expectMaps(m, {0, 0, 1}, c.z, "z");
    EXPECT_EQ(run("xform -q -roo a"), c.name);
}

INSTANTIATE_TEST_SUITE_P(All, DagMatrix,
                         testing::Values(OrderCase{"xyz", 0, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
                                         OrderCase{"yzx", 1, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
                                         OrderCase{"zxy", 2, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
                                         OrderCase{"xzy", 3, {0, 1, 0}, {1, 0, 0}, {0, 0, -1}},
                                         OrderCase{"yxz", 4, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
                                         OrderCase{"zyx", 5, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}}),
                         [](const auto& info) { return std::string(info.param.name); });

// Catches a number from a file that names no order and leads out of a table.
TEST_F(DagMatrix, AnOrderThatThereIsNotStillTurns) {
    for (const int order : {6, 7, -1, 32767, -32768}) {
        DagNode& node = make("a");
        set(node, "rotate", {quarter, 0, 0});
        scene.setNumber(node.cell("rotateOrder"), order, Scene::LimitPolicy::Ignore);
        expectMaps(transformMatrix(node), {0, 1, 0}, {0, 0, 1}, "about one axis all orders agree");
    }
}

// Catches a factor of the matrix that stands at another place, or with the wrong sign.
TEST_F(DagMatrix, PivotsAndTheirTranslations) {
    DagNode& node = make("a");
    set(node, "scale", {3, 1, 1});
    set(node, "scalePivot", {2, 0, 0});
    expectMaps(transformMatrix(node), {2, 4, 5}, {2, 4, 5}, "the scale pivot stays");
    expectMaps(transformMatrix(node), {0, 0, 0}, {-4, 0, 0});
    set(node, "rotatePivot", {1, 0, 0});
    set(node, "rotate", {0, 0, quarter});
    set(node, "scalePivotTranslate", {0, 5, 0});
    set(node, "rotatePivotTranslate", {0, 0, 7});
    set(node, "translate", {10, 20, 30});
    // -2 | x 3 = -6 | + 2 = -4 | (-4, 5) | - 1: (-5, 5) | turned (-5, -5) | + 1: (-4, -5) | z 7 | + (10, 20, 30)
    expectMaps(transformMatrix(node), {0, 0, 0}, {6, 15, 37});
}

// Catches shears that are swapped or transposed, shear before scale, and a rotate axis that comes after the rotation.
TEST_F(DagMatrix, ShearAndRotateAxis) {
    DagNode& node = make("a");
    set(node, "shear", {2, 3, 4});
    expectMaps(transformMatrix(node), {1, 0, 0}, {1, 0, 0});
    expectMaps(transformMatrix(node), {0, 1, 0}, {2, 1, 0}, "xy");
    expectMaps(transformMatrix(node), {0, 0, 1}, {3, 4, 1}, "xz and yz");
    set(node, "scale", {1, 5, 1});
    expectMaps(transformMatrix(node), {0, 1, 0}, {10, 5, 0});
    DagNode& other = make("b");
    set(other, "rotateAxis", {quarter, 0, 0});
    set(other, "rotate", {0, 0, quarter});
    expectMaps(transformMatrix(other), {0, 1, 0}, {0, 0, 1}, "about X to z, which Z leaves");
    expectMaps(transformMatrix(other), {1, 0, 0}, {0, 1, 0});
}

// Catches a parent that is applied although it is not to be inherited, caches that survive the switch, and a parent
// matrix that disagrees with the world matrix.
TEST_F(DagMatrix, InheritsTransformOff) {
    DagNode &top = make("top"), &middle = make("middle", &top), &leaf = make("leaf", &middle);
    set(top, "translate", {100, 0, 0});
    set(middle, "translate", {0, 10, 0});
    set(leaf, "translate", {0, 0, 1});
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {100, 10, 1});
    scene.setNumber(middle.cell("inheritsTransform"), 0);
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {0, 10, 1});
    expectMaps(matrix("leaf.parentMatrix[0]"), {0, 0, 0}, {0, 10, 0});
    EXPECT_TRUE(matrix("middle.parentMatrix[0]") == MMatrix());
    EXPECT_TRUE(matrix("middle.parentInverseMatrix[0]") == MMatrix());
    set(top, "translate", {500, 0, 0});
    expectMaps(matrix("middle.worldMatrix[0]"), {0, 0, 0}, {0, 10, 0});
    scene.setNumber(middle.cell("inheritsTransform"), 1);
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {500, 10, 1});
    expectMaps(matrix("leaf.worldInverseMatrix[0]"), {500, 10, 1}, {0, 0, 0});
}

// Catches an offset matrix that is applied before the channels or behind the parent, is left out of the parent matrix,
// missed when it changes or is fed, or in the node's own matrix.
TEST_F(DagMatrix, OffsetParentMatrix) {
    DagNode &top = make("top"), &middle = make("middle", &top), &leaf = make("leaf", &middle);
    set(top, "translate", {0, 10, 0});
    set(middle, "translate", {1, 0, 0});
    set(leaf, "translate", {0, 0, 1});
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {1, 10, 1});
    const double quarterTurn[4][4] = {{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {5, 0, 0, 1}};
    scene.setValue(scene.findPlug("middle.offsetParentMatrix"), MMatrix(quarterTurn));
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {5, 11, 1}, "turned, moved by 5, then by 10");
    expectMaps(matrix("middle.matrix"), {0, 0, 0}, {1, 0, 0});
    expectMaps(matrix("middle.dagLocalMatrix"), {0, 0, 0}, {5, 1, 0});
    expectMaps(matrix("middle.parentMatrix[0]"), {0, 0, 0}, {5, 10, 0});
    expectMaps(matrix("leaf.parentInverseMatrix[0]"), {5, 11, 0}, {0, 0, 0});
    DagNode& driver = make("driver");
    scene.connect(scene.findPlug("driver.matrix"), scene.findPlug("middle.offsetParentMatrix"));
    set(driver, "translate", {0, 0, 100});
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {1, 10, 101});
    run("xform -ws -t 7 8 9 middle");
    expectMaps(matrix("middle.worldMatrix[0]"), {0, 0, 0}, {7, 8, 9});
}

// Catches a joint's factors in another order, the parent's scale left in or taken out against the attribute, pivots and
// shear that joints do not have, and a rotation set in the world that forgets the orientation.
TEST_F(DagMatrix, Joints) {
    const NodeType& type = *scene.findType("joint");
    DagNode& hip = *scene.createNode(type, "hip")->dag();
    DagNode& knee = *scene.createNode(type, "knee", &hip)->dag();
    set(hip, "scale", {2, 4, 1});
    set(hip, "rotatePivot", {9, 9, 9});
    set(hip, "shear", {9, 9, 9});
    expectMaps(transformMatrix(hip), {1, 1, 1}, {2, 4, 1});
    // y by X to z, that by the orientation about Y to x.
    set(hip, "rotate", {quarter, 0, 0});
    set(hip, "jointOrient", {0, quarter, 0});
    expectMaps(transformMatrix(hip), {0, 1, 0}, {4, 0, 0});
    scene.connect(scene.findPlug("hip.scale"), scene.findPlug("knee.inverseScale"));
    set(knee, "translate", {1, 1, 0});
    set(knee, "jointOrient", {0, 0, quarter});
    expectMaps(transformMatrix(knee), {1, 0, 0}, {1, 1.25, 0}, "turned to y, a quarter of it, moved");
    scene.setNumber(knee.cell("segmentScaleCompensate"), 0);
    expectMaps(transformMatrix(knee), {1, 0, 0}, {1, 2, 0});
    run("xform -ws -ro 0 0 0 knee");
    expectMaps(MTransformationMatrix(knee.worldMatrix()).rotation().asMatrix(), {1, 0, 0}, {1, 0, 0});
}

// Catches inverses in the wrong order, of the wrong matrix, or stale after a change above or another parent.
TEST_F(DagMatrix, ParentInverse) {
    DagNode &top = make("top"), &leaf = make("leaf", &top);
    set(top, "scale", {2, 2, 2});
    set(top, "translate", {6, 0, 0});
    set(leaf, "translate", {1, 2, 3});
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {8, 4, 6});
    expectMaps(matrix("leaf.parentInverseMatrix[0]"), {8, 4, 6}, {1, 2, 3});
    expectMaps(matrix("leaf.worldInverseMatrix[0]"), {8, 4, 6}, {0, 0, 0});
    expectMaps(matrix("leaf.inverseMatrix"), {1, 2, 3}, {0, 0, 0});
    expectMaps(matrix("leaf.matrix"), {0, 0, 0}, {1, 2, 3});
    set(top, "rotate", {0, 0, quarter});
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {2, 2, 6});
    expectMaps(matrix("leaf.parentInverseMatrix[0]"), {2, 2, 6}, {1, 2, 3});
    scene.reparent(leaf, nullptr);
    EXPECT_TRUE(matrix("leaf.parentInverseMatrix[0]") == MMatrix());
    expectMaps(matrix("leaf.worldMatrix[0]"), {0, 0, 0}, {1, 2, 3});
}

// Catches a matrix that is asked for through a connection and misses a change above the node.
TEST_F(DagMatrix, ConnectedWorldMatrixFollows) {
    DagNode &top = make("top"), &leaf = make("leaf", &top);
    DagNode& reader = make("reader");
    scene.addAttribute(reader, Attribute::matrix("seen", "seen"));
    scene.connect(scene.findPlug("leaf.worldMatrix[0]"), scene.findPlug("reader.seen"));
    set(leaf, "translate", {1, 0, 0});
    expectMaps(matrix("reader.seen"), {0, 0, 0}, {1, 0, 0});
    set(top, "translate", {0, 7, 0});
    expectMaps(matrix("reader.seen"), {0, 0, 0}, {1, 7, 0});
    scene.setNumber(leaf.cell("inheritsTransform"), 0);
    expectMaps(matrix("reader.seen"), {0, 0, 0}, {1, 0, 0});
}

// Catches a locator whose world position is not computed, or misses a move of its own or of what is above it.
TEST_F(DagMatrix, WorldPositionOfALocator) {
    DagNode &top = make("top"), &leaf = make("leaf", &top);
    auto shape = scene.createNode(*scene.findType("locator"), "spot", &leaf);
    const auto at = [&] {
        Cell& cell = scene.findPlug("spot.worldPosition[0]");
        evaluate(cell);
        const auto& n = std::get<Numeric>(cell.value);
        return Triple{n.get(0), n.get(1), n.get(2)};
    };
    set(leaf, "translate", {1, 2, 3});
    set(*shape->dag(), "localPosition", {10, 0, 0});
    EXPECT_EQ(at(), (Triple{11, 2, 3}));
    set(top, "scale", {2, 1, 1});
    EXPECT_EQ(at(), (Triple{22, 2, 3}));
    set(*shape->dag(), "localPosition", {0, 0, 5});
    EXPECT_EQ(at(), (Triple{2, 2, 8}));
}
