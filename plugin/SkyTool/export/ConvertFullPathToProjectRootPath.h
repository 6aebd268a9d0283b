#pragma once

#include <maya/MPxCommand.h>

namespace orvo {

/// `orvosky_ConvertFullPathToProjectRootPath filePath`: answers the path in the form in which nodes store it, relative
/// to the game project.
class OrvoSky_ConvertFullPathToProjectRootPath : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
