// What lies in the pictures that the program renders.
#include "ProgramFixture.h"

#include "viewport/Picture.h"

#include <algorithm>
#include <set>
#include <sstream>

namespace {

using host::viewport::Picture;
using testing::HasSubstr;

class Rendering : public Program {
protected:
    Picture render(const std::string& scene, std::vector<std::string> options = {}) {
        std::vector<std::string> words{"render", scene, "out.png", "--size", "64x36"};
        words.insert(words.end(), options.begin(), options.end());
        const Outcome o = run(words);
        EXPECT_EQ(o.status, 0) << o.error;
        std::string error;
        const auto picture = Picture::read((folder_ / "out.png").string(), &error);
        EXPECT_TRUE(picture) << error;
        return picture.value_or(Picture());
    }
    static std::set<int> colours(const Picture& picture) {
        std::set<int> found;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const auto* p = picture.at(x, y);
                found.insert(p[0] << 16 | p[1] << 8 | p[2]);
            }
        return found;
    }
};

struct LookCase {
    const char* sun; ///< direction towards it
    std::vector<std::string> options;
    double x, y; ///< where it is seen, in pixels from the top left
};

// Faults: an azimuth that runs the other way or begins elsewhere, an elevation or an angle of view of another meaning,
// the camera's own turn that remains. With a width of 90 degrees a pixel is 1/32 of a unit at the distance of 1.
TEST_F(Rendering, LooksWhereItIsTold) {
    write(folder_ / "sun.mel",
          "createNode transform -n OrvoSkyData; createNode transform -n s -p OrvoSkyData;\n"
          "createNode orvosky_BasicSkyLocator -n sky -p s; createNode orvosky_SkyRenderer;\n"
          "setAttr sky.sunDiskSize 0.3; setAttr sky.sunDiskFalloff 50; setAttr sky.sunDiskWeight 2;\n"
          "setAttr sky.zenithColour 0 0 0; setAttr sky.horizonColour 0 0 0; setAttr persp.r 10 20 30;\n");
    const double thirty = std::tan(std::acos(-1.0) / 6);
    for (const LookCase& c : {LookCase{"0 0 -1", {"--look", "0,0", "--fov", "90"}, 32, 18},
                              {"1 0 0", {"--look", "60,0", "--fov", "90"}, 32 + 32 * thirty, 18},
                              {"0 0 1", {"--look=-180,-30", "--fov", "120"}, 32, 18 - 32 * thirty * thirty},
                              {"-1 1 0", {"--look", "270,45"}, 32, 18}}) {
        write(folder_ / "turned.mel", content(folder_ / "sun.mel") + "setAttr sky.sunDir " + c.sun + ";\n");
        const Picture picture = render("turned.mel", c.options);
        double x = 0, y = 0, weight = 0;
        for (int row = 0; row < picture.height; ++row)
            for (int column = 0; column < picture.width; ++column) {
                if (picture.at(column, row)[0] < 200) continue;
                x += column + 0.5;
                y += row + 0.5;
                ++weight;
            }
        EXPECT_NEAR(x / weight, c.x, 1) << c.sun;
        EXPECT_NEAR(y / weight, c.y, 1) << c.sun;
    }
    const Outcome o = run({"render", "sun.mel", "a.png", "--camera", "top", "--fov", "20"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("orthographic"));
    for (const char* wrong : {"--look=1", "--look=1,91", "--look=nan,0", "--look=1,2,3", "--fov=0", "--fov=180"})
        EXPECT_EQ(run({"render", "sun.mel", "a.png", wrong}).status, 2) << wrong;
}

// Faults: wires over the sky, or none where they are asked for.
TEST_F(Rendering, ShowsAidsWhenAskedTo) {
    write(folder_ / "aids.mel", "file -f -open \"small.ma\";\n"
                                "createNode orvosky_ParticleCloudSphere -n ball -p renderer1;\n"
                                "setAttr renderer1.s 4 4 4; setAttr skyShape.horizonColour 0 0 0.2;\n"
                                "setAttr skyShape.zenithColour 0 0 0.2; setAttr skyShape.sunEnable 0;\n");
    const Picture plain = render("aids.mel"), aids = render("aids.mel", {"--helpers"});
    EXPECT_EQ(colours(plain).size(), 1u);
    EXPECT_GT(colours(aids).size(), 1u);
}

// Faults: an example in the README that does not work as it stands, or shows nothing.
TEST_F(Rendering, ReadmesExampleWorks) {
    std::istringstream readme(content(orvo::test::sourceTree("README.md")));
    std::vector<std::string> blocks;
    bool within = false, own = false, inBlock = false;
    for (std::string line; std::getline(readme, line);) {
        if (line.starts_with("## ")) own = line == "## A sky of your own";
        within = own && line.starts_with("    ");
        if (within && !inBlock) blocks.emplace_back();
        if (within) blocks.back() += line.substr(4) + "\n";
        inBlock = within || (inBlock && line.empty());
    }
    ASSERT_EQ(blocks.size(), 2u) << "a scene, and what is done with it";
    write(folder_ / "my.mel", blocks[0]);
    const std::string shell = "cd '" + folder_.string() + "' && PATH='" +
                              fs::path(orvo::test::program()).parent_path().string() +
                              "':$PATH ASAN_OPTIONS=detect_leaks=0 sh -ec '" + blocks[1] + "' > said 2> wrong";
    EXPECT_EQ(std::system(shell.c_str()), 0) << content(folder_ / "wrong");
    EXPECT_EQ(content(folder_ / "wrong"), "");
    EXPECT_THAT(content(folder_ / "my.atmos"), HasSubstr("<BasicSky\n"));
    const auto picture = Picture::read((folder_ / "my.png").string());
    ASSERT_TRUE(picture);
    EXPECT_GT(colours(*picture).size(), 50u) << "a sky, its halo, and fog";
}

} // namespace
