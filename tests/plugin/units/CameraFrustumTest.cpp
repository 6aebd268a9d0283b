#include "Common/CameraFrustum.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

using namespace orvo;

namespace {

void expectNear(const Vector3& found, const Vector3& wanted) {
    EXPECT_NEAR(found.x, wanted.x, 1e-9);
    EXPECT_NEAR(found.y, wanted.y, 1e-9);
    EXPECT_NEAR(found.z, wanted.z, 1e-9);
}

/// At (10, 20, 30), looking along -z with y up: 90 degrees wide, 2 atan(1/2) high.
CameraFrustum straightAhead() {
    CameraFrustum f;
    f.cameraToWorld = CameraFrustum::matrixOf({0, 0, -2}, {0, 3, 0}, {10, 20, 30});
    f.horizontalFov = std::numbers::pi / 2;
    f.verticalFov = 2 * std::atan(0.5);
    f.nearDistance = 1;
    f.farDistance = 100;
    f.computePlanes();
    return f;
}

bool inside(const CameraFrustum& f, const Vector3& p) {
    for (const auto& plane : f.planes)
        if (dot(plane.normal, p) < plane.distance) return false;
    return true;
}

} // namespace

// Catches a mirrored or transposed camera matrix.
TEST(CameraFrustum, MatrixRowsAreRightUpViewEye) {
    const Matrix44 m = CameraFrustum::matrixOf({5, 0, 0}, {0, 2, 0}, {1, 2, 3});
    expectNear(transformDirection(m, {1, 0, 0}), {0, 0, 1}); // looking along +x, the right hand points to +z
    expectNear(transformDirection(m, {0, 1, 0}), {0, 1, 0});
    expectNear(MatrixTransformPoint(m, {0, 0, 7}), {8, 2, 3});
}

// Catches a wrong corner order, and a depth factor applied after the way to world space.
TEST(CameraFrustum, FarCornersAreScaledInCameraSpace) {
    const auto corners = straightAhead().farCorners(0.9);
    expectNear(corners[0], {10 - 90, 20 + 45, 30 - 90});
    expectNear(corners[1], {10 + 90, 20 + 45, 30 - 90});
    expectNear(corners[2], {10 + 90, 20 - 45, 30 - 90});
    expectNear(corners[3], {10 - 90, 20 - 45, 30 - 90});
    expectNear(straightAhead().nearCorners()[2], {11, 19.5, 29});
}

TEST(CameraFrustum, PlanesFaceInward) {
    CameraFrustum f = straightAhead();
    const auto probe = [&](double x, double y, double z) { return inside(f, {10 + x, 20 + y, 30 - z}); };
    EXPECT_TRUE(probe(9.9, 4.9, 10) && probe(-9.9, -4.9, 10) && probe(0, 0, 1.1) && probe(0, 0, 99));
    EXPECT_FALSE(probe(10.1, 0, 10) || probe(-10.1, 0, 10) || probe(0, 5.1, 10) || probe(0, -5.1, 10));
    EXPECT_FALSE(probe(0, 0, 0.9) || probe(0, 0, 101));

    f.isPerspective = false;
    f.orthoWidth = 8;
    f.orthoHeight = 4;
    f.computePlanes();
    EXPECT_TRUE(probe(3.9, 1.9, 50) && probe(-3.9, -1.9, 2));
    EXPECT_FALSE(probe(4.1, 0, 50) || probe(-4.1, 0, 50) || probe(0, 2.1, 50) || probe(0, -2.1, 50));
    EXPECT_DOUBLE_EQ(f.planes[CameraFrustum::Top].normal.y, -1);
}

TEST(CameraFrustum, RaysGoThroughViewPoints) {
    const auto corner = straightAhead().rayThrough(1, 1);
    expectNear(corner.origin, {10, 20, 30});
    expectNear(corner.direction, {1, 0.5, -1});
    expectNear(straightAhead().rayThrough(0.5, 0.5).direction, {0, 0, -1});
}
