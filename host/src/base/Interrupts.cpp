#include "base/Interrupts.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <sched.h>
#include <unistd.h>
#include <utility>

namespace host::base {
namespace {

constexpr std::array<int, 5> kSignals{SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU};

// What the handler sees. A handler counts itself before it looks at `held`, a holder counts itself before it looks at
// `running`: at least one of the two sees the other.
std::atomic<int> held{0}, running{0}, pending{0};
std::array<std::atomic<const RemovedOnInterrupt::Folder*>, 8> folders;

std::mutex installing;
int users = 0;
std::array<struct sigaction, kSignals.size()> earlier;

void remove(const RemovedOnInterrupt::Folder& f) {
    // Another thread may be making one of the files: then the folder goes at a later attempt, and nothing after it.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        for (const std::string& file : f.files) unlinkat(f.folder, file.c_str(), 0);
        if (unlinkat(f.parent, f.name.c_str(), AT_REMOVEDIR) == 0 || (errno != ENOTEMPTY && errno != EEXIST)) return;
        sched_yield();
    }
}

/// Cleans up and lets the signal do what it would have done without us. Calls nothing that a handler may not.
void deliver(int signal) {
    for (const auto& slot : folders)
        if (const auto* folder = slot.load()) remove(*folder);
    for (std::size_t i = 0; i < kSignals.size(); ++i)
        if (kSignals[i] == signal) sigaction(signal, &earlier[i], nullptr);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
}

void handle(int signal) {
    const int error = errno;
    ++running;
    if (held > 0)
        pending = signal;
    else
        deliver(signal);
    --running;
    errno = error;
}

void install() {
    const std::lock_guard lock(installing);
    if (users++ > 0) return;
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) sigaddset(&action.sa_mask, signal);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        sigaction(kSignals[i], nullptr, &earlier[i]);
        if (earlier[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
    }
}

void uninstall() {
    const std::lock_guard lock(installing);
    if (--users > 0) return;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &earlier[i], nullptr);
}

void waitForHandlers() {
    while (running > 0) sched_yield();
}

} // namespace

InterruptsHeld::InterruptsHeld() {
    install();
    ++held;
    waitForHandlers(); // one that was not held any more ends the process
}

InterruptsHeld::~InterruptsHeld() {
    if (--held == 0) {
        waitForHandlers(); // one that saw itself held has left its signal then
        if (const int signal = pending.exchange(0)) deliver(signal);
    }
    uninstall();
}

RemovedOnInterrupt::RemovedOnInterrupt(int parent, std::string name, int folder, std::vector<std::string> files)
    : folder_{parent, folder, std::move(name), std::move(files)} {
    install();
    for (std::size_t i = 0; i < folders.size() && slot_ < 0; ++i) {
        const Folder* none = nullptr;
        if (folders[i].compare_exchange_strong(none, &folder_)) slot_ = static_cast<int>(i);
    }
}

RemovedOnInterrupt::~RemovedOnInterrupt() {
    if (slot_ >= 0) folders[static_cast<std::size_t>(slot_)] = nullptr;
    waitForHandlers();
    uninstall();
}

} // namespace host::base
