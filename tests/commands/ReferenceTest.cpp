#include "CommandFixture.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

struct ReferenceTest : CommandFixture {
    ReferenceTest() {
        for (const char* name : {"set", "level", "prop"})
            std::filesystem::copy_file(orvo::test::testData(std::string("references/") + name + ".ma"),
                                       project / "scenes" / (std::string(name) + ".ma"));
    }
    void open(const std::string& name) {
        warnings.clear();
        errors.clear();
        run("file -f -o " + quoted("scenes/" + name));
    }
    void saveAndOpenAgain() {
        run("file -rename " + quoted("scenes/again.ma") + "; file -save;");
        open("again.ma");
    }
    /// A scene that only refers to others.
    void refer(const std::string& name, const std::vector<std::string>& others) {
        std::string text = "//Maya ASCII 2011 scene\nrequires maya \"2011\";\ncreateNode transform -n \"own\";\n";
        int n = 0;
        for (const auto& other : others) {
            const std::string space = "r" + std::to_string(++n);
            text += "file -r -ns \"" + space + "\" -dr 1 -rfn \"" + space + "RN\" \"" + other + "\";\n";
        }
        write("scenes/" + name, text);
    }

    std::string errors;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        (severity == host::Severity::Error ? errors : warnings) += std::string(text) + '\n';
    }};
};

} // namespace

TEST_F(ReferenceTest, NestedReferencesAreReadWithTheirEditsAndSavedAsReferences) {
    open("set.ma");
    EXPECT_EQ(errors, "");
    EXPECT_THAT(warnings, HasSubstr("The reference is kept and not read: /show/references/gone.ma: cannot be found"));
    for (const char* round : {"opened", "saved and opened again"}) {
        SCOPED_TRACE(round);
        EXPECT_THAT(texts("ls -type transform \"*:*\""), ElementsAre("level:ground", "level:table"));
        EXPECT_EQ(number("getAttr level:table.tx"), 500); // that file is in metres
        EXPECT_THAT(texts("listRelatives -c level:table"), ElementsAre("level:prop:cup", "lamp"));
        EXPECT_THAT(numbers("getAttr level:prop:cup.t"), ElementsAre(3, 1, 1));
        EXPECT_THAT(numbers("getAttr level:prop:cup.s"), ElementsAre(2, 2, 2));
        EXPECT_NEAR(number("getAttr level:prop:cup.ry"), 6, 1e-6);
        EXPECT_EQ(text("getAttr level:table.note"), "oak");
        EXPECT_EQ(number("getAttr lamp.tz"), 7);
        EXPECT_EQ(number("currentTime -q"), 12); // not what the references say
        EXPECT_THAT(texts("ls \"*fosterParent*\""), ElementsAre());
        saveAndOpenAgain();
        EXPECT_EQ(errors, "");
    }
    const std::string saved = read("scenes/again.ma");
    EXPECT_THAT(saved, Not(HasSubstr("createNode transform -n \"level")));
    EXPECT_THAT(saved, HasSubstr("file -rdi 2 -ns \"prop\" -rfn \"level:propRN\" \"/show/references/prop.ma\";\n"));
    EXPECT_THAT(saved, HasSubstr("2 \"|level:table|level:prop:cup\" \"translateX\" \" 3\""));
    EXPECT_THAT(saved, HasSubstr("5 3 \"goneRN\" \"|gone:sun.translateX\" \"goneRN.placeHolderList[1]\" \"\";"));
    EXPECT_THAT(saved, HasSubstr("connectAttr \"goneRN.phl[1]\" \"wind.tz\";"));
}

TEST_F(ReferenceTest, WhatChangesSinceIsSavedAsEdits) {
    open("set.ma");
    run("setAttr level:prop:cup.tx 10; setAttr -type \"string\" level:table.note \"a \\\"b\\\"\"; setAttr -l on "
        "level:ground.ty;"
        "addAttr -ln size -at double -k true level:ground; setAttr level:ground.size 4; connectAttr wind.ty "
        "level:table.ty;"
        "disconnectAttr level:prop:twice.ox level:prop:cup.ry; connectAttr level:prop:cup.tx level:table.tz;"
        "setAttr wind.ty 3; disconnectAttr level:ground.tx lamp.tz");
    for (int round = 0; round < 2; ++round) {
        saveAndOpenAgain();
        EXPECT_EQ(errors, "");
        EXPECT_EQ(number("getAttr level:prop:cup.tx"), 10);
        EXPECT_EQ(text("getAttr level:table.note"), "a \"b\"");
        EXPECT_TRUE(holds("getAttr -l level:ground.ty"));
        EXPECT_EQ(number("getAttr level:ground.size"), 4);
        EXPECT_EQ(number("getAttr level:table.ty"), 3);
        EXPECT_EQ(number("getAttr level:table.tz"), 10);
        EXPECT_EQ(number("getAttr level:ground.tx"), 7);
        EXPECT_FALSE(holds("isConnected level:prop:twice.ox level:prop:cup.ry"));
        EXPECT_FALSE(holds("isConnected level:ground.tx lamp.tz"));
    }
    EXPECT_THAT(failure("delete level:prop:cup"), HasSubstr("it belongs to a reference"));
    EXPECT_THAT(failure("rename level:ground floor"), HasSubstr("it belongs to a reference"));
    EXPECT_THAT(failure("parent -w level:prop:cup"), HasSubstr("it belongs to a reference"));
}

TEST_F(ReferenceTest, MovedPointsAreSavedAsEdits) {
    run("polyPlane -sx 1 -sy 1 -ch 0 -n floor; move -r 0 2 0 floor.vtx[1]; file -rename " + quoted("scenes/floor.ma") +
        "; file -save; file -f -new; file -r -ns \"r\" " + quoted("scenes/floor.ma") +
        "; move -r 0 1 0 r:floor.vtx[0:1]; move -r 0 5 0 r:floor.vtx[2]; undo;");
    run("setAttr r:floorShape.pnts[3] 0 7 0");
    EXPECT_THAT(failure("setAttr r:floorShape.vrts[3] 0 7 0"), HasSubstr("belongs to a reference"));
    EXPECT_THAT(failure("polyUVSet -create -uvSet \"two\" r:floor"),
                HasSubstr("belongs to a reference, so only its points can be changed"));
    for (const char* round : {"once", "again"}) {
        SCOPED_TRACE(round);
        saveAndOpenAgain();
        EXPECT_EQ(errors, "");
        EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[0]`; $p[1]"), 1);
        EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[1]`; $p[1]"), 3);
        EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[2]`; $p[1]"), 0);
        EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[3]`; $p[1]"), 7);
    }
    run("move -r 0 -1 0 r:floor.vtx[0]"); // back to where the reference has it
    saveAndOpenAgain();
    EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[0]`; $p[1]"), 0);
    EXPECT_EQ(number("float $p[] = `pointPosition r:floor.vtx[1]`; $p[1]"), 3);
}

TEST_F(ReferenceTest, CommandsMakeAskAndRemove) {
    EXPECT_EQ(text("file -r -ns \"one\" \"prop.ma\""), path("scenes/prop.ma"));
    EXPECT_THAT(texts("file -r -rnn -ns \"one\" \"level.ma\""),
                testing::UnorderedElementsAre("|one1:table", "|one1:ground", "one1:propRN", "|one1:table|one1:prop:cup",
                                              "one1:prop:twice", "one1RN"));
    EXPECT_THAT(texts("file -q -r"), ElementsAre(path("scenes/prop.ma"), path("scenes/level.ma")));
    EXPECT_EQ(text("referenceQuery -rfn one1:prop:cup"), "one1:propRN");
    EXPECT_EQ(text("referenceQuery -rfn -tr one1:prop:cup"), "one1RN");
    EXPECT_EQ(text("referenceQuery -f -shn one:cup"), "prop.ma");
    EXPECT_EQ(text("file -q -ns " + quoted("scenes/level.ma")), "one1");
    EXPECT_TRUE(holds("referenceQuery -inr one:cup"));
    run("setAttr one1:prop:cup.ty 8; file -rr -rfn oneRN");
    saveAndOpenAgain();
    EXPECT_THAT(texts("ls -type transform \"*:*\""), ElementsAre("one1:ground", "one1:table"));
    EXPECT_EQ(number("getAttr one1:prop:cup.ty"), 8);
    run("file -rr " + quoted("scenes/level.ma"));
    EXPECT_THAT(texts("ls \"*:*\""), ElementsAre());
    EXPECT_THAT(failure("file -r \"nothing.ma\""), HasSubstr("no reference to"));
    EXPECT_THAT(texts("ls -type reference"), ElementsAre());
}

// Faults: a prefix that is not heeded, is taken for a namespace, or does not come back with the scene.
TEST_F(ReferenceTest, PrefixesRenameWhatAReferenceBrings) {
    run("file -r -rpr \"own\" \"prop.ma\"; setAttr own_cup.ty 8; file -r -rpr \"own\" \"prop.ma\";");
    for (const char* round : {"made", "saved and opened again"}) {
        SCOPED_TRACE(round);
        EXPECT_THAT(texts("ls -rn -tr"), ElementsAre("own1_cup", "own_cup"));
        EXPECT_THAT(texts("ls -rf"), ElementsAre("own1RN", "ownRN"));
        EXPECT_EQ(number("getAttr own_cup.ty"), 8);
        saveAndOpenAgain();
        EXPECT_EQ(errors, "");
    }
    EXPECT_FALSE(holds("namespace -exists own"));
}

// Fault: of several references to one file another one asked, removed or loaded than the one that was named.
TEST_F(ReferenceTest, CopiesOfOneFileAreToldApart) {
    EXPECT_EQ(text("file -r -ns \"level\" \"level.ma\""), path("scenes/level.ma")); // which has prop.ma
    const std::string first = path("scenes/prop.ma");
    for (const char* copy : {"{1}", "{2}", "{3}"}) EXPECT_EQ(text("file -r -ns \"a\" \"prop.ma\""), first + copy);
    EXPECT_THAT(texts("file -q -r"), ElementsAre(path("scenes/level.ma"), first + "{1}", first + "{2}", first + "{3}"));
    EXPECT_EQ(text("referenceQuery -f a1:cup"), first + "{2}");
    EXPECT_EQ(text("referenceQuery -f -wcn -shn a1:cup"), "prop.ma");
    EXPECT_EQ(text("referenceQuery -f level:prop:cup"), first);
    EXPECT_EQ(text("file -q -ns \"" + first + "{2}\""), "a1");
    EXPECT_THAT(texts("ls -rf"), ElementsAre("a1RN", "a2RN", "aRN", "level:propRN", "levelRN"));
    EXPECT_THAT(texts("ls -rn -tr \"*:cup\""), ElementsAre("a1:cup", "a2:cup", "a:cup"));
    run("setAttr a1:cup.ty 8; file -ur \"" + first + "{2}\"; file -lr a1RN");
    EXPECT_EQ(text("referenceQuery -f a1:cup"), first + "{2}");
    EXPECT_EQ(number("getAttr a1:cup.ty"), 8);
    run("file -rr \"" + first + "{2}\"");
    EXPECT_THAT(texts("ls \"*:cup\" \"*:*:cup\""), ElementsAre("a2:cup", "a:cup", "level:prop:cup"));
    run("file -rr \"" + first + "\""); // the file alone: the scene's own
    EXPECT_THAT(texts("ls \"*:cup\" \"*:*:cup\""), ElementsAre("a2:cup", "level:prop:cup"));
}

// Faults: edits, connections or children that are lost while a reference is not loaded, or come back twice; nodes of
// the scene that go with it; a reference that cannot be read any more and is gone.
TEST_F(ReferenceTest, SingleReferencesAreUnloadedAndLoaded) {
    open("set.ma");
    run("file -r -ns \"other\" \"prop.ma\"; setAttr level:prop:cup.ty 8; connectAttr level:table.ry wind.rx;"
        "connectAttr other:cup.tx level:table.rz; sets -n some level:table wind");
    const auto whole = [&] {
        EXPECT_EQ(number("getAttr level:prop:cup.ty"), 8);
        EXPECT_EQ(number("getAttr level:prop:cup.tx"), 3) << "an edit of the file that was opened";
        EXPECT_EQ(text("getAttr level:table.note"), "oak");
        EXPECT_THAT(texts("listRelatives -c level:table"), ElementsAre("level:prop:cup", "lamp"));
        EXPECT_THAT(texts("listConnections -p 1 -s 1 -d 0 wind.rx"), ElementsAre("level:table.rotateY"));
        EXPECT_THAT(texts("listConnections -p 1 -s 1 -d 0 level:table.rz"), ElementsAre("other:cup.translateX"));
        EXPECT_THAT(texts("listConnections -p 1 -s 1 -d 0 level:ground.tx"), ElementsAre("wind.translateX"));
        EXPECT_THAT(texts("sets -q some"), testing::UnorderedElementsAre("level:table", "wind"));
        EXPECT_THAT(texts("ls \"*fosterParent*\""), ElementsAre());
        EXPECT_EQ(errors, "");
    };
    const auto without = [&] {
        EXPECT_THAT(texts("ls \"level:*\" \"level:prop:*\""), ElementsAre());
        EXPECT_FALSE(holds("referenceQuery -il levelRN"));
        EXPECT_TRUE(holds("referenceQuery -il otherRN"));
        EXPECT_EQ(number("getAttr lamp.ty"), 2);
        EXPECT_EQ(errors, "");
    };
    whole();
    EXPECT_EQ(text("file -unloadReference levelRN"), "/show/references/level.ma");
    without();
    run("file -unloadReference levelRN"); // there is nothing left to do
    saveAndOpenAgain();
    without();
    EXPECT_EQ(text("file -loadReference levelRN"), path("scenes/level.ma"));
    whole();
    run("setAttr level:prop:cup.tz 5; file -loadReference levelRN");
    EXPECT_EQ(number("getAttr level:prop:cup.tz"), 5) << "read anew";
    whole();
    saveAndOpenAgain();
    whole();
    std::filesystem::rename(project / "scenes/level.ma", project / "scenes/moved.ma");
    EXPECT_THAT(failure("file -loadReference levelRN"), HasSubstr("could not be loaded"));
    without();
    run("file -loadReference levelRN \"moved.ma\"");
    whole();
    EXPECT_THAT(texts("file -q -r"), testing::Contains(path("scenes/moved.ma")));
    EXPECT_THAT(failure("file -unloadReference level:propRN"), HasSubstr("belongs to the reference 'levelRN'"));
    EXPECT_THAT(failure("file -loadReference wind"), HasSubstr("belongs to no reference"));
    run("file -unloadReference levelRN; file -rr -rfn levelRN; file -rename " + quoted("scenes/again.ma") +
        "; file -save;");
    EXPECT_THAT(read("scenes/again.ma"), Not(HasSubstr("level")));
    EXPECT_EQ(text("ls -l lamp"), "|lamp") << "it is the scene's own";
    // Long statements go over several lines, and a node for the reference may be missing.
    write("scenes/long.ma", "//Maya ASCII 2011 scene\nfile -rdi 1 -ns \"p\" -dr 1\n\t\t-rfn \"pRN\" -op \"v=0;\" -typ "
                            "\"mayaAscii\"\n\t\t\"prop.ma\";\nfile -r -ns \"p\" -dr 1 -rfn \"pRN\" -op \"v=0;\"\n\t\t"
                            "\"prop.ma\";\nrequires maya \"2011\";\n");
    open("long.ma");
    EXPECT_FALSE(holds("referenceQuery -il pRN"));
    run("file -loadReference pRN");
    EXPECT_TRUE(holds("objExists p:cup"));
    run("file -unloadReference pRN");
    EXPECT_FALSE(holds("`objExists p:cup` || `referenceQuery -il pRN`"));
    EXPECT_EQ(errors, "");
}

// Faults: what the selection needs is missing, what it does not need is there; a reference that goes or stays wrongly.
TEST_F(ReferenceTest, TheSelectionIsExportedWithWhatItNeeds) {
    open("set.ma");
    run("polyCube -n box; polySphere -n ball; group -n pair box; sets -e -fe initialShadingGroup ball;"
        "shadingNode -asShader lambert -n paint; sets -renderable true -noSurfaceShader true -empty -n paintSG;"
        "connectAttr paint.outColor paintSG.surfaceShader; sets -e -fe paintSG box ball; spaceLocator -n driver;"
        "connectAttr driver.tx box.ty; setAttr driver.tx 3; select box; file -es " +
        quoted("scenes/part.ma"));
    open("part.ma");
    EXPECT_EQ(errors, "");
    EXPECT_THAT(texts("ls -type transform -type shadingEngine -type lambert -type reference"),
                testing::IsSupersetOf({"pair", "box", "driver", "paint", "paintSG"}));
    for (const char* other : {"ball", "wind", "lamp", "levelRN", "level:table"})
        EXPECT_FALSE(holds(std::string("objExists \"") + other + "\"")) << other;
    EXPECT_EQ(text("ls -l box"), "|pair|box");
    EXPECT_EQ(number("getAttr box.ty"), 3);
    EXPECT_THAT(texts("polyEvaluate -f box"), ElementsAre("6"));
    EXPECT_THAT(texts("sets -q paintSG"), ElementsAre("boxShape"));
    open("set.ma");
    run("setAttr level:prop:cup.ty 8; select level:prop:cup; file -es " + quoted("scenes/part.ma"));
    open("part.ma");
    EXPECT_EQ(number("getAttr level:prop:cup.ty"), 8);
    EXPECT_FALSE(holds("objExists goneRN"));
    EXPECT_THAT(failure("select -cl; file -es " + quoted("scenes/part.ma")), HasSubstr("Nothing is selected"));
}

TEST_F(ReferenceTest, FilesThatIncludeThemselvesOrLieElsewhereAreKept) {
    refer("a.ma", {"b.ma"});
    refer("b.ma", {"a.ma", "prop.ma"});
    open("a.ma");
    EXPECT_THAT(errors, HasSubstr("includes itself: a.ma -> b.ma -> a.ma"));
    EXPECT_EQ(number("getAttr r1:r2:cup.tx"), 1);

    const orvo::test::TemporaryFolder elsewhere;
    const auto outside = elsewhere / "outside.ma";
    std::filesystem::copy_file(project / "scenes/prop.ma", outside);
    std::filesystem::create_symlink(outside, project / "scenes/link.ma");
    std::filesystem::create_directory(project / "scenes/folder.ma");
    write("scenes/broken.ma", "//Maya ASCII 2011 scene\ncreateNode transform -n \"x");
    refer("bad.ma", {outside.string(), "link.ma", "../../../../etc/passwd", "folder.ma", "broken.ma", "prop.ma"});
    open("bad.ma");
    EXPECT_THAT(warnings, HasSubstr(outside.string() + ": lies outside of the project and of the scene's folder"));
    EXPECT_THAT(warnings, HasSubstr("link.ma: lies outside"));
    EXPECT_THAT(warnings, HasSubstr("folder.ma: cannot be found"));
    EXPECT_THAT(errors, HasSubstr("broken.ma line 2: "));
    EXPECT_THAT(texts("ls \"*:*\""), ElementsAre("r6:cup", "r6:twice"));
    run("file -rename " + quoted("scenes/kept.ma") + "; file -save");
    for (int n = 1; n <= 6; ++n)
        EXPECT_THAT(read("scenes/kept.ma"), HasSubstr("-rfn \"r" + std::to_string(n) + "RN\" \""));
}

TEST_F(ReferenceTest, NamesThatClashAreTold) {
    write("scenes/clash.ma", "//Maya ASCII 2011 scene\n"
                             "file -r -ns \"x\" -rfn \"xRN\" \"prop.ma\";\n"
                             "file -r -ns \"x\" -rfn \"yRN\" \"level.ma\";\n"
                             "file -r -ns \"z\" -rfn \"xRN\" \"level.ma\";\n");
    open("clash.ma");
    EXPECT_THAT(errors, HasSubstr("the namespace 'x' is taken by the reference to prop.ma; 'level.ma' is kept"));
    EXPECT_THAT(errors, HasSubstr("the reference node 'xRN' is taken"));
    EXPECT_THAT(texts("ls \"*:*\""), ElementsAre("x:cup", "x:twice"));
    run("file -rename " + quoted("scenes/kept.ma") + "; file -save");
    EXPECT_THAT(read("scenes/kept.ma"), HasSubstr("file -r -ns \"x\" -rfn \"yRN\" \"level.ma\";"));
}

// Each refers twice to the next: 2^30 of the last.
TEST_F(ReferenceTest, ReferencesThatMultiplyEnd) {
    for (int n = 0; n < 30; ++n) {
        const std::string next = "m" + std::to_string(n + 1) + ".ma";
        refer("m" + std::to_string(n) + ".ma", {next, next});
    }
    write("scenes/m30.ma", "//Maya ASCII 2011 scene\ncreateNode transform -n \"own\";\n");
    open("m0.ma");
    EXPECT_THAT(errors, HasSubstr("there are too many references within references"));
}

TEST_F(ReferenceTest, Namespaces) {
    EXPECT_EQ(text("namespace -add \"a\"; namespace -add \"b\" -p \"a\""), "a:b");
    run("namespace -set \"a:b\"; group -em -n x; createNode multiplyDivide; namespace -set \":\"; group -em -n y");
    EXPECT_THAT(texts("namespaceInfo -ls \"a:b\""), ElementsAre("a:b:x", "a:b:multiplyDivide1"));
    EXPECT_THAT(texts("namespaceInfo -lon -r"), ElementsAre("a", "a:b"));
    EXPECT_THAT(texts("ls -type transform \"*\""), testing::Not(testing::Contains("a:b:x")));
    EXPECT_THAT(texts("ls \"a:*:x\" \"*:*:mult*\""), ElementsAre("a:b:x", "a:b:multiplyDivide1"));
    EXPECT_EQ(text("namespace -ren \"a\" \"c\""), "c");
    EXPECT_TRUE(holds("objExists c:b:x"));
    EXPECT_THAT(failure("namespace -rm \"c:b\""), HasSubstr("is not empty"));
    run("namespace -mv \"c:b\" \":\"");
    EXPECT_TRUE(holds("objExists x"));
    EXPECT_FALSE(holds("namespace -rm \"c:b\"; namespace -ex \"c:b\""));
    EXPECT_THAT(failure("namespace -set \"none\""), HasSubstr("No namespace matches name"));
    EXPECT_THAT(failure("namespace -add \"1 x\""), HasSubstr("is not a name for a namespace"));
}
