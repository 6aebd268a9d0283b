#pragma once

#include "Format.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace orvo {

/// A file being written. A failed write is remembered, so that a whole file can be written and judged once, by close().
class OutputFile {
public:
    /// Mode "wt" or "wb". The folder must exist.
    OutputFile(const std::string& path, const char* mode);
    /// Closes the file, whatever became of it.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool isOpen() const { return file_ != nullptr; }
    void write(const void* data, std::size_t size);
    void write(std::string_view text) { write(text.data(), text.size()); }
    /// printf-style, the same in every locale.
    template <class... Arguments>
    void print(const char* format, const Arguments&... arguments) {
        write(formatText(format, arguments...));
    }
    /// @return whether the file was open and all of it reached the disk
    bool close();

private:
    std::FILE* file_;
    bool failed_ = false;
};

/// Text as the value of an attribute in double quotes: & < > and " become entities.
std::string xmlEscaped(std::string_view text);

} // namespace orvo
