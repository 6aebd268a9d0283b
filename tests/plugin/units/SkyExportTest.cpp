#include "SkyTool/export/SkyExport.h"

#include "MessageLog.h"
#include "kit/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <map>

using namespace orvo;
namespace fs = std::filesystem;
using testing::ElementsAre;

namespace {

/// A sky node that writes its name as an element. "saves" and "bytes" stand for what a real one does.
struct FakeNode : ExportNode {
    bool enabled = true, saves = true;
    std::vector<unsigned char> bytes;
    std::string name;
    bool isEnabled() override { return enabled; }
};

std::map<std::string, FakeNode> nodes;

/// The real kinds' names, over fake nodes.
SkyNodeKindTable fakeKinds() {
    SkyNodeKindTable kinds = skyNodeKinds();
    for (SkyNodeKindRow& row : kinds) {
        row.operations.find = [](const MString& name) -> ExportNode* {
            const auto found = nodes.find(name.asChar());
            return found == nodes.end() ? nullptr : &found->second;
        };
        row.operations.save = [](ExportNode& node, SkyExportTarget& target, const char* indent) {
            const auto& fake = static_cast<FakeNode&>(node);
            target.file.print("%s<%s/>\n", indent, fake.name);
            target.cloudVertices.insert(target.cloudVertices.end(), fake.bytes.begin(), fake.bytes.end());
            return fake.saves;
        };
    }
    return kinds;
}

class SkyExport : public testing::Test {
protected:
    SkyExport() { nodes.clear(); }

    FakeNode& add(SkyNodeKind kind, const std::string& name) {
        records_.push_back({kind, MObject(), MString(name.c_str())});
        nodes[name].name = name;
        return nodes[name];
    }
    std::string path(const char* name) const { return (folder_ / name).string(); }
    bool write(const char* name = "s.atmos") { return writeSkyFiles(path(name), records_, fakeKinds()); }
    std::string read(const char* name) const { return folder_.read(name); }

    orvo::test::TemporaryFolder folder_;
    std::vector<SkyNodeRecord> records_;
    MessageLog log_;
};

} // namespace

TEST_F(SkyExport, ExtensionIsTestedInAnyCaseAndNeedsAName) {
    EXPECT_TRUE(hasAtmosExtension("a.atmos") && hasAtmosExtension("/x/y.Atmos"));
    EXPECT_FALSE(hasAtmosExtension(".atmos") || hasAtmosExtension("a.atmos.bak") || hasAtmosExtension("atmos") ||
                 hasAtmosExtension(""));
    std::string cdata;
    EXPECT_TRUE(cdataPathOf("X.ATMOS", cdata));
    EXPECT_EQ(cdata, "X.cdata");
}

// Catches elements in record order instead of kind order, and clouds before skies.
TEST_F(SkyExport, ElementsComeByKindAndThenInRecordOrder) {
    for (const auto kind :
         {kParticleCloudKind, kCloudShadingParamsKind, kSpriteCloudKind, kSceneFogKind, kExpHeightFogKind,
          kTexturedSkyKind, kGradientSkyKind, kParticleCloudDomeKind, kBasicSkyKind, kSkySceneSettingsKind})
        add(kind, "k" + std::to_string(kind));
    add(kBasicSkyKind, "second");
    ASSERT_TRUE(write());
    EXPECT_EQ(read("s.atmos"), "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<OrvoAtmosphere\n"
                               "\ttype = \"SceneDefinition\"\n\tversion = \"7\"\n\t>\n"
                               "\t<k10/>\n\t<k2/>\n\t<second/>\n\t<k3/>\n\t<k4/>\n\t<k6/>\n\t<k5/>\n\t<k11/>\n"
                               "\t<k9/>\n\t<k8/>\n\t<k7/>\n</OrvoAtmosphere>\n");
    EXPECT_THAT(log_.all(), ElementsAre("Info: SaveSkySystemToXML:  Export to file [" + path("s.atmos") +
                                        "] completed successfully.\n"));
    EXPECT_FALSE(fs::exists(folder_ / "s.cdata")) << "no vertex data, no file";
}

TEST_F(SkyExport, ShadingParametersWithoutCloudsAreLeftOut) {
    add(kSkySceneSettingsKind, "settings");
    add(kCloudShadingParamsKind, "shading");
    ASSERT_TRUE(write());
    EXPECT_THAT(read("s.atmos"), testing::Not(testing::HasSubstr("shading")));
}

// Catches a forgotten end mark, and a size without it.
TEST_F(SkyExport, CloudBytesGoToTheDataFileWithAnEndMark) {
    add(kSkySceneSettingsKind, "settings");
    add(kParticleCloudKind, "cloud").bytes = {9, 0, 8};
    ASSERT_TRUE(write("s.ATMOS"));
    EXPECT_EQ(read("s.cdata"), std::string("\x09\x00\x08\x01", 4));
    EXPECT_THAT(read("s.ATMOS"), testing::HasSubstr("\t<cloud/>\n\t<CloudVertData\n\t\tsize = \"4\"\n\t/>\n</Orvo"));
}

TEST_F(SkyExport, AFailingNodeNamesItsKindAndLeavesWhatWasWritten) {
    add(kSkySceneSettingsKind, "settings");
    add(kParticleCloudDomeKind, "dome").saves = false;
    EXPECT_FALSE(write());
    EXPECT_THAT(log_.all(), ElementsAre("Error: ParticleCloudDome failure to save to XML"));
    EXPECT_THAT(read("s.atmos"), testing::EndsWith("\t<dome/>\n"));
}

TEST_F(SkyExport, ANodeThatIsNotFoundNamesItsKind) {
    const std::pair<SkyNodeKind, const char*> kinds[] = {
        {kSkySceneSettingsKind, "SkySceneSettings"}, {kBasicSkyKind, "BasicSky"},
        {kGradientSkyKind, "GradientSky"},           {kTexturedSkyKind, "TexturedSky"},
        {kExpHeightFogKind, "ExpHeightFog"},         {kSceneFogKind, "SceneFog"},
        {kSpriteCloudKind, "SpriteCloud"},           {kParticleCloudKind, "ParticleCloud"}};
    for (const auto& [kind, name] : kinds) {
        log_.clear();
        records_ = {{kind, MObject(), MString("gone")}};
        EXPECT_FALSE(write());
        EXPECT_THAT(log_.all(), ElementsAre("Error: " + std::string(name) + " failure to save to XML"));
    }
}

TEST_F(SkyExport, FilesThatCannotBeOpenedOrFilledAreErrors) {
    add(kSkySceneSettingsKind, "settings");
    add(kParticleCloudKind, "cloud").bytes = {1};
    EXPECT_FALSE(write("no folder/s.atmos"));
    fs::create_symlink("/dev/full", folder_ / "full.cdata");
    EXPECT_FALSE(write("full.atmos"));
    fs::create_directory(folder_ / "dir.cdata");
    EXPECT_FALSE(write("dir.atmos"));
    fs::create_symlink("/dev/full", folder_ / "disk.atmos");
    EXPECT_FALSE(write("disk.atmos"));
    EXPECT_THAT(log_.all(), ElementsAre("Error: SaveSkySystemToXML:  Cannot open atmos file for write",
                                        "Error: SaveSkySystemToXML:  Cannot write cdata file",
                                        "Error: SaveSkySystemToXML:  Cannot open cdata file for write",
                                        "Error: SaveSkySystemToXML:  Cannot write atmos file"));
}

TEST_F(SkyExport, DisabledAndTemplatedNodesAreFilteredButNotSettings) {
    add(kSkySceneSettingsKind, "settings").enabled = false;
    add(kCloudShadingParamsKind, "shading").enabled = false;
    add(kBasicSkyKind, "disabled").enabled = false;
    add(kBasicSkyKind, "templated");
    add(kBasicSkyKind, "kept");
    records_.push_back({kGradientSkyKind, MObject(), MString("unknown")});
    std::vector<std::string> names;
    for (const auto& record : exportableNodes(records_, fakeKinds(), [](const SkyNodeRecord& record) {
             return record.fullPathName == "templated" || record.kind == kSkySceneSettingsKind;
         }))
        names.push_back(record.fullPathName.asChar());
    EXPECT_THAT(names, ElementsAre("settings", "shading", "kept", "unknown"));
}

// Catches checks in another order than documented: the first fault of several is the one that is told.
TEST_F(SkyExport, CountsAreCheckedInOrder) {
    SkyNodeCounts counts{};
    const auto error = [&] { return std::string(countError(counts) ? countError(counts) : ""); };
    EXPECT_EQ(error(), "SaveSkySystemToXML:  No sky settings found\n");
    counts.fill(2);
    EXPECT_EQ(error(), "SaveSkySystemToXML:  More than 1 sky settings found\n");
    counts[kSkySceneSettingsKind] = 1;
    EXPECT_EQ(error(), "SaveSkySystemToXML:  More than 1 exp height fog node found\n");
    counts[kExpHeightFogKind] = 1;
    EXPECT_EQ(error(), "SaveSkySystemToXML:  More than 1 scene fog node found\n");
    counts[kSceneFogKind] = 0;
    EXPECT_EQ(error(), "SaveSkySystemToXML:  More than 1 particle cloud shading parameters found\n");
    counts[kCloudShadingParamsKind] = 0;
    EXPECT_EQ(error(), "SaveSkySystemToXML:  No particle cloud shading parameters found\n");
    counts[kCloudShadingParamsKind] = 1;
    EXPECT_EQ(error(), "SaveSkySystemToXML:  More than 1 particle cloud dome found\n");
    counts[kParticleCloudDomeKind] = 0;
    EXPECT_EQ(error(), "") << "any number of skies, sprite clouds and particle clouds";
    counts[kParticleCloudKind] = 0;
    counts[kCloudShadingParamsKind] = 3;
    EXPECT_EQ(error(), "");
}
