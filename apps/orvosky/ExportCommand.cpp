#include "Progress.h"
#include "Session.h"
#include "Targets.h"
#include "inspect/Inspection.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"

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

/// Why there is no one sky to export; empty when there is.
std::string missingSky() {
    std::size_t roots = 0;
    for (const auto& [serial, node] : host::Host::instance().scene().nodes()) roots += node->name == "OrvoSkyData";
    if (roots == 1) return {};
    return roots == 0 ? "the scene has no node named OrvoSkyData."
                      : "the scene has " + std::to_string(roots) + " nodes named OrvoSkyData; there has to be one.";
}

/// Whether an export is there, with its data, and fits together.
bool isWholeExport(const std::string& target) {
    try {
        return inspect::inspectFile(target).problems.count() == 0;
    } catch (const std::exception&) {
        return false;
    }
}

/// Exports the scene as it is at its time.
void exportTo(const std::string& target, Session& session, const ReportWatch& watch) {
    const std::string nothing = "Nothing was exported to " + target;
    const int before = watch.errors();
    watch.tellUnlessTold(session.bringUpToDate(), before);
    watch.requireNoErrors(nothing);
    if (!host::Host::instance().interpreter().hasCommand("orvosky_SaveSkySystemToXMLCommand"))
        throw Failure("Cannot export " + target + ": the plug-in is not loaded.");
    if (const std::string why = missingSky(); !why.empty()) throw Failure(nothing + ": " + why);
    try {
        // Readers start from the target, so what it refers to has to be there first.
        host::base::FileReplacement files({cloudDataOf(target), target});
        const std::string staged = files.staged(1).string();
        NamesInMessages names(staged, target);
        const int updated = watch.errors();
        const Stage stage("export " + target);
        try {
            session.call("orvosky_SaveSkySystemToXMLCommand", {staged});
        } catch (const Failure&) {
            // The command says what is wrong, and that it failed; of a sky without nodes it says the latter alone.
            const bool unexplained = watch.errors() - updated < 2;
            throw Failure(nothing + (unexplained ? ": there are no sky nodes under OrvoSkyData." : "."));
        }
        watch.requireNoErrors(nothing);
        files.commit();
        names.sendHeld();
    } catch (const host::base::ReplacementError& e) {
        throw exportFailure(target, e);
    }
}

} // namespace

int exportCommand(const CommonOptions& common, const ExportOptions& options, const std::vector<Shot>& shots) {
    return reported([&] {
        for (const Shot& shot : shots) requireExportTarget(shot.file);
        Session session(common, options.scene);
        Progress progress(shots.size());
        const ReportWatch watch(options.reports);
        session.openScene(options.scene);
        for (const Shot& shot : shots) {
            if (options.when.resume && isWholeExport(shot.file)) {
                progress.leftOut(shot.file + " is there");
                continue;
            }
            setTimeOf(shot);
            exportTo(shot.file, session, watch);
            if (shots.size() > 1) progress.done("Exported " + shot.file);
        }
        progress.finish("frames", "exported");
        watch.finish(shots.back().file + " was written");
    });
}

void exportOpenScene(Session& session, const ExportOptions& options) {
    requireExportTarget(options.target);
    const ReportWatch watch(options.reports);
    exportTo(options.target, session, watch);
    watch.finish(options.target + " was written");
}

} // namespace orvosky
