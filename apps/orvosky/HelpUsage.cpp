#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addHelp(CLI::App& program) {
    auto topic = std::make_shared<std::string>();
    CLI::App* app = program.add_subcommand("help", "Show this help, or that of a subcommand");
    app->add_option("SUBCOMMAND", *topic, "The subcommand")->option_text(" ");
    app->footer(helpFoot({.examples = "  orvosky help render\n",
                          .exitStatuses = "  0  shown\n"
                                          "  1  the standard output cannot be written\n",
                          .environment = false}));
    return {app, [&program, topic] {
                // The program's own help() is that of the subcommand that was called.
                const CLI::App* asked = topic->empty() ? &program : program.get_subcommand(*topic);
                const std::string name = program.get_name();
                return showHelp(program.get_formatter()->make_help(asked, topic->empty() ? name : name + " " + *topic,
                                                                   CLI::AppFormatMode::Normal));
            }};
}

} // namespace orvosky
