#pragma once

#include "api/plugins/PluginManager.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "kit/Places.h"
#include "scene/Scene.h"

#include <gtest/gtest.h>

#include <string>

/// The running host with a plug-in of someone else's loaded by a script, as a user does it.
class TutorialPlugins : public testing::Test {
protected:
    static void SetUpTestSuite() {
        host::Host::Options options;
        options.pluginFolders = {orvo::test::buildTree("tests/tutorial/plug-ins")};
        host::Host::instance().start(options);
    }
    void SetUp() override {
        scene.reset();
        host::setLinearUnit(host::LinearUnit::Centimetre);
    }
    void TearDown() override {
        scene.reset();
        host::Host::instance().plugins().unloadAll();
    }
    host::mel::Value run(const std::string& mel) { return host::Host::instance().interpreter().execute(mel); }
    std::string failure(const std::string& mel) {
        try {
            run(mel);
        } catch (const host::mel::Error& e) {
            return e.what();
        }
        return {};
    }

    host::scene::Scene& scene = host::Host::instance().scene();
};
