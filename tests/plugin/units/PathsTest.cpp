#include "Common/Paths.h"

#include <gtest/gtest.h>

using namespace orvo;

namespace {

struct RelativeCase {
    const char *root, *path;
    bool isUnder;
    const char* result;
    friend void PrintTo(const RelativeCase& c, std::ostream* out) { *out << c.path << " below " << c.root; }
};

struct BuildCase {
    const char* path;
    bool stripped;
    const char* result;
    friend void PrintTo(const BuildCase& c, std::ostream* out) { *out << testing::PrintToString(std::string(c.path)); }
};

class RelativePath : public testing::TestWithParam<RelativeCase> {};
class BuildFolder : public testing::TestWithParam<BuildCase> {};

} // namespace

TEST(Paths, RootOfWorkspaceLosesArtSource) {
    EXPECT_EQ(rootOfWorkspace("D:/Game/ArtSource/"), "D:/Game/");
    EXPECT_EQ(rootOfWorkspace("artsource/"), "artsource/") << "nothing would be left";
    EXPECT_EQ(rootOfWorkspace("/home/a/project/"), "/home/a/project/");
    EXPECT_EQ(rootOfWorkspace("D:/Game/ArtSource"), "D:/Game/ArtSource") << "no separator at the end";
    EXPECT_EQ(rootOfWorkspace(""), "");
}

TEST_P(RelativePath, IsShortened) {
    std::string path = GetParam().path;
    EXPECT_EQ(makeRelativeTo(GetParam().root, path), GetParam().isUnder);
    EXPECT_EQ(path, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, RelativePath,
    testing::Values(RelativeCase{"D:/Game/", "D:/Game//Build/Textures/Sky.dds", true, "build\\textures\\sky.dds"},
                    RelativeCase{"D:/Game/", "d:\\GAME\\Build\\Sky.dds", true, "build\\sky.dds"},
                    RelativeCase{"D:/Game", "D:/Game/Build/a.dds", true, "build\\a.dds"},
                    RelativeCase{"D:/Game/", "E:/Other/Sky.DDS", false, "E:/Other/Sky.DDS"},
                    RelativeCase{"D:/Game/", "//Server/Share/Sky.DDS", false, "Server/Share/Sky.DDS"},
                    RelativeCase{"D:/Game/", "D:/Game/", false, "D:/Game/"},
                    RelativeCase{"", "/Any//Path/X.tga", true, "any\\path\\x.tga"}, RelativeCase{"", "", false, ""}));

TEST_P(BuildFolder, IsStripped) {
    std::string path = GetParam().path;
    EXPECT_EQ(stripBuildFolder(path), GetParam().stripped);
    EXPECT_EQ(path, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Paths, BuildFolder,
                         testing::Values(BuildCase{"build\\textures\\sky.dds", true, "textures\\sky.dds"},
                                         BuildCase{"BUILD/a", true, "a"}, BuildCase{"build\\", false, "build\\"},
                                         BuildCase{"builds\\a", false, "builds\\a"}, BuildCase{"", false, ""},
                                         BuildCase{"art\\build\\a", false, "art\\build\\a"}));

TEST(Paths, JoiningKeepsDrivePathsAndCollapsesOthers) {
    std::string path = "build/textures//sky.dds";
    EXPECT_TRUE(joinToRoot("D:/Game/", path));
    EXPECT_EQ(path, "D:\\Game\\build\\textures\\sky.dds");
    std::string absolute = "E:/x//y";
    EXPECT_FALSE(joinToRoot("D:/Game/", absolute));
    EXPECT_EQ(absolute, "E:/x//y");
}
