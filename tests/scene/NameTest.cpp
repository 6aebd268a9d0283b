#include "kit/SceneFixture.h"

namespace {
struct NameTest : SceneFixture, testing::WithParamInterface<ScriptCase> {};
} // namespace

TEST_P(NameTest, AnswersTheNames) { EXPECT_EQ(run(GetParam().script), GetParam().answer); }

// "x" lies below p and below q; p, q and x1 below the world.
#define TWO_X "group -em -n p; group -em -n q; group -em -n x -p p; group -em -n x -p q;"

INSTANTIATE_TEST_SUITE_P(
    Names, NameTest,
    testing::Values(
        ScriptCase{"NumberSign", "group -em -n \"a#\"; group -em -n \"a#\"; group -em -n \"a#\"", "a3"},
        ScriptCase{"DefaultName", "group -em; group -em", "group2"},
        ScriptCase{"ATakenNameGetsANumber", "group -em -n a; group -em -n a", "a1"},
        ScriptCase{"ANumberIsCountedOn", "group -em -n a7; group -em -n a7; group -em -n a7", "a2"},
        ScriptCase{"BadCharacters", "group -em -n \"2 b-c\"", "_2_b_c"},
        ScriptCase{"SameNameElsewhere", TWO_X "ls x", "p|x q|x"},
        ScriptCase{"AmbiguousName", TWO_X "rename x y", "Error: More than one object matches name: x"},
        ScriptCase{"AmbiguousPlug", TWO_X "getAttr x.tx", "Error: More than one object matches name: x"},
        ScriptCase{"ShortestPathChanges", TWO_X "rename \"p|x\" z; ls \"q|x\"", "x"},
        ScriptCase{"AtTheTop", TWO_X "group -em -n y; rename y x; ls x", "p|x q|x |x"},
        ScriptCase{"TopPathNamesOne", TWO_X "group -em -n y; rename y x; rename \"|x\" peak", "peak"},
        ScriptCase{"ParentMakesRoom", TWO_X "parent \"q|x\" p; ls -l x1", "|p|x1"},
        ScriptCase{"FullPaths", TWO_X "ls -l x", "|p|x |q|x"}, ScriptCase{"PathPattern", TWO_X "ls \"p|*\"", "p|x"},
        ScriptCase{"QuestionMark", "group -em -n ab1; group -em -n ab22; group -em -n ac1; ls \"a?1\"", "ab1 ac1"},
        ScriptCase{"StarsInside", "group -em -n abcabd; group -em -n abc; ls \"*ab*d\"", "abcabd"},
        ScriptCase{"PatternsGoByName", "group -em -n b2; group -em -n b1; ls \"b*\"", "b1 b2"},
        ScriptCase{"NothingFoundIsNoError", "ls nothing \"no*\" nothing.tx", ""},
        ScriptCase{"ShapeFollowsItsTransform", "polyCube -n box; rename box crate12; listRelatives -s crate12",
                   "crateShape12"},
        ScriptCase{"OtherShapesDoNot",
                   "polyCube -n box; rename boxShape mine; rename box crate; listRelatives -s crate", "mine"},
        ScriptCase{"NotTheDefaultNodes", "rename lambert1 a", "Error: Cannot rename a read only node."},
        ScriptCase{"DeletePassesOverThemByPattern", "group -em -n lamb; delete \"lamb*\"; ls \"lamb*\"", "lambert1"},
        ScriptCase{"DeleteByName", "delete persp", "Error: Cannot delete the default node 'persp'."},
        ScriptCase{"RootColon", "group -em -n a; getAttr \":a.tx\"", "0"},
        ScriptCase{"NoSuchNode", "select foo", "Error: No object matches name: foo"},
        ScriptCase{"NoSuchPlug", "getAttr persp.nothing", "Error: No object matches name: persp.nothing"},
        ScriptCase{"ExistsPattern", "group -em -n ab; objExists \"a*\"", "1"},
        ScriptCase{"ExistsPlug", "objExists persp.focalLength", "1"},
        ScriptCase{"ExistsNoElement", "objExists \"initialShadingGroup.dsm[5]\"", "0"},
        ScriptCase{"DuplicatesAreCounted", "polyCube; duplicate pCube1; ls -dag pCube2", "pCube2 pCubeShape2"}),
    caseName);

namespace {
struct SelectionTest : SceneFixture, testing::WithParamInterface<ScriptCase> {};
} // namespace

TEST_P(SelectionTest, ListsInMayasOrder) {
    run("polyCube -n b; spaceLocator -n a; group -n g b a; polyPlane -n c; select -cl");
    EXPECT_EQ(run(GetParam().script), GetParam().answer);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, SelectionTest,
    testing::Values(ScriptCase{"ByKind", "ls -type mesh", "bShape cShape"},
                    ScriptCase{"ByTwoKinds", "ls -type mesh -type locator", "aShape bShape cShape"},
                    ScriptCase{"ByBaseKind", "ls -type geometryShape g b bShape", "bShape"},
                    ScriptCase{"ExactKind", "ls -exactType geometryShape", ""},
                    ScriptCase{"UnknownKind", "ls -type nonsense", "Error: Unknown object type: nonsense"},
                    ScriptCase{"Cameras", "ls -cameras", "frontShape perspShape sideShape topShape"},
                    ScriptCase{"Assemblies", "ls -assemblies", "persp top front side g c"},
                    ScriptCase{"DepthFirst", "ls -dag g", "g b bShape a aShape"},
                    ScriptCase{"Leaves", "ls -dag -leaf g", "bShape aShape"},
                    ScriptCase{"VisibleOnly", "hide g; ls -v -type mesh", "cShape"},
                    ScriptCase{"SelectionOrder", "select c a b; ls -sl", "c a b"},
                    ScriptCase{"SelectionByKind", "select c a bShape; ls -sl -type mesh", "bShape"},
                    ScriptCase{"AddAndDeselect", "select a b; select -add c; select -d a; ls -sl", "b c"},
                    ScriptCase{"Toggle", "select a b; select -tgl b c; ls -sl", "a c"},
                    ScriptCase{"Hierarchy", "select -hi g; ls -sl", "g b bShape a aShape"},
                    ScriptCase{"SetMembers", "sets -n s a b; select s; ls -sl", "a b"},
                    ScriptCase{"TheSetItself", "sets -n s a b; select -ne s; ls -sl", "s"},
                    ScriptCase{"Components", "select b.vtx[1:3]; ls -sl -fl", "b.vtx[1] b.vtx[2] b.vtx[3]"},
                    ScriptCase{"AllComponents", "select b.f[*]; ls -sl -fl",
                               "b.f[0] b.f[1] b.f[2] b.f[3] b.f[4] b.f[5]"},
                    ScriptCase{"NoComponentsWithoutMesh", "select a.vtx[0]", "Error: No object matches name: a.vtx[0]"},
                    ScriptCase{"DeletedLeaveTheSelection", "select a b; delete a; ls -sl", "b"},
                    ScriptCase{"Head", "ls -type mesh -head 1", "bShape"},
                    ScriptCase{"ChildrenBeforeParents", "group -n h g; listRelatives -ad h", "bShape b aShape a g"},
                    ScriptCase{"Children", "listRelatives -c g", "b a"},
                    ScriptCase{"Shapes", "listRelatives -s -f b", "|g|b|bShape"},
                    ScriptCase{"ParentOf", "listRelatives -p -pa b a", "g"},
                    ScriptCase{"RelativesByKind", "listRelatives -ad -type locator g", "aShape"}),
    caseName);
