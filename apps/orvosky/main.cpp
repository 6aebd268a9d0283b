#include "Session.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <csignal>
#include <iostream>

namespace {

using namespace orvosky;

/// Reads "1280x720"; an empty text means that it was understood.
std::string readSize(const std::string& text, int& width, int& height) {
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    if (first.ec == std::errc() && first.ptr != end && *first.ptr == 'x') {
        const auto second = std::from_chars(first.ptr + 1, end, height);
        if (second.ec == std::errc() && second.ptr == end && width > 0 && height > 0) return {};
    }
    return "'" + text + "' is no size; give it as WIDTHxHEIGHT, for example 1280x720";
}

int usageError(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error); // --help and --version
    std::cerr << "Error: " << error.what() << "\nRun with --help for more information.\n";
    return kWrongUsage;
}

} // namespace

int main(int argc, char** argv) {
    // A file that grows beyond a limit is a failed write, which is reported, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);

    CLI::App app("Runs, exports and renders the skies of Maya scenes, without Maya.", "orvosky");
    app.set_version_flag("--version", "orvosky " ORVOSKY_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.option_defaults()->always_capture_default();

    CommonOptions common;
    app.add_option("--project", common.project,
                   "Workspace root (default: the nearest folder upward with a workspace.mel, else the current one)");
    app.add_flag("--no-plugin", common.noPlugin, "Do not load the plug-in");

    RunOptions run;
    auto* runApp = app.add_subcommand("run", "Run a MEL script with the plug-in loaded");
    runApp->add_option("-e", run.text, "A line of MEL to run in place of a script");
    runApp->add_option("script", run.script, "The script, and its arguments ($argv)");
    runApp->add_option("args", run.arguments, "Arguments of the script");

    ExportOptions exporting;
    auto* exportApp = app.add_subcommand("export", "Open a scene, bring it up to date, and export its sky");
    exportApp->add_option("scene", exporting.scene, "A Maya ASCII scene (.ma) or a MEL script (.mel)")->required();
    exportApp->add_option("target", exporting.target, "The .atmos file")->required();

    RenderOptions rendering;
    std::string size = "1280x720";
    auto* renderApp = app.add_subcommand("render", "Draw what the viewport shows into a picture");
    renderApp->add_option("scene", rendering.scene, "A Maya ASCII scene (.ma) or a MEL script (.mel)")->required();
    renderApp->add_option("picture", rendering.picture, "The picture; its extension gives the format")->required();
    renderApp->add_option("--size", size, "Width and height in pixels")
        ->check([&](const std::string& text) { return readSize(text, rendering.width, rendering.height); });
    renderApp->add_option("--camera", rendering.camera, "Camera to look through");
    auto* time = renderApp->add_option("--time", rendering.time, "Time to draw, in the scene's time unit");

    try {
        app.parse(argc, argv);
        if (runApp->parsed() && run.script.empty() == run.text.empty() && run.text.empty())
            throw CLI::RequiredError("run: a script, or -e with a line of MEL");
    } catch (const CLI::ParseError& error) {
        return usageError(app, error);
    }
    if (runApp->parsed()) {
        // With -e there is no script: every word is an argument.
        if (!run.text.empty() && !run.script.empty()) run.arguments.insert(run.arguments.begin(), run.script);
        return runCommand(common, run);
    }
    if (exportApp->parsed()) return exportCommand(common, exporting);
    rendering.timeGiven = time->count() > 0;
    return renderCommand(common, rendering);
}
