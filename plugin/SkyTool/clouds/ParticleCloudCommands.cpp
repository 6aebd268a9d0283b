#include "ParticleCloudCommands.h"

#include "CloudLibrary.h"
#include "Common/CommandArguments.h"
#include "ParticleCloud.h"
#include "ParticleCloudShadingParamsLocator.h"

#include <algorithm>
#include <maya/MStringArray.h>
#include <optional>
#include <string>
#include <vector>

namespace orvo {
namespace {

/// The texts from an argument on: plain words, or arrays of them. Nothing when one cannot be read as a text.
std::optional<std::vector<std::string>> namesFrom(const MArgList& args, unsigned first) {
    std::vector<std::string> names;
    for (unsigned i = first; i < args.length(); ++i) {
        MString name;
        if (!args.get(i, name).error()) {
            names.emplace_back(name.asUTF8());
            continue;
        }
        MStringArray several;
        unsigned at = i;
        if (args.get(at, several).error()) return std::nullopt;
        for (unsigned n = 0; n < several.length(); ++n) names.emplace_back(several[n].asUTF8());
    }
    return names;
}

/// The cloud of a name, which may be that of its transform; null when there is none.
ParticleCloud* cloudOf(const std::string& name) {
    if (ParticleCloud* cloud = ParticleCloud::findInstance(name.c_str())) return cloud;
    MDagPath path;
    if (dagPathByName(name.c_str(), path).error() || !path.hasFn(MFn::kTransform) || path.extendToShape().error())
        return nullptr;
    return ParticleCloud::findInstance(path.fullPathName());
}

/// The clouds of all names; nothing when one of them is no cloud.
std::optional<std::vector<ParticleCloud*>> cloudsOf(const std::vector<std::string>& names) {
    std::vector<ParticleCloud*> clouds;
    for (const std::string& name : names) {
        ParticleCloud* cloud = cloudOf(name);
        if (!cloud) return std::nullopt;
        clouds.push_back(cloud);
    }
    return clouds;
}

/// Whether an argument is a flag, which these commands do not take.
bool hasFlags(const MArgList& args) {
    for (unsigned i = 0; i < args.length(); ++i) {
        MString text;
        if (!args.get(i, text).error() && text.length() > 1 && text.asUTF8()[0] == '-') return true;
    }
    return false;
}

} // namespace

MStatus ParticleCloud_RenderCloudCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloud_RenderCloudCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        try {
            if (hasFlags(args))
                return refused("ParticleCloud_RenderCloudCommand incorrect syntax given! :(  Usage: "
                               "\"ParticleCloud_RenderCloudCommand cloudInstanceNames[]\"   bailing.");
            const auto names = namesFrom(args, 0);
            if (!names)
                return refused("ParticleCloud_RenderCloudCommand   Could not get cloud names from argument list.");
            // The other command's name is what scripts know this message by.
            if (names->empty())
                return refused("BulkVegBillboard_DoDistributionCommand   No cloud names given in which to render! :(");
            const auto clouds = cloudsOf(*names);
            if (!clouds) return refused("ParticleCloud_RenderCloudCommand   Failed to find cloud instance objects! :(");
            for (ParticleCloud* cloud : *clouds) {
                cloud->refresh();
                reportInfo("ParticleCloud_RenderCloudCommand:  Cloud [%s]  produced [%d] sprites\n",
                           cloud->name().asUTF8(), cloud->numSprites());
            }
            return MStatus::kSuccess;
        } catch (const std::exception&) {
            return refused("ParticleCloud_RenderCloudCommand::doIt  Unknown Internal Error has occured! :(");
        } catch (...) {
            return refused("ParticleCloud_RenderCloudCommand::doIt   Unknown Internal Error has occured! :(");
        }
    });
}

MStatus ParticleCloud_RefreshTextureCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloud_RefreshTextureCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (hasFlags(args))
            return refused("ParticleCloud_RefreshTextureCommand incorrect syntax given! :(  Usage: "
                           "\"ParticleCloud_RefreshTextureCommand cloudInstanceNames[]\"   bailing.");
        const auto names = namesFrom(args, 0);
        if (!names)
            return refused("ParticleCloud_RefreshTextureCommand   Could not get cloud names from argument list.");
        if (names->empty())
            return refused("ParticleCloud_RefreshTextureCommand   No cloud names given in which to refresh! :(");
        if (!ParticleCloudShadingParamsLocator::firstLiveInstance())
            return refused("ParticleCloud_RefreshTextureCommand   could not find particle cloud shading params.");
        const auto clouds = cloudsOf(*names);
        if (!clouds) return refused("ParticleCloud_RefreshTextureCommand   Failed to find cloud instance objects! :(");
        for (ParticleCloud* cloud : *clouds) cloud->reloadTexture();
        return MStatus::kSuccess;
    });
}

MStatus ParticleCloud_ExportDataCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloud_ExportDataCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (args.length() == 0 || hasFlags(args))
            return refused("ParticleCloud_ExportDataCommand incorrect syntax given! :(  Usage: "
                           "\"ParticleCloud_ExportDataCommand xmlPath cloudInstanceNames[]\"   bailing.");
        MString pathText;
        if (args.get(0, pathText).error() || pathText.length() == 0)
            return refused("ParticleCloud_ExportDataCommand   Could not get filePath.");
        const std::string path = pathText.asUTF8();
        const auto names = namesFrom(args, 1);
        if (!names) return refused("ParticleCloud_ExportDataCommand   Could not get cloud names from argument list.");
        if (names->empty()) return refused("ParticleCloud_ExportDataCommand   No cloud names given! :(");
        const auto clouds = cloudsOf(*names);
        if (!clouds) return refused("ParticleCloud_ExportDataCommand   Failed to find cloud instance objects! :(");

        // Gathered before the file is opened: a cloud that cannot be had leaves no half-written element, and where
        // there is none the file is left alone.
        std::vector<std::unique_ptr<CloudShapeSet>> shapes;
        for (ParticleCloud* cloud : *clouds) shapes.push_back(cloud->GenerateSpriteData());
        bool written = false;
        const auto report = [&] {
            MStatus result = MStatus::kSuccess;
            for (std::size_t i = 0; i < clouds->size(); ++i) {
                const bool exported = written && shapes[i];
                reportInfo(exported ? "CloudExport: Exporting cloud [%s] to file [%s] success\n"
                                    : "CloudExport: Exporting cloud [%s] to file [%s] FAILED\n",
                           (*clouds)[i]->name().asUTF8(), path);
                if (!exported) result = MStatus::kFailure;
            }
            return result;
        };
        if (std::none_of(shapes.begin(), shapes.end(), [](const auto& set) { return set != nullptr; })) return report();
        OutputFile file(path, "wt", OutputFile::Earlier::Replaced);
        if (!file.isOpen())
            return refused("ParticleCloud_ExportDataCommand: Error.  could not open file [%s] for export.", path);
        writeCloudFileHeader(file, cloudLibraryType);
        if (auto* params = ParticleCloudShadingParamsLocator::firstLiveInstance())
            params->writeParamsElement(file, "\t");
        for (std::size_t i = 0; i < clouds->size(); ++i)
            if (shapes[i]) writeParticleCloudElement(file, "\t", {(*clouds)[i]->settings(), *shapes[i]});
        writeCloudFileFooter(file);
        written = file.close();
        return report();
    });
}

MStatus ParticleCloud_CountSpritesCommand::doIt(const MArgList& args) {
    return guarded("ParticleCloud_CountSpritesCommand", MStatus(MStatus::kFailure), [&]() -> MStatus {
        const auto names = hasFlags(args) ? std::nullopt : namesFrom(args, 0);
        const auto clouds = names ? cloudsOf(*names) : std::nullopt;
        if (!clouds)
            return refused("ParticleCloud_CountSpritesCommand incorrect syntax given! :(  Usage: "
                           "\"ParticleCloud_CountSpritesCommand cloudInstanceNames[]\"   bailing.");
        int sprites = 0;
        for (const ParticleCloud* cloud : *clouds) sprites += cloud->numSprites();
        setResult(sprites);
        return MStatus::kSuccess;
    });
}

} // namespace orvo
