#pragma once

#include "mel/Command.h"

#include <maya/MFnPlugin.h>
#include <maya/MStatus.h>
#include <maya/MSyntax.h>

#include <memory>
#include <string>

class MDoubleArray;
class MIntArray;
class MString;
class MStringArray;

namespace host::api {

/// Calls a plug-in's command: makes its object, hands it the arguments, and puts it into the undo queue when it is
/// undoable. `syntax` may be null. Throws mel::Error when it fails.
mel::Value runPluginCommand(const std::string& name, MCreatorFunction create, std::shared_ptr<const MSyntax> syntax,
                            mel::Call& call);

/// Tells that the arguments of the command that runs now do not keep to its syntax: the text is the command's error
/// when it fails, and a message when it does not, or when no command runs.
void noteFaultOfCall(const std::string& text);

/// @name A script's result as a value of the API
/// kFailure when it is of another type; an int serves as a double, and a single value as an array of one.
/// @{
MStatus takeResult(const mel::Value& v, int& out);
MStatus takeResult(const mel::Value& v, double& out);
MStatus takeResult(const mel::Value& v, MString& out);
MStatus takeResult(const mel::Value& v, MIntArray& out);
MStatus takeResult(const mel::Value& v, MDoubleArray& out);
MStatus takeResult(const mel::Value& v, MStringArray& out);
/// @}

} // namespace host::api
