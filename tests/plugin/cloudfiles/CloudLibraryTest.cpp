#include "SkyTool/clouds/CloudLibrary.h"
#include "CloudFiles.h"
#include "SkyTool/clouds/CloudShadingFile.h"
#include "kit/Places.h"

#include <cmath>
#include <gmock/gmock.h>
#include <random>

using namespace orvo;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

/// The clouds that the hand-written files hold.
CloudTemplate firstCloud() {
    CloudTemplate cloud;
    cloud.settings = {8000, 150.5, -12.25, true, 55, -25, 30};
    cloud.shapes.boundCentre = {1000, -200.5, 0.125};
    cloud.shapes.boundRadius = 105000;
    cloud.shapes.seed = 0xcafebabe; // -889275714 as a signed number
    const Matrix44 squeezed{
        {{0.00001, 0, 0, 0}, {0, 0.00002, 0, 0}, {0, 0, -0.000025, 0}, {-0.01, 0.5, 12345.67890123456, 1}}};
    cloud.shapes.spheres = {{squeezed, 0.75, 0.5}, {Matrix44{}, 1, 0}};
    return cloud;
}
CloudTemplate secondCloud() {
    CloudTemplate cloud;
    cloud.settings.spriteDensity = cloud.settings.spriteSize = 1;
    cloud.shapes.seed = 7;
    return cloud;
}

template <class Result>
std::optional<Result> loaded(const std::string& path, std::string* error, std::optional<Result> (*read)(XmlFile&)) {
    XmlFile file;
    file.load(path);
    auto result = read(file);
    if (error) *error = file.error();
    return result;
}
std::optional<CloudTemplate> loadCloudFile(const std::string& path) { return loaded(path, nullptr, &readCloudFile); }
std::optional<std::vector<CloudTemplate>> loadCloudLibrary(const std::string& path, std::string* error = nullptr) {
    return loaded(path, error, &readCloudLibrary);
}
bool isCloudFileAt(const std::string& path) {
    XmlFile file;
    return file.load(path) && isCloudFile(file);
}

class CloudLibraryFile : public CloudFiles {
protected:
    std::string saved(const CloudTemplate& cloud) {
        OutputFile file(path("saved.xml"), "wt");
        writeCloudFileHeader(file, cloudFileType);
        writeParticleCloudElement(file, "\t", cloud);
        writeCloudFileFooter(file);
        EXPECT_TRUE(file.close());
        return path("saved.xml");
    }
    /// Why a text is refused as a cloud file.
    static std::string refusal(const std::string& text) {
        XmlFile file;
        file.parse(text, "f");
        EXPECT_FALSE(readCloudFile(file)) << text.substr(0, 3000);
        EXPECT_FALSE(file.ok());
        return file.error();
    }
};

} // namespace

// The files are written by hand from the format. Catches any changed byte: names, blanks, order, indents, precision, a
// seed that loses its sign.
TEST_F(CloudLibraryFile, WritesTheGoldenFiles) {
    saved(firstCloud());
    EXPECT_EQ(contents(path("saved.xml")), golden("cloud.xml"));

    XmlFile shading;
    shading.load(orvo::test::testData("clouds/shading.xml"));
    const auto params = readCloudShadingFile(shading);
    ASSERT_TRUE(params) << shading.error();
    OutputFile file(path("library.xml"), "wt");
    writeCloudFileHeader(file, cloudLibraryType);
    writeCloudShadingElement(file, "\t", *params);
    writeParticleCloudElement(file, "\t", firstCloud());
    writeParticleCloudElement(file, "\t", secondCloud());
    writeCloudFileFooter(file);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(contents(path("library.xml")), golden("library.xml"));
}

// Catches a value that goes into the wrong field, rows taken for columns, a seed that is cut, and clouds that are lost.
TEST_F(CloudLibraryFile, ReadsTheGoldenFiles) {
    std::string error = "before";
    const auto clouds = loadCloudLibrary(orvo::test::testData("clouds/library.xml"), &error);
    ASSERT_TRUE(clouds) << error;
    EXPECT_EQ(error, "");
    ASSERT_THAT(*clouds, SizeIs(2));
    const auto alone = loadCloudFile(orvo::test::testData("clouds/cloud.xml"));
    ASSERT_TRUE(alone);
    for (const CloudTemplate& cloud : {clouds->front(), *alone}) {
        const CloudTemplate expected = firstCloud();
        EXPECT_EQ(cloud.settings.spriteDensity, 8000);
        EXPECT_EQ(cloud.settings.spriteSize, 150.5);
        EXPECT_EQ(cloud.settings.groundShadowOffset, -12.25);
        EXPECT_TRUE(cloud.settings.enableGroundFade);
        EXPECT_EQ(cloud.settings.groundFadeStart, 55);
        EXPECT_EQ(cloud.settings.groundFadeEnd, -25);
        EXPECT_EQ(cloud.settings.domeYOffset, 30);
        EXPECT_EQ(cloud.shapes.boundRadius, 105000);
        EXPECT_EQ(cloud.shapes.boundCentre, (Vector3{1000, -200.5, 0.125}));
        EXPECT_EQ(cloud.shapes.seed, 0xcafebabe);
        ASSERT_THAT(cloud.shapes.spheres, SizeIs(2));
        EXPECT_EQ(cloud.shapes.spheres[0].opacity, 0.75);
        EXPECT_EQ(cloud.shapes.spheres[0].density, 0.5);
        EXPECT_EQ(cloud.shapes.spheres[1].density, 0);
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                EXPECT_EQ(cloud.shapes.spheres[0].transform.m[row][column],
                          static_cast<float>(expected.shapes.spheres[0].transform.m[row][column]))
                    << "single precision, widened: " << row << column;
        EXPECT_EQ(cloud.shapes.spheres[1].transform, Matrix44{});
    }
    EXPECT_THAT(clouds->back().shapes.spheres, SizeIs(0));
    EXPECT_FALSE(clouds->back().settings.enableGroundFade);
    EXPECT_EQ(clouds->back().shapes.seed, 7u);

    EXPECT_TRUE(isCloudFileAt(orvo::test::testData("clouds/cloud.xml")));
    for (const char* other : {"library.xml", "shading.xml", "none.xml", ""})
        EXPECT_FALSE(isCloudFileAt(orvo::test::testData("clouds/") + other)) << other;
}

// Catches an attribute whose absence passes for 0, at every level of the file, and an error that does not name it.
TEST_F(CloudLibraryFile, WantsEveryAttribute) {
    for (const char* name :
         {"type", "version", "spriteDensity", "spriteSize", "groundShadowOffset", "enableGroundFade", "groundFadeStart",
          "groundFadeEnd", "domeYOffset", "geomBoundSphereRadius", "geomBoundSpherePos", "randSeed", "opacity",
          "density", "x_vec", "y_vec", "z_vec", "pos_vec"}) {
        EXPECT_THAT(refusal(withoutAttribute(golden("cloud.xml"), name)),
                    HasSubstr('"' + std::string(name) + "\" is missing"));
        std::string error;
        EXPECT_FALSE(loadCloudLibrary(write("l.xml", withoutAttribute(golden("library.xml"), name)), &error)) << name;
        EXPECT_THAT(error, testing::StartsWith(path("l.xml") + ", line "));
    }
    EXPECT_EQ(refusal(changed(golden("cloud.xml"), "<Transform", "<Other")),
              "f, line 18: element ParticleCloudSphere: no element Transform in it");
    EXPECT_EQ(refusal("<OrvoAtmosphere type='Modeler_ParticleCloud' version='1'/>"),
              "f, line 1: element OrvoAtmosphere: no element ParticleCloud in it");
    EXPECT_EQ(refusal("<Atmosphere/>"), "f: no root element OrvoAtmosphere");
    // One bad cloud among good ones.
    std::string text = golden("library.xml");
    text.replace(text.rfind("spriteSize"), 10, "SpriteSize");
    EXPECT_FALSE(loadCloudLibrary(write("l.xml", text)));
}

// Catches numbers that reach the generator as NaN, infinity or 0 because nobody looked, a text that passes for one, and
// a file that is refused for a number that is merely out of range.
TEST_F(CloudLibraryFile, RefusesWhatIsNoNumberAndHoldsWhatIsBeyondItsRange) {
    const std::string good = golden("cloud.xml");
    const std::vector<const char*> singles = {"spriteDensity",   "spriteSize",    "groundShadowOffset",
                                              "groundFadeStart", "groundFadeEnd", "domeYOffset",
                                              "opacity",         "density",       "geomBoundSphereRadius"};
    const std::vector<const char*> triples = {"geomBoundSpherePos", "x_vec", "y_vec", "z_vec", "pos_vec"};
    for (const char* name : singles)
        for (const char* value : {"", " ", "many", "nan", "-nan"})
            EXPECT_THAT(refusal(withValue(good, name, value)), HasSubstr(name)) << value;
    for (const char* name : triples)
        for (const char* value : {"", "1 2", "1,2,3", "1 2 x", "nan 0 0"})
            EXPECT_THAT(refusal(withValue(good, name, value)), HasSubstr(name)) << value;
    for (const char* name : {"enableGroundFade", "randSeed"})
        EXPECT_THAT(refusal(withValue(good, name, "yes")), HasSubstr(name));

    const auto held = [&](const char* name, const char* value) {
        XmlFile file;
        file.parse(withValue(good, name, value), "f");
        const auto cloud = readCloudFile(file);
        EXPECT_TRUE(cloud) << file.error();
        EXPECT_THAT(file.warnings(), testing::ElementsAre(HasSubstr(name))) << value;
        return cloud.value_or(CloudTemplate{});
    };
    for (const char* name : singles)
        for (const char* value : {"inf", "-inf", "1e39", "-1e39", "1e999999"}) held(name, value);
    for (const char* name : triples)
        for (const char* value : {"0 inf 0", "0 0 1e39"}) held(name, value);
    EXPECT_EQ(held("spriteDensity", "0").settings.spriteDensity, 1) << "the node's own limit";
    EXPECT_EQ(held("spriteSize", "-1").settings.spriteSize, 1);
    EXPECT_EQ(held("geomBoundSphereRadius", "-0.5").shapes.boundRadius, 0);
    EXPECT_EQ(held("opacity", "1.5").shapes.spheres[0].opacity, 1);
    EXPECT_EQ(held("density", "-0.1").shapes.spheres[0].density, 0);
    EXPECT_EQ(held("randSeed", "4294967296").shapes.seed, 0xffffffff);
    EXPECT_EQ(held("randSeed", "-99999999999999999999").shapes.seed, 0x80000000);
}

// Catches a reader that is stricter than scanf: blanks before a number, more after it; and seeds of either sign.
TEST_F(CloudLibraryFile, ReadsNumbersAsScanfDoes) {
    const std::string good = golden("cloud.xml");
    const auto read = [](const std::string& text) {
        XmlFile file;
        file.parse(text, "f");
        const auto cloud = readCloudFile(file);
        EXPECT_TRUE(cloud) << file.error();
        return cloud.value_or(CloudTemplate{});
    };
    EXPECT_EQ(read(withValue(good, "spriteSize", "  +2.5e1 metres")).settings.spriteSize, 25);
    EXPECT_EQ(read(withValue(good, "domeYOffset", "16777217")).settings.domeYOffset, 16777216) << "a float";
    EXPECT_EQ(read(withValue(good, "domeYOffset", "3e38")).settings.domeYOffset, static_cast<double>(3e38f));
    EXPECT_EQ(read(withValue(good, "geomBoundSpherePos", " 1\t2  3 4")).shapes.boundCentre, (Vector3{1, 2, 3}));
    EXPECT_TRUE(read(withValue(good, "enableGroundFade", "-2")).settings.enableGroundFade);
    for (const auto& [text, seed] :
         std::initializer_list<std::pair<const char*, std::uint32_t>>{{"0", 0},
                                                                      {"-1", 0xffffffff},
                                                                      {"4294967295", 0xffffffff},
                                                                      {"2147483648", 0x80000000},
                                                                      {"-2147483648", 0x80000000},
                                                                      {"3405691582", 0xcafebabe}})
        EXPECT_EQ(read(withValue(good, "randSeed", text)).shapes.seed, seed) << text;
}

TEST_F(CloudLibraryFile, TypeAndVersionAreTexts) {
    const std::string cloud = golden("cloud.xml"), library = golden("library.xml");
    for (const char* version : {"2", "0", "", "1.0", " 1", "01", "one"})
        EXPECT_THAT(refusal(withValue(cloud, "version", version)), HasSubstr("attribute \"version\" is \"")) << version;
    EXPECT_THAT(refusal(library), HasSubstr("attribute \"type\" is \"Modeler_ParticleCloudLibrary\""));
    EXPECT_FALSE(loadCloudLibrary(orvo::test::testData("clouds/cloud.xml")));
    EXPECT_FALSE(loadCloudLibrary(write("l.xml", withValue(library, "version", "2"))));
    EXPECT_TRUE(isCloudFileAt(write("c.xml", withValue(cloud, "version", "2")))) << "it is one, of another version";
}

// Catches a file that was cut off and passes for whole, and a crash at any length.
TEST_F(CloudLibraryFile, ATruncatedFileIsRefused) {
    const std::string good = golden("cloud.xml");
    for (std::size_t size = 0; size + 1 < good.size(); ++size) refusal(good.substr(0, size));
}

// Catches digits that are lost on the way: seven significant ones of every value come back, but no more than the ten
// decimals of matrices and the six of other values that are written.
TEST_F(CloudLibraryFile, KeepsSevenDigits) {
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> exponent(-6, 6), mantissa(-10, 10), unit(0, 1);
    const auto number = [&] { return mantissa(engine) * std::pow(10.0, exponent(engine)); };
    CloudTemplate cloud = firstCloud();
    cloud.shapes.boundCentre = {number(), number(), number()};
    cloud.shapes.spheres.assign(300, {});
    for (CloudShapeSphere& sphere : cloud.shapes.spheres) {
        sphere.opacity = unit(engine);
        sphere.density = unit(engine);
        for (auto& row : sphere.transform.m)
            for (int column = 0; column < 3; ++column) row[column] = number();
    }
    const auto back = loadCloudFile(saved(cloud));
    ASSERT_TRUE(back);
    const auto near = [](double read, double written, double decimals) {
        EXPECT_NEAR(read, written, std::abs(written) * std::ldexp(1.0, -24) + 0.5000001 * decimals);
    };
    near(back->shapes.boundCentre.x, cloud.shapes.boundCentre.x, 1e-6);
    ASSERT_THAT(back->shapes.spheres, SizeIs(300));
    for (std::size_t i = 0; i < 300; ++i) {
        const CloudShapeSphere &read = back->shapes.spheres[i], &written = cloud.shapes.spheres[i];
        near(read.opacity, written.opacity, 1e-6);
        near(read.density, written.density, 1e-6);
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 3; ++column)
                near(read.transform.m[row][column], written.transform.m[row][column], 1e-10);
    }
}

// Catches decimal commas in a file, and points that end a number.
TEST_F(CloudLibraryFile, IgnoresTheLocale) {
    const orvo::test::OtherLocale comma;
    if (!comma.found()) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    const std::string file = saved(firstCloud());
    EXPECT_EQ(contents(file), golden("cloud.xml"));
    EXPECT_EQ(loadCloudFile(file)->settings.spriteSize, 150.5);
}

// Catches a limit that real libraries run into.
TEST_F(CloudLibraryFile, HoldsTenThousandShapes) {
    CloudTemplate cloud = firstCloud();
    cloud.shapes.spheres.assign(10000, cloud.shapes.spheres[0]);
    const auto back = loadCloudFile(saved(cloud));
    ASSERT_TRUE(back);
    EXPECT_THAT(back->shapes.spheres, SizeIs(10000));
}

#ifndef _WIN32 // where there is no xmllint

// Catches schemas that do not describe what is written, or that let anything pass.
TEST_F(CloudLibraryFile, SchemasFitTheFiles) {
    const auto validates = [](const std::string& schema, const std::string& file) {
        return std::system(("xmllint --noout --schema '" + orvo::test::sourceTree("docs/" + schema) + "' '" + file +
                            "' 2>/dev/null")
                               .c_str()) == 0;
    };
    const std::string cloud = saved(firstCloud()), data = orvo::test::testData("clouds/");
    EXPECT_TRUE(validates("particle-cloud.xsd", cloud));
    EXPECT_TRUE(validates("particle-cloud-library.xsd", data + "library.xml"));
    EXPECT_TRUE(validates("shading-params.xsd", data + "shading.xml"));
    EXPECT_FALSE(validates("particle-cloud.xsd", data + "library.xml"));
    EXPECT_FALSE(validates("particle-cloud-library.xsd", data + "shading.xml"));
    EXPECT_FALSE(validates("shading-params.xsd", data + "cloud.xml"));
    EXPECT_FALSE(validates("particle-cloud.xsd", write("c.xml", withoutAttribute(golden("cloud.xml"), "pos_vec"))));
    EXPECT_FALSE(validates("particle-cloud.xsd", write("c.xml", withValue(golden("cloud.xml"), "opacity", "1.5"))));
}

#endif
