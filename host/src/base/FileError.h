#pragma once

#include "base/UserError.h"

#include <string>

namespace host::files {

/// A file that cannot be read or written. The text names the file, and the line where there is one.
class FileError : public UserError {
public:
    explicit FileError(const std::string& file, const std::string& what, int line = 0)
        : UserError(file + (line > 0 ? " line " + std::to_string(line) : std::string()) + ": " + what), line_(line) {}
    int line() const { return line_; } ///< 1-based; 0 for the file as a whole

private:
    int line_;
};

} // namespace host::files
