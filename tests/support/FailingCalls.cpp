#include "FailingCalls.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <new>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo::test {
namespace {

CallPlan plan;
int counted = 0;
thread_local bool planned = false;

/// Whether this call is to fail; errno is set then.
bool fails(std::string_view name) {
    if (!planned || (!plan.name.empty() && plan.name != name)) return false;
    ++counted;
    if (counted != plan.number && !(plan.allThatFollow && counted > plan.number)) return false;
    planned = false; // what is called from here is no part of it
    if (plan.signal) raise(plan.signal);
    const timespec pause{plan.sleep / 1000, plan.sleep % 1000 * 1000000L};
    if (plan.sleep) nanosleep(&pause, nullptr);
    planned = true;
    if (plan.error) errno = plan.error;
    return plan.error != 0;
}

/// The plan of a program that this is preloaded into.
[[maybe_unused]] const bool fromEnvironment = [] {
    const char* text = std::getenv("ORVO_CALLS");
    const char* number = text ? std::strchr(text, ':') : nullptr;
    const char* what = number ? std::strchr(number + 1, ':') : nullptr;
    if (!what) return false;
    plan = {.name = std::string(text, number), .number = std::atoi(number + 1)};
    (what[1] == 'k'   ? plan.signal
     : what[1] == 's' ? plan.sleep
                      : plan.error) = std::atoi(what + (what[1] == 'k' || what[1] == 's' ? 2 : 1));
    return planned = true;
}();

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

PlannedCalls::PlannedCalls(CallPlan wanted) {
    plan = std::move(wanted);
    counted = 0;
    planned = true;
}
PlannedCalls::~PlannedCalls() { planned = false; }
int PlannedCalls::count() const { return counted; }

} // namespace orvo::test

using orvo::test::fails;
using orvo::test::next;

#define ORVO_CALL(RESULT, NAME, PARAMETERS, ARGUMENTS, ...)                                                            \
    extern "C" RESULT NAME PARAMETERS __VA_ARGS__ {                                                                    \
        static auto* const real = next<RESULT PARAMETERS>(#NAME);                                                      \
        return fails(#NAME) ? -1 : real ARGUMENTS;                                                                     \
    }

ORVO_CALL(int, mkdirat, (int folder, const char* name, mode_t mode), (folder, name, mode), noexcept)
ORVO_CALL(int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags), noexcept)
ORVO_CALL(int, renameat, (int from, const char* a, int to, const char* b), (from, a, to, b), noexcept)
ORVO_CALL(int, linkat, (int from, const char* a, int to, const char* b, int f), (from, a, to, b, f), noexcept)
ORVO_CALL(int, rename, (const char* from, const char* to), (from, to), noexcept)
ORVO_CALL(int, fstat, (int file, struct stat* status), (file, status), noexcept)
ORVO_CALL(int, fstatat, (int folder, const char* n, struct stat* s, int flags), (folder, n, s, flags), noexcept)
ORVO_CALL(int, lstat, (const char* name, struct stat* status), (name, status), noexcept)
ORVO_CALL(int, stat, (const char* name, struct stat* status), (name, status), noexcept)
ORVO_CALL(int, faccessat, (int folder, const char* name, int mode, int f), (folder, name, mode, f), noexcept)
ORVO_CALL(int, fchmod, (int file, mode_t mode), (file, mode), noexcept)
ORVO_CALL(int, fchown, (int file, uid_t owner, gid_t group), (file, owner, group), noexcept)
ORVO_CALL(int, flock, (int file, int operation), (file, operation), noexcept)
ORVO_CALL(int, fflush, (std::FILE * file), (file))
ORVO_CALL(int, remove, (const char* name), (name), noexcept)
ORVO_CALL(int, fsync, (int file), (file))
ORVO_CALL(ssize_t, read, (int file, void* bytes, std::size_t size), (file, bytes, size))
ORVO_CALL(ssize_t, write, (int file, const void* bytes, std::size_t size), (file, bytes, size))

/// A file is closed even when that fails.
extern "C" int close(int file) {
    static auto* const real = next<int(int)>("close");
    const bool failing = fails("close");
    const int error = errno;
    const int result = real(file);
    if (!failing) return result;
    errno = error;
    return -1;
}

extern "C" int fclose(std::FILE* file) {
    static auto* const real = next<int(std::FILE*)>("fclose");
    const bool failing = fails("fclose");
    const int result = real(file);
    return failing ? EOF : result;
}

extern "C" std::FILE* fopen(const char* name, const char* mode) {
    static auto* const real = next<std::FILE*(const char*, const char*)>("fopen");
    return fails("fopen") ? nullptr : real(name, mode);
}

extern "C" int open(const char* name, int flags, ...) {
    static auto* const real = next<int(const char*, int, ...)>("open");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return fails("open") ? -1 : real(name, flags, mode);
}

extern "C" int openat(int folder, const char* name, int flags, ...) {
    static auto* const real = next<int(int, const char*, int, ...)>("openat");
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return fails("openat") ? -1 : real(folder, name, flags, mode);
}

extern "C" int fcntl(int file, int command, ...) {
    static auto* const real = next<int(int, int, ...)>("fcntl");
    va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    return fails("fcntl") ? -1 : real(file, command, argument);
}

#ifndef ORVO_PRELOADED
void* operator new(std::size_t size) {
    void* const memory = fails("new") ? nullptr : std::malloc(size ? size : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif
