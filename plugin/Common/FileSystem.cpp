#include "FileSystem.h"

#include "LetterCase.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#ifdef _WIN32
#include "WindowsPath.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#else
#include <filesystem>
#include <system_error>
#endif

namespace orvo {
namespace {

bool before(const FolderEntry& a, const FolderEntry& b) {
    const auto order = [](char x, char y) {
        return static_cast<unsigned char>(lowered(x)) < static_cast<unsigned char>(lowered(y));
    };
    const auto less = [&](const std::string& x, const std::string& y) {
        return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end(), order);
    };
    return less(a.name, b.name) || (!less(b.name, a.name) && a.name < b.name);
}

#ifndef _WIN32

namespace fs = std::filesystem;

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lowered(x) == lowered(y); });
}

fs::file_status statusOf(const std::string& path) {
    std::error_code code;
    return fs::status(path, code);
}

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

std::optional<std::string> locate(const std::string& path, bool lastAsGiven) {
    if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
    return resolve(path, lastAsGiven);
}

#endif

} // namespace

#ifdef _WIN32

namespace {

/// FILE_ATTRIBUTE_... of a file or folder; nothing when there is none.
std::optional<DWORD> attributesOf(const std::wstring& place) {
    const DWORD attributes = place.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(place.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return attributes;
}

/// The path of what is at `place`, links and mapped drives resolved; nothing when there is nothing.
std::optional<std::wstring> finalPath(const std::wstring& place) {
    constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file =
        CreateFileW(place.c_str(), 0, sharing, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    std::wstring found(32768, L'\0'); // the longest there is
    const DWORD length = GetFinalPathNameByHandleW(file, found.data(), static_cast<DWORD>(found.size()), 0);
    CloseHandle(file);
    if (length == 0 || length >= found.size()) return std::nullopt;
    found.resize(length);
    return found;
}

} // namespace

std::optional<std::string> existingPath(const std::string& path) {
    if (!attributesOf(windowsPath(path))) return std::nullopt;
    return path;
}

std::optional<std::string> pathWithoutLinks(const std::string& path) {
    const auto isSeparator = [](char c) { return c == '/' || c == '\\'; };
    const bool isAbsolute = path.size() > 2 && isSeparator(path[path[1] == ':' ? 2 : 1]);
    const std::wstring place = isAbsolute ? windowsPath(path) : std::wstring();
    if (place.empty()) return std::nullopt;
    std::wstring resolved = place;
    for (std::size_t end = place.size(); end != std::wstring::npos && end > 4 && place[end - 1] != L':';
         end = place.find_last_of(L'\\', end - 1))
        if (const auto found = finalPath(place.substr(0, end))) {
            resolved = *found + place.substr(end);
            break;
        }
    std::string text = utf8Text(resolved);
    if (text.starts_with("\\\\?\\UNC\\"))
        text.replace(0, 7, "\\");
    else if (text.starts_with("\\\\?\\"))
        text.erase(0, 4);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

std::optional<std::string> placeToWrite(const std::string& path) {
    const std::wstring place = windowsPath(path);
    if (place.empty()) return std::nullopt;
    if (!(attributesOf(place).value_or(0) & FILE_ATTRIBUTE_REPARSE_POINT)) return path;
    const auto found = finalPath(place);
    if (!found) return std::nullopt; // a link that leads nowhere
    return utf8Text(*found);
}

std::FILE* openFile(const std::string& path, const char* mode) {
    const std::wstring place = windowsPath(path);
    if (place.empty()) {
        errno = ENOENT;
        return nullptr;
    }
    if (attributesOf(place).value_or(0) & FILE_ATTRIBUTE_DIRECTORY) {
        errno = EISDIR;
        return nullptr;
    }
    std::string_view kind = mode;
    std::FILE* file = nullptr;
    if (kind.ends_with('x')) { // which the library of older systems does not know
        kind.remove_suffix(1);
        const int text = kind.find('b') == std::string_view::npos ? _O_TEXT : _O_BINARY;
        const int opened = _wopen(place.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | text, _S_IREAD | _S_IWRITE);
        if (opened >= 0 && !(file = _fdopen(opened, std::string(kind).c_str()))) _close(opened);
    } else {
        file = _wfopen(place.c_str(), std::wstring(kind.begin(), kind.end()).c_str());
    }
    if (file && GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)))) != FILE_TYPE_DISK) {
        std::fclose(file);
        errno = EINVAL;
        return nullptr;
    }
    return file;
}

std::optional<FileState> fileState(const std::string& path) {
    const std::wstring place = windowsPath(path);
    WIN32_FILE_ATTRIBUTE_DATA found;
    if (place.empty() || !GetFileAttributesExW(place.c_str(), GetFileExInfoStandard, &found) ||
        found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        return std::nullopt;
    const auto whole = [](DWORD high, DWORD low) { return std::uintmax_t{high} << 32 | low; };
    return FileState{
        whole(found.nFileSizeHigh, found.nFileSizeLow),
        static_cast<std::intmax_t>(whole(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime))};
}

bool fileExists(const std::string& path) {
    return !(attributesOf(windowsPath(path)).value_or(FILE_ATTRIBUTE_DIRECTORY) & FILE_ATTRIBUTE_DIRECTORY);
}

bool folderExists(const std::string& path) {
    return attributesOf(windowsPath(path)).value_or(0) & FILE_ATTRIBUTE_DIRECTORY;
}

std::optional<std::vector<FolderEntry>> listFolder(const std::string& path) {
    std::wstring pattern = windowsPath(path);
    if (pattern.empty()) return std::nullopt;
    pattern += pattern.ends_with(L'\\') ? L"*" : L"\\*";
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        // The root of an empty drive has not even "." and "..".
        if (GetLastError() == ERROR_FILE_NOT_FOUND && folderExists(path)) return std::vector<FolderEntry>();
        return std::nullopt;
    }
    std::vector<FolderEntry> entries;
    do {
        const std::wstring_view name = found.cFileName;
        if (name != L"." && name != L"..")
            entries.push_back({utf8Text(name), (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0});
    } while (FindNextFileW(search, &found));
    const bool complete = GetLastError() == ERROR_NO_MORE_FILES;
    FindClose(search);
    if (!complete) return std::nullopt;
    std::sort(entries.begin(), entries.end(), before);
    return entries;
}

#else

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

std::optional<std::string> placeToWrite(const std::string& path) {
    auto place = locate(path, true);
    for (int links = 0; place && links <= 40; ++links) {
        const fs::path at(*place);
        std::error_code code;
        const fs::file_status status = fs::symlink_status(at, code);
        if (!fs::status_known(status)) return std::nullopt;
        if (!fs::is_symlink(status)) return place;
        const fs::path to = fs::read_symlink(at, code);
        if (code) return std::nullopt;
        place = (at.parent_path() / to).string(); // an absolute one stands for itself
    }
    return std::nullopt;
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

#endif

} // namespace orvo
