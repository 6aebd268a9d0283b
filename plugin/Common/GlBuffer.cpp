#include "GlBuffer.h"

namespace orvo {

bool GlBuffer::fill(const std::shared_ptr<const GlShareMark>& context, GLenum target, GLenum usage,
                    std::span<const std::span<const std::byte>> parts) {
    if (!isIn(context)) release();
    if (!context) return false;
    if (!name_) {
        gl().genBuffers(1, &name_);
        if (!name_) return false;
        context_ = context;
    }
    GLsizeiptr bytes = 0;
    for (const auto& part : parts) bytes += static_cast<GLsizeiptr>(part.size());
    const bool grows = bytes != bytes_;
    if (grows) forgetGlErrors();
    gl().bindBuffer(target, name_);
    gl().bufferData(target, bytes, parts.size() == 1 ? parts[0].data() : nullptr, usage);
    // Asking for errors makes some drivers wait, and memory that was there once is there again.
    if (grows && glGetError() != GL_NO_ERROR) {
        release();
        return false;
    }
    bytes_ = bytes;
    GLintptr at = 0;
    for (const auto& part : parts) {
        if (parts.size() > 1) gl().bufferSubData(target, at, static_cast<GLsizeiptr>(part.size()), part.data());
        at += static_cast<GLintptr>(part.size());
    }
    return true;
}

void GlBuffer::release() {
    if (name_) context_->deleteBuffer(std::exchange(name_, 0));
    context_.reset();
    bytes_ = 0;
}

} // namespace orvo
