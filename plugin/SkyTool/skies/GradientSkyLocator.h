#pragma once

#include "Common/OutputFile.h"
#include "Common/Vector3.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/SkyTexture.h"

#include <maya/MTypeId.h>

namespace orvo {

/// What a gradient sky's shader works with.
struct GradientSkyParams {
    Vector3 sunDir; ///< towards the sun, length 1
    Vector3 sunColour;
    double sunIntensity = 0;   ///< multiplies sunColour
    double sunDiskSize = 0;    ///< 1 minus the cosine of the disk's angular radius
    double sunDiskFalloff = 0; ///< exponent of the halo
    double sunDiskWeight = 0;  ///< of the halo added to the sky
    bool sunEnable = false;
    double brightness = 0; ///< multiplies the image's colour
    double xcoord = 0;     ///< column of the image, 0 left to 1 right
};

/// A sky painted as an image: the height of the view direction picks the row, straight up the top one, and the artist
/// picks the column, so that one image holds several gradients side by side. Alpha divides the colour. The basic sky's
/// sun halo is added. An image that cannot be loaded shows as a checkerboard. Exported as a GradientSky element.
class GradientSkyLocator : public SwitchedSkyLocator<GradientSkyLocator> {
public:
    static constexpr char nodeName[] = "GradientSkyLocator", shapeName[] = "orvosky_GradientSkyLocatorShape#";
    static const MTypeId id;
    static MStatus initialize();

    /// Brings the image's path into its stored form. Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the GradientSky element. An image outside the build folder is reported and left out. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<GradientSkyLocator>;
    GradientSkyParams params() const;
    void release();

    static MObject Enable, sunDir, sunColour, sunIntensity, sunDiskSize, sunDiskFalloff, sunDiskWeight, sunEnable,
        gradientTexture, brightness, xcoord;

    SkyProgram program_;
    SkyTexture texture_;
};

} // namespace orvo
