#pragma once

#include "Session.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

/// How the program is called: each subcommand adds its options, its help and its work, in a file of its own.
namespace orvosky {

/// One subcommand on the command line.
struct Subcommand {
    CLI::App* line;
    std::function<int()> work; ///< once the line is read; answers the exit status
};

/// @name The subcommands, as they stand in the help
/// @{
/// `common` is read from the whole line and outlives the subcommand. `scriptWords` are the words that belong to the
/// script, taken off the line beforehand.
Subcommand addRun(CLI::App& program, CommonOptions& common, std::vector<std::string> scriptWords);
Subcommand addExport(CLI::App& program, CommonOptions& common);
Subcommand addRender(CLI::App& program, CommonOptions& common);
Subcommand addBatch(CLI::App& program, CommonOptions& common);
Subcommand addNodes(CLI::App& program, CommonOptions& common);
Subcommand addNew(CLI::App& program, CommonOptions& common);
Subcommand addInspect(CLI::App& program, CommonOptions& common);
Subcommand addEdit(CLI::App& program, CommonOptions& common);
Subcommand addCommands(CLI::App& program, CommonOptions& common);
Subcommand addHelp(CLI::App& program);
/// @}

/// Adds what is common to all that open a workspace: to the program itself, and to each subcommand's own options.
void addCommonOptions(CLI::App& line, CommonOptions& options);

/// Adds where a run is told of: --log-json, --quiet, --verbose.
void addLogOptions(CLI::App& line, LogOptions& options);

/// Adds what reported errors and warnings mean: --keep-going and --strict.
void addReportOptions(CLI::App& line, ReportOptions& options);

/// Adds when the scene is drawn or exported, of which `verb` tells in the help: --time, --frames, --continue.
void addTimeOptions(CLI::App& line, TimeOptions& options, const std::string& verb);

/// Adds an option with a value, `shownAs` in the help. `take` throws Failure for a text that is no such value.
CLI::Option* addValue(CLI::App& line, const std::string& name, const std::string& shownAs,
                      const std::string& description, std::function<void(const std::string& text)> take);

/// What is to be written, in order. Throws the error of a wrong line where a name has no place for a frame's number.
std::vector<Shot> requiredShots(const TimeOptions& options, const std::string& target);

/// Parts of the help's foot.
struct HelpFoot {
    std::string examples;     ///< lines, indented; empty for none
    std::string exitStatuses; ///< what 0 and 1 mean here, as lines
    bool environment = true;  ///< whether the host's environment variables count
};
std::string helpFoot(const HelpFoot& foot);
/// Shows a help text. @return the exit status
int showHelp(const std::string& text);

/// The word that was probably meant: the one nearest to what was written, when it is near. Empty when none is.
std::string nearest(const std::string& written, std::span<const std::string> known);

/// Reads numbers that are separated by `separator`, as many as are asked for, all finite. False when it is not that.
bool readNumbers(const std::string& text, char separator, std::span<double> numbers);

} // namespace orvosky
