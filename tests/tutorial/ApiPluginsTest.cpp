#include "TutorialFixture.h"

#include <maya/MFnDependencyNode.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MSelectionList.h>

namespace {

using host::mel::FloatArray;
using host::mel::StringArray;

// Faults: flags that are not told from objects, arguments in the wrong unit, uses of a flag that are lost, and an undo
// that leaves half of it.
TEST_F(TutorialPlugins, CommandWithFlags) {
    run("loadPlugin rowOfPosts; createNode transform -n row; currentUnit -linear meter;");
    EXPECT_EQ(run("rowOfPosts -count 3 row -s 0.5 -along 0 0 2 -tags low -t old;").toInt(), 3);
    run("currentUnit -linear centimeter;");
    EXPECT_EQ(run("listRelatives row;").toStringArray(),
              (StringArray{"post_low_old1", "post_low_old2", "post_low_old3"}));
    EXPECT_EQ(run("getAttr post_low_old3.tz;").toFloat(), 200.0);
    EXPECT_EQ(run("rowOfPosts -query -count row;").toInt(), 3);
    run("undo;"); // the query is no step of it
    EXPECT_EQ(run("rowOfPosts -query -count row;").toInt(), 0);
    run("select row; rowOfPosts -coun \"2\" -name gate;");
    EXPECT_EQ(run("rowOfPosts -q -c row;").toInt(), 2);
    EXPECT_EQ(run("objExists gate2;").toInt(), 1);
    run("undo;");
    EXPECT_EQ(run("objExists gate2;").toInt(), 0);
    run("redo;");
    EXPECT_EQ(run("objExists gate2;").toInt(), 1);
}

// Faults: a call that does not keep to the syntax and runs all the same, or fails with a word that does not say why.
TEST_F(TutorialPlugins, CallsThatDoNotKeepToTheSyntax) {
    run("loadPlugin rowOfPosts; createNode transform -n row; createNode transform -n other; select -cl;");
    const struct {
        const char *call, *fault;
    } cases[] = {
        {"rowOfPosts -colour 3 row", "Invalid flag: '-colour'"},
        {"rowOfPosts -edit -count 3 row", "Invalid flag: '-edit'"},
        {"rowOfPosts row -count", "Flag '-count' must be passed an integer argument"},
        {"rowOfPosts -count -spacing 2 row", "Flag '-count' must be passed an integer argument"},
        {"rowOfPosts -along 1 2", "Flag '-along' must be passed 3 arguments"},
        {"rowOfPosts -c many row", "Invalid argument of flag '-c': expected an integer, got \"many\"."},
        {"rowOfPosts -c 1e12 row",
         "Invalid argument of flag '-c': expected an integer, got a number that is out of range."},
        {"rowOfPosts -c 1 -c 2 row", "Flag '-c' cannot be used more than once."},
        {"rowOfPosts -c 1", "Not enough objects or values."},
        {"rowOfPosts -c 1 row other", "Too many objects or values."},
        {"rowOfPosts -c 1 nobody", "No object matches name: nobody"},
    };
    for (const auto& [call, fault] : cases) EXPECT_EQ(failure(call), fault) << call;
    EXPECT_EQ(run("size(`ls -type locator`);").toInt(), 0);
}

// Faults: vertices that move in the wrong space, or twice as the normals change under way; an undo that misses some; a
// border that is not one; what has history moved by force.
TEST_F(TutorialPlugins, CommandsThatWalkOverMeshes) {
    run("loadPlugin meshTools; polyPlane -w 2 -h 2 -sx 2 -sy 2 -n ground; scale 3 1 1 ground;");
    EXPECT_EQ(run("meshReport ground;").toFloatArray(), (FloatArray{12, 8, 16, 16}));
    EXPECT_EQ(run("select ground; selectBorder;").toStringArray(), (StringArray{"ground.vtx[0:3]", "ground.vtx[5:8]"}));
    run("select ground.vtx[4] ground.vtx[8];");
    EXPECT_EQ(run("pushVertices 0.5;").toInt(), 2);
    const auto height = [&](int vertex) {
        return run("pointPosition -w ground.vtx[" + std::to_string(vertex) + "];").toFloatArray()[1];
    };
    EXPECT_EQ(height(4), 0.5);
    EXPECT_EQ(height(8), 0.5);
    EXPECT_EQ(height(0), 0.0);
    run("undo;");
    EXPECT_EQ(height(4), 0.0);
    run("redo;");
    EXPECT_EQ(height(8), 0.5);
    run("undo; delete -ch ground; select ground.vtx[0]; pushVertices 2;");
    EXPECT_EQ(height(0), 2.0);
}

// Faults: units that do not convert, a number that a generic attribute loses, elements that are left over or lost when
// the array is built anew.
TEST_F(TutorialPlugins, NodeWithArraysAndGenericInput) {
    run("loadPlugin windRibbon; createNode windRibbon -n r; createNode transform -n t;");
    EXPECT_EQ(run("getAttr r.step;").toFloat(), 100.0);
    EXPECT_EQ(run("getAttr -time 5 r.start;").toFloat(), 1.0);
    EXPECT_NE(failure("setAttr r.heading 181;").find("past its maximum value of 180"), std::string::npos);
    run("setAttr r.heading 90; getAttr r.place[2].placeY;");
    EXPECT_EQ(run("getAttr -size r.place;").toInt(), 3);
    EXPECT_NEAR(run("getAttr r.place[2].placeY;").toFloat(), 200, 1e-9);
    run("connectAttr r.place[1].placeY t.ty; setAttr r.count 1; getAttr r.place[0].placeX;");
    EXPECT_EQ(run("getAttr t.ty;").toFloat(), 0.0) << "what is connected stays, without a value";
    EXPECT_EQ(run("getAttr -size r.place;").toInt(), 2);
    run("setAttr r.count 4; setAttr t.sx 3; connectAttr t.sx r.strength;");
    EXPECT_NEAR(run("getAttr t.ty;").toFloat(), 300, 1e-9);
    EXPECT_NE(failure("connectAttr -f t.visibility r.strength;").find("not compatible"), std::string::npos);
    run("connectAttr t.message r.followers -na; connectAttr persp.message r.followers -na;");
    EXPECT_EQ(run("listConnections r.followers;").toStringArray(), (StringArray{"t", "persp"}));
    MSelectionList list;
    MObject node, data;
    list.add("r");
    list.getDependNode(0, node);
    const MFnDependencyNode fn(node);
    fn.findPlug("points", true).getValue(data);
    EXPECT_NEAR(MFnPointArrayData(data).array()[3].y, 900, 1e-9);
    fn.findPlug("steps", true).getValue(data);
    EXPECT_NEAR(MFnVectorArrayData(data).array()[3].y, 3, 1e-12);
    fn.findPlug("order", true).getValue(data);
    EXPECT_EQ(MFnIntArrayData(data)[3], 1);
}

} // namespace
