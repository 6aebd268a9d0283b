#include "base/FileError.h"
#include "files/Workspace.h"
#include "kit/TemporaryFolder.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// Any bytes as a project's workspace.mel: refused with a message, or read; what is saved of it reads back as the same.
namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::files;
    static const orvo::test::TemporaryFolder folder;
    {
        std::ofstream out(folder / "workspace.mel", std::ios::binary);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        require(out.good());
    }
    try {
        Workspace first, second;
        first.open(folder);
        require(!first.sceneFolder().empty() && !first.expand("a").empty());
        require(!first.findScene("none").empty());
        first.save();
        second.open(folder);
        require(first.fileRules == second.fileRules && first.variables == second.variables);
    } catch (const FileError& e) {
        require(*e.what() != '\0');
    }
    return 0;
}
