#include "Session.h"

namespace orvosky {

int runCommand(const CommonOptions& common, const RunOptions& options) {
    return reported([&] {
        Session session(common);
        session.applySettingsToOpenedScenes();
        if (!options.text.empty())
            session.runText(options.text, options.arguments);
        else
            session.runScript(options.script, options.arguments);
        session.requireSettingsApplied();
    });
}

} // namespace orvosky
