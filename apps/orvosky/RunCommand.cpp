#include "Prompt.h"
#include "Session.h"

#include "commands/Host.h"

#include <unistd.h>

#include <iostream>
#include <iterator>
#include <optional>

namespace orvosky {
namespace {

void runInput(Session& session, const std::vector<std::string>& arguments) {
    if (isatty(STDIN_FILENO)) return prompt();
    const std::string text(std::istreambuf_iterator<char>(std::cin), {});
    if (std::cin.bad()) throw Failure("Cannot read the standard input.");
    session.runText(text, arguments, "standard input");
}

} // namespace

int runCommand(const CommonOptions& common, const RunOptions& options) {
    std::optional<int> exitCode;
    const int status = reported([&] {
        Session session(common);
        session.applySettingsToOpenedScenes();
        try {
            if (!options.text.empty())
                session.runText(options.text, options.arguments);
            else if (options.script == "-")
                runInput(session, options.arguments);
            else
                session.runScript(options.script, options.arguments);
        } catch (const Failure&) {
            exitCode = host::Host::instance().interpreter().exitCode();
            if (!exitCode) throw;
        }
        if (!exitCode) exitCode = host::Host::instance().interpreter().exitCode();
        if (!exitCode) session.requireSettingsApplied();
    });
    return exitCode.value_or(status);
}

} // namespace orvosky
