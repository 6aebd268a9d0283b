#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvosky {

/// Files that are written beside their places and moved there together, so that a failure leaves what was there.
class ReplacedFiles {
public:
    /// Makes a folder of its own in the target's folder. Throws Failure when that is not possible, or when the target
    /// is something that a file cannot replace.
    explicit ReplacedFiles(const std::filesystem::path& target);
    /// Removes the folder and what was not moved.
    ~ReplacedFiles();
    ReplacedFiles(const ReplacedFiles&) = delete;
    ReplacedFiles& operator=(const ReplacedFiles&) = delete;

    /// Where to write the target's new content: a file of the same name.
    std::filesystem::path stagedTarget() const { return folder_ / target_.filename(); }
    /// Moves every file of the folder beside the target; the target itself last. When one cannot be moved, those moved
    /// before are put back, and Failure is thrown.
    void moveIntoPlace();

private:
    std::filesystem::path target_, folder_;
};

} // namespace orvosky
