#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addNodes(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<NodesOptions>();
    CLI::App* app = program.add_subcommand("nodes", "Show the plug-in's node types and their attributes");
    app->add_option("TYPE", line->type,
                    "One of them, with all of its attributes: type, default, limits, unit,\nmeaning, "
                    "names of the parts (default: a list of the types)")
        ->option_text(" ");
    CLI::Option* json = app->add_flag("--json", line->json, "Show all that is known, for tools");
    app->add_flag("--markdown", line->markdown, "Show it as the tables of docs/nodes.md")->excludes(json);
    addCommonOptions(*app, common);
    app->footer(helpFoot({.examples = "  orvosky nodes\n"
                                      "  orvosky nodes orvosky_ExpHeightFog\n",
                          .exitStatuses = "  0  shown\n"
                                          "  1  there is no such type, or the plug-in cannot be loaded\n"}));
    return {app, [&common, line] { return nodesCommand(common, *line); }};
}

} // namespace orvosky
