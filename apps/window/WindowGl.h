#pragma once

#include "viewport/GlContext.h"

#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QPointer>

namespace orvosky::window {

/// A widget's OpenGL context, for the host to draw in.
class WindowGl final : public host::viewport::GlContext {
public:
    explicit WindowGl(QOpenGLWidget& widget) : widget_(&widget) {}

    /// Leaves the framebuffer alone where the context is current already: draws call this in their middle.
    bool makeCurrent() override {
        if (!widget_ || !widget_->context()) return false;
        if (!isCurrent()) widget_->makeCurrent();
        return isCurrent();
    }
    void release() override {
        if (widget_ && isCurrent()) widget_->doneCurrent();
    }
    bool isCurrent() const override {
        return widget_ && widget_->context() && QOpenGLContext::currentContext() == widget_->context();
    }

private:
    QPointer<QOpenGLWidget> widget_;
};

} // namespace orvosky::window
