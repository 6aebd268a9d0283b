#include "base/FileError.h"
#include "files/Workspace.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

/// Any bytes as a project's workspace.mel: refused with a message, or read; what is saved of it reads back as the same.
namespace {

namespace fs = std::filesystem;

void require(bool condition) {
    if (!condition) std::abort();
}

/// A project of this process, removed at its end.
struct Folder {
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "orvosky-fuzz-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr);
        path = pattern;
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
    fs::path path;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::files;
    static const Folder folder;
    {
        std::ofstream out(folder.path / "workspace.mel", std::ios::binary);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        require(out.good());
    }
    try {
        Workspace first, second;
        first.open(folder.path);
        require(!first.sceneFolder().empty() && !first.expand("a").empty());
        require(!first.findScene("none").empty());
        first.save();
        second.open(folder.path);
        require(first.fileRules == second.fileRules && first.variables == second.variables);
    } catch (const FileError& e) {
        require(*e.what() != '\0');
    }
    return 0;
}
