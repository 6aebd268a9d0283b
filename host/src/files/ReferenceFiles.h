#pragma once

#include "files/SceneSurvey.h"

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace host::files {

/// The files that one reading of a scene refers to: where they may lie, what they hold, which of them are open.
///
/// Only plain files below the project's folder or below the scene's own are read, whatever links lead there.
class ReferenceFiles {
public:
    ReferenceFiles(std::filesystem::path project, const std::filesystem::path& scene);

    /// The file that a name in a scene means: as it stands, relative to the project, to the scene's folder or to that
    /// of the file that is open; one of another machine by the end of its path that is there. Throws FileError when
    /// there is none, or when it lies elsewhere.
    std::filesystem::path find(const std::string& name) const;

    struct Contents {
        std::string text;
        SceneSurvey survey;
        explicit Contents(std::string t) : text(std::move(t)), survey(text) {}
    };
    /// What the file holds, read once. Throws FileError; also when all references together have become too many.
    std::shared_ptr<const Contents> read(const std::filesystem::path& file);

    /// Marks a file as being read, for a scope. Throws FileError when it is so already: it includes itself.
    class Open {
    public:
        Open(ReferenceFiles& files, std::filesystem::path file);
        ~Open() { files_.open_.pop_back(); }
        Open(const Open&) = delete;
        Open& operator=(const Open&) = delete;

    private:
        ReferenceFiles& files_;
    };

    std::set<std::filesystem::path> told; ///< files whose unknown nodes have been told of

private:
    std::filesystem::path project_, folder_;
    std::vector<std::filesystem::path> open_;
    std::map<std::filesystem::path, std::shared_ptr<const Contents>> contents_;
    std::size_t count_ = 0, bytes_ = 0;
};

} // namespace host::files
