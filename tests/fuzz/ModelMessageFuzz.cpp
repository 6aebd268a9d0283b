#include "files/MeshImport.h"
#include "files/ModelMessage.h"

#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

/// Any bytes as what the program that reads models hands over. They are refused with a text of one line, or give a
/// model that the rest of the host can work with.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace host::files;
    const auto require = [](bool condition) {
        if (!condition) std::abort();
    };
    try {
        const ImportedModel model = buildModel(takeModel({reinterpret_cast<const char*>(data), size}), "model");
        int index = 0;
        for (const auto& node : model.nodes) {
            require(node.parent >= -1 && node.parent < index++);
            if (!node.mesh) continue;
            const auto& mesh = *node.mesh;
            require(mesh.numTriangles() == static_cast<int>(mesh.triangles().size()) && mesh.numEdges() >= 0);
            std::set<std::string> names;
            for (int set = 0; set < mesh.numUvSets(); ++set) require(names.insert(mesh.uvSet(set).name).second);
        }
    } catch (const std::exception& e) {
        const std::string text = e.what();
        require(!text.empty() && text.find('\n') == text.npos);
    }
    return 0;
}
