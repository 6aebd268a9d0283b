#pragma once

#include "Session.h"

#include "viewport/FloatPicture.h"
#include "viewport/Panorama.h"
#include "viewport/Viewport.h"

#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace orvosky {

/// One file of a picture: its bytes are made when they are asked for, in any thread.
struct PictureFile {
    std::string path;
    std::function<bool(std::vector<unsigned char>& bytes, std::string& error)> pack;
};

/// Draws the open scene in the way that the options say: a view, a panorama, or the faces of a cube.
class PictureMaker {
public:
    /// Throws Failure without OpenGL, or where its limits are exceeded.
    explicit PictureMaker(const RenderOptions& options);

    /// The camera is looked for in the open scene. Throws Failure when it is not there or cannot be used.
    void openCamera();
    /// The files that a target stands for: six for a cube in a format that holds one picture.
    static std::vector<std::string> filesOf(const RenderOptions& options, const std::string& target);
    /// Whether a target's files are there, of the right size, with all of their pixels.
    bool isWhole(const std::string& target) const;
    /// Draws the scene as it is. Throws Failure.
    std::vector<PictureFile> make(const std::string& target);
    /// "1280 x 720, camera persp"
    std::string described() const;

private:
    void lookThroughCamera();
    template <class Part>
    auto drawParts(const Part& drawPart);
    host::viewport::FloatPicture drawFloatPart();
    host::viewport::FloatPicture drawFloats();
    host::viewport::Picture drawBytes();
    host::viewport::FloatPicture drawFace(const host::viewport::CubeFace& face, double reach);
    host::viewport::FloatPicture drawPanorama();
    std::vector<PictureFile> makeCube();
    void openView();
    void render();
    void place(const host::viewport::CameraFrame& frame, const host::viewport::CameraOptics& optics);

    const RenderOptions& options_;
    host::viewport::Picture::Origin origin_;
    std::unique_ptr<host::viewport::Viewport> view_;
    int wholeWidth_, wholeHeight_; ///< of a view or a face with all samples; the view may be of a part of it
    int partWidth_ = 0, partHeight_ = 0;
    host::scene::DagNode* named_ = nullptr;
    host::scene::DagNode* made_ = nullptr; ///< one in the named one's place, turned otherwise
    std::string target_;                   ///< what is made now, for messages
};

/// Puts pictures in place; each is packed while the next one is drawn.
class PictureWriter {
public:
    using Done = std::function<void(const std::string& target)>;
    explicit PictureWriter(Done done) : done_(std::move(done)) {}

    /// Takes a target's files, and puts those before them in place. Throws Failure when that cannot be done.
    void write(const std::string& target, std::vector<PictureFile> files);
    /// Puts the last files in place. Throws Failure when that cannot be done.
    void finish();

private:
    struct Packed {
        std::vector<std::vector<unsigned char>> files;
        std::string error;
    };

    Done done_;
    std::string target_;
    std::vector<std::filesystem::path> paths_;
    std::future<Packed> packing_;
};

} // namespace orvosky
