#pragma once

#include "GlShareMark.h"

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

namespace orvo {

/// A buffer object of one GL context; empty at first. Drawing thread only.
class GlBuffer {
public:
    GlBuffer() = default;
    ~GlBuffer() { release(); }
    GlBuffer(GlBuffer&& other) noexcept
        : context_(std::move(other.context_)), name_(std::exchange(other.name_, 0)),
          bytes_(std::exchange(other.bytes_, 0)) {}
    GlBuffer& operator=(GlBuffer&& other) noexcept {
        std::swap(context_, other.context_);
        std::swap(name_, other.name_);
        std::swap(bytes_, other.bytes_);
        return *this;
    }

    /// 0 when empty.
    GLuint name() const { return name_; }
    /// Whether it holds data in the context of the mark.
    bool isIn(const std::shared_ptr<const GlShareMark>& context) const { return name_ && context_ == context; }

    /// Fills the buffer with the parts, one behind the other, in place of what it held. It is bound to the target then.
    /// @param context the mark of the current context; null: there are no buffers
    /// @return false, with an empty buffer, when the driver has no buffer objects or no memory
    bool fill(const std::shared_ptr<const GlShareMark>& context, GLenum target, GLenum usage,
              std::span<const std::span<const std::byte>> parts);
    /// Deletes the buffer, as soon as its context is current.
    void release();

private:
    std::shared_ptr<const GlShareMark> context_;
    GLuint name_ = 0;
    GLsizeiptr bytes_ = 0;
};

} // namespace orvo
