#pragma once

#include "BasicSkyParams.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"

#include <maya/MTypeId.h>

namespace orvo {

/// The simplest sky: a gradient from a zenith colour down to a horizon colour, with a sun halo added around the sun
/// direction. The sky renderer shows it as one quad that fills the view; the export writes it as a BasicSky element.
class BasicSkyLocator : public SwitchedSkyLocator<BasicSkyLocator> {
public:
    static constexpr char nodeName[] = "BasicSkyLocator", shapeName[] = "orvosky_BasicSkyLocatorShape#";
    static const MTypeId id;
    static MStatus initialize();

    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the BasicSky element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<BasicSkyLocator>;
    void release() { program_.release(); }
    BasicSkyValues values() const;

    static MObject Enable, sunDir, sunColour, sunIntensity, sunDiskSize, sunDiskFalloff, sunDiskWeight, sunEnable,
        zenithColour, horizonColour, horizonFalloff, horizonOffset;

    SkyProgram program_;
};

} // namespace orvo
