#include "Failure.h"
#include "Usage.h"

#include "base/Letters.h"
#include "base/NumberText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>

namespace orvosky {
namespace {

/// Reads "1280x720", or one number, whose height is left at 0.
bool readSize(const std::string& text, int& width, int& height) {
    std::string_view rest = text;
    width = host::takeInt(rest).value_or(0);
    height = 0;
    if (rest.empty()) return width > 0;
    if (!rest.starts_with('x')) return false;
    height = host::readInt(rest.substr(1)).value_or(0);
    return width > 0 && height > 0;
}

constexpr int kLongestSide = 32768, kLargestFace = 8192;
constexpr std::int64_t kMostPixels = std::int64_t{kLongestSide} * kLongestSide / 2;

/// Gives what was not asked for the value that it has for the kind of picture. Throws the error of a wrong line.
void settle(RenderOptions& options) {
    const auto refuse = [](const std::string& why) { throw CLI::ValidationError("render", why); };
    const bool view = options.kind == PictureKind::View;
    if (view) {
        if (options.width == 0) options.width = 1280, options.height = 720;
        if (options.height == 0) refuse("--size of a view is WIDTHxHEIGHT, for example 1280x720");
        if (std::max(options.width, options.height) > kLongestSide ||
            std::int64_t{options.width} * options.height > kMostPixels)
            refuse("--size of a view is at most " + std::to_string(kLongestSide) + " a side, and " +
                   std::to_string(kMostPixels) + " pixels");
        if (host::extensionOf(options.picture) == ".dds") refuse("a .dds file is written of a cube alone: add --cube");
        return;
    }
    if (options.fov) refuse("--fov is that of a view; a panorama and a cube show all directions");
    if (options.kind == PictureKind::Cube) {
        if (options.width == 0) options.width = 1024;
        if (options.height != 0 && options.height != options.width)
            refuse("--size of a cube is that of a face, which is square: give one number");
        if (options.width < 2 || options.width > kLargestFace)
            refuse("--size of a cube's face is 2 to " + std::to_string(kLargestFace));
        if (options.look) refuse("a cube shows the world along its own axes; --look does not turn it");
        options.height = options.width;
        return;
    }
    if (options.width == 0) options.width = 2048;
    const int height = (options.width + 1) / 2;
    if (options.height != 0 && options.height != height)
        refuse("--size of a panorama is its width, twice its height: give one number");
    if (options.width < 2 || options.width > kLongestSide)
        refuse("--size of a panorama is a width of 2 to " + std::to_string(kLongestSide));
    if (options.look && (*options.look)[1] != 0) refuse("a panorama is level: give --look an elevation of 0");
    options.height = height;
}

} // namespace

Subcommand addRender(CLI::App& program, CommonOptions& common) {
    auto line = std::make_shared<RenderOptions>();
    CLI::App* app = program.add_subcommand("render", "Draw what the viewport shows into a picture");
    app->add_option("SCENE", line->scene, "A Maya ASCII scene (.ma) or a MEL script that builds one (.mel)")
        ->required()
        ->option_text(" ");
    app->add_option("PICTURE", line->picture,
                    "The picture; its extension gives the format: png, jpg, tif, ... as\nshown, exr and hdr in linear "
                    "light, not clipped")
        ->required()
        ->option_text(" ");
    addValue(*app, "--size", "WIDTHxHEIGHT",
             "Size in pixels (default: 1280x720); of a panorama its width (2048),\nof a cube the side of a face (1024)",
             [line](const std::string& text) {
                 if (!readSize(text, line->width, line->height))
                     throw Failure("'" + text + "' is no size; give it as WIDTHxHEIGHT, for example 1280x720");
             });
    CLI::Option* panorama = app->add_flag_callback(
        "--panorama", [line] { line->kind = PictureKind::Panorama; },
        "All directions in one picture: azimuth to the right, the camera's in\nthe middle, elevation from top to "
        "bottom");
    app->add_flag_callback(
           "--cube", [line] { line->kind = PictureKind::Cube; },
           "The faces +X -X +Y -Y +Z -Z around the camera: one cube map in .dds\nand .exr, else six files, "
           "NAME.px.png, "
           ".nx, .py, .ny, .pz, .nz")
        ->excludes(panorama);
    addValue(*app, "--samples", "N", "Smooth edges: the mean of N samples a pixel, 4, 9, 16, 25 ... 64",
             [line](const std::string& text) {
                 double samples = 0;
                 const bool read = readNumbers(text, ',', {&samples, 1});
                 line->samplesAside = static_cast<int>(std::lround(std::sqrt(std::clamp(samples, 0.0, 65.0))));
                 if (!read || samples < 1 || samples != line->samplesAside * line->samplesAside)
                     throw Failure("'" + text + "' is no number of samples; give 1, 4, 9, 16, 25, 36, 49 or 64");
             });
    app->add_flag("--alpha", line->alpha, "With alpha: how much of the ground sky, clouds and meshes cover");
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
                              "  orvosky render scenes/dusk.ma out/dusk.####.png --frames 1-24 --continue\n"
                              "  orvosky render scenes/dusk.ma around.exr --panorama --size 4096 --samples 4\n"
                              "  orvosky render scenes/dusk.ma cube.dds --cube --size 512\n",
                  .exitStatuses = "  0  the picture is there, or those of all frames are\n"
                                  "  1  it is not: an earlier picture is still there as it was; with --keep-going,\n"
                                  "     it is, in spite of the errors that are shown. Frames end at the first that\n"
                                  "     fails; those before it are there\n"}));
    return {app, [&common, line] {
                settle(*line);
                return renderCommand(common, *line, requiredShots(line->when, line->picture));
            }};
}

} // namespace orvosky
