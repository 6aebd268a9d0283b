#include "GraphFixture.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MItDag.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>

#include <functional>

namespace {

using testing::ElementsAre;

/// hub|mid|box|boxShape; mid is at (1, 0, 0) in hub, which is at (10, 0, 0), turned by 90 degrees about z, twice as
/// large. The box has edges of 1.
struct DagFnTest : GraphFixture {
    DagFnTest() {
        run("createNode transform -n hub; createNode transform -n mid -p hub; polyCube -ch 0 -n box; parent -r box mid;"
            "setAttr hub.t 10 0 0; setAttr hub.rz 90; setAttr hub.s 2 2 2; setAttr mid.tx 1; select -cl;");
    }
    MDagPath path(const char* name) { return MDagPath::getAPathTo(object(name)); }
    static void expectPoint(const MPoint& p, double x, double y, double z) {
        EXPECT_NEAR(p.x, x, 1e-9);
        EXPECT_NEAR(p.y, y, 1e-9);
        EXPECT_NEAR(p.z, z, 1e-9);
    }
    MStatus status;
};

// Fault: the node's own matrix in the exclusive one, parents left out or in the wrong order, inverses of the wrong one.
TEST_F(DagFnTest, MatricesThroughTurnedAndScaledParents) {
    // mid: (1,0,0) -> scaled (2,0,0) -> turned (0,2,0) -> moved (10,2,0)
    expectPoint(MPoint(0, 0, 0) * path("mid").inclusiveMatrix(), 10, 2, 0);
    expectPoint(MPoint(1, 1, 1) * path("mid").inclusiveMatrix(), 8, 4, 2);
    expectPoint(MPoint(1, 1, 1) * path("mid").exclusiveMatrix(), 8, 2, 2);
    expectPoint(MPoint(8, 4, 2) * path("mid").inclusiveMatrixInverse(), 1, 1, 1);
    expectPoint(MPoint(8, 2, 2) * path("mid").exclusiveMatrixInverse(), 1, 1, 1);
    expectPoint(MPoint(1, 1, 1) * path("boxShape").inclusiveMatrix(), 8, 4, 2);
    expectPoint(MPoint(1, 1, 1) * path("boxShape").exclusiveMatrix(), 8, 4, 2);
    expectPoint(MPoint(0, 0, 0) * MFnDagNode(object("mid")).transformationMatrix(), 1, 0, 0);
    EXPECT_TRUE(MFnDagNode(object("boxShape")).transformationMatrix().isEquivalent(MMatrix::identity));
    run("setAttr hub.tx 0");
    expectPoint(MPoint(0, 0, 0) * path("mid").inclusiveMatrix(), 0, 2, 0);
}

// Fault: the box of a transformed mesh not turned with it, without its parent's space, or of hidden history.
TEST_F(DagFnTest, BoundingBoxesInTheParentsSpace) {
    const auto expectBox = [](const char* what, const MBoundingBox& box, const MPoint& a, const MPoint& b) {
        SCOPED_TRACE(what);
        expectPoint(box.min(), a.x, a.y, a.z);
        expectPoint(box.max(), b.x, b.y, b.z);
    };
    run("setAttr box.s 4 2 1");
    const auto box = [&](const char* name) { return MFnDagNode(object(name)).boundingBox(&status); };
    expectBox("shape", box("boxShape"), {-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5});
    expectBox("box", box("box"), {-2, -1, -0.5}, {2, 1, 0.5});
    expectBox("mid", box("mid"), {-1, -1, -0.5}, {3, 1, 0.5});
    expectBox("hub", box("hub"), {8, -2, -1}, {12, 6, 1});
    run("createNode transform -n empty -p hub; setAttr empty.tx 100;");
    expectBox("an empty group has no extent", box("hub"), {8, -2, -1}, {12, 6, 1});
    run("setAttr box.rz 90");
    expectBox("turned", box("box"), {-1, -2, -0.5}, {1, 2, 0.5});
}

// Fault: names and lengths of paths that miss a level, or a partial path that names several nodes.
TEST_F(DagFnTest, PathsAndNames) {
    MDagPath p = path("boxShape");
    EXPECT_EQ(p.fullPathName(), "|hub|mid|box|boxShape");
    EXPECT_EQ(p.partialPathName(), "boxShape");
    EXPECT_EQ(p.length(), 4u);
    EXPECT_EQ(p.transform(), object("box"));
    EXPECT_EQ(path("mid").transform(), object("mid"));
    run("createNode transform -n other; createNode transform -n mid -p other;");
    EXPECT_EQ(MFnDagNode(object("hub|mid")).partialPathName(), "hub|mid");
    EXPECT_EQ(MFnDagNode(object("other|mid")).fullPathName(), "|other|mid");
    EXPECT_TRUE(p.pop());
    EXPECT_EQ(p.node(), object("box"));
    EXPECT_TRUE(p.pop(2));
    EXPECT_EQ(p.node(), object("hub"));
    EXPECT_EQ(p.pop(), MStatus::kFailure);
    EXPECT_EQ(p.node(), object("hub"));
    EXPECT_TRUE(p.push(object("hub|mid")));
    EXPECT_EQ(p.push(object("boxShape")), MStatus::kInvalidParameter) << "not a child";
    EXPECT_TRUE(p == path("hub|mid"));
    MDagPathArray all;
    EXPECT_TRUE(MFnDagNode(object("box")).getAllPaths(all));
    EXPECT_EQ(all.length(), 1u);
    EXPECT_EQ(MDagPath::getAPathTo(object("time1"), p), MStatus::kInvalidParameter);
    EXPECT_FALSE(MDagPath().isValid());
    EXPECT_TRUE(MDagPath().node(&status).isNull());
    EXPECT_EQ(status, MStatus::kFailure);
}

// Fault: a shape chosen among several, or a function set told that the path's node does not have.
TEST_F(DagFnTest, ExtendToShape) {
    MDagPath p = path("box");
    EXPECT_TRUE(p.hasFn(MFn::kTransform) && p.hasFn(MFn::kMesh));
    EXPECT_EQ(p.apiType(), MFn::kTransform);
    EXPECT_TRUE(p.extendToShape());
    EXPECT_EQ(p.node(), object("boxShape"));
    EXPECT_FALSE(p.hasFn(MFn::kTransform));
    EXPECT_TRUE(p.extendToShape()) << "it stays where it is";
    EXPECT_EQ(path("mid").extendToShape(), MStatus::kFailure);
    EXPECT_FALSE(path("mid").hasFn(MFn::kMesh)) << "the mesh is below a child";
    run("createNode camera -n lens -p box");
    MDagPath two = path("box");
    EXPECT_EQ(two.extendToShape(), MStatus::kFailure);
    EXPECT_FALSE(two.hasFn(MFn::kMesh));
    unsigned count = 0;
    EXPECT_TRUE(two.numberOfShapesDirectlyBelow(count));
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(two.extendToShapeDirectlyBelow(2), MStatus::kInvalidParameter);
    EXPECT_TRUE(two.extendToShapeDirectlyBelow(1));
    EXPECT_EQ(two.node(), object("lens"));
}

// Fault: visibility and templates of the parents ignored, or children's taken.
TEST_F(DagFnTest, VisibleAndTemplatedAlongTheDag) {
    const struct {
        const char *on, *off;
        bool midVisible, shapeVisible, midTemplated, shapeTemplated;
    } cases[] = {
        {"setAttr hub.v 0", "setAttr hub.v 1", false, false, false, false},
        {"setAttr boxShape.v 0", "setAttr boxShape.v 1", true, false, false, false},
        {"setAttr boxShape.intermediateObject 1", "setAttr boxShape.intermediateObject 0", true, false, false, false},
        {"setAttr mid.template 1", "setAttr mid.template 0", true, true, true, true},
        {"setAttr box.template 1", "setAttr box.template 0", true, true, false, true}};
    EXPECT_TRUE(path("boxShape").isVisible() && !path("boxShape").isTemplated());
    for (const auto& c : cases) {
        run(c.on);
        EXPECT_EQ(path("mid").isVisible(), c.midVisible) << c.on;
        EXPECT_EQ(path("boxShape").isVisible(), c.shapeVisible) << c.on;
        EXPECT_EQ(path("mid").isTemplated(), c.midTemplated) << c.on;
        EXPECT_EQ(path("boxShape").isTemplated(), c.shapeTemplated) << c.on;
        run(c.off);
        EXPECT_TRUE(path("boxShape").isVisible() && !path("boxShape").isTemplated()) << c.off;
    }
    MFnDagNode shape(object("boxShape"));
    EXPECT_TRUE(shape.setIntermediateObject(true));
    EXPECT_TRUE(shape.isIntermediateObject());
}

// Fault: relations asked one level too far or too short, or of a node with itself.
TEST_F(DagFnTest, Family) {
    MFnDagNode hub(object("hub")), box(object("box"));
    EXPECT_EQ(box.parentCount(), 1u);
    EXPECT_EQ(box.parent(0), object("mid"));
    EXPECT_EQ(hub.parent(0), hub.dagRoot());
    EXPECT_TRUE(box.parent(1, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(box.isChildOf(object("hub")) && !box.hasParent(object("hub")) && box.hasParent(object("mid")));
    EXPECT_TRUE(hub.isParentOf(object("boxShape")) && !hub.hasChild(object("boxShape")) && hub.hasChild(object("mid")));
    EXPECT_FALSE(hub.isParentOf(object("hub")) || hub.isChildOf(object("box")));
    EXPECT_EQ(hub.child(0), object("mid"));
    EXPECT_TRUE(hub.child(1, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_FALSE(hub.isParentOf(object("time1")) || hub.hasChild(MObject::kNullObj));
    EXPECT_EQ(MFnDagNode(hub.dagRoot()).parentCount(), 0u);
}

// Fault: a shape created without a transform, or a parent that cannot have children.
TEST_F(DagFnTest, Create) {
    MFnDagNode fn;
    MObject hub = object("hub"), shape = object("boxShape"), time = object("time1");
    EXPECT_TRUE(fn.create("transform", "leaf", hub).hasFn(MFn::kTransform));
    EXPECT_EQ(fn.fullPathName(), "|hub|leaf");
    const MObject above = fn.create("camera", "view");
    EXPECT_TRUE(above.hasFn(MFn::kTransform));
    EXPECT_TRUE(MFnDagNode(above).child(0).hasFn(MFn::kCamera));
    EXPECT_TRUE(fn.create("camera", "lens", hub).hasFn(MFn::kCamera)) << "below a transform it needs none";
    EXPECT_TRUE(fn.create("transform", shape, &status).isNull());
    EXPECT_EQ(status, MStatus::kFailure);
    EXPECT_TRUE(fn.create("transform", time, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_TRUE(fn.create("animCurveTL", MObject::kNullObj, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
}

// Fault: a move that makes a circle, loses the node, leaves a shape without transform or forgets the place.
TEST_F(DagFnTest, AddAndRemoveChildren) {
    run("createNode transform -n a -p hub; createNode transform -n b -p hub; createNode transform -n c;");
    MFnDagNode hub(object("hub")), mid(object("mid"));
    MObject a = object("a"), b = object("b"), c = object("c"), topObject = object("hub"), shape = object("boxShape");
    const auto children = [&] {
        std::vector<std::string> names;
        for (unsigned i = 0; i < hub.childCount(); ++i) names.push_back(str(MFnDagNode(hub.child(i)).name()));
        return names;
    };
    EXPECT_TRUE(hub.addChild(c, 1));
    EXPECT_THAT(children(), ElementsAre("mid", "c", "a", "b"));
    EXPECT_TRUE(hub.addChild(b, 0));
    EXPECT_THAT(children(), ElementsAre("b", "mid", "c", "a"));
    EXPECT_EQ(mid.addChild(topObject), MStatus::kFailure);
    EXPECT_EQ(hub.addChild(topObject), MStatus::kFailure);
    EXPECT_EQ(MFnDagNode(shape).addChild(c), MStatus::kFailure);
    EXPECT_EQ(hub.addChild(MObject::kNullObj), MStatus::kInvalidParameter);
    EXPECT_EQ(mid.removeChild(c), MStatus::kInvalidParameter);
    EXPECT_TRUE(hub.removeChild(c));
    EXPECT_EQ(MFnDagNode(c).fullPathName(), "|c");
    EXPECT_EQ(hub.removeChildAt(3), MStatus::kInvalidParameter);
    EXPECT_TRUE(hub.removeChildAt(0));
    EXPECT_THAT(children(), ElementsAre("mid", "a"));
    EXPECT_EQ(MFnDagNode(object("box")).removeChild(shape), MStatus::kFailure);
    EXPECT_EQ(MFnDagNode(shape).fullPathName(), "|hub|mid|box|boxShape");
    EXPECT_TRUE(MFnDagNode(a).addChild(shape));
    EXPECT_EQ(path("boxShape").fullPathName(), "|hub|a|boxShape");
}

// Fault: paths and function sets of deleted nodes that answer as if the node were there.
TEST_F(DagFnTest, NodesThatAreGone) {
    MDagPath p = path("box");
    MFnDagNode fn(object("box"));
    MObject child = object("boxShape");
    run("delete box");
    EXPECT_FALSE(p.isValid());
    run("undo");
    EXPECT_TRUE(p.isValid());
    EXPECT_EQ(p.fullPathName(), "|hub|mid|box");
    scene.reset();
    EXPECT_FALSE(p.isValid());
    const std::function<void()> calls[] = {
        [&] { fn.parentCount(&status); },
        [&] { fn.parent(0, &status); },
        [&] { fn.child(0, &status); },
        [&] { fn.fullPathName(&status); },
        [&] { fn.boundingBox(&status); },
        [&] { fn.transformationMatrix(&status); },
        [&] { status = fn.addChild(child); },
        [&] { status = fn.removeChildAt(0); },
        [&] { p.node(&status); },
        [&] { p.length(&status); },
        [&] { p.inclusiveMatrix(&status); },
        [&] { p.fullPathName(&status); },
        [&] { p.isVisible(&status); },
        [&] { status = p.extendToShape(); },
        [&] { status = p.pop(); },
        [&] { p.hasFn(MFn::kTransform, &status); },
        [&] { fn.isParentOf(child, &status); },
        [&] { status = fn.setIntermediateObject(true); },
    };
    int number = 0;
    for (const auto& call : calls) {
        status = MStatus::kSuccess;
        call();
        EXPECT_EQ(status, MStatus::kFailure) << number;
        ++number;
    }
    EXPECT_TRUE(fn.boundingBox().width() == 0);
}

struct WalkCase {
    const char* name;
    MItDag::TraversalType order;
    MFn::Type filter;
    const char* prune;
    const char* found;
    friend void PrintTo(const WalkCase& c, std::ostream* out) { *out << c.name; }
};

struct DagWalkTest : DagFnTest, testing::WithParamInterface<WalkCase> {};

// Fault: children before their parents, siblings out of order, what is pruned or filtered away still walked.
TEST_P(DagWalkTest, VisitsInOrder) {
    run("createNode transform -n twig -p hub; createNode transform -n leaf -p twig;");
    const WalkCase& c = GetParam();
    MItDag it;
    ASSERT_TRUE(it.reset(object("hub"), c.order, c.filter));
    std::string found;
    for (; !it.isDone(); it.next()) {
        const std::string name = str(MFnDagNode(it.currentItem()).name());
        found += (found.empty() ? "" : " ") + name + std::to_string(it.depth());
        if (name == c.prune) {
            EXPECT_TRUE(it.prune());
        }
    }
    EXPECT_EQ(found, c.found);
    EXPECT_EQ(it.next(), MStatus::kFailure);
    EXPECT_TRUE(it.currentItem(&status).isNull());
    EXPECT_EQ(status, MStatus::kFailure);
}
INSTANTIATE_TEST_SUITE_P(
    Orders, DagWalkTest,
    testing::Values(
        WalkCase{"Depth", MItDag::kDepthFirst, MFn::kInvalid, "", "hub0 mid1 box2 boxShape3 twig1 leaf2"},
        WalkCase{"Breadth", MItDag::kBreadthFirst, MFn::kInvalid, "", "hub0 mid1 twig1 box2 leaf2 boxShape3"},
        WalkCase{"DepthPruned", MItDag::kDepthFirst, MFn::kInvalid, "mid", "hub0 mid1 twig1 leaf2"},
        WalkCase{"BreadthPruned", MItDag::kBreadthFirst, MFn::kInvalid, "mid", "hub0 mid1 twig1 leaf2"},
        WalkCase{"Meshes", MItDag::kDepthFirst, MFn::kMesh, "", "boxShape3"},
        WalkCase{"TransformsPruned", MItDag::kBreadthFirst, MFn::kTransform, "twig", "hub0 mid1 twig1 box2"}),
    [](const auto& info) { return info.param.name; });

// Fault: a walk that a deletion on the way breaks, or that starts anew with the wrong root or filter.
TEST_F(DagFnTest, WalksWhileNodesAreDeleted) {
    run("createNode transform -n twig -p hub;");
    MItDag it(MItDag::kDepthFirst, MFn::kInvalid, &status);
    EXPECT_TRUE(status);
    EXPECT_EQ(it.root(), MFnDagNode(object("hub")).dagRoot());
    EXPECT_TRUE(it.reset(path("hub")));
    it.next();
    EXPECT_EQ(it.fullPathName(), "|hub|mid");
    run("delete twig");
    scene.undo.clear();
    int steps = 0;
    for (; !it.isDone() && steps < 100; it.next()) {
        EXPECT_NE(MFnDependencyNode(it.item()).name(), "twig");
        ++steps;
    }
    EXPECT_EQ(steps, 3);
    EXPECT_TRUE(it.reset());
    EXPECT_EQ(it.item(), object("hub"));
    EXPECT_EQ(it.reset(object("time1")), MStatus::kInvalidParameter);
    EXPECT_EQ(it.reset(MDagPath()), MStatus::kInvalidParameter);
}

} // namespace
