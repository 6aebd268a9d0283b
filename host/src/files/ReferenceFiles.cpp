#include "files/ReferenceFiles.h"

#include "base/TextFile.h"
#include "scene/References.h"

#include <algorithm>

namespace host::files {

namespace fs = std::filesystem;

namespace {

/// Of one scene, those within references included.
constexpr std::size_t mostReferences = 20'000, mostBytes = std::size_t{4} << 30, deepest = 50;

bool isBelow(const fs::path& file, const fs::path& folder) {
    return !folder.empty() &&
           std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

fs::path realPath(const fs::path& path) {
    std::error_code failed;
    fs::path found = fs::canonical(path, failed);
    return failed ? fs::path() : found;
}

} // namespace

ReferenceFiles::ReferenceFiles(fs::path project, const fs::path& scene)
    : project_(project.empty() ? fs::path() : realPath(project)),
      folder_(scene.empty() ? fs::path() : realPath(fs::absolute(scene).parent_path())) {
    if (!scene.empty()) open_.push_back(realPath(scene));
}

fs::path ReferenceFiles::find(const std::string& given) const {
    std::string name = scene::splitCopy(given).first;
    std::replace(name.begin(), name.end(), '\\', '/');
    constexpr std::size_t longestPath = 4096, mostParts = 32;
    if (name.empty() || name.size() > longestPath || name.find('\0') != name.npos)
        throw FileError(given, "is not the name of a file");
    bool elsewhere = false;
    const auto usable = [&](const fs::path& candidate) -> fs::path {
        const fs::path file = realPath(candidate);
        std::error_code failed;
        if (file.empty() || !fs::is_regular_file(file, failed)) return {};
        if (isBelow(file, project_) || isBelow(file, folder_)) return file;
        elsewhere = true;
        return {};
    };
    const fs::path path(name);
    if (path.is_absolute())
        if (fs::path file = usable(path); !file.empty()) return file;
    // Without what only another machine has in front of it.
    std::vector<fs::path> parts(path.begin(), path.end());
    const std::size_t from = parts.size() > mostParts ? parts.size() - mostParts : path.is_absolute() ? 1 : 0;
    for (std::size_t first = from; first < parts.size(); ++first) {
        fs::path end;
        for (std::size_t i = first; i < parts.size(); ++i) end /= parts[i];
        for (const fs::path& root : {project_, folder_, open_.empty() ? fs::path() : open_.back().parent_path()})
            if (fs::path file = root.empty() ? fs::path() : usable(root / end); !file.empty()) return file;
    }
    throw FileError(given, elsewhere ? "lies outside of the project and of the scene's folder" : "cannot be found");
}

std::shared_ptr<const ReferenceFiles::Contents> ReferenceFiles::read(const fs::path& file) {
    auto& slot = contents_[file];
    if (!slot) {
        std::string text = readTextFile(file);
        try {
            slot = std::make_shared<const Contents>(std::move(text));
        } catch (const SyntaxError& e) {
            throw FileError(file.generic_string(), e.what(), e.line);
        }
    }
    bytes_ += slot->text.size();
    if (++count_ > mostReferences || bytes_ > mostBytes)
        throw FileError(file.generic_string(), "there are too many references within references");
    return slot;
}

ReferenceFiles::Open::Open(ReferenceFiles& files, fs::path file) : files_(files) {
    const auto at = std::find(files.open_.begin(), files.open_.end(), file);
    if (at != files.open_.end()) {
        std::string way;
        for (auto f = at; f != files.open_.end(); ++f) way += f->filename().generic_string() + " -> ";
        throw FileError(file.generic_string(), "includes itself: " + way + file.filename().generic_string());
    }
    if (files.open_.size() >= deepest) throw FileError(file.generic_string(), "references are nested too deeply");
    files.open_.push_back(std::move(file));
}

} // namespace host::files
