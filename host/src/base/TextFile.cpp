#include "base/TextFile.h"

#include "base/FileReplacement.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <system_error>

namespace host::files {
namespace {

struct Close {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

template <class Bytes>
Bytes bytesOf(const std::filesystem::path& file) {
    const std::string name = file.generic_string();
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) throw FileError(name, "the file does not exist");
    if (status.type() == std::filesystem::file_type::directory) throw FileError(name, "is a folder, not a file");
    if (status.type() != std::filesystem::file_type::regular) {
        throw FileError(name, error ? "cannot be read: " + error.message() : "is not a plain file");
    }
    const std::unique_ptr<std::FILE, Close> in(std::fopen(file.c_str(), "rb"));
    if (!in) throw FileError(name, std::string("cannot be read: ") + std::strerror(errno));
    Bytes bytes;
    const auto size = std::filesystem::file_size(file, error);
    if (!error) bytes.reserve(size);
    char block[1 << 16];
    while (const std::size_t n = std::fread(block, 1, sizeof block, in.get()))
        bytes.insert(bytes.end(), block, block + n);
    if (std::ferror(in.get())) throw FileError(name, std::string("cannot be read: ") + std::strerror(errno));
    return bytes;
}

} // namespace

std::string readFile(const std::filesystem::path& file) { return bytesOf<std::string>(file); }
std::vector<unsigned char> readFileBytes(const std::filesystem::path& file) {
    return bytesOf<std::vector<unsigned char>>(file);
}

std::string readTextFile(const std::filesystem::path& file) {
    const std::string name = file.generic_string();
    std::string text = readFile(file);
    if (text.starts_with("FOR4") || text.starts_with("FOR8"))
        throw FileError(name, "is a Maya binary scene; only Maya ASCII scenes can be opened");
    if (text.find('\0') != text.npos) throw FileError(name, "is a binary file, not a Maya ASCII scene");
    return text;
}

void writeTextFile(const std::filesystem::path& file, std::string_view text) {
    try {
        base::replaceFile(file, text);
    } catch (const base::ReplacementError& e) {
        throw FileError(file.generic_string(), std::string("cannot be written: ") + e.what());
    }
}

bool isSceneFile(const std::filesystem::path& file) {
    const std::unique_ptr<std::FILE, Close> in(std::fopen(file.c_str(), "rb"));
    if (!in) return false;
    char start[64];
    std::string_view text(start, std::fread(start, 1, sizeof start, in.get()));
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    return text.starts_with("//Maya ASCII");
}

} // namespace host::files
