#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addInspect(CLI::App& program) {
    auto options = std::make_shared<InspectOptions>();
    CLI::App* app = program.add_subcommand("inspect", "Show what an exported file holds, and whether it fits together");
    app->add_option("FILE", options->file, "A sky scene (.atmos), or the XML file of clouds or their shading")
        ->required()
        ->option_text(" ");
    app->add_flag("--json", options->json, "Show it as JSON, for tools");
    app->footer(helpFoot({.examples = "  orvosky inspect dusk.atmos\n"
                                      "  orvosky inspect clouds/cumulus.xml --json\n",
                          .exitStatuses = "  0  the file and what belongs to it fit together\n"
                                          "  1  they do not, or cannot be read: what does not fit is listed\n",
                          .environment = false}));
    return {app, [options] { return inspectCommand(*options); }};
}

} // namespace orvosky
