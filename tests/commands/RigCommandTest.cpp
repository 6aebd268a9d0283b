#include "kit/SceneFixture.h"

#include <gmock/gmock.h>

namespace {

struct RigCommandTest : SceneFixture, testing::WithParamInterface<ScriptCase> {
    RigCommandTest() {
        host::mel::registerNodeStatementCommands(mel);
        run("group -em -n goal; setAttr goal.t 4 1 0; setAttr goal.r 0 90 0; group -em -n other; setAttr other.tx 8;"
            "group -em -n shelf; setAttr shelf.tx 1; group -em -n held -p shelf; setAttr held.t 2 0 0; select -cl");
    }
};

} // namespace

TEST_P(RigCommandTest, Answers) { EXPECT_EQ(run(GetParam().script), GetParam().answer); }

INSTANTIATE_TEST_SUITE_P(
    Commands, RigCommandTest,
    testing::Values(
        ScriptCase{"Point", "pointConstraint goal held", "held_pointConstraint1"},
        ScriptCase{"PointPulls", "pointConstraint goal held; getAttr held.t", "3 1 0"},
        ScriptCase{"PointOffset", "pointConstraint -o 0 2 0 goal held; getAttr held.t", "3 3 0"},
        ScriptCase{"PointKeeps", "pointConstraint -mo goal held; setAttr goal.ty 3; getAttr held.t", "2 2 0"},
        ScriptCase{"PointSkips", "pointConstraint -sk y -sk z goal held; getAttr held.t", "3 0 0"},
        // Half way between 4 and 8, less the shelf's 1.
        ScriptCase{"Weights", "pointConstraint goal other held; getAttr held.tx", "5"},
        ScriptCase{"WeightsChange",
                   "pointConstraint goal other held; pointConstraint -e -w 3 other held; getAttr held.tx", "6"},
        ScriptCase{"NoWeightRests", "pointConstraint -w 0 goal held; getAttr held.t", "2 0 0"},
        ScriptCase{"Targets", "pointConstraint goal other held; pointConstraint -q -tl held", "goal other"},
        ScriptCase{"Aliases", "pointConstraint goal other held; pointConstraint -q -wal held", "goalW0 otherW1"},
        ScriptCase{"Removed", "pointConstraint goal other held; pointConstraint -e -rm goal held; getAttr held.tx",
                   "7"},
        ScriptCase{"LastRemoved",
                   "pointConstraint goal held; pointConstraint -e -rm goal held; setAttr held.tx 9;"
                   "ls -type pointConstraint",
                   ""},
        ScriptCase{"Orient", "orientConstraint goal held; getAttr held.ry", "90"},
        ScriptCase{"OrientKeeps",
                   "setAttr held.ry 10; orientConstraint -mo goal held; setAttr goal.ry 120; getAttr held.ry", "40"},
        ScriptCase{"OrientBetween", "orientConstraint goal other held; getAttr held.ry", "45"},
        ScriptCase{"JointOrientTakenOut", "select -cl; joint -n j -o 0 30 0; orientConstraint goal j; getAttr j.ry",
                   "60"},
        ScriptCase{"Parent", "parentConstraint goal held; getAttr held.t", "3 1 0"},
        // A turn of the goal by 90 degrees more carries what stood 2 in x behind it, to 2 in z.
        ScriptCase{"ParentKeeps",
                   "setAttr held.t 1 1 0; setAttr goal.ry 0; parentConstraint -mo goal held;"
                   "setAttr goal.ry 90; int $z = floor(`getAttr held.tz` + .5); int $x = floor(`getAttr "
                   "held.tx` + .5); int $r = floor(`getAttr held.ry` + .5); print \"\"; string $s = $x + \" "
                   "\" + $z + \" \" + $r",
                   "3 2 90"},
        ScriptCase{"Aim", "setAttr held.t 3 -2 0; aimConstraint goal held; getAttr held.rz", "90"},
        ScriptCase{"AimAlongAnother", "setAttr held.t -1 1 0; aimConstraint -aim 0 0 1 goal held; getAttr held.ry",
                   "90"},
        ScriptCase{"AimUpObject",
                   "setAttr held.t -1 1 0; setAttr other.t 0 1 5; aimConstraint -wut object -wuo other goal"
                   " held; getAttr held.rx",
                   "90"},
        ScriptCase{
            "TakenChannel", "setKeyframe held.tx; pointConstraint goal held",
            "Error: The attribute 'held.translate' contains a locked or connected child and cannot be modified."},
        ScriptCase{"NoTarget", "pointConstraint held",
                   "Error: pointConstraint needs targets, and a transform that it holds to them."},
        ScriptCase{"Undone", "pointConstraint -mo goal held; undo; setAttr held.tx 5; listRelatives held", ""},
        ScriptCase{"JointChain", "joint -p 0 1 0; joint -p 0 4 0; getAttr joint2.t", "0 3 0"},
        ScriptCase{"JointParent", "joint -p 0 1 0; joint -p 0 4 0; listRelatives -p joint2", "joint1"},
        ScriptCase{"JointScaleTakenOut", "joint; joint -p 0 2 0; setAttr joint1.s 2 2 2; xform -q -ws -s joint2",
                   "1 1 1"},
        ScriptCase{"JointEdited", "joint -n j; joint -e -o 0 20 0 -rad 2 -roo zyx j; joint -q -o j", "0 20 0"},
        ScriptCase{"JointPlace", "joint -n j -p 1 2 3; joint -q -p -a j", "1 2 3"},
        ScriptCase{"LightFlags",
                   "directionalLight -n sun -rgb 1 .5 0 -i 2 -rot -45 30 0 -pos 1 2 3 -sc 0 0 1; getAttr sun.r",
                   "-45 30 0"},
        ScriptCase{"LightQueried", "directionalLight -n sun -i 2; directionalLight -q -i sun", "2"},
        ScriptCase{"LightEdited",
                   "directionalLight -n sun; directionalLight -e -rgb 0 0 1 sunShape;"
                   "directionalLight -q -rgb sun",
                   "0 0 1"},
        ScriptCase{"LightShade", "ambientLight -n sky -as .25; ambientLight -q -as sky", "0.25"},
        ScriptCase{"LightWithout", "ambientLight -d 2", "Error: ambientLight has no decayRate."},
        // A film of an inch at 12.7 mm sees 90 degrees.
        ScriptCase{"CameraAngle", "camera -n c -hfa 1 -hfv 90; camera -q -fl c", "12.7"},
        ScriptCase{"CameraAspect", "camera -n c -hfa 2 -ar 4; camera -q -vfa c", "0.5"},
        ScriptCase{"CameraLooks", "camera -n c -p 0 0 5 -wci 5 0 5; getAttr c.ry", "-90"},
        ScriptCase{"CameraLooksThere", "camera -n c -p 1 2 3 -wci 4 6 3; camera -q -coi c", "5"},
        ScriptCase{"CameraFit", "camera -n c -ff overscan; camera -q -ff c", "Overscan"},
        ScriptCase{"UvSetMade", "polyPlane -n p -ch 0; polyUVSet -cr -uvs light p; polyUVSet -q -auv p", "map1 light"},
        ScriptCase{"UvSetCopied",
                   "polyPlane -n p -ch 0; polyUVSet -cp -uvs map1 -nuv two p; polyUVSet -cuv -uvs two p;"
                   "polyEvaluate -uv p",
                   "121"},
        ScriptCase{"UvSetRenamed", "polyPlane -n p -ch 0; polyUVSet -rn -uvs map1 -nuv base p; polyUVSet -q -cuv p",
                   "base"},
        ScriptCase{"UvSetUndone", "polyPlane -n p -ch 0; polyUVSet -cr -uvs a p; undo; polyUVSet -q -auv p", "map1"},
        ScriptCase{"UvSetDeleted",
                   "polyPlane -n p -ch 0; polyUVSet -cp -uvs map1 -nuv two p; polyUVSet -cr -uvs three p;"
                   "polyUVSet -cuv -uvs three p; polyUVSet -d -uvs two p; string $a[] = `polyUVSet -q -auv p`;"
                   "string $c[] = `polyUVSet -q -cuv p`; polyUVSet -d p; stringArrayToString($a, \" \") + \"/\" +"
                   "$c[0] + \"/\" + stringArrayToString(`polyUVSet -q -auv p`, \" \")",
                   "map1 three/three/map1"},
        ScriptCase{"UvSetFirstStays", "polyPlane -n p -ch 0; polyUVSet -d -uvs map1 p",
                   "Error: The first UV set, 'map1', cannot be deleted."},
        ScriptCase{"UvSetMissing", "polyPlane -n p -ch 0; polyUVSet -cuv -uvs none p",
                   "Error: The UV set 'none' cannot be found."}),
    caseName);
