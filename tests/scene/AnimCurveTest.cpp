#include "kit/SceneFixture.h"

#include "scene/AnimCurve.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>

using namespace host::scene;
using testing::ElementsAre;
using testing::Pair;

namespace {

struct Knot {
    double time, value;
};

struct CurveCase {
    const char* name;
    std::vector<Knot> keys;
    Tangent in, out;
    int pre, post;
    std::vector<Knot> expected;
    friend void PrintTo(const CurveCase& c, std::ostream* out) { *out << c.name; }
};

constexpr int constant = 0, linear = 1, cycle = 3, cycleWithOffset = 4, oscillate = 5;

/// A transform "g" whose translateX is animated; times in ticks, values in centimetres.
class AnimCurve : public SceneFixture, public testing::WithParamInterface<CurveCase> {
protected:
    AnimCurve() { run("group -em -n g"); }
    Cell& plug() { return scene.findPlug("g.translateX"); }
    double at(double ticks) {
        scene.setTime(ticks);
        evaluate(plug());
        return plug().number();
    }
    /// Sets a number of the curve, as one step of undo.
    void put(const std::string& name, double value) {
        const UndoQueue::Chunk step(scene.undo);
        scene.setNumber(scene.findPlug(curveOf(plug())->name + "." + name), value);
    }
    void key(double time, double value, Tangent in = Tangent::Linear, Tangent out = Tangent::Linear) {
        setKey(scene, plug(), time, value, in, out);
    }
};

const std::vector<Knot> peak{{0, 0}, {1000, 10}, {3000, -10}}, rise{{0, 0}, {1000, 10}, {3000, 40}},
    wave{{1000, 10}, {3000, 30}, {5000, 20}};

} // namespace

// Catches a wrong formula of a tangent kind, an end of a segment that belongs to its neighbour, and a wrong number of
// turns, direction or offset in what lies before the first and after the last key.
TEST_P(AnimCurve, HasTheValues) {
    const CurveCase& c = GetParam();
    for (const Knot& k : c.keys) key(k.time, k.value, c.in, c.out);
    Node& curve = *curveOf(plug());
    scene.setNumber(curve.cell("preInfinity"), c.pre);
    scene.setNumber(curve.cell("postInfinity"), c.post);
    for (const Knot& k : c.expected) EXPECT_NEAR(at(k.time), k.value, 1e-9) << "at " << k.time;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, AnimCurve,
    testing::Values(
        CurveCase{"Linear",
                  peak,
                  Tangent::Linear,
                  Tangent::Linear,
                  constant,
                  constant,
                  {{-500, 0}, {0, 0}, {250, 2.5}, {1000, 10}, {2000, 0}, {3000, -10}, {5000, -10}}},
        // A quarter of the way a cubic with level ends has gone 3/16 - 2/64 of the height.
        CurveCase{
            "Flat", peak, Tangent::Flat, Tangent::Flat, constant, constant, {{250, 1.5625}, {500, 5}, {1500, 6.875}}},
        CurveCase{"AutoIsLevelAtAPeak",
                  peak,
                  Tangent::Auto,
                  Tangent::Auto,
                  constant,
                  constant,
                  {{250, 1.5625}, {1500, 6.875}}},
        // Straight to the neighbour at the ends (0.01, -0.01 a tick), between the neighbours inside (-10 / 3000); half
        // way an eighth of the difference of the slopes, times the span, comes to the middle.
        CurveCase{"Spline",
                  peak,
                  Tangent::Spline,
                  Tangent::Spline,
                  constant,
                  constant,
                  {{500, 5 + (0.01 + 1.0 / 300) * 1000 / 8}, {2000, 0 + (-1.0 / 300 + 0.01) * 2000 / 8}}},
        CurveCase{"SplineOfTwoKeysIsStraight",
                  {{0, 0}, {1000, 10}},
                  Tangent::Spline,
                  Tangent::Spline,
                  constant,
                  constant,
                  {{250, 2.5}, {700, 7}}},
        // The values 10 and 10.01 are close: the curve goes straight between them, and as a spline before them, where
        // the slope is 0.01 from the end and 10.01 / 2000 from the middle.
        CurveCase{"ClampedDoesNotSwingBetweenCloseValues",
                  {{0, 0}, {1000, 10}, {2000, 10.01}, {3000, 0}},
                  Tangent::Clamped,
                  Tangent::Clamped,
                  constant,
                  constant,
                  {{500, 5 + (0.01 - 10.01 / 2000) * 1000 / 8}, {1250, 10.0025}, {1500, 10.005}}},
        // The slope between the neighbours would be 20.2 / 2000; three times the flat side's 0.2 / 1000 is less.
        CurveCase{"PlateauDoesNotSwingBeyondTheKeys",
                  {{0, 0}, {1000, 0.2}, {2000, 20.2}, {3000, 20.2}},
                  Tangent::Plateau,
                  Tangent::Plateau,
                  constant,
                  constant,
                  {{500, 0.1 - 0.0006 * 1000 / 8}, {1500, 10.2 + 0.0006 * 1000 / 8}, {2500, 20.2}}},
        // The slope at the middle key is 40 / 3000; halfway a cubic gets 1/8 of slope times span from either end.
        CurveCase{"SmoothFollowsTheNeighbours",
                  rise,
                  Tangent::Auto,
                  Tangent::Auto,
                  constant,
                  constant,
                  {{500, 5 - 40.0 / 3 / 8}, {1000, 10}, {2000, 25 + 80.0 / 3 / 8}}},
        // Straight out of a key, level into the next: (u^3 - 2 u^2 + u) 10 + (3 u^2 - 2 u^3) 10 at u = 1/2.
        CurveCase{"TwoKindsInOneSegment", peak, Tangent::Flat, Tangent::Linear, constant, constant, {{500, 6.25}}},
        CurveCase{
            "Step", peak, Tangent::Step, Tangent::Step, constant, constant, {{0, 0}, {999, 0}, {1000, 10}, {2999, 10}}},
        CurveCase{"StepNext",
                  peak,
                  Tangent::StepNext,
                  Tangent::StepNext,
                  constant,
                  constant,
                  {{0, 0}, {1, 10}, {1000, 10}, {1001, -10}}},
        CurveCase{"ConstantEnds", wave, Tangent::Linear, Tangent::Linear, constant, constant, {{0, 10}, {9000, 20}}},
        CurveCase{"LinearEnds",
                  wave,
                  Tangent::Linear,
                  Tangent::Linear,
                  linear,
                  linear,
                  {{0, 0}, {-1000, -10}, {2000, 20}, {7000, 10}}},
        CurveCase{"LinearEndsOfLevelKeys", wave, Tangent::Flat, Tangent::Flat, linear, linear, {{0, 10}, {7000, 20}}},
        CurveCase{"Cycle",
                  wave,
                  Tangent::Linear,
                  Tangent::Linear,
                  cycle,
                  cycle,
                  {{-1000, 30}, {0, 25}, {5000, 20}, {6000, 20}, {7000, 30}, {10000, 20}}},
        CurveCase{"CycleWithOffset",
                  wave,
                  Tangent::Linear,
                  Tangent::Linear,
                  cycleWithOffset,
                  cycleWithOffset,
                  {{0, 15}, {-4000, 5}, {6000, 30}, {10500, 45}}},
        CurveCase{"Oscillate",
                  wave,
                  Tangent::Linear,
                  Tangent::Linear,
                  oscillate,
                  oscillate,
                  {{0, 20}, {-4000, 25}, {6000, 25}, {10500, 25}}},
        CurveCase{"SidesDiffer", wave, Tangent::Linear, Tangent::Linear, constant, cycle, {{0, 10}, {6000, 20}}},
        CurveCase{"OneKey", {{1000, 7}}, Tangent::Linear, Tangent::Linear, linear, oscillate, {{0, 7}, {9000, 7}}}),
    [](const auto& info) { return std::string(info.param.name); });

// Catches keys that are kept in the order of their making, doubled at one time, or left behind by a removal.
TEST_F(AnimCurve, KeysStayInOrderOfTime) {
    for (const double time : {5000.0, 1000.0, 3000.0, -2000.0}) key(time, time / 100);
    key(3000, 99);
    Node& curve = *curveOf(plug());
    EXPECT_THAT(keysOf(curve), ElementsAre(Pair(-2000, -20), Pair(1000, 10), Pair(3000, 99), Pair(5000, 50)));
    EXPECT_EQ(removeKeys(scene, plug(), 1000, 3000), 2);
    EXPECT_THAT(keysOf(curve), ElementsAre(Pair(-2000, -20), Pair(5000, 50)));
    EXPECT_EQ(at(1500), 15) << "halfway between the keys that are left";
    EXPECT_EQ(removeKeys(scene, plug(), 0, 4999), 0);
    EXPECT_EQ(removeKeys(scene, plug(), -1e9, 1e9), 2);
    EXPECT_EQ(curveOf(plug()), nullptr);
    EXPECT_EQ(removeKeys(scene, plug(), -1e9, 1e9), 0);
    EXPECT_TRUE(scene.findNodes("g_translateX").empty()) << "a curve without keys";
}

// Catches a curve whose keys are not found through its plugs, or are others there; sizes and sets of elements, undo of
// a single number, and keys that are numbered in another order than their times.
TEST_F(AnimCurve, KeysArePlugs) {
    key(0, 1);
    key(500, 2, Tangent::Linear, Tangent::Step);
    const std::string curve = curveOf(plug())->name;
    EXPECT_EQ(run("getAttr -s " + curve + ".ktv"), "2");
    EXPECT_EQ(run("getAttr " + curve + ".ktv[1].kv"), "2");
    EXPECT_EQ(run("getAttr " + curve + ".kot"), "2 5");
    EXPECT_EQ(run("getAttr -mi " + curve + ".keyTanInX"), "");
    put("ktv[0].kt", 2000);
    put("kix[0]", 0.5);
    EXPECT_THAT(keysOf(*curveOf(plug())), ElementsAre(Pair(500, 2), Pair(2000, 1)));
    run("undo; undo");
    EXPECT_THAT(keysOf(*curveOf(plug())), ElementsAre(Pair(0, 1), Pair(500, 2)));
    put("ktv[7].kv", 3);
    EXPECT_EQ(run("getAttr -mi " + curve + ".ktv"), "0 1 7");
    run("undo");
    run("duplicate -un -n h g");
    EXPECT_THAT(keysOf(*curveOf(scene.findPlug("h.tx"))), ElementsAre(Pair(0, 1), Pair(500, 2)));
}

// Catches keys that cost more than 64 bytes, and a curve that is put in order anew at each evaluation.
TEST_F(AnimCurve, KeysAreSmall) {
    for (int k = 0; k < 1000; ++k) key(250.0 * k, k % 7);
    EXPECT_EQ(at(250.0 * 500 + 125), 500 % 7 + 0.5);
    EXPECT_LE(curveKeys(*curveOf(plug()))->bytes(), 64u * 1000);
}

// Catches a change of time that marks the scene as changed.
TEST_F(AnimCurve, TimeIsNoChangeOfTheScene) {
    key(0, 0);
    key(1000, 10);
    scene.modified = false;
    EXPECT_EQ(at(500), 5);
    EXPECT_FALSE(scene.modified);
}

// Catches a curve that outlives the one node that it drives, or does not come back with it.
TEST_F(AnimCurve, CurvesGoWithTheirNode) {
    run("setKeyframe -at tx g; setKeyframe -at ty g; group -em -n other; connectAttr g_translateY.output other.sy");
    run("delete g");
    EXPECT_EQ(run("ls -type animCurve"), "g_translateY");
    run("undo");
    EXPECT_EQ(run("ls -type animCurve"), "g_translateX g_translateY");
    EXPECT_EQ(run("connectionInfo -sfd g.tx"), "g_translateX.output");
}

// Catches fixed tangents that do not keep what the key had before, and ones read as other than vectors in seconds:
// 0.5 seconds and 3 centimetres are a slope of 6 a second, or weighted a control point 1000 ticks and 1 on.
TEST_F(AnimCurve, FixedTangents) {
    key(0, 0, Tangent::Flat, Tangent::Linear);
    key(6000, 12, Tangent::Fixed, Tangent::Fixed);
    put("kot[0]", 1);
    put("kox[0]", 0.5);
    put("koy[0]", 3);
    EXPECT_NEAR(at(3000), 6 + 6.0 / 8, 1e-9) << "level at the end";
    put("kox[0]", 0);
    EXPECT_NEAR(at(3000), 6 + 5729577.9485111479 / 8, 1e-3) << "as good as vertical";
    put("kox[0]", 0.5);
    put("wgt", 1);
    // Control points at 1/6 (height 1) and 2/3 (height 12) of a second: at u = 1/2 the time is 3/8 (1/6 + 2/3) + 1/8 =
    // 7/16 and the height 3/8 (1 + 12) + 12/8 = 6.375.
    EXPECT_NEAR(at(6000 * 7.0 / 16), 6.375, 1e-9);
    run("setKeyframe -at tz -t 1 -v 0 -itt spline -ott spline g; setKeyframe -at tz -t 9 -v 5 -itt auto -ott spline g;"
        "setKeyframe -at tz -t 17 -v 2 -itt spline -ott spline g");
    scene.setTime(3250);
    const double before = numbers("getAttr g.tz").at(0);
    EXPECT_EQ(run("keyTangent -itt fixed -ott fixed g.tz; keyTangent -q -ott g.tz"), "fixed fixed fixed");
    EXPECT_NEAR(numbers("getAttr g.tz").at(0), before, 1e-6);
}

// Catches a removal or a new key that gives the tangents of one key to another.
TEST_F(AnimCurve, TangentsStayWithTheirKeys) {
    key(0, 0);
    key(1000, 10, Tangent::Linear, Tangent::Step);
    key(2000, 20);
    key(500, 5);
    EXPECT_EQ(at(1999), 10);
    removeKeys(scene, plug(), 0, 500);
    EXPECT_EQ(at(1999), 10);
    EXPECT_EQ(at(1000), 10);
}

// Catches a curve that follows the scene's clock although something else drives it, or goes stale when that changes.
TEST_F(AnimCurve, InputThatIsConnectedTakesThePlaceOfTime) {
    key(0, 0);
    key(1000, 10);
    scene.addAttribute(*scene.findNode("g"), Attribute::unit("clock", "clk", AttributeType::Time));
    Cell& clock = scene.findPlug("g.clock");
    scene.setNumber(clock, 250);
    scene.connect(clock, curveOf(plug())->cell("input"));
    EXPECT_EQ(at(1000), 2.5);
    scene.setNumber(clock, 750);
    EXPECT_EQ(at(0), 7.5);
    scene.disconnect(clock, curveOf(plug())->cell("input"));
    EXPECT_EQ(at(500), 5);
}

// Catches values or times stored in the user's units: they would change with them.
TEST_F(AnimCurve, KeysAreKeptInInternalUnits) {
    host::setLinearUnit(host::LinearUnit::Metre);
    run("setKeyframe -at tx -t 24 -v 2 g; setKeyframe -at ry -t 24 -v 180 g; setKeyframe -at sx -t 24 -v 3 g");
    EXPECT_THAT(keysOf(*curveOf(plug())), ElementsAre(Pair(6000, 200)));
    EXPECT_NEAR(keysOf(*curveOf(scene.findPlug("g.ry"))).at(0).second, M_PI, 1e-12);
    EXPECT_THAT(keysOf(*curveOf(scene.findPlug("g.sx"))), ElementsAre(Pair(6000, 3)));
    host::setTimeUnit({240}); // 25 frames a second
    EXPECT_EQ(run("keyframe -q -tc g.tx"), "25");
    EXPECT_EQ(run("getAttr -time 25 g.tx"), "2");
    host::setLinearUnit(host::LinearUnit::Centimetre);
    EXPECT_EQ(run("getAttr -time 25 g.tx"), "200");
}

// Catches a curve of one kind for everything: it would convert angles as lengths.
TEST_F(AnimCurve, KindFitsTheAttribute) {
    scene.addAttribute(*scene.findNode("g"), Attribute::unit("clock", "clk", AttributeType::Time));
    const std::pair<const char*, const char*> kinds[] = {
        {"g.tx", "animCurveTL"}, {"g.rotatePivotX", "animCurveTL"}, {"g.rz", "animCurveTA"},
        {"g.sy", "animCurveTU"}, {"g.visibility", "animCurveTU"},   {"g.clock", "animCurveTT"}};
    for (const auto& [name, kind] : kinds) {
        Cell& cell = scene.findPlug(name);
        setKey(scene, cell, 0, 1, Tangent::Linear, Tangent::Linear);
        EXPECT_EQ(curveOf(cell)->type.name, kind) << name;
    }
}

// Catches keys that break a lock or a connection, and a curve that is left behind by a refusal.
TEST_F(AnimCurve, RefusesWhatCannotBeAnimated) {
    scene.setLocked(scene.findPlug("g.ty"), true);
    scene.connect(scene.findPlug("g.sx"), scene.findPlug("g.sy"));
    for (const char* name : {"g.ty", "g.sy", "g.translate", "g.matrix", "g.worldMatrix"})
        EXPECT_THROW(setKey(scene, scene.findPlug(name), 0, 1, Tangent::Flat, Tangent::Flat), SceneError) << name;
    EXPECT_EQ(run("ls -type animCurve"), "");
}

// Catches keys that land at a wrong place when they come from behind, from the middle outward or scattered, go from
// anywhere, or are taken back.
TEST_F(AnimCurve, KeysComeAndGoInAnyOrder) {
    constexpr int count = 301;
    const std::vector<std::pair<const char*, int (*)(int)>> orders{
        {"backward", [](int i) { return -i; }},
        {"outward", [](int i) { return i % 2 ? i : -i; }},
        {"inward", [](int i) { return i % 2 ? i - count : count - i; }},
        {"scattered", [](int i) { return i * 97 % count; }}};
    for (const auto& [name, order] : orders) {
        run("delete g; group -em -n g");
        std::map<double, double> expected, half;
        const auto shown = [&] {
            const auto keys = keysOf(*curveOf(plug()));
            return std::map<double, double>(keys.begin(), keys.end());
        };
        for (int i = 0; i < count; ++i) {
            if (i == count / 2) half = expected;
            const UndoQueue::Chunk step(scene.undo);
            key(order(i) * 250.0, i);
            expected[order(i) * 250.0] = i;
        }
        EXPECT_EQ(shown(), expected) << name;
        EXPECT_TRUE(std::ranges::is_sorted(keysOf(*curveOf(plug())))) << name;
        EXPECT_EQ(run("getAttr -size " + curveOf(plug())->name + ".ktv"), std::to_string(count)) << name;
        const auto all = expected;
        int gone = 0;
        for (auto it = expected.begin(); it != expected.end();) {
            const UndoQueue::Chunk step(scene.undo);
            const bool goes = order(static_cast<int>(it->second)) % 3 == 0;
            if (goes) gone += removeKeys(scene, plug(), it->first, it->first);
            it = goes ? expected.erase(it) : std::next(it);
        }
        EXPECT_EQ(shown(), expected) << name;
        for (int i = 0; i < gone; ++i) scene.undo.undo();
        EXPECT_EQ(shown(), all) << name;
        for (int i = count / 2; i < count; ++i) scene.undo.undo();
        EXPECT_EQ(shown(), half) << name;
    }
}

// Catches a division by the time between two keys that a file has at one time.
TEST_F(AnimCurve, TwoKeysAtOneTimeGiveFiniteValues) {
    key(0, 0);
    key(1000, 5);
    key(2000, 9);
    Node& curve = *curveOf(plug());
    scene.setNumber(curve.cell("keyTimeValue").element(1).child(0), 2000);
    scene.setNumber(curve.cell("postInfinity"), linear);
    EXPECT_EQ(at(1000), 2.5);
    for (const int kind : {linear, cycle, cycleWithOffset, oscillate}) {
        scene.setNumber(curve.cell("postInfinity"), kind);
        EXPECT_TRUE(std::isfinite(at(2500))) << kind << " " << at(2500);
    }
}
