#include "GraphFixture.h"

#include <maya/MArrayDataBuilder.h>
#include <maya/MColorArray.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MMatrixArray.h>
#include <maya/MTimeArray.h>

#include <limits>
#include <sstream>

namespace {

struct ArrayData : GraphFixture {
    ArrayData() { node = make("transform", "a"); }
    MPlug add(const MObject& attribute) {
        EXPECT_TRUE(MFnDependencyNode(node).addAttribute(attribute));
        return MPlug(node, attribute);
    }
    MObject node;
};

// Faults: data of a plug that change without being set, an element out of range written, one kind taken for another.
TEST_F(ArrayData, DataAreThePlugsOwn) {
    const double numbers[] = {1, 2, 3};
    MFnDoubleArrayData fn;
    MObject made = fn.create(MDoubleArray(numbers, 3));
    MPlug plug = add(MFnTypedAttribute().create("weights", "w", MFnData::kDoubleArray));
    ASSERT_TRUE(plug.setValue(made));
    MObject held;
    ASSERT_TRUE(plug.getValue(held));
    MFnDoubleArrayData seen(held);
    EXPECT_EQ(seen.length(), 3u);
    seen[1] = 20;
    EXPECT_EQ(seen.set(9, 3), MStatus::kInvalidParameter);
    EXPECT_EQ(seen.array()[1], 20);
    MObject again;
    plug.getValue(again);
    EXPECT_EQ(MFnDoubleArrayData(again).array()[1], 2) << "not set yet";
    EXPECT_TRUE(plug.setValue(held));
    plug.getValue(again);
    EXPECT_EQ(MFnDoubleArrayData(again).array()[1], 20);

    MStatus status;
    MFnPointArrayData wrong(held, &status);
    EXPECT_FALSE(status);
    EXPECT_EQ(wrong.length(&status), 0u);
    EXPECT_FALSE(status);
    MFnStringArrayData texts;
    MStringArray words;
    words.append("haze");
    MObject list = texts.create(words);
    EXPECT_FALSE(plug.setValue(list));
    EXPECT_TRUE(texts.set("fog", 0));
    EXPECT_EQ(texts.array()[0], MString("fog"));
    MVectorArray directions(2, MVector(1, 2, 3));
    MFnVectorArrayData vectors;
    vectors.create(directions);
    vectors[1].y = 5;
    MVectorArray copy;
    EXPECT_TRUE(vectors.copyTo(copy));
    EXPECT_EQ(copy[1], MVector(1, 5, 3));
}

// Faults: limits and defaults in another unit than the attribute's, a limit that appears from nowhere.
TEST_F(ArrayData, UnitAttributes) {
    MFnUnitAttribute fn;
    fn.create("turn", "tu", MAngle(180, MAngle::kDegrees));
    double number = 0;
    EXPECT_TRUE(fn.getDefault(number));
    EXPECT_DOUBLE_EQ(number, 3.14159265358979323846);
    MAngle angle;
    MTime time;
    EXPECT_EQ(fn.getMin(angle), MStatus::kFailure);
    EXPECT_TRUE(fn.setMin(MAngle(-90, MAngle::kDegrees)));
    EXPECT_TRUE(fn.getMin(angle));
    EXPECT_DOUBLE_EQ(angle.asDegrees(), -90);
    EXPECT_EQ(fn.setMax(MTime(1)), MStatus::kInvalidParameter);
    EXPECT_EQ(fn.getDefault(time), MStatus::kInvalidParameter);
    EXPECT_FALSE(fn.hasMax());
    EXPECT_EQ(fn.unitType(), MFnUnitAttribute::kAngle);
    MStatus status;
    EXPECT_TRUE(fn.create("odd", "o", MFnUnitAttribute::kLast, 0, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    MFnUnitAttribute start;
    const MPlug plug = add(start.create("start", "st", MTime(2, MTime::kSeconds)));
    EXPECT_EQ(plug.asMTime().as(MTime::kFilm), 48);
}

// Faults: kinds that were not added accepted, or refused once they are; a message that takes numbers.
TEST_F(ArrayData, GenericAndMessageAttributes) {
    MFnGenericAttribute fn;
    MPlug plug = add(fn.create("any", "any"));
    EXPECT_TRUE(fn.accepts(MFnData::kMesh)) << "nothing is ruled out yet";
    EXPECT_TRUE(fn.addDataAccept(MFnData::kString));
    EXPECT_TRUE(fn.addNumericDataAccept(MFnNumericData::k3Double));
    EXPECT_FALSE(fn.addDataAccept(MFnData::kLattice));
    EXPECT_FALSE(fn.accepts(MFnData::kMesh));
    EXPECT_FALSE(fn.removeDataAccept(MFnData::kMesh));
    EXPECT_NE(run("connectAttr persp.v a.any").find("not compatible"), std::string::npos);
    EXPECT_EQ(run("connectAttr persp.t a.any"), "Connected persp.t to a.any.");
    run("setAttr persp.t 4 5 6");
    MObject value;
    EXPECT_TRUE(plug.getValue(value));
    EXPECT_EQ(value.apiType(), MFn::kNumericData);
    add(MFnMessageAttribute().create("link", "li"));
    EXPECT_EQ(run("connectAttr persp.message a.link"), "Connected persp.msg to a.li.");
    EXPECT_NE(run("connectAttr -f a.link persp.tx").find("not compatible"), std::string::npos);
}

// Faults: elements beyond all bounds made, one that is not there removed; a builder for what is no array of that kind.
TEST_F(ArrayData, BuildersOutOfRange) {
    MFnNumericAttribute fn;
    const MObject attribute = fn.create("list", "ls", MFnNumericData::kDouble);
    fn.setArray(true);
    MStatus status;
    MArrayDataBuilder none(attribute, 1000000000, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    none.addElement(0, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    fn.setUsesArrayDataBuilder(true);
    MArrayDataBuilder builder(attribute, 3, &status);
    EXPECT_EQ(status, MStatus::kSuccess);
    builder.addElement(7).setDouble(0.5);
    EXPECT_EQ(builder.addLast(&status).asDouble(), 0);
    EXPECT_EQ(builder.elementCount(), 2u);
    EXPECT_EQ(builder.removeElement(3), MStatus::kInvalidParameter);
    builder.addElement(std::numeric_limits<unsigned int>::max(), &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(builder.elementCount(), 2u);
    builder.addLastArray(&status);
    EXPECT_EQ(status, MStatus::kInvalidParameter) << "its elements are no arrays";
}

// Faults: a colour's alpha lost, an array of another length than what it takes over.
TEST_F(ArrayData, ArraysOfValues) {
    double colours[][4] = {{0.5, 0.25, 0, 1}, {1, 0, 0, 0.5}};
    MColorArray list;
    EXPECT_TRUE(list.set(colours, 2));
    EXPECT_EQ(list.length(), 2u);
    EXPECT_EQ(list[1].a, 0.5f);
    EXPECT_EQ(list.set(MColor(), 2), MStatus::kInvalidParameter);
    MMatrixArray matrices(2);
    EXPECT_EQ(matrices[1], MMatrix::identity);
    const MTimeArray times(2, MTime(12, MTime::kFilm));
    EXPECT_EQ(times[1].as(MTime::kSeconds), 0.5);
    EXPECT_EQ(MTimeArray(4000000000u, MTime()).length(), 0u);
}

} // namespace
