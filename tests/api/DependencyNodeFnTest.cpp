#include "GraphFixture.h"

#include <maya/MFnNumericAttribute.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MObjectHandle.h>
#include <maya/MPxNode.h>

#include <set>

namespace {

struct DependencyNodeFnTest : GraphFixture {
    MFnDependencyNode fn;
    MStatus status;
};

// Fault: a type that is not a plain node created, or a failed creation that leaves the function set on the last node.
TEST_F(DependencyNodeFnTest, Create) {
    const MObject made = fn.create("animCurveTL", "curve", &status);
    EXPECT_TRUE(status);
    EXPECT_EQ(fn.name(), "curve");
    EXPECT_EQ(fn.typeName(), "animCurveTL");
    EXPECT_EQ(object("curve"), made);
    const MObject second = MFnDependencyNode().create("animCurveTL", "curve");
    EXPECT_EQ(object("curve1"), second) << "a taken name gets a number";
    EXPECT_TRUE(fn.create("noSuchType", &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(fn.name(&status), "");
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_TRUE(fn.create("transform", &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.create(MTypeId(0x7fffffff), &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(fn.setObject(plug("curve.message").attribute()), MStatus::kInvalidParameter);
}

// Fault: a "#" kept in the name or counted from the wrong number; a name of no legal characters taken.
TEST_F(DependencyNodeFnTest, SetName) {
    make("transform", "cloud1");
    make("transform", "cloud2");
    MObject node = make("transform", "x");
    fn.setObject(node);
    EXPECT_EQ(fn.setName("cloud#"), "cloud3");
    EXPECT_EQ(fn.setName("cloud1"), "cloud3") << "the next free one is its own";
    EXPECT_EQ(fn.setName("fog"), "fog");
    EXPECT_EQ(object("fog"), node);
    EXPECT_TRUE(object("cloud3").isNull());
    EXPECT_TRUE(fn.hasUniqueName());
    fn.setName("", &status);
    EXPECT_EQ(status, MStatus::kFailure);
    fn.setName("!", &status);
    EXPECT_TRUE(fn.name() == "fog" || host::scene::Scene::isValidName(str(fn.name())));
    fn.setName("fog");
    run("createNode transform -n g; createNode transform -p g -n fog;");
    EXPECT_FALSE(fn.hasUniqueName());
}

// Fault: a plug found by one of its names only, or found where the node has no such attribute.
TEST_F(DependencyNodeFnTest, FindPlug) {
    const MObject node = make("transform", "n");
    fn.setObject(node);
    const MPlug byLong = fn.findPlug("translateX", true), byShort = fn.findPlug("tx", false);
    EXPECT_EQ(byLong, byShort);
    EXPECT_EQ(fn.findPlug(byLong.attribute(), true), byLong);
    EXPECT_TRUE(fn.findPlug("noSuch", true, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    const MObject foreign = MFnDependencyNode(make("camera", "c")).attribute("focalLength");
    EXPECT_FALSE(foreign.isNull());
    EXPECT_TRUE(fn.findPlug(foreign, true, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.findPlug(MObject::kNullObj, true, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.hasAttribute("v") && fn.hasAttribute("visibility") && !fn.hasAttribute("noSuch"));

    // Every attribute once, a compound before its parts.
    std::set<std::string> seen;
    for (unsigned i = 0; i < fn.attributeCount(); ++i) {
        const MFnAttribute a(fn.attribute(i));
        EXPECT_TRUE(seen.insert(str(a.name())).second) << str(a.name());
        if (!a.parent().isNull()) {
            EXPECT_TRUE(seen.count(str(MFnAttribute(a.parent()).name())));
        }
    }
    EXPECT_TRUE(seen.count("translateX") && seen.count("message"));
    EXPECT_TRUE(fn.attribute(fn.attributeCount(), &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: added attributes taken for built-in ones or the reverse; a removal that leaves the plug, or connections.
TEST_F(DependencyNodeFnTest, AddAndRemoveAttributes) {
    const MObject node = make("transform", "n"), other = make("transform", "m");
    fn.setObject(node);
    MFnNumericAttribute number;
    const MObject added = number.create("extra", "ex", MFnNumericData::kDouble);
    EXPECT_EQ(fn.attributeClass(added), MFnDependencyNode::kInvalidAttr);
    EXPECT_EQ(fn.addAttribute(added, MFnDependencyNode::kNormalAttr), MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.addAttribute(added));
    EXPECT_EQ(fn.addAttribute(added), MStatus::kFailure);
    EXPECT_EQ(fn.attributeClass(added), MFnDependencyNode::kLocalDynamicAttr);
    EXPECT_EQ(fn.attributeClass(fn.attribute("tx")), MFnDependencyNode::kNormalAttr);
    EXPECT_EQ(MFnDependencyNode(other).attributeClass(added, &status), MFnDependencyNode::kInvalidAttr);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.findPlug("ex", true).isDynamic());
    EXPECT_FALSE(fn.findPlug("tx", true).isDynamic());
    run("connectAttr n.extra m.tx");
    // A built-in one is not added to another node, and a refusal does not make it a removable one.
    EXPECT_EQ(MFnDependencyNode(object("time1")).addAttribute(fn.attribute("translate")), MStatus::kFailure);
    EXPECT_EQ(fn.addAttribute(fn.attribute("translate")), MStatus::kFailure);
    EXPECT_FALSE(fn.findPlug("tx", true).isDynamic());
    EXPECT_EQ(fn.removeAttribute(fn.attribute("tx")), MStatus::kFailure);
    EXPECT_EQ(fn.addAttribute(fn.attribute("visibility")), MStatus::kFailure);
    EXPECT_EQ(fn.attributeClass(fn.attribute("visibility")), MFnDependencyNode::kNormalAttr);
    EXPECT_EQ(fn.removeAttribute(fn.attribute("visibility")), MStatus::kFailure);
    EXPECT_EQ(MFnDependencyNode(other).removeAttribute(added), MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.removeAttribute(added));
    EXPECT_FALSE(fn.hasAttribute("extra"));
    EXPECT_FALSE(plug("m.tx").isConnected());
    EXPECT_EQ(fn.removeAttribute(added), MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.addAttribute(added)) << "it can come back";
}

// Fault: connections of elements or parts forgotten, or answered as the other end's plug.
TEST_F(DependencyNodeFnTest, GetConnections) {
    make("transform", "a");
    make("transform", "b");
    fn.setObject(object("a"));
    MPlugArray found;
    EXPECT_EQ(fn.getConnections(found), MStatus::kFailure) << "there are none";
    run("addAttr -ln list -at double -m a; connectAttr a.tx b.ty; connectAttr b.tx a.list[3]; connectAttr b.s a.s;");
    EXPECT_TRUE(fn.getConnections(found));
    std::set<std::string> names;
    for (unsigned i = 0; i < found.length(); ++i) names.insert(str(found[i].name()));
    EXPECT_EQ(names, (std::set<std::string>{"a.translateX", "a.list[3]", "a.scale"}));
}

// Fault: a default or locked node that can be deleted, values of a locked one that change.
TEST_F(DependencyNodeFnTest, DefaultAndLockedNodes) {
    MObject time = object("time1"), node = make("transform", "n");
    EXPECT_TRUE(MFnDependencyNode(time).isDefaultNode());
    EXPECT_FALSE(MFnDependencyNode(node).isDefaultNode());
    EXPECT_EQ(MGlobal::deleteNode(time), MStatus::kFailure);
    EXPECT_FALSE(object("time1").isNull());
    fn.setObject(node);
    EXPECT_FALSE(fn.isLocked());
    EXPECT_TRUE(fn.setLocked(true));
    EXPECT_TRUE(fn.isLocked());
    EXPECT_EQ(run("lockNode -q -l n"), "1");
    EXPECT_FALSE(fn.findPlug("tx", true).setValue(1.0));
    EXPECT_TRUE(fn.findPlug("tx", true).isLocked());
    EXPECT_EQ(MGlobal::deleteNode(node), MStatus::kFailure);
    EXPECT_TRUE(fn.setLocked(false));
    EXPECT_TRUE(MGlobal::deleteNode(node));
    EXPECT_EQ(fn.userNode(&status), nullptr);
    EXPECT_EQ(status, MStatus::kFailure);
}

// Fault: a handle told to be valid for a deleted node, dead while undo can bring the node back, or that takes another
// node of the next scene for its own.
TEST_F(DependencyNodeFnTest, HandlesThroughDeleteUndoAndNewScene) {
    run("createNode transform -n n");
    const MObject node = object("n");
    const MObjectHandle handle(node), same(node);
    EXPECT_TRUE(handle.isValid() && handle.isAlive());
    EXPECT_EQ(handle, same);
    EXPECT_EQ(handle.hashCode(), same.hashCode());
    run("delete n");
    EXPECT_FALSE(handle.isValid());
    EXPECT_TRUE(handle.isAlive());
    run("undo");
    EXPECT_TRUE(handle.isValid());
    EXPECT_EQ(handle.object(), object("n"));
    EXPECT_EQ(handle.hashCode(), MObjectHandle(object("n")).hashCode());
    run("undo");
    EXPECT_FALSE(handle.isValid());
    run("redo");
    EXPECT_TRUE(handle.isValid());
    run("file -f -new; createNode transform -n n");
    EXPECT_FALSE(handle.isValid() || handle.isAlive());
    EXPECT_TRUE(handle.object().isNull());
    EXPECT_NE(handle, object("n"));
    EXPECT_EQ(node.apiType(), MFn::kInvalid);
    EXPECT_FALSE(node.hasFn(MFn::kTransform));
    EXPECT_EQ(fn.setObject(node), MStatus::kInvalidParameter);
    EXPECT_FALSE(MObjectHandle().isValid() || MObjectHandle().isAlive());
}

// Fault: function sets that go on with a node that is gone.
TEST_F(DependencyNodeFnTest, FunctionSetsOfNodesThatAreGone) {
    const MObject node = make("transform", "n");
    fn.setObject(node);
    MFnNumericAttribute number;
    const MObject a = number.create("a", "a", MFnNumericData::kInt);
    scene.reset();
    MPlugArray plugs;
    EXPECT_EQ(fn.getConnections(plugs), MStatus::kFailure);
    EXPECT_EQ(fn.addAttribute(a), MStatus::kFailure);
    EXPECT_EQ(fn.removeAttribute(a), MStatus::kFailure);
    EXPECT_EQ(fn.setLocked(true), MStatus::kFailure);
    EXPECT_EQ(fn.setName("m", &status), "");
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(fn.attributeCount(&status), 0u);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_TRUE(fn.findPlug("tx", true, &status).isNull());
    EXPECT_EQ(status, MStatus::kFailure);
}

// Fault: a walk over the nodes that ignores its filter, or leaves nodes out.
TEST_F(DependencyNodeFnTest, Iterate) {
    make("camera", "lens");
    make("animCurveTL", "curve");
    const auto names = [](MFn::Type filter) {
        std::set<std::string> found;
        for (MItDependencyNodes it(filter); !it.isDone(); it.next())
            found.insert(str(MFnDependencyNode(it.item()).name()));
        return found;
    };
    EXPECT_TRUE(names(MFn::kInvalid).count("time1"));
    EXPECT_EQ(names(MFn::kTime), std::set<std::string>{"time1"});
    EXPECT_TRUE(names(MFn::kCamera).count("lens"));
    EXPECT_FALSE(names(MFn::kCamera).count("curve"));
    EXPECT_EQ(names(MFn::kAnimCurve), std::set<std::string>{"curve"});
    EXPECT_EQ(names(MFn::kInvalid).size(), scene.nodes().size());
    MItDependencyNodes it(MFn::kAnimCurve);
    EXPECT_TRUE(it.next());
    EXPECT_TRUE(it.isDone());
    EXPECT_EQ(it.next(), MStatus::kFailure);
    EXPECT_TRUE(it.item(&status).isNull());
    EXPECT_EQ(status, MStatus::kFailure);
}

} // namespace
