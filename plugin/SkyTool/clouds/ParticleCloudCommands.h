#pragma once

#include <maya/MArgList.h>
#include <maya/MPxCommand.h>

namespace orvo {

/// `orvosky_ParticleCloud_RenderCloudCommand cloudInstanceNames[]`: refreshes the clouds. Fails, and refreshes none,
/// when one of the names is no cloud.
class ParticleCloud_RenderCloudCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

/// `orvosky_ParticleCloud_RefreshTextureCommand cloudInstanceNames[]`: lets the clouds load their sprite texture
/// again at the next draw.
class ParticleCloud_RefreshTextureCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

/// `orvosky_ParticleCloud_ExportDataCommand xmlPath cloudInstanceNames[]`: writes the clouds into a cloud library,
/// their shapes as they are in the scene now, behind the first live shading parameters.
class ParticleCloud_ExportDataCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

/// `orvosky_ParticleCloud_CountSpritesCommand cloudInstanceNames[]`: answers how many sprites the clouds have now, in
/// all. Fails when one of the names is no cloud.
class ParticleCloud_CountSpritesCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
