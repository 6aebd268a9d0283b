#pragma once

#include "CloudGeneration.h"
#include "CloudLibrary.h"
#include "CloudShadingParams.h"
#include "Common/GlBuffer.h"
#include "Common/TextureCache.h"
#include "SkyTool/SkyProgram.h"
#include "SpriteOrder.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace orvo {

/// What drawing keeps of one cloud's sprites from frame to frame: their vertices in the GL's memory, in the context
/// that drew them last, and their order. Whoever generates the sprites anew takes a new one.
class CloudSprites {
public:
    CloudSprites() = default;

private:
    friend class CloudSpriteRenderer;
    std::optional<SpriteOrder> order_; ///< nothing before the first draw
    GlBuffer vertices_, elements_;
    unsigned elementsRevision_ = 0;              ///< of the order that the elements have
    unsigned lateDraws_ = 0;                     ///< since the order became another one
    std::shared_ptr<const GlShareMark> refused_; ///< the context that had no buffers for them
};

/// One cloud to be drawn. Lengths are centimetres but for those of the settings.
struct CloudToDraw {
    const CloudSettings& settings;
    const ParticleCloudGeom& geom;
    CloudSprites& sprites; ///< of this geometry
    Vector3 setCentre;     ///< centre of the shape set; for a dome cloud its base position
    Vector3 domeOffset;    ///< from there to where the cloud is drawn
    double opacity = 1.0;  ///< 0 to 1
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
    /// Draws clouds one after the other in the space of the current matrix, the sprites of each back to front. GL state
    /// is as before afterwards. After a successful prepare() only.
    /// @param eyePoint the camera's position in that space
    /// @param mayLag asked, once at most, when sprites could be drawn in the order for an earlier eye: whether there
    ///   will be another draw that makes up for it. Then a draw spends little time on orders; they are right a few
    ///   draws after the eye has come to rest. Empty: no
    void draw(std::span<const CloudToDraw> clouds, const CloudShadingParams& shading, const Vector3& eyePoint,
              const std::function<bool()>& mayLag = {});
    /// Lets the texture be loaded again at the next prepare().
    void reloadTexture();
    /// Gives programs and texture up.
    void release();

private:
    class Batch;

    SkyProgram fixedDir_, shadowCube_;
    std::shared_ptr<const TextureHandle> texture_;
    std::string texturePath_;
    bool textureLoaded_ = false;
    std::shared_ptr<SpriteSorter> sorter_; ///< null until it is needed
};

} // namespace orvo
