#include "SceneFileFixture.h"

#include "files/Workspace.h"

#include <gmock/gmock.h>

using namespace host;
using testing::HasSubstr;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

namespace fs = std::filesystem;
using WorkspaceTest = SceneFileFixture;

// Faults: rules misread, workspace.mel run, the search upward missing the nearest or not ending.
TEST_F(WorkspaceTest, ReadsRulesAndRunsNothing) {
    const fs::path root = temporary("project");
    fs::create_directories(root / "scenes/sub");
    put(root / "workspace.mel",
        "//Maya 2010 Project Definition\n\nworkspace -fr \"scene\" \"scenes\";\n"
        "workspace -fr \"images\" \"out/images\";\nworkspace -v \"v\" \"1\";\nsystem(\"touch x\");\n");
    EXPECT_EQ(files::Workspace::findUpward(root / "scenes/sub"), root);
    const files::Workspace w(root);
    EXPECT_THAT(w.fileRules, UnorderedElementsAre(Pair("scene", "scenes"), Pair("images", "out/images")));
    EXPECT_THAT(w.variables, UnorderedElementsAre(Pair("v", "1")));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_THAT(messages[0], HasSubstr("workspace.mel line 6: 'system' is refused"));
    EXPECT_EQ(w.rootDirectory(), root.generic_string() + "/");
    EXPECT_EQ(w.expand("a\\b/../c"), root.generic_string() + "/a/c");
    EXPECT_EQ(w.expand("/x/y"), "/x/y");
    put(root / "scenes/s.ma", "x");
    EXPECT_EQ(w.findScene("s.ma"), (root / "scenes/s.ma").generic_string());
    EXPECT_EQ(w.findScene("scenes/s.ma"), (root / "scenes/s.ma").generic_string());

    // An empty file still marks a project.
    put(root / "workspace.mel", "");
    EXPECT_THAT(files::Workspace(root).fileRules, testing::IsEmpty());
    EXPECT_EQ(messages.size(), 1u);
}

// Faults: a project that went away crashes what asks for it, or is opened again without a word.
TEST_F(WorkspaceTest, AFolderThatIsGone) {
    const fs::path root = temporary("gone");
    fs::create_directories(root);
    files::Workspace w(root);
    fs::remove_all(root);
    EXPECT_EQ(w.rootDirectory(), root.generic_string() + "/");
    EXPECT_THROW(w.open(root), files::FileError);
    put(temporary("file"), "x");
    EXPECT_THROW(w.open(temporary("file")), files::FileError);
    EXPECT_EQ(w.root(), root);
    EXPECT_EQ(files::Workspace(root).root(), root);
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_EQ(files::Workspace::findUpward("/"), std::nullopt);
}

// Fault: a broken workspace.mel half replaces the rules of the project that is open.
TEST_F(WorkspaceTest, ABrokenFileChangesNothing) {
    const fs::path good = temporary("good"), broken = temporary("broken");
    fs::create_directories(good);
    fs::create_directories(broken);
    put(good / "workspace.mel", "workspace -fr \"a\" \"b\";\n");
    put(broken / "workspace.mel", "workspace -fr \"c\" \"d\";\nworkspace -fr \"e\n");
    files::Workspace w(good);
    try {
        w.open(broken);
        FAIL();
    } catch (const files::FileError& e) {
        EXPECT_THAT(e.what(), HasSubstr("broken/workspace.mel line 2: "));
    }
    EXPECT_EQ(w.root(), good);
    EXPECT_THAT(w.fileRules, UnorderedElementsAre(Pair("a", "b")));
}

} // namespace
