#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addEdit(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<EditOptions>();
    CLI::App* app = program.add_subcommand("edit", "Open the window, in which skies are made");
    app->add_option("SCENE", line->scene,
                    "A Maya ASCII scene (.ma) or a MEL script that builds one (.mel); without\n"
                    "one the window starts with a page of presets")
        ->option_text(" ");
    addCommonOptions(*app, common);
    app->footer(
        helpFoot({.examples = "  orvosky edit scenes/dusk.ma\n"
                              "  orvosky --project skies edit\n",
                  .exitStatuses = "  0  the window was closed\n"
                                  "  1  it could not be opened: no display, no OpenGL, no Qt in this build\n"}));
    return {app, [&common, line] { return editCommand(common, *line); }};
}

} // namespace orvosky
