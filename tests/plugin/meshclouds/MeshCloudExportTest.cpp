// Mesh clouds and scene fog in the ".atmos" file, and what the nodes say.
#include "PluginScene.h"
#include "Schema.h"

#include <gmock/gmock.h>

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <cmath>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string noMeshes = "SpriteCloudLocator::RefreshCloudMesh:  No maya meshes found in wispy cloud group.\n";
const std::string badPath =
    "SpriteCloudLocator::SaveToXML:  filepath bad. [] (maybe file not located in hub data directory?)\n";

class MeshCloudExport : public PluginScene {
protected:
    MeshCloudExport() {
        must("createNode transform -n \"OrvoSkyData\"; createNode transform -n \"set\" -p \"OrvoSkyData\";"
             "createNode orvosky_SkySceneSettings -p \"set\";");
        log_.clear();
    }

    /// A group "cloud" with the locator "sprite" in it.
    void makeCloud() {
        must("createNode transform -n \"cloud\" -p \"OrvoSkyData\"; createNode transform -n \"spriteT\" -p \"cloud\";"
             "createNode orvosky_SpriteCloudLocator -n \"sprite\" -p \"spriteT\";");
    }
    /// A one-polygon plane of the cloud's group; 100 by 200 centimetres about the origin.
    void addPlane(const std::string& name) {
        must("polyPlane -w 100 -h 200 -sx 1 -sy 1 -n \"" + name + "\"; parent -r \"" + name + "\" \"cloud\";");
    }
    bool save() {
        const bool saved = mel("orvosky_SaveSkySystemToXMLCommand \"" + file_.string() + "\"");
        EXPECT_TRUE(!saved || followsSchema(file_, "atmos.xsd"));
        return saved;
    }
    std::string elements(const char* name) {
        const std::string text = contents(file_);
        const auto from = text.find(std::string("\t<") + name), to = text.find("</OrvoAtmosphere>");
        return from == std::string::npos ? "" : text.substr(from, to - from);
    }

    const orvo::test::TemporaryFolder folder_;
    const fs::path file_ = folder_ / "meshes.atmos";
};

} // namespace

// Faults: an export with the meshes of an earlier one; meshes that the artist wants kept, gathered again; an update
// that needs a renderer or a visible cloud, goes on about nodes beyond its reach, or hides what went wrong.
TEST_F(MeshCloudExport, AnUpdateGathersTheMeshesAnew) {
    makeCloud();
    addPlane("a");
    must("setAttr \"sprite.spriteTexture\" -type \"string\" \"build\\\\a.tga\"; setAttr \"cloud.v\" 0;"
         "createNode orvosky_SpriteCloudLocator -n \"elsewhere\"");
    ASSERT_TRUE(save());
    must("move 0 300 0 a; orvosky_UpdateSkySystemCommand");
    ASSERT_TRUE(save());
    EXPECT_THAT(elements("SpriteCloud"), HasSubstr("pos=\"-0.500000 3.000000 -1.000000\""));
    must("setAttr \"sprite.alwaysUpdateMesh\" 0; move 0 500 0 a; orvosky_UpdateSkySystemCommand");
    ASSERT_TRUE(save());
    EXPECT_THAT(elements("SpriteCloud"), HasSubstr("pos=\"-0.500000 3.000000 -1.000000\""));
    EXPECT_THAT(log_.errors(), testing::IsEmpty());

    must("delete a; setAttr \"sprite.alwaysUpdateMesh\" 1");
    EXPECT_FALSE(mel("orvosky_UpdateSkySystemCommand"));
    EXPECT_THAT(log_.errors(), ElementsAre(noMeshes));
    log_.clear();
    EXPECT_FALSE(mel("orvosky_UpdateSkySystemCommand 1"));
    EXPECT_THAT(log_.errors(), ElementsAre("OrvoSky_UpdateSkySystemCommand incorrect syntax given! :(  Usage: "
                                           "\"orvosky_UpdateSkySystemCommand\"   bailing."));
}

// By hand from the file format, with the layout of the host's plane: points by rows from -X -Z, one polygon 0 1 3 2,
// split along its first and third corner; UVs grow with X and against Z. Catches wrong bytes and scales, and meshes
// that are appended with their own indices.
TEST_F(MeshCloudExport, WritesACloudOfTwoMeshes) {
    makeCloud();
    addPlane("a");
    addPlane("b");
    addPlane("history"); // not shown, and not written
    must("string $s[] = `listRelatives -s history`; setAttr ($s[0] + \".intermediateObject\") 1;"
         "setAttr \"b.t\" 300 400 500; setAttr \"cloud.s\" 2 2 2; setAttr \"sprite.RenderMode\" 0;"
         "setAttr \"sprite.tint\" -type \"float3\" 0.25 0.5 0.75; setAttr \"sprite.alphaScale\" 1.5;"
         "setAttr \"sprite.brightness\" 2.5; setAttr \"sprite.textureMipBias\" -3;"
         "setAttr \"sprite.spriteTexture\" -type \"string\" \"build\\\\sky\\\\a & b.tga\";");
    ASSERT_TRUE(save()) << testing::PrintToString(log_.errors());
    EXPECT_EQ(elements("SpriteCloud"), "\t<SpriteCloud\n"
                                       "\t\trenderMode = \"0\"\n"
                                       "\t\ttint = \"0.250000 0.500000 0.750000\"\n"
                                       "\t\talphaScale = \"1.500000\"\n"
                                       "\t\tbrightness = \"2.500000\"\n"
                                       "\t\ttextureMipBias = \"-3.000000\"\n"
                                       "\t\ttexture = \"sky\\a &amp; b.tga\"\n"
                                       "\t\t>\n"
                                       "\t\t<TriMesh\n"
                                       "\t\t\tnumVerts = \"8\"\n"
                                       "\t\t\tnumTris = \"4\"\n"
                                       "\t\t\t>\n"
                                       "\t\t\t<Vert pos=\"-1.000000 0.000000 2.000000\" uv=\"0.000000 0.000000\" />\n"
                                       "\t\t\t<Vert pos=\"1.000000 0.000000 2.000000\" uv=\"1.000000 0.000000\" />\n"
                                       "\t\t\t<Vert pos=\"-1.000000 0.000000 -2.000000\" uv=\"0.000000 1.000000\" />\n"
                                       "\t\t\t<Vert pos=\"1.000000 0.000000 -2.000000\" uv=\"1.000000 1.000000\" />\n"
                                       "\t\t\t<Vert pos=\"5.000000 8.000000 12.000000\" uv=\"0.000000 0.000000\" />\n"
                                       "\t\t\t<Vert pos=\"7.000000 8.000000 12.000000\" uv=\"1.000000 0.000000\" />\n"
                                       "\t\t\t<Vert pos=\"5.000000 8.000000 8.000000\" uv=\"0.000000 1.000000\" />\n"
                                       "\t\t\t<Vert pos=\"7.000000 8.000000 8.000000\" uv=\"1.000000 1.000000\" />\n"
                                       "\t\t\t<Tri indicies=\"0 1 3\" />\n"
                                       "\t\t\t<Tri indicies=\"0 3 2\" />\n"
                                       "\t\t\t<Tri indicies=\"4 5 7\" />\n"
                                       "\t\t\t<Tri indicies=\"4 7 6\" />\n"
                                       "\t\t</TriMesh>\n"
                                       "\t</SpriteCloud>\n");
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches an export that is called complete without a mesh that the game can use, and the wrong message.
TEST_F(MeshCloudExport, FailsWithoutAMeshWithUvs) {
    const auto expectFailure = [&](std::vector<std::string> errors) {
        log_.clear();
        EXPECT_FALSE(save());
        errors.push_back("SpriteCloud failure to save to XML");
        errors.push_back("Failed to export .atmos - see above for details.");
        EXPECT_THAT(log_.errors(), testing::ElementsAreArray(errors));
        EXPECT_THAT(contents(file_), Not(HasSubstr("</SpriteCloud>")));
    };
    const auto toggle = [&] { must("setAttr \"sprite.alwaysUpdateMesh\" 0; setAttr \"sprite.enable\" 1;"); };
    makeCloud();
    expectFailure({badPath, noMeshes});
    expectFailure({badPath}); // said once
    must("createNode transform -n \"other\" -p \"cloud\"; delete \"spriteT\"; createNode transform -n \"spriteT\" -p "
         "\"cloud\"; createNode orvosky_SpriteCloudLocator -n \"sprite\" -p \"spriteT\";");
    toggle();
    expectFailure({badPath, noMeshes}); // a group of transforms

    must("delete \"cloud\"; createNode orvosky_SpriteCloudLocator -n \"sprite\" -p \"OrvoSkyData\";");
    expectFailure({badPath, "SpriteCloudLocator::RefreshCloudMesh:  couldn't get parents from locator\n"});

    must("delete \"sprite\"");
    makeCloud();
    addPlane("a");
    addPlane("b");
    must("delete -ch \"b\"");
    MSelectionList list;
    MDagPath shape;
    ASSERT_TRUE(list.add(MString("b")) && list.getDagPath(0, shape));
    ASSERT_TRUE(MFnMesh(shape).clearUVs());
    expectFailure({badPath});
}

// Catches an export that says nothing of positions that no game can read.
TEST_F(MeshCloudExport, TellsOfVerticesWithoutAPosition) {
    makeCloud();
    addPlane("a");
    must("setAttr \"sprite.spriteTexture\" -type \"string\" \"build/a.tga\"");
    MSelectionList list;
    MDagPath shape;
    ASSERT_TRUE(list.add(MString("a")) && list.getDagPath(0, shape));
    ASSERT_TRUE(MFnMesh(shape).setPoint(1, MPoint(std::nan(""), 0, 0)));
    must("orvosky_SaveSkySystemToXMLCommand \"" + file_.string() + "\"");
    EXPECT_THAT(log_.all(),
                testing::Contains("Warning: SpriteCloudLocator::SaveToXML:  1 vertices have no position\n"));
}

TEST_F(MeshCloudExport, LeavesOutWhatIsSwitchedOff) {
    makeCloud();
    must("setAttr \"sprite.enable\" 0; createNode orvosky_SceneFog -n \"fog\" -p \"set\"; setAttr \"fog.Enable\" 0");
    ASSERT_TRUE(save()) << testing::PrintToString(log_.errors());
    EXPECT_THAT(contents(file_), Not(HasSubstr("SpriteCloud")));
    EXPECT_THAT(contents(file_), Not(HasSubstr("SceneFog")));
}

// Catches distances that are written as they stand, or in centimetres.
TEST_F(MeshCloudExport, WritesTheFogWithItsDistancesInOrder) {
    must("createNode orvosky_SceneFog -n \"fog\" -p \"set\"; setAttr \"fog.fogStart\" 900.5; setAttr \"fog.fogEnd\" 20;"
         "setAttr \"fog.fogAlpha\" 0.75; setAttr \"fog.fogColour\" -type \"float3\" 0.5 0.25 0.125;");
    ASSERT_TRUE(save());
    EXPECT_EQ(elements("SceneFog"), "\t<SceneFog\n"
                                    "\t\tfogStart = \"20.000000\"\n"
                                    "\t\tfogEnd = \"900.500000\"\n"
                                    "\t\tfogAlpha = \"0.750000\"\n"
                                    "\t\tfogColour = \"0.500000 0.250000 0.125000\"\n"
                                    "\t/>\n");
}

// Catches other defaults, limits that are missing or hard where they should be soft, and shape names.
TEST_F(MeshCloudExport, NodesHaveTheirNamesDefaultsAndLimits) {
    must("createNode orvosky_SceneFog -p \"set\"; createNode orvosky_SpriteCloudLocator -p \"set\";");
    const std::string fog = "sceneFogShape1.", sprite = "orvosky_SpriteCloudLocatorShape1.";
    const std::pair<std::string, double> defaults[] = {{fog + "Enable", 1},
                                                       {fog + "getColourFromExpHeightFog", 0},
                                                       {fog + "fogStart", 100},
                                                       {fog + "fogEnd", 500},
                                                       {fog + "fogAlpha", 1},
                                                       {fog + "fogColourG", 1},
                                                       {fog + "previewGeomColourB", 0.5},
                                                       {fog + "sunDir0", 0},
                                                       {fog + "sunDir1", 1},
                                                       {sprite + "enable", 1},
                                                       {sprite + "alwaysUpdateMesh", 1},
                                                       {sprite + "RenderMode", 1},
                                                       {sprite + "tintR", 1},
                                                       {sprite + "brightness", 1},
                                                       {sprite + "alphaScale", 1},
                                                       {sprite + "textureMipBias", 0}};
    for (const auto& [plug, value] : defaults) {
        must("getAttr " + plug);
        EXPECT_EQ(result_.toFloat(), value) << plug;
    }
    for (const char* refused :
         {"sceneFogShape1.fogStart\" 0.5", "sceneFogShape1.fogEnd\" 0.5", "sceneFogShape1.fogAlpha\" 0",
          "sceneFogShape1.fogAlpha\" 1.5", "sceneFogShape1.sunDir0\" 2",
          "orvosky_SpriteCloudLocatorShape1.brightness\" 3.5", "orvosky_SpriteCloudLocatorShape1.brightness\" -1",
          "orvosky_SpriteCloudLocatorShape1.alphaScale\" 2.5"}) {
        EXPECT_FALSE(mel(std::string("setAttr \"") + refused)) << refused;
        EXPECT_THAT(failure_, HasSubstr("imum value of ")) << refused;
    }
    for (const char* taken :
         {"sceneFogShape1.fogStart\" 600", "sceneFogShape1.fogEnd\" 9000",
          "orvosky_SpriteCloudLocatorShape1.alphaScale\" 1.5", "orvosky_SpriteCloudLocatorShape1.textureMipBias\" 9"})
        EXPECT_TRUE(mel(std::string("setAttr \"") + taken)) << taken;
}
