#include "Progress.h"
#include "Session.h"
#include "Targets.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"
#include "viewport/CameraNode.h"
#include "viewport/Viewport.h"

#include <algorithm>
#include <functional>
#include <future>
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
class PictureCamera {
public:
    explicit PictureCamera(const RenderOptions& options) : options_(options), named_(findCamera(options.camera)) {}

    /// The camera as it is at the scene's time.
    host::scene::DagNode& now() {
        if (!options_.look && !options_.fov) return named_;
        namespace viewport = host::viewport;
        constexpr double degree = std::numbers::pi / 180;
        viewport::CameraFrame frame = viewport::cameraFrame(named_);
        if (options_.look)
            frame = viewport::cameraFrame(frame.eye, (*options_.look)[0] * degree, (*options_.look)[1] * degree);
        viewport::CameraOptics optics = viewport::cameraOptics(named_);
        if (options_.fov) {
            if (optics.orthographic)
                throw Failure("The camera " + options_.camera + " is orthographic: it has no angle of view.");
            // A camera without a view volume stays as it is: drawing says what is wrong with it.
            optics = viewport::withHorizontalView(optics, *options_.fov * degree, options_.width, options_.height)
                         .value_or(optics);
        }
        auto& scene = host::Host::instance().scene();
        if (made_)
            viewport::setCamera(scene, *made_, frame, optics);
        else
            made_ = &viewport::createCamera(scene, "pictureCamera", frame, optics);
        return *made_;
    }

private:
    const RenderOptions& options_;
    host::scene::DagNode& named_;
    host::scene::DagNode* made_ = nullptr;
};

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

/// Whether a picture is there, as large as it would be rendered, with all of its pixels.
bool isWholePicture(const std::string& file, const RenderOptions& options) {
    const auto picture = host::viewport::Picture::read(file);
    return picture && picture->width == options.width && picture->height == options.height;
}

/// Draws the scene as it is at its time.
host::viewport::Picture draw(host::viewport::Viewport& view, const RenderOptions& options, const std::string& file) {
    std::string error;
    if (!view.render(&error)) throw Failure("Cannot render " + file + ": " + error);
    host::viewport::Picture picture = view.picture();
    picture.origin = {.software = "orvosky " ORVOSKY_VERSION,
                      .scene = std::filesystem::path(options.scene).filename().string()};
    return picture;
}

/// Writes pictures; each is packed while the next one is drawn.
class PictureWriter {
public:
    using Done = std::function<void(const std::string& file)>;
    explicit PictureWriter(Done done) : done_(std::move(done)) {}

    /// Puts the picture before it in place. Throws Failure when that cannot be written.
    void write(host::viewport::Picture picture, const std::string& file) {
        finish();
        file_ = file;
        packing_ = std::async(std::launch::async, [picture = std::move(picture), file] {
            Packed packed;
            picture.encode(file, packed.bytes, &packed.error);
            return packed;
        });
    }
    /// Puts the last picture in place. Throws Failure when it cannot be written.
    void finish() {
        if (!packing_.valid()) return;
        Packed packed = packing_.get();
        if (!packed.error.empty() || !host::viewport::Picture::put(file_, packed.bytes, &packed.error))
            throw Failure(packed.error + ".");
        done_(file_);
    }

private:
    struct Packed {
        std::vector<unsigned char> bytes;
        std::string error;
    };

    Done done_;
    std::string file_;
    std::future<Packed> packing_;
};

} // namespace

int renderCommand(const CommonOptions& common, const RenderOptions& options, const std::vector<Shot>& shots) {
    return reported([&] {
        for (const Shot& shot : shots) requirePictureTarget(shot.file);
        // Without GL there is nothing to wait for.
        std::string error;
        auto view = host::viewport::Viewport::create(options.width, options.height, &error);
        if (!view) throw Failure("Cannot render " + options.picture + ": " + error);
        Session session(common, options.scene);
        Progress progress(shots.size());
        const ReportWatch watch(options.reports);
        session.openScene(options.scene);
        auto& scene = host::Host::instance().scene();
        PictureCamera camera(options);
        if (!options.helpers) view->setObjectDisplay(view->objectDisplay() & ~host::viewport::Viewport::showLocators);
        PictureWriter writer([&](const std::string& file) {
            progress.done("Rendered " + file + " (" + std::to_string(options.width) + " x " +
                          std::to_string(options.height) + ", camera " + options.camera + ")");
        });
        for (const Shot& shot : shots) {
            if (options.when.resume && isWholePicture(shot.file, options)) {
                writer.finish();
                progress.leftOut(shot.file + " is there");
                continue;
            }
            try {
                setTimeOf(shot);
                view->setCamera(camera.now());
                const int before = watch.errors();
                watch.tellUnlessTold(session.bringUpToDate(), before);
                if (scene.findType("orvosky_SkyRenderer"))
                    if (const std::string why = whatHidesTheSky(); !why.empty())
                        host::showWarning("The picture shows no sky of a sky renderer: " + why + ".");
                host::viewport::Picture picture = draw(*view, options, shot.file);
                watch.requireNoErrors("Nothing was rendered to " + shot.file);
                writer.write(std::move(picture), shot.file);
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
