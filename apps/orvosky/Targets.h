#pragma once

#include "Failure.h"

#include "base/FileReplacement.h"

#include <string>

/// What a subcommand is to write: refused before the scene is opened where that can be known then.
namespace orvosky {

/// Refuses a target that the export command would refuse, in its words. Throws Failure.
void requireExportTarget(const std::string& target);
/// The ".cdata" file that goes with a target that was not refused.
std::string cloudDataOf(const std::string& target);
/// Tells in the export command's words that one of the two files could not be replaced.
Failure exportFailure(const std::string& target, const host::base::ReplacementError& error);

/// Refuses a picture that could not be written, or could not hold the alpha that is asked for. Throws Failure.
void requirePictureTarget(const std::string& picture, bool alpha);

} // namespace orvosky
