#include "Failure.h"
#include "Usage.h"

#include <CLI/CLI.hpp>

namespace orvosky {

Subcommand addBatch(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<BatchOptions>();
    CLI::App* app = program.add_subcommand("batch", "Export and render many scenes, several at a time");
    app->add_option("SCENES", line->scenes,
                    "Scenes (.ma, .mel), and files of another ending that list them: one\na line, from the list's own "
                    "folder; lines that begin with # are\nleft out")
        ->required()
        ->option_text("...");
    app->add_option("--out", line->folder, "Folder for what is made, NAME.atmos and NAME.png of NAME.ma\n(default: .)")
        ->option_text("DIR");
    CLI::Option* exportOnly = app->add_flag_callback(
        "--export-only", [line] { line->renders = false; }, "No pictures");
    app->add_flag_callback(
           "--render-only", [line] { line->exports = false; }, "Pictures alone")
        ->excludes(exportOnly);
    app->add_option("--format", line->format, "Ending of the pictures' names (default: png)")->option_text("ENDING");
    app->add_option("--size", line->size, "Size of the pictures (default: 1280x720)")->option_text("WIDTHxHEIGHT");
    addValue(*app, "-j", "N", "Scenes at a time (default: one for each processor)", [line](const std::string& text) {
        double processes = 0;
        if (!readNumbers(text, ',', {&processes, 1}) || processes < 1 || processes > 1000 ||
            processes != static_cast<int>(processes))
            throw Failure("'" + text + "' is no number of processes; give 1 or more");
        line->processes = static_cast<int>(processes);
    });
    app->add_flag("--json", line->json, "Show the summary as JSON, for tools");
    addReportOptions(*app, line->reports);
    addCommonOptions(*app, common);
    app->footer(helpFoot({.examples = "  orvosky batch scenes/*.ma --out out -j 4\n"
                                      "  orvosky batch tonight.txt --out out --render-only --json > tonight.json\n",
                          .exitStatuses =
                              "  0  all of it is there\n"
                              "  1  it is not: the summary tells which scene failed at what; the others are done\n"}));
    return {app, [&common, line] { return batchCommand(common, *line); }};
}

} // namespace orvosky
