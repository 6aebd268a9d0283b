#include "ParticleCloudShadingParamsCommands.h"

#include "Common/Messages.h"
#include "ParticleCloudShadingParamsLocator.h"

#include <maya/MArgList.h>
#include <optional>
#include <string>

namespace orvo {
namespace {

/// An argument as text; nothing when it is none.
std::optional<std::string> textArgument(const MArgList& args, unsigned index) {
    MStatus status;
    const MString text = args.asString(index, &status);
    if (status.error()) return std::nullopt;
    return text.asUTF8();
}

} // namespace

MStatus ParticleCloudShadingParams_ExportDataCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloudShadingParams_ExportDataCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 2) {
            reportError("ParticleCloudShadingParams_ExportDataCommand incorrect syntax given! :(  Usage: "
                        "\"ParticleCloudShadingParams_ExportDataCommand filePath paramsLocatorName\"   bailing.");
            return MStatus::kFailure;
        }
        const auto path = textArgument(args, 0);
        if (!path || path->empty()) {
            reportError("ParticleCloudShadingParams_ExportDataCommand   Could not get filePath.");
            return MStatus::kFailure;
        }
        const auto name = textArgument(args, 1);
        if (!name || name->size() == 1) {
            reportError("ParticleCloudShadingParams_ExportDataCommand   Could not get nodeName.");
            return MStatus::kFailure;
        }
        auto* node = ParticleCloudShadingParamsLocator::findInstance(name->c_str());
        if (!node) {
            reportError("ParticleCloudShadingParams_ExportDataCommand   Could not get shading params node pointer.");
            return MStatus::kFailure;
        }
        const bool saved = node->saveParamsFile(*path);
        reportInfo(saved ? "ShadingParams_Export: Exporting shading params [%s] to file [%s] success\n"
                         : "ShadingParams_Export: Exporting shading params [%s] to file [%s] FAILED\n",
                   *name, *path);
        return saved ? MStatus::kSuccess : MStatus::kFailure;
    });
}

MStatus ParticleCloudShadingParams_ImportDataCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloudShadingParams_ImportDataCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() != 2 && args.length() != 3) {
            reportError("ParticleCloudShadingParams_ImportDataCommand incorrect syntax given! :(  Usage: "
                        "\"ParticleCloudShadingParams_ImportDataCommand filePath paramsLocatorName <quiet>\"   "
                        "bailing.");
            return MStatus::kFailure;
        }
        const auto path = textArgument(args, 0);
        if (!path || path->empty()) {
            reportInfo("ParticleCloudShadingParams_ImportDataCommand   Could not get filePath.");
            return MStatus::kFailure;
        }
        const auto name = textArgument(args, 1);
        if (!name || name->empty()) {
            reportInfo("ParticleCloudShadingParams_ImportDataCommand   Could not get nodeName.");
            return MStatus::kFailure;
        }
        auto* node = ParticleCloudShadingParamsLocator::findInstance(name->c_str());
        if (!node) {
            reportInfo("ParticleCloudShadingParams_ImportDataCommand   Could not get shading params node pointer.");
            return MStatus::kFailure;
        }
        // The index is one past the last argument, and is kept so: scripts rely on hearing of failures.
        bool quiet = false;
        if (args.length() == 3) {
            MStatus status;
            const bool wanted = args.asBool(3, &status);
            quiet = !status.error() && wanted;
        }
        std::string reason;
        const bool loaded = node->loadParamsFile(*path, &reason);
        if (loaded) {
            reportInfo("ShadingParams_Import: Importing shading params [%s] from file [%s] success\n", *name, *path);
        } else if (!quiet) {
            reportWarning("%s", reason);
            reportInfo("ShadingParams_Import: Importing shading params [%s] from file [%s] FAILED\n", *name, *path);
        }
        return loaded ? MStatus::kSuccess : MStatus::kFailure;
    });
}

} // namespace orvo
