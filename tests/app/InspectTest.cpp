// `orvosky inspect`: what it reads out of hand-made files, and every fault that it is there to find. The files are
// written by hand from the documentation; nothing here was made by the plug-in.
#include "Schema.h"
#include "Session.h"
#include "inspect/InspectionText.h"
#include "inspect/XmlFile.h"
#include "kit/OtherLocale.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <sstream>
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

const std::string samples = orvo::test::testData("inspect/");

/// The data of everything.atmos: three sprites with shadow, padding, two without, the end mark. 21182 units are what
/// the bounding spheres leave beside half the diagonal of a sprite: (400 - 200 sqrt(1/2)) / 400 x 32767.
std::string sampleData() {
    const std::string shadow = std::string(7, '\xFA') + '\0', rest = "\x80\xFF"; // random value 1/2, opacity 1
    std::string bytes = std::string(6, '\0') + rest + shadow;
    bytes += std::string("\x52\xBE\0\0\0\0", 6) + "\x80\x33" + shadow; // 21182 0 0; opacity 51
    bytes += std::string("\0\0\xC0\0\0\0", 6) + rest + shadow;         // 0 -16384 0
    bytes.resize(128);
    bytes += std::string(6, '\0') + rest;
    bytes += std::string("\0\0\0\0\xAD\x42", 6) + rest; // 0 0 -21182
    return bytes + '\x01';
}

class Inspect : public testing::Test {
protected:
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

    orvo::test::TemporaryFolder folder_;
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
    const Element& mesh = found.elements.at(6).children.at(0);
    expectNear(derived(mesh, "verticesFrom"), {0, 100, -20}, 0);
    expectNear(derived(mesh, "verticesTo"), {10, 100, 0}, 0);
}

// Fault: a schema that has fallen behind the elements, or lets through what is none.
TEST_F(Inspect, TheSchemaKnowsAllElements) {
    const auto valid = [&](const std::string& text) {
        return static_cast<bool>(followsSchema(write("sky.atmos", text), "atmos.xsd"));
    };
    const std::string scene = sample("everything.atmos");
    EXPECT_TRUE(valid(scene));
    EXPECT_FALSE(valid(replaced(scene, "numSprites= \"3\"", "numSprites= \"4001\"")));
    EXPECT_FALSE(valid(replaced(scene, "indicies", "indices")));
    EXPECT_FALSE(valid(replaced(scene, "sunDiskSize = \"0.120000\"", "sunDiskSize = \"0.12\"")));
    EXPECT_FALSE(valid(replaced(scene, "<SceneFog", "<SceneFogs")));

    const std::pair<std::string, bool> elements[] = {
        {"SkySceneSettings", false},  {"BasicSky", true},
        {"GradientSky", true},        {"TexturedSky", true},
        {"ExpHeightFog", false},      {"SceneFog", false},
        {"SpriteCloud", true},        {"ParticleCloudShadingParams", false},
        {"ParticleCloudDome", false}, {"ParticleCloud", true},
        {"CloudVertData", false}};
    for (const auto& [name, many] : elements) {
        std::smatch m;
        ASSERT_TRUE(std::regex_search(scene, m, std::regex("\t<" + name + "\n[^]*?\n\t(/>|</" + name + ">)\n")))
            << name;
        const std::string element = m[0], twice = replaced(scene, element, element + element);
        EXPECT_EQ(valid(twice), many) << name;
        EXPECT_EQ(valid(replaced(scene, element, "")), name != "SkySceneSettings") << name;
        EXPECT_THAT(inspectFile(writeScene(twice, sampleData())).problems.texts(),
                    Contains(HasSubstr(name + " 2: a scene has at most one " + name)).Times(many ? 0 : 1));
        const auto line = element.find('\n') + 1;
        const std::string lacking = element.substr(0, line) + element.substr(element.find('\n', line) + 1);
        EXPECT_FALSE(valid(replaced(scene, element, lacking))) << name;
    }
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
        {"version = \"7\"", "version = \"7\" author = \"me\"", "OrvoAtmosphere: unknown attribute 'author'"},
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
        {"sunDir = \"0.000000 0.600000", "sunDir = \"0.0 0.0 0.600000", "sunDir is not 3 numbers"},
        {"sunDir = \"0.000000 0.600000 0.800000\"", "sunDir = \"0.000000 0.600000 0.700000\"", "not of unit length"},
        {"xcoord", "ycoord", "GradientSky 1: unknown attribute 'ycoord'"},
        {"fogStart = \"100.000000\"", "fogStart = \"500.000001\"", "SceneFog: fogStart lies behind fogEnd"},
        {"useGameSunDir  = \"1\"\n\t\tcloudBackBufferRes  = \"2\"\n\t/>",
         "useGameSunDir=\"1\" cloudBackBufferRes=\"2\"><a/></SkySceneSettings>",
         "SkySceneSettings: unknown element <a>"},
        {"numVerts = \"4\"", "numVerts = \"5\"", "TriMesh: numVerts is 5, but the elements are 4"},
        {"numTris = \"2\"", "numTris = \"1\"", "TriMesh: numTris is 1, but the elements are 2"},
        {"</TriMesh>", "</TriMesh><TriMesh/>", "SpriteCloud 1: there is more than one <TriMesh>"},
        {"indicies=\"0 2 3\"", "indicies=\"0 2 4\"", "Tri 2: there is no vertex 4"},
        {"indicies=\"0 2 3\"", "indicies=\"0 2 1.5\"", "Tri 2: there is no vertex 1.5"},
        {"<Tri indicies=\"0 2 3\" />", "<Vert pos=\"0 0 0\" uv=\"0 0\" />", "Vert 5: it stands behind a triangle"},
        {"uv=\"1.000000 1.000000\"", "uv=\"1.000000\"", "Vert 4: uv is not 2 numbers"},
        {"<SceneFog", "<sceneFog", "unknown element <sceneFog>"},
        {"<SkySceneSettings", "stray<SkySceneSettings", "text that is part of no element: 'stray'"},
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
         "ParticleCloud 2: its 1 record of 8 bytes (cloudSelfShadowEnable is 0) ends at byte 136, but the end mark "
         "lies at 144: 8 bytes belong to no cloud"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"136\"", "vertexDataAddress 136 is no multiple of 128"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"256\"", "from byte 256 on, lie beyond the 144 bytes"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"2147483648\"", "vertexDataAddress is outside of 0 to"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"-128\"", "vertexDataAddress is outside of 0 to"},
        {"vertexDataAddress = \"128\"", "vertexDataAddress = \"0\"",
         "begin at byte 0, not behind those of ParticleCloud 1"},
        {"vertexDataAddress = \"0\"", "vertexDataAddress = \"64\"",
         "ParticleCloud 1: its records begin at byte 64; before them, 64 bytes belong"},
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

// Faults: data that are refused for their size, which is what ten thousand large clouds take.
TEST_F(Inspect, ReadsDataOfAnySize) {
    const std::string scene = replaced(sample("everything.atmos"), "size = \"145\"", "size = \"700000000\"");
    writeScene(scene, sampleData());
    fs::resize_file(folder_ / "sky.cdata", 699'999'999); // a hole, which takes no room on the disk
    std::ofstream(folder_ / "sky.cdata", std::ios::binary | std::ios::app) << '\x01';
    EXPECT_THAT(inspectFile((folder_ / "sky.atmos").string()).problems.texts(),
                ElementsAre(HasSubstr("but the end mark lies at 699999999")));
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
        ElementsAre(HasSubstr("ParticleCloud 1: 1 of its 3 sprites lies outside of the bounding sphere; the first is "
                              "sprite 1 at byte 16")));
    // 21182 and 25135 units: 32870 from the centre.
    EXPECT_THAT(problems([](std::string& d) { d[18] = '\x62', d[19] = '\x2F'; }),
                Contains(HasSubstr("1 of its 3 sprites")));
    EXPECT_THAT(problems([](std::string& d) { d[127] = 1; }),
                ElementsAre(HasSubstr("end at byte 48; the padding from there to 128 is not zero")));
    EXPECT_THAT(problems([](std::string& d) { d.back() = 2; }), ElementsAre(HasSubstr("is 2, not the end mark 1")));
    EXPECT_THAT(problems([](std::string& d) { d += '\1'; }),
                testing::IsSupersetOf({HasSubstr("holds 146 bytes"), HasSubstr("145: 1 byte belongs to no cloud")}));
    EXPECT_THAT(problems([](std::string& d) { d[127] = 1, d[128] = 1, d.resize(129); }),
                testing::IsSupersetOf({HasSubstr("the padding from there to 128 is not zero"),
                                       HasSubstr("from byte 128 on, lie beyond the 128 bytes")}));
    EXPECT_THAT(problems([](std::string& d) { d.resize(40); }),
                Contains(HasSubstr("its records of 16 bytes end at byte 48, beyond the 39 bytes")));
    for (std::size_t size = 0; size < sampleData().size(); ++size)
        EXPECT_THAT(problems([&](std::string& d) { d.resize(size); }),
                    Contains(HasSubstr("sky.cdata holds " + std::to_string(size) + (size == 1 ? " byte" : " bytes"))));

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
    std::string mixed = replaced(scene, "enableDomePositioning = \"0\"", "enableDomePositioning = \"1\"");
    mixed = replaced(mixed, "enableDomePositioning = \"1\"", "enableDomePositioning = \"0\"");
    EXPECT_THAT(inspectFile(writeScene(mixed, sampleData())).problems.texts(),
                ElementsAre(HasSubstr("ParticleCloud 2: it belongs to the dome, but stands behind a free cloud")));

    std::string cloudless = scene;
    for (const char* name : {"<ParticleCloud\n", "<ParticleCloud\n"}) cloudless = replaced(cloudless, name, "<Cloud\n");
    EXPECT_THAT(inspectFile(writeScene(cloudless, sampleData())).problems.texts(),
                Contains(HasSubstr("CloudVertData: there is CloudVertData, but no ParticleCloud")));

    fs::remove(folder_ / "sky.atmos");
    fs::remove(folder_ / "sky.cdata");
    write("Sky.cdata", sampleData());
    EXPECT_THAT(inspectFile(write("Sky.Atmos", scene)).problems.texts(), IsEmpty());

    scene.erase(scene.find("\t<ParticleCloud\n"));
    scene += "</OrvoAtmosphere>\n";
    const Inspection found = inspectFile(writeScene(scene, data));
    EXPECT_THAT(found.problems.texts(), IsEmpty());
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("sky.cdata lies beside the scene")));
}

// Faults: spheres measured from the wrong centre, in the wrong unit or not at all; lost textures passed over.
TEST_F(Inspect, NotesWhatIsOddInAScene) {
    const auto notes = [&](const std::string& from, const std::string& to) {
        return inspectFile(writeScene(replaced(sample("everything.atmos"), from, to), sampleData())).notes;
    };
    EXPECT_THAT(notes("skies\\cube.dds", ""), ElementsAre("TexturedSky 1: texture is empty."));
    // The farthest sprite is 258.577 m from the centre, and half of a sprite's diagonal 201 sqrt(1/2) m.
    EXPECT_THAT(notes("spriteSize = \"200", "spriteSize = \"201"),
                ElementsAre(HasSubstr("ParticleCloud 1: its sprites reach 400.706 m from the centre of the bounding "
                                      "sphere, whose radius is 400 m.")));
    // It lies at (258.577 + 10, 20, 30) m in the culling sphere.
    EXPECT_THAT(notes("cullingSphereRadius = \"500", "cullingSphereRadius = \"270"),
                ElementsAre(HasSubstr("ParticleCloud 1: sprites lie up to 270.987 m from the centre of the culling "
                                      "sphere, whose radius is 270 m.")));
}

/// An attribute in a table of a format's documentation.
struct Documented {
    std::string element, attribute, type, range;
};

std::vector<Documented> documentedAttributes(const std::string& document) {
    std::vector<Documented> found;
    std::istringstream lines(readBytes(orvo::test::sourceTree("docs/" + document), 1 << 20));
    std::string element;
    std::vector<std::string> head;
    for (std::string line; std::getline(lines, line);) {
        std::smatch name;
        if (std::regex_search(line, name, std::regex("^## (\\w+)"))) element = name[1];
        if (!line.starts_with("|")) head.clear();
        if (!line.starts_with("| ")) continue;
        std::vector<std::string> cells;
        std::istringstream row(line.substr(2));
        for (std::string cell; std::getline(row, cell, '|') && cells.size() < 5;)
            cells.push_back(std::regex_replace(cell, std::regex("^ +| +$|`"), ""));
        if (cells[0] == "attribute") head = cells;
        const auto range = std::ranges::find(head, "range") - head.begin();
        if (cells[0] == "attribute" || range == std::ssize(head) || std::ssize(cells) <= range) continue;
        found.push_back({element, cells[0], cells[1], cells[static_cast<std::size_t>(range)]});
    }
    return found;
}

// Faults: an attribute or a limit that the documentation and the inspection do not agree on.
TEST_F(Inspect, HoldsValuesToTheDocumentedRanges) {
    int limits = 0;
    struct Format {
        const char *document, *schema;
        bool onlyIntegers; ///< the schema knows no other ranges
        std::string sample;
    };
    const Format formats[] = {{"atmos-format.md", "atmos.xsd", true, sample("everything.atmos")},
                              {"cloud-files.md", "particle-cloud-library.xsd", false, sample("library.xml")}};
    const auto check = [&](const Documented& a, const Format& format, double value, bool allowed) {
        const std::string& text = format.sample;
        const bool whole = a.type == "integer" || a.type == "flag";
        const std::string number = whole ? std::to_string(static_cast<long long>(value)) : std::to_string(value);
        const std::string shown = a.type == "3 numbers" ? number + " 0 0" : number;
        const std::regex place("(<" + a.element + "\n[^<]*?\\s" + a.attribute + " *= \")[^\"]*");
        ASSERT_TRUE(std::regex_search(text, place)) << a.element << " has no " << a.attribute << " in the sample";
        write("sky.cdata", sampleData());
        const std::string file =
            write("sky.atmos", std::regex_replace(text, place, "$01" + shown, std::regex_constants::format_first_only));
        const auto problems = inspectFile(file).problems.texts();
        if (whole || !format.onlyIntegers) {
            EXPECT_EQ(followsSchema(file, format.schema), allowed) << a.attribute << " " << shown;
        }
        const auto refused =
            testing::ContainsRegex(" " + a.element + "( 1)?: " + a.attribute + " is (outside|below|neither)");
        if (allowed)
            EXPECT_THAT(problems, testing::Each(Not(refused))) << a.attribute << " " << shown;
        else
            EXPECT_THAT(problems, Contains(refused)) << a.attribute << " " << shown;
        ++limits;
    };
    for (const Format& format : formats)
        for (const Documented& a : documentedAttributes(format.document)) {
            std::smatch m;
            const double step = a.type == "integer" || a.type == "flag" ? 1 : 0.00001;
            if (std::regex_search(a.range, m, std::regex("(-?[0-9.]+) to (-?[0-9.]+)|^([0-9]), (?:1, )?([0-9])$"))) {
                const std::size_t first = m[1].matched ? 1 : 3;
                const double low = std::stod(m[first]), high = std::stod(m[first + 1]);
                check(a, format, low, true), check(a, format, high, true);
                check(a, format, low - step, false), check(a, format, high + step, false);
            } else if (std::regex_search(a.range, m, std::regex("^(from|above) ([0-9.]+)"))) {
                const double low = std::stod(m[2]);
                check(a, format, m[1] == "from" ? low : low + step, true);
                check(a, format, m[1] == "from" ? low - step : low, false);
            }
        }
    EXPECT_GT(limits, 150);
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
    EXPECT_THAT(asText(cloud), HasSubstr("  > boundRadius              315 m\n"));
    for (const std::string& text : {asText(library), asText(cloud)}) // "-1" and "4294967295"
        EXPECT_THAT(text, HasSubstr("  > seed                     4294967295\n"));
    EXPECT_THAT(cloud.notes, IsEmpty());
    // Semi-axes of a million metres: of single numbers of ten decimals, only those in metres tell it from a flat one.
    std::string large = replaced(sample("cloud.xml"), "0.0002000000", "0.0000000100");
    large = replaced(large, "-20.0000000000", "-0.0010000000");
    EXPECT_THAT(inspectFile(write("large.xml", large)).problems.texts(), IsEmpty());
}

// Faults: a schema that refuses libraries that can be written, or lets through what is not read.
TEST_F(Inspect, TheSchemaKnowsLibraries) {
    const auto valid = [&](const std::string& text) {
        return static_cast<bool>(followsSchema(write("library.xml", text), "particle-cloud-library.xsd"));
    };
    const std::string library = sample("library.xml");
    const auto part = [&](const std::string& from, const std::string& to) {
        const auto begin = library.find(from);
        return library.substr(begin, library.find(to, begin) - begin);
    };
    const std::string shape = part("\t\t<ParticleCloudSphere", "\t</ParticleCloud>");
    EXPECT_TRUE(valid(replaced(library, part("\t<ParticleCloudShading", "\t<ParticleCloud\n"), "")));
    EXPECT_TRUE(valid(replaced(replaced(library, shape, ""), shape, shape + shape)));
    EXPECT_FALSE(valid(replaced(library, "cloudColour = \"1.000000 ", "cloudColour = \"")));
    EXPECT_FALSE(valid(replaced(library, "randSeed = \"-1\"", "randSeed = \"4294967296\"")));
}

// Faults: what makes a cloud odd, but not wrong, told as a fault or not at all.
TEST_F(Inspect, NotesWhatIsOddInClouds) {
    const auto notes = [&](const std::string& from, const std::string& to) {
        const Inspection found = inspectFile(write("cloud.xml", replaced(sample("cloud.xml"), from, to)));
        EXPECT_THAT(found.problems.texts(), IsEmpty());
        return found.notes;
    };
    // Steps of 1000 and 584.8 cm in a cube of 63000 cm: 63 and 107 candidates a side.
    EXPECT_THAT(notes("10000.000000", "1000000.000000"), IsEmpty());
    EXPECT_THAT(notes("10000.000000", "5000000.000000"), ElementsAre(HasSubstr("above a million")));
    EXPECT_THAT(notes("-20.000000", "-30.000000"), ElementsAre(HasSubstr("its ground fade spans 90 m")));
    const std::string whole = sample("cloud.xml");
    const auto begin = whole.find("\t\t<ParticleCloudSphere"), end = whole.find("\t</ParticleCloud>");
    EXPECT_THAT(notes(whole.substr(begin, end - begin), ""), ElementsAre(HasSubstr("it gets no sprites")));
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
        {"cloud.xml",
         {"spriteDensity = \"10000.000000\"", "spriteDensity = \"0\"", "spriteDensity is below 1e-06: '0'"}},
        {"cloud.xml", {"<Transform", "<Transforms", "ParticleCloudSphere 1: the element <Transform> is missing"}},
        {"cloud.xml", {"z_vec", "w_vec", "the attribute 'z_vec' is missing"}},
        {"cloud.xml",
         {"-0.0000333333 0.0000000000", "0.0000000000 0.0000000000",
          "the matrix of ParticleCloudSphere 1 cannot be inverted"}},
        {"cloud.xml",
         {"pos_vec = \"-1.3", "pos_vec = \"-2.4",
          "ParticleCloudSphere 1: its centre lies outside of the bounding sphere"}},
        {"cloud.xml", {"density = \"0.500000\"", "density = \"1.500000\"", "density is outside of 0 to 1"}},
        {"cloud.xml",
         {"0.0002000000\"\n\t\t\t\ty_vec = \"0.0000000000 0.0001000000", "0.0000000001\" y_vec = \"0 0.0000000001",
          "the matrix of ParticleCloudSphere 1 cannot be inverted"}},
        {"cloud.xml", {"</ParticleCloudSphere>", "<Transform/></ParticleCloudSphere>", "more than one <Transform>"}},
        {"cloud.xml", {"-20.0000000000\"\n\t\t\t/>", "-20\"><a/></Transform>", "Transform: unknown element <a>"}},
        {"shading.xml", {"_ParticleCloudShadingParams\"", "_ParticleCloudLibrary\"", "there is no <ParticleCloud>"}},
        {"shading.xml",
         {"</Orvo", "<ParticleCloudShadingParams/></Orvo", "there is more than one <ParticleCloudShadingParams>"}},
        {"library.xml",
         {"\t<ParticleCloudShading", "<ParticleCloud/><ParticleCloudShading", "it does not stand before the clouds"}},
        {"cloud.xml", {"_ParticleCloud\"", "_ParticleCloudLibrary\"", ""}},
        {"library.xml",
         {"_ParticleCloudLibrary\"", "_ParticleCloud\"", "unknown element <ParticleCloudShadingParams>"}},
        {"library.xml", {"_ParticleCloudLibrary\"", "_ParticleCloud\"", "there are 2 <ParticleCloud>"}},
        {"shading.xml",
         {"enableSelfShadow = \"1\"", "enableSelfShadow = \"yes\"", "enableSelfShadow is not a whole number: 'yes'"}},
        {"shading.xml", {"<ParticleCloudShadingParams", "<Params", "there is no <ParticleCloudShadingParams>"}},
    };
    for (const auto& [name, fault] : faults) {
        const std::string text = replaced(sample(name), fault.from, fault.to);
        const auto problems = inspectFile(write("cloud.xml", text)).problems.texts();
        if (*fault.named)
            EXPECT_THAT(problems, Contains(HasSubstr(fault.named))) << fault.from << " -> " << fault.to;
        else
            EXPECT_THAT(problems, IsEmpty());
    }
}

// Faults: crashes, endless recursion or silence on what is no file of ours; a refusal that does not name the file.
TEST_F(Inspect, RefusesWhatItCannotRead) {
    std::string deep, closed, wide = "<a";
    for (int i = 0; i < 200000; ++i) deep += "<a>", closed += "</a>";
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
        {"<OrvoAtmosphere type='SceneDefinition' version=7/>",
         "line 1: this is no XML: Error parsing element attribute"},
        {"<OrvoAtmosphere>\n</OrvoAtmospheres>", "line 2: this is no XML: Start-end tags mismatch"},
        {"<a/><b/>", "more than one root"},
        {"<!DOCTYPE a [<!ENTITY b \"c\">]><a/>", "no XML"},
        {"<a><!-- b </a>", "no XML: Error parsing comment"},
        {deep, "no XML"},
        {deep + closed, "nested more than 64 deep"},
        {wide + "/>", "too many attributes"},
        {"<\x1B[31mred/>", "no XML"},
        {"<?xml version=\"1.0\"><a/>", "no XML: Error parsing document declaration"},
        {"<a b=\"1\"c=\"2\"/>", "no XML: Error parsing element attribute"},
        {"<a/>b", "text outside of the root"},
    };
    for (const auto& [text, named] : texts) {
        const std::string said = failure(write("odd.atmos", text));
        EXPECT_THAT(said, HasSubstr(named)) << text.substr(0, 60);
        EXPECT_THAT(said, HasSubstr("odd.atmos"));
    }
    EXPECT_THAT(inspectFile(write("marked.xml", "\xEF\xBB\xBF" + sample("shading.xml"))).problems.texts(), IsEmpty());
    EXPECT_THAT(failure(folder_.string()), HasSubstr("is a folder"));
    EXPECT_THAT(failure((folder_ / "none.atmos").string()), HasSubstr("none.atmos: the file does not exist"));
    std::filesystem::resize_file(write("huge.atmos", " "), (std::size_t{512} << 20) + 1);
    EXPECT_THAT(failure((folder_ / "huge.atmos").string()), HasSubstr("is larger than 512 MiB"));
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
    const orvo::test::OtherLocale comma; // where there is none, "C" is tried
    std::string scene = replaced(sample("everything.atmos"), "skies\\evening.tga", "a&quot;b&#27;[2J\x7F\xC2\x9B");
    scene = replaced(scene, "fogAlpha = \"1.000000\"", "fogAlpha = \"half\"");
    const Inspection found = inspectFile(writeScene(scene, sampleData()));
    const std::string text = asText(found), json = asJson(found);

    EXPECT_THAT(text, HasSubstr("    sunColour                1 0.95 0.763\n"));
    EXPECT_THAT(text, HasSubstr("    fogHeight                40 m\n"));
    EXPECT_THAT(text, HasSubstr("  > recordsEnd               48 bytes\n"));
    EXPECT_THAT(text, HasSubstr("  > farthestSprite           258.577 m\n"));
    EXPECT_THAT(text, HasSubstr("  > zeroShadowBytes          3\n"));
    EXPECT_THAT(text, HasSubstr("sky.cdata: 145 bytes, with its end mark\n"));
    EXPECT_THAT(text, HasSubstr("'a\"b\\x1B[2J\\x7F\\x9B'"));
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

    const Inspection other{.file = "\xFF.xml",
                           .type = "Modeler_ParticleCloudLibrary",
                           .data = DataFile{.file = "a", .size = 1, .endMark = false},
                           .notes = {"Odd."}};
    EXPECT_THAT(asText(other), HasSubstr(": cloud library (type Modeler_ParticleCloudLibrary, version missing)\n"));
    EXPECT_THAT(asText(other), HasSubstr("a: 1 byte, without an end mark\n\nNote: Odd.\nOK: 0 elements"));
    const auto otherJson = nlohmann::json::parse(asJson(other));
    EXPECT_EQ(otherJson["data"]["endMark"], false);
    EXPECT_EQ(otherJson["notes"], nlohmann::json({"Odd."}));
    EXPECT_EQ(otherJson["ok"], true);
}

// Faults: exit statuses that scripts would misread; the list on the wrong stream; a plug-in that is needed or loaded.
TEST_F(Inspect, AsAProgram) {
    const auto run = [&](const std::string& arguments) {
        const int status = std::system(
            ("cd '" + folder_.string() + "' && '" + orvo::test::program() + "' inspect " + arguments + " >out 2>err")
                .c_str());
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
