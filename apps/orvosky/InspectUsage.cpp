#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addInspect(CLI::App& program, CommonOptions& common) {
    auto options = std::make_shared<InspectOptions>();
    CLI::App* app = program.add_subcommand("inspect", "Show what an exported file holds, and whether it fits together");
    app->add_option("FILE", options->file, "A sky scene (.atmos), or the XML file of clouds or their shading")
        ->required()
        ->option_text(" ");
    app->add_flag("--json", options->json, "Show it as JSON, for tools");
    app->add_flag("--strict", options->strict, "Take warnings for errors");
    app->add_option(
           "--project", common.project,
           "Project in which the files lie that FILE names (default: the one\nthat FILE itself lies in, if any)")
        ->option_text("DIR");
    app->footer(helpFoot({.examples = "  orvosky inspect dusk.atmos\n"
                                      "  orvosky inspect clouds/cumulus.xml --json\n",
                          .exitStatuses = "  0  the file and what belongs to it fit together\n"
                                          "  1  they do not, or cannot be read: what does not fit is listed\n",
                          .environment = false}));
    return {app, [&common, options] {
                options->project = common.project;
                return inspectCommand(*options);
            }};
}

} // namespace orvosky
