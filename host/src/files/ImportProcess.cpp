#include "files/ImportProcess.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace host::files {
namespace {

using Clock = std::chrono::steady_clock;

/// The program while it runs, with the end of its output. Whatever happens, nothing of it is left behind.
class Child {
public:
    Child(const std::filesystem::path& program, const std::filesystem::path& file) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) fail(program, errno);
        output_ = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawnattr_t attributes;
        sigset_t all, none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setsigmask(&attributes, &none);
        std::string name = program.string(), argument = file.string();
        std::array<char*, 3> arguments{name.data(), argument.data(), nullptr};
        const int failed = ::posix_spawn(&pid_, name.c_str(), &actions, &attributes, arguments.data(), environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        if (failed == 0) return;
        pid_ = -1;
        ::close(output_);
        fail(program, failed);
    }
    ~Child() {
        ::close(output_);
        if (pid_ < 0) return;
        ::kill(pid_, SIGKILL);
        while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {}
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Reads up to the end of the output. False when the time is up before.
    bool read(std::vector<char>& message, std::uint64_t most, Clock::time_point end) {
        std::array<char, 1 << 16> part;
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
            if (left <= 0) return false;
            pollfd waiting{output_, POLLIN, 0};
            const int ready = ::poll(&waiting, 1, static_cast<int>(std::min<long long>(left + 1, INT_MAX)));
            if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
            const ssize_t got = ::read(output_, part.data(), part.size());
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return true;
            if (static_cast<std::uint64_t>(got) > most - message.size())
                throw ImportError(fmt::format("its meshes take more than {} MiB", most >> 20));
            message.insert(message.end(), part.data(), part.data() + got);
        }
    }

    /// Waits for its end. False when the time is up before.
    bool wait(int& status, Clock::time_point end) {
        for (timespec pause{0, 100'000};; pause.tv_nsec = std::min(2 * pause.tv_nsec, 50'000'000L)) {
            const pid_t ended = ::waitpid(pid_, &status, WNOHANG);
            if (ended == pid_ || (ended < 0 && errno != EINTR)) break;
            if (Clock::now() >= end) return false;
            ::nanosleep(&pause, nullptr);
        }
        pid_ = -1;
        return true;
    }

private:
    [[noreturn]] static void fail(const std::filesystem::path& program, int code) {
        throw ImportError(
            fmt::format("\"{}\", which would read it, cannot be started: {}", program.string(), std::strerror(code)));
    }

    int output_ = -1;
    pid_t pid_ = -1;
};

} // namespace

std::vector<char> runImporter(const std::filesystem::path& program, const std::filesystem::path& file,
                              std::chrono::milliseconds mostTime, std::uint64_t mostBytes) {
    const auto end = Clock::now() + mostTime;
    std::vector<char> message;
    int status = 0;
    Child child(program, file);
    const bool inTime = child.read(message, mostBytes, end) && child.wait(status, end);
    if (!inTime || (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU))
        throw ImportError(fmt::format("it takes longer than {} s to read",
                                      std::chrono::duration_cast<std::chrono::duration<double>>(mostTime).count()));
    if (WIFSIGNALED(status)) {
        const char* name = sigabbrev_np(WTERMSIG(status));
        throw ImportError(fmt::format("it is damaged, or nested too deeply: its reader was ended by SIG{}",
                                      name ? name : std::to_string(WTERMSIG(status))));
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw ImportError(fmt::format("its reader failed with status {}", WEXITSTATUS(status)));
    return message;
}

} // namespace host::files
