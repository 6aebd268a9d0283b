// Pictures beyond a view of 8 bits: of all directions, of light, with alpha, with smooth edges.
#include "ProgramFixture.h"

#include "images/ImageCodec.h"
#include "viewport/Picture.h"

#include <array>
#include <cmath>
#include <numbers>

namespace {

using host::viewport::Picture;
using testing::HasSubstr;
using Direction = std::array<double, 3>;

/// The colours of an image, as floats.
struct Floats {
    int width = 0, height = 0, channels = 0;
    std::vector<float> values;
    const float* at(int x, int y) const {
        return &values[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
                       static_cast<std::size_t>(channels)];
    }
};

class Pictures : public Program {
protected:
    void render(const std::string& scene, const std::string& target, std::vector<std::string> options) {
        std::vector<std::string> words{"render", scene, target};
        words.insert(words.end(), options.begin(), options.end());
        const Outcome o = run(words);
        ASSERT_EQ(o.status, 0) << target << o.error;
    }
    Floats floats(const std::string& name) {
        std::string error;
        const auto image = host::images::openImage((folder_ / name).string(), error);
        EXPECT_TRUE(image) << error;
        if (!image) return {};
        Floats read{image->width, image->height, image->channels, {}};
        read.values.resize(static_cast<std::size_t>(read.width * read.height * read.channels));
        const auto step = static_cast<std::ptrdiff_t>(sizeof(float)) * read.channels;
        EXPECT_EQ(image->read(read.channels, true, read.values.data(), step, step * read.width), "");
        return read;
    }
    Picture bytes(const std::string& name) {
        std::string error;
        const auto picture = Picture::read((folder_ / name).string(), &error);
        EXPECT_TRUE(picture) << error;
        return picture.value_or(Picture());
    }
};

/// A direction by azimuth and elevation in degrees, as --look has them.
Direction towards(double azimuth, double elevation) {
    constexpr double degree = std::numbers::pi / 180;
    const double a = azimuth * degree, e = elevation * degree;
    return {std::sin(a) * std::cos(e), std::sin(e), -std::cos(a) * std::cos(e)};
}

// Faults: a seam where faces or the first and the last column meet, a hole at a pole, clouds, fog or meshes that the
// faces show differently. Every view of the scene, over edges, corners and poles, is in the panorama.
TEST_F(Pictures, PanoramaShowsWhatViewsShow) {
    const std::string scene = orvo::test::sourceTree("examples/project/scenes/dusk.ma");
    constexpr int width = 1024, size = 96;
    render(scene, "all.png", {"--panorama", "--size", std::to_string(width), "--look", "20,0"});
    const Picture all = bytes("all.png");
    ASSERT_EQ(all.width, width);
    ASSERT_EQ(all.height, width / 2);
    for (const auto& [azimuth, elevation] : {std::pair(45, 30), std::pair(135, 35), std::pair(225, 0),
                                             std::pair(200, 10), std::pair(0, 85), std::pair(90, -80)}) {
        const std::string look = std::to_string(azimuth) + "," + std::to_string(elevation);
        render(scene, "view.png",
               {"--look", look, "--fov", "60", "--size", std::to_string(size) + "x" + std::to_string(size)});
        const Picture view = bytes("view.png");
        const Direction ahead = towards(azimuth, elevation), up = towards(azimuth, elevation + 90),
                        right = towards(azimuth + 90, 0);
        const double reach = std::tan(std::numbers::pi / 6);
        double sum = 0;
        int wrong = 0;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) {
                const double u = ((x + 0.5) / size * 2 - 1) * reach, v = (1 - (y + 0.5) / size * 2) * reach;
                Direction d;
                for (std::size_t k = 0; k < 3; ++k) d[k] = ahead[k] + right[k] * u + up[k] * v;
                const double turn = std::atan2(d[0], -d[2]) / (2 * std::numbers::pi) - 20.0 / 360 + 0.5;
                const double rise = std::atan2(d[1], std::hypot(d[0], d[2])) / std::numbers::pi;
                const int column = static_cast<int>((turn - std::floor(turn)) * width) % width;
                const int row = std::min(static_cast<int>((0.5 - rise) * width / 2), width / 2 - 1);
                int off = 0;
                for (int k = 0; k < 3; ++k) off = std::max(off, std::abs(view.at(x, y)[k] - all.at(column, row)[k]));
                sum += off;
                wrong += off > 32;
            }
        EXPECT_LT(sum / (size * size), 3) << look;
        EXPECT_LT(wrong, size * size / 100) << look;
    }
}

/// Where the brightest pixel of a picture is, in rows and columns.
std::pair<int, int> brightest(const Floats& picture, int fromRow, int toRow) {
    std::pair<int, int> place;
    float most = -1;
    for (int y = fromRow; y < toRow; ++y)
        for (int x = 0; x < picture.width; ++x)
            if (const float* p = picture.at(x, y); p[0] + p[1] + p[2] > most) {
                most = p[0] + p[1] + p[2];
                place = {x, y - fromRow};
            }
    return place;
}

// Faults: faces in another order, turned, or mirrored. The sun stands off the middle of one face after the other; where
// it is seen follows from OpenGL's table of cube map faces, and from the code of OpenEXR's ImfEnvmap.
TEST_F(Pictures, CubesLieAsTheirReadersTakeThem) {
    constexpr int size = 33;
    const Direction suns[] = {{1, 0.5, -0.2},  {-1, 0.5, -0.2}, {0.5, 1, -0.2},
                              {0.5, -1, -0.2}, {0.5, -0.2, 1},  {0.5, -0.2, -1}};
    // The part of the direction that is s and t of each face, with its sign.
    const int textures[6][4] = {{2, -1, 1, -1}, {2, 1, 1, -1}, {0, 1, 2, 1},
                                {0, 1, 2, -1},  {0, 1, 1, -1}, {0, -1, 1, -1}};
    const int envmaps[6][4] = {{2, 1, 1, -1}, {2, -1, 1, -1}, {0, 1, 2, -1},
                               {0, 1, 2, 1},  {0, -1, 1, -1}, {0, 1, 1, -1}};
    std::string script = "createNode transform -n OrvoSkyData; createNode transform -n s -p OrvoSkyData;\n"
                         "createNode orvosky_BasicSkyLocator -n sky -p s; createNode orvosky_SkyRenderer;\n"
                         "setAttr sky.sunDiskSize 0; setAttr sky.sunDiskFalloff 50; setAttr sky.sunDiskWeight 2;\n"
                         "setAttr sky.zenithColour 0 0 0; setAttr sky.horizonColour 0 0 0; setAttr persp.r 10 20 30;\n";
    for (std::size_t k = 0; k < 3; ++k) {
        const std::string curve = "c" + std::to_string(k);
        script += "createNode animCurveTU -n " + curve + ";";
        for (int f = 0; f < 6; ++f)
            script += "setAttr " + curve + ".ktv[" + std::to_string(f) + "] " + std::to_string(f + 1) + " " +
                      std::to_string(suns[f][k]) + ";";
        script += "connectAttr " + curve + ".output sky.sunDir" + std::to_string(k) + ";\n";
    }
    write(folder_ / "sun.mel", script);
    render("sun.mel", "c#.exr", {"--cube", "--size", std::to_string(size), "--frames", "1-6"});
    render("sun.mel", "c#.DDS", {"--cube", "--size", std::to_string(size), "--frames", "1-6"});
    render("sun.mel", "c#.png", {"--cube", "--size", std::to_string(size), "--frames", "1-6"});
    const char* names[] = {"px", "nx", "py", "ny", "pz", "nz"};
    for (int f = 0; f < 6; ++f) {
        const std::string number = std::to_string(f + 1), name = "c" + number;
        const auto place = [&](const int(&face)[4], double last) {
            const auto at = [&](int axis, int sign) {
                return (suns[f][static_cast<std::size_t>(axis)] * sign + 1) / 2 * last + (last < size ? 0 : -0.5);
            };
            return std::pair(at(face[0], face[1]), at(face[2], face[3]));
        };
        const auto [s, t] = place(textures[f], size);
        const auto [x, y] = brightest(floats(name + "." + names[f] + ".png"), 0, size);
        EXPECT_NEAR(x, s, 1) << name;
        EXPECT_NEAR(y, t, 1) << name;
        const auto [es, et] = place(envmaps[f], size - 1);
        const Floats stack = floats(name + ".exr");
        ASSERT_EQ(stack.height, 6 * size);
        const auto [ex, ey] = brightest(stack, f * size, (f + 1) * size);
        EXPECT_NEAR(ex, es, 1) << name;
        EXPECT_NEAR(ey, et, 1) << name;
        // The same pixels in both files of textures: blue, green, red, alpha behind the header, face after face.
        const std::string dds = content(folder_ / (name + ".DDS"));
        ASSERT_EQ(dds.size(), 128u + 6 * 4 * size * size);
        const Picture png = bytes(name + "." + names[f] + ".png");
        const std::size_t pixel = 128 + 4 * static_cast<std::size_t>((f * size + y) * size + x);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(static_cast<std::uint8_t>(dds[pixel + static_cast<std::size_t>(k)]), png.at(x, y)[2 - k]) << name;
    }
    EXPECT_THAT(content(folder_ / "c1.exr"), HasSubstr("envmap"));
    EXPECT_THAT(
        run({"render", "sun.mel", "c#.DDS", "--cube", "--size", std::to_string(size), "--frames", "1-7", "--continue"})
            .out,
        HasSubstr("7 frames: 1 rendered, 6 were there"));
}

// Fault: clouds that one face shows up to its edge and the next one does not. In OpenEXR's cube maps the outermost
// pixels of neighbouring faces show the same directions.
TEST_F(Pictures, FacesAgreeAtTheirEdges) {
    constexpr int size = 257;
    render(orvo::test::sourceTree("examples/project/scenes/dusk.ma"), "c.exr",
           {"--cube", "--size", std::to_string(size)});
    const Floats stack = floats("c.exr");
    ASSERT_EQ(stack.height, 6 * size);
    // Neighbours: left and right columns of faces by number (+X -X +Y -Y +Z -Z); then the bottom row of +Y and -Z's
    // top.
    const int sides[4][2] = {{0, 5}, {5, 1}, {1, 4}, {4, 0}};
    double sum = 0;
    int apart = 0, count = 0;
    const auto compare = [&](const float* a, const float* b) {
        double off = 0;
        for (int k = 0; k < 3; ++k)
            off = std::max(off,
                           std::abs(std::sqrt(std::max(0.0, double(a[k]))) - std::sqrt(std::max(0.0, double(b[k])))));
        sum += off;
        apart += off > 0.06;
        ++count;
    };
    for (const auto& [left, right] : sides)
        for (int y = 0; y < size; ++y) compare(stack.at(0, left * size + y), stack.at(size - 1, right * size + y));
    for (int x = 0; x < size; ++x) compare(stack.at(x, 3 * size - 1), stack.at(x, 5 * size));
    EXPECT_LT(sum / count, 0.004);
    EXPECT_LT(apart, count / 100);
}

/// A sky of one colour.
const char* const plainSky = "createNode transform -n OrvoSkyData; createNode transform -n s -p OrvoSkyData;\n"
                             "createNode orvosky_BasicSkyLocator -n sky -p s; createNode orvosky_SkyRenderer;\n"
                             "setAttr sky.zenithColour 0.1 0.5 2; setAttr sky.horizonColour 0.1 0.5 2;\n"
                             "setAttr sky.sunEnable 0;\n";

// Faults: light that is clipped, or not light; a file that does not say what it holds; 8 bits that are not the picture
// that the light gives, where nothing translucent covers what is beyond white. 2 in linear light: ((2 + 0.055)
// / 1.055)^2.4, by IEC 61966-2-1 carried on.
TEST_F(Pictures, FilesOfLightHoldLinearLight) {
    write(folder_ / "plain.mel", plainSky);
    for (const char* name : {"a.exr", "a.hdr"}) {
        render("plain.mel", name, {"--size", "16x9"});
        const Floats light = floats(name);
        const float* p = light.at(8, 4);
        // hdr files keep eight bits of the largest of the three, which they cut off.
        const double step = name == std::string("a.hdr") ? 8.0 / 256 : 0.0002;
        EXPECT_NEAR(p[0], 0.01002, step) << name;
        EXPECT_NEAR(p[1], 0.21404, step) << name;
        EXPECT_NEAR(p[2], 4.9538, std::max(step, 0.002)) << name;
        const std::string file = content(folder_ / name);
        for (const char* told : {"linear light, Rec. 709", "plain.mel", "orvosky"}) EXPECT_THAT(file, HasSubstr(told));
        EXPECT_THAT(file, testing::AnyOf(HasSubstr("EXPOSURE=1\n"), HasSubstr("Exposure")));
    }
    const std::string scene = orvo::test::sourceTree("examples/project/scenes/evening.ma");
    render(scene, "e.exr", {"--size", "64x36", "--set", "valleyFogShape.Enable=off"});
    render(scene, "e.png", {"--size", "64x36", "--set", "valleyFogShape.Enable=off"});
    const Floats light = floats("e.exr");
    const Picture shown = bytes("e.png");
    for (int y = 0; y < 36; ++y)
        for (int x = 0; x < 64; ++x)
            for (int k = 0; k < 3; ++k) {
                const double v = light.at(x, y)[k];
                const double encoded = v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
                ASSERT_NEAR(std::clamp(encoded, 0.0, 1.0) * 255, shown.at(x, y)[k], 1.01) << x << ' ' << y;
            }
}

// Faults: alpha that counts what shines as cover, or counts cover twice; colours multiplied by it in formats that have
// them unmultiplied. Fog of half alpha seen downward covers half, whatever it is drawn on.
TEST_F(Pictures, AlphaIsWhatCovers) {
    const std::string fog = "createNode transform -n OrvoSkyData; createNode transform -n f -p OrvoSkyData;\n"
                            "createNode orvosky_ExpHeightFog -n fog -p f; createNode orvosky_SkyRenderer;\n"
                            "setAttr fog.fogAlpha 0.5; setAttr fog.fogColour 0.8 0.4 0.2;\n";
    write(folder_ / "fog.mel", fog);
    render("fog.mel", "a.png", {"--size", "16x9", "--look", "0,-60", "--alpha"});
    const Picture picture = bytes("a.png");
    ASSERT_EQ(picture.channels, 4);
    const int expected[] = {204, 102, 51, 128};
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(picture.at(8, 4)[k], expected[k], 1);
    render("fog.mel", "a.exr", {"--size", "16x9", "--look", "0,-60", "--alpha"});
    const Floats light = floats("a.exr");
    ASSERT_EQ(light.channels, 4);
    const double linear[] = {0.6038 / 2, 0.1329 / 2, 0.0331 / 2, 0.5}; // multiplied by alpha, as exr files have it
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(light.at(8, 4)[k], linear[k], 0.001);
    write(folder_ / "cube.mel",
          "polyCube -w 2 -h 2 -d 2; setAttr persp.t 0 0 6; setAttr persp.r 0 0 0; setAttr pCube1.rz 20;");
    render("cube.mel", "c.png", {"--size", "64x36", "--alpha", "--samples", "16"});
    const Picture cube = bytes("c.png");
    EXPECT_EQ(cube.at(0, 0)[3], 0);
    EXPECT_EQ(cube.at(32, 18)[3], 255);
    std::set<int> covers;
    for (int y = 0; y < 36; ++y)
        for (int x = 0; x < 64; ++x) covers.insert(cube.at(x, y)[3]);
    EXPECT_GT(covers.size(), 8u) << "edges are smooth";
}

// Faults: a seam, a shift or a mirroring where the parts of a picture meet; a part that shows the sky, the clouds or
// the meshes of another place; rows or columns that no part covers. A picture drawn in parts is the one drawn at once.
TEST_F(Pictures, PartsMakeTheWhole) {
    const std::string scene = orvo::test::sourceTree("examples/project/scenes/dusk.ma");
    write(folder_ / "scene.mel",
          "file -f -open \"" + scene + "\"; polySphere -r 300; setAttr pSphere1.t 500 2100 -900;\n");
    const std::vector<std::string> kinds[] = {{"a.png", "--size", "150x86"},
                                              {"b.png", "--size", "70x42", "--samples", "9", "--alpha"},
                                              {"c.exr", "--panorama", "--size", "200"},
                                              {"d.exr", "--cube", "--size", "50"},
                                              {"e.png", "--cube", "--size", "50"}};
    for (auto words : kinds) {
        const std::string target = words[0];
        words.insert(words.begin(), {"render", "scene.mel"});
        words.insert(words.end(), {"--project", orvo::test::sourceTree("examples/project")});
        Outcome o = run(words);
        ASSERT_EQ(o.status, 0) << o.error;
        words[2] = "part-" + target;
        o = run(words, {{"ORVOSKY_TILE", "32"}});
        ASSERT_EQ(o.status, 0) << o.error;
        for (const char* face : target[0] == 'e' ? std::vector{".px.png", ".py.png", ".nz.png"} : std::vector{""}) {
            const std::string name = *face ? fs::path(target).stem().string() + face : target;
            const Floats whole = floats(name), parts = floats("part-" + name);
            ASSERT_EQ(whole.width, parts.width);
            ASSERT_EQ(whole.values.size(), parts.values.size());
            std::size_t off = 0, far = 0;
            float least = 1e9f, most = 0;
            for (std::size_t i = 0; i < whole.values.size(); ++i) {
                const float by = std::abs(whole.values[i] - parts.values[i]) / std::max(1.0f, whole.values[i]) * 255;
                off += by > 1.01f;
                far += by > 24;
                least = std::min(least, whole.values[i]);
                most = std::max(most, whole.values[i]);
            }
            // Edges of meshes and sprites may fall on another sample, textures of them between other levels.
            EXPECT_LE(off, whole.values.size() / 100) << name;
            EXPECT_LE(far, 6U) << name;
            EXPECT_GT(most - least, 0.3f) << name;
        }
    }
    EXPECT_THAT(run({"render", "small.ma", "a.png"}, {{"ORVOSKY_TILE", "x"}}).error,
                HasSubstr("ORVOSKY_TILE is \"x\""));
}

// Faults: options that contradict each other taken; a size beyond what can be drawn tried; a format without alpha.
TEST_F(Pictures, RefusesWhatCannotBeDrawn) {
    const std::vector<std::vector<std::string>> wrong{{"a.png", "--panorama", "--cube"},
                                                      {"a.png", "--panorama", "--fov", "60"},
                                                      {"a.png", "--panorama", "--size", "100x60"},
                                                      {"a.png", "--panorama", "--size", "32769"},
                                                      {"a.png", "--panorama", "--look", "10,5"},
                                                      {"a.png", "--cube", "--look", "10,0"},
                                                      {"a.png", "--cube", "--size", "1"},
                                                      {"a.png", "--size", "64"},
                                                      {"a.png", "--size", "32769x10"},
                                                      {"a.png", "--size", "32768x16385"},
                                                      {"a.dds"},
                                                      {"a.DDS"},
                                                      {"a.png", "--samples", "5"},
                                                      {"a.png", "--samples", "81"}};
    for (const auto& words : wrong) {
        std::vector<std::string> line{"render", "small.ma"};
        line.insert(line.end(), words.begin(), words.end());
        EXPECT_EQ(run(line).status, 2) << testing::PrintToString(words);
    }
    const std::tuple<std::vector<std::string>, const char*> failing[] = {
        {{"a.jpg", "--alpha"}, "have no alpha"},
        {{"a.png", "--camera", "nobody"}, "There is no camera named nobody."},
        {{"a.png", "--panorama", "--camera", "top"}, "is orthographic"}};
    for (const auto& [words, said] : failing) {
        std::vector<std::string> line{"render", "small.ma"};
        line.insert(line.end(), words.begin(), words.end());
        const Outcome o = run(line);
        EXPECT_EQ(o.status, 1);
        EXPECT_THAT(o.error, HasSubstr(said));
        EXPECT_FALSE(fs::exists(folder_ / words[0]));
    }
}

} // namespace
