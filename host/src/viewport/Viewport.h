#pragma once

#include "viewport/CameraNode.h"
#include "viewport/GlContext.h"
#include "viewport/GlState.h"
#include "viewport/OffscreenTarget.h"
#include "viewport/Picture.h"

#include <maya/MMatrix.h>
#include <maya/MVector.h>

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace host::viewport {

/// A part of a larger picture: where its top left corner is, in pixels from that of the whole.
struct PicturePart {
    int width = 0, height = 0; ///< of the whole
    int x = 0, y = 0;
};

/// A model view: a camera's picture of the scene, drawn into an offscreen target.
///
/// All views of the process share one GL context, so that what a plug-in makes in one can be used in all; it lives as
/// long as there is a view. It is a headless one, or the one that the first view was given. Main thread only.
class Viewport {
public:
    /// Opens a view of `width` x `height` pixels and makes it the active one. Null without OpenGL or for a size that
    /// the driver does not have; `error`, when given, tells which.
    static std::unique_ptr<Viewport> create(int width, int height, std::string* error = nullptr,
                                            ColourDepth depth = ColourDepth::Bytes);
    /// The same in a given context; refused while there are views in another one.
    static std::unique_ptr<Viewport> create(std::shared_ptr<GlContext> context, int width, int height,
                                            std::string* error = nullptr, ColourDepth depth = ColourDepth::Bytes);
    ~Viewport();
    Viewport(const Viewport&) = delete;
    Viewport& operator=(const Viewport&) = delete;

    /// @name The views that are open, in the order of their opening
    /// @{
    static Viewport* active(); ///< null when there is none; the newest one when the active one was closed
    void activate();
    static std::size_t count();
    static Viewport* at(std::size_t index);          ///< null beyond the end
    static Viewport* find(unsigned long serial);     ///< null when the view was closed
    unsigned long serial() const { return serial_; } ///< never used again for another view
    /// @}

    int width() const { return ports_.front().width; }
    int height() const { return ports_.front().height; }
    /// Gives the view another size; what was drawn is gone. False, with a text in `error`, when given, from within a
    /// draw and for a size that the driver does not have: then all is as before.
    bool resize(int width, int height, std::string* error = nullptr);
    /// Draws parts of a picture that is larger than can be drawn at once. The view is as large as the whole to everyone
    /// who asks, its camera too; what is drawn and read is the part, of the size that the view was made with. It may
    /// reach beyond the whole to the right and at the bottom, where there is nothing to be seen. Not from within a
    /// draw.
    void setPart(const PicturePart& part);
    ColourDepth colourDepth() const { return target_->colourDepth(); }
    const GlContext& context() const { return *context_; }

    /// Looks through a camera shape. False when the node is none.
    bool setCamera(scene::DagNode& cameraShape);
    /// The camera that was set, or the scene's perspShape while none was or it is not in the scene any more; null
    /// when that is missing, too.
    scene::DagNode* camera() const;

    /// The kinds of objects that are shown, bits as the API's views have them; everything at first.
    static constexpr unsigned showMeshes = 1U << 2, showLocators = 1U << 11;
    unsigned objectDisplay() const { return shown_; }
    void setObjectDisplay(unsigned kinds) { shown_ = kinds; }

    /// The colour that is drawn onto, red, green, blue and alpha; opaque black at first.
    void setBackground(const std::array<float, 4>& colour) { background_ = colour; }
    const std::array<float, 4>& background() const { return background_; }
    /// Where the light comes from that shines on meshes when the scene has no lights: a direction in the world. At
    /// first it comes from wherever the camera stands.
    void setHeadlight(const MVector& towardsLight) { headlight_ = towardsLight; }
    const std::optional<MVector>& headlight() const { return headlight_; }

    /// Draws the scene as it is at its time: shaded meshes, plug-in locators, and nothing else. Meshes are lit by the
    /// scene's lights, or, without any, from the camera. Faults of single nodes
    /// are reported as messages that name the node, and the picture lacks them. False, with a text in `error`, when
    /// given, without a camera, with a camera that has no view volume, from within a draw, or when GL itself fails.
    bool render(std::string* error = nullptr);
    /// Says how somebody who watches the view draws it anew; the call may come from within a draw, and only takes
    /// note. Empty, as at first: nobody watches.
    void setRefresher(std::function<void()> refresher) { refresher_ = std::move(refresher); }
    /// Asks for another draw. False when nobody watches.
    bool scheduleRefresh() {
        if (refresher_) refresher_();
        return static_cast<bool>(refresher_);
    }
    /// What was drawn last, as opaque RGB; black before the first frame.
    Picture picture();
    /// Shows what was drawn last in another framebuffer of the view's context, which is current; interpolated where
    /// that has another size.
    void copyTo(unsigned framebuffer, int width, int height) const { target_->copyTo(framebuffer, width, height); }
    /// The same as RGBA floats, with the alpha that the draws left. What is beyond 1 is there in a view of floats.
    FloatPicture floatPicture();

    /// @name For draws
    /// @{
    /// Each beginGL needs an endGL. False when the context cannot be made current, or for an endGL
    /// without its beginGL.
    bool beginGL();
    bool endGL();
    bool makeCurrent() { return context_->makeCurrent(); }
    /// Goes on with a draw in whose middle others have used the context, or another one.
    bool resume();
    /// The part of the port that is drawn into.
    PortRect port() const { return ports_.back(); }
    bool pushPort(const PortRect& rect); ///< false in a part of a picture, too: it has one port
    bool popPort();                      ///< false when only the whole port is left
    /// @}

    /// The colour of templated objects, each of red, green and blue.
    static constexpr float templateGrey = 0.47f;

    /// @name Matrices, row vectors
    /// @{
    std::optional<MMatrix> projection() const; ///< nothing without a camera or when it has no view volume
    std::optional<MMatrix> worldToCamera() const;
    /// Within a draw with the drawn object's matrix in front.
    std::optional<MMatrix> modelView() const;
    /// Reads the camera anew within a draw and loads the matrices into GL.
    bool updateMatrices();
    /// @}

private:
    friend class FrameDraw;
    Viewport() = default;
    void bindTarget();
    void usePort() const;
    MMatrix ofPart(const MMatrix& projection) const;

    std::shared_ptr<GlContext> context_;
    std::unique_ptr<OffscreenTarget> target_;
    unsigned long serial_ = 0;
    unsigned shown_ = ~0U;
    std::weak_ptr<scene::Node> camera_;
    std::array<float, 4> background_{0, 0, 0, 1};
    std::optional<MVector> headlight_;
    std::optional<PicturePart> part_;
    std::function<void()> refresher_;
    std::vector<PortRect> ports_;
    std::vector<MatrixKeeper> begun_;
    bool drawing_ = false;
    MMatrix object_;                         ///< matrix of the object that is drawn
    std::unordered_set<unsigned long> told_; ///< serials of the nodes whose GL errors have been reported; 0: lights
};

} // namespace host::viewport
