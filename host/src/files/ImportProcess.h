#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <vector>

/// Models are read by a small program of their own, "orvosky-import" beside the host's library: a file that is broken
/// or made to do harm costs an error message and no more. It is started anew for each file, and ends with the host.
namespace host::files {

/// What a model may take to be read.
inline constexpr std::chrono::seconds kMostImportTime{300};
inline constexpr std::uint64_t kMostImportMemory = std::uint64_t{4} << 30; ///< bytes, in the program that reads

struct ImportError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Runs the program with the file as its only argument and gives what it writes to its standard output. Throws
/// ImportError, with a text of one line that says why, when it cannot be started, writes more than `mostBytes`, takes
/// longer than `mostTime` (it is ended then), crashes, or ends with a status other than 0.
std::vector<char> runImporter(const std::filesystem::path& program, const std::filesystem::path& file,
                              std::chrono::milliseconds mostTime, std::uint64_t mostBytes);

} // namespace host::files
