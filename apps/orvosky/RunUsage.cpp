#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addRun(CLI::App& program, CommonOptions& common, std::vector<std::string> scriptWords) {
    auto line = std::make_shared<RunOptions>();
    line->arguments = std::move(scriptWords);
    CLI::App* app = program.add_subcommand("run", "Run a MEL script with the plug-in loaded");
    app->add_option(
           "SCRIPT", line->script,
           "The script; what follows it are its arguments, in $argv. - is the\nstandard input: on a terminal, a "
           "prompt with a history")
        ->option_text(" ");
    app->add_option("-e", line->text, "Run this line of MEL in place of a script")->option_text("MEL");
    addCommonOptions(*app, common);
    app->footer(
        helpFoot({.examples = "  orvosky run build.mel north 3\n"
                              "  orvosky run - < build.mel\n"
                              "  orvosky run -e 'print `ls -type orvosky_BasicSkyLocator`;'\n"
                              "  orvosky --project skies run -e 'file -f -open \"scenes/dusk.ma\"; print `ls`;'\n",
                  .exitStatuses = "  0  the script ran to its end\n"
                                  "  1  it did not: the error names file and line\n"}));
    return {app, [&common, line] {
                if (line->script.empty() && line->text.empty())
                    throw CLI::RequiredError("run: a script, or -e with a line of MEL");
                return runCommand(common, *line);
            }};
}

} // namespace orvosky
