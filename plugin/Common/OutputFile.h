#pragma once

#include "Format.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace orvo {

/// A file being written. A failed write is remembered, so that a whole file can be written and judged once, by close().
class OutputFile {
public:
    /// What becomes of an earlier file of the name.
    enum class Earlier {
        Overwritten, ///< it is gone once the new one is open; what is written of that stays, whatever happens
        Replaced     ///< it stays until close() puts the new one, whole and on the disk, into its place
    };

    /// Mode "wt" or "wb". The folder must exist. What is no plain file, such as a device, is always written to
    /// directly.
    OutputFile(const std::string& path, const char* mode, Earlier earlier = Earlier::Overwritten);
    /// Closes the file, whatever became of it; one that was to replace another and was not closed is thrown away.
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
    /// @return whether the file was open, all of it reached the disk, and then its place
    bool close();

private:
    struct Replacement;

    std::FILE* file_ = nullptr;
    std::unique_ptr<Replacement> replacement_;
    bool failed_ = false;
};

} // namespace orvo
