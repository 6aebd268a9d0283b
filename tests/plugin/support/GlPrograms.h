#pragma once

#include <EGL/egl.h>
#include <GL/gl.h>

#include <optional>
#include <vector>

/// What drawing nodes left in the GL of the current context: the values that their programs were given, and textures.
namespace left {

/// The value of a uniform of the program that has uniforms of this name and of the name `mark`, but none of the name
/// `without`; nothing when there is no such program. Three numbers of which a scalar takes the first.
inline std::optional<std::vector<float>> uniform(const char* name, const char* mark, const char* without) {
    const auto isProgram = reinterpret_cast<GLboolean (*)(GLuint)>(eglGetProcAddress("glIsProgram"));
    const auto location = reinterpret_cast<GLint (*)(GLuint, const char*)>(eglGetProcAddress("glGetUniformLocation"));
    const auto values = reinterpret_cast<void (*)(GLuint, GLint, GLfloat*)>(eglGetProcAddress("glGetUniformfv"));
    for (GLuint program = 1; program < 200; ++program) {
        if (!isProgram(program) || location(program, mark) < 0 || location(program, without) >= 0) continue;
        std::vector<float> found(4);
        if (location(program, name) < 0) return std::nullopt;
        values(program, location(program, name), found.data());
        found.pop_back();
        return found;
    }
    return std::nullopt;
}

/// The number of 2D textures of that width.
inline int texturesOfWidth(int width) {
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    int count = 0;
    for (GLuint texture = 1; texture < 200; ++texture) {
        if (!glIsTexture(texture)) continue;
        glBindTexture(GL_TEXTURE_2D, texture);
        if (glGetError() != GL_NO_ERROR) continue; // one of another target
        GLint found = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &found);
        count += found == width;
    }
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
    return count;
}

} // namespace left
