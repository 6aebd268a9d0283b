#include "SkySceneSettingsLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"

namespace orvo {

const MTypeId SkySceneSettingsLocator::id(0x374020);

MObject SkySceneSettingsLocator::useGameSunDir, SkySceneSettingsLocator::cloudBackBufferRes;

MStatus SkySceneSettingsLocator::initialize() {
    return guarded("SkySceneSettingsLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        useGameSunDir = A::boolean("useGameSunDir", true);
        cloudBackBufferRes = A::enumeration("cloudBackBufferRes", 0, {{"Half", 0}, {"Third", 1}, {"Quarter", 2}});
        return MStatus(MStatus::kSuccess);
    });
}

bool SkySceneSettingsLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    file.print("%s<SkySceneSettings\n", indent);
    file.print("%s\tuseGameSunDir  = \"%d\"\n", indent, readBool(node, useGameSunDir));
    file.print("%s\tcloudBackBufferRes  = \"%d\"\n", indent, readInt(node, cloudBackBufferRes));
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
