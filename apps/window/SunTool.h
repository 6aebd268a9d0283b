#pragma once

#include "ViewTool.h"

#include <maya/MVector.h>

#include <optional>
#include <string>
#include <vector>

namespace orvosky::window {

class Editor;
class ViewWidget;

/// The sun as a ring that is dragged over the sky. Which attributes it stands for, and how they are set, the procedures
/// orvoskySunPlugs and orvoskySetSun say. It shows when the pointer is near.
class SunTool final : public ViewTool {
public:
    SunTool(Editor& editor, ViewWidget& view) : editor_(editor), view_(view) {}

    /// Shows the ring always, or only near the pointer.
    void setShown(bool shown);
    /// Shows the sun's way over a day, directions at equal times; none when empty.
    void setCourse(std::vector<MVector> course);
    void paint(QPainter& painter) override;
    bool hover(QPointF at) override;
    bool press(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void drag(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void release(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void cancel() override;

private:
    std::optional<MVector> direction();
    std::optional<QPointF> place();
    std::string statement(QPointF at) const;

    Editor& editor_;
    ViewWidget& view_;
    std::vector<std::string> plugs_;
    std::vector<MVector> course_;
    unsigned long known_ = 0; ///< the editor's changes when the plugs were asked for
    bool shown_ = false, near_ = false, hot_ = false, held_ = false;
    QPointF grip_; ///< from the ring's middle to the pointer that holds it
    std::string last_;
};

} // namespace orvosky::window
