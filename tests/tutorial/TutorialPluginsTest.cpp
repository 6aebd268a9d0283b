#include "TutorialFixture.h"

#include <gtest/gtest.h>

namespace {

using host::mel::FloatArray;
using host::mel::StringArray;
using host::mel::Value;

// Faults: a compound output that is not computed as a whole or part by part, or not recomputed after a change.
TEST_F(TutorialPlugins, ComputingNodeWithCompoundOutput) {
    EXPECT_EQ(run("loadPlugin polarNode;").toStringArray(), StringArray{"polarNode"});
    EXPECT_EQ(run("pluginInfo -q -vendor polarNode;").toString(), "Somebody Else");
    run("createNode polarNode -n p; setAttr p.radius 2; setAttr p.degrees 30;");
    EXPECT_NEAR(run("getAttr p.outX;").toFloat(), 1.7320508075688772, 1e-12);
    EXPECT_NEAR(run("getAttr p.out.outY;").toFloat(), 1.0, 1e-12);
    run("setAttr p.degrees 90;");
    EXPECT_NEAR(run("getAttr p.outY;").toFloat(), 2.0, 1e-12);
    EXPECT_NEAR(run("getAttr p.outX;").toFloat(), 0.0, 1e-12);
    EXPECT_NE(failure("setAttr p.radius -1;").find("below its minimum value of 0"), std::string::npos);
    EXPECT_NE(failure("setAttr p.outX 1;"), "");
}

// Faults: dirt that does not cross a connection into and out of a plug-in node.
TEST_F(TutorialPlugins, NodeInANetwork) {
    run("loadPlugin polarNode; createNode polarNode -n p; createNode transform -n driver; createNode transform -n "
        "driven; connectAttr driver.tx p.radius; connectAttr p.outY driven.ty; setAttr p.degrees 90;");
    EXPECT_NEAR(run("setAttr driver.tx 7; getAttr driven.ty;").toFloat(), 7.0, 1e-9);
    EXPECT_NEAR(run("currentTime 1; setKeyframe -at tx -t 1 -v 1 -itt linear -ott linear driver; setKeyframe -at tx -t "
                    "11 -v 21 -itt linear -ott linear driver; currentTime 6; getAttr driven.ty;")
                    .toFloat(),
                11.0, 1e-9);
}

// Faults: API edits that undo misses or takes back twice; redo that repeats nothing.
TEST_F(TutorialPlugins, UndoableCommandMovesMeshPoints) {
    run("loadPlugin pushPoints; polyCube -ch 0 -n box; move 10 0 0 box; select box;");
    const auto height = [&] { return run("exactWorldBoundingBox box;").toFloatArray(); };
    EXPECT_EQ(height(), (FloatArray{9.5, -0.5, -0.5, 10.5, 0.5, 0.5}));
    EXPECT_EQ(run("pushPoints 0 3 1;").toInt(), 1);
    const FloatArray moved{9.5, 2.5, 0.5, 10.5, 3.5, 1.5};
    EXPECT_EQ(height(), moved);
    run("undo;");
    EXPECT_EQ(height(), (FloatArray{9.5, -0.5, -0.5, 10.5, 0.5, 0.5}));
    run("redo;");
    EXPECT_EQ(height(), moved);
    run("undo; undo; undo;"); // the push, the selection, the move
    EXPECT_EQ(height(), (FloatArray{-0.5, -0.5, -0.5, 0.5, 0.5, 0.5}));
    run("redo; redo; redo;");
    EXPECT_EQ(height(), moved);
    EXPECT_NE(failure("pushPoints 1 2;"), "");
    EXPECT_NE(failure("pushPoints 1 2 \"a\";"), "");
}

// Faults: types and commands that outlive their plug-in's code, or a plug-in torn out from under its nodes.
TEST_F(TutorialPlugins, UnloadingIsRefusedWhileInUse) {
    run("loadPlugin polarNode; createNode polarNode -n p;");
    EXPECT_NE(failure("unloadPlugin polarNode;").find("still in use"), std::string::npos);
    run("delete p; unloadPlugin polarNode;");
    // Its type is unknown again; as in Maya such a node only keeps what it is told.
    EXPECT_EQ(run("nodeType `createNode polarNode`;").toString(), "unknown");
    EXPECT_EQ(run("pluginInfo -q -loaded polarNode;").toInt(), 0);
    EXPECT_EQ(run("loadPlugin polarNode; nodeType `createNode polarNode`;").toString(), "polarNode");
}

// Faults: a path smuggled in as a name, a missing file or one that is no plug-in taken for loaded.
TEST_F(TutorialPlugins, WhatCannotBeLoadedSaysSo) {
    EXPECT_NE(failure("loadPlugin noSuchPlugin;").find("noSuchPlugin"), std::string::npos);
    EXPECT_NE(failure("loadPlugin \"" + orvo::test::buildTree("tests/tutorial/plug-ins/missing.so") + "\";")
                  .find("missing.so"),
              std::string::npos);
    EXPECT_NE(failure("loadPlugin \"" + orvo::test::testData("not_a_plugin.so") + "\";").find("not_a_plugin.so"),
              std::string::npos);
    EXPECT_THROW(host::Host::instance().plugins().loadByBareName("../plug-ins/polarNode"), host::scene::SceneError);
}

} // namespace
