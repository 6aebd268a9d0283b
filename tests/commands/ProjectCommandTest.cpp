#include "CommandFixture.h"

using host::mel::StringArray;
using testing::HasSubstr;

namespace {

using ProjectCommandTest = CommandFixture;

// Fault: a session without a window that tells of nothing but that.
TEST_F(ProjectCommandTest, TellsWhatItRunsIn) {
    EXPECT_EQ(text("about -v"), "2010");
    EXPECT_EQ(number("about -api"), 201000);
    EXPECT_TRUE(holds("about -batch"));
    EXPECT_EQ(number("`about -linux` + `about -mac` + `about -win`"), 1);
}

// Faults: a root without its slash, rules that a query mixes up, overwrites or forgets, expansion against the current
// folder in place of the root, rules that are not saved or not read back.
TEST_F(ProjectCommandTest, WorkspaceRootAndRules) {
    EXPECT_EQ(text("workspace -q -rootDirectory;"), path("") == project.generic_string() ? path("") + "/" : path(""));
    EXPECT_EQ(text("workspace -q -fullName;"), project.generic_string());
    EXPECT_EQ(text("workspace -q -shortName;"), project.path().filename().string());
    EXPECT_EQ(text("workspace -q -directory;"), project.generic_string());
    run("workspace -fileRule \"scene\" \"shots\" -fr images \"out/img\" -v \"show\" \"clouds \\\"one\\\"\";");
    EXPECT_EQ(texts("workspace -q -fileRule;"), (StringArray{"images", "out/img", "scene", "shots"}));
    EXPECT_EQ(texts("workspace -q -frl;"), (StringArray{"images", "scene"}));
    EXPECT_EQ(text("workspace -q -fileRuleEntry \"images\";"), "out/img");
    EXPECT_EQ(text("workspace -fre \"none\" -q;"), "");
    EXPECT_EQ(text("workspace -q -variableEntry show;"), "clouds \"one\"");
    EXPECT_EQ(texts("workspace -q -vl;"), StringArray{"show"});
    EXPECT_EQ(text("workspace -expandName \"out/./x.png\";"), path("out/x.png"));
    EXPECT_EQ(text("workspace -en \"/abs/x\";"), "/abs/x");
    EXPECT_EQ(text("file -rename bare;"), path("shots/bare.ma")); // the rule says where scenes go
    run("workspace -dir \"shots\";");
    EXPECT_EQ(text("workspace -q -dir;"), path("shots"));
    EXPECT_EQ(text("workspace -en \"x\";"), path("x"));
    run("workspace -removeFileRuleEntry images; workspace -saveWorkspace;");
    run("workspace -fr scene lost; workspace -openWorkspace " + quoted("") + ";");
    EXPECT_EQ(texts("workspace -q -fr;"), (StringArray{"scene", "shots"}));
    EXPECT_EQ(text("workspace -q -ve show;"), "clouds \"one\"");
    EXPECT_EQ(text("workspace -q -dir;"), project.generic_string());
}

// Faults: anything in workspace.mel run as a script; a project that cannot be opened half replacing the one that is.
TEST_F(ProjectCommandTest, WorkspaceFilesAreReadAndNeverRun) {
    for (const char* folder : {"hostile", "broken", "scenes"}) std::filesystem::create_directories(project / folder);
    write("hostile/workspace.mel", "workspace -fr \"scene\" \"safe\";\nglobal int $gRan = 1;\n"
                                   "sysFile -delete " +
                                       quoted("kept.txt") +
                                       ";\ncreateNode transform -n ran;\n"
                                       "if (1) { eval(\"createNode transform -n ran\"); }\n"
                                       "workspace -fr \"images\" `sysFile -delete " +
                                       quoted("kept.txt") + "`;\n");
    write("broken/workspace.mel", "workspace -fr \"scene\" \"bad\";\nworkspace -fr \"open");
    write("kept.txt", "x");
    run("workspace -o " + quoted("hostile") + ";");
    EXPECT_EQ(text("workspace -q -fre scene;"), "safe");
    EXPECT_FALSE(holds("objExists ran;"));
    EXPECT_EQ(read("kept.txt"), "x");
    EXPECT_FALSE(host::Host::instance().interpreter().globalVariable("gRan").has_value());
    for (const char* refused : {"line 2", "line 3: 'sysFile' is refused", "line 4: 'createNode' is refused", "line 5"})
        EXPECT_THAT(warnings, HasSubstr(refused));

    for (const char* bad : {"broken", "none", "kept.txt"}) {
        EXPECT_THAT(failure("workspace -o " + quoted(bad) + ";"), HasSubstr(path(bad)));
        EXPECT_EQ(text("workspace -q -fullName;"), path("hostile"));
        EXPECT_EQ(text("workspace -q -fre scene;"), "safe");
    }
    EXPECT_NE(failure("workspace -o;"), "no error");
    EXPECT_THAT(failure("workspace -fr \"scene\";"), HasSubstr("2 values"));
    EXPECT_NE(failure("workspace -q;"), "no error");
}

struct UnitCase {
    const char* flags;
    const char* plug;
    double inDefault; ///< the value in centimetres, degrees or film frames
    double inUnit;
};

// Faults: a factor that is inverted, of another unit, or applied to plain numbers; stored values that change with the
// unit; limits and defaults that are given in another unit than values.
TEST_F(ProjectCommandTest, UnitsInEffect) {
    run("createNode transform -n a; addAttr -ln time -at time -k 1 a; addAttr -ln plain -at double a;");
    for (const auto& [flags, plug, inDefault, inUnit] : {UnitCase{"-l m", "tx", 250, 2.5},
                                                         {"-linear mm", "tx", 1, 10},
                                                         {"-l inch", "tx", 25.4, 10},
                                                         {"-l ft", "tx", 30.48, 1},
                                                         {"-l yard", "tx", 91.44, 1},
                                                         {"-l km", "tx", 1e5, 1},
                                                         {"-l mi", "tx", 160934.4, 1},
                                                         {"-angle rad", "rx", 180, 3.14159265358979},
                                                         {"-a min", "rx", 1.5, 90},
                                                         {"-a second", "rx", 0.5, 1800},
                                                         {"-time pal", "time", 24, 25},
                                                         {"-t ntscf", "time", 12, 30},
                                                         {"-t sec", "time", 36, 1.5},
                                                         {"-l m -a rad", "plain", 3, 3}}) {
        const std::string name = std::string("a.") + plug, f = flags;
        run("setAttr " + name + " " + std::to_string(inDefault) + "; currentUnit " + f + ";");
        EXPECT_NEAR(number("getAttr " + name + ";"), inUnit, 1e-6) << f;
        run("setAttr " + name + " " + std::to_string(2 * inUnit) + "; currentUnit -l cm -a deg -t film;");
        EXPECT_NEAR(number("getAttr " + name + ";"), 2 * inDefault, 2e-6 * inDefault) << f;
    }
    run("currentUnit -l m; addAttr -ln far -at doubleLinear -min 1 -max 3 -dv 2 a; currentUnit -l cm;");
    EXPECT_NEAR(number("getAttr a.far;"), 200, 1e-9);
    EXPECT_NE(failure("setAttr a.far 99;"), "no error");
    run("setAttr a.far 300;");
}

// Faults: a wrong unit taken silently or after others of the call have been changed, short and long names mixed up.
TEST_F(ProjectCommandTest, UnitNames) {
    EXPECT_EQ(text("currentUnit -l meter -a radian;"), "meter");
    EXPECT_EQ(text("currentUnit -q -linear;"), "m");
    EXPECT_EQ(text("currentUnit -q -l -fullName;"), "meter");
    EXPECT_EQ(text("currentUnit -q -a -f;"), "radian");
    EXPECT_EQ(text("currentUnit -t ntsc; currentUnit -q -t;"), "ntsc");
    EXPECT_EQ(text("currentUnit -t \"100fps\"; currentUnit -q -t;"), "100fps");
    for (const char* wrong :
         {"-l cm -a turn", "-a deg -l parsec", "-l cm -t \"0fps\"", "-l cm -t \"-5fps\"", "-l \"\""})
        EXPECT_THAT(failure("currentUnit " + std::string(wrong) + ";"), HasSubstr("is not a unit of")) << wrong;
    EXPECT_EQ(text("currentUnit -q -l;"), "m");
    EXPECT_EQ(text("currentUnit -q -a;"), "rad");
    EXPECT_NE(failure("currentUnit -q;"), "no error");
}

// Faults: notes of a scene lost in the file, split at quotes, kept after they were removed; a change of them that the
// next save is not asked for.
TEST_F(ProjectCommandTest, FileInfo) {
    run("file -mf 0; fileInfo \"sky\" \"a \\\"b\\\" \\\\ c\"; fileInfo license student;");
    EXPECT_TRUE(holds("file -q -mf;"));
    EXPECT_EQ(texts("fileInfo -q;"), (StringArray{"license", "student", "sky", "a \"b\" \\ c"}));
    EXPECT_EQ(texts("fileInfo -q sky;"), StringArray{"a \"b\" \\ c"});
    EXPECT_TRUE(texts("fileInfo -q none;").empty());
    run("fileInfo sky new; file -rename info; file -save; file -new;");
    EXPECT_TRUE(texts("fileInfo -q;").empty());
    run("file -open info.ma;");
    EXPECT_EQ(texts("fileInfo -q sky;"), StringArray{"new"});
    EXPECT_FALSE(holds("file -q -mf;"));
    run("fileInfo -remove sky;");
    EXPECT_TRUE(holds("file -q -mf;")) << "a note that is removed is a change to save";
    EXPECT_EQ(texts("fileInfo -q;"), (StringArray{"license", "student"}));
    EXPECT_NE(failure("fileInfo sky;"), "no error");
    EXPECT_NE(failure("fileInfo;"), "no error");
}

// Faults: a scene's requirement of the host itself taken for a plug-in; a missing plug-in passed over.
TEST_F(ProjectCommandTest, Requires) {
    run("requires maya \"2010\"; requires \"maya\" \"4.0\";");
    EXPECT_THAT(failure("requires noSuchPlugin \"1.0\";"), HasSubstr("noSuchPlugin"));
    EXPECT_THAT(failure("requires -nodeType \"sky\" \"../evil\" \"1.0\";"), HasSubstr("evil"));
    EXPECT_NE(failure("requires;"), "no error");
}

} // namespace
