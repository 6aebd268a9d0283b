#include "SkyNodeKinds.h"

#include "Common/MayaUtils.h"
#include "SkySceneSettingsLocator.h"
#include "SkyTool/clouds/ParticleCloud.h"
#include "SkyTool/clouds/ParticleCloudDome.h"
#include "SkyTool/clouds/ParticleCloudShadingParamsLocator.h"
#include "SkyTool/clouds/SpriteCloudLocator.h"
#include "SkyTool/fog/ExpHeightFogLocator.h"
#include "SkyTool/fog/SceneFogLocator.h"
#include "SkyTool/skies/BasicSkyLocator.h"
#include "SkyTool/skies/GradientSkyLocator.h"
#include "SkyTool/skies/TexturedSkyLocator.h"

#include <algorithm>
#include <maya/MFnDagNode.h>

namespace orvo {
namespace {

/// The operations of a node class, from its own: findInstance, and bringUpToDate, render and saveToXml where it has
/// them. A class whose saveToXml takes the cloud vertices beside the file gets them.
template <class Node>
constexpr SkyNodeOperations operationsOf() {
    SkyNodeOperations operations;
    operations.find = [](const MString& name) -> ExportNode* { return Node::findInstance(name); };
    if constexpr (requires(Node & n) { n.bringUpToDate(); })
        operations.bringUpToDate = [](ExportNode& node) { static_cast<Node&>(node).bringUpToDate(); };
    if constexpr (requires(Node & n, M3dView & v) { n.render(v); })
        operations.render = [](ExportNode& node, M3dView& view) { static_cast<Node&>(node).render(view); };
    if constexpr (requires(Node & n, SkyExportTarget & t) { n.saveToXml(t.file, "", t.cloudVertices); })
        operations.save = [](ExportNode& node, SkyExportTarget& target, const char* indent) {
            return static_cast<Node&>(node).saveToXml(target.file, indent, target.cloudVertices);
        };
    else
        operations.save = [](ExportNode& node, SkyExportTarget& target, const char* indent) {
            return static_cast<Node&>(node).saveToXml(target.file, indent);
        };
    return operations;
}

} // namespace

const SkyNodeKindTable& skyNodeKinds() {
    static const SkyNodeKindTable table{{
        {"", nullptr, {}},
        {"transform", nullptr, {}},
        {"orvosky_BasicSkyLocator", "BasicSky", operationsOf<BasicSkyLocator>()},
        {"orvosky_GradientSkyLocator", "GradientSky", operationsOf<GradientSkyLocator>()},
        {"orvosky_TexturedSkyLocator", "TexturedSky", operationsOf<TexturedSkyLocator>()},
        {"orvosky_SceneFog", "SceneFog", operationsOf<SceneFogLocator>()},
        {"orvosky_ExpHeightFog", "ExpHeightFog", operationsOf<ExpHeightFogLocator>()},
        {"orvosky_ParticleCloud", "ParticleCloud", operationsOf<ParticleCloud>()},
        {"orvosky_ParticleCloudDome", "ParticleCloudDome", operationsOf<ParticleCloudDome>()},
        {"orvosky_ParticleCloudShadingParams", "ParticleCloudShadingParams",
         operationsOf<ParticleCloudShadingParamsLocator>()},
        {"orvosky_SkySceneSettings", "SkySceneSettings", operationsOf<SkySceneSettingsLocator>()},
        {"orvosky_SpriteCloudLocator", "SpriteCloud", operationsOf<SpriteCloudLocator>()},
    }};
    return table;
}

SkyNodeKind skyNodeKind(std::string_view typeName) {
    const SkyNodeKindTable& table = skyNodeKinds();
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const SkyNodeKindRow& row) { return typeName == row.typeName; });
    return found == table.end() ? kUnknownKind : static_cast<SkyNodeKind>(found - table.begin());
}

MObject skyDataNode() {
    MObject node;
    return dependencyNodeByName("OrvoSkyData", node).error() ? MObject::kNullObj : node;
}

std::vector<SkyNodeRecord> collectSkyNodes(const MObject& root) {
    std::vector<SkyNodeRecord> records;
    std::vector<MObject> open{root};
    while (!open.empty()) {
        const MObject object = open.back();
        open.pop_back();
        MStatus status;
        const MFnDagNode node(object, &status);
        if (status.error()) continue;
        const SkyNodeKind kind = skyNodeKind(node.typeName().asUTF8());
        if (kind != kUnknownKind && kind != kTransformKind) records.push_back({kind, object, fullPathName(object)});
        // The last child goes in first, so that the first one is walked next.
        for (unsigned i = node.childCount(); i-- > 0;) {
            const MObject child = node.child(i, &status);
            if (!status.error()) open.push_back(child);
        }
    }
    return records;
}

} // namespace orvo
