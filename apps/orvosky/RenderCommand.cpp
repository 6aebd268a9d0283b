#include "Session.h"
#include "Targets.h"

#include "base/Messages.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "scene/Scene.h"
#include "viewport/CameraNode.h"
#include "viewport/Viewport.h"

#include <algorithm>
#include <numbers>

namespace orvosky {
namespace {

/// The camera shape that a name means: the shape itself, or the one below a transform.
host::scene::DagNode& findCamera(const std::string& name) {
    bool ambiguous = false;
    host::scene::Node* node = host::Host::instance().scene().findNode(name, &ambiguous);
    if (ambiguous) throw Failure("There is more than one node named " + name + ".");
    host::scene::DagNode* dag = node ? node->dag() : nullptr;
    if (dag && dag->type.isA("camera")) return *dag;
    if (dag)
        for (host::scene::DagNode* child : dag->children)
            if (child->type.isA("camera")) return *child;
    throw Failure("There is no camera named " + name + ".");
}

/// The camera to look through: the one that was named, or one in its place with the direction and angle that were
/// given.
host::scene::DagNode& cameraFor(const RenderOptions& options) {
    host::scene::DagNode& named = findCamera(options.camera);
    if (!options.look && !options.fov) return named;
    namespace viewport = host::viewport;
    constexpr double degree = std::numbers::pi / 180;
    viewport::CameraFrame frame = viewport::cameraFrame(named);
    if (options.look)
        frame = viewport::cameraFrame(frame.eye, (*options.look)[0] * degree, (*options.look)[1] * degree);
    viewport::CameraOptics optics = viewport::cameraOptics(named);
    if (options.fov) {
        if (optics.orthographic)
            throw Failure("The camera " + options.camera + " is orthographic: it has no angle of view.");
        // A camera without a view volume stays as it is: drawing says what is wrong with it.
        optics =
            viewport::withHorizontalView(optics, *options.fov * degree, options.width, options.height).value_or(optics);
    }
    return viewport::createCamera(host::Host::instance().scene(), "pictureCamera", frame, optics);
}

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

} // namespace

int renderCommand(const CommonOptions& common, const RenderOptions& options) {
    return reported([&] {
        requirePictureTarget(options.picture);
        // Without GL there is nothing to wait for.
        std::string error;
        auto view = host::viewport::Viewport::create(options.width, options.height, &error);
        if (!view) throw Failure("Cannot render " + options.picture + ": " + error);
        Session session(common, options.scene);
        const ReportWatch watch(options.reports);
        session.openScene(options.scene);
        auto& scene = host::Host::instance().scene();
        if (options.timeGiven) scene.setTime(options.time * host::timeUnit().ticks);
        view->setCamera(cameraFor(options));
        if (!options.helpers) view->setObjectDisplay(view->objectDisplay() & ~host::viewport::Viewport::showLocators);
        watch.tellUnlessTold(session.bringUpToDate());
        if (scene.findType("orvosky_SkyRenderer"))
            if (const std::string why = whatHidesTheSky(); !why.empty())
                host::showWarning("The picture shows no sky of a sky renderer: " + why + ".");
        if (!view->render(&error)) throw Failure("Cannot render " + options.picture + ": " + error);
        watch.requireNoErrors("Nothing was rendered to " + options.picture);
        host::viewport::Picture picture = view->picture();
        picture.origin = {.software = "orvosky " ORVOSKY_VERSION,
                          .scene = std::filesystem::path(options.scene).filename().string()};
        if (!picture.write(options.picture, &error)) throw Failure(error);
        host::showInfo("Rendered " + options.picture + " (" + std::to_string(options.width) + " x " +
                       std::to_string(options.height) + ", camera " + options.camera + ").");
        watch.finish(options.picture + " was written");
    });
}

} // namespace orvosky
