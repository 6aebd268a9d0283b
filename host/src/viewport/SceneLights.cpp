#include "viewport/SceneLights.h"

#include "viewport/CameraNode.h"

#include <maya/MVector.h>

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace host::viewport {
namespace {

using Rgba = std::array<float, 4>;

constexpr Rgba black{0, 0, 0, 1}, white{1, 1, 1, 1};

/// One light as fixed-function GL takes it, in world space.
struct GlLight {
    Rgba ambient = black, diffuse = black;
    Rgba place{0, 0, 1, 0};                    ///< a point, or with a last number of 0 the direction towards the light
    std::array<float, 3> attenuation{1, 0, 0}; ///< of no, the first and the second power of the distance
};

Rgba scaled(const Rgba& colour, double by) {
    const auto f = static_cast<float>(by);
    return {colour[0] * f, colour[1] * f, colour[2] * f, 1};
}

GlLight describe(scene::DagNode& light) {
    const double intensity = attributeNumber(light, "intensity");
    Rgba colour = black;
    if (attributeNumber(light, "emitDiffuse") != 0 || light.type.isA("ambientLight"))
        for (int k = 0; k < 3; ++k)
            colour[static_cast<std::size_t>(k)] = static_cast<float>(attributeNumber(light, "color", k) * intensity);
    const MMatrix world = light.worldMatrix();
    GlLight gl;
    gl.place = {static_cast<float>(world(3, 0)), static_cast<float>(world(3, 1)), static_cast<float>(world(3, 2)), 1};
    gl.diffuse = colour;
    if (light.type.isA("ambientLight")) {
        // Partly from everywhere, partly from where it stands.
        const double shade = std::clamp(attributeNumber(light, "ambientShade"), 0.0, 1.0);
        gl.ambient = scaled(colour, 1 - shade);
        gl.diffuse = scaled(colour, shade);
    } else if (light.type.isA("directionalLight")) {
        // It shines along -Z.
        const MVector back = MVector(world(2, 0), world(2, 1), world(2, 2)).normal();
        gl.place = {static_cast<float>(back.x), static_cast<float>(back.y), static_cast<float>(back.z), 0};
        if (!(back * back > 0)) gl.diffuse = black; // scaled to nothing, so it has no direction
    } else if (const int decay = static_cast<int>(attributeNumber(light, "decayRate")); decay > 0) {
        // GL knows no third power.
        gl.attenuation = {0, decay == 1 ? 1.0f : 0.0f, decay == 1 ? 0.0f : 1.0f};
    }
    return gl;
}

void load(GLenum name, const GlLight& light) {
    glLightfv(name, GL_POSITION, light.place.data());
    glLightfv(name, GL_AMBIENT, light.ambient.data());
    glLightfv(name, GL_DIFFUSE, light.diffuse.data());
    glLightfv(name, GL_SPECULAR, black.data());
    glLightf(name, GL_CONSTANT_ATTENUATION, light.attenuation[0]);
    glLightf(name, GL_LINEAR_ATTENUATION, light.attenuation[1]);
    glLightf(name, GL_QUADRATIC_ATTENUATION, light.attenuation[2]);
    glEnable(name);
}

} // namespace

void SceneLights::add(const std::shared_ptr<scene::Node>& light) {
    const auto& type = light->type;
    if (type.isA("directionalLight") || type.isA("ambientLight") || type.isA("pointLight")) lights_.push_back(light);
}

std::size_t SceneLights::most() {
    GLint most = 8; // what every GL has
    glGetIntegerv(GL_MAX_LIGHTS, &most);
    return static_cast<std::size_t>(most);
}

void SceneLights::load(const MMatrix& worldToCamera, const std::optional<MVector>& headlight) const {
    glMatrixMode(GL_MODELVIEW);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black.data());
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    glEnable(GL_LIGHTING);
    glEnable(GL_NORMALIZE);
    if (lights_.empty()) {
        const MVector to = headlight ? *headlight * worldToCamera : MVector(0, 0, 1);
        const Rgba place{static_cast<float>(to.x), static_cast<float>(to.y), static_cast<float>(to.z), 0};
        glLoadIdentity();
        viewport::load(GL_LIGHT0, {.diffuse = white, .place = place});
        return;
    }
    glLoadMatrixd(&worldToCamera.matrix[0][0]);
    GLenum name = GL_LIGHT0;
    const std::size_t count = std::min(lights_.size(), most());
    for (std::size_t i = 0; i < count; ++i)
        if (lights_[i]->inScene) viewport::load(name++, describe(*lights_[i]->dag()));
}

} // namespace host::viewport
