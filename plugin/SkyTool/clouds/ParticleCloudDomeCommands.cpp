#include "ParticleCloudDomeCommands.h"

#include "Common/CommandArguments.h"
#include "ParticleCloudDome.h"

namespace orvo {
namespace {

/// Reads a text; false when it cannot be read or is empty.
bool readText(const MArgList& args, unsigned index, MString& text) {
    return !args.get(index, text).error() && text.length() > 0;
}

} // namespace

MStatus ParticleCloudDome_RefreshDataCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloudDome_RefreshDataCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 1)
            return refused("ParticleCloudDome_RefreshDataCommand incorrect syntax given! :(  Usage: "
                           "\"ParticleCloudDome_RefreshDataCommand cloudDomeInstanceName\"   bailing.");
        MString name;
        if (!readText(args, 0, name)) return refused("ParticleCloudDome_RefreshDataCommand   Could not get nodeName.");
        ParticleCloudDome* dome = ParticleCloudDome::findInstance(name);
        if (!dome) return refused("ParticleCloudDome_RefreshDataCommand   Could not get dome node pointer.");
        dome->refresh();
        return MStatus::kSuccess;
    });
}

MStatus ParticleCloudDome_LoadFromDiskCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloudDome_LoadFromDiskCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 2)
            return refused("ParticleCloudDome_LoadFromDiskCommand incorrect syntax given! :(  Usage: "
                           "\"ParticleCloudDome_LoadFromDiskCommand filePath cloudDomeInstanceName\"   bailing.");
        MString path, name;
        if (!readText(args, 0, path)) return refused("ParticleCloudDome_LoadFromDiskCommand   Could not get filePath.");
        if (!readText(args, 1, name)) return refused("ParticleCloudDome_LoadFromDiskCommand   Could not get nodeName.");
        ParticleCloudDome* dome = ParticleCloudDome::findInstance(name);
        if (!dome) return refused("ParticleCloudDome_LoadFromDiskCommand   Could not get dome node pointer.");
        dome->loadFromDisk(path.asUTF8());
        return MStatus::kSuccess;
    });
}

} // namespace orvo
