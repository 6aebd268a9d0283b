#pragma once

#include "base/FileError.h"
#include "files/RawModel.h"
#include "mesh/PolyMesh.h"

#include <maya/MMatrix.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace host::files {

/// What a file of meshes holds, in this scene's terms: centimetres, Y up, row vectors.
///
/// Polygons stay whole. Corners in one place share a vertex, corners of one vertex with the same coordinates share a
/// UV; vertices are numbered in the order of their first use. Parts of one object that differ in material are one mesh.
struct ImportedModel {
    struct Node {
        std::string name;                           ///< legal; empty for one without a name
        int parent = -1;                            ///< an earlier node, or -1 for the world
        MMatrix matrix;                             ///< local
        std::shared_ptr<const mesh::PolyMesh> mesh; ///< null for groups; nodes may share one
    };
    std::vector<Node> nodes;
    std::size_t leftOut = 0; ///< points, lines and faces without three different corners
};

/// Whether files of the path's extension can be imported: .obj, .gltf, .glb, .fbx, in any case.
bool isModelFile(const std::filesystem::path& file);

/// Reads objects with their names, hierarchy, transforms, polygons, normals and all UV sets; materials, cameras,
/// lights, skins and animation are not looked at. OBJ coordinates are taken as centimetres, glTF's as metres; FBX files
/// say their unit and axes. The first UV set is "map1" unless the file names it.
///
/// The file is read in a process of its own (ImportProcess.h), so that one that is broken or made to do harm cannot
/// take the host with it. Throws FileError when it is missing, not of its kind, damaged, nested more than 500 deep,
/// takes too much time or memory, or holds nothing.
ImportedModel readModel(const std::filesystem::path& file);

/// Builds the meshes of a model as takeModel() gives it. Throws FileError when one is broken, or there is nothing.
ImportedModel buildModel(RawModel raw, const std::string& file);

} // namespace host::files
