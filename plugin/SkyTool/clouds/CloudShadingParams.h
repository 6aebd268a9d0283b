#pragma once

#include "Common/Vector3.h"

#include <string>

namespace orvo {

/// How particle clouds are shaded: what an artist sets on a shading-parameters node.
struct CloudShadingParams {
    std::string shadingTexture; ///< project-relative path of the sprite texture; may be empty
    Vector3 cloudColour{1, 1, 1};
    double shadingOpacity = 1.0;      ///< 0 to 1
    double shadingBrightness = 1.1;   ///< 0 to 10
    double sunShadowAmount = 0.0;     ///< 0 to 1
    double groundShadowAmount = 0.44; ///< 0 to 1
    double spriteShadowAmount = 0.25; ///< 0 to 1
    bool enableSelfShadow = true;
    double selfShadowAmount = 0.45; ///< 0 to 1
    double selfShadowFalloff = 0.5; ///< 0 or more; multiplies the optical depth
    Vector3 lightingAmbient{0.1, 0.1, 0.2};
    double lightingSunGlowAmount = 0.3;    ///< 0 to 10
    double lightingSunGlowHaloSize = 20.0; ///< 0 to 100
    Vector3 sunDir{0, 1, 0};               ///< towards the sun, of unit length
    Vector3 sunColour{1, 1, 1};            ///< the node's colour times its intensity
};

} // namespace orvo
