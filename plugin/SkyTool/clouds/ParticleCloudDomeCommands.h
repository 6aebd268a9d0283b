#pragma once

#include <maya/MPxCommand.h>

namespace orvo {

/// `ParticleCloudDome_RefreshDataCommand cloudDomeInstanceName`: loads a dome's clouds again and generates them.
class ParticleCloudDome_RefreshDataCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

/// `ParticleCloudDome_LoadFromDiskCommand filePath cloudDomeInstanceName`: fills a dome with the clouds of a library
/// file or of a folder.
class ParticleCloudDome_LoadFromDiskCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
