#pragma once

#include "Inspection.h"
#include "XmlFile.h"

namespace orvosky::inspect {

/// @name Files between artists; each reads and checks what lies in the root element
/// @{
void inspectCloud(const XmlElement& root, Inspection& found);
void inspectCloudLibrary(const XmlElement& root, Inspection& found);
void inspectShadingParams(const XmlElement& root, Inspection& found);
/// @}

} // namespace orvosky::inspect
