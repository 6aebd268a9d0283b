#include "viewport/CameraProjection.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using namespace host::viewport;

constexpr double degrees = 57.29577951308232;

struct FitCase {
    const char* name;
    FilmFit fit;
    int portWidth, portHeight;
    double filmWidth, filmHeight; ///< apertures and squeeze worked by hand, inches
    friend void PrintTo(const FitCase& c, std::ostream* out) { *out << c.name; }
};

// The film gate is 2 x 1 inches, squeezed by 1.5 to 3 x 1; a port of 400 x 100 is wider, one of 200 x 100 narrower.
class FilmFitTest : public testing::TestWithParam<FitCase> {};

// Fault: fill and overscan the wrong way round, the squeeze forgotten, or the kept dimension recomputed.
TEST_P(FilmFitTest, KeepsTheRightDimension) {
    CameraOptics optics;
    optics.horizontalFilmAperture = 2.0;
    optics.verticalFilmAperture = 1.0;
    optics.lensSqueezeRatio = 1.5;
    optics.filmFit = GetParam().fit;
    const auto window = visibleFilmWindow(optics, GetParam().portWidth, GetParam().portHeight);
    ASSERT_TRUE(window);
    EXPECT_DOUBLE_EQ(window->width, GetParam().filmWidth);
    EXPECT_DOUBLE_EQ(window->height, GetParam().filmHeight);
}

INSTANTIATE_TEST_SUITE_P(AllFits, FilmFitTest,
                         testing::Values(FitCase{"FillWide", FilmFit::Fill, 400, 100, 3.0, 0.75},
                                         FitCase{"FillNarrow", FilmFit::Fill, 200, 100, 2.0, 1.0},
                                         FitCase{"OverscanWide", FilmFit::Overscan, 400, 100, 4.0, 1.0},
                                         FitCase{"OverscanNarrow", FilmFit::Overscan, 200, 100, 3.0, 1.5},
                                         FitCase{"HorizontalNarrow", FilmFit::Horizontal, 200, 100, 3.0, 1.5},
                                         FitCase{"VerticalWide", FilmFit::Vertical, 400, 100, 4.0, 1.0}),
                         [](const auto& info) { return std::string(info.param.name); });

// Fault: a wrong unit, or half the angle. A new camera's horizontal angle of view is 54.43 degrees in a port of the
// film's proportion: 2 atan(18 / 35). Its vertical one is 2 atan(12 / 35) = 37.85 degrees.
TEST(PortFieldOfView, OfANewCamera) {
    const auto view = portFieldOfView(CameraOptics{}, 600, 400);
    ASSERT_TRUE(view);
    EXPECT_NEAR(view->horizontal * degrees, 54.43, 0.01);
    EXPECT_NEAR(view->vertical * degrees, 37.85, 0.01);
}

// Fault: overscan or camera scale applied to the tangent's angle, or applied once for both. 25.4 mm of film at a
// focal length of 12.7 mm are 90 degrees; twice that film has a half-angle tangent of 2.
TEST(PortFieldOfView, GrowsWithOverscanAndCameraScale) {
    CameraOptics optics;
    optics.focalLength = 12.7;
    optics.horizontalFilmAperture = optics.verticalFilmAperture = 1.0;
    EXPECT_NEAR(portFieldOfView(optics, 100, 100)->horizontal * degrees, 90.0, 1e-9);
    optics.overscan = 2.0;
    EXPECT_NEAR(portFieldOfView(optics, 100, 100)->horizontal * degrees, 2 * 63.43494882292201, 1e-9);
    optics.cameraScale = 0.5;
    EXPECT_NEAR(portFieldOfView(optics, 100, 100)->vertical * degrees, 90.0, 1e-9);
}

// Fault: offsets of the wrong sign or unit, or a near plane that does not scale. Focal length 25.4 mm: an inch on the
// film is one unit at distance 1. A square inch moved right by 0.25 and up by 0.5 is seen from -0.25 to 0.75 and from
// 0 to 1; at near distance 2 twice that. Depth terms by glFrustum's page: -(f+n)/(f-n) and -2fn/(f-n).
TEST(CameraProjection, CarriesTheFilmWindowToTheNearPlane) {
    CameraOptics optics;
    optics.focalLength = 25.4;
    optics.horizontalFilmAperture = optics.verticalFilmAperture = 1.0;
    optics.horizontalFilmOffset = 0.25;
    optics.verticalFilmOffset = 0.5;
    optics.nearClip = 2.0;
    optics.farClip = 6.0;
    const auto view = cameraProjection(optics, 64, 64);
    ASSERT_TRUE(view);
    EXPECT_DOUBLE_EQ(view->left, -0.5);
    EXPECT_DOUBLE_EQ(view->right, 1.5);
    EXPECT_DOUBLE_EQ(view->bottom, 0.0);
    EXPECT_DOUBLE_EQ(view->top, 2.0);
    const std::array<double, 16> expected{2, 0, 0, 0, 0, 2, 0, 0, 0.5, 1, -2, -1, 0, 0, -6, 0};
    for (int i = 0; i < 16; ++i) EXPECT_DOUBLE_EQ(view->matrix[static_cast<std::size_t>(i)], expected[i]) << i;
}

// Fault: the film fit offset on the wrong axis, or applied to fill. Film 3 x 1 inches, port 2 : 1.
TEST(FilmFitOffset, MovesTheWindowAlongTheFittedAxisOnly) {
    CameraOptics optics;
    optics.horizontalFilmAperture = 3.0;
    optics.verticalFilmAperture = 1.0;
    optics.filmFitOffset = 1.0;
    optics.filmFit = FilmFit::Vertical; // the window is 2 inches of 3: its right edge meets the film's at +0.5
    EXPECT_DOUBLE_EQ(visibleFilmWindow(optics, 200, 100)->centreX, 0.5);
    EXPECT_DOUBLE_EQ(visibleFilmWindow(optics, 200, 100)->centreY, 0.0);
    optics.filmFit = FilmFit::Horizontal; // the window is 1.5 inches high: its top edge meets the film's at -0.25
    EXPECT_DOUBLE_EQ(visibleFilmWindow(optics, 200, 100)->centreX, 0.0);
    EXPECT_DOUBLE_EQ(visibleFilmWindow(optics, 200, 100)->centreY, -0.25);
    optics.filmFit = FilmFit::Fill;
    EXPECT_DOUBLE_EQ(visibleFilmWindow(optics, 200, 100)->centreX, 0.0);
}

// Fault: an orthographic height from the film's proportion instead of the port's. 8 units wide in a port of 2 : 1.
TEST(CameraProjection, OrthographicFollowsThePort) {
    CameraOptics optics;
    optics.orthographic = true;
    optics.orthoWidth = 8.0;
    optics.nearClip = 1.0;
    optics.farClip = 5.0;
    const auto view = cameraProjection(optics, 200, 100);
    ASSERT_TRUE(view);
    EXPECT_DOUBLE_EQ(view->right, 4.0);
    EXPECT_DOUBLE_EQ(view->bottom, -2.0);
    const std::array<double, 16> expected{0.25, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, -0.5, 0, 0, 0, -1.5, 1};
    for (int i = 0; i < 16; ++i) EXPECT_DOUBLE_EQ(view->matrix[static_cast<std::size_t>(i)], expected[i]) << i;
}

// Fault: a division by zero or a NaN that travels on into a matrix.
TEST(CameraProjection, RefusesOpticsWithoutAnImage) {
    const auto refuses = [](auto change, int width = 10, int height = 10) {
        CameraOptics optics;
        change(optics);
        return !cameraProjection(optics, width, height);
    };
    EXPECT_TRUE(refuses([](CameraOptics& o) { o.focalLength = 0; }));
    EXPECT_TRUE(refuses([](CameraOptics& o) { o.verticalFilmAperture = std::numeric_limits<double>::quiet_NaN(); }));
    EXPECT_TRUE(refuses([](CameraOptics& o) { o.nearClip = 0; }));
    EXPECT_TRUE(refuses([](CameraOptics& o) { o.farClip = o.nearClip; }));
    EXPECT_TRUE(refuses([](CameraOptics& o) { o.orthographic = true, o.orthoWidth = 0; }));
    EXPECT_TRUE(refuses([](CameraOptics&) {}, 10, 0));
    EXPECT_FALSE(refuses([](CameraOptics& o) { o.orthographic = true, o.nearClip = 0; }));
}

} // namespace
