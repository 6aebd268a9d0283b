#pragma once

#include "MessageLog.h"
#include "api/plugins/PluginManager.h"
#include "commands/Host.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"
#include "scene/Scene.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

/// A test in an empty scene, in a project of its own, with the plug-in loaded. The host is started once a process.
class PluginScene : public testing::Test {
protected:
    PluginScene() {
        static const bool started = start();
        (void)started;
        host::scene::Scene::current().reset();
        log_.clear();
    }

    /// The process's own; `artsource` below it is the workspace. Gone when the process ends.
    static const std::filesystem::path& project() {
        static const orvo::test::TemporaryFolder folder;
        return folder;
    }

    /// Runs MEL; false when it fails.
    bool mel(const std::string& script) {
        try {
            result_ = host::Host::instance().interpreter().execute(script);
            return true;
        } catch (const std::exception& e) {
            failure_ = e.what();
            return false;
        }
    }
    /// Runs MEL that must work.
    void must(const std::string& script) { ASSERT_TRUE(mel(script)) << failure_ << "\n" << script; }

    /// Makes the project the tools' root too, with the plug-in's shader files in it.
    void makeToolsRoot(const std::filesystem::path& shaders) {
        const auto folder = project() / "ArtTools/Maya/OrvoSkyTool/shaders";
        std::filesystem::create_directories(folder);
        using enum std::filesystem::copy_options;
        std::filesystem::copy(shaders, folder, overwrite_existing | recursive);
        must("global proc string OrvoGetPath_ToolsRoot() { return \"" + project().string() + "/\"; }");
    }

    static std::string contents(const std::filesystem::path& file) { return orvo::test::content(file); }

    MessageLog log_;
    host::mel::Value result_;
    std::string failure_;

private:
    static bool start() {
        std::filesystem::create_directories(project() / "artsource");
        auto& host = host::Host::instance();
        host.start({.project = project() / "artsource", .pluginFolders = {}, .scriptFolders = {}});
        host.plugins().load(orvo::test::plugin());
        return true;
    }
};
