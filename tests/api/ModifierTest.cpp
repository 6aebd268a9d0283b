#include "GraphFixture.h"

#include <maya/MAngle.h>
#include <maya/MDagModifier.h>
#include <maya/MDistance.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MTime.h>

#include <functional>

namespace {

struct ModifierTest : GraphFixture {
    ModifierTest() {
        run("createNode transform -n a; createNode transform -n b; createNode transform -n c -p a; "
            "addAttr -ln list -at double -m a; setAttr a.list[2] 7; addAttr -ln text -dt \"string\" a; "
            "addAttr -ln old -at long a; connectAttr a.tx b.tx; select -cl;");
    }
    MStatus status;
};

/// One operation, and what a script sees before and after it.
struct RoundTrip {
    const char* name;
    std::function<void(MDagModifier&, const std::function<MPlug(const char*)>&)> gather;
    const char *look, *before, *after;
    friend void PrintTo(const RoundTrip& c, std::ostream* out) { *out << c.name; }
};
using Plugs = const std::function<MPlug(const char*)>&;

struct ModifierRoundTrip : ModifierTest, testing::WithParamInterface<RoundTrip> {};

// Fault: an operation that is done too early, not at all, or that undo or redo leave half done.
TEST_P(ModifierRoundTrip, DoUndoRedo) {
    const RoundTrip& c = GetParam();
    MDagModifier modifier;
    EXPECT_EQ(run(c.look), c.before);
    c.gather(modifier, [this](const char* name) { return plug(name); });
    EXPECT_EQ(run(c.look), c.before) << "before doIt";
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(modifier.doIt());
        EXPECT_EQ(run(c.look), c.after) << "done " << round;
        EXPECT_TRUE(modifier.undoIt());
        EXPECT_EQ(run(c.look), c.before) << "undone " << round;
    }
    EXPECT_EQ(modifier.undoIt(), MStatus::kFailure) << "undone already";
    EXPECT_TRUE(errors.empty());
}
INSTANTIATE_TEST_SUITE_P(
    Operations, ModifierRoundTrip,
    testing::Values(
        RoundTrip{"Delete", [](MDagModifier& m, Plugs p) { m.deleteNode(p("a.tx").node()); }, "ls a b c", "a b c", "b"},
        RoundTrip{"Rename", [](MDagModifier& m, Plugs p) { m.renameNode(p("b.tx").node(), "z"); }, "ls b z", "b", "z"},
        RoundTrip{"Lock", [](MDagModifier& m, Plugs p) { m.setNodeLockState(p("b.tx").node(), true); },
                  "lockNode -q -l b", "0", "1"},
        RoundTrip{"Connect", [](MDagModifier& m, Plugs p) { m.connect(p("a.ty"), p("b.ty")); }, "isConnected a.ty b.ty",
                  "0", "1"},
        RoundTrip{"Disconnect", [](MDagModifier& m, Plugs p) { m.disconnect(p("a.tx"), p("b.tx")); },
                  "isConnected a.tx b.tx", "1", "0"},
        RoundTrip{"AddAttribute",
                  [](MDagModifier& m, Plugs p) {
                      MFnNumericAttribute fn;
                      m.addAttribute(p("a.tx").node(), fn.create("fresh", "fr", MFnNumericData::kInt, 4));
                  },
                  "attributeQuery -ex -n a fresh", "0", "1"},
        RoundTrip{"RemoveAttribute",
                  [](MDagModifier& m, Plugs p) { m.removeAttribute(p("a.tx").node(), p("a.old").attribute()); },
                  "attributeQuery -ex -n a old", "1", "0"},
        RoundTrip{"Command", [](MDagModifier& m, Plugs) { m.commandToExecute("setAttr a.tz 3; rename b z;"); },
                  "ls b z; string $modified[] = `ls b z`; $modified[0] + `getAttr a.tz`", "b0", "z3"},
        RoundTrip{"Reparent", [](MDagModifier& m, Plugs p) { m.reparentNode(p("c.tx").node(), p("b.tx").node()); },
                  "listRelatives -p c", "a", "b"},
        RoundTrip{"ToTheWorld", [](MDagModifier& m, Plugs p) { m.reparentNode(p("c.tx").node()); },
                  "listRelatives -f -p c; size(`listRelatives -p c`)", "1", "0"},
        RoundTrip{"Element", [](MDagModifier& m, Plugs p) { m.removeMultiInstance(p("a.list[2]"), true); },
                  "getAttr -s a.list", "1", "0"},
        RoundTrip{"Double", [](MDagModifier& m, Plugs p) { m.newPlugValueDouble(p("a.sx"), 2.5); }, "getAttr a.sx", "1",
                  "2.5"},
        RoundTrip{"Int", [](MDagModifier& m, Plugs p) { m.newPlugValueInt(p("a.old"), -6); }, "getAttr a.old", "0",
                  "-6"},
        RoundTrip{"Bool", [](MDagModifier& m, Plugs p) { m.newPlugValueBool(p("a.v"), false); }, "getAttr a.v", "1",
                  "0"},
        RoundTrip{"String", [](MDagModifier& m, Plugs p) { m.newPlugValueString(p("a.text"), "mist"); },
                  "getAttr a.text", "", "mist"},
        RoundTrip{
            "Distance",
            [](MDagModifier& m, Plugs p) { m.newPlugValueMDistance(p("a.ty"), MDistance(2, MDistance::kMeters)); },
            "getAttr a.ty", "0", "200"},
        RoundTrip{"Angle",
                  [](MDagModifier& m, Plugs p) { m.newPlugValueMAngle(p("a.ry"), MAngle(0.25, MAngle::kRadians)); },
                  "(`getAttr a.ry` > 14.3 && `getAttr a.ry` < 14.4)", "0", "1"}),
    [](const auto& info) { return info.param.name; });

// Fault: created nodes that undo leaves, that redo brings back as others, or that miss their transform.
TEST_F(ModifierTest, CreatedNodes) {
    MDagModifier modifier;
    const MObject group = modifier.createNode("transform", object("a"));
    const MObject above = modifier.createNode("camera", MObject::kNullObj, &status);
    EXPECT_TRUE(status);
    EXPECT_TRUE(above.hasFn(MFn::kTransform)) << "a shape alone gets a transform";
    EXPECT_TRUE(modifier.renameNode(group, "made"));
    EXPECT_TRUE(modifier.newPlugValueDouble(MFnDependencyNode(group).findPlug("tx", true), 5));
    EXPECT_TRUE(modifier.doIt());
    EXPECT_EQ(object("a|made"), group);
    EXPECT_TRUE(modifier.undoIt());
    EXPECT_TRUE(object("made").isNull());
    EXPECT_TRUE(modifier.doIt());
    EXPECT_EQ(object("a|made"), group);
    EXPECT_EQ(run("getAttr made.tx"), "5");

    MDGModifier plain;
    const MObject curve = plain.createNode("animCurveTL", &status);
    EXPECT_TRUE(status && curve.hasFn(MFn::kAnimCurve));
    EXPECT_TRUE(plain.createNode("transform", &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(plain.createNode("noSuchType", &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(modifier.createNode("transform", object("time1"), &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(plain.deleteNode(MObject::kNullObj), MStatus::kInvalidParameter);
    EXPECT_EQ(plain.connect(MPlug(), plug("a.ty")), MStatus::kInvalidParameter);
    EXPECT_EQ(plain.removeMultiInstance(plug("a.list"), true), MStatus::kInvalidParameter);
    EXPECT_EQ(modifier.reparentNode(curve), MStatus::kInvalidParameter);
}

// Fault: a second doIt that repeats the first, or an undo that takes back the last one only or in the wrong order.
TEST_F(ModifierTest, SeveralDoIts) {
    MDGModifier modifier;
    MPlug x = plug("a.tx");
    modifier.newPlugValueDouble(x, 1);
    EXPECT_TRUE(modifier.doIt());
    EXPECT_TRUE(x.setValue(10.0));
    modifier.renameNode(object("b"), "z");
    EXPECT_TRUE(modifier.doIt());
    EXPECT_EQ(x.asDouble(), 10) << "the first step is not done again";
    modifier.newPlugValueDouble(x, 2);
    EXPECT_TRUE(modifier.doIt());
    EXPECT_TRUE(modifier.undoIt());
    EXPECT_EQ(x.asDouble(), 0);
    EXPECT_FALSE(object("b").isNull());
    EXPECT_TRUE(modifier.doIt());
    EXPECT_EQ(x.asDouble(), 2);
    EXPECT_FALSE(object("z").isNull());
    EXPECT_TRUE(MDGModifier().doIt());
}

// Fault: a failing step reported as success, steps after it done all the same, or those before it beyond undo.
TEST_F(ModifierTest, FailingStep) {
    const std::function<void(MDagModifier&)> failing[] = {
        [&](MDagModifier& m) { m.newPlugValueDouble(plug("b.tx"), 1); }, // connected
        [&](MDagModifier& m) { m.connect(plug("a.ty"), plug("b.tx")); },
        [&](MDagModifier& m) { m.disconnect(plug("a.ty"), plug("b.ty")); },
        [&](MDagModifier& m) { m.commandToExecute("setAttr a.sy 4; noSuchCommand;"); },
        [&](MDagModifier& m) { m.deleteNode(object("time1")); },
        [&](MDagModifier& m) { m.reparentNode(object("a"), object("c")); },
        [&](MDagModifier& m) { m.newPlugValueString(plug("a.tx"), "x"); },
        [&](MDagModifier& m) { m.addAttribute(object("a"), plug("a.old").attribute()); },
    };
    int number = 0;
    for (const auto& step : failing) {
        SCOPED_TRACE(number++);
        MDagModifier modifier;
        modifier.newPlugValueDouble(plug("a.sx"), 3);
        step(modifier);
        modifier.newPlugValueDouble(plug("a.sz"), 3);
        EXPECT_EQ(modifier.doIt(), MStatus::kFailure);
        EXPECT_EQ(run("getAttr a.s"), number == 4 ? "3 4 1" : "3 1 1");
        EXPECT_TRUE(modifier.undoIt());
        EXPECT_EQ(run("getAttr a.s"), "1 1 1");
    }
}

// Fault: a modifier's work recorded in the user's undo queue as well, so that it is taken back twice.
TEST_F(ModifierTest, KeepsOutOfTheUndoQueue) {
    run("setAttr a.sx 2");
    MDGModifier modifier;
    modifier.commandToExecute("setAttr a.sy 5");
    EXPECT_TRUE(modifier.doIt());
    run("undo");
    EXPECT_EQ(run("getAttr a.s"), "1 5 1");
    EXPECT_TRUE(modifier.undoIt());
    EXPECT_EQ(run("getAttr a.s"), "1 1 1");
}

} // namespace
