#pragma once

#include <maya/MObject.h>

namespace orvo {

/// Warns of what a node's attributes hold and no reader can use, each with the attribute's full name: files and folders
/// that are not there, cube maps that GL does not take, numbers that are not finite, and values that are none of those
/// of an enumeration.
void warnOfUnusableValues(const MObject& node);

} // namespace orvo
