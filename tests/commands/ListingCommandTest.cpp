#include "kit/SceneFixture.h"

namespace {

/// A cube "b", a locator "a" in a group "g", and a plane "p" of one face.
class Listing : public SceneFixture, public testing::WithParamInterface<ScriptCase> {
protected:
    Listing() { run("polyCube -n b; spaceLocator -n a; group -n g a; polyPlane -n p -sx 1 -sy 1; select -cl"); }
};

} // namespace

// Faults: components or nodes of another kind, side or direction than asked for, an order or a form of the text that is
// not Maya's, a change that cannot be undone.
TEST_P(Listing, AnswersWhatWasAskedFor) { EXPECT_EQ(run(GetParam().script), GetParam().answer); }

// The cube's faces are 0 1 3 2, 2 3 5 4, 4 5 7 6, 6 7 1 0, 1 7 5 3, 6 0 2 4; its edges are numbered in their order:
// 0 joins 0 and 1, 1 joins 1 and 3, 2 joins 3 and 2.
INSTANTIATE_TEST_SUITE_P(
    Components, Listing,
    testing::Values(ScriptCase{"FaceToVertex", "polyListComponentConversion -tv b.f[0]", "b.vtx[0:3]"},
                    ScriptCase{"VertexToFace", "polyListComponentConversion -fv -tf b.vtx[0]", "b.f[0] b.f[3] b.f[5]"},
                    ScriptCase{"WithinVertices", "polyListComponentConversion -tf -in b.vtx[0:3]", "b.f[0]"},
                    ScriptCase{"EdgeToVertex", "polyListComponentConversion -tv b.e[0] b.e[2]", "b.vtx[0:3]"},
                    ScriptCase{"OtherKindsAreLeft", "polyListComponentConversion -ff -tv b.e[0] b.f[1]", "b.vtx[2:5]"},
                    ScriptCase{"WholeMesh", "polyListComponentConversion -tuv b", "b.map[0:13]"},
                    ScriptCase{"BorderOfFaces", "polyListComponentConversion -te -bo p.f[0]", "p.e[0:3]"},
                    ScriptCase{"UvToVertex", "polyListComponentConversion -tv b.map[0]", "b.vtx[0]"},
                    ScriptCase{"Expanded", "filterExpand -sm 31 -sm 34 b.vtx[0:1] b.e[3] b.f[2] b",
                               "b.vtx[0] b.vtx[1] b.f[2]"},
                    ScriptCase{"NotExpanded", "select b.vtx[0:1]; filterExpand -ex 0 -sm 31", "b.vtx[0:1]"},
                    ScriptCase{"MeshesAlone", "filterExpand -sm 12 a b p.f[0]", "b"},
                    ScriptCase{"FaceVertices", "polyInfo -fv b.f[0]", "FACE      0:      0      1      3      2 \n"},
                    ScriptCase{"EdgeVertices", "polyInfo -ev b.e[1]", "EDGE      1:      1      3  Hard\n"},
                    ScriptCase{"EdgeFaces", "polyInfo -ef b.e[1]", "EDGE      1:      0      4 \n"},
                    ScriptCase{"Normals", "polyInfo -fn b.f[0]", "FACE_NORMAL      0: 0.000000 0.000000 1.000000\n"},
                    ScriptCase{"NoFaults", "polyInfo -nme -nmv -lf b p", ""}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Nodes, Listing,
    testing::Values(ScriptCase{"History", "listHistory b", "bShape polyCube1"},
                    ScriptCase{"WithoutDag", "listHistory -pdo 1 b", "polyCube1"},
                    ScriptCase{"OneLevel", "listHistory -lv 1 b", "bShape"},
                    ScriptCase{"Future", "listHistory -f 1 -lv 2 polyCube1", "polyCube1 bShape"},
                    ScriptCase{"SetsOfAShape", "sets -n s b; listSets -o b -ets", "s initialShadingGroup"},
                    ScriptCase{"RenderableSets", "sets -n s b; listSets -t 1 -o bShape", "initialShadingGroup"},
                    ScriptCase{"ToTheFront", "reorder -f p; ls -assemblies", "p persp top front side b g"},
                    ScriptCase{"Placed", "group -n h b p; reorder -f p; listRelatives h", "p b"},
                    ScriptCase{"RelativeInARing", "group -n h b g p; reorder -r 2 b; reorder -r 1 b; listRelatives h",
                               "b g p"},
                    ScriptCase{"ReorderUndone", "group -n h b p; reorder -b b; undo; listRelatives h", "b p"},
                    ScriptCase{"FreeName", "uniqueObjectName b", "b1"},
                    ScriptCase{"OwnName", "uniqueObjectName sky", "sky"},
                    ScriptCase{"UpAxis", "upAxis -ax z; undo; upAxis -q -ax", "y"},
                    ScriptCase{"NoSuchAxis", "upAxis -ax x", "Error: The up axis is y or z, not 'x'."},
                    ScriptCase{"Enumerations", "attributeInfo -e 1 -la 1 -inh 0 -s 1 p", "ro smd"},
                    ScriptCase{"MultiOfType", "attributeInfo -m on -la on -inh off -l off -t mesh",
                               "pnts vrts edge uvSet uvSetPoints normals"},
                    ScriptCase{"AliasTaken", "aliasAttr width polyCube1.h",
                               "Error: Node 'polyCube1' already has an attribute named 'width'."},
                    ScriptCase{"AliasOfOne", "aliasAttr wide polyCube1.w; aliasAttr -q polyCube1.w", "wide"},
                    ScriptCase{"AliasUsed", "aliasAttr wide polyCube1.w; getAttr polyCube1.wide", "1"},
                    ScriptCase{"AttributeThere", "attributeExists w polyCube1", "1"},
                    ScriptCase{"NodeNotThere", "attributeExists w nosuch", "0"},
                    ScriptCase{"AliasUndone", "aliasAttr wide polyCube1.w; undo; objExists polyCube1.wide", "0"},
                    ScriptCase{"AliasRemoved",
                               "aliasAttr wide polyCube1.w; aliasAttr -rm polyCube1.wide; aliasAttr -q polyCube1", ""}),
    caseName);
