#pragma once

#include "kit/Places.h"
#include "kit/ProgramRun.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace fs = std::filesystem;

using orvo::test::content;
using orvo::test::Outcome;
using orvo::test::write;

/// A scene that exports: settings and a sky.
inline const char* const smallScene = R"(//Maya ASCII 2010 scene
requires maya "2010";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "OrvoSkyData";
createNode transform -n "set" -p "OrvoSkyData";
createNode orvosky_SkySceneSettings -n "setShape" -p "set";
createNode transform -n "sky" -p "OrvoSkyData";
createNode orvosky_BasicSkyLocator -n "skyShape" -p "sky";
createNode transform -n "renderer1";
createNode orvosky_SkyRenderer -n "renderer1Shape" -p "renderer1";
)";

/// Runs the program in a folder of its own, which holds small.ma.
class Program : public testing::Test {
protected:
    void SetUp() override { write(folder_ / "small.ma", smallScene); }

    /// Runs the program in the test's folder. `fileLimit` bounds what it may write to one file, in bytes.
    Outcome run(std::vector<std::string> arguments, std::map<std::string, std::string> environment = {},
                rlim_t fileLimit = RLIM_INFINITY) {
        // When a process ends that has drawn, the GL driver is unloaded before the leak check, which then cannot tell
        // what the driver lost from what we lost. Tests that draw in their own process do check for leaks.
        if (!arguments.empty() && (arguments[0] == "render" || arguments[0] == "batch"))
            environment.try_emplace("ASAN_OPTIONS", "detect_leaks=0");
        return orvo::test::runProgram(folder_, std::move(arguments), environment, fileLimit);
    }

    /// What the program made for itself in the folder and should have removed.
    std::vector<std::string> leftovers() const {
        std::vector<std::string> found;
        for (const auto& e : fs::directory_iterator(folder_)) {
            const std::string name = e.path().filename();
            if (name.starts_with(".part")) found.push_back(name);
        }
        return found;
    }

    orvo::test::TemporaryFolder folder_;
};
