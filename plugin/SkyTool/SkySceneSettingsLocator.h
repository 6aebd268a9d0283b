#pragma once

#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"

#include <maya/MTypeId.h>

namespace orvo {

/// Scene-wide settings of the runtime's sky: whether the game's own sun direction is used, and how large the buffer is
/// that clouds are rendered in. Shows nothing; the export wants exactly one and writes it as SkySceneSettings.
class SkySceneSettingsLocator : public SkyLocator<SkySceneSettingsLocator>, public ExportNode {
public:
    static constexpr char nodeName[] = "SkySceneSettingsLocator", shapeName[] = "orvosky_SkySceneSettingsShape#";
    static const MTypeId id;
    static MStatus initialize();

    void draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) override {}
    /// Settings cannot be switched off.
    bool isEnabled() override { return true; }

    /// Writes the SkySceneSettings element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    static MObject useGameSunDir, cloudBackBufferRes;
};

} // namespace orvo
