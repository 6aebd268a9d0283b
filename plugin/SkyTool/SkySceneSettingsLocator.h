#pragma once

#include "Common/InstanceList.h"
#include "Common/OutputFile.h"
#include "SkyTool/export/ExportNode.h"

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

namespace orvo {

/// Scene-wide settings of the runtime's sky: whether the game's own sun direction is used, and how large the buffer is
/// that clouds are rendered in. Shows nothing; the export wants exactly one and writes it as SkySceneSettings.
class SkySceneSettingsLocator : public MPxLocatorNode, public ExportNode {
public:
    static const MTypeId id;
    static MStatus initialize();
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static SkySceneSettingsLocator* findInstance(const MString& name);

    void postConstructor() override;
    void draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) override {}
    bool isBounded() const override { return false; }
    /// Settings cannot be switched off.
    bool isEnabled() override { return true; }

    /// Writes the SkySceneSettings element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    static MObject useGameSunDir, cloudBackBufferRes;

    InstanceEntry<SkySceneSettingsLocator> entry_{*this};
};

} // namespace orvo
