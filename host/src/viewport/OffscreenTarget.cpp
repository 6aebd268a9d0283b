#define GL_GLEXT_PROTOTYPES
#include "viewport/OffscreenTarget.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace host::viewport {

std::unique_ptr<OffscreenTarget> OffscreenTarget::create(int width, int height, std::string* error, ColourDepth depth) {
    const auto fail = [error](std::string text) {
        if (error) *error = std::move(text);
        return nullptr;
    };
    if (width < 1 || height < 1)
        return fail(fmt::format("A picture needs at least one pixel each way, not {} x {}", width, height));
    if (!glGetString(GL_VERSION)) return fail("No OpenGL context is current");
    GLint largest = 0;
    std::array<GLint, 2> largestView{};
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &largest);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, largestView.data());
    const int limitX = std::min(largest, largestView[0]), limitY = std::min(largest, largestView[1]);
    if (width > limitX || height > limitY)
        return fail(fmt::format("A picture of {} x {} pixels is above this OpenGL driver's limit of {} x {}", width,
                                height, limitX, limitY));

    while (glGetError() != GL_NO_ERROR) {} // an older error must not be taken for one of the steps below
    std::unique_ptr<OffscreenTarget> target(new OffscreenTarget(width, height, depth));
    GLint previousBuffer = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &previousBuffer);
    glGenFramebuffers(1, &target->framebuffer_);
    glGenRenderbuffers(1, &target->colourBuffer_);
    glGenRenderbuffers(1, &target->depthBuffer_);
    target->bind();
    const auto attach = [&](GLuint buffer, GLenum format, GLenum place) {
        glBindRenderbuffer(GL_RENDERBUFFER, buffer);
        glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, buffer);
    };
    attach(target->colourBuffer_, depth == ColourDepth::Floats ? GL_RGBA32F : GL_RGBA8, GL_COLOR_ATTACHMENT0);
    attach(target->depthBuffer_, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
    const GLenum problem = glGetError();
    const GLenum state = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    target->unbind();
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(previousBuffer));
    if (problem != GL_NO_ERROR || state != GL_FRAMEBUFFER_COMPLETE)
        return fail(fmt::format("Cannot make a picture of {} x {} pixels: {} (OpenGL error 0x{:04X}, state 0x{:04X})",
                                width, height, problem == GL_OUT_OF_MEMORY ? "out of memory" : "the driver refused it",
                                problem, state));
    return target;
}

OffscreenTarget::~OffscreenTarget() {
    unbind();
    glDeleteFramebuffers(1, &framebuffer_);
    glDeleteRenderbuffers(1, &colourBuffer_);
    glDeleteRenderbuffers(1, &depthBuffer_);
}

void OffscreenTarget::bind() {
    if (!bound_) {
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previousDraw_);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &previousRead_);
        bound_ = true;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
}

void OffscreenTarget::unbind() {
    if (!bound_) return;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(previousDraw_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(previousRead_));
    bound_ = false;
}

void OffscreenTarget::read(unsigned type, void* to) const {
    GLint previousRead = 0, previousPack = 0;
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &previousRead);
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &previousPack);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for (const GLenum zero : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS}) glPixelStorei(zero, 0);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    glReadPixels(0, 0, width_, height_, GL_RGBA, type, to);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(previousRead));
    glPopClientAttrib();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(previousPack));
}

Picture OffscreenTarget::readPixels() const {
    Picture picture(width_, height_, 4);
    read(GL_UNSIGNED_BYTE, picture.pixels.data());
    const std::size_t row = picture.rowBytes();
    for (int low = 0, high = height_ - 1; low < high; ++low, --high)
        std::swap_ranges(picture.row(low), picture.row(low) + row, picture.row(high));
    return picture;
}

void OffscreenTarget::copyTo(unsigned framebuffer, int width, int height) const {
    GLint previousRead = 0, previousDraw = 0;
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &previousRead);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &previousDraw);
    glPushAttrib(GL_SCISSOR_BIT | GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    const GLenum filter = width == width_ && height == height_ ? GL_NEAREST : GL_LINEAR;
    glBlitFramebuffer(0, 0, width_, height_, 0, 0, width, height, GL_COLOR_BUFFER_BIT, filter);
    // What nodes left in the alpha channel is nobody's transparency.
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glPopAttrib();
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(previousRead));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(previousDraw));
}

FloatPicture OffscreenTarget::readFloats() const {
    FloatPicture picture(width_, height_, 4);
    read(GL_FLOAT, picture.pixels.data());
    for (int low = 0, high = height_ - 1; low < high; ++low, --high)
        std::swap_ranges(picture.at(0, low), picture.at(0, low + 1), picture.at(0, high));
    return picture;
}

} // namespace host::viewport
