#pragma once

#include "Inspection.h"

#include <tinyxml.h>

namespace orvosky::inspect {

/// @name Files between artists; each reads and checks what lies in the root element
/// @{
void inspectCloud(const TiXmlElement& root, Inspection& found);
void inspectCloudLibrary(const TiXmlElement& root, Inspection& found);
void inspectShadingParams(const TiXmlElement& root, Inspection& found);
/// @}

} // namespace orvosky::inspect
