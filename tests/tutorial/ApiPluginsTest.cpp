#include "TutorialFixture.h"

#include "kit/MessageSink.h"
#include "kit/TemporaryFolder.h"

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

/// What the watching plug-in logged, in order.
struct SceneWatch : TutorialPlugins {
    void SetUp() override {
        TutorialPlugins::SetUp();
        run("loadPlugin sceneWatch; createNode transform -n base; createNode transform -n a -p base; watchNode a; "
            "select "
            "-cl; watchLog;");
        sink.emplace([this](host::Severity severity, std::string_view text) {
            if (severity != host::Severity::Info) told.emplace_back(text);
        });
    }
    void TearDown() override {
        TutorialPlugins::TearDown();
        sink.reset();
    }
    StringArray log(const std::string& mel) {
        run("watchLog;");
        run(mel);
        return run("watchLog;").toStringArray();
    }
    StringArray told;
    std::optional<orvo::test::MessageSink> sink;
};

// Faults: an event that is not told of, or told of in the wrong direction; what undoing does left out.
TEST_F(SceneWatch, NodesAttributesAndConnections) {
    EXPECT_EQ(log("setAttr a.tx 3;"), (StringArray{"dirty a.translateX", "moved a", "set a.translateX"}));
    EXPECT_EQ(log("setAttr base.ty 1;"), StringArray{"moved a"});
    EXPECT_EQ(log("connectAttr base.v a.v; disconnectAttr base.v a.v;"),
              (StringArray{"in a.visibility base.visibility", "cut a.visibility"}));
    EXPECT_EQ(log("connectAttr a.v base.v;"), StringArray{"out a.visibility base.visibility"});
    EXPECT_EQ(log("setAttr -lock 1 a.ry;"), StringArray{"locked a.rotateY"});
    EXPECT_EQ(log("addAttr -ln haze a;"), StringArray{"added haze"});
    EXPECT_EQ(log("undo;"), StringArray{"removed haze"});
    EXPECT_EQ(log("rename a b; undo;"), (StringArray{"renamed a b", "renamed b a"}));
    EXPECT_EQ(log("createNode transform -n c -p a; createNode locator;"),
              (StringArray{"new c", "child c of a", "selection", "new locator1", "selection"}));
    EXPECT_EQ(log("currentTime 12;"), StringArray{"frame 12"});
    EXPECT_EQ(run("watchNode -endWatch a;").toInt(), 8);
    EXPECT_EQ(log("setAttr a.tx 4;"), StringArray{});
}

// Faults: what the modifier gathers not undone with the deletion; a node that ends without a word.
TEST_F(SceneWatch, Deleting) {
    EXPECT_EQ(log("delete a;"), (StringArray{"deleting a", "new grave", "selection", "gone a"}));
    EXPECT_EQ(run("objExists grave;").toInt(), 1);
    run("undo;");
    EXPECT_EQ(run("objExists grave;").toInt(), 0);
    EXPECT_EQ(log("setAttr a.tz 1;").back(), "set a.translateZ") << "it goes on when the node is back";
    EXPECT_EQ(log("delete a; flushUndo;").back(), "destroyed");
}

// Faults: an exception that ends the host or silences the others; a node torn from under those that work on it; a list
// that changes while it is called; a callback that calls itself for ever.
TEST_F(SceneWatch, CallbacksThatMisbehave) {
    run("createNode transform -n d; watchNode -badly throw d; watchNode d;");
    EXPECT_EQ(log("setAttr d.tx 1;").back(), "set d.translateX");
    EXPECT_EQ(told, StringArray{"Exception in a callback: out of patience"});
    EXPECT_EQ(run("getAttr d.tx;").toFloat(), 1.0);
    run("createNode transform -n e; watchNode -badly once e;");
    EXPECT_EQ(log("setAttr e.tx 1; setAttr e.tx 5;"), StringArray{"once e.translateX"});
    EXPECT_EQ(run("getAttr e.tx;").toFloat(), 5.0);
    run("undoInfo -state 0; createNode transform -n f; watchNode -badly delete f; createNode transform -n g; "
        "connectAttr "
        "f.tx g.tx;");
    run("setAttr f.t 1 2 3;");
    EXPECT_EQ(run("objExists f;").toInt(), 0);
    EXPECT_EQ(run("objExists g;").toInt(), 1);
    run("undoInfo -state 1; createNode transform -n f; watchNode -badly delete f; setAttr f.tx 1; undo; undo;");
}

// Faults: an operation that goes on although it was refused, messages in the wrong order, code that is called when its
// plug-in is gone.
TEST_F(SceneWatch, DocumentsAndUnloading) {
    const orvo::test::TemporaryFolder files;
    const std::string folder = files.string();
    run("file -rename \"" + folder + "/watched.ma\";");
    EXPECT_EQ(log("file -save;"), StringArray{"after save"});
    const auto opened = log("file -f -o \"" + folder + "/watched.ma\";");
    ASSERT_GE(opened.size(), 3u);
    EXPECT_EQ(opened.front(), "before open");
    EXPECT_EQ(opened.back(), "after open");
    EXPECT_NE(std::find(opened.begin(), opened.end(), "new base"), opened.end());
    run("file -rename \"" + folder + "/forbidden.ma\"; file -save;");
    EXPECT_NE(failure("file -f -o \"" + folder + "/forbidden.ma\";").find("refused by a callback"), std::string::npos);
    EXPECT_EQ(run("objExists base;").toInt(), 1) << "nothing was lost";
    run("watchNode base; unloadPlugin sceneWatch;");
    EXPECT_EQ(told.back(), "Plug-in, \"sceneWatch\", left 16 callbacks behind, which are removed.");
    EXPECT_EQ(host::scene::Scene::current().observer, nullptr);
    run("setAttr base.tx 1; delete base; currentTime 3;");
}

// Faults: members, lights or nodes that a walk misses; a light that shines elsewhere; a curve on the wrong plug or at
// the wrong times; a scene that is not the same when it is opened again.
TEST_F(TutorialPlugins, CommandThatLooksOverTheScene) {
    run("loadPlugin sceneReport; createNode transform -n a; createNode transform -n b; sets -n posts a b; createNode "
        "transform -n sun; setAttr sun.rx -90; createNode directionalLight -n sunShape -p sun; setAttr "
        "sunShape.intensity 2; createNode transform -n sky; createNode ambientLight -n skyShape -p sky;");
    EXPECT_EQ(run("sceneReport sets;").toString(), "posts: a b");
    const StringArray lights = run("sceneReport lights;").toStringArray();
    ASSERT_EQ(lights.size(), 2u);
    EXPECT_EQ(lights[0].substr(0, 13), "sunShape 2 0 ");
    EXPECT_NE(lights[0].find(" -1 "), std::string::npos) << lights[0];
    EXPECT_EQ(lights[1].substr(0, 20), "skyShape 1 shade 0.4");
    run("connectAttr a.tx b.ty; connectAttr b.tx sun.tz; connectAttr time1.outTime a.tz;");
    EXPECT_EQ(run("sceneReport upstream sun;").toStringArray(), (StringArray{"sun", "b", "a", "time1"}));
    EXPECT_EQ(run("sceneReport curve a.ty;").toFloat(), 2.5);
    EXPECT_EQ(run("keyframe -q -timeChange a.ty;").toFloatArray(), (FloatArray{0, 24}));
    EXPECT_NE(failure("sceneReport curve b.ty;"), "") << "something drives it already";
    EXPECT_NE(failure("sceneReport curve a.message;"), "");
    const orvo::test::TemporaryFolder files;
    EXPECT_EQ(run("sceneReport save \"" + files.string() + "/report.ma\";").toString(), "report.ma");
    EXPECT_EQ(run("sceneReport sets;").toString(), "posts: a b");
    EXPECT_EQ(run("getAttr a.ty;").toFloat(), 2.5);
    EXPECT_NE(failure("sceneReport save \"/no/such/folder/report.ma\";"), "");
    run("file -f -new; group -em -n cup; file -rename \"" + files.string() +
        "/cup.ma\"; file -save; file -f -new; file -rename \"" + files.string() + "/level.ma\";");
    EXPECT_EQ(run("sceneReport refer \"" + files.string() + "/cup.ma\";").toStringArray(),
              (StringArray{"asset:cup", "cup.ma", "0", "cup.ma1"}));
    EXPECT_EQ(run("ls \"asset*\" \"asset:*\";").toStringArray(), StringArray{});
    EXPECT_NE(failure("sceneReport refer \"/no/such/nothing.ma\";"), "");
    EXPECT_EQ(run("sceneReport types;").toStringArray(), (StringArray{"directionalLight", "1", "", "0", "1"}));
}

// Faults: names that are taken for those of another namespace, what is half moved when a name is in the way, namespaces
// that stay behind or go with what is in them.
TEST_F(TutorialPlugins, CommandThatKeepsAssetsInNamespaces) {
    run("loadPlugin assetSpaces; createNode transform -n a; createNode transform -n b -p a;");
    EXPECT_EQ(run("assetSpaces stow \"7 trees\" a b;").toString(), ":_7_trees");
    run("namespace -set _7_trees;");
    EXPECT_EQ(run("createNode transform -n c; assetSpaces stow leaves _7_trees:b;").toString(), ":_7_trees:leaves");
    EXPECT_EQ(run("assetSpaces list;").toStringArray(), (StringArray{"_7_trees: a c", "_7_trees:leaves: b"}));
    EXPECT_EQ(run("assetSpaces list leaves;").toStringArray(), StringArray{});
    run("assetSpaces rename \":_7_trees\" wood;");
    EXPECT_EQ(run("namespaceInfo -cur;").toString(), "wood");
    EXPECT_EQ(run("ls -l \"wood:*:*\";").toStringArray(), StringArray{"|wood:a|wood:leaves:b"});
    run("namespace -set \":\"; namespace -add rock; createNode transform -n \"rock:c\"; createNode transform -n "
        "\"rock:a2\"; namespace -add \"rock:moss\";");
    EXPECT_NE(failure("assetSpaces merge rock wood;"), "") << "wood:c is there";
    EXPECT_EQ(run("assetSpaces list;").toStringArray(),
              (StringArray{"rock: c a2", "rock:moss:", "wood: a c", "wood:leaves: b"}));
    run("delete \"wood:c\"; assetSpaces merge rock wood;");
    EXPECT_EQ(run("assetSpaces list;").toStringArray(), (StringArray{"wood: a c a2", "wood:leaves: b", "wood:moss:"}));
    for (const char* wrong : {"assetSpaces rename wood \"a b\";", "assetSpaces rename none x;",
                              "assetSpaces discard \":\";", "assetSpaces merge wood \"wood:leaves\";"})
        EXPECT_NE(failure(wrong), "") << wrong;
    run("assetSpaces discard wood;");
    EXPECT_EQ(run("ls \"*:*\" \"*:*:*\";").toStringArray(), StringArray{});
    EXPECT_EQ(run("assetSpaces list;").toStringArray(), StringArray{});
}

} // namespace
