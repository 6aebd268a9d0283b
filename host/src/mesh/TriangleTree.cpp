#include "mesh/TriangleTree.h"

#include "base/Modules.h"

#include <exception>
#include <stdexcept>
#include <string>

namespace host::mesh {
namespace {

/// Tried once: a host without the module is not to look for it at every query.
struct Module {
    TriangleTreeMaker make = nullptr;
    std::string problem;

    Module() {
        try {
            make = reinterpret_cast<TriangleTreeMaker (*)()>(
                moduleFunction("no quick rays", "orvohost_rays.so", "orvohost_triangleTreeMaker"))();
        } catch (const std::runtime_error& e) {
            problem = e.what();
        }
    }
};

} // namespace

std::unique_ptr<TriangleTree> TriangleTree::make(std::span<const Imath::V3d> points,
                                                 std::span<const std::array<int, 3>> triangles, double slack) {
    static const Module module;
    if (!module.make) throw std::runtime_error(module.problem);
    return module.make(points, triangles, slack);
}

} // namespace host::mesh
