#pragma once

#include "BasicSkyParams.h"
#include "Common/InstanceList.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/export/ExportNode.h"

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

namespace orvo {

/// The simplest sky: a gradient from a zenith colour down to a horizon colour, with a sun halo added around the sun
/// direction. The sky renderer shows it as one quad that fills the view; the export writes it as a BasicSky element.
class BasicSkyLocator : public MPxLocatorNode, public ExportNode {
public:
    static const MTypeId id;
    static MStatus initialize();
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static BasicSkyLocator* findInstance(const MString& name);

    void postConstructor() override;
    /// The host's draw shows nothing; it frees the program of a node that is switched off.
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }
    bool isEnabled() override;

    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the BasicSky element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    BasicSkyValues values() const;

    static MObject Enable, sunDir, sunColour, sunIntensity, sunDiskSize, sunDiskFalloff, sunDiskWeight, sunEnable,
        zenithColour, horizonColour, horizonFalloff, horizonOffset;

    SkyProgram program_;
    InstanceEntry<BasicSkyLocator> entry_{*this};
};

} // namespace orvo
