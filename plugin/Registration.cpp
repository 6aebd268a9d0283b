#include "Registration.h"

#include "SkyTool/BasicSkyLocator.h"
#include "SkyTool/ConvertFullPathToProjectRootPath.h"
#include "SkyTool/ExpHeightFogLocator.h"
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
