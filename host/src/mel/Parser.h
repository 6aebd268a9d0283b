#pragma once

#include "mel/Ast.h"

#include <functional>
#include <string_view>

namespace host::mel {

/// What a text may know of the global variables there are already; null for an unknown name.
using GlobalLookup = std::function<const Variable*(std::string_view name)>;

/// Parses a whole script text and resolves its variables. Procedures belong to `scope`.
/// Throws Error with the scope's file and a line: "Syntax error: ...", undeclared variables, invalid redeclarations.
std::shared_ptr<Script> parseScript(std::string_view text, FileScope& scope, const GlobalLookup& globals);

} // namespace host::mel
