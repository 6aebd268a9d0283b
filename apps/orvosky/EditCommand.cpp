#include "Session.h"
#include "Targets.h"

#include "../window/WindowModule.h"
#include "base/Modules.h"

#include <optional>

namespace orvosky {

int editCommand(const CommonOptions& common, const EditOptions& options) {
    int status = kWorked;
    const int failed = reported([&] {
        window::WindowFunction open = nullptr;
        if (std::error_code none; !std::filesystem::exists(host::hostFolder() / window::kWindowModule, none))
            throw Failure("This build has no window: Qt 6 was not there when it was made.");
        open = reinterpret_cast<window::WindowFunction>(
            host::moduleFunction("no window", window::kWindowModule, window::kWindowFunction));
        if (!options.scene.empty() && !std::filesystem::exists(options.scene))
            throw Failure(options.scene + ": there is no such file.");

        std::optional<Session> session;
        window::WindowStart start;
        start.scene = options.scene;
        start.toolRoot = toolRoot();
        start.version = ORVOSKY_VERSION;
        start.begin = [&] { session.emplace(common, options.scene); };
        start.end = [&] { session.reset(); };
        start.open = [&](const std::filesystem::path& scene) { session->openScene(scene); };
        start.bringUpToDate = [&] { return session->bringUpToDate(); };
        start.exportSky = [&](const std::filesystem::path& target, bool keepGoing) {
            exportOpenScene(*session, {.scene = {}, .target = target.string(), .reports = {.keepGoing = keepGoing}});
        };
        status = open(start);
    });
    return failed == kWorked ? status : failed;
}

} // namespace orvosky
