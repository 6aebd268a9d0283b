#include "SkyUpdate.h"

#include "Common/MayaUtils.h"
#include "Common/Messages.h"
#include "SkyChecks.h"
#include "SkyExport.h"
#include "SkyTool/SkyNodeKinds.h"
#include "SkyTool/clouds/ParticleCloudShadingParamsLocator.h"
#include "SkyTool/fog/ExpHeightFogLocator.h"
#include "SkyTool/skies/ProceduralSkyLocator.h"

#include <algorithm>
#include <initializer_list>

namespace orvo {
namespace {

constexpr const char* command = "orvosky_UpdateSkySystemCommand";

template <class Node, class Step>
void forAllInScene(const Step& step) {
    for (Node* node : InstanceList<Node>::shared().inScene()) guarded(command, [&] { step(*node); });
}

/// The nodes of these kinds, in the order of the records. A node that fails keeps no other one from its turn.
void updateKinds(const std::vector<SkyNodeRecord>& records, std::initializer_list<SkyNodeKind> kinds) {
    for (const SkyNodeRecord& record : records) {
        if (std::find(kinds.begin(), kinds.end(), record.kind) == kinds.end()) continue;
        const SkyNodeOperations& operations = skyNodeKinds()[record.kind].operations;
        ExportNode* node = operations.find ? operations.find(record.fullPathName) : nullptr;
        if (node && operations.bringUpToDate) guarded(command, [&] { operations.bringUpToDate(*node); });
    }
}

} // namespace

bool updateSkySystem() {
    const std::size_t before = errorsShown();
    const MObject root = skyDataNode();
    const auto records = root.isNull() ? std::vector<SkyNodeRecord>() : collectSkyNodes(root);

    forAllInScene<ProceduralSkyLocator>([](ProceduralSkyLocator& sky) {
        sky.bringUpToDate();
        sky.pullTrigger();
    });
    // Each fog follows the first one of the other kind. Where that follows in its turn, it has its colour by the third
    // pass.
    const auto followSceneFog = [] { forAllInScene<ExpHeightFogLocator>([](auto& fog) { fog.bringUpToDate(); }); };
    followSceneFog();
    updateKinds(records, {kSceneFogKind});
    followSceneFog();

    forAllInScene<ParticleCloudShadingParamsLocator>([](auto& shading) { shading.bringUpToDate(); });
    updateKinds(records, {kGradientSkyKind, kTexturedSkyKind, kSpriteCloudKind});
    updateKinds(records, {kParticleCloudKind});
    updateKinds(records, {kParticleCloudDomeKind});

    const auto isTemplated = [](const SkyNodeRecord& record) { return isTemplatedAlongDag(record.node); };
    for (const SkyNodeRecord& record : exportableNodes(records, skyNodeKinds(), isTemplated))
        guarded(command, [&] { warnOfUnusableValues(record.node); });
    return errorsShown() == before;
}

} // namespace orvo
