#include "GraphFixture.h"

#include <maya/MFloatMatrix.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MMatrix.h>
#include <maya/MObjectHandle.h>

namespace {

struct AttributeFnTest : GraphFixture {
    AttributeFnTest() { node = make("transform", "n"); }
    MStatus add(const MObject& attribute) { return MFnDependencyNode(node).addAttribute(attribute); }
    MObject node;
};

// Fault: a number type without its size or count, or one that is told as another.
TEST_F(AttributeFnTest, NumericTypes) {
    const struct {
        MFnNumericData::Type type;
        unsigned parts;
        MFn::Type api;
    } cases[] = {
        {MFnNumericData::kBoolean, 0, MFn::kNumericAttribute}, {MFnNumericData::kByte, 0, MFn::kNumericAttribute},
        {MFnNumericData::kChar, 0, MFn::kNumericAttribute},    {MFnNumericData::kShort, 0, MFn::kNumericAttribute},
        {MFnNumericData::kInt64, 0, MFn::kNumericAttribute},   {MFnNumericData::k2Short, 2, MFn::kAttribute2Short},
        {MFnNumericData::k3Int, 3, MFn::kAttribute3Int},       {MFnNumericData::k2Float, 2, MFn::kAttribute2Float},
        {MFnNumericData::k3Double, 3, MFn::kAttribute3Double}, {MFnNumericData::k4Double, 4, MFn::kAttribute4Double},
    };
    for (const auto& c : cases) {
        MFnNumericAttribute fn;
        MStatus status;
        const MObject made = fn.create("a", "b", c.type, 1, &status);
        EXPECT_TRUE(status) << c.type;
        EXPECT_EQ(fn.unitType(), c.type);
        EXPECT_EQ(made.apiType(), c.api);
        EXPECT_TRUE(made.hasFn(MFn::kNumericAttribute) && made.hasFn(MFn::kAttribute));
        EXPECT_EQ(made.hasFn(MFn::kCompoundAttribute), c.parts > 0);
        EXPECT_EQ(fn.child(c.parts, &status).isNull(), true);
        EXPECT_EQ(status, MStatus::kInvalidParameter);
        if (c.parts > 0) {
            EXPECT_EQ(MFnAttribute(fn.child(c.parts - 1)).parent(), made);
        }
    }
    MStatus status;
    EXPECT_TRUE(MFnNumericAttribute().create("a", "b", MFnNumericData::kAddr, 0, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(MFnNumericAttribute().create("", "b", MFnNumericData::kInt, 0, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: limits of a tuple taken with the wrong count, swapped, or kept from the plug that they are to guard.
TEST_F(AttributeFnTest, LimitsByCount) {
    MFnNumericAttribute fn;
    const MObject one = fn.create("one", "on", MFnNumericData::kDouble);
    double a = 7, b = 7, c = 7;
    EXPECT_FALSE(fn.hasMin());
    EXPECT_EQ(fn.getMin(a), MStatus::kFailure);
    EXPECT_EQ(a, 7);
    EXPECT_TRUE(fn.setMin(-1));
    EXPECT_TRUE(fn.setSoftMax(0.5));
    EXPECT_TRUE(fn.hasMin() && fn.hasSoftMax() && !fn.hasMax() && !fn.hasSoftMin());
    EXPECT_TRUE(fn.getSoftMax(a));
    EXPECT_EQ(a, 0.5);
    EXPECT_EQ(fn.setMax(1, 2), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.getMin(a, b), MStatus::kInvalidParameter);
    EXPECT_TRUE(add(one));
    EXPECT_THAT(run("setAttr n.one -2"), testing::HasSubstr("Error"));
    EXPECT_EQ(run("setAttr n.one -1; getAttr n.one"), "-1");

    const MObject three = fn.create("three", "th", MFnNumericData::k3Float);
    EXPECT_EQ(fn.setMax(1), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.setMax(1, 2), MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.setMax(1, 2, 3));
    EXPECT_TRUE(fn.getMax(a, b, c));
    EXPECT_EQ(a + 10 * b + 100 * c, 321);
    EXPECT_TRUE(MFnNumericAttribute(fn.child(2)).getMax(c));
    EXPECT_EQ(c, 3);
    EXPECT_TRUE(add(three));
    EXPECT_THAT(run("setAttr n.three0 2"), testing::HasSubstr("Error"));
    EXPECT_EQ(run("setAttr n.three2 2.5; getAttr n.three2"), "2.5");
}

// Fault: a default that reaches the tuple but not its parts, or a plug that starts at another value.
TEST_F(AttributeFnTest, DefaultsOfTuplesAndParts) {
    MFnNumericAttribute fn;
    const MObject three = fn.create("three", "th", MFnNumericData::k3Double, 4);
    double a = 0, b = 0, c = 0;
    EXPECT_TRUE(fn.getDefault(a, b, c));
    EXPECT_EQ(a + b + c, 12);
    EXPECT_TRUE(fn.setDefault(1.0, 2.0, 3.0));
    EXPECT_EQ(fn.setDefault(1.0, 2.0), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.getDefault(a), MStatus::kInvalidParameter);
    EXPECT_TRUE(MFnNumericAttribute(fn.child(1)).getDefault(b));
    EXPECT_EQ(b, 2);
    EXPECT_TRUE(add(three));
    EXPECT_EQ(run("getAttr n.three"), "1 2 3");
    EXPECT_EQ(run("getAttr n.three1"), "2");

    const MObject big = fn.create("big", "bg", MFnNumericData::kInt64);
    EXPECT_TRUE(fn.setDefault((MInt64(1) << 60) + 1));
    EXPECT_TRUE(add(big));
    EXPECT_EQ(MFnDependencyNode(node).findPlug("big", true).asInt64(), (MInt64(1) << 60) + 1);

    // Parts made first bring their own defaults along.
    MFnNumericAttribute part;
    const MObject u = part.create("partU", "pu", MFnNumericData::kFloat, 0.25);
    const MObject v = part.create("partV", "pv", MFnNumericData::kFloat, 0.75);
    const MObject uv = fn.create("uv", "uv", u, v);
    float fu = 0, fv = 0;
    EXPECT_TRUE(fn.getDefault(fu, fv));
    EXPECT_EQ(fu, 0.25f);
    EXPECT_EQ(fv, 0.75f);
    EXPECT_TRUE(add(uv));
    EXPECT_EQ(run("getAttr n.uv"), "0.25 0.75");
}

// Fault: a tuple of parts that cannot be one: taken parts, the same part twice, parts of different types, no name.
TEST_F(AttributeFnTest, TuplesOfUnfitParts) {
    MFnNumericAttribute part, fn;
    const auto number = [&](const char* name, MFnNumericData::Type type = MFnNumericData::kFloat) {
        return part.create(name, name, type);
    };
    MStatus status;
    const MObject a = number("a");
    EXPECT_TRUE(fn.create("t", "t", a, number("b", MFnNumericData::kDouble), MObject::kNullObj, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.create("t", "t", a, a, MObject::kNullObj, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.create("t", "t", a, MObject::kNullObj, number("b"), &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.create("", "", a, number("b"), MObject::kNullObj, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_FALSE(fn.create("t", "t", a, number("b"), MObject::kNullObj, &status).isNull());
    EXPECT_TRUE(fn.create("s", "s", a, number("c"), MObject::kNullObj, &status).isNull()) << "a has a parent now";
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: flags of a colour that stop at the compound, so that its parts stay keyable, writable or unsaved; flags of a
// compound forced upon children that are attributes of their own.
TEST_F(AttributeFnTest, FlagsSpreadToTupleParts) {
    MFnNumericAttribute fn;
    fn.createColor("sky", "sk");
    EXPECT_TRUE(fn.isUsedAsColor());
    EXPECT_EQ(MFnAttribute(fn.child(1)).name(), "skyG");
    EXPECT_EQ(MFnAttribute(fn.child(2)).shortName(), "skb");
    using Set = MStatus (MFnAttribute::*)(bool);
    using Get = bool (MFnAttribute::*)(MStatus*) const;
    const std::pair<Set, Get> flags[] = {{&MFnAttribute::setKeyable, &MFnAttribute::isKeyable},
                                         {&MFnAttribute::setStorable, &MFnAttribute::isStorable},
                                         {&MFnAttribute::setWritable, &MFnAttribute::isWritable},
                                         {&MFnAttribute::setReadable, &MFnAttribute::isReadable},
                                         {&MFnAttribute::setConnectable, &MFnAttribute::isConnectable},
                                         {&MFnAttribute::setHidden, &MFnAttribute::isHidden},
                                         {&MFnAttribute::setChannelBox, &MFnAttribute::isChannelBoxFlagSet},
                                         {&MFnAttribute::setInternal, &MFnAttribute::internal}};
    for (std::size_t i = 0; i < std::size(flags); ++i) {
        const bool want = !(fn.*flags[i].second)(nullptr);
        EXPECT_TRUE((fn.*flags[i].first)(want));
        EXPECT_EQ((fn.*flags[i].second)(nullptr), want) << i;
        for (unsigned k = 0; k < 3; ++k) EXPECT_EQ((MFnAttribute(fn.child(k)).*flags[i].second)(nullptr), want) << i;
    }
    EXPECT_TRUE(fn.setArray(true));
    EXPECT_FALSE(MFnAttribute(fn.child(0)).isArray());

    MFnNumericAttribute part;
    const MObject child = part.create("c", "c", MFnNumericData::kInt);
    MFnCompoundAttribute compound;
    compound.create("group", "gr");
    compound.addChild(child);
    EXPECT_TRUE(compound.setHidden(true));
    EXPECT_FALSE(part.isHidden());

    MStatus status;
    EXPECT_FALSE(MFnAttribute().isKeyable(&status));
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(MFnAttribute().setKeyable(true), MStatus::kFailure);
}

// Fault: enum fields out of order, doubled, or not found; a default that no field has given a name.
TEST_F(AttributeFnTest, EnumFields) {
    MFnEnumAttribute fn;
    const MObject mode = fn.create("mode", "md", 5);
    short s = 77;
    EXPECT_EQ(fn.getMin(s), MStatus::kFailure);
    EXPECT_TRUE(fn.addField("thick", 5));
    EXPECT_TRUE(fn.addField("none", -1));
    EXPECT_TRUE(fn.addField("thin", 2));
    EXPECT_TRUE(fn.addField("dense", 5)); // replaces
    EXPECT_TRUE(fn.getMin(s));
    EXPECT_EQ(s, -1);
    EXPECT_TRUE(fn.getMax(s));
    EXPECT_EQ(s, 5);
    EXPECT_EQ(fn.fieldName(5), "dense");
    EXPECT_EQ(fn.fieldIndex("thin"), 2);
    EXPECT_EQ(fn.defaultValue(), "dense");
    MStatus status;
    fn.fieldName(3, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    fn.fieldIndex("thick", &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(fn.setDefault("absent"), MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.setDefault("thin"));
    EXPECT_TRUE(fn.getDefault(s));
    EXPECT_EQ(s, 2);
    EXPECT_TRUE(add(mode));
    EXPECT_EQ(run("getAttr n.mode"), "2");
    EXPECT_EQ(run("getAttr -asString n.mode"), "thin");
    EXPECT_EQ(run("attributeQuery -n n -listEnum mode"), "none=-1:thin=2:dense=5");
}

// Fault: a compound that takes itself or one it is part of, with names that never end; children lost or out of step.
TEST_F(AttributeFnTest, CompoundChildren) {
    MFnCompoundAttribute outer, inner;
    const MObject o = outer.create("outer", "ou"), i = inner.create("inner", "in");
    MFnNumericAttribute number;
    const MObject a = number.create("a", "aa", MFnNumericData::kInt, 1);
    const MObject b = number.create("b", "bb", MFnNumericData::kInt, 2);
    EXPECT_TRUE(outer.addChild(a));
    EXPECT_TRUE(outer.addChild(i));
    EXPECT_TRUE(inner.addChild(b));
    EXPECT_EQ(outer.addChild(o), MStatus::kInvalidParameter);
    EXPECT_EQ(inner.addChild(o), MStatus::kInvalidParameter);
    EXPECT_EQ(inner.addChild(a), MStatus::kInvalidParameter) << "it has a parent";
    EXPECT_EQ(outer.addChild(MObject::kNullObj), MStatus::kInvalidParameter);
    EXPECT_EQ(outer.removeChild(b), MStatus::kInvalidParameter);
    EXPECT_TRUE(outer.removeChild(a));
    EXPECT_EQ(outer.numChildren(), 1u);
    EXPECT_EQ(outer.child(0), i);
    EXPECT_TRUE(outer.addChild(a));
    MStatus status;
    EXPECT_TRUE(outer.child(2, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(MFnAttribute(b).parent(), i);
    MFnAttribute(o).parent(&status);
    EXPECT_EQ(status, MStatus::kNotFound);
    EXPECT_TRUE(add(o));
    EXPECT_EQ(run("getAttr n.outer.a"), "1");
    EXPECT_EQ(run("getAttr n.b"), "2");
    // A compound that nodes use stays as it is.
    EXPECT_FALSE(outer.addChild(number.create("late", "lt", MFnNumericData::kInt)));
    EXPECT_FALSE(outer.removeChild(a));
    EXPECT_EQ(run("setAttr n.a 5; getAttr n.a"), "5");
}

// Fault: a default of the wrong type taken; function sets that cannot be put on what they themselves made.
TEST_F(AttributeFnTest, TypedAndMatrixDefaults) {
    MFnTypedAttribute typed;
    MStatus status;
    const MObject text = typed.create("text", "txt", MFnData::kString, MFnStringData().create("clear"), &status);
    EXPECT_TRUE(status);
    EXPECT_TRUE(add(text));
    EXPECT_EQ(run("getAttr n.text"), "clear");
    typed.create("wrong", "wr", MFnData::kString, MFnMatrixData().create(MMatrix()), &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(typed.create("plug", "pg", MFnData::kPlugin, &status).isNull());
    EXPECT_EQ(status, MStatus::kNotImplemented);
    for (const auto type : {MFnData::kString, MFnData::kMatrix, MFnData::kMesh, MFnData::kIntArray, MFnData::kAny}) {
        const MObject made = typed.create("x", "x", type, &status);
        EXPECT_TRUE(status) << type;
        EXPECT_EQ(MFnTypedAttribute(made, &status).attrType(), type);
        EXPECT_TRUE(status) << type;
    }

    MMatrix m;
    m(3, 0) = 5;
    MFloatMatrix f;
    MFnMatrixAttribute matrix;
    const MObject d = matrix.create("mm", "mm", MFnMatrixAttribute::kDouble);
    EXPECT_TRUE(matrix.setDefault(m));
    EXPECT_EQ(matrix.setDefault(f), MStatus::kInvalidParameter);
    MMatrix back;
    EXPECT_TRUE(matrix.getDefault(back));
    EXPECT_EQ(back, m);
    EXPECT_TRUE(add(d));
    EXPECT_EQ(run("getAttr n.mm"), "1 0 0 0 0 1 0 0 0 0 1 0 5 0 0 1");
    const MObject single = matrix.create("fm", "fm", MFnMatrixAttribute::kFloat);
    EXPECT_EQ(matrix.setDefault(m), MStatus::kInvalidParameter);
    MFnMatrixAttribute again(single, &status);
    EXPECT_TRUE(status);
    f(1, 1) = 2;
    EXPECT_TRUE(again.setDefault(f));
    EXPECT_EQ(single.apiType(), MFn::kFloatMatrixAttribute);
    EXPECT_FALSE(MFnAttribute(d).accepts(MFnData::kString));
    EXPECT_TRUE(MFnAttribute(d).accepts(MFnData::kMatrix));
}

// Fault: two attributes under one name on a node, by long name, short name or a tuple's part.
TEST_F(AttributeFnTest, NameClashes) {
    MFnNumericAttribute fn;
    EXPECT_TRUE(add(fn.create("haze", "hz", MFnNumericData::kDouble)));
    for (const auto& [full, brief] : {std::pair{"haze", "h2"}, {"haze2", "hz"}, {"visibility", "x1"}, {"mine", "tx"}})
        EXPECT_EQ(add(fn.create(full, brief, MFnNumericData::kDouble)), MStatus::kFailure) << full << " " << brief;
    EXPECT_TRUE(add(fn.create("part1", "p1", MFnNumericData::kDouble)));
    EXPECT_EQ(add(fn.create("part", "p", MFnNumericData::k3Double)), MStatus::kFailure) << "its part1";
    EXPECT_FALSE(MFnDependencyNode(node).hasAttribute("part"));
    EXPECT_FALSE(MFnDependencyNode(node).hasAttribute("part0"));
    EXPECT_EQ(add(MObject::kNullObj), MStatus::kInvalidParameter);
    EXPECT_EQ(add(fn.child(0)), MStatus::kInvalidParameter) << "a part alone";
}

// Fault: handles of one attribute that are equal but hash differently, or different ones that are equal.
TEST_F(AttributeFnTest, Identity) {
    MFnDependencyNode fn(node);
    const MObject a = fn.attribute("tx"), b = fn.attribute("translateX");
    EXPECT_EQ(a, b);
    EXPECT_EQ(MObjectHandle(a).hashCode(), MObjectHandle(b).hashCode());
    EXPECT_EQ(MObjectHandle(a), MObjectHandle(b));
    EXPECT_NE(a, fn.attribute("ty"));
    EXPECT_EQ(a, MFnDependencyNode(make("transform", "other")).attribute("tx")) << "attributes belong to the type";
    EXPECT_FALSE(a == node);
    EXPECT_FALSE(MObject() == node);
    EXPECT_EQ(MObject(), MObject::kNullObj);
    EXPECT_FALSE(MObject().hasFn(MFn::kBase));
    EXPECT_EQ(MObject().apiType(), MFn::kInvalid);
    EXPECT_TRUE(fn.attribute("translate").hasFn(MFn::kNumericAttribute));
    EXPECT_TRUE(a.hasFn(MFn::kUnitAttribute));
    EXPECT_FALSE(a.hasFn(MFn::kDependencyNode) || node.hasFn(MFn::kAttribute));
}

} // namespace
