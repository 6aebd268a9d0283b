// A small cloud against one that a script, written from the description alone, worked out: reference_cloud.py beside
// this file, its output in tests/data/clouds/reference_cloud.txt.
#include "Common/Checksums.h"
#include "SkyTool/clouds/CloudGeneration.h"
#include "SkyTool/clouds/CloudVertexData.h"
#include "kit/Places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace orvo;

namespace {

struct ReferenceSprite {
    float values[13]; ///< centre, random value, opacity, eight depths
    std::string bytes;
};

struct Reference {
    std::vector<Matrix44> worldMatrices;
    CloudShapeSet set; ///< with the script's bounds
    std::string name;
    double density = 0.0, size = 0.0, fadeStart = 0.0, fadeEnd = 0.0, falloff = 0.0;
    Vector3 light, geometryCentre;
    double geometryRadius = 0.0;
    std::vector<ReferenceSprite> sprites;

    std::unique_ptr<ParticleCloudGeom> generate() const {
        return GenerateSprites(set, density, size, true, light, true, fadeStart, fadeEnd);
    }
};

const Reference& reference() {
    static const Reference result = [] {
        Reference r;
        std::ifstream file(orvo::test::testData("clouds/reference_cloud.txt"));
        std::string text, kind;
        const auto read3 = [](std::istream& in, Vector3& v) { in >> v.x >> v.y >> v.z; };
        while (std::getline(file, text)) {
            std::istringstream line(text);
            line >> kind;
            if (kind == "shape") {
                Matrix44& world = r.worldMatrices.emplace_back();
                for (auto& row : world.m)
                    for (double& element : row) line >> element;
                CloudShapeSphere& sphere = r.set.spheres.emplace_back();
                line >> sphere.opacity >> sphere.density;
                sphere.transform = MatrixInverse(world, 1e-10);
            } else if (kind == "name") {
                line >> r.name >> r.set.seed;
            } else if (kind == "settings") {
                line >> r.density >> r.size;
                read3(line, r.light);
                line >> r.fadeStart >> r.fadeEnd >> r.falloff;
            } else if (kind == "bounds") {
                read3(line, r.set.boundCentre);
                line >> r.set.boundRadius;
            } else if (kind == "geometry") {
                read3(line, r.geometryCentre);
                line >> r.geometryRadius;
            } else {
                ReferenceSprite& sprite = r.sprites.emplace_back();
                for (float& value : sprite.values) line >> value;
                line >> sprite.bytes;
            }
            EXPECT_FALSE(line.fail()) << text;
        }
        return r;
    }();
    return result;
}

} // namespace

TEST(ReferenceCloud, HasTheSameBoundsAndSeed) {
    const Reference& r = reference();
    ASSERT_EQ(r.worldMatrices.size(), 6u);
    EXPECT_EQ(Crc32(r.name.c_str()), r.set.seed);
    const Sphere bounds = boundsOfShapes(r.worldMatrices);
    EXPECT_NEAR(length(bounds.centre - r.set.boundCentre), 0.0, 1e-9 * r.set.boundRadius);
    EXPECT_NEAR(bounds.radius, r.set.boundRadius, 1e-9 * r.set.boundRadius);
}

TEST(ReferenceCloud, HasTheSameSprites) {
    const Reference& r = reference();
    const auto geom = r.generate();
    ASSERT_EQ(r.sprites.size(), 51u);
    ASSERT_EQ(geom->numSprites, 51);
    EXPECT_NEAR(length(geom->boundCentre - r.geometryCentre), 0.0, 1e-9 * r.geometryRadius);
    EXPECT_NEAR(geom->boundRadius, r.geometryRadius, 1e-9 * r.geometryRadius);
    const float corners[8] = {0, 0, 1, 0, 1, 1, 0, 1};
    for (std::size_t i = 0; i < r.sprites.size(); ++i)
        for (std::size_t v = 4 * i; v < 4 * i + 4; ++v) {
            SCOPED_TRACE(testing::Message() << "sprite " << i << ", vertex " << v - 4 * i);
            const float* expected = r.sprites[i].values;
            for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(geom->positions[v * 3 + c], expected[c]);
            EXPECT_EQ(geom->randoms[v], expected[3]);
            EXPECT_EQ(geom->opacities[v], expected[4]);
            for (std::size_t s = 0; s < 4; ++s) {
                EXPECT_EQ(geom->shadowCube0[v * 4 + s], expected[5 + s]);
                EXPECT_EQ(geom->shadowCube1[v * 4 + s], expected[9 + s]);
            }
            EXPECT_EQ(geom->uvCoords[v * 2], corners[(v - 4 * i) * 2]);
            EXPECT_EQ(geom->uvCoords[v * 2 + 1], corners[(v - 4 * i) * 2 + 1]);
        }
}

TEST(ReferenceCloud, IsPackedIntoTheSameBytes) {
    const Reference& r = reference();
    const auto geom = r.generate();
    const Vector3 toBounds = (r.set.boundCentre + geom->boundCentre) * -1.0;
    std::vector<unsigned char> bytes;
    ASSERT_TRUE(appendCloudVertexData(*geom, translationMatrix(toBounds), geom->boundRadius, r.falloff / 100.0, bytes));
    ASSERT_EQ(bytes.size(), 16 * r.sprites.size());
    for (std::size_t i = 0; i < r.sprites.size(); ++i) {
        std::string hex;
        for (std::size_t b = 16 * i; b < 16 * i + 16; ++b)
            for (const int digit : {bytes[b] >> 4, bytes[b] & 15}) hex += "0123456789abcdef"[digit];
        EXPECT_EQ(hex, r.sprites[i].bytes) << "sprite " << i;
    }
}
