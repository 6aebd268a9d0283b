#pragma once

#include <string>

namespace orvosky {

/// Whether a text of MEL ends in the middle: of a bracket, a text, or a comment.
bool goesOn(const std::string& text);

/// Reads MEL from the terminal, line by line with a history that is kept in the user's state folder, and runs it until
/// the end of the input or a `quit`; what goes wrong is told and ends nothing.
void prompt();

} // namespace orvosky
