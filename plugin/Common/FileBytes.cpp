#include "FileBytes.h"

#include "FileSystem.h"
#include "Format.h"

#include <cstdio>
#include <memory>

namespace orvo {
namespace {

/// The length of a file, whose position is its end then; negative when it has none.
std::int64_t lengthOf(std::FILE* file) {
#ifdef _WIN32
    // std::ftell counts modulo 4 GiB there.
    return _fseeki64(file, 0, SEEK_END) == 0 ? _ftelli64(file) : -1;
#else
    return std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
#endif
}

} // namespace

std::optional<std::vector<std::uint8_t>> readFileBytes(const std::string& path, std::string* problem) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(openFile(path, "rb"));
    const std::int64_t size = file ? lengthOf(file.get()) : -1;
    if (size < 0 || !fewEnoughBytes(static_cast<std::uint64_t>(size), problem) ||
        std::fseek(file.get(), 0, SEEK_SET) != 0)
        return std::nullopt;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        if (problem) *problem = badRead;
        return std::nullopt;
    }
    return bytes;
}

bool fewEnoughBytes(std::uint64_t size, std::string* problem) {
    if (size <= maxFileBytes) return true;
    if (problem) *problem = formatText("it has %d bytes; at most %d are read of a picture", size, maxFileBytes);
    return false;
}

bool fewEnoughPixels(std::uint64_t width, std::uint64_t height, std::string* problem) {
    if (width * height <= maxPixels) return true;
    if (problem) *problem = formatText("it has %d x %d pixels; at most %d in all are read", width, height, maxPixels);
    return false;
}

} // namespace orvo
