#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

/// What benchmarks of the whole program share.
namespace bench {

namespace fs = std::filesystem;

/// A folder of the run's own, removed at its end.
inline const fs::path& workFolder() {
    static const struct Folder {
        fs::path path = fs::temp_directory_path() / ("orvosky-bench-" + std::to_string(getpid()));
        Folder() { fs::create_directories(path); }
        ~Folder() { fs::remove_all(path); }
    } folder;
    return folder.path;
}

/// Runs the program without its output. False when it fails.
inline bool runProgram(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ORVOSKY_PROGRAM);
    std::vector<char*> argv;
    for (auto& a : arguments) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    const bool started = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0;
    if (started) waitpid(child, &status, 0);
    posix_spawn_file_actions_destroy(&actions);
    return started && status == 0;
}

} // namespace bench
