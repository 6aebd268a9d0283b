#pragma once

#include <string>
#include <vector>

namespace orvosky {

/// Sets attributes of the open scene, each given as "NODE.ATTR=VALUE": numbers in the units that scripts use, several
/// for a compound, separated by commas; on or off for switches; the field of an enumeration by its name or number;
/// texts as they are. Throws Failure, naming what was given, when the node or the attribute is not there, takes no such
/// value, or cannot be set.
void applySettings(const std::vector<std::string>& settings);

} // namespace orvosky
