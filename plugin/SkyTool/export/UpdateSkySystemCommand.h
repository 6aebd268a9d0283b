#pragma once

#include <maya/MPxCommand.h>

namespace orvo {

/// `orvosky_UpdateSkySystemCommand`: brings all sky nodes of the scene up to date, without drawing. An export writes
/// what the nodes hold, so it follows on this. Fails when something went wrong, which is reported.
class OrvoSky_UpdateSkySystemCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
};

} // namespace orvo
