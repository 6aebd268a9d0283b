#include "Usage.h"

#include "Failure.h"

#include "base/Messages.h"
#include "base/NumberText.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvosky {
namespace {

/// The fewest letters to add, drop, change, or swap with a neighbour, to make one word of the other.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast = std::exchange(last, row);
    }
    return last.back();
}

constexpr const char* environmentText =
    R"(
Environment:
  MAYA_SCRIPT_PATH    folders of scripts, searched after the workspace's
  MAYA_PLUG_IN_PATH   folders of plug-ins, searched after the program's own
  ORVOSKY_TILE        the longest side of what render draws at once (8192); larger pictures are drawn in parts
  ORVOSKY_NO_GL       set to 1: behave as on a machine without OpenGL
  ORVOSKY_TOOL_ROOT   set by the program, for scripts: the folder of its own tools
)";

} // namespace

void addCommonOptions(CLI::App& line, CommonOptions& options) {
    line.add_option("--project", options.project,
                    "Workspace root (default: the nearest folder with a\nworkspace.mel above the scene, else above the "
                    "current\n"
                    "one, else the current one)")
        ->option_text("DIR");
    line.add_option_function<std::vector<std::string>>(
            "--set",
            [&options](const std::vector<std::string>& given) {
                options.settings.insert(options.settings.end(), given.begin(), given.end());
            },
            "Set an attribute after the scene was opened; may be given\nagain. Numbers of a compound are separated by "
            "commas, a field\nof an enumeration is given by its name or number")
        ->option_text("NODE.ATTR=VALUE")
        ->allow_extra_args(false);
    line.add_flag("--no-plugin", options.noPlugin, "Do not load the plug-in");
    addLogOptions(line, options.log);
}

void addLogOptions(CLI::App& line, LogOptions& options) {
    line.add_option("--log-json", options.file, "Write messages and times into FILE, a JSON object a line")
        ->option_text("FILE");
    CLI::Option* verbose = line.add_flag("--verbose", options.verbose, "Tell how long each stage takes");
    line.add_flag("--quiet", options.quiet, "Tell of warnings and errors alone")->excludes(verbose);
}

void addTimeOptions(CLI::App& line, TimeOptions& options, const std::string& verb) {
    CLI::Option* time =
        addValue(line, "--time", "TIME",
                 "Time to " + verb + ", in the scene's time unit (default: the\nscene's own current time)",
                 [&options](const std::string& text) {
                     double time = 0;
                     if (!readNumbers(text, ',', {&time, 1})) throw Failure("'" + text + "' is no finite number");
                     options.time = time;
                 });
    CLI::Option* frames = addValue(
        line, "--frames", "A-B[xN]",
        "Times A to B, every Nth, each into a file of its own: the # in\nits name are the digits of the number",
        [&options](const std::string& text) { options.frames = readFrames(text); });
    frames->excludes(time);
    line.add_flag("--continue", options.resume, "With --frames: leave out those whose files are there and whole")
        ->needs(frames);
}

void addReportOptions(CLI::App& line, ReportOptions& options) {
    line.add_flag("--keep-going", options.keepGoing, "Write in spite of errors; the exit status is 1 all the same");
    line.add_flag("--strict", options.strict, "Take warnings for errors");
}

CLI::Option* addValue(CLI::App& line, const std::string& name, const std::string& shownAs,
                      const std::string& description, std::function<void(const std::string& text)> take) {
    return line
        .add_option_function<std::string>(
            name,
            [name, take = std::move(take)](const std::string& text) {
                try {
                    take(text);
                } catch (const Failure& e) {
                    throw CLI::ValidationError(name, e.what());
                }
            },
            description)
        ->option_text(shownAs);
}

std::vector<Shot> requiredShots(const TimeOptions& options, const std::string& target) {
    try {
        return shotsOf(options, target);
    } catch (const Failure& e) {
        throw CLI::ValidationError("--frames", e.what());
    }
}

std::string helpFoot(const HelpFoot& foot) {
    std::string text;
    if (!foot.examples.empty()) text += "Examples:\n" + foot.examples + "\n";
    text += "Exit status:\n" + foot.exitStatuses + "  2  wrong usage; nothing was done\n";
    if (foot.environment) text += environmentText;
    text.pop_back(); // a line end follows
    return text;
}

int showHelp(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return kWorked;
    host::showError("Cannot write to the standard output.");
    return kFailed;
}

std::string nearest(const std::string& written, std::span<const std::string> known) {
    std::string best;
    std::size_t least = std::max<std::size_t>(1, written.size() / 3) + 1;
    for (const std::string& word : known) {
        const std::size_t distance = editDistance(written, word);
        if (distance >= least) continue;
        least = distance;
        best = word;
    }
    return best;
}

bool readNumbers(const std::string& text, char separator, std::span<double> numbers) {
    std::string_view rest = text;
    const auto skip = [&](char c) {
        const bool there = rest.starts_with(c);
        if (there) rest.remove_prefix(1);
        return there;
    };
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i > 0 && !skip(separator)) return false;
        skip('+');
        const auto number = host::takeDouble(rest);
        if (!number || !std::isfinite(*number)) return false;
        numbers[i] = *number;
    }
    return rest.empty();
}

} // namespace orvosky
