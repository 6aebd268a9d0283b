#include "SkyExport.h"

#include "Common/MayaUtils.h"
#include "Common/Paths.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr int atmosVersion = 7;
constexpr const char* elementIndent = "\t";

/// The elements of an ".atmos" file, in order; those of clouds and their shading follow when there are any clouds.
constexpr SkyNodeKind sceneOrder[] = {kSkySceneSettingsKind, kBasicSkyKind, kGradientSkyKind, kTexturedSkyKind,
                                      kExpHeightFogKind,     kSceneFogKind, kSpriteCloudKind};
constexpr SkyNodeKind cloudOrder[] = {kCloudShadingParamsKind, kParticleCloudDomeKind, kParticleCloudKind};

bool failed(const std::string& message) {
    reportError("%s", message);
    return false;
}

bool hasClouds(const SkyNodeCounts& counts) {
    return counts[kParticleCloudKind] > 0 || counts[kParticleCloudDomeKind] > 0;
}

/// Writes the elements of one kind.
bool writeKind(SkyNodeKind kind, const std::vector<SkyNodeRecord>& records, const SkyNodeKindTable& kinds,
               SkyExportTarget& target) {
    const SkyNodeKindRow& row = kinds[kind];
    for (const SkyNodeRecord& record : records) {
        if (record.kind != kind) continue;
        ExportNode* node = row.operations.find ? row.operations.find(record.fullPathName) : nullptr;
        const bool isFog = kind == kExpHeightFogKind || kind == kSceneFogKind;
        if (node && isFog && !node->isEnabled()) continue;
        if (!node || !row.operations.save || !row.operations.save(*node, target, elementIndent))
            return failed(std::string(row.exportName) + " failure to save to XML");
    }
    return true;
}

/// Ends the vertex data with its mark and puts it into the ".cdata" file beside the ".atmos" file.
bool writeCloudData(const std::string& atmosPath, SkyExportTarget& target) {
    target.cloudVertices.push_back(1);
    std::string path;
    if (!cdataPathOf(atmosPath, path)) return failed("Export filename extention not .atmos.  Failed to export cdata");
    OutputFile data(path, "wb");
    if (!data.isOpen()) return failed("SaveSkySystemToXML:  Cannot open cdata file for write");
    data.write(target.cloudVertices.data(), target.cloudVertices.size());
    if (!data.close()) return failed("SaveSkySystemToXML:  Cannot write cdata file");
    target.file.print("\t<CloudVertData\n");
    target.file.print("\t\tsize = \"%d\"\n", target.cloudVertices.size());
    target.file.print("\t/>\n");
    return true;
}

} // namespace

bool hasAtmosExtension(const std::string& path) {
    constexpr std::string_view extension = ".atmos";
    return path.size() > extension.size() && toLowerCase(path.substr(path.size() - extension.size())) == extension;
}

bool cdataPathOf(const std::string& atmosPath, std::string& cdataPath) {
    if (!hasAtmosExtension(atmosPath)) return false;
    cdataPath = atmosPath.substr(0, atmosPath.size() - 5) + "cdata";
    return true;
}

std::vector<SkyNodeRecord> exportableNodes(const std::vector<SkyNodeRecord>& records, const SkyNodeKindTable& kinds,
                                           const std::function<bool(const SkyNodeRecord&)>& isTemplated) {
    std::vector<SkyNodeRecord> kept;
    for (const SkyNodeRecord& record : records) {
        if (record.kind != kCloudShadingParamsKind && record.kind != kSkySceneSettingsKind) {
            const auto find = kinds[record.kind].operations.find;
            ExportNode* node = find ? find(record.fullPathName) : nullptr;
            if ((node && !node->isEnabled()) || isTemplated(record)) continue;
        }
        kept.push_back(record);
    }
    return kept;
}

SkyNodeCounts countByKind(const std::vector<SkyNodeRecord>& records) {
    SkyNodeCounts counts{};
    for (const SkyNodeRecord& record : records) ++counts[record.kind];
    return counts;
}

const char* countError(const SkyNodeCounts& counts) {
    if (counts[kSkySceneSettingsKind] == 0) return "SaveSkySystemToXML:  No sky settings found\n";
    if (counts[kSkySceneSettingsKind] > 1) return "SaveSkySystemToXML:  More than 1 sky settings found\n";
    if (counts[kExpHeightFogKind] > 1) return "SaveSkySystemToXML:  More than 1 exp height fog node found\n";
    if (counts[kSceneFogKind] > 1) return "SaveSkySystemToXML:  More than 1 scene fog node found\n";
    if (!hasClouds(counts)) return nullptr;
    if (counts[kCloudShadingParamsKind] == 0)
        return "SaveSkySystemToXML:  No particle cloud shading parameters found\n";
    if (counts[kCloudShadingParamsKind] > 1)
        return "SaveSkySystemToXML:  More than 1 particle cloud shading parameters found\n";
    if (counts[kParticleCloudDomeKind] > 1) return "SaveSkySystemToXML:  More than 1 particle cloud dome found\n";
    return nullptr;
}

bool writeSkyFiles(const std::string& path, const std::vector<SkyNodeRecord>& records, const SkyNodeKindTable& kinds) {
    std::vector<unsigned char> cloudVertices;
    OutputFile file(path, "wt");
    if (!file.isOpen()) return failed("SaveSkySystemToXML:  Cannot open atmos file for write");
    SkyExportTarget target{file, cloudVertices};

    file.print("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n");
    file.print("<OrvoAtmosphere\n");
    file.print("\ttype = \"SceneDefinition\"\n");
    file.print("\tversion = \"%d\"\n", atmosVersion);
    file.print("\t>\n");
    const auto write = [&](SkyNodeKind kind) { return writeKind(kind, records, kinds, target); };
    if (!std::all_of(std::begin(sceneOrder), std::end(sceneOrder), write)) return false;
    if (hasClouds(countByKind(records)) && !std::all_of(std::begin(cloudOrder), std::end(cloudOrder), write))
        return false;
    if (!cloudVertices.empty() && !writeCloudData(path, target)) return false;
    file.print("</OrvoAtmosphere>\n");
    if (!file.close()) return failed("SaveSkySystemToXML:  Cannot write atmos file");

    reportInfo("SaveSkySystemToXML:  Export to file [%s] completed successfully.\n", path);
    return true;
}

bool exportSkySystem(const std::string& path) {
    if (!hasAtmosExtension(path)) {
        reportError("SaveSkySystemToXML: Error. Filename [%s] does not have required extention \".atmos\"\n", path);
        return false;
    }
    const MObject root = skyDataNode();
    if (root.isNull()) return false;
    const std::vector<SkyNodeRecord> all = collectSkyNodes(root);
    if (all.empty()) return false;
    const std::vector<SkyNodeRecord> records = exportableNodes(
        all, skyNodeKinds(), [](const SkyNodeRecord& record) { return isTemplatedAlongDag(record.node); });
    if (const char* error = countError(countByKind(records))) return failed(error);
    return writeSkyFiles(path, records, skyNodeKinds());
}

} // namespace orvo
