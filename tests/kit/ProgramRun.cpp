#include "ProgramRun.h"

#include "Places.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace orvo::test {

Outcome runProgram(const std::filesystem::path& folder, std::vector<std::string> words,
                   const std::map<std::string, std::string>& environment, rlim_t fileLimit) {
    const std::filesystem::path out = folder / ".out", error = folder / ".err";
    words.insert(words.begin(), program());
    const pid_t child = fork();
    if (child == 0) {
        if (chdir(folder.c_str()) != 0) _exit(99);
        const auto redirect = [](const std::filesystem::path& file, int to) {
            const int opened = open(file.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0600);
            dup2(opened, to);
            close(opened);
        };
        redirect(out, STDOUT_FILENO);
        redirect(error, STDERR_FILENO);
        for (const auto& [name, value] : environment)
            value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
        if (fileLimit != RLIM_INFINITY) {
            const rlimit limit{fileLimit, fileLimit};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        std::vector<char*> arguments;
        for (auto& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(98);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), content(out), content(error)};
}

} // namespace orvo::test
