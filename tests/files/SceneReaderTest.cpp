#include "SceneFileFixture.h"

#include "scene/MeshNode.h"

#include <gmock/gmock.h>

#include <numbers>

using namespace host;
using namespace host::scene;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double degree = std::numbers::pi / 180;

using SceneReaderTest = SceneFileFixture;

// Faults: values of a real file's shape lost or put elsewhere, script nodes run, needless complaints.
TEST_F(SceneReaderTest, OpensA2010Scene) {
    files::SceneReader(scene, {}).read(sample("release2010.ma"));
    ASSERT_EQ(messages.size(), 2u) << allMessages();
    EXPECT_THAT(messages[0], HasSubstr("release2010.ma line 6: The plug-in 'stereoCamera' is required"));
    EXPECT_THAT(messages[1], HasSubstr("release2010.ma: 3 statements about attributes that are not known here"));
    EXPECT_EQ(number("persp.translateX"), 12.5);
    EXPECT_EQ(number("persp.visibility"), 0);
    EXPECT_EQ(number("perspShape.focalLength"), 34.999999999999993);
    EXPECT_EQ(number("topShape.orthographic"), 1);
    EXPECT_EQ(number("pPlane1.rotateY"), 90 * degree);
    EXPECT_TRUE(scene.findPlug("pPlane1.scale").locked);
    EXPECT_EQ(scene.findPlug("pPlaneShape1.visibility").keyable, std::optional(false));
    EXPECT_EQ(scene.time(), 13 * 250.0); // frame 13 at 24 frames a second
    EXPECT_EQ(number("pPlane1.translateY"), 3.0) << "half way from 0 at frame 1 to 6 at frame 25, linear";
    EXPECT_EQ(number("pPlane1.rotateX"), 90 * degree);
    EXPECT_EQ(number("defaultRenderGlobals.endFrame"), 10 * 250.0);
    EXPECT_EQ(scene.fileInfo["version"], "2010 x64");
    const std::string script = text("uiConfigurationScriptNode.before");
    EXPECT_TRUE(script.starts_with("// Maya Mel UI Configuration File.\n//\n"));
    EXPECT_TRUE(script.ends_with("\"Current Layout\") );\n\t}\n}\n"));
    const auto mesh = meshOf(*scene.findNode("pPlaneShape1"));
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->numPolygons(), 2);
    EXPECT_EQ(mesh->point(0), (mesh::Float3{-2, 0.5f, 1})) << "corner of the plane, moved by its tweak";
    Cell& member = *scene.tryPlug("initialShadingGroup.dsm[0]", false);
    ASSERT_TRUE(member.source);
    EXPECT_EQ(member.source->name(), "pPlaneShape1.instObjGroups[0]");
    EXPECT_EQ(scene.keptConnections.size(), 7u);
    EXPECT_FALSE(scene.modified);
}

// Faults: the file's units ignored, compounds entered early or never, equal names mixed up, kept statements lost.
TEST_F(SceneReaderTest, OpensA2016Scene) {
    files::SceneReader(scene, {}).read(sample("release2016.ma"));
    EXPECT_EQ(number("group1.translateY"), 200) << "metres in the file";
    EXPECT_EQ(number("group1.cloudLayer.height"), 1200);
    EXPECT_EQ(number("group1.density"), 0.75);
    EXPECT_EQ(number("group1.tintB"), 0.3f);
    EXPECT_EQ(number("group1.windZ"), 6);
    EXPECT_EQ(number("group1.stops[4]"), 0.75);
    EXPECT_EQ(number("group1.kind"), 4);
    EXPECT_EQ(scene.findNode("group1")->findAttribute("kind")->fieldName(4), "stratus");
    EXPECT_EQ(std::get<Numeric>(scene.findPlug("group1.tint").attribute.defaultValue),
              Numeric(NumericType::Float, 3, 0, 1, 0));
    EXPECT_EQ(text("group1.note"), "line 1\nsays \"hi\"\tand C:\\temp; not // a comment");
    const auto list = [&](const char* plug) {
        return static_cast<ArrayData&>(*std::get<DataPtr>(scene.findPlug(plug).value));
    };
    EXPECT_THAT(list("group1.names").texts, ElementsAre("a", "-b", ""));
    EXPECT_THAT(list("group1.frames").numbers, ElementsAre(-7, 2147483647));
    EXPECT_THAT(list("group1.pts").numbers, ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ((*matrixIn(scene.findPlug("group1.mat").value))(3, 1), 8);
    EXPECT_EQ(number("|group2|ball.translateY"), 1);
    EXPECT_EQ(number("|group1|ball.inheritsTransform"), 0);
    EXPECT_EQ(scene.findNode("|group2|ball")->uuid, "44444444-4E2B-8D11-9A0B-7F6D5E4C3B2A");
    EXPECT_EQ(number("group2.translateX"), 100);
    EXPECT_TRUE(scene.findPlug("group2.translateX").locked);
    EXPECT_EQ(scene.time(), 30 * 200.0) << "ntsc: 30 frames a second";
    Node* cloud = scene.findNode("cloudShape");
    EXPECT_EQ(cloud->unknownType, "orvoTestCloud");
    EXPECT_THAT(allMessages(), HasSubstr("of 2 unknown types are kept as they are: attributeHolder, orvoTestCloud"));
    ASSERT_EQ(cloud->keptStatements.size(), 4u);
    EXPECT_EQ(cloud->keptStatements[1], "setAttr \".seed\" 1234;");
    EXPECT_EQ(cloud->dag()->parent->fullPath(), "|group2|ball");
    EXPECT_THAT(
        scene.findNode("holder")->keptStatements,
        ElementsAre("setAttr \".aal\" -type \"attributeAlias\" {\"first\",\"weight[0]\",\"second\",\"weight[1]\"} ;"));
    EXPECT_EQ(scene.keptConnections.size(), 2u);
    EXPECT_THAT(scene.keptStatements, ElementsAre(HasSubstr("relationship \"link\"")));
}

// Faults: UV sets, edges or faces of a stored mesh misread; -s counts taken at their word.
TEST_F(SceneReaderTest, OpensA2022SceneWithAMesh) {
    files::SceneReader(scene, {}).read(sample("release2022.ma"));
    const auto mesh = meshOf(*scene.findNode("boxShape"));
    ASSERT_TRUE(mesh) << allMessages();
    EXPECT_EQ(mesh->numVertices(), 8);
    EXPECT_EQ(mesh->numPolygons(), 6);
    EXPECT_THAT(mesh->faceVertices(0), ElementsAre(0, 1, 3, 2));
    EXPECT_TRUE(mesh->edges()[7].smooth);
    EXPECT_FALSE(mesh->edges()[0].smooth);
    ASSERT_EQ(mesh->numUvSets(), 2);
    EXPECT_EQ(mesh->uvSet(mesh->currentUvSet()).name, "light");
    float u = 0, v = 0;
    ASSERT_TRUE(mesh->uvAt(0, 4, 1, u, v));
    EXPECT_EQ(u, 0.875f);
    EXPECT_FALSE(mesh->uvAt(1, 1, 0, u, v));
    EXPECT_EQ(number("defaultResolution.width"), 1920);
    EXPECT_EQ(number("blue.colorB"), 1);
    EXPECT_TRUE(scene.findPlug("blueSG.surfaceShader").source);
}

// Faults: Windows files, marks and missing headers refused; block comments and old number spellings misread.
TEST_F(SceneReaderTest, AcceptsEveryTextForm) {
    open("\xEF\xBB\xBF//Maya ASCII 2011 scene\r\ncreateNode transform -n \"a\"; // note; more\r\n"
         "\tsetAttr \".t\" -type \"double3\" 1.5e+000\r\n\t\t-.5 +2 ;\r\n/* ; \" */ setAttr .v 0;setAttr \".s\" -type "
         "\"double3\" 1.#INF -1.#IND 1;");
    EXPECT_EQ(number("a.translateX"), 1.5);
    EXPECT_EQ(number("a.translateY"), -0.5);
    EXPECT_EQ(number("a.translateZ"), 2);
    EXPECT_EQ(number("a.visibility"), 0);
    EXPECT_EQ(number("a.scaleX"), std::numeric_limits<double>::infinity());
    EXPECT_NE(number("a.scaleY"), number("a.scaleY"));
    EXPECT_THAT(messages, ElementsAre());
}

// Faults: imported names that are taken mixed up with the scene's own; prefixes put on what was there.
TEST_F(SceneReaderTest, ImportFollowsTheFilesOwnNames) {
    const std::string file =
        "createNode transform -n \"a\"; setAttr \".tx\" 5; createNode transform -n \"b\" -p \"a\";"
        "createNode transform -n \"c\"; createNode transform -s -n \"persp\";"
        "connectAttr \"a.tx\" \"c.tx\"; connectAttr \"|a|b.ty\" \"c.ty\"; parent -s \"c\" \"|a|b\";";
    open(file);
    files::SceneReader::Options options;
    options.import = true;
    const auto result = open(file, options);
    ASSERT_EQ(result.created.size(), 3u);
    EXPECT_EQ(result.created[0]->name, "a1");
    EXPECT_EQ(result.created[2]->dag()->fullPath(), "|a1|b|c");
    EXPECT_EQ(scene.findPlug("|a1|b|c.translateX").source->name(), "a1.translateX");
    options.prefix = "props:";
    EXPECT_EQ(open(file, options).created[2]->dag()->fullPath(), "|props:a|props:b|props:c");
    EXPECT_THAT(messages, ElementsAre());
    EXPECT_TRUE(scene.modified);
}

struct Failure {
    const char *text, *message;
    friend void PrintTo(const Failure& c, std::ostream* out) { *out << c.message; }
};
class FailingStatementTest : public SceneFileFixture, public testing::WithParamInterface<Failure> {};

// Faults: one bad statement ends the reading, is passed over in silence, or has no place in its message; a count or
// range that lies makes memory.
TEST_P(FailingStatementTest, IsReportedWithItsLineAndSkipped) {
    open(std::string("createNode transform -n \"a\";\n") + GetParam().text + "\ncreateNode transform -n \"last\";\n");
    ASSERT_EQ(messages.size(), 1u) << allMessages();
    EXPECT_THAT(messages[0], HasSubstr("test.ma line 2: "));
    EXPECT_THAT(messages[0], HasSubstr(GetParam().message));
    EXPECT_TRUE(scene.findNode("last"));
    EXPECT_EQ(number("a.translateX"), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Statements, FailingStatementTest,
    testing::Values(
        Failure{"setAttr \".tx\" five;", "'five' is not a number"},
        Failure{"setAttr \".tx\" \"5\";", "'5' is not a number"}, Failure{"setAttr \".ty\" 1 2;", "too many values"},
        Failure{"setAttr \".t\" -type \"double3\" 1 2;", "too few values"},
        Failure{"setAttr \".t\" -type \"float2\" 1 2;", "does not hold a float2"},
        Failure{"setAttr -zz on \".tx\";", "'-zz'"}, Failure{"setAttr -l maybe \".tx\";", "needs on or off"},
        Failure{"setAttr;", "name of the attribute is missing"},
        Failure{"setAttr \"nobody.tx\" 1;", "No object matches name: nobody.tx"},
        Failure{"setAttr \".bnm[5:2]\" 1;", "not a valid one"},
        Failure{"setAttr \".rlio\" -type \"stringArray\" 2000000000 \"a\";", "too few values"},
        Failure{"createNode camera -n \"c\" -p \"none\";", "parent 'none' is not there"},
        Failure{"createNode animCurve -n \"c\";", "abstract type 'animCurve'"},
        Failure{"createNode;", "type of the node is missing"},
        Failure{"addAttr -ln \"1x\" -at \"double\";", "not a valid name"},
        Failure{"addAttr -ln \"tx\" -at \"double\";", "already has an attribute"},
        Failure{"addAttr -ln \"kid\" -at \"double\" -p \"none\";", "no open compound attribute 'none'"},
        Failure{"parent \"a\" \"a\";", "Cannot parent"},
        Failure{"connectAttr \"a.tx\" \"b.ty\";", "No object matches name: b.ty"},
        Failure{"connectAttr \"a.m\" \"a.tx\";", "not compatible"}, Failure{"currentUnit -l parsec;", "'parsec'"},
        Failure{"select -ne \"nobody\";", "No object matches name: nobody"}));

// Faults: mesh lists that promise more than they hold accepted; memory follows the promise.
TEST_F(SceneReaderTest, LyingMeshListsFailQuickly) {
    open("createNode mesh -n \"m\";\nsetAttr -s 2000000000 \".vt[0:200000000]\" 1 2 3;\n"
         "setAttr -s 3 \".pt[0:1]\" -type \"float3\" 1 2;\nsetAttr \".fc[0]\" -type \"polyFaces\" f 2000000000 1;\n"
         "setAttr \".uvst[300].uvsp[0]\" -type \"float2\" 1 2;\nsetAttr -s 9 \".ed[0:8]\" 0 1 x;\n"
         "addAttr -ln \"big\" -at \"compound\" -nc 2000000000;\nsetAttr \".vt[268435457]\" 1 2 3;\n");
    for (int line = 2; line <= 6; ++line)
        EXPECT_THAT(allMessages(), HasSubstr("test.ma line " + std::to_string(line) + ": "));
    EXPECT_THAT(allMessages(), HasSubstr("m.big' is left out"));
}

// Faults: a value that is written because it is not the default read as if it were none: the default of the type must
// be another one. Values and types as Maya writes them.
TEST_F(SceneReaderTest, WhatIsWrittenIsNoDefault) {
    const std::pair<const char*, const char*> written[] = {{"animCurveTL", ".wgt no"},
                                                           {"camera", ".ff 0"},
                                                           {"camera", ".cap 1.41732 0.94488"},
                                                           {"polyCylinder", ".sc 1"},
                                                           {"mesh", ".vcs 2"},
                                                           {"mesh", ".vir yes"},
                                                           {"mesh", ".dsm 2"},
                                                           {"joint", ".ssc no"},
                                                           {"joint", ".mnrl -360 -360 -360"},
                                                           {"joint", ".mxrl 360 360 360"},
                                                           {"polyCube", ".cuv 4"},
                                                           {"polyPlane", ".cuv 2"},
                                                           {"polySoftEdge", ".a 0"},
                                                           {"shadingEngine", ".ro yes"},
                                                           {"directionalLight", ".urs no"}};
    for (const auto& [type, value] : written) {
        const std::string plug = std::string(value).substr(0, std::string(value).find(' '));
        open(std::string("createNode ") + type + " -n \"a\"; setAttr \"" + plug + "\"" + (value + plug.size()) + ";");
        EXPECT_THAT(messages, ElementsAre()) << type << value;
        EXPECT_THAT(files::SceneWriter(scene).text("x"), HasSubstr("\"" + plug + "\"")) << type << value;
    }
    open("createNode mesh -n \"a\"; setAttr \".dsm\" 2;");
    EXPECT_EQ(number("a.displaySmoothMesh"), 2);
    open("createNode camera -n \"a\";");
    EXPECT_NEAR(number("a.hfa") * 25.4, 36, 1e-12);
    EXPECT_NEAR(number("a.vfa") * 25.4, 24, 1e-12);
}

// Faults: names below many parents looked up by going through all of them; a name of the file mistaken for one that the
// scene gave another node; children below an imported or moved parent not found.
TEST_F(SceneReaderTest, EqualNamesBelowManyParents) {
    std::string file;
    for (int i = 0; i < 300; ++i) {
        const std::string n = std::to_string(i);
        file += "createNode transform -n \"g" + n + "\"; createNode transform -n \"x\" -p \"g" + n +
                "\"; setAttr \".tx\" " + n + "; createNode transform -n \"y\" -p \"|g" + n + "|x\";" +
                "connectAttr \"g" + n + "|x.tx\" \"g" + n + "|x|y.tz\";";
    }
    file += "parent -s \"|g7|x\" \"g8|x|y\"; setAttr \"g8|x|y|x.ty\" 5; setAttr \"|g7|x.ty\" 6;";
    for (const bool import : {false, true}) {
        messages.clear();
        files::SceneReader::Options options;
        options.import = import;
        if (import) options.prefix = "in:";
        open(file, options);
        EXPECT_THAT(messages, ElementsAre(HasSubstr("No object matches name: |g7|x.ty")));
        const std::string p = import ? "in:" : "";
        const auto path = [&](const char* names) {
            std::string all;
            for (const char* c = names; *c; ++c) (all += std::isalpha(*c) ? p : "") += *c;
            return all;
        };
        EXPECT_EQ(number(path("|g299|x|y") + ".tz"), 299);
        EXPECT_EQ(number(path("|g8|x|y|x") + ".ty"), 5);
        EXPECT_EQ(scene.findNode(path("g8|x"))->dag()->fullPath(), path("|g8|x"));
        EXPECT_FALSE(scene.findNode(path("|g7|x")));
        bool ambiguous = false;
        EXPECT_FALSE(scene.findNode(path("x|y"), &ambiguous));
        EXPECT_TRUE(ambiguous);
    }
    scene.deleteNodes(scene.findNodes("g*"));
    EXPECT_EQ(scene.findNodes("in:x").size(), 300u);
    EXPECT_FALSE(scene.findNode("|g3|x"));
}

// Faults: a lock lost over a connection that is refused, or in its way when it is right.
TEST_F(SceneReaderTest, LocksOutliveConnections) {
    open("createNode transform -n \"a\"; setAttr -l on \".tx\" 3; setAttr -l on \".ty\";"
         "connectAttr \"a.m\" \"a.tx\"; connectAttr \"a.tz\" \"a.ty\";");
    EXPECT_THAT(messages, ElementsAre(HasSubstr("not compatible")));
    EXPECT_TRUE(scene.findPlug("a.tx").locked);
    EXPECT_TRUE(scene.findPlug("a.ty").locked);
    EXPECT_TRUE(scene.findPlug("a.ty").source);
}

// Faults: a long list taken for values where flags, comments or other words stand in it; its lines not counted; a list
// that is set by itself and one by the words of a statement that differ.
TEST_F(SceneReaderTest, LongListsAreTakenAsAWhole) {
    const std::string many = " 1 2 3 4 5 6 7 8 9 10\n 1e1 -2.5 +3 4 5 6 7 8 9 10 1 2 3 4 5 6 7 8 9 10\n 1 2 3 4 5 6";
    open("createNode mesh -n \"m\";\nsetAttr -s 12 \".vt[0:11]\"" + many + ";\nsetAttr \".vt[12:23]\"" + many +
         " /* last */ ;\nsetAttr \".vt[24:35]\"" + many + " x;\nsetAttr \".uvst[0].uvsp[0:19]\"" + many +
         "; setAttr \".ihi\"" + many + ";\n");
    ASSERT_EQ(messages.size(), 3u) << allMessages();
    EXPECT_THAT(messages[0], HasSubstr("test.ma line 8: 'x' is not a number"));
    EXPECT_THAT(messages[1], HasSubstr("test.ma line 11: "));
    EXPECT_THAT(messages[2], HasSubstr("test.ma line 13: There are too many values"));
    auto& file = meshBehavior(*scene.findNode("m"))->file;
    std::string error;
    const auto mesh = file.build(&error);
    ASSERT_TRUE(mesh) << error;
    EXPECT_EQ(mesh->numVertices(), 24);
    EXPECT_EQ(mesh->point(3), (mesh::Float3{10, 10, -2.5f}));
    EXPECT_EQ(mesh->point(15), mesh->point(3));
}

// Faults: a full flood of messages; numbers beyond a hard limit taken; locks ignored.
TEST_F(SceneReaderTest, HoldsLimitsAndLocks) {
    open("createNode camera -n \"c\";\n setAttr \".fl\" 1;\n setAttr -c \".fl\" 1;\n setAttr -l on \".coi\" 7;\n "
         "setAttr \".coi\" 8;\n setAttr -c \".fl\" nan;\n");
    EXPECT_THAT(
        messages,
        ElementsAre(HasSubstr("line 2: Cannot set the attribute 'c.focalLength' below its minimum value of 2.5"),
                    HasSubstr("line 5: The attribute 'c.centerOfInterest' is locked"),
                    HasSubstr("line 6: Cannot set the attribute 'c.focalLength' to a value that is not a number")));
    EXPECT_EQ(number("c.focalLength"), 2.5);
    EXPECT_EQ(number("c.centerOfInterest"), 7);
}

} // namespace
