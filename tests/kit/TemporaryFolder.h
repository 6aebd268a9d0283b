#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvo::test {

/// A new folder of the test's own. It is gone at the end, with all that is in it, whatever permissions the test took.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string pattern = (parent / "orvo-test-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder can be made");
        path_ = std::filesystem::canonical(pattern);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    operator const std::filesystem::path&() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
    const char* c_str() const { return path_.c_str(); }
    std::string string() const { return path_.string(); }
    std::string generic_string() const { return path_.generic_string(); }

    /// Makes a file of these bytes, with the folders around it. @return its path
    std::filesystem::path write(const std::filesystem::path& name, std::string_view bytes) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }
    /// A file's bytes; none when it is not there.
    std::string read(const std::filesystem::path& name) const {
        std::ifstream in(path_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    std::filesystem::path path_;
};

} // namespace orvo::test
