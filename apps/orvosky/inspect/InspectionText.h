#pragma once

#include "NamedFiles.h"

namespace orvosky::inspect {

/// A summary for people: a section an element, values aligned and with their units; what was worked out behind a >.
std::string asText(const Inspection& found);

/// The same for tools, as JSON: "file", "type", "version", "elements" (each with "element", "line", "attributes" and,
/// where there are any, "derived" and "children"), "data", "notes", "warnings", "problems", "ok". Values that could not
/// be read are texts.
std::string asJson(const Inspection& found);
/// What the file holds, in a few lines.
std::string asSummary(const Inspection& found, const std::vector<NamedFile>& files);
/// What two files hold differently, a line each; empty when nothing is. Elements are compared with those of the same
/// name and number, data byte for byte.
std::string asDifference(const Inspection& a, const Inspection& b);
/// The files that a file names, a line each.
std::string asList(const Inspection& found, const std::vector<NamedFile>& files);

} // namespace orvosky::inspect
