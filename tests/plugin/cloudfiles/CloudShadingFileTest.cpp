#include "SkyTool/clouds/CloudShadingFile.h"
#include "CloudFiles.h"

#include <gmock/gmock.h>

using namespace orvo;
using testing::HasSubstr;

namespace {

/// What the hand-written file holds.
CloudShadingParams params() {
    CloudShadingParams p;
    p.shadingTexture = "build\\clouds\\salt & \"pepper\".dds";
    p.cloudColour = {0.25, 0.5, 0.75};
    p.shadingOpacity = 0.875;
    p.shadingBrightness = 2.5;
    p.sunShadowAmount = 0.125;
    p.groundShadowAmount = 0.375;
    p.spriteShadowAmount = 0.625;
    p.enableSelfShadow = false;
    p.selfShadowAmount = 0.0625;
    p.selfShadowFalloff = 7.5;
    p.lightingAmbient = {-0.5, 0.03125, 4};
    p.lightingSunGlowAmount = 1.5;
    p.lightingSunGlowHaloSize = 99.5;
    return p;
}

class CloudShadingFile : public CloudFiles {
protected:
    static std::optional<CloudShadingParams> read(const std::string& text, std::string& error) {
        XmlFile file;
        file.parse(text, "f");
        const auto found = readCloudShadingFile(file);
        error = file.error();
        EXPECT_EQ(found.has_value(), error.empty());
        return found;
    }
    static std::string refusal(const std::string& text) {
        std::string error;
        EXPECT_FALSE(read(text, error)) << text;
        return error;
    }
};

const char* const names[] = {
    "shading_tex_filepath",  "shadingOpacity",          "shadingBrightness", "sunShadowAmount",   "groundShadowAmount",
    "spriteShadowAmount",    "enableSelfShadow",        "selfShadowAmount",  "selfShadowFalloff", "lightingAmbient",
    "lightingSunGlowAmount", "lightingSunGlowHaloSize", "cloudColour"};

} // namespace

// Catches any changed byte, a path that is not escaped or comes back escaped, and values that change places.
TEST_F(CloudShadingFile, WritesAndReadsTheGoldenFile) {
    ASSERT_TRUE(saveCloudShadingFile(path("s.xml"), params()));
    EXPECT_EQ(contents(path("s.xml")), golden("shading.xml"));
    for (const char* file : {"shading.xml", "library.xml"}) {
        std::string error;
        const auto found = read(golden(file), error);
        ASSERT_TRUE(found) << error;
        EXPECT_EQ(found->shadingTexture, params().shadingTexture);
        EXPECT_EQ(found->cloudColour, params().cloudColour);
        EXPECT_EQ(found->shadingOpacity, 0.875);
        EXPECT_EQ(found->shadingBrightness, 2.5);
        EXPECT_EQ(found->sunShadowAmount, 0.125);
        EXPECT_EQ(found->groundShadowAmount, 0.375);
        EXPECT_EQ(found->spriteShadowAmount, 0.625);
        EXPECT_FALSE(found->enableSelfShadow);
        EXPECT_EQ(found->selfShadowAmount, 0.0625);
        EXPECT_EQ(found->selfShadowFalloff, 7.5);
        EXPECT_EQ(found->lightingAmbient, params().lightingAmbient);
        EXPECT_EQ(found->lightingSunGlowAmount, 1.5);
        EXPECT_EQ(found->lightingSunGlowHaloSize, 99.5);
    }
}

// Catches a number that is rounded to a float, or a colour that is not.
TEST_F(CloudShadingFile, NumbersAreDoublesAndColoursSingle) {
    std::string error;
    auto text = withValue(withValue(golden("shading.xml"), "selfShadowFalloff", "0.1"), "cloudColour", "0.1 0 0");
    const auto found = read(withValue(text, "enableSelfShadow", " 3"), error);
    ASSERT_TRUE(found) << error;
    EXPECT_EQ(found->selfShadowFalloff, 0.1);
    EXPECT_EQ(found->cloudColour.x, static_cast<double>(0.1f));
    EXPECT_TRUE(found->enableSelfShadow);
    EXPECT_EQ(read(withValue(text, "shading_tex_filepath", ""), error)->shadingTexture, "");
}

// Catches an attribute that is not wanted, whose text is taken for a number, or whose limits are not the node's.
TEST_F(CloudShadingFile, WantsEveryAttributeAndHoldsItInItsRange) {
    const std::string good = golden("shading.xml");
    for (const char* name : names) {
        EXPECT_EQ(refusal(withoutAttribute(good, name)),
                  std::string("f, line 6: element ParticleCloudShadingParams: attribute \"") + name + "\" is missing");
        if (name == std::string("shading_tex_filepath")) continue;
        for (const char* value : {"", "x", "nan 0 0"})
            EXPECT_THAT(refusal(withValue(good, name, value)), HasSubstr(name)) << value;
        if (name == std::string("enableSelfShadow")) continue;
        const auto warnings = [&](const char* value) {
            XmlFile file;
            file.parse(withValue(good, name, value), "f");
            EXPECT_TRUE(readCloudShadingFile(file)) << file.error();
            return file.warnings();
        };
        EXPECT_THAT(warnings("1e400 0 0"), testing::ElementsAre(HasSubstr(name)));
        if (name == std::string("cloudColour") || name == std::string("lightingAmbient")) continue;
        EXPECT_THAT(warnings("-0.001"), testing::ElementsAre(HasSubstr(std::string(name) + "\" is out of range")));
        if (name == std::string("selfShadowFalloff")) continue;
        EXPECT_THAT(warnings("100.5"), testing::ElementsAre(HasSubstr(name)));
    }
}

// Catches a version that is compared as a number, or of the wrong type.
TEST_F(CloudShadingFile, TypeAndVersion) {
    const std::string good = golden("shading.xml");
    for (const auto& [type, version, accepted] : std::initializer_list<std::tuple<const char*, const char*, bool>>{
             {"Modeler_ParticleCloudShadingParams", "2", true},
             {"Modeler_ParticleCloudShadingParams", "1", false},
             {"Modeler_ParticleCloudShadingParams", "2.0", false},
             {"Modeler_ParticleCloudLibrary", "1", true},
             {"Modeler_ParticleCloudLibrary", "2", false},
             {"Modeler_ParticleCloud", "1", false},
             {"", "2", false}}) {
        std::string error;
        EXPECT_EQ(read(withValue(withValue(good, "type", type), "version", version), error).has_value(), accepted)
            << type << version;
    }
    EXPECT_THAT(refusal(withoutAttribute(good, "type")), HasSubstr("\"type\" is missing"));
    EXPECT_THAT(refusal(withoutAttribute(good, "version")), HasSubstr("\"version\" is missing"));
    EXPECT_THAT(refusal(golden("cloud.xml")), HasSubstr("type"));
    EXPECT_THAT(refusal(withValue(golden("cloud.xml"), "type", "Modeler_ParticleCloudLibrary")),
                HasSubstr("no element ParticleCloudShadingParams"))
        << "a library without parameters";
}

TEST_F(CloudShadingFile, ATruncatedFileIsRefused) {
    const std::string good = golden("shading.xml");
    for (std::size_t size = 0; size + 1 < good.size(); ++size) refusal(good.substr(0, size));
}

// Catches a full disk, or a folder that is not there, that passes for success.
TEST_F(CloudShadingFile, SavingTellsOfFailure) {
    EXPECT_FALSE(saveCloudShadingFile(path("no/s.xml"), params()));
    EXPECT_FALSE(saveCloudShadingFile(folder_.string(), params()));
    EXPECT_FALSE(saveCloudShadingFile("/dev/full", params()));
}
