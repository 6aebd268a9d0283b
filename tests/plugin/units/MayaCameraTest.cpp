#include "Common/MayaCamera.h"

#include "UtilityTest.h"
#include "viewport/Viewport.h"

using namespace orvo;
using host::viewport::Viewport;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

/// A view of 200 x 100 pixels through a camera at (1, 2, 3) that looks along -z, of one inch of film each way behind a
/// lens of one inch that fits the film's width: a view as wide as it is deep, and half as high.
class MayaCameraTest : public UtilityTest {
protected:
    void SetUp() override {
        std::string error;
        view_ = Viewport::create(200, 100, &error);
        if (!view_) GTEST_SKIP() << error;
        mel("createNode transform -n \"eye\"; createNode camera -n \"lens\" -p \"eye\";");
        set("eye.translateX", 1);
        set("eye.translateY", 2);
        set("eye.translateZ", 3);
        for (const auto& [name, value] :
             std::initializer_list<std::pair<const char*, double>>{{"lens.focalLength", 25.4},
                                                                   {"lens.horizontalFilmAperture", 1},
                                                                   {"lens.verticalFilmAperture", 1},
                                                                   {"lens.filmFit", 1},
                                                                   {"lens.nearClipPlane", 2},
                                                                   {"lens.farClipPlane", 1000}})
            set(name, value);
        ASSERT_TRUE(view_->setCamera(*scene.findNode("lens")->dag()));
        log_.clear();
    }
    static void expectNear(const Vector3& found, const Vector3& wanted) {
        EXPECT_NEAR(found.x, wanted.x, 1e-6);
        EXPECT_NEAR(found.y, wanted.y, 1e-6);
        EXPECT_NEAR(found.z, wanted.z, 1e-6);
    }

    std::unique_ptr<Viewport> view_;
};

} // namespace

// Catches width and height of the port mixed up, an angle in degrees, a local eye point, and a wrong corner order.
TEST_F(MayaCameraTest, PerspectiveCamera) {
    M3dView view = M3dView::active3dView();
    const MayaCamera camera(view);
    ASSERT_TRUE(camera.isValid());
    EXPECT_TRUE(camera.isPerspective());
    Vector3 eye;
    ASSERT_FALSE(camera.eyePoint(eye).error());
    expectNear(eye, {1, 2, 3});
    CameraFrustum::Corners corners;
    ASSERT_FALSE(camera.nearCorners(corners).error());
    expectNear(corners[0], {1 - 1, 2 + 0.5, 3 - 2});
    expectNear(corners[2], {1 + 1, 2 - 0.5, 3 - 2});
    ASSERT_FALSE(camera.farCorners(0.75, corners).error());
    expectNear(corners[1], {1 + 375, 2 + 187.5, 3 - 750});
    expectNear(corners[3], {1 - 375, 2 - 187.5, 3 - 750});
    CameraFrustum::Ray ray;
    ASSERT_FALSE(camera.rayThrough(1, 0.5, ray).error());
    expectNear(ray.origin, {1, 2, 3});
    expectNear(ray.direction, {0.5, 0, -1});
    EXPECT_THAT(log_.all(), IsEmpty());
}

// Catches directions in the camera's own space: a camera that is turned, or scaled by what is above it.
TEST_F(MayaCameraTest, TurnedCamera) {
    set("eye.rotateY", -M_PI / 2); // looks along +x, its right hand points to +z
    set("eye.scaleX", 5);
    set("eye.scaleZ", 5);
    M3dView view = M3dView::active3dView();
    CameraFrustum::Corners corners;
    ASSERT_FALSE(MayaCamera(view).nearCorners(corners).error());
    expectNear(corners[0], {1 + 2, 2 + 0.5, 3 - 1});
    expectNear(corners[2], {1 + 2, 2 - 0.5, 3 + 1});
}

// Catches a height that is not the port's share of the width, planes of a perspective camera, or that face outward.
TEST_F(MayaCameraTest, OrthographicCamera) {
    set("lens.orthographic", 1);
    set("lens.orthographicWidth", 40);
    M3dView view = M3dView::active3dView();
    const MayaCamera camera(view);
    ASSERT_TRUE(camera.isValid());
    EXPECT_FALSE(camera.isPerspective());
    EXPECT_EQ(camera.frustum().orthoWidth, 40);
    EXPECT_EQ(camera.frustum().orthoHeight, 20);
    const auto& planes = camera.frustum().planes;
    const auto inside = [&](double x, double y, double depth) {
        const Vector3 p{1 + x, 2 + y, 3 - depth};
        for (const auto& plane : planes)
            if (dot(plane.normal, p) < plane.distance) return false;
        return true;
    };
    EXPECT_TRUE(inside(19.9, 9.9, 3) && inside(-19.9, -9.9, 3) && inside(-19.9, 9.9, 999));
    EXPECT_FALSE(inside(20.1, 0, 3) || inside(-20.1, 0, 3) || inside(0, 10.1, 3) || inside(0, -10.1, 3));
    EXPECT_FALSE(inside(0, 0, 1.9) || inside(0, 0, 1001));
    expectNear(planes[CameraFrustum::Left].normal, {1, 0, 0});
    expectNear(planes[CameraFrustum::Top].normal, {0, -1, 0});
    EXPECT_NEAR(planes[CameraFrustum::Left].distance, 1 - 20, 1e-6);
    EXPECT_NEAR(planes[CameraFrustum::Top].distance, -2 - 10, 1e-6);
    CameraFrustum::Corners corners;
    ASSERT_FALSE(camera.farCorners(0.9, corners).error());
    expectNear(corners[0], {1 - 20, 2 + 10, 3 - 900});
    CameraFrustum::Ray ray;
    ASSERT_FALSE(camera.rayThrough(0, 1, ray).error());
    expectNear(ray.origin, {1 - 20, 2 + 10, 3});
    expectNear(ray.direction, {0, 0, -1});
}

// Catches a camera that reads the scene anew: it is what the view showed when it was made.
TEST_F(MayaCameraTest, StaysAsItWasMade) {
    M3dView view = M3dView::active3dView();
    const MayaCamera camera(view);
    set("eye.translateX", 50);
    scene.deleteNodes({scene.findNode("eye")});
    Vector3 eye;
    ASSERT_FALSE(camera.eyePoint(eye).error());
    expectNear(eye, {1, 2, 3});
}

// Catches a crash or made-up answers where no camera can be had, a silent failure, and a result that is written to all
// the same.
TEST_F(MayaCameraTest, WithoutACameraEveryQueryFails) {
    M3dView closed = M3dView::active3dView();
    view_.reset();
    M3dView never;
    for (M3dView* view : {&closed, &never}) {
        log_.clear();
        const MayaCamera camera(*view);
        EXPECT_FALSE(camera.isValid());
        EXPECT_TRUE(camera.isPerspective());
        EXPECT_THAT(log_.errors(),
                    ElementsAre(MatchesRegex("In Common\\\\MayaCamera, line [0-9]+"), StartsWith("Maya Reports: "),
                                MatchesRegex("In Common\\\\MayaCamera, line [0-9]+"), ""));
        Vector3 eye{7, 7, 7};
        CameraFrustum::Corners corners{};
        corners[0] = {7, 7, 7};
        CameraFrustum::Ray ray{{7, 7, 7}, {}};
        EXPECT_TRUE(camera.eyePoint(eye).error());
        EXPECT_TRUE(camera.nearCorners(corners).error());
        EXPECT_TRUE(camera.farCorners(0.9, corners).error());
        EXPECT_TRUE(camera.rayThrough(0.5, 0.5, ray).error());
        EXPECT_EQ(eye, (Vector3{7, 7, 7}));
        EXPECT_EQ(corners[0], (Vector3{7, 7, 7}));
        EXPECT_EQ(ray.origin, (Vector3{7, 7, 7}));
    }
}
