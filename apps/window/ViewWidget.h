#pragma once

#include "CameraMoves.h"
#include "ViewTool.h"

#include <maya/MMatrix.h>

#include <QElapsedTimer>
#include <QImage>
#include <QOpenGLWidget>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QLabel;

namespace host::scene {
class DagNode;
}
namespace host::viewport {
class Viewport;
}

namespace orvosky::window {

class Editor;
class WindowGl;

/// The sky: the host's frame, drawn into a target of its own and shown in the widget, with handles on top.
///
/// The frame is drawn when the scene, the camera or the size changes and at no other time, and not while the widget is
/// painted: a frame that takes long leaves the last one on the screen. While the hand moves it is drawn with as few
/// pixels as keep up with the hand, at rest with all of them.
class ViewWidget : public QOpenGLWidget {
    Q_OBJECT
public:
    explicit ViewWidget(Editor& editor, QWidget* parent = nullptr);
    ~ViewWidget() override;

    /// Draws anew when there is next time for it.
    void refresh();
    /// Gives up what lies in OpenGL, `last` being called while its context is current.
    void close(const std::function<void()>& last);
    /// For those who run scripts: nodes that free what they hold in OpenGL need its context.
    void makeContextCurrent();

    /// @name Camera
    /// @{
    host::scene::DagNode* camera() const;
    /// Null: the scene's own perspective view.
    void useCamera(host::scene::DagNode* shape);
    std::optional<CameraPose> pose() const;
    void setPose(const CameraPose& pose);
    /// Shows the selection whole, or everything that has a size.
    void frame(bool all);
    /// Turns the eyes up to the sky above, or back.
    void lookUp(bool on);
    bool looksUp() const { return before_.has_value(); }
    /// @}

    void addTool(std::unique_ptr<ViewTool> tool) { tools_.push_back(std::move(tool)); }
    void cancelTool();
    /// The frame of a picture of that size: what lies outside is dimmed. 0: none.
    void setSafeFrame(int width, int height);

    /// @name The view's geometry
    /// @{
    /// Where a point of the world is seen; nothing behind the eye.
    std::optional<QPointF> project(const MPoint& world) const;
    /// The direction from the eye through a pixel.
    MVector ray(QPointF pixel) const;
    MPoint eye() const;
    /// How many centimetres a pixel is at a point of the world.
    double pixelSize(const MPoint& world) const;
    /// @}

    /// What the scene looks like now in all its pixels, without handles.
    QImage picture();
    /// The frames drawn so far.
    int frames() const { return frames_; }

signals:
    /// A frame took so long; `divisor`: its sides are that part of the widget's.
    void drawn(double milliseconds, int divisor);
    void cameraChanged();
    /// Something was clicked that no tool took.
    void clicked(QPointF at, Qt::KeyboardModifiers modifiers);

protected:
    void initializeGL() override;
    void paintGL() override;
    void resizeEvent(QResizeEvent* event) override;
    void resizeGL(int width, int height) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    enum class Move { None, Tumble, Turn, Track, Dolly, Tool };
    bool fits(int divisor);
    void draw();
    void drawFrame();
    void moved();
    QSize pixels() const;

    Editor& editor_;
    std::shared_ptr<WindowGl> gl_;
    std::unique_ptr<host::viewport::Viewport> view_;
    std::vector<std::unique_ptr<ViewTool>> tools_;
    ViewTool* active_ = nullptr;
    Move move_ = Move::None;
    QPointF last_, pressed_;
    bool stale_ = true, moving_ = false, clicking_ = false;
    bool wanted_ = false; ///< whether what was drawn asked for another frame
    int divisor_ = 1, frames_ = 0;
    double fullCost_ = 0; ///< of a frame with all pixels, in milliseconds, as the last frames let one think
    QTimer due_, rest_;
    QString problem_;
    std::optional<CameraPose> before_; ///< looking up
    QSize safe_;
    std::unique_ptr<QLabel> lastFrame_; ///< covers the view when its size changes amid a frame
};

} // namespace orvosky::window
