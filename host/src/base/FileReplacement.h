#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Files take the place of earlier ones only when all of their bytes are on the disk.
namespace host::base {

/// A file that cannot be replaced; what() is the reason alone, in one line.
class ReplacementError : public std::runtime_error {
public:
    /// Whether the place was refused before anything was written, or something failed on the way.
    enum class Kind { Refused, Failed };

    ReplacementError(std::filesystem::path file, Kind kind, const std::string& reason)
        : std::runtime_error(reason), file_(std::move(file)), kind_(kind) {}

    /// As the caller named it.
    const std::filesystem::path& file() const { return file_; }
    Kind kind() const { return kind_; }

private:
    std::filesystem::path file_;
    Kind kind_;
};

/// Throws ReplacementError when a file of that name could not be put there now: its folder is missing or cannot be
/// written, or what is there is no plain file or is not writable. Changes nothing.
void requireReplaceable(const std::filesystem::path& file);

/// Files that change together or not at all.
///
/// New content is written into a folder that only this user may enter, beside the last of the files: nobody can plant a
/// link there, and no reader sees half a file. commit() moves it into place. A name that is a link stays one: what it
/// leads to is replaced, by the same rule for each of the files. A file that is replaced keeps its permissions, and its
/// owner and group where the system allows it. Whatever fails, and when HUP, INT, QUIT, TERM or XCPU ends the process,
/// the earlier files are all there or the new ones are, and nothing else is left.
class FileReplacement {
public:
    /// The names differ in their last parts. Throws ReplacementError when the last of the files cannot be replaced; the
    /// others are looked at by commit().
    explicit FileReplacement(std::vector<std::filesystem::path> files);
    /// Removes what was not moved.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Where to write the new content of file `i`: a file of the same name. One that is not written stays as it is.
    std::filesystem::path staged(std::size_t i) const;
    /// Writes the new content of file `i`. Throws ReplacementError.
    void write(std::size_t i, std::string_view bytes);

    /// Puts what was written into place, in the order of the names: the last is the one that readers start from. Where
    /// there is more than one, no other commit() to these folders, of any process, comes between. Throws
    /// ReplacementError; then everything is as it was, unless the text says where an earlier file was kept.
    void commit();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Puts a whole file into place. Signals wait meanwhile. Throws ReplacementError.
void replaceFile(const std::filesystem::path& file, std::string_view bytes);

} // namespace host::base
