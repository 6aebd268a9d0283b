#pragma once

#include "mel/Command.h"

#include <optional>
#include <string>

namespace host::mel {

/// What getAttr answers of the lists that a mesh itself keeps: vrts (points, before tweaks), pnts (tweaks), edge,
/// normals, uvSet[i].uvSetName and uvSet[i].uvSetPoints, an element, a range ("b.vrts[0:3]", "b.pnts[*]") or the whole.
/// Nothing for other plugs, and for flags that do not ask for values, -size or -multiIndices. Throws Error for what a
/// list has not.
std::optional<Value> meshListValue(const std::string& name, const ParsedArguments& flags);

} // namespace host::mel
