#pragma once

#include "mesh/PolyMesh.h"

#include <array>
#include <string>
#include <vector>

namespace host::files {

/// A model as plain lists, fit to be handed from one process to another.
struct RawModel {
    struct UvSet {
        std::string name;
        std::vector<float> u, v;
        std::vector<int> ids; ///< one a corner, -1 for none
    };
    struct Mesh {
        std::vector<mesh::Float3> points;
        std::vector<int> counts, connects;
        std::vector<mesh::Float3> normals; ///< one a corner, or none
        std::vector<UvSet> uvSets;
    };
    struct Node {
        std::string name;
        int parent = -1;
        int mesh = -1;
        std::array<double, 16> matrix{}; ///< row by row, for row vectors
    };
    std::vector<Node> nodes;
    std::vector<Mesh> meshes;
    std::size_t leftOut = 0;
};

/// How deep the objects of a model may be nested.
inline constexpr int kDeepestModel = 500;

} // namespace host::files
