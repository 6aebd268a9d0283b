#include <maya/MAngle.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDistance.h>
#include <maya/MMatrix.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>

#include "base/Units.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

// Fault: an error text that users and scripts do not know, or stray text around it.
TEST(Status, TextsAndReports) {
    EXPECT_EQ(MStatus(MStatus::kSuccess).errorString(), "(kSuccess): Success");
    EXPECT_EQ(MStatus(MStatus::kFailure).errorString(), "(kFailure): Unexpected Internal Failure");
    EXPECT_EQ(MStatus(MStatus::kInvalidParameter).errorString(),
              "(kInvalidParameter): Object is incompatible with this method");
    EXPECT_EQ(MStatus(MStatus::kEndOfFile).errorString(), "(kEndOfFile): End of File");
    testing::internal::CaptureStderr();
    MStatus(MStatus::kNotFound).perror("looking");
    MStatus(MStatus::kNotFound).perror(MString());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "looking: (kNotFound): Item not found\n(kNotFound): Item not found\n");
    MStatus status;
    status.set(false, MStatus::kUnknownParameter, 0);
    EXPECT_TRUE(status == MStatus::kUnknownParameter && MStatus::kUnknownParameter == status && !status);
    status.set(false, MStatus::kSuccess, 0);
    EXPECT_TRUE(status.error());
}

MStatus checkedIt(MStatus given) {
    CHECK_MSTATUS_AND_RETURN_IT(given);
    return MStatus::kEndOfFile;
}

int checked(MStatus given) {
    CHECK_MSTATUS(given);
    CHECK_MSTATUS_AND_RETURN(given, 5);
    return 6;
}

// Fault: a failed status passed over, or a successful one reported.
TEST(Status, CheckMacros) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(checkedIt(MStatus::kSuccess), MStatus::kEndOfFile);
    EXPECT_EQ(checked(MStatus::kSuccess), 6);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(checkedIt(MStatus::kNotFound), MStatus::kNotFound);
    EXPECT_EQ(checked(MStatus::kNotFound), 5);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("(kNotFound): Item not found"), std::string::npos);
}

struct RateCase {
    MTime::Unit unit;
    double perSecond;
    const char* name;
    friend void PrintTo(const RateCase& c, std::ostream* out) { *out << c.name; }
};

class TimeRate : public testing::TestWithParam<RateCase> {};

// Fault: a unit with a neighbour's rate, in the class or by its name in scene files.
TEST_P(TimeRate, HasItsRate) {
    const auto& [unit, perSecond, name] = GetParam();
    EXPECT_DOUBLE_EQ(MTime(1.0, MTime::kSeconds).as(unit), perSecond);
    EXPECT_EQ(MTime(3.0 * perSecond, unit), MTime(3.0, MTime::kSeconds));
    ASSERT_TRUE(MTime::setUIUnit(unit));
    EXPECT_EQ(MTime::uiUnit(), unit);
    EXPECT_EQ(host::unitName(host::timeUnit()), name);
    EXPECT_EQ(host::timeUnitNamed(name), host::timeUnit());
    ASSERT_TRUE(MTime::setUIUnit(MTime::kFilm));
}

INSTANTIATE_TEST_SUITE_P(Units, TimeRate,
                         testing::Values(RateCase{MTime::kHours, 1.0 / 3600, "hour"},
                                         RateCase{MTime::kMilliseconds, 1000, "millisec"},
                                         RateCase{MTime::kGames, 15, "game"}, RateCase{MTime::kFilm, 24, "film"},
                                         RateCase{MTime::kPALFrame, 25, "pal"}, RateCase{MTime::kNTSCFrame, 30, "ntsc"},
                                         RateCase{MTime::kShowScan, 48, "show"}, RateCase{MTime::kPALField, 50, "palf"},
                                         RateCase{MTime::kNTSCField, 60, "ntscf"}, RateCase{MTime::k2FPS, 2, "2fps"},
                                         RateCase{MTime::k16FPS, 16, "16fps"}, RateCase{MTime::k375FPS, 375, "375fps"},
                                         RateCase{MTime::k6000FPS, 6000, "6000fps"}));

// Fault: sums in the wrong unit, or a division by the rate of something that is no unit.
TEST(Time, ArithmeticAndInvalidUnits) {
    MTime t(10.0, MTime::kFilm);
    EXPECT_EQ((t + MTime(1.0, MTime::kSeconds)).value(), 34.0);
    EXPECT_EQ((t - 4.0).unit(), MTime::kFilm);
    EXPECT_EQ((++t).value(), 11.0);
    EXPECT_TRUE(MTime(1.0, MTime::kSeconds) > MTime(23.5, MTime::kFilm));
    EXPECT_EQ(t.setUnit(MTime::kUserDef), MStatus::kInvalidParameter);
    EXPECT_EQ(MTime::setUIUnit(MTime::kInvalid), MStatus::kInvalidParameter);
    EXPECT_EQ(t.as(MTime::kLast), 0.0);
    EXPECT_EQ(MTime(3.0, MTime::kInvalid).as(MTime::kFilm), 0.0);
    // 30 frames in 1001 / 1000 seconds.
    EXPECT_DOUBLE_EQ(30 * host::timeUnitNamed("29.97fps")->ticks, 6006);
    EXPECT_EQ(host::unitName(*host::timeUnitNamed("29.97fps")), "29.97fps");
    EXPECT_DOUBLE_EQ(host::timeUnitNamed("44100fps")->ticks * 44100, 6000);
    for (const char* name : {"7fps", "0fps", "-24fps", "fps", "24", ""})
        EXPECT_FALSE(host::timeUnitNamed(name)) << name;
}

// Fault: a conversion factor (published: an inch has 2.54 cm, a mile 1609.344 m) or the UI unit the wrong way round.
TEST(Units, LengthsAndAngles) {
    EXPECT_DOUBLE_EQ(MDistance(1.0, MDistance::kMiles).asMeters(), 1609.344);
    EXPECT_DOUBLE_EQ(MDistance(1.0, MDistance::kYards).asFeet(), 3.0);
    EXPECT_DOUBLE_EQ(MDistance(1.0, MDistance::kFeet).asInches(), 12.0);
    EXPECT_DOUBLE_EQ(MDistance(1.0, MDistance::kInches).asMillimeters(), 25.4);
    EXPECT_DOUBLE_EQ(MDistance(2.5).as(MDistance::kKilometers), 2.5e-5);
    EXPECT_DOUBLE_EQ(MAngle(90.0, MAngle::kDegrees).asAngSeconds(), 324000.0);
    EXPECT_DOUBLE_EQ(MAngle(1.0).asDegrees(), 57.29577951308232);
    ASSERT_TRUE(MDistance::setUIUnit(MDistance::kMeters));
    EXPECT_DOUBLE_EQ(MDistance::uiToInternal(2.0), 200.0);
    EXPECT_DOUBLE_EQ(MDistance::internalToUI(2.0), 0.02);
    EXPECT_EQ(host::unitName(host::linearUnit()), "m");
    ASSERT_TRUE(MDistance::setUIUnit(MDistance::kCentimeters));
    EXPECT_EQ(MAngle::uiUnit(), MAngle::kDegrees);
    EXPECT_EQ(host::linearUnitNamed("inch"), host::LinearUnit::Inch);
    EXPECT_EQ(host::angularUnitNamed("rad"), host::AngularUnit::Radian);
    EXPECT_FALSE(host::linearUnitNamed("deg"));
    MStatus status;
    EXPECT_EQ(MDistance(1.0, MDistance::kInvalid).as(MDistance::kMeters, &status), 0.0);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(MAngle::setInternalUnit(MAngle::kDegrees), MStatus::kNotImplemented);
}

// Fault: a conversion between colour models. Published: orange (1, 0.5, 0) has hue 30.
TEST(Color, Models) {
    EXPECT_EQ(MColor(MColor::kHSV, 30.0f, 1.0f, 1.0f), MColor(1.0f, 0.5f, 0.0f));
    EXPECT_EQ(MColor(MColor::kHSV, -120.0f, 1.0f, 0.5f), MColor(0.0f, 0.0f, 0.5f));
    EXPECT_EQ(MColor(MColor::kCMY, 0.25f, 0.5f, 1.0f, 0.5f), MColor(0.75f, 0.5f, 0.0f, 0.5f));
    EXPECT_EQ(MColor(MColor::kRGB, static_cast<unsigned char>(255), static_cast<unsigned char>(0),
                     static_cast<unsigned char>(51)),
              MColor(1.0f, 0.0f, 0.2f));
    float c1, c2, c3, c4;
    EXPECT_TRUE(MColor(0.25f, 0.5f, 0.5f).get(MColor::kHSV, c1, c2, c3));
    EXPECT_TRUE(c1 == 180.0f && c2 == 0.5f && c3 == 0.5f);
    EXPECT_TRUE(MColor(0.5f, 0.25f, 0.0f).get(MColor::kCMYK, c1, c2, c3, c4));
    EXPECT_TRUE(c1 == 0.0f && c2 == 0.5f && c3 == 1.0f && c4 == 0.5f);
    EXPECT_EQ(0.5f * MColor(1.0f, 0.5f, 0.25f, 0.75f), MColor(0.5f, 0.25f, 0.125f, 0.75f));
}

// Fault: an empty box that holds the origin, or a transformed box that is too small.
TEST(BoundingBox, GrowsAndTransforms) {
    MBoundingBox box;
    EXPECT_FALSE(box.contains(MPoint::origin));
    EXPECT_EQ(box.width(), 0.0);
    EXPECT_FALSE(box.intersects(box));
    box.expand(MPoint(1, 2, 3));
    box.expand(MBoundingBox());
    EXPECT_EQ(box.min(), MPoint(1, 2, 3));
    box.expand(MBoundingBox(MPoint(3, 0, 5), MPoint(2, 1, 4)));
    EXPECT_TRUE(box.width() == 2.0 && box.height() == 2.0 && box.depth() == 2.0);
    EXPECT_EQ(box.center(), MPoint(2, 1, 4));
    // A quarter turn about z takes x 1..3, y 0..2 to x -2..0, y 1..3.
    const double turn[4][4]{{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 10, 1}};
    box.transformUsing(MMatrix(turn));
    EXPECT_EQ(box.min(), MPoint(-2, 1, 13));
    EXPECT_EQ(box.max(), MPoint(0, 3, 15));
    const MBoundingBox beside(MPoint(0.5, 1, 13), MPoint(1, 2, 14));
    EXPECT_FALSE(box.intersects(beside));
    EXPECT_TRUE(box.intersects(beside, 0.5));
}

// Fault: points with w other than 1 treated as if it were 1, or zero vectors divided by their length.
TEST(PointsAndVectors, HomogeneousPointsAndZeroVectors) {
    const MPoint p(2, 4, 6, 2);
    EXPECT_EQ(MPoint(p).cartesianize(), MPoint(1, 2, 3));
    EXPECT_EQ(MPoint(p).rationalize(), MPoint(1, 2, 3, 2));
    EXPECT_EQ(MPoint(1, 2, 3, 2).homogenize(), p);
    EXPECT_EQ(MPoint(1, 2, 3, 0).cartesianize(), MPoint(1, 2, 3, 0));
    EXPECT_EQ(p.distanceTo(MPoint(1, 2, 5)), 2.0);
    EXPECT_EQ(MPoint(p + MVector(1, 0, 0)).cartesianize(), MPoint(2, 2, 3));
    MVector zero;
    EXPECT_EQ(zero.normalize(), MStatus::kFailure);
    EXPECT_EQ(zero.normal(), MVector::zero);
    EXPECT_EQ(zero.angle(MVector::xAxis), 0.0);
    EXPECT_FALSE(zero.isParallel(MVector::xAxis));
    EXPECT_TRUE(MVector(1, 2, 3).isParallel(MVector(-2, -4, -6)));
    EXPECT_DOUBLE_EQ(MVector::xAxis.angle(MVector(-1, 1, 0)), 2.35619449019234493);
    EXPECT_EQ(MVector::xAxis ^ MVector::yAxis, MVector::zAxis);
    MVector v;
    v[1] = 3.0;
    EXPECT_EQ(v, MVector(0, 3, 0));
    std::ostringstream os;
    os << MPoint(0.5, 1, 2) << MMatrix();
    EXPECT_EQ(os.str(), "(0.5, 1, 2, 1)[[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]]");
}

// Fault: the block number not above the eight bits of the place in it.
TEST(TypeId, PrefixAndPlace) {
    EXPECT_EQ(MTypeId(0x12345u, 0x67u).id(), 0x1234567u);
    EXPECT_EQ(MTypeId(0x1234567u), MTypeId(0x12345u, 0x67u));
}

} // namespace
