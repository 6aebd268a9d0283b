#include <maya/MArgList.h>

#include "api/px/ArgListAccess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

MArgList sample() {
    MArgList args;
    args.addArg(true);
    args.addArg(-7);
    args.addArg(2.9);
    args.addArg(MString("12"));
    args.addArg(MString("-longName"));
    return args;
}

// Fault: text read as a number, a number read as text, or a double rounded instead of cut.
TEST(ArgList, ReadsByType) {
    const MArgList args = sample();
    MStatus status;
    EXPECT_EQ(args.length(), 5u);
    EXPECT_TRUE(args.asBool(0, &status) && status);
    EXPECT_EQ(args.asInt(0), 1);
    EXPECT_EQ(args.asDouble(1), -7.0);
    EXPECT_EQ(args.asInt(2), 2);
    EXPECT_EQ(args.asString(3, &status), "12");
    EXPECT_TRUE(status);
    EXPECT_EQ(args.asInt(3, &status), 0);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(args.asString(1, &status), "");
    EXPECT_EQ(status, MStatus::kFailure);
    args.asDouble(5, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    int kept = 42;
    EXPECT_EQ(args.get(3, kept), MStatus::kFailure);
    EXPECT_EQ(kept, 42);
    MArgList extremes;
    extremes.addArg(1e300);
    extremes.addArg(std::nan(""));
    EXPECT_EQ(extremes.asInt(0), 2147483647);
    EXPECT_EQ(extremes.asInt(1), 0);
}

// Fault: the index not moved, moved on failure, or elements read past the end.
TEST(ArgList, ReadsSeveralElements) {
    MArgList args;
    for (const double x : {1.0, 2.0, 3.0, 4.0}) args.addArg(x);
    args.addArg(MString("end"));
    unsigned int index = 1;
    EXPECT_EQ(args.asVector(index), MVector(2, 3, 4));
    EXPECT_EQ(index, 4u);
    MStatus status;
    index = 3;
    args.asVector(index, 3, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(index, 3u);
    index = 2;
    args.asPoint(index, 3, &status);
    EXPECT_EQ(status, MStatus::kFailure);
    index = 0;
    EXPECT_EQ(args.asPoint(index, 4), MPoint(1, 2, 3, 4));
    index = 0xFFFFFFFFu;
    args.asMatrix(index, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    index = 0;
    args.asVector(index, 9, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: an array argument not taken as one argument, or single arguments of another type swept up.
TEST(ArgList, ReadsArrays) {
    const char* words[]{"a", "b"};
    MArgList args;
    host::ArgListAccess::add(args, MStringArray(words, 2));
    args.addArg(1);
    args.addArg(2.5);
    args.addArg(MString("x"));
    EXPECT_EQ(args.length(), 4u);
    unsigned int index = 0;
    MStatus status;
    EXPECT_EQ(args.asStringArray(index, &status).length(), 2u);
    EXPECT_TRUE(status);
    EXPECT_EQ(index, 1u);
    const MIntArray ints = args.asIntArray(index, &status);
    ASSERT_EQ(ints.length(), 2u);
    EXPECT_EQ(ints[1], 2);
    EXPECT_EQ(index, 3u);
    EXPECT_EQ(args.asDoubleArray(index, &status).length(), 0u);
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_EQ(index, 3u);
    args.asString(0, &status);
    EXPECT_EQ(status, MStatus::kFailure);
}

// Fault: a UI unit not taken into account in one of the two ways.
TEST(ArgList, QuantitiesAreInUiUnits) {
    ASSERT_TRUE(MDistance::setUIUnit(MDistance::kMeters));
    MArgList args;
    args.addArg(MDistance(250.0));
    EXPECT_EQ(args.asDouble(0), 2.5);
    EXPECT_EQ(args.asDistance(0).asCentimeters(), 250.0);
    ASSERT_TRUE(MDistance::setUIUnit(MDistance::kCentimeters));
    args.addArg(MAngle(180.0, MAngle::kDegrees));
    EXPECT_DOUBLE_EQ(args.asAngle(1).asRadians(), 3.14159265358979323846);
    args.addArg(MTime(2.0, MTime::kSeconds));
    EXPECT_EQ(args.asTime(2), MTime(48.0, MTime::kFilm));
}

// Fault: a flag found by a part of its name, or in a number.
TEST(ArgList, FindsFlags) {
    const MArgList args = sample();
    EXPECT_EQ(args.flagIndex("ln", "longName"), 4u);
    EXPECT_EQ(args.flagIndex("-ln", "-longName"), 4u);
    EXPECT_EQ(args.flagIndex("12"), 3u);
    EXPECT_EQ(args.flagIndex("long"), static_cast<unsigned int>(MArgList::kInvalidArgIndex));
    std::ostringstream os;
    os << args;
    EXPECT_EQ(os.str(), "1 -7 2.9 12 -longName");
}

} // namespace
