#include "Usage.h"

#include "base/Messages.h"

#include <CLI/CLI.hpp>

#include <sys/prctl.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace orvosky;

/// Whether an option's value is the next word.
bool valueFollows(const std::string& word) {
    return word == "-e" || word == "--project" || word == "--set" || word == "--log-json";
}

/// Where the subcommand stands: the first word that is neither an option nor an option's value.
std::size_t subcommandAt(const std::vector<std::string>& words) {
    std::size_t at = 0;
    while (at < words.size() && words[at].starts_with('-')) at += valueFollows(words[at]) ? 2 : 1;
    return std::min(at, words.size());
}

/// Takes the script's own words off the command line: everything behind the script, or, with -e, from the first word
/// that is no option on, belongs to the script as it stands.
std::vector<std::string> takeScriptWords(std::vector<std::string>& words) {
    std::size_t at = subcommandAt(words);
    if (at == words.size() || words[at] != "run") return {};
    bool text = false;
    for (++at; at < words.size(); ++at) {
        const std::string& w = words[at];
        text = text || w == "-e";
        if (valueFollows(w))
            ++at;
        else if (!w.starts_with('-') || w == "-")
            break;
    }
    if (!text) ++at; // the script itself
    if (at >= words.size()) return {};
    std::vector<std::string> own(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
    words.resize(at);
    return own;
}

int usageError(const std::string& problem, const std::string& command) {
    host::showError(problem);
    std::fprintf(stderr, "Run \"%s --help\" for more information.\n", command.c_str());
    return kWrongUsage;
}

std::string suggestion(const std::string& word, const std::vector<std::string>& known) {
    const std::string meant = nearest(word, known);
    return meant.empty() ? "" : " (did you mean " + meant + "?)";
}

/// The words that nothing took, in the order of the line; empty when all were taken.
std::string unexpectedWords(const CLI::App& program, const std::vector<std::string>& words) {
    std::map<std::string, int> left;
    for (const std::string& word : program.remaining(true)) ++left[word];
    std::vector<std::string> options;
    for (const CLI::App* line : program.get_subcommands())
        for (const CLI::Option* option : line->get_options())
            for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
    std::string text;
    for (const std::string& word : words) {
        if (const auto it = left.find(word); it == left.end() || it->second-- < 1) continue;
        text += (text.empty() ? "" : ", ") + word;
        if (word.starts_with("--")) text += suggestion(word.substr(0, word.find('=')), options);
    }
    return text.empty() ? text : "Unexpected on the command line: " + text;
}

/// Keeps the help from listing which flags exclude which: an error says so when it matters.
void hideRelations(CLI::App& line) {
    for (CLI::Option* option : line.get_options())
        if (option->get_items_expected_max() == 0 && option->get_option_text().empty()) option->option_text(" ");
}

/// Does a subcommand's work, with a log of it.
int logged(const LogOptions& options, const std::function<int()>& work) {
    try {
        RunLog log(options);
        return log.finish(work());
    } catch (const Failure& e) {
        host::showError(e.what());
        return kFailed;
    }
}

constexpr const char* description = "Runs, exports, renders and inspects the skies of Maya scenes, without Maya.";

} // namespace

int main(int argc, char** argv) {
    // A file that grows beyond a limit is a failed write, which is reported, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);

    if (std::getenv("ORVOSKY_ENDS_WITH_PARENT")) prctl(PR_SET_PDEATHSIG, SIGTERM); // set by batch

    std::vector<std::string> words(argv + 1, argv + argc);
    std::vector<std::string> scriptWords = takeScriptWords(words);

    CLI::App program(description, "orvosky");
    program.set_help_flag("-h,--help", "Show this help");
    program.set_version_flag("-v,--version", "orvosky " ORVOSKY_VERSION, "Show the version");
    program.require_subcommand(1);
    program.get_formatter()->label("Positionals", "Arguments");
    program.get_formatter()->column_width(28);
    CommonOptions common;
    addCommonOptions(program, common);
    program.footer(helpFoot({.examples = "  orvosky render examples/project/scenes/dusk.ma dusk.png\n"
                                         "  orvosky help render\n",
                             .exitStatuses = "  0  everything asked for is there and right\n"
                                             "  1  it is not: warnings and errors are on the standard error\n"}));
    const Subcommand subcommands[] = {addRun(program, common, std::move(scriptWords)),
                                      addExport(program, common),
                                      addRender(program, common),
                                      addBatch(program, common),
                                      addInspect(program, common),
                                      addEdit(program, common),
                                      addCommands(program, common),
                                      addNodes(program, common),
                                      addNew(program, common),
                                      addHelp(program)};
    std::vector<std::string> names;
    for (const Subcommand& subcommand : subcommands) {
        names.push_back(subcommand.line->get_name());
        hideRelations(*subcommand.line);
    }
    hideRelations(program);

    std::string command = "orvosky";
    if (std::size_t at = subcommandAt(words); at < words.size()) {
        if (words[at] == "help" && at + 1 < words.size() && !words[at + 1].starts_with('-')) ++at;
        if (std::ranges::count(names, words[at]) == 0)
            return usageError("There is no subcommand " + words[at] + suggestion(words[at], names) + ".", command);
        command += " " + words[at];
    }
    try {
        program.parse(std::vector<std::string>(words.rbegin(), words.rend())); // as CLI11 takes them
        for (const Subcommand& subcommand : subcommands)
            if (subcommand.line->parsed()) return logged(common.log, subcommand.work);
    } catch (const CLI::CallForHelp&) {
        return showHelp(program.help());
    } catch (const CLI::CallForVersion& version) {
        return showHelp(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        const std::string unexpected = unexpectedWords(program, words);
        return usageError(unexpected.empty() ? error.what() : unexpected + ".", command);
    }
    return kWrongUsage;
}
