#include "Session.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <iostream>
#include <string>
#include <vector>

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

/// Takes the script's own words off the command line: everything behind the script, or, with -e, from the first word
/// that is no option on, belongs to the script as it stands.
std::vector<std::string> takeScriptWords(std::vector<std::string>& words) {
    std::size_t at = 0;
    const auto valueFollows = [](const std::string& w) { return w == "-e" || w == "--project"; };
    while (at < words.size() && words[at] != "run") {
        if (words[at] == "export" || words[at] == "render" || words[at] == "inspect") return {};
        at += valueFollows(words[at]) ? 2 : 1;
    }
    bool text = false;
    for (++at; at < words.size(); ++at) {
        const std::string& w = words[at];
        text = text || w == "-e";
        if (valueFollows(w))
            ++at;
        else if (w.empty() || w[0] != '-')
            break;
    }
    if (!text) ++at; // the script itself
    if (at >= words.size()) return {};
    std::vector<std::string> own(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
    words.resize(at);
    return own;
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

    CLI::App app("Runs, exports, renders and inspects the skies of Maya scenes, without Maya.", "orvosky");
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
    runApp->add_option("script", run.script, "The script; what follows it are its arguments ($argv)");

    ExportOptions exporting;
    auto* exportApp = app.add_subcommand("export", "Open a scene, bring it up to date, and export its sky");
    exportApp->add_option("scene", exporting.scene, "A Maya ASCII scene (.ma) or a MEL script (.mel)")->required();
    exportApp->add_option("target", exporting.target, "The .atmos file")->required();

    RenderOptions rendering;
    std::string size = "1280x720";
    auto* renderApp = app.add_subcommand("render", "Draw what the viewport shows into a picture");
    renderApp->add_option("scene", rendering.scene, "A Maya ASCII scene (.ma) or a MEL script (.mel)")->required();
    renderApp->add_option("picture", rendering.picture, "The picture; its extension gives the format")->required();
    renderApp->add_option("--size", size, "Width and height in pixels")->check([&](const std::string& text) {
        return readSize(text, rendering.width, rendering.height);
    });
    renderApp->add_option("--camera", rendering.camera, "Camera to look through");
    auto* time = renderApp->add_option("--time", rendering.time, "Time to draw, in the scene's time unit");

    InspectOptions inspecting;
    auto* inspectApp = app.add_subcommand("inspect", "Show what an exported file holds, and whether it fits together");
    inspectApp->add_option("file", inspecting.file, "A sky scene (.atmos), or the XML file of clouds or their shading")
        ->required();
    inspectApp->add_flag("--json", inspecting.json, "For tools: JSON");

    std::vector<std::string> words(argv + 1, argv + argc);
    run.arguments = takeScriptWords(words);
    std::reverse(words.begin(), words.end()); // as CLI11 takes them
    try {
        app.parse(words);
        if (runApp->parsed() && run.script.empty() && run.text.empty())
            throw CLI::RequiredError("run: a script, or -e with a line of MEL");
    } catch (const CLI::ParseError& error) {
        return usageError(app, error);
    }
    if (runApp->parsed()) return runCommand(common, run);
    if (exportApp->parsed()) return exportCommand(common, exporting);
    if (inspectApp->parsed()) return inspectCommand(inspecting);
    rendering.timeGiven = time->count() > 0;
    return renderCommand(common, rendering);
}
