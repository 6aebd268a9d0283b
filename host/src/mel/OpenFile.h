#pragma once

#include <cstdio>
#include <memory>

namespace host::mel {

/// A file that a script holds open (fopen).
struct OpenFile {
    struct Closer {
        void operator()(std::FILE* f) const { std::fclose(f); }
    };
    std::unique_ptr<std::FILE, Closer> stream;
};

} // namespace host::mel
