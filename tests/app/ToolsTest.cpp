// What helps at the command line: node types, new projects, scripts from elsewhere, completion, and the documents that
// tell of the program.
#include "ProgramFixture.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include <regex>
#include <set>
#include <sstream>

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Tools : public Program {
protected:
    /// What a line of the shell writes in the test's folder; `orvosky` is the program.
    std::string shell(const std::string& line) {
        const std::string path = fs::path(orvo::test::program()).parent_path();
        std::ofstream(folder_ / "line.sh")
            << "cd '" << folder_.string() << "'\nexport PATH='" << path << "':$PATH HOME=$PWD TERM=dumb\n"
            << line << "\n";
        FILE* const pipe = popen(("bash '" + (folder_ / "line.sh").string() + "' 2>&1").c_str(), "r");
        std::string text;
        for (int c = 0; (c = std::fgetc(pipe)) != EOF;) text += static_cast<char>(c);
        pclose(pipe);
        return text;
    }
};

// Faults: an attribute that nobody explains, or an explanation of one that is not there any more; a table in the
// documents that is older than the nodes; limits, parts or defaults that are not those of the node. The values are
// those of the tables that the nodes were made from.
TEST_F(Tools, EveryAttributeIsExplained) {
    Outcome o = run({"nodes", "--json"});
    ASSERT_EQ(o.status, 0) << o.error;
    std::set<std::string> registered;
    const json types = json::parse(o.out);
    for (const json& type : types) {
        EXPECT_NE(type["about"], "") << type["type"];
        for (const json& attribute : type["attributes"]) {
            EXPECT_NE(attribute["meaning"], "") << type["type"] << attribute["name"];
            registered.insert(type["type"].get<std::string>() + "." + attribute["name"].get<std::string>());
        }
    }
    EXPECT_EQ(registered.count("orvosky_SkyRenderer.Enable"), 1u);
    const json explained = json::parse(content(orvo::test::sourceTree("plugin/attributes.json")));
    std::set<std::string> shown;
    for (const auto& [type, known] : explained.items())
        for (const auto& [name, meaning] : known["attributes"].items()) {
            EXPECT_EQ(registered.count(type + "." + name), 1u) << type << "." << name << " is explained, but not there";
            if (meaning.contains("looks")) shown.insert(meaning["looks"].get<std::string>());
        }
    // Each strip of pictures is linked to, by its heading as readers of Markdown make names of it.
    std::set<std::string> strips;
    std::istringstream looks(content(orvo::test::sourceTree("docs/looks.md")));
    for (std::string line; std::getline(looks, line);) {
        if (!line.starts_with("## ")) continue;
        std::string name;
        for (const char c : line.substr(3))
            if (c == ' ' || c == '-' || std::isalnum(static_cast<unsigned char>(c)))
                name += c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        strips.insert(name);
    }
    EXPECT_EQ(shown, strips);
    EXPECT_EQ(run({"nodes", "--markdown"}).out, content(orvo::test::sourceTree("docs/nodes.md")))
        << "orvosky nodes --markdown > docs/nodes.md";

    const json fogs = json::parse(run({"nodes", "orvosky_ExpHeightFog", "--json"}).out), fog = fogs.at(0);
    const auto named = [&](const char* name) {
        for (const json& attribute : fog["attributes"])
            if (attribute["name"] == name) return attribute;
        return json();
    };
    EXPECT_EQ(named("fogDensity")["min"], 0.0001);
    EXPECT_EQ(named("fogDensity")["softMax"], 20);
    EXPECT_FALSE(named("fogDensity").contains("max"));
    EXPECT_EQ(named("fogHeight")["unit"], "metres");
    EXPECT_EQ(named("fogColour")["children"], json({"fogColourR", "fogColourG", "fogColourB"}));
    EXPECT_EQ(named("fogColour")["default"], json({1, 1, 1}));
    EXPECT_THAT(run({"nodes", "orvosky_SkySceneSettings"}).out,
                HasSubstr("cloudBackBufferRes (enum), default 0, 0 Half, 1 Third, 2 Quarter"));
    o = run({"nodes", "orvosky_Nobody"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("no node type orvosky_Nobody"));
}

// Faults: a project, of any preset, that does not render or export as it stands, or warns; one made over what is there,
// or left half made; a preset by a name that is spelled a little otherwise.
TEST_F(Tools, NewProjectsWork) {
    Outcome o = run({"new", "other", "--preset", "nowhere"});
    EXPECT_EQ(o.status, 1);
    EXPECT_FALSE(fs::exists(folder_ / "other"));
    std::smatch names;
    ASSERT_TRUE(std::regex_search(o.error, names, std::regex("There is no preset nowhere; there are (.*)\\.")));
    std::istringstream list(names.str(1));
    int presets = 0;
    for (std::string name; list >> name; ++presets) {
        name.resize(name.find_last_not_of(',') + 1);
        const std::string scene = "made/" + name + "/scenes/sky.ma", target = name + ".atmos";
        ASSERT_EQ(run({"new", "made/" + name + "/", "--preset", name}).status, 0) << name;
        o = run({"render", scene, name + ".png", "--size", "32x18", "--strict"});
        EXPECT_EQ(o.status, 0) << name << o.error;
        o = run({"export", scene, target, "--strict"});
        EXPECT_EQ(o.status, 0) << name << o.error;
        o = run({"inspect", target, "--strict", "--project", "made/" + name});
        EXPECT_EQ(o.status, 0) << name << o.out << o.error;
    }
    EXPECT_EQ(presets, 8);
    o = run({"new", "made"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.error, HasSubstr("made is there already."));
    fs::create_directory(folder_ / "empty");
    EXPECT_EQ(run({"new", "empty", "--preset", "Towering-Cumulus"}).status, 0);
    EXPECT_THAT(run({"new", "small.ma/x"}).error, HasSubstr("Cannot make small.ma/x: "));
    EXPECT_THAT(leftovers(), IsEmpty());
}

// Faults: a node of the menu "Sky" that lacks what it needs to be exported: settings, clouds, their shading and
// textures.
TEST_F(Tools, TheMenusNodesCanBeExported) {
    for (const char* sky : {"orvoskyCreate orvosky_ParticleCloudDome dome;", "orvoskyCreateCloud;"}) {
        write(folder_ / "sky.mel", std::string("orvoskyCreate orvosky_BasicSkyLocator sky; ") + sky);
        const Outcome o = run({"export", "sky.mel", "sky.atmos", "--strict", "--project", "."});
        EXPECT_EQ(o.status, 0) << sky << o.error;
        EXPECT_GT(fs::file_size(folder_ / "sky.cdata"), 128u) << sky;
    }
}

// Faults: a step of the tutorial that does not work as it stands there, warns, or changes nothing that is seen.
TEST_F(Tools, TheTutorialsScriptWorks) {
    ASSERT_EQ(run({"new", "skies"}).status, 0);
    std::istringstream lines(content(orvo::test::sourceTree("docs/tutorial.md")));
    std::string script, last;
    int steps = 0;
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == "```mel") {
            inside = true;
        } else if (inside && line == "```") {
            inside = false;
            ++steps;
            write(folder_ / "skies/scripts/evening.mel", script);
            const Outcome o = run({"render", "skies/scripts/evening.mel", "step.bmp", "--size", "64x36", "--strict"});
            EXPECT_EQ(o.status, 0) << "step " << steps << ": " << o.error;
            EXPECT_NE(content(folder_ / "step.bmp"), last) << "step " << steps;
            last = content(folder_ / "step.bmp");
        } else if (inside) {
            script += line + "\n";
        }
    }
    EXPECT_GE(steps, 5);
    Outcome o = run({"export", "skies/scripts/evening.mel", "evening.atmos", "--strict"});
    EXPECT_EQ(o.status, 0) << o.error;
    o = run({"inspect", "evening.atmos", "--strict", "--project", "skies"});
    EXPECT_EQ(o.status, 0) << o.out << o.error;
    EXPECT_GT(fs::file_size(folder_ / "evening.cdata"), 100'000u) << "clouds";
}

// Faults: a script from a pipe that is not run, or whose errors name no place; a prompt that ends at the first error,
// runs a statement before it is whole, or forgets its lines.
TEST_F(Tools, ScriptsComeFromElsewhere) {
    EXPECT_EQ(shell("echo 'print (\"a\" + size($argv) + $argv[1]);' | orvosky run - x y"), "a2y");
    EXPECT_THAT(shell("printf 'print 1;\\nnonsense;\\n' | orvosky run -; echo $?"),
                AllOf(HasSubstr("standard input line 2"), HasSubstr("\n1\n")));
    if (std::system("command -v script >/dev/null") != 0) GTEST_SKIP() << "no terminal to be had";
    const std::string said =
        shell("printf 'nonsense;\\nproc int two() {\\nreturn 2;\\n}\\nprint (two() * 21);\\nquit;\\nprint 77;\\n' |"
              " script -qec 'orvosky run -' /dev/null");
    EXPECT_THAT(said, AllOf(HasSubstr("nonsense"), HasSubstr("42"), Not(HasSubstr("\n77"))));
    EXPECT_THAT(content(folder_ / ".local/state/orvosky/history"), HasSubstr("two"));
}

// Faults: a summary, a difference or a list that tells something else than the files hold; alike files that differ.
TEST_F(Tools, InspectComparesAndLists) {
    ASSERT_EQ(run({"new", "p"}).status, 0);
    ASSERT_EQ(run({"export", "p/scenes/sky.ma", "p/a.atmos"}).status, 0);
    ASSERT_EQ(run({"export", "p/scenes/sky.ma", "p/b.atmos"}).status, 0);
    Outcome o = run({"inspect", "--diff", "p/a.atmos", "p/b.atmos"});
    EXPECT_EQ(o.status, 0) << o.out << o.error;
    EXPECT_THAT(o.out, IsEmpty());
    ASSERT_EQ(run({"export", "p/scenes/sky.ma", "p/b.atmos", "--set", "hazeShape.fogHeight=60", "--set",
                   "cloudDomeShape.cloudScale=1.4"})
                  .status,
              0);
    o = run({"inspect", "--diff", "p/a.atmos", "p/b.atmos"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.out, AllOf(HasSubstr("- ExpHeightFog: fogHeight 40\n"), HasSubstr("+ ExpHeightFog: fogHeight 60\n"),
                             HasSubstr("+ data of ")));
    EXPECT_THAT(o.out, Not(HasSubstr("GradientSky")));
    EXPECT_EQ(run({"inspect", "--diff", "p/a.atmos"}).status, 2);
    o = run({"inspect", "--summary", "p/a.atmos"});
    EXPECT_EQ(o.status, 0);
    EXPECT_THAT(o.out, AllOf(HasSubstr("sky scene, version 7, everything fits"), HasSubstr("GradientSky"),
                             HasSubstr("0 of them missing")));
    EXPECT_EQ(run({"inspect", "--list-files", "p/scenes/sky.ma"}).status, 0);
    fs::remove(folder_ / "p/build/orvosky/times_of_day.png");
    o = run({"inspect", "--list-files", "p/a.atmos"});
    EXPECT_EQ(o.status, 1);
    EXPECT_THAT(o.out, HasSubstr("missing  orvosky\\times_of_day.png  (GradientSky 1, gradientTexture)"));
    o = run({"inspect", "--list-files", "p/scenes/sky.ma", "--json"});
    EXPECT_EQ(o.status, 1);
    int there = 0, missing = 0;
    const json files = json::parse(o.out);
    for (const json& file : files) ++(file["there"] ? there : missing);
    EXPECT_EQ(there, 2);
    EXPECT_EQ(missing, 1);
    // The data of an export is damaged.
    fs::resize_file(folder_ / "p/a.cdata", 5);
    EXPECT_EQ(run({"inspect", "p/a.atmos"}).status, 1);
}

// Fault: a completion that knows other words than the program.
TEST_F(Tools, BashCompletesWords) {
    const std::string source = "source '" + orvo::test::sourceTree("packaging/orvosky.bash") + "'; ";
    const auto completed = [&](const std::string& words, int at) {
        return shell(source + "COMP_WORDS=(" + words + "); COMP_CWORD=" + std::to_string(at) +
                     "; _orvosky; echo ${COMPREPLY[@]}");
    };
    EXPECT_EQ(completed("orvosky ren", 1), "render\n");
    EXPECT_EQ(completed("orvosky render --pan", 2), "--panorama\n");
    EXPECT_EQ(completed("orvosky nodes orvosky_Exp", 2), "orvosky_ExpHeightFog\n");
    EXPECT_EQ(completed("orvosky render sma", 2), "small.ma\n");
}

// Faults: the same, or words that zsh takes otherwise than they are meant. A zsh types the lines, with a tab at the end
// of each, and tells what it then has.
TEST_F(Tools, ZshCompletesWords) {
    if (std::system("command -v zsh >/dev/null") != 0) GTEST_SKIP() << "no zsh to be had";
    const std::pair<const char*, const char*> lines[] = {
        {"orvosky ren", "orvosky render "},
        {"orvosky render --pan", "orvosky render --panorama "},
        {"orvosky nodes orvosky_Exp", "orvosky nodes orvosky_ExpHeightFog "},
        {"orvosky render sma", "orvosky render small.ma "},
        {"orvosky help insp", "orvosky help inspect "}};
    std::string script = "zmodload zsh/zpty; zpty z zsh -f -i\nzpty -w z 'fpath=(" +
                         orvo::test::sourceTree("packaging") +
                         " $fpath); autoload -Uz compinit; compinit -u -d $PWD/.dump'\n"
                         "zpty -w z 'say() { print -r -- $BUFFER >> said; BUFFER= }; zle -N say; bindkey ^T say'\n";
    std::string expected;
    for (const auto& [typed, has] : lines) {
        script += "zpty -w -n z $'" + std::string(typed) + "\\t\\C-t'\n";
        expected += std::string(has) + "\n";
    }
    write(folder_ / "type.zsh", script + "zpty -w z exit; while zpty -r z text; do :; done\n");
    const std::string said = shell("zsh -f type.zsh");
    EXPECT_EQ(content(folder_ / "said"), expected) << said;
}

// Fault: a manual page that readers of such pages complain of, or that lacks a subcommand.
TEST_F(Tools, TheManualPageIsOne) {
    if (std::system("command -v mandoc >/dev/null") != 0) GTEST_SKIP() << "no mandoc to be had";
    const std::string page = (folder_ / "orvosky.1").string();
    EXPECT_EQ(shell("python3 '" + orvo::test::sourceTree("scripts/make_man.py") + "' orvosky 1 '" + page +
                    "'; mandoc -T lint -W warning '" + page + "'"),
              "");
    const std::string shown = shell("mandoc -T ascii '" + page + "' | col -b");
    for (const char* part : {"NAME", "ORVOSKY RENDER", "ORVOSKY BATCH", "orvosky render scenes/dusk.ma dusk.png"})
        EXPECT_THAT(shown, HasSubstr(part));
}

} // namespace
