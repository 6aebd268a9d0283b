#pragma once

#include "Common/OutputFile.h"
#include "SkyTool/export/ExportNode.h"

#include <array>
#include <cstdint>
#include <maya/M3dView.h>
#include <maya/MObject.h>
#include <maya/MString.h>
#include <string_view>
#include <vector>

/// The kinds of nodes that make up a sky, and the walk that finds them; shared by the renderer and the export.
namespace orvo {

enum SkyNodeKind : std::uint32_t {
    kUnknownKind,
    kTransformKind,
    kBasicSkyKind,
    kGradientSkyKind,
    kTexturedSkyKind,
    kSceneFogKind,
    kExpHeightFogKind,
    kParticleCloudKind,
    kParticleCloudDomeKind,
    kCloudShadingParamsKind,
    kSkySceneSettingsKind,
    kSpriteCloudKind,
    kSkyNodeKindCount
};

/// Where an export writes to.
struct SkyExportTarget {
    OutputFile& file;                          ///< the ".atmos" file
    std::vector<unsigned char>& cloudVertices; ///< packed vertex data, appended to by the cloud kinds
};

/// What renderer and export do with a node of a kind. A kind whose class does not exist yet has no operations: its
/// nodes are never found.
struct SkyNodeOperations {
    /// The live instance of a full path name; null when there is none.
    ExportNode* (*find)(const MString& fullPathName) = nullptr;
    /// Works out what the node keeps beside its attributes, or writes into them, without GL; null for kinds that keep
    /// nothing.
    void (*bringUpToDate)(ExportNode& node) = nullptr;
    /// The viewport preview; null for kinds that are not drawn.
    void (*render)(ExportNode& node, M3dView& view) = nullptr;
    /// Writes the node's element. @return false when that failed
    bool (*save)(ExportNode& node, SkyExportTarget& target, const char* indent) = nullptr;
};

struct SkyNodeKindRow {
    const char* typeName;
    const char* exportName; ///< of the kind's export failure message; null for kinds that are not exported
    SkyNodeOperations operations;
};

using SkyNodeKindTable = std::array<SkyNodeKindRow, kSkyNodeKindCount>;

/// The table, by kind.
const SkyNodeKindTable& skyNodeKinds();

/// The kind of a node by its type's name; kUnknownKind for a type that is none of them.
SkyNodeKind skyNodeKind(std::string_view typeName);

/// One sky node of the scene.
struct SkyNodeRecord {
    SkyNodeKind kind = kUnknownKind;
    MObject node;
    MString fullPathName;
};

/// The node under which the sky nodes of a scene lie, "OrvoSkyData"; a null object when there is none.
MObject skyDataNode();

/// The sky nodes at and below a node, depth first, parents before children, children in order. Transforms and nodes
/// of unknown types are walked through, not recorded.
std::vector<SkyNodeRecord> collectSkyNodes(const MObject& root);

} // namespace orvo
