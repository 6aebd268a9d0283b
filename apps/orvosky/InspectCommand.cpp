#include "Session.h"
#include "inspect/InspectionText.h"
#include "inspect/NamedFiles.h"

#include "base/Messages.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>

namespace orvosky {
namespace {

std::string listed(const inspect::Inspection& found) {
    const inspect::Problems& problems = found.problems;
    std::string text = fmt::format("{} does not fit in {} {}:", inspect::printable(found.file), problems.count(),
                                   problems.count() == 1 ? "place" : "places");
    std::size_t number = 0;
    for (const std::string& problem : problems.texts()) text += fmt::format("\n{:>4}. {}", ++number, problem);
    if (number < problems.count()) text += fmt::format("\n      and {} more", problems.count() - number);
    return text;
}

} // namespace

int inspectCommand(const InspectOptions& options) {
    return reported([&] {
        std::signal(SIGPIPE, SIG_DFL); // a reader that has seen enough is no failure to speak of
        inspect::Inspection found = inspect::inspectFile(options.file);
        inspect::checkNamedFiles(found, options.project);
        const std::string text = options.json ? inspect::asJson(found) : inspect::asText(found);
        if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
            throw Failure("Cannot write to the standard output.");
        for (const std::string& warning : found.warnings) host::showWarning(warning);
        if (found.problems.count() > 0) throw Failure(listed(found));
        if (options.strict && !found.warnings.empty())
            throw Failure(inspect::printable(options.file) + ": " + inspect::counted(found.warnings.size(), "warning") +
                          " (see above).");
    });
}

} // namespace orvosky
