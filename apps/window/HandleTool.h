#pragma once

#include "ViewTool.h"

#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host::scene {
class DagNode;
}

namespace orvosky::window {

class Editor;
class ViewWidget;

/// The handles of what is selected: arrows that move, rings that rotate, cubes that scale. They have one size on the
/// screen, stand on the node that was selected last, and act on all. Ctrl snaps: to metres, 15 degrees, tenths. Shift
/// moves a copy.
class HandleTool final : public ViewTool {
public:
    enum class Mode { Select, Move, Rotate, Scale };

    HandleTool(Editor& editor, ViewWidget& view) : editor_(editor), view_(view) {}
    void setMode(Mode mode);
    Mode mode() const { return mode_; }
    /// Whether arrows follow the node's own axes; rings and cubes always do.
    void setLocal(bool local);

    void paint(QPainter& painter) override;
    bool hover(QPointF at) override;
    bool press(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void drag(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void release(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void cancel() override;

private:
    static constexpr int none = -1, middle = 3; ///< beside 0, 1 and 2 for the axes
    struct Place {
        MPoint origin;
        std::array<MVector, 3> axes;
        double size = 1; ///< of a handle, centimetres
    };
    std::optional<Place> place() const;
    std::vector<std::string> targets() const;
    int at(QPointF point, const Place& place) const;
    std::vector<QPointF> ring(const Place& place, int axis) const;
    std::string statement(QPointF at, Qt::KeyboardModifiers modifiers) const;

    Editor& editor_;
    ViewWidget& view_;
    Mode mode_ = Mode::Select;
    bool local_ = false, copies_ = false;
    int hot_ = none, held_ = none;
    QPointF from_;
    Place start_;
    std::string names_, last_;
};

} // namespace orvosky::window
