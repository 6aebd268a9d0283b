#pragma once

#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

inline std::string content(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void write(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
}

struct Outcome {
    int status = -1;
    std::string out, error;
};

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
        const fs::path out = folder_ / ".out", error = folder_ / ".err";
        // When a process ends that has drawn, the GL driver is unloaded before the leak check, which then cannot tell
        // what the driver lost from what we lost. Tests that draw in their own process do check for leaks.
        if (!arguments.empty() && (arguments[0] == "render" || arguments[0] == "batch"))
            environment.try_emplace("ASAN_OPTIONS", "detect_leaks=0");
        arguments.insert(arguments.begin(), orvo::test::program());
        const pid_t child = fork();
        if (child == 0) {
            if (chdir(folder_.c_str()) != 0) _exit(99);
            const auto redirect = [](const fs::path& file, int to) {
                const int fd = open(file.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0600);
                dup2(fd, to);
                close(fd);
            };
            redirect(out, STDOUT_FILENO);
            redirect(error, STDERR_FILENO);
            for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
            if (fileLimit != RLIM_INFINITY) {
                const rlimit limit{fileLimit, fileLimit};
                setrlimit(RLIMIT_FSIZE, &limit);
            }
            std::vector<char*> argv;
            for (auto& a : arguments) argv.push_back(a.data());
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(98);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), content(out), content(error)};
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
