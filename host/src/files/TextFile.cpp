#include "files/TextFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace host::files {
namespace {

struct Close {
    void operator()(std::FILE* f) const { std::fclose(f); }
};

} // namespace

std::string readTextFile(const std::filesystem::path& file) {
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
    std::string text;
    const auto size = std::filesystem::file_size(file, error);
    if (!error) text.reserve(size);
    char block[1 << 16];
    while (const std::size_t n = std::fread(block, 1, sizeof block, in.get())) text.append(block, n);
    if (std::ferror(in.get())) throw FileError(name, std::string("cannot be read: ") + std::strerror(errno));
    if (text.starts_with("FOR4") || text.starts_with("FOR8"))
        throw FileError(name, "is a Maya binary scene; only Maya ASCII scenes can be opened");
    if (text.find('\0') != text.npos) throw FileError(name, "is a binary file, not a Maya ASCII scene");
    return text;
}

void writeTextFile(const std::filesystem::path& file, std::string_view text) {
    const std::string name = file.generic_string();
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) throw FileError(name, "cannot be written: it is a folder");
    // A link stays one: what it leads to is replaced.
    std::filesystem::path target =
        std::filesystem::exists(file, error) ? std::filesystem::canonical(file, error) : file;
    if (error || target.empty()) target = file;
    if (std::filesystem::exists(target, error) && ::access(target.c_str(), W_OK) != 0)
        throw FileError(name, std::string("cannot be written: ") + std::strerror(errno));

    std::string beside = target.string() + ".XXXXXX";
    const int descriptor = ::mkstemp(beside.data());
    if (descriptor < 0) throw FileError(name, std::string("cannot be written: ") + std::strerror(errno));
    int failure = 0;
    for (std::string_view rest = text; !rest.empty() && !failure;) {
        const ssize_t n = ::write(descriptor, rest.data(), rest.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0)
            failure = n < 0 ? errno : EIO;
        else
            rest.remove_prefix(static_cast<std::size_t>(n));
    }
    if (!failure && ::fsync(descriptor) != 0 && errno != EINVAL) failure = errno;
    auto mode = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write |
                std::filesystem::perms::group_read | std::filesystem::perms::others_read;
    if (const auto old = std::filesystem::status(target, error); std::filesystem::exists(old)) mode = old.permissions();
    if (!failure && ::fchmod(descriptor, static_cast<mode_t>(mode)) != 0) failure = errno;
    if (::close(descriptor) != 0 && !failure) failure = errno;
    if (!failure && std::rename(beside.c_str(), target.c_str()) != 0) failure = errno;
    if (!failure) return;
    std::filesystem::remove(beside, error);
    throw FileError(name, std::string("cannot be written: ") + std::strerror(failure));
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
