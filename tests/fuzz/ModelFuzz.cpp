#include "base/Modules.h"
#include "files/ImportProcess.h"
#include "files/MeshImport.h"
#include "files/ModelMessage.h"
#include "kit/TemporaryFolder.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Any bytes as a model, read by the program that reads models. The first byte chooses the format: '0' OBJ, '1' glTF,
/// '2' its binary form, '3' FBX. Whatever becomes of that program, the host has a model or a text of one line.
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::files;
    static const orvo::test::TemporaryFolder folder;
    constexpr const char* endings[]{"obj", "gltf", "glb", "fbx"};
    if (size == 0) return 0;
    const fs::path file = folder / (std::string("model.") + endings[data[0] % std::size(endings)]);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data) + 1, static_cast<std::streamsize>(size - 1));
    try {
        const auto message =
            runImporter(host::hostFolder() / "orvosky-import", file, std::chrono::seconds(10), kMostMessageBytes);
        const ImportedModel model = buildModel(takeModel(message), file.string());
        if (model.nodes.empty()) std::abort();
    } catch (const std::exception& e) { // ImportError, ModelError, FileError
        const std::string text = e.what();
        if (text.empty() || text.find('\n') != text.npos || text.find("cannot be started") != text.npos) std::abort();
    }
    return 0;
}
