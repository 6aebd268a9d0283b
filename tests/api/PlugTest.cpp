#include "GraphFixture.h"

#include <maya/MAngle.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MIntArray.h>
#include <maya/MMatrix.h>
#include <maya/MTime.h>

#include <limits>
#include <numbers>

namespace {

using testing::ElementsAre;
constexpr double pi = std::numbers::pi;

/// A node "n" with an array of compounds, list[].inner.value, beside one number of each kind.
struct PlugTest : GraphFixture {
    PlugTest() {
        node = make("transform", "n");
        MFnDependencyNode fn(node);
        MFnNumericAttribute number;
        const MObject value = number.create("value", "va", MFnNumericData::kDouble);
        MFnCompoundAttribute compound;
        const MObject inner = compound.create("inner", "in");
        compound.addChild(value);
        list = compound.create("list", "l");
        compound.addChild(inner);
        compound.addChild(number.create("flag", "fl", MFnNumericData::kBoolean));
        compound.setArray(true);
        EXPECT_TRUE(fn.addAttribute(list));
        EXPECT_TRUE(fn.addAttribute(number.create("small", "sm", MFnNumericData::kShort)));
        EXPECT_TRUE(fn.addAttribute(number.create("large", "lg", MFnNumericData::kInt64)));
        EXPECT_TRUE(fn.addAttribute(number.create("real", "re", MFnNumericData::kDouble)));
        EXPECT_TRUE(fn.addAttribute(number.create("numbers", "nu", MFnNumericData::kInt)));
        MFnNumericAttribute(fn.attribute("numbers")).setArray(true);
        EXPECT_TRUE(fn.addAttribute(MFnTypedAttribute().create("text", "txt", MFnData::kString)));
    }
    MPlug at(const char* name) { return MFnDependencyNode(node).findPlug(name, true); }
    MObject node, list;
};

// Fault: a name that leaves out an index or an element, so that it names another plug, that has compounds which nobody
// needs to tell the plug, or short names among long ones.
TEST_F(PlugTest, NamesLeadBackToThePlug) {
    const MPlug value = plug("n.list[7].inner.value");
    EXPECT_EQ(value.name(), "n.list[7].value");
    EXPECT_EQ(value.partialName(false, false, false, false, true), "l[7].in.va");
    EXPECT_EQ(value.partialName(true), "n.l[7].va");
    EXPECT_EQ(run("connectAttr n.tx n.list[7].inner.value; listConnections -s 0 -p 1 n.tx"), "n.list[7].value");
    EXPECT_EQ(plug("n.list[7].flag").partialName(), "l[7].fl");
    EXPECT_EQ(plug("n.translateX").partialName(), "tx");
    EXPECT_EQ(plug("n.translateX").name(), "n.translateX");
    EXPECT_EQ(at("list").name(), "n.list");
    for (const char* name : {"n.list[7].inner.value", "n.list[7]", "n.list", "n.t.tx"})
        EXPECT_EQ(plug(str(plug(name).name())), plug(name)) << name;
    make("transform", "a");
    run("createNode transform -n same; createNode transform -n deep; createNode transform -p deep -n same;");
    EXPECT_EQ(plug("deep|same.tx").name(), "deep|same.translateX");
}

// Fault: logical and physical indices taken for each other; steps between array, element, parent and child that lose
// the index; steps that are not there answered with a plug.
TEST_F(PlugTest, ElementsParentsAndChildren) {
    MPlug array = at("list"), numbers = at("numbers");
    EXPECT_TRUE(array.isArray() && array.isCompound());
    EXPECT_FALSE(array.isElement());
    EXPECT_EQ(numbers.numElements(), 0u);
    for (const unsigned i : {9u, 2u}) EXPECT_TRUE(numbers.elementByLogicalIndex(i).setValue(int(i) * 10));
    EXPECT_EQ(numbers.numElements(), 2u);
    MStatus status;
    const MPlug first = numbers.elementByPhysicalIndex(0), second = numbers[1];
    EXPECT_EQ(first.logicalIndex(), 2u);
    EXPECT_EQ(second.logicalIndex(), 9u);
    EXPECT_EQ(second.asInt(), 90);
    EXPECT_TRUE(numbers.elementByPhysicalIndex(2, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    MIntArray indices;
    EXPECT_EQ(numbers.getExistingArrayAttributeIndices(indices), 2u);
    EXPECT_EQ(indices[0], 2);
    EXPECT_EQ(indices[1], 9);

    const MPlug element = array.elementByLogicalIndex(4);
    EXPECT_TRUE(element.isElement() && element.isCompound());
    EXPECT_FALSE(element.isArray() || element.isChild());
    EXPECT_EQ(element.array(), array);
    EXPECT_EQ(element.numChildren(), 2u);
    const MPlug value = element.child(0).child(0);
    EXPECT_EQ(value.name(), "n.list[4].value");
    EXPECT_TRUE(value.isChild());
    EXPECT_EQ(value.parent().parent(), element);
    EXPECT_EQ(value.parent().parent().logicalIndex(), 4u);
    EXPECT_TRUE(element.child(2, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(array.array(&status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(element.parent(&status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    array.logicalIndex(&status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    at("real").elementByLogicalIndex(0, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    array.elementByLogicalIndex(std::numeric_limits<unsigned>::max(), &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);

    MPlug open(node, value.attribute()); // no element chosen yet
    EXPECT_FALSE(open.setValue(1.0));
    EXPECT_TRUE(open.selectAncestorLogicalIndex(4, list));
    EXPECT_TRUE(open.setValue(6.5));
    EXPECT_EQ(value.asDouble(), 6.5);
    EXPECT_EQ(open, value);
}

// Fault: plugs of different elements told to be equal, or a comparison that adds elements to the scene.
TEST_F(PlugTest, ComparingPlugsLeavesTheSceneAlone) {
    MPlug numbers = at("numbers");
    const MPlug a = numbers.elementByLogicalIndex(1), b = numbers.elementByLogicalIndex(2);
    EXPECT_NE(a, b);
    EXPECT_EQ(a, plug("n.numbers").elementByLogicalIndex(1));
    EXPECT_NE(a, numbers);
    EXPECT_EQ(numbers.numElements(), 0u);
    EXPECT_TRUE(a == numbers.attribute());
    scene.reset();
    EXPECT_NE(a, b);
}

// Fault: setNumElements that cuts off what is there, or takes any count and any plug.
TEST_F(PlugTest, SetNumElements) {
    MPlug numbers = at("numbers");
    EXPECT_TRUE(numbers.elementByLogicalIndex(5).setValue(1));
    EXPECT_TRUE(numbers.setNumElements(3));
    EXPECT_EQ(numbers.numElements(), 4u);
    EXPECT_EQ(numbers.elementByLogicalIndex(5).asInt(), 1);
    EXPECT_FALSE(numbers.setNumElements(std::numeric_limits<unsigned>::max()));
    EXPECT_FALSE(at("real").setNumElements(2));
    EXPECT_EQ(numbers.numElements(), 4u);
}

// Fault: values rounded, wrapped or in another unit; numbers where texts are and the reverse; a failed read that
// changes what the caller had.
TEST_F(PlugTest, TypedReadsAndWrites) {
    MPlug real = at("real"), large = at("large"), small = at("small"), text = at("text");
    EXPECT_TRUE(real.setValue(2.75));
    EXPECT_EQ(real.asDouble(), 2.75);
    EXPECT_EQ(real.asFloat(), 2.75f);
    EXPECT_EQ(real.asInt(), 2);
    EXPECT_TRUE(real.asBool());
    const MInt64 big = (MInt64(1) << 62) + 1; // no double holds this
    EXPECT_TRUE(large.setValue(big));
    EXPECT_EQ(large.asInt64(), big);
    EXPECT_TRUE(small.setValue(-3));
    EXPECT_EQ(small.asShort(), -3);
    EXPECT_EQ(small.asDouble(), -3);
    EXPECT_TRUE(small.setValue(1e30)); // out of reach: some short, and no crash
    small.asShort();

    const char bytes[] = "a\0\xc3\xa4";
    EXPECT_TRUE(text.setValue(MString(bytes, 4)));
    EXPECT_EQ(str(text.asString()), std::string(bytes, 4));
    EXPECT_EQ(text.setValue(1.5), MStatus::kInvalidParameter);
    EXPECT_EQ(real.setValue("1.5"), MStatus::kInvalidParameter);
    MString kept("kept");
    EXPECT_EQ(real.getValue(kept), MStatus::kInvalidParameter);
    EXPECT_EQ(kept, "kept");
    double number = 7;
    EXPECT_EQ(text.getValue(number), MStatus::kInvalidParameter);
    EXPECT_EQ(at("numbers").getValue(number), MStatus::kInvalidParameter);
    EXPECT_EQ(at("translate").getValue(number), MStatus::kInvalidParameter);
    EXPECT_EQ(at("numbers").setValue(1), MStatus::kInvalidParameter);
    EXPECT_EQ(MPlug().getValue(number), MStatus::kFailure);
    EXPECT_EQ(number, 7);
    MDataHandle nothing;
    EXPECT_FALSE(real.setValue(nothing));
    EXPECT_EQ(real.asDouble(), 2.75);
}

// Fault: values of plugs that depend on the scene's units, or units of the API's values ignored.
TEST_F(PlugTest, UnitsAreInternalWhateverTheSceneShows) {
    run("currentUnit -l m; currentUnit -a rad; currentUnit -t pal;");
    MPlug x = at("translateX"), turn = at("rotateX");
    MDistance metre(1, MDistance::kMeters);
    MAngle right(90, MAngle::kDegrees);
    EXPECT_TRUE(x.setValue(metre));
    EXPECT_TRUE(turn.setValue(right));
    EXPECT_DOUBLE_EQ(x.asDouble(), 100);
    EXPECT_DOUBLE_EQ(turn.asDouble(), pi / 2);
    EXPECT_TRUE(x.setValue(25.4));
    EXPECT_DOUBLE_EQ(x.asMDistance().asInches(), 10);
    EXPECT_TRUE(turn.setValue(pi));
    EXPECT_DOUBLE_EQ(turn.asMAngle().asDegrees(), 180);
    EXPECT_EQ(run("getAttr n.tx"), "0.254");
    MTime second(1, MTime::kSeconds);
    MPlug out = plug("time1.outTime");
    MGlobal::viewFrame(second);
    EXPECT_EQ(out.asMTime(), second);
    EXPECT_DOUBLE_EQ(out.asMTime().as(MTime::kPALFrame), 25);
}

// Fault: a value at a time context read at the current time, or the current time moved by the read.
TEST_F(PlugTest, ReadsAtATimeContext) {
    run("setKeyframe -at tx -t 0 -v 0 -itt linear -ott linear n; setKeyframe -at tx -t 24 -v 48 -itt linear -ott "
        "linear n; currentTime 6;");
    MPlug x = at("translateX");
    EXPECT_NEAR(x.asDouble(), 12, 1e-9);
    MDGContext half(MTime(0.5, MTime::kSeconds)), end(MTime(24, MTime::kFilm));
    EXPECT_NEAR(x.asDouble(half), 24, 1e-9);
    EXPECT_NEAR(x.asDouble(end), 48, 1e-9);
    EXPECT_NEAR(x.asDouble(), 12, 1e-9);
    EXPECT_EQ(run("currentTime -q"), "6");
    MObject triple;
    EXPECT_TRUE(at("translate").getValue(triple, half));
    double a = 0, b = 0, c = 0;
    EXPECT_TRUE(MFnNumericData(triple).getData(a, b, c));
    EXPECT_NEAR(a, 24, 1e-9);
    MTime when;
    EXPECT_TRUE(half.getTime(when));
    EXPECT_FALSE(half.isNormal());
    EXPECT_FALSE(MDGContext::fsNormal.getTime(when));
}

// Fault: data of a plug read as another type, or a copy of a value that still changes the node.
TEST_F(PlugTest, ValuesAsData) {
    run("setAttr n.t 1 2 3");
    MObject triple = at("translate").asMObject();
    MFnNumericData numbers(triple);
    EXPECT_EQ(numbers.numericType(), MFnNumericData::k3Double);
    double a = 9, b = 9, c = 9;
    float fa = 9, fb = 9, fc = 9;
    EXPECT_TRUE(numbers.getData(a, b, c));
    EXPECT_THAT((std::vector{a, b, c}), ElementsAre(1, 2, 3));
    EXPECT_EQ(numbers.getData(fa, fb, fc), MStatus::kInvalidParameter);
    EXPECT_EQ(numbers.getData(a, b), MStatus::kInvalidParameter);
    EXPECT_EQ(fa, 9);
    EXPECT_TRUE(numbers.setData(4.0, 5.0, 6.0));
    EXPECT_EQ(at("translateY").asDouble(), 2);
    EXPECT_TRUE(at("translate").setValue(triple));
    EXPECT_EQ(at("translateY").asDouble(), 5);

    MObject matrix = MPlug(node, MFnDependencyNode(node).attribute("matrix")).asMObject();
    EXPECT_EQ(matrix.apiType(), MFn::kMatrixData);
    EXPECT_EQ(MFnMatrixData(matrix).matrix()(3, 2), 6);
    MStatus status;
    MFnStringData(matrix, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    MFnNumericData wrong(matrix, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(wrong.getData(a, b), MStatus::kFailure);
    EXPECT_FALSE(at("translate").setValue(matrix));
    EXPECT_FALSE(at("text").setValue(triple));
    EXPECT_EQ(at("text").setValue(node), MStatus::kInvalidParameter);
    MObject text = MFnStringData().create("hello");
    EXPECT_TRUE(at("text").setValue(text));
    EXPECT_EQ(at("text").asString(), "hello");
    MFnNumericData().create(MFnNumericData::kDouble, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: a plug given data of a kind that it does not hold, such as a mesh in an array of numbers.
TEST_F(PlugTest, DataOfAnotherKindIsRefused) {
    run("polyCube -ch 0 -n box");
    MObject mesh = plug("boxShape.outMesh").asMObject();
    EXPECT_TRUE(mesh.hasFn(MFn::kMesh));
    MFnDependencyNode fn(node);
    MFnTypedAttribute typed;
    EXPECT_TRUE(fn.addAttribute(typed.create("ints", "ii", MFnData::kIntArray)));
    EXPECT_FALSE(at("ints").setValue(mesh));
    EXPECT_EQ(run("getAttr n.ints"), "");
    EXPECT_EQ(typed.setDefault(mesh), MStatus::kInvalidParameter);
}

// Fault: a connection seen from one end alone, taken for the parent's, or in the wrong direction.
TEST_F(PlugTest, Connections) {
    make("transform", "a");
    make("transform", "b");
    run("connectAttr n.tx a.ty; connectAttr n.tx b.tz; connectAttr a.sx n.sy;");
    MPlugArray found;
    EXPECT_TRUE(at("translateX").connectedTo(found, false, true));
    EXPECT_EQ(found.length(), 2u);
    EXPECT_EQ(found[0], plug("a.ty"));
    EXPECT_EQ(found[1], plug("b.tz"));
    EXPECT_FALSE(at("translateX").connectedTo(found, true, false));
    EXPECT_EQ(found.length(), 0u);
    EXPECT_TRUE(at("scaleY").connectedTo(found, true, true));
    EXPECT_EQ(found[0], plug("a.sx"));
    EXPECT_TRUE(at("translateX").isSource() && !at("translateX").isDestination());
    EXPECT_TRUE(at("scaleY").isDestination() && !at("scaleY").isSource());
    EXPECT_FALSE(at("translate").isConnected());
    EXPECT_EQ(at("translate").numConnectedChildren(), 1u);
    EXPECT_TRUE(at("numbers").elementByLogicalIndex(3).setValue(1));
    run("connectAttr n.small n.numbers[8]");
    EXPECT_EQ(at("numbers").numConnectedElements(), 1u);
    EXPECT_EQ(at("numbers").connectionByPhysicalIndex(0).logicalIndex(), 8u);
    MStatus status;
    at("numbers").connectionByPhysicalIndex(1, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_FALSE(at("scaleY").setValue(2.0)) << "a fed plug is not set";
}

// Fault: locks that are not inherited, that do not keep values from changing, or that are looked for too far.
TEST_F(PlugTest, LocksAndFreedomToChange) {
    MPlug t = at("translate"), x = at("translateX");
    EXPECT_EQ(t.isFreeToChange(), MPlug::kFreeToChange);
    EXPECT_TRUE(x.setLocked(true));
    EXPECT_FALSE(x.setValue(1.0));
    EXPECT_EQ(x.asDouble(), 0);
    EXPECT_EQ(x.isFreeToChange(), MPlug::kNotFreeToChange);
    EXPECT_EQ(t.isFreeToChange(), MPlug::kChildrenNotFreeToChange);
    EXPECT_EQ(t.isFreeToChange(true, false), MPlug::kFreeToChange);
    EXPECT_FALSE(t.isLocked());
    EXPECT_TRUE(x.setLocked(false));
    EXPECT_TRUE(t.setLocked(true));
    EXPECT_TRUE(x.isLocked());
    EXPECT_FALSE(x.setValue(1.0));
    EXPECT_EQ(x.isFreeToChange(), MPlug::kNotFreeToChange);
    EXPECT_EQ(x.isFreeToChange(false), MPlug::kFreeToChange);
    EXPECT_TRUE(t.setLocked(false));
    run("setKeyframe -at tx -t 1 -v 2 n");
    EXPECT_EQ(x.isFreeToChange(), MPlug::kFreeToChange) << "beside keys a value may be set";
    EXPECT_EQ(t.isFreeToChange(), MPlug::kFreeToChange);
    EXPECT_TRUE(x.setValue(7.0));
    EXPECT_EQ(x.asDouble(), 7);
    run("currentTime 4");
    EXPECT_EQ(x.asDouble(), 2) << "until the curve gives another one";
    run("cutKey n");
    make("transform", "a");
    run("connectAttr a.t n.t");
    EXPECT_EQ(x.isFreeToChange(), MPlug::kNotFreeToChange);

    EXPECT_TRUE(at("real").setKeyable(true));
    EXPECT_TRUE(at("real").isKeyable());
    EXPECT_FALSE(at("small").isKeyable());
    EXPECT_TRUE(at("small").setChannelBox(true));
    EXPECT_TRUE(at("small").isChannelBoxFlagSet());
}

// Fault: plugs that keep a dead node's memory in use, or answer success without a node.
TEST_F(PlugTest, PlugsOfNodesThatAreGone) {
    MPlug real = at("real"), element = at("numbers").elementByLogicalIndex(1);
    EXPECT_TRUE(element.setValue(3));
    EXPECT_TRUE(MFnDependencyNode(node).removeAttribute(real.attribute()));
    MStatus status;
    real.asDouble(MDGContext::fsNormal, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    scene.reset();
    element.asInt(MDGContext::fsNormal, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(element.setValue(4), MStatus::kFailure);
    EXPECT_EQ(element.setLocked(true), MStatus::kFailure);
    EXPECT_EQ(element.name(&status), "");
    EXPECT_EQ(status, MStatus::kFailure);
    element.isConnected(&status);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(element.isFreeToChange(true, true, &status), MPlug::kNotFreeToChange);
    EXPECT_EQ(status, MStatus::kFailure);
    MPlugArray found;
    EXPECT_FALSE(element.connectedTo(found, true, true, &status));
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_TRUE(MPlug().isNull());
    MPlug().node(&status);
    EXPECT_EQ(status, MStatus::kFailure);
    MObject foreign = list;
    EXPECT_FALSE(MPlug(make("transform", "other"), foreign).setValue(1.0)) << "another node's attribute";
}

} // namespace
