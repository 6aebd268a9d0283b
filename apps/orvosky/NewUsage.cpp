#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addNew(CLI::App& program, CommonOptions&) {
    auto line = std::make_shared<NewOptions>();
    CLI::App* app = program.add_subcommand("new", "Make a project: workspace, build folders, a scene with a sky");
    app->add_option("DIR", line->folder, "Its folder, which is not there yet, or empty")->required()->option_text(" ");
    app->add_option("--preset", line->preset, "The sky of its scene (default: valley); a wrong name lists them")
        ->option_text("NAME");
    app->footer(
        helpFoot({.examples = "  orvosky new skies\n"
                              "  orvosky new skies --preset valley && orvosky render skies/scenes/sky.ma sky.png\n",
                  .exitStatuses = "  0  the project is there\n"
                                  "  1  it is not, and nothing else is\n",
                  .environment = false}));
    return {app, [line] { return newCommand(*line); }};
}

} // namespace orvosky
