#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addExport(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<ExportOptions>();
    CLI::App* app = program.add_subcommand("export", "Open a scene, bring it up to date, and export its sky");
    app->add_option("SCENE", line->scene, "A Maya ASCII scene (.ma) or a MEL script that builds one (.mel)")
        ->required()
        ->option_text(" ");
    app->add_option("OUT", line->target, "The .atmos file; its .cdata file of clouds comes beside it")
        ->required()
        ->option_text(" ");
    addTimeOptions(*app, line->when, "export");
    addReportOptions(*app, line->reports);
    addCommonOptions(*app, common);
    app->footer(
        helpFoot({.examples = "  orvosky export scenes/dusk.ma out/dusk.atmos\n"
                              "  orvosky --project skies export skies/scenes/dusk.ma dusk.atmos\n"
                              "  orvosky export scenes/dusk.ma out/dusk.##.atmos --frames 0-48x12\n",
                  .exitStatuses = "  0  exported, all frames of them\n"
                                  "  1  not exported: an earlier export is still there as it was; with --keep-going,\n"
                                  "     exported in spite of the errors that are shown. Frames end at the first that\n"
                                  "     fails; those before it are there\n"}));
    return {app, [&common, line] { return exportCommand(common, *line, requiredShots(line->when, line->target)); }};
}

} // namespace orvosky
