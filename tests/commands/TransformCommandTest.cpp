#include "kit/SceneFixture.h"

#include <gmock/gmock.h>

using testing::DoubleNear;
using testing::Pointwise;

namespace {

struct NumberCase {
    const char* name;
    const char* script;
    std::vector<double> expected;
    friend void PrintTo(const NumberCase& c, std::ostream* out) { *out << c.name; }
};

struct TransformTest : SceneFixture, testing::WithParamInterface<NumberCase> {};

MATCHER(IsNear, "") { return std::abs(std::get<0>(arg) - std::get<1>(arg)) < 1e-9; }

} // namespace

// Points are row vectors. A turn by 90 degrees about y takes (x, y, z) to (z, y, -x), about z to (-y, x, z), about x
// to (x, -z, y); the expected numbers below follow from these by hand.
TEST_P(TransformTest, GivesTheNumbersWorkedOutByHand) {
    EXPECT_THAT(numbers(GetParam().script), Pointwise(IsNear(), GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Commands, TransformTest,
    testing::Values(
        // world = 2 * (z, y, -x), so (5, 6, 7) is reached from (-3.5, 3, 2.5).
        NumberCase{"WorldPlaceUnderTurnedScaledParent",
                   "group -em -n p; group -em -n c -p p; rotate 0 90 0 p; scale 2 2 2 p;"
                   "xform -ws -t 5 6 7 c; getAttr c.t",
                   {-3.5, 3, 2.5}},
        NumberCase{"WorldStepUnderTurnedScaledParent",
                   "group -em -n p; group -em -n c -p p; rotate 0 90 0 p; scale 2 2 2 p;"
                   "move -r 0 0 4 c; getAttr c.t",
                   {-2, 0, 0}},
        NumberCase{"MoveOneAxisInTheWorld",
                   "group -em -n p; group -em -n c -p p; move 1 1 1 p; move 1 2 3 c; move -y 9 c; getAttr c.t",
                   {0, 8, 2}},
        NumberCase{"ObjectStepFollowsItsTurn",
                   "group -em -n c; rotate 0 90 0 c; move -r -os 1 0 0 c; getAttr c.t",
                   {0, 0, -1}},
        NumberCase{"LocalStepDoesNot", "group -em -n c; rotate 0 90 0 c; move -r -ls 1 0 0 c; getAttr c.t", {1, 0, 0}},
        // The origin turns about (1, 0, 0) to (1, -1, 0).
        NumberCase{"TurnAboutAPivot",
                   "group -em -n c; xform -piv 1 0 0 c; rotate 0 0 90 c; getAttr c.worldMatrix",
                   {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, -1, 0, 1}},
        // 3 times about (2, 0, 0): the origin goes to (-4, 0, 0).
        NumberCase{"ScaleAboutAPivot",
                   "group -em -n c; xform -sp 2 0 0 c; scale 3 3 3 c; getAttr c.matrix",
                   {3, 0, 0, 0, 0, 3, 0, 0, 0, 0, 3, 0, -4, 0, 0, 1}},
        NumberCase{"APivotThatMovesLeavesTheMatrix",
                   "group -em -n c; rotate 0 0 90 c; move 5 0 0 c; xform -piv 1 0 0 c; getAttr c.matrix",
                   {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1}},
        // (1, 0, 0) lies at (5, 1, 0), which makes the balance (-1, 1, 0).
        NumberCase{"TheBalanceOfThatPivot",
                   "group -em -n c; rotate 0 0 90 c; move 5 0 0 c; xform -piv 1 0 0 c; getAttr c.rotatePivotTranslate",
                   {-1, 1, 0}},
        NumberCase{"WorldPivot",
                   "group -em -n c; rotate 0 0 90 c; move 5 0 0 c; xform -os -rp 1 0 0 c; xform -q -ws -rp c",
                   {5, 1, 0}},
        NumberCase{"PivotGivenInTheWorld",
                   "group -em -n c; rotate 0 0 90 c; move 5 0 0 c; xform -ws -rp 5 1 0 c; xform -q -rp c",
                   {1, 0, 0}},
        NumberCase{
            "MoveThePivotToAPlace", "group -em -n c; xform -piv 1 2 3 c; move -rpr 0 0 0 c; getAttr c.t", {-1, -2, -3}},
        // x first: (0, 1, 0) to (0, 0, 1), which z leaves.
        NumberCase{"OrderXyz",
                   "group -em -n c; group -em -n e -p c; move 0 1 0 e; rotate 90 0 90 c; xform -q -ws -m e",
                   {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 1}},
        // z first: (0, 1, 0) to (-1, 0, 0), which x leaves; x to y to z, z to -y.
        NumberCase{
            "OrderZyx",
            "group -em -n c; xform -roo zyx c; group -em -n e -p c; move 0 1 0 e; rotate 90 0 90 c; xform -q -ws -m e",
            {0, 0, 1, 0, -1, 0, 0, 0, 0, -1, 0, 0, -1, 0, 0, 1}},
        NumberCase{"ANewOrderLeavesTheMatrix",
                   "group -em -n c; rotate 90 0 90 c; xform -roo zyx c; getAttr c.matrix",
                   {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}},
        NumberCase{
            "ANewOrderAlone", "group -em -n c; rotate 90 0 90 c; xform -roo zyx -p 0 c; getAttr c.r", {90, 0, 90}},
        // Shears xy, xz, yz stand at [1][0], [2][0], [2][1]; scale comes first.
        NumberCase{"ShearAfterScale",
                   "group -em -n c; xform -sh 1 2 3 -s 2 3 4 c; getAttr c.matrix",
                   {2, 0, 0, 0, 3, 3, 0, 0, 8, 12, 4, 0, 0, 0, 0, 1}},
        NumberCase{"AMatrixIsTakenApart",
                   "group -em -n c; xform -m 2 0 0 0 3 3 0 0 8 12 4 0 5 6 7 1 c; xform -q -sh c",
                   {1, 2, 3}},
        NumberCase{"AMirrorStaysOne",
                   "group -em -n c; xform -m -1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 c; xform -q -m c",
                   {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
        NumberCase{"AWorldMatrixUnderAParent",
                   "group -em -n p; move 1 0 0 p; rotate 0 0 90 p; group -em -n c -p p;"
                   "xform -ws -m 1 0 0 0 0 1 0 0 0 0 1 0 1 4 0 1 c; getAttr c.t",
                   {4, 0, 0}},
        NumberCase{
            "ParentKeepsThePlace",
            "group -em -n p; rotate 0 90 0 p; scale 2 2 2 p; group -em -n c; move 4 6 8 c; parent c p; getAttr c.t",
            {-4, 3, 2}},
        NumberCase{"ParentKeepsTheTurn",
                   "group -em -n p; rotate 0 90 0 p; scale 2 2 2 p; group -em -n c; parent c p; getAttr c.r",
                   {0, -90, 0}},
        NumberCase{"ParentKeepsPivots",
                   "group -em -n p; move 10 0 0 p; group -em -n c; xform -piv 1 0 0 c; rotate 0 0 90 c; parent c p;"
                   "getAttr c.worldMatrix",
                   {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, -1, 0, 1}},
        NumberCase{"ParentRelativeKeepsTheNumbers",
                   "group -em -n p; move 10 0 0 p; group -em -n c; move 1 2 3 c; parent -r c p; getAttr c.t",
                   {1, 2, 3}},
        NumberCase{"WorldTurnUnderAParent",
                   "group -em -n p; rotate 0 90 0 p; group -em -n c -p p; rotate -r -ws 0 -90 0 c; getAttr c.r",
                   {0, -90, 0}},
        // Turned about its own x after a turn about z: its y axis goes to the world's z.
        NumberCase{"ObjectTurnComesFirst",
                   "group -em -n c; rotate 0 0 90 c; rotate -r -os 90 0 0 c; getAttr c.matrix",
                   {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 1}},
        NumberCase{
            "EulerAngleSum", "group -em -n c; rotate 10 0 90 c; rotate -r -eu 5 0 0 c; getAttr c.r", {15, 0, 90}},
        NumberCase{"ScaleRelative", "group -em -n c; scale 2 3 4 c; scale -r -x 5 c; getAttr c.s", {10, 3, 4}},
        NumberCase{
            "InheritsNothing",
            "group -em -n p; move 9 9 9 p; group -em -n c -p p; connectAttr p.intermediateObject c.inheritsTransform;"
            "xform -ws -t 1 2 3 c; getAttr c.t",
            {1, 2, 3}},
        NumberCase{
            "GroupTurnsAboutItsMiddle", "polyCube -n b; move 4 0 0 b; group -n g b; getAttr g.rotatePivot", {4, 0, 0}},
        NumberCase{"BoundsOfATurnedBox",
                   "polyCube -w 2 -h 4 -d 6 -n b; rotate 0 90 0 b; move 10 0 0 b; exactWorldBoundingBox b",
                   {7, -2, -1, 13, 2, 1}},
        NumberCase{"BoundsOfTwo",
                   "polyCube -n a; polyCube -n b; move 3 4 5 b; exactWorldBoundingBox a b",
                   {-0.5, -0.5, -0.5, 3.5, 4.5, 5.5}},
        NumberCase{"BoundsOfNothing", "group -em -n g; exactWorldBoundingBox g", {0, 0, 0, 0, 0, 0}},
        NumberCase{"FreezingMovesThePoints",
                   "polyCube -n b; scale 2 1 1 b; move 3 0 0 b; makeIdentity -apply true b; polyEvaluate -b b",
                   {2, 4, -0.5, 0.5, -0.5, 0.5}},
        NumberCase{"FreezingAGroup",
                   "polyCube -n b; move 1 0 0 b; group -em -n g; parent b g; rotate 0 0 90 g; makeIdentity -a 1 g; "
                   "polyEvaluate -b b",
                   {-0.5, 0.5, 0.5, 1.5, -0.5, 0.5}},
        NumberCase{"UngroupKeepsThePlace",
                   "group -em -n c; group -n g c; move 1 2 3 g; scale 2 2 2 g; ungroup g; getAttr c.worldMatrix",
                   {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 1, 2, 3, 1}}),
    [](const auto& info) { return info.param.name; });

namespace {
struct UnitTest : SceneFixture {};
} // namespace

/// Fails when a command forgets that scripts speak in the user's units: here metres, radians and seconds.
TEST_F(UnitTest, NumbersAreInTheUsersUnits) {
    run("polyCube -n b -w 200; move 100 0 0 b; rotate 0 0 90 b; setKeyframe -at ty -t 25 -v 300 b");
    host::setLinearUnit(host::LinearUnit::Metre);
    host::setAngularUnit(host::AngularUnit::Radian);
    host::setTimeUnit(host::TimeUnit{host::ticksPerSecond});
    EXPECT_THAT(numbers("getAttr b.t"), Pointwise(IsNear(), {1.0, 3.0, 0.0}));
    EXPECT_THAT(numbers("xform -q -ro b"), Pointwise(IsNear(), {0.0, 0.0, 1.5707963267948966}));
    EXPECT_THAT(numbers("exactWorldBoundingBox b"), Pointwise(IsNear(), {0.995, 2.0, -0.005, 1.005, 4.0, 0.005}));
    EXPECT_EQ(run("polyCube -q -w b"), "2");
    EXPECT_EQ(run("polyCube -e -w 1 b; getAttr polyCube1.width"), "1");
    EXPECT_NEAR(numbers("keyframe -q -tc b.ty").at(0), 25 / 24.0, 1e-12);
    EXPECT_EQ(run("keyframe -q -vc b.ty"), "3");
    run("move -x 2 b");
    host::setLinearUnit(host::LinearUnit::Centimetre);
    EXPECT_EQ(run("getAttr b.tx"), "200");
}
