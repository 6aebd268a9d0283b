#include "SkyRendererLocator.h"

#include "CameraSpace.h"
#include "Common/GlStateScope.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "SkyNodeKinds.h"

#include <algorithm>
#include <optional>

namespace orvo {
namespace {

/// The kinds that are drawn together, in drawing order; within a layer the nodes keep their order in the scene.
const std::vector<SkyNodeKind> layers[] = {
    {kBasicSkyKind, kGradientSkyKind, kTexturedSkyKind}, {kSpriteCloudKind}, {kExpHeightFogKind},
    {kParticleCloudKind, kParticleCloudDomeKind},        {kSceneFogKind},
};

void drawNode(const SkyNodeRecord& record, M3dView& view) {
    const SkyNodeOperations& operations = skyNodeKinds()[record.kind].operations;
    if (!operations.find || !operations.render) return;
    ExportNode* node = operations.find(record.fullPathName);
    if (!node || !isVisibleAlongDag(record.node) || isTemplatedAlongDag(record.node)) return;

    // Particle clouds are drawn in their own space; the other kinds place themselves.
    std::optional<GlMatrixScope> space;
    if (record.kind == kParticleCloudKind) {
        Matrix44 world; // stays the identity after a failure, which has been printed
        (void)nodeWorldMatrix(record.node, world);
        space.emplace(world);
    }
    operations.render(*node, view);
}

} // namespace

const MTypeId SkyRendererLocator::id(0x374028);

MObject SkyRendererLocator::Enable;

MStatus SkyRendererLocator::initialize() {
    return guarded("SkyRendererLocator::initialize", MStatus(MStatus::kFailure), [] {
        Enable = LocatorAttributes::boolean("Enable", true);
        return MStatus(MStatus::kSuccess);
    });
}

void SkyRendererLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {
    guarded("SkyRendererLocator::draw", [&] {
        if (!readBool(thisMObject(), Enable)) return;
        const MObject root = skyDataNode();
        if (root.isNull()) return;
        const std::vector<SkyNodeRecord> records = collectSkyNodes(root);
        const GlDrawing drawing(view);
        if (!drawing.begun()) return;
        for (const auto& layer : layers)
            for (const SkyNodeRecord& record : records)
                if (std::find(layer.begin(), layer.end(), record.kind) != layer.end()) drawNode(record, view);
    });
}

} // namespace orvo
