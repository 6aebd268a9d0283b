#include "Failure.h"
#include "Usage.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace orvosky {
namespace {

/// Reads "1280x720".
bool readSize(const std::string& text, int& width, int& height) {
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    if (first.ec != std::errc() || first.ptr == end || *first.ptr != 'x') return false;
    const auto second = std::from_chars(first.ptr + 1, end, height);
    return second.ec == std::errc() && second.ptr == end && width > 0 && height > 0;
}

} // namespace

Subcommand addRender(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<RenderOptions>();
    CLI::App* app = program.add_subcommand("render", "Draw what the viewport shows into a picture");
    app->add_option("SCENE", line->scene, "A Maya ASCII scene (.ma) or a MEL script that builds one (.mel)")
        ->required()
        ->option_text(" ");
    app->add_option("PICTURE", line->picture,
                    "The picture; its extension gives the format: png, jpg, tif, exr, hdr, ...")
        ->required()
        ->option_text(" ");
    addValue(*app, "--size", "WIDTHxHEIGHT", "Size in pixels (default: 1280x720)", [line](const std::string& text) {
        if (!readSize(text, line->width, line->height))
            throw Failure("'" + text + "' is no size; give it as WIDTHxHEIGHT, for example 1280x720");
    });
    app->add_option("--camera", line->camera, "Camera to look through: its shape or its transform (default: persp)")
        ->option_text("NAME");
    addValue(*app, "--time", "TIME", "Time to draw, in the scene's time unit (default: the\nscene's own current time)",
             [line](const std::string& text) {
                 if (!readNumbers(text, ',', {&line->time, 1})) throw Failure("'" + text + "' is no finite number");
                 line->timeGiven = true;
             });
    addCommonOptions(*app, common);
    app->footer(helpFoot({.examples = "  orvosky render scenes/dusk.ma dusk.png\n"
                                      "  orvosky render scenes/dusk.ma dusk.exr --size 1920x1080 --camera horizon\n",
                          .exitStatuses = "  0  the picture is there\n"
                                          "  1  it is not: an earlier picture is still there as it was\n"}));
    return {app, [&common, line] { return renderCommand(common, *line); }};
}

} // namespace orvosky
