#include "ReplacedFiles.h"

#include "Session.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace orvosky {
namespace fs = std::filesystem;

ReplacedFiles::ReplacedFiles(const fs::path& target) {
    std::error_code failed;
    const fs::path absolute = fs::absolute(target, failed);
    // Through a link the file it leads to is replaced, not the link.
    target_ = fs::weakly_canonical(absolute, failed);
    if (failed || target_.empty()) target_ = absolute;
    const fs::file_status status = fs::status(target_, failed);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Failure("Cannot write " + target.string() + ": it is not a plain file.");
    if (!target_.has_filename()) throw Failure("Cannot write " + target.string() + ": it names no file.");
    const fs::path parent = target_.parent_path();
    if (!fs::is_directory(parent, failed))
        throw Failure("Cannot write " + target.string() + ": there is no folder " + parent.string() + ".");
    std::string pattern = (parent / ".orvosky-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw Failure("Cannot write " + target.string() + ": " + std::strerror(errno) + ".");
    folder_ = pattern;
}

ReplacedFiles::~ReplacedFiles() {
    std::error_code ignored;
    if (!folder_.empty()) fs::remove_all(folder_, ignored);
}

void ReplacedFiles::moveIntoPlace() {
    std::vector<fs::path> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename());
    // The target last: readers start from it, so what it refers to has to be there first.
    std::sort(names.begin(), names.end());
    std::stable_partition(names.begin(), names.end(), [&](const fs::path& n) { return n != target_.filename(); });

    const fs::path places = target_.parent_path(), kept = folder_ / ".kept";
    std::error_code failed;
    fs::create_directory(kept, failed);
    struct Moved {
        fs::path name;
        bool replaced;
    };
    std::vector<Moved> moved;
    for (const auto& name : names) {
        const bool replaces = fs::exists(places / name);
        if (replaces) {
            // A hard link keeps the earlier file for the case that a later move fails.
            std::error_code ignored;
            fs::create_hard_link(places / name, kept / name, ignored);
            if (ignored) fs::copy_file(places / name, kept / name, ignored);
        }
        fs::rename(folder_ / name, places / name, failed);
        if (failed) break;
        moved.push_back({name, replaces});
    }
    if (!failed) return;
    for (auto it = moved.rbegin(); it != moved.rend(); ++it) {
        std::error_code ignored;
        if (it->replaced)
            fs::rename(kept / it->name, places / it->name, ignored);
        else
            fs::remove(places / it->name, ignored);
    }
    throw Failure("Cannot write " + target_.string() + ": " + failed.message() + ".");
}

} // namespace orvosky
