#include "GraphFixture.h"

#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MTime.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using GlobalTest = GraphFixture;

// Fault: a result of another type squeezed into the asked one, or the caller's value changed by a failure.
TEST_F(GlobalTest, ResultTypes) {
    int i = -1;
    double d = -1;
    MString s("kept");
    MIntArray is;
    MDoubleArray ds;
    MStringArray ss;
    EXPECT_TRUE(MGlobal::executeCommand("int $i = 2 + 3", i));
    EXPECT_EQ(i, 5);
    EXPECT_TRUE(MGlobal::executeCommand("float $f = 0.5", d));
    EXPECT_EQ(d, 0.5);
    EXPECT_TRUE(MGlobal::executeCommand("int $i = 3", d)) << "an int serves as a double";
    EXPECT_EQ(d, 3);
    EXPECT_TRUE(MGlobal::executeCommand("string $s = \"fog\"", s));
    EXPECT_EQ(s, "fog");
    EXPECT_TRUE(MGlobal::executeCommand("int $is[] = {1, 2}", is));
    EXPECT_EQ(is.length(), 2u);
    EXPECT_TRUE(MGlobal::executeCommand("float $fs[] = {1.5, 2}", ds));
    EXPECT_EQ(ds[0], 1.5);
    EXPECT_TRUE(MGlobal::executeCommand("string $ss[] = {\"a\", \"b\"}", ss));
    EXPECT_EQ(ss[1], "b");
    EXPECT_TRUE(MGlobal::executeCommand("string $s = \"one\"", ss)) << "a single value as an array of one";
    EXPECT_EQ(ss.length(), 1u);

    EXPECT_FALSE(MGlobal::executeCommand("string $s = \"5\"", i));
    EXPECT_FALSE(MGlobal::executeCommand("float $f = 1.5", i));
    EXPECT_FALSE(MGlobal::executeCommand("string $s = \"x\"", d));
    EXPECT_FALSE(MGlobal::executeCommand("int $i = 1", s));
    EXPECT_FALSE(MGlobal::executeCommand("string $ss[] = {\"a\"}", s));
    EXPECT_FALSE(MGlobal::executeCommand("string $s = \"x\"", ds));
    EXPECT_EQ(i, 5);
    EXPECT_EQ(s, "fog");
    MStatus status;
    EXPECT_EQ(MGlobal::executeCommandStringResult("string $s = \"haze\"", false, false, &status), "haze");
    EXPECT_TRUE(status);
    MGlobal::executeCommandStringResult("int $i = 1", false, false, &status);
    EXPECT_FALSE(status);
}

// Fault: a failing script that answers success, that says nothing, or whose exception reaches the plug-in.
TEST_F(GlobalTest, FailingScripts) {
    EXPECT_EQ(MGlobal::executeCommand("noSuchProcedure(1)"), MStatus::kFailure);
    EXPECT_THAT(errors, testing::Contains(HasSubstr("noSuchProcedure")));
    errors.clear();
    EXPECT_EQ(MGlobal::executeCommand("int $i = ;"), MStatus::kFailure);
    EXPECT_EQ(errors.size(), 1u);
    int result = 4;
    EXPECT_EQ(MGlobal::executeCommand("delete noSuchNode", result), MStatus::kFailure);
    EXPECT_EQ(result, 4);
    EXPECT_EQ(MGlobal::sourceFile("no/such/file.mel"), MStatus::kFailure);
    EXPECT_TRUE(MGlobal::executeCommand(""));
    EXPECT_TRUE(infos.empty());
    EXPECT_TRUE(MGlobal::executeCommand("int $shown = 1", true));
    EXPECT_THAT(infos, ElementsAre(HasSubstr("$shown")));
}

// Fault: a script without undo recorded, or one with it lost.
TEST_F(GlobalTest, UndoEnabled) {
    run("createNode transform -n a; setAttr a.tx 1;");
    EXPECT_TRUE(MGlobal::executeCommand("setAttr a.ty 5", false, false));
    EXPECT_TRUE(MGlobal::executeCommand("setAttr a.tz 6", false, true));
    EXPECT_EQ(run("getAttr a.t"), "1 5 6");
    run("undo");
    EXPECT_EQ(run("getAttr a.t"), "1 5 0");
    run("undo");
    EXPECT_EQ(run("getAttr a.t"), "0 5 0") << "the one without undo is left out";
    run("redo; redo;");
    EXPECT_EQ(run("getAttr a.t"), "1 5 6");
    EXPECT_FALSE(MGlobal::isUndoing() || MGlobal::isRedoing());
}

// Fault: messages at the wrong severity or in another wording.
TEST_F(GlobalTest, DisplayFunctions) {
    MGlobal::displayInfo("clear");
    MGlobal::displayWarning("cloudy");
    MGlobal::displayError("storm 100%s");
    EXPECT_THAT(infos, ElementsAre("clear"));
    EXPECT_THAT(warnings, ElementsAre("cloudy"));
    EXPECT_THAT(errors, ElementsAre("storm 100%s"));
}

// Fault: an option variable of one type read as another, or one that outlives its removal.
TEST_F(GlobalTest, OptionVariables) {
    bool exists = true;
    EXPECT_EQ(MGlobal::optionVarIntValue("skyTestVar", &exists), 0);
    EXPECT_FALSE(exists);
    EXPECT_TRUE(MGlobal::setOptionVarValue("skyTestVar", 4));
    EXPECT_EQ(MGlobal::optionVarIntValue("skyTestVar", &exists), 4);
    EXPECT_TRUE(exists);
    EXPECT_EQ(run("optionVar -q skyTestVar"), "4");
    MGlobal::optionVarStringValue("skyTestVar", &exists);
    EXPECT_FALSE(exists);
    EXPECT_TRUE(MGlobal::setOptionVarValue("skyTestVar", MString("noon")));
    EXPECT_EQ(MGlobal::optionVarStringValue("skyTestVar"), "noon");
    run("optionVar -fv skyTestVar 0.25");
    EXPECT_EQ(MGlobal::optionVarDoubleValue("skyTestVar", &exists), 0.25);
    EXPECT_TRUE(exists && MGlobal::optionVarExists("skyTestVar"));
    MGlobal::removeOptionVar("skyTestVar");
    EXPECT_FALSE(MGlobal::optionVarExists("skyTestVar"));
}

// Fault: a frame taken for seconds or counted in another unit than the scene's.
TEST_F(GlobalTest, ViewFrame) {
    EXPECT_TRUE(MGlobal::viewFrame(12.0));
    EXPECT_EQ(run("currentTime -q"), "12");
    EXPECT_TRUE(MGlobal::viewFrame(MTime(2, MTime::kSeconds)));
    EXPECT_EQ(run("currentTime -q"), "48");
    run("currentUnit -t pal");
    EXPECT_TRUE(MGlobal::viewFrame(25.0));
    EXPECT_EQ(plug("time1.outTime").asMTime(), MTime(1, MTime::kSeconds));
}

} // namespace
