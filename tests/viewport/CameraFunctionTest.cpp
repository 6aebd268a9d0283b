#include "ViewFixture.h"

#include <maya/MFnCamera.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <cmath>
#include <numbers>

namespace {

using host::api::Access;

class CameraFunctionTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        node = make("camera", "shot").shared_from_this();
        ASSERT_TRUE(camera.setObject(Access::object(node.get())));
    }
    void TearDown() override {
        node.reset();
        ViewFixture::TearDown();
    }
    std::shared_ptr<host::scene::Node> node;
    MFnCamera camera;
};

// Fault: directions with the transforms' scale in them, of the wrong sign, or not of the space that was asked for.
TEST_F(CameraFunctionTest, TellsWhereItLooks) {
    Node& place = *node->dag()->parent;
    Node& outer = make("transform", "outer");
    scene.reparent(place, &outer);
    set3(outer, "translate", 1, 2, 3);
    set3(outer, "scale", 2, 2, 2);
    set3(place, "translate", 0, 0, 1);
    set3(place, "rotate", 0, std::numbers::pi / 2, 0); // -z turns to -x, x to -z
    EXPECT_TRUE(camera.eyePoint(MSpace::kWorld).isEquivalent(MPoint(1, 2, 5), 1e-12));
    EXPECT_TRUE(camera.viewDirection(MSpace::kWorld).isEquivalent(MVector(-1, 0, 0), 1e-12));
    EXPECT_TRUE(camera.upDirection(MSpace::kWorld).isEquivalent(MVector(0, 1, 0), 1e-12));
    EXPECT_TRUE(camera.rightDirection(MSpace::kWorld).isEquivalent(MVector(0, 0, -1), 1e-12));
    EXPECT_TRUE(camera.centerOfInterestPoint(MSpace::kWorld).isEquivalent(MPoint(-4, 2, 5), 1e-12));
    EXPECT_EQ(camera.eyePoint(), MPoint(0, 0, 0));
    EXPECT_EQ(camera.viewDirection(), MVector(0, 0, -1));
    EXPECT_EQ(camera.rightDirection(), MVector(1, 0, 0));
    set3(outer, "scale", 0, 0, 0);
    EXPECT_EQ(camera.upDirection(MSpace::kWorld) * camera.viewDirection(MSpace::kWorld), 0) << "not a number";
}

// Fault: wrong angles, or film fit left out. The default film is 36 mm x 24 mm behind 35 mm.
TEST_F(CameraFunctionTest, TellsItsAngles) {
    double across = 0, up = 0;
    EXPECT_NEAR(camera.horizontalFieldOfView(), 2 * std::atan(18.0 / 35), 1e-5);
    EXPECT_NEAR(camera.verticalFieldOfView(), 2 * std::atan(12.0 / 35), 1e-5);
    EXPECT_NEAR(camera.aspectRatio(), 1.5, 1e-5);
    ASSERT_TRUE(camera.getPortFieldOfView(640, 480, across, up)); // as wide as the film, and 27 mm high
    EXPECT_NEAR(across, 2 * std::atan(18.0 / 35), 1e-12);
    EXPECT_NEAR(up, 2 * std::atan(13.5 / 35), 1e-12);
    EXPECT_FALSE(camera.getPortFieldOfView(0, 480, across, up));
    ASSERT_TRUE(camera.setHorizontalFieldOfView(std::numbers::pi / 2));
    EXPECT_NEAR(camera.focalLength(), 18, 1e-4);
    ASSERT_TRUE(camera.setVerticalFieldOfView(std::numbers::pi / 2));
    EXPECT_NEAR(camera.focalLength(), 12, 1e-4);
    EXPECT_FALSE(camera.setVerticalFieldOfView(std::numbers::pi));
}

// Fault: the aspect is applied to the wrong side, or overscan and squeeze come in unasked.
TEST_F(CameraFunctionTest, TellsItsFrustum) {
    camera.setHorizontalFilmAperture(2);
    camera.setVerticalFilmAperture(1);
    camera.setFocalLength(25.4);
    camera.setNearFarClippingPlanes(10, 100);
    camera.setHorizontalFilmOffset(0.25);
    camera.setOverscan(1.5);
    camera.setLensSqueezeRatio(2);
    double l = 0, r = 0, b = 0, t = 0;
    ASSERT_TRUE(camera.getViewParameters(4, l, b, r, t)); // 2 inches of film fill a window of 4 to 1
    EXPECT_THAT((std::array{l, b, r, t}), testing::ElementsAre(2, 0.5, 0.25, 0));
    ASSERT_TRUE(camera.getViewingFrustum(4, l, r, b, t)); // at ten times the focal length
    EXPECT_THAT((std::array{l, r, b, t}), testing::Pointwise(testing::DoubleNear(1e-12), {-7.5, 12.5, -2.5, 2.5}));
    ASSERT_TRUE(camera.getViewParameters(4, l, b, r, t, true, true)); // 4 x 1 inches of film, half as much again
    EXPECT_THAT((std::array{l, b, r, t}), testing::ElementsAre(6, 1.5, 0.25, 0));
    camera.setIsOrtho(true);
    camera.setOrthoWidth(8);
    ASSERT_TRUE(camera.getViewingFrustum(4, l, r, b, t));
    EXPECT_THAT((std::array{l, r, b, t}), testing::ElementsAre(-4, 4, -1, 1));
    EXPECT_FALSE(camera.getViewingFrustum(0, l, r, b, t));
}

// Fault: a setter writes another attribute than its getter reads, or in another unit than scene files hold.
TEST_F(CameraFunctionTest, SettersReachTheirAttributes) {
    struct Pair {
        const char* attribute;
        MStatus (MFnCamera::*set)(double);
        double (MFnCamera::*get)(MStatus*) const;
    };
    const Pair pairs[] = {
        {"nearClipPlane", &MFnCamera::setNearClippingPlane, &MFnCamera::nearClippingPlane},
        {"farClipPlane", &MFnCamera::setFarClippingPlane, &MFnCamera::farClippingPlane},
        {"orthographicWidth", &MFnCamera::setOrthoWidth, &MFnCamera::orthoWidth},
        {"horizontalFilmAperture", &MFnCamera::setHorizontalFilmAperture, &MFnCamera::horizontalFilmAperture},
        {"verticalFilmAperture", &MFnCamera::setVerticalFilmAperture, &MFnCamera::verticalFilmAperture},
        {"horizontalFilmOffset", &MFnCamera::setHorizontalFilmOffset, &MFnCamera::horizontalFilmOffset},
        {"verticalFilmOffset", &MFnCamera::setVerticalFilmOffset, &MFnCamera::verticalFilmOffset},
        {"filmFitOffset", &MFnCamera::setFilmFitOffset, &MFnCamera::filmFitOffset},
        {"overscan", &MFnCamera::setOverscan, &MFnCamera::overscan},
        {"cameraScale", &MFnCamera::setCameraScale, &MFnCamera::cameraScale},
        {"focalLength", &MFnCamera::setFocalLength, &MFnCamera::focalLength},
        {"lensSqueezeRatio", &MFnCamera::setLensSqueezeRatio, &MFnCamera::lensSqueezeRatio},
        {"fStop", &MFnCamera::setFStop, &MFnCamera::fStop},
        {"focusDistance", &MFnCamera::setFocusDistance, &MFnCamera::focusDistance},
        {"shutterAngle", &MFnCamera::setShutterAngle, &MFnCamera::shutterAngle},
        {"centerOfInterest", &MFnCamera::setCenterOfInterest, &MFnCamera::centerOfInterest},
    };
    double value = 3;
    for (const Pair& p : pairs) {
        value += 0.25;
        MStatus status;
        EXPECT_TRUE((camera.*p.set)(value)) << p.attribute;
        EXPECT_EQ((camera.*p.get)(&status), value) << p.attribute;
        EXPECT_TRUE(status);
        EXPECT_EQ(node->cell(p.attribute).number(), value) << p.attribute;
        EXPECT_FALSE((camera.*p.set)(std::nan(""))) << p.attribute;
    }
    EXPECT_TRUE(camera.setFilmFit(MFnCamera::kVerticalFilmFit));
    EXPECT_EQ(node->cell("filmFit").number(), 2);
    EXPECT_EQ(camera.filmFit(), MFnCamera::kVerticalFilmFit);
    EXPECT_FALSE(camera.setFilmFit(MFnCamera::kInvalid));
    EXPECT_TRUE(camera.setTumblePivot(MPoint(1, 2, 3)));
    EXPECT_EQ(camera.tumblePivot(), MPoint(1, 2, 3));
}

// Fault: refusals of the scene are lost, or a camera that is gone crashes or answers with success.
TEST_F(CameraFunctionTest, TellsFailures) {
    EXPECT_FALSE(camera.setFocalLength(1)) << "below the attribute's least";
    EXPECT_FALSE(camera.setNearFarClippingPlanes(2, 1));
    scene.setLocked(node->cell("overscan"), true);
    EXPECT_FALSE(camera.setOverscan(2));
    EXPECT_EQ(camera.overscan(), 1);

    scene.deleteNodes({node.get()});
    scene.undo.clear();
    node.reset();
    MStatus status;
    double a = 0, b = 0;
    EXPECT_EQ(camera.focalLength(&status), 0);
    EXPECT_FALSE(status);
    camera.viewDirection(MSpace::kWorld, &status);
    EXPECT_FALSE(status);
    EXPECT_EQ(camera.filmFit(&status), MFnCamera::kInvalid);
    EXPECT_FALSE(status);
    EXPECT_FALSE(camera.setFocalLength(50));
    EXPECT_FALSE(camera.getPortFieldOfView(10, 10, a, b));
    EXPECT_FALSE(camera.getViewingFrustum(1, a, a, b, b));
}

// Fault: function sets taken for cameras that are none; a path to the camera's transform refused.
TEST_F(CameraFunctionTest, AttachesAndCreates) {
    MStatus status;
    MDagPath transform;
    ASSERT_TRUE(MDagPath::getAPathTo(Access::object(node->dag()->parent), transform));
    EXPECT_EQ(MFnCamera(transform, &status).object(), Access::object(node.get()));
    EXPECT_TRUE(status);
    MObject mark = Access::object(&make("locator", "mark"));
    MFnCamera(mark, &status);
    EXPECT_FALSE(status);

    MFnCamera made;
    EXPECT_TRUE(made.create(&status).hasFn(MFn::kTransform));
    EXPECT_TRUE(status);
    EXPECT_EQ(made.focalLength(), 35);
    MObject parent = transform.node();
    EXPECT_TRUE(made.create(parent, &status).hasFn(MFn::kCamera));
    EXPECT_EQ(made.parent(0), parent);
    made.create(mark, &status);
    EXPECT_FALSE(status);
}

} // namespace
