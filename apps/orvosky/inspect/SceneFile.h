#pragma once

#include "Inspection.h"
#include "XmlFile.h"

namespace orvosky::inspect {

/// Reads and checks the elements of a sky scene, their number and order, and its clouds' data in the file beside it.
void inspectScene(const XmlElement& root, Inspection& found);

} // namespace orvosky::inspect
