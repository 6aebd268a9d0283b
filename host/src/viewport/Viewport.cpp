#include "viewport/Viewport.h"

#include "scene/Scene.h"
#include "viewport/FrameDraw.h"

#include <GL/gl.h>

#include <algorithm>
#include <exception>

namespace host::viewport {
namespace {

/// The open views, in the order of their opening, and the one that is active.
struct OpenViews {
    std::vector<Viewport*> all;
    Viewport* active = nullptr;
    unsigned long lastSerial = 0;
    std::weak_ptr<GlContext> context;
};

OpenViews& open() {
    static OpenViews views;
    return views;
}

} // namespace

std::unique_ptr<Viewport> Viewport::create(int width, int height, std::string* error, ColourDepth depth) {
    std::shared_ptr<GlContext> context = open().context.lock();
    if (!context) context = GlContext::create(error);
    return context ? create(std::move(context), width, height, error, depth) : nullptr;
}

std::unique_ptr<Viewport> Viewport::create(std::shared_ptr<GlContext> context, int width, int height,
                                           std::string* error, ColourDepth depth) {
    const auto shared = open().context.lock();
    if ((shared && shared != context) || !context->makeCurrent()) {
        if (error)
            *error = shared && shared != context ? "There are views in another OpenGL context"
                                                 : "The OpenGL context cannot be made current";
        return nullptr;
    }
    std::unique_ptr<Viewport> view(new Viewport);
    view->context_ = std::move(context);
    open().context = view->context_;
    view->target_ = OffscreenTarget::create(width, height, error, depth);
    if (!view->target_) return nullptr;
    view->ports_ = {{0, 0, width, height}};
    view->bindTarget();
    setDefaultState();
    FrameDraw::clear(view->background_);
    view->target_->unbind();
    view->serial_ = ++open().lastSerial;
    open().all.push_back(view.get());
    open().active = view.get();
    return view;
}

Viewport::~Viewport() {
    auto& views = open();
    std::erase(views.all, this);
    if (views.active == this) views.active = views.all.empty() ? nullptr : views.all.back();
    // The target's GL names belong to the context, which goes with its last view.
    if (target_ && context_->makeCurrent()) target_.reset();
}

bool Viewport::resize(int width, int height, std::string* error) {
    if (drawing_ || !begun_.empty() || !makeCurrent()) {
        if (error) *error = "A view that is being drawn keeps its size";
        return false;
    }
    auto target = OffscreenTarget::create(width, height, error, target_->colourDepth());
    if (!target) return false;
    target_ = std::move(target);
    ports_ = {{0, 0, width, height}};
    part_.reset();
    return true;
}

void Viewport::setPart(const PicturePart& part) {
    if (drawing_ || !begun_.empty()) return;
    part_ = part;
    ports_ = {{0, 0, part.width, part.height}};
}

/// Widens what is seen so that the part fills the target.
MMatrix Viewport::ofPart(const MMatrix& projection) const {
    if (!part_) return projection;
    const double width = target_->width(), height = target_->height();
    MMatrix crop;
    crop.matrix[0][0] = part_->width / width;
    crop.matrix[1][1] = part_->height / height;
    crop.matrix[3][0] = (part_->width - 2.0 * part_->x - width) / width;
    crop.matrix[3][1] = (2.0 * part_->y + height - part_->height) / height;
    return projection * crop;
}

Viewport* Viewport::active() { return open().active; }
void Viewport::activate() { open().active = this; }
std::size_t Viewport::count() { return open().all.size(); }
Viewport* Viewport::at(std::size_t index) { return index < count() ? open().all[index] : nullptr; }

Viewport* Viewport::find(unsigned long serial) {
    const auto& all = open().all;
    const auto found = std::ranges::find(all, serial, &Viewport::serial_);
    return found == all.end() ? nullptr : *found;
}

bool Viewport::setCamera(scene::DagNode& cameraShape) {
    if (!isCamera(cameraShape)) return false;
    camera_ = cameraShape.weak_from_this();
    return true;
}

scene::DagNode* Viewport::camera() const {
    if (const auto node = camera_.lock(); node && node->inScene) return node->dag();
    scene::Node* node = scene::Scene::current().findNode("perspShape");
    return node && isCamera(*node) ? node->dag() : nullptr;
}

std::optional<MMatrix> Viewport::projection() const {
    scene::DagNode* node = camera();
    if (!node) return std::nullopt;
    const auto view = cameraProjection(cameraOptics(*node), width(), height());
    if (!view) return std::nullopt;
    MMatrix m;
    std::copy(view->matrix.begin(), view->matrix.end(), &m.matrix[0][0]);
    return m;
}

std::optional<MMatrix> Viewport::worldToCamera() const {
    scene::DagNode* node = camera();
    if (!node) return std::nullopt;
    return cameraFrame(*node).worldToCamera();
}

std::optional<MMatrix> Viewport::modelView() const {
    const auto view = worldToCamera();
    return view && drawing_ ? object_ * *view : view;
}

bool Viewport::updateMatrices() {
    const auto projected = projection(), seen = modelView();
    if (!projected || !seen || begun_.empty()) return false;
    loadMatrices(ofPart(*projected), *seen);
    return true;
}

void Viewport::bindTarget() {
    target_->bind();
    usePort();
}

void Viewport::usePort() const {
    if (part_)
        glViewport(0, 0, target_->width(), target_->height());
    else
        glViewport(port().x, port().y, port().width, port().height);
}

bool Viewport::beginGL() {
    if (!context_->makeCurrent()) return false;
    const bool outermost = begun_.empty();
    begun_.emplace_back();
    if (outermost) {
        bindTarget();
        updateMatrices();
    }
    return true;
}

bool Viewport::resume() {
    if (!makeCurrent()) return false;
    if (!begun_.empty()) bindTarget();
    return true;
}

bool Viewport::endGL() {
    // The frame's own beginGL is not the draw's to end.
    if (begun_.size() <= (drawing_ ? 1u : 0u) || !context_->makeCurrent()) return false;
    begun_.back().restore();
    begun_.pop_back();
    if (begun_.empty()) target_->unbind();
    return true;
}

bool Viewport::pushPort(const PortRect& rect) {
    constexpr std::size_t deepest = 64;
    if (part_ || rect.width < 1 || rect.height < 1 || ports_.size() >= deepest || !makeCurrent()) return false;
    ports_.push_back(rect);
    if (!begun_.empty()) usePort();
    return true;
}

bool Viewport::popPort() {
    if (ports_.size() < 2 || !makeCurrent()) return false;
    ports_.pop_back();
    if (!begun_.empty()) usePort();
    return true;
}

bool Viewport::render(std::string* error) {
    const auto fail = [error](std::string text) {
        if (error) *error = std::move(text);
        return false;
    };
    if (drawing_ || !begun_.empty()) return fail("The view is being drawn already");
    scene::DagNode* node = camera();
    if (!node) return fail("There is no camera to look through");
    const auto projected = projection();
    if (!projected)
        return fail("The camera " + node->partialPath() +
                    " has no view volume: check its film, focal length, width and clipping distances");
    if (!beginGL()) return fail("The OpenGL context cannot be made current");
    drawing_ = true;
    std::string problem;
    try {
        problem = FrameDraw(*this, ofPart(*projected), cameraFrame(*node).worldToCamera()).run();
    } catch (const std::exception& e) {
        problem = e.what();
    }
    drawing_ = false;
    object_ = MMatrix();
    endGL();
    return problem.empty() || fail("The view cannot be drawn: " + problem);
}

Picture Viewport::picture() {
    Picture rgb(target_->width(), target_->height(), 3);
    if (!makeCurrent()) return rgb;
    const Picture rgba = target_->readPixels();
    for (int y = 0; y < rgb.height; ++y) {
        std::uint8_t* out = rgb.row(y);
        for (int x = 0; x < rgb.width; ++x, out += 3) std::copy_n(rgba.at(x, y), 3, out);
    }
    return rgb;
}

FloatPicture Viewport::floatPicture() {
    return makeCurrent() ? target_->readFloats() : FloatPicture(target_->width(), target_->height(), 4);
}

} // namespace host::viewport
