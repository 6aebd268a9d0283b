#include "GraphFixture.h"

#include <maya/MAnimControl.h>
#include <maya/MComputation.h>
#include <maya/MFileIO.h>
#include <maya/MFileObject.h>
#include <maya/MFnAmbientLight.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MFnDirectionalLight.h>
#include <maya/MFnSet.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MNodeClass.h>
#include <maya/MProgressWindow.h>
#include <maya/MUuid.h>

#include <cmath>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct SceneFn : GraphFixture {
    static std::vector<std::string> names(const MSelectionList& list) {
        MStringArray strings;
        list.getSelectionStrings(strings);
        std::vector<std::string> out;
        for (const MString& s : strings) out.push_back(str(s));
        return out;
    }
};

// Faults: a member twice, one that is not removed, sets in a circle listed for ever, components taken silently.
TEST_F(SceneFn, Sets) {
    make("transform", "a");
    make("transform", "b");
    MSelectionList members;
    members.add("a");
    members.add("b");
    members.add("a.v");
    MFnSet first, second;
    MStatus status;
    const MObject one = first.create(members, MFnSet::kNone, &status);
    EXPECT_EQ(status, MStatus::kSuccess);
    EXPECT_TRUE(first.addMember(object("a"))) << "a member already";
    MSelectionList found;
    EXPECT_TRUE(first.getMembers(found, false));
    EXPECT_THAT(names(found), ElementsAre("a", "b", "a.visibility"));
    EXPECT_TRUE(first.isMember(plug("a.v")));
    EXPECT_FALSE(first.isMember(plug("a.template")));
    const MObject two = second.create(MSelectionList());
    EXPECT_TRUE(second.addMember(object("b")));
    EXPECT_TRUE(first.getIntersection(two, found));
    EXPECT_THAT(names(found), ElementsAre("b"));
    EXPECT_TRUE(first.intersectsWith(two));
    EXPECT_TRUE(first.removeMember(object("b")));
    EXPECT_EQ(first.removeMember(object("b")), MStatus::kInvalidParameter);
    EXPECT_FALSE(first.intersectsWith(two));
    EXPECT_TRUE(first.getUnion(two, found));
    EXPECT_THAT(names(found), ElementsAre("a", "a.visibility", "b"));
    EXPECT_EQ(first.addMember(one), MStatus::kInvalidParameter) << "itself";
    EXPECT_TRUE(first.addMember(two));
    EXPECT_TRUE(second.addMember(one));
    EXPECT_TRUE(first.getMembers(found, true));
    EXPECT_THAT(names(found), ElementsAre("a", "a.visibility", "b"));
    EXPECT_TRUE(first.clear());
    EXPECT_TRUE(first.getMembers(found, false));
    EXPECT_THAT(names(found), IsEmpty());
    run("polyCube -n box");
    MFnSet group;
    group.create(MSelectionList(), MFnSet::kRenderableOnly);
    EXPECT_TRUE(group.addMember(object("box")));
    EXPECT_EQ(run("sets -isMember initialShadingGroup boxShape"), "0") << "a surface is in one group alone";
    EXPECT_TRUE(group.setAnnotation("rough"));
    EXPECT_EQ(group.annotation(), MString("rough"));
}

// Faults: components that make their whole shape a member, that are lost beside others, or stay in two shading groups.
TEST_F(SceneFn, SetsOfComponents) {
    run("polyCube -n box; polyPlane -sx 1 -sy 1 -n floor");
    const auto item = [](const char* name, MDagPath& path, MObject& component) {
        MSelectionList list;
        list.add(name);
        list.getDagPath(0, path, component);
        return list;
    };
    MDagPath box;
    MObject some, more, faces;
    const MSelectionList corners = item("box.vtx[0:2]", box, some);
    MFnSet set;
    set.create(corners);
    MSelectionList found;
    const auto members = [&] {
        set.getMembers(found, false);
        return names(found);
    };
    EXPECT_THAT(members(), ElementsAre("box.vtx[0:2]"));
    item("box.vtx[5]", box, more);
    EXPECT_FALSE(set.isMember(box, more));
    EXPECT_FALSE(set.isMember(object("boxShape")));
    EXPECT_TRUE(set.addMember(box, more));
    item("box.f[1]", box, faces);
    EXPECT_TRUE(set.addMember(box, faces));
    EXPECT_THAT(members(), ElementsAre("box.vtx[0:2]", "box.vtx[5]", "box.f[1]"));
    EXPECT_TRUE(set.removeMembers(corners));
    EXPECT_EQ(set.removeMembers(corners), MStatus::kInvalidParameter);
    EXPECT_THAT(members(), ElementsAre("box.vtx[5]", "box.f[1]"));
    MDagPath floor = box;
    MObject none;
    item("floor", floor, none);
    EXPECT_EQ(set.addMember(floor, object("box")), MStatus::kInvalidParameter) << "no components";
    EXPECT_TRUE(set.clear());
    EXPECT_THAT(members(), IsEmpty());
    EXPECT_EQ(run("ls -type groupId"), "") << "what served the members goes with them";

    MFnSet red;
    red.create(MSelectionList(), MFnSet::kRenderableOnly);
    EXPECT_TRUE(red.addMember(box, faces));
    EXPECT_EQ(run("sets -q initialShadingGroup"), "floorShape box.f[0] box.f[2:5]");
    EXPECT_FALSE(red.addMember(box, some)) << "vertices are not rendered";
    EXPECT_EQ(run("sets -e -fe initialShadingGroup box.f[1]; sets -q " + str(red.name())), "");
    EXPECT_EQ(run("sets -e -fe " + str(red.name()) + " box; sets -q initialShadingGroup"), "floorShape");
}

// Faults: keys in the wrong order or unit, one that replaces nothing, tangents that bend the curve otherwise; changes
// that an undo misses.
TEST_F(SceneFn, AnimationCurves) {
    const MObject a = make("transform", "a");
    MFnAnimCurve fn;
    MStatus status;
    MPlug height = plug("a.ty");
    EXPECT_EQ(fn.timedAnimCurveTypeForPlug(height), MFnAnimCurve::kAnimCurveTL);
    EXPECT_EQ(fn.unitlessAnimCurveTypeForPlug(height), MFnAnimCurve::kAnimCurveUL);
    MDGModifier modifier;
    fn.create(height, &modifier, &status);
    ASSERT_EQ(status, MStatus::kSuccess);
    EXPECT_EQ(run("listConnections -s 1 -d 0 a.ty"), "a_translateY");
    fn.addKey(MTime(2, MTime::kSeconds), 4, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear);
    EXPECT_EQ(fn.addKey(MTime(0, MTime::kSeconds), 0, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear), 0u);
    EXPECT_EQ(fn.addKey(MTime(2, MTime::kSeconds), 8, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear), 1u);
    EXPECT_EQ(fn.numKeys(), 2u);
    EXPECT_EQ(fn.evaluate(MTime(0.5, MTime::kSeconds)), 2);
    float x = 0, y = 0;
    EXPECT_TRUE(fn.getTangent(0, x, y, false));
    EXPECT_FLOAT_EQ(y / x, 4) << "centimetres a second";
    unsigned index = 9;
    EXPECT_TRUE(fn.find(MTime(48, MTime::kFilm), index));
    EXPECT_EQ(index, 1u);
    EXPECT_FALSE(fn.find(MTime(47, MTime::kFilm), index));
    EXPECT_EQ(fn.findClosest(MTime(30, MTime::kFilm)), 1u);
    EXPECT_EQ(fn.setTime(0, MTime(2, MTime::kSeconds)), MStatus::kFailure);
    EXPECT_EQ(fn.setTime(1, MTime(-1, MTime::kSeconds)), MStatus::kFailure) << "it would be the first";
    EXPECT_TRUE(fn.setTime(1, MTime(1, MTime::kSeconds)));
    EXPECT_EQ(fn.evaluate(MTime(0.5, MTime::kSeconds)), 4);
    EXPECT_TRUE(fn.remove(1));
    EXPECT_EQ(fn.addKey(MTime(-1, MTime::kSeconds), 8, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear), 0u);
    // With level tangents a cubic is at half its height in the middle, and an eighth of the way from there at 1/4 it is
    // at 5/32.
    EXPECT_TRUE(fn.setOutTangentType(0, MFnAnimCurve::kTangentFlat));
    EXPECT_TRUE(fn.setInTangentType(1, MFnAnimCurve::kTangentFlat));
    EXPECT_NEAR(fn.evaluate(MTime(-0.25, MTime::kSeconds)), 8 * 5.0 / 32, 1e-9);
    EXPECT_TRUE(fn.setPostInfinityType(MFnAnimCurve::kCycle));
    EXPECT_EQ(fn.postInfinityType(), MFnAnimCurve::kCycle);
    EXPECT_EQ(fn.setOutTangentType(0, MFnAnimCurve::kTangentSlow), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.remove(2), MStatus::kInvalidParameter);
    fn.addKey(3.0, 1.0, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear, NULL, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter) << "its input is time";
    EXPECT_TRUE(modifier.undoIt());
    EXPECT_EQ(run("listConnections -s 1 -d 0 a.ty"), "");

    run("setKeyframe -at tx -t 1 -v 1 a");
    MFnAnimCurve driven(plug("a.tx"), &status);
    EXPECT_EQ(status, MStatus::kSuccess);
    MTimeArray times;
    MDoubleArray values;
    for (int i = 0; i < 3; ++i) {
        times.append(MTime(i, MTime::kFilm));
        values.append(i * i);
    }
    EXPECT_TRUE(driven.addKeys(&times, &values));
    EXPECT_EQ(driven.numKeys(), 3u);
    // At 0, 1 and 2 are 0, 1 and 4. Given from the back, and one of them twice: the last one counts.
    const double given[][2] = {{5, 25}, {1.5, 7}, {-2, 9}, {1, 6}, {1.5, 8}};
    times.clear();
    values.clear();
    for (const auto& [time, value] : given) {
        times.append(MTime(time, MTime::kFilm));
        values.append(value);
    }
    run("undoInfo -openChunk");
    EXPECT_TRUE(driven.addKeys(&times, &values, MFnAnimCurve::kTangentFlat, MFnAnimCurve::kTangentFlat, true));
    run("undoInfo -closeChunk");
    EXPECT_EQ(run("keyframe -q -tc -vc a.tx"), "-2 9 0 0 1 6 1.5 8 2 4 5 25");
    EXPECT_EQ(driven.inTangentType(4), MFnAnimCurve::kTangentClamped) << "the tangents of a key go with it";
    run("undo");
    EXPECT_EQ(run("keyframe -q -tc -vc a.tx"), "0 0 1 1 2 4");
    EXPECT_TRUE(driven.addKeys(&times, &values));
    EXPECT_EQ(run("keyframe -q -tc -vc a.tx"), "-2 9 1 6 1.5 8 5 25");
    values.append(1);
    EXPECT_EQ(driven.addKeys(&times, &values), MStatus::kInvalidParameter);
    EXPECT_FALSE(driven.isStatic());
    MFnAnimCurve none(plug("a.tz"), &status);
    EXPECT_FALSE(status);
    EXPECT_EQ(none.numKeys(&status), 0u);
    EXPECT_EQ(status, MStatus::kFailure);
}

// Faults: the playback's range outside of the animation's, a range turned round, something that plays where nobody
// looks.
TEST_F(SceneFn, TimeControl) {
    EXPECT_TRUE(MAnimControl::setMinMaxTime(MTime(-5), MTime(500)));
    EXPECT_EQ(MAnimControl::animationStartTime(), MTime(-5));
    EXPECT_EQ(MAnimControl::animationEndTime(), MTime(500));
    EXPECT_TRUE(MAnimControl::setAnimationEndTime(MTime(100)));
    EXPECT_EQ(MAnimControl::maxTime(), MTime(100));
    EXPECT_EQ(MAnimControl::setMinTime(MTime(101)), MStatus::kInvalidParameter);
    EXPECT_EQ(MAnimControl::minTime(), MTime(-5));
    EXPECT_TRUE(MAnimControl::setCurrentTime(MTime(7)));
    EXPECT_EQ(run("currentTime -q"), "7");
    EXPECT_EQ(MAnimControl::setCurrentTime(MTime(NAN)), MStatus::kInvalidParameter);
    EXPECT_FALSE(MAnimControl::playForward());
    EXPECT_FALSE(MAnimControl::isPlaying());
    EXPECT_FALSE(MProgressWindow::reserve());
    EXPECT_FALSE(MProgressWindow::setProgress(3));
    EXPECT_FALSE(MProgressWindow::isCancelled());
    MComputation work;
    EXPECT_TRUE(work.setProgressRange(0, 10));
    EXPECT_FALSE(work.setProgressRange(10, 0));
    work.setProgress(99);
    EXPECT_EQ(work.progress(), 10);
}

// Faults: a circle that never ends, a filter that stops the walk, plugs of which nothing depends on the root.
TEST_F(SceneFn, WalksOverTheGraph) {
    for (const char* name : {"a", "b", "c", "d"}) make("transform", name);
    run("connectAttr a.tx b.tx; connectAttr b.ty c.ty; connectAttr c.tz a.tz; connectAttr a.rx d.rx; createNode "
        "polyCube -n box; createNode mesh -n shape; connectAttr box.output shape.inMesh; connectAttr c.v box.width");
    MObject a = object("a"), c = object("c");
    const auto walk = [&](MItDependencyGraph& it) {
        std::vector<std::string> seen;
        for (; !it.isDone(); it.next()) seen.push_back(str(MFnDependencyNode(it.currentItem()).name()));
        return seen;
    };
    MItDependencyGraph deep(a);
    EXPECT_THAT(walk(deep), ElementsAre("a", "b", "c", "box", "shape", "d"));
    MItDependencyGraph broad(a, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kBreadthFirst);
    EXPECT_THAT(walk(broad), ElementsAre("a", "b", "d", "c", "box", "shape"));
    MItDependencyGraph meshes(a, MFn::kMesh);
    EXPECT_THAT(walk(meshes), ElementsAre("shape"));
    meshes.enablePruningOnFilter();
    EXPECT_THAT(walk(meshes), IsEmpty());
    MItDependencyGraph up(c, MFn::kInvalid, MItDependencyGraph::kUpstream);
    EXPECT_THAT(walk(up), ElementsAre("c", "b", "a"));
    MItDependencyGraph pruned(a);
    pruned.next();
    pruned.prune();
    EXPECT_TRUE(pruned.next());
    EXPECT_EQ(pruned.currentItem(), object("d"));
    MPlug root = plug("c.v");
    std::vector<std::string> plugs;
    for (MItDependencyGraph it(root); !it.isDone(); it.next()) plugs.push_back(str(it.thisPlug().name()));
    EXPECT_THAT(plugs, ElementsAre("c.visibility", "box.width", "box.output", "shape.inMesh"));
    MObject nobody;
    MStatus status;
    MItDependencyGraph none(nobody, MFn::kInvalid, MItDependencyGraph::kDownstream, MItDependencyGraph::kDepthFirst,
                            MItDependencyGraph::kNodeLevel, &status);
    EXPECT_FALSE(status);
    EXPECT_TRUE(none.isDone());
}

// Faults: a walk that stays within connections where what is below moves along, that comes to plugs which stay where
// they are, or that leaves connections when it is not to.
TEST_F(SceneFn, WalksOverWhatMovesInTheWorld) {
    run("group -em -n high; group -em -n low -p high; createNode decomposeMatrix -n apart; createNode transform -n "
        "lead;"
        "connectAttr low.worldMatrix[0] apart.inputMatrix;"
        "connectAttr lead.tx high.tx");
    MObject high = object("high"), low = object("low");
    MPlug moves = plug("high.ty"), shown = plug("low.worldMatrix[0]"), still = plug("high.v");
    const auto walk = [&](MItDependencyGraph& it, bool over) {
        EXPECT_FALSE(it.isTraversingOverWorldSpaceDependents());
        EXPECT_TRUE(it.setTraversalOverWorldSpaceDependents(over));
        std::vector<std::string> seen;
        for (; !it.isDone(); it.next())
            seen.push_back(it.atNodeLevel() ? str(MFnDependencyNode(it.currentItem()).name())
                                            : str(it.thisPlug().name()));
        return seen;
    };
    MItDependencyGraph one(high), two(high), three(low, MFn::kInvalid, MItDependencyGraph::kUpstream);
    EXPECT_THAT(walk(one, false), ElementsAre("high"));
    EXPECT_THAT(walk(two, true), ElementsAre("high", "low", "apart"));
    EXPECT_THAT(walk(three, true), ElementsAre("low", "high", "lead"));
    MItDependencyGraph four(moves), five(still), six(shown, MFn::kInvalid, MItDependencyGraph::kUpstream);
    EXPECT_THAT(walk(four, true), ElementsAre("high.translateY", "low.worldMatrix[0]", "apart.inputMatrix"));
    EXPECT_THAT(walk(five, true), ElementsAre("high.visibility"));
    EXPECT_THAT(walk(six, true), ElementsAre("low.worldMatrix[0]", "high.translateX", "lead.translateX"));
}

// Faults: a light that shines by its own axes, a create() that answers the wrong node.
TEST_F(SceneFn, Lights) {
    MFnDirectionalLight sun;
    MStatus status;
    const MObject transform = sun.create(true, &status);
    EXPECT_TRUE(transform.hasFn(MFn::kTransform));
    EXPECT_TRUE(sun.object().hasFn(MFn::kNonExtendedLight));
    run("setAttr " + str(MFnDagNode(transform).fullPathName()) + ".ry 90");
    EXPECT_NEAR(sun.lightDirection().x, -1, 1e-6);
    EXPECT_TRUE(sun.setColor(MColor(0.5f, 1, 1)));
    EXPECT_TRUE(sun.setIntensity(2));
    EXPECT_EQ(sun.lightIntensity().r, 1);
    EXPECT_TRUE(sun.setShadowAngle(5));
    EXPECT_FLOAT_EQ(sun.shadowAngle(), 5);
    EXPECT_FALSE(sun.lightAmbient());
    EXPECT_EQ(sun.lightDirection(1, MSpace::kWorld, &status), MFloatVector(0, 0, -1));
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    MFnAmbientLight sky;
    const MObject shape = sky.create(transform);
    EXPECT_EQ(shape, sky.object());
    EXPECT_TRUE(sky.setAmbientShade(0.25f));
    EXPECT_TRUE(sky.lightAmbient());
    const MFnLight path(MDagPath::getAPathTo(transform), &status);
    EXPECT_FALSE(status) << "two lights";
}

// Faults: identifiers that are not kept, or taken though they are none; names that lead nowhere.
TEST_F(SceneFn, IdentifiersTypesAndFiles) {
    MFnDependencyNode fn(make("transform", "a"));
    const MUuid own = fn.uuid();
    EXPECT_TRUE(own.valid());
    EXPECT_EQ(fn.uuid(), own);
    const MUuid given("b2a0d5f4-0c0f-4b6c-8e5c-6f2d0b6a9c31");
    fn.setUuid(given);
    EXPECT_EQ(fn.uuid().asString(), MString("B2A0D5F4-0C0F-4B6C-8E5C-6F2D0B6A9C31"));
    MStatus status;
    for (const char* bad : {"", "b2a0d5f4-0c0f-4b6c-8e5c-6f2d0b6a9c3", "b2a0d5f4-0c0f-4b6c-8e5c-6f2d0b6a9c3g",
                            "b2a0d5f40-c0f-4b6c-8e5c-6f2d0b6a9c31"}) {
        EXPECT_FALSE(MUuid(MString(bad), &status).valid()) << bad;
        EXPECT_EQ(status, MStatus::kInvalidParameter);
    }
    fn.setUuid(MUuid(), &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);

    MNodeClass type("transform");
    EXPECT_TRUE(type.hasAttribute("translateX"));
    EXPECT_FALSE(type.hasAttribute("focalLength"));
    type.addToClassification("a");
    type.addToClassification("b");
    EXPECT_TRUE(type.removeFromClassification("a"));
    EXPECT_EQ(type.classification(), MString("b"));
    EXPECT_FALSE(type.removeFromClassification("c"));
    EXPECT_TRUE(type.removeFromClassification("b"));
    EXPECT_EQ(MNodeClass("noSuchType").attributeCount(&status), 0u);
    EXPECT_FALSE(status);

    MFileObject file;
    EXPECT_FALSE(file.isSet());
    file.setRawFullName("/proc/self/status");
    EXPECT_EQ(file.rawPath(), MString("/proc/self/"));
    EXPECT_EQ(file.rawName(), MString("status"));
    EXPECT_TRUE(file.exists());
    file.setRawName("nothing");
    EXPECT_FALSE(file.exists());
    EXPECT_EQ(file.resolvedFullName().length(), 0u);
    EXPECT_FALSE(MFileIO::open("/no/such/scene.ma"));
    EXPECT_TRUE(MFileIO::getErrorStatus());
    EXPECT_EQ(errors.size(), 1u);
    EXPECT_FALSE(MFileIO::isReadingFile());
    EXPECT_TRUE(MFileIO::newFile(true));
    EXPECT_FALSE(MFileIO::getErrorStatus());
    MString text("fog");
    text.clear();
    EXPECT_EQ(text.length(), 0u);
}

} // namespace
