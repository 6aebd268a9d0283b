#include "files/ImportProcess.h"
#include "files/ModelMessage.h"
#include "files/importer/ModelConversion.h"

#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <poll.h>
#include <string>

// Sanitizers set terabytes of addresses aside.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVO_MEMORY_UNLIMITED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORVO_MEMORY_UNLIMITED
#endif
#endif

namespace {

using namespace host::files;

bool sendBytes(const void* data, std::size_t size) {
    for (const char* at = static_cast<const char*>(data); size > 0;) {
        const ssize_t sent = ::write(STDOUT_FILENO, at, size);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        at += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

void limit(int resource, rlim_t most) {
    rlimit current{};
    if (getrlimit(resource, &current) == 0) most = std::min(most, current.rlim_max);
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

/// False when the host is gone already.
bool confine() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd output{STDOUT_FILENO, 0, 0};
    if (::poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0) return false;
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_CPU, static_cast<rlim_t>(kMostImportTime.count()));
#ifndef ORVO_MEMORY_UNLIMITED
    limit(RLIMIT_AS, kMostImportMemory);
#endif
    return true;
}

} // namespace

/// Reads the model that the only argument names and writes what it holds, or why it cannot be read, to the standard
/// output, in the form of ModelMessage.h. The status is 0 when all of that was written.
int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("orvosky reads models with this program; it is not for use by hand.\n", stderr);
        return 2;
    }
    if (!confine()) return 1;
    std::string error;
    try {
        return sendModel(convertModel(arguments[1]), sendBytes) ? 0 : 1;
    } catch (const std::bad_alloc&) {
        error = fmt::format("it takes more than {} GiB of memory to read", kMostImportMemory >> 30);
    } catch (const std::exception& e) {
        error = e.what();
    } catch (...) {}
    return sendModelError(error, sendBytes) ? 0 : 1;
}
