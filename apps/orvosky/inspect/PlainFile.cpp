#include "PlainFile.h"

#include "../Failure.h"
#include "Inspection.h"

#include <filesystem>

namespace orvosky::inspect {

namespace fs = std::filesystem;

PlainFile::PlainFile(const std::string& file) : name_(printable(file)) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found) throw Failure(name_ + ": the file does not exist.");
    if (status.type() == fs::file_type::directory) throw Failure(name_ + ": is a folder, not a file.");
    if (status.type() != fs::file_type::regular)
        throw Failure(name_ + ": " + (error ? "cannot be read: " + error.message() : "is not a plain file") + ".");
    in_.open(file, std::ios::binary);
    size_ = fs::file_size(file, error);
    if (!in_ || error) throw Failure(name_ + ": cannot be read.");
}

std::span<const unsigned char> PlainFile::bytes(std::uint64_t begin, std::uint64_t end) {
    piece_.resize(static_cast<std::size_t>(end - begin));
    in_.clear();
    in_.seekg(static_cast<std::streamoff>(begin));
    if (!in_.read(reinterpret_cast<char*>(piece_.data()), static_cast<std::streamsize>(piece_.size())))
        throw Failure(name_ + ": cannot be read.");
    return piece_;
}

std::string PlainFile::whole(std::uint64_t limit) {
    if (size_ > limit)
        throw Failure(name_ + ": is larger than " + std::to_string(limit >> 20) + " MiB, more than can be right.");
    const auto all = bytes(0, size_);
    return {all.begin(), all.end()};
}

} // namespace orvosky::inspect
