#include "Session.h"

#include "Host.h"
#include "scene/Messages.h"
#include "scene/Scene.h"
#include "scene/Units.h"
#include "viewport/Viewport.h"

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

} // namespace

int renderCommand(const CommonOptions& common, const RenderOptions& options) {
    return reported([&] {
        // Without GL there is nothing to wait for.
        std::string error;
        auto view = host::viewport::Viewport::create(options.width, options.height, &error);
        if (!view) throw Failure("Cannot render " + options.picture + ": " + error);
        Session session(common);
        session.openScene(options.scene);
        auto& scene = host::Host::instance().scene();
        if (options.timeGiven) scene.setTime(options.time * host::timeUnit().ticks);
        view->setCamera(findCamera(options.camera));
        session.bringUpToDate();
        if (!view->render(&error)) throw Failure("Cannot render " + options.picture + ": " + error);
        if (!view->picture().write(options.picture, &error)) throw Failure(error);
        host::showInfo("Rendered " + options.picture + " (" + std::to_string(options.width) + " x " +
                       std::to_string(options.height) + ", camera " + options.camera + ").");
    });
}

} // namespace orvosky
