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
    addTimeOptions(*app, line->when, "draw");
    addValue(*app, "--look", "AZIMUTH,ELEVATION",
             "Look in this direction from the camera's eye point: degrees\nclockwise from -Z as seen from above, "
             "degrees above the horizon",
             [line](const std::string& text) {
                 std::array<double, 2> look;
                 if (!readNumbers(text, ',', look) || look[1] < -90 || look[1] > 90)
                     throw Failure("'" + text +
                                   "' is no direction; give two numbers of degrees, the second from -90 to " +
                                   "90, for example 135,20");
                 line->look = look;
             });
    addValue(*app, "--fov", "DEGREES", "Horizontal angle of view (default: the camera's own)",
             [line](const std::string& text) {
                 double fov = 0;
                 if (!readNumbers(text, ',', {&fov, 1}) || !(fov > 0 && fov < 180))
                     throw Failure("'" + text + "' is no angle of view; give degrees between 0 and 180");
                 line->fov = fov;
             });
    app->add_flag("--helpers", line->helpers,
                  "Show the aids for working, too: wires of cloud shapes,\noutlines of cloud domes");
    addReportOptions(*app, line->reports);
    addCommonOptions(*app, common);
    app->footer(
        helpFoot({.examples = "  orvosky render scenes/dusk.ma dusk.png\n"
                              "  orvosky render scenes/dusk.ma dusk.exr --size 1920x1080 --camera horizon\n"
                              "  orvosky render scenes/dusk.ma red.png --set duskSkyShape.sunColour=1,0.2,0.1\n"
                              "  orvosky render my.mel my.png --look 135,20 --fov 75\n"
                              "  orvosky render scenes/dusk.ma out/dusk.####.png --frames 1-24 --continue\n",
                  .exitStatuses = "  0  the picture is there, or those of all frames are\n"
                                  "  1  it is not: an earlier picture is still there as it was; with --keep-going,\n"
                                  "     it is, in spite of the errors that are shown. Frames end at the first that\n"
                                  "     fails; those before it are there\n"}));
    return {app, [&common, line] { return renderCommand(common, *line, requiredShots(line->when, line->picture)); }};
}

} // namespace orvosky
