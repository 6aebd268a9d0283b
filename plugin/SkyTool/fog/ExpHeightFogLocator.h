#pragma once

#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"

#include <maya/MTypeId.h>
#include <optional>

namespace orvo {

/// The vertical optical depth above the eye, in centimetres: the integral of exp(-(y - offset) / height) from the eye
/// upwards. Heights are metres, eyeY is centimetres.
double expHeightFogValue(double fogHeight, double fogHeightOffset, double eyeY);

/// Fog whose density falls off exponentially with height. Drawn after the skies as one blended quad that fills the
/// view; exported as an ExpHeightFog element. Its colour can follow the scene fog's.
class ExpHeightFogLocator : public SwitchedSkyLocator<ExpHeightFogLocator> {
public:
    static constexpr char nodeName[] = "ExpHeightFogLocator", shapeName[] = "expHeightFogShape#";
    static const MTypeId id;
    /// A colour: three floats. Other nodes read it from the first live height fog.
    static MObject fogColour;
    /// Answers the colour of the first live scene fog node, nothing when there is none. Null, which counts as no such
    /// node, until a class of scene fog nodes sets it.
    static std::optional<Vector3> (*sceneFogColour)();

    static MStatus initialize();
    /// The first instance whose own name resolves in the scene; null when none does.
    static ExpHeightFogLocator* firstLiveInstance();

    /// The host's draw shows nothing. It frees the program of a node that is switched off, and brings the others up to
    /// date.
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;

    /// Lets the colour follow the scene fog's where the artist wants that. Needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the ExpHeightFog element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<ExpHeightFogLocator>;
    void release() { program_.release(); }
    static MObject Enable, getColourFromSceneFog, fogHeight, fogHeightOffset, fogDensity, fogAlpha;

    SkyProgram program_;
};

} // namespace orvo
