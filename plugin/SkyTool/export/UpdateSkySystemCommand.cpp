#include "UpdateSkySystemCommand.h"

#include "Common/CommandArguments.h"
#include "SkyUpdate.h"

namespace orvo {

MStatus OrvoSky_UpdateSkySystemCommand::doIt(const MArgList& args) {
    return guarded("orvosky_UpdateSkySystemCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 0) {
            reportError("OrvoSky_UpdateSkySystemCommand incorrect syntax given! :(  Usage: "
                        "\"orvosky_UpdateSkySystemCommand\"   bailing.");
            return MStatus::kFailure;
        }
        return updateSkySystem() ? MStatus::kSuccess : MStatus::kFailure;
    });
}

} // namespace orvo
