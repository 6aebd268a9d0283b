#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addInspect(CLI::App& program, CommonOptions& common) {
    auto options = std::make_shared<InspectOptions>();
    CLI::App* app = program.add_subcommand("inspect", "Show what an exported file holds, and whether it fits together");
    app->add_option("FILE", options->file, "A sky scene (.atmos), or the XML file of clouds or their shading")
        ->required()
        ->option_text(" ");
    CLI::Option* json = app->add_flag("--json", options->json, "Show it as JSON, for tools");
    CLI::Option* summary = app->add_flag("--summary", options->summary, "Show it in a few lines")->excludes(json);
    CLI::Option* list =
        app->add_flag("--list-files", options->listFiles,
                      "List the files that FILE names, and whether they are there; FILE may\nbe a scene (.ma, "
                      ".mel), too")
            ->excludes(summary);
    CLI::Option* diff = app->add_flag("--diff", options->diff, "Show what FILE and OTHER hold differently")
                            ->excludes(json)
                            ->excludes(summary)
                            ->excludes(list);
    app->add_option("OTHER", options->other, "With --diff: the file to compare it with")->needs(diff)->option_text(" ");
    app->add_flag("--strict", options->strict, "Take warnings for errors");
    app->add_option(
           "--project", common.project,
           "Project in which the files lie that FILE names (default: the one\nthat FILE itself lies in, if any)")
        ->option_text("DIR");
    app->footer(
        helpFoot({.examples = "  orvosky inspect dusk.atmos\n"
                              "  orvosky inspect clouds/cumulus.xml --json\n"
                              "  orvosky inspect --diff yesterday/dusk.atmos dusk.atmos\n"
                              "  orvosky inspect --list-files scenes/dusk.ma\n",
                  .exitStatuses = "  0  the file and what belongs to it fit together; with --diff, the two are\n"
                                  "     alike; with --list-files, all are there\n"
                                  "  1  they do not, or cannot be read: what does not fit is listed\n",
                  .environment = false}));
    return {app, [&common, options] {
                if (options->diff && options->other.empty()) throw CLI::RequiredError("inspect --diff: two files");
                options->project = common.project;
                return inspectCommand(common, *options);
            }};
}

} // namespace orvosky
