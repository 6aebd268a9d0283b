#include "api/plugins/PluginManager.h"
#include "kit/Places.h"

#include "MessageLog.h"
#include "kit/TemporaryFolder.h"
#include "scene/Scene.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

using host::api::PluginManager;
using host::scene::SceneError;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

namespace {

/// A manager that looks into two folders of the test's own. Each copy of the module is a plug-in of its own.
class PluginLoading : public testing::Test {
protected:
    PluginLoading() {
        first = folder_ / "first";
        second = folder_ / "second";
        fs::create_directories(first);
        fs::create_directories(second);
        manager.setSearchPath({first, second});
        scene.reset();
    }
    ~PluginLoading() override {
        scene.reset();
        manager.unloadAll();
    }
    static fs::path install(const fs::path& folder, const std::string& name, const char* module = "moodyPlugin") {
        const fs::path file = folder / (name + ".so");
        fs::copy_file(fs::path(orvo::test::buildTree("tests/plugin/loading/plug-ins")) / (std::string(module) + ".so"),
                      file);
        return file;
    }
    template <class F>
    static std::string failure(F&& f) {
        try {
            f();
        } catch (const SceneError& e) {
            return e.what();
        }
        return "";
    }
    std::string loadFailure(const std::string& name) {
        return failure([&] { manager.load(name); });
    }

    host::scene::Scene& scene = host::scene::Scene::current();
    fs::path first, second;
    PluginManager manager;
    MessageLog log_;

private:
    orvo::test::TemporaryFolder folder_;
};

} // namespace

// Catches a search from the back, one that ends at the first folder, and a file's name that is not its plug-in's.
TEST_F(PluginLoading, SearchPathGoesFromTheFront) {
    install(second, "fineA");
    const fs::path wanted = install(first, "fineA");
    EXPECT_EQ(manager.load("fineA").path, wanted);
    EXPECT_EQ(manager.find("fineA")->vendor, "Moody");
    EXPECT_EQ(manager.find("fineA")->version, "2.5");
    EXPECT_THAT(manager.find("fineA")->nodeTypes, ElementsAre("fineANode"));
    manager.unload("fineA");
    fs::remove(wanted);
    fs::create_directory(first / "fineA.so"); // a folder is no module
    EXPECT_EQ(manager.load("fineA.so").path, second / "fineA.so");
    manager.unload("fineA.so");
    EXPECT_EQ(manager.find("fineA"), nullptr);
    EXPECT_THAT(loadFailure("fineB"), HasSubstr("\"fineB\", was not found on the plug-in search path"));
    manager.setSearchPath({});
    EXPECT_NE(loadFailure("fineA"), "");
}

// Catches a plug-in that is started twice: under its name, its file name, or a path.
TEST_F(PluginLoading, LoadingWhatIsLoadedDoesNothing) {
    const fs::path file = install(first, "fine");
    auto& plugin = manager.load("fine");
    EXPECT_EQ(&manager.load("fine.so"), &plugin);
    EXPECT_EQ(&manager.load(file.string()), &plugin);
    EXPECT_EQ(&manager.loadByBareName("fine"), &plugin);
    EXPECT_THAT(manager.loaded(), SizeIs(1));
}

// Catches a name with a folder in it that leads out of the search path.
TEST_F(PluginLoading, BareNamesHaveNoFolder) {
    install(second, "fine");
    for (const std::string name : {"", ".", "..", "../second/fine", "a\\fine", "/fine"})
        EXPECT_THAT(failure([&] { manager.loadByBareName(name); }), HasSubstr("is refused")) << name;
    EXPECT_THAT(manager.loaded(), IsEmpty());
}

// Catches a plug-in that failed and counts as loaded, an exception of its own that ends the host, a status that is
// not told, and one that cannot be tried again once its fault is mended.
TEST_F(PluginLoading, FailedInitialisation) {
    install(first, "failing");
    install(first, "throwing");
    for (int round = 0; round < 2; ++round) {
        EXPECT_THAT(loadFailure("failing"),
                    AllOf(HasSubstr("failing.so\" failed to initialize: "), HasSubstr("(kNotFound): Item not found")));
        EXPECT_THAT(loadFailure("throwing"), HasSubstr("failed to initialize"));
        EXPECT_THAT(log_.errors(), ElementsAre("throwing: exception in initializePlugin: not today"));
        log_.clear();
    }
    EXPECT_THAT(manager.loaded(), IsEmpty());
    EXPECT_EQ(manager.find("failing"), nullptr);
    EXPECT_THAT(failure([&] { manager.unload("failing"); }), HasSubstr("is not loaded"));
}

// Catches code that is taken away while what it registered lives on: making such a node would jump into nothing.
TEST_F(PluginLoading, WhatAFailedPluginRegisteredKeepsItsCode) {
    install(first, "partial");
    EXPECT_THAT(loadFailure("partial"), HasSubstr("failed to initialize"));
    EXPECT_EQ(manager.find("partial"), nullptr);
    auto* type = scene.findType("partialNode");
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(scene.createNode(*type)->type.name, "partialNode");
    scene.reset();
    EXPECT_TRUE(scene.unregisterType(*type));
}

// Catches a library of some other kind that is called all the same, and one whose reason is not told.
TEST_F(PluginLoading, FilesThatAreNoPlugins) {
    install(first, "half", "noEntryPoints");
    std::ofstream(first / "text.so") << "no library";
    EXPECT_THAT(loadFailure("half"), HasSubstr("has no entry points initializePlugin and uninitializePlugin"));
    EXPECT_THAT(loadFailure("text"), AllOf(HasSubstr("cannot be loaded: "), HasSubstr("text.so")));
    EXPECT_THAT(loadFailure((first / "missing").string()), HasSubstr("was not found"));
    EXPECT_THAT(manager.loaded(), IsEmpty());
}

// Catches nodes, also those that only the undo queue holds, whose code goes while they live.
TEST_F(PluginLoading, UnloadingInUse) {
    install(first, "fine");
    manager.load("fine");
    const auto makeNode = [&] { return scene.createNode(*scene.findType("fineNode"), "user").get(); };
    makeNode();
    EXPECT_EQ(failure([&] { manager.unload("fine"); }),
              "Plug-in, \"fine\", cannot be unloaded because it is still in use: node 'user'.");
    EXPECT_NE(manager.find("fine"), nullptr);
    {
        const host::scene::UndoQueue::Chunk chunk(scene.undo);
        scene.deleteNodes({scene.findNode("user")});
    }
    EXPECT_TRUE(scene.undo.canUndo());
    EXPECT_EQ(failure([&] { manager.unload("fine"); }), "");
    EXPECT_FALSE(scene.undo.canUndo()) << "the node could come back";
    EXPECT_EQ(scene.findType("fineNode"), nullptr);
    manager.load("fine");
    EXPECT_EQ(makeNode()->name, "user");
}

// Catches a refusal to go that is taken for gone, and an endless try to unload everything.
TEST_F(PluginLoading, APluginThatDoesNotGoStays) {
    install(first, "clinging");
    manager.load("clinging");
    EXPECT_THAT(failure([&] { manager.unload("clinging"); }), HasSubstr("\"clinging\", failed to uninitialize: "));
    EXPECT_NE(manager.find("clinging"), nullptr);
    EXPECT_NE(scene.findType("clingingNode"), nullptr);
    manager.unloadAll();
    EXPECT_THAT(log_.errors(), ElementsAre(HasSubstr("failed to uninitialize")));
    EXPECT_THAT(manager.loaded(), SizeIs(1));
    scene.unregisterType(*scene.findType("clingingNode"));
}
