#pragma once

#include <maya/MPxCommand.h>

namespace orvo {

/// `orvosky_ParticleCloudShadingParams_ExportData filePath paramsLocatorName`: writes a node's shading parameters to a
/// file of their own. Fails when the file cannot be written.
class ParticleCloudShadingParams_ExportDataCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

/// `orvosky_ParticleCloudShadingParams_ImportData filePath paramsLocatorName <quiet>`: takes a node's shading
/// parameters from such a file or from a cloud library. Fails, and leaves the node as it was, when the file is refused.
class ParticleCloudShadingParams_ImportDataCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
