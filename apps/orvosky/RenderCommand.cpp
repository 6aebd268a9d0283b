#include "PictureMaker.h"
#include "Progress.h"
#include "Session.h"
#include "Targets.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <algorithm>

namespace orvosky {
namespace {

bool isShown(host::scene::DagNode& node) {
    for (host::scene::DagNode* at = &node; at; at = at->parent)
        if (!at->visible()) return false;
    return true;
}

/// Whether the artist left a node switched on; nodes without a switch do nothing that is seen.
bool isSwitchedOn(host::scene::Node& node) {
    for (const char* name : {"Enable", "enable"})
        if (host::scene::Cell* cell = host::Host::instance().scene().tryPlug(node, name)) return cell->number() != 0;
    return false;
}

bool showsAnything(host::scene::DagNode& root) {
    if (!root.visible() || root.templated()) return false;
    if (!root.type.plugin.empty() && isSwitchedOn(root)) return true;
    return std::ranges::any_of(root.children, [](host::scene::DagNode* child) { return showsAnything(*child); });
}

/// Why the picture lacks the sky; empty when a sky renderer has something to draw.
std::string whatHidesTheSky() {
    auto& scene = host::Host::instance().scene();
    int renderers = 0;
    bool works = false;
    for (const auto& [serial, node] : scene.nodes()) {
        if (!node->type.isA("orvosky_SkyRenderer")) continue;
        ++renderers;
        works = works || (isShown(*node->dag()) && isSwitchedOn(*node));
    }
    if (renderers == 0) return "the scene has no orvosky_SkyRenderer";
    if (!works) return "no orvosky_SkyRenderer of the scene is switched on and visible";
    host::scene::Node* root = scene.findNode("OrvoSkyData");
    if (!root || !root->dag()) return "the scene has no node named OrvoSkyData";
    return showsAnything(*root->dag()) ? "" : "nothing under OrvoSkyData is switched on and visible";
}

std::vector<PictureFile> drawn(PictureMaker& maker, const std::string& target) {
    const Stage stage("draw " + target);
    return maker.make(target);
}

} // namespace

int renderCommand(const CommonOptions& common, const RenderOptions& options, const std::vector<Shot>& shots) {
    return reported([&] {
        for (const Shot& shot : shots)
            for (const std::string& file : PictureMaker::filesOf(options, shot.file))
                requirePictureTarget(file, options.alpha);
        PictureMaker maker(options); // without GL there is nothing to wait for
        Session session(common, options.scene);
        Progress progress(shots.size());
        const ReportWatch watch(options.reports);
        session.openScene(options.scene);
        maker.openCamera();
        PictureWriter writer(
            [&](const std::string& target) { progress.done("Rendered " + target + " (" + maker.described() + ")"); });
        for (const Shot& shot : shots) {
            if (options.when.resume && maker.isWhole(shot.file)) {
                writer.finish();
                progress.leftOut(shot.file + " is there");
                continue;
            }
            try {
                setTimeOf(shot);
                const int before = watch.errors();
                watch.tellUnlessTold(session.bringUpToDate(), before);
                if (host::Host::instance().scene().findType("orvosky_SkyRenderer"))
                    if (const std::string why = whatHidesTheSky(); !why.empty())
                        host::showWarning("The picture shows no sky of a sky renderer: " + why + ".");
                auto files = drawn(maker, shot.file);
                watch.requireNoErrors("Nothing was rendered to " + shot.file);
                writer.write(shot.file, std::move(files));
            } catch (...) {
                writer.finish(); // what came before is whole
                throw;
            }
        }
        writer.finish();
        progress.finish("frames", "rendered");
        watch.finish(shots.back().file + " was written");
    });
}

} // namespace orvosky
