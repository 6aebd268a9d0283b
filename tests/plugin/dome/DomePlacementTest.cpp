#include "SkyTool/clouds/CloudDomePlacement.h"
#include "kit/Places.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

using namespace orvo;

namespace {

constexpr double pi = 3.141592653589793, inf = std::numeric_limits<double>::infinity();
const double nan_ = std::nan("");

double hexNumber(std::istream& in) {
    std::string text;
    in >> text;
    return std::strtod(text.c_str(), nullptr);
}

/// A turn about +Y through the origin, counter-clockwise seen from above.
Vector3 turned(const Vector3& p, double a) {
    return {p.x * std::cos(a) + p.z * std::sin(a), p.y, p.z * std::cos(a) - p.x * std::sin(a)};
}

/// The inverse of a world matrix with axes at right angles of the given lengths, turned about +Y.
Matrix44 ellipsoid(const Vector3& centre, const Vector3& axes, double angle) {
    const Vector3 x = turned({1 / axes.x, 0, 0}, angle), z = turned({0, 0, 1 / axes.z}, angle);
    return {{{x.x, 0, z.x, 0},
             {0, 1 / axes.y, 0, 0},
             {x.z, 0, z.z, 0},
             {-dot(centre, x), -centre.y / axes.y, -dot(centre, z), 1}}};
}

} // namespace

// Catches any other order of draws, seed, rejection, tie or wrapping than the script's beside this file, to the bit.
TEST(DomePlacement, EqualsTheReference) {
    std::ifstream file(orvo::test::testData("clouds/placement.txt"));
    int cases = 0;
    for (std::string word, name; file >> word && word == "case"; ++cases) {
        file >> name;
        SCOPED_TRACE(name);
        DomeLayout layout;
        layout.density = hexNumber(file);
        layout.outerRadius = hexNumber(file);
        layout.scale = hexNumber(file);
        std::size_t templates = 0, count = 0;
        file >> templates;
        const double first = hexNumber(file), step = hexNumber(file);
        bool limit = false;
        file >> word >> count >> limit;

        std::vector<double> radii;
        for (std::size_t i = 0; i < templates; ++i) radii.push_back(first + double(37 * i % templates) * step);
        const DomePlacement placement = placeDomeClouds(radii, layout);
        ASSERT_EQ(placement.clouds.size(), count);
        EXPECT_EQ(placement.limitReached, limit);
        for (std::size_t index = 0; index + 1 < count || index == 0;) {
            DomeCloudPlacement wanted;
            file >> index >> wanted.templateIndex;
            for (double* number : {&wanted.position.x, &wanted.position.z, &wanted.exclusionRadius, &wanted.angle})
                *number = hexNumber(file);
            ASSERT_TRUE(file.good() && index < count);
            const DomeCloudPlacement& got = placement.clouds[index];
            EXPECT_EQ(got.templateIndex, wanted.templateIndex) << index;
            EXPECT_EQ(got.position, wanted.position) << index;
            EXPECT_EQ(got.exclusionRadius, wanted.exclusionRadius) << index;
            EXPECT_EQ(got.angle, wanted.angle) << index;
            if (index + 1 == count) break;
        }
    }
    EXPECT_EQ(cases, 6);
}

// Catches a seed that depends on the scale, or takes half of a number's bits. 1.0 is 3FF00000'00000000, 400000.0 is
// 41186A00'00000000 and 0.1 is 3FB99999'9999999A.
TEST(DomePlacement, SeedFoldsTheBitsOfItsInputs) {
    EXPECT_EQ(domeSeed({.scale = 1, .density = 1, .outerRadius = 400000}, 3), 0x3FF00000u ^ 0x41186A00u ^ 3u);
    EXPECT_EQ(domeSeed({.scale = 7, .density = 0.1, .outerRadius = 400000}, 3),
              0x3FB99999u ^ 0x9999999Au ^ 0x41186A00u ^ 3u);
}

// Catches a placement that never ends, and clouds on top of all others by a comparison with a NaN.
TEST(DomePlacement, EndsForAllRadii) {
    struct Case {
        std::vector<double> radii;
        DomeLayout layout;
        std::size_t clouds;
    };
    const DomeLayout layout{.outerRadius = 1000};
    for (const Case& c : {Case{{}, layout, 0},
                          {{0}, layout, 250},
                          {{-5e3}, layout, 250},
                          {{nan_}, layout, 0},
                          {{inf}, layout, 1},
                          {{inf, 1, 1}, layout, 1},
                          {{1e300}, {.scale = 1e300, .outerRadius = 1000}, 1},
                          {{1}, {.scale = 1e-300, .outerRadius = 1000}, 250},
                          {{1}, {.scale = 0, .density = 0, .outerRadius = 1000}, 0},
                          {{1}, {.outerRadius = 1e308}, 0},
                          {{1}, {.outerRadius = nan_}, 0}})
        EXPECT_EQ(placeDomeClouds(c.radii, c.layout).clouds.size(), c.clouds) << testing::PrintToString(c.radii);

    const DomePlacement mixed = placeDomeClouds(std::vector{nan_, 10.0}, layout);
    EXPECT_GT(mixed.clouds.size(), 100u);
    for (const DomeCloudPlacement& cloud : mixed.clouds) EXPECT_EQ(cloud.templateIndex, 1);
}

// Catches shapes that change size or form, turn the other way, or lose their inverse when they are very large or small:
// a point and its image lie equally deep in a shape and its copy.
TEST(DomePlacement, PlacedShapesAreCongruent) {
    CloudShapeSet set{{}, {1000, 20000, -3000}, 777, 42};
    for (const auto& [axes, angle] : {std::pair{Vector3{400, 300, 500}, 0.3},
                                      {{2e6, 1e6, 3e6}, 1.1}, // kilometres
                                      {{0.7, 2, 1}, 4.0},
                                      {{-400, 300, 500}, 0.3}}) // mirrored
        set.spheres.push_back({ellipsoid(set.boundCentre + Vector3{axes.x, 50, -axes.z}, axes, angle), 0.25, 0.75});
    const Vector3 position{-70000, 0, 123456};
    const double angle = 2.5;
    const CloudShapeSet placed = placedShapes(set, position, angle);
    EXPECT_EQ(placed.boundCentre, position);
    EXPECT_EQ(placed.boundRadius, 777);
    EXPECT_EQ(placed.seed, 42u);
    ASSERT_EQ(placed.spheres.size(), set.spheres.size());
    for (std::size_t i = 0; i < set.spheres.size(); ++i) {
        EXPECT_EQ(placed.spheres[i].opacity, 0.25);
        EXPECT_EQ(placed.spheres[i].density, 0.75);
        for (const Vector3& way : {Vector3{0, 0, 0}, {900, 10, -20}, {30, -800, 5}, {-1, 70, 1500}}) {
            const Vector3 inside = MatrixTransformPoint(set.spheres[i].transform, set.boundCentre + way);
            const Vector3 image = MatrixTransformPoint(placed.spheres[i].transform, position + turned(way, angle));
            EXPECT_NEAR(length(image), length(inside), 1e-6 * (1 + length(inside))) << "shape " << i;
        }
    }
    // A quarter turn takes what was in front (+Z) to the right (+X).
    set.spheres = {{ellipsoid(set.boundCentre + Vector3{0, 0, 600}, {1, 1, 1}, 0)}};
    const auto quarter = placedShapes(set, {0, 0, 0}, pi / 2).spheres.at(0).transform;
    EXPECT_NEAR(length(MatrixTransformPoint(quarter, {600, 0, 0})), 0, 1e-9);
}

TEST(DomePlacement, ShapesWithoutInverseAreLeftOut) {
    CloudShapeSet set{{{Matrix44{{{0, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}},
                       {Matrix44{{{nan_, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}}},
                       {ellipsoid({}, {300, 300, 300}, 0), 0.5}},
                      {},
                      100,
                      1};
    const CloudShapeSet placed = placedShapes(set, {}, 0);
    ASSERT_EQ(placed.spheres.size(), 1u);
    EXPECT_EQ(placed.spheres[0].opacity, 0.5);
}

// Catches metres taken for centimetres, exchanged wind axes, and a swap that reads what it has just written.
TEST(DomeParamsTest, AreCentimetresInTheRightOrder) {
    const DomeParams params = domeParams({.time = 3,
                                          .windVelocity = 12,
                                          .windDir = 30,
                                          .domeHeight = 5000,
                                          .domeCurvature = 200,
                                          .domeInnerRadius = 900,
                                          .domeOuterRadius = 800});
    EXPECT_EQ(params.time, 3);
    EXPECT_EQ(params.windSpeed, 1200);
    EXPECT_NEAR(params.windX, 0.5, 1e-15);
    EXPECT_NEAR(params.windZ, 0.8660254037844386, 1e-15);
    EXPECT_EQ(params.height, 20000);
    EXPECT_EQ(params.curvature, 500000);
    EXPECT_EQ(params.innerRadius, 80000);
    EXPECT_EQ(params.outerRadius, 90000);
}

// Catches wrapping at the wrong edge, a fade that is not linear from the inner to the outer radius, and a dome that
// bulges the other way. Heights by hand: 100 - (5000 - sqrt(5000^2 - |q|^2)).
TEST(DomeCloudPoseTest, DriftsWrapsAndFades) {
    DomeParams params{.windSpeed = 30, .windX = 1, .windZ = 0, .height = 100, .curvature = 5000};
    params.innerRadius = 500;
    params.outerRadius = 1000;
    struct Case {
        double x, z, time;
        Vector3 position;
        double fade;
    };
    for (const Case& c : {Case{0, 0, 0, {0, 100, 0}, 1},
                          {400, -300, 0, {400, 74.937185, -300}, 1}, // on the inner circle
                          {900, 0, 10, {-800, 35.585072, 0}, 0.4},   // over the right edge
                          {-900, 0, 0, {-900, 18.333051, 0}, 0.2},
                          {900, 900, 0, {900, -64.713039, 900}, -0.545584},  // in a corner
                          {1000, 0, 0, {-1000, -1.020514, 0}, 0},            // the right edge is the left one
                          {-1000, 0, -2000.0 / 30, {1000, -1.020514, 0}, 0}, // a negative whole number of squares
                          {-200, 0, -60, {0, 100, 0}, 1}}) {                 // once around backwards
        params.time = c.time;
        const auto drifted = domeCloudPose(params, {c.x, 0, c.z});
        ASSERT_TRUE(drifted);
        EXPECT_NEAR(drifted->position.x, c.position.x, 1e-9);
        EXPECT_NEAR(drifted->position.y, c.position.y, 1e-5) << c.x << " " << c.z;
        EXPECT_NEAR(drifted->position.z, c.position.z, 1e-9);
        EXPECT_NEAR(drifted->fade, c.fade, 1e-6) << c.x << " " << c.z;
    }
    params.time = 0;
    EXPECT_FALSE(domeCloudPose(params, {1000.001, 0, 0}));
    EXPECT_FALSE(domeCloudPose(params, {0, 0, -1000.001}));

    params.curvature = 300; // clouds beyond the sphere's equator stay on it
    EXPECT_EQ(domeCloudPose(params, {900, 0, 0})->position.y, -200);
    params.innerRadius = 1000;
    EXPECT_LT(domeCloudPose(params, {900, 0, 900})->fade, 0) << "no ring to fade in";
}

// Catches a bound that is not scaled, and a scale about the scene's origin.
TEST(DomeCloudTest, ScalesAboutItsPlace) {
    DomeCloud cloud{{.spriteSize = 30}, std::make_unique<ParticleCloudGeom>(), {1000, 0, -500}, 80};
    cloud.geom->boundCentre = {4, 5, 6};
    cloud.geom->boundRadius = 70;
    cloud.geom->positions = {1010, 20, -520, 1000, 0, -500};
    scaleDomeCloud(cloud, 3);
    EXPECT_EQ(cloud.settings.spriteSize, 90);
    EXPECT_EQ(cloud.radius, 240);
    EXPECT_EQ(cloud.basePosition, (Vector3{1000, 0, -500}));
    EXPECT_EQ(cloud.geom->boundCentre, (Vector3{12, 15, 18}));
    EXPECT_EQ(cloud.geom->boundRadius, 210);
    EXPECT_EQ(cloud.geom->positions, (std::vector<float>{1030, 60, -560, 1000, 0, -500}));
}

// Catches rings that are not closed, rays that do not reach the rim, and an outline beside the clouds' surface.
TEST(DomeOutline, LiesOnTheDomeAndItsBox) {
    DomeParams params{.height = 100, .curvature = 5000, .innerRadius = 500, .outerRadius = 1000};
    const double rim = 100 - (5000 - std::sqrt(5000.0 * 5000 - 1000.0 * 1000));
    const auto lines = domeOutline(params);
    ASSERT_EQ(lines.size(), 12u + 5 * 20 + 5 * 20);
    int box = 0;
    double ringLength = 0, rayLength = 0; // seen from above
    for (const LineSegment& line : lines) {
        const Vector3 flat{line.to.x - line.from.x, 0, line.to.z - line.from.z};
        const auto isCorner = [&](const Vector3& p) {
            return std::abs(p.x) == 1000 && std::abs(p.z) == 1000 && (p.y == rim || p.y == 100);
        };
        if (isCorner(line.from) && isCorner(line.to)) {
            ++box;
            continue;
        }
        for (const Vector3& p : {line.from, line.to})
            EXPECT_NEAR(p.y, 100 - (5000 - std::sqrt(5000.0 * 5000 - p.x * p.x - p.z * p.z)), 1e-9);
        const bool isRay = std::abs(line.from.x * flat.z - line.from.z * flat.x) < 1e-6;
        (isRay ? rayLength : ringLength) += length(flat);
    }
    EXPECT_EQ(box, 12);
    EXPECT_NEAR(rayLength, 20 * 1000, 1e-6);
    // Regular polygons of 20 corners on circles of 200 to 1000.
    EXPECT_NEAR(ringLength, 20 * 2 * std::sin(pi / 20) * (200 + 400 + 600 + 800 + 1000), 1e-6);
}
