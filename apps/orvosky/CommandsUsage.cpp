#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addCommands(CLI::App& program, CommonOptions& common) {
    auto name = std::make_shared<std::string>();
    CLI::App* app = program.add_subcommand("commands", "List the MEL commands with their flags");
    app->add_option("NAME", *name, "One command, or a pattern such as poly* (default: all of them)")->option_text(" ");
    app->add_flag("--no-plugin", common.noPlugin, "Leave out the commands of the plug-in");
    app->footer(helpFoot({.examples = "  orvosky commands setKeyframe\n"
                                      "  orvosky commands 'poly*'\n",
                          .exitStatuses = "  0  shown\n"
                                          "  1  there is no such command, or the standard output cannot be written\n",
                          .environment = false}));
    return {app, [&common, name] { return commandsCommand(common, *name); }};
}

} // namespace orvosky
