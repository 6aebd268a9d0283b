#pragma once

#include <QPointF>
#include <Qt>

class QPainter;

namespace orvosky::window {

/// What a hand does in the view beyond looking around: handles, the sun, picking. Points are pixels of the widget.
class ViewTool {
public:
    virtual ~ViewTool() = default;
    virtual void paint(QPainter& painter) = 0;
    /// Whether something to be grabbed is below the pointer, which then lights up.
    virtual bool hover(QPointF at) = 0;
    /// @return true when the tool takes the drag that begins here
    virtual bool press(QPointF at, Qt::KeyboardModifiers modifiers) = 0;
    virtual void drag(QPointF at, Qt::KeyboardModifiers modifiers) = 0;
    virtual void release(QPointF at, Qt::KeyboardModifiers modifiers) = 0;
    virtual void cancel() = 0;
};

} // namespace orvosky::window
