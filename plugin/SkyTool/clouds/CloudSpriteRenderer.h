#pragma once

#include "CloudGeneration.h"
#include "CloudLibrary.h"
#include "CloudShadingParams.h"
#include "Common/TextureCache.h"
#include "SkyTool/SkyProgram.h"

#include <memory>
#include <string>

namespace orvo {

/// One cloud to be drawn. Lengths are centimetres but for those of the settings.
struct CloudToDraw {
    const CloudSettings& settings;
    const ParticleCloudGeom& geom;
    Vector3 setCentre;    ///< centre of the shape set; for a dome cloud its base position
    Vector3 domeOffset;   ///< from there to where the cloud is drawn
    double opacity = 1.0; ///< 0 to 1
    bool depthTest = false;
    bool wireFrame = false;
};

/// Draws clouds as camera-facing sprites: the two cloud programs and the sprite texture, shared by the clouds of one
/// node. Drawing thread only, with the viewport's context current.
class CloudSpriteRenderer {
public:
    /// Builds the programs at the first call, and reloads the sprite texture when the parameters name another one.
    /// @return false when the programs could not be built (which is reported once)
    bool prepare(const CloudShadingParams& shading);
    /// Draws one cloud in the space of the current matrix, its sprites back to front. GL state is as before
    /// afterwards. After a successful prepare() only.
    /// @param eyePoint the camera's position in that space
    void draw(const CloudToDraw& cloud, const CloudShadingParams& shading, const Vector3& eyePoint);
    /// Lets the texture be loaded again at the next prepare().
    void reloadTexture();
    /// Gives programs and texture up.
    void release();

private:
    SkyProgram fixedDir_, shadowCube_;
    std::shared_ptr<const TextureHandle> texture_;
    std::string texturePath_;
    bool textureLoaded_ = false;
};

} // namespace orvo
