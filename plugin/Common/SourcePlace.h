#pragma once

namespace orvo {

/// A place in a source file. As the default value of a parameter, current() names the place of the call.
///
/// Stands in for std::source_location, which clang takes from this standard library only from its version 16 on.
struct SourcePlace {
    const char* file;
    unsigned line;

    static constexpr SourcePlace current(const char* file = __builtin_FILE(),
                                         unsigned line = static_cast<unsigned>(__builtin_LINE())) noexcept {
        return {file, line};
    }
};

} // namespace orvo
