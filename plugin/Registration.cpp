#include "Registration.h"

#include "SkyTool/BasicSkyLocator.h"
#include "SkyTool/ConvertFullPathToProjectRootPath.h"
#include "SkyTool/ExpHeightFogLocator.h"
#include "SkyTool/ParticleCloud.h"
#include "SkyTool/ParticleCloudCommands.h"
#include "SkyTool/ParticleCloudDome.h"
#include "SkyTool/ParticleCloudDomeCommands.h"
#include "SkyTool/ParticleCloudShadingParamsCommands.h"
#include "SkyTool/ParticleCloudShadingParamsLocator.h"
#include "SkyTool/ParticleCloudSphereLoc.h"
#include "SkyTool/SaveSkySystemToXMLCommand.h"
#include "SkyTool/SkyRendererLocator.h"
#include "SkyTool/SkySceneSettingsLocator.h"

namespace orvo {

std::span<const RegistrationRow> registrationTable() {
    static const RegistrationRow rows[] = {
        locatorRow<BasicSkyLocator>("orvosky_BasicSkyLocator"),
        commandRow<OrvoSky_SaveSkySystemToXMLCommand>("orvosky_SaveSkySystemToXMLCommand"),
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
        locatorRow<SkyRendererLocator>("orvosky_SkyRenderer"),
        commandRow<OrvoSky_ConvertFullPathToProjectRootPath>("orvosky_ConvertFullPathToProjectRootPath"),
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
