#pragma once

#include "SkyTool/clouds/CloudSpriteRenderer.h"

/// Cloud drawing without anything that is kept from frame to frame: what the plug-in's own must look like, and what it
/// is timed against. Every draw reads the sprites' vertices from the program's own memory, sorts them all, and sets all
/// state and uniforms of every cloud.
namespace orvo::plain {

class CloudSpriteRenderer {
public:
    bool prepare(const CloudShadingParams& shading);
    void draw(const CloudToDraw& cloud, const CloudShadingParams& shading, const Vector3& eyePoint);

private:
    SkyProgram fixedDir_, shadowCube_;
    std::shared_ptr<const TextureHandle> texture_;
};

/// The vertices of all sprites, the sprite farthest from the eye first; sprites at one distance keep their order.
std::vector<GLuint> verticesBackToFront(const ParticleCloudGeom& geom, const Vector3& eye);

} // namespace orvo::plain
