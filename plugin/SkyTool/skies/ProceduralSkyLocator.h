#pragma once

#include "Common/Textures.h"
#include "ScatteringTables.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"

#include <maya/MTypeId.h>
#include <optional>

namespace orvo {

/// A sky integrated from a few parameters of an atmosphere: haze, blue sky, red decay. It draws itself in the host's
/// draw, is no part of what the sky renderer draws, and is not exported. A host that draws locators in the order of the
/// scene wants it before the sky renderer, or it hides what that has drawn.
///
/// Its output is the colour of the sun behind the atmosphere, for other nodes to be lit by: that of the tables computed
/// last, and brought up to date only when the trigger input changes.
class ProceduralSkyLocator : public SkyLocator<ProceduralSkyLocator> {
public:
    static constexpr char nodeName[] = "ProceduralSkyLocator", shapeName[] = "orvosky_ProceduralSkyShape#";
    static const MTypeId id;
    static MStatus initialize();

    MStatus compute(const MPlug& plug, MDataBlock& block) override;
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    /// Stays when the artist hides the locators of a view: it is the sky, not an aid.
    bool excludeAsLocator() const override { return false; }

    /// Computes the tables, as the update mode wants it; a node that is switched off only forgets them. Every draw does
    /// so first; it needs no GL.
    void bringUpToDate();
    /// Sets the trigger to the value that it has, so that the next read of the output is computed from the tables as
    /// they are. For an input that is connected or locked, that is for others to do.
    void pullTrigger();

private:
    struct Tables {
        ProceduralSkyParams params; ///< what they were computed from
        ScatteringTables values;
    };
    struct TableTextures {
        TextureHandle blueSky, haze, extinction;
    };

    static void createOutputs();
    ProceduralSkyParams params() const;
    /// The tables as textures; false, with none, when they cannot be had.
    bool updateTextures();
    void render(M3dView& view, ShaderProgram& program);

    static MObject Enable, UpdateMode, Quality, RenderGround, sunLightDir, sunLightIntensity, sunDiscSize,
        sunDiscFalloff, sunDiscAlpha, dummyInputTrigger, rval, gval, bval, outColor, cameraHeight, hazeHeight,
        hazeBrightness, hazeDecay, hazeHaloBrightness, blueSkyHeight, blueSkyBrightness, redDecayHeight, redDecay,
        redDecayFalloff;

    SkyProgram program_;
    std::optional<Tables> tables_;
    TableTextures textures_;
    bool texturesAreCurrent_ = false;
    std::optional<ProceduralSkyParams> refused_; ///< parameters that have no tables, as was reported
};

} // namespace orvo
