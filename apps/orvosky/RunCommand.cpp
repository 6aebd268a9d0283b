#include "Session.h"

#include "commands/Host.h"

#include <optional>

namespace orvosky {

int runCommand(const CommonOptions& common, const RunOptions& options) {
    std::optional<int> exitCode;
    const int status = reported([&] {
        Session session(common);
        session.applySettingsToOpenedScenes();
        try {
            if (!options.text.empty())
                session.runText(options.text, options.arguments);
            else
                session.runScript(options.script, options.arguments);
        } catch (const Failure&) {
            exitCode = host::Host::instance().interpreter().exitCode();
            if (!exitCode) throw;
        }
        session.requireSettingsApplied();
    });
    return exitCode.value_or(status);
}

} // namespace orvosky
