#include "ConvertFullPathToProjectRootPath.h"

#include "Common/CommandArguments.h"
#include "Common/HostText.h"
#include "Common/Paths.h"

namespace orvo {

MStatus OrvoSky_ConvertFullPathToProjectRootPath::doIt(const MArgList& args) {
    return guarded("orvosky_ConvertFullPathToProjectRootPath", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 1) {
            reportError("OrvoSky_ConvertFullPathToProjectRootPath incorrect syntax given! :(  Usage: "
                        "\"orvosky_ConvertFullPathToProjectRootPath filePath\"   bailing.");
            return MStatus::kFailure;
        }
        std::string path = inProjectSpelling(stringArgument(args, 0));
        makeProjectRelative(path);
        clearResult();
        appendToResult(hostText(path));
        return MStatus::kSuccess;
    });
}

} // namespace orvo
