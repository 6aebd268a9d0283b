#pragma once

#include <array>
#include <vector>

/// The procedural sky's tables computed by plain loops, one texel and one exponential after the other: what the fast
/// way has to agree with to the bit, and is measured against.
namespace plain {

struct SkyInputs {
    bool highQuality = false;
    double cameraHeight = 0;
    double hazeHeight = 0, hazeDecay = 0, hazeBrightness = 0; ///< decays, brightnesses and the falloff: behind sliders
    double blueSkyHeight = 0, blueSkyBrightness = 0;
    double redDecayHeight = 0, redDecay = 0, redDecayFalloff = 0;
};

/// The node's defaults, as the values behind the sliders.
SkyInputs defaultSky(bool highQuality);

struct SkyTables {
    using Texel = std::array<float, 3>;
    std::vector<Texel> blueSky, haze, extinction;
};

SkyTables skyTables(const SkyInputs& inputs);

} // namespace plain
