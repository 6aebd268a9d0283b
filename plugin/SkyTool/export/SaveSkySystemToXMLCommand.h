#pragma once

#include <maya/MPxCommand.h>

namespace orvo {

/// `orvosky_SaveSkySystemToXMLCommand filePath`: exports the scene's sky system to an ".atmos" file.
class OrvoSky_SaveSkySystemToXMLCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
