#pragma once

#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/SkyTexture.h"

#include <array>
#include <maya/MTypeId.h>

namespace orvo {

/// The 2 by 2 matrix, column by column, that turns (x, z) of a view direction by an angle in degrees.
std::array<float, 4> skyRotation(double degrees);

/// A sky from a cube map, turned about the vertical axis and scaled in linear light. The +Y face is overhead; alpha
/// divides the colour. A cube map that cannot be loaded shows as a checkerboard. Exported as a TexturedSky element.
class TexturedSkyLocator : public SwitchedSkyLocator<TexturedSkyLocator> {
public:
    static constexpr char nodeName[] = "TexturedSkyLocator", shapeName[] = "orvosky_TexturedSkyLocatorShape#";
    static const MTypeId id;
    static MStatus initialize();

    /// Brings the image's path into its stored form. Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the TexturedSky element. An image outside the build folder is reported and left out. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<TexturedSkyLocator>;
    void release();

    static MObject Enable, cubeMapTexture, brightness, rotation;

    SkyProgram program_;
    SkyTexture texture_;
};

} // namespace orvo
