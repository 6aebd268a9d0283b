#include "OutputFile.h"

#include "FileSystem.h"

#include <random>

#ifdef _WIN32
#include "WindowsPath.h"

#include <io.h>
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#endif

namespace orvo {
namespace {

/// What a path names.
enum class Kind { Unknown, Nothing, File, Other };

#ifdef _WIN32

constexpr const char* separators = "/\\:";

struct SignalsHeld {};

Kind kindOf(const std::string& path) {
    return folderExists(path) ? Kind::Other : fileExists(path) ? Kind::File : Kind::Nothing;
}
bool keepsPermissions(std::FILE*, const std::string&) { return true; } // they are the folder's
bool onDisk(std::FILE* file) { return _commit(_fileno(file)) == 0; }
bool folderOnDisk(const std::string&) { return true; }
std::wstring nativePath(const std::string& path) { return windowsPath(path); }
bool moved(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}
bool removed(const std::wstring& path) { return DeleteFileW(path.c_str()); }

#else

namespace fs = std::filesystem;

constexpr const char* separators = "/";

/// Lets a signal that ends the process wait until no temporary file would be left.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t ends;
        sigemptyset(&ends);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) sigaddset(&ends, signal);
        pthread_sigmask(SIG_BLOCK, &ends, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t before_;
};

Kind kindOf(const std::string& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (!fs::status_known(status)) return Kind::Unknown;
    return fs::is_regular_file(status) ? Kind::File : fs::exists(status) ? Kind::Other : Kind::Nothing;
}

/// Some file systems have nothing to say on it.
bool synced(int file) { return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP; }

/// Gives a new file the permissions of the one that it is to replace.
bool keepsPermissions(std::FILE* file, const std::string& earlier) {
    struct stat status {};
    if (stat(earlier.c_str(), &status) != 0) return errno == ENOENT;
    return fchmod(fileno(file), status.st_mode & 07777) == 0;
}

bool onDisk(std::FILE* file) { return synced(fileno(file)); }

bool folderOnDisk(const std::string& folder) {
    const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return errno == EACCES; // one that may be written to and not be read
    const bool done = synced(opened);
    close(opened);
    return done;
}

std::string nativePath(const std::string& path) { return path; }
bool moved(const std::string& from, const std::string& to) { return std::rename(from.c_str(), to.c_str()) == 0; }
bool removed(const std::string& path) { return std::remove(path.c_str()) == 0; }

#endif

/// The folder of a file with the separator at its end; empty when there is none.
std::string folderOf(const std::string& path) { return path.substr(0, path.find_last_of(separators) + 1); }

} // namespace

/// A new file beside the one that it is to replace.
struct OutputFile::Replacement {
    std::string place, folder, beside;
    decltype(nativePath({})) from, to; // made while memory can still be asked for
    bool isThere = false;
    SignalsHeld signals;

    explicit Replacement(std::string at) : place(std::move(at)), folder(folderOf(place)) {
        static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
        std::random_device random;
        beside = folder + ".part-";
        for (int i = 0; i < 12; ++i) beside += letters[random() % (sizeof letters - 1)];
        from = nativePath(beside);
        to = nativePath(place);
    }
    ~Replacement() {
        if (isThere && !removed(from)) removed(from);
    }
    /// Whether the new file, which is closed, took the place.
    bool takesPlace() {
        if (!folderOnDisk(folder) || !moved(from, to)) return false;
        isThere = false;
        // In place it is, whatever becomes of this: all that a power cut could bring back is the earlier file, whole.
        folderOnDisk(folder);
        return true;
    }
};

OutputFile::OutputFile(const std::string& path, const char* mode, Earlier earlier) {
    if (earlier == Earlier::Overwritten) {
        file_ = openFile(path, mode);
        return;
    }
    const auto place = placeToWrite(path);
    const Kind kind = place ? kindOf(*place) : Kind::Unknown;
    if (kind == Kind::Unknown) return;
    if (kind == Kind::Other) {
        file_ = openFile(path, mode);
        return;
    }
    if (kind == Kind::File) {
        // It is asked whether the earlier file may be written, as if it were to be.
        std::FILE* const writable = openFile(*place, "r+b");
        if (!writable) return;
        std::fclose(writable);
    }
    replacement_ = std::make_unique<Replacement>(*place);
    // Exclusively: nobody can plant a link of that name.
    file_ = openFile(replacement_->beside, (std::string(mode) + "x").c_str());
    replacement_->isThere = file_ != nullptr;
    if (!file_) replacement_.reset();
}

OutputFile::~OutputFile() {
    if (file_) std::fclose(file_);
}

void OutputFile::write(const void* data, std::size_t size) {
    if (size == 0) return;
    if (!file_ || std::fwrite(data, 1, size, file_) != size) failed_ = true;
}

bool OutputFile::close() {
    if (!file_) return false;
    if (std::fflush(file_) != 0) failed_ = true;
    if (replacement_ && !failed_ && !(keepsPermissions(file_, replacement_->place) && onDisk(file_))) failed_ = true;
    if (std::fclose(file_) != 0) failed_ = true;
    file_ = nullptr;
    if (replacement_ && !failed_ && !replacement_->takesPlace()) failed_ = true;
    replacement_.reset();
    return !failed_;
}

} // namespace orvo
