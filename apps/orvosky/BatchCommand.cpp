#include "Progress.h"
#include "Session.h"

#include "base/Letters.h"
#include "base/Messages.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

namespace orvosky {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// A run of the program for one scene.
struct Step {
    const char* verb; ///< the subcommand
    std::string target;
    double seconds = 0;
    int status = -1;                                                ///< -1 while it has not run
    std::vector<std::pair<std::string, std::string>> messages = {}; ///< severity and text
};

struct Scene {
    std::string file;
    std::vector<Step> steps;
    std::string refusal = {}; ///< why nothing is tried

    bool worked() const {
        return refusal.empty() && std::ranges::all_of(steps, [](const Step& s) { return s.status == kWorked; });
    }
    double seconds() const {
        double sum = 0;
        for (const Step& step : steps) sum += step.seconds;
        return sum;
    }
    /// The first thing that went wrong.
    std::string reason() const {
        if (!refusal.empty()) return refusal;
        for (const Step& step : steps)
            if (step.status > 0)
                for (const auto& [severity, text] : step.messages)
                    if (severity == "error") return text;
        return "unknown";
    }
};

bool isScene(const fs::path& file) {
    const std::string ending = host::extensionOf(file);
    return ending == ".ma" || ending == ".mel" || ending == ".mb";
}

/// The scenes that a list names.
std::vector<std::string> readList(const fs::path& list) {
    std::ifstream in(list);
    std::error_code none;
    if (!in || fs::is_directory(list, none)) throw Failure("Cannot read the list " + list.string() + ".");
    std::vector<std::string> scenes;
    for (std::string line; std::getline(in, line);) {
        line.erase(0, std::min(line.find_first_not_of(" \t\r"), line.size()));
        line.erase(line.find_last_not_of(" \t\r") + 1);
        if (!line.empty() && line.front() != '#') scenes.push_back((list.parent_path() / line).string());
    }
    if (in.bad()) throw Failure("Cannot read the list " + list.string() + ".");
    if (scenes.empty()) throw Failure("The list " + list.string() + " names no scene.");
    return scenes;
}

std::vector<Scene> scenesOf(const BatchOptions& options) {
    std::vector<std::string> files;
    for (const std::string& given : options.scenes) {
        if (isScene(given)) {
            files.push_back(given);
            continue;
        }
        const auto listed = readList(given);
        files.insert(files.end(), listed.begin(), listed.end());
    }
    std::vector<Scene> scenes;
    std::map<std::string, std::string> taken; // names of what is made, and by which scene
    for (const std::string& file : files) {
        Scene scene{file, {}};
        const std::string name = fs::path(file).stem();
        const fs::path target = fs::path(options.folder) / name;
        std::error_code none;
        if (const auto [it, isNew] = taken.emplace(name, file); !isNew)
            scene.refusal = "What is made of it would be named as that of " + it->second + ".";
        else if (!fs::is_regular_file(file, none))
            scene.refusal = "There is no such file.";
        if (options.exports) scene.steps.push_back({"export", target.string() + ".atmos"});
        if (options.renders) scene.steps.push_back({"render", target.string() + "." + options.format});
        scenes.push_back(std::move(scene));
    }
    return scenes;
}

/// The messages in what a run has written: lines that begin with a severity, and those that go on with them.
std::vector<std::pair<std::string, std::string>> messagesIn(const std::string& text) {
    std::vector<std::pair<std::string, std::string>> messages;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        if (line.starts_with("Error: "))
            messages.emplace_back("error", line.substr(7));
        else if (line.starts_with("Warning: "))
            messages.emplace_back("warning", line.substr(9));
        else if (!messages.empty() && !line.empty())
            messages.back().second += "\n" + line;
    }
    return messages;
}

/// Runs this program, and gives its status and what it writes to its standard error. It ends with this process.
int runSelf(std::vector<std::string> words, std::string& said) {
    words.insert(words.begin(), "orvosky");
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::string mark = "ORVOSKY_ENDS_WITH_PARENT=1";
    std::vector<char*> environment;
    for (char** variable = environ; *variable; ++variable) environment.push_back(*variable);
    environment.insert(environment.end(), {mark.data(), nullptr});

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw Failure(fmt::format("Cannot start a process: {}.", std::strerror(errno)));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    pid_t child = 0;
    const int failed = posix_spawn(&child, "/proc/self/exe", &actions, nullptr, arguments.data(), environment.data());
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char buffer[4096];
    constexpr std::size_t most = 1 << 20; // of what a run may say; the rest is read and left
    for (;;) {
        const ssize_t got = failed ? 0 : read(ends[0], buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        if (said.size() < most) said.append(buffer, static_cast<std::size_t>(got));
    }
    close(ends[0]);
    if (failed) throw Failure(fmt::format("Cannot start a process: {}.", std::strerror(failed)));
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    said += fmt::format("\nError: It was ended by signal {} ({}).\n", WTERMSIG(status), strsignal(WTERMSIG(status)));
    return 128 + WTERMSIG(status);
}

/// The words that all runs take from the batch's own line.
std::vector<std::string> sharedWords(const CommonOptions& common, const BatchOptions& options) {
    std::vector<std::string> words;
    if (!common.project.empty()) words.insert(words.end(), {"--project", common.project});
    for (const std::string& setting : common.settings) words.insert(words.end(), {"--set", setting});
    if (common.noPlugin) words.push_back("--no-plugin");
    if (options.reports.keepGoing) words.push_back("--keep-going");
    if (options.reports.strict) words.push_back("--strict");
    return words;
}

void runStep(Step& step, const std::string& scene, std::vector<std::string> words, const std::string& size) {
    // A scene or a folder may have a name that begins with a dash.
    words.insert(words.begin(), step.verb);
    if (!size.empty() && step.verb == std::string_view("render")) words.insert(words.end(), {"--size", size});
    words.insert(words.end(), {"--", scene, step.target});
    const auto begin = Clock::now();
    std::string said;
    try {
        step.status = runSelf(std::move(words), said);
    } catch (const std::exception& e) {
        step.status = kFailed;
        said = std::string("Error: ") + e.what();
    }
    step.seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    step.messages = messagesIn(said);
}

std::string table(const std::vector<Scene>& scenes) {
    std::size_t widest = 5;
    for (const Scene& scene : scenes) widest = std::max(widest, scene.file.size());
    std::string text = fmt::format("{:<{}}", "scene", widest);
    for (const Step& step : scenes.front().steps) text += fmt::format("  {:>9}", step.verb);
    text += "  result\n";
    for (const Scene& scene : scenes) {
        text += fmt::format("{:<{}}", scene.file, widest);
        for (const Step& step : scene.steps)
            text += fmt::format("  {:>9}", step.status == kWorked ? fmt::format("{:.2f} s", step.seconds)
                                           : step.status < 0      ? "-"
                                                                  : "failed");
        const std::string reason = scene.worked() ? "ok" : scene.reason();
        text += "  " + reason.substr(0, reason.find('\n')) + "\n";
    }
    return text;
}

std::string asJson(const std::vector<Scene>& scenes, std::size_t failed, double seconds) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Scene& scene : scenes) {
        nlohmann::ordered_json steps = nlohmann::ordered_json::array();
        for (const Step& step : scene.steps) {
            if (step.status < 0) continue;
            nlohmann::ordered_json messages = nlohmann::ordered_json::array();
            for (const auto& [severity, text] : step.messages)
                messages.push_back({{"severity", severity}, {"text", text}});
            steps.push_back({{"step", step.verb},
                             {"file", step.target},
                             {"status", step.status},
                             {"seconds", step.seconds},
                             {"messages", messages}});
        }
        nlohmann::ordered_json one{{"scene", scene.file}, {"worked", scene.worked()}, {"steps", steps}};
        if (!scene.refusal.empty()) one["refusal"] = scene.refusal;
        list.push_back(std::move(one));
    }
    const nlohmann::ordered_json all{
        {"scenes", list}, {"worked", scenes.size() - failed}, {"failed", failed}, {"seconds", seconds}};
    return all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

} // namespace

int batchCommand(const CommonOptions& common, const BatchOptions& options) {
    return reported([&] {
        const auto begin = Clock::now();
        std::vector<Scene> scenes = scenesOf(options);
        std::error_code failure;
        fs::create_directories(options.folder, failure);
        if (failure) throw Failure(fmt::format("Cannot make the folder {}: {}.", options.folder, failure.message()));
        const std::vector<std::string> words = sharedWords(common, options);
        const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
        const std::size_t count = options.processes > 0 ? static_cast<std::size_t>(options.processes) : processors;
        // Each draws by its share of the processors: threads beyond that only wait for each other. 0: by its own
        // thread.
        const std::size_t share = processors / std::min(count, std::max<std::size_t>(scenes.size(), 1));
        setenv("LP_NUM_THREADS", std::to_string(share > 1 ? share : 0).c_str(), 0);

        std::mutex mutex; // of the progress
        Progress progress(scenes.size());
        std::atomic<std::size_t> next = 0;
        const auto work = [&] {
            for (std::size_t i = next++; i < scenes.size(); i = next++) {
                Scene& scene = scenes[i];
                if (scene.refusal.empty())
                    for (Step& step : scene.steps) runStep(step, scene.file, words, options.size);
                const std::lock_guard lock(mutex);
                if (!options.json)
                    progress.done(fmt::format("{} {} in {:.1f} s", scene.file, scene.worked() ? "done" : "failed",
                                              scene.seconds()));
            }
        };
        {
            std::vector<std::jthread> threads;
            for (std::size_t i = 1; i < std::min(count, scenes.size()); ++i) threads.emplace_back(work);
            work();
        }
        const auto failed =
            static_cast<std::size_t>(std::ranges::count_if(scenes, [](const Scene& scene) { return !scene.worked(); }));
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        host::printText(options.json
                            ? asJson(scenes, failed, seconds)
                            : table(scenes) + fmt::format("{} scenes in {}: {} worked, {} failed.\n", scenes.size(),
                                                          durationText(std::chrono::duration<double>(seconds)),
                                                          scenes.size() - failed, failed));
        if (failed > 0) throw Failure(fmt::format("{} of {} scenes failed.", failed, scenes.size()));
    });
}

} // namespace orvosky
