#include "SkyTool/fog/ExpHeightFogLocator.h"
#include "SkyTool/skies/BasicSkyParams.h"
#include "SkyTool/skies/TexturedSkyLocator.h"

#include <cmath>
#include <gtest/gtest.h>
#include <utility>

using namespace orvo;

// Catches a disk size taken as radians or degrees: a full disk is 11.25 degrees, cos = 0.980785280403230.
TEST(BasicSkyParams, DiskSizeIsACosine) {
    EXPECT_NEAR(sunDiskCosineForm(1.0), 0.019214719596770, 1e-14);
    EXPECT_EQ(sunDiskCosineForm(0.0), 0.0);
}

TEST(BasicSkyParams, SunDirectionIsNormalisedWithoutAGuard) {
    BasicSkyValues values;
    values.sunDir = {0, 2, 0};
    EXPECT_EQ(basicSkyParams(values).sunDir, (Vector3{0, 1, 0}));
    values.sunDir = {};
    EXPECT_TRUE(std::isnan(basicSkyParams(values).sunDir.x));
}

// Catches metres taken for centimetres, and a wrong sign of the exponent.
TEST(ExpHeightFog, ValueIsTheOpticalDepthAboveTheEye) {
    EXPECT_DOUBLE_EQ(expHeightFogValue(40, 0, 0), 4000);
    EXPECT_NEAR(expHeightFogValue(40, 0, 4000), 4000 * 0.36787944117144233, 1e-9);
    EXPECT_NEAR(expHeightFogValue(40, 10, 1000), 4000, 1e-9);
    EXPECT_NEAR(expHeightFogValue(40, 10, -3000), 4000 * 2.718281828459045, 1e-8);
}

// Catches rows for columns: 90 degrees turn the view direction (x, z) = (1, 0) into (0, -1).
TEST(TexturedSky, RotationTurnsTheViewDirection) {
    const auto m = skyRotation(90);
    const auto turned = [&](float x, float z) { return std::pair{m[0] * x + m[2] * z, m[1] * x + m[3] * z}; };
    EXPECT_NEAR(turned(1, 0).first, 0, 1e-7);
    EXPECT_NEAR(turned(1, 0).second, -1, 1e-7);
    EXPECT_NEAR(turned(0, 1).first, 1, 1e-7);
    EXPECT_NEAR(turned(0, 1).second, 0, 1e-7);
}
