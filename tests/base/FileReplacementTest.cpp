// Files that take the place of others, while every call on the way fails, kills, or is overtaken.
#include "FailingCalls.h"

#include "base/FileReplacement.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using host::base::FileReplacement;
using host::base::replaceFile;
using host::base::ReplacementError;
using orvo::test::CallPlan;
using orvo::test::PlannedCalls;
using testing::HasSubstr;

/// Names and contents below a folder.
using Files = std::map<std::string, std::string>;

const Files kEarlier{{"sky.atmos", "earlier scene"}, {"sky.cdata", "earlier data"}},
    kNew{{"sky.atmos", "new scene"}, {"sky.cdata", "new data"}};

class Replacement : public testing::Test {
protected:
    void put(const Files& files) const {
        for (const auto& e : fs::directory_iterator(folder_.path())) fs::remove_all(e.path());
        for (const auto& [name, text] : files) std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    Files found() const {
        Files files;
        for (const auto& e : fs::recursive_directory_iterator(folder_.path())) {
            std::ostringstream text;
            if (!e.is_directory()) text << std::ifstream(e.path(), std::ios::binary).rdbuf();
            files[e.path().lexically_relative(folder_.path()).string()] = text.str();
        }
        return files;
    }
    void replacePair(const Files& files = kNew) const {
        FileReplacement pair({folder_ / "sky.cdata", folder_ / "sky.atmos"});
        pair.write(0, files.at("sky.cdata"));
        pair.write(1, files.at("sky.atmos"));
        pair.commit();
    }
    /// What the replacing says when a call of it fails; empty when it says that all went well.
    std::string failure(const CallPlan& plan, int& calls, const std::function<void()>& work) const {
        const PlannedCalls planned(plan);
        std::string text;
        try {
            work();
        } catch (const std::exception& e) {
            text = *e.what() ? e.what() : "?";
        }
        calls = planned.count();
        return text;
    }

    // In memory where there is such a place: hundreds of rounds would else wait for the disk.
    const orvo::test::TemporaryFolder folder_{access("/dev/shm", W_OK) == 0 ? "/dev/shm" : fs::temp_directory_path()};
};

// Faults: an earlier file lost, half a pair, a temporary left or success pretended when any one call fails, be it one
// of those that clean up.
TEST_F(Replacement, AnyCallMayFail) {
    int tried = 0;
    const std::vector<std::pair<Files, int>> cases{{kEarlier, EIO},    {kEarlier, ENOSPC}, {kEarlier, ENOMEM},
                                                   {kEarlier, EMFILE}, {{}, EIO},          {{{"sky.cdata", "x"}}, EIO}};
    for (const auto& [before, error] : cases)
        for (int n = 1, calls = 0; calls >= n - 1; ++n, ++tried) {
            put(before);
            const std::string said = failure({.number = n, .error = error}, calls, [&] { replacePair(); });
            const Files after = found();
            if (said.empty() || said.find("it is in place") != said.npos)
                EXPECT_EQ(after, kNew) << "error " << error << " at call " << n << ": " << said;
            else
                EXPECT_EQ(after, before) << "error " << error << " at call " << n << ": " << said;
        }
    EXPECT_GT(tried, 300);
}

// Fault: what cannot be put back any more is thrown away. From some call on everything fails, as on a disk that dies.
TEST_F(Replacement, NothingIsLostWhenAllCallsFail) {
    for (int n = 1, calls = 0; calls >= n - 1; ++n) {
        put(kEarlier);
        const std::string said =
            failure({.number = n, .error = EIO, .allThatFollow = true}, calls, [&] { replacePair(); });
        std::multiset<std::string> contents;
        for (const auto& [name, text] : found()) contents.insert(text);
        const auto has = [&](const Files& files) {
            return contents.contains(files.at("sky.atmos")) && contents.contains(files.at("sky.cdata"));
        };
        EXPECT_TRUE(has(kEarlier) || found().at("sky.atmos") == kNew.at("sky.atmos")) << "call " << n << ": " << said;
        EXPECT_TRUE(!said.empty() || has(kNew)) << "call " << n;
    }
}

// Faults: a signal that leaves half a pair or a temporary; one that is swallowed; a file torn by a death that nothing
// can hold up.
TEST_F(Replacement, AnyCallMayBeTheLast) {
    for (const bool held : {true, false}) {
        for (int n = 1, last = 0; !last; ++n) {
            const int signal = held ? std::array{SIGINT, SIGTERM, SIGHUP}[n % 3] : SIGKILL;
            put(kEarlier);
            const pid_t child = fork();
            if (child == 0) {
                std::signal(signal, SIG_DFL); // shells start what runs behind them with SIGINT ignored
                int calls = 0;
                failure({.number = n, .signal = signal}, calls, [&] { replacePair(); });
                _exit(n > calls ? 0 : 1);
            }
            int status = 0;
            waitpid(child, &status, 0);
            last = WIFEXITED(status);
            if (last) {
                EXPECT_EQ(WEXITSTATUS(status), 0) << "call " << n << " swallowed signal " << signal;
                break;
            }
            EXPECT_EQ(WTERMSIG(status), signal);
            Files after = found();
            if (!held) {
                // The data may be new beside an earlier scene, never the other way round: readers start from the scene.
                const std::string scene = after["sky.atmos"], data = after["sky.cdata"];
                EXPECT_TRUE(scene == kEarlier.at("sky.atmos") ? data == kEarlier.at("sky.cdata") || data == "new data"
                                                              : scene == "new scene" && data == "new data")
                    << "call " << n << ": " << scene << ", " << data;
            } else {
                EXPECT_TRUE(after == kEarlier || after == kNew)
                    << "signal " << signal << " at call " << n << ": " << testing::PrintToString(after);
            }
        }
    }
}

// Fault: a signal that is to be ignored ends the process, or is taken for ever after.
TEST_F(Replacement, IgnoredSignalsStayIgnored) {
    put(kEarlier);
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGHUP, SIG_IGN);
        int calls = 0;
        const std::string said =
            failure({.name = "renameat", .number = 2, .signal = SIGHUP}, calls, [&] { replacePair(); });
        raise(SIGHUP);
        _exit(said.empty() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(found(), kNew);
}

// Fault: two writers that mix: one moves its files between the moves of the other.
TEST_F(Replacement, OneWriterAtATime) {
    put({});
    const pid_t child = fork();
    if (child == 0) {
        int calls = 0;
        failure({.name = "renameat", .number = 2, .sleep = 300}, calls, [&] {
            replacePair({{"sky.atmos", "slow"}, {"sky.cdata", "slow"}});
        });
        _exit(0);
    }
    while (!fs::exists(folder_ / "sky.cdata")) usleep(1000);
    replacePair({{"sky.atmos", "quick"}, {"sky.cdata", "quick"}});
    waitpid(child, nullptr, 0);
    EXPECT_EQ(found(), (Files{{"sky.atmos", "quick"}, {"sky.cdata", "quick"}}));
}

// Faults: a link replaced by a file, or followed for one file of a pair alone; a new file's permissions on a replaced
// one; a place that cannot be one accepted, or refused after something was moved.
TEST_F(Replacement, PlacesAreKeptAsTheyAre) {
    put({});
    fs::create_directories(folder_ / "store");
    fs::create_symlink("store/v1.atmos", folder_ / "sky.atmos");
    fs::create_symlink("store/v1.cdata", folder_ / "sky.cdata");
    std::ofstream(folder_ / "store/v1.cdata") << "earlier data";
    chmod((folder_ / "store/v1.cdata").c_str(), 0640);
    const mode_t mask = umask(027);
    replacePair();
    umask(mask);
    EXPECT_EQ(fs::read_symlink(folder_ / "sky.atmos"), "store/v1.atmos");
    EXPECT_EQ(fs::status(FileReplacement({folder_ / "sky.atmos"}).staged(0).parent_path()).permissions(),
              fs::perms(0700))
        << "others could plant links where new content is written";
    const Files expected{{"sky.atmos", "new scene"},
                         {"sky.cdata", "new data"},
                         {"store", ""},
                         {"store/v1.atmos", "new scene"},
                         {"store/v1.cdata", "new data"}};
    EXPECT_EQ(found(), expected);
    EXPECT_EQ(fs::status(folder_ / "store/v1.cdata").permissions(), fs::perms(0640));
    EXPECT_EQ(fs::status(folder_ / "store/v1.atmos").permissions(), fs::perms(0640)) << "what umask leaves of 0666";

    // Data that lies elsewhere, with a scene that does not.
    fs::remove(folder_ / "sky.atmos");
    replacePair({{"sky.atmos", "a"}, {"sky.cdata", "b"}});
    EXPECT_EQ(found().at("store/v1.cdata"), "b");
    EXPECT_EQ(found().at("sky.atmos"), "a");
    EXPECT_EQ(found().size(), 5u) << "nothing else is left";

    // A second file that is no place: nothing has moved then.
    fs::remove(folder_ / "sky.cdata");
    fs::create_symlink("sky.cdata", folder_ / "sky.cdata");
    try {
        replacePair();
        ADD_FAILURE() << "a loop of links";
    } catch (const ReplacementError& e) {
        EXPECT_EQ(e.file().filename(), "sky.cdata");
        EXPECT_EQ(e.kind(), ReplacementError::Kind::Refused);
    }
    std::error_code looped;
    EXPECT_EQ(fs::file_size(folder_ / "sky.atmos", looped), 1u);

    for (const char* place : {"store", "none/a", "sky.atmos/a", "", "a/", "/dev/null"}) {
        const std::string target = *place ? (folder_ / place).string() : "";
        EXPECT_THROW(replaceFile(target, "x"), ReplacementError) << target;
        EXPECT_THROW(host::base::requireReplaceable(target), ReplacementError) << target;
    }
}

} // namespace
