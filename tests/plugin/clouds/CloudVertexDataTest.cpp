#include "SkyTool/clouds/CloudVertexData.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <limits>
#include <sstream>

using namespace orvo;
using testing::ElementsAre;

namespace {

/// Two sprites, the first 5 metres to the right of the bounds' centre and 10 below it, the second all but there.
ParticleCloudGeom twoSprites() {
    ParticleCloudGeom geom;
    geom.boundCentre = {100, 200, 300};
    geom.boundRadius = 1000;
    geom.numSprites = 2;
    for (int vertex = 0; vertex < 8; ++vertex) {
        const bool first = vertex < 4;
        for (const float c : {first ? 1600.0f : 1099.9f, first ? 1200.0f : 2200.0f, 3300.0f})
            geom.positions.push_back(c);
        geom.randoms.push_back(first ? 0.5f : 1.0f);
        geom.opacities.push_back(first ? 0.5f : 1.0f);
        for (int sample = 0; sample < 4; ++sample) {
            geom.shadowCube0.push_back(first ? static_cast<float>(sample) : 0.0f);
            geom.shadowCube1.push_back(first ? static_cast<float>(sample + 4) : 0.0f);
        }
    }
    return geom;
}

} // namespace

// Written by hand from the format. Catches any changed byte: names, blanks, order, values that change places, lengths
// in the wrong unit, lines that should be missing, records beside their address. 16383.5 of 32767 is truncated, as are
// -3.3 and e^(-d / 2) x 256; a transmittance and a random value of 1 wrap around to 0, an opacity does not.
TEST(CloudVertexData, WritesTheElementAndTheRecordsOfEachCloud) {
    ParticleCloudGeom geom = twoSprites();
    CloudSettings settings{8000, 150.5, -12.25, true, 55, -25, 30};
    CloudShadingParams shading;
    shading.shadingOpacity = 0.875;
    shading.groundShadowAmount = 0.375;
    shading.sunShadowAmount = 0.125;
    shading.spriteShadowAmount = 0.625;
    shading.selfShadowAmount = 0.0625;
    shading.selfShadowFalloff = 50;
    const orvo::test::TemporaryFolder folder;
    const std::string path = (folder / "element").string();
    std::vector<unsigned char> bytes{7};
    OutputFile file(path, "wt");
    EXPECT_TRUE(saveCloudToXml(file, "  ", bytes, {settings, geom, {1000, 2000, 3000}, 2500, false}, shading));
    settings.enableGroundFade = shading.enableSelfShadow = false;
    geom.shadowCube0.clear();
    geom.shadowCube1.clear();
    EXPECT_TRUE(saveCloudToXml(file, "", bytes, {settings, geom, {1000, 2000, 3000}, 2500, true}, shading));
    EXPECT_TRUE(file.close());
    std::ostringstream text;
    text << std::ifstream(path).rdbuf(); // as text, whose line ends are the system's
    EXPECT_EQ(text.str(), "  <ParticleCloud\n"
                          "  \tvertexDataAddress = \"128\"\n"
                          "  \tspriteSize = \"150.500000\"\n"
                          "  \tnumSprites= \"2\"\n"
                          "  \tgeomBoundSphereRadius = \"10.000000\"\n"
                          "  \tgeomBoundSpherePos = \"1.000000 2.000000 3.000000\"\n"
                          "  \tcullingSphereRadius = \"25.000000\"\n"
                          "  \tcullingSpherePos = \"10.000000 20.000000 30.000000\"\n"
                          "  \tgroundShadowOffset = \"-12.250000\"\n"
                          "  \tenableDomePositioning = \"0\"\n"
                          "  \tdomeYOffset = \"30.000000\"\n"
                          "  \tenableGroundFade  = \"1\"\n"
                          "  \tgroundFadeStart  = \"55.000000\"\n"
                          "  \tgroundFadeEnd  = \"-25.000000\"\n"
                          "  \tshadingOpacity  = \"0.875000\"\n"
                          "  \tgroundShadowAmount  = \"0.375000\"\n"
                          "  \tsunShadowAmount  = \"0.125000\"\n"
                          "  \tspriteShadowAmount  = \"0.625000\"\n"
                          "  \tcloudSelfShadowEnable  = \"1\"\n"
                          "  \tcloudSelfShadowAmount  = \"0.062500\"\n"
                          "  />\n"
                          "<ParticleCloud\n"
                          "\tvertexDataAddress = \"256\"\n"
                          "\tspriteSize = \"150.500000\"\n"
                          "\tnumSprites= \"2\"\n"
                          "\tgeomBoundSphereRadius = \"10.000000\"\n"
                          "\tgeomBoundSpherePos = \"1.000000 2.000000 3.000000\"\n"
                          "\tcullingSphereRadius = \"25.000000\"\n"
                          "\tcullingSpherePos = \"10.000000 20.000000 30.000000\"\n"
                          "\tgroundShadowOffset = \"-12.250000\"\n"
                          "\tenableDomePositioning = \"1\"\n"
                          "\tdomeYOffset = \"30.000000\"\n"
                          "\tenableGroundFade  = \"0\"\n"
                          "\tshadingOpacity  = \"0.875000\"\n"
                          "\tgroundShadowAmount  = \"0.375000\"\n"
                          "\tsunShadowAmount  = \"0.125000\"\n"
                          "\tspriteShadowAmount  = \"0.625000\"\n"
                          "\tcloudSelfShadowEnable  = \"0\"\n"
                          "/>\n");
    std::vector<unsigned char> expected(272);
    expected[0] = 7;
    const unsigned char first[] = {0x3f, 0xff, 0x80, 1, 0, 0, 128, 128, 0, 155, 94, 57, 34, 21, 12, 7};
    const unsigned char second[] = {0xff, 0xfd, 0, 0, 0, 0, 0, 255};
    std::ranges::copy(first, &expected[128]);
    std::ranges::copy(second, &expected[144]);
    std::copy_n(first, 8, &expected[256]);
    std::ranges::copy(second, &expected[264]);
    EXPECT_EQ(bytes, expected);
}

// Catches bytes that mean nothing, or half a record, where sprites cannot be told in parts of their bounds.
TEST(CloudVertexData, TakesNothingFromACloudWithoutBounds) {
    ParticleCloudGeom geom = twoSprites();
    std::vector<unsigned char> bytes{7};
    for (const double radius : {std::numeric_limits<double>::infinity(), std::nan("")})
        EXPECT_FALSE(appendCloudVertexData(geom, {}, radius, 1, bytes)) << radius;
    geom.positions.clear();
    EXPECT_FALSE(appendCloudVertexData(geom, {}, 1, 1, bytes));
    geom = twoSprites();
    geom.numSprites = 0;
    EXPECT_FALSE(appendCloudVertexData(geom, {}, 1, 1, bytes));
    EXPECT_THAT(bytes, ElementsAre(7));
}
