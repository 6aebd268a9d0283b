#include "SaveSkySystemToXMLCommand.h"

#include "Common/CommandArguments.h"
#include "SkyExport.h"

namespace orvo {

MStatus OrvoSky_SaveSkySystemToXMLCommand::doIt(const MArgList& args) {
    return guarded("orvosky_SaveSkySystemToXMLCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 1) {
            reportError("OrvoSky_SaveSkySystemToXMLCommand incorrect syntax given! :(  Usage: "
                        "\"orvosky_SaveSkySystemToXMLCommand filePath\"   bailing.");
            return MStatus::kFailure;
        }
        if (exportSkySystem(stringArgument(args, 0))) return MStatus::kSuccess;
        reportError("Failed to export .atmos - see above for details.");
        return MStatus::kFailure;
    });
}

} // namespace orvo
