#include "OutputFile.h"

#include "FileSystem.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace orvo {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32

struct SignalsHeld {};

bool keepsPermissions(std::FILE*, const fs::path&) { return true; } // a file that can be written has but one kind
bool onDisk(std::FILE* file) { return _commit(_fileno(file)) == 0; }
bool folderOnDisk(const fs::path&) { return true; }

#else

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

/// Some file systems have nothing to say on it.
bool synced(int file) { return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP; }

/// Gives a new file the permissions of the one that it is to replace.
bool keepsPermissions(std::FILE* file, const fs::path& earlier) {
    struct stat status {};
    if (stat(earlier.c_str(), &status) != 0) return errno == ENOENT;
    return fchmod(fileno(file), status.st_mode & 07777) == 0;
}

bool onDisk(std::FILE* file) { return synced(fileno(file)); }

bool folderOnDisk(const fs::path& folder) {
    const int opened = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return errno == EACCES; // one that may be written to and not be read
    const bool done = synced(opened);
    close(opened);
    return done;
}

#endif

} // namespace

/// A new file beside the one that it is to replace.
struct OutputFile::Replacement {
    fs::path place, beside;
    SignalsHeld signals;

    explicit Replacement(fs::path at) : place(std::move(at)) {
        static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
        std::random_device random;
        std::string name = ".part-";
        for (int i = 0; i < 12; ++i) name += letters[random() % (sizeof letters - 1)];
        beside = place.parent_path() / name;
    }
    ~Replacement() {
        std::error_code ignored;
        if (!beside.empty() && !fs::remove(beside, ignored) && ignored) fs::remove(beside, ignored);
    }
    /// Whether the new file, which is closed, took the place.
    bool moved() {
        std::error_code failed;
        if (!folderOnDisk(place.parent_path())) return false;
        fs::rename(beside, place, failed);
        if (failed) return false;
        beside.clear();
        return folderOnDisk(place.parent_path());
    }
};

OutputFile::OutputFile(const std::string& path, const char* mode, Earlier earlier) {
    if (earlier == Earlier::Overwritten) {
        file_ = openFile(path, mode);
        return;
    }
    const auto place = placeToWrite(path);
    std::error_code failed;
    const auto status = place ? fs::status(*place, failed) : fs::file_status();
    if (!fs::status_known(status)) return;
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        file_ = openFile(path, mode);
        return;
    }
    if (fs::exists(status)) {
        // It is asked whether the earlier file may be written, as if it were to be.
        std::FILE* const writable = openFile(*place, "r+b");
        if (!writable) return;
        std::fclose(writable);
    }
    replacement_ = std::make_unique<Replacement>(*place);
    // Exclusively: nobody can plant a link of that name.
    file_ = openFile(replacement_->beside.string(), (std::string(mode) + "x").c_str());
    if (!file_) {
        replacement_->beside.clear();
        replacement_.reset();
    }
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
    if (replacement_ && !failed_ && !replacement_->moved()) failed_ = true;
    replacement_.reset();
    return !failed_;
}

} // namespace orvo
