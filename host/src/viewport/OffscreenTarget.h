#pragma once

#include <memory>
#include <string>

#include "viewport/FloatPicture.h"

namespace host::viewport {

/// What a colour buffer holds: 8 bits a channel from 0 to 1, or floats of 32 bits, which are not clipped.
enum class ColourDepth { Bytes, Floats };

/// A place to draw without a window: an RGBA colour buffer and a depth buffer of 24 bits.
/// Every operation, destruction too, needs the context current in which the target was made.
class OffscreenTarget {
public:
    /// Makes a target of `width` x `height` pixels, without binding it. Null when a size is below 1 or above the
    /// driver's limit, when memory runs out or when no context is current; `error`, when given, tells which.
    static std::unique_ptr<OffscreenTarget> create(int width, int height, std::string* error = nullptr,
                                                   ColourDepth depth = ColourDepth::Bytes);

    ~OffscreenTarget();
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    ColourDepth colourDepth() const { return depth_; }

    /// Makes drawing go here, until `unbind` restores the target that was bound before. The GL viewport is left
    /// to the caller.
    void bind();
    void unbind();

    /// The colours drawn so far as an RGBA picture, top row first. The binding and the pixel-store state of the
    /// caller are left as they were.
    Picture readPixels() const;
    /// The same as floats, clipped only where the colour buffer is one of bytes.
    FloatPicture readFloats() const;

    /// Copies the colours drawn so far into another framebuffer of the context, `width` x `height` pixels of it,
    /// opaque; of another size they are interpolated. The bindings are left as they were.
    void copyTo(unsigned framebuffer, int width, int height) const;

private:
    OffscreenTarget(int width, int height, ColourDepth depth) : width_(width), height_(height), depth_(depth) {}
    void read(unsigned type, void* to) const;

    int width_, height_;
    ColourDepth depth_;
    unsigned framebuffer_ = 0, colourBuffer_ = 0, depthBuffer_ = 0;
    int previousDraw_ = 0, previousRead_ = 0;
    bool bound_ = false;
};

} // namespace host::viewport
