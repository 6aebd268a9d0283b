#include "ViewFixture.h"
#include "api/graph/Handle.h"

#include <maya/M3dView.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <array>

namespace {

using host::viewport::Viewport;
using testing::ElementsAre;

/// Views of 200 x 100 pixels on the film of makeCamera, from (0, 0, 10): 20 pixels a unit at the origin.
class ViewTest : public ViewFixture {
protected:
    void open() {
        openView(200, 100);
        if (IsSkipped()) return;
        ASSERT_TRUE(view->setCamera(makeCamera()));
    }
};

// Fault: a plug-in that keeps a view's object crashes the host, or is told of success, when the view is gone.
TEST_F(ViewTest, FailsWhenItsViewIsClosed) {
    open();
    if (IsSkipped()) return;
    MStatus status;
    M3dView kept = M3dView::active3dView(&status);
    EXPECT_TRUE(status);
    EXPECT_EQ(kept.portWidth(), 200);
    view.reset();
    MDagPath path;
    MMatrix m;
    MPoint p, q;
    short x = 0, y = 0;
    unsigned int side = 0;
    bool mask = false;
    EXPECT_EQ(kept.portWidth(&status), 0);
    EXPECT_FALSE(status);
    EXPECT_FALSE(kept.isVisible(&status));
    EXPECT_FALSE(status);
    EXPECT_FALSE(kept.worldToView(p, x, y, &status));
    EXPECT_FALSE(status);
    kept.displayStyle(&status);
    EXPECT_FALSE(status);
    for (const MStatus& s :
         {kept.beginGL(), kept.endGL(), kept.getCamera(path), kept.setCamera(path), kept.refresh(true),
          kept.projectionMatrix(m), kept.modelViewMatrix(m), kept.viewToWorld(1, 1, p, q), kept.popViewport(),
          kept.pushViewport(0, 0, 1, 1), kept.viewport(side, side, side, side), kept.setDrawColor(MColor()),
          kept.colorMask(mask, mask, mask, mask), kept.drawText("a", p), kept.updateViewingParameters(),
          kept.scheduleRefresh()})
        EXPECT_EQ(s, MStatus(MStatus::kFailure));
    EXPECT_EQ(M3dView::numberOf3dViews(), 0u);
    M3dView::active3dView(&status);
    EXPECT_FALSE(status);
}

// Fault: only one view is possible, or views draw into each other's pictures and lose each other's GL objects.
TEST_F(ViewTest, ViewsStandBesideEachOther) {
    open();
    if (IsSkipped()) return;
    auto second = Viewport::create(10, 10);
    ASSERT_TRUE(second);
    M3dView first;
    EXPECT_EQ(M3dView::active3dView().portWidth(), 10);
    EXPECT_TRUE(M3dView::get3dView(0, first));
    EXPECT_FALSE(M3dView::get3dView(2, first));
    EXPECT_EQ(first.portWidth(), 200);
    makePoint("point", 1.225, 0.725, 0, MColor(1, 0, 0));
    render();
    EXPECT_THAT(litPixels(), ElementsAre("124,35:255,0,0"));
    EXPECT_EQ(second->picture().at(5, 5)[0], 0);
    second.reset();
    EXPECT_EQ(Viewport::active(), view.get());
    EXPECT_THAT(litPixels(), ElementsAre("124,35:255,0,0"));
}

// Fault: beginGL outside of a draw has no context, target or camera; unbalanced ends are taken for success.
TEST_F(ViewTest, BeginsAndEndsNest) {
    open();
    if (IsSkipped()) return;
    M3dView api = host::api::Access::view(view->serial());
    EXPECT_FALSE(api.endGL());
    EXPECT_FALSE(api.updateViewingParameters()) << "no matrices to load outside of beginGL";
    ASSERT_TRUE(api.beginGL());
    double outer[16] = {}, inner[16] = {};
    glMatrixMode(GL_MODELVIEW);
    glTranslated(1, 2, 3);
    glGetDoublev(GL_MODELVIEW_MATRIX, outer);
    EXPECT_EQ(outer[14], 3 - 10) << "the camera's matrix was not loaded";
    ASSERT_TRUE(api.beginGL());
    glPushMatrix();
    glLoadIdentity();
    EXPECT_TRUE(api.endGL());
    glGetDoublev(GL_MODELVIEW_MATRIX, inner);
    EXPECT_THAT(inner, testing::ElementsAreArray(outer));
    EXPECT_FALSE(view->render()) << "a frame within somebody's drawing";
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_TRUE(api.endGL());
    EXPECT_FALSE(api.endGL());
    EXPECT_EQ(view->picture().at(7, 7)[2], 255);
    EXPECT_TRUE(api.refresh());
    EXPECT_EQ(view->picture().at(7, 7)[2], 0);
}

// Fault: a draw is promised another one that nobody makes, or who watches the view does not hear of the wish.
TEST_F(ViewTest, AsksWhoWatchesForAnotherDraw) {
    open();
    if (IsSkipped()) return;
    M3dView api = host::api::Access::view(view->serial());
    EXPECT_FALSE(api.scheduleRefresh());
    int asked = 0;
    view->setRefresher([&] { ++asked; });
    EXPECT_TRUE(api.scheduleRefresh());
    EXPECT_EQ(asked, 1);
}

// Fault: the matrices that a plug-in is told are not those that it draws with, or are transposed.
TEST_F(ViewTest, TellsMatricesAndSpaces) {
    open();
    if (IsSkipped()) return;
    M3dView api = host::api::Access::view(view->serial());
    MMatrix projection, modelView;
    ASSERT_TRUE(api.projectionMatrix(projection));
    ASSERT_TRUE(api.modelViewMatrix(modelView));
    // The window shows 10 x 5 units at a distance of 10: x = 1 lies at a fifth of the way to the right edge.
    MPoint clip = MPoint(1, 1, 0) * modelView * projection;
    EXPECT_NEAR(clip.x / clip.w, 0.2, 1e-12);
    EXPECT_NEAR(clip.y / clip.w, 0.4, 1e-12);
    EXPECT_NEAR(clip.w, 10, 1e-12);

    short x = 0, y = 0;
    EXPECT_TRUE(api.worldToView(MPoint(1, 1, 0), x, y));
    EXPECT_THAT((std::array{x, y}), ElementsAre(120, 70));
    EXPECT_FALSE(api.worldToView(MPoint(6, 1, 0), x, y)) << "beside the port";
    EXPECT_THAT((std::array{x, y}), ElementsAre(220, 70));
    EXPECT_FALSE(api.worldToView(MPoint(1, 1, 20), x, y)) << "behind the camera";
    EXPECT_FALSE(api.worldToView(MPoint(1, 1, 10), x, y)) << "in the plane of the eye";
    EXPECT_FALSE(api.worldToView(MPoint(1e9, 0, 9), x, y));
    EXPECT_EQ(x, 32767);

    MPoint nearPoint, farPoint;
    MVector direction;
    ASSERT_TRUE(api.viewToWorld(120, 70, nearPoint, farPoint)); // near plane at 0.1, far plane at 10000
    EXPECT_TRUE(nearPoint.isEquivalent(MPoint(0.01, 0.01, 9.9), 1e-9));
    EXPECT_TRUE(farPoint.isEquivalent(MPoint(1000, 1000, -9990), 1e-3));
    ASSERT_TRUE(api.viewToWorld(120, 70, nearPoint, direction));
    EXPECT_TRUE(direction.isEquivalent(MVector(0.1, 0.1, -1).normal(), 1e-9));
    const double place[4][4] = {{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}, {0, 0, 10, 1}};
    ASSERT_TRUE(api.viewToObjectSpace(120, 70, MMatrix(place).inverse(), nearPoint, direction));
    EXPECT_TRUE(nearPoint.isEquivalent(MPoint(0.005, 0.005, -0.05), 1e-9));
    EXPECT_TRUE(direction.isEquivalent(MVector(0.1, 0.1, -1).normal(), 1e-9));
}

// Fault: a part of the port is not drawn into, not told, or not left again.
TEST_F(ViewTest, DrawsIntoPartsOfThePort) {
    open();
    if (IsSkipped()) return;
    const auto told = [](const M3dView& api) {
        std::array<unsigned int, 4> r{};
        EXPECT_TRUE(api.viewport(r[0], r[1], r[2], r[3]));
        return r;
    };
    TestLocator::draws["parts"] = [&](DrawCall c) {
        ASSERT_TRUE(c.view.pushViewport(100, 50, 100, 50));
        EXPECT_THAT(told(c.view), ElementsAre(100, 50, 100, 50));
        // (1.25, 0.75) lies at 12.5 and 7.5 pixels of 10 a unit from the middle of the part, (150, 75).
        glColor3f(0, 1, 0);
        glBegin(GL_POINTS);
        glVertex3d(1.25, 0.75, 0);
        glEnd();
        EXPECT_FALSE(c.view.pushViewport(0, 0, 0, 5));
        EXPECT_TRUE(c.view.popViewport());
        EXPECT_FALSE(c.view.popViewport());
        EXPECT_FALSE(c.view.refresh()) << "a frame within a frame";
    };
    make("testLocator", "parts");
    makePoint("whole", 1.225, 0.725, 0, MColor(1, 0, 0));
    render();
    EXPECT_THAT(litPixels(), ElementsAre("162,17:0,255,0", "124,35:255,0,0"));
    EXPECT_THAT(told(host::api::Access::view(view->serial())), ElementsAre(0, 0, 200, 100));
}

// Fault: looking through another camera fails for the transform that a user would name, or takes any node.
TEST_F(ViewTest, ChangesItsCamera) {
    open();
    if (IsSkipped()) return;
    M3dView api = host::api::Access::view(view->serial());
    MDagPath path, top, locator;
    ASSERT_TRUE(api.getCamera(path));
    EXPECT_STREQ(path.fullPathName().asChar(), "|eye|eyeShape");
    ASSERT_TRUE(MDagPath::getAPathTo(host::api::Access::object(scene.findNode("top")), top));
    ASSERT_TRUE(MDagPath::getAPathTo(host::api::Access::object(&make("locator", "mark")), locator));
    EXPECT_TRUE(api.setCamera(top));
    EXPECT_FALSE(api.setCamera(locator));
    ASSERT_TRUE(api.getCamera(path));
    EXPECT_STREQ(path.fullPathName().asChar(), "|top|topShape");
}

} // namespace
