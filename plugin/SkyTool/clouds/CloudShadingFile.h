#pragma once

#include "CloudShadingParams.h"
#include "Common/OutputFile.h"
#include "Common/XmlFile.h"

#include <optional>
#include <string>

/// The XML form of cloud shading parameters, in a file of their own ("Modeler_ParticleCloudShadingParams") and within
/// cloud libraries. The sun is not part of it: its fields of the record are neither written nor read.
namespace orvo {

constexpr const char* cloudShadingFileType = "Modeler_ParticleCloudShadingParams";
constexpr int cloudShadingFileVersion = 2;

/// The ParticleCloudShadingParams element, every line behind the indent.
void writeCloudShadingElement(OutputFile& file, const char* indent, const CloudShadingParams& params);
/// @return whether the whole file was written
bool saveCloudShadingFile(const std::string& path, const CloudShadingParams& params);
/// Takes the parameters of a parameters file or of a cloud library that has been read as XML; nothing, and the file's
/// error(), when it is refused. The texture's path is as the file has it.
std::optional<CloudShadingParams> readCloudShadingFile(XmlFile& file);

} // namespace orvo
