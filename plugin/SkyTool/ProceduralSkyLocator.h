#pragma once

#include "../Common/Textures.h"
#include "ScatteringTables.h"
#include "SkyProgram.h"

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>
#include <optional>

namespace orvo {

/// A sky integrated from a few parameters of an atmosphere: haze, blue sky, red decay. It draws itself in the host's
/// draw, is no part of what the sky renderer draws, and is not exported. A host that draws locators in the order of the
/// scene wants it before the sky renderer, or it hides what that has drawn.
///
/// Its output is the colour of the sun behind the atmosphere, for other nodes to be lit by: that of the tables drawn
/// last, and brought up to date only when the trigger input changes.
class ProceduralSkyLocator : public MPxLocatorNode {
public:
    static const MTypeId id;
    static MStatus initialize();

    void postConstructor() override;
    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }

private:
    /// The tables as textures.
    struct TableTextures {
        ProceduralSkyParams params; ///< what they were computed from
        TextureHandle blueSky, haze, extinction;
        std::vector<ScatteringTables::Texel> extinctionValues;
    };

    static void createOutputs();
    ProceduralSkyParams params() const;
    /// Brings the tables up to date, as the update mode wants it.
    void updateTables();
    void render(M3dView& view, ShaderProgram& program);

    static MObject Enable, UpdateMode, Quality, RenderGround, sunLightDir, sunLightIntensity, sunDiscSize,
        sunDiscFalloff, sunDiscAlpha, dummyInputTrigger, rval, gval, bval, outColor, cameraHeight, hazeHeight,
        hazeBrightness, hazeDecay, hazeHaloBrightness, blueSkyHeight, blueSkyBrightness, redDecayHeight, redDecay,
        redDecayFalloff;

    SkyProgram program_;
    std::unique_ptr<TableTextures> tables_;
    std::optional<ProceduralSkyParams> refused_; ///< parameters that have no tables, as was reported
};

} // namespace orvo
