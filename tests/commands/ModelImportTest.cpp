#include "CommandFixture.h"
#include "kit/Places.h"

#include <filesystem>

using host::mel::FloatArray;
using host::mel::StringArray;
using testing::FloatNear;
using testing::HasSubstr;
using testing::Pointwise;

namespace {

class ModelImport : public CommandFixture {
protected:
    ModelImport() {
        for (const char* name : {"objects.obj", "panes.gltf", "house.fbx"})
            std::filesystem::copy_file(orvo::test::testData(std::string("import/") + name), project / "scenes" / name);
    }
    void expectNumbers(const std::string& mel, const std::vector<float>& expected) {
        const auto found = numbers(mel);
        EXPECT_THAT(std::vector<float>(found.begin(), found.end()), Pointwise(FloatNear(1e-4f), expected)) << mel;
    }
};

// Faults: transforms taken apart wrongly, shapes in the wrong place or not shown, names that clash, a type that is
// refused, an import that cannot be taken back.
TEST_F(ModelImport, MakesTransformsAndShapes) {
    run("createNode transform -n stand; file -mf 0;");
    const StringArray made = texts("file -import -type \"glTF\" -returnNewNodes \"panes.gltf\";");
    EXPECT_EQ(made, (StringArray{"|stand1", "|stand1|pane", "|stand1|pane|paneShape", "|stand1|pane1",
                                 "|stand1|pane1|paneShape1"}));
    expectNumbers("getAttr stand1.t;", {100, 50, 0});
    expectNumbers("getAttr stand1.r;", {0, 90, 0});
    expectNumbers("getAttr \"|stand1|pane.s\";", {2, 3, 1});
    expectNumbers("getAttr \"|stand1|pane1.shear\";", {0.5f, 0, 0});
    expectNumbers("getAttr \"|stand1|pane1.t\";", {0, 0, -25});
    // The pane reaches from the stand's place 200 along its X, which is -Z here, and 300 up.
    expectNumbers("exactWorldBoundingBox \"|stand1|pane\";", {100, 50, -200, 100, 350, 0});
    EXPECT_THAT(texts("sets -q initialShadingGroup;"), testing::Contains(HasSubstr("paneShape")));
    EXPECT_TRUE(holds("file -q -mf;"));
    run("undo;");
    EXPECT_FALSE(holds("objExists stand1;"));
    EXPECT_TRUE(holds("objExists stand;"));
    run("redo;");
    expectNumbers("exactWorldBoundingBox \"|stand1|pane\";", {100, 50, -200, 100, 350, 0});

    EXPECT_EQ(text("file -i " + quoted("scenes/objects.obj") + ";"), path("scenes/objects.obj"));
    EXPECT_EQ(number("polyEvaluate -face roof;"), 2);
    EXPECT_EQ(texts("file -i -type OBJ -ns props -rnn objects.obj;")[0], "|props:roof");
    EXPECT_EQ(texts("file -i -rpr left -rnn house.fbx;")[0], "|left_house_no_1");
    run("file -rename kept; file -save; file -new; file -open kept.ma;");
    EXPECT_EQ(number("polyEvaluate -face \"props:roof\";"), 2);
    expectNumbers("getAttr left_house_no_1.t;", {25.4f, 0, -10.16f});
    expectNumbers("exactWorldBoundingBox \"|stand1|pane\";", {100, 50, -200, 100, 350, 0});
}

// Faults: a failed import that leaves nodes, the changed mark or a step of undo behind, or says nothing of use.
TEST_F(ModelImport, FailuresChangeNothing) {
    write("scenes/broken.fbx", "hello");
    write("scenes/model.stl", "solid x\nendsolid x\n");
    run("file -mf 0;");
    const auto before = texts("ls;");
    EXPECT_THAT(failure("file -i broken.fbx;"), HasSubstr("broken.fbx: "));
    EXPECT_THAT(failure("file -i absent.obj;"), HasSubstr("absent.obj: there is no such file"));
    EXPECT_THAT(
        failure("file -i model.stl;"),
        HasSubstr("files of the type '.stl' are not supported; Maya ASCII scenes, OBJ, glTF and FBX can be imported."));
    EXPECT_EQ(failure("file -i -type \"IGES\" objects.obj;"), "file: the type 'IGES' cannot be imported.");
    EXPECT_EQ(texts("ls;"), before);
    EXPECT_FALSE(holds("file -q -mf;"));
}

} // namespace
