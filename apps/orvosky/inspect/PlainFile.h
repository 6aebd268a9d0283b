#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace orvosky::inspect {

/// A plain file of any size, read piece by piece. Failures are thrown as Failure, which names the file.
class PlainFile {
public:
    /// Opens the file.
    explicit PlainFile(const std::string& file);

    std::uint64_t size() const { return size_; }
    /// The bytes from `begin` up to `end`, which must lie in the file; they last until the next call.
    std::span<const unsigned char> bytes(std::uint64_t begin, std::uint64_t end);
    /// All bytes of a file of at most `limit`.
    std::string whole(std::uint64_t limit);

private:
    std::string name_;
    std::ifstream in_;
    std::uint64_t size_ = 0;
    std::vector<unsigned char> piece_;
};

} // namespace orvosky::inspect
