#include "Session.h"
#include "Targets.h"

#include "Host.h"
#include "base/Messages.h"
#include "scene/Scene.h"
#include "scene/Units.h"
#include "viewport/CameraNode.h"
#include "viewport/Viewport.h"

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
    return viewport::createCamera(host::Host::instance().scene(), options.camera + "View", frame, optics);
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
        session.openScene(options.scene);
        auto& scene = host::Host::instance().scene();
        if (options.timeGiven) scene.setTime(options.time * host::timeUnit().ticks);
        view->setCamera(cameraFor(options));
        if (!options.helpers) view->setObjectDisplay(view->objectDisplay() & ~unsigned(M3dView::kDisplayLocators));
        session.bringUpToDate();
        if (!view->render(&error)) throw Failure("Cannot render " + options.picture + ": " + error);
        if (!view->picture().write(options.picture, &error)) throw Failure(error);
        host::showInfo("Rendered " + options.picture + " (" + std::to_string(options.width) + " x " +
                       std::to_string(options.height) + ", camera " + options.camera + ").");
    });
}

} // namespace orvosky
