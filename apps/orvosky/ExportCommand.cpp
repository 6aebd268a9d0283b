#include "Session.h"
#include "Targets.h"

#include "Host.h"
#include "base/Messages.h"

namespace orvosky {
namespace {

/// Makes messages name the target where the export names the file it writes to. Information that does so is held back:
/// it is true only when that file is in its place.
class NamesInMessages {
public:
    NamesInMessages(std::string staged, std::string target) {
        auto& messages = host::Messages::instance();
        previous_ = messages.setSink({});
        messages.setSink([this, staged = std::move(staged), target = std::move(target)](host::Severity severity,
                                                                                        std::string_view text) {
            std::string named(text);
            for (auto at = named.find(staged); at != std::string::npos; at = named.find(staged, at + target.size()))
                named.replace(at, staged.size(), target);
            if (severity == host::Severity::Info && named != text)
                held_.push_back(std::move(named));
            else
                pass(severity, named);
        });
    }
    ~NamesInMessages() { host::Messages::instance().setSink(previous_); }
    NamesInMessages(const NamesInMessages&) = delete;
    NamesInMessages& operator=(const NamesInMessages&) = delete;

    void sendHeld() {
        for (const std::string& text : held_) pass(host::Severity::Info, text);
        held_.clear();
    }

private:
    void pass(host::Severity severity, std::string_view text) {
        if (previous_)
            previous_(severity, text);
        else
            host::sendToStandardStreams(severity, text);
    }

    host::Messages::Sink previous_;
    std::vector<std::string> held_;
};

} // namespace

int exportCommand(const CommonOptions& common, const ExportOptions& options) {
    return reported([&] {
        requireExportTarget(options.target);
        Session session(common, options.scene);
        session.openScene(options.scene);
        session.bringUpToDate();
        if (!host::Host::instance().interpreter().hasCommand("orvosky_SaveSkySystemToXMLCommand"))
            throw Failure("Cannot export " + options.target + ": the plug-in is not loaded.");
        try {
            // Readers start from the target, so what it refers to has to be there first.
            host::base::FileReplacement files({cloudDataOf(options.target), options.target});
            const std::string staged = files.staged(1).string();
            NamesInMessages names(staged, options.target);
            session.call("orvosky_SaveSkySystemToXMLCommand", {staged});
            files.commit();
            names.sendHeld();
        } catch (const Failure&) {
            throw Failure("Nothing was exported to " + options.target + ".");
        } catch (const host::base::ReplacementError& e) {
            throw exportFailure(options.target, e);
        }
    });
}

} // namespace orvosky
