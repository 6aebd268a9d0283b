#include "base/FileReplacement.h"

#include "base/Interrupts.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <list>
#include <optional>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace host::base {
namespace {

namespace fs = std::filesystem;
using Kind = ReplacementError::Kind;

std::string reasonOf(int error) { return std::generic_category().message(error); }

/// Repeats a call that a signal broke off.
template <class Call>
auto again(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

/// An open file or folder.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    operator int() const { return fd_; }
    /// Closes it; false when that fails, which network file systems do when a write failed.
    bool close() {
        const int result = ::close(std::exchange(fd_, -1));
        return result == 0 || errno == EINTR; // it is closed then, too
    }

private:
    int fd_ = -1;
};

bool synced(int fd) {
    // Some file systems have nothing to say on it.
    return again([&] { return ::fsync(fd); }) == 0 || errno == EINVAL || errno == ENOTSUP;
}

bool written(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = again([&] { return ::write(fd, bytes.data(), bytes.size()); });
        if (n == 0) errno = EIO;
        if (n <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

bool copied(int from, int to) {
    std::vector<char> block(1 << 20);
    while (true) {
        const ssize_t n = again([&] { return ::read(from, block.data(), block.size()); });
        if (n <= 0) return n == 0;
        if (!written(to, {block.data(), static_cast<std::size_t>(n)})) return false;
    }
}

/// Tried again once: a temporary that stays for good is worse than a call too many.
bool removed(int folder, const std::string& name, int flags) {
    for (int attempt = 0; attempt < 2; ++attempt)
        if (unlinkat(folder, name.c_str(), flags) == 0 || errno == ENOENT) return true;
    return false;
}

bool moved(int from, const std::string& name, int to, const std::string& as) {
    return renameat(from, name.c_str(), to, as.c_str()) == 0;
}

Descriptor createdIn(int folder, const std::string& name) {
    return Descriptor(again(
        [&] { return openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666); }));
}

Descriptor openedIn(int folder, const std::string& name) {
    return Descriptor(again([&] { return openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); }));
}

/// Where a file really lies, and what is there.
struct Place {
    fs::path folderPath;
    std::string name;
    Descriptor folder;
    std::optional<struct stat> earlier;
    dev_t device = 0;
    ino_t inode = 0;

    bool sameFolder(const Place& other) const { return device == other.device && inode == other.inode; }
};

Place placeOf(const fs::path& file) {
    const auto refuse = [&](const std::string& reason) { return ReplacementError(file, Kind::Refused, reason); };
    std::error_code failed;
    fs::path at = fs::absolute(file, failed);
    if (failed) throw refuse(failed.message());
    for (int links = 0;; ++links) {
        const fs::path to = fs::read_symlink(at, failed);
        if (failed == std::errc::invalid_argument || failed == std::errc::no_such_file_or_directory) break;
        if (failed) throw refuse(failed.message());
        if (links == 40) throw refuse(reasonOf(ELOOP));
        at = at.parent_path() / to; // an absolute one stands for itself
    }
    Place place;
    place.name = at.filename().string();
    place.folderPath = at.parent_path();
    if (place.name.empty() || place.name == "." || place.name == "..") throw refuse("it names no file");
    const std::string folder = place.folderPath.string();
    place.folder = Descriptor(again([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (place.folder < 0)
        throw refuse(errno == ENOENT || errno == ENOTDIR ? "there is no folder " + folder
                                                         : "folder " + folder + ": " + reasonOf(errno));
    struct stat status {};
    if (fstat(place.folder, &status) != 0) throw refuse("folder " + folder + ": " + reasonOf(errno));
    place.device = status.st_dev;
    place.inode = status.st_ino;
    if (fstatat(place.folder, place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
        if (S_ISDIR(status.st_mode)) throw refuse("a folder of that name is there");
        if (!S_ISREG(status.st_mode)) throw refuse("it is not a plain file");
        if (faccessat(place.folder, place.name.c_str(), W_OK, AT_EACCESS) != 0) throw refuse(reasonOf(errno));
        place.earlier = status;
    } else if (errno != ENOENT) {
        throw refuse(reasonOf(errno));
    }
    if (faccessat(place.folder, ".", W_OK | X_OK, AT_EACCESS) != 0)
        throw refuse("folder " + folder + ": " + reasonOf(errno));
    return place;
}

/// A folder beside a place that only this user may enter; it goes with what is in it.
class PrivateFolder {
public:
    PrivateFolder(const Place& beside, const fs::path& file, std::vector<std::string> files)
        : files_(std::move(files)) {
        const InterruptsHeld hold;
        parent_ = Descriptor(fcntl(beside.folder, F_DUPFD_CLOEXEC, 0));
        if (parent_ < 0) throw ReplacementError(file, Kind::Failed, reasonOf(errno));
        static constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
        std::random_device random;
        int made = 0;
        do {
            name_ = ".part-";
            for (int i = 0; i < 12; ++i) name_ += letters[random() % (sizeof letters - 1)];
            path_ = beside.folderPath / name_;
            made = mkdirat(parent_, name_.c_str(), 0700);
        } while (made != 0 && errno == EEXIST);
        if (made != 0) throw ReplacementError(file, Kind::Failed, reasonOf(errno));
        try {
            folder_ = Descriptor(
                again([&] { return openat(parent_, name_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
            if (folder_ < 0) throw ReplacementError(file, Kind::Failed, reasonOf(errno));
            onInterrupt_.emplace(parent_, name_, folder_, files_);
        } catch (...) {
            removed(parent_, name_, AT_REMOVEDIR);
            throw;
        }
    }
    ~PrivateFolder() {
        for (const std::string& file : files_) removed(folder_, file, 0);
        if (kept_ || removed(parent_, name_, AT_REMOVEDIR)) return;
        try {
            fs::remove_all(path_); // files that nobody announced
        } catch (const std::exception&) {}
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    operator int() const { return folder_; }
    const fs::path& path() const { return path_; }
    /// It stays, for this file.
    void keep(const std::string& file) {
        std::erase(files_, file);
        kept_ = true;
        onInterrupt_.reset();
    }

private:
    Descriptor parent_, folder_;
    std::string name_;
    fs::path path_;
    std::vector<std::string> files_;
    std::optional<RemovedOnInterrupt> onInterrupt_;
    bool kept_ = false;
};

/// The folders of a commit, locked against every other commit. The kernel lets go of the locks of a process that dies.
class Locks {
public:
    explicit Locks(std::vector<const Place*> places) {
        const auto before = [](const Place* a, const Place* b) {
            return std::pair(a->device, a->inode) < std::pair(b->device, b->inode);
        };
        std::sort(places.begin(), places.end(), before); // in one order, so that no two wait for each other
        for (const Place* place : places)
            if (locked_.empty() || !place->sameFolder(*locked_.back())) lock(*place);
    }
    ~Locks() {
        for (const Place* place : locked_) flock(place->folder, LOCK_UN);
    }
    Locks(const Locks&) = delete;
    Locks& operator=(const Locks&) = delete;

private:
    void lock(const Place& place) {
        locked_.push_back(&place);
        if (again([&] { return flock(place.folder, LOCK_EX); }) == 0) return;
        // Network file systems may have no locks, or none on folders: there, moves are as short as they can be.
        static constexpr int none[] = {EBADF, EINVAL, ENOLCK, ENOSYS, ENOTSUP};
        if (std::find(std::begin(none), std::end(none), errno) == std::end(none))
            throw ReplacementError(place.folderPath / place.name, Kind::Failed, "cannot be locked: " + reasonOf(errno));
    }

    std::vector<const Place*> locked_;
};

} // namespace

void requireReplaceable(const fs::path& file) { placeOf(file); }

struct FileReplacement::Parts {
    /// A file that was written, on its way into place.
    struct Step {
        const fs::path& file;
        std::string staged, kept; ///< names in the private folder; `kept` is the earlier file, where it was kept
        const Place* place;
        PrivateFolder* from;
        bool done = false;
    };

    std::vector<fs::path> files;
    std::vector<std::string> names, keptNames;
    Place main;
    std::list<Place> others;
    std::list<PrivateFolder> folders; ///< the first lies beside the main file

    explicit Parts(std::vector<fs::path> given) : files(std::move(given)), main(placeOf(files.back())) {
        std::vector<std::string> all;
        for (const fs::path& file : files) all.push_back(names.emplace_back(file.filename().string()));
        for (std::size_t i = 0; i + 1 < files.size(); ++i) {
            std::string name = "earlier-" + std::to_string(i);
            while (std::find(names.begin(), names.end(), name) != names.end()) name += '-';
            all.push_back(keptNames.emplace_back(std::move(name)));
        }
        folders.emplace_back(main, files.back(), std::move(all));
    }

    [[noreturn]] static void fail(const fs::path& file, int error) {
        throw ReplacementError(file, Kind::Failed, reasonOf(error));
    }

    PrivateFolder& folderBeside(const Place& place, const fs::path& file) {
        if (place.sameFolder(main)) return folders.front();
        std::vector<std::string> all = names;
        all.insert(all.end(), keptNames.begin(), keptNames.end());
        return folders.emplace_back(place, file, std::move(all));
    }

    /// What was written, each on the disk of its place, with the permissions that it is to have.
    std::vector<Step> readySteps() {
        std::vector<Step> steps;
        for (std::size_t i = 0; i < files.size(); ++i) {
            Descriptor content = openedIn(folders.front(), names[i]);
            if (content < 0 && errno == ENOENT) continue;
            if (content < 0) fail(files[i], errno);
            const bool last = i + 1 == files.size();
            const Place& place = last ? main : others.emplace_back(placeOf(files[i]));
            PrivateFolder& from = folderBeside(place, files[i]);
            if (&from != &folders.front()) {
                Descriptor copy = createdIn(from, names[i]);
                if (copy < 0 || !copied(content, copy)) fail(files[i], errno);
                content = std::move(copy);
            }
            if (place.earlier) {
                const struct stat& earlier = *place.earlier;
                // Only those who may give files away can keep all of it; the group first, for the others.
                if (fchown(content, static_cast<uid_t>(-1), earlier.st_gid) == 0)
                    static_cast<void>(!fchown(content, earlier.st_uid, static_cast<gid_t>(-1)));
                if (fchmod(content, earlier.st_mode & 07777) != 0) fail(files[i], errno);
            }
            if (!synced(content) || !content.close()) fail(files[i], errno);
            steps.push_back({files[i], names[i], last ? std::string() : keptNames[i], &place, &from});
        }
        for (const PrivateFolder& folder : folders)
            if (!steps.empty() && !synced(folder)) fail(files.back(), errno);
        return steps;
    }

    /// Gives the earlier file a second name, or copies it where that cannot be, for the case that a later move fails.
    static void keepEarlier(Step& step) {
        if (step.kept.empty()) return;
        const Place& place = *step.place;
        if (linkat(place.folder, place.name.c_str(), *step.from, step.kept.c_str(), 0) == 0) return;
        const Descriptor from = openedIn(place.folder, place.name);
        if (from < 0 && errno == ENOENT) {
            step.kept.clear();
            return;
        }
        struct stat status {};
        if (from < 0 || fstat(from, &status) != 0) fail(step.file, errno);
        Descriptor to = createdIn(*step.from, step.kept);
        if (to < 0 || !copied(from, to) || fchmod(to, status.st_mode & 07777) != 0 || !synced(to) || !to.close())
            fail(step.file, errno);
    }

    /// Takes a move back. Asks for no memory: there may be none.
    static void undo(Step& step) {
        for (int attempt = 0; attempt < 2 && step.done; ++attempt)
            step.done = step.kept.empty() ? !removed(step.place->folder, step.place->name, 0)
                                          : !moved(*step.from, step.kept, step.place->folder, step.place->name);
        if (step.done && !step.kept.empty()) step.from->keep(step.kept);
    }

    /// What undo() could not take back.
    static std::string remains(const Step& step) {
        if (!step.done) return {};
        if (step.kept.empty()) return "; the new " + step.file.string() + " could not be removed again";
        return "; the earlier " + step.file.string() + " could not be put back and is kept as " +
               (step.from->path() / step.kept).string();
    }

    void commit() {
        std::vector<Step> steps = readySteps();
        std::vector<const Place*> places;
        if (files.size() > 1)
            for (const Step& step : steps) places.push_back(step.place);
        const Locks locks(std::move(places));
        const InterruptsHeld hold;
        for (Step& step : steps)
            if (&step != &steps.back()) keepEarlier(step);
        for (Step& step : steps) {
            step.done = moved(*step.from, step.staged, step.place->folder, step.place->name);
            if (step.done) continue;
            const int error = errno;
            std::for_each(steps.rbegin(), steps.rend(), undo);
            std::string reason = reasonOf(error);
            for (const Step& other : steps) reason += remains(other);
            throw ReplacementError(step.file, Kind::Failed, reason);
        }
        const Place* last = nullptr;
        for (const Step& step : steps) {
            if (!(last && step.place->sameFolder(*last)) && !synced(step.place->folder))
                throw ReplacementError(step.file, Kind::Failed,
                                       "it is in place, but perhaps not for good: " + reasonOf(errno));
            last = step.place;
        }
    }
};

FileReplacement::FileReplacement(std::vector<fs::path> files) : parts_(std::make_unique<Parts>(std::move(files))) {}

FileReplacement::~FileReplacement() = default;

fs::path FileReplacement::staged(std::size_t i) const { return parts_->folders.front().path() / parts_->names[i]; }

void FileReplacement::write(std::size_t i, std::string_view bytes) {
    const PrivateFolder& folder = parts_->folders.front();
    Descriptor file = createdIn(folder, parts_->names[i]);
    if (file < 0 || !written(file, bytes) || !file.close()) Parts::fail(parts_->files[i], errno);
}

void FileReplacement::commit() { parts_->commit(); }

void replaceFile(const fs::path& file, std::string_view bytes) {
    const InterruptsHeld hold;
    FileReplacement replacement({file});
    replacement.write(0, bytes);
    replacement.commit();
}

} // namespace host::base
