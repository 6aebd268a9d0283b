#include "FileBytes.h"

#include "FileSystem.h"

#include <climits>
#include <cstdio>
#include <memory>

namespace orvo {

std::optional<std::vector<std::uint8_t>> readFileBytes(const std::string& path, std::string* problem) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::unique_ptr<std::FILE, Close> file(openFile(path, "rb"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return std::nullopt;
    const long size = std::ftell(file.get());
    if (size < 0 || size > INT_MAX || std::fseek(file.get(), 0, SEEK_SET) != 0) return std::nullopt;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        if (problem) *problem = badRead;
        return std::nullopt;
    }
    return bytes;
}

} // namespace orvo
