#pragma once

#include <memory>
#include <string>

namespace host::viewport {

/// An OpenGL context to draw in: a headless one of the highest compatibility profile that the machine offers, or, as a
/// derived class, a window's.
///
/// A headless one needs no window system: EGL's surfaceless platform is asked first, then every EGL device (machines
/// with a vendor driver), then EGL's default display. What is drawn goes to an OffscreenTarget; the context's own
/// surface is none, or one of 16 x 16 pixels where the driver insists on a surface.
///
/// Setting the environment variable ORVOSKY_NO_GL to a value other than the empty one and "0" makes `create` answer
/// as on a machine without any OpenGL.
class GlContext {
public:
    /// Makes a context and makes it current on the calling thread. Null when there is none to be had; `error`, when
    /// given, then tells why in one text that begins with "No OpenGL context: ".
    static std::unique_ptr<GlContext> create(std::string* error = nullptr);

    /// Ends the context, though not the display, which belongs to the process. When the context is current on the
    /// calling thread, that thread has no context afterwards.
    virtual ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    /// Makes this the calling thread's context. False when the driver refuses (for example while the context is
    /// current on another thread).
    virtual bool makeCurrent();

    /// Leaves the calling thread without a context, when this one is its current one.
    virtual void release();

    virtual bool isCurrent() const;

    /// "VENDOR / RENDERER / VERSION", as the driver calls itself.
    const std::string& description() const { return description_; }

protected:
    GlContext() = default;

private:
    void* display_ = nullptr;
    void* surface_ = nullptr;
    void* context_ = nullptr;
    std::string description_;
};

} // namespace host::viewport
