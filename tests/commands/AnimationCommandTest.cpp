#include "kit/SceneFixture.h"

namespace {
struct AnimationTest : SceneFixture, testing::WithParamInterface<ScriptCase> {};
} // namespace

// A key of 0 at frame 1 and of 8 at frame 5.
TEST_P(AnimationTest, Answers) {
    run("group -em -n g; setKeyframe -at tx -t 1 -v 0 -itt linear -ott linear g;"
        "setKeyframe -at tx -t 5 -v 8 -itt linear -ott linear g");
    EXPECT_EQ(run(GetParam().script), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, AnimationTest,
    testing::Values(
        ScriptCase{"TimeAtFirst", "currentTime -q", "1"}, ScriptCase{"BetweenKeys", "currentTime 2; getAttr g.tx", "2"},
        ScriptCase{"BeforeTheFirst", "currentTime -10; getAttr g.tx", "0"},
        ScriptCase{"AnotherTime", "getAttr -time 4 g.tx", "6"},
        ScriptCase{"WhichLeavesTheTime", "getAttr -time 4 g.tx; currentTime -q", "1"},
        ScriptCase{"PartOfAFrame", "getAttr -time 1.5 g.tx", "1"},
        ScriptCase{"Step", "keyTangent -ott step g.tx; getAttr -time 4.9 g.tx", "0"},
        // A cubic with level ends: 8 * (3 u^2 - 2 u^3) at u = 1/4.
        ScriptCase{"Flat", "keyTangent -itt flat -ott flat g.tx; getAttr -time 2 g.tx", "1.25"},
        ScriptCase{"TangentsAnswer", "keyTangent -ott step g.tx; keyTangent -q -itt -ott g.tx",
                   "linear step linear step"},
        ScriptCase{"ReplacedKey", "setKeyframe -at tx -t 5 -v 4 g; keyframe -q -vc g.tx", "0 4"},
        ScriptCase{"KeyOrder", "setKeyframe -at tx -t 3 -v 1 g; keyframe -q -tc -vc g.tx", "1 0 3 1 5 8"},
        ScriptCase{"KeyCount", "keyframe -q -kc g", "2"},
        ScriptCase{"KeysInRange", "keyframe -q -tc -t \"2:9\" g.tx", "5"},
        ScriptCase{"TimeInAnotherUnit", "setKeyframe -t \"0.5sec\" -v 1 g.ty; keyframe -q -tc -t \"0.25sec:1sec\" g.ty",
                   "12"},
        ScriptCase{"NoTime", "setKeyframe -t \"soon\" g.ty", "Error: Invalid time: soon"},
        ScriptCase{"NoUnitOfTime", "keyframe -q -t \"1:2week\" g.tx", "Error: Invalid time: 2week"},
        ScriptCase{"CutOne", "cutKey -t 1 g.tx; getAttr -time 1 g.tx", "8"},
        ScriptCase{"CutAllRemovesTheCurve", "cutKey g; ls -type animCurve", ""},
        ScriptCase{"KeyAll", "setKeyframe g", "10"}, ScriptCase{"CurveName", "keyframe -q -name g.tx", "g_translateX"},
        ScriptCase{"AnglesInDegrees", "setKeyframe -at ry -t 1 -v 90 g; getAttr g.ry", "90"},
        ScriptCase{"BadTangent", "setKeyframe -itt wavy g", "Error: Invalid tangent type: wavy"},
        ScriptCase{"SetBesideKeys", "move -x 3 g; float $t[] = `getAttr g.t`; $t[0] + getAttr(\"g.tx\")", "6"},
        ScriptCase{"SettableBesideKeys", "getAttr -settable g.tx", "1"},
        ScriptCase{"TheCurveComesBack", "move -x 3 g; currentTime 2; getAttr g.tx", "2"},
        ScriptCase{"TupleBesideKeys", "move 4 5 6 g; currentTime 2; getAttr g.t", "2 5 6"},
        ScriptCase{"UndoneBesideKeys", "currentTime 5; move -x 3 g; undo; getAttr g.tx", "8"},
        ScriptCase{"RedoneBesideKeys", "currentTime 5; move -x 3 g; currentTime 1; undo; undo; redo; getAttr g.tx",
                   "3"},
        ScriptCase{"KeyOfWhatWasSet", "currentTime 3; move -x 7 g; setKeyframe -at tx g; keyframe -q -vc g.tx",
                   "0 7 8"},
        ScriptCase{"NoConstraintBesideKeys", "group -em -n h; pointConstraint h g",
                   "Error: The attribute 'g.translate' contains a locked or connected child and cannot be modified."},
        ScriptCase{"Driven", "connectAttr -f g.ty g.tx; move -x 3 g",
                   "Error: The attribute 'g.translateX' is locked or connected and cannot be modified."},
        ScriptCase{"TextIsNoCurve", "setKeyframe -at message g",
                   "Error: The attribute 'g.message' cannot be animated."},
        ScriptCase{"PlaybackRange", "playbackOptions -min 10 -max 5; playbackOptions -q -max", "10"},
        ScriptCase{"AnimationRangeHoldsIt", "playbackOptions -max 100; playbackOptions -q -aet", "100"}),
    caseName);
