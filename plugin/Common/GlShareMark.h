#pragma once

#include "ShaderProgram.h"

#include <memory>
#include <string>
#include <vector>

namespace orvo {

/// Tells GL contexts apart: names of GL objects mean something only in the context that made them, and in those that
/// share its objects.
///
/// OpenGL has no call for that, and the window systems' calls know nothing of sharing. So the mark is a GL object: a
/// shader that is never compiled, whose source is a text that no other mark has. A context in which the shader has that
/// text is one that sees the objects made beside the mark.
class GlShareMark {
public:
    /// The mark of the current context, made where it has none; null without a context that can hold one. It lasts as
    /// long as somebody holds it.
    static std::shared_ptr<const GlShareMark> ofCurrentContext();

    ~GlShareMark();
    GlShareMark(const GlShareMark&) = delete;
    GlShareMark& operator=(const GlShareMark&) = delete;

    /// Whether the current context sees what was made beside the mark.
    bool isCurrent() const;

    /// Deletes a buffer object that was made beside the mark: at once, or, when its context is not current, at the next
    /// sweep(). Where the mark ends before, the buffer lasts as long as its context.
    void deleteBuffer(GLuint name) const;
    /// Deletes what had to wait. Only while the mark is current.
    void sweep() const;

private:
    explicit GlShareMark(std::string text);

    ShaderStage shader_{GL_VERTEX_SHADER};
    std::string text_;
    mutable std::vector<GLuint> doomedBuffers_;
};

} // namespace orvo
