#include "kit/SceneFixture.h"

namespace {

struct ExpressionTest : SceneFixture, testing::WithParamInterface<ScriptCase> {
    ExpressionTest() {
        host::mel::registerNodeStatementCommands(mel);
        run("group -em -n a; group -em -n b; group -em -n \"set:c\"; setAttr a.tx 3; currentTime 12;"
            "addAttr -ln list -at double -m b; addAttr -ln n -at long a; setAttr a.n 7; setAttr \"b.list[2]\" 4");
    }
    bool complained(const std::string& part) const {
        for (const auto& text : complaints)
            if (text.find(part) != std::string::npos) return true;
        return false;
    }
};

} // namespace

TEST_P(ExpressionTest, Answers) { EXPECT_EQ(run(GetParam().script), GetParam().answer); }

INSTANTIATE_TEST_SUITE_P(
    Commands, ExpressionTest,
    testing::Values(
        ScriptCase{"TimeIsInSeconds", "expression -s \"b.tx = time\"; getAttr b.tx", "0.5"},
        ScriptCase{"FollowsTheTime", "expression -s \"b.tx = frame\"; currentTime 30; getAttr b.tx", "30"},
        ScriptCase{"FollowsItsInputs", "expression -s \"b.tx = a.tx*2\"; setAttr a.tx 5; getAttr b.tx", "10"},
        ScriptCase{"Functions",
                   "expression -s \"b.tx = clamp(0, 2, a.tx) + smoothstep(0, 6, a.translateX)\";"
                   "getAttr b.tx",
                   "2.5"},
        ScriptCase{"VariablesLoopsConditions",
                   "expression -s \"float $sum; for ($i = 0; $i < 4; $i++) { if ($i % 2) continue; $sum += $i; }\\n"
                   "b.ty = $sum > 1 && a.tx == 3 ? $sum : -1;\"; getAttr b.ty",
                   "2"},
        ScriptCase{"VariablesStartAnewEachTime",
                   "expression -s \"float $n; $n = $n + a.tx; b.ty = $n;\"; getAttr b.ty; setAttr a.tx 4; getAttr b.ty",
                   "4"},
        ScriptCase{"AnglesInDegrees", "setAttr a.rx 30; expression -s \"b.rx = a.rx * 2\"; getAttr b.rx", "60"},
        ScriptCase{"Elements", "expression -s \"b.tz=b.list[2]+1;\"; getAttr b.tz", "5"},
        ScriptCase{"ConditionBetweenNamespaces",
                   "expression -s \"b.tz = a.tx>2?|set:c.ty:set:c.tz; set:c.tx = b.tz - 1;\"; getAttr set:c.tx", "-1"},
        ScriptCase{"SetAttributesAreReadBack", "expression -s \"b.tx = 2; b.ty = b.tx + a.n/2;\"; getAttr b.ty", "5.5"},
        ScriptCase{"ObjectNamesTheRest", "expression -o a -s \".ty = .tx * 2;\"; getAttr a.ty", "6"},
        ScriptCase{"TextWithNamesOfNow",
                   "expression -n e -s \"b.tx = a.tx; // a.ty\\n\"; rename a other;"
                   "expression -q -s e",
                   "b.translateX = other.translateX; // a.ty\n"},
        ScriptCase{"EditedReconnects",
                   "expression -n e -s \"b.tx = a.tx;\"; expression -e -s \"b.ty = a.tx + 1;\" e;"
                   "setAttr b.tx 9; getAttr b.ty",
                   "4"},
        ScriptCase{"SyntaxErrorMakesNothing", "catch(`expression -s \"b.tx = (a.tx;\"`); ls -type expression", ""},
        ScriptCase{"SyntaxError", "expression -s \"b.tx = 1;\\nb.ty = (a.tx;\"",
                   "Error: Syntax error: unexpected \";\""},
        ScriptCase{"FailedEditKeepsTheOld",
                   "expression -n e -s \"b.tx = a.tx;\"; catch(`expression -e -s \"b.tx = ;\" e`);"
                   "setAttr a.tx 8; getAttr b.tx",
                   "8"},
        ScriptCase{"NoSuchAttribute", "expression -s \"b.tx = a.nothing;\"",
                   "Error: No attribute matches name: a.nothing"},
        ScriptCase{
            "ReadsWhatItSets", "expression -s \"a.tx = a.tx + 1;\"",
            "Error: The expression cannot be made: it reads what it sets itself: an endless loop of attributes."},
        ScriptCase{"LoopOfTwo", "expression -s \"b.tx = a.tx;\"; expression -s \"a.tx = b.tx + 1;\"",
                   "Error: The expression reads 'b.translateX', which depends on what it sets: an endless loop of "
                   "attributes."},
        ScriptCase{"LoopMakesNothing",
                   "expression -s \"b.tx = a.tx;\"; catch(`expression -s \"a.tx = b.tx;\"`);"
                   "setAttr a.tx 6; getAttr b.tx",
                   "6"},
        ScriptCase{"OtherPartsAreNoLoop", "expression -s \"a.ty = a.tx;\"; getAttr a.ty", "3"},
        ScriptCase{"TakenAttribute", "setKeyframe b.tx; expression -s \"b.tx = 1\"",
                   "Error: The attribute 'b.translateX' is locked or connected and cannot be modified."},
        ScriptCase{"Undone", "expression -s \"b.tx = a.tx;\"; undo; setAttr b.tx 1; ls -type expression", ""},
        ScriptCase{"DrivenKeysBetween",
                   "setDrivenKeyframe -itt linear -ott linear -cd a.rx -dv 0 -v 1 b.ty;"
                   "setDrivenKeyframe -itt linear -ott linear -cd a.rx -dv 90 -v 4 b.ty; setAttr a.rx 30; getAttr b.ty",
                   "2"},
        ScriptCase{"TwoDriversAddUp",
                   "setDrivenKeyframe -cd a.tx -v 5 b.ry; setDrivenKeyframe -cd a.ty -v 2 b.ry; getAttr b.ry", "7"},
        ScriptCase{"DriverAnswers", "setDrivenKeyframe -cd a.tx -v 5 b.ry; setDrivenKeyframe -q -cd b.ry",
                   "a.translateX"},
        ScriptCase{"DrivenTakesNoTime", "setDrivenKeyframe -cd a.tx b.ry; setKeyframe b.ry",
                   "Error: The attribute 'b.rotateY' has driven keys: it takes no keys over time."}),
    caseName);

// Each is kept and named, and what it would have set stays as it was.
TEST_F(ExpressionTest, WhatIsMoreThanArithmeticIsKeptAndNotRun) {
    const std::pair<const char*, const char*> cases[] = {
        {"b.tx = 5; system(\\\"touch /tmp/x\\\");", "it calls 'system', which is no pure function known here"},
        {"b.tx = `getAttr a.tx`;", "it calls 'getAttr'"},
        {"b.tx = rand(1);", "it calls 'rand'"},
        {"print \\\"x\\\"; b.tx = 5;", "it calls 'print'"},
        {"catch(sin(1)); b.tx = 5;", "it calls 'catch'"},
        {"global float $g; b.tx = 5;", "it uses global variables"},
        {"proc f() {} b.tx = 5;", "it defines procedures"},
    };
    for (const auto& [script, reason] : cases) {
        complaints.clear();
        run(std::string("setAttr b.tx 2; expression -n kept -s \"") + script + "\"");
        EXPECT_TRUE(complained("'kept' is kept and not run: ") && complained(reason)) << script;
        EXPECT_EQ(run("getAttr b.tx"), "2") << script;
        EXPECT_NE(run("expression -q -s kept").find("b.translateX = "), std::string::npos);
        run("delete kept");
    }
}

TEST_F(ExpressionTest, EndlessLoopsAndFailuresEndAndAreNamed) {
    run("expression -n loop -s \"while (1) b.tx = 1;\"; expression -n huge -s \"int $a[]; $a[33000000] = 1; b.ty = "
        "1;\";"
        "expression -n bad -s \"b.tz = sqrt(a.tx - 5);\"");
    run("getAttr b.t");
    EXPECT_TRUE(complained("'loop' failed and does not run any more: line 1: The script takes too many steps."));
    EXPECT_TRUE(complained("'huge' failed"));
    EXPECT_TRUE(complained("'bad' failed"));
    // A new text has a new chance.
    run("expression -e -s \"b.tz = sqrt(a.tx + 1);\" bad");
    EXPECT_EQ(run("getAttr b.tz"), "2");
}
