#pragma once

#include "scene/Node.h"

#include <maya/MMatrix.h>
#include <maya/MVector.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace host::viewport {

/// What a view's meshes are lit by: the directional, ambient and point lights that are visible in the scene. Without
/// any, one white light that shines along the camera's view, or from where it is told to.
class SceneLights {
public:
    /// Takes a light's shape node; one of another type than these is left out.
    void add(const std::shared_ptr<scene::Node>& light);
    /// As many as fixed-function GL shows at once; those beyond, by the order of adding, give no light.
    static std::size_t most();
    std::size_t size() const { return lights_.size(); }

    /// Loads the lights into GL, switched on, and switches GL's lighting on, on both sides of every face. Colours and
    /// places are those that the nodes have now. Changes the modelview matrix.
    void load(const MMatrix& worldToCamera, const std::optional<MVector>& headlight) const;

private:
    std::vector<std::shared_ptr<scene::Node>> lights_;
};

} // namespace host::viewport
