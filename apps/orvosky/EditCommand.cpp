#include "EditCommand.h"
#include "inspect/Inspection.h"

#include "base/Modules.h"

#include <map>

namespace orvosky {

window::WindowStart windowStart(const CommonOptions& common, const EditOptions& options,
                                std::optional<Session>& session) {
    window::WindowStart start;
    start.scene = options.scene;
    start.toolRoot = toolRoot();
    start.version = ORVOSKY_VERSION;
    start.begin = [&] { session.emplace(common, options.scene); };
    start.end = [&] { session.reset(); };
    start.open = [&](const std::filesystem::path& scene) { session->openScene(scene); };
    start.bringUpToDate = [&] { return session->bringUpToDate(); };
    start.exportSky = [&](const std::filesystem::path& target) {
        exportOpenScene(*session, {.scene = {}, .target = target.string(), .reports = {}});
    };
    start.inspect = [](const std::filesystem::path& file) {
        const inspect::Inspection found = inspect::inspectFile(file.string());
        window::WindowStart::Findings findings;
        std::map<std::string, std::size_t> counts;
        for (const auto& element : found.elements) ++counts[element.name];
        for (const auto& [name, count] : counts)
            findings.holds +=
                (findings.holds.empty() ? "" : ", ") + (count > 1 ? std::to_string(count) + " " : "") + name;
        findings.warnings = found.warnings;
        findings.problems = found.problems.texts();
        return findings;
    };
    return start;
}

int editCommand(const CommonOptions& common, const EditOptions& options) {
    int status = kWorked;
    std::optional<Stage> starting("first frame");
    const int failed = reported([&] {
        if (std::error_code none; !std::filesystem::exists(host::hostFolder() / window::kWindowModule, none))
            throw Failure("This build has no window: Qt 6 was not there when it was made.");
        const auto open = reinterpret_cast<window::WindowFunction>(
            host::moduleFunction("no window", window::kWindowModule, window::kWindowFunction));
        if (!options.scene.empty() && !std::filesystem::exists(options.scene))
            throw Failure(options.scene + ": there is no such file.");
        std::optional<Session> session;
        window::WindowStart start = windowStart(common, options, session);
        start.shown = [&] { starting.reset(); };
        status = open(start);
    });
    return failed == kWorked ? status : failed;
}

} // namespace orvosky
