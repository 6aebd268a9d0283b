// The program as a user runs it: exit statuses, what it prints where, and what it leaves on disk.
#include "ProgramFixture.h"

#include <unistd.h>

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Faults: an exit status that scripts would misread; usage errors taken for failures.
TEST_F(Program, WrongUsageIsStatusTwo) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"paint"},
                                               {"export", "small.ma"},
                                               {"render", "small.ma"},
                                               {"run"},
                                               {"render", "small.ma", "a.png", "--size", "12"},
                                               {"render", "small.ma", "a.png", "--size", "0x5"},
                                               {"render", "small.ma", "a.png", "--time", "noon"},
                                               {"export", "small.ma", "a.atmos", "--colour"}}) {
        const Outcome o = run(arguments);
        EXPECT_EQ(o.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(o.error, StartsWith("Error: "));
        EXPECT_THAT(o.out, IsEmpty());
    }
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_EQ(run({"export", "--help"}).status, 0);
    EXPECT_EQ(run({"--version"}).out, "orvosky 1.40.0\n");
}

// Faults: output on the wrong stream; arguments lost; an uncaught error without place or with status 0.
TEST_F(Program, RunsScripts) {
    write(folder_ / "a.mel", "global string $argv[];\nprint ($argv[0] + \"|\" + size($argv) + \"\\n\");\n"
                             "warning \"careful\";\n");
    Outcome o = run({"run", "a.mel", "one", "--two"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_EQ(o.out, "one|2\n");
    EXPECT_EQ(o.error, "Warning: careful\n");

    write(folder_ / "b.mel", "print \"first\\n\";\n\nnoSuchThing 3;\nprint \"second\\n\";\n");
    o = run({"run", "b.mel"});
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.out, "first\n");
    EXPECT_THAT(o.error, StartsWith("Error: "));
    EXPECT_THAT(o.error, HasSubstr("b.mel line 3: Cannot find procedure \"noSuchThing\"."));

    write(folder_ / "c.mel", "print 1;\nif (1 { print 2; }\n");
    o = run({"run", "c.mel"});
    EXPECT_EQ(o.status, 1);
    EXPECT_EQ(o.out, "") << "nothing of a script with a syntax error runs";
    EXPECT_THAT(o.error, HasSubstr("c.mel line 2"));

    EXPECT_EQ(run({"run", "-e", "print (1 + 1);"}).out, "2");
    EXPECT_EQ(run({"run", "-e", "global string $argv[]; print $argv;", "a", "-e", "--help"}).out, "a\n-e\n--help\n");
    EXPECT_EQ(run({"run", "missing.mel"}).status, 1);
    EXPECT_THAT(run({"run", "missing.mel"}).error, HasSubstr("missing.mel"));
}

// Faults: a script's own exit status lost, or an export that a script left unfinished called done.
TEST_F(Program, QuitGivesTheStatus) {
    const auto done = run({"run", "-e", "print \"a\"; quit -exitCode 7; print \"b\";"});
    EXPECT_EQ(done.status, 7);
    EXPECT_EQ(done.out + done.error, "a");
    write(folder_ / "LOUD.MEL", "error \"told\";");
    EXPECT_THAT(run({"export", "LOUD.MEL", "none.atmos"}).error, HasSubstr("told")) << "a script in capitals";
    write(folder_ / "quits.mel", "quit;");
    EXPECT_EQ(run({"run", (folder_ / "quits.mel").string()}).status, 0);
    EXPECT_EQ(run({"export", (folder_ / "quits.mel").string(), (folder_ / "none.atmos").string()}).status, 1);
}

// Faults: the plug-in loaded when it should not be; commands of it that linger.
TEST_F(Program, NoPluginRunsTheBareHost) {
    const Outcome o = run({"--no-plugin", "run", "-e", "print `pluginInfo -q -listPlugins`; createNode transform;"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_EQ(o.out, "");
    EXPECT_EQ(run({"--no-plugin", "export", "small.ma", "a.atmos"}).status, 1);
    EXPECT_FALSE(fs::exists(folder_ / "a.atmos"));
}

// Faults: an export that differs between runs or places, leaves its scaffolding, or names the wrong file.
TEST_F(Program, ExportsTheSameBytesEveryTime) {
    Outcome o = run({"export", "small.ma", "one.atmos"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_EQ(o.out, "SaveSkySystemToXML:  Export to file [one.atmos] completed successfully.\n");
    fs::create_directory(folder_ / "deep");
    EXPECT_EQ(run({"export", "small.ma", "deep/two.ATMOS"}, {{"LC_ALL", "de_DE.UTF-8"}, {"ORVOSKY_NO_GL", "1"}}).status,
              0);
    const std::string bytes = content(folder_ / "one.atmos");
    EXPECT_EQ(bytes, content(folder_ / "deep/two.ATMOS"));
    EXPECT_THAT(bytes, HasSubstr("\tsunDir = \"0.577350 0.577350 0.577350\"\n"));
    EXPECT_THAT(leftovers(), IsEmpty());
    EXPECT_EQ(std::system(("xmllint --noout --schema '" + orvo::test::sourceTree("docs/atmos.xsd") + "' '" +
                           (folder_ / "one.atmos").string() + "' 2>/dev/null")
                              .c_str()),
              0);
}

// Faults: a failed export that destroys an earlier one, or pretends to have worked.
TEST_F(Program, FailedExportsLoseNothing) {
    write(folder_ / "sky.atmos", "an earlier export");
    write(folder_ / "sky.cdata", "its data");
    write(folder_ / "two.ma", std::string(smallScene) +
                                  "createNode transform -n \"more\" -p \"OrvoSkyData\";\n"
                                  "createNode orvosky_SkySceneSettings -n \"moreShape\" -p \"more\";\n");
    Outcome o = run({"export", "two.ma", "sky.atmos"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("Error: SaveSkySystemToXML:  More than 1 sky settings found\n"));
    EXPECT_THAT(o.error, HasSubstr("Error: Failed to export .atmos - see above for details.\n"));
    EXPECT_THAT(o.error, HasSubstr("sky.atmos"));

    o = run({"export", "small.ma", "sky.atmos"}, {}, 100);
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("Error: SaveSkySystemToXML:  Cannot write atmos file\n"));

    o = run({"export", "missing.ma", "sky.atmos"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("missing.ma"));

    EXPECT_EQ(content(folder_ / "sky.atmos"), "an earlier export");
    EXPECT_EQ(content(folder_ / "sky.cdata"), "its data");
    EXPECT_THAT(leftovers(), IsEmpty());
}

// Faults: a place that cannot be written that ends in a crash, a stray file, or an error that names nothing.
TEST_F(Program, PlacesThatCannotBeWritten) {
    fs::create_directory(folder_ / "folder.atmos");
    for (const char* target : {"no/such/folder/a.atmos", "folder.atmos", "/dev/full", "/proc/a.atmos", "a.txt"}) {
        const Outcome o = run({"export", "small.ma", target});
        EXPECT_EQ(o.status, 1) << target;
        EXPECT_THAT(o.error, HasSubstr(target));
    }
    EXPECT_THAT(run({"export", "small.ma", "a.txt"}).error,
                HasSubstr("Filename [a.txt] does not have required extention \".atmos\""));
    if (geteuid() != 0) {
        fs::create_directory(folder_ / "readonly");
        fs::permissions(folder_ / "readonly", fs::perms::owner_read | fs::perms::owner_exec);
        EXPECT_EQ(run({"export", "small.ma", "readonly/a.atmos"}).status, 1);
    }
    for (const char* picture : {"no/such/folder/a.png", "a.notaformat", "folder.atmos"}) {
        const Outcome o = run({"render", "small.ma", picture, "--size", "16x9"});
        EXPECT_EQ(o.status, 1) << picture;
        EXPECT_THAT(o.error, HasSubstr(picture));
    }
}

// Faults: bad scenes that crash, hang, or succeed in silence.
TEST_F(Program, BadScenesSayWhatIsWrong) {
    const std::string good = smallScene;
    write(folder_ / "empty.ma", "");
    write(folder_ / "binary.ma", std::string("FOR4\0\0\0\x10Maya", 12));
    write(folder_ / "cut.ma", good.substr(0, good.size() - 20));
    write(folder_ / "quote.ma", "//Maya ASCII 2010 scene\ncreateNode transform -n \"a;\n");
    write(folder_ / "scene.mb", "FOR8");
    fs::create_directory(folder_ / "folder.ma");
    for (const char* scene : {"empty.ma", "binary.ma", "cut.ma", "quote.ma", "scene.mb", "folder.ma", "none.ma"}) {
        const Outcome o = run({"export", scene, "a.atmos"});
        EXPECT_EQ(o.status, 1) << scene;
        EXPECT_THAT(o.error, HasSubstr(scene));
        EXPECT_FALSE(fs::exists(folder_ / "a.atmos")) << scene;
    }
    EXPECT_THAT(run({"export", "quote.ma", "a.atmos"}).error, HasSubstr("quote.ma line 2"));
}

// Faults: a scene that reaches the shell, other files or the script language.
TEST_F(Program, ScenesRunNothing) {
    write(folder_ / "evil.ma",
          std::string(smallScene) +
              "system \"touch owned1\";\neval \"print \\\"owned2\\\"\";\n"
              "python(\"open('owned3', 'w')\");\n"
              "global proc owned4() { print \"owned4\"; }\nowned4;\n"
              "setAttr \"skyShape.Enable\" `fopen \"owned5\" \"w\"`;\n"
              "source \"other.mel\";\nrequires \"../evil\" \"1\";\n"
              "createNode script -n \"s\";\n\tsetAttr \".b\" -type \"string\" \"print \\\"owned6\\\"\";\n"
              "\tsetAttr \".st\" 1;\n");
    write(folder_ / "other.mel", "print \"owned7\\n\";");
    const Outcome o = run({"export", "evil.ma", "a.atmos"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_THAT(o.out, Not(HasSubstr("owned")));
    for (const char* name : {"system", "eval", "python", "owned4", "source", "../evil"})
        EXPECT_THAT(o.error, HasSubstr(name));
    for (const auto& e : fs::directory_iterator(folder_))
        EXPECT_THAT(e.path().filename().string(), Not(StartsWith("owned")));
}

/// A scene whose element values follow from one another: a texture by full path; a height fog that takes the colour of
/// the scene fog, which takes its red from a procedural sky. `first` and `last` stand before and behind the sky nodes.
std::string followingScene(const fs::path& texture, const std::string& first, const std::string& last = {}) {
    return "//Maya ASCII 2010 scene\nrequires maya \"2010\";\n" + first +
           R"(createNode transform -n "OrvoSkyData";
createNode transform -n "set" -p "OrvoSkyData";
createNode orvosky_SkySceneSettings -n "setShape" -p "set";
createNode transform -n "sky" -p "OrvoSkyData";
createNode orvosky_GradientSkyLocator -n "skyShape" -p "sky";
	setAttr ".gradientTexture" -type "string" ")" +
           texture.string() + R"(";
createNode transform -n "height" -p "OrvoSkyData";
createNode orvosky_ExpHeightFog -n "heightShape" -p "height";
	setAttr ".getColourFromSceneFog" yes;
createNode transform -n "mist" -p "OrvoSkyData";
createNode orvosky_SceneFog -n "mistShape" -p "mist";
	setAttr ".fogColour" -type "float3" 0.25 0.5 0.75;
createNode transform -n "air";
createNode orvosky_ProceduralSkyLocator -n "airShape" -p "air";
connectAttr "airShape.rval" "mistShape.fogColourR";
)" + last;
}

// Faults: an export that depends on GL, on a renderer, on visibility, on the order of drawing, or on which of two names
// of the project's folder is used; a picture of values that are a frame old.
TEST_F(Program, WhatIsWrittenDependsOnTheSceneAlone) {
    write(folder_ / "proj/workspace.mel", "//Maya 2010 Project Definition\n");
    fs::create_directories(folder_ / "proj/build/skies");
    fs::copy(orvo::test::testData("skies/gradient.png"), folder_ / "proj/build/skies/gradient.png");
    fs::create_directory_symlink("proj", folder_ / "link");
    const fs::path texture = folder_ / "proj/build/skies/gradient.png";
    const std::string renderer = "createNode transform -n \"r\";\ncreateNode orvosky_SkyRenderer -n \"rS\" -p \"r\";\n";
    const std::map<std::string, std::string> scenes{
        {"last", followingScene(texture, "", renderer)},
        {"first", followingScene(texture, renderer)},
        {"none", followingScene(texture, "")},
        {"hidden", followingScene(texture, "", renderer + "setAttr \"OrvoSkyData.v\" no; setAttr \"air.v\" no;\n")},
        {"linked", followingScene(folder_ / "link/build/skies/gradient.png", "", renderer)}};
    std::string expected;
    for (const auto& [name, scene] : scenes) {
        write(folder_ / (name + ".ma"), scene);
        for (const char* project : {"proj", "link"}) {
            for (const char* withoutGl : {"0", "1"}) {
                const Outcome o =
                    run({"--project", project, "export", name + ".ma", "a.atmos"}, {{"ORVOSKY_NO_GL", withoutGl}});
                EXPECT_EQ(o.status, 0) << name << o.error;
                EXPECT_THAT(o.error, IsEmpty()) << name;
                if (expected.empty()) expected = content(folder_ / "a.atmos");
                EXPECT_EQ(content(folder_ / "a.atmos"), expected) << name << project << withoutGl;
                fs::remove(folder_ / "a.atmos");
            }
        }
    }
    EXPECT_THAT(expected, HasSubstr("\tgradientTexture = \"skies\\gradient.png\"\n"));
    const auto red = expected.find("fogColour = \"0.9"), green = expected.find(" 0.500000 0.750000\"", red);
    EXPECT_NE(green, std::string::npos) << expected; // the sun's red through little air
    EXPECT_NE(expected.find(expected.substr(red, green + 19 - red), green), std::string::npos) << "both fogs have it";

    for (const std::string name : {"first", "last"}) { // the procedural sky would hide what the renderer drew before it
        write(folder_ / (name + ".mel"), "file -f -open \"" + (folder_ / name).string() + ".ma\"; setAttr air.v 0;\n");
        EXPECT_EQ(run({"render", name + ".mel", name + ".png", "--size", "64x36", "--project", "proj"}).status, 0);
    }
    EXPECT_EQ(content(folder_ / "first.png"), content(folder_ / "last.png"));
}

// Faults: an error on the way that costs neither exit status nor earlier files; --keep-going that does not, or hides
// it; warnings that --strict lets pass.
TEST_F(Program, ErrorsAreFailures) {
    write(folder_ / "proj/workspace.mel", "//Maya 2010 Project Definition\n");
    const std::string scene = smallScene;
    const std::string clouds = scene + "createNode transform -n \"shading\" -p \"OrvoSkyData\";\n"
                                       "createNode orvosky_ParticleCloudShadingParams -n \"shadingS\" -p \"shading\";\n"
                                       "setAttr \".shadingTexture\" -type \"string\" \"build\\\\a.dds\";\n"
                                       "createNode transform -n \"dome\" -p \"OrvoSkyData\";\n"
                                       "createNode orvosky_ParticleCloudDome -n \"domeS\" -p \"dome\";\n";
    write(folder_ / "proj/value.ma", scene + "setAttr \"skyShape.sunIntensity\" 50;\n");
    write(folder_ / "proj/plugin.ma", "requires \"not_a_plugin\" \"1\";\n" + scene);
    write(folder_ / "proj/library.ma", clouds + "setAttr \".cloudDataDir\" -type \"string\" \"build\\\\none.xml\";\n");
    fs::create_directories(folder_ / "proj/build/none");
    write(folder_ / "proj/templates.ma", clouds + "setAttr \".cloudDataDir\" -type \"string\" \"build\\\\none\";\n");
    const std::map<std::string, std::string> environment{{"MAYA_PLUG_IN_PATH", orvo::test::testData()}};
    const auto expectFailure = [&](const char* command, const std::string& file, const std::string& name) {
        const std::vector<std::string> arguments{command, "proj/" + file, name, "--project", "proj"};
        write(folder_ / name, "earlier");
        EXPECT_EQ(run(arguments, environment).status, 1) << file;
        EXPECT_EQ(content(folder_ / name), "earlier") << file;
        auto goingOn = arguments;
        goingOn.push_back("--keep-going");
        EXPECT_EQ(run(goingOn, environment).status, 1) << file;
        EXPECT_NE(content(folder_ / name), "earlier") << file;
    };
    for (const char* file : {"value.ma", "plugin.ma", "library.ma", "templates.ma"}) {
        expectFailure("export", file, "a.atmos");
        expectFailure("render", file, "a.png");
    }
    // Shaders that are not found are nothing to an export.
    write(folder_ / "proj/scripts/OrvoGetPath_ToolsRoot.mel",
          "global proc string OrvoGetPath_ToolsRoot() { return \"/nowhere/\"; }\n");
    fs::create_directories(folder_ / "proj/build/clouds");
    fs::copy(orvo::test::testData("clouds/library.xml"), folder_ / "proj/build/clouds/library.xml");
    write(folder_ / "proj/shaders.ma",
          clouds + "setAttr \".cloudDataDir\" -type \"string\" \"build\\\\clouds\\\\library.xml\";\n");
    expectFailure("render", "shaders.ma", "a.png");
    const Outcome o = run({"export", "proj/shaders.ma", "b.atmos", "--project", "proj"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_THAT(o.error, HasSubstr("Warning: shadingS.shadingTexture names a file that is not there: build\\a.dds\n"));
    EXPECT_EQ(run({"export", "proj/shaders.ma", "c.atmos", "--project", "proj", "--strict"}).status, 1);
    EXPECT_FALSE(fs::exists(folder_ / "c.atmos"));
}

// Faults: clouds that are lost without a word when memory or threads run out.
TEST_F(Program, ExportsAllCloudsOrNone) {
    const std::string project = orvo::test::sourceTree("examples/project");
    ASSERT_EQ(run({"export", project + "/scenes/dusk.ma", "all.atmos", "--project", project}).status, 0);
    for (int kilobytes = 200000; kilobytes > 60000; kilobytes -= 20000) {
        const int status = std::system(("cd '" + folder_.string() + "' && ulimit -v " + std::to_string(kilobytes) +
                                        " && '" + orvo::test::program() + "' --project '" + project + "' export '" +
                                        project + "/scenes/dusk.ma' few.atmos >.out 2>.err")
                                           .c_str());
        if (status == 0) {
            EXPECT_EQ(content(folder_ / "few.atmos"), content(folder_ / "all.atmos")) << kilobytes;
            EXPECT_EQ(content(folder_ / "few.cdata"), content(folder_ / "all.cdata")) << kilobytes;
        } else {
            EXPECT_THAT(content(folder_ / ".err"), Not(IsEmpty())) << kilobytes;
            EXPECT_FALSE(fs::exists(folder_ / "few.atmos")) << kilobytes;
        }
        fs::remove(folder_ / "few.atmos");
        fs::remove(folder_ / "few.cdata");
    }
}

// Faults: files, numbers and choices that no reader can use and nobody hears of; a warning that does not say where; a
// cube map that GL refuses, shown as a checkerboard in silence; files looked for in no project.
TEST_F(Program, WarnsOfWhatNoReaderCanUse) {
    write(folder_ / "proj/workspace.mel", "//Maya 2010 Project Definition\n");
    fs::create_directories(folder_ / "proj/build/Skies");
    fs::copy(orvo::test::testData("textures/dxt1.dds"), folder_ / "proj/build/Skies/Plain.dds");
    fs::copy(orvo::test::testData("skies/faces.dds"), folder_ / "proj/build/Skies/faces.dds");
    const auto sky = [](const std::string& name, const char* type, const char* attribute, const char* path) {
        return "createNode transform -n \"" + name + "T\" -p \"OrvoSkyData\";\ncreateNode " + type + " -n \"" + name +
               "\" -p \"" + name + "T\";\nsetAttr \"." + attribute + "\" -type \"string\" \"build\\\\skies\\\\" + path +
               "\";\n";
    };
    write(folder_ / "proj/named.ma",
          smallScene + sky("gone", "orvosky_GradientSkyLocator", "gradientTexture", "gone.png") +
              sky("flat", "orvosky_TexturedSkyLocator", "cubeMapTexture", "plain.dds") +
              sky("cube", "orvosky_TexturedSkyLocator", "cubeMapTexture", "FACES.dds") +
              sky("off", "orvosky_GradientSkyLocator", "gradientTexture", "off.png") +
              "setAttr \".Enable\" no;\nsetAttr \"skyShape.zenithColour\" -type \"float3\" 0 nan 0;\n"
              "setAttr \"setShape.cloudBackBufferRes\" 9;\n");
    const auto takenIn = testing::AllOf(
        HasSubstr("Warning: gone.gradientTexture names a file that is not there: build\\skies\\gone.png\n"),
        HasSubstr(
            "Warning: flat.cubeMapTexture names a file that OpenGL cannot take, since it is no DDS cube map in DXT1, "
            "DXT3 or DXT5; a checkerboard is shown in its place: build\\skies\\plain.dds\n"),
        HasSubstr("Warning: skyShape.zenithColourG is not a finite number\n"),
        HasSubstr("Warning: setShape.cloudBackBufferRes is 9, which is none of its values\n"));
    Outcome o = run({"export", "proj/named.ma", "proj/a.atmos", "--project", "proj"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_THAT(o.error, takenIn);
    EXPECT_EQ(std::ranges::count(o.error, '\n'), 4) << o.error;
    o = run({"render", "proj/named.ma", "a.png", "--project", "proj", "--size", "16x9"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_THAT(o.error, takenIn);
    for (const char* command : {"export", "render"})
        EXPECT_EQ(run({command, "proj/named.ma", "b.atmos", "--project", "proj", "--strict"}).status, 1);

    write(folder_ / "proj/good.ma", smallScene +
                                        sky("gone", "orvosky_GradientSkyLocator", "gradientTexture", "gone.png") +
                                        sky("flat", "orvosky_TexturedSkyLocator", "cubeMapTexture", "plain.dds") +
                                        sky("cube", "orvosky_TexturedSkyLocator", "cubeMapTexture", "FACES.dds"));
    ASSERT_EQ(run({"export", "proj/good.ma", "proj/good.atmos", "--project", "proj"}).status, 0);
    fs::copy(folder_ / "proj/good.atmos", folder_ / "away.atmos");
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"inspect", "proj/good.atmos"}, {"inspect", "away.atmos", "--project", "proj/"}}) {
        o = run(arguments);
        EXPECT_EQ(o.status, 0) << o.error;
        EXPECT_THAT(o.error,
                    testing::MatchesRegex(
                        "Warning: [a-z/]*.atmos line [0-9]*, GradientSky 1: gradientTexture names a file that is "
                        "not there: skies.gone.png\n"
                        "Warning: [a-z/]*.atmos line [0-9]*, TexturedSky 1: texture names a file that OpenGL "
                        "cannot take, since it is no DDS cube map in DXT1, DXT3 or DXT5: skies.plain.dds\n"));
    }
    EXPECT_EQ(run({"inspect", "proj/good.atmos", "--strict"}).status, 1);
    EXPECT_THAT(run({"inspect", "away.atmos", "--strict"}).error, IsEmpty());
}

// Faults: a failure that does not say what lacks; a picture without its sky and without a word.
TEST_F(Program, SaysWhatTheSkyLacks) {
    const std::string renderer = "createNode transform -n \"r\";\ncreateNode orvosky_SkyRenderer -n \"rS\" -p \"r\";\n";
    const std::string root = "createNode transform -n \"OrvoSkyData\";\n", head = "//Maya ASCII 2010 scene\n";
    const std::string whole = smallScene;
    const auto said = [&](const char* command, const std::string& scene) {
        write(folder_ / "s.ma", scene);
        const Outcome o = run({command, "s.ma", std::string(command) + ".atmos.png", "--size", "16x9"});
        return o.error;
    };
    const auto exported = [&](const std::string& scene) {
        write(folder_ / "s.ma", scene);
        const Outcome o = run({"export", "s.ma", "a.atmos"});
        EXPECT_EQ(o.status, 1);
        return o.error;
    };
    EXPECT_THAT(exported(head + renderer), HasSubstr("a.atmos: the scene has no node named OrvoSkyData.\n"));
    EXPECT_THAT(exported(whole + "createNode transform -n \"g\";\ncreateNode transform -n \"OrvoSkyData\" -p \"g\";\n"),
                HasSubstr("a.atmos: the scene has 2 nodes named OrvoSkyData; there has to be one.\n"));
    EXPECT_THAT(exported(head + root), HasSubstr("a.atmos: there are no sky nodes under OrvoSkyData.\n"));

    const auto rendered = [&](const std::string& scene) { return said("render", scene); };
    const std::string none = "Warning: The picture shows no sky of a sky renderer: ";
    EXPECT_EQ(rendered(head), none + "the scene has no orvosky_SkyRenderer.\n");
    for (const char* off : {"renderer1Shape.Enable", "renderer1.v"})
        EXPECT_EQ(rendered(whole + "setAttr \"" + off + "\" no;\n"),
                  none + "no orvosky_SkyRenderer of the scene is switched on and visible.\n");
    EXPECT_EQ(rendered(head + renderer), none + "the scene has no node named OrvoSkyData.\n");
    for (const char* off : {"skyShape.Enable\" no", "sky.v\" no", "OrvoSkyData.template\" yes"})
        EXPECT_EQ(rendered(whole + "setAttr \"" + off + ";\n"),
                  none + "nothing under OrvoSkyData is switched on and visible.\n");
    EXPECT_EQ(rendered(whole), "");
}

// Fault: a picture that was not drawn taken for one.
TEST_F(Program, WithoutGl) {
    const Outcome o = run({"render", "small.ma", "a.png"}, {{"ORVOSKY_NO_GL", "1"}});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("No OpenGL context"));
    EXPECT_FALSE(fs::exists(folder_ / "a.png"));
}

// Faults: a picture of the wrong size or camera; options that do nothing.
TEST_F(Program, RendersPictures) {
    Outcome o = run({"render", "small.ma", "a.png", "--size", "64x36"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_THAT(o.out, HasSubstr("a.png (64 x 36, camera persp)"));
    const std::string png = content(folder_ / "a.png");
    ASSERT_GT(png.size(), 24u);
    const auto number = [&](std::size_t at) {
        return (static_cast<unsigned char>(png[at + 2]) << 8) + static_cast<unsigned char>(png[at + 3]);
    };
    EXPECT_EQ(number(16), 64);
    EXPECT_EQ(number(20), 36);
    EXPECT_EQ(run({"render", "small.ma", "b.jpg", "--size", "16x9", "--camera", "top"}).status, 0);
    EXPECT_THAT(content(folder_ / "b.jpg"), StartsWith("\xFF\xD8"));
    o = run({"render", "small.ma", "c.png", "--camera", "nobody"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("nobody"));

    // The default view looks at the ground; this one looks into the sun.
    write(folder_ / "moving.mel", "file -f -open \"small.ma\";\n"
                                  "setAttr persp.r -type \"double3\" 35.26 -135 0;\n"
                                  "setKeyframe -at sunIntensity -t 1 -v 0 skyShape;\n"
                                  "setKeyframe -at sunIntensity -t 24 -v 5 skyShape;\n");
    EXPECT_EQ(run({"render", "moving.mel", "t1.png", "--size", "64x36", "--time", "1"}).status, 0);
    EXPECT_EQ(run({"render", "moving.mel", "t24.png", "--size", "64x36", "--time", "24"}).status, 0);
    EXPECT_EQ(run({"render", "moving.mel", "again.png", "--size", "64x36", "--time", "1"}).status, 0);
    EXPECT_EQ(content(folder_ / "t1.png"), content(folder_ / "again.png"));
    EXPECT_NE(content(folder_ / "t1.png"), content(folder_ / "t24.png"));
}

// Faults: the studio's scripts not found, or the program's own tool root taken in spite of them.
TEST_F(Program, WorkspaceAndScripts) {
    write(folder_ / "proj/workspace.mel", "//Maya 2010 Project Definition\nworkspace -fr \"scene\" \"scenes\";\n");
    write(folder_ / "proj/scripts/userSetup.mel", "print \"set up\\n\";\n");
    write(folder_ / "proj/scripts/studioTool.mel", "global proc studioTool() { print \"tool\\n\"; }\n");
    const std::string ask = "print (OrvoGetPath_ToolsRoot() + \"\\n\");";
    Outcome o = run({"run", "-e", "studioTool; print `workspace -q -rd`;", "--project", "proj"});
    EXPECT_EQ(o.status, 0) << o.error;
    EXPECT_EQ(o.out, "set up\ntool\n" + fs::canonical(folder_ / "proj").string() + "/");
    EXPECT_THAT(run({"run", "-e", ask}).out, HasSubstr("share/orvosky/"));
    write(folder_ / "proj/scripts/OrvoGetPath_ToolsRoot.mel",
          "global proc string OrvoGetPath_ToolsRoot() { return \"T:/tools/\"; }\n");
    EXPECT_EQ(run({"--project", "proj", "run", "-e", ask}).out, "set up\nT:/tools/\n");

    EXPECT_NE(std::system(("mkdir '" + folder_.string() + "/brief' && cd '" + folder_.string() +
                           "/brief' && rmdir ../brief && '" + orvo::test::program() + "' run -e 'print 1;' 2>../said")
                              .c_str()),
              0);
    EXPECT_THAT(content(folder_ / "said"), StartsWith("Error: The current folder is gone"));
    o = run({"--project", "gone", "run", "-e", "print 1;"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("gone"));

    write(folder_ / "proj/scripts/userSetup.mel", "print \"before\\n\";\nnoSuchThing;\n");
    o = run({"--project", "proj", "run", "-e", "print \"after\\n\";"});
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.out, "before\nafter\n");
    EXPECT_THAT(o.error, HasSubstr("userSetup.mel line 2"));
}

// Faults: the example project broken by a change elsewhere.
TEST_F(Program, ExampleProject) {
    const std::string project = orvo::test::sourceTree("examples/project");
    setenv("MAYA_PLUG_IN_PATH", orvo::test::standIns().c_str(), 1); // a scene has terrain of another plug-in
    int scenes = 0;
    for (const auto& e : fs::directory_iterator(project + "/scenes")) {
        ++scenes;
        const std::string target = e.path().stem().string() + ".atmos";
        const Outcome o = run({"--project", project, "export", e.path().string(), target});
        EXPECT_EQ(o.status, 0) << o.error;
        EXPECT_THAT(o.error, Not(HasSubstr("Error")));
        EXPECT_EQ(std::system(("xmllint --noout --schema '" + orvo::test::sourceTree("docs/atmos.xsd") + "' '" +
                               (folder_ / target).string() + "' 2>/dev/null")
                                  .c_str()),
                  0);
    }
    EXPECT_GT(scenes, 0);
}

} // namespace
