#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace orvo::test {

/// A file's bytes; none when it is not there.
inline std::string content(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Makes a file of these bytes, with the folders around it.
inline void write(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

/// A new folder of the test's own. It is gone at the end, with all that is in it, whatever permissions the test took
/// and however long the paths are.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::random_device random;
        for (int tries = 0; tries < 100; ++tries) {
            path_ = parent / ("orvo-test-" + std::to_string(random()));
            std::error_code failed;
            if (!std::filesystem::create_directory(path_, failed)) continue;
            std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
            path_ = std::filesystem::canonical(path_);
            return;
        }
        throw std::runtime_error("no temporary folder can be made in " + parent.string());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
#ifdef _WIN32
        path_ = L"\\\\?\\" + path_.wstring(); // the form that knows no limit of 260 characters
#endif
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    operator const std::filesystem::path&() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
    const std::filesystem::path::value_type* c_str() const { return path_.c_str(); }
    std::string string() const { return path_.string(); }
    std::string generic_string() const { return path_.generic_string(); }

    /// Makes a file of these bytes, with the folders around it. @return its path
    std::filesystem::path write(const std::filesystem::path& name, std::string_view bytes) const {
        test::write(path_ / name, bytes);
        return path_ / name;
    }
    /// A file's bytes; none when it is not there.
    std::string read(const std::filesystem::path& name) const { return content(path_ / name); }

private:
    std::filesystem::path path_;
};

} // namespace orvo::test
