#include "files/MeshImport.h"
#include "base/Letters.h"

#include "base/Modules.h"
#include "files/ImportProcess.h"
#include "files/ModelMessage.h"

#include <cctype>
#include <cstring>
#include <new>
#include <stdexcept>

namespace host::files {
namespace {

std::shared_ptr<const mesh::PolyMesh> build(RawModel::Mesh& raw, const std::string& file) {
    std::string error;
    auto made = std::make_shared<mesh::PolyMesh>(
        mesh::PolyMesh::fromPolygons(std::move(raw.points), raw.counts, std::move(raw.connects), &error));
    bool fits = error.empty();
    for (std::size_t k = 0; fits && k < raw.uvSets.size(); ++k) {
        auto& uvs = raw.uvSets[k];
        const int set = k == 0 ? 0 : made->addUvSet(uvs.name);
        uvs.ids.resize(static_cast<std::size_t>(made->numFaceVertices()), -1);
        fits = set >= 0 && (k > 0 || made->renameUvSet(0, uvs.name)) &&
               made->setUvs(set, std::move(uvs.u), std::move(uvs.v), &error) &&
               made->assignUvs(set, raw.counts, uvs.ids, &error);
    }
    fits = fits && made->assignNormals(std::move(raw.normals));
    if (!fits) throw FileError(file, error.empty() ? "a mesh in it is broken" : error);
    return made;
}

} // namespace

bool isModelFile(const std::filesystem::path& file) {
    const std::string extension = extensionOf(file);
    return extension == ".obj" || extension == ".gltf" || extension == ".glb" || extension == ".fbx";
}

ImportedModel readModel(const std::filesystem::path& file) {
    const std::string name = file.generic_string();
    std::error_code code;
    const auto status = std::filesystem::status(file, code);
    if (!std::filesystem::exists(status)) throw FileError(name, "there is no such file");
    if (!std::filesystem::is_regular_file(status)) throw FileError(name, "it is no file");
    if (std::filesystem::file_size(file, code) == 0) throw FileError(name, "it is empty");
    RawModel raw;
    try {
        raw = takeModel(runImporter(hostFolder() / "orvosky-import", file, kMostImportTime, kMostMessageBytes));
    } catch (const std::runtime_error& e) {
        throw FileError(name, e.what());
    } catch (const std::bad_alloc&) {
        throw FileError(name, "there is not enough memory for it");
    }
    return buildModel(std::move(raw), name);
}

ImportedModel buildModel(RawModel raw, const std::string& file) {
    std::vector<std::shared_ptr<const mesh::PolyMesh>> meshes;
    for (auto& mesh : raw.meshes) meshes.push_back(build(mesh, file));
    ImportedModel model;
    model.leftOut = raw.leftOut;
    for (auto& node : raw.nodes) {
        double matrix[4][4];
        std::memcpy(matrix, node.matrix.data(), sizeof matrix);
        model.nodes.push_back({std::move(node.name), node.parent, MMatrix(matrix),
                               node.mesh < 0 ? nullptr : meshes[static_cast<std::size_t>(node.mesh)]});
    }
    if (model.nodes.empty()) throw FileError(file, "it holds no objects");
    return model;
}

} // namespace host::files
