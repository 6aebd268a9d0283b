#include "kit/SceneFixture.h"

#include <cmath>
#include <cstdio>

using namespace host::scene;

namespace {

/// A cube "b" of size 2 at (10, 0, 0), turned by 90 degrees about y; its first vertex is at (11, -1, 1) in the world.
class Component : public SceneFixture, public testing::WithParamInterface<ScriptCase> {
protected:
    Component() { run("polyCube -n b; xform -t 10 0 0 -ro 0 90 0 -s 2 2 2 b; select -cl"); }
    /// What the statement answers, to six digits: turned numbers have noise behind them.
    std::string rounded(const std::string& script) {
        host::mel::Value value;
        try {
            value = mel.execute(script);
        } catch (const host::mel::Error& e) {
            return std::string("Error: ") + e.what();
        }
        if (value.type() != host::mel::Value::Type::FloatArray) return value.toString();
        std::string text;
        for (const double v : value.toFloatArray()) {
            char number[32];
            std::snprintf(number, sizeof number, "%.6g", std::abs(v) < 1e-6 ? 0.0 : v);
            text += (text.empty() ? "" : " ") + std::string(number);
        }
        return text;
    }
};
using ComponentNames = Component;
using ComponentPlaces = Component;

} // namespace

// Faults: ranges that are not joined or not cut at the mesh's end, kinds or meshes taken for one another, the whole
// mesh taken for a part of it.
TEST_P(ComponentNames, AreAsMayaPrintsThem) { EXPECT_EQ(run(GetParam().script), GetParam().answer); }

INSTANTIATE_TEST_SUITE_P(
    Lists, ComponentNames,
    testing::Values(
        ScriptCase{"Joined", "select b.vtx[5:7] b.vtx[0] b.vtx[2] b.vtx[1]; ls -sl", "b.vtx[0:2] b.vtx[5:7]"},
        ScriptCase{"OneByOne", "select b.vtx[5] b.vtx[0:1]; ls -sl -fl", "b.vtx[0] b.vtx[1] b.vtx[5]"},
        ScriptCase{"All", "ls b.vtx[*] b.e[*] b.f[*] b.map[*]", "b.vtx[0:7] b.e[0:11] b.f[0:5] b.map[0:13]"},
        ScriptCase{"OpenRanges", "ls b.vtx[:2] b.f[4:]", "b.vtx[0:2] b.f[4:5]"},
        ScriptCase{"CutAtTheEnd", "ls b.vtx[6:20]", "b.vtx[6:7]"}, ScriptCase{"BehindTheEnd", "ls b.vtx[8]", ""},
        ScriptCase{"NoneToSelect", "select b.e[12]", "Error: No object matches name: b.e[12]"},
        ScriptCase{"BadRange", "select b.e[3:1]", "Error: No object matches name: b.e[3:1]"},
        ScriptCase{"Pattern", "polyCube -n c; ls \"?.f[1]\"", "b.f[1] c.f[1]"},
        ScriptCase{"Paths", "ls -l b.vtx[0] bShape.vtx[1]", "|b|bShape.vtx[0:1]"},
        ScriptCase{"Objects", "select b.f[1]; ls -sl -o", "bShape"},
        ScriptCase{"ByKind", "select b.f[1]; ls -sl -type mesh", "b.f[1]"},
        ScriptCase{"HeadOfFlat", "ls -fl -hd 2 b.vtx[3:5]", "b.vtx[3] b.vtx[4]"},
        ScriptCase{"KindsApart", "select b.vtx[0] b.f[0] b.vtx[1] b; ls -sl", "b.vtx[0:1] b.f[0] b"},
        ScriptCase{"Deselected", "select b.vtx[*]; select -d b.vtx[3] b.vtx[6:7]; ls -sl", "b.vtx[0:2] b.vtx[4:5]"},
        ScriptCase{"Toggled", "select b.vtx[0:3]; select -tgl b.vtx[2:5]; ls -sl", "b.vtx[0:1] b.vtx[4:5]"},
        ScriptCase{"Undone", "select b.vtx[0]; select -add b.vtx[1]; undo; ls -sl", "b.vtx[0]"},
        ScriptCase{"NotDeleted", "select b.f[0]; delete", "Error: Components cannot be deleted: b.f[0]"},
        ScriptCase{"NotTurned", "rotate 0 9 0 b.f[0]", "Error: rotate takes objects, not components: b.f[0]"},
        ScriptCase{"NoObjects", "xform -ro 0 9 0 b.f[0]",
                   "Error: xform takes only -translation for components: b.f[0]"}),
    caseName);

// Faults: the space, the unit or the axes of a place mixed up, vertices in another order, tweaks taken for points.
TEST_P(ComponentPlaces, AreReadAndMoved) { EXPECT_EQ(rounded(GetParam().script), GetParam().answer); }

INSTANTIATE_TEST_SUITE_P(
    Reads, ComponentPlaces,
    testing::Values(ScriptCase{"Object", "xform -q -t b.vtx[0]", "-0.5 -0.5 0.5"},
                    ScriptCase{"World", "xform -q -ws -t b.vtx[1] b.vtx[0]", "11 -1 1 11 -1 -1"},
                    ScriptCase{"Selected", "select b.vtx[0]; xform -q -ws -t", "11 -1 1"},
                    ScriptCase{"EdgesVertices", "xform -q -t b.e[0]", "-0.5 -0.5 0.5 0.5 -0.5 0.5"},
                    ScriptCase{"Box", "xform -q -bb b.f[0]", "-0.5 -0.5 0.5 0.5 0.5 0.5"},
                    ScriptCase{"WorldBox", "exactWorldBoundingBox b.vtx[0] b.vtx[2]", "11 -1 1 11 1 1"},
                    ScriptCase{"Point", "pointPosition b.vtx[0]", "11 -1 1"},
                    ScriptCase{"LocalPoint", "pointPosition -l b.vtx[0]", "-0.5 -0.5 0.5"},
                    ScriptCase{"Pivot", "pointPosition b.rotatePivot", "10 0 0"},
                    ScriptCase{"OnePoint", "pointPosition b.vtx[0:1]",
                               "Error: pointPosition needs one vertex: b.vtx[0:1]"},
                    ScriptCase{"List", "getAttr b.vrts[0:1]", "-0.5 -0.5 0.5 0.5 -0.5 0.5"},
                    ScriptCase{"OneOfMany", "getAttr bShape.vt[7]", "0.5 -0.5 -0.5"},
                    ScriptCase{"NoTweak", "getAttr b.pnts[7]", "0 0 0"},
                    ScriptCase{"Uvs", "getAttr b.uvSet[0].uvSetPoints[0:1]", "0.375 0 0.625 0"},
                    ScriptCase{"NoSuchVertex", "getAttr b.vrts[8]", "Error: No object matches name: b.vrts[8]"}),
    caseName);

INSTANTIATE_TEST_SUITE_P(
    Moves, ComponentPlaces,
    testing::Values(ScriptCase{"Placed", "xform -t 1 2 3 b.vtx[0:1]; xform -q -t b.vtx[0:1]", "1 2 3 1 2 3"},
                    ScriptCase{"InTheWorld", "xform -ws -t 11 4 1 b.vtx[0]; xform -q -t b.vtx[0]", "-0.5 2 0.5"},
                    ScriptCase{"Shifted", "xform -r -ws -t 0 0 2 b.vtx[0]; xform -q -t b.vtx[0]", "-1.5 -0.5 0.5"},
                    ScriptCase{"MovedInTheWorld", "move -r 0 0 2 b.vtx[0]; xform -q -t b.vtx[0]", "-1.5 -0.5 0.5"},
                    ScriptCase{"MovedInTheObject", "move -r -os 0 0 2 b.vtx[0]; xform -q -t b.vtx[0]", "-0.5 -0.5 2.5"},
                    ScriptCase{"OneAxis", "move -y 5 b.vtx[0]; xform -q -t b.vtx[0]", "-0.5 2.5 0.5"},
                    ScriptCase{"OneAxisOfTheObject", "move -os -x 5 b.e[0]; xform -q -t b.vtx[0:1]",
                               "5 -0.5 0.5 5 -0.5 0.5"},
                    ScriptCase{"AboutTheMiddle", "move -rpr 0 0 0 b.vtx[*]; exactWorldBoundingBox b", "-1 -1 -1 1 1 1"},
                    ScriptCase{"SelectedFaces", "select b.f[1]; move -r -os 0 1 0; xform -q -os -bb b.f[1]",
                               "-0.5 1.5 -0.5 0.5 1.5 0.5"},
                    ScriptCase{"Tweak", "move -r -os 0 0 2 b.vtx[3]; getAttr b.pnts[*]", "0 0 2"},
                    ScriptCase{"TweakedPoint", "move -r -os 0 0 2 b.vtx[3]; getAttr b.vrts[3]", "0.5 0.5 0.5"},
                    ScriptCase{"Flat", "scale 2 0 2 b; move -r 0 1 0 b.vtx[0]",
                               "Error: 'bShape' has no size in the world: use -objectSpace."}),
    caseName);

TEST_F(Component, PlacesAreInTheUsersUnit) {
    host::setLinearUnit(host::LinearUnit::Metre);
    EXPECT_EQ(rounded("xform -q -ws -t b.vtx[0]"), "0.11 -0.01 0.01");
    EXPECT_EQ(rounded("move -r -os 1 0 0 b.vtx[0]; getAttr b.pnts[0]"), "1 0 0");
    EXPECT_EQ(rounded("getAttr b.vrts[0]"), "-0.005 -0.005 0.005");
}

// Faults: an undo that takes back another vertex, the mesh's history or somebody else's copy of it.
TEST_F(Component, MovesAreUndoneToTheBit) {
    const auto fed = scene.createNode(*scene.findType("mesh"), "d");
    run("polyCube -ch 0 -n c; connectAttr bShape.outMesh d.inMesh");
    for (const std::string mesh : {"b", "c"}) {
        DagNode& shape = *scene.findNode(mesh + "Shape")->dag();
        const auto all = [&] { return numbers("xform -q -t " + mesh + ".vtx[*]"); };
        const auto before = all();
        const auto held = meshOf(shape);
        run("move -r 0.1 0.2 0.3 " + mesh + ".vtx[0:4]");
        const auto moved = all();
        EXPECT_NE(moved, before);
        EXPECT_EQ(held->point(0).x, -0.5f) << "what others hold does not move";
        run("for ($i = 0; $i < 8; $i++) move -r 1 0 0 (\"" + mesh + ".vtx[\" + $i + \"]\"); move -y 0 " + mesh +
            ".vtx[2]");
        const auto both = all();
        EXPECT_NE(both, moved);
        run("undo; undo");
        EXPECT_EQ(all(), moved);
        run("undo");
        EXPECT_EQ(all(), before);
        run("redo; redo; redo");
        EXPECT_EQ(all(), both);
    }
    EXPECT_EQ(numbers("xform -q -os -t b.vtx[*]"), numbers("xform -q -os -t d.vtx[*]")) << "a mesh that is fed follows";
}
