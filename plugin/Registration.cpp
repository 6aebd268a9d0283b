#include "Registration.h"

#include "MiscMayaUtils/DropMesh.h"
#include "SkyTool/BasicSkyLocator.h"
#include "SkyTool/ConvertFullPathToProjectRootPath.h"
#include "SkyTool/ExpHeightFogLocator.h"
#include "SkyTool/GradientSkyLocator.h"
#include "SkyTool/ParticleCloud.h"
#include "SkyTool/ParticleCloudCommands.h"
#include "SkyTool/ParticleCloudDome.h"
#include "SkyTool/ParticleCloudDomeCommands.h"
#include "SkyTool/ParticleCloudShadingParamsCommands.h"
#include "SkyTool/ParticleCloudShadingParamsLocator.h"
#include "SkyTool/ParticleCloudSphereLoc.h"
#include "SkyTool/ProceduralSkyLocator.h"
#include "SkyTool/SaveSkySystemToXMLCommand.h"
#include "SkyTool/SceneFogLocator.h"
#include "SkyTool/ShadingConversionNode.h"
#include "SkyTool/SkyRendererLocator.h"
#include "SkyTool/SkySceneSettingsLocator.h"
#include "SkyTool/SpriteCloudLocator.h"
#include "SkyTool/TexturedSkyLocator.h"
#include "SkyTool/UpdateSkySystemCommand.h"

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
