// `orvosky inspect`: what it reads out of hand-made files, and every fault that it is there to find. The files are
// written by hand from the documentation; nothing here was made by the plug-in.
#include "Session.h"
#include "inspect/InspectionText.h"
#include "inspect/XmlFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <sys/wait.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace orvosky::inspect;
using orvosky::Failure;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string samples = ORVO_TEST_DATA "/inspect/";

/// The data of everything.atmos: three sprites with shadow, padding, two without, the end mark. 21182 units are what
/// the bounding spheres leave beside half the diagonal of a sprite: (400 - 200 sqrt(1/2)) / 400 x 32767.
std::string sampleData() {
    const std::string shadow(8, '\xFA'), rest = "\x80\xFF"; // random value 1/2, opacity 1
    std::string bytes = std::string(6, '\0') + rest + shadow;
    bytes += std::string("\x52\xBE\0\0\0\0", 6) + rest + shadow;     // 21182 0 0
    bytes += std::string("\0\0\xC0\0\0\0", 6) + "\x80\x33" + shadow; // 0 -16384 0; opacity 51
    bytes.resize(128);
    bytes += std::string(6, '\0') + rest;
    bytes += std::string("\0\0\0\0\xAD\x42", 6) + rest; // 0 0 -21182
    return bytes + '\x01';
}

class Inspect : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "orvosky-inspect-XXXXXX").string();
        ASSERT_TRUE(mkdtemp(pattern.data()));
        folder_ = pattern;
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return (folder_ / name).string();
    }
    static std::string sample(const std::string& name) { return readBytes(samples + name, 1 << 20); }
    std::string writeScene(const std::string& text, const std::string& data) const {
        write("sky.cdata", data);
        return write("sky.atmos", text);
    }

    /// "line N: ..." of a file that cannot be read, without the folder; empty when it can.
    std::string failure(const std::string& file) const {
        try {
            inspectFile(file);
        } catch (const Failure& e) {
            return e.what();
        }
        return {};
    }

    fs::path folder_;
};

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return at == text.npos ? text : text.replace(at, from.size(), to);
}

Triple derived(const Element& element, const std::string& name) {
    for (const NamedValue& v : element.derived)
        if (v.name == name) return std::get<Triple>(v.value);
    ADD_FAILURE() << "no " << name;
    return {};
}

void expectNear(const Triple& found, const Triple& wanted, double tolerance) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(found[i], wanted[i], tolerance) << i;
}

// Faults: sound files refused; byte order, sign, scale or frame of sprites wrong; an opacity from the wrong byte.
TEST_F(Inspect, ReadsASceneAndItsSprites) {
    const Inspection found = inspectFile(writeScene(sample("everything.atmos"), sampleData()));
    EXPECT_THAT(found.problems.texts(), IsEmpty());
    EXPECT_THAT(found.notes, IsEmpty());
    std::vector<Element> clouds;
    for (const Element& e : found.elements)
        if (e.name == "ParticleCloud") clouds.push_back(e);
    ASSERT_EQ(clouds.size(), 2u);
    // The culling sphere's centre (-500, 0, 250) and the bounding sphere's (10, 20, 30) in it; 21182 / 32767 x 400
    // = 258.577 and 16384 / 32767 x 400 = 200.006.
    expectNear(derived(clouds[0], "spritesFrom"), {-490, -180.006, 280}, 1e-3);
    expectNear(derived(clouds[0], "spritesTo"), {-231.423, 20, 280}, 1e-3);
    expectNear(derived(clouds[0], "opacityLowMeanHigh"), {0.2, 2.2 / 3, 1}, 1e-9);
    expectNear(derived(clouds[1], "spritesFrom"), {0, 300, -129.289}, 1e-3);
    expectNear(derived(clouds[1], "spritesTo"), {0, 300, 0}, 1e-3);
    ASSERT_TRUE(found.data);
    EXPECT_TRUE(found.data->endMark);
    EXPECT_EQ(found.data->size, 145u);
}

// Fault: a schema that has fallen behind the elements, or lets through what is none.
TEST_F(Inspect, TheSchemaKnowsAllElements) {
    const auto valid = [&](const std::string& text) {
        const std::string file = write("sky.atmos", text);
        return std::system(
                   ("xmllint --noout --schema '" ORVO_SOURCE "/docs/atmos.xsd' '" + file + "' 2>/dev/null").c_str()) ==
               0;
    };
    const std::string scene = sample("everything.atmos");
    EXPECT_TRUE(valid(scene));
    EXPECT_FALSE(valid(replaced(scene, "numSprites= \"3\"", "numSprites= \"4001\"")));
    EXPECT_FALSE(valid(replaced(scene, "indicies", "indices")));
    EXPECT_FALSE(valid(replaced(scene, "<SceneFog", "<SceneFogs")));
}

struct Fault {
    const char* from; ///< in the scene's text
    const char* to;
    const char* named; ///< what the list of problems must say
};

// Faults: a check that does not work, or that names the wrong thing.
TEST_F(Inspect, NamesWhatDoesNotFitInAScene) {
    const Fault faults[] = {
        {"version = \"7\"", "version = \"6\"", "line 2, OrvoAtmosphere: the version is '6', not '7'"},
        {"\tversion = \"7\"\n", "", "the attribute 'version' is missing"},
        {"useGameSunDir  = \"1\"", "useGameSunDir  = \"2\"",
         "line 6, SkySceneSettings: useGameSunDir is neither 0 nor 1: '2'"},
        {"cloudBackBufferRes  = \"2\"", "cloudBackBufferRes  = \"1.5\"",
         "cloudBackBufferRes is not a whole number: '1.5'"},
        {"\t\tsunIntensity  = \"1.000000\"\n", "", "BasicSky 1: the attribute 'sunIntensity' is missing"},
        {"sunIntensity  = \"1.000000\"", "sunIntensity  = \"nan\"", "sunIntensity is not finite: 'nan'"},
        {"sunIntensity  = \"1.000000\"", "sunIntensity  = \"1e999\"", "sunIntensity is out of the range of numbers"},
        {"sunIntensity  = \"1.000000\"", "sunIntensity  = \"1,5\"", "sunIntensity is not a number: '1,5'"},
        {"sunIntensity  = \"1.000000\"", "sunIntensity  = \"5.000001\"", "sunIntensity is outside of 0 to 5"},
        {"sunDir = \"0.000000 0.600000 0.800000\"", "sunDir = \"0.000000 0.600000\"", "sunDir is not 3 numbers"},
        {"sunDir = \"0.000000 0.600000 0.800000\"", "sunDir = \"0.000000 0.600000 0.700000\"", "not of unit length"},
        {"xcoord", "ycoord", "GradientSky 1: unknown attribute 'ycoord'"},
        {"fogStart = \"100.000000\"", "fogStart = \"500.000001\"", "SceneFog: fogStart lies behind fogEnd"},
        {"numVerts = \"4\"", "numVerts = \"5\"", "TriMesh: numVerts is 5, but there are 4"},
        {"indicies=\"0 2 3\"", "indicies=\"0 2 4\"", "Tri 2: there is no vertex 4"},
        {"<Tri indicies=\"0 2 3\" />", "<Vert pos=\"0 0 0\" uv=\"0 0\" />", "Vert 5: it stands behind a triangle"},
        {"uv=\"1.000000 1.000000\"", "uv=\"1.000000\"", "Vert 3: uv is not 2 numbers"},
        {"<SceneFog", "<sceneFog", "unknown element <sceneFog>"},
        {"<SkySceneSettings", "stray<SkySceneSettings", "text that is part of no element: 'stray'"},
        {"\t<BasicSky", "\t<SkySceneSettings useGameSunDir=\"1\" cloudBackBufferRes=\"0\"/>\n\t<BasicSky",
         "SkySceneSettings 2: a scene has at most one SkySceneSettings"},
        {"<SkySceneSettings\n", "<SkySceneSetting\n", "there is no SkySceneSettings"},
        {"\t<CloudVertData", "\t<TexturedSky brightness=\"1\" rotation=\"0\" texture=\"a\"/>\n\t<CloudVertData",
         "TexturedSky 2: it stands behind ParticleCloud, but belongs before it"},
        {"<ParticleCloudShadingParams", "<ParticleCloudShading", "there are clouds, but no ParticleCloudShadingParams"},
        {"<ParticleCloudDome", "<CloudDome", "enableDomePositioning is 1, but there is no ParticleCloudDome"},
        {"<CloudVertData", "<VertData", "there are clouds, but no CloudVertData"},
        {"\t\tgroundFadeStart  = \"60.000000\"\n", "", "ParticleCloud 1: the attribute 'groundFadeStart' is missing"},
        {"enableGroundFade  = \"1\"", "enableGroundFade  = \"0\"", "groundFadeEnd is given, but enableGroundFade is 0"},
        {"numSprites= \"3\"", "numSprites= \"0\"", "numSprites is outside of 1 to 4000: '0'"},
        {"numSprites= \"3\"", "numSprites= \"4001\"", "numSprites is outside of 1 to 4000"},
        {"numSprites= \"3\"", "numSprites= \"2\"",
         "ParticleCloud 1: its 2 records of 16 bytes (cloudSelfShadowEnable is 1) end at byte 32; the padding from "
         "there to 128 is not zero"},
        {"numSprites= \"3\"", "numSprites= \"9\"",
         "end at byte 144, beyond the start of ParticleCloud 2 at 128; records of 8 bytes"},
        {"numSprites= \"2\"", "numSprites= \"1\"",
         "ParticleCloud 2: its 1 records of 8 bytes (cloudSelfShadowEnable is 0) end at byte 136, but the end mark "
         "lies "
         "at 144: 8 bytes"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"136\"", "vertexDataAddress 136 is no multiple of 128"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"256\"", "from byte 256 on, lie beyond the 144 bytes"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"2147483648\"", "vertexDataAddress is outside of 0 to"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"-128\"", "vertexDataAddress is outside of 0 to"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"0\"",
         "begin at byte 0, not behind those of ParticleCloud 1"},
        {"vertexDataAddress = \"0\"", "vertexDataAddress = \"64\"",
         "ParticleCloud 1: its records begin at byte 64; the first 64"},
        {"cloudSelfShadowEnable  = \"0\"", "cloudSelfShadowEnable  = \"1\"",
         "ParticleCloud 2: the attribute 'cloudSelfShadowAmount'"},
        {"cloudSelfShadowEnable  = \"0\"", "cloudSelfShadowEnable  = \"1\"",
         "end at byte 160, beyond the start of the end mark at 144; records of 8 bytes"},
        {"cloudSelfShadowEnable  = \"1\"", "cloudSelfShadowEnable  = \"0\"", "not zero; records of 16 bytes"},
        {"size = \"145\"", "size = \"146\"", "size is 146, but "},
    };
    const std::string scene = sample("everything.atmos");
    for (const Fault& fault : faults) {
        const Inspection found = inspectFile(writeScene(replaced(scene, fault.from, fault.to), sampleData()));
        EXPECT_THAT(found.problems.texts(), Contains(HasSubstr(fault.named))) << fault.from << " -> " << fault.to;
    }
}

// Faults: bytes that no sprite can have taken for sprites; padding, end mark or size not looked at; reads beyond the
// end.
TEST_F(Inspect, NamesWhatDoesNotFitInTheData) {
    const auto problems = [&](const std::function<void(std::string&)>& change) {
        std::string data = sampleData();
        change(data);
        return inspectFile(writeScene(sample("everything.atmos"), data)).problems.texts();
    };
    EXPECT_THAT(
        problems([](std::string& d) { d[16] = '\x80', d[17] = 0; }),
        ElementsAre(HasSubstr("ParticleCloud 1: 1 of its 3 sprites lie outside of the bounding sphere; the first is "
                              "sprite 1 at byte 16")));
    EXPECT_THAT(problems([](std::string& d) { d[18] = '\x72', d[20] = '\x72'; }),
                Contains(HasSubstr("1 of its 3 sprites")));
    EXPECT_THAT(problems([](std::string& d) { d[127] = 1; }),
                ElementsAre(HasSubstr("end at byte 48; the padding from there to 128 is not zero")));
    EXPECT_THAT(problems([](std::string& d) { d.back() = 2; }), ElementsAre(HasSubstr("is 2, not the end mark 1")));
    EXPECT_THAT(problems([](std::string& d) { d += '\1'; }), Contains(HasSubstr("holds 146 bytes")));
    for (std::size_t size = 0; size < sampleData().size(); ++size)
        EXPECT_THAT(problems([&](std::string& d) { d.resize(size); }),
                    Contains(HasSubstr("sky.cdata holds " + std::to_string(size) + " bytes")));

    fs::remove(folder_ / "sky.cdata");
    EXPECT_THAT(inspectFile((folder_ / "sky.atmos").string()).problems.texts(),
                ElementsAre(HasSubstr("sky.cdata: the file does not exist")));
    EXPECT_THAT(inspectFile(write("sky.xml", sample("everything.atmos"))).problems.texts(),
                ElementsAre(HasSubstr("does not end in .atmos")));
}

// Faults: 100-byte spaces between clouds taken for padding; data without clouds taken for an error of the scene.
TEST_F(Inspect, SpacesAndStaleData) {
    std::string data = sampleData();
    data.insert(128, 128, '\0');
    std::string scene = replaced(sample("everything.atmos"), "size = \"145\"", "size = \"273\"");
    scene = replaced(scene, "vertexDataAddress = \"128\"", "vertexDataAddress = \"256\"");
    EXPECT_THAT(inspectFile(writeScene(scene, data)).problems.texts(),
                ElementsAre(HasSubstr("ParticleCloud 2 begins at 256: padding takes less than 128 bytes")));

    scene = sample("everything.atmos");
    scene.erase(scene.find("\t<ParticleCloud\n"));
    scene += "</OrvoAtmosphere>\n";
    const Inspection found = inspectFile(writeScene(scene, data));
    EXPECT_THAT(found.problems.texts(), IsEmpty());
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("sky.cdata lies beside the scene")));
}

// Faults: a matrix read by columns, axes or centre from the wrong space; seeds that are refused in one of their forms.
TEST_F(Inspect, ReadsCloudsAndLibraries) {
    const Inspection library = inspectFile(samples + "library.xml");
    EXPECT_THAT(library.problems.texts(), IsEmpty());
    ASSERT_EQ(library.elements.size(), 3u);
    EXPECT_THAT(inspectFile(samples + "shading.xml").problems.texts(), IsEmpty());
    const Inspection cloud = inspectFile(samples + "cloud.xml");
    EXPECT_THAT(cloud.problems.texts(), IsEmpty());
    // Built of semi-axes of 300, 100 and 50 m, a quarter turn about y and the centre (1000, 200, -400) m.
    const Element& sphere = cloud.elements.at(0).children.at(0);
    expectNear(derived(sphere, "semiAxes"), {300, 100, 50}, 1e-2);
    expectNear(derived(sphere, "centre"), {1000, 200, -400}, 1e-2);
    for (const Element& e : {library.elements[1], cloud.elements[0]}) // "-1" and "4294967295"
        EXPECT_THAT(asJson(cloud), HasSubstr("\"seed\": 4294967295")) << e.line;
    EXPECT_THAT(asJson(library), HasSubstr("\"seed\": 4294967295"));
}

TEST_F(Inspect, NamesWhatDoesNotFitInClouds) {
    struct CloudFault {
        const char* sample;
        Fault fault;
    };
    const CloudFault faults[] = {
        {"cloud.xml", {"version = \"1\"", "version = \"2\"", "the version is '2', not '1'"}},
        {"shading.xml", {"version = \"2\"", "version = \"1\"", "the version is '1', not '2'"}},
        {"cloud.xml",
         {"randSeed = \"4294967295\"", "randSeed = \"4294967296\"", "ParticleCloud 1: randSeed is outside of"}},
        {"cloud.xml", {"spriteDensity = \"10000.000000\"", "spriteDensity = \"inf\"", "spriteDensity is not finite"}},
        {"cloud.xml", {"spriteDensity = \"10000.000000\"", "spriteDensity = \"0.5\"", "spriteDensity is below 1"}},
        {"cloud.xml", {"<Transform", "<Transforms", "ParticleCloudSphere 1: the element <Transform> is missing"}},
        {"cloud.xml", {"z_vec", "w_vec", "the attribute 'z_vec' is missing"}},
        {"cloud.xml",
         {"-0.0000333333 0.0000000000", "0.0000000000 0.0000000000",
          "the matrix of ParticleCloudSphere 1 cannot be inverted"}},
        {"cloud.xml",
         {"pos_vec = \"-1.3", "pos_vec = \"-3.3",
          "ParticleCloudSphere 1: its centre lies outside of the bounding sphere"}},
        {"cloud.xml", {"density = \"0.500000\"", "density = \"1.500000\"", "density is outside of 0 to 1"}},
        {"cloud.xml", {"<ParticleCloudSphere", "<ParticleCloudCube", "it has no <ParticleCloudSphere>"}},
        {"cloud.xml", {"_ParticleCloud\"", "_ParticleCloudLibrary\"", ""}},
        {"library.xml",
         {"_ParticleCloudLibrary\"", "_ParticleCloud\"", "unknown element <ParticleCloudShadingParams>"}},
        {"library.xml", {"_ParticleCloudLibrary\"", "_ParticleCloud\"", "there are 2 <ParticleCloud>"}},
        {"shading.xml",
         {"enableSelfShadow = \"1\"", "enableSelfShadow = \"yes\"", "enableSelfShadow is not a whole number: 'yes'"}},
        {"shading.xml", {"<ParticleCloudShadingParams", "<Params", "there is no <ParticleCloudShadingParams>"}},
    };
    for (const auto& [name, fault] : faults) {
        std::string text = replaced(sample(name), fault.from, fault.to);
        if (std::string(fault.from).front() == '<' && std::string(fault.from) != "<ParticleCloudShadingParams" &&
            std::string(fault.from) != "<Transform")
            text = replaced(text, "</" + std::string(fault.from + 1), "</" + std::string(fault.to + 1));
        const auto problems = inspectFile(write("cloud.xml", text)).problems.texts();
        if (*fault.named)
            EXPECT_THAT(problems, Contains(HasSubstr(fault.named))) << fault.from << " -> " << fault.to;
        else
            EXPECT_THAT(problems, IsEmpty());
    }
    const std::string dense = replaced(sample("cloud.xml"), "10000.000000", "90000000.000000");
    EXPECT_THAT(inspectFile(write("cloud.xml", dense)).notes, Contains(HasSubstr("above a million")));
}

// Faults: crashes, endless recursion or silence on what is no file of ours; a refusal that does not name the file.
TEST_F(Inspect, RefusesWhatItCannotRead) {
    std::string deep, wide = "<a";
    for (int i = 0; i < 200000; ++i) deep += "<a>";
    for (int i = 0; i < 100000; ++i) wide += " b" + std::to_string(i) + "=\"\"";
    const std::pair<std::string, const char*> texts[] = {
        {"", "the file is empty"},
        {" \n", "the file is empty"},
        {"sky", "no XML"},
        {std::string("<a>\0</a>", 8), "binary"},
        {"<a b=\"\xFF\"/>", "UTF-8"},
        {"<a>\xEF", "UTF-8"},
        {"<sky/>", "the root element is <sky>, not <OrvoAtmosphere>"},
        {"<OrvoAtmosphere/>", "has no 'type'"},
        {"<OrvoAtmosphere type=\"Modeler_Rain\" version=\"1\"/>", "unknown type 'Modeler_Rain'"},
        {"<OrvoAtmosphere type=\"a\" type=\"b\"/>", "has the attribute 'type' twice"},
        {"<OrvoAtmosphere type='SceneDefinition' version=7/>", "'version' is not quoted"},
        {"<OrvoAtmosphere>\n</OrvoAtmospheres>", "line 2: </OrvoAtmospheres> closes nothing"},
        {"<a/><b/>", "more than one root"},
        {"<!DOCTYPE a [<!ENTITY b \"c\">]><a/>", "no XML"},
        {"<a><!-- b </a>", "comment does not end"},
        {deep, "nested more than 64 deep"},
        {wide + "/>", "too many attributes"},
        {"<\x1B[31mred/>", "no XML"},
    };
    for (const auto& [text, named] : texts) {
        const std::string said = failure(write("odd.atmos", text));
        EXPECT_THAT(said, HasSubstr(named)) << text.substr(0, 60);
        EXPECT_THAT(said, HasSubstr("odd.atmos"));
    }
    EXPECT_THAT(failure(folder_.string()), HasSubstr("is a folder"));
    EXPECT_THAT(failure((folder_ / "none.atmos").string()), HasSubstr("none.atmos: the file does not exist"));
    ASSERT_EQ(mkfifo((folder_ / "pipe.atmos").c_str(), 0600), 0);
    EXPECT_THAT(failure((folder_ / "pipe.atmos").string()), HasSubstr("is not a plain file"));

    // The last byte is the line end.
    for (const char* name : {"everything.atmos", "library.xml"}) {
        const std::string whole = sample(name);
        for (std::size_t size = 0; size + 1 < whole.size(); size += 7)
            EXPECT_THAT(failure(write("cut.atmos", whole.substr(0, size))), HasSubstr("cut.atmos")) << size;
    }
}

// Faults: JSON that other tools cannot read; decimal commas; names and texts that steer the terminal.
TEST_F(Inspect, SaysItAsTextAndAsJson) {
    const char* const comma = std::setlocale(LC_ALL, "de_DE.UTF-8"); // where there is none, "C" is tried
    std::string scene = replaced(sample("everything.atmos"), "skies\\evening.tga", "a&quot;b&#27;[2J\xC2\x9B");
    scene = replaced(scene, "fogAlpha = \"1.000000\"", "fogAlpha = \"half\"");
    const Inspection found = inspectFile(writeScene(scene, sampleData()));
    const std::string text = asText(found), json = asJson(found);
    if (comma) std::setlocale(LC_ALL, "C");

    EXPECT_THAT(text, HasSubstr("    sunColour                1 0.95 0.763\n"));
    EXPECT_THAT(text, HasSubstr("    fogHeight                40 m\n"));
    EXPECT_THAT(text, HasSubstr("'a\"b\\x1B[2J\\x9B'"));
    EXPECT_THAT(text, HasSubstr("Not OK: 1 thing does not fit.\n"));
    EXPECT_THAT(text, Not(HasSubstr("\x1B")));

    const auto parsed = nlohmann::json::parse(json);
    EXPECT_EQ(parsed["ok"], false);
    EXPECT_EQ(parsed["problems"].size(), 1u);
    EXPECT_EQ(parsed["elements"][4]["attributes"]["fogAlpha"], "half");
    EXPECT_EQ(parsed["elements"][4]["attributes"]["fogHeightOffset"], -10.0);
    EXPECT_EQ(parsed["elements"][9]["attributes"]["cullingSpherePos"], nlohmann::json({-500.0, 0.0, 250.0}));
    EXPECT_EQ(parsed["elements"][9]["derived"]["recordSize"], 16);
    EXPECT_EQ(parsed["data"]["size"], 145);
}

// Faults: exit statuses that scripts would misread; the list on the wrong stream; a plug-in that is needed or loaded.
TEST_F(Inspect, AsAProgram) {
    const auto run = [&](const std::string& arguments) {
        const int status = std::system(
            ("cd '" + folder_.string() + "' && '" ORVOSKY_PROGRAM "' inspect " + arguments + " >out 2>err").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    const auto said = [&](const char* stream) { return readBytes((folder_ / stream).string(), 1 << 20); };
    writeScene(sample("everything.atmos"), sampleData());
    EXPECT_EQ(run("sky.atmos --project /nowhere/at/all"), 0);
    EXPECT_THAT(said("out"), HasSubstr("OK: 12 elements, everything fits.\n"));
    EXPECT_THAT(said("err"), IsEmpty());
    EXPECT_EQ(run("--json sky.atmos"), 0);
    EXPECT_TRUE(nlohmann::json::accept(said("out")));

    EXPECT_EQ(run("sky.atmos >/dev/full #"), 1);
    write("sky.cdata", "");
    EXPECT_EQ(run("sky.atmos"), 1);
    EXPECT_THAT(said("out"), HasSubstr("Not OK: "));
    EXPECT_THAT(said("err"), HasSubstr("Error: sky.atmos does not fit in "));
    EXPECT_THAT(said("err"), HasSubstr("\n   1. line "));
    EXPECT_EQ(run("run"), 1);
    EXPECT_THAT(said("err"), testing::StartsWith("Error: run: the file does not exist."));
    EXPECT_EQ(run(""), 2);
    EXPECT_EQ(run("sky.atmos --colour"), 2);
}

} // namespace
