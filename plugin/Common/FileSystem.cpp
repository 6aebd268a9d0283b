#include "FileSystem.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace orvo {
namespace {

namespace fs = std::filesystem;

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

[[maybe_unused]] bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lowered(x) == lowered(y); });
}

bool before(const FolderEntry& a, const FolderEntry& b) {
    const auto order = [](char x, char y) {
        return static_cast<unsigned char>(lowered(x)) < static_cast<unsigned char>(lowered(y));
    };
    const auto less = [&](const std::string& x, const std::string& y) {
        return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end(), order);
    };
    return less(a.name, b.name) || (!less(b.name, a.name) && a.name < b.name);
}

fs::file_status statusOf(const std::string& path) {
    std::error_code code;
    return fs::status(path, code);
}

#ifdef _WIN32

std::optional<std::string> resolve(const std::string& path, bool) { return path; }

#else

/// The name in `folder` (with its separator; empty for the current one) that answers to `name`.
std::optional<std::string> nameIn(const std::string& folder, std::string_view name) {
    std::string best;
    std::error_code code;
    for (fs::directory_iterator i(folder.empty() ? "." : folder, code), end; !code && i != end; i.increment(code)) {
        std::string found = i->path().filename().string();
        if (equalIgnoringCase(found, name) && (best.empty() || found < best) && fs::exists(statusOf(folder + found)))
            best = std::move(found);
    }
    if (best.empty()) return std::nullopt;
    return best;
}

/// `path` with native separators and the names that the disk has. With `lastAsGiven` the last component need not exist.
std::optional<std::string> resolve(const std::string& path, bool lastAsGiven) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    if (!lastAsGiven && fs::exists(statusOf(native))) return native;

    std::string resolved;
    for (std::size_t at = 0; at < native.size();) {
        if (native[at] == '/') {
            if (resolved.empty() || resolved.back() != '/') resolved += '/';
            ++at;
            continue;
        }
        const std::size_t end = std::min(native.find('/', at), native.size());
        const std::string_view name = std::string_view(native).substr(at, end - at);
        const bool isLast = end == native.size();
        if ((isLast && lastAsGiven) || fs::exists(statusOf(resolved + std::string(name)))) {
            resolved += name;
        } else if (const auto found = nameIn(resolved, name)) {
            resolved += *found;
        } else {
            return std::nullopt;
        }
        at = end;
    }
    // A separator at the end asks for a folder, which a file does not become by a look-up.
    if (!lastAsGiven && !fs::exists(statusOf(resolved))) return std::nullopt;
    return resolved;
}

#endif

std::optional<std::string> locate(const std::string& path, bool lastAsGiven) {
    if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
    return resolve(path, lastAsGiven);
}

} // namespace

std::optional<std::string> existingPath(const std::string& path) {
    auto found = locate(path, false);
    if (found && !fs::exists(statusOf(*found))) found.reset();
    return found;
}

std::optional<std::string> pathWithoutLinks(const std::string& path) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '\\', '/');
    if (!fs::path(native).is_absolute()) return std::nullopt;
    std::error_code code;
    const fs::path resolved = fs::weakly_canonical(existingPath(native).value_or(native), code);
    if (code) return std::nullopt;
    return resolved.generic_string();
}

std::FILE* openFile(const std::string& path, const char* mode) {
    const bool creates = mode[0] == 'w' || mode[0] == 'a';
    const auto place = locate(path, creates);
    if (!place) {
        errno = ENOENT;
        return nullptr;
    }
    // A folder would open for reading and then give nothing; a pipe without a partner would wait for ever.
    const fs::file_status status = statusOf(*place);
    if (fs::is_directory(status) || fs::is_fifo(status) || fs::is_socket(status)) {
        errno = fs::is_directory(status) ? EISDIR : EINVAL;
        return nullptr;
    }
    return std::fopen(place->c_str(), mode);
}

std::optional<FileState> fileState(const std::string& path) {
    const auto place = existingPath(path);
    if (!place) return std::nullopt;
    std::error_code sizeError, timeError;
    const auto size = fs::file_size(*place, sizeError);
    const auto changed = fs::last_write_time(*place, timeError).time_since_epoch().count();
    if (sizeError || timeError) return std::nullopt;
    return FileState{size, static_cast<std::intmax_t>(changed)};
}

bool fileExists(const std::string& path) {
    const auto found = existingPath(path);
    return found && !fs::is_directory(statusOf(*found));
}

bool folderExists(const std::string& path) {
    const auto found = existingPath(path);
    return found && fs::is_directory(statusOf(*found));
}

std::optional<std::vector<FolderEntry>> listFolder(const std::string& path) {
    const auto folder = existingPath(path);
    if (!folder) return std::nullopt;
    std::vector<FolderEntry> entries;
    std::error_code code;
    for (fs::directory_iterator i(*folder, code), end; !code && i != end; i.increment(code)) {
        std::error_code ignored;
        entries.push_back({i->path().filename().string(), i->is_directory(ignored)});
    }
    if (code) return std::nullopt;
    std::sort(entries.begin(), entries.end(), before);
    return entries;
}

} // namespace orvo
