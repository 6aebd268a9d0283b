#include "kit/SceneFixture.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {
struct DagTest : SceneFixture, testing::WithParamInterface<ScriptCase> {};
} // namespace

TEST_P(DagTest, Answers) {
    run("polyCube -n box; spaceLocator -n mark; group -em -n home");
    EXPECT_EQ(run(GetParam().script), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, DagTest,
    testing::Values(
        ScriptCase{"CommonParent", "parent box mark home; group -n g box mark; listRelatives -p g", "home"},
        ScriptCase{"GroupInTheWorld", "parent box home; group -w -n g box; ls -l g", "|g"},
        ScriptCase{"ParentToAChild", "parent box home; parent home box",
                   "Error: Cannot parent 'home' to itself or one of its children."},
        ScriptCase{"ParentToAShape", "parent home boxShape", "Error: A shape cannot be a parent: 'boxShape'."},
        ScriptCase{"ParentAShape", "parent boxShape home",
                   "Error: 'boxShape' is a shape: it is parented with the -shape flag."},
        ScriptCase{"ShapeMoves", "parent -s -r boxShape home; listRelatives -s home", "boxShape"},
        ScriptCase{"SkippedIsNoError", "parent -w box", ""},
        ScriptCase{"DeleteTakesWhatIsBelow", "parent box home; delete home; ls \"box*\" \"polyC*\"", ""},
        ScriptCase{"MeshOutlivesItsCreator", "delete polyCube1; polyEvaluate -v box", "8"},
        ScriptCase{"MeshOutlivesItsConnection", "disconnectAttr polyCube1.out boxShape.i; polyEvaluate -v box", "8"},
        ScriptCase{"HistoryGone", "delete -ch box; ls -type polyCube", ""},
        ScriptCase{"HistoryGoneMeshStays", "polyCube -e -sx 2 box; delete -ch box; polyEvaluate -v box", "12"},
        ScriptCase{"LockedStays", "lockNode box; delete box", "Error: Cannot delete the locked node 'box'."},
        ScriptCase{"LockedBelowStays", "parent box home; lockNode boxShape; delete home",
                   "Error: Cannot delete the locked node 'boxShape'."},
        ScriptCase{"DuplicateHasItsOwnMesh", "duplicate box; polyCube -e -w 9 box; polyEvaluate -b box1",
                   "-0.5 0.5 -0.5 0.5 -0.5 0.5"},
        ScriptCase{"DuplicateKeepsTheNumbers", "move 1 2 3 box; duplicate -n copy box; getAttr copy.t", "1 2 3"},
        ScriptCase{"DuplicateKeepsItsFacesInTheirSets",
                   "sets -r 1 -em -n sg; sets -e -fe sg box.f[0:2]; duplicate -n copy box; undo; duplicate -n copy box;"
                   "sets -q sg",
                   "box.f[0:2] copy.f[0:2]"},
        ScriptCase{"DuplicateKeepsTheShader", "duplicate -n copy box; sets -im initialShadingGroup copy", "1"},
        ScriptCase{"DuplicateFollowsCopiesUpstream", "duplicate -un box; ls -type polyCube", "polyCube1 polyCube2"},
        ScriptCase{"DuplicateWithoutChildren", "parent box home; duplicate -po -n copy home; listRelatives copy", ""},
        ScriptCase{"DuplicateOfAGroup", "parent box home; duplicate home", "home1 home1|box"},
        ScriptCase{"HiddenBelow", "parent box home; hide home; ls -v box", ""},
        ScriptCase{"ShownAgain", "parent box home; hide home; showHidden -above box; ls -v box", "box"},
        ScriptCase{"NoInstances", "instance box", "Error: Instances are not supported; use duplicate."},
        ScriptCase{"NegativeSize", "polyCube -w -1",
                   "Error: Cannot set the attribute 'polyCube2.width' below its minimum value of 0."},
        ScriptCase{"BareMesh", "polyPlane -ch 0 -sx 2 -sy 3 -n bare; polyEvaluate -v bare", "12"},
        ScriptCase{"NothingGiven", "select -cl; group", "Error: No object was specified or selected."},
        ScriptCase{"CameraAnswersBoth", "camera -n eye -fl 50; camera -q -fl eye", "50"},
        ScriptCase{"BoundsOfALocator", "spaceLocator -n b -p 1 2 3; exactWorldBoundingBox b", "0 1 2 2 3 4"}),
    caseName);

/// Fails when a mesh at the end of a long history of edits and undos differs from a new one.
TEST_F(DagTest, HistoryFollowsItsCreatorThroughUndo) {
    run("polyCube -n box; polyCube -e -sx 3 box; delete -ch box; undo; polyCube -e -sx 2 box");
    EXPECT_EQ(run("polyEvaluate -v box"), "12");
    EXPECT_EQ(run("undo; undo; polyEvaluate -v box"), "8");
    EXPECT_EQ(run("redo; polyEvaluate -v box"), "16");
}
