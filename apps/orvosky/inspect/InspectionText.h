#pragma once

#include "Inspection.h"

namespace orvosky::inspect {

/// A summary for people: a section an element, values aligned and with their units; what was worked out behind a >.
std::string asText(const Inspection& found);

/// The same for tools, as JSON: "file", "type", "version", "elements" (each with "element", "line", "attributes" and,
/// where there are any, "derived" and "children"), "data", "notes", "warnings", "problems", "ok". Values that could not
/// be read are texts.
std::string asJson(const Inspection& found);

} // namespace orvosky::inspect
