#include "Registration.h"

#include "MiscMayaUtils/DropMesh.h"
#include "SkyTool/ShadingConversionNode.h"
#include "SkyTool/SkyRendererLocator.h"
#include "SkyTool/SkySceneSettingsLocator.h"
#include "SkyTool/clouds/ParticleCloud.h"
#include "SkyTool/clouds/ParticleCloudCommands.h"
#include "SkyTool/clouds/ParticleCloudDome.h"
#include "SkyTool/clouds/ParticleCloudDomeCommands.h"
#include "SkyTool/clouds/ParticleCloudShadingParamsCommands.h"
#include "SkyTool/clouds/ParticleCloudShadingParamsLocator.h"
#include "SkyTool/clouds/ParticleCloudSphereLoc.h"
#include "SkyTool/clouds/SpriteCloudLocator.h"
#include "SkyTool/export/ConvertFullPathToProjectRootPath.h"
#include "SkyTool/export/SaveSkySystemToXMLCommand.h"
#include "SkyTool/export/UpdateSkySystemCommand.h"
#include "SkyTool/fog/ExpHeightFogLocator.h"
#include "SkyTool/fog/SceneFogLocator.h"
#include "SkyTool/skies/BasicSkyLocator.h"
#include "SkyTool/skies/GradientSkyLocator.h"
#include "SkyTool/skies/ProceduralSkyLocator.h"
#include "SkyTool/skies/TexturedSkyLocator.h"

namespace orvo {
namespace {

/// The row whose message of a failed unload names the class; scripts of the studios know it so.
RegistrationRow proceduralSkyRow() {
    RegistrationRow row = locatorRow<ProceduralSkyLocator>("orvosky_ProceduralSkyLocator");
    row.unloadName = "ProceduralSkyLocator";
    return row;
}

} // namespace

std::span<const RegistrationRow> registrationTable() {
    static const RegistrationRow rows[] = {
        locatorRow<BasicSkyLocator>("orvosky_BasicSkyLocator"),
        dependencyRow<OrvoSkyShadingConversionNode>("orvosky_ShadingConversionNode"),
        commandRow<OrvoSky_SaveSkySystemToXMLCommand>("orvosky_SaveSkySystemToXMLCommand"),
        proceduralSkyRow(),
        locatorRow<TexturedSkyLocator>("orvosky_TexturedSkyLocator"),
        locatorRow<SpriteCloudLocator>("orvosky_SpriteCloudLocator"),
        locatorRow<GradientSkyLocator>("orvosky_GradientSkyLocator"),
        locatorRow<ExpHeightFogLocator>("orvosky_ExpHeightFog"),
        locatorRow<SkySceneSettingsLocator>("orvosky_SkySceneSettings"),
        locatorRow<ParticleCloud>("orvosky_ParticleCloud"),
        locatorRow<ParticleCloudDome>("orvosky_ParticleCloudDome"),
        commandRow<ParticleCloud_RenderCloudCommand>("orvosky_ParticleCloud_RenderCloudCommand"),
        commandRow<ParticleCloud_RefreshTextureCommand>("orvosky_ParticleCloud_RefreshTextureCommand"),
        locatorRow<ParticleCloudSphereLoc>("orvosky_ParticleCloudSphere"),
        locatorRow<ParticleCloudShadingParamsLocator>("orvosky_ParticleCloudShadingParams"),
        commandRow<ParticleCloudShadingParams_ExportDataCommand>("orvosky_ParticleCloudShadingParams_ExportData"),
        commandRow<ParticleCloudShadingParams_ImportDataCommand>("orvosky_ParticleCloudShadingParams_ImportData"),
        commandRow<ParticleCloud_ExportDataCommand>("orvosky_ParticleCloud_ExportDataCommand"),
        commandRow<ParticleCloudDome_RefreshDataCommand>("orvosky_ParticleCloudDome_RefreshDataCommand"),
        commandRow<ParticleCloudDome_LoadFromDiskCommand>("orvosky_ParticleCloudDome_LoadFromDiskCommand"),
        locatorRow<SceneFogLocator>("orvosky_SceneFog"),
        locatorRow<SkyRendererLocator>("orvosky_SkyRenderer"),
        commandRow<OrvoSky_ConvertFullPathToProjectRootPath>("orvosky_ConvertFullPathToProjectRootPath"),
        commandRow<DropMeshCommand>("orvo_dropMesh"),
        commandRow<OrvoSky_UpdateSkySystemCommand>("orvosky_UpdateSkySystemCommand"),
        commandRow<ParticleCloud_CountSpritesCommand>("orvosky_ParticleCloud_CountSpritesCommand"),
    };
    return rows;
}

MStatus registerRows(std::span<const RegistrationRow> rows, Registrar& registrar) {
    for (const RegistrationRow& row : rows) {
        const MStatus status = registrar.add(row);
        if (status.error()) {
            status.perror(MString("initializePlugin: ") + row.name);
            return status;
        }
    }
    return MStatus::kSuccess;
}

MStatus deregisterRows(std::span<const RegistrationRow> rows, Registrar& registrar) {
    for (const RegistrationRow& row : rows) {
        const MStatus status = registrar.remove(row);
        if (status.error()) {
            status.perror(MString("uninitializePlugin: ") + (row.unloadName ? row.unloadName : row.name));
            return status;
        }
    }
    return MStatus::kSuccess;
}

} // namespace orvo
