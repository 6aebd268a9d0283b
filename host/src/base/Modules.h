#pragma once

#include <filesystem>

/// What comes with the host's library but is not linked to it: it is loaded, or run, when it is first needed.
namespace host {

/// The folder of the host's library, where its modules and programs are.
std::filesystem::path hostFolder();

/// A function of a module in that folder, by its C name. The module is never unloaded: libraries below it do not stand
/// that. Throws std::runtime_error, with a text that begins with `purpose`, when the module is missing or another's.
void* moduleFunction(const char* purpose, const char* module, const char* function);

} // namespace host
