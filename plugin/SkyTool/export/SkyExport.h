#pragma once

#include "SkyTool/SkyNodeKinds.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The export of a scene's sky system into an ".atmos" file and, for clouds, a ".cdata" file beside it.
namespace orvo {

using SkyNodeCounts = std::array<std::uint32_t, kSkyNodeKindCount>;

/// Whether the path is longer than ".atmos" and ends so, in any case.
bool hasAtmosExtension(const std::string& path);
/// The path with "atmos" at its end replaced by "cdata"; false when it has no such extension.
bool cdataPathOf(const std::string& atmosPath, std::string& cdataPath);

/// The records that take part: shading parameters and settings always, of the others those that are neither disabled
/// nor templated. Hidden nodes take part.
std::vector<SkyNodeRecord> exportableNodes(const std::vector<SkyNodeRecord>& records, const SkyNodeKindTable& kinds,
                                           const std::function<bool(const SkyNodeRecord&)>& isTemplated);

SkyNodeCounts countByKind(const std::vector<SkyNodeRecord>& records);
/// What keeps a scene with these nodes from being exported; null when nothing does.
const char* countError(const SkyNodeCounts& counts);

/// Writes the files for records that passed the filter and the count. Reports each failure with one error, success
/// with one information. After a failure the file written so far stays. @return whether all was written
bool writeSkyFiles(const std::string& path, const std::vector<SkyNodeRecord>& records, const SkyNodeKindTable& kinds);

/// The whole export of the current scene; `path` must end in ".atmos".
bool exportSkySystem(const std::string& path);

} // namespace orvo
