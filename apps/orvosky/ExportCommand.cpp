#include "ReplacedFiles.h"
#include "Session.h"

#include "Host.h"
#include "base/Messages.h"

namespace orvosky {
namespace {

/// Makes messages name the target where the export names the file it writes to.
class NamesInMessages {
public:
    NamesInMessages(std::string staged, std::string target) {
        auto& messages = host::Messages::instance();
        previous_ = messages.setSink({});
        messages.setSink([staged = std::move(staged), target = std::move(target),
                          to = previous_](host::Severity severity, std::string_view text) {
            std::string named(text);
            for (auto at = named.find(staged); at != std::string::npos; at = named.find(staged, at + target.size()))
                named.replace(at, staged.size(), target);
            if (to)
                to(severity, named);
            else
                host::sendToStandardStreams(severity, named);
        });
    }
    ~NamesInMessages() { host::Messages::instance().setSink(previous_); }
    NamesInMessages(const NamesInMessages&) = delete;
    NamesInMessages& operator=(const NamesInMessages&) = delete;

private:
    host::Messages::Sink previous_;
};

} // namespace

int exportCommand(const CommonOptions& common, const ExportOptions& options) {
    return reported([&] {
        Session session(common);
        session.openScene(options.scene);
        session.bringUpToDate();
        ReplacedFiles files(options.target);
        const std::string staged = files.stagedTarget().string();
        const NamesInMessages names(staged, options.target);
        if (!host::Host::instance().interpreter().hasCommand("orvosky_SaveSkySystemToXMLCommand"))
            throw Failure("Cannot export " + options.target + ": the plug-in is not loaded.");
        try {
            session.call("orvosky_SaveSkySystemToXMLCommand", {staged});
        } catch (const Failure&) {
            throw Failure("Nothing was exported to " + options.target + ".");
        }
        files.moveIntoPlace();
    });
}

} // namespace orvosky
