#include "mel/StackGuard.h"

#include "mel/Command.h"

#include <algorithm>
#include <cstdint>

#ifdef __linux__
#include <pthread.h>
#endif

namespace host::mel {
namespace {

// The commands that a script calls need stack of their own: a quarter of it, at most 2 MiB, is kept for them.
std::uintptr_t lowestAllowed(std::uintptr_t here) {
    std::uintptr_t low = here - (std::uintptr_t{768} << 10);
#ifdef __linux__
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* address = nullptr;
        std::size_t size = 0;
        if (pthread_attr_getstack(&attributes, &address, &size) == 0 && size > 0)
            low = reinterpret_cast<std::uintptr_t>(address) + std::min<std::size_t>(size / 4, std::size_t{2} << 20);
        pthread_attr_destroy(&attributes);
    }
#endif
    return low;
}

} // namespace

void checkStack() {
#ifdef __GNUC__
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
    volatile char mark = 0;
    const auto here = reinterpret_cast<std::uintptr_t>(&mark);
#endif
    thread_local const std::uintptr_t lowest = lowestAllowed(here);
    if (here < lowest) throw Error("Stack overflow: the script is nested too deeply.");
}

} // namespace host::mel
