#include "PictureMaker.h"

#include "base/FileReplacement.h"
#include "base/Letters.h"
#include "base/NumberText.h"
#include "commands/Host.h"
#include "images/DdsCube.h"
#include "scene/Scene.h"
#include "viewport/CameraNode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace orvosky {
namespace {

namespace viewport = host::viewport;
using viewport::FloatPicture;
using viewport::Picture;

constexpr double degree = std::numbers::pi / 180;
constexpr int kMargin = 2; ///< pixels that a face of a panorama shows beyond its edges

/// The longest side of what is drawn at once, in pixels. Larger pictures are drawn in parts.
int longestSideAtOnce() {
    constexpr int usual = 8192;
    const char* const text = std::getenv("ORVOSKY_TILE");
    if (!text || !*text) return usual;
    const auto side = host::readInt(text);
    if (!side || *side < 16)
        throw Failure(fmt::format("ORVOSKY_TILE is \"{}\": give a number of pixels from 16.", text));
    return *side;
}

/// Of a side in parts of at most that many pixels: how long each is, a multiple of twice `aside`. Drivers work out how
/// fast textures run by pairs of pixels, which are to be the same in a part as in the whole.
int evenPart(int side, int longest, int aside) {
    if (side <= longest) return side;
    const int step = 2 * aside;
    longest = std::max(longest - longest % step, step);
    const int count = (side + longest - 1) / longest, part = (side + count - 1) / count;
    return (part + step - 1) / step * step;
}

/// Puts what of a part lies in the whole at its place there.
template <class Pixels>
void paste(Pixels& whole, const Pixels& part, int x, int y) {
    const auto row = static_cast<std::ptrdiff_t>(std::min(part.width, whole.width - x)) * part.channels;
    for (int at = 0; at < part.height && y + at < whole.height; ++at)
        std::copy_n(part.at(0, at), row, whole.at(x, y + at));
}

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

/// Whether a picture of that size is there, with all of its pixels.
bool isWholePicture(const std::string& file, int width, int height) {
    const auto picture = Picture::read(file);
    return picture && picture->width == width && picture->height == height;
}

/// Takes the coverage out of what was drawn on black and on white: what shows of the ground is not covered.
FloatPicture withCoverage(const FloatPicture& onBlack, const FloatPicture& onWhite) {
    FloatPicture picture = onBlack;
    for (std::size_t i = 0; i < picture.pixels.size(); i += 4) {
        float shows = 0;
        for (std::size_t k = i; k < i + 3; ++k) shows += (onWhite.pixels[k] - onBlack.pixels[k]) / 3;
        picture.pixels[i + 3] = std::clamp(1 - shows, 0.0f, 1.0f);
    }
    return picture;
}

/// Without the fourth channel.
FloatPicture opaque(const FloatPicture& rgba) {
    FloatPicture rgb(rgba.width, rgba.height, 3);
    for (std::size_t from = 0, to = 0; from < rgba.pixels.size(); from += 4, to += 3)
        std::copy_n(rgba.pixels.begin() + static_cast<std::ptrdiff_t>(from), 3,
                    rgb.pixels.begin() + static_cast<std::ptrdiff_t>(to));
    return rgb;
}

PictureFile fileOf(const std::string& path, FloatPicture picture) {
    if (FloatPicture::holdsLight(path))
        return {path, [path, picture = std::move(picture)](auto& bytes, auto& error) {
                    return picture.encode(path, bytes, &error);
                }};
    return {path, [path, picture = std::move(picture)](auto& bytes, auto& error) {
                return picture.bytes().encode(path, bytes, &error);
            }};
}

} // namespace

PictureMaker::PictureMaker(const RenderOptions& options)
    : options_(options), origin_{.software = "orvosky " ORVOSKY_VERSION,
                                 .scene = std::filesystem::path(options.scene).filename().string()} {
    wholeWidth_ = options.width;
    wholeHeight_ = options.height;
    if (options.kind == PictureKind::Panorama)
        wholeWidth_ = wholeHeight_ = viewport::LatLongPicture::faceSize(options.width, kMargin);
    wholeWidth_ *= options.samplesAside;
    wholeHeight_ *= options.samplesAside;
    openView();
    if (!options.helpers) view_->setObjectDisplay(view_->objectDisplay() & ~viewport::Viewport::showLocators);
}

/// As large as the picture, or as a part of it that the driver draws at once and has the memory for.
void PictureMaker::openView() {
    // Without alpha, files of 8 bits show what a display of 8 bits shows.
    const bool floats = options_.alpha || FloatPicture::holdsLight(options_.picture);
    constexpr int leastSide = 2048; // every driver has that
    std::string error;
    for (int side = longestSideAtOnce(); !view_; side = std::max(partWidth_, partHeight_) / 2) {
        partWidth_ = evenPart(wholeWidth_, side, options_.samplesAside);
        partHeight_ = evenPart(wholeHeight_, side, options_.samplesAside);
        view_ = viewport::Viewport::create(partWidth_, partHeight_, &error,
                                           floats ? viewport::ColourDepth::Floats : viewport::ColourDepth::Bytes);
        if (!view_ && std::max(partWidth_, partHeight_) <= leastSide)
            throw Failure("Cannot render " + options_.picture + ": " + error);
    }
}

void PictureMaker::openCamera() {
    named_ = &findCamera(options_.camera);
    if (!viewport::cameraOptics(*named_).orthographic) return;
    if (options_.fov) throw Failure("The camera " + options_.camera + " is orthographic: it has no angle of view.");
    if (options_.kind != PictureKind::View)
        throw Failure("The camera " + options_.camera + " is orthographic: it has no point to look around from.");
}

std::vector<std::string> PictureMaker::filesOf(const RenderOptions& options, const std::string& target) {
    if (options.kind != PictureKind::Cube || host::extensionOf(target) == ".dds" || host::extensionOf(target) == ".exr")
        return {target};
    std::vector<std::string> files;
    const std::string ending = std::filesystem::path(target).extension().string();
    for (const viewport::CubeFace& face : viewport::cubeFaces(viewport::CubeLayout::Texture))
        files.push_back(target.substr(0, target.size() - ending.size()) + "." + face.name + ending);
    return files;
}

bool PictureMaker::isWhole(const std::string& target) const {
    const bool cube = options_.kind == PictureKind::Cube;
    if (cube && host::extensionOf(target) == ".dds") return host::images::isWholeDdsCube(target, options_.width);
    const bool stacked = cube && host::extensionOf(target) == ".exr";
    return std::ranges::all_of(filesOf(options_, target), [&](const std::string& file) {
        return isWholePicture(file, options_.width, stacked ? options_.width * 6 : options_.height);
    });
}

std::string PictureMaker::described() const {
    const char* kinds[] = {"", "panorama of ", "cube of "};
    return fmt::format("{}{} x {}, camera {}", kinds[static_cast<int>(options_.kind)], options_.width, options_.height,
                       options_.camera);
}

void PictureMaker::place(const viewport::CameraFrame& frame, const viewport::CameraOptics& optics) {
    auto& scene = host::Host::instance().scene();
    if (made_)
        viewport::setCamera(scene, *made_, frame, optics);
    else
        made_ = &viewport::createCamera(scene, "pictureCamera", frame, optics);
    view_->setCamera(*made_);
}

/// Looks through the camera as it is at the scene's time: the one that was named, or one in its place with the
/// direction and angle that were given.
void PictureMaker::lookThroughCamera() {
    if (!options_.look && !options_.fov) {
        view_->setCamera(*named_);
        return;
    }
    viewport::CameraFrame frame = viewport::cameraFrame(*named_);
    if (options_.look)
        frame = viewport::cameraFrame(frame.eye, (*options_.look)[0] * degree, (*options_.look)[1] * degree);
    viewport::CameraOptics optics = viewport::cameraOptics(*named_);
    // A camera without a view volume stays as it is: drawing says what is wrong with it.
    if (options_.fov)
        optics = viewport::withHorizontalView(optics, *options_.fov * degree, options_.width, options_.height)
                     .value_or(optics);
    place(frame, optics);
}

void PictureMaker::render() {
    std::string error;
    if (!view_->render(&error)) throw Failure("Cannot render " + target_ + ": " + error);
}

/// Draws all parts of a view or face, one at a time, and puts them together.
template <class Part>
auto PictureMaker::drawParts(const Part& drawPart) {
    if (partWidth_ >= wholeWidth_ && partHeight_ >= wholeHeight_) return drawPart();
    const int aside = options_.samplesAside;
    decltype(drawPart()) whole;
    for (int y = 0; y < wholeHeight_; y += partHeight_)
        for (int x = 0; x < wholeWidth_; x += partWidth_) {
            view_->setPart({wholeWidth_, wholeHeight_, x, y});
            const auto part = drawPart();
            if (whole.width == 0) whole = {wholeWidth_ / aside, wholeHeight_ / aside, part.channels};
            paste(whole, part, x / aside, y / aside);
        }
    return whole;
}

FloatPicture PictureMaker::drawFloatPart() {
    FloatPicture picture;
    view_->setBackground({0, 0, 0, 1});
    render();
    if (options_.alpha) {
        const FloatPicture onBlack = view_->floatPicture();
        view_->setBackground({1, 1, 1, 1});
        render();
        picture = withCoverage(onBlack, view_->floatPicture());
    } else {
        picture = opaque(view_->floatPicture());
    }
    if (FloatPicture::holdsLight(target_)) picture.makeLinear();
    return picture.reduced(options_.samplesAside);
}

FloatPicture PictureMaker::drawFloats() {
    FloatPicture picture = drawParts([this] { return drawFloatPart(); });
    picture.origin = origin_;
    return picture;
}

Picture PictureMaker::drawBytes() {
    Picture picture = drawParts([this] {
        render();
        return view_->picture();
    });
    picture.origin = origin_;
    return picture;
}

FloatPicture PictureMaker::drawFace(const viewport::CubeFace& face, double reach) {
    const viewport::FaceView view =
        viewport::faceView(face, viewport::cameraFrame(*named_).eye, viewport::cameraOptics(*named_), reach);
    place(view.frame, view.optics);
    return drawFloats();
}

FloatPicture PictureMaker::drawPanorama() {
    const MVector ahead = viewport::cameraFrame(*named_).view;
    const double azimuth = options_.look ? (*options_.look)[0] * degree : std::atan2(ahead.x, -ahead.z);
    // Meshes that no light of the scene lights are lit from the camera, which would turn from face to face.
    view_->setHeadlight(MVector(-std::sin(azimuth), 0, std::cos(azimuth)));
    const int size = viewport::LatLongPicture::faceSize(options_.width, kMargin);
    viewport::LatLongPicture panorama(options_.width, options_.height, options_.alpha ? 4 : 3, azimuth, kMargin);
    const auto& faces = viewport::cubeFaces(viewport::CubeLayout::OpenExr);
    for (std::size_t i = 0; i < faces.size(); ++i)
        panorama.add(i, drawFace(faces[i], viewport::LatLongPicture::reach(size, kMargin)));
    FloatPicture picture = panorama.take();
    picture.origin = origin_;
    return picture;
}

std::vector<PictureFile> PictureMaker::makeCube() {
    const MVector ahead = viewport::cameraFrame(*named_).view;
    view_->setHeadlight(-ahead);
    const std::vector<std::string> files = filesOf(options_, target_);
    std::vector<PictureFile> made;
    if (host::extensionOf(target_) == ".exr") {
        // The middles of its outermost pixels lie on the cube's edges.
        const double reach = options_.width / (options_.width - 1.0);
        FloatPicture stack(options_.width, options_.width * 6, options_.alpha ? 4 : 3);
        auto end = stack.pixels.begin();
        for (const viewport::CubeFace& face : viewport::cubeFaces(viewport::CubeLayout::OpenExr))
            end = std::ranges::copy(drawFace(face, reach).pixels, end).out;
        stack.isCubeMap = true;
        stack.origin = origin_;
        made.push_back(fileOf(target_, std::move(stack)));
        return made;
    }
    std::vector<FloatPicture> faces;
    for (const viewport::CubeFace& face : viewport::cubeFaces(viewport::CubeLayout::Texture))
        faces.push_back(drawFace(face, 1).mirrored());
    if (host::extensionOf(target_) == ".dds") {
        made.push_back({target_, [faces = std::move(faces)](auto& bytes, auto&) {
                            std::vector<Picture> pictures;
                            for (const FloatPicture& face : faces) pictures.push_back(face.bytes());
                            std::array<const std::uint8_t*, 6> pixels{};
                            for (std::size_t i = 0; i < 6; ++i) pixels[i] = pictures[i].pixels.data();
                            bytes = host::images::ddsCube(pictures[0].width, pictures[0].channels, pixels);
                            return true;
                        }});
        return made;
    }
    for (std::size_t i = 0; i < files.size(); ++i) made.push_back(fileOf(files[i], std::move(faces[i])));
    return made;
}

std::vector<PictureFile> PictureMaker::make(const std::string& target) {
    target_ = target;
    switch (options_.kind) {
    case PictureKind::Panorama: return {fileOf(target, drawPanorama())};
    case PictureKind::Cube: return makeCube();
    case PictureKind::View: break;
    }
    lookThroughCamera();
    if (options_.alpha || options_.samplesAside > 1 || FloatPicture::holdsLight(target))
        return {fileOf(target, drawFloats())};
    return {{target, [target, picture = drawBytes()](auto& bytes, auto& error) {
                 return picture.encode(target, bytes, &error);
             }}};
}

void PictureWriter::write(const std::string& target, std::vector<PictureFile> files) {
    finish();
    target_ = target;
    paths_.clear();
    for (const PictureFile& file : files) paths_.emplace_back(file.path);
    packing_ = std::async(std::launch::async, [files = std::move(files)] {
        Packed packed;
        for (const PictureFile& file : files)
            if (packed.error.empty()) file.pack(packed.files.emplace_back(), packed.error);
        return packed;
    });
}

void PictureWriter::finish() {
    if (!packing_.valid()) return;
    const Stage stage("write " + target_);
    const Packed packed = packing_.get();
    if (!packed.error.empty()) throw Failure(packed.error + ".");
    try {
        host::base::FileReplacement replacement(paths_);
        for (std::size_t i = 0; i < paths_.size(); ++i)
            replacement.write(i, {reinterpret_cast<const char*>(packed.files[i].data()), packed.files[i].size()});
        replacement.commit();
    } catch (const host::base::ReplacementError& e) {
        throw Failure(fmt::format("Cannot write picture \"{}\": {}.", e.file().string(), e.what()));
    }
    done_(target_);
}

} // namespace orvosky
